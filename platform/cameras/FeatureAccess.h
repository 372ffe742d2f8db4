/// The few features that a transport itself uses, by name.
#ifndef ZYN_CAMERAS_FEATURE_ACCESS_H
#define ZYN_CAMERAS_FEATURE_ACCESS_H

#include <string_view>

#include "cameras/CameraModel.h"

namespace zyn::cameras {

/// All answer `unmapped` when the camera has no such feature. Thread-safe, as the camera is.

/// `outOfRange` when the text is longer than the feature takes.
RegisterStatus WriteTextFeature(CameraModel& camera, std::string_view feature, std::string_view text);

RegisterStatus ExecuteCommand(CameraModel& camera, std::string_view command);

/// AcquisitionStop, when frames are acquired; else nothing.
RegisterStatus StopAcquisition(CameraModel& camera);

}  // namespace zyn::cameras

#endif
