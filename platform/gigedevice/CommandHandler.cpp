#include "gigedevice/CommandHandler.h"

#include <algorithm>
#include <cstdio>

#include "cameras/FeatureAccess.h"
#include "cameras/registers/BigEndian.h"
#include "gigedevice/TransportDescription.h"

namespace zyn::gigedevice {
namespace {

namespace bootstrap = gige::bootstrap;
namespace command = gige::command;
namespace status = gige::status;
using cameras::LoadBig;
using cameras::RegisterStatus;
using cameras::StoreBig;
using gige::Bytes;
using gige::ByteView;
using gige::Ipv4;

constexpr std::size_t kWord = 4;
constexpr std::size_t kMostData = 536;  // of one memory command: it fits a datagram of 576 bytes
constexpr std::size_t kForceIpBytes = 56;
constexpr std::size_t kResendBytes = 12;
constexpr std::size_t kExtendedResendBytes = 20;
constexpr std::size_t kIdentityBytes = 0xF8;
constexpr std::uint16_t kPacketResend = 0x0040;
constexpr std::uint8_t kExtendedIdFlag = 0x10;
constexpr std::uint32_t kVersion20 = 0x00020000;
constexpr std::uint32_t kTransmitterUtf8 = 0x80000001;
constexpr std::uint32_t kEveryIpMethod = 7;
constexpr std::uint32_t kLinkLocal = 4;
// User name, serial number, heartbeat can be disabled, primary application, EVENTDATA, EVENT, concatenation and
// WRITEMEM.
constexpr std::uint32_t kCapabilities = 0xE800001BU;
constexpr std::uint32_t kResendCapability = 1U << 2U;
// Source port is told, 16-bit numbers are supported.
constexpr std::uint32_t kStreamCapabilities = 0xC0000000U;
// Source port is told.
constexpr std::uint32_t kMessageCapabilities = 1U << 31U;
constexpr std::uint32_t kMessageTimeoutMs = 200;
constexpr std::uint32_t kMessageRetries = 3;
constexpr std::uint32_t kLongestMessageTimeoutMs = 10'000;
constexpr std::uint32_t kMostMessageRetries = 10;
constexpr std::uint32_t kExtendedIds = 1U << 30U;
constexpr std::uint32_t kHeartbeatDisabled = 1;
constexpr std::uint32_t kDefaultHeartbeatMs = 3000;
constexpr std::uint32_t kShortestHeartbeatMs = 500;
constexpr std::uint32_t kNsPerSecond = 1'000'000'000;
constexpr std::int64_t kNsPerMs = 1'000'000;
constexpr std::uint32_t kFireTestPacket = 1U << 31U;
constexpr std::uint32_t kDoNotFragment = 1U << 30U;
constexpr std::uint32_t kDefaultPacketSize = 1500;
constexpr std::uint32_t kLatch = 2;
constexpr std::uint32_t kReset = 1;
constexpr std::uint32_t kLinkMbps = 1000;
constexpr std::uint16_t kNoAnswer = 0xFFFF;  // no status of the protocol: the camera keeps silent

std::uint16_t Get16(ByteView bytes, std::size_t at) {
  return static_cast<std::uint16_t>(LoadBig(&bytes[at], 2));
}

std::uint32_t Get32(ByteView bytes, std::size_t at) {
  return static_cast<std::uint32_t>(LoadBig(&bytes[at], kWord));
}

std::uint16_t StatusOf(RegisterStatus result, std::uint16_t denied) {
  switch (result) {
    case RegisterStatus::ok:
      return status::kSuccess;
    case RegisterStatus::unmapped:
      return status::kInvalidAddress;
    case RegisterStatus::accessDenied:
      return denied;
    case RegisterStatus::busy:
      return status::kBusy;
    case RegisterStatus::outOfRange:
      return status::kInvalidParameter;
    case RegisterStatus::badAlignment:
      return status::kBadAlignment;
    case RegisterStatus::noAnswer:
      break;
  }
  return kNoAnswer;
}

Bytes Acknowledge(std::uint16_t statusCode, std::uint16_t commandId, std::uint16_t requestId,
                  ByteView payload) {
  Bytes bytes(gige::kGvcpHeaderBytes + payload.size());
  StoreBig(bytes.data(), statusCode, 2);
  StoreBig(&bytes[2], commandId + 1U, 2);
  StoreBig(&bytes[4], payload.size(), 2);
  StoreBig(&bytes[6], requestId, 2);
  std::copy(payload.begin(), payload.end(), bytes.begin() + gige::kGvcpHeaderBytes);
  return bytes;
}

bool IsWrite(std::uint16_t id) {
  return id == command::kWriteRegister || id == command::kWriteMemory;
}

// How many registers, or bytes, were written.
Bytes Written(std::size_t count) {
  Bytes payload(kWord);
  StoreBig(&payload[2], count, 2);
  return payload;
}

}  // namespace

CommandHandler::CommandHandler(cameras::CameraModel& camera, cameras::Clock& clock, DeviceActions& actions,
                               const DeviceSettings& settings, Ipv4 mask)
    : camera_(camera),
      clock_(clock),
      actions_(actions),
      description_(WithTransportFeatures(camera.Description())),
      mac_(settings.mac),
      resets_(camera.ResetCount()) {
  FillRegisters(settings, mask);
}

void CommandHandler::FillRegisters(const DeviceSettings& settings, Ipv4 mask) {
  const cameras::Identity identity = camera_.GetIdentity();
  registers_.Set(reg::kVersion, kVersion20);
  registers_.Set(reg::kDeviceMode, kTransmitterUtf8);
  registers_.Set(reg::kMacHigh, static_cast<std::uint32_t>(LoadBig(mac_.bytes.data(), 2)));
  registers_.Set(reg::kMacLow, static_cast<std::uint32_t>(LoadBig(mac_.bytes.data() + 2, kWord)));
  registers_.Set(reg::kSupportedIpConfiguration, kEveryIpMethod);
  registers_.Set(bootstrap::kIpConfiguration, kEveryIpMethod);
  registers_.Set(reg::kCurrentIp, settings.ip.value);
  registers_.Set(reg::kCurrentMask, mask.value);
  registers_.SetText(reg::kManufacturer, 32, identity.vendor);
  registers_.SetText(reg::kModel, 32, identity.model);
  registers_.SetText(reg::kDeviceVersion, 32, identity.version);
  registers_.SetText(reg::kManufacturerInfo, 48, "Virtual camera");
  registers_.SetText(reg::kSerial, 16, identity.serial);
  WriteUrl();
  registers_.Set(reg::kInterfaceCount, 1);
  registers_.Set(reg::kLinkSpeed, kLinkMbps);
  registers_.Set(reg::kMessageChannelCount, 1);
  registers_.Set(reg::kStreamChannelCount, 1);
  registers_.Set(reg::kActiveLinkCount, 1);
  registers_.Set(reg::kStreamCapability, kStreamCapabilities);
  registers_.Set(reg::kMessageCapability, kMessageCapabilities);
  registers_.Set(reg::kMessageTimeout, kMessageTimeoutMs);
  registers_.Set(reg::kMessageRetries, kMessageRetries);
  registers_.Set(bootstrap::kCapability, kCapabilities | (settings.hasResend ? kResendCapability : 0));
  registers_.Set(bootstrap::kHeartbeatTimeout, kDefaultHeartbeatMs);
  registers_.Set(bootstrap::kTickFrequencyLow, kNsPerSecond);
  registers_.Set(reg::kStreamPacketSize, kDefaultPacketSize);
}

void CommandHandler::WriteUrl() {
  char url[96];
  std::snprintf(url, sizeof url, "Local:camera.xml;%X;%zX", static_cast<unsigned>(kDescriptionAddress),
                description_.size());
  registers_.SetText(bootstrap::kXmlUrl, bootstrap::kXmlUrlBytes, url);
}

std::optional<CommandHandler::Command> CommandHandler::Parse(ByteView datagram) {
  if (datagram.size() < gige::kGvcpHeaderBytes || datagram[0] != gige::kGvcpKey) return std::nullopt;
  const std::size_t length = Get16(datagram, 4);
  if (length > datagram.size() - gige::kGvcpHeaderBytes) return std::nullopt;
  return Command{datagram[1], Get16(datagram, 2), Get16(datagram, 6),
                 datagram.subspan(gige::kGvcpHeaderBytes, length)};
}

std::optional<CommandHandler::Answer> CommandHandler::Handle(ByteView datagram, Peer sender,
                                                             std::int64_t nowNs) {
  CheckHeartbeat(nowNs);
  const std::optional<Command> received = Parse(datagram);
  if (!received) return std::nullopt;
  if (IsController(sender)) lastCommandNs_ = nowNs;
  const bool asksAcknowledge = (received->flags & gige::flag::kAckRequired) != 0;
  if (IsWrite(received->id) && sender == lastWriter_ && std::ranges::equal(datagram, lastWrite_)) {
    if (!asksAcknowledge) return std::nullopt;
    return Answer{lastWriteAnswer_, false};
  }
  const Outcome outcome = Execute(*received, sender);
  if (IsController(sender)) lastCommandNs_ = nowNs;  // it may have become it just now
  if (outcome.isSilent || outcome.status == kNoAnswer) return std::nullopt;
  Answer answer{Acknowledge(outcome.status, received->id, received->requestId, outcome.payload), false};
  if (IsWrite(received->id) && received->requestId != 0) {
    lastWriter_ = sender;
    lastWrite_.assign(datagram.begin(), datagram.end());
    lastWriteAnswer_ = answer.datagram;
  }
  if (!asksAcknowledge) return std::nullopt;
  const bool mayBroadcast = (received->flags & gige::flag::kAllowBroadcastAck) != 0 &&
                            (received->id == command::kDiscovery || received->id == command::kForceIp);
  answer.isBroadcast = mayBroadcast && !gige::InSameSubnet(sender.ip, Ipv4{registers_.Get(reg::kCurrentIp)},
                                                           Ipv4{registers_.Get(reg::kCurrentMask)});
  return answer;
}

CommandHandler::Outcome CommandHandler::Execute(const Command& received, Peer sender) {
  switch (received.id) {
    case command::kDiscovery:
      return Discover();
    case command::kForceIp:
      return ForceIp(received.payload);
    case command::kReadRegister:
      return ReadRegisters(received.payload, sender);
    case command::kWriteRegister:
      return WriteRegisters(received.payload, sender);
    case command::kReadMemory:
      return ReadMemory(received.payload, sender);
    case command::kWriteMemory:
      return WriteMemory(received.payload, sender);
    case kPacketResend:
      return Resend(received, sender);
    default:
      return {status::kNotImplemented, {}};
  }
}

CommandHandler::Outcome CommandHandler::Discover() {
  Bytes identity(kIdentityBytes);
  Read(0, identity);
  return {status::kSuccess, std::move(identity)};
}

// A device that is controlled, or is not the one that is meant, keeps silent.
CommandHandler::Outcome CommandHandler::ForceIp(ByteView payload) {
  Outcome silent;
  silent.isSilent = true;
  if (payload.size() < kForceIpBytes || controller_) return silent;
  if (!std::ranges::equal(payload.subspan(2, mac_.bytes.size()), mac_.bytes)) return silent;
  const gige::IpSettings settings{{Get32(payload, 20)}, {Get32(payload, 36)}, {Get32(payload, 52)}};
  if (settings.ip == gige::kNoAddress) {
    StartWithStoredAddress();
    return silent;
  }
  if (!TakeAddress(settings)) return {status::kInvalidParameter, {}};
  return {};
}

bool CommandHandler::TakeAddress(const gige::IpSettings& settings) {
  if (!gige::IsSubnetMask(settings.mask) || !gige::IsHostAddress(settings.ip, settings.mask)) return false;
  if (!actions_.ChangeAddress(settings.ip, settings.mask)) return false;
  registers_.Set(reg::kCurrentIp, settings.ip.value);
  registers_.Set(reg::kCurrentMask, settings.mask.value);
  registers_.Set(reg::kCurrentGateway, settings.gateway.value);
  return true;
}

// As when the power comes on. Nobody else gives this device an address, so without a stored one it keeps what it has.
void CommandHandler::StartWithStoredAddress() {
  if ((registers_.Get(bootstrap::kIpConfiguration) & gige::kPersistentIpEnabled) == 0) return;
  TakeAddress({{registers_.Get(bootstrap::kPersistentIp)},
               {registers_.Get(bootstrap::kPersistentMask)},
               {registers_.Get(bootstrap::kPersistentGateway)}});
}

bool CommandHandler::IsBarred(Peer sender) const {
  const bool isExclusive = (registers_.Get(bootstrap::kControlPrivilege) & gige::kExclusiveAccess) != 0;
  return isExclusive && !IsController(sender);
}

CommandHandler::Outcome CommandHandler::ReadRegisters(ByteView payload, Peer sender) {
  if (payload.empty() || payload.size() % kWord != 0 || payload.size() > kMostData)
    return {status::kInvalidParameter, {}};
  if (IsBarred(sender)) return {status::kAccessDenied, {}};
  Bytes values(payload.size());
  for (std::size_t at = 0; at < payload.size(); at += kWord) {
    const std::uint16_t result = Read(Get32(payload, at), std::span(values).subspan(at, kWord));
    if (result != status::kSuccess) return {result, {}};
  }
  return {status::kSuccess, std::move(values)};
}

CommandHandler::Outcome CommandHandler::WriteRegisters(ByteView payload, Peer sender) {
  constexpr std::size_t kPair = 2 * kWord;
  if (payload.empty() || payload.size() % kPair != 0 || payload.size() > kMostData + kWord)
    return {status::kInvalidParameter, {}};
  std::size_t done = 0;
  for (; done < payload.size() / kPair; ++done) {
    const ByteView pair = payload.subspan(done * kPair, kPair);
    const std::uint16_t result = Write(Get32(pair, 0), pair.subspan(kWord), sender);
    if (result != status::kSuccess) return {result, Written(done)};
  }
  return {status::kSuccess, Written(done)};
}

CommandHandler::Outcome CommandHandler::ReadMemory(ByteView payload, Peer sender) {
  if (payload.size() != 2 * kWord) return {status::kInvalidParameter, {}};
  const std::size_t count = Get16(payload, 6);
  if (count == 0 || count > kMostData) return {status::kInvalidParameter, {}};
  if (IsBarred(sender)) return {status::kAccessDenied, {}};
  Bytes answer(kWord + count);
  std::copy_n(payload.begin(), kWord, answer.begin());
  const std::uint16_t result = Read(Get32(payload, 0), std::span(answer).subspan(kWord));
  if (result != status::kSuccess) return {result, {}};
  return {status::kSuccess, std::move(answer)};
}

CommandHandler::Outcome CommandHandler::WriteMemory(ByteView payload, Peer sender) {
  if (payload.size() <= kWord || payload.size() > kWord + kMostData) return {status::kInvalidParameter, {}};
  const ByteView data = payload.subspan(kWord);
  const std::uint16_t result = Write(Get32(payload, 0), data, sender);
  if (result != status::kSuccess) return {result, Written(0)};
  return {status::kSuccess, Written(data.size())};
}

// Comes from the stream's socket, so only the computer is compared.
CommandHandler::Outcome CommandHandler::Resend(const Command& received, Peer sender) {
  Outcome silent;
  silent.isSilent = true;
  if ((registers_.Get(bootstrap::kCapability) & kResendCapability) == 0) return {status::kNotImplemented, {}};
  ResendRequest request;
  request.hasExtendedIds = (received.flags & kExtendedIdFlag) != 0;
  const ByteView payload = received.payload;
  if (payload.size() < (request.hasExtendedIds ? kExtendedResendBytes : kResendBytes)) return silent;
  if (!controller_ || controller_->ip != sender.ip || Get16(payload, 0) != 0) return silent;
  const std::uint32_t packetMask = request.hasExtendedIds ? 0xFFFFFFFFU : 0xFFFFFFU;
  request.blockId = request.hasExtendedIds ? LoadBig(&payload[12], 8) : Get16(payload, 2);
  request.firstPacket = Get32(payload, 4) & packetMask;
  request.lastPacket = Get32(payload, 8) & packetMask;
  actions_.Resend(request);
  return silent;
}

std::uint16_t CommandHandler::Read(std::uint32_t address, std::span<std::uint8_t> bytes) {
  if (address % kWord != 0 || bytes.size() % kWord != 0) return status::kBadAlignment;
  if (address >= kDescriptionAddress) return ReadDescription(address - kDescriptionAddress, bytes);
  if (address >= reg::kEnd) return StatusOf(camera_.ReadRegisters(address, bytes), status::kAccessDenied);
  if (bytes.size() > reg::kEnd - address) return status::kInvalidAddress;
  if (!registers_.IsReadable(address, bytes.size())) return status::kInvalidAddress;
  // The camera's own feature names it, too.
  registers_.SetText(reg::kUserName, reg::kUserNameBytes, camera_.GetIdentity().userName);
  std::ranges::copy(registers_.Bytes(address, bytes.size()), bytes.begin());
  return status::kSuccess;
}

// What is asked for beyond the end, to fill up a block, reads as zeros.
std::uint16_t CommandHandler::ReadDescription(std::uint32_t at, std::span<std::uint8_t> bytes) const {
  if (at >= description_.size()) return status::kInvalidAddress;
  const std::size_t count = std::min(bytes.size(), description_.size() - at);
  std::copy_n(description_.begin() + at, count, bytes.begin());
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(count), bytes.end(), std::uint8_t{0});
  return status::kSuccess;
}

std::uint16_t CommandHandler::Write(std::uint32_t address, ByteView bytes, Peer sender) {
  if (address % kWord != 0 || bytes.size() % kWord != 0) return status::kBadAlignment;
  const bool isPrivilege = address == bootstrap::kControlPrivilege && bytes.size() == kWord;
  if (isPrivilege) return WritePrivilege(Get32(bytes, 0), sender);
  if (!IsController(sender)) return status::kAccessDenied;
  if (address >= kDescriptionAddress) return status::kWriteProtect;
  if (address >= reg::kEnd) return WriteCamera(address, bytes);
  if (bytes.size() > reg::kEnd - address) return status::kInvalidAddress;
  for (std::size_t at = 0; at < bytes.size(); at += kWord) {
    const std::uint16_t result = WriteOwn(address + static_cast<std::uint32_t>(at), Get32(bytes, at), sender);
    if (result != status::kSuccess) return result;
  }
  const bool touchesName =
      address < reg::kUserName + reg::kUserNameBytes && address + bytes.size() > reg::kUserName;
  return touchesName ? WriteUserName() : status::kSuccess;
}

// A reset of the camera ends the connection, as the cable's plug would.
std::uint16_t CommandHandler::WriteCamera(std::uint32_t address, ByteView bytes) {
  const std::uint16_t result = StatusOf(camera_.WriteRegisters(address, bytes), status::kWriteProtect);
  const std::uint64_t resets = camera_.ResetCount();
  if (resets != resets_) ReleaseControl();
  resets_ = resets;
  return result;
}

std::uint16_t CommandHandler::WriteOwn(std::uint32_t address, std::uint32_t value, Peer sender) {
  switch (registers_.RightsAt(address)) {
    case Rights::none:
      return status::kInvalidAddress;
    case Rights::readOnly:
      return status::kWriteProtect;
    case Rights::readWrite:
    case Rights::writeOnly:
      break;
  }
  switch (address) {
    case bootstrap::kControlPrivilege:
      return WritePrivilege(value, sender);
    case bootstrap::kIpConfiguration:
      registers_.Set(address, (value & kEveryIpMethod) | kLinkLocal);
      return status::kSuccess;
    case bootstrap::kHeartbeatTimeout:
      registers_.Set(address, std::max(value, kShortestHeartbeatMs));
      return status::kSuccess;
    case reg::kTimestampControl:
      ControlTimestamp(value);
      return status::kSuccess;
    case reg::kControlConfiguration:
      registers_.Set(address, value & kHeartbeatDisabled);
      return status::kSuccess;
    case reg::kMessagePort:
      registers_.Set(address, value & 0xFFFFU);
      PublishMessages();
      return status::kSuccess;
    case reg::kMessageDestination:
      registers_.Set(address, value);
      PublishMessages();
      return status::kSuccess;
    case reg::kMessageTimeout:
      registers_.Set(address, std::min(value, kLongestMessageTimeoutMs));
      PublishMessages();
      return status::kSuccess;
    case reg::kMessageRetries:
      registers_.Set(address, std::min(value, kMostMessageRetries));
      PublishMessages();
      return status::kSuccess;
    case reg::kStreamConfiguration:
      registers_.Set(address, value & kExtendedIds);
      break;
    case reg::kStreamPacketSize:
      WritePacketSize(value);
      break;
    case reg::kStreamPort:
      registers_.Set(address, value & 0xFFFFU);
      break;
    case reg::kStreamChannelConfiguration:
      registers_.Set(address, 0);  // no option is offered
      return status::kSuccess;
    default:
      registers_.Set(address, value);
      break;
  }
  PublishStream();
  return status::kSuccess;
}

std::uint16_t CommandHandler::WritePrivilege(std::uint32_t value, Peer sender) {
  if (controller_ && !IsController(sender)) return status::kAccessDenied;
  const std::uint32_t privilege = value & (gige::kExclusiveAccess | gige::kControlAccess);
  if (privilege == 0) {
    ReleaseControl();
    return status::kSuccess;
  }
  controller_ = sender;
  registers_.Set(bootstrap::kControlPrivilege, privilege);
  registers_.Set(bootstrap::kPrimaryPort, sender.port);
  registers_.Set(bootstrap::kPrimaryIp, sender.ip.value);
  return status::kSuccess;
}

void CommandHandler::ReleaseControl() {
  if (!controller_) return;
  controller_.reset();
  lastWrite_.clear();  // the next controller may begin with the same command, from the same port
  registers_.Set(bootstrap::kControlPrivilege, 0);
  registers_.Set(bootstrap::kPrimaryPort, 0);
  registers_.Set(bootstrap::kPrimaryIp, 0);
  registers_.Set(reg::kStreamPort, 0);
  PublishStream();
  registers_.Set(reg::kMessagePort, 0);
  PublishMessages();
  cameras::StopAcquisition(camera_);
}

std::uint16_t CommandHandler::WriteUserName() {
  const std::string_view name = registers_.Text(reg::kUserName, reg::kUserNameBytes - 1);
  return StatusOf(cameras::WriteTextFeature(camera_, "DeviceUserID", name), status::kWriteProtect);
}

void CommandHandler::WritePacketSize(std::uint32_t value) {
  const std::uint32_t wanted = std::clamp(value & 0xFFFFU, kSmallestPacket, kLargestPacket);
  registers_.Set(reg::kStreamPacketSize, (wanted & ~3U) | (value & kDoNotFragment));
  if ((value & kFireTestPacket) != 0 && Target().IsOpen()) actions_.FireTestPacket(Target());
}

void CommandHandler::ControlTimestamp(std::uint32_t value) {
  const std::int64_t nowNs = clock_.NowNs();
  if ((value & kLatch) != 0) {
    const auto ticks = static_cast<std::uint64_t>(nowNs - timestampOriginNs_);
    registers_.Set(reg::kTimestampHigh, static_cast<std::uint32_t>(ticks >> 32U));
    registers_.Set(reg::kTimestampLow, static_cast<std::uint32_t>(ticks));
  }
  if ((value & kReset) == 0) return;
  timestampOriginNs_ = nowNs;
  PublishStream();
  PublishMessages();
}

StreamTarget CommandHandler::Target() const {
  StreamTarget target;
  const std::uint32_t size = registers_.Get(reg::kStreamPacketSize);
  target.ip = Ipv4{registers_.Get(reg::kStreamDestination)};
  target.port = static_cast<std::uint16_t>(registers_.Get(reg::kStreamPort));
  target.packetSize = static_cast<std::uint16_t>(size);
  target.doNotFragment = (size & kDoNotFragment) != 0;
  target.hasExtendedIds = (registers_.Get(reg::kStreamConfiguration) & kExtendedIds) != 0;
  target.gapNs = registers_.Get(reg::kStreamPacketDelay);
  target.timestampOriginNs = timestampOriginNs_;
  return target;
}

void CommandHandler::PublishStream() {
  actions_.SetStream(Target());
}

void CommandHandler::PublishMessages() {
  MessageTarget target;
  target.receiver.ip = Ipv4{registers_.Get(reg::kMessageDestination)};
  target.receiver.port = static_cast<std::uint16_t>(registers_.Get(reg::kMessagePort));
  target.timeout = std::chrono::milliseconds(registers_.Get(reg::kMessageTimeout));
  target.retries = registers_.Get(reg::kMessageRetries);
  target.timestampOriginNs = timestampOriginNs_;
  actions_.SetMessages(target);
}

std::int64_t CommandHandler::CheckHeartbeat(std::int64_t nowNs) {
  const bool isOff = (registers_.Get(reg::kControlConfiguration) & kHeartbeatDisabled) != 0;
  if (!controller_ || isOff) return cameras::kForever;
  const std::int64_t endNs = lastCommandNs_ + registers_.Get(bootstrap::kHeartbeatTimeout) * kNsPerMs;
  if (nowNs < endNs) return endNs;
  ReleaseControl();
  return cameras::kForever;
}

}  // namespace zyn::gigedevice
