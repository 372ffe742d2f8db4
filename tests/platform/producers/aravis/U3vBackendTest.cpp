// USB3 Vision cameras through the backend, without the C interface: real libaravis and libusb, a virtual bus.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <future>
#include <numeric>
#include <pugixml.hpp>
#include <regex>

#include "AravisBackend.h"
#include "BackendFixtures.h"
#include "cameras/area/TestPattern.h"
#include "usb3vision/UsbCamera.h"

namespace zyn::aravis {
namespace {

using namespace GenTL;
using producer::FrameInfo;
using std::chrono::milliseconds;
using std::chrono::seconds;
using test::CodeOf;
using test::ReadWord;
using test::TestBuffer;
using test::TestListener;
using test::TestSink;
using test::WriteWord;
using zyntest::usb3::UsbCamera;

constexpr std::uint32_t kColumns = 64;
constexpr std::uint32_t kRows = 48;
constexpr std::size_t kImageBytes = std::size_t{kColumns} * kRows;

// The registers of integer features and commands, as the camera's description places them.
class Features {
 public:
  explicit Features(std::string_view xml) { description_.load_buffer(xml.data(), xml.size()); }

  void Write(producer::Device& device, const std::string& feature, std::uint64_t value) const {
    const Place place = Of(feature);
    std::vector<std::uint8_t> bytes(place.length);
    for (std::size_t i = place.length; i > 0; --i, value >>= 8U)
      bytes[i - 1] = static_cast<std::uint8_t>(value);
    device.Write(place.address, bytes.data(), bytes.size());
  }

  std::uint64_t Read(producer::Device& device, const std::string& feature) const {
    const Place place = Of(feature);
    std::vector<std::uint8_t> bytes(place.length);
    device.Read(place.address, bytes.data(), bytes.size());
    return std::accumulate(bytes.begin(), bytes.end(), std::uint64_t{0},
                           [](std::uint64_t value, std::uint8_t byte) { return value << 8U | byte; });
  }

 private:
  struct Place {
    std::uint64_t address;
    std::size_t length;
  };

  Place Of(const std::string& feature) const {
    pugi::xml_node node = Named(feature);
    if (const pugi::xml_node value = node.child("pValue")) node = Named(value.child_value());
    if (!node) throw std::runtime_error("no feature " + feature);
    return {std::strtoull(node.child_value("Address"), nullptr, 0), node.child("Length").text().as_uint()};
  }

  pugi::xml_node Named(const std::string& name) const {
    return description_.find_node(
        [&](const pugi::xml_node& node) { return name == node.attribute("Name").value(); });
  }

  pugi::xml_document description_;
};

// The test pattern of that frame: brighter from column to column, one column further with each frame.
std::vector<std::uint8_t> MovingRamp(std::uint64_t frame) {
  std::vector<std::uint8_t> image(kImageBytes);
  for (std::size_t i = 0; i < kImageBytes; ++i) image[i] = static_cast<std::uint8_t>(i % kColumns + frame);
  return image;
}

// Threads of this process with that name.
std::ptrdiff_t CountThreads(const std::string& name) {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return std::count_if(begin(tasks), end(tasks), [&](const auto& task) {
    std::ifstream file(task.path() / "comm");
    std::string line;
    std::getline(file, line);
    return line == name;
  });
}

class U3vBackendTest : public testing::Test {
 protected:
  U3vBackendTest() {
    for (const auto& info : backend_.FindInterfaces(milliseconds(100))) {
      if (info.tlType == "U3V") interface_ = backend_.OpenInterface(info);
    }
  }

  std::vector<producer::DeviceInfo> Search() { return interface_->FindDevices(seconds(1)); }

  producer::DeviceInfo Find(const std::string& serial) {
    for (auto& info : Search()) {
      if (info.serialNumber == serial) return info;
    }
    throw std::runtime_error("camera not found: " + serial);
  }

  // The bus is searched anew by a thread of libusb's own when something was plugged in or out.
  bool WaitUntilListed(std::size_t count) {
    for (int i = 0; i < 500; ++i) {
      if (Search().size() == count) return true;
      std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
  }

  std::unique_ptr<producer::Device> Open(const std::string& serial = "U3V01",
                                         producer::Access access = producer::Access::control) {
    listener_ = std::make_unique<TestListener>();
    return interface_->OpenDevice(Find(serial), access, *listener_);
  }

  void Write(producer::Device& device, const std::string& feature, std::uint64_t value) const {
    features_.Write(device, feature, value);
  }

  void UseSmallFrames(producer::Device& device) const {
    Write(device, "Width", kColumns);
    Write(device, "Height", kRows);
    Write(device, "TestPattern", static_cast<std::uint64_t>(cameras::TestPattern::greyHorizontalRampMoving));
  }

  UsbCamera camera_{"ZS-A640", "U3V01"};
  const Features features_{camera_.Model().Description()};
  AravisBackend backend_;
  std::unique_ptr<producer::Interface> interface_;
  std::unique_ptr<TestListener> listener_;
};

TEST_F(U3vBackendTest, FindsCamerasWithAllTheirTexts) {
  const UsbCamera second("KEL-LP1000F", "U3V02", 2);
  ASSERT_TRUE(WaitUntilListed(2));
  const auto devices = Search();
  EXPECT_EQ(devices[0].id, camera_.Guid());
  EXPECT_EQ(devices[0].serialNumber, "U3V01");
  EXPECT_EQ(devices[0].vendor, "ZynCamera Simulation");
  EXPECT_EQ(devices[0].model, "ZS-A640");
  EXPECT_EQ(devices[0].familyName, "Virtual");
  EXPECT_EQ(devices[0].version, "1.0");
  EXPECT_EQ(devices[0].manufacturerInfo, "none");
  EXPECT_EQ(devices[0].userDefinedName, "");
  EXPECT_EQ(devices[0].tlType, "U3V");
  EXPECT_EQ(devices[0].tlVersionMajor, 1U);
  EXPECT_EQ(devices[0].tlVersionMinor, 1U);
  EXPECT_EQ(devices[0].accessStatus, DEVICE_ACCESS_STATUS_READWRITE);
  ASSERT_TRUE(devices[0].u3v);
  EXPECT_EQ(devices[0].u3v->guid, camera_.Guid());
  EXPECT_EQ(devices[0].u3v->speedSupport, "SuperSpeed");
  EXPECT_FALSE(devices[0].gev);
  EXPECT_EQ(devices[1].serialNumber, "U3V02");
  EXPECT_EQ(devices[1].model, "KEL-LP1000F");
}

TEST_F(U3vBackendTest, ACameraThatAnotherApplicationHoldsIsBusy) {
  camera_.HoldByAnother();
  EXPECT_EQ(Find("U3V01").accessStatus, DEVICE_ACCESS_STATUS_BUSY);
  EXPECT_EQ(CodeOf([&] { Open(); }), GC_ERR_ACCESS_DENIED);
  camera_.LetGo();
  EXPECT_EQ(Find("U3V01").accessStatus, DEVICE_ACCESS_STATUS_READWRITE);
  EXPECT_EQ(CodeOf([&] { Open(); }), GC_ERR_SUCCESS);
}

TEST_F(U3vBackendTest, ACameraThatMayNotBeOpenedIsListedWithWhatTheSystemKnows) {
  camera_.Forbid();
  const producer::DeviceInfo info = Find("U3V01");
  EXPECT_EQ(info.accessStatus, DEVICE_ACCESS_STATUS_NOACCESS);
  EXPECT_EQ(info.id, "ZynCamera Simulation-ZS-A640-U3V01");
  EXPECT_EQ(info.vendor, "ZynCamera Simulation");
  EXPECT_EQ(info.model, "ZS-A640");
  EXPECT_EQ(CodeOf([&] { Open(); }), GC_ERR_ACCESS_DENIED);
}

TEST_F(U3vBackendTest, DescriptionAndRegistersAreReachable) {
  const auto device = Open();
  const auto traits = device->Traits();
  EXPECT_FALSE(traits.bigEndian);
  ASSERT_EQ(traits.xml.size(), 1U);
  std::smatch place;
  ASSERT_TRUE(std::regex_match(traits.xml.front().url, place,
                               std::regex("local:ZS-A640.xml;([0-9a-f]+);([0-9a-f]+)")))
      << traits.xml.front().url;
  EXPECT_EQ(traits.xml.front().schemaMajor, 1);
  EXPECT_EQ(traits.xml.front().schemaMinor, 1);
  EXPECT_EQ(traits.streamIds.size(), 1U);
  std::string xml(std::stoull(place[2], nullptr, 16), '\0');
  device->Read(std::stoull(place[1], nullptr, 16), xml.data(), xml.size());
  EXPECT_EQ(xml, camera_.Model().Description());

  UseSmallFrames(*device);
  EXPECT_EQ(features_.Read(*device, "Width"), kColumns);
  EXPECT_EQ(camera_.Model().PayloadSize(), kImageBytes);
}

TEST_F(U3vBackendTest, RefusedAccessSaysWhy) {
  const auto device = Open();
  EXPECT_EQ(CodeOf([&] { ReadWord(*device, 0xFFFF0000); }), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(CodeOf([&] { Write(*device, "Width", 1); }), GC_ERR_INVALID_VALUE);
  EXPECT_EQ(CodeOf([&] { WriteWord(*device, 0, 1); }), GC_ERR_ACCESS_DENIED)
      << "the version is not for writing";
}

TEST_F(U3vBackendTest, TheUserDefinedNameIsStoredInTheCamera) {
  const auto device = Open();
  device->SetUserDefinedName("bench");
  EXPECT_EQ(camera_.Model().GetIdentity().userName, "bench");
  EXPECT_EQ(CodeOf([&] { device->SetUserDefinedName(std::string(64, 'x')); }), GC_ERR_INVALID_VALUE);
}

TEST_F(U3vBackendTest, ACameraHasOneUserAtATime) {
  const auto device = Open();
  EXPECT_EQ(camera_.Claims(), 2U);
  EXPECT_EQ(CodeOf([&] { Open(); }), GC_ERR_ACCESS_DENIED);
  EXPECT_EQ(CodeOf([&] { Open("U3V01", producer::Access::readOnly); }), GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(U3vBackendTest, AClosedCameraIsFreeAtOnce) {
  for (int i = 0; i < 3; ++i) {
    const auto device = Open();
    EXPECT_EQ(camera_.Claims(), 2U);
  }
  EXPECT_EQ(camera_.Claims(), 0U);
}

TEST_F(U3vBackendTest, StreamsInOrderWithTheRightPixelsAfterEveryStart) {
  const auto device = Open();
  UseSmallFrames(*device);
  TestSink sink;
  const auto stream = device->OpenStream(0, sink);
  for (int i = 0; i < 4; ++i) sink.Announce(kImageBytes);
  for (int round = 0; round < 3; ++round) {
    stream->Start();
    Write(*device, "AcquisitionStart", 1);
    for (std::uint64_t i = 0; i < 12; ++i) {
      auto delivery = sink.Wait(seconds(5));
      ASSERT_TRUE(delivery) << i;
      const FrameInfo& info = delivery->info;
      EXPECT_EQ(info.frameId, i);
      EXPECT_FALSE(info.incomplete);
      EXPECT_FALSE(info.largerThanBuffer);
      EXPECT_EQ(info.sizeFilled, kImageBytes);
      EXPECT_EQ(info.payloadType, PAYLOAD_TYPE_IMAGE);
      EXPECT_TRUE(info.imagePresent);
      EXPECT_EQ(info.width, kColumns);
      EXPECT_EQ(info.height, kRows);
      EXPECT_EQ(info.deliveredHeight, kRows);
      EXPECT_EQ(info.pixelFormat, 0x01080001U);
      EXPECT_EQ(info.chunkTrailers, producer::ChunkTrailers::none);
      EXPECT_GT(info.timestampNs, 0U);
      EXPECT_EQ(std::memcmp(delivery->buffer->Memory(), MovingRamp(i + 1).data(), kImageBytes), 0)
          << "frame " << i;
      sink.Queue(*delivery->buffer);
      stream->OnBuffersQueued();
    }
    Write(*device, "AcquisitionStop", 1);
    stream->Stop(false);
    EXPECT_EQ(sink.Taken(), 0U);
    while (auto late = sink.Wait(milliseconds(0))) sink.Queue(*late->buffer);
  }
  EXPECT_EQ(sink.Underruns(), 0U);
  sink.Revoke(*stream);
}

TEST_F(U3vBackendTest, ABufferThatIsTooSmallIsMarked) {
  const auto device = Open();
  UseSmallFrames(*device);
  TestSink sink;
  const auto stream = device->OpenStream(0, sink);
  for (int i = 0; i < 4; ++i) sink.Announce(kImageBytes - 100);
  stream->Start();
  Write(*device, "AcquisitionStart", 1);
  const auto delivery = sink.Wait(seconds(5));
  ASSERT_TRUE(delivery);
  EXPECT_TRUE(delivery->info.largerThanBuffer);
  EXPECT_TRUE(delivery->info.incomplete);
  EXPECT_LE(delivery->info.sizeFilled, kImageBytes - 100);
  EXPECT_GE(delivery->info.dataSize, kImageBytes);
  stream->Stop(true);
}

TEST_F(U3vBackendTest, ABufferThatIsTooLargeIsFine) {
  const auto device = Open();
  UseSmallFrames(*device);
  TestSink sink;
  const auto stream = device->OpenStream(0, sink);
  sink.Announce(kImageBytes * 2);
  stream->Start();
  Write(*device, "AcquisitionStart", 1);
  const auto delivery = sink.Wait(seconds(5));
  ASSERT_TRUE(delivery);
  EXPECT_FALSE(delivery->info.incomplete);
  EXPECT_EQ(delivery->info.sizeFilled, kImageBytes);
  stream->Stop(true);
}

TEST_F(U3vBackendTest, UnpluggingAnIdleCameraIsReported) {
  const auto device = Open();
  camera_.Unplug();
  ASSERT_EQ(listener_->Lost().wait_for(seconds(5)), std::future_status::ready);
  EXPECT_THAT(listener_->Lost().get(), testing::HasSubstr("unplugged"));
  EXPECT_EQ(CodeOf([&] { features_.Read(*device, "Width"); }), GC_ERR_IO);
  TestSink sink;
  EXPECT_EQ(CodeOf([&] { device->OpenStream(0, sink); }), GC_ERR_IO);
}

TEST_F(U3vBackendTest, TheReceiverOfALostCameraEndsBeforeTheStreamIsStopped) {
  const auto device = Open();
  UseSmallFrames(*device);
  TestSink sink;
  const auto stream = device->OpenStream(0, sink);
  sink.Announce(kImageBytes);
  sink.Announce(kImageBytes);
  stream->Start();
  while (CountThreads("arv_uv_stream") < 1)
    std::this_thread::yield();  // a thread names itself when it comes up
  camera_.Unplug();
  ASSERT_EQ(listener_->Lost().wait_for(seconds(5)), std::future_status::ready);
  while (CountThreads("arv_uv_stream") > 0) std::this_thread::yield();
  stream->OnBuffersQueued();
  stream->Stop(true);
  EXPECT_EQ(sink.Taken(), 0U);
}

TEST_F(U3vBackendTest, ACameraUnpluggedWhileItStreamsComesBack) {
  for (int round = 0; round < 3; ++round) {
    auto device = Open();
    UseSmallFrames(*device);
    TestSink sink;
    auto stream = device->OpenStream(0, sink);
    for (int i = 0; i < 4; ++i) sink.Announce(kImageBytes);
    stream->Start();
    Write(*device, "AcquisitionStart", 1);
    ASSERT_TRUE(sink.Wait(seconds(5)));
    camera_.Unplug();
    ASSERT_EQ(listener_->Lost().wait_for(seconds(5)), std::future_status::ready);
    stream->Stop(false);
    EXPECT_EQ(sink.Taken(), 0U);
    EXPECT_EQ(CodeOf([&] { stream->Start(); }), GC_ERR_IO);
    sink.Revoke(*stream);
    stream.reset();
    device.reset();
    ASSERT_TRUE(WaitUntilListed(0));
    camera_.Plug();
    ASSERT_TRUE(WaitUntilListed(1));
  }
}

}  // namespace
}  // namespace zyn::aravis
