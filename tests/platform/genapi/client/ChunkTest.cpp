// Chunks of buffers as features.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../MemoryPort.h"
#include "GenApi/ChunkAdapterGEV.h"
#include "GenApi/ChunkAdapterGenDC.h"
#include "GenApi/ChunkAdapterGeneric.h"
#include "GenApi/ChunkAdapterU3V.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

std::string ChunkRegister(const char* name, const char* port, const char* more = "") {
  return std::string("<IntReg Name=\"") + name +
         "\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>" + port + "</pPort>" +
         more + "</IntReg>";
}

std::string Nodes() {
  return "<Port Name=\"P1\"><ChunkID>0011</ChunkID></Port><Port Name=\"P2\"><ChunkID>a2</ChunkID></Port>"
         "<Port Name=\"PKept\"><ChunkID>33</ChunkID><CacheChunkData>Yes</CacheChunkData></Port>"
         "<Port Name=\"PNamed\"><pChunkID>Id</pChunkID></Port><String "
         "Name=\"Id\"><Value>44</Value></String>" +
         ChunkRegister("C1", "P1") + ChunkRegister("C2", "P2") + ChunkRegister("CKept", "PKept") +
         ChunkRegister("CNamed", "PNamed") + "<Integer Name=\"Frame\"><pValue>C1</pValue></Integer>";
}

using Buffer = std::vector<uint8_t>;

void Append32(Buffer& buffer, uint32_t value, bool bigEndian) {
  for (int i = 0; i < 4; ++i)
    buffer.push_back(static_cast<uint8_t>(value >> (bigEndian ? 24 - 8 * i : 8 * i)));
}

void AppendChunk(Buffer& buffer, uint32_t id, const Buffer& payload, bool bigEndian) {
  buffer.insert(buffer.end(), payload.begin(), payload.end());
  Append32(buffer, id, bigEndian);
  Append32(buffer, static_cast<uint32_t>(payload.size()), bigEndian);
}

Buffer TwoChunks(bool bigEndian) {
  Buffer buffer;
  AppendChunk(buffer, 0x99, {9, 9, 9, 9, 9}, bigEndian);
  AppendChunk(buffer, 0x11, {7, 0, 0, 0}, bigEndian);
  AppendChunk(buffer, 0xA2, {8, 1, 0, 0}, bigEndian);
  return buffer;
}

template <class Adapter>
void CheckTrailers(bool bigEndian) {
  Camera camera(Nodes());
  EXPECT_EQ(camera.Access("C1"), NA);
  Adapter adapter(camera.map._Ptr);
  EXPECT_EQ(camera.Access("C1"), NA);
  int calls = 0;
  const CallbackHandleType handle = Register(&camera.Node("Frame"), [&](INode*) { ++calls; });
  Buffer buffer = TwoChunks(bigEndian);
  const auto length = static_cast<int64_t>(buffer.size());
  EXPECT_TRUE(adapter.CheckBufferLayout(buffer.data(), length));
  AttachStatistics_t statistics = {};
  adapter.AttachBuffer(buffer.data(), length, &statistics);
  EXPECT_EQ(statistics.NumChunkPorts, 4);
  EXPECT_EQ(statistics.NumChunks, 3);
  EXPECT_EQ(statistics.NumAttachedChunks, 2);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(camera.Integer("Frame").GetValue(), 7);
  EXPECT_EQ(camera.Integer("C2").GetValue(), 0x108);
  EXPECT_EQ(camera.Access("CKept"), NA);
  camera.Integer("C1").SetValue(77);
  EXPECT_EQ(buffer[13], 77) << "the register lies in the buffer";

  Buffer next;
  AppendChunk(next, 0xA2, {5, 0, 0, 0}, bigEndian);
  adapter.AttachBuffer(next.data(), static_cast<int64_t>(next.size()));
  EXPECT_EQ(camera.Integer("C2").GetValue(), 5);
  EXPECT_EQ(camera.Access("Frame"), NA) << "the new buffer lacks it";
  EXPECT_EQ(calls, 3) << "for the first buffer, the write and this buffer";

  Buffer moved = next;
  moved[0] = 6;
  adapter.UpdateBuffer(moved.data());
  EXPECT_EQ(camera.Integer("C2").GetValue(), 6);
  adapter.DetachBuffer();
  EXPECT_EQ(camera.Access("C2"), NA);
  Deregister(handle);
}

TEST(Chunks, TrailersAreBigEndianOnGigEVision) {
  CheckTrailers<CChunkAdapterGEV>(true);
}
TEST(Chunks, TrailersAreLittleEndianOnUsb3Vision) {
  CheckTrailers<CChunkAdapterU3V>(false);
}
TEST(Chunks, TrailersAreLittleEndianInGenDC) {
  CheckTrailers<CChunkAdapterGenDC>(false);
}

TEST(Chunks, AWrongLayoutIsRefusedAndTheFormerBufferStays) {
  Camera camera(Nodes());
  CChunkAdapterGEV adapter(camera.map._Ptr);
  Buffer good = TwoChunks(true);
  adapter.AttachBuffer(good.data(), static_cast<int64_t>(good.size()));
  for (size_t length = 0; length < good.size(); ++length) {
    Buffer cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length));
    cut.push_back(0);                                   // never empty, so that data() is not null
    const bool isWhole = length == 13 || length == 25;  // the first chunks alone
    EXPECT_EQ(adapter.CheckBufferLayout(cut.data(), static_cast<int64_t>(length)), isWhole) << length;
    if (!isWhole) {
      EXPECT_THROW(adapter.AttachBuffer(cut.data(), static_cast<int64_t>(length)), RuntimeException);
    }
  }
  Buffer wrongOrder = TwoChunks(false);
  EXPECT_FALSE(adapter.CheckBufferLayout(wrongOrder.data(), static_cast<int64_t>(wrongOrder.size())));
  EXPECT_FALSE(adapter.CheckBufferLayout(nullptr, 16));
  EXPECT_EQ(camera.Integer("Frame").GetValue(), 7);
  CChunkAdapterGEV unattached;
  EXPECT_THROW(unattached.AttachBuffer(good.data(), static_cast<int64_t>(good.size())), RuntimeException);
}

TEST(Chunks, ReadingBehindTheChunkThrows) {
  Camera camera(Nodes());
  CChunkAdapterGEV adapter(camera.map._Ptr);
  Buffer buffer;
  AppendChunk(buffer, 0x11, {1, 2}, true);
  adapter.AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()));
  EXPECT_THROW(camera.Integer("Frame").GetValue(), OutOfRangeException);
}

TEST(Chunks, AListOfChunksServesEveryIdentifier) {
  Camera camera(Nodes());
  CChunkAdapterGeneric adapter;
  adapter.AttachNodeMap(camera.map._Ptr);
  Buffer buffer = {0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0};
  SingleChunkData_t numbers[] = {{0x11, 2, 4}, {0xA2, 6, 4}, {0x44, 10, 4}};
  AttachStatistics_t statistics = {};
  adapter.AttachBuffer(buffer.data(), numbers, 3, &statistics);
  EXPECT_EQ(statistics.NumAttachedChunks, 3);
  EXPECT_EQ(camera.Integer("C1").GetValue(), 1);
  EXPECT_EQ(camera.Integer("C2").GetValue(), 2);
  EXPECT_EQ(camera.Integer("CNamed").GetValue(), 3) << "its identifier is the value of a node";
  SingleChunkDataStr_t texts[2];
  texts[0].ChunkID = "11";
  texts[0].ChunkOffset = 6;
  texts[0].ChunkLength = 4;
  texts[1].ChunkID = "000A2";
  texts[1].ChunkOffset = 2;
  texts[1].ChunkLength = 4;
  adapter.AttachBuffer(buffer.data(), texts, 2, &statistics);
  EXPECT_EQ(statistics.NumAttachedChunks, 2);
  EXPECT_EQ(camera.Integer("C1").GetValue(), 2);
  EXPECT_EQ(camera.Integer("C2").GetValue(), 1);
  EXPECT_FALSE(adapter.CheckBufferLayout(buffer.data(), 14));
  EXPECT_THROW(adapter.AttachBuffer(buffer.data(), 14), RuntimeException);
}

TEST(Chunks, CachedOnesOutliveTheirBuffer) {
  Camera camera(Nodes());
  CChunkAdapterGEV adapter(camera.map._Ptr);
  {
    Buffer buffer;
    AppendChunk(buffer, 0x33, {3, 0, 0, 0}, true);
    AppendChunk(buffer, 0x11, {1, 0, 0, 0}, true);
    adapter.AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()));
    buffer[0] = 9;
    adapter.DetachBuffer();
  }
  EXPECT_EQ(camera.Access("C1"), NA);
  EXPECT_EQ(camera.Integer("CKept").GetValue(), 3);
  adapter.ClearCaches();
  EXPECT_EQ(camera.Access("CKept"), NA);

  CChunkAdapterGEV small(camera.map._Ptr, 3);
  Buffer buffer;
  AppendChunk(buffer, 0x33, {3, 0, 0, 0}, true);
  small.AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()));
  EXPECT_EQ(camera.Integer("CKept").GetValue(), 3);
  small.DetachBuffer();
  EXPECT_EQ(camera.Access("CKept"), NA) << "too large for the cache";
}

TEST(Chunks, TheEndOfTheAdapterDetaches) {
  Camera camera(Nodes());
  Buffer buffer = TwoChunks(true);
  {
    CChunkAdapterGEV adapter(camera.map._Ptr);
    adapter.AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()));
    EXPECT_EQ(camera.Access("C1"), RW);
  }
  EXPECT_EQ(camera.Access("C1"), NA);
  CChunkAdapterGEV second(camera.map._Ptr);
  second.AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()));
  second.DetachNodeMap();
  EXPECT_EQ(camera.Access("C1"), NA);
  second.DetachBuffer();
}

}  // namespace
