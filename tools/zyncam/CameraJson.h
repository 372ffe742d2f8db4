/// A camera's description as JSON.
#ifndef ZYNCAM_CAMERA_JSON_H
#define ZYNCAM_CAMERA_JSON_H

#include <nlohmann/json.hpp>

#include "Camera.h"

namespace zyncam {

/// Everything that is known of the camera; address fields for GigE Vision only, the GUID for USB3 Vision only.
nlohmann::ordered_json JsonOf(const CameraDescription& camera);

}  // namespace zyncam

#endif
