/// Access to a camera model's registers as a transport makes it.
#ifndef ZYN_SIMULATION_CAMERA_REGISTERS_H
#define ZYN_SIMULATION_CAMERA_REGISTERS_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "cameras/CameraModel.h"

namespace zyn::simulation {

/// Where the description lies, above everything that a camera has.
constexpr std::uint64_t kDescriptionAddress = 0x4000000000000000;

/// Reads any range of bytes of the camera or its description. Throws producer::Error.
void ReadBytes(cameras::CameraModel& camera, std::uint64_t address, void* data, std::size_t size);

/// Writes registers. Throws producer::Error.
void WriteBytes(cameras::CameraModel& camera, std::uint64_t address, const void* data, std::size_t size);

/// Writes a text feature of which only the name is known. Throws producer::Error.
void WriteText(cameras::CameraModel& camera, const std::string& feature, const std::string& text);

}  // namespace zyn::simulation

#endif
