#include "gigedevice/AdapterConfiguration.h"

#if defined(__linux__)

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace zyn::gigedevice {
namespace {

// One connection to the system's network configuration.
class Netlink {
 public:
  Netlink() : descriptor_(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)) {}
  ~Netlink() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  Netlink(const Netlink&) = delete;
  Netlink& operator=(const Netlink&) = delete;

  bool Add(unsigned adapterIndex, Network network) {
    return Change(RTM_NEWADDR, NLM_F_CREATE | NLM_F_EXCL, adapterIndex, network);
  }
  bool Remove(unsigned adapterIndex, Network network) {
    return Change(RTM_DELADDR, 0, adapterIndex, network);
  }

 private:
  struct Request {
    nlmsghdr header;
    ifaddrmsg address;
    std::array<std::uint8_t, 3 * RTA_SPACE(sizeof(std::uint32_t))> attributes;
  };

  static void Append(Request& request, std::uint16_t type, gige::Ipv4 value) {
    rtattr attribute{};
    attribute.rta_type = type;
    attribute.rta_len = RTA_LENGTH(sizeof(std::uint32_t));
    const std::uint32_t number = htonl(value.value);
    std::uint8_t* const place = reinterpret_cast<std::uint8_t*>(&request) + request.header.nlmsg_len;
    std::memcpy(place, &attribute, sizeof attribute);
    std::memcpy(place + RTA_LENGTH(0), &number, sizeof number);
    request.header.nlmsg_len += RTA_SPACE(sizeof number);
  }

  bool Change(std::uint16_t type, int flags, unsigned adapterIndex, Network network) const {
    Request request{};
    request.header.nlmsg_len = NLMSG_LENGTH(sizeof request.address);
    request.header.nlmsg_type = type;
    request.header.nlmsg_flags = static_cast<std::uint16_t>(NLM_F_REQUEST | NLM_F_ACK | flags);
    request.address.ifa_family = AF_INET;
    request.address.ifa_prefixlen = static_cast<std::uint8_t>(std::popcount(network.mask.value));
    request.address.ifa_index = adapterIndex;
    Append(request, IFA_LOCAL, network.ip);
    Append(request, IFA_ADDRESS, network.ip);
    Append(request, IFA_BROADCAST, gige::Ipv4{network.ip.value | ~network.mask.value});
    const auto length = static_cast<ssize_t>(request.header.nlmsg_len);
    return send(descriptor_, &request, request.header.nlmsg_len, 0) == length && IsDone();
  }

  bool IsDone() const {
    struct {
      nlmsghdr header;
      nlmsgerr result;
      std::array<char, 256> rest;  // a refusal repeats the request and may explain itself
    } answer{};
    const ssize_t bytes = recv(descriptor_, &answer, sizeof answer, 0);
    return bytes >= static_cast<ssize_t>(NLMSG_LENGTH(sizeof answer.result)) &&
           answer.header.nlmsg_type == NLMSG_ERROR && answer.result.error == 0;
  }

  const int descriptor_;
};

}  // namespace

// The old address goes first: as long as it is there, another one of its subnet is only its companion and would go
// with it.
bool ReplaceAddress(unsigned adapterIndex, Network old, Network replacement) {
  Netlink netlink;
  if (!netlink.Remove(adapterIndex, old)) return false;
  if (netlink.Add(adapterIndex, replacement)) return true;
  netlink.Add(adapterIndex, old);
  return false;
}

}  // namespace zyn::gigedevice

#else

namespace zyn::gigedevice {

bool ReplaceAddress(unsigned /*adapterIndex*/, Network /*old*/, Network /*replacement*/) {
  return false;
}

}  // namespace zyn::gigedevice

#endif
