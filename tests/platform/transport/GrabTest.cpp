#include <atomic>
#include <future>

#include <GenICam.h>

#include "TransportFixture.h"

namespace zyn::transport_test {
namespace {

using namespace KELGENICAM;

class GrabTest : public TransportTest {
 protected:
  CameraPtr Grabbing(GRAB_STRATEGY strategy, int count = -1) {
    CameraPtr camera = OpenOne(mock_);
    EXPECT_EQ(camera->StartGrabbing(strategy, count), RESULT_OK);
    buffers_ = mock_.Announced();
    EXPECT_GE(buffers_, 3U);
    return camera;
  }

  // Sends a frame and waits until the transport has taken it.
  void Send(std::uint64_t id) {
    ASSERT_TRUE(mock_.SendFrame(Frame(id)));
    ASSERT_TRUE(mock_.AwaitFetching());
  }

  std::size_t buffers_ = 0;
};

TEST_F(GrabTest, OneByOneDeliversEveryFrameInOrder) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  for (std::uint64_t id = 1; id <= buffers_; ++id) Send(id);
  for (std::uint64_t id = 1; id <= buffers_; ++id) {
    const ImagePtr image = GrabOne(*camera);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->FrameID(), static_cast<long long>(id));
    EXPECT_TRUE(image->IsValid());
    EXPECT_EQ(image->Width(), 4);
    EXPECT_EQ(image->Height(), 2);
    EXPECT_EQ(image->Channels(), 1);
    EXPECT_EQ(image->Step(), 4);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(image->Data()[i], id);
  }
  EXPECT_EQ(GrabResult(*camera, 0), RESULT_TIMEOUT);
}

TEST_F(GrabTest, LatestOnlyDeliversTheNewestFrame) {
  const CameraPtr camera = Grabbing(GRAB_LATEST_ONLY);
  for (std::uint64_t id = 1; id <= 3 * buffers_; ++id) Send(id);
  EXPECT_EQ(GrabOne(*camera)->FrameID(), static_cast<long long>(3 * buffers_));
  EXPECT_EQ(GrabResult(*camera, 0), RESULT_TIMEOUT);
}

TEST_F(GrabTest, LatestDeliversTheNewestFewOldestFirst) {
  const CameraPtr camera = Grabbing(GRAB_LATEST);
  for (std::uint64_t id = 1; id <= 3 * buffers_; ++id) Send(id);
  std::vector<long long> ids;
  IImage* image = nullptr;
  while (camera->Grab(&image, 0) == RESULT_OK) {
    ids.push_back(image->FrameID());
    image->Release();
  }
  ASSERT_GE(ids.size(), 2U);
  ASSERT_LT(ids.size(), buffers_);
  for (std::size_t i = 0; i < ids.size(); ++i) {
    EXPECT_EQ(ids[i], static_cast<long long>(3 * buffers_ - ids.size() + 1 + i));
  }
}

TEST_F(GrabTest, UpcomingImageSkipsWhatWasFilledOrBegunBeforeTheCall) {
  const CameraPtr camera = Grabbing(GRAB_UPCOMING_IMAGE);
  ASSERT_TRUE(mock_.SendFrame(Frame(1)));
  ASSERT_TRUE(mock_.SendFrame(Frame(2)));
  ASSERT_TRUE(mock_.BeginFrame());
  auto grab = std::async(std::launch::async, [&] { return GrabOne(*camera)->FrameID(); });
  ASSERT_TRUE(mock_.AwaitFetching());
  mock_.EndFrame(Frame(3));
  ASSERT_TRUE(mock_.BeginFrame());
  mock_.EndFrame(Frame(4));
  EXPECT_EQ(grab.get(), 4);
}

TEST_F(GrabTest, UpcomingImageJudgesEachCallByItsOwnTime) {
  const CameraPtr camera = Grabbing(GRAB_UPCOMING_IMAGE);
  const auto grab = [&] { return GrabOne(*camera)->FrameID(); };
  auto early = std::async(std::launch::async, grab);
  ASSERT_TRUE(mock_.AwaitFetching());
  ASSERT_TRUE(mock_.BeginFrame());
  const int asked = mock_.Calls("EventKill");
  auto late = std::async(std::launch::async, grab);
  while (mock_.Calls("EventKill") == asked) std::this_thread::yield();
  ASSERT_TRUE(mock_.AwaitFetching());
  mock_.EndFrame(Frame(1));  // begun after the early call and before the late one
  EXPECT_EQ(early.get(), 1);
  while (late.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
    mock_.SendFrame(Frame(2));
  }
  EXPECT_EQ(late.get(), 2);
}

TEST_F(GrabTest, ACountedGrabEndsWithFinished) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE, 3);
  for (std::uint64_t id = 1; id <= 5; ++id) Send(id);
  for (int id = 1; id <= 3; ++id) EXPECT_EQ(GrabOne(*camera)->FrameID(), id);
  EXPECT_EQ(GrabResult(*camera, 3600 * 1000), RESULT_FINISHED);
  EXPECT_TRUE(camera->IsGrabbing());
  EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, 1), RESULT_OK);
}

TEST_F(GrabTest, TheLastFrameOfACountedGrabWakesOtherWaitersWithFinished) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE, 1);
  std::vector<std::future<int>> grabs;
  for (int i = 0; i < 3; ++i) {
    grabs.push_back(std::async(std::launch::async, [&] { return GrabResult(*camera, 3600 * 1000); }));
  }
  ASSERT_TRUE(mock_.AwaitFetching());
  ASSERT_TRUE(mock_.SendFrame(Frame(1)));
  int delivered = 0;
  for (auto& grab : grabs) {
    const int result = grab.get();
    delivered += result == RESULT_OK ? 1 : 0;
    EXPECT_TRUE(result == RESULT_OK || result == RESULT_FINISHED) << result;
  }
  EXPECT_EQ(delivered, 1);
}

class WakeTest : public GrabTest, public testing::WithParamInterface<GRAB_STRATEGY> {};

TEST_P(WakeTest, StopGrabbingWakesAWaitingGrab) {
  const CameraPtr camera = Grabbing(GetParam());
  auto grab = std::async(std::launch::async, [&] { return GrabResult(*camera, 3600 * 1000); });
  ASSERT_TRUE(mock_.AwaitFetching());
  EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
  const int result = grab.get();
  EXPECT_TRUE(result == RESULT_ABORTED || result == RESULT_NOT_GRABBING) << result;
  EXPECT_FALSE(camera->IsGrabbing());
  EXPECT_EQ(camera->StopGrabbing(), RESULT_NOT_GRABBING);
  EXPECT_EQ(mock_.Announced(), 0U);
}

TEST_P(WakeTest, CloseWakesAWaitingGrab) {
  const CameraPtr camera = Grabbing(GetParam());
  std::promise<void> entered;
  auto grab = std::async(std::launch::async, [&] {
    entered.set_value();
    return GrabResult(*camera, 3600 * 1000);
  });
  entered.get_future().wait();
  EXPECT_EQ(camera->Close(), RESULT_OK);
  const int result = grab.get();
  EXPECT_TRUE(result == RESULT_ABORTED || result == RESULT_NOT_OPEN) << result;
}

TEST_P(WakeTest, TheStreamCanBeStartedManyTimes) {
  const CameraPtr camera = OpenOne(mock_);
  for (int round = 0; round < 10; ++round) {
    ASSERT_EQ(camera->StartGrabbing(GetParam(), -1), RESULT_OK);
    EXPECT_EQ(camera->StartGrabbing(GetParam(), -1), RESULT_BUSY);
    auto grab = std::async(std::launch::async, [&] { return GrabOne(*camera)->FrameID(); });
    ASSERT_TRUE(mock_.AwaitFetching());
    ASSERT_TRUE(mock_.SendFrame(Frame(9)));
    EXPECT_EQ(grab.get(), 9);
    ASSERT_EQ(camera->StopGrabbing(), RESULT_OK);
    EXPECT_EQ(mock_.Announced(), 0U);
  }
}

INSTANTIATE_TEST_SUITE_P(Strategies, WakeTest,
                         testing::Values(GRAB_ONE_BY_ONE, GRAB_LATEST_ONLY, GRAB_LATEST, GRAB_UPCOMING_IMAGE),
                         [](const auto& row) { return "Strategy" + std::to_string(row.param); });

TEST_F(GrabTest, ReleaseWakesAWaitingGrab) {
  CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  auto grab = std::async(std::launch::async, [raw = camera.get()] { return GrabResult(*raw, 3600 * 1000); });
  // The call must be inside before the last call on the object is made.
  while (grab.wait_for(std::chrono::milliseconds(200)) == std::future_status::ready) FAIL();
  camera.reset();
  EXPECT_EQ(grab.get(), RESULT_ABORTED);
}

// ---- memory ---------------------------------------------------------------------------------------------

TEST_F(GrabTest, FramesStayReadableAfterTheCameraIsGone) {
  CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  Send(1);
  Send(2);
  const ImagePtr first = GrabOne(*camera);
  const ImagePtr second = GrabOne(*camera);
  camera.reset();
  ASSERT_EQ(UnInit(), RESULT_OK);
  EXPECT_EQ(mock_.OpenHandles(), 0);
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(first->Data()[i], 1);
    EXPECT_EQ(second->Data()[i], 2);
  }
}

TEST_F(GrabTest, AHeldFrameIsNeverOverwritten) {
  const CameraPtr camera = Grabbing(GRAB_LATEST_ONLY);
  Send(200);
  const ImagePtr held = GrabOne(*camera);
  for (std::uint64_t id = 1; id <= 4 * buffers_; ++id) Send(id);
  ASSERT_EQ(camera->StopGrabbing(), RESULT_OK);
  ASSERT_EQ(camera->StartGrabbing(GRAB_LATEST_ONLY, -1), RESULT_OK);
  for (std::uint64_t id = 1; id <= 4 * buffers_; ++id) Send(id);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(held->Data()[i], 200);
}

TEST_F(GrabTest, WhenTheApplicationHoldsEveryFrameNewOnesAreDroppedAndCounted) {
  class Counter : public INotify {
   public:
    void OnNotify(NOTIFY_SRC, NOTIFY_TYPE, const void* data, unsigned long long length) override {
      EXPECT_EQ(length, sizeof(std::uint64_t));
      std::uint64_t drops = 0;
      std::memcpy(&drops, data, sizeof(drops));
      if (drops == 2) reached.set_value();
    }
    std::promise<void> reached;
  } counter;
  CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  ASSERT_EQ(camera->RegisterNotify(NOTIFY_SRC_DATA_STREAM, NOTIFY_FRAME_DROPPED, &counter), RESULT_OK);
  std::vector<ImagePtr> held;
  for (std::uint64_t id = 1; id <= buffers_; ++id) {
    Send(id);
    held.push_back(GrabOne(*camera));
  }
  EXPECT_FALSE(mock_.SendFrame(Frame(99)));
  EXPECT_FALSE(mock_.SendFrame(Frame(99)));
  counter.reached.get_future().wait();
  EXPECT_EQ(GrabResult(*camera, 0), RESULT_NO_FREE_BUFFER);
  held.pop_back();
  ASSERT_TRUE(mock_.AwaitQueued(1));
  Send(50);
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 50);
  for (std::size_t i = 0; i < held.size(); ++i) EXPECT_EQ(held[i]->Data()[0], i + 1);
  camera.reset();
}

TEST_F(GrabTest, ABufferThatTheProducerDeliversTwiceIsOneFrame) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  MockFrame frame = Frame(1);
  frame.isDoubled = true;
  ASSERT_TRUE(mock_.SendFrame(frame));
  Send(2);
  const ImagePtr first = GrabOne(*camera);
  EXPECT_EQ(first->FrameID(), 1);
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 2);
  EXPECT_EQ(GrabResult(*camera, 0), RESULT_TIMEOUT);
}

TEST_F(GrabTest, MemoryIsUsedAgainAfterARestart) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  std::list<unsigned char*> before;
  std::list<unsigned char*> after;
  const auto collect = [&](std::list<unsigned char*>& addresses) {
    for (std::uint64_t id = 1; id <= buffers_; ++id) {
      Send(id);
      addresses.push_back(GrabOne(*camera)->Data());
    }
    addresses.sort();
    addresses.unique();
  };
  collect(before);
  ASSERT_EQ(camera->StopGrabbing(), RESULT_OK);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  collect(after);
  EXPECT_EQ(after, before);
}

struct BufferRow {
  std::size_t bytes;
  GRAB_STRATEGY strategy;
  std::size_t buffers;
};

TEST_F(GrabTest, SmallFramesOfWhichNoneMayBeLostHaveMoreBuffers) {
  const BufferRow rows[] = {
      {64, GRAB_ONE_BY_ONE, 128},       {8192, GRAB_ONE_BY_ONE, 128},     {16384, GRAB_ONE_BY_ONE, 64},
      {65536, GRAB_ONE_BY_ONE, 16},     {1U << 20U, GRAB_ONE_BY_ONE, 16}, {32U << 20U, GRAB_ONE_BY_ONE, 8},
      {64U << 20U, GRAB_ONE_BY_ONE, 5}, {8192, GRAB_LATEST_ONLY, 16},     {8192, GRAB_LATEST, 16},
      {8192, GRAB_UPCOMING_IMAGE, 16},
  };
  for (const BufferRow& row : rows) {
    MockDevice device{"cam", "SN1"};
    device.payloadBytes = row.bytes;
    const CameraPtr camera = OpenOne(mock_, device);
    EXPECT_EQ(camera->StartGrabbing(row.strategy, -1), RESULT_OK);
    EXPECT_EQ(mock_.Announced(), row.buffers) << row.bytes << " bytes, strategy " << row.strategy;
    EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
    EXPECT_EQ(camera->Close(), RESULT_OK);
    EXPECT_EQ(UnInit(), RESULT_OK);
  }
}

TEST_F(GrabTest, AProducerWithALimitServesWithFewerBuffers) {
  std::atomic<int> announced = 0;
  mock_.SetHook("DSAnnounceBuffer", [&](const std::string&) {
    return ++announced > 20 ? GenTL::GC_ERR_RESOURCE_EXHAUSTED : GenTL::GC_ERR_SUCCESS;
  });
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  EXPECT_EQ(buffers_, 20U);
  Send(7);
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 7);
  mock_.SetHook("DSAnnounceBuffer", nullptr);
}

// An application's callback runs with this lock, and may stop the stream.
TEST_F(GrabTest, MayBeStoppedWithTheNodeMapLocked) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  GenApi_3_4::INodeMap& map = *camera->RemoteDeviceNodeMap()->NodeMap();
  const GenApi_3_4::AutoLock lock(map.GetLock());
  EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
}

// ---- payloads -------------------------------------------------------------------------------------------

TEST_F(GrabTest, AnIncompleteFrameIsDeliveredAsNotValid) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  MockFrame frame = Frame(1);
  frame.isIncomplete = true;
  frame.chunks = {{0xF1, {1, 2, 3, 4}}};
  ASSERT_TRUE(mock_.SendFrame(frame));
  const ImagePtr image = GrabOne(*camera);
  EXPECT_FALSE(image->IsValid());
  std::list<IChunk*> chunks;
  image->Chunks(chunks);
  EXPECT_TRUE(chunks.empty());
}

struct ResultCase {
  const char* name;
  void (*change)(MockFrame&);
  int result;
};

TEST_F(GrabTest, BuffersThatAreNoFramesBecomeResults) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  const ResultCase rows[] = {
      {"too large", [](MockFrame& f) { f.isTooLarge = true; }, RESULT_BUFFER_TOO_SMALL},
      {"flushed", [](MockFrame& f) { f.isNew = false; }, RESULT_NO_DATA},
      {"jpeg", [](MockFrame& f) { f.payloadType = GenTL::PAYLOAD_TYPE_JPEG; }, RESULT_PAYLOAD_UNSUPPORTED},
      {"h264", [](MockFrame& f) { f.payloadType = GenTL::PAYLOAD_TYPE_H264; }, RESULT_PAYLOAD_UNSUPPORTED},
      {"gendc", [](MockFrame& f) { f.payloadType = GenTL::PAYLOAD_TYPE_GENDC; }, RESULT_PAYLOAD_UNSUPPORTED},
  };
  for (const ResultCase& row : rows) {
    MockFrame frame = Frame(1);
    row.change(frame);
    ASSERT_TRUE(mock_.SendFrame(frame));
    EXPECT_EQ(GrabResult(*camera, 10000), row.result) << row.name;
    ASSERT_TRUE(mock_.AwaitQueued(buffers_)) << row.name;
  }
}

class ChunkTest : public GrabTest {
 protected:
  static std::vector<std::vector<unsigned char>> ChunksOf(IImage& image) {
    std::list<IChunk*> chunks{nullptr};
    image.Chunks(chunks);
    std::vector<std::vector<unsigned char>> bytes;
    for (IChunk* chunk : chunks) bytes.emplace_back(chunk->Data(), chunk->Data() + chunk->Length());
    return bytes;
  }

  static void CheckChunks(MockProducer& producer, ICamera& camera) {
    ASSERT_EQ(camera.StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
    MockFrame frame = Frame(5);
    frame.chunks = {{0x20, {1, 2, 3}}, {0x21, {4, 5}}};
    ASSERT_TRUE(producer.SendFrame(frame));
    const ImagePtr withImage = GrabOne(camera);
    EXPECT_EQ(withImage->Data()[7], 5);
    EXPECT_EQ(ChunksOf(*withImage), (std::vector<std::vector<unsigned char>>{{1, 2, 3}, {4, 5}}));

    frame.payloadType = GenTL::PAYLOAD_TYPE_CHUNK_ONLY;
    ASSERT_TRUE(producer.SendFrame(frame));
    const ImagePtr chunksOnly = GrabOne(camera);
    EXPECT_TRUE(chunksOnly->IsValid());
    EXPECT_EQ(chunksOnly->Width(), 0);
    EXPECT_EQ(chunksOnly->Height(), 0);
    EXPECT_EQ(chunksOnly->Data(), nullptr);
    EXPECT_EQ(ChunksOf(*chunksOnly), (std::vector<std::vector<unsigned char>>{{1, 2, 3}, {4, 5}}));
  }
};

TEST_F(ChunkTest, TheChunkListLeavesOutTheImage) {
  const CameraPtr camera = OpenOne(mock_);
  CheckChunks(mock_, *camera);
}

TEST_F(ChunkTest, ChunksAreFoundWithoutTheProducersHelp) {
  SetPath(ZYN_MOCK_OLD_CTI);
  const CameraPtr camera = OpenOne(old_);
  CheckChunks(old_, *camera);
}

}  // namespace
}  // namespace zyn::transport_test
