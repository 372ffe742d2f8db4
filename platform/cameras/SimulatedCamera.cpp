#include "cameras/SimulatedCamera.h"

#include <algorithm>
#include <utility>

#include "cameras/ChunkLayout.h"

namespace zyn::cameras {

namespace {

// One record of a profile.
constexpr std::size_t kShortening = 4;

}  // namespace

SimulatedCamera::SimulatedCamera(std::unique_ptr<CameraCore> core, Clock& clock)
    : clock_(clock), core_(std::move(core)), description_(core_->Description()), painter_(&core_->Painter()) {
  clock_.AddListener(*this);
}

SimulatedCamera::~SimulatedCamera() {
  clock_.RemoveListener(*this);
}

Identity SimulatedCamera::GetIdentity() const {
  const MutexLock lock(mutex_);
  return core_->GetIdentity();
}

std::optional<FeaturePlace> SimulatedCamera::Find(std::string_view feature) const {
  const MutexLock lock(mutex_);
  return core_->Find(feature);
}

RegisterStatus SimulatedCamera::ReadRegisters(std::uint64_t address, std::span<std::uint8_t> bytes) {
  const RegisterStatus fault = faults_.TakeAccess(address, bytes.size());
  if (fault != RegisterStatus::ok) return fault;
  const MutexLock lock(mutex_);
  return core_->Registers().Read(address, bytes);
}

RegisterStatus SimulatedCamera::WriteRegisters(std::uint64_t address, std::span<const std::uint8_t> bytes) {
  const RegisterStatus fault = faults_.TakeAccess(address, bytes.size());
  if (fault != RegisterStatus::ok) return fault;
  const MutexLock lock(mutex_);
  const RegisterStatus status = core_->Registers().Write(address, bytes);
  changed_.notify_all();
  return status;
}

bool SimulatedCamera::IsAcquiring() const {
  const MutexLock lock(mutex_);
  return core_->GetPacer().IsRunning();
}

std::size_t SimulatedCamera::PayloadSize() const {
  const MutexLock lock(mutex_);
  return core_->PayloadSize();
}

std::optional<std::int64_t> SimulatedCamera::DueNs() const {
  const auto due = core_->GetPacer().DueNs();
  if (!due) return std::nullopt;
  return *due + faults_.FrameDelayNs();
}

bool SimulatedCamera::IsDue() const {
  const auto due = DueNs();
  return due && *due <= clock_.NowNs();
}

std::optional<std::int64_t> SimulatedCamera::NextFrameDueNs() const {
  const MutexLock lock(mutex_);
  return DueNs();
}

bool SimulatedCamera::IsFreeRunning() const {
  const MutexLock lock(mutex_);
  return core_->GetPacer().IsFreeRunning();
}

FrameWait SimulatedCamera::WaitForFrame(std::int64_t timeoutNs) {
  const std::int64_t start = clock_.NowNs();
  const std::int64_t deadline = timeoutNs > kForever - start ? kForever : start + timeoutNs;
  MutexLock lock(mutex_);
  while (true) {
    if (isCancelled_) return FrameWait::cancelled;
    const auto due = DueNs();
    const std::int64_t now = clock_.NowNs();
    if (due && *due <= now) return FrameWait::ready;
    if (deadline <= now) return FrameWait::timedOut;
    clock_.Wait(lock, changed_, std::min(deadline, due.value_or(kForever)));
  }
}

void SimulatedCamera::CancelWait() {
  const MutexLock lock(mutex_);
  isCancelled_ = true;
  changed_.notify_all();
}

void SimulatedCamera::ResumeWaiting() {
  const MutexLock lock(mutex_);
  isCancelled_ = false;
}

bool SimulatedCamera::PlanFrame(Frame& frame) {
  if (!IsDue()) return false;
  if (faults_.TakeNewScan()) core_->BeginNewSeries();
  core_->TakeFrame(frame, faults_.TakeShortening() ? kShortening : 0);
  return true;
}

FrameResult SimulatedCamera::TakeFrame(std::span<std::uint8_t> buffer, Frame& frame) {
  const MutexLock frameLock(frameMutex_);
  {
    const MutexLock lock(mutex_);
    if (!PlanFrame(frame)) return FrameResult::notDue;
  }
  if (faults_.TakeDrop()) return FrameResult::dropped;
  Paint(buffer, frame);
  return FrameResult::written;
}

void SimulatedCamera::Paint(std::span<std::uint8_t> buffer, Frame& frame) {
  frame.fits = buffer.size() >= frame.intendedSize;
  frame.isComplete = frame.fits;
  if (!frame.fits) return;
  const auto whole = buffer.first(frame.intendedSize);
  painter_->Paint(whole, frame);
  WriteTags(whole, frame);
  frame.size = frame.intendedSize;
  if (!faults_.TakeDamage()) return;
  frame.isComplete = false;
  frame.size = frame.intendedSize / 2;
  const auto lost = whole.subspan(frame.size);
  std::fill(lost.begin(), lost.end(), std::uint8_t{0});
}

bool SimulatedCamera::SkipFrame() {
  Frame frame;
  const MutexLock frameLock(frameMutex_);
  const MutexLock lock(mutex_);
  return PlanFrame(frame);
}

void SimulatedCamera::SetLine(unsigned line, bool isHigh) {
  const MutexLock lock(mutex_);
  core_->SetLine(line, isHigh);
  changed_.notify_all();
}

void SimulatedCamera::PulseLine(unsigned line) {
  const MutexLock lock(mutex_);
  core_->SetLine(line, true);
  core_->SetLine(line, false);
  changed_.notify_all();
}

void SimulatedCamera::TurnEncoder(std::uint32_t steps) {
  const MutexLock lock(mutex_);
  core_->TurnEncoder(steps);
  changed_.notify_all();
}

void SimulatedCamera::SetEventListener(CameraEventListener* listener) {
  const MutexLock lock(mutex_);
  core_->SetEventListener(listener);
}

std::uint64_t SimulatedCamera::ResetCount() const {
  const MutexLock lock(mutex_);
  return core_->ResetCount();
}

void SimulatedCamera::OnClockTurned() {
  const MutexLock lock(mutex_);
  changed_.notify_all();
}

}  // namespace zyn::cameras
