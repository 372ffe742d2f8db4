#include "gigedevice/GvspWire.h"

#include <gtest/gtest.h>

#include <vector>

#include "gigedevice/BlockRing.h"

namespace zyn::gigedevice {
namespace {

using Bytes = std::vector<std::uint8_t>;

template <class Write>
Bytes Written(Write write) {
  Bytes bytes(kLargestShortPacket);
  bytes.resize(write(bytes.data()));
  return bytes;
}

cameras::Frame ImageFrame() {
  cameras::Frame frame;
  frame.hasImage = true;
  frame.pixelFormat = 0x01080001;
  frame.width = 640;
  frame.height = 480;
  frame.size = frame.intendedSize = frame.imageSize = 640 * 480;
  return frame;
}

TEST(GvspWire, HeadersHaveShortOrLongNumbers) {
  PacketHeader header{0x1234, 0x56789, PacketFormat::payload, 0, false, false};
  EXPECT_EQ(Written([&](auto* out) { return WriteHeader(header, out); }),
            (Bytes{0, 0, 0x12, 0x34, 3, 0x05, 0x67, 0x89}));
  header.hasExtendedIds = true;
  header.isResent = true;
  EXPECT_EQ(Written([&](auto* out) { return WriteHeader(header, out); }),
            (Bytes{0, 0, 0, 1, 0x83, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x12, 0x34, 0, 5, 0x67, 0x89}));
}

TEST(GvspWire, ShortBlockNumbersSkipZero) {
  EXPECT_EQ(WireBlockId(1, false), 1U);
  EXPECT_EQ(WireBlockId(65535, false), 65535U);
  EXPECT_EQ(WireBlockId(65536, false), 1U);
  EXPECT_EQ(WireBlockId(65536, true), 65536U);
}

TEST(GvspWire, AnImageLeaderTellsTheGeometry) {
  const Bytes leader = Written([](auto* out) { return WriteLeader(ImageFrame(), 0x0102030405060708, out); });
  const Bytes expected{0, 0,    0, 1, 1, 2,    3, 4, 5, 6, 7, 8, 1, 8, 0, 1, 0, 0,
                       2, 0x80, 0, 0, 1, 0xE0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(leader, expected);
}

TEST(GvspWire, PayloadTypesFollowTheFrame) {
  cameras::Frame frame = ImageFrame();
  EXPECT_EQ(Written([&](auto* out) { return WriteTrailer(frame, out); }), (Bytes{0, 0, 0, 1, 0, 0, 1, 0xE0}));
  frame.chunkCount = 1;
  frame.intendedSize = 0x4B008;
  frame.chunkLayoutId = 9;
  EXPECT_EQ(Written([&](auto* out) { return WriteTrailer(frame, out); }),
            (Bytes{0, 0, 0x40, 1, 0, 0, 1, 0xE0, 0, 4, 0xB0, 8, 0, 0, 0, 9}));
  frame.hasImage = false;
  EXPECT_EQ(Written([&](auto* out) { return WriteTrailer(frame, out); }), (Bytes{0, 0, 0, 4, 0, 4, 0xB0, 8}));
  EXPECT_EQ(Written([&](auto* out) { return WriteLeader(frame, 1, out); }),
            (Bytes{0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST(BlockRing, KeepsAsManyBlocksAsFitAndUsesTheMemoryOfTheOldestAgain) {
  struct Case {
    std::size_t blockBytes;
    std::size_t kept;
  };
  const Case cases[] = {{0, BlockRing::kMostBlocks},
                        {BlockRing::kMostBytes / 16, 16},
                        {BlockRing::kMostBytes / 16 + 1, 15},
                        {BlockRing::kMostBytes, BlockRing::kLeastBlocks}};
  for (const Case& one : cases) {
    BlockRing ring;
    for (std::uint64_t id = 1; id <= one.kept + 2; ++id) {
      auto block = ring.TakeSpare();
      EXPECT_EQ(block->id, id <= one.kept ? 0 : id - one.kept);
      block->id = id;
      block->data.resize(one.blockBytes);
      ring.Keep(std::move(block));
    }
    const auto isKept = [&](std::uint64_t id) { return ring.With(id, false, [](const Block&) {}); };
    EXPECT_FALSE(isKept(2));
    EXPECT_TRUE(isKept(3));
    EXPECT_TRUE(isKept(one.kept + 2));
    EXPECT_FALSE(ring.With(3, true, [](const Block&) {}));
  }
}

TEST(BlockRing, BlocksThatGrowTakeThePlaceOfSeveral) {
  BlockRing ring;
  for (std::uint64_t id = 1; id <= 10; ++id) {
    auto block = ring.TakeSpare();
    block->id = id;
    block->data.resize(id <= 8 ? BlockRing::kMostBytes / 8 : BlockRing::kMostBytes / 2);
    ring.Keep(std::move(block));
  }
  const auto isKept = [&](std::uint64_t id) { return ring.With(id, false, [](const Block&) {}); };
  EXPECT_TRUE(isKept(10));
  EXPECT_TRUE(isKept(8));
  EXPECT_FALSE(isKept(6));
}

TEST(Block, TheEndOfADamagedFrameIsMissing) {
  Block block;
  block.target.packetSize = 1028 + 8;
  block.frame.intendedSize = 2500;
  block.frame.size = 1250;
  block.payloadPackets = 3;
  EXPECT_TRUE(block.HasPacket(0));
  EXPECT_TRUE(block.HasPacket(1));
  EXPECT_FALSE(block.HasPacket(2));
  EXPECT_FALSE(block.HasPacket(3));
  EXPECT_TRUE(block.HasPacket(4));
  EXPECT_FALSE(block.HasPacket(5));
}

}  // namespace
}  // namespace zyn::gigedevice
