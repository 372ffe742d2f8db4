#include "U3vSearch.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>

#include "DeviceTexts.h"
#include "UsbSystem.h"
#include "producer/Error.h"

namespace zyn::aravis {
namespace {

using namespace GenTL;
using producer::DeviceInfo;
using producer::Error;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr unsigned kTextPatienceMs = 200;
constexpr std::uint8_t kGetDescriptor = 6;
constexpr unsigned kTextDescriptor = 3;
// libaravis gives the time stamps of all cameras in nanoseconds.
constexpr std::uint64_t kTimestampFrequency = 1'000'000'000;

// Reads texts of one open device. After the first question without an answer it asks no more.
class TextReader {
 public:
  explicit TextReader(libusb_device_handle* handle) : handle_(handle) {
    std::array<std::uint8_t, 4> languages{};
    const int bytes = Ask(0, 0, languages);
    if (bytes == 4) language_ = static_cast<std::uint16_t>(languages[2] | languages[3] << 8U);
    isAnswering_ = bytes == 4;
  }

  std::string Read(std::uint8_t number) {
    std::array<std::uint8_t, 255> descriptor{};
    if (number == 0 || !isAnswering_) return {};
    const int bytes = Ask(number, language_, descriptor);
    if (bytes == LIBUSB_ERROR_TIMEOUT || bytes == LIBUSB_ERROR_NO_DEVICE) isAnswering_ = false;
    if (bytes < 2) return {};
    return CleanUtf8(DecodeUsbText(std::span(descriptor).first(static_cast<std::size_t>(bytes))));
  }

  bool IsAnswering() const { return isAnswering_; }

 private:
  int Ask(unsigned number, std::uint16_t language, std::span<std::uint8_t> answer) {
    return libusb_control_transfer(handle_, LIBUSB_ENDPOINT_IN, kGetDescriptor,
                                   static_cast<std::uint16_t>(kTextDescriptor << 8U | number), language,
                                   answer.data(), static_cast<std::uint16_t>(answer.size()), kTextPatienceMs);
  }

  libusb_device_handle* const handle_;
  std::uint16_t language_ = 0;
  bool isAnswering_ = false;
};

std::optional<U3vDescriptors> DescriptorsOf(libusb_device* device) {
  libusb_config_descriptor* read = nullptr;
  if (libusb_get_config_descriptor(device, 0, &read) != LIBUSB_SUCCESS) return std::nullopt;
  const UsbConfiguration configuration(read);
  return ReadU3vDescriptors(*configuration);
}

std::string Printable(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c < 0x20 || c > 0x7E; }, '?');
  return text;
}

DeviceInfo Describe(const U3vDescriptors& descriptors) {
  DeviceInfo info;
  info.tlType = GENTL_TLTYPE_U3V;
  info.tlVersionMajor = descriptors.versionMajor;
  info.tlVersionMinor = descriptors.versionMinor;
  info.timestampFrequency = kTimestampFrequency;
  info.u3v = producer::U3vDeviceInfo{{}, SpeedText(descriptors.speeds)};
  return info;
}

DeviceInfo DescribeClosed(libusb_device* device, const U3vDescriptors& descriptors) {
  const UsbSystemTexts texts = ReadSystemTexts(device);
  DeviceInfo info = Describe(descriptors);
  info.vendor = CleanUtf8(texts.vendor);
  info.model = CleanUtf8(texts.model);
  info.serialNumber = CleanUtf8(texts.serial);
  info.id = Printable(texts.vendor + "-" + texts.model + "-" + texts.serial);
  info.accessStatus = DEVICE_ACCESS_STATUS_NOACCESS;
  return info;
}

// Nothing for a camera that does not answer.
std::optional<DeviceInfo> DescribeOpen(libusb_device* device, libusb_device_handle* handle,
                                       const U3vDescriptors& descriptors) {
  TextReader reader(handle);
  const U3vTextNumbers& numbers = descriptors.texts;
  DeviceInfo info = Describe(descriptors);
  info.u3v->guid = reader.Read(numbers.guid);
  info.id = Printable(info.u3v->guid);
  info.vendor = reader.Read(numbers.vendor);
  info.model = reader.Read(numbers.model);
  info.familyName = reader.Read(numbers.family);
  info.version = reader.Read(numbers.version);
  info.manufacturerInfo = reader.Read(numbers.manufacturerInfo);
  info.serialNumber = reader.Read(numbers.serial);
  info.userDefinedName = reader.Read(numbers.userName);
  if (!reader.IsAnswering() || info.id.empty()) return std::nullopt;
  const bool isHeld = IsHeldByApplication(device, descriptors.configuration, descriptors.controlInterface);
  info.accessStatus = isHeld ? DEVICE_ACCESS_STATUS_BUSY : DEVICE_ACCESS_STATUS_READWRITE;
  return info;
}

std::optional<DeviceInfo> DescribeDevice(libusb_device* device, const U3vDescriptors& descriptors) {
  libusb_device_handle* opened = nullptr;
  const int result = libusb_open(device, &opened);
  const UsbHandle handle(opened);
  if (result == LIBUSB_ERROR_NO_DEVICE) return std::nullopt;
  if (result != LIBUSB_SUCCESS) return DescribeClosed(device, descriptors);
  return DescribeOpen(device, handle.get(), descriptors);
}

void CheckInterfaceIsFree(libusb_device_handle* handle, int number, const std::string& name) {
  if (number < 0) return;
  const int result = libusb_claim_interface(handle, number);
  if (result == LIBUSB_ERROR_BUSY)
    throw Error(GC_ERR_ACCESS_DENIED, name + " is used by another application.");
  if (result != LIBUSB_SUCCESS)
    throw Error(GC_ERR_IO, name + " cannot be opened: " + libusb_error_name(result) + ".");
  libusb_release_interface(handle, number);
}

}  // namespace

std::vector<DeviceInfo> FindU3vDevices(UsbContext& context, milliseconds timeout) {
  std::vector<DeviceInfo> devices;
  if (context.Get() == nullptr) return devices;
  const auto deadline = steady_clock::now() + timeout;
  std::set<std::string> ids;
  const UsbDeviceList list(context.Get());
  for (libusb_device* const device : list.Devices()) {
    const auto descriptors = DescriptorsOf(device);
    if (!descriptors) continue;
    auto info = DescribeDevice(device, *descriptors);
    // A camera is known by its identifier; of two with the same one only the first could be opened.
    if (info && ids.insert(info->id).second) devices.push_back(std::move(*info));
    if (steady_clock::now() >= deadline) break;
  }
  std::sort(devices.begin(), devices.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
  return devices;
}

void CheckU3vDeviceIsFree(UsbContext& context, const std::string& guid, const std::string& name) {
  const UsbDeviceList list(context.Get());
  for (libusb_device* const device : list.Devices()) {
    const auto descriptors = DescriptorsOf(device);
    if (!descriptors) continue;
    libusb_device_handle* opened = nullptr;
    const int result = libusb_open(device, &opened);
    const UsbHandle handle(opened);
    if (result != LIBUSB_SUCCESS || TextReader(opened).Read(descriptors->texts.guid) != guid) continue;
    libusb_set_auto_detach_kernel_driver(opened, 1);
    CheckInterfaceIsFree(opened, descriptors->controlInterface, name);
    CheckInterfaceIsFree(opened, descriptors->streamInterface, name);
    return;
  }
  throw Error(GC_ERR_IO, name + " is not there any more.");
}

}  // namespace zyn::aravis
