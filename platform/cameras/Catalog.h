/// The cameras that can be simulated.
#ifndef ZYN_CAMERAS_CATALOG_H
#define ZYN_CAMERAS_CATALOG_H

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "cameras/CameraModel.h"
#include "cameras/Clock.h"

namespace zyn::cameras {

struct CatalogEntry {
  std::string_view model;
  std::string_view summary;
  bool isLaser;
};

/// Every model, each once. Constant.
std::span<const CatalogEntry> Catalog();

/// A camera as delivered. Null when the catalog has no such model. `clock` must outlive the camera.
std::unique_ptr<CameraModel> MakeCamera(std::string_view model, std::string serial,
                                        Clock& clock = SteadyClock());

}  // namespace zyn::cameras

#endif
