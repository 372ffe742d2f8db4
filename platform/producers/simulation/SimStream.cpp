#include "SimStream.h"

#include <utility>

#include "FrameTranslation.h"
#include "producer/Error.h"

namespace zyn::simulation {

using cameras::FrameResult;
using cameras::FrameWait;

SimStream::SimStream(CameraSlot& slot, Connection& connection, producer::StreamSink& sink)
    : slot_(slot), connection_(connection), sink_(sink) {}

SimStream::~SimStream() {
  Stop(true);
}

producer::StreamTraits SimStream::Traits() const {
  producer::StreamTraits traits;
  traits.maximumChunks = cameras::Frame::kMostChunks;
  return traits;
}

void SimStream::Start() {
  slot_.Camera().ResumeWaiting();  // the end of an earlier stream may have left a cancellation
  if (connection_.IsCut()) throw producer::Error(GenTL::GC_ERR_IO, "The camera is lost.");
  hasEnded_ = false;
  thread_ = std::thread([this] { Run(); });
}

// A frame is written at once, so there is never a half filled buffer to wait for or to give up.
void SimStream::Stop(bool /*kill*/) {
  if (!thread_.joinable()) return;
  hasEnded_ = true;
  slot_.Camera().CancelWait();
  connection_.Notify();
  thread_.join();
  slot_.Camera().ResumeWaiting();
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
  while (!HasEnded()) {
    if (slot_.Camera().WaitForFrame(cameras::kForever) == FrameWait::ready) return !HasEnded();
  }
  return false;
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
  cameras::Frame frame;
  const FrameResult result = slot_.Camera().TakeFrame({buffer.Memory(), buffer.Size()}, frame);
  if (result != FrameResult::written) return sink_.GiveBack(buffer);
  sink_.Deliver(buffer, Translate(frame, slot_.MarksChunkPayload()));
}

}  // namespace zyn::simulation
