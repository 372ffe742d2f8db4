#include "gigedevice/GigeDevice.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "gige/Adapter.h"

namespace zyn::gigedevice {
namespace {

constexpr std::int64_t kNsPerMs = 1'000'000;
constexpr std::int64_t kLongestWaitMs = 60'000;

std::int64_t SteadyNs() {
  return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

int WaitMs(std::int64_t untilNs) {
  if (untilNs == cameras::kForever) return -1;
  return static_cast<int>(std::clamp<std::int64_t>((untilNs - SteadyNs()) / kNsPerMs + 1, 0, kLongestWaitMs));
}

}  // namespace

std::optional<GigeDevice::Endpoint> GigeDevice::OpenEndpoint(gige::Ipv4 ip) {
  Endpoint endpoint;
  const std::vector<gige::Adapter> adapters = gige::ListAdapters();
  const gige::AdapterAddress* network = nullptr;
  for (const gige::Adapter& adapter : adapters) {
    const gige::AdapterAddress* const found = adapter.AddressFor(ip);
    if (found == nullptr) continue;
    network = found;
    endpoint.adapterIndex = adapter.index;
    break;
  }
  if (network == nullptr) return std::nullopt;
  endpoint.network = {ip, network->mask};
  std::optional<DeviceSocket> unicast = DeviceSocket::BoundTo(ip, gige::kGvcpPort, false);
  if (!unicast) return std::nullopt;
  endpoint.unicast = std::move(*unicast);
  const gige::Ipv4 directed{network->ip.value | ~network->mask.value};
  for (const gige::Ipv4 address : {gige::kLimitedBroadcast, directed}) {
    std::optional<DeviceSocket> broadcast = DeviceSocket::BoundTo(address, gige::kGvcpPort, true);
    if (broadcast) endpoint.broadcasts.push_back(std::move(*broadcast));
  }
  if (endpoint.broadcasts.empty()) return std::nullopt;
  return endpoint;
}

GigeDevice::GigeDevice(cameras::CameraModel& camera, cameras::Clock& clock, const DeviceSettings& settings)
    : configuresAdapter_(settings.configuresAdapter), stream_(camera, settings), messages_(camera) {
  std::optional<Endpoint> endpoint = OpenEndpoint(settings.ip);
  if (!endpoint || !stream_.Bind(settings.ip) || !messages_.Bind(settings.ip))
    throw DeviceError("no device can answer on " + gige::ToText(settings.ip) +
                      ": it is no address of this computer, or another device is there");
  endpoint_ = std::move(*endpoint);
  DeviceActions& actions = *this;
  commands_ = std::make_unique<CommandHandler>(camera, clock, actions, settings, endpoint_.network.mask);
  TellSourcePorts();
  if (pipe(wake_) != 0) throw DeviceError("the system has no file descriptor left");
  for (const int end : wake_) fcntl(end, F_SETFD, FD_CLOEXEC);
  thread_ = std::thread([this] { Run(); });
}

GigeDevice::~GigeDevice() {
  isEnding_ = true;
  close(wake_[1]);
  thread_.join();
  close(wake_[0]);
}

bool GigeDevice::ChangeAddress(gige::Ipv4 ip, gige::Ipv4 mask) {
  const unsigned adapter = endpoint_.adapterIndex;
  const Network old = endpoint_.network;
  const Network wanted{ip, mask};
  if (!configuresAdapter_ || wanted == old) return ChangeEndpoint(ip);
  if (!ReplaceAddress(adapter, old, wanted)) return false;
  if (!ChangeEndpoint(ip)) {
    ReplaceAddress(adapter, wanted, old);
    return false;
  }
  endpoint_.network = wanted;
  return true;
}

bool GigeDevice::ChangeEndpoint(gige::Ipv4 ip) {
  // The socket of the present address stands in the way of another one there.
  if (ip == endpoint_.network.ip) return true;
  std::optional<Endpoint> endpoint = OpenEndpoint(ip);
  if (!endpoint || !stream_.Bind(ip) || !messages_.Bind(ip)) return false;
  endpoint_ = std::move(*endpoint);
  TellSourcePorts();
  return true;
}

void GigeDevice::TellSourcePorts() {
  commands_->SetStreamSourcePort(stream_.SourcePort());
  commands_->SetMessageSourcePort(messages_.SourcePort());
}

void GigeDevice::Run() {
  while (!isEnding_) {
    std::array<pollfd, 4> waits{};
    std::size_t count = 0;
    waits[count++] = {wake_[0], POLLIN, 0};
    waits[count++] = {endpoint_.unicast.Descriptor(), POLLIN, 0};
    for (const DeviceSocket& socket : endpoint_.broadcasts) waits[count++] = {socket.Descriptor(), POLLIN, 0};
    poll(waits.data(), count, WaitMs(commands_->CheckHeartbeat(SteadyNs())));
    Serve(endpoint_.unicast, false);
    for (std::size_t i = 0; i < endpoint_.broadcasts.size(); ++i) Serve(endpoint_.broadcasts[i], true);
  }
}

// One datagram at a time: what is executed may exchange the sockets.
void GigeDevice::Serve(const DeviceSocket& socket, bool isBroadcast) {
  std::array<std::uint8_t, gige::kLargestDatagram> buffer{};
  const std::optional<DeviceSocket::Received> received = socket.Receive(buffer);
  if (!received) return;
  if (isBroadcast && received->adapterIndex != 0 && received->adapterIndex != endpoint_.adapterIndex) return;
  const auto answer =
      commands_->Handle(std::span(buffer).first(received->bytes), received->sender, SteadyNs());
  if (!answer) return;
  const Peer receiver{answer->isBroadcast ? gige::kLimitedBroadcast : received->sender.ip,
                      received->sender.port};
  endpoint_.unicast.SendTo(receiver, answer->datagram);
}

}  // namespace zyn::gigedevice
