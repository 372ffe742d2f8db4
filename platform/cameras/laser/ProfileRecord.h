/// The 4-byte record of one point of a profile.
#ifndef ZYN_CAMERAS_LASER_PROFILE_RECORD_H
#define ZYN_CAMERAS_LASER_PROFILE_RECORD_H

#include <cstddef>
#include <cstdint>

namespace zyn::cameras {

constexpr std::size_t kRecordBytes = 4;

/// | byte | calibrated              | not calibrated                                                 |
/// |------|-------------------------|----------------------------------------------------------------|
/// | 0    | 0                       | 0                                                              |
/// | 1    | intensity               | intensity; its two low bits are the high bits of the sensor row |
/// | 2    | high byte of the height | low 8 bits of the sensor row                                   |
/// | 3    | low byte of the height  | 0                                                              |
inline void StoreCalibrated(std::uint8_t* at, int height, int intensity) {
  at[0] = 0;
  at[1] = static_cast<std::uint8_t>(intensity);
  at[2] = static_cast<std::uint8_t>(height >> 8);
  at[3] = static_cast<std::uint8_t>(height);
}

/// `intensity` already carries the row's high bits.
inline void StoreUncalibrated(std::uint8_t* at, int sensorRow, int intensity) {
  at[0] = 0;
  at[1] = static_cast<std::uint8_t>(intensity);
  at[2] = static_cast<std::uint8_t>(sensorRow);
  at[3] = 0;
}

}  // namespace zyn::cameras

#endif
