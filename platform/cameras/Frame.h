/// What a camera tells about one frame that it wrote into a buffer.
#ifndef ZYN_CAMERAS_FRAME_H
#define ZYN_CAMERAS_FRAME_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace zyn::cameras {

/// The data of one chunk: `length` bytes, `offset` bytes after the start of the buffer. Its tag of 8 bytes
/// follows: ID, then length, most significant byte first.
struct FrameChunk {
  std::uint32_t id = 0;
  std::size_t offset = 0;
  std::size_t length = 0;
};

/// One frame. The buffer begins with the image, if there is one. With chunks, the image is a chunk too and the
/// first one; all chunks follow each other without gaps, and the last tag ends the frame.
struct Frame {
  static constexpr std::size_t kMostChunks = 8;

  std::uint64_t id = 0;          ///< counts from 1 at each start; the numbers of dropped frames are missing
  std::int64_t timestampNs = 0;  ///< by the camera's clock: when the last exposure ended
  bool isComplete = true;        ///< false: damaged on the way; the bytes after `size` are missing
  std::size_t size = 0;          ///< bytes written, from the start of the buffer
  std::size_t intendedSize = 0;  ///< bytes of the whole frame; above `size` when it is not complete
  bool fits =
      true;  ///< false: the buffer was smaller than the frame: nothing was written, isComplete is false

  bool hasImage = false;
  std::size_t imageSize = 0;      ///< bytes, padding included
  std::uint32_t pixelFormat = 0;  ///< PFNC code
  std::uint32_t width = 0;        ///< pixels
  std::uint32_t height = 0;       ///< lines
  std::uint32_t offsetX = 0;
  std::uint32_t offsetY = 0;
  std::uint32_t paddingX = 0;  ///< bytes after each line
  std::uint32_t taps = 0;      ///< pixels that a Camera Link camera sends at a time; 0: has no such setting

  std::size_t chunkCount =
      0;  ///< chunks in `chunks`, the image included where there are any; 0: no chunk mode.
          ///< Of a frame that is not complete they are where they should have been
  std::array<FrameChunk, kMostChunks> chunks{};
  std::uint32_t chunkLayoutId = 0;  ///< changes when number, order or sizes of the chunks change
};

}  // namespace zyn::cameras

#endif
