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

}  // namespace ready

#endif
