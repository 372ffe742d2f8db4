#include "gigedevice/GigeDevice.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <algorithm>
#include <map>
#include <vector>

#include "ChildProcess.h"
#include "PrivateNetwork.h"
#include "cameras/Catalog.h"
#include "cameras/registers/BigEndian.h"
#include "gige/Discovery.h"
#include "gige/ForceIp.h"
#include "gige/RegisterClient.h"
#include "gigedevice/GvspWire.h"
#include "gigedevice/MessageChannel.h"

namespace zyn::gigedevice {
namespace {

namespace bootstrap = gige::bootstrap;
using cameras::LoadBig;
using gige::Ipv4;
using gige::RegisterClient;
using gige::Result;

constexpr Ipv4 kHost{0x7F000001};
constexpr Ipv4 kDevice{0x7F000002};
constexpr RegisterClient::Options kPatient{std::chrono::milliseconds{2000}, 3};
// A whole frame fits the receiver's buffer, whenever it is read.
constexpr std::uint32_t kHeight = 48;
constexpr int kPatienceMs = 10'000;

DeviceSettings Settings(Ipv4 ip) {
  DeviceSettings settings;
  settings.ip = ip;
  settings.mac.bytes = {2, 0, 0, 0, 0, static_cast<std::uint8_t>(ip.value)};
  return settings;
}

// The packets of one block, as a receiver sees them.
struct Received {
  std::map<std::uint32_t, gige::Bytes> packets;  // header included
  std::vector<std::uint32_t> order;
  std::uint32_t trailer = 0;
  std::uint64_t id = 0;  // short
};

class GigeDeviceTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(zyntest::IsPrivateNetwork()); }

  void Start(const DeviceSettings& settings) {
    device_.emplace(*camera_, cameras::SteadyClock(), settings);
    client_ = RegisterClient::Connect(kHost, settings.ip, kPatient);
    Write(bootstrap::kControlPrivilege, gige::kControlAccess);
    SetFeature("Height", kHeight);
    Write(reg::kStreamDestination, kHost.value);
    Write(reg::kStreamPort, receiver_->Port());
  }
  void Write(std::uint32_t address, std::uint32_t value) {
    ASSERT_EQ(client_->WriteRegister(address, value), Result::ok) << std::hex << address;
  }
  // Writes the register of a feature of the camera.
  void SetFeature(const std::string& name, std::uint32_t value) {
    const std::string text(camera_->Description());
    std::size_t at = text.find("Name=\"" + name + "Reg\"");
    if (at == std::string::npos) at = text.find("Name=\"" + name + '"');
    at = text.find("<Address>", at);
    ASSERT_NE(at, std::string::npos);
    gige::Bytes bytes(std::strtoul(text.c_str() + text.find("<Length>", at) + 8, nullptr, 0));
    cameras::StoreBig(bytes.data(), value, bytes.size());
    const auto address = static_cast<std::uint32_t>(std::strtoul(text.c_str() + at + 9, nullptr, 0));
    ASSERT_EQ(client_->WriteMemory(address, bytes), Result::ok) << name;
  }
  void Execute(const std::string& command) { SetFeature(command, 1); }
  gige::Bytes NextPacket() { return Next(*receiver_); }
  static gige::Bytes Next(const DeviceSocket& socket) {
    pollfd wait{socket.Descriptor(), POLLIN, 0};
    if (poll(&wait, 1, kPatienceMs) != 1) return {};
    gige::Bytes packet(65536);
    const auto received = socket.Receive(packet);
    packet.resize(received ? received->bytes : 0);
    return packet;
  }
  static std::uint32_t IdOf(const gige::Bytes& packet) {
    const bool isLong = (packet[4] & 0x80U) != 0;
    return static_cast<std::uint32_t>(isLong ? LoadBig(&packet[16], 4) : LoadBig(&packet[5], 3));
  }
  Received ReceiveBlock() {
    Received block;
    while (true) {
      const gige::Bytes packet = NextPacket();
      if (packet.size() < 8) return block;
      if (block.order.empty()) block.id = LoadBig(&packet[2], 2);
      if (LoadBig(&packet[2], 2) == block.id) block.packets[IdOf(packet)] = packet;
      block.order.push_back(IdOf(packet));
      if ((packet[4] & 0x7FU) != 2) continue;
      block.trailer = IdOf(packet);
      return block;
    }
  }
  // Asks for packets of a block once more, with short numbers or long ones.
  void AskAgain(std::uint64_t id, std::uint32_t first, std::uint32_t last, bool isLong = false) {
    gige::Bytes command(gige::kGvcpHeaderBytes + (isLong ? 20 : 12));
    command[0] = gige::kGvcpKey;
    command[1] = isLong ? 0x10 : 0;
    command[3] = 0x40;
    command[5] = isLong ? 20 : 12;
    command[7] = 1;
    if (!isLong) cameras::StoreBig(&command[10], id, 2);
    cameras::StoreBig(&command[12], first, 4);
    cameras::StoreBig(&command[16], last, 4);
    if (isLong) cameras::StoreBig(&command[20], id, 8);
    receiver_->SendTo({kDevice, gige::kGvcpPort}, command);
  }
  // The next packet with this status; an empty one when none comes.
  gige::Bytes NextWithStatus(std::uint16_t status) {
    while (true) {
      gige::Bytes packet = NextPacket();
      if (packet.size() < 8 || LoadBig(packet.data(), 2) == status) return packet;
    }
  }
  std::size_t DataBytes(const Received& block, std::size_t header) {
    std::size_t sum = 0;
    for (const auto& [id, packet] : block.packets) {
      if (id != 0 && id != block.trailer) sum += packet.size() - header;
    }
    return sum;
  }

  std::unique_ptr<cameras::CameraModel> camera_ = cameras::MakeCamera("ZS-A640", "S1");
  std::optional<DeviceSocket> receiver_ = DeviceSocket::BoundTo(kHost, 0, false);
  std::optional<GigeDevice> device_;
  std::unique_ptr<RegisterClient> client_;
};

TEST_F(GigeDeviceTest, ItIsFoundByBroadcast) {
  const auto second = cameras::MakeCamera("KEL-LP2000", "S2");
  const GigeDevice first(*camera_, cameras::SteadyClock(), Settings(kDevice));
  const GigeDevice other(*second, cameras::SteadyClock(), Settings({0x7F000003}));
  const auto found = gige::Discover();
  ASSERT_EQ(found.size(), 2U);
  EXPECT_NE(found[0].description.serial, found[1].description.serial);
  EXPECT_EQ(found[0].control, gige::ControlState::free);
}

TEST_F(GigeDeviceTest, AnAddressThatIsTakenOrForeignIsRefused) {
  const GigeDevice first(*camera_, cameras::SteadyClock(), Settings(kDevice));
  const auto second = cameras::MakeCamera("ZS-A640", "S2");
  EXPECT_THROW(GigeDevice(*second, cameras::SteadyClock(), Settings(kDevice)), DeviceError);
  EXPECT_THROW(GigeDevice(*second, cameras::SteadyClock(), Settings({0x0A010203})), DeviceError);
}

TEST_F(GigeDeviceTest, ForceIpMovesIt) {
  const DeviceSettings settings = Settings(kDevice);
  const GigeDevice device(*camera_, cameras::SteadyClock(), settings);
  const gige::Adapter loopback = gige::ListAdapters().at(0);
  const gige::IpSettings wanted{{0x7F000010}, {0xFF000000}, {}};
  EXPECT_EQ(gige::ForceIp(loopback, settings.mac, wanted, std::chrono::milliseconds(kPatienceMs)),
            gige::ForceIpResult::confirmed);
  std::uint32_t value = 0;
  EXPECT_EQ(RegisterClient::Connect(kHost, wanted.ip, kPatient)->ReadRegister(reg::kCurrentIp, value),
            Result::ok);
  EXPECT_EQ(value, wanted.ip.value);
  EXPECT_EQ(RegisterClient::Connect(kHost, kDevice, kPatient)->ReadRegister(reg::kCurrentIp, value),
            Result::nobodyListens);
}

// An address of its own on the adapter, which goes with the test.
class OnAdapter : public GigeDeviceTest {
 protected:
  void SetUp() override {
    GigeDeviceTest::SetUp();
    ASSERT_EQ(zyntest::RunToEnd({"ip", "addr", "add", "10.9.9.5/24", "dev", "lo"}).exitCode, 0);
  }
  void TearDown() override {
    zyntest::RunToEnd({"ip", "addr", "del", "10.9.9.5/24", "dev", "lo"});
    zyntest::RunToEnd({"ip", "addr", "del", "172.20.1.2/16", "dev", "lo"});
    zyntest::RunToEnd({"ip", "addr", "del", "10.9.9.6/25", "dev", "lo"});
  }
  static bool AdapterHas(Ipv4 ip, Ipv4 mask) {
    const gige::Adapter loopback = gige::ListAdapters().at(0);
    return std::ranges::any_of(loopback.addresses,
                               [&](const auto& own) { return own.ip == ip && own.mask == mask; });
  }
  gige::ForceIpResult Force(const gige::IpSettings& wanted) const {
    return gige::ForceIp(gige::ListAdapters().at(0), settings_.mac, wanted,
                         std::chrono::milliseconds(kPatienceMs));
  }

  DeviceSettings settings_ = Settings({0x0A090905});
};

TEST_F(OnAdapter, AForcedAddressReplacesTheAdaptersWhenTheDeviceMayConfigureIt) {
  settings_.configuresAdapter = true;
  const GigeDevice device(*camera_, cameras::SteadyClock(), settings_);
  EXPECT_EQ(Force({{0xAC140102}, {0xFFFF0000}, {}}), gige::ForceIpResult::confirmed);
  EXPECT_TRUE(AdapterHas({0xAC140102}, {0xFFFF0000}));
  EXPECT_FALSE(AdapterHas({0x0A090905}, {0xFFFFFF00}));
  EXPECT_EQ(Force({{0x0A090906}, {0xFFFFFF80}, {}}), gige::ForceIpResult::confirmed) << "again, and back";
  EXPECT_TRUE(AdapterHas({0x0A090906}, {0xFFFFFF80}));
  EXPECT_FALSE(AdapterHas({0xAC140102}, {0xFFFF0000}));
}

TEST_F(OnAdapter, OnlyTheMaskMayChange) {
  settings_.configuresAdapter = true;
  const GigeDevice device(*camera_, cameras::SteadyClock(), settings_);
  EXPECT_EQ(Force({settings_.ip, {0xFFFF0000}, {}}), gige::ForceIpResult::confirmed);
  EXPECT_TRUE(AdapterHas(settings_.ip, {0xFFFF0000}));
  EXPECT_EQ(Force({{0x0A090906}, {0xFFFFFF80}, {}}), gige::ForceIpResult::confirmed);
  EXPECT_FALSE(AdapterHas(settings_.ip, {0xFFFF0000}));
}

TEST_F(OnAdapter, AnAddressThatTheComputerLacksIsRefusedOtherwise) {
  const GigeDevice device(*camera_, cameras::SteadyClock(), settings_);
  EXPECT_EQ(Force({{0xAC140102}, {0xFFFF0000}, {}}), gige::ForceIpResult::refused);
  EXPECT_TRUE(AdapterHas(settings_.ip, {0xFFFFFF00}));
}

TEST_F(OnAdapter, AnAddressThatTheSystemRefusesLeavesTheOldOne) {
  ASSERT_EQ(zyntest::RunToEnd({"ip", "addr", "add", "172.20.1.2/16", "dev", "lo"}).exitCode, 0);
  settings_.configuresAdapter = true;
  device_.emplace(*camera_, cameras::SteadyClock(), settings_);
  EXPECT_EQ(Force({{0xAC140102}, {0xFFFF0000}, {}}), gige::ForceIpResult::refused) << "it is there already";
  device_.reset();  // the command comes once for each of the adapter's addresses
  EXPECT_TRUE(AdapterHas(settings_.ip, {0xFFFFFF00}));
}

TEST_F(GigeDeviceTest, AnImageComesInFullPackets) {
  Start(Settings(kDevice));
  Execute("AcquisitionStart");
  const Received block = ReceiveBlock();
  ASSERT_EQ(block.packets.size(), block.trailer + 1U);
  EXPECT_EQ(DataBytes(block, 8), camera_->PayloadSize());
  for (std::uint32_t id = 1; id + 1 < block.trailer; ++id)
    EXPECT_EQ(block.packets.at(id).size(), 1500U - kIpAndUdpBytes);
  EXPECT_EQ(LoadBig(&block.packets.at(0)[2], 2), 1U);
}

TEST_F(GigeDeviceTest, LongNumbersAreUsedOnDemand) {
  Start(Settings(kDevice));
  Write(reg::kStreamConfiguration, 1U << 30U);
  Execute("AcquisitionStart");
  const Received block = ReceiveBlock();
  ASSERT_EQ(block.packets.size(), block.trailer + 1U);
  EXPECT_EQ(DataBytes(block, 20), camera_->PayloadSize());
  EXPECT_EQ(LoadBig(&block.packets.at(1)[8], 8), 1U);
}

TEST_F(GigeDeviceTest, SegmentsArriveAsThePacketsThatTheyAre) {
  DeviceSettings settings = Settings(kDevice);
  settings.sendMethod = SendMethod::segmented;
  Start(settings);
  Execute("AcquisitionStart");
  const Received block = ReceiveBlock();
  ASSERT_EQ(block.packets.size(), block.trailer + 1U);
  EXPECT_EQ(DataBytes(block, 8), camera_->PayloadSize());
}

TEST_F(GigeDeviceTest, PacketsKeepTheGapThatTheClientAsksFor) {
  Start(Settings(kDevice));
  constexpr std::uint32_t kGapNs = 10'000'000;
  Write(reg::kStreamPacketDelay, kGapNs);
  const auto start = std::chrono::steady_clock::now();
  Execute("AcquisitionStart");
  const Received block = ReceiveBlock();
  const auto elapsed = std::chrono::steady_clock::now() - start;
  ASSERT_EQ(block.packets.size(), block.trailer + 1U);
  EXPECT_GE(elapsed, std::chrono::nanoseconds(kGapNs) * block.trailer);
}

TEST_F(GigeDeviceTest, ATestPacketHasExactlyThePacketSize) {
  Start(Settings(kDevice));
  Write(reg::kStreamPacketSize, 0x80000000U | 4000U);
  EXPECT_EQ(NextPacket().size(), 4000U - kIpAndUdpBytes);
}

TEST_F(GigeDeviceTest, LostPacketsAreSentAgainWhenAskedFor) {
  DeviceSettings settings = Settings(kDevice);
  settings.lossPerThousand = 300;
  Start(settings);
  Execute("AcquisitionStart");
  Received block = ReceiveBlock();
  ASSERT_LT(block.packets.size(), 23U);
  Execute("AcquisitionStop");
  const std::uint64_t id = block.id;
  const std::uint32_t last = 23;  // 30,720 bytes of image: 21 packets, leader, trailer
  for (int round = 0; round < 200 && block.packets.size() < last; ++round) {
    for (std::uint32_t packet = 0; packet < last; ++packet) {
      if (block.packets.count(packet) == 0) AskAgain(id, packet, packet);
    }
    std::uint32_t value = 0;
    ASSERT_EQ(client_->ReadRegister(0, value), Result::ok);  // behind it, the requests are done
    std::vector<std::uint8_t> buffer(65536);
    while (const auto received = receiver_->Receive(buffer)) {
      const gige::Bytes packet(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(received->bytes));
      if (LoadBig(&packet[2], 2) == id) block.packets[IdOf(packet)] = packet;
    }
  }
  EXPECT_EQ(block.packets.size(), std::size_t{last});
}

TEST_F(GigeDeviceTest, PacketsSentAgainDifferInTheirMarkOnly) {
  for (const bool isLong : {false, true}) {
    camera_ = cameras::MakeCamera("ZS-A640", "S1");
    Start(Settings(kDevice));
    Write(reg::kStreamConfiguration, isLong ? 1U << 30U : 0);
    Execute("AcquisitionStart");
    const Received block = ReceiveBlock();
    Execute("AcquisitionStop");
    const std::uint64_t number = LoadBig(&block.packets.at(0)[isLong ? 8 : 2], isLong ? 8 : 2);
    AskAgain(number, 0, 0xFFFFFFFF, isLong);  // up to the end, whatever its number is
    for (std::uint32_t id = 0; id <= block.trailer; ++id) {
      gige::Bytes again;
      do again = NextPacket();
      while (again.size() >= 8 && again[isLong ? 3 : 0] != 1);
      ASSERT_GE(again.size(), 8U) << "packet " << id;
      again[isLong ? 3 : 0] = 0;
      EXPECT_EQ(again, block.packets.at(id)) << "packet " << id;
    }
    device_.reset();
    receiver_ = DeviceSocket::BoundTo(kHost, 0, false);
  }
}

TEST_F(GigeDeviceTest, WhatCannotBeSentAgainIsToldSo) {
  Start(Settings(kDevice));
  camera_->GetFaults().DamageFrames(1);
  Execute("AcquisitionStart");
  const Received block = ReceiveBlock();
  Execute("AcquisitionStop");
  struct Case {
    std::uint64_t block;
    std::uint32_t packet;
    bool isLong;
  };
  const Case cases[] = {
      {block.id, block.trailer - 1, false},  // the camera never had it
      {60'000, 5, false},                    // no such block
      {block.id, 1, true},                   // its number is short
      {0x123456789ABCU, 7, true},
  };
  for (const Case& one : cases) {
    AskAgain(one.block, one.packet, one.packet, one.isLong);
    const gige::Bytes answer = NextWithStatus(stream_status::kUnavailable);
    ASSERT_EQ(answer.size(), one.isLong ? 20U : 8U) << one.block;
    EXPECT_EQ(IdOf(answer), one.packet);
    EXPECT_EQ(LoadBig(&answer[one.isLong ? 8 : 2], one.isLong ? 8 : 2), one.block);
  }
}

TEST_F(GigeDeviceTest, BlocksCountOnOverStopsWithAGapForEachLostFrameAndAnewWithTheChannel) {
  Start(Settings(kDevice));
  camera_->GetFaults().DropFrames(2);
  std::uint64_t last = 0;
  for (int round = 0; round < 3; ++round) {
    Execute("AcquisitionStart");
    for (int i = 0; i < 3; ++i) {
      const std::uint64_t id = ReceiveBlock().id;
      EXPECT_GE(id, last == 0 ? 3U : last + 1) << "round " << round;
      last = id;
    }
    Execute("AcquisitionStop");
  }
  Write(reg::kStreamPort, 0);
  receiver_ = DeviceSocket::BoundTo(kHost, 0, false);
  Write(reg::kStreamPort, receiver_->Port());
  Execute("AcquisitionStart");
  const std::uint64_t first = ReceiveBlock().id;
  EXPECT_GE(first, 1U);
  EXPECT_LT(first, last);
}

TEST_F(GigeDeviceTest, TheSameSeedLosesTheSamePackets) {
  DeviceSettings settings = Settings(kDevice);
  settings.lossPerThousand = 200;
  settings.seed = 7;
  std::vector<std::uint32_t> first;
  for (int run = 0; run < 2; ++run) {
    camera_ = cameras::MakeCamera("ZS-A640", "S1");
    receiver_ = DeviceSocket::BoundTo(kHost, 0, false);
    Start(settings);
    Execute("AcquisitionStart");
    const std::vector<std::uint32_t> order = ReceiveBlock().order;
    device_.reset();
    if (run == 0) first = order;
    EXPECT_EQ(order, first);
  }
  EXPECT_GT(first.size(), 10U);
}

TEST_F(GigeDeviceTest, ADamagedFrameHasNoEnd) {
  Start(Settings(kDevice));
  camera_->GetFaults().DamageFrames(1);
  Execute("AcquisitionStart");
  const Received block = ReceiveBlock();
  ASSERT_GT(block.trailer, 20U);
  EXPECT_LT(block.packets.size(), block.trailer);
  EXPECT_EQ(block.packets.count(1), 1U);
  EXPECT_EQ(block.packets.count(block.trailer - 1), 0U);
}

// The device's events, as a client with a message channel gets them.
class GigeDeviceEventsTest : public GigeDeviceTest {
 protected:
  void StartWithEvents(std::uint32_t timeoutMs, std::uint32_t retries) {
    Start(Settings(kDevice));
    Notify(0);
    Notify(1);
    Write(reg::kMessageTimeout, timeoutMs);
    Write(reg::kMessageRetries, retries);
    Write(reg::kMessageDestination, kHost.value);
    Write(reg::kMessagePort, messages_->Port());
  }
  void Notify(std::uint32_t event) {
    const std::string text(camera_->Description());
    const std::size_t at = text.find("<Address>", text.find("Name=\"EventNotificationReg\""));
    ASSERT_NE(at, std::string::npos);
    const auto address = static_cast<std::uint32_t>(std::strtoul(text.c_str() + at + 9, nullptr, 0));
    Write(address + 4 * event, 1);
  }
  gige::Bytes NextMessage() { return Next(*messages_); }
  // Answers the message, as a client has to.
  void Acknowledge(const gige::Bytes& message, std::uint16_t requestId) {
    gige::Bytes answer(gige::kGvcpHeaderBytes);
    cameras::StoreBig(&answer[2], LoadBig(&message[2], 2) + 1, 2);
    cameras::StoreBig(&answer[6], requestId, 2);
    std::uint32_t port = 0;
    ASSERT_EQ(client_->ReadRegister(reg::kMessageSourcePort, port), Result::ok);
    messages_->SendTo({kDevice, static_cast<std::uint16_t>(port)}, answer);
  }
  static std::uint16_t RequestOf(const gige::Bytes& message) {
    return static_cast<std::uint16_t>(LoadBig(&message[6], 2));
  }

  std::optional<DeviceSocket> messages_ = DeviceSocket::BoundTo(kHost, 0, false);
};

constexpr std::uint32_t kLongMs = 10'000;

TEST_F(GigeDeviceEventsTest, EachIsSentOnceItsForerunnerIsAcknowledged) {
  StartWithEvents(kLongMs, 3);
  Execute("AcquisitionStart");
  const gige::Bytes start = NextMessage();
  ASSERT_EQ(start.size(), 24U);
  EXPECT_EQ(LoadBig(start.data(), 8), 0x420100C000100001U);
  EXPECT_EQ(LoadBig(&start[8], 8), 0x00009001FFFF0000U);
  Acknowledge(start, RequestOf(start));
  const gige::Bytes first = NextMessage();
  ASSERT_EQ(first.size(), 32U);
  EXPECT_EQ(LoadBig(first.data(), 8), 0x420100C200180002U);
  EXPECT_EQ(LoadBig(&first[8], 8), 0x00009002FFFF0000U);
  EXPECT_GE(LoadBig(&first[16], 8), LoadBig(&start[16], 8));
  EXPECT_EQ(LoadBig(&first[24], 8), 1U);
  const Received block = ReceiveBlock();
  EXPECT_EQ(LoadBig(&block.packets.at(0)[12], 8), LoadBig(&first[16], 8)) << "the time stamp of the frame";
  Acknowledge(first, RequestOf(first));
  const gige::Bytes second = NextMessage();
  ASSERT_EQ(second.size(), 32U);
  EXPECT_EQ(RequestOf(second), 3U);
  EXPECT_EQ(LoadBig(&second[24], 8), 2U);
}

TEST_F(GigeDeviceEventsTest, WhatIsNotAcknowledgedIsRepeatedAndThenGivenUp) {
  StartWithEvents(100, 2);
  Execute("AcquisitionStart");
  const gige::Bytes start = NextMessage();
  ASSERT_FALSE(start.empty());
  Acknowledge(start, 77);  // of another message
  EXPECT_EQ(NextMessage(), start);
  EXPECT_EQ(NextMessage(), start);
  const gige::Bytes first = NextMessage();
  EXPECT_EQ(LoadBig(&first[2], 2), 0x00C2U);
  EXPECT_EQ(RequestOf(first), 2U);
}

TEST_F(GigeDeviceEventsTest, WhileManyWaitLaterOnesAreLost) {
  constexpr std::uint64_t kWaiting = MessageChannel::kMostWaiting;
  constexpr std::uint64_t kFrames = kWaiting + 10;
  StartWithEvents(kLongMs, 3);
  Execute("AcquisitionStart");
  gige::Bytes message = NextMessage();  // of the start; the frames' wait for its acknowledge
  const auto acknowledge = [&] {
    const std::uint16_t request = RequestOf(message);
    Acknowledge(message, request);
    do message = NextMessage();
    while (message.size() >= 8 &&
           RequestOf(message) == request);  // on a busy machine it is repeated meanwhile
  };
  while (ReceiveBlock().id <= kFrames) {
  }
  std::uint64_t last = 0;
  for (std::uint64_t i = 0; i < kWaiting; ++i) {
    acknowledge();
    ASSERT_EQ(message.size(), 32U) << i;
    const std::uint64_t frame = LoadBig(&message[24], 8);
    EXPECT_GT(frame, last);
    last = frame;
  }
  acknowledge();
  ASSERT_EQ(message.size(), 32U);
  EXPECT_GE(LoadBig(&message[24], 8), kFrames);
}

TEST_F(GigeDeviceEventsTest, NoAcknowledgeIsAskedForWithoutATimeout) {
  StartWithEvents(0, 3);
  Execute("AcquisitionStart");
  for (std::uint16_t request = 1; request < 5; ++request) {
    const gige::Bytes message = NextMessage();
    ASSERT_FALSE(message.empty());
    EXPECT_EQ(message[1], 0);
    EXPECT_EQ(RequestOf(message), request);
  }
}

TEST_F(GigeDeviceEventsTest, NothingComesThatWasNotSwitchedOnAndNothingOnceControlIsGone) {
  StartWithEvents(kLongMs, 3);
  SetFeature("DeviceReset", 1);  // the notifications are off again, and so is the channel
  Write(bootstrap::kControlPrivilege, gige::kControlAccess);
  SetFeature("Height", kHeight);
  std::uint32_t port = 1;
  EXPECT_EQ(client_->ReadRegister(reg::kMessagePort, port), Result::ok);
  EXPECT_EQ(port, 0U);
  Write(reg::kMessagePort, messages_->Port());
  Write(reg::kStreamPort, receiver_->Port());
  Execute("AcquisitionStart");
  EXPECT_FALSE(ReceiveBlock().packets.empty());
  Notify(1);
  const gige::Bytes message = NextMessage();
  ASSERT_FALSE(message.empty());
  EXPECT_GT(LoadBig(&message[24], 8), 1U) << "the first frames were not reported";
  EXPECT_EQ(RequestOf(message), 1U);
  Write(bootstrap::kControlPrivilege, 0);
  const auto end = std::chrono::steady_clock::now();
  device_.reset();  // does not wait for the acknowledge
  EXPECT_LT(std::chrono::steady_clock::now() - end, std::chrono::milliseconds(kLongMs / 2));
}

TEST_F(GigeDeviceTest, ControlThatGoesEndsTheAcquisition) {
  Start(Settings(kDevice));
  Execute("AcquisitionStart");
  EXPECT_TRUE(camera_->IsAcquiring());
  Write(bootstrap::kControlPrivilege, 0);
  EXPECT_FALSE(camera_->IsAcquiring());
}

}  // namespace
}  // namespace zyn::gigedevice
