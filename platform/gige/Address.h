/// IPv4 and MAC addresses as plain values.
#ifndef ZYN_GIGE_ADDRESS_H
#define ZYN_GIGE_ADDRESS_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zyn::gige {

/// An IPv4 address or mask. `value` is the number as read: 192.168.77.50 is 0xC0A84D32, on every machine.
struct Ipv4 {
  std::uint32_t value = 0;
  friend bool operator==(const Ipv4&, const Ipv4&) = default;
  friend bool operator<(const Ipv4& a, const Ipv4& b) { return a.value < b.value; }
};

struct MacAddress {
  std::array<std::uint8_t, 6> bytes{};
  bool IsZero() const { return *this == MacAddress{}; }
  friend bool operator==(const MacAddress&, const MacAddress&) = default;
  friend bool operator<(const MacAddress& a, const MacAddress& b) { return a.bytes < b.bytes; }
};

constexpr Ipv4 kNoAddress{0};
constexpr Ipv4 kLimitedBroadcast{0xFFFFFFFFU};

/// Reads dotted decimal: exactly four numbers of 1 to 3 digits, each 0 to 255, nothing before or after.
std::optional<Ipv4> ParseIpv4(std::string_view text);

std::string ToText(Ipv4 address);       ///< "192.168.77.50"
std::string ToText(const MacAddress&);  ///< "02:11:22:AA:BB:CC"

bool InSameSubnet(Ipv4 a, Ipv4 b, Ipv4 mask);
bool IsLoopback(Ipv4 address);   ///< 127.0.0.0/8
bool IsMulticast(Ipv4 address);  ///< 224.0.0.0 and everything above it, the limited broadcast included

/// True for 1 to 32 leading one bits followed by zeros only.
bool IsSubnetMask(Ipv4 mask);

/// True when a device may have `address` in a network with `mask`: a unicast address that is neither the
/// network's own address nor its broadcast address. Loopback addresses count as unicast here.
bool IsHostAddress(Ipv4 address, Ipv4 mask);

}  // namespace zyn::gige

#endif
