// Factories and the owners of what they make.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

const char* const kNodes = "<Integer Name=\"I\"><Value>1</Value></Integer>";

TEST(Factory, SaysWhatItHolds) {
  const CNodeMapFactory empty;
  EXPECT_TRUE(empty.IsEmpty());
  EXPECT_FALSE(empty.IsLoaded() || empty.IsPreprocessed());
  EXPECT_TRUE(empty.IsCameraDescriptionFileDataReleased());
  EXPECT_THROW(CNodeMapFactory().CreateNodeMap(), RuntimeException);
  CNodeMapFactory factory(Description(kNodes).c_str());
  EXPECT_FALSE(factory.IsEmpty());
  EXPECT_TRUE(factory.IsLoaded());
  EXPECT_FALSE(factory.IsPreprocessed() || factory.IsCameraDescriptionFileDataReleased());
  factory.Preprocess();
  EXPECT_TRUE(factory.IsPreprocessed());
  factory.ReleaseCameraDescriptionFileData();
  EXPECT_TRUE(factory.IsCameraDescriptionFileDataReleased());
  CNodeMapRef map(factory.CreateNodeMap());
  CNodeMapRef another(factory.CreateNodeMap());
  EXPECT_EQ(CIntegerPtr(another._GetNode("I"))->GetValue(), 1) << "the text was not needed any more";
  CNodeMapFactory unparsed(Description(kNodes).c_str());
  unparsed.ReleaseCameraDescriptionFileData();
  EXPECT_THROW(unparsed.CreateNodeMap(), RuntimeException);
  EXPECT_TRUE(CNodeMapFactory::ClearCache());
  gcstring_vector versions(1, "old");
  map._GetSupportedSchemaVersions(versions);
  ASSERT_EQ(versions.size(), 2U);
  EXPECT_EQ(versions[0], "1.0");
  EXPECT_EQ(versions[1], "1.1");
}

TEST(Factory, MapsMayUseALockOfTheCaller) {
  GenApi::CLock lock;
  CNodeMapFactory factory(Description(kNodes).c_str());
  CNodeMapRef map(factory.CreateNodeMap(lock));
  EXPECT_EQ(&map._Ptr->GetLock(), &lock);
  CNodeMapRef own(factory.CreateNodeMap());
  EXPECT_NE(&own._Ptr->GetLock(), &lock);
  EXPECT_TRUE(lock.TryLock());
  EXPECT_TRUE(lock.TryLock()) << "it is recursive";
  lock.Unlock();
  lock.Unlock();
}

TEST(Factory, AnEmptyMapHasNoNodes) {
  INodeMap* const map = CNodeMapFactory::CreateEmptyNodeMap();
  EXPECT_EQ(map->GetNumNodes(), 0U);
  EXPECT_EQ(map->GetNode("Device"), nullptr);
  Version_t version = {9, 9, 9};
  uint16_t build = 9;
  CDeviceInfoPtr(map)->GetGenApiVersion(version, build);
  EXPECT_EQ(version.Major, 3);
  EXPECT_EQ(version.Minor, 4);
  EXPECT_EQ(version.SubMinor, 0);
  EXPECT_EQ(build, 0);
  CastToIDestroy(map)->Destroy();
  EXPECT_EQ(CastToIDestroy(nullptr), nullptr);
}

// Counts how often it is told its map.
class Params : public CGeneric_XMLLoaderParams {
 public:
  int initialized = 0;

 protected:
  void _Initialize(INodeMap*) override { ++initialized; }
};

TEST(NodeMapRef, SharesItsMapWithItsCopies) {
  struct Watcher : CNodeCallback {
    Watcher(INode* node, bool& flag) : CNodeCallback(node, cbPostInsideLock), ended(flag) {}
    void operator()(ECallbackType) const override {}
    void Destroy() override {
      ended = true;
      delete this;
    }
    bool& ended;
  };
  bool ended = false;
  CNodeMapRefT<Params> first("Cam");
  EXPECT_EQ(first.initialized, 0);
  first._LoadXMLFromString(Description(kNodes).c_str());
  EXPECT_EQ(first.initialized, 1);
  EXPECT_EQ(first._GetDeviceName(), "Cam");
  first._GetNode("I")->RegisterCallback(new Watcher(first._GetNode("I"), ended));
  {
    CNodeMapRefT<Params> second(first);
    EXPECT_EQ(second.initialized, 1);
    EXPECT_EQ(second._Ptr, first._Ptr);
    CNodeMapRefT<Params> third;
    third = second;
    EXPECT_EQ(third.initialized, 1);
    first._Destroy();
    EXPECT_EQ(first._Ptr, nullptr);
    EXPECT_THROW(first._GetNode("I"), AccessException);
    EXPECT_FALSE(ended) << "others still have it";
    EXPECT_EQ(CIntegerPtr(third._GetNode("I"))->GetValue(), 1);
    EXPECT_THROW(third._LoadXMLFromString(Description(kNodes).c_str()), RuntimeException);
  }
  EXPECT_TRUE(ended);
  first._LoadXMLFromString(Description(kNodes).c_str());
  EXPECT_EQ(CIntegerPtr(first._GetNode("I"))->GetValue(), 1);
}

TEST(NodeMapRef, AFailedLoadLeavesItEmpty) {
  CNodeMapRef map;
  EXPECT_THROW(map._LoadXMLFromString("<"), RuntimeException);
  EXPECT_EQ(map._Ptr, nullptr);
  EXPECT_NO_THROW(map._LoadXMLFromString(Description(kNodes).c_str()));
}

// Throws something that knows nothing of this interface.
class ForeignPort : public MemoryPort {
 public:
  void Read(void*, int64_t, int64_t) override { throw std::runtime_error("unplugged"); }
  void Write(const void*, int64_t, int64_t) override { throw 42; }
};

TEST(Ports, ExceptionsOfTheProgramPassUnchanged) {
  Camera camera(Register("IntReg", "R", 0x10, 1) + "<Float Name=\"F\"><pValue>R</pValue></Float>");
  ForeignPort port;
  camera.map._Connect(&port);
  EXPECT_THROW(camera.Float("F").GetValue(), std::runtime_error);
  EXPECT_THROW(camera.Float("F").SetValue(1), int);
  camera.map._Connect(&camera.port);
  EXPECT_EQ(camera.Float("F").GetValue(), 0) << "and leave nothing behind";
}

// Remembers the nodes it was told about.
class ToldPort : public MemoryPort {
 public:
  void SetPortImpl(IPort* node) override {
    MemoryPort::SetPortImpl(node);
    ++told;
    last = node;
  }
  int told = 0;
  IPort* last = nullptr;
};

TEST(Ports, EachIsConnectedByItsNameAndToldItsNodeOnce) {
  CNodeMapRef map;
  map._LoadXMLFromString(
      ("<RegisterDescription><Port Name=\"Device\"/><Port Name=\"TLPort\"/>" +
       Register("IntReg", "OfDevice", 0, 1) +
       "<IntReg Name=\"OfTL\"><Address>0</Address><Length>1</Length><pPort>TLPort</pPort></IntReg>"
       "</RegisterDescription>")
          .c_str());
  ToldPort device;
  ToldPort layer;
  device.bytes[0] = 1;
  layer.bytes[0] = 2;
  EXPECT_EQ(map._GetNode("OfDevice")->GetAccessMode(), NI);
  EXPECT_TRUE(map._Connect(&device));
  EXPECT_EQ(map._GetNode("OfTL")->GetAccessMode(), NI);
  EXPECT_TRUE(map._Connect(&layer, "TLPort"));
  EXPECT_EQ(device.reads + layer.reads, 0) << "connecting asks the device nothing";
  EXPECT_EQ(CIntegerPtr(map._GetNode("OfDevice"))->GetValue(), 1);
  EXPECT_EQ(CIntegerPtr(map._GetNode("OfTL"))->GetValue(), 2);
  EXPECT_EQ(device.told, 1);
  EXPECT_EQ(layer.told, 1);
  EXPECT_EQ(dynamic_cast<INode*>(layer.last), map._GetNode("TLPort"));
  EXPECT_TRUE(map._Connect(static_cast<IPort*>(nullptr), "TLPort"));
  EXPECT_EQ(map._GetNode("OfTL")->GetAccessMode(), NI);
  EXPECT_EQ(map._GetNode("OfDevice")->GetAccessMode(), RW);
  EXPECT_FALSE(map._Connect(&layer, "Nowhere"));
  EXPECT_EQ(device.GetSwapEndianess(), No);
}

}  // namespace
