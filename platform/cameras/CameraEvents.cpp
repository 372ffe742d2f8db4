#include "cameras/CameraEvents.h"

#include <algorithm>

#include "cameras/registers/BigEndian.h"

namespace zyn::cameras {
namespace {

constexpr std::uint16_t kNoStreamChannel = 0xFFFF;

}  // namespace

std::size_t WriteEventItem(const CameraEvent& event, std::uint64_t ticks, std::uint8_t* out) {
  std::fill_n(out, kEventItemBytes, std::uint8_t{0});
  StoreBig(out + 2, event.id, 2);
  StoreBig(out + 4, kNoStreamChannel, 2);
  StoreBig(out + kEventTimestampAt, ticks, 8);
  if (event.frameId == 0) return kEventItemBytes;
  StoreBig(out + kEventFrameIdAt, event.frameId, 8);
  return kEventItemBytes + kEventDataBytes;
}

}  // namespace zyn::cameras
