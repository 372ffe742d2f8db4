#include "gige/Adapter.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstring>
#include <memory>

#if defined(__linux__)
#include <netpacket/packet.h>
#else
#include <net/if_dl.h>
#endif

namespace zyn::gige {
namespace {

Ipv4 AddressOf(const sockaddr* address) {
  if (address == nullptr) return kNoAddress;
  sockaddr_in in{};
  std::memcpy(&in, address, sizeof in);
  return Ipv4{ntohl(in.sin_addr.s_addr)};
}

// The hardware address that a link-level entry carries; zero when it is of another kind.
MacAddress MacOf(const sockaddr* address) {
  MacAddress mac;
#if defined(__linux__)
  sockaddr_ll link{};
  std::memcpy(&link, address, sizeof link);
  if (link.sll_halen == mac.bytes.size()) std::memcpy(mac.bytes.data(), link.sll_addr, mac.bytes.size());
#else
  sockaddr_dl link{};
  std::memcpy(&link, address, std::min<std::size_t>(sizeof link, address->sa_len));
  if (link.sdl_alen == mac.bytes.size() && link.sdl_nlen + mac.bytes.size() <= sizeof link.sdl_data) {
    std::memcpy(mac.bytes.data(), link.sdl_data + link.sdl_nlen, mac.bytes.size());
  }
#endif
  return mac;
}

#if defined(__linux__)
constexpr int kLinkFamily = AF_PACKET;
#else
constexpr int kLinkFamily = AF_LINK;
#endif

bool IsUsable(const ifaddrs& entry) {
  return entry.ifa_addr != nullptr && (entry.ifa_flags & IFF_UP) != 0 &&
         (entry.ifa_flags & IFF_POINTOPOINT) == 0;
}

// Finds the adapter by name or appends a new one.
Adapter& AdapterNamed(std::vector<Adapter>& adapters, const char* name) {
  const auto found =
      std::find_if(adapters.begin(), adapters.end(), [&](const Adapter& a) { return a.name == name; });
  if (found != adapters.end()) return *found;
  Adapter adapter;
  adapter.name = name;
  adapter.index = if_nametoindex(name);
  return adapters.emplace_back(std::move(adapter));
}

void AddEntry(std::vector<Adapter>& adapters, const ifaddrs& entry) {
  if (entry.ifa_addr->sa_family == kLinkFamily) {
    AdapterNamed(adapters, entry.ifa_name).mac = MacOf(entry.ifa_addr);
    return;
  }
  if (entry.ifa_addr->sa_family != AF_INET) return;
  // A further address of the same adapter may carry a label ("eth0:1"): the part before the colon names it.
  const std::string name(entry.ifa_name, std::strcspn(entry.ifa_name, ":"));
  AdapterAddress address;
  address.ip = AddressOf(entry.ifa_addr);
  address.mask = AddressOf(entry.ifa_netmask);
  address.broadcast = Ipv4{address.ip.value | ~address.mask.value};
  AdapterNamed(adapters, name.c_str()).addresses.push_back(address);
}

}  // namespace

const AdapterAddress* Adapter::AddressFor(Ipv4 device) const {
  const auto found = std::find_if(addresses.begin(), addresses.end(), [&](const AdapterAddress& a) {
    return InSameSubnet(a.ip, device, a.mask);
  });
  return found == addresses.end() ? nullptr : &*found;
}

const AdapterAddress& Adapter::ClosestAddress(Ipv4 device) const {
  const AdapterAddress* address = AddressFor(device);
  return address != nullptr ? *address : addresses.front();
}

std::vector<Adapter> ListAdapters() {
  ifaddrs* head = nullptr;
  if (getifaddrs(&head) != 0) return {};
  const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(head, freeifaddrs);
  std::vector<Adapter> adapters;
  for (const ifaddrs* entry = head; entry != nullptr; entry = entry->ifa_next) {
    if (IsUsable(*entry)) AddEntry(adapters, *entry);
  }
  std::erase_if(adapters, [](const Adapter& a) { return a.addresses.empty() || a.index == 0; });
  return adapters;
}

}  // namespace zyn::gige
