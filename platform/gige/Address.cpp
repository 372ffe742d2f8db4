#include "gige/Address.h"

#include <cstdio>

namespace zyn::gige {
namespace {

constexpr std::size_t kMostDigits = 3;
constexpr std::uint32_t kLargestOctet = 255;

// Takes one number of 1 to 3 digits off the front of `text`.
std::optional<std::uint32_t> TakeOctet(std::string_view& text) {
  std::uint32_t value = 0;
  std::size_t digits = 0;
  while (digits < text.size() && digits < kMostDigits && text[digits] >= '0' && text[digits] <= '9') {
    value = value * 10 + static_cast<std::uint32_t>(text[digits] - '0');
    ++digits;
  }
  if (digits == 0 || value > kLargestOctet) return std::nullopt;
  text.remove_prefix(digits);
  return value;
}

}  // namespace

std::optional<Ipv4> ParseIpv4(std::string_view text) {
  Ipv4 address;
  for (int i = 0; i < 4; ++i) {
    if (i > 0) {
      if (text.empty() || text.front() != '.') return std::nullopt;
      text.remove_prefix(1);
    }
    const std::optional<std::uint32_t> octet = TakeOctet(text);
    if (!octet) return std::nullopt;
    address.value = address.value << 8U | *octet;
  }
  if (!text.empty()) return std::nullopt;
  return address;
}

std::string ToText(Ipv4 address) {
  const std::uint32_t v = address.value;
  return std::to_string(v >> 24U) + "." + std::to_string(v >> 16U & 0xFFU) + "." +
         std::to_string(v >> 8U & 0xFFU) + "." + std::to_string(v & 0xFFU);
}

std::string ToText(const MacAddress& mac) {
  std::array<char, 18> text{};
  const auto& b = mac.bytes;
  std::snprintf(text.data(), text.size(), "%02X:%02X:%02X:%02X:%02X:%02X", b[0], b[1], b[2], b[3], b[4],
                b[5]);
  return text.data();
}

bool InSameSubnet(Ipv4 a, Ipv4 b, Ipv4 mask) {
  return ((a.value ^ b.value) & mask.value) == 0;
}

bool IsLoopback(Ipv4 address) {
  return address.value >> 24U == 127;
}

bool IsMulticast(Ipv4 address) {
  return address.value >= 0xE0000000U;
}

bool IsSubnetMask(Ipv4 mask) {
  const std::uint32_t hostBits = ~mask.value;
  return mask.value != 0 && (hostBits & (hostBits + 1)) == 0;
}

bool IsHostAddress(Ipv4 address, Ipv4 mask) {
  constexpr std::uint32_t kThisNetwork = 0;  // 0.x.y.z names no host
  if (address.value >> 24U == kThisNetwork || IsMulticast(address) || !IsSubnetMask(mask)) return false;
  const std::uint32_t hostBits = ~mask.value;
  if (hostBits <= 1) return true;  // /31 and /32 have neither a network nor a broadcast address
  const std::uint32_t host = address.value & hostBits;
  return host != 0 && host != hostBits;
}

}  // namespace zyn::gige
