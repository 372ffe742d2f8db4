/// One session with a device: from a successful open to the close.
#ifndef ZYN_TRANSPORT_DEVICE_H
#define ZYN_TRANSPORT_DEVICE_H

#include <memory>
#include <vector>

#include <KELGeniCam.h>

#include "../discovery/CameraDescription.h"
#include "../module/DeviceLink.h"
#include "../module/Interface.h"
#include "../module/ModuleNodeMap.h"
#include "../module/System.h"
#include "../producer/EventPump.h"
#include "../stream/FramePool.h"
#include "../stream/Stream.h"
#include "Notifier.h"
#include "OpenDevices.h"

namespace zyn::transport {

/// Constant after Open but for the stream, which looks after itself. Thread-safe.
class Device : public std::enable_shared_from_this<Device> {
 public:
  /// What the camera object lends to its sessions.
  struct Lent {
    std::shared_ptr<Notifier> notifier;
    std::shared_ptr<FramePool> pool;
  };

  /// Opens the device and loads its node maps. Null on failure, with the RESULT. Blocks on the device.
  static std::shared_ptr<Device> Open(const CameraDescription& camera, int accessMode, const Lent& lent,
                                      int& result);

  bool IsLost() const { return link_->IsLost(); }
  /// Asks the producer as well where it would not report a loss by itself.
  bool IsOnline() const;

  /// Null when the device has no data stream.
  Stream* DataStream() const { return stream_.get(); }
  int StreamResult() const { return streamResult_; }  ///< why there is none

  NodeMapPtr SystemMap() const { return systemMap_; }
  NodeMapPtr InterfaceMap() const { return interfaceMap_; }
  NodeMapPtr LocalMap() const { return localMap_; }
  NodeMapPtr RemoteMap() const { return remoteMap_; }
  NodeMapPtr StreamMap() const { return stream_ ? stream_->NodeMap() : nullptr; }

  /// Ends the session: wakes waiting Grab calls, stops the stream, closes the device. Returns after three
  /// seconds at most, and at once when the device is lost; what is left then is done in the background.
  static void Close(std::shared_ptr<Device> device);

 private:
  Device(const CameraDescription& camera, std::shared_ptr<System> system,
         std::shared_ptr<Interface> interface, Lent lent);
  int OpenHandle(int accessMode);
  GenTL::GC_ERROR TryOpen(int accessMode, GenTL::DEV_HANDLE& device) const;
  int Explain(GenTL::GC_ERROR error) const;
  int LoadModules();
  void StartPumps();
  void OnError(const GenTLEvent& event);
  void OnRemoteEvent(const GenTLEvent& event);
  void ShutDown();

  const CameraDescription camera_;
  const std::shared_ptr<System> system_;
  const std::shared_ptr<Interface> interface_;
  const ProducerPtr producer_;
  const Lent lent_;
  std::shared_ptr<OpenDevices::Claim> claim_;
  std::shared_ptr<void> handle_;
  std::shared_ptr<DeviceLink> link_;
  NodeMapPtr systemMap_;
  NodeMapPtr interfaceMap_;
  NodeMapPtr localMap_;
  NodeMapPtr remoteMap_;
  std::unique_ptr<Stream> stream_;
  int streamResult_ = KELGENICAM::RESULT_NO_STREAM;
  bool reportsLoss_ = false;  // the producer sends an event when the device is lost
  std::vector<std::unique_ptr<EventPump>> pumps_;
};

}  // namespace zyn::transport

#endif
