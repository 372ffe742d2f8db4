/// What a camera is, without threads: features, registers, and the state of its acquisition.
#ifndef ZYN_CAMERAS_CAMERA_CORE_H
#define ZYN_CAMERAS_CAMERA_CORE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "cameras/CameraModel.h"
#include "cameras/Clock.h"
#include "cameras/FramePainter.h"
#include "cameras/acquisition/Pacer.h"
#include "cameras/registers/FeatureTable.h"
#include "cameras/registers/RegisterMap.h"

namespace zyn::cameras {

/// Not thread-safe: SimulatedCamera's lock protects it. Kinds of cameras derive from it; their constructors add the
/// features and end with Finish().
class CameraCore {
 public:
  CameraCore(Identity identity, Clock& clock);
  CameraCore(const CameraCore&) = delete;
  CameraCore& operator=(const CameraCore&) = delete;
  virtual ~CameraCore() = default;

  const Identity& GetIdentity() const { return identity_; }
  const std::string& Description() const { return description_; }
  std::optional<FeaturePlace> Find(std::string_view feature) const { return features_.Find(feature); }
  const RegisterMap& Registers() const { return registers_; }
  const Pacer& GetPacer() const { return pacer_; }
  std::uint64_t ResetCount() const { return resets_; }

  virtual std::size_t PayloadSize() const = 0;

  /// Takes the frame that is due: numbers it, lays it out, and hands the painter what it needs. The first chunk
  /// behind the image becomes `shortenBy` bytes shorter, as far as it can.
  void TakeFrame(Frame& frame, std::size_t shortenBy);

  /// Writes what TakeFrame planned last.
  virtual FramePainter& Painter() = 0;

  /// The next frame begins a new series, where the camera has series.
  virtual void BeginNewSeries() {}

  void SetEventListener(CameraEventListener* listener) { listener_ = listener; }

  void SetLine(unsigned line, bool isHigh);
  virtual void TurnEncoder(std::uint32_t) {}

 protected:
  /// Lays out the next frame: everything but number and times.
  virtual void PlanFrame(Frame& frame, std::size_t shortenBy) = 0;
  virtual Pace MakePace() const = 0;
  /// The acquisition is about to start.
  virtual void OnStart() {}
  /// An input line changed: rose, or fell.
  virtual void OnEdge(unsigned line, bool isRising) = 0;
  /// DeviceReset: back to the settings of power-up.
  virtual void OnReset() = 0;

  void AddDeviceFeatures();
  /// AcquisitionStart, AcquisitionStop.
  void AddAcquisitionCommands();
  void AddLineFeatures();
  void AddEventFeatures();
  void AddTransportFeatures();
  void Finish(const std::string& summary);

  std::int64_t NowNs() const { return clock_.NowNs(); }

  FeatureTable features_;
  Pacer pacer_;

 private:
  /// The values of EventSelector.
  enum Event : std::size_t { kAcquisitionStart, kExposureEnd, kEvents };

  RegisterStatus Start();
  void Raise(Event event, const CameraEvent& what);
  void Reset();
  double Temperature() const;

  Identity identity_;
  Clock& clock_;
  RegisterMap registers_;
  std::string description_;
  std::uint64_t frameNumber_ = 0;  // of the frame taken last; counts from the start of the acquisition
  std::uint64_t resets_ = 0;
  std::int64_t latchedTime_ = 0;
  std::int64_t poweredUpAt_ = 0;
  bool lines_[2] = {false, false};
  CameraEventListener* listener_ = nullptr;
  std::array<std::int64_t, kEvents> notifies_{};  // the values of EventNotification
};

}  // namespace zyn::cameras

#endif
