#include "gigedevice/StreamSender.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "cameras/Clock.h"

namespace zyn::gigedevice {
namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

// The system sleeps no more precisely than this; packets between two sleeps go out together.
constexpr std::uint32_t kShortestPauseNs = 200'000;

std::uint32_t GroupSize(std::uint32_t gapNs) {
  if (gapNs == 0) return PacketSender::kGroup;
  return std::clamp(kShortestPauseNs / gapNs, 1U, PacketSender::kGroup);
}

}  // namespace

StreamSender::StreamSender(cameras::CameraModel& camera, const DeviceSettings& settings)
    : camera_(camera), delayNs_(nanoseconds(settings.delay).count()), packets_(settings) {
  thread_ = std::thread([this] { Run(); });
}

StreamSender::~StreamSender() {
  SetTarget({});
  {
    const MutexLock lock(mutex_);
    isEnding_ = true;
    changed_.notify_all();
  }
  camera_.CancelWait();
  thread_.join();
  camera_.ResumeWaiting();
}

void StreamSender::SetTarget(const StreamTarget& target) {
  const bool wasOpen = isOpen_;
  if (!wasOpen && target.IsOpen()) camera_.ResumeWaiting();
  {
    const MutexLock lock(mutex_);
    target_ = target;
    if (!wasOpen && target.IsOpen()) ++openings_;
    isOpen_ = target.IsOpen();
    changed_.notify_all();
  }
  if (wasOpen && !target.IsOpen()) camera_.CancelWait();
}

bool StreamSender::AwaitOpen(StreamTarget& target) {
  MutexLock lock(mutex_);
  while (!isEnding_ && !isOpen_) lock.Wait(changed_);
  target = target_;
  if (channel_ != openings_) {
    channel_ = openings_;
    blocksBefore_ = 0;
    lastFrame_ = 0;
    ring_.Clear();
  }
  return !isEnding_;
}

void StreamSender::Run() {
  StreamTarget target;
  while (AwaitOpen(target)) {
    if (camera_.WaitForFrame(cameras::kForever) != cameras::FrameWait::ready) continue;
    // The settings may have changed while there was no frame.
    if (isOpen_ && AwaitOpen(target) && target.IsOpen()) SendFrame(target);
  }
}

std::uint64_t StreamSender::NextBlock(std::uint64_t frameId) {
  if (frameId <= lastFrame_) blocksBefore_ += lastFrame_;
  lastFrame_ = frameId;
  return blocksBefore_ + frameId;
}

bool StreamSender::Fill(Block& block, const StreamTarget& target) {
  block.target = target;
  block.data.resize(std::max(block.data.size(), camera_.PayloadSize()));
  if (camera_.TakeFrame(block.data, block.frame) != cameras::FrameResult::written || !block.frame.fits)
    return false;
  const std::size_t perPacket = block.DataBytes();
  block.payloadPackets = static_cast<std::uint32_t>((block.frame.intendedSize + perPacket - 1) / perPacket);
  block.id = WireBlockId(NextBlock(block.frame.id), target.hasExtendedIds);
  return true;
}

void StreamSender::SendFrame(const StreamTarget& target) {
  std::unique_ptr<Block> block = ring_.TakeSpare();
  if (!Fill(*block, target)) return;
  if (delayNs_ > 0 && !Pause(delayNs_)) return;
  SendBlock(ring_.Keep(std::move(block)));
}

void StreamSender::SendBlock(const Block& block) {
  const std::uint32_t group = GroupSize(block.target.gapNs);
  const auto begin = steady_clock::now();
  for (std::uint32_t first = 0; first <= block.TrailerId() && isOpen_; first += group) {
    const std::uint32_t last = std::min(first + group - 1, block.TrailerId());
    packets_.Send(block, first, last, false);
    const nanoseconds planned(std::int64_t{block.target.gapNs} * (last + 1));
    const auto ahead = begin + planned - steady_clock::now();
    if (block.target.gapNs > 0) Pause(nanoseconds(ahead).count());
  }
}

// Ends early, with false, when the channel is closed.
bool StreamSender::Pause(std::int64_t ns) {
  const auto end = steady_clock::now() + nanoseconds(ns);
  MutexLock lock(mutex_);
  while (isOpen_ && steady_clock::now() < end) lock.WaitUntil(changed_, end);
  return isOpen_;
}

void StreamSender::Resend(const ResendRequest& request) {
  const bool isKept = ring_.With(request.blockId, request.hasExtendedIds, [&](const Block& block) {
    const std::uint32_t last = std::min(request.lastPacket, block.TrailerId());
    for (std::uint32_t first = request.firstPacket; first <= last; first += PacketSender::kGroup) {
      packets_.Send(block, first, std::min(first + PacketSender::kGroup - 1, last), true);
    }
    if (!block.HasPacket(last)) packets_.SendUnavailable(block.target, request);
  });
  if (isKept) return;
  StreamTarget target;
  {
    const MutexLock lock(mutex_);
    target = target_;
  }
  if (target.IsOpen()) packets_.SendUnavailable(target, request);
}

}  // namespace zyn::gigedevice
