/// Works out from a producer's answers what a delivered buffer holds.
#ifndef ZYN_TRANSPORT_FRAME_LAYOUT_H
#define ZYN_TRANSPORT_FRAME_LAYOUT_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "BufferFacts.h"
#include "Chunks.h"

namespace zyn::transport {

/// The camera's settings when the acquisition started. They fill in for what a producer does not tell about a
/// buffer: that means "as the camera is set".
struct CameraSettings {
  std::uint64_t width = 0;
  std::uint64_t height = 0;
  std::uint64_t pixelFormat = 0;
};

/// One frame. Never points outside the buffer, whatever the producer said.
struct FrameLayout {
  int result = 0;  ///< RESULT_OK, or why the buffer cannot be delivered as a frame
  bool isValid = false;
  bool hasImage = false;
  long long frameId = 0;
  int width = 0;
  int height = 0;
  int channels = 0;
  int step = 0;                 ///< bytes per row, padding included
  std::size_t imageOffset = 0;  ///< bytes
  std::vector<ChunkRange> chunks;
};

/// The layout of a buffer of `capacity` bytes that holds one image, raw data, or chunks only. Fills everything
/// but the chunks.
FrameLayout LayOutFrame(const BufferFacts& facts, const CameraSettings& settings, std::size_t capacity);

/// The facts of one part of a multi-part buffer.
struct PartFacts {
  std::uint64_t offset = 0;  ///< bytes from the start of the buffer
  std::uint64_t size = 0;    ///< bytes, all of them inside the buffer; all that are left when nobody told it
  bool isSizeTold = true;
  std::uint64_t width = 0;
  std::uint64_t height = 0;
  std::uint64_t padding = 0;  ///< after each row; producers disagree whether in pixels or bytes
  std::uint64_t format = 0;
};

/// Takes the image from a part into a layout made by LayOutFrame. It never leaves the part: with fewer bytes than
/// its rows need, the frame ends with the last whole row and is not valid.
void PlacePart(FrameLayout& frame, const PartFacts& part);

/// The bytes of the buffer that hold data.
std::size_t ValidBytes(const BufferFacts& facts, std::size_t capacity);

}  // namespace zyn::transport

#endif
