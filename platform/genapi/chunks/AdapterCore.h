/// What the chunk adapters share.
#ifndef ZYN_GENAPI_CHUNKS_ADAPTERCORE_H
#define ZYN_GENAPI_CHUNKS_ADAPTERCORE_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "GenApi/ChunkAdapter.h"
#include "GenApi/ChunkPort.h"

namespace zyn::genapi {

using namespace GENAPI_NAMESPACE;

/// The place of a chunk in its buffer.
struct ChunkPlace {
  std::int64_t offset = 0;
  std::int64_t length = 0;
  bool exists = false;
};

/// One chunk found by a layout.
struct FoundChunk {
  std::uint32_t id;
  ChunkPlace place;
};

/// The chunks of a buffer in which every payload is followed by its identifier and length, from the last to
/// the first; nothing when the buffer is not made so.
std::optional<std::vector<FoundChunk>> ParseTrailers(const std::uint8_t* buffer, std::int64_t length,
                                                     bool bigEndian);

}  // namespace zyn::genapi

namespace GENAPI_NAMESPACE {

/// The ports of one node map. The map's lock is taken inside, and never held while callbacks run.
struct CChunkAdapter::Impl {
  /// Gives the place of the chunk with that normalised identifier, if the buffer has it.
  typedef std::function<zyn::genapi::ChunkPlace(const std::string& id)> Find;

  explicit Impl(std::int64_t maxCacheSize) : maxCacheSize_(maxCacheSize) {}
  ~Impl() { DetachNodeMap(); }

  void AttachNodeMap(INodeMap* map);
  void DetachNodeMap();
  void AttachBuffer(std::uint8_t* buffer, int chunks, const Find& find, AttachStatistics_t* statistics);
  void AttachBuffer(std::uint8_t* buffer, const std::vector<zyn::genapi::FoundChunk>& chunks,
                    AttachStatistics_t* statistics);
  void DetachBuffer();
  void UpdateBuffer(std::uint8_t* buffer);
  void ClearCaches();

 private:
  template <class Change>
  void ChangeAll(Change change);

  INodeMap* map_ = nullptr;
  const std::int64_t maxCacheSize_;
  std::vector<std::unique_ptr<CChunkPort>> ports_;
};

}  // namespace GENAPI_NAMESPACE

#endif
