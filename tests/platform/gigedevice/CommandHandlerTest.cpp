#include "gigedevice/CommandHandler.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cameras/Catalog.h"
#include "cameras/ManualClock.h"
#include "cameras/registers/BigEndian.h"

namespace zyn::gigedevice {
namespace {

namespace bootstrap = gige::bootstrap;
namespace status = gige::status;
using cameras::LoadBig;
using gige::Bytes;
using gige::Ipv4;

constexpr Peer kClient{{0x7F000001}, 40000};
constexpr Peer kOther{{0x7F000001}, 40001};
constexpr Peer kStranger{{0x0A000001}, 40000};
constexpr std::int64_t kMs = 1'000'000;
constexpr gige::MacAddress kMac{{0x02, 0x5A, 1, 2, 3, 4}};

class Recorder final : public DeviceActions {
 public:
  void SetStream(const StreamTarget& target) override { targets.push_back(target); }
  void SetMessages(const MessageTarget& target) override { messages.push_back(target); }
  void FireTestPacket(const StreamTarget& target) override { tests.push_back(target); }
  void Resend(const ResendRequest& request) override { resends.push_back(request); }
  bool ChangeAddress(Ipv4 ip, Ipv4 /*mask*/) override {
    address = ip;
    return canChange;
  }

  std::vector<StreamTarget> targets;
  std::vector<MessageTarget> messages;
  std::vector<StreamTarget> tests;
  std::vector<ResendRequest> resends;
  Ipv4 address;
  bool canChange = true;
};

DeviceSettings Settings(bool hasResend = true) {
  DeviceSettings settings;
  settings.ip = {0x7F000002};
  settings.mac = kMac;
  settings.hasResend = hasResend;
  return settings;
}

class CommandHandlerTest : public testing::Test {
 protected:
  gige::Ack Send(const Bytes& command, Peer sender = kClient, std::int64_t nowNs = 0) {
    answer_ = handler_.Handle(command, sender, nowNs);
    if (!answer_) {
      ADD_FAILURE() << "no answer";
      return {};
    }
    return *gige::ParseAck(answer_->datagram);
  }
  std::uint16_t Write(std::uint32_t address, std::uint32_t value, Peer sender = kClient,
                      std::int64_t nowNs = 0) {
    return Send(gige::EncodeWriteRegister(++request_, address, value), sender, nowNs).status;
  }
  std::uint16_t WriteBytes(std::uint32_t address, const Bytes& data) {
    return Send(gige::EncodeWriteMemory(++request_, address, data)).status;
  }
  std::uint32_t Read(std::uint32_t address, Peer sender = kClient) {
    const gige::Ack ack = Send(gige::EncodeReadRegister(++request_, address), sender);
    EXPECT_EQ(ack.status, status::kSuccess) << std::hex << address;
    return gige::ParseReadRegister(ack.payload).value_or(0xDEAD);
  }
  std::uint16_t ReadStatus(std::uint32_t address, Peer sender = kClient) {
    return Send(gige::EncodeReadRegister(++request_, address), sender).status;
  }
  void TakeControl() {
    ASSERT_EQ(Write(bootstrap::kControlPrivilege, gige::kControlAccess), status::kSuccess);
  }

  std::unique_ptr<cameras::CameraModel> camera_ = cameras::MakeCamera("ZS-A640", "S1");
  Recorder actions_;
  CommandHandler handler_{*camera_, cameras::SteadyClock(), actions_, Settings(), Ipv4{0xFF000000}};
  std::optional<CommandHandler::Answer> answer_;
  std::uint16_t request_ = 0;
};

TEST_F(CommandHandlerTest, DiscoveryTellsTheCamera) {
  const gige::Ack ack = Send(gige::EncodeDiscovery(7, false));
  EXPECT_EQ(ack.requestId, 7);
  EXPECT_EQ(ack.payload.size(), 0xF8U);
  const auto device = gige::ParseDiscovery(ack.payload);
  ASSERT_TRUE(device);
  EXPECT_EQ(device->serial, "S1");
  EXPECT_EQ(device->model, "ZS-A640");
  EXPECT_EQ(device->mac, kMac);
  EXPECT_EQ(gige::ToText(device->ip), "127.0.0.2");
  EXPECT_EQ(gige::ToText(device->mask), "255.0.0.0");
}

TEST_F(CommandHandlerTest, ADiscoveryFromAForeignSubnetIsAnsweredByBroadcastWhereThatIsAllowed) {
  Send(gige::EncodeDiscovery(7, true), kStranger);
  EXPECT_TRUE(answer_->isBroadcast);
  Send(gige::EncodeDiscovery(7, false), kStranger);
  EXPECT_FALSE(answer_->isBroadcast);
  Send(gige::EncodeDiscovery(7, true), kClient);
  EXPECT_FALSE(answer_->isBroadcast);
}

TEST_F(CommandHandlerTest, EveryMandatoryRegisterCanBeRead) {
  for (const std::uint32_t address : {reg::kVersion,
                                      reg::kDeviceMode,
                                      reg::kMacHigh,
                                      reg::kMacLow,
                                      reg::kSupportedIpConfiguration,
                                      bootstrap::kIpConfiguration,
                                      reg::kCurrentIp,
                                      reg::kCurrentMask,
                                      reg::kCurrentGateway,
                                      bootstrap::kXmlUrl,
                                      bootstrap::kSecondXmlUrl,
                                      reg::kInterfaceCount,
                                      bootstrap::kPersistentIp,
                                      bootstrap::kPersistentMask,
                                      bootstrap::kPersistentGateway,
                                      reg::kMessageChannelCount,
                                      reg::kStreamChannelCount,
                                      bootstrap::kCapability,
                                      bootstrap::kHeartbeatTimeout,
                                      bootstrap::kTickFrequencyHigh,
                                      bootstrap::kTickFrequencyLow,
                                      reg::kTimestampHigh,
                                      reg::kTimestampLow,
                                      bootstrap::kControlPrivilege,
                                      reg::kStreamPort,
                                      reg::kStreamPacketSize,
                                      reg::kStreamPacketDelay,
                                      reg::kStreamDestination,
                                      reg::kStreamSourcePort})
    Read(address);
  EXPECT_EQ(Read(reg::kStreamChannelCount), 1U);
  EXPECT_EQ(Read(bootstrap::kTickFrequencyLow), 1'000'000'000U);
  EXPECT_EQ(Read(bootstrap::kHeartbeatTimeout), 3000U);
}

TEST_F(CommandHandlerTest, TheUrlLeadsToTheDescription) {
  const gige::Ack urlAck = Send(gige::EncodeReadMemory(1, bootstrap::kXmlUrl, 512));
  const std::string url(reinterpret_cast<const char*>(urlAck.payload.data()) + 4);
  unsigned address = 0;
  unsigned length = 0;
  ASSERT_EQ(std::sscanf(url.c_str(), "Local:camera.xml;%x;%x", &address, &length), 2) << url;
  std::string text;
  while (text.size() < length) {
    const auto at = address + static_cast<std::uint32_t>(text.size());
    const gige::Ack ack = Send(gige::EncodeReadMemory(2, at, 512));
    ASSERT_EQ(ack.status, status::kSuccess);
    text.append(reinterpret_cast<const char*>(ack.payload.data()) + 4, 512);
  }
  EXPECT_NE(text.find("<RegisterDescription"), std::string::npos);
  EXPECT_NE(text.find("GevSCPSFireTestPacket"), std::string::npos);
  EXPECT_EQ(text.substr(length - 22, 22), "</RegisterDescription>");
  EXPECT_EQ(text.find_first_not_of('\0', length), std::string::npos);  // behind the end are zeros
}

TEST_F(CommandHandlerTest, OnlyTheControllerWrites) {
  EXPECT_EQ(Write(reg::kStreamPacketSize, 1400), status::kAccessDenied);
  TakeControl();
  EXPECT_EQ(Write(reg::kStreamPacketSize, 1400), status::kSuccess);
  EXPECT_EQ(Write(reg::kStreamPacketSize, 1000, kOther), status::kAccessDenied);
  EXPECT_EQ(Write(bootstrap::kControlPrivilege, gige::kControlAccess, kOther), status::kAccessDenied);
  EXPECT_EQ(Read(reg::kStreamPacketSize, kOther), 1400U);
  EXPECT_EQ(Read(bootstrap::kPrimaryPort), kClient.port);
  EXPECT_EQ(Write(bootstrap::kControlPrivilege, 0), status::kSuccess);
  EXPECT_EQ(Write(bootstrap::kControlPrivilege, gige::kControlAccess, kOther), status::kSuccess);
}

TEST_F(CommandHandlerTest, ExclusiveAccessBarsOthersFromReadingButNotFromFinding) {
  ASSERT_EQ(Write(bootstrap::kControlPrivilege, gige::kExclusiveAccess), status::kSuccess);
  EXPECT_EQ(ReadStatus(reg::kVersion, kOther), status::kAccessDenied);
  EXPECT_EQ(Send(gige::EncodeReadMemory(9, 0, 4), kOther).status, status::kAccessDenied);
  EXPECT_EQ(ReadStatus(reg::kVersion), status::kSuccess);
  EXPECT_EQ(Send(gige::EncodeDiscovery(9, false), kOther).status, status::kSuccess);
}

TEST_F(CommandHandlerTest, ASilentControllerLosesControlAndItsStream) {
  TakeControl();
  Write(bootstrap::kHeartbeatTimeout, 1000);
  Write(reg::kStreamDestination, 0x7F000001);
  Write(reg::kStreamPort, 5000, kClient, 500 * kMs);
  ASSERT_TRUE(actions_.targets.back().IsOpen());
  EXPECT_EQ(handler_.CheckHeartbeat(1499 * kMs), 1500 * kMs);
  EXPECT_TRUE(actions_.targets.back().IsOpen());
  EXPECT_EQ(handler_.CheckHeartbeat(1500 * kMs), cameras::kForever);
  EXPECT_FALSE(actions_.targets.back().IsOpen());
  EXPECT_EQ(Read(bootstrap::kControlPrivilege), 0U);
  EXPECT_EQ(Read(bootstrap::kPrimaryIp), 0U);
}

TEST_F(CommandHandlerTest, AnyCommandOfTheControllerKeepsItsControl) {
  TakeControl();
  for (std::int64_t now = 0; now < 20'000 * kMs; now += 2000 * kMs) {
    Send(gige::EncodeReadRegister(++request_, 0), kClient, now);
    Send(gige::EncodeReadRegister(++request_, 0), kOther, now + 1000 * kMs);
  }
  EXPECT_EQ(handler_.CheckHeartbeat(20'000 * kMs), 21'000 * kMs);
}

TEST_F(CommandHandlerTest, TheHeartbeatHasALowestValueAndCanBeSwitchedOff) {
  TakeControl();
  Write(bootstrap::kHeartbeatTimeout, 1);
  EXPECT_EQ(Read(bootstrap::kHeartbeatTimeout), 500U);
  Write(reg::kControlConfiguration, 1);
  EXPECT_EQ(handler_.CheckHeartbeat(3'600'000 * kMs), cameras::kForever);
  EXPECT_EQ(Read(bootstrap::kControlPrivilege), gige::kControlAccess);
}

TEST_F(CommandHandlerTest, ErrorsAreAcknowledged) {
  TakeControl();
  EXPECT_EQ(ReadStatus(0x0800), status::kInvalidAddress);
  EXPECT_EQ(ReadStatus(0x0A02), status::kBadAlignment);
  EXPECT_EQ(ReadStatus(0xFFFFFFFC), status::kInvalidAddress);
  EXPECT_EQ(ReadStatus(0x00090000), status::kInvalidAddress);  // between the device and the camera
  EXPECT_EQ(Write(reg::kVersion, 1), status::kWriteProtect);
  EXPECT_EQ(Write(CommandHandler::kDescriptionAddress, 1), status::kWriteProtect);
  EXPECT_EQ(Write(0x0800, 1), status::kInvalidAddress);
  EXPECT_EQ(Send(gige::EncodeReadMemory(1, 0xFFFC, 8)).status, status::kInvalidAddress);
  EXPECT_EQ(Send(gige::EncodeReadMemory(1, 0, 0)).status, status::kInvalidParameter);
  EXPECT_EQ(Send(gige::EncodeReadMemory(1, bootstrap::kXmlUrl, 540)).status, status::kInvalidParameter);
  Bytes unknown = gige::EncodeDiscovery(5, false);
  unknown[3] = 0x70;
  EXPECT_EQ(Send(unknown).status, status::kNotImplemented);
}

TEST_F(CommandHandlerTest, WhatIsNoWholeCommandIsDropped) {
  const Bytes whole = gige::EncodeReadRegister(3, 0);
  for (std::size_t size = 0; size < whole.size(); ++size)
    EXPECT_FALSE(handler_.Handle(std::span(whole).first(size), kClient, 0)) << size;
  Bytes otherKey = whole;
  otherKey[0] = 0x41;
  EXPECT_FALSE(handler_.Handle(otherKey, kClient, 0));
  Bytes noAcknowledge = whole;
  noAcknowledge[1] = 0;
  EXPECT_FALSE(handler_.Handle(noAcknowledge, kClient, 0));
}

TEST_F(CommandHandlerTest, ARepeatedWriteIsAcknowledgedButNotRunAgain) {
  TakeControl();
  Write(reg::kStreamDestination, 0x7F000001);
  Write(reg::kStreamPort, 5000);
  const Bytes fire = gige::EncodeWriteRegister(900, reg::kStreamPacketSize, 0x80000000U | 1500U);
  EXPECT_EQ(Send(fire).status, status::kSuccess);
  EXPECT_EQ(Send(fire).status, status::kSuccess);
  EXPECT_EQ(actions_.tests.size(), 1U);
  EXPECT_EQ(Send(gige::EncodeWriteRegister(901, reg::kStreamPacketSize, 0x80000000U | 1500U)).status, 0);
  EXPECT_EQ(actions_.tests.size(), 2U);
}

TEST_F(CommandHandlerTest, TheSameCommandAfterALossOfControlIsNoRepetition) {
  const Bytes take = gige::EncodeWriteRegister(1, bootstrap::kControlPrivilege, gige::kControlAccess);
  EXPECT_EQ(Send(take).status, status::kSuccess);
  EXPECT_EQ(handler_.CheckHeartbeat(10'000 * kMs), cameras::kForever);
  EXPECT_EQ(Read(bootstrap::kControlPrivilege), 0U);
  EXPECT_EQ(Send(take, kClient, 11'000 * kMs).status, status::kSuccess);
  EXPECT_EQ(Read(bootstrap::kControlPrivilege), gige::kControlAccess);
}

TEST_F(CommandHandlerTest, OneCommandReadsAndWritesSeveralRegistersUpToTheFirstThatFails) {
  TakeControl();
  const auto words = [](Bytes command, std::initializer_list<std::uint32_t> values) {
    command.resize(gige::kGvcpHeaderBytes);
    for (const std::uint32_t value : values) {
      for (int shift = 24; shift >= 0; shift -= 8)
        command.push_back(static_cast<std::uint8_t>(value >> shift));
    }
    cameras::StoreBig(&command[4], command.size() - gige::kGvcpHeaderBytes, 2);
    return command;
  };
  const Bytes write = gige::EncodeWriteRegister(700, 0, 0);
  gige::Ack ack = Send(words(write, {reg::kStreamDestination, 0x7F000001, reg::kStreamPort, 5000}));
  EXPECT_EQ(ack.status, status::kSuccess);
  EXPECT_EQ(LoadBig(ack.payload.data(), 4), 2U);
  ack = Send(words(write, {reg::kStreamPacketDelay, 77, reg::kVersion, 1, reg::kStreamPort, 6000}));
  EXPECT_EQ(ack.status, status::kWriteProtect);
  EXPECT_EQ(LoadBig(ack.payload.data(), 4), 1U) << "so many were written";

  const Bytes read = gige::EncodeReadRegister(701, 0);
  ack = Send(words(read, {reg::kStreamPort, reg::kStreamPacketDelay}));
  ASSERT_EQ(ack.payload.size(), 8U);
  EXPECT_EQ(LoadBig(ack.payload.data(), 8), 5000ULL << 32U | 77U);
  EXPECT_EQ(Send(words(read, {reg::kVersion, 0x0800})).status, status::kInvalidAddress);
  EXPECT_EQ(Send(words(write, {reg::kStreamPort})).status, status::kInvalidParameter);
  EXPECT_EQ(Send(words(write, {})).status, status::kInvalidParameter);
  EXPECT_EQ(Send(words(read, {})).status, status::kInvalidParameter);
}

TEST_F(CommandHandlerTest, TimeIsLatchedAndBeginsAnewOnDemand) {
  constexpr std::uint32_t kLatch = 2;
  constexpr std::uint32_t kReset = 1;
  cameras::ManualClock clock;
  CommandHandler device(*camera_, clock, actions_, Settings(), Ipv4{0xFF000000});
  const auto write = [&](std::uint32_t address, std::uint32_t value) {
    device.Handle(gige::EncodeWriteRegister(++request_, address, value), kClient, 0);
  };
  const auto latched = [&] {
    const auto answer = device.Handle(gige::EncodeReadMemory(++request_, reg::kTimestampHigh, 8), kClient, 0);
    return LoadBig(&answer->datagram[gige::kGvcpHeaderBytes + 4], 8);
  };
  write(bootstrap::kControlPrivilege, gige::kControlAccess);
  constexpr std::int64_t kLongerThan32Bits = 7'000 * kMs;
  clock.Advance(kLongerThan32Bits);
  const std::int64_t nowNs = clock.NowNs();
  EXPECT_EQ(latched(), 0U) << "nobody asked yet";
  write(reg::kTimestampControl, kLatch);
  EXPECT_EQ(latched(), static_cast<std::uint64_t>(nowNs));
  clock.Advance(kMs);
  EXPECT_EQ(latched(), static_cast<std::uint64_t>(nowNs)) << "it stands until it is latched again";
  write(reg::kTimestampControl, kReset);
  EXPECT_EQ(actions_.targets.back().timestampOriginNs, nowNs + kMs) << "frames count from here, too";
  EXPECT_EQ(actions_.messages.back().timestampOriginNs, nowNs + kMs) << "and events";
  clock.Advance(3 * kMs);
  write(reg::kTimestampControl, kLatch);
  EXPECT_EQ(latched(), static_cast<std::uint64_t>(3 * kMs));
}

TEST_F(CommandHandlerTest, ThePacketSizeIsRoundedAndItsTestBitReadsZero) {
  TakeControl();
  Write(reg::kStreamPacketSize, 0xC0000000U | 1403U);
  EXPECT_EQ(Read(reg::kStreamPacketSize), 0x40000000U | 1400U);
  Write(reg::kStreamPacketSize, 10);
  EXPECT_EQ(Read(reg::kStreamPacketSize), 576U);
  Write(reg::kStreamPacketSize, 0xFFFF);
  EXPECT_EQ(Read(reg::kStreamPacketSize), 16384U);
  EXPECT_TRUE(actions_.tests.empty());  // nobody to send it to
}

TEST_F(CommandHandlerTest, BothWaysOfWritingDoTheSame) {
  TakeControl();
  EXPECT_EQ(WriteBytes(reg::kStreamDestination, {127, 0, 0, 1}), status::kSuccess);
  EXPECT_EQ(WriteBytes(reg::kStreamPort, {0, 0, 0x13, 0x88}), status::kSuccess);
  EXPECT_EQ(WriteBytes(reg::kStreamPacketSize, {0x80, 0, 0x05, 0x78}), status::kSuccess);
  ASSERT_EQ(actions_.tests.size(), 1U);
  EXPECT_EQ(actions_.tests[0].port, 5000);
  EXPECT_EQ(actions_.tests[0].packetSize, 1400);
}

TEST_F(CommandHandlerTest, TheUserNameIsTheCamerasFeature) {
  TakeControl();
  Bytes name(16);
  std::copy_n("left", 4, name.begin());
  EXPECT_EQ(WriteBytes(reg::kUserName, name), status::kSuccess);
  EXPECT_EQ(camera_->GetIdentity().userName, "left");
  EXPECT_EQ(gige::ParseDiscovery(Send(gige::EncodeDiscovery(1, false)).payload)->userName, "left");
}

TEST_F(CommandHandlerTest, ForceIpNeedsTheRightMacAndAFreeDevice) {
  const Ipv4 ip{0x7F000009};
  const Ipv4 mask{0xFF000000};
  const gige::MacAddress other{{2, 2, 2, 2, 2, 2}};
  EXPECT_FALSE(handler_.Handle(gige::EncodeForceIp(1, other, ip, mask, {}), kClient, 0));
  TakeControl();
  EXPECT_FALSE(handler_.Handle(gige::EncodeForceIp(1, kMac, ip, mask, {}), kClient, 0));
  Write(bootstrap::kControlPrivilege, 0);
  EXPECT_EQ(actions_.address, gige::kNoAddress);
  EXPECT_EQ(Send(gige::EncodeForceIp(1, kMac, ip, {0xFF00FF00}, {})).status, status::kInvalidParameter);
  EXPECT_EQ(Send(gige::EncodeForceIp(1, kMac, ip, mask, {0x7F000001})).status, status::kSuccess);
  EXPECT_EQ(actions_.address, ip);
  EXPECT_EQ(Read(reg::kCurrentIp), ip.value);
  EXPECT_EQ(Read(reg::kCurrentGateway), 0x7F000001U);
  actions_.canChange = false;
  EXPECT_EQ(Send(gige::EncodeForceIp(1, kMac, {0x7F00000A}, mask, {})).status, status::kInvalidParameter);
  EXPECT_EQ(Read(reg::kCurrentIp), ip.value);
}

TEST_F(CommandHandlerTest, ForcedToNoAddressItStartsAnewWithTheStoredOne) {
  const Bytes restart = gige::EncodeForceIp(1, kMac, {}, {}, {});
  EXPECT_FALSE(handler_.Handle(restart, kClient, 0)) << "nothing is stored";
  EXPECT_EQ(Read(reg::kCurrentIp), 0x7F000002U);
  TakeControl();
  Write(bootstrap::kPersistentIp, 0x7F000009);
  Write(bootstrap::kPersistentMask, 0xFFFF0000);
  Write(bootstrap::kPersistentGateway, 0x7F000001);
  Write(bootstrap::kIpConfiguration, gige::kDhcpEnabled);
  Write(bootstrap::kControlPrivilege, 0);
  EXPECT_FALSE(handler_.Handle(restart, kClient, 0));
  EXPECT_EQ(Read(reg::kCurrentIp), 0x7F000002U) << "it is not to be used";
  TakeControl();
  Write(bootstrap::kIpConfiguration, gige::kPersistentIpEnabled);
  EXPECT_FALSE(handler_.Handle(restart, kClient, 0));
  EXPECT_EQ(Read(reg::kCurrentIp), 0x7F000002U) << "somebody controls it";
  Write(bootstrap::kControlPrivilege, 0);
  EXPECT_FALSE(handler_.Handle(restart, kClient, 0)) << "there is no acknowledge of a restart";
  EXPECT_EQ(actions_.address, Ipv4{0x7F000009});
  EXPECT_EQ(Read(reg::kCurrentIp), 0x7F000009U);
  EXPECT_EQ(Read(reg::kCurrentMask), 0xFFFF0000U);
  EXPECT_EQ(Read(reg::kCurrentGateway), 0x7F000001U);
}

Bytes ResendCommand(std::uint16_t block, std::uint32_t first, std::uint32_t last) {
  Bytes command = gige::EncodeReadMemory(1, 0, 0);
  command.resize(20);
  command[1] = 0;
  command[3] = 0x40;
  command[5] = 12;
  command[10] = static_cast<std::uint8_t>(block >> 8U);
  command[11] = static_cast<std::uint8_t>(block);
  command[15] = static_cast<std::uint8_t>(first);
  for (unsigned i = 0; i < 4; ++i) command[16 + i] = static_cast<std::uint8_t>(last >> (24 - 8 * i));
  return command;
}

TEST_F(CommandHandlerTest, LostPacketsAreAskedForByTheControllersComputerOnly) {
  EXPECT_FALSE(handler_.Handle(ResendCommand(3, 1, 2), kClient, 0));
  TakeControl();
  EXPECT_FALSE(handler_.Handle(ResendCommand(3, 1, 2), kStranger, 0));
  EXPECT_TRUE(actions_.resends.empty());
  EXPECT_FALSE(handler_.Handle(ResendCommand(3, 1, 0xFFFFFFFF), kOther, 0));
  ASSERT_EQ(actions_.resends.size(), 1U);
  EXPECT_EQ(actions_.resends[0].blockId, 3U);
  EXPECT_EQ(actions_.resends[0].firstPacket, 1U);
  EXPECT_EQ(actions_.resends[0].lastPacket, 0xFFFFFFU);
}

TEST_F(CommandHandlerTest, WithoutResendTheCapabilityIsAbsentAndRequestsAreIgnored) {
  CommandHandler plain(*camera_, cameras::SteadyClock(), actions_, Settings(false), Ipv4{0xFF000000});
  plain.Handle(gige::EncodeWriteRegister(1, bootstrap::kControlPrivilege, 2), kClient, 0);
  EXPECT_FALSE(plain.Handle(ResendCommand(3, 1, 2), kClient, 0));
  EXPECT_TRUE(actions_.resends.empty());
  const auto answer = plain.Handle(gige::EncodeReadRegister(2, bootstrap::kCapability), kClient, 0);
  ASSERT_TRUE(answer);
  EXPECT_EQ(*gige::ParseReadRegister(gige::ParseAck(answer->datagram)->payload) & 4U, 0U);
}

}  // namespace
}  // namespace zyn::gigedevice
