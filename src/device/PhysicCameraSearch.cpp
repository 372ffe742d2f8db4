#include "PhysicCamera.h"

namespace ZYNSDK {

long PhysicCamera::SearchCameras(std::list<KELGENICAM::ICameraInfo*>& out) {
  std::list<KELGENICAM::ICameraInfo*> found;
  KELGENICAM::Discovery(nullptr, found);
  out = std::move(found);
  return ZYN_OK;
}

long PhysicCamera::SearchCamerasByProtocolType(unsigned long protocolType,
                                               std::list<KELGENICAM::ICameraInfo*>& out) {
  std::list<KELGENICAM::ICameraInfo*> found;
  KELGENICAM::DiscoveryByTLType(protocolType, found);
  out = std::move(found);
  return ZYN_OK;
}

}  // namespace ZYNSDK
