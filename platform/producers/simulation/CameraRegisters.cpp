#include "CameraRegisters.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "cameras/FeatureAccess.h"
#include "producer/Error.h"

namespace zyn::simulation {
namespace {

using cameras::RegisterStatus;
using producer::Error;

constexpr std::uint64_t kWord = 4;

GenTL::GC_ERROR CodeOf(RegisterStatus status) {
  switch (status) {
    case RegisterStatus::ok:
      return GenTL::GC_ERR_SUCCESS;
    case RegisterStatus::unmapped:
    case RegisterStatus::badAlignment:
      return GenTL::GC_ERR_INVALID_ADDRESS;
    case RegisterStatus::accessDenied:
      return GenTL::GC_ERR_ACCESS_DENIED;
    case RegisterStatus::busy:
      return GenTL::GC_ERR_BUSY;
    case RegisterStatus::outOfRange:
      return GenTL::GC_ERR_INVALID_VALUE;
    case RegisterStatus::noAnswer:
      return GenTL::GC_ERR_TIMEOUT;
  }
  return GenTL::GC_ERR_ERROR;
}

void Require(RegisterStatus status, const std::string& whatFails) {
  if (status == RegisterStatus::ok) return;
  throw Error(CodeOf(status), whatFails + ": " + Text(status) + ".");
}

void Require(RegisterStatus status, const char* what, std::uint64_t address) {
  if (status == RegisterStatus::ok) return;
  char digits[24];
  std::snprintf(digits, sizeof digits, "0x%llX", static_cast<unsigned long long>(address));
  Require(status, std::string("The camera's register ") + digits + " cannot be " + what);
}

void ReadDescription(std::string_view text, std::uint64_t at, void* data, std::size_t size) {
  const std::uint64_t padded = (text.size() + kWord - 1) / kWord * kWord;
  if (at >= padded || size > padded - at)
    throw Error(GenTL::GC_ERR_INVALID_ADDRESS, "There is nothing behind the camera's description.");
  std::memset(data, 0, size);
  if (at < text.size()) std::memcpy(data, text.data() + at, std::min<std::uint64_t>(size, text.size() - at));
}

}  // namespace

// Cameras transfer whole words; what a consumer asks for is cut out of them.
void ReadBytes(cameras::CameraModel& camera, std::uint64_t address, void* data, std::size_t size) {
  if (address >= kDescriptionAddress)
    return ReadDescription(camera.Description(), address - kDescriptionAddress, data, size);
  const std::uint64_t before = address % kWord;
  const std::uint64_t start = address - before;
  if (before == 0 && size % kWord == 0) {
    const std::span<std::uint8_t> bytes(static_cast<std::uint8_t*>(data), size);
    return Require(camera.ReadRegisters(start, bytes), "read", address);
  }
  std::vector<std::uint8_t> words((before + size + kWord - 1) / kWord * kWord);
  Require(camera.ReadRegisters(start, words), "read", address);
  std::memcpy(data, words.data() + before, size);
}

void WriteBytes(cameras::CameraModel& camera, std::uint64_t address, const void* data, std::size_t size) {
  if (address >= kDescriptionAddress)
    throw Error(GenTL::GC_ERR_ACCESS_DENIED, "The camera's description cannot be written.");
  const std::span<const std::uint8_t> bytes(static_cast<const std::uint8_t*>(data), size);
  Require(camera.WriteRegisters(address, bytes), "written", address);
}

void WriteText(cameras::CameraModel& camera, const std::string& feature, const std::string& text) {
  Require(cameras::WriteTextFeature(camera, feature, text), "The camera's " + feature + " cannot be written");
}

}  // namespace zyn::simulation
