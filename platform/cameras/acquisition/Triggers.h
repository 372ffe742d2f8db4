/// The triggers of a camera: software, two input lines, and an encoder.
#ifndef ZYN_CAMERAS_ACQUISITION_TRIGGERS_H
#define ZYN_CAMERAS_ACQUISITION_TRIGGERS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "cameras/Clock.h"
#include "cameras/acquisition/Pacer.h"
#include "cameras/registers/FeatureTable.h"

namespace zyn::cameras {

/// What a trigger starts; see Pace.
enum class TriggerRole { series, units };

/// The part of a user set that belongs to the triggers. One element for each trigger.
struct TriggerSettings {
  std::array<std::int64_t, 2> mode{};        ///< 0 off, 1 on
  std::array<std::int64_t, 2> source{};      ///< 0 software, 1 and 2 the lines, 3 the encoder
  std::array<std::int64_t, 2> activation{};  ///< 0 rising edge, 1 falling edge
  std::int64_t encoderDivider = 1;
};

/// A camera has two triggers, one of each role. Not thread-safe. Everything it refers to must outlive it.
class Triggers {
 public:
  struct Names {
    std::array<std::string, 2> names;  ///< the choices of TriggerSelector; the first one is selected at first
    std::array<TriggerRole, 2> roles;
    std::string tip;  ///< what the choices mean
    bool hasEncoder;
  };

  Triggers(Names names, TriggerSettings& settings, Pacer& pacer, Clock& clock)
      : names_(std::move(names)), settings_(settings), pacer_(pacer), clock_(clock) {}

  void AddFeatures(FeatureTable& features);

  bool IsOn(TriggerRole role) const;
  /// A line rose, or fell.
  void OnEdge(unsigned line, bool isRising);
  void TurnEncoder(std::uint32_t steps);
  /// Forgets steps of the encoder that were too few for a trigger.
  void Restart() { encoderSteps_ = 0; }

 private:
  RegisterStatus Software(std::size_t trigger);
  void Fire(std::size_t trigger, std::uint64_t count);

  const Names names_;
  TriggerSettings& settings_;
  Pacer& pacer_;
  Clock& clock_;
  std::uint64_t encoderSteps_ = 0;  // since the last trigger
};

}  // namespace zyn::cameras

#endif
