/// The control protocol as a device speaks it: commands in, acknowledges out. No sockets and no threads: time and
/// sender come with each command.
#ifndef ZYN_GIGEDEVICE_COMMAND_HANDLER_H
#define ZYN_GIGEDEVICE_COMMAND_HANDLER_H

#include <cstdint>
#include <optional>
#include <string>

#include "cameras/CameraModel.h"
#include "cameras/Clock.h"
#include "gige/ForceIp.h"
#include "gige/GvcpWire.h"
#include "gigedevice/BootstrapRegisters.h"
#include "gigedevice/DeviceSettings.h"
#include "gigedevice/MessageTarget.h"
#include "gigedevice/Peer.h"
#include "gigedevice/StreamTarget.h"

namespace zyn::gigedevice {

/// What commands make the rest of the device do. Called on the handler's thread.
class DeviceActions {
 public:
  /// The stream's settings changed; a target without port closes the stream.
  virtual void SetStream(const StreamTarget& target) = 0;
  /// The same for messages.
  virtual void SetMessages(const MessageTarget& target) = 0;
  /// Sends one packet of exactly the size that `target` tells.
  virtual void FireTestPacket(const StreamTarget& target) = 0;
  virtual void Resend(const ResendRequest& request) = 0;
  /// Answers on another address from now on. False: not possible, and nothing changed.
  virtual bool ChangeAddress(gige::Ipv4 ip, gige::Ipv4 mask) = 0;

 protected:
  ~DeviceActions() = default;
};

/// Registers below 0x10000 are the device's, the description lies at kDescriptionAddress, and everything else is
/// the camera's. One thread at a time; camera, clock and actions must outlive it.
class CommandHandler {
 public:
  static constexpr std::uint32_t kDescriptionAddress = 0x80000000U;

  CommandHandler(cameras::CameraModel& camera, cameras::Clock& clock, DeviceActions& actions,
                 const DeviceSettings& settings, gige::Ipv4 mask);

  struct Answer {
    gige::Bytes datagram;
    bool isBroadcast = false;  ///< the asker lies in another subnet and takes a broadcast
  };
  /// Nothing for what is no command, is cut short, or asks for no acknowledge.
  std::optional<Answer> Handle(gige::ByteView datagram, Peer sender, std::int64_t nowNs);

  /// Ends the control of a client that was silent for too long. When to look again; cameras::kForever without one.
  std::int64_t CheckHeartbeat(std::int64_t nowNs);

  void SetStreamSourcePort(std::uint16_t port) { registers_.Set(reg::kStreamSourcePort, port); }
  void SetMessageSourcePort(std::uint16_t port) { registers_.Set(reg::kMessageSourcePort, port); }

 private:
  struct Command {
    std::uint8_t flags = 0;
    std::uint16_t id = 0;
    std::uint16_t requestId = 0;
    gige::ByteView payload;
  };
  struct Outcome {
    std::uint16_t status = gige::status::kSuccess;
    gige::Bytes payload;
    bool isSilent = false;
  };

  static std::optional<Command> Parse(gige::ByteView datagram);
  void FillRegisters(const DeviceSettings& settings, gige::Ipv4 mask);
  void WriteUrl();

  Outcome Execute(const Command& command, Peer sender);
  Outcome Discover();
  Outcome ForceIp(gige::ByteView payload);
  bool TakeAddress(const gige::IpSettings& settings);
  void StartWithStoredAddress();
  Outcome ReadRegisters(gige::ByteView payload, Peer sender);
  Outcome WriteRegisters(gige::ByteView payload, Peer sender);
  Outcome ReadMemory(gige::ByteView payload, Peer sender);
  Outcome WriteMemory(gige::ByteView payload, Peer sender);
  Outcome Resend(const Command& command, Peer sender);

  std::uint16_t Read(std::uint32_t address, std::span<std::uint8_t> bytes);
  std::uint16_t ReadDescription(std::uint32_t at, std::span<std::uint8_t> bytes) const;
  std::uint16_t Write(std::uint32_t address, gige::ByteView bytes, Peer sender);
  std::uint16_t WriteCamera(std::uint32_t address, gige::ByteView bytes);
  std::uint16_t WriteOwn(std::uint32_t address, std::uint32_t value, Peer sender);
  std::uint16_t WritePrivilege(std::uint32_t value, Peer sender);
  std::uint16_t WriteUserName();
  void WritePacketSize(std::uint32_t value);
  void ControlTimestamp(std::uint32_t value);
  void PublishStream();
  void PublishMessages();
  StreamTarget Target() const;

  bool IsController(Peer sender) const { return controller_ == sender; }
  bool IsBarred(Peer sender) const;
  void ReleaseControl();

  cameras::CameraModel& camera_;
  cameras::Clock& clock_;
  DeviceActions& actions_;
  const std::string description_;
  const gige::MacAddress mac_;

  BootstrapRegisters registers_;
  std::optional<Peer> controller_;
  std::int64_t lastCommandNs_ = 0;  // of the controller
  std::int64_t timestampOriginNs_ = 0;
  std::uint64_t resets_ = 0;

  // A client repeats a command whose acknowledge it misses; what writes must not run twice.
  Peer lastWriter_;
  gige::Bytes lastWrite_;
  gige::Bytes lastWriteAnswer_;
};

}  // namespace zyn::gigedevice

#endif
