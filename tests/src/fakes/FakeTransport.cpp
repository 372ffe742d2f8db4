#include "FakeTransport.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "GevIpLib.h"

namespace fakes {

namespace {
FakeTransport* current = nullptr;
}

FakeTransport::FakeTransport() {
  if (current) ADD_FAILURE() << "two transports at once";
  current = this;
}

FakeTransport::~FakeTransport() {
  current = nullptr;
}

FakeTransport& FakeTransport::Current() {
  if (!current) std::abort();  // the library called down although no test asked it to
  return *current;
}

void FakeTransport::SetPresent(const std::list<KELGENICAM::ICameraInfo*>& infos) {
  zyn::MutexLock lock(presentMutex_);
  present = infos;
}

std::list<KELGENICAM::ICameraInfo*> FakeTransport::Present() {
  zyn::MutexLock lock(presentMutex_);
  return present;
}

void FakeTransport::Enter(const char* name) {
  calls.Add(name);
  if (hook) hook(name);
}

}  // namespace fakes

using fakes::FakeTransport;

namespace KELGENICAM {

int Init() {
  FakeTransport::Current().Enter("Init");
  return FakeTransport::Current().initResult;
}

int UnInit() {
  FakeTransport::Current().Enter("UnInit");
  return FakeTransport::Current().initResult;
}

int Discovery(const char* filter, std::list<ICameraInfo*>& found) {
  FakeTransport::Current().Enter(filter ? "FilteredDiscovery" : "Discovery");
  found = FakeTransport::Current().Present();
  return 0;
}

int DiscoveryByTLType(unsigned long tlTypes, std::list<ICameraInfo*>& found) {
  FakeTransport::Current().Enter("DiscoveryByTLType");
  found = FakeTransport::Current().byTLType[tlTypes];
  return 0;
}

ICamera* CreateCamera(ICameraInfo* info) {
  FakeTransport::Current().Enter("CreateCamera");
  auto& cameras = FakeTransport::Current().cameras[info];
  if (cameras.empty()) return nullptr;
  fakes::FakeCamera* camera = cameras.front();
  cameras.pop_front();
  camera->Make();
  return camera;
}

ICamera* CreateCameraBySN(const std::string& serialNumber) {
  FakeTransport::Current().Enter("CreateCameraBySN");
  const auto known = FakeTransport::Current().camerasBySN.find(serialNumber);
  if (known == FakeTransport::Current().camerasBySN.end()) return nullptr;
  known->second->Make();
  return known->second;
}

int GetCLProtocols(std::list<std::string>& protocols) {
  FakeTransport::Current().Enter("GetCLProtocols");
  protocols = FakeTransport::Current().protocols;
  return 0;
}

int GetCLSerials(std::list<std::string>& serials) {
  FakeTransport::Current().Enter("GetCLSerials");
  serials = FakeTransport::Current().serials;
  return 0;
}

}  // namespace KELGENICAM

int SetCameraIP(const std::string& serial, const std::string& ip, const std::string& mask,
                const std::string& gateway, bool persistent) {
  FakeTransport::Current().Enter("SetCameraIP");
  FakeTransport::Current().addresses.push_back({serial, ip, mask, gateway, persistent});
  return FakeTransport::Current().setIpResult;
}
