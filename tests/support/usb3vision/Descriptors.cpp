#include "usb3vision/Descriptors.h"

namespace zyntest::usb3 {
namespace {

// Numbers of the texts.
enum Text : std::uint8_t { kVendor = 1, kModel, kSerial, kGuid, kFamily, kVersion, kInfo, kUserName };

constexpr std::uint8_t kMiscellaneous = 0xEF;
constexpr std::uint8_t kUsb3Vision = 0x05;
constexpr std::uint8_t kSuperSpeed = 0x08;

void AppendAll(Bytes& bytes, const Bytes& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

// A bulk endpoint of 1024 bytes, with the companion that SuperSpeed asks for.
Bytes Endpoint(std::uint8_t address) {
  return {7, 5, address, 2, 0x00, 0x04, 0, 6, 0x30, 15, 0, 0, 0};
}

Bytes Interface(std::uint8_t number, std::uint8_t endpoints, std::uint8_t protocol) {
  return {9, 4, number, 0, endpoints, kMiscellaneous, kUsb3Vision, protocol, 0};
}

Bytes DeviceInfo() {
  Bytes info = {20, 0x24, 1};
  Append(info, 0x00010000, 4);
  Append(info, 0x00010001, 4);
  AppendAll(info, {kGuid, kVendor, kModel, kFamily, kVersion, kInfo, kSerial, kUserName, kSuperSpeed});
  return info;
}

Bytes Configuration() {
  Bytes body = {8,           11, 0, kInterfaces, kMiscellaneous,
                kUsb3Vision, 0,  0};  // the two interfaces belong together
  AppendAll(body, Interface(0, 2, 0));
  AppendAll(body, DeviceInfo());
  AppendAll(body, Endpoint(kControlOut));
  AppendAll(body, Endpoint(kControlIn));
  AppendAll(body, Interface(1, 1, 2));
  AppendAll(body, Endpoint(kStreamIn));
  Bytes configuration = {9, 2};
  Append(configuration, body.size() + 9, 2);
  AppendAll(configuration, {kInterfaces, 1, 0, 0x80, 112});
  AppendAll(configuration, body);
  return configuration;
}

}  // namespace

Bytes Descriptors() {
  // USB 3.0, of several interfaces; vendor and product numbers that nobody has.
  Bytes bytes = {18,   1,    0x00, 0x03, kMiscellaneous, 2,       1,      9,       0xFF,
                 0xFF, 0x01, 0x00, 0x00, 0x01,           kVendor, kModel, kSerial, 1};
  AppendAll(bytes, Configuration());
  return bytes;
}

std::vector<std::string> Texts(const zyn::cameras::Identity& identity, const std::string& guid) {
  return {identity.vendor, identity.model,   identity.serial, guid,
          "Virtual",       identity.version, "none",          identity.userName};
}

Bytes TextDescriptor(const std::vector<std::string>& texts, std::size_t number) {
  Bytes bytes = {0, 3};
  if (number == 0) {
    Append(bytes, 0x0409, 2);
  } else if (number <= texts.size()) {
    for (const char c : texts[number - 1]) Append(bytes, static_cast<std::uint8_t>(c), 2);
  } else {
    return {};
  }
  bytes[0] = static_cast<std::uint8_t>(bytes.size());
  return bytes;
}

}  // namespace zyntest::usb3
