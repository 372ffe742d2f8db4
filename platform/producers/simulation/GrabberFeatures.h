/// The settings of the simulated frame grabber, features of the local device module.
#ifndef ZYN_SIMULATION_GRABBER_FEATURES_H
#define ZYN_SIMULATION_GRABBER_FEATURES_H

#include <cstdint>
#include <string>

#include "ThreadAnnotations.h"
#include "producer/FeatureTable.h"

namespace zyn::simulation {

/// Settings of each kind, as a card's configuration file sets them. They hold what is written and change nothing in
/// the frames. As set when the card is powered on, that is, when the camera is opened. Thread-safe.
class GrabberFeatures final : public producer::TableExtension {
 public:
  GrabberFeatures();

 private:
  template <class Value>
  auto Getter(Value GrabberFeatures::*member) ZYN_EXCLUDES(mutex_);
  template <class Value>
  auto Setter(Value GrabberFeatures::*member) ZYN_EXCLUDES(mutex_);

  Mutex mutex_;  // a leaf; guards all settings
  std::int64_t width_ = 1024;
  std::int64_t height_ = 1024;
  std::int64_t configuration_ = 0;
  std::int64_t taps_ = 2;
  bool usesExternalTrigger_ = false;
  double triggerDelayUs_ = 0;
  std::string boardName_ = "simulated";
};

}  // namespace zyn::simulation

#endif
