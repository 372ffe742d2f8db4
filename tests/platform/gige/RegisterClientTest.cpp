#include "gige/RegisterClient.h"

#include <gtest/gtest.h>

#include <numeric>

#include "ScriptedDevice.h"

namespace zyn::gige {
namespace {

using std::chrono::milliseconds;
using test::LoopbackIdentity;
using test::MakeAck;
using test::ScriptedDevice;

constexpr RegisterClient::Options kPatient{milliseconds{2000}, 3};
constexpr RegisterClient::Options kBrief{milliseconds{40}, 3};
constexpr std::uint32_t kSome = 0xA000;

class RegisterClientTest : public testing::Test {
 protected:
  std::unique_ptr<RegisterClient> Connect(const RegisterClient::Options& options) {
    return RegisterClient::Connect(Ipv4{0x7F000001}, Ipv4{0x7F000002}, options);
  }

  ScriptedDevice device_{LoopbackIdentity(2, "S")};
};

TEST_F(RegisterClientTest, RegistersReadBack) {
  const auto client = Connect(kPatient);
  EXPECT_EQ(client->WriteRegister(kSome, 0x12345678), Result::ok);
  EXPECT_EQ(device_.Register(kSome), 0x12345678U);
  std::uint32_t value = 0;
  EXPECT_EQ(client->ReadRegister(kSome, value), Result::ok);
  EXPECT_EQ(value, 0x12345678U);
}

TEST_F(RegisterClientTest, MemoryOfAnyLengthIsSplitIntoBlocks) {
  const auto client = Connect(kPatient);
  for (const std::size_t size : {0, 4, 508, 512, 516, 1536, 2052}) {
    Bytes written(size);
    std::iota(written.begin(), written.end(), static_cast<std::uint8_t>(size));
    ASSERT_EQ(client->WriteMemory(kSome, written), Result::ok) << size;
    Bytes read(size);
    ASSERT_EQ(client->ReadMemory(kSome, read), Result::ok) << size;
    EXPECT_EQ(read, written) << size;
  }
  for (const Bytes& command : device_.Commands(command::kWriteMemory))
    EXPECT_LE(command.size(), 8U + 4U + 512U);
}

TEST_F(RegisterClientTest, UnalignedMemoryIsRefusedWithoutASound) {
  const auto client = Connect(kPatient);
  Bytes data(4);
  EXPECT_EQ(client->ReadMemory(kSome + 2, data), Result::invalidParameter);
  data.resize(6);
  EXPECT_EQ(client->WriteMemory(kSome, data), Result::invalidParameter);
  EXPECT_TRUE(device_.Commands(command::kReadMemory).empty());
  EXPECT_TRUE(device_.Commands(command::kWriteMemory).empty());
}

TEST_F(RegisterClientTest, StatusOfTheDeviceIsPassedOn) {
  const struct {
    std::uint16_t status;
    Result result;
  } rows[] = {
      {0x8001, Result::notImplemented}, {0x8002, Result::invalidParameter}, {0x8003, Result::invalidAddress},
      {0x8004, Result::writeProtected}, {0x8005, Result::invalidParameter}, {0x8006, Result::accessDenied},
      {0x8007, Result::busy},           {0x8FFF, Result::deviceError}};
  const auto client = Connect(kPatient);
  for (const auto& row : rows) {
    device_.SetScript([&](ByteView command) -> std::optional<std::vector<Bytes>> {
      return std::vector<Bytes>{MakeAck(command, row.status, {})};
    });
    EXPECT_EQ(client->WriteRegister(kSome, 1), row.result) << std::hex << row.status;
  }
}

TEST_F(RegisterClientTest, SilenceEndsAfterTheAttemptsWithOneIdentifier) {
  device_.SetScript([](ByteView) { return std::vector<Bytes>{}; });
  const auto client = Connect(kBrief);
  std::uint32_t value = 77;
  EXPECT_EQ(client->ReadRegister(kSome, value), Result::noAnswer);
  EXPECT_EQ(value, 77U);
  const auto commands = device_.Commands(command::kReadRegister);
  ASSERT_EQ(commands.size(), 3U);
  EXPECT_EQ(commands[0], commands[2]) << "the device must see that it is the same command";
}

TEST_F(RegisterClientTest, ALostAnswerIsAskedForAgain) {
  device_.SetScript([seen = 0](ByteView) mutable -> std::optional<std::vector<Bytes>> {
    if (seen++ == 0) return std::vector<Bytes>{};
    return std::nullopt;
  });
  EXPECT_EQ(Connect(kBrief)->WriteRegister(kSome, 5), Result::ok);
}

TEST_F(RegisterClientTest, PendingAcknowledgeGivesTheDeviceMoreTime) {
  device_.SetScript([](ByteView command) -> std::optional<std::vector<Bytes>> {
    Bytes pending = MakeAck(command, 0, {0, 0, 0x01, 0x2C});  // 300 ms
    pending[3] = command::kPendingAck;
    return std::vector<Bytes>{pending};
  });
  const auto start = std::chrono::steady_clock::now();
  std::uint32_t value = 0;
  EXPECT_EQ(Connect({milliseconds{40}, 1})->ReadRegister(kSome, value), Result::noAnswer);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(300));
}

TEST_F(RegisterClientTest, TheAnswerAfterAPendingAcknowledgeCounts) {
  device_.SetScript([](ByteView command) -> std::optional<std::vector<Bytes>> {
    Bytes pending = MakeAck(command, 0, {0, 0, 0x01, 0x2C});
    pending[3] = command::kPendingAck;
    return std::vector<Bytes>{pending, MakeAck(command, 0, {0, 0, 0, 9})};
  });
  std::uint32_t value = 0;
  EXPECT_EQ(Connect(kPatient)->ReadRegister(kSome, value), Result::ok);
  EXPECT_EQ(value, 9U);
}

TEST_F(RegisterClientTest, ForeignAndMalformedAnswersAreSkipped) {
  device_.SetScript([](ByteView command) -> std::optional<std::vector<Bytes>> {
    Bytes otherRequest = MakeAck(command, 0, {0, 0, 0, 1});
    otherRequest[7] = static_cast<std::uint8_t>(otherRequest[7] + 1);
    Bytes otherAck = MakeAck(command, 0, {0, 0, 0, 2});
    otherAck[3] = 0x85;
    Bytes cut = MakeAck(command, 0, {0, 0, 0, 3});
    cut.pop_back();
    Bytes pendingCut = MakeAck(command, 0, {0});
    pendingCut[3] = 0x89;
    return std::vector<Bytes>{{},       {0}, Bytes(1400, 0xFF), otherRequest,
                              otherAck, cut, pendingCut,        MakeAck(command, 0, {0, 0, 0, 4})};
  });
  std::uint32_t value = 0;
  EXPECT_EQ(Connect(kPatient)->ReadRegister(kSome, value), Result::ok);
  EXPECT_EQ(value, 4U);
}

TEST_F(RegisterClientTest, AnAnswerWithoutTheDataIsAnError) {
  device_.SetScript([](ByteView command) -> std::optional<std::vector<Bytes>> {
    return std::vector<Bytes>{MakeAck(command, 0, {0, 0})};
  });
  const auto client = Connect(kPatient);
  std::uint32_t value = 0;
  Bytes data(8);
  EXPECT_EQ(client->ReadRegister(kSome, value), Result::deviceError);
  EXPECT_EQ(client->ReadMemory(kSome, data), Result::deviceError);
}

TEST(RegisterClientAlone, AnAbsentDeviceIsKnownAtOnce) {
  const auto client = RegisterClient::Connect(kNoAddress, Ipv4{0x7F000063}, {milliseconds{60'000}, 3});
  std::uint32_t value = 0;
  EXPECT_EQ(client->ReadRegister(kSome, value), Result::nobodyListens);
  EXPECT_EQ(client->ReadRegister(kSome, value), Result::nobodyListens);
}

TEST(RegisterClientAlone, IsUsableAgainWhenTheDeviceAppears) {
  const auto client = RegisterClient::Connect(kNoAddress, Ipv4{0x7F000002}, kPatient);
  std::uint32_t value = 0;
  EXPECT_EQ(client->ReadRegister(bootstrap::kControlPrivilege, value), Result::nobodyListens);
  const ScriptedDevice device(LoopbackIdentity(2, "S"));
  EXPECT_EQ(client->ReadRegister(bootstrap::kControlPrivilege, value), Result::ok);
}

}  // namespace
}  // namespace zyn::gige
