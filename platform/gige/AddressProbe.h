/// Asks whether somebody on an adapter's wire has an address.
#ifndef ZYN_GIGE_ADDRESS_PROBE_H
#define ZYN_GIGE_ADDRESS_PROBE_H

#include <chrono>
#include <istream>

#include "gige/Adapter.h"

namespace zyn::gige {

/// Sends one datagram to `address`, which lies in the subnet of the adapter's address `from`, and looks for a
/// sign of life: an answer, a refusal, or on Linux an entry in the system's table of neighbours, which every host
/// that answers ARP gets. False when there is none within `patience`, or nothing could be sent.
bool IsAddressInUse(const Adapter& adapter, Ipv4 from, Ipv4 address, std::chrono::milliseconds patience);

/// True when the table, as /proc/net/arp writes it, has a hardware address for `address` on the adapter.
bool IsNeighbour(std::istream& table, const std::string& adapterName, Ipv4 address);

}  // namespace zyn::gige

#endif
