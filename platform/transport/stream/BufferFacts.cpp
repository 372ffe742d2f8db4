#include "BufferFacts.h"

#include "../producer/GenTLInfo.h"

namespace zyn::transport {

namespace {

constexpr std::array<GenTL::BUFFER_INFO_CMD, 17> kAsked = {
    GenTL::BUFFER_INFO_NEW_DATA,
    GenTL::BUFFER_INFO_IS_INCOMPLETE,
    GenTL::BUFFER_INFO_SIZE_FILLED,
    GenTL::BUFFER_INFO_WIDTH,
    GenTL::BUFFER_INFO_HEIGHT,
    GenTL::BUFFER_INFO_XPADDING,
    GenTL::BUFFER_INFO_FRAMEID,
    GenTL::BUFFER_INFO_IMAGEPRESENT,
    GenTL::BUFFER_INFO_IMAGEOFFSET,
    GenTL::BUFFER_INFO_PAYLOADTYPE,
    GenTL::BUFFER_INFO_PIXELFORMAT,
    GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT,
    GenTL::BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE,
    GenTL::BUFFER_INFO_DATA_SIZE,
    GenTL::BUFFER_INFO_DATA_LARGER_THAN_BUFFER,
    GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA,
    GenTL::BUFFER_INFO_PIXELFORMAT_NAMESPACE,
};

}  // namespace

BufferFacts BufferReader::Read(GenTL::BUFFER_HANDLE buffer) {
  BufferFacts facts;
  if (!ReadStacked(buffer, facts)) ReadSingly(buffer, facts);
  return facts;
}

bool BufferReader::ReadStacked(GenTL::BUFFER_HANDLE buffer, BufferFacts& facts) const {
  if (!producer_.DSGetBufferInfoStacked) return false;
  std::array<std::array<unsigned char, 8>, kAsked.size()> values{};
  std::array<GenTL::DS_BUFFER_INFO_STACKED, kAsked.size()> questions{};
  for (std::size_t i = 0; i < kAsked.size(); ++i) {
    questions[i].iInfoCmd = kAsked[i];
    questions[i].pBuffer = values[i].data();
    questions[i].iSize = values[i].size();
    questions[i].iResult = GenTL::GC_ERR_NOT_IMPLEMENTED;
  }
  if (producer_.DSGetBufferInfoStacked(stream_, buffer, questions.data(), questions.size()) !=
      GenTL::GC_ERR_SUCCESS) {
    return false;
  }
  for (std::size_t i = 0; i < kAsked.size(); ++i) {
    const bool isAnswered = questions[i].iResult == GenTL::GC_ERR_SUCCESS && questions[i].iSize <= 8;
    if (isAnswered) {
      facts.Set(kAsked[i], DecodeInteger(questions[i].iType, values[i].data(), questions[i].iSize));
    }
  }
  return true;
}

void BufferReader::ReadSingly(GenTL::BUFFER_HANDLE buffer, BufferFacts& facts) {
  for (const GenTL::BUFFER_INFO_CMD command : kAsked) {
    bool& isUnknown = unknown_[static_cast<std::size_t>(command)];
    if (isUnknown) continue;
    GenTL::GC_ERROR error = GenTL::GC_ERR_SUCCESS;
    const auto value = GetInteger([&](auto* type, void* bytes, std::size_t* size) {
      error = producer_.DSGetBufferInfo(stream_, buffer, command, type, bytes, size);
      return error;
    });
    if (value) facts.Set(command, *value);
    isUnknown = error == GenTL::GC_ERR_NOT_IMPLEMENTED;
  }
}

std::optional<std::uint64_t> BufferReader::Ask(GenTL::BUFFER_HANDLE buffer,
                                               GenTL::BUFFER_INFO_CMD command) const {
  return GetInteger([&](auto* type, void* bytes, std::size_t* size) {
    return producer_.DSGetBufferInfo(stream_, buffer, command, type, bytes, size);
  });
}

}  // namespace zyn::transport
