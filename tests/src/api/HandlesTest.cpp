#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <future>
#include <latch>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "EventRecorder.h"
#include "FakeTransport.h"
#include "Handles.h"
#include "LaserFeatures.h"
#include "TestNodeMap.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::FakeCamera;
using fakes::FakeCameraInfo;
using fakes::InternalOf;

// The two kinds are unrelated, and nobody but the library fills a handle.
static_assert(!std::is_convertible_v<ZynCamera, Zyn3DCamera>);
static_assert(!std::is_convertible_v<Zyn3DCamera, ZynCamera>);
static_assert(std::has_virtual_destructor_v<ZynCamera> && std::has_virtual_destructor_v<Zyn3DCamera> &&
              std::has_virtual_destructor_v<ZynCameraAttribute>);
static_assert(std::is_abstract_v<IImageHandler> && std::has_virtual_destructor_v<IImageHandler>);
static_assert(!std::is_polymorphic_v<ZynNode> && !std::is_polymorphic_v<ZynImage>);

namespace {

// The registry behind the free functions lives as long as the program and keeps pointing at descriptions, so these
// live as long; every test uses serial numbers of its own.
FakeCameraInfo& Info(const char* serialNumber, const char* model) {
  static std::vector<std::unique_ptr<FakeCameraInfo>> infos;
  return *infos.emplace_back(std::make_unique<FakeCameraInfo>(serialNumber, model));
}

}  // namespace

TEST(EmptyZynCamera, AnswersTheNullResults) {
  ZynCamera camera;
  ZynImage image;
  ZynChunkData chunk;
  ZynNode node;
  ZynNodeArray nodes;
  EXPECT_EQ(camera.Attribute(), nullptr);
  EXPECT_FALSE(camera.IsOpen());
  EXPECT_FALSE(camera.IsGrabbing());
  const std::vector<long> results = {camera.Open(nullptr),
                                     camera.Close(),
                                     camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0),
                                     camera.StopGrab(),
                                     camera.SetGrabTimeout(0),
                                     camera.GrabImage(&image, &chunk),
                                     camera.GrabImage(nullptr, nullptr),
                                     camera.GetTLNode("X", &node),
                                     camera.GetTLNodes(&nodes),
                                     camera.GetIFNode("X", &node),
                                     camera.GetIFNodes(&nodes),
                                     camera.GetDevNode("X", &node),
                                     camera.GetDevNodes(&nodes),
                                     camera.GetRemoteNode(nullptr, nullptr),
                                     camera.GetRemoteNodes(nullptr),
                                     camera.GetDSNode("X", &node),
                                     camera.GetDSNodes(&nodes),
                                     camera.SetCLCameraParam("X", "1"),
                                     camera.SetCLCameraParam(nullptr, nullptr),
                                     camera.RegisterImageHandler(nullptr)};
  for (long result : results) EXPECT_EQ(result, ZYN_ERROR_NO_OBJECT);
}

TEST(EmptyZyn3DCamera, AnswersTheNullResults) {
  Zyn3DCamera camera;
  ZynNode node;
  ZynNodeArray nodes;
  ZynImage image;
  Zyn3DIntArray heights;
  ZynRangeImage range;
  int count = 0;
  EXPECT_EQ(camera.Attribute(), nullptr);
  EXPECT_FALSE(camera.IsOpen());
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
  const std::vector<long> results = {camera.Open(),
                                     camera.Close(),
                                     camera.StartGrab(ZYN_3D_GRAB_BATCH),
                                     camera.StopGrab(),
                                     camera.SetGrabTimeout(0),
                                     camera.GrabData(&image, &heights, &image),
                                     camera.GrabData(nullptr, nullptr, nullptr),
                                     camera.GrabContour(&heights, &image),
                                     camera.GrabContour(nullptr, nullptr),
                                     camera.GrabBatchData(&range, &image),
                                     camera.GrabBatchData(nullptr, nullptr),
                                     camera.SetBatchCount(100),
                                     camera.GetBatchCount(&count),
                                     camera.GetBatchCount(nullptr),
                                     camera.GetNode("X", &node),
                                     camera.GetNodes(&nodes)};
  for (long result : results) EXPECT_EQ(result, ZYN_ERROR_NO_OBJECT);
}

TEST(EmptyZynNode, AnswersTheNullResults) {
  ZynNode node;
  bool boolean = false;
  int integer = 0;
  float real = 0;
  ZynString text;
  ZynStringArray texts;
  EXPECT_STREQ(node.Name(), "");
  EXPECT_EQ(node.Type(), ZYN_NODE_UNKNOWN);
  const std::vector<long> results = {node.GetBool(&boolean),
                                     node.GetInt(&integer),
                                     node.GetFloat(&real),
                                     node.GetEnumIndex(&integer, &texts),
                                     node.GetEnumString(&text, &texts),
                                     node.GetString(&text),
                                     node.GetRegister(&text),
                                     node.GetInt(nullptr),
                                     node.SetBool(true),
                                     node.SetInt(1),
                                     node.SetFloat(1),
                                     node.SetEnumIndex(0),
                                     node.SetEnumString(text),
                                     node.SetString(text),
                                     node.SetRegister(text),
                                     node.Execute(0)};
  for (long result : results) EXPECT_EQ(result, ZYN_ERROR_NO_OBJECT);
}

TEST(FreeFunctions, InitAndUnInitReachTheTransport) {
  fakes::FakeTransport transport;
  transport.initResult = -3;
  EXPECT_EQ(ZynSDKInit(), 0);
  EXPECT_EQ(ZynSDKUnInit(), 0);
  EXPECT_EQ(transport.calls.Names(), (std::vector<std::string>{"Init", "UnInit"}));
}

TEST(FreeFunctions, ReachTheOneRegistry) {
  fakes::FakeTransport transport;
  FakeCameraInfo& area = Info("F-area", "Area-1");
  FakeCameraInfo& laser = Info("F-laser", "KEL-LP1");
  transport.present = {&area, &laser};
  transport.byTLType[5] = {&laser};
  ZynCameraArray cameras;
  Zyn3DCameraArray cameras3D;
  std::vector<ZynCamera> all2D;
  std::vector<Zyn3DCamera> all3D;
  ZynCamera camera;
  Zyn3DCamera camera3D;
  EXPECT_EQ(DiscoveryCameras(&cameras), 0);
  EXPECT_EQ(Discovery3DCameras(&cameras3D), 0);
  EXPECT_EQ(DiscoveryAllCameras(&all2D, &all3D), 0);
  EXPECT_EQ(DiscoveryCamera("F-area", &camera), 0);
  EXPECT_EQ(Discovery3DCamera("F-laser", &camera3D), 0);
  ASSERT_EQ(cameras.length(), 1U);
  ASSERT_EQ(cameras3D.length(), 1U);
  ASSERT_EQ(all2D.size(), 1U);
  ASSERT_EQ(all3D.size(), 1U);
  EXPECT_EQ(InternalOf(cameras[0]), InternalOf(camera));
  EXPECT_EQ(InternalOf(all2D[0]), InternalOf(camera));
  EXPECT_EQ(InternalOf(cameras3D[0]), InternalOf(camera3D));
  EXPECT_EQ(InternalOf(all3D[0]), InternalOf(camera3D));
  EXPECT_EQ(DiscoveryCamerasByProtocolType(5, &cameras), 0);
  ASSERT_EQ(cameras.length(), 1U);
  EXPECT_EQ(InternalOf(cameras[0]), InternalOf(camera3D));
  EXPECT_EQ(DiscoveryCamera("F-laser", &camera), ZYN_ERROR_NO_SUCH_CAMERA);
  EXPECT_EQ(DiscoveryCamera(nullptr, &camera), ZYN_ERROR_INVALID_ARGUMENT);
}

TEST(FreeFunctions, CameraLinkTextsReachTheTransport) {
  fakes::FakeTransport transport;
  transport.protocols = {"p"};
  transport.serials = {"s", "t"};
  EXPECT_EQ(GetCLCameraProtocols().length(), 1U);
  EXPECT_EQ(GetCLCameraSerials().length(), 2U);
}

TEST(FreeFunctions, EventHandlersOfBothKindsHearOfTheOneRegistry) {
  fakes::FakeTransport transport;
  transport.present = {&Info("E2", "Area-1"), &Info("E3", "VX7-1")};
  fakes::EventLog log;
  fakes::EventRecorder area(log);
  fakes::EventRecorder laser(log);
  std::promise<void> areaCalled;
  std::promise<void> laserCalled;
  area.hook = [&] { areaCalled.set_value(); };
  laser.hook = [&] { laserCalled.set_value(); };
  EXPECT_EQ(RegisterCameraEventHandler(&area), 0);
  areaCalled.get_future().wait();
  EXPECT_EQ(RegisterCameraEventHandler(nullptr), 0);  // so that the next one has a new thread, and at once
  EXPECT_EQ(Register3DCameraEventHandler(&laser), 0);
  laserCalled.get_future().wait();
  EXPECT_EQ(Register3DCameraEventHandler(nullptr), 0);
  ZynCamera camera;
  Zyn3DCamera camera3D;
  ASSERT_EQ(DiscoveryCamera("E2", &camera), 0);
  ASSERT_EQ(Discovery3DCamera("E3", &camera3D), 0);
  EXPECT_EQ(log.Take(), (std::vector<fakes::CameraEvent>{{InternalOf(camera), 1, false},
                                                         {InternalOf(camera3D), 1, true}}));
}

TEST(ZynCameraHandle, CopiesActOnTheSameDeviceAndOutliveTheOriginal) {
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-copies", "Area-1");
  FakeCamera device;
  transport.present = {&info};
  transport.cameras[&info] = {&device};
  auto original = std::make_unique<ZynCamera>();
  ASSERT_EQ(DiscoveryCamera("H-copies", original.get()), 0);
  ZynCamera copy(*original);
  EXPECT_EQ(original->Open(nullptr), 0);
  EXPECT_TRUE(copy.IsOpen());
  original.reset();
  EXPECT_EQ(device.calls.Count("Close"), 0);
  EXPECT_EQ(copy.StartGrab(ZYN_GRAB_LATEST, 7), 0);
  EXPECT_TRUE(copy.IsGrabbing());
  EXPECT_EQ(device.strategy, KELGENICAM::GRAB_LATEST);
  EXPECT_EQ(device.count, 7);
  EXPECT_EQ(copy.SetGrabTimeout(123), 0);
  fakes::FakeImage frame(4, 3, 1, 10);
  fakes::FakeChunk bytes({1, 2});
  frame.chunks = {&bytes};
  device.Deliver(0, &frame);
  ZynImage image;
  ZynChunkData chunk;
  EXPECT_EQ(copy.GrabImage(&image, &chunk), 0);
  EXPECT_EQ(image.Width(), 4);
  EXPECT_EQ(chunk.getLength(), 2U);
  EXPECT_EQ(device.timeoutMs, 123);
  EXPECT_EQ(copy.StopGrab(), 0);
  EXPECT_FALSE(copy.IsGrabbing());
  EXPECT_EQ(copy.Close(), 0);
  EXPECT_FALSE(copy.IsOpen());
}

TEST(ZynCameraHandle, AttributeBelongsToTheCaller) {
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-attribute", "Area-1");
  transport.present = {&info};
  ZynCamera camera;
  ASSERT_EQ(DiscoveryCamera("H-attribute", &camera), 0);
  const std::unique_ptr<ZynCameraAttribute> attribute(camera.Attribute());
  EXPECT_STREQ(attribute->CameraSerialNumber(), "H-attribute");
  const ZynCameraAttribute copy(*attribute);
  EXPECT_STREQ(copy.CameraModel(), "Area-1");
}

TEST(Zyn3DCameraHandle, OpensWithoutAFileAndCloses) {
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-3D", "VX7");
  FakeCamera device;
  transport.present = {&info};
  transport.cameras[&info] = {&device};
  Zyn3DCamera camera;
  ASSERT_EQ(Discovery3DCamera("H-3D", &camera), 0);
  const std::unique_ptr<ZynCameraAttribute> attribute(camera.Attribute());
  EXPECT_STREQ(attribute->CameraModel(), "VX7");
  EXPECT_EQ(camera.SetGrabTimeout(1), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(camera.Open(), 0);
  EXPECT_TRUE(camera.IsOpen());
  EXPECT_EQ(camera.SetGrabTimeout(0), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.SetGrabTimeout(1), 0);
  EXPECT_EQ(camera.Close(), 0);
  EXPECT_FALSE(camera.IsOpen());
}

TEST(Zyn3DCameraHandle, EveryGrabReachesTheDevice) {
  fakes::LaserNodeMap features;
  features.PutInt("OutlineLengthMax", 1);
  features.PutInt("AcquisitionLineCount", 2);
  features.PutInt("BatchNumber", 2);
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-grabs", "VX7");
  FakeCamera device;
  device.remoteMap.map = features.Map();
  transport.present = {&info};
  transport.cameras[&info] = {&device};
  Zyn3DCamera camera;
  ASSERT_EQ(Discovery3DCamera("H-grabs", &camera), 0);
  ASSERT_EQ(camera.Open(), 0);
  fakes::FakeChunk records({0, 1, 2, 3, 0, 5, 6, 7});
  ZynImage image;
  ZynImage intensity;
  Zyn3DIntArray heights;
  ZynRangeImage range;
  const auto grabOnce = [&](Zyn3DGrabType type, auto grab) {
    fakes::FakeImage frame(4, 3, 1, 10);
    frame.chunks = {&records};
    device.Deliver(0, &frame);
    EXPECT_EQ(camera.StartGrab(type), 0);
    EXPECT_EQ(camera.GetGrabType(), type);
    EXPECT_EQ(grab(), 0);
    EXPECT_EQ(device.timeoutMs, 7);
    EXPECT_EQ(camera.StopGrab(), 0);
    device.isGrabbing = true;  // the type has ended, and not the stream alone
    EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
    device.isGrabbing = false;
  };
  EXPECT_EQ(camera.SetGrabTimeout(7), 0);
  grabOnce(ZYN_3D_GRAB_PROFILE, [&] { return camera.GrabData(&image, &heights, &intensity); });
  EXPECT_EQ(image.Width(), 4);
  EXPECT_EQ(heights[0], 258);
  EXPECT_EQ(intensity.Width(), 2);
  grabOnce(ZYN_3D_GRAB_CONTOUR, [&] { return camera.GrabContour(&heights, &intensity); });
  EXPECT_EQ(heights[0], 515);
  grabOnce(ZYN_3D_GRAB_BATCH, [&] { return camera.GrabBatchData(&range, &intensity); });
  EXPECT_EQ(range.GetValue(1, 0), 1543.0);
  EXPECT_EQ(intensity.Height(), 2);
  EXPECT_EQ(camera.Close(), 0);
}

TEST(Zyn3DCameraHandle, TheBatchCountIsTheCamerasOwn) {
  fakes::LaserNodeMap features;
  fakes::LaserNodeMap others;
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-count", "VX7");
  FakeCamera device;
  device.tlMap.map = device.interfaceMap.map = device.localMap.map = device.streamMap.map = others.Map();
  device.remoteMap.map = features.Map();
  transport.present = {&info};
  transport.cameras[&info] = {&device};
  Zyn3DCamera camera;
  ASSERT_EQ(Discovery3DCamera("H-count", &camera), 0);
  ASSERT_EQ(camera.Open(), 0);
  EXPECT_EQ(camera.SetBatchCount(250), 0);
  int count = 0;
  EXPECT_EQ(camera.GetBatchCount(&count), 0);
  EXPECT_EQ(count, 300);
  EXPECT_EQ(others.GetInt("AcquisitionLineCount"), 0);
  EXPECT_EQ(camera.Close(), 0);
}

TEST(Zyn3DCameraHandle, GivesTheFeaturesThatA2DHandleOnTheSameCameraGives) {
  fakes::LaserNodeMap features;
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-both", "KEL-LP2");
  FakeCamera device;
  device.remoteMap.map = features.Map();
  transport.present = {&info};
  transport.byTLType[1] = {&info};
  transport.cameras[&info] = {&device};
  Zyn3DCamera camera;
  ZynCameraArray cameras;
  ASSERT_EQ(Discovery3DCamera("H-both", &camera), 0);
  ASSERT_EQ(DiscoveryCamerasByProtocolType(1, &cameras), 0);
  ASSERT_EQ(cameras.length(), 1U);
  ASSERT_EQ(camera.Open(), 0);
  ZynNode node;
  ZynNode sameNode;
  EXPECT_EQ(camera.GetNode("BatchNumber", &node), 0);
  EXPECT_EQ(cameras[0].GetRemoteNode("BatchNumber", &sameNode), 0);
  EXPECT_EQ(InternalOf(node), InternalOf(sameNode));
  ZynNodeArray nodes;
  ZynNodeArray sameNodes;
  EXPECT_EQ(camera.GetNodes(&nodes), 0);
  EXPECT_EQ(cameras[0].GetRemoteNodes(&sameNodes), 0);
  ASSERT_GT(nodes.length(), 0U);
  ASSERT_EQ(nodes.length(), sameNodes.length());
  for (int i = 0; i < static_cast<int>(nodes.length()); ++i) {
    EXPECT_EQ(InternalOf(nodes[i]), InternalOf(sameNodes[i])) << i;
  }
  EXPECT_EQ(camera.Close(), 0);
}

TEST(ZynCameraHandle, OpensA3DCameraAsA2DCameraWithItsFile) {
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-2D-of-3D", "KEL-LP3");
  FakeCamera device;
  transport.present = {&info};
  transport.byTLType[1] = {&info};
  transport.cameras[&info] = {&device};
  ZynCameraArray cameras;
  ASSERT_EQ(DiscoveryCamerasByProtocolType(1, &cameras), 0);
  ASSERT_EQ(cameras.length(), 1U);
  EXPECT_EQ(cameras[0].Open("no-such-file"), ZYN_ERROR_CONFIG_FILE);
  Zyn3DCamera camera;
  ASSERT_EQ(Discovery3DCamera("H-2D-of-3D", &camera), 0);
  EXPECT_TRUE(camera.IsOpen());
  EXPECT_EQ(camera.Close(), 0);
  EXPECT_FALSE(cameras[0].IsOpen());
}

TEST(NodeMapFunctions, ReachTheCamera) {
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("N-2D", "Area-1");
  FakeCameraInfo& laser = Info("N-3D", "VX7");
  FakeCamera device;
  FakeCamera device3D;
  transport.present = {&info, &laser};
  transport.cameras[&info] = {&device};
  transport.cameras[&laser] = {&device3D};
  ZynCamera camera;
  Zyn3DCamera camera3D;
  ASSERT_EQ(DiscoveryCamera("N-2D", &camera), 0);
  ASSERT_EQ(Discovery3DCamera("N-3D", &camera3D), 0);
  EXPECT_EQ(Get2DCameraNodeMap(&camera, ZYN_XML_REMOTE_DEVICE), nullptr);  // closed
  camera.Open(nullptr);
  camera3D.Open();
  // Any address will do: nobody looks inside.
  auto* map = reinterpret_cast<GenApi_3_4::INodeMap*>(&device);
  device.streamMap.map = map;
  device3D.localMap.map = map;
  EXPECT_EQ(Get2DCameraNodeMap(&camera, ZYN_XML_DATA_STREAM), map);
  EXPECT_EQ(Get2DCameraNodeMap(&camera, ZYN_XML_LOCAL_DEVICE), nullptr);
  EXPECT_EQ(Get2DCameraNodeMap(&camera, static_cast<ZynXmlSource>(5)), nullptr);
  EXPECT_EQ(Get3DCameraNodeMap(&camera3D, ZYN_XML_LOCAL_DEVICE), map);
  camera.Close();
  camera3D.Close();
}

TEST(NodeMapFunctionsDeathTest, CheckNothing) {
  ZynCamera empty;
  Zyn3DCamera empty3D;
  EXPECT_DEATH(Get2DCameraNodeMap(&empty, ZYN_XML_REMOTE_DEVICE), "");
  EXPECT_DEATH(Get3DCameraNodeMap(&empty3D, ZYN_XML_REMOTE_DEVICE), "");
  EXPECT_DEATH(Get2DCameraNodeMap(nullptr, ZYN_XML_REMOTE_DEVICE), "");
  EXPECT_DEATH(Get3DCameraNodeMap(nullptr, ZYN_XML_REMOTE_DEVICE), "");
}

TEST(ZynCameraHandle, EachFeatureFamilyReachesItsOwnMap) {
  fakes::TestNodeMap map(R"(<Integer Name="Only"><Value>3</Value></Integer>)", {"Only"});
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-families", "Area-1");
  FakeCamera device;
  transport.present = {&info};
  transport.cameras[&info] = {&device};
  ZynCamera camera;
  ASSERT_EQ(DiscoveryCamera("H-families", &camera), 0);
  ASSERT_EQ(camera.Open(nullptr), 0);
  struct Family {
    fakes::FakeNodeMapHolder& holder;
    long (ZynCamera::*one)(const char*, ZynNode*);
    long (ZynCamera::*all)(ZynNodeArray*);
  };
  const Family families[] = {{device.tlMap, &ZynCamera::GetTLNode, &ZynCamera::GetTLNodes},
                             {device.interfaceMap, &ZynCamera::GetIFNode, &ZynCamera::GetIFNodes},
                             {device.localMap, &ZynCamera::GetDevNode, &ZynCamera::GetDevNodes},
                             {device.remoteMap, &ZynCamera::GetRemoteNode, &ZynCamera::GetRemoteNodes},
                             {device.streamMap, &ZynCamera::GetDSNode, &ZynCamera::GetDSNodes}};
  for (const Family& family : families) {
    family.holder.map = map.Map();
    ZynNode node;
    ZynNodeArray nodes;
    EXPECT_EQ((camera.*family.one)("Only", &node), 0);
    EXPECT_STREQ(node.Name(), "Only");
    EXPECT_EQ((camera.*family.all)(&nodes), 0);
    EXPECT_EQ(nodes.length(), 1U);
    family.holder.map = nullptr;
  }
  camera.Close();
}

#if defined(__x86_64__)
// Applications that were built earlier find OnImage in the first place of the handler's virtual table. There a
// pointer to a virtual member is 1 plus the offset of its place.
TEST(IImageHandlerInterface, OnImageIsItsFirstVirtualOperation) {
  const auto operation = &IImageHandler::OnImage;
  std::ptrdiff_t place = 0;
  std::memcpy(&place, &operation, sizeof(place));
  EXPECT_EQ(place, 1);
}
#endif

TEST(ZynCameraHandle, TheHandlerReceivesACopyOfTheHandleAndTheImage) {
  struct Handler : IImageHandler {
    void OnImage(ZynCamera from, ZynImage& image) override {
      camera = InternalOf(from);
      width = image.Width();
      isCalled.count_down();
    }
    void* camera = nullptr;
    int width = 0;
    std::latch isCalled{1};
  };
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-delivery", "Area-1");
  FakeCamera device;
  transport.present = {&info};
  transport.cameras[&info] = {&device};
  ZynCamera camera;
  ASSERT_EQ(DiscoveryCamera("H-delivery", &camera), 0);
  ASSERT_EQ(camera.Open(nullptr), 0);
  Handler handler;
  fakes::FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.RegisterImageHandler(&handler), 0);
  EXPECT_EQ(camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), 0);
  handler.isCalled.wait();
  EXPECT_EQ(camera.StopGrab(), 0);
  EXPECT_EQ(handler.camera, InternalOf(camera));
  EXPECT_EQ(handler.width, 4);
  EXPECT_EQ(camera.RegisterImageHandler(nullptr), 0);
  EXPECT_EQ(camera.Close(), 0);
}

TEST(ZynCameraHandle, CameraLinkParametersReachTheDevice) {
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-param", "Area-1");
  FakeCamera device;
  transport.present = {&info};
  transport.cameras[&info] = {&device};
  ZynCamera camera;
  ASSERT_EQ(DiscoveryCamera("H-param", &camera), 0);
  ASSERT_EQ(camera.Open(nullptr), 0);
  EXPECT_EQ(camera.SetCLCameraParam("Baud", "9600"), 0);
  EXPECT_EQ(device.paramName, "Baud");
  EXPECT_EQ(device.paramValue, "9600");
  EXPECT_EQ(camera.Close(), 0);
}

TEST(ZynCameraHandle, OpenHandsItsFileOn) {
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-file", "Area-1");
  FakeCamera device;
  transport.present = {&info};
  transport.cameras[&info] = {&device};
  ZynCamera camera;
  ASSERT_EQ(DiscoveryCamera("H-file", &camera), 0);
  EXPECT_EQ(camera.Open("no-such-file"), ZYN_ERROR_CONFIG_FILE);
  EXPECT_EQ(camera.Close(), 0);
}

TEST(ZynNodeHandle, TextAndRegisterOperationsReachTheFeatureAndSucceed) {
  fakes::TestNodeMap map;
  fakes::FakeTransport transport;
  FakeCameraInfo& info = Info("H-text", "Area-1");
  FakeCamera device;
  device.remoteMap.map = map.Map();
  transport.present = {&info};
  transport.cameras[&info] = {&device};
  ZynCamera camera;
  ASSERT_EQ(DiscoveryCamera("H-text", &camera), 0);
  ASSERT_EQ(camera.Open(nullptr), 0);
  ZynNode node;
  ASSERT_EQ(camera.GetRemoteNode("Width", &node), 0);
  ZynString text("kept", 4);
  EXPECT_EQ(node.GetString(&text), 0);
  EXPECT_EQ(node.GetRegister(&text), 0);
  EXPECT_EQ(node.SetString(text), 0);
  EXPECT_EQ(node.SetRegister(text), 0);
  EXPECT_STREQ(text.getStr(), "kept");
  camera.Close();
}
