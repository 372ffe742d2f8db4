#ifndef ZYN_FAKES_FAKE_TRANSPORT_H
#define ZYN_FAKES_FAKE_TRANSPORT_H

#include <functional>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "CallLog.h"
#include "FakeCamera.h"
#include "FakeCameraInfo.h"
#include "KELGeniCam.h"
#include "ThreadAnnotations.h"

namespace fakes {

/// The transport library and the address library, as long as an object of this class exists: make one first in a
/// test. There is at most one at a time.
class FakeTransport {
 public:
  FakeTransport();
  FakeTransport(const FakeTransport&) = delete;
  FakeTransport& operator=(const FakeTransport&) = delete;
  ~FakeTransport();
  static FakeTransport& Current();

  /// What Discovery finds from now on; unlike the member, it may be changed while another thread searches.
  void SetPresent(const std::list<KELGENICAM::ICameraInfo*>& infos);
  std::list<KELGENICAM::ICameraInfo*> Present();

  // Script. The hook runs in every call with its name, and may throw or wait.
  std::function<void(const std::string& call)> hook;
  std::list<KELGENICAM::ICameraInfo*> present;                            ///< what Discovery finds
  std::map<unsigned long, std::list<KELGENICAM::ICameraInfo*>> byTLType;  ///< what DiscoveryByTLType finds
  std::map<KELGENICAM::ICameraInfo*, std::list<FakeCamera*>> cameras;  ///< what CreateCamera makes, in order
  std::map<std::string, FakeCamera*> camerasBySN;
  std::list<std::string> protocols, serials;
  int initResult = 0;
  int setIpResult = 0;

  // What was asked.
  struct Address {
    std::string serial, ip, mask, gateway;
    bool persistent;
  };
  CallLog calls;
  std::vector<Address> addresses;

  void Enter(const char* name);

 private:
  zyn::Mutex presentMutex_;  // between SetPresent and Discovery
};

}  // namespace fakes

#endif
