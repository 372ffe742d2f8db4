#include "cameras/Faults.h"

#include <algorithm>
#include <utility>

namespace zyn::cameras {

namespace {

bool TakeOne(std::uint64_t& left) {
  if (left == 0) return false;
  if (left != kUntilCleared) --left;
  return true;
}

}  // namespace

void Faults::DropFrames(std::uint64_t count) {
  const MutexLock lock(mutex_);
  drops_ = count;
}

void Faults::DamageFrames(std::uint64_t count) {
  const MutexLock lock(mutex_);
  damages_ = count;
}

void Faults::DelayFrames(std::int64_t ns) {
  const MutexLock lock(mutex_);
  delayNs_ = std::clamp<std::int64_t>(ns, 0, kLongestDelayNs);
}

void Faults::ShortenChunks(std::uint64_t count) {
  const MutexLock lock(mutex_);
  shortenings_ = count;
}

void Faults::BeginNewScan() {
  const MutexLock lock(mutex_);
  newScan_ = true;
}

void Faults::FailRegisters(std::uint64_t first, std::uint64_t last, std::uint64_t count,
                           RegisterStatus status) {
  const MutexLock lock(mutex_);
  std::erase_if(failing_,
                [&](const FailingRange& range) { return range.first == first && range.last == last; });
  if (count > 0) failing_.push_back(FailingRange{first, last, count, status});
}

void Faults::FailAllRegisters(std::uint64_t count, RegisterStatus status) {
  FailRegisters(0, UINT64_MAX, count, status);
}

void Faults::SetBusy(bool busy) {
  const MutexLock lock(mutex_);
  isBusy_ = busy;
}

void Faults::Clear() {
  const MutexLock lock(mutex_);
  drops_ = damages_ = shortenings_ = 0;
  delayNs_ = 0;
  newScan_ = isBusy_ = false;
  failing_.clear();
}

std::uint64_t Faults::FramesToDrop() const {
  const MutexLock lock(mutex_);
  return drops_;
}

std::uint64_t Faults::FramesToDamage() const {
  const MutexLock lock(mutex_);
  return damages_;
}

std::uint64_t Faults::ChunksToShorten() const {
  const MutexLock lock(mutex_);
  return shortenings_;
}

std::int64_t Faults::FrameDelayNs() const {
  const MutexLock lock(mutex_);
  return delayNs_;
}

bool Faults::IsBusy() const {
  const MutexLock lock(mutex_);
  return isBusy_;
}

bool Faults::TakeDrop() {
  const MutexLock lock(mutex_);
  return TakeOne(drops_);
}

bool Faults::TakeDamage() {
  const MutexLock lock(mutex_);
  return TakeOne(damages_);
}

bool Faults::TakeShortening() {
  const MutexLock lock(mutex_);
  return TakeOne(shortenings_);
}

bool Faults::TakeNewScan() {
  const MutexLock lock(mutex_);
  return std::exchange(newScan_, false);
}

RegisterStatus Faults::TakeAccess(std::uint64_t address, std::size_t length) {
  const MutexLock lock(mutex_);
  if (isBusy_) return RegisterStatus::busy;
  const std::uint64_t end = length == 0 ? address : address + (length - 1);
  const auto hit = std::find_if(failing_.begin(), failing_.end(), [&](const FailingRange& range) {
    return range.first <= end && address <= range.last;
  });
  if (hit == failing_.end()) return RegisterStatus::ok;
  const RegisterStatus status = hit->status;
  TakeOne(hit->left);
  if (hit->left == 0) failing_.erase(hit);
  return status;
}

}  // namespace zyn::cameras
