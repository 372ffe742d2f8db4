#include "gige/Discovery.h"

#include <poll.h>

#include <algorithm>
#include <array>

#include "gige/DeviceTable.h"
#include "gige/UdpSocket.h"

namespace zyn::gige {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

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

// When a camera is asked next whether it is controlled, and how often it was.
struct Asking {
  int questions = 0;
  Clock::time_point next;
  int changes = 0;  // of the device, when it was asked
};

// Adapters without an address, or without a socket, are left out.
std::vector<OpenAdapter> Open(std::span<const Adapter> adapters) {
  std::vector<OpenAdapter> open;
  for (const Adapter& adapter : adapters) {
    if (adapter.addresses.empty()) continue;
    if (auto socket = UdpSocket::OnAdapter(adapter)) open.push_back({&adapter, std::move(*socket)});
  }
  return open;
}

std::vector<const Adapter*> AdaptersOf(const std::vector<OpenAdapter>& open) {
  std::vector<const Adapter*> adapters;
  adapters.reserve(open.size());
  for (const OpenAdapter& one : open) adapters.push_back(one.adapter);
  return adapters;
}

class DiscoveryRun {
 public:
  DiscoveryRun(std::span<const Adapter> adapters, const DiscoveryOptions& options)
      : start_(Clock::now()),
        deadline_(start_ + options.duration),
        askControl_(options.askControl),
        open_(Open(adapters)),
        table_(AdaptersOf(open_)) {}

  std::vector<DiscoveredDevice> Run() {
    while (!open_.empty() && Clock::now() < deadline_) {
      SendDue();
      Wait();
      for (std::size_t i = 0; i < open_.size(); ++i) ReceiveOn(i);
    }
    return table_.Release();
  }

 private:
  void SendDue() {
    const Clock::time_point now = Clock::now();
    while (sent_ < kSendTimes.size() && start_ + kSendTimes[sent_] <= now) {
      for (OpenAdapter& open : open_) Broadcast(open);
      ++sent_;
    }
    if (!askControl_) return;
    asking_.resize(table_.Devices().size());
    for (std::size_t i = 0; i < asking_.size(); ++i) {
      if (asking_[i].changes != table_.ChangesOf(i)) asking_[i] = {0, now, table_.ChangesOf(i)};
      if (IsAsking(i) && asking_[i].next <= now) Ask(i, now);
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

  bool IsAsking(std::size_t index) const {
    return table_.Devices()[index].control == ControlState::unknown &&
           asking_[index].questions < kControlQuestions;
  }

  void Ask(std::size_t index, Clock::time_point now) {
    ++asking_[index].questions;
    asking_[index].next = now + kControlPeriod;
    const DiscoveredDevice& device = table_.Devices()[index];
    open_[table_.AdapterPlaceOf(index)].socket.SendFrom(
        device.adapter.ip, device.description.ip, kGvcpPort,
        EncodeReadRegister(DeviceTable::ControlRequestOf(index), bootstrap::kControlPrivilege));
  }

  void Wait() {
    Clock::time_point until = deadline_;
    if (sent_ < kSendTimes.size()) until = std::min(until, start_ + kSendTimes[sent_]);
    for (std::size_t i = 0; i < asking_.size(); ++i) {
      if (IsAsking(i)) until = std::min(until, asking_[i].next);
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
      table_.Take(openIndex, ByteView(buffer).first(received->bytes), received->sender);
    }
  }

  const Clock::time_point start_;
  const Clock::time_point deadline_;
  const bool askControl_;
  std::vector<OpenAdapter> open_;
  DeviceTable table_;
  std::vector<Asking> asking_;  // for each device that was there when questions were last sent
  std::size_t sent_ = 0;
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
