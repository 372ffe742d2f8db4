#include "CameraNode.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "FakeTransport.h"
#include "LogicCamera.h"
#include "SetWrapperValue.h"
#include "TestNodeMap.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::MemoryPort;

namespace {

// An open camera, and handles on its features as an application has them.
class CameraNodeTest : public testing::Test {
 protected:
  CameraNodeTest() {
    transport.cameras[&info] = {&device};
    camera.Open(nullptr);
    device.remoteMap.map = area.Map();
  }
  ~CameraNodeTest() override { camera.Close(); }

  ZynNode On(const char* name) {
    ZynNode node;
    EXPECT_EQ(camera.GetRemoteNode(name, &node), ZYN_OK) << name;
    return node;
  }

  fakes::TestNodeMap area;
  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera device;
  LogicCamera camera{&info};
  bool flag = false;
  int integer = -7, minimum = -7, maximum = -7, increment = -7;
  float real = -7, realMin = -7, realMax = -7, realInc = -7;
  ZynString text;
  ZynStringArray texts;
};

// For each type, which operations its nodes accept.
struct AcceptCase {
  const char* name;
  ZynNodeType type;
  bool boolean, number, setNumber, enumeration, command;
};

class Accepted : public CameraNodeTest, public testing::WithParamInterface<AcceptCase> {
 protected:
  // The stored type alone decides, so the feature behind it need not exist.
  CameraNode node{&camera, "Nothing", "Nothing", GetParam().type, ZYN_XML_REMOTE_DEVICE};
  static long Code(bool isAccepted) {
    return isAccepted ? ZYN_ERROR_NO_SUCH_NODE : ZYN_ERROR_WRONG_NODE_TYPE;
  }
};

}  // namespace

TEST_P(Accepted, OnlyWhatFitsTheType) {
  const AcceptCase& accepts = GetParam();
  EXPECT_EQ(node.GetBool(&flag), Code(accepts.boolean));
  EXPECT_EQ(node.SetBool(true), Code(accepts.boolean));
  EXPECT_EQ(node.GetInt(&integer, nullptr, nullptr, nullptr), Code(accepts.number));
  EXPECT_EQ(node.GetFloat(&real, nullptr, nullptr, nullptr), Code(accepts.number));
  EXPECT_EQ(integer, accepts.number ? 0 : -7);  // written also on failure, but not for another type
  EXPECT_EQ(real, accepts.number ? 0.0F : -7.0F);
  EXPECT_EQ(node.SetInt(1), Code(accepts.setNumber));
  EXPECT_EQ(node.SetFloat(1), Code(accepts.number));
  EXPECT_EQ(node.GetEnumString(&text, &texts), Code(accepts.enumeration));
  EXPECT_EQ(node.GetEnumIndex(&integer, &texts), ZYN_ERROR_WRONG_NODE_TYPE);  // a failed read says so too
  EXPECT_EQ(node.SetEnumIndex(0), Code(accepts.enumeration));
  EXPECT_EQ(node.SetEnumString("x"), Code(accepts.enumeration));
  EXPECT_EQ(node.Execute(0), Code(accepts.command));
}

TEST_P(Accepted, PointersAreTestedBeforeTheType) {
  EXPECT_EQ(node.GetBool(nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(node.GetInt(nullptr, nullptr, nullptr, nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(node.GetFloat(nullptr, nullptr, nullptr, nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(node.GetEnumString(nullptr, &texts), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(node.GetEnumIndex(nullptr, &texts), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(node.SetEnumString(nullptr), ZYN_ERROR_INVALID_ARGUMENT);
}

TEST_P(Accepted, TextAndRegisterOperationsDoNothingAndSucceed) {
  text = "kept";
  EXPECT_EQ(node.GetString(&text), ZYN_OK);
  EXPECT_EQ(node.GetRegister(&text), ZYN_OK);
  EXPECT_EQ(node.GetString(nullptr), ZYN_OK);
  EXPECT_EQ(node.GetRegister(nullptr), ZYN_OK);
  EXPECT_EQ(node.SetString(text), ZYN_OK);
  EXPECT_EQ(node.SetRegister(text), ZYN_OK);
  EXPECT_STREQ(text.getStr(), "kept");
}

INSTANTIATE_TEST_SUITE_P(
    Table, Accepted,
    testing::Values(AcceptCase{"Unknown", ZYN_NODE_UNKNOWN, false, false, false, false, false},
                    AcceptCase{"Boolean", ZYN_NODE_BOOLEAN, true, false, false, false, false},
                    AcceptCase{"Integer", ZYN_NODE_INTEGER, false, true, true, false, false},
                    AcceptCase{"Float", ZYN_NODE_FLOAT, false, true, true, false, false},
                    AcceptCase{"Enumeration", ZYN_NODE_ENUMERATION, false, false, true, true, false},
                    AcceptCase{"Command", ZYN_NODE_COMMAND, false, false, false, false, true},
                    AcceptCase{"String", ZYN_NODE_STRING, false, false, false, false, false},
                    AcceptCase{"Register", ZYN_NODE_REGISTER, false, false, false, false, false},
                    AcceptCase{"Other", ZYN_NODE_OTHER, false, false, false, false, false}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(CameraNodeTest, HasItsNameAndType) {
  const ZynNode node = On("Gain");
  EXPECT_STREQ(node.Name(), "Gain");  // not "GainRaw"
  EXPECT_EQ(node.Type(), ZYN_NODE_INTEGER);
}

TEST_F(CameraNodeTest, BooleansAreReadAndWritten) {
  ZynNode node = On("Flag");
  EXPECT_EQ(node.SetBool(true), ZYN_OK);
  EXPECT_EQ(node.GetBool(&flag), ZYN_OK);
  EXPECT_TRUE(flag);
}

TEST_F(CameraNodeTest, AnIntegerReadsAsIntegerAndAsFloat) {
  ZynNode node = On("Width");
  EXPECT_EQ(node.GetInt(&integer, &minimum, &maximum, &increment), ZYN_OK);
  EXPECT_EQ(integer, 640);
  EXPECT_EQ(minimum, 16);
  EXPECT_EQ(maximum, 4096);
  EXPECT_EQ(increment, 8);
  EXPECT_EQ(node.GetFloat(&real, &realMin, &realMax, &realInc), ZYN_OK);
  EXPECT_EQ(real, 640.0F);
  EXPECT_EQ(realMin, 16.0F);
  EXPECT_EQ(realMax, 4096.0F);
  EXPECT_EQ(realInc, 8.0F);
}

TEST_F(CameraNodeTest, AFloatReadsAsFloatAndCutOffAsInteger) {
  ZynNode node = On("Stepped");
  EXPECT_EQ(node.SetFloat(2.5F), ZYN_OK);
  EXPECT_EQ(node.GetFloat(&real, &realMin, &realMax, &realInc), ZYN_OK);
  EXPECT_EQ(real, 2.5F);
  EXPECT_EQ(realInc, 0.5F);
  EXPECT_EQ(node.GetInt(&integer, &minimum, &maximum, &increment), ZYN_OK);
  EXPECT_EQ(integer, 2);
  EXPECT_EQ(maximum, 100);
  EXPECT_EQ(increment, 0);
}

TEST_F(CameraNodeTest, CuttingOffGoesTowardsZeroAndStaysInRange) {
  ZynNode node = On("Negative");
  EXPECT_EQ(node.GetInt(&integer, &minimum, &maximum, nullptr), ZYN_OK);
  EXPECT_EQ(integer, -2);
  EXPECT_EQ(minimum, std::numeric_limits<int>::min());
  EXPECT_EQ(maximum, std::numeric_limits<int>::max());
}

TEST_F(CameraNodeTest, LimitsAreOptional) {
  ZynNode node = On("Width");
  EXPECT_EQ(node.GetInt(&integer), ZYN_OK);
  EXPECT_EQ(node.GetFloat(&real), ZYN_OK);
  EXPECT_EQ(node.GetInt(&integer, nullptr, &maximum, nullptr), ZYN_OK);
  EXPECT_EQ(maximum, 4096);
}

TEST_F(CameraNodeTest, AFailedReadStillWritesZeros) {
  ZynNode node = On("Volatile");
  area.port.failingReads = 100;
  EXPECT_EQ(node.GetInt(&integer, &minimum, &maximum, &increment), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(integer, 0);
  EXPECT_EQ(maximum, 0);
  area.port.failingReads = 100;
  ZynNode realNode = On("VolatileFloat");
  EXPECT_EQ(realNode.GetFloat(&real, &realMin, nullptr, nullptr), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(real, 0.0F);
  EXPECT_EQ(realMin, 0.0F);
  area.port.failingReads = 0;
}

TEST_F(CameraNodeTest, SetIntWritesIntegersFloatsAndEnumerations) {
  EXPECT_EQ(On("Width").SetInt(800), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kWidth), 800U);
  ZynNode stepped = On("Stepped");
  EXPECT_EQ(stepped.SetInt(3), ZYN_OK);
  stepped.GetFloat(&real);
  EXPECT_EQ(real, 3.0F);
  EXPECT_EQ(On("Mode").SetInt(3), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kMode), 15U);  // the fourth entry
}

TEST_F(CameraNodeTest, SetFloatCutsOffForIntegers) {
  EXPECT_EQ(On("GainRaw").SetFloat(2.9F), ZYN_OK);
  On("GainRaw").GetInt(&integer);
  EXPECT_EQ(integer, 2);
}

TEST_F(CameraNodeTest, ARefusedWriteIsACode) {
  EXPECT_EQ(On("Width").SetInt(5000), ZYN_ERROR_EXCEPTION);
  area.port.failsToWrite = true;
  EXPECT_EQ(On("Flag").SetBool(true), ZYN_ERROR_EXCEPTION);
}

TEST_F(CameraNodeTest, EnumerationsAreReadByNameAndIndex) {
  ZynNode node = On("Mode");
  EXPECT_EQ(node.GetEnumString(&text, &texts), ZYN_OK);
  EXPECT_STREQ(text.getStr(), "Second");
  EXPECT_EQ(texts.length(), 4U);
  EXPECT_EQ(node.GetEnumString(&text, nullptr), ZYN_OK);
  texts.clear();
  EXPECT_EQ(node.GetEnumIndex(&integer, &texts), ZYN_OK);
  EXPECT_EQ(integer, 1);  // counted among the available entries
  EXPECT_EQ(texts.length(), 4U);
  EXPECT_EQ(node.GetEnumIndex(&integer, nullptr), ZYN_OK);
}

TEST_F(CameraNodeTest, ACurrentValueThatIsNoEntryIsWrongType) {
  area.port.Put(MemoryPort::kMode, 12);  // the entry that is not available
  EXPECT_EQ(On("Mode").GetEnumIndex(&integer, nullptr), ZYN_ERROR_WRONG_NODE_TYPE);
  EXPECT_EQ(integer, -1);
}

TEST_F(CameraNodeTest, TheIndexOfAnotherTypeIsLeftAlone) {
  integer = 77;
  EXPECT_EQ(On("Width").GetEnumIndex(&integer, nullptr), ZYN_ERROR_WRONG_NODE_TYPE);
  EXPECT_EQ(integer, 77);
}

TEST_F(CameraNodeTest, AFailedReadOfTheIndexSaysWrongType) {
  ZynNode node = On("VolatileMode");
  area.port.failingReads = 100;
  EXPECT_EQ(node.GetEnumIndex(&integer, &texts), ZYN_ERROR_WRONG_NODE_TYPE);
  EXPECT_EQ(integer, -1);
  EXPECT_EQ(node.SetEnumIndex(0), ZYN_ERROR_EXCEPTION);  // this one tells the cause
  area.port.failingReads = 0;
}

TEST_F(CameraNodeTest, EnumerationsAreWrittenByNameAndIndex) {
  ZynNode node = On("Mode");
  text = "Third";
  EXPECT_EQ(node.SetEnumString(text), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kMode), 14U);
  EXPECT_EQ(node.SetEnumIndex(0), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kMode), 10U);
  EXPECT_EQ(node.SetEnumIndex(3), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kMode), 15U);
  EXPECT_EQ(node.SetEnumIndex(4), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(node.SetEnumIndex(-1), ZYN_ERROR_INVALID_ARGUMENT);
  text = "Fifth";
  EXPECT_EQ(node.SetEnumString(text), ZYN_ERROR_EXCEPTION);
}

TEST_F(CameraNodeTest, CommandsAreExecuted) {
  ZynNode node = On("Reset");
  EXPECT_EQ(node.Execute(0), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kCommand), 1U);
  EXPECT_EQ(node.Execute(0), -1);
}

TEST_F(CameraNodeTest, HandlesOfBothKindsOfCameraReachTheSameNode) {
  ZynCamera handle;
  Zyn3DCamera handle3D;
  SetWrapperValue(&handle, &camera, true);
  SetWrapperValue(&handle3D, &camera, true);
  ZynNode node;
  ZynNode node3D;
  EXPECT_EQ(handle.GetRemoteNode("Width", &node), ZYN_OK);
  EXPECT_EQ(handle3D.GetNode("Width", &node3D), ZYN_OK);
  EXPECT_EQ(node.SetInt(800), ZYN_OK);
  EXPECT_EQ(node3D.GetInt(&integer), ZYN_OK);
  EXPECT_EQ(integer, 800);
  ZynNodeArray nodes;
  ZynNodeArray nodes3D;
  EXPECT_EQ(handle.GetRemoteNodes(&nodes), ZYN_OK);
  EXPECT_EQ(handle3D.GetNodes(&nodes3D), ZYN_OK);
  EXPECT_EQ(nodes.length(), nodes3D.length());
}
