// Frames of simulated cameras: every value is checked against the scene's formula.
#include <set>
#include <thread>

#include "SimulatorFixture.h"
#include "cameras/ChunkIds.h"
#include "cameras/area/TestPattern.h"
#include "cameras/laser/Scene.h"

namespace {

using namespace simtest;
namespace cameras = zyn::cameras;

constexpr const char* kAtTheReadersPace =
    R"({"cameras": [{"model": "KEL-LP2000", "serialNumber": "L1", "pacing": "reader"}]})";
constexpr const char* kAtTheCamerasPace = R"({"cameras": [{"model": "KEL-LP2000", "serialNumber": "L1"}]})";
constexpr std::size_t kPoints = 2000;
constexpr std::size_t kRecord = 4;

class SimulatorStream : public SimulatorTest {
 protected:
  /// The four switches that the modes of a laser camera consist of.
  static void SetMode(const OpenCamera& camera, bool image, bool calibrated, bool batches) {
    camera.features->SetBool("EnableExtraction", true);
    camera.features->SetBool("EnableImage", image);
    camera.features->SetBool("EnableCalibration", calibrated);
    camera.features->SetBool("BatchEnable", batches);
  }
};

std::uint64_t Number(const std::uint8_t* at, std::size_t bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < bytes; ++i) value = value << 8U | at[i];
  return value;
}

// The value of the 8-byte chunk `id`.
std::uint64_t ChunkNumber(const OpenCamera& camera, BUFFER_HANDLE buffer, std::uint64_t id) {
  for (const SINGLE_CHUNK_DATA& chunk : camera.Chunks(buffer)) {
    if (chunk.ChunkID == id) return Number(camera.Base(buffer) + chunk.ChunkOffset, 8);
  }
  ADD_FAILURE() << "no chunk " << id;
  return 0;
}

// Compares calibrated records with the scene; returns how many differ.
std::size_t WrongRecords(const std::uint8_t* records, std::int64_t firstProfile, std::size_t profiles,
                         std::size_t points) {
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < profiles * points; ++i, records += kRecord) {
    const std::int64_t profile = firstProfile + static_cast<std::int64_t>(i / points);
    const auto point = static_cast<std::int64_t>(i % points);
    const bool isRight = records[0] == 0 && records[1] == cameras::scene::SceneIntensity(profile, point) &&
                         records[2] * 256 + records[3] == cameras::scene::SceneHeight(profile, point);
    if (!isRight) ++wrong;
  }
  return wrong;
}

TEST_F(SimulatorStream, ContourFramesCarryTheScenesHeights) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.OpenStream(3);
  camera.Start();
  for (std::uint64_t frame = 0; frame < 50; ++frame) {
    BUFFER_HANDLE const buffer = camera.Fetch();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(UInt64(camera.Ask(buffer, BUFFER_INFO_FRAMEID)), frame + 1);
    EXPECT_EQ(Size(camera.Ask(buffer, BUFFER_INFO_PAYLOADTYPE)), std::size_t{PAYLOAD_TYPE_CHUNK_ONLY});
    EXPECT_FALSE(Bool(camera.Ask(buffer, BUFFER_INFO_IMAGEPRESENT)));
    EXPECT_FALSE(Bool(camera.Ask(buffer, BUFFER_INFO_IS_INCOMPLETE)));
    const std::vector<SINGLE_CHUNK_DATA> chunks = camera.Chunks(buffer);
    ASSERT_GE(chunks.size(), 2U);
    EXPECT_EQ(chunks[0].ChunkID, cameras::kProfileChunk) << "the records come first";
    EXPECT_EQ(chunks[0].ChunkOffset, 0);
    EXPECT_EQ(chunks[0].ChunkLength, kPoints * kRecord);
    EXPECT_EQ(WrongRecords(camera.Base(buffer), static_cast<std::int64_t>(frame), 1, kPoints), 0U) << frame;
    EXPECT_EQ(ChunkNumber(camera, buffer, cameras::kFrameIdChunk), frame + 1);
    camera.Queue(buffer);
  }
  camera.Stop();
}

TEST_F(SimulatorStream, ProfileFramesCarryTheSensorImageAndItsProfile) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, true, false, false);
  camera.features->Set("Height", 512);
  camera.OpenStream(2);
  camera.Start();
  for (std::int64_t frame = 0; frame < 3; ++frame) {
    BUFFER_HANDLE const buffer = camera.Fetch();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(Size(camera.Ask(buffer, BUFFER_INFO_PAYLOADTYPE)), std::size_t{PAYLOAD_TYPE_IMAGE});
    EXPECT_TRUE(Bool(camera.Ask(buffer, BUFFER_INFO_IMAGEPRESENT)));
    EXPECT_EQ(Size(camera.Ask(buffer, BUFFER_INFO_WIDTH)), kPoints);
    EXPECT_EQ(Size(camera.Ask(buffer, BUFFER_INFO_HEIGHT)), 512U);
    EXPECT_EQ(Size(camera.Ask(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT)), 512U);
    EXPECT_EQ(UInt64(camera.Ask(buffer, BUFFER_INFO_PIXELFORMAT)), 0x01080001U);
    const std::uint8_t* const base = camera.Base(buffer);
    std::size_t wrongPixels = 0;
    for (std::size_t i = 0; i < kPoints * 512; ++i) {
      const int truth = cameras::scene::SceneSensorPixel(frame, static_cast<std::int64_t>(i % kPoints),
                                                         static_cast<int>(i / kPoints));
      if (base[i] != truth) ++wrongPixels;
    }
    EXPECT_EQ(wrongPixels, 0U);
    const std::vector<SINGLE_CHUNK_DATA> chunks = camera.Chunks(buffer);
    ASSERT_GE(chunks.size(), 3U);
    EXPECT_EQ(chunks[0].ChunkID, cameras::kImageChunk);
    EXPECT_EQ(chunks[1].ChunkID, cameras::kProfileChunk) << "the records come first behind the image";
    std::size_t wrongRecords = 0;
    for (std::size_t i = 0; i < kPoints; ++i) {
      const std::uint8_t* const record = base + chunks[1].ChunkOffset + i * kRecord;
      const auto point = static_cast<std::int64_t>(i);
      const int height = (record[1] & 3) * 256 + record[2];
      if (height != cameras::scene::SceneSensorRow(frame, point) ||
          record[1] != cameras::scene::SceneSensorIntensity(frame, point))
        ++wrongRecords;
    }
    EXPECT_EQ(wrongRecords, 0U);
    camera.Queue(buffer);
  }
  camera.Stop();
}

TEST_F(SimulatorStream, AllBatchesOfOneScanCarryOneIdentifier) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, true);
  camera.features->Set("AcquisitionLineCount", 300);
  camera.features->Set("BatchNumber", 100);
  camera.OpenStream(2);
  camera.Start();
  for (std::int64_t batch = 0; batch < 9; ++batch) {
    BUFFER_HANDLE const buffer = camera.Fetch();
    ASSERT_NE(buffer, nullptr);
    const std::vector<SINGLE_CHUNK_DATA> chunks = camera.Chunks(buffer);
    ASSERT_FALSE(chunks.empty());
    EXPECT_EQ(chunks[0].ChunkLength, 100 * kPoints * kRecord);
    EXPECT_EQ(WrongRecords(camera.Base(buffer), batch * 100, 100, kPoints), 0U) << batch;
    EXPECT_EQ(ChunkNumber(camera, buffer, cameras::kFrameIdChunk), static_cast<std::uint64_t>(batch / 3 + 1));
    EXPECT_EQ(UInt64(camera.Ask(buffer, BUFFER_INFO_FRAMEID)), static_cast<std::uint64_t>(batch + 1));
    camera.Queue(buffer);
  }
  camera.Stop();
}

TEST_F(SimulatorStream, AreaFramesShowTheirPatternAndCarryTheChunksThatAreEnabled) {
  Begin(R"({"cameras": [{"model": "ZS-A1600", "serialNumber": "A1", "pacing": "reader"}]})");
  OpenCamera camera(interface_, "A1");
  camera.features->SetText("TestPattern", "GreyHorizontalRampMoving");
  camera.features->SetText("PixelFormat", "Mono12");
  camera.features->SetBool("ChunkModeActive", true);
  camera.features->SetText("ChunkSelector", "FrameID");
  camera.features->SetBool("ChunkEnable", true);
  camera.features->Set("Width", 640);
  camera.features->Set("OffsetX", 16);
  camera.OpenStream(2);
  camera.Start();
  for (std::uint64_t frame = 1; frame <= 3; ++frame) {
    BUFFER_HANDLE const buffer = camera.Fetch();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(Size(camera.Ask(buffer, BUFFER_INFO_PAYLOADTYPE)), std::size_t{PAYLOAD_TYPE_IMAGE});
    EXPECT_EQ(UInt64(camera.Ask(buffer, BUFFER_INFO_PIXELFORMAT)), 0x01100005U);
    EXPECT_EQ(Size(camera.Ask(buffer, BUFFER_INFO_XOFFSET)), 16U);
    ASSERT_EQ(Size(camera.Ask(buffer, BUFFER_INFO_WIDTH)), 640U);
    const std::size_t lines = Size(camera.Ask(buffer, BUFFER_INFO_HEIGHT));
    const std::uint8_t* const base = camera.Base(buffer);
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < 640 * lines; ++i) {
      const int level = cameras::PatternLevel(cameras::TestPattern::greyHorizontalRampMoving, 16 + i % 640,
                                              i / 640, frame, cameras::ColorChannel::grey, 256);
      if (base[2 * i] + base[2 * i + 1] * 256 != level >> 4) ++wrong;
    }
    EXPECT_EQ(wrong, 0U) << frame;
    EXPECT_EQ(ChunkNumber(camera, buffer, cameras::kFrameIdChunk), frame);
    camera.Queue(buffer);
  }
  camera.Stop();
}

TEST_F(SimulatorStream, TimestampsDifferByTheLinePeriodAtAnyPace) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.features->SetFloat("AcquisitionLineRate", 20000);
  camera.OpenStream(2);
  camera.Start();
  std::uint64_t former = 0;
  for (int frame = 0; frame < 20; ++frame) {
    BUFFER_HANDLE const buffer = camera.Fetch();
    ASSERT_NE(buffer, nullptr);
    const std::uint64_t time = UInt64(camera.Ask(buffer, BUFFER_INFO_TIMESTAMP_NS));
    if (frame > 0) {
      EXPECT_GE(time - former, 50'000U);
    }
    EXPECT_EQ(UInt64(camera.Ask(buffer, BUFFER_INFO_TIMESTAMP)), time);
    former = time;
    camera.Queue(buffer);
  }
  camera.Stop();
}

TEST_F(SimulatorStream, AtTheReadersPaceNoFrameIsLostHoweverSlowTheReaderIs) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.features->SetFloat("AcquisitionLineRate", 20000);
  camera.OpenStream(1);
  camera.Start();
  std::vector<BUFFER_HANDLE> held;
  for (std::uint64_t frame = 1; frame <= 200; ++frame) {
    BUFFER_HANDLE const buffer = camera.Fetch();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(camera.Fetch(0), nullptr) << "the only buffer is with the reader";
    EXPECT_EQ(UInt64(camera.Ask(buffer, BUFFER_INFO_FRAMEID)), frame);
    camera.Queue(buffer);
  }
  EXPECT_EQ(UInt64(camera.Ask(STREAM_INFO_NUM_UNDERRUN)), 0U);
  camera.Stop();
  EXPECT_GE(UInt64(camera.Ask(STREAM_INFO_NUM_DELIVERED)), 200U);
}

TEST_F(SimulatorStream, ACameraWithoutARateWaitsForItsReaderToo) {
  Begin(kAtTheCamerasPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.features->SetBool("AcquisitionLineRateEnable", false);
  camera.OpenStream(1);
  camera.Start();
  for (std::uint64_t frame = 1; frame <= 200; ++frame) {
    BUFFER_HANDLE const buffer = camera.Fetch();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(UInt64(camera.Ask(buffer, BUFFER_INFO_FRAMEID)), frame);
    camera.Queue(buffer);
  }
  EXPECT_EQ(UInt64(camera.Ask(STREAM_INFO_NUM_UNDERRUN)), 0U);
  camera.Stop();
}

TEST_F(SimulatorStream, AtTheCamerasPaceFramesWithoutABufferAreLostAndCounted) {
  Begin(kAtTheCamerasPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.features->SetFloat("AcquisitionLineRate", 2000);
  camera.OpenStream(1);
  camera.Start();
  BUFFER_HANDLE buffer = camera.Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(UInt64(camera.Ask(buffer, BUFFER_INFO_FRAMEID)), 1U);
  std::uint64_t lost = 0;
  while (lost < 5) lost = UInt64(camera.Ask(STREAM_INFO_NUM_UNDERRUN));
  camera.Queue(buffer);
  buffer = camera.Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_GE(UInt64(camera.Ask(buffer, BUFFER_INFO_FRAMEID)), 1 + lost + 1)
      << "the lost ones keep their numbers";
  camera.Stop();
}

TEST_F(SimulatorStream, ChangingThePaceWakesAStreamThatWaitsForItsReader) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.OpenStream(1);
  camera.Start();
  BUFFER_HANDLE const buffer = camera.Fetch();
  ASSERT_NE(buffer, nullptr);
  simulator_->SetText("SimStreamPacing", "Camera");
  while (UInt64(camera.Ask(STREAM_INFO_NUM_UNDERRUN)) == 0) std::this_thread::yield();
  camera.Stop();
}

TEST_F(SimulatorStream, AnAcquisitionOfSomeFramesDeliversJustThese) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.OpenStream(4);
  camera.Start(3);
  for (int frame = 0; frame < 3; ++frame) ASSERT_NE(camera.Fetch(), nullptr);
  EXPECT_EQ(camera.Fetch(0), nullptr);
  EXPECT_EQ(Size(camera.Ask(STREAM_INFO_NUM_QUEUED)), 1U);
  EXPECT_FALSE(Bool(camera.Ask(STREAM_INFO_IS_GRABBING)));
  camera.Stop();
}

TEST_F(SimulatorStream, StoppingGivesAllBuffersBackAndStartingAgainWorks) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.OpenStream(3);
  for (const ACQ_STOP_FLAGS flags : {ACQ_STOP_FLAGS_DEFAULT, ACQ_STOP_FLAGS_KILL}) {
    camera.Start();
    ASSERT_NE(camera.Fetch(), nullptr);
    camera.Stop(flags);
    EXPECT_EQ(DSFlushQueue(camera.stream, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
    EXPECT_EQ(Size(camera.Ask(STREAM_INFO_NUM_QUEUED)), 0U);
    EXPECT_EQ(Size(camera.Ask(STREAM_INFO_NUM_AWAIT_DELIVERY)), 0U);
    EXPECT_EQ(DSFlushQueue(camera.stream, ACQ_QUEUE_ALL_TO_INPUT), GC_ERR_SUCCESS);
    EXPECT_EQ(Size(camera.Ask(STREAM_INFO_NUM_QUEUED)), 3U);
  }
}

TEST_F(SimulatorStream, FlushingWhileFramesComeLosesNoBuffer) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.OpenStream(4);
  camera.Start();
  for (int round = 0; round < 50; ++round) {
    ASSERT_NE(camera.Fetch(), nullptr);
    EXPECT_EQ(DSFlushQueue(camera.stream, ACQ_QUEUE_ALL_TO_INPUT), GC_ERR_SUCCESS);
  }
  camera.Stop();
  EXPECT_EQ(Size(camera.Ask(STREAM_INFO_NUM_QUEUED)) + Size(camera.Ask(STREAM_INFO_NUM_AWAIT_DELIVERY)), 4U);
}

TEST_F(SimulatorStream, AWaitForAFrameEndsWhenItIsKilled) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  camera.OpenStream(1);
  EXPECT_EQ(DSStartAcquisition(camera.stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_SUCCESS);
  EXPECT_EQ(EventKill(camera.newBuffer), GC_ERR_SUCCESS);
  EVENT_NEW_BUFFER_DATA data = {};
  std::size_t size = sizeof data;
  EXPECT_EQ(EventGetData(camera.newBuffer, &data, &size, GENTL_INFINITE), GC_ERR_ABORT);
  EXPECT_EQ(DSStopAcquisition(camera.stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
}

TEST_F(SimulatorStream, UserBuffersAreFilledInPlace) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.OpenStream(0);
  std::vector<std::uint8_t> memory(static_cast<std::size_t>(camera.features->Int("PayloadSize")));
  int tag = 0;
  BUFFER_HANDLE buffer = nullptr;
  ASSERT_EQ(DSAnnounceBuffer(camera.stream, memory.data(), memory.size(), &tag, &buffer), GC_ERR_SUCCESS);
  camera.Queue(buffer);
  camera.Start();
  EXPECT_EQ(camera.Fetch(), buffer);
  EXPECT_EQ(camera.Base(buffer), memory.data());
  EXPECT_EQ(Pointer(camera.Ask(buffer, BUFFER_INFO_USER_PTR)), &tag);
  EXPECT_EQ(WrongRecords(memory.data(), 0, 1, kPoints), 0U);
  EXPECT_EQ(Size(camera.Ask(buffer, BUFFER_INFO_SIZE_FILLED)), memory.size());
  camera.Stop();
}

TEST_F(SimulatorStream, ABufferThatIsTooSmallIsReportedAndNotWrittenBeyond) {
  Begin(kAtTheReadersPace);
  OpenCamera camera(interface_, "L1");
  SetMode(camera, false, true, false);
  camera.OpenStream(0);
  std::vector<std::uint8_t> memory(1000, 0xAB);
  BUFFER_HANDLE buffer = nullptr;
  ASSERT_EQ(DSAnnounceBuffer(camera.stream, memory.data(), 500, nullptr, &buffer), GC_ERR_SUCCESS);
  camera.Queue(buffer);
  camera.Start();
  EXPECT_EQ(camera.Fetch(), buffer);
  EXPECT_TRUE(Bool(camera.Ask(buffer, BUFFER_INFO_IS_INCOMPLETE)));
  EXPECT_TRUE(Bool(camera.Ask(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER)));
  EXPECT_EQ(std::vector<std::uint8_t>(memory.begin() + 500, memory.end()),
            std::vector<std::uint8_t>(500, 0xAB));
  camera.Stop();
}

TEST_F(SimulatorStream, ChunkPayloadsCanBeMarkedAsOlderProducersDo) {
  Begin(kAtTheReadersPace);
  simulator_->SetText("SimChunkPayloadType", "ChunkData");
  OpenCamera camera(interface_, "L1");
  SetMode(camera, true, false, false);
  camera.OpenStream(1);
  camera.Start();
  BUFFER_HANDLE const buffer = camera.Fetch();
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(Size(camera.Ask(buffer, BUFFER_INFO_PAYLOADTYPE)), std::size_t{PAYLOAD_TYPE_CHUNK_DATA});
  EXPECT_TRUE(Bool(camera.Ask(buffer, BUFFER_INFO_IMAGEPRESENT)));
  EXPECT_GE(camera.Chunks(buffer).size(), 3U);
  camera.Stop();
}

TEST_F(SimulatorStream, ClosingTheDeviceEndsAnAcquisitionThatNobodyStopped) {
  Begin(kAtTheReadersPace);
  {
    OpenCamera camera(interface_, "L1");
    camera.OpenStream(2);
    camera.Start();
    ASSERT_NE(camera.Fetch(), nullptr);
  }
  OpenCamera camera(interface_, "L1");
  camera.features->Set("BatchNumber", 10);  // locked while frames are acquired
  EXPECT_EQ(camera.features->Int("BatchNumber"), 10);
}

TEST_F(SimulatorStream, ManyCamerasStreamSideBySide) {
  Begin(R"({"cameras": [{"model": "KEL-LP1000F", "count": 8, "pacing": "reader"}]})");
  std::vector<std::thread> readers;
  for (int i = 1; i <= 8; ++i) {
    readers.emplace_back([this, i] {
      OpenCamera camera(interface_, ("SIM000" + std::to_string(i)).c_str());
      SetMode(camera, false, true, false);
      camera.OpenStream(3);
      camera.Start();
      for (std::int64_t frame = 0; frame < 100; ++frame) {
        BUFFER_HANDLE const buffer = camera.Fetch();
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(WrongRecords(camera.Base(buffer), frame, 1, 1000), 0U) << i << ": " << frame;
        camera.Queue(buffer);
      }
      camera.Stop();
    });
  }
  for (std::thread& reader : readers) reader.join();
}

}  // namespace
