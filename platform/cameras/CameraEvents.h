/// What a camera reports by itself, for those who registered for it.
#ifndef ZYN_CAMERAS_CAMERA_EVENTS_H
#define ZYN_CAMERAS_CAMERA_EVENTS_H

#include <cstddef>
#include <cstdint>

namespace zyn::cameras {

/// Numbers as the description states them.
constexpr std::uint16_t kAcquisitionStartEvent = 0x9001;  ///< has no data
constexpr std::uint16_t kExposureEndEvent = 0x9002;       ///< has the data below

/// What the description's event ports read begins with an item as GigE Vision has it, with short numbers of blocks;
/// every transport keeps to that. Numbers of 8 bytes, most significant byte first.
constexpr std::size_t kEventTimestampAt = 8;  ///< in ticks of the transport
constexpr std::size_t kEventItemBytes = 16;
constexpr std::size_t kEventFrameIdAt = kEventItemBytes;  ///< the data of an event that belongs to a frame
constexpr std::size_t kEventDataBytes = 8;

struct CameraEvent {
  std::uint16_t id = 0;
  std::int64_t timestampNs = 0;  ///< by the camera's clock
  std::uint64_t frameId = 0;     ///< 0: it belongs to no frame, and has no data
};

/// Writes the item and its data at `out`, which has room for kEventItemBytes + kEventDataBytes. How many bytes it
/// wrote. `ticks`: the event's time by the transport.
std::size_t WriteEventItem(const CameraEvent& event, std::uint64_t ticks, std::uint8_t* out);

/// Told by whatever thread makes the event happen, while the camera's lock is held: it only takes note, and does not
/// call the camera.
class CameraEventListener {
 public:
  virtual void OnCameraEvent(const CameraEvent& event) = 0;

 protected:
  ~CameraEventListener() = default;
};

}  // namespace zyn::cameras

#endif
