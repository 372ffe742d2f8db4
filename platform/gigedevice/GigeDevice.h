/// A GigE Vision device on this computer: a camera model that clients find and use over the network.
#ifndef ZYN_GIGEDEVICE_GIGE_DEVICE_H
#define ZYN_GIGEDEVICE_GIGE_DEVICE_H

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "cameras/CameraModel.h"
#include "cameras/Clock.h"
#include "gigedevice/AdapterConfiguration.h"
#include "gigedevice/CommandHandler.h"
#include "gigedevice/DeviceSettings.h"
#include "gigedevice/DeviceSocket.h"
#include "gigedevice/MessageChannel.h"
#include "gigedevice/StreamSender.h"

namespace zyn::gigedevice {

/// The device cannot be there: for people to read.
class DeviceError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// On the wire from construction to destruction, with three threads of its own: commands, stream and messages. Several
/// devices of one computer need an address each. Answers on the adapter of its address only.
class GigeDevice final : private DeviceActions {
 public:
  /// `clock` is the camera's. Both must outlive the device. Throws DeviceError when the address is none of this
  /// computer's, or the port is taken.
  GigeDevice(cameras::CameraModel& camera, cameras::Clock& clock, const DeviceSettings& settings);
  ~GigeDevice();
  GigeDevice(const GigeDevice&) = delete;
  GigeDevice& operator=(const GigeDevice&) = delete;

 private:
  struct Endpoint {
    DeviceSocket unicast;
    std::vector<DeviceSocket> broadcasts;
    unsigned adapterIndex = 0;
    Network network;
  };

  static std::optional<Endpoint> OpenEndpoint(gige::Ipv4 ip);
  void TellSourcePorts();
  void Run();
  void Serve(const DeviceSocket& socket, bool isBroadcast);

  void SetStream(const StreamTarget& target) override { stream_.SetTarget(target); }
  void SetMessages(const MessageTarget& target) override { messages_.SetTarget(target); }
  void FireTestPacket(const StreamTarget& target) override { stream_.SendTestPacket(target); }
  void Resend(const ResendRequest& request) override { stream_.Resend(request); }
  bool ChangeAddress(gige::Ipv4 ip, gige::Ipv4 mask) override;
  bool ChangeEndpoint(gige::Ipv4 ip);

  const bool configuresAdapter_;
  StreamSender stream_;
  MessageChannel messages_;
  Endpoint endpoint_;
  std::unique_ptr<CommandHandler> commands_;
  std::atomic<bool> isEnding_{false};
  int wake_[2] = {-1, -1};  // a pipe: what ends it wakes the thread
  std::thread thread_;
};

}  // namespace zyn::gigedevice

#endif
