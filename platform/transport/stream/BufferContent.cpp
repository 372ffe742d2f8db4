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

constexpr std::uint32_t kMostParts = 256;  // a larger count is a broken table

bool IsImageType(std::uint64_t type) {
  return type >= GenTL::PART_DATATYPE_2D_IMAGE && type <= GenTL::PART_DATATYPE_3D_PLANE_QUADPLANAR;
}

std::optional<std::uint32_t> FindImagePart(const PartReader& reader, std::uint32_t count) {
  std::optional<std::uint32_t> confidence;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint64_t type = reader.GetOrZero(i, GenTL::BUFFER_PART_INFO_DATA_TYPE);
    if (IsImageType(type)) return i;
    if (type == GenTL::PART_DATATYPE_CONFIDENCE_MAP && !confidence) confidence = i;
  }
  return confidence;
}

// Nothing for a part that does not lie inside the buffer.
std::optional<PartFacts> ReadPart(const PartReader& reader, std::uint32_t index, const unsigned char* base,
                                  std::size_t capacity) {
  const auto begin = reinterpret_cast<std::uintptr_t>(base);
  const auto address = reader.Get(index, GenTL::BUFFER_PART_INFO_BASE);
  if (!address || *address < begin || *address - begin >= capacity) return std::nullopt;
  PartFacts part;
  part.offset = *address - begin;
  const std::uint64_t most = capacity - part.offset;
  const auto size = reader.Get(index, GenTL::BUFFER_PART_INFO_DATA_SIZE);
  part.isSizeTold = size.has_value();
  part.size = size.value_or(most);
  if (part.size > most) return std::nullopt;
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

PartTable ReadPartTable(const ProducerLibrary& producer, GenTL::DS_HANDLE stream, GenTL::BUFFER_HANDLE buffer,
                        const unsigned char* base, std::size_t capacity) {
  PartTable table;
  table.isDamaged = true;
  std::uint32_t count = 0;
  if (!producer.DSGetNumBufferParts || !producer.DSGetBufferPartInfo) return table;
  const GenTL::GC_ERROR error = producer.DSGetNumBufferParts(stream, buffer, &count);
  if (error != GenTL::GC_ERR_SUCCESS || count > kMostParts) return table;
  const PartReader reader(producer, stream, buffer);
  const auto index = FindImagePart(reader, count);
  if (index) table.image = ReadPart(reader, *index, base, capacity);
  table.isDamaged = index && !table.image;
  return table;
}

std::vector<ChunkRange> FindChunks(const ProducerLibrary& producer, GenTL::DS_HANDLE stream,
                                   GenTL::BUFFER_HANDLE buffer, const BufferFacts& facts,
                                   const unsigned char* base, std::size_t capacity,
                                   std::optional<ByteOrder> order) {
  const bool isSilent = !facts.Get(GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA);
  if (MayHoldChunks(facts) || isSilent) {
    if (auto chunks = AskChunks(producer.DSGetBufferChunkData, stream, buffer, capacity))
      return std::move(*chunks);
  }
  if (!MayHoldChunks(facts)) return {};
  return ParseChunkLayout(base, ValidBytes(facts, capacity), order);
}

}  // namespace zyn::transport
