// Producers that do not come back from a call: everything else goes on.
#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <latch>
#include <thread>

#include <GenICam.h>

#include "TransportFixture.h"

namespace zyn::transport_test {
namespace {

using namespace KELGENICAM;

// Where calls hang until the test opens the gate.
class Gate {
 public:
  Gate() = default;
  ~Gate() { Open(); }
  Gate(const Gate&) = delete;
  Gate& operator=(const Gate&) = delete;

  MockProducer::Hook HangAlways() {
    return [state = state_](const std::string&) {
      state->Hang();
      return GenTL::GC_ERR_SUCCESS;
    };
  }
  MockProducer::Hook HangOnce() {
    return [state = state_](const std::string&) {
      if (!state->isUsed.exchange(true)) state->Hang();
      return GenTL::GC_ERR_SUCCESS;
    };
  }
  void AwaitHanging() { state_->reached.wait(); }
  void Open() {
    if (!std::exchange(isOpen_, true)) state_->opened.count_down();
  }

 private:
  struct State {
    void Hang() {
      if (!isReached.exchange(true)) reached.count_down();
      opened.wait();
    }
    std::atomic<bool> isUsed{false};
    std::atomic<bool> isReached{false};
    std::latch reached{1};
    std::latch opened{1};
  };

  const std::shared_ptr<State> state_ = std::make_shared<State>();
  bool isOpen_ = false;
};

class HangingProducer : public TransportTest, public testing::WithParamInterface<const char*> {
 protected:
  // Opens the camera, receives a frame, and closes it.
  static void ExpectServes(MockProducer& producer, ICameraInfo* info) {
    ASSERT_NE(info, nullptr);
    const CameraPtr camera(CreateCamera(info));
    ASSERT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
    ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
    ASSERT_TRUE(producer.SendFrame(Frame(42)));
    EXPECT_EQ(GrabOne(*camera)->FrameID(), 42);
    EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
    EXPECT_EQ(camera->Close(), RESULT_OK);
  }

  static ICameraInfo* FindOnce(const std::string& id) {
    for (ICameraInfo* info : Discover()) {
      if (info->CameraID() == id) return info;
    }
    return nullptr;
  }

  // A search is bounded in time, so a slow machine may need several.
  static ICameraInfo* Find(const std::string& id) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    ICameraInfo* info = FindOnce(id);
    while (!info && std::chrono::steady_clock::now() < deadline) info = FindOnce(id);
    return info;
  }

  Gate gate_;
};

std::string NameOf(const testing::TestParamInfo<const char*>& row) {
  return row.param;
}

// ---- searching ------------------------------------------------------------------------------------------

using HangingSearch = HangingProducer;

INSTANTIATE_TEST_SUITE_P(Table, HangingSearch,
                         testing::Values("TLOpen", "TLUpdateInterfaceList", "TLOpenInterface",
                                         "IFUpdateDeviceList", "IFGetDeviceInfo", "GCReadPort"),
                         NameOf);

TEST_P(HangingSearch, LeavesTheCamerasOfOtherProducersToBeFoundOpenedAndReceivedFrom) {
  SetPath(std::string(ZYN_MOCK_CTI) + ":" + ZYN_MOCK_OLD_CTI);
  mock_.SetInterfaces({MockInterface{"bad", "GEV", {MockDevice{"bad", "1"}}}});
  old_.SetInterfaces({MockInterface{"good", "GEV", {MockDevice{"good", "2"}}}});
  mock_.SetHook(GetParam(), gate_.HangAlways());
  ASSERT_EQ(Init(), RESULT_OK);
  ExpectServes(old_, Find("good"));
  gate_.AwaitHanging();
  EXPECT_EQ(FindOnce("bad"), nullptr);
  EXPECT_EQ(UnInit(), RESULT_OK);
  gate_.Open();
  while (mock_.Calls("GCCloseLib") == 0) std::this_thread::yield();  // what came back late is closed
}

// ---- opening --------------------------------------------------------------------------------------------

using HangingOpen = HangingProducer;

INSTANTIATE_TEST_SUITE_P(Table, HangingOpen,
                         testing::Values("IFOpenDevice", "DevGetPort", "DevOpenDataStream",
                                         "GCRegisterEvent"),
                         NameOf);

TEST_P(HangingOpen, KeepsNeitherOtherCamerasNorItsOwnClose) {
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {MockDevice{"a", "1"}, MockDevice{"b", "2"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  const CameraPtr camera(CreateCamera(Find("a")));
  mock_.SetHook(GetParam(), gate_.HangOnce());
  auto opening = std::async(std::launch::async, [&] { return camera->Open(ACCESS_CONTROL); });
  gate_.AwaitHanging();
  ExpectServes(mock_, Find("b"));
  EXPECT_EQ(camera->Close(), RESULT_OK);
  EXPECT_EQ(camera->Close(), RESULT_OK);
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_BUSY);
  EXPECT_FALSE(camera->IsOpen());
  gate_.Open();
  EXPECT_EQ(opening.get(), RESULT_ABORTED);
  EXPECT_FALSE(camera->IsOpen());
  ExpectServes(mock_, Find("a"));
}

TEST_F(HangingOpen, MayBeReleasedMeanwhile) {
  CameraPtr camera(CreateCamera(OneCamera(mock_)));
  mock_.SetHook("IFOpenDevice", gate_.HangOnce());
  auto opening = std::async(std::launch::async, [raw = camera.get()] { return raw->Open(ACCESS_CONTROL); });
  gate_.AwaitHanging();
  camera.reset();
  gate_.Open();
  EXPECT_EQ(opening.get(), RESULT_ABORTED);
}

// ---- reading --------------------------------------------------------------------------------------------

TEST_F(HangingProducer, ARegisterAccessThatHangsStopsNeitherTheFramesNorTheEnd) {
  CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  GenApi_3_4::CIntegerPtr width = camera->RemoteDeviceNodeMap()->NodeMap()->GetNode("Width");
  mock_.SetHook("GCReadPort", gate_.HangOnce());
  auto reading = std::async(std::launch::async, [&] { return width->GetValue(); });
  gate_.AwaitHanging();
  for (std::uint64_t id = 1; id <= 20; ++id) {
    ASSERT_TRUE(mock_.SendFrame(Frame(id)));
    EXPECT_EQ(GrabOne(*camera)->FrameID(), static_cast<long long>(id));
  }
  EXPECT_EQ(camera->Close(), RESULT_OK);
  EXPECT_FALSE(camera->IsOpen());
  EXPECT_EQ(UnInit(), RESULT_OK);
  gate_.Open();
  EXPECT_EQ(reading.get(), 0);
}

// ---- stopping -------------------------------------------------------------------------------------------

using HangingStop = HangingProducer;

INSTANTIATE_TEST_SUITE_P(Table, HangingStop,
                         testing::Values("DSStopAcquisition", "DSFlushQueue", "DSRevokeBuffer"), NameOf);

TEST_P(HangingStop, KeepsNeitherStopsNorTheNextStartForever) {
  const CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  mock_.SetHook(GetParam(), gate_.HangOnce());
  const auto stop = [&] { return camera->StopGrabbing(); };
  auto first = std::async(std::launch::async, stop);
  gate_.AwaitHanging();
  EXPECT_FALSE(camera->IsGrabbing());
  auto second = std::async(std::launch::async, stop);
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_BUSY);
  EXPECT_EQ(first.get(), RESULT_TIMEOUT);
  EXPECT_EQ(second.get(), RESULT_TIMEOUT);
  gate_.Open();
  EXPECT_THAT(camera->StopGrabbing(),
              testing::AnyOf(RESULT_OK, RESULT_NOT_GRABBING));  // over meanwhile, or awaited
  EXPECT_EQ(camera->StopGrabbing(), RESULT_NOT_GRABBING);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  ASSERT_TRUE(mock_.SendFrame(Frame(7)));
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 7);
  EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
}

TEST_F(HangingStop, TheNextStartWaitsForIt) {
  const CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  mock_.SetHook("DSStopAcquisition", gate_.HangOnce());
  EXPECT_EQ(camera->StopGrabbing(), RESULT_TIMEOUT);
  GenApi_3_4::CIntegerPtr locked = camera->RemoteDeviceNodeMap()->NodeMap()->GetNode("TLParamsLocked");
  EXPECT_EQ(locked->GetValue(), 1);
  auto starting = std::async(std::launch::async, [&] { return camera->StartGrabbing(GRAB_ONE_BY_ONE, -1); });
  gate_.Open();
  EXPECT_EQ(starting.get(), RESULT_OK);
  EXPECT_EQ(locked->GetValue(), 1);  // the stop has unlocked before the start has locked
  EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
  EXPECT_EQ(locked->GetValue(), 0);
}

TEST_F(HangingStop, IsNotAwaitedOnceTheCameraIsLost) {
  const CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  mock_.SetHook("DSStopAcquisition", gate_.HangOnce());
  auto stopping = std::async(std::launch::async, [&] { return camera->StopGrabbing(); });
  gate_.AwaitHanging();
  mock_.LoseDevice("cam", true);
  EXPECT_EQ(stopping.get(), RESULT_OK);
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_DEVICE_LOST);
  gate_.Open();
}

TEST_F(HangingStop, MayBeFollowedByACloseAndTheNextOpenWaitsForIt) {
  const CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  mock_.SetHook("DSStopAcquisition", gate_.HangOnce());
  EXPECT_EQ(camera->StopGrabbing(), RESULT_TIMEOUT);
  EXPECT_EQ(camera->Close(), RESULT_OK);
  EXPECT_EQ(mock_.Calls("DSClose"), 0);  // not while the producer is in the stream
  gate_.Open();
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
}

// ---- closing --------------------------------------------------------------------------------------------

using HangingClose = HangingProducer;

INSTANTIATE_TEST_SUITE_P(Table, HangingClose,
                         testing::Values("DSStopAcquisition", "DSRevokeBuffer", "DSClose", "DevClose"),
                         NameOf);

TEST_P(HangingClose, KeepsNeitherReleaseNorOtherCamerasNorUnInit) {
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {MockDevice{"a", "1"}, MockDevice{"b", "2"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  CameraPtr camera(CreateCamera(Find("a")));
  ASSERT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  ASSERT_TRUE(mock_.SendFrame(Frame(1)));
  const ImagePtr image = GrabOne(*camera);
  mock_.SetHook(GetParam(), gate_.HangOnce());
  camera.reset();
  gate_.AwaitHanging();
  const CameraPtr other(CreateCamera(Find("b")));
  EXPECT_EQ(other->Open(ACCESS_CONTROL), RESULT_OK);
  EXPECT_EQ(other->Close(), RESULT_OK);
  EXPECT_EQ(image->Data()[7], 1);
  EXPECT_EQ(UnInit(), RESULT_OK);
  gate_.Open();
}

using HangingEnd = HangingProducer;

INSTANTIATE_TEST_SUITE_P(Table, HangingEnd, testing::Values("IFClose", "TLClose", "GCCloseLib"), NameOf);

TEST_P(HangingEnd, KeepsUnInitForSecondsOnlyAndOtherProducersServeOn) {
  mock_.SetInterfaces({MockInterface{"bad", "GEV", {MockDevice{"bad", "1"}}}});
  old_.SetInterfaces({MockInterface{"good", "GEV", {MockDevice{"good", "2"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  ASSERT_NE(Find("bad"), nullptr);
  mock_.SetHook(GetParam(), gate_.HangOnce());
  EXPECT_EQ(UnInit(), RESULT_OK);
  gate_.AwaitHanging();
  SetPath(ZYN_MOCK_OLD_CTI);
  ASSERT_EQ(Init(), RESULT_OK);
  ExpectServes(old_, Find("good"));
  EXPECT_EQ(UnInit(), RESULT_OK);
  gate_.Open();
  EXPECT_TRUE(mock_.AwaitClosed());
  // What came back serves again.
  SetPath(ZYN_MOCK_CTI);
  ASSERT_EQ(Init(), RESULT_OK);
  ExpectServes(mock_, Find("bad"));
}

TEST_F(HangingEnd, KeepsNoReleaseOfAClosedCameraThatWasItsLastUser) {
  CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->Close(), RESULT_OK);
  ASSERT_EQ(UnInit(), RESULT_OK);
  mock_.SetHook("TLClose", gate_.HangOnce());
  camera.reset();
  gate_.AwaitHanging();
  gate_.Open();
}

}  // namespace
}  // namespace zyn::transport_test
