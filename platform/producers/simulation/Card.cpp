#include "Card.h"

#include "producer/Error.h"

namespace zyn::simulation {

namespace {

constexpr std::size_t kMostTriggers = 64;  // that wait, as in the cameras

std::int64_t BitsAtATime(const CardSettings& settings) {
  const auto format = static_cast<std::uint32_t>(settings.pixelFormat);
  return settings.taps * static_cast<std::int64_t>(SamplesPerPixel(format) * BitsPerSample(format));
}

}  // namespace

void Card::PowerUp() {
  const MutexLock lock(mutex_);
  settings_ = atPowerUp_;
  triggers_ = 0;
}

CardSettings Card::Settings() const {
  const MutexLock lock(mutex_);
  return settings_;
}

void Card::SetShape(std::int64_t CardSettings::*member, std::int64_t value) {
  const MutexLock lock(mutex_);
  if (isAcquiring_) {
    throw producer::Error(GenTL::GC_ERR_ACCESS_DENIED,
                          "The card's settings cannot be changed while frames are acquired.");
  }
  settings_.*member = value;
}

std::size_t Card::FrameBytes() const {
  const MutexLock lock(mutex_);
  return static_cast<std::size_t>(settings_.width * settings_.height) *
         cameras::BytesPerPixel(static_cast<std::uint32_t>(settings_.pixelFormat));
}

void Card::BeginAcquisition() {
  const MutexLock lock(mutex_);
  const std::int64_t needed = BitsAtATime(settings_);
  if (needed > settings_.configuration) {
    throw producer::Error(GenTL::GC_ERR_ERROR, "The card's taps and pixel format need " +
                                                   std::to_string(needed) +
                                                   " bits at a time, and its configuration carries " +
                                                   std::to_string(settings_.configuration) + ".");
  }
  isAcquiring_ = true;
  triggers_ = 0;
}

void Card::EndAcquisition() {
  const MutexLock lock(mutex_);
  isAcquiring_ = false;
}

void Card::Trigger(CardTriggerSource source) {
  {
    const MutexLock lock(mutex_);
    const bool isSource = settings_.triggerSource == static_cast<std::int64_t>(source);
    if (!isAcquiring_ || !settings_.isTriggered || !isSource || triggers_ == kMostTriggers) return;
    ++triggers_;
  }
  onChange_();
}

bool Card::AwaitsTrigger() const {
  const MutexLock lock(mutex_);
  return settings_.isTriggered && triggers_ == 0;
}

bool Card::TakeTrigger() {
  const MutexLock lock(mutex_);
  if (!settings_.isTriggered || triggers_ == 0) return false;
  --triggers_;
  return true;
}

}  // namespace zyn::simulation
