// A program that nobody here wrote, tshark, takes our packets apart: all kinds are there, and none is malformed.
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <sstream>

#include "PacketCapture.h"
#include "SdkFixture.h"
#include "cameras/Catalog.h"
#include "gige/ForceIp.h"
#include "gige/RegisterClient.h"
#include "gigedevice/BootstrapRegisters.h"
#include "gigedevice/GigeDevice.h"

namespace {

using namespace ZYNSDK;
using zyn::gige::RegisterClient;
using zyntest::VirtualCameraProcess;
namespace reg = zyn::gigedevice::reg;

constexpr zyn::gige::Ipv4 kLoopback{0x7F000001};
// tshark's names of what it reads, and of what it complains about.
constexpr const char* kFields[] = {"gvcp.cmd.command",
                                   "gvcp.ack",
                                   "gvcp.cmd.status",
                                   "gvsp.format",
                                   "gvsp.status",
                                   "gvsp.payloadtype",
                                   "gvsp.blockid16",
                                   "gvsp.blockid64",
                                   "gvsp.flag.packetresend",
                                   "gvcp.cmd.event.devicespecificid"};
constexpr const char* kComplaints[] = {"_ws.malformed", "_ws.expert.severity", "_ws.expert.message"};
constexpr long kWarning = 0x00600000;  // errors are above, notes below

class DecodedByTshark : public zyntest::SdkFixture {
 protected:
  void TearDown() override {
    std::filesystem::remove(file_);
    SdkFixture::TearDown();
  }

  static std::string PortOf(std::uint32_t address, zyn::gige::Ipv4 device = kLoopback) {
    std::uint32_t port = 0;
    const auto client = RegisterClient::Connect(kLoopback, device, {});
    EXPECT_EQ(client->ReadRegister(address, port), zyn::gige::Result::ok);
    return "udp.port==" + std::to_string(port);
  }

  // Ends the recording and counts each value of each field. The ports: tshark's syntax.
  void Decode(const std::string& streamPort, const std::string& messagePort = "udp.port==3956") {
    capture_->Save(file_);
    std::vector<std::string> command{"tshark", "-n",     "-r", file_.string(),
                                     "-T",     "fields", "-E", "separator=;"};
    command.insert(command.end(), {"-d", streamPort + ",gvsp", "-d", messagePort + ",gvcp", "-Y",
                                   "gvcp or gvsp or _ws.malformed"});
    for (const char* field : kFields) command.insert(command.end(), {"-e", field});
    for (const char* field : kComplaints) command.insert(command.end(), {"-e", field});
    const zyntest::Finished finished = zyntest::RunToEnd(command);
    ASSERT_EQ(finished.exitCode, 0) << finished.err;
    std::istringstream lines(finished.out);
    for (std::string line; std::getline(lines, line);) Count(line);
  }
  void Count(const std::string& line) {
    std::istringstream values(line + ';');
    std::string value;
    for (const char* field : kFields) {
      std::getline(values, value, ';');
      if (!value.empty()) ++counts_[std::string(field) + '=' + value];
    }
    std::getline(values, value, ';');
    EXPECT_EQ(value, "") << line;
    std::getline(values, value, ';');
    std::istringstream severities(value);
    for (std::string severity; std::getline(severities, severity, ',');)
      EXPECT_LT(std::stol(severity), kWarning) << line;
  }
  int Seen(const std::string& fieldAndValue) const {
    const auto found = counts_.find(fieldAndValue);
    return found == counts_.end() ? 0 : found->second;
  }
  void ExpectSeen(const std::vector<std::string>& kinds) const {
    for (const std::string& kind : kinds) EXPECT_GT(Seen(kind), 0) << kind;
  }

  const std::filesystem::path file_ = std::filesystem::temp_directory_path() /
                                      ("virtual-camera-packets-" + std::to_string(getpid()) + ".pcap");
  std::optional<zyntest::PacketCapture> capture_{std::in_place};
  std::map<std::string, int> counts_;
};

// On a busy machine what was lost may come again too late. Here it is about the packets only.
void GrabImages(ZynCamera& camera, int count) {
  ASSERT_EQ(camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), 0);
  ZynImage image;
  for (int i = 0; i < count; ++i) {
    const long status = camera.GrabImage(&image, nullptr);
    if (status != ZYN_ERROR_INVALID_FRAME) {
      ASSERT_EQ(status, 0);
    }
  }
}

void SetLineRate(Zyn3DCamera& camera, float rate) {
  ZynNode node;
  ASSERT_EQ(camera.GetNode("AcquisitionLineRate", &node), 0);
  ASSERT_EQ(node.SetFloat(rate), 0);
}

// Of the register behind a feature.
std::uint32_t AddressOf(const zyn::cameras::CameraModel& model, const std::string& feature) {
  const std::string text(model.Description());
  const std::size_t at = text.find("<Address>", text.find("Name=\"" + feature + "Reg\""));
  return static_cast<std::uint32_t>(std::strtoul(text.c_str() + at + 9, nullptr, 0));
}

TEST_F(DecodedByTshark, ControlAndImagesWithShortNumbersAndResend) {
  const VirtualCameraProcess process({"-m", "ZS-A640", "-s", "SHARK-1", "--loss", "50"});
  ZynCamera camera;
  ASSERT_NO_FATAL_FAILURE(Open(camera, "SHARK-1"));
  ASSERT_NO_FATAL_FAILURE(ShowMovingRamp(camera));
  ASSERT_NO_FATAL_FAILURE(GrabImages(camera, 20));
  const std::string port = PortOf(reg::kStreamSourcePort);
  EXPECT_EQ(camera.StopGrab(), 0);
  EXPECT_EQ(camera.Close(), 0);
  ASSERT_NO_FATAL_FAILURE(Decode(port));
  ExpectSeen({"gvcp.cmd.command=0x0002", "gvcp.ack=0x0003", "gvcp.cmd.command=0x0080", "gvcp.ack=0x0081",
              "gvcp.cmd.command=0x0082", "gvcp.ack=0x0083", "gvcp.cmd.command=0x0084", "gvcp.ack=0x0085",
              "gvcp.cmd.command=0x0086", "gvcp.ack=0x0087", "gvcp.cmd.command=0x0040"});
  ExpectSeen({"gvsp.format=0x01", "gvsp.format=0x02", "gvsp.format=0x03", "gvsp.payloadtype=0x0001",
              "gvsp.status=0x0100", "gvsp.blockid16=1"});
  EXPECT_EQ(Seen("gvsp.blockid64=1"), 0);
}

TEST_F(DecodedByTshark, ImagesWithChunksAndLongNumbersAndResend) {
  const VirtualCameraProcess process({"-m", "ZS-A640", "-s", "SHARK-2", "--loss", "50"});
  ZynCamera camera;
  ASSERT_NO_FATAL_FAILURE(Open(camera, "SHARK-2"));
  ASSERT_NO_FATAL_FAILURE(ShowMovingRamp(camera));
  SetBool(camera, "ChunkModeActive", true);
  SetEnum(camera, "GevGVSPExtendedIDMode", "On");
  ASSERT_NO_FATAL_FAILURE(GrabImages(camera, 20));
  const std::string port = PortOf(reg::kStreamSourcePort);
  EXPECT_EQ(camera.StopGrab(), 0);
  EXPECT_EQ(camera.Close(), 0);
  ASSERT_NO_FATAL_FAILURE(Decode(port));
  ExpectSeen({"gvsp.format=0x81", "gvsp.format=0x82", "gvsp.format=0x83", "gvsp.payloadtype=0x4001",
              "gvsp.blockid64=1", "gvsp.flag.packetresend=0x0001", "gvcp.cmd.command=0x0040"});
  EXPECT_EQ(Seen("gvsp.blockid16=1"), 0);
}

TEST_F(DecodedByTshark, ProfilesWithTheirImagesAndScans) {
  const VirtualCameraProcess process({"-m", "KEL-LP1000F", "-s", "SHARK-3"});
  Zyn3DCamera camera;
  ASSERT_NO_FATAL_FAILURE(Open(camera, "SHARK-3"));
  ZynImage image;
  ZynImage intensity;
  Zyn3DIntArray heights;
  SetLineRate(camera, 10.0F);  // megabytes per profile
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_PROFILE), 0);
  EXPECT_EQ(camera.GrabData(&image, &heights, &intensity), 0);
  EXPECT_EQ(camera.StopGrab(), 0);
  SetLineRate(camera, 1000.0F);
  ASSERT_EQ(camera.SetBatchCount(100), 0);
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_BATCH), 0);
  ZynRangeImage range;
  EXPECT_EQ(camera.GrabBatchData(&range, &intensity), 0);
  const std::string port = PortOf(reg::kStreamSourcePort);
  EXPECT_EQ(camera.StopGrab(), 0);
  EXPECT_EQ(camera.Close(), 0);
  ASSERT_NO_FATAL_FAILURE(Decode(port));
  ExpectSeen({"gvsp.format=0x01", "gvsp.format=0x02", "gvsp.format=0x03", "gvsp.payloadtype=0x4001",
              "gvsp.payloadtype=0x0004", "gvsp.blockid16=1"});
}

// libaravis opens no message channel, so a client of our own does.
TEST_F(DecodedByTshark, EventsAndForcedAddresses) {
  const auto model = zyn::cameras::MakeCamera("ZS-A640", "SHARK-4");
  zyn::gigedevice::DeviceSettings settings;
  settings.ip = kLoopback;
  settings.mac.bytes = {2, 0, 0, 0, 0, 1};
  const zyn::gigedevice::GigeDevice device(*model, zyn::cameras::SteadyClock(), settings);
  const zyn::gige::IpSettings other{{0x7F000002}, {0xFF000000}, {}};
  EXPECT_EQ(
      zyn::gige::ForceIp(zyn::gige::ListAdapters().at(0), settings.mac, other, std::chrono::seconds(10)),
      zyn::gige::ForceIpResult::confirmed);

  const auto client = RegisterClient::Connect(kLoopback, other.ip, {});
  const auto receiver = zyn::gigedevice::DeviceSocket::BoundTo(kLoopback, 0, false);
  const auto write = [&](std::uint32_t address, std::uint32_t value) {
    EXPECT_EQ(client->WriteRegister(address, value), zyn::gige::Result::ok);
  };
  write(zyn::gige::bootstrap::kControlPrivilege, zyn::gige::kControlAccess);
  write(reg::kMessageTimeout, 10'000);
  write(reg::kMessageDestination, kLoopback.value);
  write(reg::kMessagePort, receiver->Port());
  write(AddressOf(*model, "EventNotification"), 1);
  write(AddressOf(*model, "EventNotification") + 4, 1);
  write(reg::kStreamDestination, kLoopback.value);
  write(reg::kStreamPort, receiver->Port() + 1U);
  write(AddressOf(*model, "AcquisitionStart"), 1);
  std::uint32_t source = 0;
  EXPECT_EQ(client->ReadRegister(reg::kMessageSourcePort, source), zyn::gige::Result::ok);
  for (int event = 0; event < 3; ++event) {
    std::array<std::uint8_t, 64> message{};
    pollfd wait{receiver->Descriptor(), POLLIN, 0};
    ASSERT_EQ(poll(&wait, 1, 10'000), 1);
    ASSERT_TRUE(receiver->Receive(message));
    const std::array<std::uint8_t, 8> answer{0, 0, 0,          static_cast<std::uint8_t>(message[3] + 1),
                                             0, 0, message[6], message[7]};
    receiver->SendTo({other.ip, static_cast<std::uint16_t>(source)}, answer);
  }
  write(zyn::gige::bootstrap::kControlPrivilege, 0);
  const std::string streamPort = PortOf(reg::kStreamSourcePort, other.ip);
  ASSERT_NO_FATAL_FAILURE(Decode(streamPort, "udp.port==" + std::to_string(source)));
  ExpectSeen({"gvcp.cmd.command=0x0004", "gvcp.ack=0x0005", "gvcp.cmd.command=0x00c0", "gvcp.ack=0x00c1",
              "gvcp.cmd.command=0x00c2", "gvcp.ack=0x00c3", "gvcp.cmd.event.devicespecificid=0x9001",
              "gvcp.cmd.event.devicespecificid=0x9002"});
}

}  // namespace
