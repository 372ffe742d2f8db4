/// Writes planned frames into memory.
#ifndef ZYN_CAMERAS_FRAME_PAINTER_H
#define ZYN_CAMERAS_FRAME_PAINTER_H

#include <cstdint>
#include <span>

#include "cameras/Frame.h"

namespace zyn::cameras {

/// Works from a plan of its own, a copy of the settings: the camera's registers may change meanwhile. Not
/// thread-safe. Allocates only when the shape of the frames changed.
class FramePainter {
 public:
  FramePainter() = default;
  FramePainter(const FramePainter&) = delete;
  FramePainter& operator=(const FramePainter&) = delete;
  virtual ~FramePainter() = default;

  /// `buffer` holds exactly `frame.intendedSize` bytes; every one of them is written, but for the chunk tags.
  virtual void Paint(std::span<std::uint8_t> buffer, const Frame& frame) = 0;
};

}  // namespace zyn::cameras

#endif
