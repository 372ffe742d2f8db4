#include "gige/AddressProbe.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "gige/UdpSocket.h"

namespace zyn::gige {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::uint16_t kProbeRequest = 0x1003;
constexpr milliseconds kLook{20};
constexpr long kHasHardwareAddress = 2;  // of the table's flags
constexpr int kHexadecimal = 16;

}  // namespace

bool IsNeighbour(std::istream& table, const std::string& adapterName, Ipv4 address) {
  const std::string wanted = ToText(address);
  std::string line;
  while (std::getline(table, line)) {
    std::istringstream columns(line);
    std::string ip, type, flags, hardware, mask, device;
    if (!(columns >> ip >> type >> flags >> hardware >> mask >> device)) continue;
    if (ip != wanted || device != adapterName) continue;
    return (std::strtol(flags.c_str(), nullptr, kHexadecimal) & kHasHardwareAddress) != 0;
  }
  return false;
}

bool IsAddressInUse(const Adapter& adapter, Ipv4 from, Ipv4 address, milliseconds patience) {
  auto socket = UdpSocket::ConnectedTo(from, address, kGvcpPort);
  if (!socket || !socket->Send(EncodeDiscovery(kProbeRequest, false))) return false;
  const Clock::time_point until = Clock::now() + patience;
  while (Clock::now() < until) {
    pollfd descriptor{socket->Descriptor(), POLLIN, 0};
    const auto left = std::chrono::ceil<milliseconds>(until - Clock::now());
    std::array<std::uint8_t, kLargestDatagram> buffer{};
    const bool isReady = poll(&descriptor, 1, static_cast<int>(std::min(left, kLook).count())) > 0;
    if (isReady && socket->Receive(buffer)) return true;
    std::ifstream table("/proc/net/arp");
    if (IsNeighbour(table, adapter.name, address)) return true;
  }
  return false;
}

}  // namespace zyn::gige
