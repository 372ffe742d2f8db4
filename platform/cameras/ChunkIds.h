/// The IDs of the chunks that simulated cameras send.
#ifndef ZYN_CAMERAS_CHUNK_IDS_H
#define ZYN_CAMERAS_CHUNK_IDS_H

#include <cstddef>
#include <cstdint>

namespace zyn::cameras {

constexpr std::uint32_t kImageChunk = 0x5A000001;
constexpr std::uint32_t kProfileChunk = 0x5A000002;
constexpr std::uint32_t kFrameIdChunk = 0x5A000003;       ///< 8 bytes, integer
constexpr std::uint32_t kTimestampChunk = 0x5A000004;     ///< 8 bytes, integer, ns
constexpr std::uint32_t kExposureTimeChunk = 0x5A000005;  ///< 8 bytes, floating point, us
constexpr std::uint32_t kGainChunk = 0x5A000006;          ///< 8 bytes, floating point, dB
constexpr std::uint32_t kEncoderChunk = 0x5A000007;       ///< 8 bytes, integer: number of the first profile

constexpr std::size_t kChunkTagBytes = 8;

}  // namespace zyn::cameras

#endif
