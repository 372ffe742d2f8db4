#include <KELGeniCam.h>

#include <new>

#include "camera/Camera.h"
#include "camera/CameraLink.h"
#include "discovery/Discovery.h"
#include "discovery/InfoStore.h"
#include "producer/ProducerRegistry.h"

namespace KELGENICAM {

namespace {

using zyn::transport::CameraDescription;
using zyn::transport::InfoStore;
using zyn::transport::ProducerRegistry;

constexpr unsigned long kAllProtocols = ~0UL;

// No exception leaves the library: what goes wrong inside becomes a result.
template <class Work>
int Guarded(Work&& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return RESULT_OUT_OF_MEMORY;
  } catch (...) {
    return RESULT_ERROR;
  }
}

int Search(unsigned long protocols, const char* filter, std::list<ICameraInfo*>& found) {
  found.clear();
  if (!ProducerRegistry::Instance().IsInitialized()) return RESULT_NOT_INITIALIZED;
  std::vector<CameraDescription> cameras = zyn::transport::SearchCameras(protocols);
  if (filter && *filter != '\0') {
    std::erase_if(cameras,
                  [&](const auto& camera) { return !zyn::transport::MatchesFilter(camera, filter); });
  }
  found = InfoStore::Instance().Publish(std::move(cameras));
  return RESULT_OK;
}

ICamera* MakeCamera(zyn::transport::CameraInfo* info) {
  return info ? new zyn::transport::Camera(*info) : nullptr;
}

}  // namespace

int Init() {
  return Guarded([] { return ProducerRegistry::Instance().Init(); });
}

int UnInit() {
  return Guarded([] { return ProducerRegistry::Instance().UnInit(); });
}

int Discovery(const char* filter, std::list<ICameraInfo*>& found) {
  return Guarded([&] { return Search(kAllProtocols, filter, found); });
}

int DiscoveryByTLType(unsigned long tlTypes, std::list<ICameraInfo*>& found) {
  return Guarded([&] { return Search(tlTypes, nullptr, found); });
}

ICamera* CreateCamera(ICameraInfo* info) {
  ICamera* camera = nullptr;
  Guarded([&] {
    camera = MakeCamera(InfoStore::Instance().Find(info));
    return RESULT_OK;
  });
  return camera;
}

ICamera* CreateCameraBySN(const std::string& serialNumber) {
  ICamera* camera = nullptr;
  Guarded([&] {
    auto* info = InfoStore::Instance().FindSerial(serialNumber);
    if (!info) {
      std::list<ICameraInfo*> found;
      Search(kAllProtocols, nullptr, found);
      info = InfoStore::Instance().FindSerial(serialNumber);
    }
    camera = MakeCamera(info);
    return RESULT_OK;
  });
  return camera;
}

int GetCLProtocols(std::list<std::string>& protocols) {
  return Guarded([&] {
    protocols = zyn::transport::FindProtocolDrivers();
    return RESULT_OK;
  });
}

int GetCLSerials(std::list<std::string>& serials) {
  return Guarded([&] {
    serials = zyn::transport::FindSerialPorts();
    return RESULT_OK;
  });
}

void LoadReport(std::list<LoadReportEntry>& entries) {
  Guarded([&] {
    entries = ProducerRegistry::Instance().Report();
    return RESULT_OK;
  });
}

}  // namespace KELGENICAM
