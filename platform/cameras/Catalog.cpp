#include "cameras/Catalog.h"

#include <algorithm>
#include <array>

#include "cameras/SimulatedCamera.h"
#include "cameras/area/AreaCore.h"
#include "cameras/laser/LaserCore.h"

namespace zyn::cameras {

namespace {

struct AreaEntry {
  CatalogEntry entry;
  AreaModel model;
};

constexpr AreaEntry kAreas[] = {
    {{.model = "ZS-A1600",
      .summary = "area camera, 1600 x 1200, mono and colour, all features",
      .columns = 1600,
      .rows = 1200},
     AreaModel{}},
    {{.model = "ZS-A640",
      .summary = "area camera, 640 x 480, older feature names: ExposureTimeAbs, GainRaw",
      .columns = 640,
      .rows = 480},
     AreaModel{.columns = 640, .rows = 480, .hasOldNames = true}},
    {{.model = "ZS-CL1280",
      .summary = "area camera for Camera Link, 1280 x 1024, mono, 8 to 12 bits on 1 to 8 taps",
      .isCameraLink = true,
      .columns = 1280,
      .rows = 1024},
     AreaModel{.columns = 1280, .rows = 1024, .isCameraLink = true}},
};

struct LaserEntry {
  CatalogEntry entry;
  LaserModel model;
};

constexpr LaserEntry kLasers[] = {
    {{.model = "KEL-LP2000",
      .summary = "laser-profile camera, 2000 points, all features",
      .isLaser = true,
      .columns = 2000,
      .rows = 1024},
     LaserModel{}},
    {{.model = "KEL-LP1000F",
      .summary = "laser-profile camera, 1000 points; counts the profiles of a scan as frames only",
      .isLaser = true,
      .columns = 1000,
      .rows = 1024},
     LaserModel{.columns = 1000, .hasLineCount = false}},
    {{.model = "VX7-2000",
      .summary = "laser-profile camera, 2000 points; does not tell how many; counts lines only",
      .isLaser = true,
      .columns = 2000,
      .rows = 1024},
     LaserModel{.hasFrameCount = false, .hasOutlineLengthMax = false}},
};

// The serial numbers of the default cameras follow this order, hence new models come last.
constexpr std::array kCatalog = {kLasers[0].entry, kLasers[1].entry, kLasers[2].entry,
                                 kAreas[0].entry,  kAreas[1].entry,  kAreas[2].entry};

Identity MakeIdentity(const CatalogEntry& entry, std::string serial) {
  Identity identity;
  identity.vendor = "ZynCamera Simulation";
  identity.model = std::string(entry.model);
  identity.version = "1.0";
  identity.serial = std::move(serial);
  identity.isLaser = entry.isLaser;
  return identity;
}

std::unique_ptr<CameraCore> MakeCore(std::string_view model, std::string serial, Clock& clock) {
  for (const AreaEntry& area : kAreas) {
    if (area.entry.model != model) continue;
    return std::make_unique<AreaCore>(MakeIdentity(area.entry, std::move(serial)), area.model, clock);
  }
  for (const LaserEntry& laser : kLasers) {
    if (laser.entry.model != model) continue;
    return std::make_unique<LaserCore>(MakeIdentity(laser.entry, std::move(serial)), laser.model, clock);
  }
  return nullptr;
}

}  // namespace

std::span<const CatalogEntry> Catalog() {
  return kCatalog;
}

const CatalogEntry* FindModel(std::string_view model) {
  const auto entry = std::find_if(kCatalog.begin(), kCatalog.end(),
                                  [model](const CatalogEntry& known) { return known.model == model; });
  return entry == kCatalog.end() ? nullptr : &*entry;
}

std::unique_ptr<CameraModel> MakeCamera(std::string_view model, std::string serial, Clock& clock) {
  auto core = MakeCore(model, std::move(serial), clock);
  if (!core) return nullptr;
  return std::make_unique<SimulatedCamera>(std::move(core), clock);
}

}  // namespace zyn::cameras
