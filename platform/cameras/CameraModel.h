/// A simulated camera: a description, registers, and frames. It knows no transport; a producer or a device on the
/// wire is built over it.
#ifndef ZYN_CAMERAS_CAMERA_MODEL_H
#define ZYN_CAMERAS_CAMERA_MODEL_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "cameras/CameraEvents.h"
#include "cameras/Faults.h"
#include "cameras/Frame.h"
#include "cameras/RegisterStatus.h"

namespace zyn::cameras {

/// What names a camera. Everything but the user's name is constant.
struct Identity {
  std::string vendor;
  std::string model;
  std::string version;
  std::string serial;
  std::string userName;  ///< the feature DeviceUserID
  bool isLaser = false;  ///< a 3D laser-profile camera
};

/// Where a feature lies in the register space.
struct FeaturePlace {
  std::uint64_t address = 0;
  std::size_t length = 0;  ///< bytes
};

enum class FrameWait {
  ready,      ///< a frame is due: TakeFrame or SkipFrame
  timedOut,   ///< no frame within the time
  cancelled,  ///< CancelWait was called
};

enum class FrameResult {
  written,  ///< the frame lies in the buffer, or as much of it as the buffer takes
  dropped,  ///< a fault took the frame: nothing was written, `frame.id` names the lost one
  notDue,   ///< no frame is due now
};

/// All functions are thread-safe: registers may be accessed while frames are produced. Frames are taken by one
/// thread at a time; others wait. Producing a frame allocates nothing.
///
/// Frames wait for their reader: one that is taken late moves those behind it to a later time, and none is lost but
/// by a fault or SkipFrame.
///
/// The registers form a space of 64-bit addresses and big-endian values; addresses below 0x10000 are left free
/// for the transport that a camera is put behind.
class CameraModel {
 public:
  CameraModel() = default;
  CameraModel(const CameraModel&) = delete;
  CameraModel& operator=(const CameraModel&) = delete;
  virtual ~CameraModel() = default;

  virtual Identity GetIdentity() const = 0;

  /// The GenICam description, XML. Its registers lie behind the port "Device". Lives as long as the camera.
  virtual std::string_view Description() const = 0;

  /// The register of the feature of this name; the first of them, where a selector selects several. Nothing when there
  /// is no such feature, or none with a register.
  virtual std::optional<FeaturePlace> Find(std::string_view feature) const = 0;

  /// Reads `bytes.size()` bytes, a multiple of 4. A range may span registers but no gap between them.
  virtual RegisterStatus ReadRegisters(std::uint64_t address, std::span<std::uint8_t> bytes) = 0;

  /// Writes whole registers. A range of several is checked and written one after the other and ends at the first
  /// that fails.
  virtual RegisterStatus WriteRegisters(std::uint64_t address, std::span<const std::uint8_t> bytes) = 0;

  /// Between AcquisitionStart and the last frame or AcquisitionStop.
  virtual bool IsAcquiring() const = 0;

  /// Bytes of the largest frame with the present settings, chunks and tags included.
  virtual std::size_t PayloadSize() const = 0;

  /// When the next frame is due, by the camera's clock. Empty: not before something happens (start, trigger).
  virtual std::optional<std::int64_t> NextFrameDueNs() const = 0;

  /// No rate and no trigger holds the next frame back: it is due as soon as the one before was taken. Who then skips
  /// frames for want of a buffer would do nothing else.
  virtual bool IsFreeRunning() const = 0;

  /// Blocks until a frame is due, for `timeoutNs` at most (0: only asks; kForever: without end). Wakes for
  /// everything that changes what is due. Ends with `cancelled` at once while a cancellation is pending.
  virtual FrameWait WaitForFrame(std::int64_t timeoutNs) = 0;

  /// Wakes all waiting threads, and lets every wait end at once until ResumeWaiting.
  virtual void CancelWait() = 0;
  virtual void ResumeWaiting() = 0;

  /// Makes the frame that is due and writes it into `buffer`. Fills all of `frame`.
  virtual FrameResult TakeFrame(std::span<std::uint8_t> buffer, Frame& frame) = 0;

  /// Lets the frame that is due pass unread, as when the reader has no buffer. False when none is due.
  virtual bool SkipFrame() = 0;

  /// Input lines 0 and 1. A pulse is two edges: the line goes up and down again.
  virtual void SetLine(unsigned line, bool isHigh) = 0;
  virtual void PulseLine(unsigned line) = 0;

  /// The encoder moves on by `steps`. Cameras without one ignore it.
  virtual void TurnEncoder(std::uint32_t steps) = 0;

  /// Who hears of events that the feature EventNotification switched on; null: nobody. Once it returns, the one before
  /// hears nothing any more. The listener must stay until then.
  virtual void SetEventListener(CameraEventListener* listener) = 0;

  /// How often DeviceReset was executed: a transport then drops its connection. A reset ends the acquisition.
  virtual std::uint64_t ResetCount() const = 0;

  /// The faults this camera is told to have. Lives as long as the camera.
  virtual Faults& GetFaults() = 0;
};

}  // namespace zyn::cameras

#endif
