/// A few features of a camera model that its transport itself uses, found through the description.
#ifndef ZYN_GIGEDEVICE_CAMERA_FEATURES_H
#define ZYN_GIGEDEVICE_CAMERA_FEATURES_H

#include <cstdint>
#include <string_view>

#include "cameras/CameraModel.h"

namespace zyn::gigedevice {

/// Thread-safe. The camera must outlive it.
class CameraFeatures {
 public:
  explicit CameraFeatures(cameras::CameraModel& camera);

  /// Does nothing on a camera that is not acquiring.
  void StopAcquisition();
  cameras::RegisterStatus SetUserName(std::string_view name);

 private:
  struct Place {
    std::uint64_t address = 0;
    std::size_t length = 0;  // 0: there is no such feature
  };

  cameras::RegisterStatus Write(const Place& place, std::string_view bytes);

  cameras::CameraModel& camera_;
  Place stop_;
  Place userName_;
};

}  // namespace zyn::gigedevice

#endif
