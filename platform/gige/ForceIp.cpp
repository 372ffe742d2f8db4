#include "gige/ForceIp.h"

#include <poll.h>

#include <algorithm>
#include <array>

#include "gige/Reply.h"
#include "gige/UdpSocket.h"

namespace zyn::gige {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kSearchPeriod{100};
constexpr int kSearchesPerForce = 5;  // the address is sent again when five searches did not find it in force
constexpr int kMostForces = 3;
constexpr int kRoundsAfterRefusal = 2;

class ForceIpRun {
 public:
  ForceIpRun(const Adapter& adapter, UdpSocket socket, const MacAddress& mac, const IpSettings& settings)
      : adapter_(adapter), socket_(std::move(socket)), mac_(mac), settings_(settings) {}

  ForceIpResult Run(milliseconds patience) {
    const Clock::time_point deadline = Clock::now() + patience;
    for (int turn = 0; Clock::now() < deadline; ++turn) {
      if (turn % kSearchesPerForce == 0 && turn / kSearchesPerForce < kMostForces) {
        const bool isSent =
            Broadcast(EncodeForceIp(kForceRequest, mac_, settings_.ip, settings_.mask, settings_.gateway));
        if (!isSent && turn == 0) return ForceIpResult::systemError;
      }
      Broadcast(EncodeDiscovery(kForceSearchRequest, true));
      Listen(std::min(deadline, Clock::now() + kSearchPeriod));
      if (isConfirmed_) return ForceIpResult::confirmed;
      // The error may be that of another camera, which does not know the command: an acknowledge does not tell
      // who is meant. The one that is meant has the address by the next search.
      if (roundsRefused_ > 0 && ++roundsRefused_ > kRoundsAfterRefusal) return ForceIpResult::refused;
    }
    return roundsRefused_ > 0 ? ForceIpResult::refused : ForceIpResult::noAnswer;
  }

 private:
  // False when nothing left.
  bool Broadcast(const Bytes& datagram) {
    bool isSent = false;
    for (const AdapterAddress& address : adapter_.addresses) {
      isSent |= socket_.SendFrom(address.ip, kLimitedBroadcast, kGvcpPort, datagram);
    }
    return isSent;
  }

  void Listen(Clock::time_point until) {
    while (!isConfirmed_) {
      const auto wait = std::chrono::ceil<milliseconds>(until - Clock::now()).count();
      if (wait <= 0) return;
      pollfd descriptor{socket_.Descriptor(), POLLIN, 0};
      if (poll(&descriptor, 1, static_cast<int>(wait)) > 0) ReceiveOne();
    }
  }

  void ReceiveOne() {
    std::array<std::uint8_t, kLargestDatagram> buffer{};
    const auto received = socket_.Receive(buffer);
    if (!received || received->refused) return;
    switch (InterpretForceIpReply(ByteView(buffer).first(received->bytes), mac_, settings_)) {
      case ForceIpReply::none:
        break;
      case ForceIpReply::refused:
        roundsRefused_ = std::max(roundsRefused_, 1);
        break;
      case ForceIpReply::confirmed:
        isConfirmed_ = true;
        break;
    }
  }

  const Adapter& adapter_;
  UdpSocket socket_;
  const MacAddress mac_;
  const IpSettings settings_;
  bool isConfirmed_ = false;
  int roundsRefused_ = 0;  // the rounds since the first one
};

}  // namespace

ForceIpResult ForceIp(const Adapter& adapter, const MacAddress& mac, const IpSettings& settings,
                      std::chrono::milliseconds patience) {
  auto socket = UdpSocket::OnAdapter(adapter);
  if (!socket || adapter.addresses.empty()) return ForceIpResult::systemError;
  return ForceIpRun(adapter, std::move(*socket), mac, settings).Run(patience);
}

}  // namespace zyn::gige
