/// The frame grabber card before a simulated Camera Link camera.
#ifndef ZYN_SIMULATION_CARD_H
#define ZYN_SIMULATION_CARD_H

#include <cstddef>
#include <functional>
#include <utility>

#include "CardSettings.h"
#include "ThreadAnnotations.h"

namespace zyn::simulation {

/// Thread-safe. Settings that decide about the shape of frames cannot be changed while frames are acquired.
class Card {
 public:
  /// atPowerUp: the settings it begins with. onChange: called, without a lock of the card, after whatever the stream
  /// may wait for.
  Card(CardSettings atPowerUp, std::function<void()> onChange)
      : atPowerUp_(std::move(atPowerUp)), onChange_(std::move(onChange)), settings_(atPowerUp_) {}

  /// Back to the settings it began with.
  void PowerUp() ZYN_EXCLUDES(mutex_);

  CardSettings Settings() const ZYN_EXCLUDES(mutex_);

  /// Changes a setting at any time.
  template <class Value>
  void Set(Value CardSettings::*member, Value value) ZYN_EXCLUDES(mutex_) {
    {
      const MutexLock lock(mutex_);
      settings_.*member = std::move(value);
    }
    onChange_();
  }

  /// Changes a setting of the shape. Throws producer::Error with GC_ERR_ACCESS_DENIED while frames are acquired.
  void SetShape(std::int64_t CardSettings::*member, std::int64_t value) ZYN_EXCLUDES(mutex_);

  /// Bytes of a frame as the card stores it.
  std::size_t FrameBytes() const ZYN_EXCLUDES(mutex_);

  /// Forgets earlier triggers. Throws producer::Error with GC_ERR_ERROR when the settings contradict each other: the
  /// taps need more bits than the configuration carries.
  void BeginAcquisition() ZYN_EXCLUDES(mutex_);
  void EndAcquisition() ZYN_EXCLUDES(mutex_);

  /// Something happened that is a trigger where it is the source; counts while frames are acquired on triggers.
  void Trigger(CardTriggerSource source) ZYN_EXCLUDES(mutex_);

  /// Whether frames pass by until the next trigger.
  bool AwaitsTrigger() const ZYN_EXCLUDES(mutex_);
  /// Uses up one trigger. False when the card does not work on triggers.
  bool TakeTrigger() ZYN_EXCLUDES(mutex_);

 private:
  const CardSettings atPowerUp_;
  const std::function<void()> onChange_;
  mutable Mutex mutex_;  // a leaf
  CardSettings settings_ ZYN_GUARDED_BY(mutex_);
  bool isAcquiring_ ZYN_GUARDED_BY(mutex_) = false;
  std::size_t triggers_ ZYN_GUARDED_BY(mutex_) = 0;  // not used up yet
};

}  // namespace zyn::simulation

#endif
