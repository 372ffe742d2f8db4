// What becomes of frames on the wire, the damaged ones too: from packets to the kit's description of a buffer.

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstring>
#include <numeric>
#include <optional>
#include <set>
#include <thread>

#include "AravisBackend.h"
#include "BackendFixtures.h"
#include "StreamingDevice.h"

namespace zyn::aravis {
namespace {

using namespace GenTL;
using gige::Bytes;
using producer::ChunkTrailers;
using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Chunk;
using test::StreamingDevice;
using test::TestBuffer;
using test::TestListener;
using test::TestSink;
using test::WireFrame;

constexpr std::uint32_t kWidth = 64;
constexpr std::uint32_t kHeight = 100;
constexpr std::size_t kImageBytes = std::size_t{kWidth} * kHeight;

Bytes Pattern(std::size_t size) {
  Bytes bytes(size);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
  return bytes;
}

WireFrame PlainFrame(std::uint16_t id = 1) {
  WireFrame frame;
  frame.id = id;
  frame.width = kWidth;
  frame.height = kHeight;
  frame.data = Pattern(kImageBytes);
  return frame;
}

// Packets that are meant for somebody else, as many as one thread can send, over the adapter of the camera.
class Traffic {
 public:
  Traffic() : sender_([this] { Send(); }) {}
  ~Traffic() {
    isOver_ = true;
    sender_.join();
  }
  Traffic(const Traffic&) = delete;
  Traffic& operator=(const Traffic&) = delete;

 private:
  void Send() {
    const int socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(0x7F000003);
    to.sin_port = htons(9);
    const std::array<char, 12> data{};
    while (!isOver_) {
      (void)sendto(socket, data.data(), data.size(), 0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
    }
    close(socket);
  }

  std::atomic<bool> isOver_{false};
  std::thread sender_;
};

class FrameTest : public testing::Test {
 protected:
  void Start(std::uint32_t payloadBytes, std::size_t bufferBytes) {
    camera_ = std::make_unique<StreamingDevice>(payloadBytes);
    for (const auto& info : backend_.FindInterfaces(milliseconds(100))) {
      if (info.displayName == "lo") interface_ = backend_.OpenInterface(info);
    }
    for (const auto& info : interface_->FindDevices(milliseconds(1000))) {
      if (info.serialNumber == "STREAM")
        device_ = interface_->OpenDevice(info, producer::Access::control, listener_);
    }
    ASSERT_NE(device_, nullptr);
    stream_ = device_->OpenStream(0, sink_);
    for (int i = 0; i < 4; ++i) sink_.Announce(bufferBytes);
    stream_->Start();
    Settle();
  }

  // What the receiver hears before its filter stands, such as the camera's control traffic, may cost the first frames: the
  // tests begin when one has come.
  void Settle() {
    for (int attempt = 0; attempt < 10; ++attempt) {
      Send(PlainFrame());
      const auto delivery = sink_.Wait(seconds(2));
      if (!delivery) continue;
      sink_.Queue(*delivery->buffer);
      while (const auto late = sink_.Wait(milliseconds(0))) sink_.Queue(*late->buffer);
      stream_->OnBuffersQueued();
      return;
    }
    throw std::runtime_error("no frame comes through");
  }

  // Numbered one after the other.
  void Send(WireFrame frame) {
    frame.id = next_++;
    camera_->Send(frame);
  }
  TestSink::Delivery Receive(const WireFrame& frame) {
    Send(frame);
    auto delivery = sink_.Wait(seconds(5));
    if (!delivery) throw std::runtime_error("no frame");
    return std::move(*delivery);
  }

  std::uint16_t next_ = 1;
  std::unique_ptr<StreamingDevice> camera_;
  AravisBackend backend_;
  std::unique_ptr<producer::Interface> interface_;
  TestListener listener_;
  TestSink sink_;
  std::unique_ptr<producer::Device> device_;
  std::unique_ptr<producer::Stream> stream_;
};

TEST_F(FrameTest, GeometryAndTimeComeFromTheLeader) {
  Start(kImageBytes, kImageBytes);
  WireFrame frame = PlainFrame();
  frame.xOffset = 16;
  frame.yOffset = 8;
  frame.timestamp = 5'000'000;
  const auto [buffer, info] = Receive(frame);
  EXPECT_FALSE(info.incomplete);
  EXPECT_EQ(info.payloadType, PAYLOAD_TYPE_IMAGE);
  EXPECT_EQ(info.width, kWidth);
  EXPECT_EQ(info.height, kHeight);
  EXPECT_EQ(info.deliveredHeight, kHeight);
  EXPECT_EQ(info.xOffset, 16U);
  EXPECT_EQ(info.yOffset, 8U);
  EXPECT_EQ(info.pixelFormat, 0x01080001U);
  EXPECT_EQ(info.timestampNs, 5'000'000'000U) << "the camera counts microseconds";
  EXPECT_EQ(info.chunkTrailers, ChunkTrailers::none);
  EXPECT_EQ(std::memcmp(buffer->Memory(), frame.data.data(), frame.data.size()), 0);
}

// The gap lasts a few milliseconds, so it takes more than one start to be sure of meeting it. A frame that comes while
// the others' packets are still being looked through may be lost; a buffer may not.
TEST_F(FrameTest, NoBufferIsLostToPacketsOfOthersWhileTheStreamStarts) {
  Start(kImageBytes, kImageBytes);
  for (int round = 0; round < 12; ++round) {
    stream_->Stop(true);
    {
      const Traffic traffic;
      stream_->Start();
    }
    std::set<TestBuffer*> seen;
    for (std::uint16_t id = 1; seen.size() < 4 && id < 100; ++id) {
      camera_->Send(PlainFrame(id));
      if (const auto delivery = sink_.Wait(milliseconds(100))) seen.insert(delivery->buffer);
    }
    ASSERT_EQ(seen.size(), 4U) << "each of the four buffers comes back with a frame";
    for (TestBuffer* buffer : seen) sink_.Queue(*buffer);
  }
}

TEST_F(FrameTest, ImageWithChunksEndsExactlyBehindTheLastTrailer) {
  const Bytes chunks = Chunk(0xA5A50001, {0, 0, 0, 42});
  WireFrame frame = PlainFrame();
  frame.payloadType = 0x4001;
  frame.data = Chunk(0x1, Pattern(kImageBytes));
  frame.data.insert(frame.data.end(), chunks.begin(), chunks.end());
  Start(static_cast<std::uint32_t>(frame.data.size()), frame.data.size() + 1000);
  const auto [buffer, info] = Receive(frame);
  EXPECT_FALSE(info.incomplete);
  EXPECT_EQ(info.payloadType, PAYLOAD_TYPE_IMAGE);
  EXPECT_TRUE(info.imagePresent);
  EXPECT_EQ(info.height, kHeight);
  EXPECT_EQ(info.chunkTrailers, ChunkTrailers::bigEndian);
  EXPECT_EQ(info.sizeFilled, frame.data.size()) << "the walk through the chunks starts there";
  EXPECT_EQ(std::memcmp(buffer->Memory(), frame.data.data(), frame.data.size()), 0);
}

TEST_F(FrameTest, ExtendedChunkDataHasChunksToo) {
  WireFrame frame = PlainFrame();
  frame.payloadType = 0x0005;
  frame.data = Chunk(0x1, Pattern(kImageBytes));
  Start(static_cast<std::uint32_t>(frame.data.size()), frame.data.size());
  const auto [buffer, info] = Receive(frame);
  EXPECT_EQ(info.payloadType, PAYLOAD_TYPE_IMAGE);
  EXPECT_EQ(info.chunkTrailers, ChunkTrailers::bigEndian);
  EXPECT_EQ(info.width, kWidth);
}

TEST_F(FrameTest, ChunkDataAloneHasNoImage) {
  WireFrame frame = PlainFrame();
  frame.payloadType = 0x0004;
  frame.data = Chunk(0xA5A50001, {0, 0, 0, 42});
  Start(static_cast<std::uint32_t>(frame.data.size()), frame.data.size());
  const auto [buffer, info] = Receive(frame);
  EXPECT_EQ(info.payloadType, PAYLOAD_TYPE_CHUNK_DATA);
  EXPECT_FALSE(info.imagePresent);
  EXPECT_FALSE(info.width.has_value());
  EXPECT_EQ(info.chunkTrailers, ChunkTrailers::bigEndian);
  EXPECT_EQ(info.sizeFilled, frame.data.size());
}

TEST_F(FrameTest, AFrameWithALostPacketIsIncomplete) {
  Start(kImageBytes, kImageBytes);
  const std::uint64_t underruns = sink_.Underruns();
  const std::uint64_t id = next_;
  WireFrame frame = PlainFrame();
  frame.dropped = {2};
  Send(frame);
  const auto [buffer, info] = Receive(PlainFrame());
  EXPECT_EQ(info.frameId, id);
  EXPECT_TRUE(info.incomplete);
  EXPECT_FALSE(info.largerThanBuffer);
  EXPECT_EQ(info.dataSize, kImageBytes);
  const auto next = sink_.Wait(seconds(5));
  ASSERT_TRUE(next);
  EXPECT_FALSE(next->info.incomplete);
  EXPECT_EQ(sink_.Underruns(), underruns);
}

TEST_F(FrameTest, AFrameWithoutItsLeaderIsIncompleteAndHasNoGeometry) {
  Start(kImageBytes, kImageBytes);
  // Every buffer has held a frame before, whose description must not show up again.
  for (int i = 0; i < 4; ++i) sink_.Queue(*Receive(PlainFrame()).buffer);
  stream_->OnBuffersQueued();
  const std::uint64_t id = next_;
  WireFrame frame = PlainFrame();
  frame.dropped = {0};
  Send(frame);
  const auto [buffer, info] = Receive(PlainFrame());
  EXPECT_EQ(info.frameId, id);
  EXPECT_TRUE(info.incomplete);
  EXPECT_FALSE(info.imagePresent);
  EXPECT_FALSE(info.width.has_value());
}

TEST_F(FrameTest, WholeFramesThatAreMissingAreCounted) {
  next_ = 65500;
  Start(kImageBytes, kImageBytes);
  next_ = 65534;
  Receive(PlainFrame());
  const std::uint64_t underruns = sink_.Underruns();
  next_ = 3;
  const auto [buffer, info] = Receive(PlainFrame());
  EXPECT_EQ(info.frameId, 65538U);
  EXPECT_EQ(sink_.Underruns(), underruns + 3);
}

TEST_F(FrameTest, ChunksThatAreCutOffMakeTheFrameIncomplete) {
  WireFrame frame = PlainFrame();
  frame.payloadType = 0x4001;
  frame.data = Chunk(0x1, Pattern(kImageBytes));
  Start(static_cast<std::uint32_t>(frame.data.size()), kImageBytes);
  const auto [buffer, info] = Receive(frame);
  EXPECT_TRUE(info.incomplete);
  EXPECT_TRUE(info.largerThanBuffer);
  EXPECT_EQ(info.dataSize, frame.data.size());
}

TEST_F(FrameTest, AShorterImageHasFewerLines) {
  Start(kImageBytes, kImageBytes);
  WireFrame frame = PlainFrame();
  frame.data.resize(std::size_t{kWidth} * 30);
  const auto [buffer, info] = Receive(frame);
  EXPECT_FALSE(info.incomplete);
  EXPECT_EQ(info.height, kHeight);
  EXPECT_EQ(info.deliveredHeight, 30U);
}

TEST_F(FrameTest, AFrameInProgressWhenStoppedIsDeliveredIncomplete) {
  Start(kImageBytes, kImageBytes);
  Receive(PlainFrame());
  const std::uint64_t begun = sink_.Started();
  WireFrame frame = PlainFrame();
  frame.dropped = {6};  // all but the trailer come
  Send(frame);
  sink_.WaitForStarted(begun + 1);
  stream_->Stop(true);
  const auto delivery = sink_.Wait(milliseconds(0));
  ASSERT_TRUE(delivery);
  EXPECT_TRUE(delivery->info.incomplete);
  EXPECT_EQ(sink_.Taken(), 0U);
}

TEST_F(FrameTest, ACameraThatCannotWriteMemoryGetsTheBytesAsRegisters) {
  constexpr std::uint32_t kAddress = 0x30000;
  Start(kImageBytes, kImageBytes);
  for (std::uint32_t at = 0; at < 12; at += 4) camera_->Control().SetRegister(kAddress + at, 0xAAAAAAAA);
  camera_->Control().SetScript([](gige::ByteView command) -> std::optional<std::vector<Bytes>> {
    if (test::CommandOf(command) != gige::command::kWriteMemory) return std::nullopt;
    return std::vector<Bytes>{test::MakeAck(command, gige::status::kNotImplemented, {})};
  });
  const Bytes bytes = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  device_->Write(kAddress, bytes.data(), bytes.size());
  EXPECT_EQ(camera_->Control().Register(kAddress), 0x01020304U);
  EXPECT_EQ(camera_->Control().Register(kAddress + 4), 0x05060708U);
  EXPECT_EQ(camera_->Control().Register(kAddress + 8), 0x09AAAAAAU) << "the bytes behind stay";
  EXPECT_FALSE(camera_->Control().Commands(gige::command::kWriteMemory).empty()) << "it was tried";
}

}  // namespace
}  // namespace zyn::aravis
