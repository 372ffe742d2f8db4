/// The thread-safe face of a camera core.
#ifndef ZYN_CAMERAS_SIMULATED_CAMERA_H
#define ZYN_CAMERAS_SIMULATED_CAMERA_H

#include <condition_variable>
#include <memory>

#include "ThreadAnnotations.h"
#include "cameras/CameraCore.h"
#include "cameras/CameraModel.h"
#include "cameras/Clock.h"

namespace zyn::cameras {

class SimulatedCamera final : public CameraModel, private ClockListener {
 public:
  SimulatedCamera(std::unique_ptr<CameraCore> core, Clock& clock);
  ~SimulatedCamera() override;

  Identity GetIdentity() const override;
  std::string_view Description() const override { return description_; }
  std::optional<FeaturePlace> Find(std::string_view feature) const override;
  RegisterStatus ReadRegisters(std::uint64_t address, std::span<std::uint8_t> bytes) override;
  RegisterStatus WriteRegisters(std::uint64_t address, std::span<const std::uint8_t> bytes) override;
  bool IsAcquiring() const override;
  std::size_t PayloadSize() const override;
  std::optional<std::int64_t> NextFrameDueNs() const override;
  bool IsFreeRunning() const override;
  FrameWait WaitForFrame(std::int64_t timeoutNs) override;
  void CancelWait() override;
  void ResumeWaiting() override;
  FrameResult TakeFrame(std::span<std::uint8_t> buffer, Frame& frame) override;
  bool SkipFrame() override;
  void SetLine(unsigned line, bool isHigh) override;
  void PulseLine(unsigned line) override;
  void TurnEncoder(std::uint32_t steps) override;
  void SetEventListener(CameraEventListener* listener) override;
  std::uint64_t ResetCount() const override;
  Faults& GetFaults() override { return faults_; }

 private:
  void OnClockTurned() override;
  std::optional<std::int64_t> DueNs() const ZYN_REQUIRES(mutex_);
  bool IsDue() const ZYN_REQUIRES(mutex_);
  /// False when nothing is due.
  bool PlanFrame(Frame& frame) ZYN_REQUIRES(frameMutex_, mutex_);
  void Paint(std::span<std::uint8_t> buffer, Frame& frame) ZYN_REQUIRES(frameMutex_);

  // Constant.
  Clock& clock_;
  const std::unique_ptr<CameraCore> core_ ZYN_PT_GUARDED_BY(mutex_);
  const std::string_view description_;

  Faults faults_;
  Mutex frameMutex_;     // one frame at a time; held while it is painted. Before mutex_.
  mutable Mutex mutex_;  // the core; never held while a frame is painted
  std::condition_variable changed_;
  FramePainter* const painter_ ZYN_PT_GUARDED_BY(frameMutex_);
  bool isCancelled_ ZYN_GUARDED_BY(mutex_) = false;
};

}  // namespace zyn::cameras

#endif
