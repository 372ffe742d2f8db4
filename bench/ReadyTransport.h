/// A transport without a device: cameras that have a frame ready always, or when they are told, so that a benchmark
/// measures the SDK alone.
#ifndef ZYN_BENCH_READY_TRANSPORT_H
#define ZYN_BENCH_READY_TRANSPORT_H

#include <cstddef>

namespace ready {

/// How many cameras a search finds from now on; their serial numbers are "R0000", "R0001", …
void SetCameraCount(std::size_t count);

/// The size of every frame from now on: `bytes` bytes in rows of 2048 one-byte pixels.
void SetFrameBytes(std::size_t bytes);

/// From now on every camera that is opened waits in its grab until a frame is made ready; false: never.
void SetWaiting(bool isWaiting);

/// Makes one frame ready for a camera that waits.
void MakeFrameReady();

/// The bytes of the frame that every grab delivers.
const unsigned char* FrameData();

/// What a 3D camera sends.
struct Laser {
  int points = 0;         ///< per line
  int linesPerFrame = 0;  ///< at least 1
  int linesPerScan = 0;   ///< a multiple of linesPerFrame
};

/// From now on a search also finds one 3D camera, "L0000", which is opened with this: its frames carry the
/// lines of a scan, over and over from the start of the stream, beside the frame that every grab delivers.
void SetLaser(const Laser& laser);

/// The records of a whole scan, 4 bytes per point, line after line.
const unsigned char* Records();

}  // namespace ready

#endif
