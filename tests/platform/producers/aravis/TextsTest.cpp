#include <gtest/gtest.h>

#include <cstring>

#include "DeviceTexts.h"
#include "GevRegisters.h"
#include "XmlUrl.h"

namespace zyn::aravis {
namespace {

TEST(XmlUrl, WhatCamerasWriteIsUnderstood) {
  const struct {
    std::string_view text;
    const char* url;  // null: none
    int major;
    int minor;
  } rows[] = {
      {"Local:arv-fake-camera.xml;10000;3e67", "local:arv-fake-camera.xml;10000;3e67", 1, 0},
      {"Local:a.zip;C0000000;1A2B?SchemaVersion=1.1.0", "local:a.zip;c0000000;1a2b", 1, 1},
      {"local:///dir\\sub/a.zip; 0x100 ; 0X20 ", "local:a.zip;100;20", 1, 0},
      {std::string_view("LOCAL:a.xml;1;2\0junk", 20), "local:a.xml;1;2", 1, 0},
      {"File:name.xml", "file:name.xml", 1, 0},
      {"HTTP://host/a.xml?SchemaVersion=1.2.0", "http://host/a.xml", 1, 2},
      {"", nullptr, 0, 0},
      {"Local:", nullptr, 0, 0},
      {"Local:a.xml", nullptr, 0, 0},
      {"Local:a.xml;10000", nullptr, 0, 0},
      {"Local:a.xml;10000;0", nullptr, 0, 0},
      {"Local:a.xml;xyz;10", nullptr, 0, 0},
      {"Local:;1;2", nullptr, 0, 0},
      {"Local:a.xml;11111111111111111;2", nullptr, 0, 0},
      {"ftp://host/a.xml", nullptr, 0, 0},
      {"no url", nullptr, 0, 0},
  };
  for (const auto& row : rows) {
    const auto location = ParseXmlUrl(row.text);
    ASSERT_EQ(location.has_value(), row.url != nullptr) << row.text;
    if (!location) continue;
    EXPECT_EQ(location->url, row.url);
    EXPECT_EQ(location->schemaMajor, row.major) << row.text;
    EXPECT_EQ(location->schemaMinor, row.minor) << row.text;
  }
}

TEST(DeviceTexts, WhatIsNoUtf8BecomesAQuestionMark) {
  const struct {
    std::string text;
    std::string clean;
  } rows[] = {
      {"plain", "plain"},
      {"K\xC3\xB6ln \xE2\x82\xAC \xF0\x9F\x93\xB7", "K\xC3\xB6ln \xE2\x82\xAC \xF0\x9F\x93\xB7"},
      {"K\xF6ln", "K?ln"},
      {"\xC3", "?"},
      {"\xE2\x82", "??"},
      {"\xC0\x80", "??"},
      {"\xE0\x80\x80", "???"},
      {"\xED\xA0\x80", "???"},
      {"\xF4\x90\x80\x80", "????"},
      {"\xFF", "?"},
      {"\xC2\x85", "??"},
      {"a\nb\x7F", "a?b?"},
  };
  for (const auto& row : rows) EXPECT_EQ(CleanUtf8(row.text), row.clean) << row.text;
}

TEST(DeviceTexts, TheIdentifierDoesNotDependOnTheAddress) {
  gige::DeviceDescription device;
  device.ip = gige::Ipv4{0x7F000002};
  EXPECT_EQ(DeviceId(device), "127.0.0.2");
  device.serial = "S\xC3\xA4 1";
  EXPECT_EQ(DeviceId(device), "S?? 1");
  device.mac.bytes = {2, 0x11, 0x22, 0x33, 0x44, 0x55};
  EXPECT_EQ(DeviceId(device), "02:11:22:33:44:55");
}

// A device of 64 bytes that knows words only.
struct Words {
  std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(64);
  int accesses = 0;

  void Check(std::uint64_t address, std::size_t size) {
    ++accesses;
    EXPECT_EQ(address % 4, 0U);
    EXPECT_EQ(size % 4, 0U);
    ASSERT_LE(address + size, bytes.size());
  }
  auto Reader() {
    return [this](std::uint64_t address, std::uint8_t* data, std::size_t size) {
      Check(address, size);
      std::memcpy(data, bytes.data() + address, size);
    };
  }
  auto Writer() {
    return [this](std::uint64_t address, const std::uint8_t* data, std::size_t size) {
      Check(address, size);
      std::memcpy(bytes.data() + address, data, size);
    };
  }
};

TEST(GevRegisters, AnyAddressAndLengthReadsAndKeepsTheBytesAround) {
  for (std::uint64_t address = 0; address < 9; ++address) {
    for (std::size_t size = 1; size < 13; ++size) {
      Words device;
      for (std::size_t i = 0; i < device.bytes.size(); ++i) device.bytes[i] = static_cast<std::uint8_t>(i);
      std::vector<std::uint8_t> data(size);
      ReadBytes(address, data.data(), size, device.Reader());
      for (std::size_t i = 0; i < size; ++i) EXPECT_EQ(data[i], address + i);

      std::vector<std::uint8_t> expected = device.bytes;
      data.assign(size, 0xEE);
      std::copy(data.begin(), data.end(), expected.begin() + static_cast<std::ptrdiff_t>(address));
      WriteBytes(address, data.data(), size, device.Reader(), device.Writer());
      EXPECT_EQ(device.bytes, expected) << address << " " << size;
    }
  }
}

TEST(GevRegisters, WholeWordsAreWrittenWithoutReadingThem) {
  Words device;
  const std::vector<std::uint8_t> data(8, 1);
  WriteBytes(4, data.data(), data.size(), device.Reader(), device.Writer());
  EXPECT_EQ(device.accesses, 1) << "reading a command register could have side effects";
}

TEST(GevRegisters, AddressesBeyond32BitsAreInvalid) {
  Words device;
  std::uint8_t byte = 0;
  const struct {
    std::uint64_t address;
    std::size_t size;
  } rows[] = {{0x1'0000'0000, 1}, {0xFFFF'FFFF, 2}, {~std::uint64_t{0}, 4}, {0, std::size_t{1} << 33U}};
  for (const auto& row : rows) {
    try {
      ReadBytes(row.address, &byte, row.size, device.Reader());
      FAIL() << row.address;
    } catch (const producer::Error& error) {
      EXPECT_EQ(error.Code(), GenTL::GC_ERR_INVALID_ADDRESS);
    }
  }
  EXPECT_EQ(device.accesses, 0);
}

}  // namespace
}  // namespace zyn::aravis
