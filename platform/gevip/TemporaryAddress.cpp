#include "TemporaryAddress.h"

#include <algorithm>
#include <chrono>

#include "gige/AddressProbe.h"

namespace zyn::gevip {
namespace {

using gige::Adapter;
using gige::AdapterAddress;
using gige::Ipv4;

constexpr int kMostTries = 4;  // per network
constexpr std::chrono::milliseconds kPatience{250};

// On the loopback adapter every address answers, so only the cameras' ones count as used.
bool IsUsed(const Adapter& adapter, const AdapterAddress& own, Ipv4 ip) {
  return !gige::IsLoopback(ip) && gige::IsAddressInUse(adapter, own.ip, ip, kPatience);
}

template <class IsKnown>
std::optional<Ipv4> FreeAddress(const Adapter& adapter, const AdapterAddress& own, IsKnown isKnown) {
  const std::uint32_t network = own.ip.value & own.mask.value;
  int tries = 0;
  for (std::uint32_t ip = own.broadcast.value - 1; ip > network && tries < kMostTries; --ip) {
    if (isKnown(Ipv4{ip})) continue;
    if (!IsUsed(adapter, own, Ipv4{ip})) return Ipv4{ip};
    ++tries;
  }
  return std::nullopt;
}

}  // namespace

std::optional<gige::IpSettings> FindTemporaryAddress(const Adapter& adapter,
                                                     const gige::DiscoveredDevice& camera,
                                                     const std::vector<gige::DiscoveredDevice>& all,
                                                     const gige::IpSettings& wanted) {
  const auto isKnown = [&](Ipv4 ip) {
    const bool isOwn = std::any_of(adapter.addresses.begin(), adapter.addresses.end(),
                                   [&](const AdapterAddress& own) { return own.ip == ip; });
    const bool isCameras = std::any_of(all.begin(), all.end(), [&](const gige::DiscoveredDevice& other) {
      return other.description.ip == ip || other.description.gateway == ip;
    });
    return isOwn || isCameras || ip == wanted.gateway || ip == camera.description.gateway;
  };
  for (const AdapterAddress& own : adapter.addresses) {
    if (!gige::IsSubnetMask(own.mask)) continue;
    const auto free = FreeAddress(adapter, own, isKnown);
    if (free) return gige::IpSettings{*free, own.mask, gige::kNoAddress};
  }
  return std::nullopt;
}

}  // namespace zyn::gevip
