#include "gige/Discovery.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <map>
#include <tuple>

#include "gige/UdpSocket.h"

namespace zyn::gige {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::uint16_t kDiscoveryRequest = 0xFFFF;
// Bounds what a hostile network can make this computer store. Request identifiers of the control questions
// count from 1 and stay below kDiscoveryRequest.
constexpr std::size_t kMostDevices = 4096;
constexpr int kMostDatagramsPerTurn =
    64;  // so that a flood on one adapter cannot hold the loop past its deadline
constexpr int kControlQuestions = 3;
constexpr milliseconds kControlPeriod{40};
// A broadcast may be lost, and a camera that has just left its boot does not hear the first one.
constexpr std::array<milliseconds, 3> kSendTimes{milliseconds{0}, milliseconds{60}, milliseconds{120}};

struct OpenAdapter {
  const Adapter* adapter;
  UdpSocket socket;
};

struct Candidate {
  DiscoveredDevice device;
  std::size_t openAdapter = 0;
  int questions = 0;
  Clock::time_point nextQuestion;
};

// Cameras are told apart by their MAC address and serial number. Virtual ones often have no MAC address; then
// the IP address stands for it.
using DeviceKey = std::tuple<MacAddress, Ipv4, std::string>;

DeviceKey KeyOf(const DeviceDescription& device) {
  return {device.mac, device.mac.IsZero() ? device.ip : kNoAddress, device.serial};
}

class DiscoveryRun {
 public:
  DiscoveryRun(std::span<const Adapter> adapters, const DiscoveryOptions& options)
      : start_(Clock::now()), deadline_(start_ + options.duration), askControl_(options.askControl) {
    for (const Adapter& adapter : adapters) {
      if (adapter.addresses.empty()) continue;
      if (auto socket = UdpSocket::OnAdapter(adapter)) open_.push_back({&adapter, std::move(*socket)});
    }
  }

  std::vector<DiscoveredDevice> Run() {
    while (!open_.empty() && Clock::now() < deadline_) {
      SendDue();
      Wait();
      for (std::size_t i = 0; i < open_.size(); ++i) ReceiveOn(i);
    }
    std::vector<DiscoveredDevice> devices;
    devices.reserve(candidates_.size());
    for (Candidate& candidate : candidates_) devices.push_back(std::move(candidate.device));
    return devices;
  }

 private:
  void SendDue() {
    const Clock::time_point now = Clock::now();
    while (sent_ < kSendTimes.size() && start_ + kSendTimes[sent_] <= now) {
      for (OpenAdapter& open : open_) Broadcast(open);
      ++sent_;
    }
    if (!askControl_) return;
    for (std::size_t i = 0; i < candidates_.size(); ++i) {
      if (IsAsking(candidates_[i]) && candidates_[i].nextQuestion <= now) Ask(i, now);
    }
  }

  // Limited broadcasts reach cameras of any subnet, directed ones some that ignore the former.
  static void Broadcast(OpenAdapter& open) {
    const Bytes request = EncodeDiscovery(kDiscoveryRequest, true);
    for (const AdapterAddress& address : open.adapter->addresses) {
      open.socket.SendFrom(address.ip, kLimitedBroadcast, kGvcpPort, request);
      if (address.broadcast == kLimitedBroadcast || address.broadcast == address.ip) continue;
      open.socket.SendFrom(address.ip, address.broadcast, kGvcpPort, request);
    }
  }

  static bool IsAsking(const Candidate& candidate) {
    return candidate.device.control == ControlState::unknown && candidate.questions < kControlQuestions;
  }

  void Ask(std::size_t index, Clock::time_point now) {
    Candidate& candidate = candidates_[index];
    ++candidate.questions;
    candidate.nextQuestion = now + kControlPeriod;
    const auto request = static_cast<std::uint16_t>(index + 1);
    open_[candidate.openAdapter].socket.SendFrom(candidate.device.adapter.ip, candidate.device.description.ip,
                                                 kGvcpPort,
                                                 EncodeReadRegister(request, bootstrap::kControlPrivilege));
  }

  void Wait() {
    Clock::time_point until = deadline_;
    if (sent_ < kSendTimes.size()) until = std::min(until, start_ + kSendTimes[sent_]);
    for (const Candidate& candidate : candidates_) {
      if (askControl_ && IsAsking(candidate)) until = std::min(until, candidate.nextQuestion);
    }
    std::vector<pollfd> descriptors;
    descriptors.reserve(open_.size());
    for (const OpenAdapter& open : open_) descriptors.push_back({open.socket.Descriptor(), POLLIN, 0});
    const auto wait = std::chrono::ceil<milliseconds>(until - Clock::now()).count();
    poll(descriptors.data(), static_cast<nfds_t>(descriptors.size()),
         static_cast<int>(std::max<long long>(wait, 0)));
  }

  void ReceiveOn(std::size_t openIndex) {
    OpenAdapter& open = open_[openIndex];
    std::array<std::uint8_t, kLargestDatagram> buffer{};
    for (int i = 0; i < kMostDatagramsPerTurn; ++i) {
      const auto received = open.socket.Receive(buffer);
      if (!received) return;
      const bool isForeign = received->adapterIndex != 0 && received->adapterIndex != open.adapter->index;
      if (received->refused || isForeign) continue;
      const auto ack = ParseAck(ByteView(buffer).first(received->bytes));
      if (!ack) continue;
      if (ack->requestId == kDiscoveryRequest) {
        HandleDiscovery(openIndex, *ack);
      } else {
        HandleControl(openIndex, *ack, received->sender);
      }
    }
  }

  void HandleDiscovery(std::size_t openIndex, const Ack& ack) {
    if (ack.ackId != command::kDiscovery + 1 || ack.status != status::kSuccess) return;
    auto description = ParseDiscovery(ack.payload);
    if (!description) return;
    const auto [place, isNew] = byKey_.try_emplace(KeyOf(*description), candidates_.size());
    if (isNew && candidates_.size() >= kMostDevices) {
      byKey_.erase(place);
      return;
    }
    if (isNew) {
      candidates_.push_back(MakeCandidate(openIndex, std::move(*description)));
    } else {
      Refresh(candidates_[place->second], openIndex, std::move(*description));
    }
  }

  Candidate MakeCandidate(std::size_t openIndex, DeviceDescription description) const {
    const Adapter& adapter = *open_[openIndex].adapter;
    Candidate candidate;
    candidate.openAdapter = openIndex;
    candidate.nextQuestion = Clock::now();
    candidate.device.adapterName = adapter.name;
    candidate.device.adapterIndex = adapter.index;
    candidate.device.adapter = adapter.ClosestAddress(description.ip);
    if (adapter.AddressFor(description.ip) == nullptr) candidate.device.control = ControlState::outOfReach;
    candidate.device.description = std::move(description);
    return candidate;
  }

  // A repeated answer changes nothing, unless the camera has another address by now or is better reached this
  // way.
  void Refresh(Candidate& known, std::size_t openIndex, DeviceDescription description) const {
    const bool isOutOfReach = known.device.control == ControlState::outOfReach;
    const bool isSameWay = known.openAdapter == openIndex;
    if (isSameWay && known.device.description == description) return;
    if (!isSameWay && !isOutOfReach) return;
    Candidate fresh = MakeCandidate(openIndex, std::move(description));
    if (!isSameWay && fresh.device.control == ControlState::outOfReach) return;
    known = std::move(fresh);
  }

  void HandleControl(std::size_t openIndex, const Ack& ack, Ipv4 sender) {
    const std::size_t index = static_cast<std::size_t>(ack.requestId) - 1;  // 0 becomes larger than any index
    if (ack.ackId != command::kReadRegister + 1 || index >= candidates_.size()) return;
    Candidate& candidate = candidates_[index];
    if (candidate.openAdapter != openIndex || candidate.device.description.ip != sender) return;
    if (candidate.device.control != ControlState::unknown) return;
    if (ack.status == status::kAccessDenied) {  // what an exclusive owner's camera says to everybody else
      candidate.device.control = ControlState::controlled;
      return;
    }
    const auto value = ParseReadRegister(ack.payload);
    if (ack.status != status::kSuccess || !value) return;
    const bool isControlled = (*value & (kExclusiveAccess | kControlAccess)) != 0;
    candidate.device.control = isControlled ? ControlState::controlled : ControlState::free;
  }

  const Clock::time_point start_;
  const Clock::time_point deadline_;
  const bool askControl_;
  std::vector<OpenAdapter> open_;
  std::size_t sent_ = 0;
  std::vector<Candidate> candidates_;
  std::map<DeviceKey, std::size_t> byKey_;
};

}  // namespace

std::vector<DiscoveredDevice> Discover(std::span<const Adapter> adapters, const DiscoveryOptions& options) {
  return DiscoveryRun(adapters, options).Run();
}

std::vector<DiscoveredDevice> Discover(const DiscoveryOptions& options) {
  const std::vector<Adapter> adapters = ListAdapters();
  return Discover(adapters, options);
}

}  // namespace zyn::gige
