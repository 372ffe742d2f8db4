#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <future>
#include <latch>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "CameraManager.h"
#include "EventRecorder.h"
#include "FakeTransport.h"
#include "LogicCamera.h"
#include "Metronome.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::CameraEvent;
using fakes::EventRecorder;
using fakes::FakeCameraInfo;
using fakes::FakeTransport;
using fakes::InternalOf;
using fakes::Metronome;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

namespace {

// Like the transport's: readers need no lock.
class FixedInfo : public FakeCameraInfo {
 public:
  using FakeCameraInfo::FakeCameraInfo;
  void CopyFrom(const KELGENICAM::ICameraInfo&) override {}
};

// Two 2D cameras and one 3D camera. The scan thread stands still between its searches until a test lets it go on.
class CameraEventsTest : public testing::Test {
 protected:
  CameraEventsTest() { transport.present = {&a, &b, &laser}; }
  ~CameraEventsTest() override { metronome.RunFreely(); }

  void Register2D(ICameraEventHandler* handler) { EXPECT_EQ(manager.RegisterCameraEventHandler(handler), 0); }
  void Register3D(I3DCameraEventHandler* handler) {
    EXPECT_EQ(manager.Register3DCameraEventHandler(handler), 0);
  }
  /// The events until the scan thread rests after its first search.
  std::vector<CameraEvent> EventsOfTheFirstSearch() {
    metronome.Settle();
    return log.Take();
  }
  /// The events of the thread's next search.
  std::vector<CameraEvent> EventsOfTheNextSearch() {
    metronome.Advance(ScanThread::kTicksPerScan);
    return log.Take();
  }
  /// For a test whose handlers, hooks or descriptions go before the manager does.
  void EndScanning() {
    metronome.RunFreely();
    Register2D(nullptr);
    Register3D(nullptr);
  }
  CameraEvent Event(const char* serialNumber, int type, bool is3D = false) {
    return {manager.FindCamera(serialNumber), type, is3D};
  }
  int Searches() const { return transport.calls.Count("Discovery"); }

  FakeTransport transport;
  FakeCameraInfo a{"A", "Area-1"};
  FakeCameraInfo b{"B", "Area-1"};
  FakeCameraInfo laser{"L", "VX7-3000"};
  fakes::EventLog log;
  EventRecorder recorder{log};
  Metronome metronome;
  CameraManager manager{[this] { metronome.Tick(); }};
};

}  // namespace

TEST_F(CameraEventsTest, WithoutAHandlerNothingSearches) {
  Register2D(nullptr);
  Register3D(nullptr);
  EXPECT_EQ(Searches(), 0);
}

TEST_F(CameraEventsTest, A2DHandlerHearsAtOnceOfEach2DCamera) {
  Register2D(&recorder);
  metronome.Settle();
  EXPECT_THAT(log.Take(), UnorderedElementsAre(Event("A", 1), Event("B", 1)));
  EXPECT_EQ(Searches(), 1);
  EXPECT_THAT(EventsOfTheNextSearch(), IsEmpty());
  EXPECT_EQ(Searches(), 2);
}

TEST_F(CameraEventsTest, UnInitDoesNotEndTheScanThread) {
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  EXPECT_EQ(manager.ZynSDKUnInit(), 0);
  transport.SetPresent({&b, &laser});
  EXPECT_THAT(EventsOfTheNextSearch(), ElementsAre(Event("A", 2)));
}

TEST_F(CameraEventsTest, A3DHandlerHearsAtOnceOfEach3DCamera) {
  Register3D(&recorder);
  metronome.Settle();
  EXPECT_THAT(log.Take(), ElementsAre(Event("L", 1, true)));
  transport.SetPresent({&a});
  EXPECT_THAT(EventsOfTheNextSearch(), ElementsAre(Event("L", 2, true)));
}

TEST_F(CameraEventsTest, AnUnpluggedCameraIsReportedOnceAndSoIsItsReturnWithAnEqualHandle) {
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  const CameraEvent before = Event("A", 1);
  transport.SetPresent({&b, &laser});
  EXPECT_THAT(EventsOfTheNextSearch(), ElementsAre(Event("A", 2)));
  EXPECT_THAT(EventsOfTheNextSearch(), IsEmpty());
  FakeCameraInfo again("A", "Area-1");
  transport.SetPresent({&again, &b, &laser});
  EXPECT_THAT(EventsOfTheNextSearch(), ElementsAre(before));
  EXPECT_THAT(EventsOfTheNextSearch(), IsEmpty());
  EndScanning();
}

TEST_F(CameraEventsTest, ACameraThatGoesAndComesBackBetweenTwoSearchesIsNoEvent) {
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  transport.SetPresent({&b});
  metronome.Advance(ScanThread::kTicksPerScan - 1);
  transport.SetPresent({&a, &b});
  metronome.Advance(1);
  EXPECT_EQ(Searches(), 2);
  EXPECT_THAT(log.Take(), IsEmpty());
}

TEST_F(CameraEventsTest, ASearchByProtocolOnAnotherThreadIsNoEvent) {
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  ZynCameraArray found;
  transport.byTLType[2] = {&b};
  manager.DiscoveryCamerasByProtocolType(2, &found);
  EXPECT_FALSE(manager.FindCamera("A")->IsOnline());
  EXPECT_THAT(EventsOfTheNextSearch(), IsEmpty());
  EXPECT_TRUE(manager.FindCamera("A")->IsOnline());
}

TEST_F(CameraEventsTest, ADiscoveryOfTheApplicationDoesNotSwallowTheEvent) {
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  transport.SetPresent({&b});
  ZynCameraArray found;
  manager.DiscoveryCameras(&found);
  EXPECT_THAT(log.Take(), IsEmpty());  // discovering reports nothing itself
  EXPECT_THAT(EventsOfTheNextSearch(), ElementsAre(Event("A", 2)));
}

TEST_F(CameraEventsTest, RegisteringTheSameHandlerAgainReportsAllCamerasAgain) {
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  Register2D(&recorder);
  EXPECT_THAT(log.Take(), IsEmpty());
  EXPECT_THAT(EventsOfTheNextSearch(), UnorderedElementsAre(Event("A", 1), Event("B", 1)));
}

TEST_F(CameraEventsTest, RegisteringOneKindLeavesTheOtherKindsMemoryAlone) {
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  Register3D(&recorder);
  EXPECT_THAT(EventsOfTheNextSearch(), ElementsAre(Event("L", 1, true)));
}

TEST_F(CameraEventsTest, BothListenersShareOneThreadAndThe2DListenerComesFirst) {
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  Register3D(&recorder);
  Register2D(&recorder);
  const int before = Searches();
  metronome.Advance(ScanThread::kTicksPerScan);
  EXPECT_EQ(Searches(), before + 1);
  const std::vector<CameraEvent> events = log.Take();
  ASSERT_THAT(events, SizeIs(3));
  EXPECT_FALSE(events[0].is3D);
  EXPECT_FALSE(events[1].is3D);
  EXPECT_TRUE(events[2].is3D);
}

TEST_F(CameraEventsTest, ANewHandlerReplacesTheOldOne) {
  fakes::EventLog otherLog;
  EventRecorder other(otherLog);
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  Register2D(&other);
  EXPECT_THAT(EventsOfTheNextSearch(), IsEmpty());
  EXPECT_THAT(otherLog.Take(), UnorderedElementsAre(Event("A", 1), Event("B", 1)));
  EndScanning();
}

TEST_F(CameraEventsTest, UnregisteringOneKindKeepsTheThreadForTheOther) {
  Register2D(&recorder);
  Register3D(&recorder);
  EventsOfTheNextSearch();  // the first may be over before the second handler is there
  Register2D(nullptr);
  transport.SetPresent({&b});
  EXPECT_THAT(EventsOfTheNextSearch(), ElementsAre(Event("L", 2, true)));
  Register2D(&recorder);
  Register3D(nullptr);
  EXPECT_THAT(EventsOfTheNextSearch(), ElementsAre(Event("B", 1)));
}

TEST_F(CameraEventsTest, UnregisteringBothEndsTheThread) {
  auto token = std::make_shared<int>(0);  // held by whatever holds the tick
  CameraManager own([this, token] { metronome.Tick(); });
  const long withoutThread = token.use_count();
  own.RegisterCameraEventHandler(&recorder);
  own.Register3DCameraEventHandler(&recorder);
  EXPECT_GT(token.use_count(), withoutThread);
  metronome.RunFreely();
  own.RegisterCameraEventHandler(nullptr);
  EXPECT_GT(token.use_count(), withoutThread);
  own.Register3DCameraEventHandler(nullptr);
  EXPECT_EQ(token.use_count(), withoutThread);
  const int searches = Searches();
  log.Take();
  transport.SetPresent({});
  own.ScanForListeners();  // even if somebody scanned
  EXPECT_THAT(log.Take(), IsEmpty());
  EXPECT_EQ(Searches(), searches + 1);
}

TEST_F(CameraEventsTest, AThreadThatEndedIsFollowedByANewOneThatSearchesAtOnce) {
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  metronome.RunFreely();
  Register2D(nullptr);
  metronome.Hold();
  log.Take();
  const int before = Searches();
  Register2D(&recorder);
  EXPECT_THAT(EventsOfTheFirstSearch(), UnorderedElementsAre(Event("A", 1), Event("B", 1)));
  EXPECT_EQ(Searches(), before + 1);
}

TEST_F(CameraEventsTest, TheManagersEndEndsTheThread) {
  auto token = std::make_shared<int>(0);
  {
    CameraManager own([this, token] { metronome.Tick(); });
    own.RegisterCameraEventHandler(&recorder);
    metronome.RunFreely();
  }
  EXPECT_EQ(token.use_count(), 1);
}

TEST_F(CameraEventsTest, HandlersRunOnTheScanThreadOnly) {
  Register2D(&recorder);
  Register3D(&recorder);
  metronome.Advance(ScanThread::kTicksPerScan);
  const std::vector<std::thread::id> threads = log.Threads();
  ASSERT_THAT(threads, SizeIs(3));
  EXPECT_THAT(threads, Each(threads[0]));
  EXPECT_NE(threads[0], std::this_thread::get_id());
}

TEST_F(CameraEventsTest, AHandlerMaySearchAndUseCameras) {
  std::set<void*> found;
  recorder.hook = [&] {
    ZynCameraArray cameras;
    EXPECT_EQ(manager.DiscoveryCameras(&cameras), 0);
    for (int i = 0; i < static_cast<int>(cameras.length()); ++i) found.insert(InternalOf(cameras[i]));
    ZynCamera camera;
    EXPECT_EQ(manager.DiscoveryCamera("A", &camera), 0);
    EXPECT_FALSE(camera.IsOpen());
  };
  Register2D(&recorder);
  EXPECT_THAT(EventsOfTheFirstSearch(), SizeIs(2));
  EXPECT_THAT(found, UnorderedElementsAre(manager.FindCamera("A"), manager.FindCamera("B")));
  EndScanning();
}

TEST_F(CameraEventsTest, TheHandleOfAnEventIsACopyThatOutlivesTheCall) {
  class Keeper : public ICameraEventHandler {
   public:
    void OnCameraEvent(ZynCamera camera, ZynCameraEventType) override { kept = camera; }
    ZynCamera kept;
  };
  transport.SetPresent({&a});
  Keeper keeper;
  Register2D(&keeper);
  metronome.Settle();
  ASSERT_EQ(InternalOf(keeper.kept), manager.FindCamera("A"));
  const std::unique_ptr<ZynCameraAttribute> attribute(keeper.kept.Attribute());
  EXPECT_STREQ(attribute->CameraSerialNumber(), "A");
  EndScanning();
}

// A handler that another thread is about to destroy must not be in a call any more when unregistering returns.
TEST_F(CameraEventsTest, RegisteringWaitsForTheHandlerThatRuns) {
  transport.SetPresent({&a});
  std::promise<void> entered;
  std::promise<void> allowed;
  bool isDone = false;  // written and read in order, when registering waits
  recorder.hook = [&] {
    entered.set_value();
    allowed.get_future().wait();
    isDone = true;
  };
  Register3D(&recorder);  // so that the thread stays, and the wait is for the call alone
  metronome.Settle();
  Register2D(&recorder);
  metronome.RunFreely();
  entered.get_future().wait();
  auto registering = std::async(std::launch::async, [&] {
    Register2D(nullptr);
    EXPECT_TRUE(isDone);
  });
  // Returning early would need less than this; returning in time proves nothing, so this never fails by chance.
  EXPECT_EQ(registering.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  allowed.set_value();
  registering.get();
  EndScanning();
}

TEST_F(CameraEventsTest, UnregisteringWaitsForTheSearchThatRuns) {
  std::promise<void> entered;
  std::promise<void> allowed;
  bool isDone = false;
  transport.hook = [&](const std::string&) {
    if (isDone) return;
    entered.set_value();
    allowed.get_future().wait();
    isDone = true;
  };
  Register2D(&recorder);
  entered.get_future().wait();
  metronome.RunFreely();
  auto unregistering = std::async(std::launch::async, [&] { Register2D(nullptr); });
  EXPECT_EQ(unregistering.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  allowed.set_value();
  unregistering.get();
  EXPECT_TRUE(isDone);
}

TEST_F(CameraEventsTest, TheRegistryIsFreeWhileAHandlerRuns) {
  std::promise<void> entered;
  std::promise<void> allowed;
  transport.SetPresent({&a});
  recorder.hook = [&] {
    entered.set_value();
    allowed.get_future().wait();
  };
  Register2D(&recorder);
  entered.get_future().wait();
  ZynCameraArray found;
  EXPECT_EQ(manager.DiscoveryCameras(&found), 0);  // would hang if the registry were locked
  EXPECT_EQ(found.length(), 1U);
  allowed.set_value();
  EndScanning();
}

// Shutting the transport down is not the end of the scan thread: it goes on and finds what the transport finds then.
TEST_F(CameraEventsTest, ATransportThatIsShutDownMakesAllCamerasGoneAndTheThreadGoesOn) {
  transport.hook = [this](const std::string& call) {
    if (call == "UnInit") transport.SetPresent({});
    if (call == "Init") transport.SetPresent({&a});
  };
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  EXPECT_EQ(manager.ZynSDKUnInit(), 0);
  EXPECT_THAT(log.Take(), IsEmpty());
  EXPECT_THAT(EventsOfTheNextSearch(), UnorderedElementsAre(Event("A", 2), Event("B", 2)));
  EXPECT_EQ(manager.ZynSDKInit(), 0);
  EXPECT_THAT(EventsOfTheNextSearch(), ElementsAre(Event("A", 1)));
  EndScanning();
}

TEST_F(CameraEventsTest, RegisteringAndUnregisteringFromManyThreadsEndsWithoutAThread) {
  FixedInfo fixed("A", "Area-1");
  FixedInfo fixedLaser("L", "VX7-3000");
  transport.SetPresent({&fixed, &fixedLaser});
  auto token = std::make_shared<int>(0);  // held by whatever holds the tick
  CameraManager own([token] { std::this_thread::yield(); });
  const long withoutThread = token.use_count();
  std::latch together(4);
  std::vector<std::future<void>> calls;
  for (int i = 0; i < 4; ++i) {
    calls.push_back(std::async(std::launch::async, [&, is3D = i % 2 == 0] {
      fakes::EventLog mine;
      EventRecorder handler(mine);  // destroyed as soon as it is registered no more
      together.arrive_and_wait();
      for (int round = 0; round < 100; ++round) {
        if (is3D) {
          EXPECT_EQ(own.Register3DCameraEventHandler(round % 2 == 0 ? &handler : nullptr), 0);
        } else {
          EXPECT_EQ(own.RegisterCameraEventHandler(round % 2 == 0 ? &handler : nullptr), 0);
        }
      }
    }));
  }
  for (auto& call : calls) call.get();
  own.RegisterCameraEventHandler(nullptr);
  own.Register3DCameraEventHandler(nullptr);
  EXPECT_EQ(token.use_count(), withoutThread);
  const int searches = Searches();
  own.RegisterCameraEventHandler(&recorder);  // still works
  while (Searches() == searches) std::this_thread::yield();
  own.RegisterCameraEventHandler(nullptr);
}

TEST_F(CameraEventsTest, AThreadThatCannotBeMadeIsReportedAndTriedForAgain) {
  // The thread takes a copy of the tick; a copy that fails is the nearest thing to a system without threads.
  struct Tick {
    Tick(Metronome& hand, bool& canNotBeMade) : metronome(&hand), fails(&canNotBeMade) {}
    Tick(const Tick& other) : metronome(other.metronome), fails(other.fails) {
      if (*fails) throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    Tick& operator=(const Tick&) = delete;
    void operator()() const { metronome->Tick(); }
    Metronome* metronome;
    bool* fails;
  };
  bool fails = false;
  CameraManager own{Tick(metronome, fails)};
  fails = true;
  EXPECT_THROW(own.RegisterCameraEventHandler(&recorder), std::system_error);
  EXPECT_EQ(Searches(), 0);
  fails = false;
  EXPECT_EQ(own.Register3DCameraEventHandler(nullptr), 0);  // the 2D handler stayed registered
  metronome.Settle();
  EXPECT_THAT(log.Take(), SizeIs(2));
  metronome.RunFreely();
}

TEST_F(CameraEventsTest, ADescriptionReadBeforeASearchStaysReadableAfterIt) {
  Register2D(&recorder);
  EventsOfTheFirstSearch();
  ZynCamera camera;
  ASSERT_EQ(manager.DiscoveryCamera("A", &camera), 0);
  const std::unique_ptr<ZynCameraAttribute> before(camera.Attribute());
  FakeCameraInfo renamed("A", "Area-2");
  transport.SetPresent({&renamed});
  metronome.Advance(ScanThread::kTicksPerScan);
  const std::unique_ptr<ZynCameraAttribute> after(camera.Attribute());
  EXPECT_NE(InternalOf(*before), InternalOf(*after));
  EXPECT_STREQ(before->CameraModel(), "Area-2");  // and tells the present state
  EXPECT_STREQ(after->CameraModel(), "Area-2");
  EndScanning();
}

TEST_F(CameraEventsTest, SearchingForALongTimeKeepsOneRecordOfACameraThatDoesNotChange) {
  Register2D(&recorder);
  metronome.Settle();
  const std::unique_ptr<ZynCameraAttribute> before(manager.FindCamera("A")->Attribute());
  metronome.Advance(100 * ScanThread::kTicksPerScan);
  const std::unique_ptr<ZynCameraAttribute> after(manager.FindCamera("A")->Attribute());
  EXPECT_EQ(InternalOf(*before), InternalOf(*after));
  EXPECT_EQ(Searches(), 101);
  EXPECT_THAT(log.Take(), SizeIs(2));
}

// Descriptions alternate with every search while other threads read them, over old handles and new ones.
TEST_F(CameraEventsTest, DescriptionsMayBeReadWhileTheScanThreadReplacesThem) {
  FixedInfo one("A", "Area-1");
  FixedInfo two("A", "VX7-1");
  transport.SetPresent({&one});
  CameraManager own([this] { metronome.Tick(); });
  own.RegisterCameraEventHandler(&recorder);
  own.Register3DCameraEventHandler(&recorder);
  metronome.Settle();
  LogicCamera* camera = own.FindCamera("A");
  std::atomic<bool> isDone{false};
  auto reading = std::async(std::launch::async, [&] {
    std::vector<std::unique_ptr<ZynCameraAttribute>> handles;
    while (!isDone) {
      if (handles.size() < 100) handles.emplace_back(camera->Attribute());
      for (const auto& handle : handles) EXPECT_STREQ(handle->CameraSerialNumber(), "A");
      camera->Is3DCamera();
    }
  });
  for (int i = 0; i < 50; ++i) {
    transport.SetPresent({i % 2 == 0 ? &two : &one});
    metronome.Advance(ScanThread::kTicksPerScan);
  }
  isDone = true;
  reading.get();
  metronome.RunFreely();
}

// Only the alarm ends this: the call waits for the lock that its own thread holds.
TEST(CameraEventsDeathTest, AHandlerThatRegistersAHandlerNeverReturns) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        FakeTransport transport;
        FakeCameraInfo info("A", "Area-1");
        transport.present = {&info};
        fakes::EventLog log;
        EventRecorder recorder(log);
        CameraManager manager;
        recorder.hook = [&] {
          ualarm(300'000, 0);
          manager.Register3DCameraEventHandler(nullptr);
          std::_Exit(0);
        };
        manager.RegisterCameraEventHandler(&recorder);
        std::promise<void>().get_future().wait();  // for the end
      },
      testing::KilledBySignal(SIGALRM), "");
}

// The manager ends on its own scan thread then, which cannot wait for itself.
TEST(CameraEventsDeathTest, AHandlerMayEndTheProgram) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  static CameraManager* manager = nullptr;
  EXPECT_EXIT(
      {
        FakeTransport transport;
        FakeCameraInfo info("A", "Area-1");
        transport.present = {&info};
        fakes::EventLog log;
        EventRecorder recorder(log);
        recorder.hook = [] {
          delete manager;
          std::_Exit(7);
        };
        manager = new CameraManager;
        manager->RegisterCameraEventHandler(&recorder);
        std::promise<void>().get_future().wait();  // for the end
      },
      testing::ExitedWithCode(7), "");
}

TEST(CameraEventsDeathTest, AnExceptionOfAHandlerEndsTheProcess) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_DEATH(
      {
        FakeTransport transport;
        FakeCameraInfo info("A", "Area-1");
        transport.present = {&info};
        fakes::EventLog log;
        EventRecorder recorder(log);
        recorder.hook = [] { throw std::runtime_error("the handler failed"); };
        CameraManager manager;
        manager.RegisterCameraEventHandler(&recorder);
        std::promise<void>().get_future().wait();  // for the end
      },
      "the handler failed");
}
