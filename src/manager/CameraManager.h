#ifndef ZYN_MANAGER_CAMERA_MANAGER_H
#define ZYN_MANAGER_CAMERA_MANAGER_H

#include <list>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "ScanListener.h"
#include "ScanThread.h"
#include "ThreadAnnotations.h"
#include "ZynCamera/HandleArrays.h"

namespace KELGENICAM {
class ICameraInfo;
}

namespace ZYNSDK {

class LogicCamera;

/// The registry of every camera ever found, by serial number. There is one in the library.
///
/// Owns the cameras and removes none before its own end: one that disappears is marked offline, and when it
/// comes back it is the same object, so handles stay valid. May be used from any thread; several may search
/// at once. Exceptions of the transport and std::bad_alloc pass to the caller.
///
/// While an event handler is registered, its scan thread searches again and again and reports the differences.
class CameraManager {
 public:
  /// tick: how the scan thread passes the time between looks at the clock.
  explicit CameraManager(ScanThread::Tick tick = &ScanThread::SleepOneTick);
  CameraManager(const CameraManager&) = delete;
  CameraManager& operator=(const CameraManager&) = delete;
  virtual ~CameraManager();  ///< ends the scan thread before anything else

  // The public functions of the same names.

  long ZynSDKInit();
  long ZynSDKUnInit();
  long DiscoveryCameras(ZynCameraArray* out);
  long Discovery3DCameras(Zyn3DCameraArray* out);
  long DiscoveryCamerasByProtocolType(unsigned long protocolType, ZynCameraArray* out);
  long DiscoveryAllCameras(std::vector<ZynCamera>* out2D, std::vector<Zyn3DCamera>* out3D);
  long DiscoveryCamera(const char* serialNumber, ZynCamera* out);
  long Discovery3DCamera(const char* serialNumber, Zyn3DCamera* out);
  ZynStringArray GetCLCameraProtocols();
  ZynStringArray GetCLCameraSerials();
  long RegisterCameraEventHandler(ICameraEventHandler* handler) ZYN_EXCLUDES(listenerMutex_);
  long Register3DCameraEventHandler(I3DCameraEventHandler* handler) ZYN_EXCLUDES(listenerMutex_);

  /// Asks the transport for the cameras present now, without the lock, and brings the registry in line: known
  /// ones get the new description, new ones are made, all others go offline. Blocks for the search.
  void SearchCameras() ZYN_EXCLUDES(registryMutex_);
  /// The same with the transport's filter. What the filter leaves out goes offline too.
  void SearchCamerasByProtocolType(unsigned long protocolType) ZYN_EXCLUDES(registryMutex_);
  /// Searches and returns the cameras present, in the registry's order. kind: 2 only 2D, 3 only 3D, else all.
  std::vector<LogicCamera*> DiscoveryCameras(int kind);
  std::vector<LogicCamera*> DiscoveryCamerasByProtocolType(unsigned long protocolType);
  /// The camera of that serial number, present or not; null when it was never found.
  LogicCamera* FindCamera(const char* serialNumber) ZYN_EXCLUDES(registryMutex_);
  /// The same, after a search when it was never found. Null for null.
  LogicCamera* DiscoveryCamera(const char* serialNumber);

  /// Searches, then lets both listeners compare: one round of the scan thread. Calls the handlers.
  void ScanForListeners() ZYN_EXCLUDES(registryMutex_, listenerMutex_);

 private:
  void Reconcile(const std::list<KELGENICAM::ICameraInfo*>& present) ZYN_EXCLUDES(registryMutex_);
  void Meet(KELGENICAM::ICameraInfo& info) ZYN_REQUIRES(registryMutex_);
  std::vector<LogicCamera*> Collect(int kind) ZYN_EXCLUDES(registryMutex_);
  ScanListener::Cameras Snapshot() ZYN_EXCLUDES(registryMutex_);
  void RegisterScanListener(ScanListener& listener, ICameraEventHandler* handler2D,
                            I3DCameraEventHandler* handler3D) ZYN_EXCLUDES(listenerMutex_);

  const ScanThread::Tick tick_;

  zyn::Mutex
      registryMutex_;  // guards the marks of the cameras too; never held during a search of the transport
  std::unordered_map<std::string, std::unique_ptr<LogicCamera>> cameras_ ZYN_GUARDED_BY(registryMutex_);

  zyn::Mutex listenerMutex_;  // held while handlers run, so whatever those call is locked under it
  ScanListener listener2D_ ZYN_GUARDED_BY(listenerMutex_);                 // never has a 3D handler
  ScanListener listener3D_ ZYN_GUARDED_BY(listenerMutex_);                 // never has a 2D handler
  std::unique_ptr<ScanThread> scanThread_ ZYN_GUARDED_BY(listenerMutex_);  // null without a handler
};

}  // namespace ZYNSDK

#endif
