/// A place for one simulated camera: the camera, and what happens to its cable.
#ifndef ZYN_SIMULATION_CAMERA_SLOT_H
#define ZYN_SIMULATION_CAMERA_SLOT_H

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "Card.h"
#include "Configuration.h"
#include "Connection.h"
#include "PacedClock.h"
#include "ThreadAnnotations.h"
#include "cameras/CameraModel.h"
#include "producer/Backend.h"

namespace zyn::simulation {

/// The network that all simulated Ethernet cameras share. Its addresses are reserved for measurements and never
/// meet a real camera's.
constexpr producer::Subnet kSubnet{0xC6120001, 0xFFFE0000};  // 198.18.0.1, 255.254.0.0

/// Lives as long as the producer is initialised: what happens to a camera outlives its device handles. Thread-safe.
class CameraSlot {
 public:
  /// index: the position among all cameras. Throws ConfigurationError when there is no such model.
  CameraSlot(const CameraSetting& setting, std::size_t index);
  ~CameraSlot();
  CameraSlot(const CameraSlot&) = delete;
  CameraSlot& operator=(const CameraSlot&) = delete;

  // Constant.
  const std::string& Serial() const { return setting_.serial; }
  const std::string& ModelName() const { return setting_.model; }
  LinkKind Link() const { return setting_.link; }
  cameras::CameraModel& Camera() { return *camera_; }
  PacedClock& Clock() { return clock_; }
  /// The card between the camera and the consumer; null on Ethernet.
  Card* GetCard() { return card_.get(); }
  /// Whether that card takes the camera's images as it is told. It hands the chunks of laser-profile cameras on as
  /// they come.
  bool IsShapedByCard() const { return card_ != nullptr && !isLaser_; }

  /// What a search finds; empty while the camera is unplugged.
  std::optional<producer::DeviceInfo> Describe() const ZYN_EXCLUDES(mutex_);

  bool IsPlugged() const ZYN_EXCLUDES(mutex_);
  /// Pulls the plug: an open device is lost at once. Or puts it in again: the camera is as after power-up.
  void SetPlugged(bool isPlugged) ZYN_EXCLUDES(mutex_);

  /// Busy: another program controls the camera, and opening it is refused. An open device is lost, for the other
  /// one has taken the control over.
  bool IsBusy() const ZYN_EXCLUDES(mutex_);
  void SetBusy(bool isBusy) ZYN_EXCLUDES(mutex_);

  /// See PacedClock.
  void SetPacing(Pacing pacing) ZYN_EXCLUDES(mutex_);

  /// A pulse on an input line, of the camera and of the card before it.
  void PulseLine(unsigned line) ZYN_EXCLUDES(mutex_);

  /// Chunk data as producers of GenTL 1.4 and before mark it: PAYLOAD_TYPE_CHUNK_DATA.
  bool MarksChunkPayload() const { return marksChunkPayload_; }
  void SetMarksChunkPayload(bool marks) { marksChunkPayload_ = marks; }

  /// Throws producer::Error with GC_ERR_INVALID_VALUE.
  void ForceAddress(const producer::ForcedAddress& forced) ZYN_EXCLUDES(mutex_);

  /// Connects a device that is being opened, and powers the card up. Throws producer::Error: GC_ERR_IO when there is no camera,
  /// GC_ERR_ACCESS_DENIED when it is busy or out of reach.
  std::unique_ptr<Connection> Connect(producer::DeviceListener& listener) ZYN_EXCLUDES(mutex_);
  /// The device is being closed: a camera that still acquires stops, as nobody controls it any more.
  void Disconnect(Connection& connection) ZYN_EXCLUDES(mutex_);

  /// After DeviceReset the device is lost to whoever has it open.
  void CutWhenReset() ZYN_EXCLUDES(mutex_);

 private:
  void Cut(const std::string& text) ZYN_REQUIRES(mutex_);
  bool IsReachable() const ZYN_REQUIRES(mutex_);
  void Rest();
  void NotifyStream() ZYN_EXCLUDES(mutex_);

  const CameraSetting setting_;
  PacedClock clock_;
  const std::unique_ptr<cameras::CameraModel> camera_;
  const bool isLaser_;
  const std::unique_ptr<Card> card_;
  std::atomic<bool> marksChunkPayload_{false};

  mutable Mutex mutex_;  // the camera and the listener of the connection may be called under it
  bool isPlugged_ ZYN_GUARDED_BY(mutex_);
  bool isBusy_ ZYN_GUARDED_BY(mutex_);
  std::uint64_t resets_ ZYN_GUARDED_BY(mutex_) = 0;
  producer::GevDeviceInfo network_ ZYN_GUARDED_BY(mutex_);
  Connection* connection_ ZYN_GUARDED_BY(mutex_) = nullptr;  // of the device that is open
};

}  // namespace zyn::simulation

#endif
