/// A transport without a device: cameras that always have a frame ready, so that a benchmark measures the SDK
/// alone.
#ifndef ZYN_BENCH_READY_TRANSPORT_H
#define ZYN_BENCH_READY_TRANSPORT_H

#include <cstddef>

namespace ready {

/// How many cameras a search finds from now on; their serial numbers are "R0000", "R0001", …
void SetCameraCount(std::size_t count);

/// The size of every frame from now on: `bytes` bytes in rows of 2048 one-byte pixels.
void SetFrameBytes(std::size_t bytes);

/// The bytes of the frame that every grab delivers.
const unsigned char* FrameData();

}  // namespace ready

#endif
