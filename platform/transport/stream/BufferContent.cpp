#include "BufferContent.h"

#include "../producer/GenTLInfo.h"

namespace zyn::transport {

namespace {

class PartReader {
 public:
  PartReader(const ProducerLibrary& producer, GenTL::DS_HANDLE stream, GenTL::BUFFER_HANDLE buffer)
      : producer_(producer), stream_(stream), buffer_(buffer) {}

  std::optional<std::uint64_t> Get(std::uint32_t part, GenTL::BUFFER_PART_INFO_CMD command) const {
    return GetInteger([&](auto* type, void* bytes, std::size_t* size) {
      return producer_.DSGetBufferPartInfo(stream_, buffer_, part, command, type, bytes, size);
    });
  }
  std::uint64_t GetOrZero(std::uint32_t part, GenTL::BUFFER_PART_INFO_CMD command) const {
    return Get(part, command).value_or(0);
  }

 private:
  const ProducerLibrary& producer_;
  const GenTL::DS_HANDLE stream_;
  const GenTL::BUFFER_HANDLE buffer_;
};

bool IsImageType(std::uint64_t type) {
  return type >= GenTL::PART_DATATYPE_2D_IMAGE && type <= GenTL::PART_DATATYPE_CONFIDENCE_MAP;
}

PartFacts ReadPart(const PartReader& reader, std::uint32_t index, std::uint64_t offset) {
  PartFacts part;
  part.offset = offset;
  part.size = reader.GetOrZero(index, GenTL::BUFFER_PART_INFO_DATA_SIZE);
  part.width = reader.GetOrZero(index, GenTL::BUFFER_PART_INFO_WIDTH);
  part.height = reader.GetOrZero(index, GenTL::BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT);
  if (part.height == 0) part.height = reader.GetOrZero(index, GenTL::BUFFER_PART_INFO_HEIGHT);
  part.padding = reader.GetOrZero(index, GenTL::BUFFER_PART_INFO_XPADDING);
  part.format = reader.GetOrZero(index, GenTL::BUFFER_PART_INFO_DATA_FORMAT);
  return part;
}

bool MayHoldChunks(const BufferFacts& facts) {
  const std::uint64_t payload = facts.GetOr(GenTL::BUFFER_INFO_PAYLOADTYPE, GenTL::PAYLOAD_TYPE_IMAGE);
  if (payload == GenTL::PAYLOAD_TYPE_CHUNK_DATA || payload == GenTL::PAYLOAD_TYPE_CHUNK_ONLY) return true;
  if (const auto contains = facts.Get(GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA)) return *contains != 0;
  return facts.GetOr(GenTL::BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, 0) != 0;
}

}  // namespace

std::optional<PartFacts> FindImagePart(const ProducerLibrary& producer, GenTL::DS_HANDLE stream,
                                       GenTL::BUFFER_HANDLE buffer, const unsigned char* base,
                                       std::size_t capacity) {
  std::uint32_t count = 0;
  if (!producer.DSGetNumBufferParts || !producer.DSGetBufferPartInfo) return std::nullopt;
  if (producer.DSGetNumBufferParts(stream, buffer, &count) != GenTL::GC_ERR_SUCCESS) return std::nullopt;
  const PartReader reader(producer, stream, buffer);
  for (std::uint32_t i = 0; i < count && i < 256; ++i) {
    if (!IsImageType(reader.GetOrZero(i, GenTL::BUFFER_PART_INFO_DATA_TYPE))) continue;
    const auto address = reader.Get(i, GenTL::BUFFER_PART_INFO_BASE);
    const auto begin = reinterpret_cast<std::uintptr_t>(base);
    if (address && *address >= begin && *address - begin < capacity) {
      return ReadPart(reader, i, *address - begin);
    }
  }
  return std::nullopt;
}

std::vector<ChunkRange> FindChunks(const ProducerLibrary& producer, GenTL::DS_HANDLE stream,
                                   GenTL::BUFFER_HANDLE buffer, const BufferFacts& facts,
                                   const unsigned char* base, std::size_t capacity,
                                   std::optional<ByteOrder> order) {
  const bool isSilent = !facts.Get(GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA);
  if (MayHoldChunks(facts) || isSilent) {
    if (auto chunks = AskChunks(producer, stream, buffer, capacity)) return std::move(*chunks);
  }
  if (!MayHoldChunks(facts)) return {};
  return ParseChunkLayout(base, ValidBytes(facts, capacity), order);
}

}  // namespace zyn::transport
