#include "usb3vision/StreamSource.h"

#include <algorithm>

#include "cameras/Clock.h"

namespace zyntest::usb3 {
namespace {

using zyn::MutexLock;
using zyn::cameras::Frame;

std::uint16_t PayloadType(const Frame& frame) {
  if (frame.chunkCount == 0) return kImagePayload;
  return frame.hasImage ? kImageWithChunksPayload : kChunkPayload;
}

Bytes Leader(const Frame& frame) {
  Bytes leader;
  Append(leader, kLeaderMagic, 4);
  Append(leader, 0, 2);
  Append(leader, kLeaderBytes, 2);
  Append(leader, frame.id - 1, 8);  // counts from 0
  Append(leader, 0, 2);
  Append(leader, PayloadType(frame), 2);
  Append(leader, static_cast<std::uint64_t>(frame.timestampNs), 8);
  for (const std::uint32_t value :
       {frame.pixelFormat, frame.width, frame.height, frame.offsetX, frame.offsetY})
    Append(leader, value, 4);
  Append(leader, frame.paddingX, 2);
  Append(leader, 0, 2);
  return leader;
}

Bytes Trailer(const Frame& frame) {
  Bytes trailer;
  Append(trailer, kTrailerMagic, 4);
  Append(trailer, 0, 2);
  Append(trailer, kTrailerBytes, 2);
  Append(trailer, frame.id - 1, 8);
  Append(trailer, 0, 4);  // status, reserved
  Append(trailer, frame.intendedSize, 8);
  Append(trailer, frame.height, 4);
  Append(trailer, frame.chunkLayoutId, 4);
  return trailer;
}

// The camera model tags its chunks as GigE Vision has them: most significant byte first.
void TurnChunkTags(const Frame& frame, Bytes& data) {
  for (std::size_t i = 0; i < frame.chunkCount; ++i) {
    std::uint8_t* const tag = data.data() + frame.chunks[i].offset + frame.chunks[i].length;
    std::reverse(tag, tag + 4);
    std::reverse(tag + 4, tag + 8);
  }
}

}  // namespace

StreamSource::StreamSource(zyn::cameras::CameraModel& camera, std::function<void()> onReady)
    : camera_(camera), onReady_(std::move(onReady)), thread_([this] { Run(); }) {}

StreamSource::~StreamSource() {
  {
    const MutexLock lock(mutex_);
    isEnding_ = true;
    changed_.notify_all();
  }
  camera_.CancelWait();
  thread_.join();
  camera_.ResumeWaiting();
}

void StreamSource::Enable(bool isEnabled) {
  {
    const MutexLock lock(mutex_);
    if (isEnabled == isEnabled_) return;
    isEnabled_ = isEnabled;
    ++generation_;
    transfers_.clear();
    fetched_ = 0;
    changed_.notify_all();
  }
  if (isEnabled) {
    camera_.ResumeWaiting();
  } else {
    camera_.CancelWait();
  }
}

bool StreamSource::Fetch(std::span<std::uint8_t> bytes, std::size_t& fetched) {
  const MutexLock lock(mutex_);
  if (transfers_.empty()) return false;
  const Bytes& transfer = transfers_.front();
  fetched = std::min(bytes.size(), transfer.size() - fetched_);
  std::copy_n(transfer.begin() + static_cast<std::ptrdiff_t>(fetched_), fetched, bytes.begin());
  fetched_ += fetched;
  if (fetched_ == transfer.size()) {
    transfers_.pop_front();
    fetched_ = 0;
    changed_.notify_all();
  }
  return true;
}

void StreamSource::Run() {
  std::uint64_t generation = 0;
  while (AwaitRoom(generation)) {
    if (camera_.WaitForFrame(zyn::cameras::kForever) != zyn::cameras::FrameWait::ready) continue;
    AddFrame(generation);
  }
}

// False when the source ends.
bool StreamSource::AwaitRoom(std::uint64_t& generation) {
  MutexLock lock(mutex_);
  while (!isEnding_ && (!isEnabled_ || !transfers_.empty())) lock.Wait(changed_);
  generation = generation_;
  return !isEnding_;
}

void StreamSource::AddFrame(std::uint64_t generation) {
  Frame frame;
  buffer_.resize(camera_.PayloadSize());
  if (camera_.TakeFrame(buffer_, frame) != zyn::cameras::FrameResult::written || !frame.fits) return;
  Bytes data(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(frame.size));
  if (frame.isComplete) TurnChunkTags(frame, data);
  {
    const MutexLock lock(mutex_);
    if (generation != generation_) return;
    transfers_.push_back(Leader(frame));
    if (!data.empty()) transfers_.push_back(std::move(data));
    transfers_.push_back(Trailer(frame));
  }
  onReady_();
}

}  // namespace zyntest::usb3
