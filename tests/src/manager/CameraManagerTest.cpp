#include "CameraManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <latch>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "FakeTransport.h"
#include "Handles.h"
#include "LogicCamera.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::FakeCameraInfo;
using fakes::InternalOf;

namespace {

// Two 2D cameras and one 3D camera.
class CameraManagerTest : public testing::Test {
 protected:
  CameraManagerTest() { transport.present = {&a, &b, &laser}; }

  template <class Array>
  static std::set<void*> Cameras(const Array& array) {
    std::set<void*> cameras;
    for (unsigned int i = 0; i < array.length(); ++i) cameras.insert(InternalOf(array[static_cast<int>(i)]));
    return cameras;
  }
  std::set<void*> Registered(const std::vector<const char*>& serialNumbers) {
    std::set<void*> cameras;
    for (const char* serialNumber : serialNumbers) cameras.insert(manager.FindCamera(serialNumber));
    return cameras;
  }

  fakes::FakeTransport transport;
  FakeCameraInfo a{"A", "Area-1"};
  FakeCameraInfo b{"B", "XVX7"};
  FakeCameraInfo laser{"L", "VX7-3000"};
  CameraManager manager;
  ZynCameraArray found;
  Zyn3DCameraArray found3D;
};

}  // namespace

TEST_F(CameraManagerTest, InitAndUnInitReachTheTransportAndSucceedWhateverItSays) {
  transport.initResult = -3;
  EXPECT_EQ(manager.ZynSDKInit(), 0);
  EXPECT_EQ(manager.ZynSDKUnInit(), 0);
  EXPECT_EQ(transport.calls.Names(), (std::vector<std::string>{"Init", "UnInit"}));
}

TEST_F(CameraManagerTest, EachKindIsFoundByItsOwnSearch) {
  EXPECT_EQ(manager.DiscoveryCameras(&found), 0);
  EXPECT_EQ(found.length(), 2U);
  EXPECT_EQ(Cameras(found), Registered({"A", "B"}));
  EXPECT_EQ(manager.Discovery3DCameras(&found3D), 0);
  EXPECT_EQ(found3D.length(), 1U);
  EXPECT_EQ(Cameras(found3D), Registered({"L"}));
}

TEST_F(CameraManagerTest, ASearchReplacesTheArray) {
  manager.DiscoveryCameras(&found);
  manager.DiscoveryCameras(&found);
  EXPECT_EQ(found.length(), 2U);
  manager.Discovery3DCameras(&found3D);
  manager.Discovery3DCameras(&found3D);
  EXPECT_EQ(found3D.length(), 1U);
}

TEST_F(CameraManagerTest, AFailingSearchLeavesTheArrayEmptyAndTheRegistryAsItWas) {
  manager.DiscoveryCameras(&found);
  transport.hook = [](const std::string&) { throw std::runtime_error("search failed"); };
  EXPECT_THROW(manager.DiscoveryCameras(&found), std::runtime_error);
  EXPECT_EQ(found.length(), 0U);
  transport.hook = nullptr;
  EXPECT_TRUE(manager.FindCamera("A")->IsOnline());
  manager.DiscoveryCameras(&found);
  manager.Discovery3DCameras(&found3D);
  transport.hook = [](const std::string&) { throw std::runtime_error("search failed"); };
  EXPECT_THROW(manager.DiscoveryCamerasByProtocolType(1, &found), std::runtime_error);
  EXPECT_EQ(found.length(), 0U);
  EXPECT_THROW(manager.Discovery3DCameras(&found3D), std::runtime_error);
  EXPECT_EQ(found3D.length(), 0U);
}

TEST_F(CameraManagerTest, ADescriptionThatThrowsEndsTheSearchAndTheNextOnePutsItRight) {
  FakeCameraInfo broken("X", "Area-1");
  broken.throwsOnSerialNumber = true;
  transport.present = {&a, &broken, &b};
  EXPECT_THROW(manager.DiscoveryCameras(&found), std::runtime_error);
  ASSERT_NE(manager.FindCamera("A"), nullptr);  // would hang if the lock were still held
  EXPECT_EQ(manager.FindCamera("B"), nullptr);
  transport.present = {&a, &b, &laser};
  manager.SearchCameras();
  transport.present = {&a, &broken};
  EXPECT_THROW(manager.SearchCameras(), std::runtime_error);
  EXPECT_TRUE(manager.FindCamera("B")->IsOnline());  // nobody has said yet that it is gone
  transport.present = {&a};
  manager.SearchCameras();
  EXPECT_TRUE(manager.FindCamera("A")->IsOnline());
  EXPECT_FALSE(manager.FindCamera("B")->IsOnline());
  EXPECT_FALSE(manager.FindCamera("L")->IsOnline());
}

TEST_F(CameraManagerTest, UnInitForgetsNoCameraAndClosesNone) {
  fakes::FakeCamera device;
  transport.cameras[&a] = {&device};
  manager.SearchCameras();
  ASSERT_EQ(manager.FindCamera("A")->Open(nullptr), 0);
  EXPECT_EQ(manager.ZynSDKUnInit(), 0);
  ASSERT_NE(manager.FindCamera("A"), nullptr);
  EXPECT_TRUE(manager.FindCamera("A")->IsOnline());
  EXPECT_TRUE(manager.FindCamera("A")->IsOpen());
  EXPECT_EQ(manager.FindCamera("A")->Close(), 0);
}

TEST_F(CameraManagerTest, SearchingByProtocolGivesBothKindsAs2DHandles) {
  transport.byTLType[3] = {&a, &laser};
  EXPECT_EQ(manager.DiscoveryCamerasByProtocolType(3, &found), 0);
  EXPECT_EQ(Cameras(found), Registered({"A", "L"}));
  EXPECT_EQ(transport.calls.Count("Discovery"), 0);
}

TEST_F(CameraManagerTest, ASearchByProtocolTakesOtherCamerasOffline) {
  manager.DiscoveryCameras(&found);
  transport.byTLType[2] = {&b};
  manager.DiscoveryCamerasByProtocolType(2, &found);
  EXPECT_EQ(Cameras(found), Registered({"B"}));
  EXPECT_FALSE(manager.FindCamera("A")->IsOnline());
  EXPECT_FALSE(manager.FindCamera("L")->IsOnline());
  manager.DiscoveryCameras(&found);
  EXPECT_TRUE(manager.FindCamera("A")->IsOnline());
  EXPECT_EQ(found.length(), 2U);
}

TEST_F(CameraManagerTest, AllCamerasAreAppendedToTheVectorOfTheirKind) {
  std::vector<ZynCamera> all2D;
  std::vector<Zyn3DCamera> all3D;
  EXPECT_EQ(manager.DiscoveryAllCameras(&all2D, &all3D), 0);
  EXPECT_EQ(all2D.size(), 2U);
  EXPECT_EQ(all3D.size(), 1U);
  EXPECT_EQ(manager.DiscoveryAllCameras(&all2D, &all3D), 0);
  EXPECT_EQ(all2D.size(), 4U);
  EXPECT_EQ(all3D.size(), 2U);
  EXPECT_EQ(InternalOf(all3D[0]), InternalOf(all3D[1]));
}

TEST_F(CameraManagerTest, NullArgumentsAreRefusedBeforeAnySearch) {
  std::vector<ZynCamera> all2D;
  std::vector<Zyn3DCamera> all3D;
  ZynCamera camera;
  Zyn3DCamera camera3D;
  EXPECT_EQ(manager.DiscoveryCameras(nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(manager.Discovery3DCameras(nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(manager.DiscoveryCamerasByProtocolType(1, nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(manager.DiscoveryAllCameras(nullptr, &all3D), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(manager.DiscoveryAllCameras(&all2D, nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(manager.DiscoveryCamera(nullptr, &camera), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(manager.DiscoveryCamera("A", nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(manager.Discovery3DCamera(nullptr, &camera3D), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(manager.Discovery3DCamera("L", nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(manager.DiscoveryCamera(nullptr), nullptr);
  EXPECT_TRUE(transport.calls.Names().empty());
}

TEST_F(CameraManagerTest, AnUnknownSerialNumberIsSearchedForOnce) {
  ZynCamera camera;
  EXPECT_EQ(manager.DiscoveryCamera("A", &camera), 0);
  EXPECT_EQ(InternalOf(camera), manager.FindCamera("A"));
  EXPECT_EQ(transport.calls.Count("Discovery"), 1);
  EXPECT_EQ(manager.DiscoveryCamera("nobody", &camera), ZYN_ERROR_NO_SUCH_CAMERA);
  EXPECT_EQ(transport.calls.Count("Discovery"), 2);
  EXPECT_EQ(InternalOf(camera), manager.FindCamera("A"));  // a failure leaves the handle alone
}

TEST_F(CameraManagerTest, AKnownSerialNumberIsNotSearchedForEvenWhenAbsent) {
  manager.SearchCameras();
  transport.present = {};
  manager.SearchCameras();
  ZynCamera camera;
  EXPECT_EQ(manager.DiscoveryCamera("A", &camera), 0);
  EXPECT_EQ(transport.calls.Count("Discovery"), 2);
  EXPECT_FALSE(manager.FindCamera("A")->IsOnline());
}

TEST_F(CameraManagerTest, ACameraOfTheOtherKindIsNoSuchCamera) {
  ZynCamera camera;
  Zyn3DCamera camera3D;
  EXPECT_EQ(manager.DiscoveryCamera("L", &camera), ZYN_ERROR_NO_SUCH_CAMERA);
  EXPECT_EQ(manager.Discovery3DCamera("L", &camera3D), 0);
  EXPECT_EQ(manager.Discovery3DCamera("B", &camera3D), ZYN_ERROR_NO_SUCH_CAMERA);
  EXPECT_EQ(manager.Discovery3DCamera("nobody", &camera3D), ZYN_ERROR_NO_SUCH_CAMERA);
  EXPECT_EQ(InternalOf(camera3D), manager.FindCamera("L"));
}

TEST_F(CameraManagerTest, AnUnpluggedCameraKeepsItsHandleAndComesBackAsTheSame) {
  manager.DiscoveryCameras(&found);
  void* before = manager.FindCamera("A");
  transport.present = {&b};
  manager.DiscoveryCameras(&found);
  EXPECT_EQ(Cameras(found), Registered({"B"}));
  EXPECT_EQ(manager.FindCamera("A"), before);
  FakeCameraInfo again("A", "Area-1");
  transport.present = {&b, &again};
  manager.DiscoveryCameras(&found);
  EXPECT_EQ(Cameras(found), Registered({"A", "B"}));
  EXPECT_EQ(manager.FindCamera("A"), before);
}

TEST_F(CameraManagerTest, ASearchRefreshesTheDescription) {
  manager.SearchCameras();
  FakeCameraInfo renamed("A", "KEL-LP1");
  transport.present = {&renamed};
  manager.SearchCameras();
  EXPECT_TRUE(manager.FindCamera("A")->Is3DCamera());
  EXPECT_EQ(a.calls.Count("CopyFrom"), 1);
}

TEST_F(CameraManagerTest, ACameraReportedTwiceIsRefreshedTwice) {
  FakeCameraInfo twice("A", "Area-1");
  transport.present = {&a, &twice, nullptr};
  manager.DiscoveryCameras(&found);
  EXPECT_EQ(found.length(), 1U);
  EXPECT_EQ(a.calls.Count("CopyFrom"), 1);
}

TEST_F(CameraManagerTest, ACameraReportedTwiceInEverySearchKeepsTwoRecords) {
  FakeCameraInfo twice("A", "Area-1");
  transport.present = {&a, &twice};
  std::set<void*> records;
  for (int i = 0; i < 100; ++i) {
    manager.SearchCameras();
    const std::unique_ptr<ZynCameraAttribute> attribute(manager.FindCamera("A")->Attribute());
    records.insert(InternalOf(*attribute));
    manager.FindCamera("A")->replaceAttribute(&a);
    const std::unique_ptr<ZynCameraAttribute> other(manager.FindCamera("A")->Attribute());
    records.insert(InternalOf(*other));
  }
  EXPECT_EQ(records.size(), 2U);
}

TEST_F(CameraManagerTest, AKindThatDoesNotExistIsEveryKind) {
  for (int kind : {0, 1, 4, -1, 99}) EXPECT_EQ(manager.DiscoveryCameras(kind).size(), 3U) << kind;
  EXPECT_EQ(manager.DiscoveryCameras(2).size(), 2U);
  EXPECT_EQ(manager.DiscoveryCameras(3).size(), 1U);
}

TEST_F(CameraManagerTest, ExceptionsOfTheTransportPass) {
  transport.hook = [](const std::string& call) { throw std::runtime_error(call); };
  EXPECT_THROW(manager.SearchCameras(), std::runtime_error);
  EXPECT_THROW(manager.SearchCamerasByProtocolType(1), std::runtime_error);
  ZynCamera camera;
  Zyn3DCamera camera3D;
  std::vector<ZynCamera> all2D;
  std::vector<Zyn3DCamera> all3D;
  EXPECT_THROW(manager.DiscoveryCamera("nobody", &camera), std::runtime_error);
  EXPECT_THROW(manager.Discovery3DCamera("nobody", &camera3D), std::runtime_error);
  EXPECT_THROW(manager.DiscoveryAllCameras(&all2D, &all3D), std::runtime_error);
  EXPECT_THROW(manager.ZynSDKInit(), std::runtime_error);
  EXPECT_THROW(manager.GetCLCameraProtocols(), std::runtime_error);
  EXPECT_THROW(manager.GetCLCameraSerials(), std::runtime_error);
}

TEST_F(CameraManagerTest, NoSerialNumberIsNoCameraWhenAllHaveOne) {
  manager.SearchCameras();
  EXPECT_EQ(manager.FindCamera(nullptr), nullptr);
}

TEST_F(CameraManagerTest, ACameraWithoutASerialNumberIsKnownByTheEmptyOne) {
  FakeCameraInfo nameless(nullptr, "Area-1");
  transport.present = {&nameless};
  manager.DiscoveryCameras(&found);
  EXPECT_EQ(Cameras(found), Registered({""}));
}

TEST_F(CameraManagerTest, NoMarkStaysBehind) {
  manager.SearchCameras();
  transport.present = {&a};
  manager.SearchCameras();
  for (const char* serialNumber : {"A", "B", "L"}) EXPECT_FALSE(manager.FindCamera(serialNumber)->IsUnseen());
}

TEST_F(CameraManagerTest, TheRegistryIsFreeDuringTheTransportsSearch) {
  manager.SearchCameras();
  std::latch entered(1);
  std::latch allowed(1);
  transport.hook = [&](const std::string&) {
    entered.count_down();
    allowed.wait();
  };
  auto search = std::async(std::launch::async, [&] { manager.SearchCameras(); });
  entered.wait();
  EXPECT_NE(manager.FindCamera("A"), nullptr);  // would hang if the search held the lock
  allowed.count_down();
  search.get();
}

TEST_F(CameraManagerTest, SeveralThreadsSearchAtOnce) {
  std::vector<std::future<void>> searches;
  for (int i = 0; i < 4; ++i) {
    searches.push_back(std::async(std::launch::async, [this] {
      for (int j = 0; j < 50; ++j) {
        ZynCameraArray mine;
        manager.DiscoveryCameras(&mine);
        EXPECT_EQ(mine.length(), 2U);
      }
    }));
  }
  for (auto& search : searches) search.get();
}

TEST_F(CameraManagerTest, CameraLinkTextsComeInOrder) {
  transport.protocols = {"p1", "p2"};
  transport.serials = {"port"};
  const ZynStringArray protocols = manager.GetCLCameraProtocols();
  ASSERT_EQ(protocols.length(), 2U);
  EXPECT_STREQ(protocols[0].getStr(), "p1");
  EXPECT_STREQ(protocols[1].getStr(), "p2");
  const ZynStringArray serials = manager.GetCLCameraSerials();
  ASSERT_EQ(serials.length(), 1U);
  EXPECT_STREQ(serials[0].getStr(), "port");
}
