#include "cameras/Catalog.h"

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
    {{"ZS-A1600", "area camera, 1600 x 1200, mono and colour, all features", false}, AreaModel{}},
    {{"ZS-A640", "area camera, 640 x 480, older feature names: ExposureTimeAbs, GainRaw", false},
     AreaModel{.columns = 640, .rows = 480, .hasOldNames = true}},
};

struct LaserEntry {
  CatalogEntry entry;
  LaserModel model;
};

constexpr LaserEntry kLasers[] = {
    {{"KEL-LP2000", "laser-profile camera, 2000 points, all features", true}, LaserModel{}},
    {{"KEL-LP1000F", "laser-profile camera, 1000 points; counts the profiles of a scan as frames only", true},
     LaserModel{.columns = 1000, .hasLineCount = false}},
    {{"VX7-2000", "laser-profile camera, 2000 points; does not tell how many; counts lines only", true},
     LaserModel{.hasFrameCount = false, .hasOutlineLengthMax = false}},
};

constexpr std::array kCatalog = {kLasers[0].entry, kLasers[1].entry, kLasers[2].entry, kAreas[0].entry,
                                 kAreas[1].entry};

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

std::unique_ptr<CameraModel> MakeCamera(std::string_view model, std::string serial, Clock& clock) {
  auto core = MakeCore(model, std::move(serial), clock);
  if (!core) return nullptr;
  return std::make_unique<SimulatedCamera>(std::move(core), clock);
}

}  // namespace zyn::cameras
