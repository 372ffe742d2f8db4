#include "SimBackend.h"

#include <algorithm>

#include "cameras/Catalog.h"

namespace zyn::simulation {

std::vector<ModelEntry> Models() {
  std::vector<ModelEntry> models;
  for (const cameras::CatalogEntry& entry : cameras::Catalog())
    models.push_back({std::string(entry.model), entry.isCameraLink});
  return models;
}

SimBackend::SimBackend(const Configuration& configuration) {
  for (const CameraSetting& setting : configuration.cameras)
    slots_.push_back(std::make_unique<CameraSlot>(setting, slots_.size()));
}

producer::ProducerInfo SimBackend::Info() const {
  producer::ProducerInfo info;
  info.vendor = "Zyn";
  info.model = "ZynSimTL";
  info.version = "1.0.0";
  info.displayName = "Simulated cameras";
  info.tlType = GENTL_TLTYPE_MIXED;
  return info;
}

// The grabber is only there when something is plugged into it.
std::vector<producer::InterfaceInfo> SimBackend::FindInterfaces(std::chrono::milliseconds) {
  std::vector<producer::InterfaceInfo> interfaces = {DescribeInterface(LinkKind::ethernet)};
  const auto isOnGrabber = [](const auto& slot) { return slot->Link() == LinkKind::cameraLink; };
  if (std::any_of(slots_.begin(), slots_.end(), isOnGrabber))
    interfaces.push_back(DescribeInterface(LinkKind::cameraLink));
  return interfaces;
}

std::unique_ptr<producer::Interface> SimBackend::OpenInterface(const producer::InterfaceInfo& info) {
  const LinkKind kind = info.tlType == GENTL_TLTYPE_CL ? LinkKind::cameraLink : LinkKind::ethernet;
  return std::make_unique<SimInterface>(kind, slots_);
}

}  // namespace zyn::simulation
