/// The simulator's features in the interface module: what happens to the cameras, for tests and demonstrations.
#ifndef ZYN_SIMULATION_SIMULATOR_FEATURES_H
#define ZYN_SIMULATION_SIMULATOR_FEATURES_H

#include <cstdint>
#include <string>
#include <vector>

#include "CameraSlot.h"
#include "ThreadAnnotations.h"
#include "cameras/RegisterStatus.h"
#include "producer/FeatureTable.h"

namespace zyn::simulation {

/// Every feature but the selectors acts on the camera that SimCameraSelector selects. That selector, unlike the
/// DeviceSelector of the standard, also reaches unplugged cameras, and no search turns it. Thread-safe; but whoever
/// selects and writes from several threads has to keep the two together.
class SimulatorFeatures final : public producer::TableExtension {
 public:
  /// slots: those of the interface; they outlive this object.
  explicit SimulatorFeatures(std::vector<CameraSlot*> slots);

 private:
  /// The register faults that the next write to SimRegisterFaultCount asks for.
  struct RegisterFault {
    std::int64_t kind = 0;
    std::int64_t first = 0;
    std::int64_t last = 0;
    std::int64_t count = 0;
  };

  void AddSelector();
  void AddCable();
  void AddStream();
  void AddFrameFaults();
  void AddRegisterFaults();
  void AddInputs();

  CameraSlot& Selected() const ZYN_EXCLUDES(mutex_);
  cameras::Faults& SelectedFaults() const { return Selected().Camera().GetFaults(); }
  void Select(const std::string& serial) ZYN_EXCLUDES(mutex_);
  void ArmRegisterFault(std::int64_t count) ZYN_EXCLUDES(mutex_);
  producer::FeatureOptions Options(const std::string& toolTip) const;

  const std::vector<CameraSlot*> slots_;
  mutable Mutex mutex_;  // a leaf
  std::size_t selected_ ZYN_GUARDED_BY(mutex_) = 0;
  RegisterFault fault_ ZYN_GUARDED_BY(mutex_);
  std::int64_t line_ ZYN_GUARDED_BY(mutex_) = 0;
};

}  // namespace zyn::simulation

#endif
