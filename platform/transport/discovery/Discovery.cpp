#include "Discovery.h"

#include <chrono>
#include <memory>
#include <utility>

#include "../camera/OpenDevices.h"
#include "../producer/ProducerRegistry.h"

namespace zyn::transport {

namespace {

// The producers' own time-outs are a second each; these limits only cut off those that ignore them.
constexpr std::chrono::milliseconds kRefreshLimit{1500};
constexpr std::chrono::milliseconds kSearchLimit{2500};

struct RunningSearch {
  std::shared_ptr<Interface> interface;
  std::uint64_t ticket;
};

std::vector<RunningSearch> StartSearches(unsigned long protocols) {
  const std::vector<std::shared_ptr<System>> systems = ProducerRegistry::Instance().Systems();
  const auto deadline = Worker::Clock::now() + kRefreshLimit;
  for (const auto& system : systems) system->StartRefresh();
  std::vector<RunningSearch> searches;
  for (const auto& system : systems) {
    for (auto& interface : system->Interfaces(deadline)) {
      if (!interface->MayCarry(protocols)) continue;
      const std::uint64_t ticket = interface->StartSearch();
      searches.push_back(RunningSearch{std::move(interface), ticket});
    }
  }
  return searches;
}

}  // namespace

std::vector<CameraDescription> SearchCameras(unsigned long protocols) {
  const std::vector<RunningSearch> searches = StartSearches(protocols);
  const auto deadline = Worker::Clock::now() + kSearchLimit;
  std::vector<CameraDescription> found;
  for (const RunningSearch& search : searches) {
    for (CameraDescription& camera : search.interface->Devices(search.ticket, deadline)) {
      if ((camera.protocol & protocols) == 0) continue;
      camera.state = OpenDevices::Instance().StateOf(camera.key, camera.state);
      found.push_back(std::move(camera));
    }
  }
  return found;
}

bool MatchesFilter(const CameraDescription& camera, const char* filter) {
  return camera.key.deviceId == filter || camera.serial == filter || camera.model == filter ||
         camera.userName == filter || camera.texts[KELGENICAM::TEXT_IP_ADDRESS] == filter ||
         camera.texts[KELGENICAM::TEXT_MAC_ADDRESS] == filter;
}

}  // namespace zyn::transport
