// The backend alone, without the C interface: what libaravis does beneath it, and for how long.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <future>

#include "AravisBackend.h"
#include "BackendFixtures.h"
#include "FakeGigeCamera.h"
#include "gige/RegisterClient.h"

namespace zyn::aravis {
namespace {

using namespace GenTL;
using producer::FrameInfo;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using test::CodeOf;
using test::ReadWord;
using test::TestBuffer;
using test::TestListener;
using test::TestSink;
using test::WriteWord;
using zyntest::FakeGigeCamera;

constexpr std::uint64_t kAcquisition = 0x124;  // the fake camera's register: 1 starts, 0 stops
constexpr std::uint64_t kFramePeriod = 0x138;  // microseconds
constexpr std::uint64_t kWidth = 0x100;
constexpr std::size_t kRowBytes = 512;
constexpr std::size_t kImageBytes = kRowBytes * 512;

std::ptrdiff_t CountEntries(const char* directory) {
  return std::distance(std::filesystem::directory_iterator(directory), std::filesystem::directory_iterator());
}

class AravisBackendTest : public testing::Test {
 protected:
  AravisBackendTest() {
    for (const auto& info : backend_.FindInterfaces(milliseconds(100))) {
      if (info.displayName == "lo") interface_ = backend_.OpenInterface(info);
    }
  }

  producer::DeviceInfo Find(const std::string& serial) {
    for (auto& info : interface_->FindDevices(milliseconds(1000))) {
      if (info.serialNumber == serial) return info;
    }
    throw std::runtime_error("camera not found: " + serial);
  }

  std::unique_ptr<producer::Device> Open(producer::Access access = producer::Access::control) {
    listener_ = std::make_unique<TestListener>();
    return interface_->OpenDevice(Find("GV01"), access, *listener_);
  }

  FakeGigeCamera camera_{1, FakeGigeCamera::Bare()};
  AravisBackend backend_;
  std::unique_ptr<producer::Interface> interface_;
  std::unique_ptr<TestListener> listener_;
};

TEST_F(AravisBackendTest, FindsTheCamerasOfAnAdapterWithAllTheirTexts) {
  const FakeGigeCamera second(2, FakeGigeCamera::Bare());
  const auto devices = interface_->FindDevices(milliseconds(1000));
  ASSERT_EQ(devices.size(), 2U);
  EXPECT_EQ(devices[0].id, "GV01");
  EXPECT_EQ(devices[0].serialNumber, "GV01");
  EXPECT_EQ(devices[0].tlType, "GEV");
  EXPECT_FALSE(devices[0].vendor.empty());
  EXPECT_FALSE(devices[0].model.empty());
  EXPECT_EQ(devices[0].accessStatus, DEVICE_ACCESS_STATUS_READWRITE);
  EXPECT_EQ(devices[0].gev->address, 0x7F000001U);
  EXPECT_EQ(devices[1].id, "GV02");
  EXPECT_EQ(devices[1].gev->address, 0x7F000002U);
}

TEST_F(AravisBackendTest, DescriptionAndRegistersAreReachable) {
  const auto device = Open();
  const auto traits = device->Traits();
  EXPECT_TRUE(traits.bigEndian);
  ASSERT_EQ(traits.xml.size(), 1U);
  EXPECT_EQ(traits.xml.front().url.find("local:arv-fake-camera.xml;"), 0U);
  EXPECT_EQ(traits.streamIds.size(), 1U);
  std::string xml(64, '\0');
  device->Read(0x10000, xml.data(), xml.size());
  EXPECT_EQ(xml.find("<?xml"), 0U);

  WriteWord(*device, kWidth, 256);
  EXPECT_EQ(ReadWord(*device, kWidth), 256U);
  const std::uint8_t lowByte = 0x40;
  device->Write(kWidth + 3, &lowByte, 1);
  EXPECT_EQ(ReadWord(*device, kWidth), 320U) << "the other bytes stay";
  device->SetUserDefinedName("bench");
  EXPECT_EQ(Find("GV01").userDefinedName, "bench");
  EXPECT_EQ(CodeOf([&] { device->SetUserDefinedName("sixteen letters!"); }), GC_ERR_INVALID_VALUE);
}

TEST_F(AravisBackendTest, StreamsInOrderWithTheRightPixels) {
  const auto device = Open();
  TestSink sink;
  const auto stream = device->OpenStream(0, sink);
  for (int i = 0; i < 8; ++i) sink.Announce(kImageBytes);
  WriteWord(*device, kFramePeriod, 10'000);
  stream->Start();
  WriteWord(*device, kAcquisition, 1);
  std::uint64_t last = 0;
  for (int i = 0; i < 200; ++i) {
    auto delivery = sink.Wait(seconds(5));
    ASSERT_TRUE(delivery) << i;
    const FrameInfo& info = delivery->info;
    EXPECT_FALSE(info.incomplete);
    EXPECT_FALSE(info.largerThanBuffer);
    EXPECT_EQ(info.sizeFilled, kImageBytes);
    EXPECT_EQ(info.payloadType, PAYLOAD_TYPE_IMAGE);
    EXPECT_TRUE(info.imagePresent);
    EXPECT_EQ(info.width, 512U);
    EXPECT_EQ(info.height, 512U);
    EXPECT_EQ(info.deliveredHeight, 512U);
    EXPECT_EQ(info.pixelFormat, 0x01080001U);
    EXPECT_GT(info.timestampNs, 0U);
    EXPECT_EQ(info.frameId, i == 0 ? info.frameId : last + 1);
    last = info.frameId;
    // A diagonal pattern: each row is the row above moved by one.
    const std::uint8_t* pixels = delivery->buffer->Memory();
    for (std::size_t row = 1; row < 512; row += 37) {
      ASSERT_EQ(std::memcmp(pixels + row * kRowBytes, pixels + (row - 1) * kRowBytes + 1, kRowBytes - 1), 0)
          << "frame " << i << " row " << row;
    }
    sink.Queue(*delivery->buffer);
    stream->OnBuffersQueued();
  }
  EXPECT_GT(last, 65535U) << "the camera's 16-bit numbers have wrapped meanwhile";
  EXPECT_EQ(sink.Underruns(), 0U);
  WriteWord(*device, kAcquisition, 0);
  stream->Stop(false);
  EXPECT_EQ(sink.Taken(), 0U);
  sink.Revoke(*stream);
}

TEST_F(AravisBackendTest, ABufferThatIsTooSmallIsMarked) {
  const auto device = Open();
  TestSink sink;
  const auto stream = device->OpenStream(0, sink);
  for (int i = 0; i < 4; ++i) sink.Announce(kImageBytes - 100);
  stream->Start();
  WriteWord(*device, kAcquisition, 1);
  const auto delivery = sink.Wait(seconds(5));
  ASSERT_TRUE(delivery);
  EXPECT_TRUE(delivery->info.largerThanBuffer);
  EXPECT_TRUE(delivery->info.incomplete);
  EXPECT_LE(delivery->info.sizeFilled, kImageBytes - 100);
  EXPECT_GE(delivery->info.dataSize, kImageBytes);
  stream->Stop(true);
}

TEST_F(AravisBackendTest, ABufferThatIsTooLargeIsFine) {
  const auto device = Open();
  TestSink sink;
  const auto stream = device->OpenStream(0, sink);
  sink.Announce(kImageBytes * 2);
  stream->Start();
  WriteWord(*device, kAcquisition, 1);
  const auto delivery = sink.Wait(seconds(5));
  ASSERT_TRUE(delivery);
  EXPECT_FALSE(delivery->info.incomplete);
  EXPECT_EQ(delivery->info.sizeFilled, kImageBytes);
  stream->Stop(true);
}

TEST_F(AravisBackendTest, FramesWithoutABufferAreCounted) {
  const auto device = Open();
  TestSink sink;
  const auto stream = device->OpenStream(0, sink);
  TestBuffer& only = sink.Announce(kImageBytes);
  stream->Start();
  WriteWord(*device, kAcquisition, 1);
  const auto first = sink.Wait(seconds(5));
  ASSERT_TRUE(first);
  // Frames pass by as long as nobody queues the buffer. How many is up to the camera's clock, and on a busy machine it may
  // take a while until there is one.
  std::uint64_t previous = first->info.frameId;
  std::uint64_t next = previous;
  for (int round = 0; round < 20 && next <= previous + 1; ++round) {
    previous = next;
    std::this_thread::sleep_for(milliseconds(300));
    sink.Queue(only);
    stream->OnBuffersQueued();
    const auto frame = sink.Wait(seconds(5));
    ASSERT_TRUE(frame);
    next = frame->info.frameId;
  }
  EXPECT_GT(sink.Underruns(), 0U);
  EXPECT_EQ(next - previous, sink.Underruns() + 1);
  stream->Stop(true);
}

TEST_F(AravisBackendTest, StoppingInTheMiddleReturnsEveryBuffer) {
  for (const bool kill : {false, true, false, true}) {
    const auto device = Open();
    TestSink sink;
    const auto stream = device->OpenStream(0, sink);
    for (int i = 0; i < 4; ++i) sink.Announce(kImageBytes);
    stream->Start();
    WriteWord(*device, kAcquisition, 1);
    auto delivery = sink.Wait(seconds(5));
    ASSERT_TRUE(delivery);
    sink.Queue(*delivery->buffer);
    stream->OnBuffersQueued();
    stream->Stop(kill);  // while the camera goes on sending
    EXPECT_EQ(sink.Taken(), 0U);
    while ((delivery = sink.Wait(milliseconds(0)))) sink.Queue(*delivery->buffer);
    stream->OnBuffersQueued();
    EXPECT_EQ(sink.Taken(), 0U) << "a stopped stream takes nothing";
    WriteWord(*device, kAcquisition, 0);
  }
}

TEST_F(AravisBackendTest, AStreamStartsAgainAndAgain) {
  const auto device = Open();
  TestSink sink;
  const auto stream = device->OpenStream(0, sink);
  for (int i = 0; i < 4; ++i) sink.Announce(kImageBytes);
  for (int round = 0; round < 4; ++round) {
    stream->Start();
    // This camera sends to where the stream went when it began: it must have ended the last one by now.
    WriteWord(*device, kAcquisition, 1);
    ASSERT_TRUE(sink.Wait(seconds(5))) << round;
    WriteWord(*device, kAcquisition, 0);
    std::optional<TestSink::Delivery> rest;
    while ((rest = sink.Wait(milliseconds(150)))) sink.Queue(*rest->buffer);
    stream->Stop(false);
    EXPECT_EQ(sink.Taken(), 0U);
  }
}

TEST_F(AravisBackendTest, ASecondControllerIsRefusedAtOnce) {
  const auto device = Open();
  EXPECT_EQ(Find("GV01").accessStatus, DEVICE_ACCESS_STATUS_BUSY);
  TestListener listener;
  const auto start = steady_clock::now();
  EXPECT_EQ(CodeOf([&] { interface_->OpenDevice(Find("GV01"), producer::Access::control, listener); }),
            GC_ERR_ACCESS_DENIED);
  EXPECT_EQ(CodeOf([&] { interface_->OpenDevice(Find("GV01"), producer::Access::exclusive, listener); }),
            GC_ERR_ACCESS_DENIED);
  EXPECT_LT(steady_clock::now() - start, seconds(2));
}

TEST_F(AravisBackendTest, WatchingAControlledCameraIsPossible) {
  const auto device = Open();
  WriteWord(*device, kWidth, 128);
  TestListener listener;
  const auto observer = interface_->OpenDevice(Find("GV01"), producer::Access::readOnly, listener);
  EXPECT_EQ(ReadWord(*observer, kWidth), 128U);
  EXPECT_EQ(CodeOf([&] { WriteWord(*observer, kWidth, 64); }), GC_ERR_ACCESS_DENIED);
  EXPECT_TRUE(observer->Traits().streamIds.empty());
  EXPECT_EQ(ReadWord(*device, kWidth), 128U);
}

TEST_F(AravisBackendTest, ExclusiveAccessIsTakenAndGivenBack) {
  auto device = Open(producer::Access::exclusive);
  EXPECT_EQ(ReadWord(*device, 0x0A00), 1U);
  device.reset();
  EXPECT_EQ(Find("GV01").accessStatus, DEVICE_ACCESS_STATUS_READWRITE);
}

TEST_F(AravisBackendTest, AnAbsentCameraFailsQuickly) {
  const auto info = Find("GV01");
  camera_.Kill();
  TestListener listener;
  const auto start = steady_clock::now();
  EXPECT_EQ(CodeOf([&] { interface_->OpenDevice(info, producer::Access::control, listener); }), GC_ERR_IO);
  EXPECT_LT(steady_clock::now() - start, seconds(1));
}

TEST_F(AravisBackendTest, AFrozenCameraFailsQuickly) {
  const auto info = Find("GV01");
  camera_.Freeze();
  TestListener listener;
  const auto start = steady_clock::now();
  EXPECT_EQ(CodeOf([&] { interface_->OpenDevice(info, producer::Access::control, listener); }),
            GC_ERR_TIMEOUT);
  EXPECT_LT(steady_clock::now() - start, milliseconds(1500));
}

TEST_F(AravisBackendTest, AKilledCameraIsLostClosesAtOnceAndComesBack) {
  auto device = Open();
  TestSink sink;
  auto stream = device->OpenStream(0, sink);
  for (int i = 0; i < 4; ++i) sink.Announce(kImageBytes);
  stream->Start();
  WriteWord(*device, kAcquisition, 1);
  ASSERT_TRUE(sink.Wait(seconds(5)));
  camera_.Kill();
  ASSERT_EQ(listener_->Lost().wait_for(seconds(3)), std::future_status::ready);
  EXPECT_EQ(CodeOf([&] { ReadWord(*device, kWidth); }), GC_ERR_IO);

  const auto start = steady_clock::now();
  stream->Stop(true);
  EXPECT_EQ(sink.Taken(), 0U);
  stream.reset();
  device.reset();
  EXPECT_LT(steady_clock::now() - start, milliseconds(700)) << "nobody waits for a dead camera";

  camera_.Start();
  device = Open();
  TestSink fresh;
  stream = device->OpenStream(0, fresh);
  for (int i = 0; i < 4; ++i) fresh.Announce(kImageBytes);
  stream->Start();
  WriteWord(*device, kAcquisition, 1);
  EXPECT_TRUE(fresh.Wait(seconds(5)));
  stream->Stop(true);
}

TEST_F(AravisBackendTest, ClosingACameraThatVanishedUnnoticedDoesNotWaitForIt) {
  auto device = Open();
  camera_.Freeze();
  const auto start = steady_clock::now();
  device.reset();
  EXPECT_LT(steady_clock::now() - start, seconds(2));
}

TEST_F(AravisBackendTest, LostControlIsNoticed) {
  const auto device = Open();
  WriteWord(*device, 0x0A00, 0);  // as if the camera had given our control up
  EXPECT_EQ(listener_->Lost().wait_for(seconds(3)), std::future_status::ready);
}

TEST_F(AravisBackendTest, RoundsOfOpeningAndStreamingLeakNothing) {
  const producer::DeviceInfo info = Find("GV01");
  TestListener listener;
  std::ptrdiff_t threads = 0;
  std::ptrdiff_t files = 0;
  for (int round = 0; round < 200; ++round) {
    TestSink sink;
    auto device = interface_->OpenDevice(info, producer::Access::control, listener);
    auto stream = device->OpenStream(0, sink);
    for (int i = 0; i < 3; ++i) sink.Announce(kImageBytes);
    stream->Start();
    WriteWord(*device, kAcquisition, 1);
    ASSERT_TRUE(sink.Wait(seconds(5))) << round;
    WriteWord(*device, kAcquisition, 0);
    stream->Stop(true);
    sink.Revoke(*stream);
    stream.reset();
    device.reset();
    if (round == 20) {
      threads = CountEntries("/proc/self/task");
      files = CountEntries("/proc/self/fd");
    }
  }
  EXPECT_LE(CountEntries("/proc/self/task"), threads + 1);
  EXPECT_LE(CountEntries("/proc/self/fd"), files + 1);
}

}  // namespace
}  // namespace zyn::aravis
