// A made-up area-scan camera with 300 features, as the standard names and arranges them.
#ifndef ZYN_TESTS_GENAPI_STANDARDCAMERA_H
#define ZYN_TESTS_GENAPI_STANDARDCAMERA_H

#include <string>

namespace zyn::genapi::test {

/// The nodes of the camera; registers lie on the port "Device". 10 selectable categories of 30 features each:
/// 10 integers with limits, 5 floats through converters, 5 enumerations, 4 booleans, 3 strings and 3 commands.
std::string StandardCameraNodes();
constexpr int kStandardCameraFeatures = 300;

/// A line-profile camera: heights and ranges through converters, 300 selectable profile points.
std::string ProfileCameraNodes();

}  // namespace zyn::genapi::test

#endif
