#include "usb3vision/Registers.h"

#include <algorithm>

#include "cameras/FeatureAccess.h"

namespace zyntest::usb3 {
namespace {

using zyn::MutexLock;
using zyn::cameras::RegisterStatus;

constexpr std::uint32_t kVersion10 = 0x00010000;
constexpr std::uint32_t kVersion11 = 0x00010001;
constexpr std::uint64_t kHasUserName = 1;
constexpr std::uint32_t kSuperSpeed = 8;

struct Range {
  std::uint64_t begin;
  std::size_t bytes;
  bool Holds(std::uint64_t address, std::size_t size) const {
    return address >= begin && size <= bytes && address - begin <= bytes - size;
  }
};

constexpr Range kWritable[] = {
    {kUserDefinedName, kTextBytes},
    {kDeviceConfiguration, 8},
    {kStreamControl, 4},
    {kMaximumLeader, kStreamMap + kStreamMapBytes - kMaximumLeader},
};

Status StatusOf(RegisterStatus status) {
  switch (status) {
    case RegisterStatus::ok:
      return Status::success;
    case RegisterStatus::unmapped:
      return Status::invalidAddress;
    case RegisterStatus::accessDenied:
      return Status::accessDenied;
    case RegisterStatus::busy:
      return Status::busy;
    case RegisterStatus::badAlignment:
      return Status::badAlignment;
    default:
      return Status::invalidParameter;
  }
}

}  // namespace

Registers::Registers(zyn::cameras::CameraModel& camera) : camera_(camera), bootstrap_(kBootstrapBytes) {
  const zyn::cameras::Identity identity = camera.GetIdentity();
  const MutexLock lock(mutex_);
  SetNumber(kGenCpVersion, kVersion10, 4);
  SetText(kManufacturerName, identity.vendor);
  SetText(kModelName, identity.model);
  SetText(kFamilyName, "Virtual");
  SetText(kDeviceVersion, identity.version);
  SetText(kManufacturerInfo, "none");
  SetText(kSerialNumber, identity.serial);
  SetText(kUserDefinedName, identity.userName);
  SetNumber(kDeviceCapability, kHasUserName, 8);
  SetNumber(kMaximumResponseTime, 500, 4);
  SetNumber(kManifestAddress, kManifest, 8);
  SetNumber(kTechnologyAddress, kTechnologyMap, 8);
  SetNumber(kTimestampIncrement, 1, 8);

  SetNumber(kUsbVersion, kVersion11, 4);
  SetNumber(kProtocolCapability, 1, 8);
  SetNumber(kMaximumCommand, kLargestControlPacket, 4);
  SetNumber(kMaximumAck, kLargestControlPacket, 4);
  SetNumber(kStreamChannels, 1, 4);
  SetNumber(kStreamMapAddress, kStreamMap, 8);
  SetNumber(kStreamMapLength, kStreamMapBytes, 4);
  SetNumber(kCurrentSpeed, kSuperSpeed, 4);

  SetNumber(kStreamInfo, 2U << 24U, 4);  // the power of two to which transfers are aligned
  SetNumber(kRequiredLeader, kLeaderBytes, 4);
  SetNumber(kRequiredTrailer, kTrailerBytes, 4);

  SetNumber(kManifest, 1, 8);
  SetNumber(kManifestEntry, 0x01000000, 4);      // version 1.0.0 of the file
  SetNumber(kManifestEntry + 4, 0x01010000, 4);  // schema 1.1, plain text
  SetNumber(kManifestEntry + 8, kDescription, 8);
  SetNumber(kManifestEntry + 16, camera.Description().size(), 8);
}

void Registers::SetText(std::uint64_t address, std::string_view text) {
  std::copy_n(text.begin(), std::min(text.size(), kTextBytes - 1),
              bootstrap_.begin() + static_cast<std::ptrdiff_t>(address));
}

void Registers::SetNumber(std::uint64_t address, std::uint64_t value, std::size_t bytes) {
  Store(bootstrap_.data() + address, value, bytes);
}

Status Registers::Read(std::uint64_t address, std::span<std::uint8_t> bytes) {
  const std::string_view description = camera_.Description();
  // The file may be read in whole words.
  if (Range{kDescription, (description.size() + 3) / 4 * 4}.Holds(address, bytes.size())) {
    const std::string_view part = description.substr(
        std::min<std::size_t>(static_cast<std::size_t>(address - kDescription), description.size()),
        bytes.size());
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
    std::copy(part.begin(), part.end(), bytes.begin());
    return Status::success;
  }
  if (address >= kBootstrapBytes) return StatusOf(camera_.ReadRegisters(address, bytes));
  if (!Range{0, kBootstrapBytes}.Holds(address, bytes.size())) return Status::invalidAddress;
  const std::size_t payload = camera_.PayloadSize();
  const MutexLock lock(mutex_);
  SetNumber(kRequiredPayload, payload, 8);
  std::copy_n(bootstrap_.begin() + static_cast<std::ptrdiff_t>(address), bytes.size(), bytes.begin());
  return Status::success;
}

Status Registers::Write(std::uint64_t address, std::span<const std::uint8_t> bytes) {
  if (address >= kDescription) return Status::writeProtect;
  if (address >= kBootstrapBytes) return StatusOf(camera_.WriteRegisters(address, bytes));
  if (std::none_of(std::begin(kWritable), std::end(kWritable),
                   [&](const Range& range) { return range.Holds(address, bytes.size()); })) {
    return Status::writeProtect;
  }
  std::string name;
  {
    const MutexLock lock(mutex_);
    std::copy(bytes.begin(), bytes.end(), bootstrap_.begin() + static_cast<std::ptrdiff_t>(address));
    name = reinterpret_cast<const char*>(bootstrap_.data() + kUserDefinedName);
  }
  if (address == kUserDefinedName)
    return StatusOf(zyn::cameras::WriteTextFeature(camera_, "DeviceUserID", name));
  return Status::success;
}

bool Registers::IsStreamEnabled() const {
  const MutexLock lock(mutex_);
  return (bootstrap_[kStreamControl] & 1U) != 0;
}

}  // namespace zyntest::usb3
