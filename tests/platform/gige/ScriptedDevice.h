/// A GigE Vision device for tests: answers discovery, address assignment and register commands on the loopback
/// adapter, and misbehaves when told so. Needs a private network namespace.
#ifndef ZYN_TESTS_SCRIPTED_DEVICE_H
#define ZYN_TESTS_SCRIPTED_DEVICE_H

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "ThreadAnnotations.h"
#include "gige/GvcpWire.h"

namespace zyn::test {

struct DeviceIdentity {
  gige::Ipv4 ip;
  gige::Ipv4 mask;
  gige::Ipv4 gateway;
  gige::MacAddress mac;
  std::string manufacturer = "Maker";
  std::string model = "Model";
  std::string version = "1.2";
  std::string info = "Some words";
  std::string serial = "S1";
  std::string userName = "Name";
};

/// An identity on the loopback adapter: address 127.0.0.`host`, a MAC address ending in `host`.
DeviceIdentity LoopbackIdentity(std::uint8_t host, const std::string& serial);

/// The 248 bytes that a device with this identity answers to a discovery.
gige::Bytes DiscoveryPayload(const DeviceIdentity& identity);

/// An acknowledge datagram for `command`.
gige::Bytes MakeAck(gige::ByteView command, std::uint16_t status, const gige::Bytes& payload);

std::uint16_t CommandOf(gige::ByteView datagram);

/// Listens from construction to destruction. Serves on its address when that is a loopback address; otherwise it hears
/// broadcasts only and broadcasts its answers, as a camera of a foreign subnet does.
class ScriptedDevice {
 public:
  /// Answers to one command: sent in this order. No value: the device answers as it should.
  using Script = std::function<std::optional<std::vector<gige::Bytes>>(gige::ByteView command)>;

  explicit ScriptedDevice(const DeviceIdentity& identity);
  ~ScriptedDevice();
  ScriptedDevice(const ScriptedDevice&) = delete;
  ScriptedDevice& operator=(const ScriptedDevice&) = delete;

  void SetScript(Script script);
  DeviceIdentity Identity() const;
  std::uint32_t Register(std::uint32_t address) const;
  void SetRegister(std::uint32_t address, std::uint32_t value);
  /// Every command of this kind that arrived, in order.
  std::vector<gige::Bytes> Commands(std::uint16_t command) const;

 private:
  void Serve();
  void ReceiveFrom(int descriptor);
  std::vector<gige::Bytes> AnswersTo(gige::ByteView command) ZYN_REQUIRES(mutex_);
  gige::Bytes ProperAnswer(gige::ByteView command) ZYN_REQUIRES(mutex_);
  bool TakeAddress(gige::ByteView command) ZYN_REQUIRES(mutex_);
  void BindOwnAddress() ZYN_REQUIRES(mutex_);

  mutable Mutex mutex_;
  DeviceIdentity identity_ ZYN_GUARDED_BY(mutex_);
  Script script_ ZYN_GUARDED_BY(mutex_);
  std::map<std::uint32_t, std::uint32_t> registers_ ZYN_GUARDED_BY(mutex_);
  std::vector<gige::Bytes> commands_ ZYN_GUARDED_BY(mutex_);
  int unicast_ ZYN_GUARDED_BY(mutex_) = -1;
  int broadcast_ = -1;
  int wake_[2] = {-1, -1};
  std::thread thread_;
};

}  // namespace zyn::test

#endif
