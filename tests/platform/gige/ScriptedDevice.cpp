#include "ScriptedDevice.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace zyn::test {
namespace {

using gige::Bytes;
using gige::ByteView;
using gige::Ipv4;

std::uint16_t Get16(ByteView b, std::size_t at) {
  return static_cast<std::uint16_t>(b[at] << 8U | b[at + 1]);
}

std::uint32_t Get32(ByteView b, std::size_t at) {
  return static_cast<std::uint32_t>(Get16(b, at)) << 16U | Get16(b, at + 2);
}

void Put16(Bytes& bytes, std::size_t at, std::uint16_t value) {
  bytes[at] = static_cast<std::uint8_t>(value >> 8U);
  bytes[at + 1] = static_cast<std::uint8_t>(value);
}

void Put32(Bytes& bytes, std::size_t at, std::uint32_t value) {
  Put16(bytes, at, static_cast<std::uint16_t>(value >> 16U));
  Put16(bytes, at + 2, static_cast<std::uint16_t>(value));
}

void Append32(Bytes& bytes, std::uint32_t value) {
  bytes.resize(bytes.size() + 4);
  Put32(bytes, bytes.size() - 4, value);
}

void PutText(Bytes& bytes, std::size_t at, std::size_t most, const std::string& text) {
  std::copy_n(text.begin(), std::min(most, text.size()), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

sockaddr_in SocketAddress(Ipv4 ip, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(ip.value);
  return address;
}

int Listen(Ipv4 ip) {
  const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  const int on = 1;
  setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  setsockopt(descriptor, SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
  const sockaddr_in address = SocketAddress(ip, gige::kGvcpPort);
  if (bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return descriptor;
  close(descriptor);
  throw std::runtime_error("the scripted device cannot listen on " + gige::ToText(ip));
}

}  // namespace

DeviceIdentity LoopbackIdentity(std::uint8_t host, const std::string& serial) {
  DeviceIdentity identity;
  identity.ip = Ipv4{0x7F000000U | host};
  identity.mask = Ipv4{0xFF000000U};
  identity.gateway = Ipv4{0x7F0000FEU};
  identity.mac.bytes = {0x02, 0x11, 0x22, 0x33, 0x44, host};
  identity.serial = serial;
  return identity;
}

Bytes DiscoveryPayload(const DeviceIdentity& identity) {
  Bytes payload(0xF8);
  payload[1] = 2;  // version 2.0
  std::copy(identity.mac.bytes.begin(), identity.mac.bytes.end(), payload.begin() + 0x0A);
  Put32(payload, 0x10, 7);
  Put32(payload, 0x14, 6);
  Put32(payload, 0x24, identity.ip.value);
  Put32(payload, 0x34, identity.mask.value);
  Put32(payload, 0x44, identity.gateway.value);
  PutText(payload, 0x48, 32, identity.manufacturer);
  PutText(payload, 0x68, 32, identity.model);
  PutText(payload, 0x88, 32, identity.version);
  PutText(payload, 0xA8, 48, identity.info);
  PutText(payload, 0xD8, 16, identity.serial);
  PutText(payload, 0xE8, 16, identity.userName);
  return payload;
}

Bytes MakeAck(ByteView command, std::uint16_t status, const Bytes& payload) {
  Bytes ack(8 + payload.size());
  Put16(ack, 0, status);
  Put16(ack, 2, static_cast<std::uint16_t>(CommandOf(command) + 1));
  Put16(ack, 4, static_cast<std::uint16_t>(payload.size()));
  ack[6] = command[6];
  ack[7] = command[7];
  std::copy(payload.begin(), payload.end(), ack.begin() + 8);
  return ack;
}

std::uint16_t CommandOf(ByteView datagram) {
  return Get16(datagram, 2);
}

ScriptedDevice::ScriptedDevice(const DeviceIdentity& identity) : identity_(identity) {
  broadcast_ = Listen(gige::kLimitedBroadcast);
  if (pipe2(wake_, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  {
    const MutexLock lock(mutex_);
    registers_[gige::bootstrap::kIpConfiguration] = 6;
    registers_[gige::bootstrap::kControlPrivilege] = 0;
    for (const std::uint32_t address : {gige::bootstrap::kPersistentIp, gige::bootstrap::kPersistentMask,
                                        gige::bootstrap::kPersistentGateway}) {
      registers_[address] = 0;
    }
    BindOwnAddress();
  }
  thread_ = std::thread([this] { Serve(); });
}

ScriptedDevice::~ScriptedDevice() {
  close(wake_[1]);
  thread_.join();
  close(wake_[0]);
  close(broadcast_);
  const MutexLock lock(mutex_);
  if (unicast_ >= 0) close(unicast_);
}

void ScriptedDevice::SetScript(Script script) {
  const MutexLock lock(mutex_);
  script_ = std::move(script);
}

DeviceIdentity ScriptedDevice::Identity() const {
  const MutexLock lock(mutex_);
  return identity_;
}

std::uint32_t ScriptedDevice::Register(std::uint32_t address) const {
  const MutexLock lock(mutex_);
  const auto found = registers_.find(address);
  return found == registers_.end() ? 0 : found->second;
}

void ScriptedDevice::SetRegister(std::uint32_t address, std::uint32_t value) {
  const MutexLock lock(mutex_);
  registers_[address] = value;
}

std::vector<Bytes> ScriptedDevice::Commands(std::uint16_t command) const {
  const MutexLock lock(mutex_);
  std::vector<Bytes> result;
  std::copy_if(commands_.begin(), commands_.end(), std::back_inserter(result),
               [&](const Bytes& datagram) { return CommandOf(datagram) == command; });
  return result;
}

void ScriptedDevice::Serve() {
  while (true) {
    int own = -1;
    {
      const MutexLock lock(mutex_);
      own = unicast_;
    }
    std::array<pollfd, 3> descriptors{{{wake_[0], POLLIN, 0}, {broadcast_, POLLIN, 0}, {own, POLLIN, 0}}};
    poll(descriptors.data(), descriptors.size(), -1);
    if (descriptors[0].revents != 0) return;
    if (descriptors[1].revents != 0) ReceiveFrom(broadcast_);
    if (descriptors[2].revents != 0) ReceiveFrom(own);
  }
}

void ScriptedDevice::ReceiveFrom(int descriptor) {
  std::array<std::uint8_t, 2048> buffer{};
  sockaddr_in sender{};
  socklen_t senderBytes = sizeof sender;
  const ssize_t bytes = recvfrom(descriptor, buffer.data(), buffer.size(), 0,
                                 reinterpret_cast<sockaddr*>(&sender), &senderBytes);
  if (bytes < 8) return;
  const MutexLock lock(mutex_);
  const ByteView command = ByteView(buffer).first(static_cast<std::size_t>(bytes));
  commands_.emplace_back(command.begin(), command.end());
  const bool isForeign = unicast_ < 0;
  if (isForeign) sender.sin_addr.s_addr = htonl(gige::kLimitedBroadcast.value);
  const bool mayAnswer = !isForeign || (command[1] & gige::flag::kAllowBroadcastAck) != 0;
  for (const Bytes& answer : AnswersTo(command)) {
    if (!mayAnswer) return;
    if (isForeign) {
      // Sent through the loopback adapter, whatever the routes are.
      const int out = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
      const int on = 1;
      setsockopt(out, SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
      setsockopt(out, SOL_SOCKET, SO_BINDTODEVICE, "lo", 3);
      sendto(out, answer.data(), answer.size(), 0, reinterpret_cast<sockaddr*>(&sender), sizeof sender);
      close(out);
    } else {
      sendto(unicast_, answer.data(), answer.size(), 0, reinterpret_cast<sockaddr*>(&sender), sizeof sender);
    }
  }
}

std::vector<Bytes> ScriptedDevice::AnswersTo(ByteView command) {
  if (script_) {
    if (auto answers = script_(command)) return *answers;
  }
  if (CommandOf(command) == gige::command::kForceIp && !TakeAddress(command)) return {};
  return {ProperAnswer(command)};
}

Bytes ScriptedDevice::ProperAnswer(ByteView command) {
  const ByteView payload = command.subspan(8);
  Bytes answer;
  switch (CommandOf(command)) {
    case gige::command::kDiscovery:
      return MakeAck(command, 0, DiscoveryPayload(identity_));
    case gige::command::kForceIp:
      return MakeAck(command, 0, {});
    case gige::command::kReadRegister: {
      const auto found = registers_.find(Get32(payload, 0));
      if (found == registers_.end()) return MakeAck(command, gige::status::kInvalidAddress, {});
      Append32(answer, found->second);
      return MakeAck(command, 0, answer);
    }
    case gige::command::kWriteRegister:
      registers_[Get32(payload, 0)] = Get32(payload, 4);
      return MakeAck(command, 0, {0, 0, 0, 1});
    case gige::command::kReadMemory:
      Append32(answer, Get32(payload, 0));
      for (std::uint32_t i = 0; i < Get16(payload, 6); i += 4)
        Append32(answer, registers_[Get32(payload, 0) + i]);
      return MakeAck(command, 0, answer);
    case gige::command::kWriteMemory:
      for (std::size_t i = 4; i + 4 <= payload.size(); i += 4) {
        registers_[Get32(payload, 0) + static_cast<std::uint32_t>(i - 4)] = Get32(payload, i);
      }
      return MakeAck(command, 0, {0, 0, 0, static_cast<std::uint8_t>(payload.size() - 4)});
    default:
      return MakeAck(command, gige::status::kNotImplemented, {});
  }
}

bool ScriptedDevice::TakeAddress(ByteView command) {
  const ByteView payload = command.subspan(8);
  if (payload.size() < 56 ||
      !std::equal(identity_.mac.bytes.begin(), identity_.mac.bytes.end(), payload.begin() + 2)) {
    return false;
  }
  if (registers_[gige::bootstrap::kControlPrivilege] != 0) return false;
  identity_.ip = Ipv4{Get32(payload, 20)};
  identity_.mask = Ipv4{Get32(payload, 36)};
  identity_.gateway = Ipv4{Get32(payload, 52)};
  BindOwnAddress();
  return true;
}

void ScriptedDevice::BindOwnAddress() {
  if (unicast_ >= 0) close(unicast_);
  unicast_ = identity_.ip.value >> 24U == 127 ? Listen(identity_.ip) : -1;
}

}  // namespace zyn::test
