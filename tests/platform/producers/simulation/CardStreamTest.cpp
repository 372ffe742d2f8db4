// A Camera Link camera behind the simulated frame grabber, through the C functions.
#include <set>

#include "SimulatorFixture.h"
#include "cameras/PixelFormats.h"
#include "cameras/area/TestPattern.h"

namespace {

using namespace simtest;
namespace cameras = zyn::cameras;

constexpr const char* kOneCard =
    R"({"cameras": [{"model": "ZS-CL1280", "serialNumber": "C1", "pacing": "reader"}]})";

class SimulatorCard : public SimulatorTest {
 protected:
  void Begin(const std::string& json = kOneCard) {
    SimulatorTest::Begin(json, kGrabber);
    camera_ = std::make_unique<OpenCamera>(interface_, "C1");
    card_ = std::make_unique<NodeMap>(camera_->device);
  }
  ~SimulatorCard() override {
    card_.reset();
    camera_.reset();
  }

  /// Opens the stream with buffers of the size that it asks for.
  void OpenStream(std::size_t bufferCount = 3) const {
    OpenCamera& camera = *camera_;
    ASSERT_EQ(DevOpenDataStream(camera.device, "Stream0", &camera.stream), GC_ERR_SUCCESS);
    ASSERT_EQ(GCRegisterEvent(camera.stream, EVENT_NEW_BUFFER, &camera.newBuffer), GC_ERR_SUCCESS);
    ASSERT_TRUE(Bool(camera.Ask(STREAM_INFO_DEFINES_PAYLOADSIZE)));
    const std::size_t size = Size(camera.Ask(STREAM_INFO_PAYLOAD_SIZE));
    for (std::size_t i = 0; i < bufferCount; ++i) {
      BUFFER_HANDLE buffer = nullptr;
      ASSERT_EQ(DSAllocAndAnnounceBuffer(camera.stream, size, nullptr, &buffer), GC_ERR_SUCCESS);
      ASSERT_EQ(DSQueueBuffer(camera.stream, buffer), GC_ERR_SUCCESS);
    }
  }

  /// Compares an image of 8 bits with the ramps; x and y are the first pixel's place on the sensor.
  std::size_t WrongPixels(BUFFER_HANDLE buffer, std::size_t width, std::size_t height, std::size_t x,
                          std::size_t y) const {
    const std::uint8_t* const base = camera_->Base(buffer);
    const bool isVertical = camera_->features->Text("TestPattern") == "GreyVerticalRamp";
    std::size_t wrong = 0;
    for (std::size_t row = 0; row < height; ++row) {
      for (std::size_t column = 0; column < width; ++column) {
        const std::size_t expected = (isVertical ? y + row : x + column) % 256;
        if (base[row * width + column] != expected) ++wrong;
      }
    }
    return wrong;
  }

  std::unique_ptr<OpenCamera> camera_;
  std::unique_ptr<NodeMap> card_;
};

TEST_F(SimulatorCard, IsPartOfTheDefaultConfiguration) {
  unsetenv("ZYN_SIMULATOR_CONFIG");
  ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
  ASSERT_EQ(TLOpen(&system_), GC_ERR_SUCCESS);
  ASSERT_EQ(TLUpdateInterfaceList(system_, nullptr, 1000), GC_ERR_SUCCESS);
  EXPECT_EQ(Text(Bound(TLGetInterfaceInfo, system_, kGrabber, INTERFACE_INFO_TLTYPE)), "CL");
  ASSERT_EQ(TLOpenInterface(system_, kGrabber, &interface_), GC_ERR_SUCCESS);
  const std::vector<std::string> ids = Devices();
  ASSERT_EQ(ids.size(), 1U);
  const auto text = [&](DEVICE_INFO_CMD command) {
    return Text(Bound(IFGetDeviceInfo, interface_, ids[0].c_str(), command));
  };
  EXPECT_EQ(text(DEVICE_INFO_MODEL), "ZS-CL1280");
  EXPECT_EQ(text(DEVICE_INFO_TLTYPE), "CL");
}

TEST_F(SimulatorCard, ExpectsAtFirstWhatTheCameraSends) {
  Begin();
  EXPECT_EQ(card_->Int("Width"), 1280);
  EXPECT_EQ(card_->Int("Height"), 1024);
  EXPECT_EQ(card_->Int("OffsetX"), 0);
  EXPECT_EQ(card_->Int("OffsetY"), 0);
  EXPECT_EQ(card_->Text("PixelFormat"), "Mono8");
  EXPECT_EQ(card_->Text("ClConfiguration"), "Base");
  EXPECT_EQ(card_->Int("TapCount"), 2);
  EXPECT_EQ(camera_->features->Text("DeviceTapGeometry"), "Geometry_1X2_1Y");
  EXPECT_FALSE(card_->Bool("ReverseX"));
  EXPECT_EQ(card_->Float("DigitalGain"), 1);
  EXPECT_EQ(card_->Text("TriggerMode"), "Off");
  EXPECT_EQ(card_->Text("TriggerSource"), "Software");
  EXPECT_EQ(card_->Text("CardName"), "simulated");
  camera_->features->SetText("TestPattern", "GreyHorizontalRamp");
  OpenStream();
  camera_->Start();
  BUFFER_HANDLE const buffer = camera_->Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_FALSE(Bool(camera_->Ask(buffer, BUFFER_INFO_IS_INCOMPLETE)));
  EXPECT_EQ(Text(camera_->Ask(buffer, BUFFER_INFO_TLTYPE)), "CL");
  EXPECT_EQ(WrongPixels(buffer, 1280, 1024, 0, 0), 0U);
  camera_->Stop();
}

TEST_F(SimulatorCard, FramesHaveTheShapeThatTheCardWasTold) {
  Begin();
  card_->Set("Width", 321);
  card_->Set("Height", 123);
  card_->Set("OffsetX", 40);
  card_->Set("OffsetY", 500);
  for (const char* pattern : {"GreyHorizontalRamp", "GreyVerticalRamp"}) {
    camera_->features->SetText("TestPattern", pattern);
    OpenStream();
    EXPECT_EQ(Size(camera_->Ask(STREAM_INFO_PAYLOAD_SIZE)), 321U * 123U);
    EXPECT_EQ(NodeMap(camera_->stream).Int("PayloadSize"), 321 * 123);
    camera_->Start();
    BUFFER_HANDLE const buffer = camera_->Fetch();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(Size(camera_->Ask(buffer, BUFFER_INFO_WIDTH)), 321U);
    EXPECT_EQ(Size(camera_->Ask(buffer, BUFFER_INFO_HEIGHT)), 123U);
    EXPECT_EQ(Size(camera_->Ask(buffer, BUFFER_INFO_XOFFSET)), 40U);
    EXPECT_EQ(Size(camera_->Ask(buffer, BUFFER_INFO_YOFFSET)), 500U);
    EXPECT_EQ(Size(camera_->Ask(buffer, BUFFER_INFO_SIZE_FILLED)), 321U * 123U);
    EXPECT_EQ(Size(camera_->Ask(buffer, BUFFER_INFO_PAYLOADTYPE)), std::size_t{PAYLOAD_TYPE_IMAGE});
    EXPECT_EQ(UInt64(camera_->Ask(buffer, BUFFER_INFO_PIXELFORMAT)), cameras::kMono8);
    EXPECT_FALSE(Bool(camera_->Ask(buffer, BUFFER_INFO_IS_INCOMPLETE)));
    EXPECT_FALSE(Bool(camera_->Ask(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA)));
    EXPECT_EQ(WrongPixels(buffer, 321, 123, 40, 500), 0U) << pattern;
    camera_->Stop();
    ASSERT_EQ(DSClose(camera_->stream), GC_ERR_SUCCESS);
  }
}

TEST_F(SimulatorCard, TwelveBitsComeThroughWhereCameraAndCardAgree) {
  Begin();
  camera_->features->SetText("PixelFormat", "Mono12");
  camera_->features->SetText("TestPattern", "GreyHorizontalRamp");
  card_->SetText("PixelFormat", "Mono12");
  OpenStream();
  EXPECT_EQ(Size(camera_->Ask(STREAM_INFO_PAYLOAD_SIZE)), 1280U * 1024U * 2U);
  camera_->Start();
  BUFFER_HANDLE const buffer = camera_->Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(UInt64(camera_->Ask(buffer, BUFFER_INFO_PIXELFORMAT)), cameras::kMono12);
  const std::uint8_t* const base = camera_->Base(buffer);
  std::size_t wrong = 0;
  for (std::size_t x = 0; x < 1280; ++x) {
    const int expected = cameras::PatternLevel(cameras::TestPattern::greyHorizontalRamp, x, 0, 0,
                                               cameras::ColorChannel::grey, 0) >>
                         4;
    if (base[2 * x] + base[2 * x + 1] * 256 != expected) ++wrong;
  }
  EXPECT_EQ(wrong, 0U);
  camera_->Stop();
}

TEST_F(SimulatorCard, TapsThatDisagreeWithTheCamerasSpoilTheImage) {
  Begin();
  camera_->features->SetText("TestPattern", "GreyHorizontalRamp");
  camera_->features->SetText("DeviceTapGeometry", "Geometry_1X4_1Y");
  OpenStream();
  camera_->Start();
  BUFFER_HANDLE const buffer = camera_->Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_TRUE(Bool(camera_->Ask(buffer, BUFFER_INFO_IS_INCOMPLETE))) << "lines end after 640 pixels";
  const std::uint8_t* const base = camera_->Base(buffer);
  EXPECT_EQ(base[1], 1);
  EXPECT_EQ(base[2], 4);
  EXPECT_EQ(base[640], 0);
  camera_->Stop();
}

TEST_F(SimulatorCard, MoreLinesThanTheCameraSendsMakeIncompleteFrames) {
  Begin();
  card_->Set("Height", 2000);
  OpenStream();
  camera_->Start();
  BUFFER_HANDLE const buffer = camera_->Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_TRUE(Bool(camera_->Ask(buffer, BUFFER_INFO_IS_INCOMPLETE)));
  EXPECT_EQ(Size(camera_->Ask(buffer, BUFFER_INFO_HEIGHT)), 2000U);
  EXPECT_EQ(Size(camera_->Ask(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT)), 1024U);
  camera_->Stop();
}

TEST_F(SimulatorCard, RefusesToStartWithMoreTapsThanItsConfigurationCarries) {
  Begin();
  card_->Set("TapCount", 4);
  OpenStream();
  EXPECT_EQ(DSStartAcquisition(camera_->stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_ERROR);
  EXPECT_NE(LastErrorText().find("need 32 bits at a time, and its configuration carries 24"),
            std::string::npos)
      << LastErrorText();
  card_->SetText("ClConfiguration", "Medium");
  camera_->Start();
  EXPECT_NE(camera_->Fetch(), nullptr);
  camera_->Stop();
}

TEST_F(SimulatorCard, RefusesValuesOutOfItsRanges) {
  Begin();
  using GenICam_3_4::GenericException;
  EXPECT_THROW(card_->Set("Width", 0), GenericException);
  EXPECT_THROW(card_->Set("Width", 8193), GenericException);
  EXPECT_THROW(card_->Set("Height", -1), GenericException);
  EXPECT_THROW(card_->Set("TapCount", 0), GenericException);
  EXPECT_THROW(card_->Set("TapCount", 11), GenericException);
  EXPECT_THROW(card_->SetFloat("DigitalGain", -0.5), GenericException);
  EXPECT_THROW(card_->SetFloat("DigitalGain", 16.5), GenericException);
  EXPECT_THROW(card_->SetText("PixelFormat", "Mono14"), GenericException);
  EXPECT_EQ(card_->Int("Width"), 1280);
  EXPECT_EQ(card_->Int("TapCount"), 2);
  EXPECT_EQ(card_->Float("DigitalGain"), 1);
  card_->SetText("CardName", "left");
  EXPECT_EQ(card_->Text("CardName"), "left");
}

TEST_F(SimulatorCard, KeepsItsShapeWhileFramesAreAcquired) {
  Begin();
  OpenStream();
  camera_->Start();
  EXPECT_THROW(card_->Set("Width", 640), GenICam_3_4::GenericException);
  EXPECT_THROW(card_->SetText("ClConfiguration", "Full"), GenICam_3_4::GenericException);
  card_->SetBool("ReverseX", true);
  EXPECT_EQ(card_->Int("Width"), 1280);
  camera_->Stop();
  card_->Set("Width", 640);
  EXPECT_EQ(card_->Int("Width"), 640);
}

TEST_F(SimulatorCard, IsAsAtPowerUpWhenTheCameraIsOpenedAnew) {
  Begin();
  card_->Set("Width", 640);
  card_->SetText("CardName", "left");
  card_.reset();
  camera_->Close();
  camera_ = std::make_unique<OpenCamera>(interface_, "C1");
  card_ = std::make_unique<NodeMap>(camera_->device);
  EXPECT_EQ(card_->Int("Width"), 1280);
  EXPECT_EQ(card_->Text("CardName"), "simulated");
}

TEST_F(SimulatorCard, TakesOneFrameForEachTrigger) {
  Begin();
  card_->SetText("TriggerMode", "On");
  OpenStream();
  camera_->Start();
  EXPECT_EQ(camera_->Fetch(0), nullptr);
  std::set<std::uint64_t> numbers;
  for (int i = 0; i < 3; ++i) {
    card_->Execute("TriggerSoftware");
    BUFFER_HANDLE const buffer = camera_->Fetch();
    ASSERT_NE(buffer, nullptr) << i;
    numbers.insert(UInt64(camera_->Ask(buffer, BUFFER_INFO_FRAMEID)));
    camera_->Queue(buffer);
  }
  EXPECT_EQ(numbers.size(), 3U);
  EXPECT_EQ(UInt64(camera_->Ask(STREAM_INFO_NUM_DELIVERED)), 3U) << "none came without a trigger";
  card_->SetText("TriggerSource", "Line1");
  card_->Execute("TriggerSoftware");  // not the source any more
  simulator_->Set("SimInputLine", 1);
  simulator_->Execute("SimPulseInputLine");
  EXPECT_NE(camera_->Fetch(), nullptr);
  EXPECT_EQ(UInt64(camera_->Ask(STREAM_INFO_NUM_DELIVERED)), 4U);
  camera_->Stop();
}

TEST_F(SimulatorCard, FramesRunAgainWhenTheTriggerIsSwitchedOff) {
  Begin();
  card_->SetText("TriggerMode", "On");
  OpenStream();
  camera_->Start();
  card_->SetText("TriggerMode", "Off");
  for (int i = 0; i < 5; ++i) {
    BUFFER_HANDLE const buffer = camera_->Fetch();
    ASSERT_NE(buffer, nullptr) << i;
    camera_->Queue(buffer);
  }
  camera_->Stop();
}

TEST_F(SimulatorCard, StoppingAndUnpluggingEndTheWaitForATrigger) {
  Begin();
  card_->SetText("TriggerMode", "On");
  OpenStream();
  camera_->Start();
  camera_->Stop();
  camera_->Start();
  simulator_->SetBool("SimCameraPlugged", false);
  EXPECT_EQ(DSStopAcquisition(camera_->stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
}

// Frames wait in the camera for their reader; those that were sent before the trigger have passed by.
TEST_F(SimulatorCard, TakesTheFrameThatComesAfterTheTrigger) {
  Begin(R"({"cameras": [{"model": "ZS-CL1280", "serialNumber": "C1"}]})");
  card_->Set("Height", 1);
  card_->SetText("TriggerMode", "On");
  camera_->features->SetFloat("AcquisitionFrameRate", 1000);
  camera_->features->SetFloat("ExposureTime", 10);
  OpenStream();
  camera_->Start();
  const auto latch = [this] {
    camera_->features->Execute("TimestampLatch");
    return static_cast<std::uint64_t>(camera_->features->Int("TimestampLatchValue"));
  };
  const std::uint64_t start = latch();
  while (latch() < start + 5'000'000) {  // several frames long
  }
  const std::uint64_t trigger = latch();
  card_->Execute("TriggerSoftware");
  BUFFER_HANDLE const buffer = camera_->Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_GT(UInt64(camera_->Ask(buffer, BUFFER_INFO_TIMESTAMP)), trigger);
  camera_->Stop();
}

TEST_F(SimulatorCard, HandsTheChunksOfLaserCamerasOn) {
  Begin(
      R"({"cameras": [{"model": "VX7-2000", "serialNumber": "C1", "link": "CameraLink", "pacing": "reader"}]})");
  card_->Set("Width", 16);
  camera_->features->SetBool("EnableExtraction", true);
  camera_->OpenStream(2);
  EXPECT_FALSE(Bool(camera_->Ask(STREAM_INFO_DEFINES_PAYLOADSIZE)));
  camera_->Start();
  BUFFER_HANDLE const buffer = camera_->Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_FALSE(Bool(camera_->Ask(buffer, BUFFER_INFO_IS_INCOMPLETE)));
  EXPECT_GE(camera_->Chunks(buffer).size(), 2U);
  camera_->Stop();
}

TEST_F(SimulatorCard, TakesTheColoursOfOtherAreaCamerasButNotTheirChunks) {
  Begin(
      R"({"cameras": [{"model": "ZS-A1600", "serialNumber": "C1", "link": "CameraLink", "pacing": "reader"}]})");
  camera_->features->SetText("PixelFormat", "RGB8");
  camera_->features->SetText("TestPattern", "ColorBar");
  camera_->features->SetBool("ChunkModeActive", true);
  card_->SetText("PixelFormat", "RGB8");
  card_->Set("TapCount", 1);
  card_->Set("Width", 64);
  card_->Set("OffsetX", 32);
  card_->Set("Height", 2);
  OpenStream();
  camera_->Start();
  BUFFER_HANDLE const buffer = camera_->Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(Size(camera_->Ask(buffer, BUFFER_INFO_SIZE_FILLED)), 64U * 2U * 3U);
  EXPECT_FALSE(Bool(camera_->Ask(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA)));
  const std::uint8_t* const base = camera_->Base(buffer);
  EXPECT_EQ(std::vector<int>(base, base + 3), (std::vector<int>{255, 255, 0})) << "yellow";
  EXPECT_EQ(std::vector<int>(base + 96, base + 99), (std::vector<int>{0, 255, 255})) << "cyan";
  camera_->Stop();
}

}  // namespace
