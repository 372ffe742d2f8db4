#include "cameras/registers/RegisterMap.h"

#include <algorithm>
#include <array>
#include <cassert>

namespace zyn::cameras {

namespace {

constexpr std::size_t kLongestRegister = 256;

bool IsAligned(std::uint64_t address, std::size_t length) {
  return length > 0 && address % 4 == 0 && length % 4 == 0;
}

bool WrapsAround(std::uint64_t address, std::size_t length) {
  return address + (length - 1) < address;
}

}  // namespace

void RegisterMap::Add(Register entry) {
  assert(IsAligned(entry.address, entry.length) && entry.length <= kLongestRegister);
  assert(registers_.empty() || registers_.back().address + registers_.back().length <= entry.address);
  registers_.push_back(std::move(entry));
}

std::vector<Register>::const_iterator RegisterMap::Find(std::uint64_t address) const {
  const auto behind =
      std::upper_bound(registers_.begin(), registers_.end(), address,
                       [](std::uint64_t a, const Register& entry) { return a < entry.address; });
  if (behind == registers_.begin()) return registers_.end();
  const auto found = behind - 1;
  return address - found->address < found->length ? found : registers_.end();
}

RegisterStatus RegisterMap::CheckReadable(std::uint64_t address, std::size_t length) const {
  if (!IsAligned(address, length)) return RegisterStatus::badAlignment;
  if (WrapsAround(address, length)) return RegisterStatus::unmapped;
  for (const std::uint64_t end = address + length; address != end;) {
    const auto entry = Find(address);
    if (entry == registers_.end()) return RegisterStatus::unmapped;
    if (!entry->read) return RegisterStatus::accessDenied;
    address = std::min(end, entry->address + entry->length);
  }
  return RegisterStatus::ok;
}

RegisterStatus RegisterMap::CheckWritable(std::uint64_t address, std::size_t length) const {
  if (!IsAligned(address, length)) return RegisterStatus::badAlignment;
  if (WrapsAround(address, length)) return RegisterStatus::unmapped;
  for (const std::uint64_t end = address + length; address != end;) {
    const auto entry = Find(address);
    if (entry == registers_.end()) return RegisterStatus::unmapped;
    if (!entry->write) return RegisterStatus::accessDenied;
    const bool isWhole = entry->address == address && entry->length <= end - address;
    if (!isWhole) return RegisterStatus::badAlignment;
    address += entry->length;
  }
  return RegisterStatus::ok;
}

RegisterStatus RegisterMap::Read(std::uint64_t address, std::span<std::uint8_t> bytes) const {
  if (const auto status = CheckReadable(address, bytes.size()); status != RegisterStatus::ok) return status;
  std::array<std::uint8_t, kLongestRegister> whole;
  while (!bytes.empty()) {
    const auto entry = Find(address);
    entry->read(std::span(whole).first(entry->length));
    const std::size_t from = address - entry->address;
    const std::size_t count = std::min(entry->length - from, bytes.size());
    std::copy_n(whole.begin() + static_cast<std::ptrdiff_t>(from), count, bytes.begin());
    bytes = bytes.subspan(count);
    address += count;
  }
  return RegisterStatus::ok;
}

RegisterStatus RegisterMap::Write(std::uint64_t address, std::span<const std::uint8_t> bytes) const {
  if (const auto status = CheckWritable(address, bytes.size()); status != RegisterStatus::ok) return status;
  while (!bytes.empty()) {
    const auto entry = Find(address);
    const auto status = entry->write(bytes.first(entry->length));
    if (status != RegisterStatus::ok) return status;
    bytes = bytes.subspan(entry->length);
    address += entry->length;
  }
  return RegisterStatus::ok;
}

}  // namespace zyn::cameras
