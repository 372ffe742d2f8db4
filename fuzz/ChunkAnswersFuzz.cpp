// A producer's answers to the question for a buffer's chunks. The first byte is the size of the buffer; then each answer
// is a result, a number that is told as the count, the number of entries that are written, and those entries: ID,
// offset and length of 8 bytes each. A producer that writes more than it was given room for is beyond help, so the
// entries end where the room does.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <vector>

#include "stream/Chunks.h"
#include "stream/FrameIdChunk.h"

namespace {

using namespace zyn::transport;

constexpr std::size_t kMostAnswers = 8;

void Require(bool isTrue) {
  if (!isTrue) std::abort();
}

class Reader {
 public:
  Reader(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  std::uint64_t Number(std::size_t bytes) {
    std::uint64_t number = 0;
    const std::size_t used = std::min(bytes, size_);
    std::memcpy(&number, data_, used);
    data_ += used;
    size_ -= used;
    return number;
  }
  bool IsAtEnd() const { return size_ == 0; }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

// The producer that answers: what it was asked last, and what it said.
struct Producer {
  Reader script{nullptr, 0};
  std::size_t calls = 0;
  GenTL::GC_ERROR error = GenTL::GC_ERR_SUCCESS;
  std::size_t told = 0;
  std::vector<GenTL::SINGLE_CHUNK_DATA> room;  // as it was left
};

Producer* producer = nullptr;

GenTL::GC_ERROR Answer(GenTL::DS_HANDLE, GenTL::BUFFER_HANDLE, GenTL::SINGLE_CHUNK_DATA* chunks,
                       std::size_t* count) {
  Producer& self = *producer;
  ++self.calls;
  Require(self.calls <= kMostAnswers);
  const std::uint64_t result = self.script.Number(1);
  self.error = result == 0 ? GenTL::GC_ERR_SUCCESS : -1000 - static_cast<GenTL::GC_ERROR>(result);
  const std::uint64_t width = self.script.Number(1) % 9;  // garbage of every size
  self.told = static_cast<std::size_t>(self.script.Number(static_cast<std::size_t>(width)));
  const std::size_t written = static_cast<std::size_t>(self.script.Number(1));
  const std::size_t room = chunks ? *count : 0;
  for (std::size_t i = 0; i < written; ++i) {
    GenTL::SINGLE_CHUNK_DATA entry{};
    entry.ChunkID = self.script.Number(8);
    entry.ChunkOffset = static_cast<std::ptrdiff_t>(self.script.Number(8));
    entry.ChunkLength = static_cast<std::size_t>(self.script.Number(8));
    if (i < room) chunks[i] = entry;
  }
  self.room.assign(chunks, chunks + room);
  *count = self.told;
  return self.error;
}

std::vector<ChunkRange> Expected(const Producer& self, std::size_t capacity) {
  std::vector<ChunkRange> inside;
  for (std::size_t i = 0; i < std::min(self.told, self.room.size()); ++i) {
    const auto offset = static_cast<std::uint64_t>(self.room[i].ChunkOffset);
    const bool fits = offset <= capacity && self.room[i].ChunkLength <= capacity - offset;
    if (fits)
      inside.push_back({self.room[i].ChunkID, static_cast<std::size_t>(offset), self.room[i].ChunkLength});
  }
  std::stable_sort(inside.begin(), inside.end(),
                   [](const ChunkRange& a, const ChunkRange& b) { return a.offset < b.offset; });
  return inside;
}

// Every byte is read, under the eyes of the sanitizer.
void ReadAll(const std::vector<ChunkRange>& chunks, const std::vector<unsigned char>& buffer) {
  unsigned sum = 0;
  for (const ChunkRange& chunk : chunks) {
    Require(chunk.offset + chunk.length <= buffer.size());
    for (std::size_t i = 0; i < chunk.length; ++i) sum += buffer[chunk.offset + i];
    for (const std::size_t address : {0U, 1U, 200U}) {
      FrameIdChunk(chunk.id, address, 4, ByteOrder::kBig).Read(buffer.data(), chunks);
    }
  }
  Require(sum == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  if (size < 1) return 0;
  const std::vector<unsigned char> buffer(input[0]);
  Producer self;
  self.script = Reader(input + 1, size - 1);
  producer = &self;
  const auto found = AskChunks(Answer, nullptr, nullptr, buffer.size());
  Require(found.has_value() || self.error != GenTL::GC_ERR_SUCCESS || self.told > 65536);
  if (!found) return 0;
  Require(self.error == GenTL::GC_ERR_SUCCESS);
  Require(*found == Expected(self, buffer.size()));
  ReadAll(*found, buffer);
  std::vector<ChunkRange> rest = *found;
  RemoveImageChunk(rest, 0);
  Require(rest.size() + 1 >= found->size());
  return 0;
}
