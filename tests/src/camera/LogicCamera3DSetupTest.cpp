#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>
#include <vector>

#include "LaserCamera.h"
#include "ProcessUsage.h"

using namespace ZYNSDK;

namespace {

using Written = std::vector<std::pair<std::string, int>>;

class LogicCamera3DSetup : public LaserCamera {};

struct Mode {
  const char* name;
  Zyn3DGrabType type;
  Written features;
};

class EachMode : public LaserCamera, public testing::WithParamInterface<Mode> {};

struct Geometry {
  const char* name;
  int outlineLength;
  int lineCount;
  int batchNumber;
  long result;
};

class EachGeometry : public LaserCamera, public testing::WithParamInterface<Geometry> {};

const auto kName = [](const auto& test) { return test.param.name; };

}  // namespace

TEST_P(EachMode, WritesItsFourFeaturesInOrderAndStarts) {
  EXPECT_EQ(camera.Start3DGrab(GetParam().type), ZYN_OK);
  EXPECT_EQ(Features().Written(), GetParam().features);
  EXPECT_EQ(camera.GetGrabType(), GetParam().type);
  EXPECT_EQ(device.strategy, KELGENICAM::GRAB_ONE_BY_ONE);
  EXPECT_EQ(device.count, -1);
}

// Stopping leaves the features as the mode set them, and the next start does not trust what it finds.
TEST_P(EachMode, WritesAllFourFeaturesAgainAtTheNextStart) {
  EXPECT_EQ(camera.Start3DGrab(GetParam().type), ZYN_OK);
  EXPECT_EQ(camera.Stop3DGrab(), ZYN_OK);
  EXPECT_EQ(Features().Written(), GetParam().features);
  EXPECT_EQ(camera.Start3DGrab(GetParam().type), ZYN_OK);
  Written twice = GetParam().features;
  twice.insert(twice.end(), GetParam().features.begin(), GetParam().features.end());
  EXPECT_EQ(Features().Written(), twice);
}

INSTANTIATE_TEST_SUITE_P(
    Table, EachMode,
    testing::Values(
        Mode{"Profile",
             ZYN_3D_GRAB_PROFILE,
             {{"EnableExtraction", 1}, {"EnableImage", 1}, {"EnableCalibration", 0}, {"BatchEnable", 0}}},
        Mode{"Contour",
             ZYN_3D_GRAB_CONTOUR,
             {{"EnableExtraction", 1}, {"EnableImage", 0}, {"EnableCalibration", 1}, {"BatchEnable", 0}}},
        Mode{"Batch",
             ZYN_3D_GRAB_BATCH,
             {{"EnableExtraction", 1}, {"EnableImage", 0}, {"EnableCalibration", 1}, {"BatchEnable", 1}}}),
    kName);

TEST(Zyn3DGrabTypes, HaveTheirNumbers) {
  EXPECT_EQ(ZYN_3D_GRAB_NONE, 0);
  EXPECT_EQ(ZYN_3D_GRAB_PROFILE, 1);
  EXPECT_EQ(ZYN_3D_GRAB_CONTOUR, 2);
  EXPECT_EQ(ZYN_3D_GRAB_BATCH, 3);
}

TEST_F(LogicCamera3DSetup, ATypeThatIsNoModeIsRefusedBeforeAnythingIsWritten) {
  for (int type : {0, 4, -1, INT_MAX}) {
    EXPECT_EQ(camera.Start3DGrab(static_cast<Zyn3DGrabType>(type)), ZYN_ERROR_INVALID_ARGUMENT);
  }
  EXPECT_TRUE(Features().Written().empty());
  EXPECT_EQ(device.calls.Count("StartGrabbing"), 0);
}

TEST_F(LogicCamera3DSetup, AGrabbingCameraIsRefusedBeforeTheTypeIsLookedAt) {
  device.isGrabbing = true;
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_NONE), ZYN_ERROR_ALREADY_GRABBING);
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_BATCH), ZYN_ERROR_ALREADY_GRABBING);
  EXPECT_TRUE(Features().Written().empty());
}

TEST_F(LogicCamera3DSetup, AClosedCameraIsRefusedBeforeTheTypeIsLookedAt) {
  camera.Close3D();
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_NONE), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_CONTOUR), ZYN_ERROR_NOT_OPEN);
}

TEST_F(LogicCamera3DSetup, ACameraThatIsNot3DIsRefusedFirst) {
  info.model = "Area-1";
  device.calls.Clear();
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_NONE), ZYN_ERROR_NOT_3D_CAMERA);
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_CONTOUR), ZYN_ERROR_NOT_3D_CAMERA);
  EXPECT_EQ(camera.Stop3DGrab(), ZYN_ERROR_NOT_3D_CAMERA);
  EXPECT_TRUE(device.calls.Names().empty());
}

TEST_F(LogicCamera3DSetup, ACameraWithoutAModeFeatureStarts) {
  for (const char* name : {"EnableExtraction", "EnableImage", "EnableCalibration", "BatchEnable"}) {
    OfferWithout(name);
    EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_PROFILE), ZYN_OK) << name;
    EXPECT_EQ(Features().Written().size(), 3U) << name;
    EXPECT_EQ(camera.Stop3DGrab(), ZYN_OK);
  }
}

TEST_F(LogicCamera3DSetup, AnExceptionInAWriteEndsTheStart) {
  Features().port.failsToWrite = true;
  EXPECT_THROW(camera.Start3DGrabAction(ZYN_3D_GRAB_CONTOUR), GenICam::GenericException);
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_CONTOUR), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(device.calls.Count("StartGrabbing"), 0);
  device.isGrabbing = true;
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
}

TEST_F(LogicCamera3DSetup, AnExceptionInTheGeometryEndsTheStart) {
  // An integer that cannot be read is 0; only the sizes let exceptions through.
  device.hook = [this](const std::string& call) {
    if (call == "RemoteDeviceNodeMap" && Features().Written().size() == 4) Features().port.failingReads = 100;
  };
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_BATCH), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(device.calls.Count("StartGrabbing"), 0);
}

TEST_F(LogicCamera3DSetup, AStreamThatDoesNotStartLeavesTheType) {
  device.startResult = -21;
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_CONTOUR), -21);
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
  device.isGrabbing = true;
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_CONTOUR);
}

// A handler can be registered through a 2D handle on the same camera.
TEST_F(LogicCamera3DSetup, NoImageHandlerIsServed) {
  struct Handler : IImageHandler {
    void OnImage(ZynCamera /*camera*/, ZynImage& /*image*/) override { ADD_FAILURE(); }
  } handler;
  camera.RegisterImageHandler(&handler);
  for (Zyn3DGrabType type : {ZYN_3D_GRAB_PROFILE, ZYN_3D_GRAB_CONTOUR, ZYN_3D_GRAB_BATCH}) {
    const std::size_t threads = zyntest::CurrentUsage().threads;
    EXPECT_EQ(camera.Start3DGrab(type), ZYN_OK);
    EXPECT_LE(zyntest::CurrentUsage().threads, threads);
    EXPECT_EQ(camera.Stop3DGrab(), ZYN_OK);
  }
  camera.RegisterImageHandler(nullptr);
  EXPECT_EQ(device.calls.Count("Grab"), 0);
}

TEST_F(LogicCamera3DSetup, AStreamThatDoesNotComeUpIsACode) {
  device.comesUp = false;
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_PROFILE), ZYN_ERROR_START_FAILED);
}

TEST_F(LogicCamera3DSetup, StoppingEndsTheType) {
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_CONTOUR), ZYN_OK);
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_CONTOUR);
  EXPECT_EQ(camera.Stop3DGrab(), ZYN_OK);
  EXPECT_EQ(device.calls.Count("StopGrabbing"), 1);
  device.isGrabbing = true;
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
}

TEST_F(LogicCamera3DSetup, StoppingAClosedCameraSaysSoAndEndsTheType) {
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_CONTOUR), ZYN_OK);
  camera.Close3D();
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
  EXPECT_EQ(camera.Stop3DGrab(), ZYN_ERROR_NOT_GRABBING);
  camera.Open3D();
  reopened.isGrabbing = true;
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
}

TEST_F(LogicCamera3DSetup, AStopThatThrowsKeepsTheType) {
  camera.Start3DGrab(ZYN_3D_GRAB_CONTOUR);
  ThrowIn("StopGrabbing");
  EXPECT_EQ(camera.Stop3DGrab(), ZYN_ERROR_EXCEPTION);
  EXPECT_THROW(camera.Stop3DGrabAction(), std::runtime_error);
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_CONTOUR);
}

TEST_F(LogicCamera3DSetup, AQueryThatThrowsSaysNone) {
  camera.Start3DGrab(ZYN_3D_GRAB_CONTOUR);
  Zyn3DGrabType type = ZYN_3D_GRAB_BATCH;
  EXPECT_EQ(camera.GetGrabTypeAction(type), ZYN_OK);
  EXPECT_EQ(type, ZYN_3D_GRAB_CONTOUR);
  ThrowIn("IsGrabbing");
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
  EXPECT_THROW(camera.GetGrabTypeAction(type), std::runtime_error);
  EXPECT_EQ(type, ZYN_3D_GRAB_NONE);
}

TEST_F(LogicCamera3DSetup, OnlyAStopOf3DEndsTheType) {
  camera.Start3DGrab(ZYN_3D_GRAB_CONTOUR);
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
  EXPECT_EQ(camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), ZYN_OK);
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_CONTOUR);
}

TEST_P(EachGeometry, StartsOrIsRefusedBeforeTheStreamStarts) {
  SetGeometry(GetParam().outlineLength, GetParam().lineCount, GetParam().batchNumber);
  EXPECT_EQ(camera.Start3DGrab(ZYN_3D_GRAB_BATCH), GetParam().result);
  EXPECT_EQ(camera.GetGrabType(), GetParam().result == ZYN_OK ? ZYN_3D_GRAB_BATCH : ZYN_3D_GRAB_NONE);
  EXPECT_EQ(device.calls.Count("StartGrabbing"), GetParam().result == ZYN_OK ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    Table, EachGeometry,
    testing::Values(Geometry{"Usual", 2000, 4000, 100, ZYN_OK}, Geometry{"NoPoints", 0, 4000, 100, ZYN_OK},
                    Geometry{"NoLines", 2000, 0, 100, ZYN_OK}, Geometry{"NoBatch", 2000, 4000, 0, ZYN_OK},
                    Geometry{"NegativeBatch", 2000, 4000, -100, ZYN_OK},
                    Geometry{"LargestThatARangeImageHolds", 32767, 32769, 100, ZYN_OK},
                    Geometry{"OneLineMore", 32767, 32770, 100, ZYN_ERROR_EXCEPTION},
                    Geometry{"NegativePoints", -1, 4000, 100, ZYN_ERROR_EXCEPTION},
                    Geometry{"NegativeLines", 2000, -1, 100, ZYN_ERROR_EXCEPTION},
                    Geometry{"BothNegative", -2000, -4000, 100, ZYN_ERROR_EXCEPTION},
                    Geometry{"SmallestNumbers", INT_MIN, INT_MIN, INT_MIN, ZYN_ERROR_EXCEPTION},
                    Geometry{"LargestNumbers", INT_MAX, INT_MAX, INT_MAX, ZYN_ERROR_EXCEPTION},
                    Geometry{"ProductWrapsToZero", 65536, 65536, 100, ZYN_ERROR_EXCEPTION},
                    Geometry{"ProductWrapsToOne", 65537, 65535, 100, ZYN_ERROR_EXCEPTION}),
    kName);
