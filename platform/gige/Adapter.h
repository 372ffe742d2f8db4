/// The network adapters of this computer that can reach GigE Vision cameras.
#ifndef ZYN_GIGE_ADAPTER_H
#define ZYN_GIGE_ADAPTER_H

#include <string>
#include <vector>

#include "gige/Address.h"

namespace zyn::gige {

/// One IPv4 address of an adapter.
struct AdapterAddress {
  Ipv4 ip;
  Ipv4 mask;
  Ipv4 broadcast;  ///< the subnet-directed broadcast address
  friend bool operator==(const AdapterAddress&, const AdapterAddress&) = default;
};

/// A network adapter that is up and has at least one IPv4 address. The loopback adapter is one of them,
/// point-to-point links are not: they cannot broadcast.
struct Adapter {
  std::string name;                       ///< as the operating system calls it, "eth0"
  unsigned index = 0;                     ///< the operating system's number, never 0
  MacAddress mac;                         ///< zero when it has none (loopback) or the system does not tell
  std::vector<AdapterAddress> addresses;  ///< in the system's order, never empty

  /// The address whose subnet contains `device`; null when there is none.
  const AdapterAddress* AddressFor(Ipv4 device) const;
  /// The same, but the adapter's first address when there is none.
  const AdapterAddress& ClosestAddress(Ipv4 device) const;

  friend bool operator==(const Adapter&, const Adapter&) = default;
};

/// Asks the operating system. In its order; empty when it refuses. Thread-safe.
std::vector<Adapter> ListAdapters();

}  // namespace zyn::gige

#endif
