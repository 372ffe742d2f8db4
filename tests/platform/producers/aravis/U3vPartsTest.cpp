// What USB3 Vision cameras say of themselves: texts, descriptors, and the list of their description files.

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <map>

#include "U3vDescriptors.h"
#include "U3vManifest.h"

namespace zyn::aravis {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct TextCase {
  const char* name;
  Bytes descriptor;
  std::string text;
};

class UsbText : public testing::TestWithParam<TextCase> {};

TEST_P(UsbText, BecomesUtf8) {
  EXPECT_EQ(DecodeUsbText(GetParam().descriptor), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Edges, UsbText,
                         testing::Values(TextCase{"Nothing", {}, ""}, TextCase{"HeaderOnly", {2, 3}, ""},
                                         TextCase{"AnotherDescriptor", {4, 2, 'a', 0}, ""},
                                         TextCase{"Ascii", {6, 3, 'a', 0, 'b', 0}, "ab"},
                                         TextCase{"EndsAtItsLength", {4, 3, 'a', 0, 'b', 0}, "a"},
                                         TextCase{"LongerThanWhatCame", {250, 3, 'a', 0}, "a"},
                                         TextCase{"HalfACharacterAtTheEnd", {5, 3, 'a', 0, 'b'}, "a"},
                                         TextCase{"EndsAtAZero", {8, 3, 'a', 0, 0, 0, 'b', 0}, "a"},
                                         TextCase{"TwoBytes", {4, 3, 0xE9, 0x00}, "\xC3\xA9"},
                                         TextCase{"ThreeBytes", {4, 3, 0xAC, 0x20}, "\xE2\x82\xAC"},
                                         TextCase{
                                             "FourBytes", {6, 3, 0x3D, 0xD8, 0x00, 0xDE}, "\xF0\x9F\x98\x80"},
                                         TextCase{"HighSurrogateAlone",
                                                  {6, 3, 0x3D, 0xD8, 'a', 0},
                                                  "\xEF\xBF\xBD"
                                                  "a"},
                                         TextCase{"HighSurrogateLast", {4, 3, 0x3D, 0xD8}, "\xEF\xBF\xBD"},
                                         TextCase{"LowSurrogateAlone", {4, 3, 0x00, 0xDE}, "\xEF\xBF\xBD"}),
                         [](const auto& instance) { return instance.param.name; });

TEST(U3vSpeed, TheFastestIsNamed) {
  EXPECT_EQ(SpeedText(0), "");
  EXPECT_EQ(SpeedText(0x04), "HighSpeed");
  EXPECT_EQ(SpeedText(0x0C), "SuperSpeed");
  EXPECT_EQ(SpeedText(0x1F), "SuperSpeedPlus");
  EXPECT_EQ(SpeedText(0x20), "") << "a bit that has no meaning";
}

// A configuration of interfaces that live as long as this.
class Configuration {
 public:
  void Add(std::uint8_t number, std::uint8_t deviceClass, std::uint8_t protocol, const Bytes& extra = {}) {
    Entry& entry = entries_.at(count_);
    entry.extra = extra;
    entry.descriptor.bInterfaceNumber = number;
    entry.descriptor.bInterfaceClass = deviceClass;
    entry.descriptor.bInterfaceSubClass = 5;
    entry.descriptor.bInterfaceProtocol = protocol;
    entry.descriptor.extra = entry.extra.data();
    entry.descriptor.extra_length = static_cast<int>(entry.extra.size());
    interfaces_.at(count_) = {&entry.descriptor, 1};
    ++count_;
  }

  std::optional<U3vDescriptors> Read() const {
    libusb_config_descriptor configuration{};
    configuration.bNumInterfaces = static_cast<std::uint8_t>(count_);
    configuration.bConfigurationValue = 3;
    configuration.interface = interfaces_.data();
    return ReadU3vDescriptors(configuration);
  }

 private:
  struct Entry {
    Bytes extra;
    libusb_interface_descriptor descriptor{};
  };
  std::array<Entry, 4> entries_;
  std::array<libusb_interface, 4> interfaces_{};
  std::size_t count_ = 0;
};

const Bytes kCameraInfo = {20, 0x24, 1, 0, 0, 1, 0, 2, 0, 1, 0, 11, 12, 13, 14, 15, 16, 17, 18, 0x08};

TEST(U3vDescriptorsTest, InterfacesTextsVersionAndSpeedAreRead) {
  Configuration configuration;
  configuration.Add(0, 0x0E, 0);
  configuration.Add(4, 0xEF, 0, kCameraInfo);
  configuration.Add(5, 0xEF, 1);
  configuration.Add(6, 0xEF, 2);
  const auto found = configuration.Read();
  ASSERT_TRUE(found);
  EXPECT_EQ(found->controlInterface, 4);
  EXPECT_EQ(found->streamInterface, 6);
  EXPECT_EQ(found->configuration, 3);
  EXPECT_EQ(found->versionMajor, 1U);
  EXPECT_EQ(found->versionMinor, 2U);
  EXPECT_EQ(found->texts.guid, 11);
  EXPECT_EQ(found->texts.vendor, 12);
  EXPECT_EQ(found->texts.model, 13);
  EXPECT_EQ(found->texts.family, 14);
  EXPECT_EQ(found->texts.version, 15);
  EXPECT_EQ(found->texts.manufacturerInfo, 16);
  EXPECT_EQ(found->texts.serial, 17);
  EXPECT_EQ(found->texts.userName, 18);
  EXPECT_EQ(found->speeds, 0x08);
}

TEST(U3vDescriptorsTest, OtherDescriptorsBeforeTheCamerasOwnArePassedOver) {
  Bytes extra = {4, 0x30, 0, 0, 5, 0x24, 2, 0, 0};
  extra.insert(extra.end(), kCameraInfo.begin(), kCameraInfo.end());
  Configuration configuration;
  configuration.Add(0, 0xEF, 0, extra);
  const auto found = configuration.Read();
  ASSERT_TRUE(found);
  EXPECT_EQ(found->texts.guid, 11);
  EXPECT_EQ(found->streamInterface, -1);
}

TEST(U3vDescriptorsTest, ADescriptionCutOffAnywhereIsNone) {
  for (std::size_t length = 0; length < kCameraInfo.size(); ++length) {
    Configuration configuration;
    configuration.Add(0, 0xEF, 0,
                      Bytes(kCameraInfo.begin(), kCameraInfo.begin() + static_cast<std::ptrdiff_t>(length)));
    EXPECT_FALSE(configuration.Read()) << length;
  }
  Configuration zeros;
  zeros.Add(0, 0xEF, 0, Bytes(64));
  EXPECT_FALSE(zeros.Read()) << "descriptors of length 0 lead nowhere";
}

// A camera that is memory. What was not written is not there.
class MemoryDevice final : public producer::Device {
 public:
  void Put(std::uint64_t address, std::uint64_t value, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i, value >>= 8U)
      memory_[address + i] = static_cast<std::uint8_t>(value);
  }
  void PutEntry(std::uint64_t index, std::uint32_t kind, std::uint64_t address, std::uint64_t size) {
    const std::uint64_t at = kManifest + 8 + index * 64;
    Put(at, 0x02010003, 4);
    Put(at + 4, kind, 4);
    Put(at + 8, address, 8);
    Put(at + 16, size, 8);
  }
  void PutCount(std::uint64_t count) {
    Put(0x1D0, kManifest, 8);
    Put(kManifest, count, 8);
  }

  producer::DeviceTraits Traits() const override { return {}; }
  void Read(std::uint64_t address, void* data, std::size_t size) override {
    for (std::size_t i = 0; i < size; ++i) {
      const auto found = memory_.find(address + i);
      if (found == memory_.end()) throw producer::Error(GenTL::GC_ERR_INVALID_ADDRESS, "no such register");
      static_cast<std::uint8_t*>(data)[i] = found->second;
    }
  }
  void Write(std::uint64_t, const void*, std::size_t) override {}
  std::unique_ptr<producer::Stream> OpenStream(std::size_t, producer::StreamSink&) override {
    return nullptr;
  }

 private:
  static constexpr std::uint64_t kManifest = 0x50000;
  std::map<std::uint64_t, std::uint8_t> memory_;
};

TEST(U3vManifestTest, FilesAreListedWithTheNewestSchemaFirst) {
  MemoryDevice device;
  device.PutCount(3);
  device.PutEntry(0, 0x01000000, 0x1000, 0x20);
  device.PutEntry(1, 0x01010400, 0x1'0000'0000, 0xABC);  // zipped
  device.PutEntry(2, 0x01010000, 0x3000, 0x40);
  const auto files = ReadU3vManifest(device, "Model 1/x");
  ASSERT_EQ(files.size(), 3U);
  EXPECT_EQ(files[0].url, "local:Model_1_x.zip;100000000;abc");
  EXPECT_EQ(files[0].schemaMajor, 1);
  EXPECT_EQ(files[0].schemaMinor, 1);
  EXPECT_EQ(files[0].fileMajor, 2);
  EXPECT_EQ(files[0].fileMinor, 1);
  EXPECT_EQ(files[0].fileSubMinor, 3);
  EXPECT_EQ(files[1].url, "local:Model_1_x.xml;3000;40");
  EXPECT_EQ(files[2].url, "local:Model_1_x.xml;1000;20");
}

TEST(U3vManifestTest, FilesOfOtherKindsAndEmptyOnesAreLeftOut) {
  MemoryDevice device;
  device.PutCount(4);
  device.PutEntry(0, 0x01010001, 0x1000, 0x20);  // describes a buffer
  device.PutEntry(1, 0x01010800, 0x1000, 0x20);  // a format that nobody knows
  device.PutEntry(2, 0x01010000, 0x1000, 0);
  device.PutEntry(3, 0x01010000, 0x2000, 0x20);
  const auto files = ReadU3vManifest(device, "");
  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(files[0].url, "local:camera.xml;2000;20");
}

TEST(U3vManifestTest, ACameraWithoutADescriptionIsRefused) {
  MemoryDevice empty;
  empty.PutCount(0);
  EXPECT_THROW(ReadU3vManifest(empty, "m"), producer::Error);
  MemoryDevice nowhere;
  EXPECT_THROW(ReadU3vManifest(nowhere, "m"), producer::Error);
}

TEST(U3vManifestTest, ANumberOfFilesBeyondReasonIsNotBelieved) {
  MemoryDevice device;
  device.PutCount(~std::uint64_t{0});
  for (std::uint64_t i = 0; i < 64; ++i) device.PutEntry(i, 0x01010000, 0x1000, 0x20);
  EXPECT_EQ(ReadU3vManifest(device, "m").size(), 64U);
}

}  // namespace
}  // namespace zyn::aravis
