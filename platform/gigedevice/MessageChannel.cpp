#include "gigedevice/MessageChannel.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

#include "gige/GvcpWire.h"
#include "gigedevice/EventWire.h"

namespace zyn::gigedevice {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// So soon a closed channel is noticed while an acknowledge is waited for.
constexpr milliseconds kLookUp{20};

}  // namespace

MessageChannel::MessageChannel(cameras::CameraModel& camera) : camera_(camera) {
  thread_ = std::thread([this] { Run(); });
  camera_.SetEventListener(this);
}

MessageChannel::~MessageChannel() {
  camera_.SetEventListener(nullptr);
  SetTarget({});
  {
    const MutexLock lock(mutex_);
    isEnding_ = true;
    changed_.notify_all();
  }
  thread_.join();
}

bool MessageChannel::Bind(gige::Ipv4 ip) {
  std::optional<DeviceSocket> bound = DeviceSocket::BoundTo(ip, 0, false);
  if (!bound) return false;
  const MutexLock lock(mutex_);
  socket_ = std::make_shared<const DeviceSocket>(std::move(*bound));
  return true;
}

std::uint16_t MessageChannel::SourcePort() {
  const MutexLock lock(mutex_);
  return socket_ ? socket_->Port() : std::uint16_t{0};
}

void MessageChannel::SetTarget(const MessageTarget& target) {
  const MutexLock lock(mutex_);
  target_ = target;
  if (!target_.IsOpen()) waiting_.clear();
}

void MessageChannel::OnCameraEvent(const cameras::CameraEvent& event) {
  const MutexLock lock(mutex_);
  if (!target_.IsOpen() || waiting_.size() >= kMostWaiting) return;
  waiting_.push_back(event);
  changed_.notify_all();
}

void MessageChannel::Run() {
  cameras::CameraEvent event;
  while (Await(event)) Deliver(event);
}

bool MessageChannel::Await(cameras::CameraEvent& event) {
  MutexLock lock(mutex_);
  while (!isEnding_ && waiting_.empty()) lock.Wait(changed_);
  if (isEnding_) return false;
  event = waiting_.front();
  waiting_.pop_front();
  return true;
}

MessageChannel::Socket MessageChannel::OpenSocket(MessageTarget& target) {
  const MutexLock lock(mutex_);
  target = target_;
  return target_.IsOpen() ? socket_ : nullptr;
}

void MessageChannel::Deliver(const cameras::CameraEvent& event) {
  lastRequest_ = lastRequest_ == 0xFFFF ? std::uint16_t{1} : static_cast<std::uint16_t>(lastRequest_ + 1);
  MessageTarget target;
  for (std::uint32_t attempt = 0; attempt <= target.retries; ++attempt) {
    const Socket socket = OpenSocket(target);
    if (!socket) return;
    const bool asks = target.timeout.count() > 0;
    const auto ticks = static_cast<std::uint64_t>(event.timestampNs - target.timestampOriginNs);
    const gige::Bytes message = EncodeEvent(event, ticks, lastRequest_, asks);
    socket->SendTo(target.receiver, message);
    const std::uint16_t commandId = event.frameId != 0 ? kEventDataCommand : kEventCommand;
    if (!asks || AwaitAcknowledge(*socket, target, commandId + 1)) return;
  }
}

bool MessageChannel::AwaitAcknowledge(const DeviceSocket& socket, const MessageTarget& target,
                                      std::uint16_t acknowledgeId) {
  const auto deadline = steady_clock::now() + target.timeout;
  MessageTarget present = target;
  for (auto now = steady_clock::now(); now < deadline && present.IsOpen(); now = steady_clock::now()) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - now);
    pollfd wait{socket.Descriptor(), POLLIN, 0};
    poll(&wait, 1, static_cast<int>(std::min(left, kLookUp).count()));
    std::array<std::uint8_t, gige::kLargestDatagram> buffer{};
    while (const auto received = socket.Receive(buffer)) {
      const auto ack = gige::ParseAck(std::span(buffer).first(received->bytes));
      if (received->sender == target.receiver && ack && ack->ackId == acknowledgeId &&
          ack->requestId == lastRequest_)
        return true;
    }
    OpenSocket(present);
  }
  return false;
}

}  // namespace zyn::gigedevice
