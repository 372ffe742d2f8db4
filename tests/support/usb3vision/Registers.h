/// The register space of a USB3 Vision camera: the bootstrap registers, the description, and those of a camera model.
#ifndef ZYN_TEST_USB3VISION_REGISTERS_H
#define ZYN_TEST_USB3VISION_REGISTERS_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "ThreadAnnotations.h"
#include "cameras/CameraModel.h"
#include "usb3vision/Wire.h"

namespace zyntest::usb3 {

constexpr std::size_t kLargestControlPacket = 1024;

/// Thread-safe. The camera must outlive it.
class Registers {
 public:
  explicit Registers(zyn::cameras::CameraModel& camera);

  Status Read(std::uint64_t address, std::span<std::uint8_t> bytes);
  Status Write(std::uint64_t address, std::span<const std::uint8_t> bytes);

  /// The bit by which the host lets the stream endpoint send.
  bool IsStreamEnabled() const;

 private:
  void SetText(std::uint64_t address, std::string_view text) ZYN_REQUIRES(mutex_);
  void SetNumber(std::uint64_t address, std::uint64_t value, std::size_t bytes) ZYN_REQUIRES(mutex_);

  zyn::cameras::CameraModel& camera_;
  mutable zyn::Mutex mutex_;
  Bytes bootstrap_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyntest::usb3

#endif
