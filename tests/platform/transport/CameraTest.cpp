#include <array>
#include <future>
#include <latch>
#include <thread>

#include "TransportFixture.h"

namespace zyn::transport_test {
namespace {

using namespace KELGENICAM;

class CameraTest : public TransportTest {};

// Hands every call over to the test.
class Receiver : public INotify {
 public:
  explicit Receiver(std::function<void(NOTIFY_SRC, NOTIFY_TYPE, std::string)> action)
      : action_(std::move(action)) {}
  void OnNotify(NOTIFY_SRC source, NOTIFY_TYPE type, const void* data, unsigned long long length) override {
    action_(source, type, data ? std::string(static_cast<const char*>(data), length) : std::string());
  }

 private:
  std::function<void(NOTIFY_SRC, NOTIFY_TYPE, std::string)> action_;
};

TEST_F(CameraTest, AClosedCameraAnswersSo) {
  const CameraPtr camera(CreateCamera(OneCamera(mock_)));
  EXPECT_FALSE(camera->IsOpen());
  EXPECT_FALSE(camera->IsOnline());
  EXPECT_FALSE(camera->IsGrabbing());
  EXPECT_EQ(camera->Close(), RESULT_OK);
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_NOT_OPEN);
  EXPECT_EQ(camera->StopGrabbing(), RESULT_NOT_OPEN);
  EXPECT_EQ(GrabResult(*camera, 0), RESULT_NOT_OPEN);
  EXPECT_EQ(camera->SetCLCameraParam("CardGain", "1"), RESULT_NOT_OPEN);
  EXPECT_EQ(camera->RemoteDeviceNodeMap()->NodeMap(), nullptr);
}

TEST_F(CameraTest, WrongArgumentsAreRefused) {
  const CameraPtr camera = OpenOne(mock_);
  EXPECT_EQ(camera->Open(3), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(camera->Open(-1), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, 0), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -2), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(camera->Grab(nullptr, 0), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(GrabResult(*camera, -1), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(camera->SetCLCameraParam(nullptr, "1"), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(camera->RegisterNotify(NOTIFY_SRC_INTERFACE, static_cast<NOTIFY_TYPE>(5), nullptr),
            RESULT_INVALID_ARGUMENT);
}

TEST_F(CameraTest, OpensAndCloses) {
  const CameraPtr camera = OpenOne(mock_);
  EXPECT_TRUE(camera->IsOpen());
  EXPECT_TRUE(camera->IsOnline());
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_ALREADY_OPEN);
  EXPECT_EQ(camera->Close(), RESULT_OK);
  EXPECT_FALSE(camera->IsOpen());
  EXPECT_EQ(mock_.Calls("DevClose"), 1);
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
}

TEST_F(CameraTest, ADeviceIsOpenThroughOneObjectAtATime) {
  const CameraPtr first = OpenOne(mock_);
  const CameraPtr second(CreateCamera(Discover().front()));
  EXPECT_EQ(second->Open(ACCESS_CONTROL), RESULT_ALREADY_OPEN);
  EXPECT_TRUE(first->IsOnline());
  first->Close();
  EXPECT_EQ(second->Open(ACCESS_CONTROL), RESULT_OK);
}

struct OpenCase {
  GenTL::GC_ERROR error;
  int result;
};

TEST_F(CameraTest, AFailingOpenNamesItsCause) {
  const CameraPtr camera(CreateCamera(OneCamera(mock_)));
  const OpenCase rows[] = {
      {GenTL::GC_ERR_ACCESS_DENIED, RESULT_ACCESS_DENIED},
      {GenTL::GC_ERR_IO, RESULT_UNREACHABLE},
      {GenTL::GC_ERR_TIMEOUT, RESULT_UNREACHABLE},
      {GenTL::GC_ERR_INVALID_ID, RESULT_INVALID_ID},
      {GenTL::GC_ERR_RESOURCE_IN_USE, RESULT_ALREADY_OPEN},
      {GenTL::GC_ERR_OUT_OF_MEMORY, RESULT_OUT_OF_MEMORY},
      {GenTL::GC_ERR_NOT_IMPLEMENTED, RESULT_NOT_IMPLEMENTED},
      {-12345, RESULT_ERROR},
  };
  for (const OpenCase& row : rows) {
    mock_.SetHook("IFOpenDevice", [&](const std::string&) { return row.error; });
    EXPECT_EQ(camera->Open(ACCESS_CONTROL), row.result) << row.error;
    EXPECT_FALSE(camera->IsOpen());
  }
  mock_.SetHook("IFOpenDevice", [](const std::string&) { return GenTL::GC_ERR_SUCCESS; });
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
}

TEST_F(CameraTest, ADeniedDeviceThatIsOutOfReachIsUnreachable) {
  MockDevice device{"cam", "SN1"};
  device.status = GenTL::DEVICE_ACCESS_STATUS_NOACCESS;
  const CameraPtr camera(CreateCamera(OneCamera(mock_, device)));
  mock_.SetHook("IFOpenDevice", [](const std::string&) { return GenTL::GC_ERR_ACCESS_DENIED; });
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_UNREACHABLE);
}

TEST_F(CameraTest, AProducerThatNeedsASearchBeforeOpeningGetsOne) {
  const CameraPtr camera(CreateCamera(OneCamera(mock_)));
  const int searches = mock_.Calls("IFUpdateDeviceList");
  mock_.SetHook("IFOpenDevice", [&](const std::string&) {
    return mock_.Calls("IFUpdateDeviceList") > searches ? GenTL::GC_ERR_SUCCESS : GenTL::GC_ERR_INVALID_ID;
  });
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
}

TEST_F(CameraTest, ACameraWithoutInitCannotBeOpened) {
  const CameraPtr camera(CreateCamera(OneCamera(mock_)));
  ASSERT_EQ(UnInit(), RESULT_OK);
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_NOT_INITIALIZED);
}

TEST_F(CameraTest, AnOpenCameraKeepsItsProducerAfterUnInit) {
  CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(UnInit(), RESULT_OK);
  EXPECT_TRUE(camera->IsOnline());
  EXPECT_EQ(mock_.Calls("GCCloseLib"), 0);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  ASSERT_TRUE(mock_.SendFrame(Frame(1)));
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 1);
  camera.reset();
  EXPECT_EQ(mock_.OpenHandles(), 0);
}

TEST_F(CameraTest, InitAgainSharesTheProducerOfAnOpenCamera) {
  const CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(UnInit(), RESULT_OK);
  ASSERT_EQ(Init(), RESULT_OK);
  EXPECT_EQ(mock_.Calls("GCInitLib"), 1);
  EXPECT_EQ(Discover().size(), 1U);
}

TEST_F(CameraTest, ACameraWithoutStreamOpensAndSaysSo) {
  MockDevice device{"cam", "SN1"};
  device.hasStream = false;
  const CameraPtr camera = OpenOne(mock_, device);
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_NO_STREAM);
  EXPECT_EQ(GrabResult(*camera, 0), RESULT_NOT_GRABBING);
}

// ---- loss -----------------------------------------------------------------------------------------------

TEST_F(CameraTest, ALostDeviceEndsAWaitingGrabAtOnce) {
  const CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  auto grab = std::async(std::launch::async, [&] { return GrabResult(*camera, 3600 * 1000); });
  ASSERT_TRUE(mock_.AwaitFetching());
  mock_.LoseDevice("cam", true);
  EXPECT_EQ(grab.get(), RESULT_DEVICE_LOST);
  EXPECT_FALSE(camera->IsOnline());
  EXPECT_TRUE(camera->IsOpen());
  EXPECT_TRUE(camera->IsGrabbing());
  EXPECT_EQ(GrabResult(*camera, 3600 * 1000), RESULT_DEVICE_LOST);
  EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
  EXPECT_EQ(GrabResult(*camera, 0), RESULT_NOT_GRABBING);
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_DEVICE_LOST);
}

TEST_F(CameraTest, ALostDeviceIsNoticedWithoutAnEvent) {
  const CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  mock_.LoseDevice("cam", false);
  EXPECT_EQ(GrabResult(*camera, 3600 * 1000), RESULT_DEVICE_LOST);
  EXPECT_FALSE(camera->IsOnline());
}

class LostReleaseTest : public CameraTest, public testing::WithParamInterface<bool> {};

TEST_P(LostReleaseTest, DoesNotWaitForTheProducer) {
  CameraPtr camera = OpenOne(mock_);
  const bool isGrabbing = GetParam();
  if (isGrabbing) {
    ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  }
  auto freed = std::make_shared<std::latch>(1);
  const auto block = [freed](const std::string&) {
    freed->wait();
    return GenTL::GC_ERR_SUCCESS;
  };
  for (const char* function : {"DSStopAcquisition", "DSClose", "DevClose", "GCWritePort"}) {
    mock_.SetHook(function, block);
  }
  mock_.LoseDevice("cam", true);
  while (camera->IsOnline()) std::this_thread::yield();
  const auto begin = std::chrono::steady_clock::now();
  camera.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));  // at once, by the contract
  EXPECT_GT(mock_.OpenHandles(), 0);
  freed->count_down();
  ASSERT_EQ(UnInit(), RESULT_OK);
  EXPECT_TRUE(mock_.AwaitClosed());
  EXPECT_EQ(mock_.Calls("DevClose"), 1);
}

INSTANTIATE_TEST_SUITE_P(Camera, LostReleaseTest, testing::Bool(),
                         [](const auto& row) { return row.param ? "Grabbing" : "Idle"; });

TEST_F(CameraTest, ALostDeviceThatIsBackOpensAgain) {
  const CameraPtr camera = OpenOne(mock_);
  mock_.LoseDevice("cam", true);
  while (camera->IsOnline()) std::this_thread::yield();
  EXPECT_EQ(camera->Close(), RESULT_OK);
  mock_.Reset();
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {MockDevice{"cam", "SN1"}}}});
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
  EXPECT_TRUE(camera->IsOnline());
}

TEST_F(CameraTest, ALossIsNotifiedOnce) {
  std::promise<void> notified;
  std::atomic<int> calls{0};
  Receiver receiver([&](NOTIFY_SRC source, NOTIFY_TYPE type, const std::string& data) {
    EXPECT_EQ(source, NOTIFY_SRC_REMOTE_DEVICE);
    EXPECT_EQ(type, NOTIFY_DEVICE_LOST);
    EXPECT_EQ(data, "");
    if (++calls == 1) notified.set_value();
  });
  CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->RegisterNotify(NOTIFY_SRC_REMOTE_DEVICE, NOTIFY_DEVICE_LOST, &receiver), RESULT_OK);
  mock_.LoseDevice("cam", true);
  mock_.LoseDevice("cam", true);
  notified.get_future().wait();
  camera.reset();
  EXPECT_EQ(calls, 1);
}

// ---- notifications --------------------------------------------------------------------------------------

TEST_F(CameraTest, EventsReachTheirReceiverUntilItIsTakenAway) {
  std::promise<std::string> first;
  Receiver receiver([&](NOTIFY_SRC, NOTIFY_TYPE, const std::string& data) { first.set_value(data); });
  std::promise<std::string> second;
  Receiver other([&](NOTIFY_SRC, NOTIFY_TYPE, const std::string& data) { second.set_value(data); });
  CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->RegisterNotify(NOTIFY_SRC_REMOTE_DEVICE, NOTIFY_DEVICE_EVENT, &receiver), RESULT_OK);
  mock_.SendDeviceEvent(GenTL::EVENT_REMOTE_DEVICE, "9001", 0, "payload");
  EXPECT_EQ(first.get_future().get(), std::string("payload\0", 8));
  ASSERT_EQ(camera->RegisterNotify(NOTIFY_SRC_REMOTE_DEVICE, NOTIFY_DEVICE_EVENT, &other), RESULT_OK);
  mock_.SendDeviceEvent(GenTL::EVENT_REMOTE_DEVICE, "9001", 0, "again");
  EXPECT_EQ(second.get_future().get(), std::string("again\0", 6));
  ASSERT_EQ(camera->RegisterNotify(NOTIFY_SRC_REMOTE_DEVICE, NOTIFY_DEVICE_EVENT, nullptr), RESULT_OK);
  mock_.SendDeviceEvent(GenTL::EVENT_REMOTE_DEVICE, "9001", 0, "nobody");
  camera.reset();
}

struct ModuleSource {
  const char* kind;
  NOTIFY_SRC source;
};

constexpr ModuleSource kModuleSources[] = {{"system", NOTIFY_SRC_TRANSPORT_LAYER},
                                           {"interface", NOTIFY_SRC_INTERFACE},
                                           {"device", NOTIFY_SRC_LOCAL_DEVICE},
                                           {"stream", NOTIFY_SRC_DATA_STREAM}};

class ModuleEventTest : public CameraTest, public testing::WithParamInterface<ModuleSource> {};

INSTANTIATE_TEST_SUITE_P(Table, ModuleEventTest, testing::ValuesIn(kModuleSources),
                         [](const auto& source) { return std::string(source.param.kind); });

TEST_P(ModuleEventTest, EventsAndErrorsOfEveryModuleReachTheReceiversOfThatModule) {
  std::promise<std::string> event;
  Receiver events([&](NOTIFY_SRC source, NOTIFY_TYPE, const std::string& data) {
    EXPECT_EQ(source, GetParam().source);
    event.set_value(data);
  });
  std::promise<std::string> error;
  Receiver errors([&](NOTIFY_SRC source, NOTIFY_TYPE, const std::string& data) {
    EXPECT_EQ(source, GetParam().source);
    error.set_value(data);
  });
  const CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->RegisterNotify(GetParam().source, NOTIFY_DEVICE_EVENT, &events), RESULT_OK);
  ASSERT_EQ(camera->RegisterNotify(GetParam().source, NOTIFY_ERROR, &errors), RESULT_OK);
  mock_.SendModuleEvent(GetParam().kind, GenTL::EVENT_MODULE, "0001", 0, "payload");
  mock_.SendModuleEvent(GetParam().kind, GenTL::EVENT_ERROR, "", GenTL::GC_ERR_BUSY, "busy");
  EXPECT_EQ(event.get_future().get(), std::string("payload\0", 8));
  EXPECT_EQ(error.get_future().get(), std::string("busy\0", 5));
}

TEST_F(CameraTest, EventsOfASharedModuleReachEveryOpenCameraAndNoClosedOne) {
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {{"a", "SN1"}, {"b", "SN2"}, {"c", "SN3"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  std::array<std::promise<void>, 2> told;
  Receiver first([&](NOTIFY_SRC, NOTIFY_TYPE, const std::string&) { told[0].set_value(); });
  Receiver second([&](NOTIFY_SRC, NOTIFY_TYPE, const std::string&) { told[1].set_value(); });
  Receiver never(
      [&](NOTIFY_SRC, NOTIFY_TYPE, const std::string&) { ADD_FAILURE() << "the camera is closed"; });
  std::vector<CameraPtr> cameras;
  for (auto* const info : Discover()) {
    cameras.emplace_back(CreateCamera(info));
    ASSERT_EQ(cameras.back()->Open(ACCESS_CONTROL), RESULT_OK);
  }
  ASSERT_EQ(cameras.size(), 3U);
  const std::array<Receiver*, 3> receivers = {&first, &second, &never};
  for (std::size_t i = 0; i < 3; ++i) {
    ASSERT_EQ(cameras[i]->RegisterNotify(NOTIFY_SRC_INTERFACE, NOTIFY_DEVICE_EVENT, receivers[i]), RESULT_OK);
  }
  ASSERT_EQ(cameras[2]->Close(), RESULT_OK);
  mock_.SendModuleEvent("interface", GenTL::EVENT_MODULE, "0001", 0, "gone");
  told[0].get_future().get();
  told[1].get_future().get();
}

TEST_F(CameraTest, AProducerThatOffersNoEventsOfItsModulesServesAllTheSame) {
  mock_.SetHook("GCRegisterEvent", [](const std::string&) { return GenTL::GC_ERR_NOT_IMPLEMENTED; });
  const CameraPtr camera = OpenOne(mock_);
  EXPECT_TRUE(camera->IsOnline());
  EXPECT_EQ(camera->RegisterNotify(NOTIFY_SRC_TRANSPORT_LAYER, NOTIFY_ERROR, nullptr), RESULT_OK);
}

TEST_F(CameraTest, AnErrorWithoutLossIsOnlyNotified) {
  std::promise<std::string> told;
  Receiver receiver([&](NOTIFY_SRC, NOTIFY_TYPE, const std::string& data) { told.set_value(data); });
  const CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->RegisterNotify(NOTIFY_SRC_LOCAL_DEVICE, NOTIFY_ERROR, &receiver), RESULT_OK);
  mock_.SendDeviceEvent(GenTL::EVENT_ERROR, "", GenTL::GC_ERR_BUFFER_TOO_SMALL, "too small");
  EXPECT_EQ(told.get_future().get(), std::string("too small\0", 10));
  EXPECT_TRUE(camera->IsOnline());
}

// ---- threads --------------------------------------------------------------------------------------------

TEST_F(CameraTest, DiscoveryOpenGrabAndCloseMayRunAtTheSameTime) {
  const CameraPtr camera(CreateCamera(OneCamera(mock_)));
  std::atomic<bool> isOver{false};
  std::vector<std::thread> threads;
  threads.emplace_back([&] {
    while (!isOver) Discover();
  });
  threads.emplace_back([&] {
    while (!isOver) mock_.SendFrame(Frame(7));
  });
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&] {
      while (!isOver) {
        IImage* image = nullptr;
        if (camera->Grab(&image, 1) == RESULT_OK) {
          EXPECT_EQ(image->Data()[0], 7);
          image->Release();
        }
        camera->IsOnline();
        camera->IsGrabbing();
      }
    });
  }
  for (int round = 0; round < 20; ++round) {
    const auto strategy = static_cast<GRAB_STRATEGY>(round % 4);
    EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
    EXPECT_EQ(camera->StartGrabbing(strategy, -1), RESULT_OK);
    std::this_thread::yield();
    if (round % 2 == 0) {
      EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
    }
    EXPECT_EQ(camera->Close(), RESULT_OK);
  }
  isOver = true;
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace zyn::transport_test
