/// The cameras that can be simulated.
#ifndef ZYN_CAMERAS_CATALOG_H
#define ZYN_CAMERAS_CATALOG_H

#include <cstdint>
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
  bool isLaser = false;
  bool isCameraLink = false;  ///< has a Camera Link connector and no other
  std::uint32_t columns = 0;  ///< of the largest image
  std::uint32_t rows = 0;
};

/// Every model, each once. Constant.
std::span<const CatalogEntry> Catalog();

/// The entry of a model; null when the catalog has no such model.
const CatalogEntry* FindModel(std::string_view model);

/// A camera as delivered. Null when the catalog has no such model. `clock` must outlive the camera.
std::unique_ptr<CameraModel> MakeCamera(std::string_view model, std::string serial,
                                        Clock& clock = SteadyClock());

}  // namespace zyn::cameras

#endif
