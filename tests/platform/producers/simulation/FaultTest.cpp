// Faults, scripted through the features of the interface module.
#include <thread>

#include "SimulatorFixture.h"
#include "cameras/ChunkIds.h"

namespace {

using namespace simtest;
namespace cameras = zyn::cameras;

constexpr const char* kTwoCameras = R"({"cameras": [
  {"model": "KEL-LP2000", "serialNumber": "L1", "pacing": "reader"},
  {"model": "KEL-LP2000", "serialNumber": "L2", "pacing": "reader"}]})";

class SimulatorFault : public SimulatorTest {
 protected:
  void SetUp() override {
    Begin(kTwoCameras);
    simulator_->SetText("SimCameraSerialNumber", "L1");
  }

  static std::uint64_t FrameId(const OpenCamera& camera, BUFFER_HANDLE buffer) {
    return UInt64(camera.Ask(buffer, BUFFER_INFO_FRAMEID));
  }

  // The text of the error event that waits, or "".
  static std::string WaitingError(EVENT_HANDLE event) {
    char data[1024];
    std::size_t size = sizeof data;
    if (EventGetData(event, data, &size, 10000) != GC_ERR_SUCCESS) return "";
    char text[1024];
    std::size_t textSize = sizeof text;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(EventGetDataInfo(event, data, size, EVENT_DATA_VALUE, &type, text, &textSize), GC_ERR_SUCCESS);
    return text;
  }
};

TEST_F(SimulatorFault, CamerasAreSelectedByNumberOrSerialNumber) {
  EXPECT_EQ(simulator_->Int("SimCameraSelector"), 0);
  simulator_->Set("SimCameraSelector", 1);
  EXPECT_EQ(simulator_->Text("SimCameraSerialNumber"), "L2");
  simulator_->SetText("SimCameraSerialNumber", "L1");
  EXPECT_EQ(simulator_->Int("SimCameraSelector"), 0);
  EXPECT_EQ(simulator_->Text("SimCameraModelName"), "KEL-LP2000");
  EXPECT_THROW(simulator_->Set("SimCameraSelector", 2), GenICam_3_4::GenericException);
  EXPECT_THROW(simulator_->SetText("SimCameraSerialNumber", "L3"), GenICam_3_4::GenericException);
  EXPECT_EQ(simulator_->Text("SimCameraSerialNumber"), "L1");
}

TEST_F(SimulatorFault, AnUnpluggedCameraIsNotFoundAndCannotBeOpenedUntilItIsPluggedAgain) {
  simulator_->SetBool("SimCameraPlugged", false);
  EXPECT_FALSE(simulator_->Bool("SimCameraPlugged"));
  DEV_HANDLE device = nullptr;
  EXPECT_EQ(Open("L1", &device), GC_ERR_IO) << "the list still has it";
  EXPECT_EQ(Devices(), std::vector<std::string>{"Sim:L2"});
  EXPECT_EQ(Open("L1", &device), GC_ERR_INVALID_ID);
  simulator_->SetBool("SimCameraPlugged", true);
  EXPECT_EQ(Devices(), (std::vector<std::string>{"Sim:L1", "Sim:L2"}));
  EXPECT_EQ(Open("L1", &device), GC_ERR_SUCCESS);
}

TEST_F(SimulatorFault, UnpluggingInMidStreamIsALossLikeARealOne) {
  OpenCamera camera(interface_, "L1");
  EVENT_HANDLE deviceError = nullptr;
  ASSERT_EQ(GCRegisterEvent(camera.device, EVENT_ERROR, &deviceError), GC_ERR_SUCCESS);
  camera.OpenStream(2);
  EVENT_HANDLE streamError = nullptr;
  ASSERT_EQ(GCRegisterEvent(camera.stream, EVENT_ERROR, &streamError), GC_ERR_SUCCESS);
  camera.Start();
  ASSERT_NE(camera.Fetch(), nullptr);
  simulator_->SetBool("SimCameraPlugged", false);
  EXPECT_NE(WaitingError(deviceError).find("L1 was unplugged"), std::string::npos);
  EXPECT_NE(WaitingError(streamError).find("L1 was unplugged"), std::string::npos);
  EXPECT_THROW(camera.features->Set("BatchNumber", 5), GenICam_3_4::GenericException);
  char byte[4];
  std::size_t size = sizeof byte;
  EXPECT_EQ(GCReadPort(camera.port, 0x100000, byte, &size), GC_ERR_IO);
  EXPECT_EQ(Int32(Bound(DevGetInfo, camera.device, DEVICE_INFO_ACCESS_STATUS)),
            DEVICE_ACCESS_STATUS_NOACCESS);
  EXPECT_EQ(DSStopAcquisition(camera.stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
}

TEST_F(SimulatorFault, AfterPluggingANewOpenStreamsAgainFromTheStart) {
  {
    OpenCamera camera(interface_, "L1");
    camera.features->Set("BatchNumber", 37);
    camera.OpenStream(2);
    camera.Start();
    ASSERT_NE(camera.Fetch(), nullptr);
    simulator_->SetBool("SimCameraPlugged", false);
    simulator_->SetBool("SimCameraPlugged", true);
    EXPECT_THROW(camera.features->Execute("AcquisitionStart"), GenICam_3_4::GenericException)
        << "the old handle stays lost";
  }
  OpenCamera camera(interface_, "L1");
  EXPECT_EQ(camera.features->Int("BatchNumber"), 100) << "without power it forgot what was not saved";
  camera.OpenStream(2);
  camera.Start();
  BUFFER_HANDLE const buffer = camera.Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(FrameId(camera, buffer), 1U);
  camera.Stop();
}

TEST_F(SimulatorFault, UnpluggingWakesAStreamThatWaitsForItsReader) {
  OpenCamera camera(interface_, "L1");
  camera.OpenStream(1);
  camera.Start();
  ASSERT_NE(camera.Fetch(), nullptr);  // and keep the only buffer
  simulator_->SetBool("SimCameraPlugged", false);
  EXPECT_EQ(DSStopAcquisition(camera.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);  // would hang
}

TEST_F(SimulatorFault, ABusyCameraDeniesAccess) {
  simulator_->SetBool("SimCameraBusy", true);
  EXPECT_EQ(Devices().size(), 2U);
  EXPECT_EQ(AccessStatus("Sim:L1"), DEVICE_ACCESS_STATUS_BUSY);
  EXPECT_EQ(AccessStatus("Sim:L2"), DEVICE_ACCESS_STATUS_READWRITE);
  DEV_HANDLE device = nullptr;
  EXPECT_EQ(Open("L1", &device), GC_ERR_ACCESS_DENIED);
  simulator_->SetBool("SimCameraBusy", false);
  EXPECT_EQ(Open("L1", &device), GC_ERR_SUCCESS);
}

TEST_F(SimulatorFault, AnotherProgramTakesAnOpenCameraOver) {
  OpenCamera camera(interface_, "L1");
  EVENT_HANDLE error = nullptr;
  ASSERT_EQ(GCRegisterEvent(camera.device, EVENT_ERROR, &error), GC_ERR_SUCCESS);
  simulator_->SetBool("SimCameraBusy", true);
  EXPECT_NE(WaitingError(error).find("took over the control"), std::string::npos);
  EXPECT_THROW(camera.features->Set("BatchNumber", 5), GenICam_3_4::GenericException);
}

TEST_F(SimulatorFault, ADeviceResetIsALossToo) {
  OpenCamera camera(interface_, "L1");
  EVENT_HANDLE error = nullptr;
  ASSERT_EQ(GCRegisterEvent(camera.device, EVENT_ERROR, &error), GC_ERR_SUCCESS);
  camera.features->Execute("DeviceReset");
  EXPECT_NE(WaitingError(error).find("was reset"), std::string::npos);
  camera.Close();
  DEV_HANDLE device = nullptr;
  EXPECT_EQ(Open("L1", &device), GC_ERR_SUCCESS);
}

TEST_F(SimulatorFault, DroppedFramesLeaveAGapInTheNumbers) {
  OpenCamera camera(interface_, "L1");
  camera.OpenStream(2);
  simulator_->Set("SimDropFrames", 3);
  camera.Start();
  BUFFER_HANDLE const buffer = camera.Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(FrameId(camera, buffer), 4U);
  EXPECT_EQ(simulator_->Int("SimDropFrames"), 0);
  EXPECT_EQ(UInt64(camera.Ask(STREAM_INFO_NUM_UNDERRUN)), 0U) << "it was not for want of a buffer";
  camera.Stop();
}

TEST_F(SimulatorFault, DamagedFramesAreMarkedAndOfferNoChunks) {
  OpenCamera camera(interface_, "L1");
  camera.OpenStream(2);
  simulator_->Set("SimDamageFrames", 1);
  camera.Start();
  BUFFER_HANDLE const damaged = camera.Fetch();
  ASSERT_NE(damaged, nullptr);
  EXPECT_TRUE(Bool(camera.Ask(damaged, BUFFER_INFO_IS_INCOMPLETE)));
  EXPECT_LT(Size(camera.Ask(damaged, BUFFER_INFO_SIZE_FILLED)),
            Size(camera.Ask(damaged, BUFFER_INFO_DATA_SIZE)));
  EXPECT_TRUE(camera.Chunks(damaged).empty());
  BUFFER_HANDLE const whole = camera.Fetch();
  ASSERT_NE(whole, nullptr);
  EXPECT_FALSE(Bool(camera.Ask(whole, BUFFER_INFO_IS_INCOMPLETE)));
  EXPECT_FALSE(camera.Chunks(whole).empty());
  camera.Stop();
}

TEST_F(SimulatorFault, ADamagedImageTellsHowManyLinesCame) {
  OpenCamera camera(interface_, "L1");
  camera.features->SetBool("EnableImage", true);
  camera.OpenStream(1);
  simulator_->Set("SimDamageFrames", 1);
  camera.Start();
  BUFFER_HANDLE const buffer = camera.Fetch();
  ASSERT_NE(buffer, nullptr);
  const std::size_t width = Size(camera.Ask(buffer, BUFFER_INFO_WIDTH));
  const std::size_t lines = Size(camera.Ask(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT));
  EXPECT_EQ(lines, Size(camera.Ask(buffer, BUFFER_INFO_SIZE_FILLED)) / width);
  EXPECT_LT(lines, Size(camera.Ask(buffer, BUFFER_INFO_HEIGHT)));
  camera.Stop();
}

TEST_F(SimulatorFault, ShortenedChunksLackOneRecord) {
  OpenCamera camera(interface_, "L1");
  camera.OpenStream(2);
  simulator_->Set("SimShortenChunks", 1);
  camera.Start();
  for (const std::size_t missing : {4U, 0U}) {
    BUFFER_HANDLE const buffer = camera.Fetch();
    ASSERT_NE(buffer, nullptr);
    EXPECT_FALSE(Bool(camera.Ask(buffer, BUFFER_INFO_IS_INCOMPLETE)));
    const std::vector<SINGLE_CHUNK_DATA> chunks = camera.Chunks(buffer);
    ASSERT_FALSE(chunks.empty());
    EXPECT_EQ(chunks[0].ChunkLength, 8000 - missing);
  }
  camera.Stop();
}

TEST_F(SimulatorFault, ANewScanBreaksTheOneInProgressOff) {
  OpenCamera camera(interface_, "L1");
  camera.features->SetBool("BatchEnable", true);
  camera.features->Set("AcquisitionLineCount", 1000);
  camera.features->Set("BatchNumber", 100);
  camera.OpenStream(1);
  camera.Start();
  const auto identifier = [&camera](BUFFER_HANDLE buffer) -> int {
    for (const SINGLE_CHUNK_DATA& chunk : camera.Chunks(buffer)) {
      if (chunk.ChunkID == cameras::kFrameIdChunk) return camera.Base(buffer)[chunk.ChunkOffset + 7];
    }
    return -1;
  };
  BUFFER_HANDLE buffer = camera.Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(identifier(buffer), 1);
  simulator_->Execute("SimNewScan");
  camera.Queue(buffer);
  buffer = camera.Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(identifier(buffer), 2);
  camera.Stop();
}

TEST_F(SimulatorFault, DelayedFramesComeLaterByTheCamerasTime) {
  OpenCamera camera(interface_, "L1");
  camera.OpenStream(1);
  EXPECT_THROW(simulator_->SetFloat("SimFrameDelay", -1), GenICam_3_4::GenericException);
  simulator_->SetFloat("SimFrameDelay", 5000);
  EXPECT_EQ(simulator_->Float("SimFrameDelay"), 5000);
  camera.Start();
  ASSERT_NE(camera.Fetch(), nullptr);
  camera.Stop();
  simulator_->Execute("SimClearFaults");
  EXPECT_EQ(simulator_->Float("SimFrameDelay"), 0);
}

TEST_F(SimulatorFault, RegisterAccessFailsAsOftenAndInTheWayThatWasAskedFor) {
  OpenCamera camera(interface_, "L1");
  OpenCamera other(interface_, "L2");
  const std::vector<std::pair<const char*, GC_ERROR>> kinds = {{"NoAnswer", GC_ERR_TIMEOUT},
                                                               {"AccessDenied", GC_ERR_ACCESS_DENIED},
                                                               {"Busy", GC_ERR_BUSY},
                                                               {"OutOfRange", GC_ERR_INVALID_VALUE},
                                                               {"Unmapped", GC_ERR_INVALID_ADDRESS}};
  const std::int64_t address = 0x100000;
  std::uint8_t word[4] = {};
  std::size_t size = sizeof word;
  ASSERT_EQ(GCReadPort(camera.port, address, word, &size), GC_ERR_SUCCESS)
      << "choose an address that is there";
  for (const auto& [name, code] : kinds) {
    simulator_->SetText("SimRegisterFault", name);
    simulator_->Set("SimRegisterFaultCount", 2);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(GCReadPort(camera.port, address, word, &size), code) << name;
    EXPECT_EQ(GCReadPort(camera.port, address, word, &size), GC_ERR_SUCCESS) << name;
  }
  simulator_->Set("SimRegisterFaultFirst", address + 4);
  simulator_->Set("SimRegisterFaultCount", 1000000);
  EXPECT_EQ(GCReadPort(camera.port, address, word, &size), GC_ERR_SUCCESS) << "outside the range";
  EXPECT_EQ(GCReadPort(camera.port, address + 4, word, &size), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(GCReadPort(other.port, address + 4, word, &size), GC_ERR_SUCCESS)
      << "only the selected camera fails";
  simulator_->Execute("SimClearFaults");
  EXPECT_EQ(GCReadPort(camera.port, address + 4, word, &size), GC_ERR_SUCCESS);
}

TEST_F(SimulatorFault, InputLinesAndEncoderAreDrivenFromOutside) {
  OpenCamera camera(interface_, "L1");
  camera.features->SetText("TriggerSelector", "LineStart");
  camera.features->SetText("TriggerMode", "On");
  camera.features->SetText("TriggerSource", "Line1");
  camera.OpenStream(1);
  camera.Start();
  EXPECT_EQ(camera.Fetch(0), nullptr);
  simulator_->Set("SimInputLine", 1);
  simulator_->Execute("SimPulseInputLine");
  BUFFER_HANDLE const buffer = camera.Fetch();
  ASSERT_NE(buffer, nullptr);
  camera.Queue(buffer);
  camera.features->SetText("TriggerSource", "Encoder0");
  simulator_->Set("SimTurnEncoder", 1);
  EXPECT_NE(camera.Fetch(), nullptr);
  camera.Stop();
}

TEST_F(SimulatorFault, PluggingAndStreamingRaceWithoutHarm) {
  std::thread plugger([this] {
    const NodeMap own(interface_);
    for (int i = 0; i < 200; ++i) {
      own.SetBool("SimCameraPlugged", false);
      own.SetBool("SimCameraPlugged", true);
    }
  });
  for (int i = 0; i < 30; ++i) {
    DEV_HANDLE device = nullptr;
    if (Open("L1", &device) != GC_ERR_SUCCESS) continue;
    DS_HANDLE stream = nullptr;
    BUFFER_HANDLE buffer = nullptr;
    if (DevOpenDataStream(device, "Stream0", &stream) == GC_ERR_SUCCESS) {
      DSAllocAndAnnounceBuffer(stream, 100000, nullptr, &buffer);
      DSQueueBuffer(stream, buffer);
      DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
      DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL);
    }
    EXPECT_EQ(DevClose(device), GC_ERR_SUCCESS);
  }
  plugger.join();
  DEV_HANDLE device = nullptr;
  EXPECT_EQ(Open("L1", &device), GC_ERR_SUCCESS) << "it ends plugged";
}

}  // namespace
