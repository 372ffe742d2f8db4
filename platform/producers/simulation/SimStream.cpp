#include "SimStream.h"

#include <utility>

#include "FrameTranslation.h"
#include "producer/Error.h"

namespace zyn::simulation {

using cameras::FrameResult;
using cameras::FrameWait;

namespace {

// More than a camera makes up for when its reader comes back.
constexpr int kMostLateFrames = 128;

}  // namespace

SimStream::SimStream(CameraSlot& slot, Connection& connection, producer::StreamSink& sink)
    : slot_(slot),
      connection_(connection),
      sink_(sink),
      card_(slot.IsShapedByCard() ? slot.GetCard() : nullptr) {}

SimStream::~SimStream() {
  Stop(true);
}

producer::StreamTraits SimStream::Traits() const {
  producer::StreamTraits traits;
  if (!card_) traits.maximumChunks = cameras::Frame::kMostChunks;
  return traits;
}

std::size_t SimStream::PayloadSize() {
  return card_ ? card_->FrameBytes() : 0;
}

void SimStream::Start() {
  slot_.Camera().ResumeWaiting();  // the end of an earlier stream may have left a cancellation
  if (connection_.IsCut()) throw producer::Error(GenTL::GC_ERR_IO, "The camera is lost.");
  if (card_) card_->BeginAcquisition();
  hasEnded_ = false;
  try {
    thread_ = std::thread([this] { Run(); });
  } catch (...) {
    if (card_) card_->EndAcquisition();
    throw;
  }
}

// A frame is written at once, so there is never a half filled buffer to wait for or to give up.
void SimStream::Stop(bool /*kill*/) {
  if (!thread_.joinable()) return;
  hasEnded_ = true;
  slot_.Camera().CancelWait();
  connection_.Notify();
  thread_.join();
  slot_.Camera().ResumeWaiting();
  if (card_) card_->EndAcquisition();
}

void SimStream::Run() {
  while (AwaitFrame()) {
    producer::StreamBuffer* const buffer = TakeBuffer();
    if (buffer != nullptr) {
      Fill(*buffer);
    } else if (!HasEnded()) {
      slot_.Camera().SkipFrame();
    }
  }
}

bool SimStream::AwaitFrame() {
  if (card_ && !AwaitCardTrigger()) return false;
  while (!HasEnded()) {
    if (slot_.Camera().WaitForFrame(cameras::kForever) == FrameWait::ready) return !HasEnded();
  }
  return false;
}

bool SimStream::AwaitCardTrigger() {
  while (!HasEnded()) {
    const std::uint64_t seen = connection_.Notices();
    if (!card_->AwaitsTrigger()) break;
    connection_.AwaitNotice(seen);
  }
  if (card_->TakeTrigger()) PassOverEarlierFrames();
  return !HasEnded();
}

// Frames wait for their reader, so those that came before the trigger are still there. Without a rate the next one comes
// when it is asked for.
void SimStream::PassOverEarlierFrames() {
  if (slot_.Camera().IsFreeRunning()) return;
  for (int i = 0; i < kMostLateFrames && slot_.Camera().SkipFrame(); ++i) {
  }
}

bool SimStream::WaitsForReader() const {
  return slot_.Clock().GetPacing() == Pacing::reader || slot_.Camera().IsFreeRunning();
}

producer::StreamBuffer* SimStream::TakeBuffer() {
  return WaitsForReader() ? AwaitBuffer() : sink_.TakeForFrame();
}

// The notices are counted before the queue is looked at, so that none is missed in between.
producer::StreamBuffer* SimStream::AwaitBuffer() {
  while (!HasEnded()) {
    const std::uint64_t seen = connection_.Notices();
    if (producer::StreamBuffer* const buffer = sink_.TakeQueued()) return buffer;
    if (HasEnded()) break;
    if (!WaitsForReader()) return sink_.TakeForFrame();
    connection_.AwaitNotice(seen);
  }
  return nullptr;
}

void SimStream::Fill(producer::StreamBuffer& buffer) {
  if (card_) return FillThroughCard(buffer);
  cameras::Frame frame;
  const FrameResult result = slot_.Camera().TakeFrame({buffer.Memory(), buffer.Size()}, frame);
  if (result != FrameResult::written) return sink_.GiveBack(buffer);
  sink_.Deliver(buffer, Translate(frame, slot_.MarksChunkPayload()));
}

void SimStream::FillThroughCard(producer::StreamBuffer& buffer) {
  cameraFrame_.resize(slot_.Camera().PayloadSize());
  cameras::Frame frame;
  const FrameResult result = slot_.Camera().TakeFrame(cameraFrame_, frame);
  if (result != FrameResult::written) return sink_.GiveBack(buffer);
  sink_.Deliver(buffer,
                cardImage_.Store(card_->Settings(), frame, cameraFrame_, {buffer.Memory(), buffer.Size()}));
}

}  // namespace zyn::simulation
