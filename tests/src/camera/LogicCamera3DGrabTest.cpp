#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <future>
#include <latch>
#include <stdexcept>
#include <string>
#include <vector>

#include "LaserCamera.h"

using namespace ZYNSDK;
using fakes::FakeChunk;
using fakes::FakeImage;

namespace {

using Bytes = std::vector<unsigned char>;
using Heights = std::vector<int>;

struct Profile {
  const char* name;
  Bytes records;
  Heights heights;
  Bytes intensities;
};

/// A 3D camera that can be started in either mode of profiles, with one frame of a 4 x 3 sensor image at hand.
class ProfileGrab : public LaserCamera {
 protected:
  ProfileGrab() {
    frame.chunks = {&chunk};
    heights.Append(99);
    unsigned char old[] = {1, 2};
    intensity.CreateImage(old, 1, 2, 1, 1, ZYN_IMAGE_U8);
    image.CreateImage(old, 1, 2, 1, 1, ZYN_IMAGE_U8);
  }

  void Start(Zyn3DGrabType type) {
    mode = type;
    ASSERT_EQ(camera.Start3DGrab(type), ZYN_OK);
    device.calls.Clear();
  }
  long Grab() {
    return mode == ZYN_3D_GRAB_CONTOUR ? camera.Grab3DContour(&heights, &intensity)
                                       : camera.Grab3DData(&image, &heights, &intensity);
  }
  Heights Values() const { return {heights.Data(), heights.Data() + heights.Length()}; }
  bool IntensityIsUntouched() const { return intensity.Height() == 2; }
  bool ImageIsUntouched() const { return image.Height() == 2; }
  void ExpectLine(const Heights& expected, const Bytes& intensities) {
    EXPECT_EQ(Values(), expected);
    ASSERT_EQ(intensity.Width(), static_cast<int>(intensities.size()));
    EXPECT_EQ(intensity.Step(), intensity.Width());
    EXPECT_EQ(intensity.Height(), 1);
    EXPECT_EQ(intensity.Channels(), 1);
    EXPECT_EQ(intensity.BitDepth(), 0);
    EXPECT_EQ(Bytes(intensity.ImageData(), intensity.ImageData() + intensities.size()), intensities);
  }

  Zyn3DGrabType mode = ZYN_3D_GRAB_NONE;
  FakeChunk chunk{{0x00, 0x10, 0x12, 0x34}};
  FakeImage frame{4, 3, 1, 10};
  ZynImage image;
  ZynImage intensity;
  Zyn3DIntArray heights;
};

class ProfileRecords : public ProfileGrab, public testing::WithParamInterface<Profile> {};
class ContourRecords : public ProfileGrab, public testing::WithParamInterface<Profile> {};

// Every pair of height and intensity bytes at once, and more points than any fast path takes in one step.
Profile Many(const char* name, int (*heightOf)(const unsigned char* record)) {
  constexpr int kPoints = 2001;
  Profile profile{name, {}, {}, {}};
  for (int i = 0; i < kPoints; ++i) {
    const unsigned char record[] = {static_cast<unsigned char>(i), static_cast<unsigned char>(i * 7),
                                    static_cast<unsigned char>(i * 13), static_cast<unsigned char>(i * 29)};
    profile.records.insert(profile.records.end(), record, record + 4);
    profile.heights.push_back(heightOf(record));
    profile.intensities.push_back(record[1]);
  }
  return profile;
}

/// One way for a grab to end, whichever the mode.
struct Ending {
  const char* name;
  std::function<void(ProfileGrab& at, FakeImage& frame, FakeChunk& chunk, fakes::FakeCamera& device)> arrange;
  long code;
  long codeOfContour;
};

class EachEnding : public ProfileGrab,
                   public testing::WithParamInterface<std::tuple<Zyn3DGrabType, Ending>> {};

std::function<void(ProfileGrab&, FakeImage&, FakeChunk&, fakes::FakeCamera&)> FrameThrowsIn(
    const char* where) {
  return [where](ProfileGrab&, FakeImage& frame, FakeChunk&, fakes::FakeCamera& device) {
    frame.hook = [where](const std::string& call) {
      if (call == where) throw 42;  // not even a standard exception
    };
    device.Deliver(0, &frame);
  };
}

const std::vector<Ending> kEndings = {
    {"NoFrameInTime",
     [](ProfileGrab&, FakeImage&, FakeChunk&, fakes::FakeCamera& device) { device.grabResult = -1; },
     ZYN_ERROR_GRAB_FAILED, ZYN_ERROR_GRAB_FAILED},
    {"AStreamThatRunsNoMore",
     [](ProfileGrab&, FakeImage&, FakeChunk&, fakes::FakeCamera& device) { device.isGrabbing = false; },
     ZYN_ERROR_NOT_GRABBING, ZYN_ERROR_NOT_GRABBING},
    {"AResultThatPasses",
     [](ProfileGrab&, FakeImage&, FakeChunk&, fakes::FakeCamera& device) { device.grabResult = -7; }, -7, -7},
    {"AFrameWithAFailure",
     [](ProfileGrab&, FakeImage& frame, FakeChunk&, fakes::FakeCamera& device) {
       device.Deliver(-14, &frame);
     },
     ZYN_ERROR_GRAB_FAILED, ZYN_ERROR_GRAB_FAILED},
    {"AFrameWithAFailureOnceTheStreamStopped",
     [](ProfileGrab&, FakeImage& frame, FakeChunk&, fakes::FakeCamera& device) {
       device.hook = [&device](const std::string& call) {
         if (call == "Grab") device.isGrabbing = false;
       };
       device.Deliver(-2, &frame);
     },
     ZYN_ERROR_GRAB_FAILED, ZYN_ERROR_GRAB_FAILED},
    {"SuccessWithoutAFrame",
     [](ProfileGrab&, FakeImage&, FakeChunk&, fakes::FakeCamera& device) { device.Deliver(0, nullptr); },
     ZYN_ERROR_NO_FRAME, ZYN_ERROR_NO_FRAME},
    {"AnExceptionInTheWait",
     [](ProfileGrab&, FakeImage&, FakeChunk&, fakes::FakeCamera& device) {
       device.hook = [](const std::string& call) {
         if (call == "Grab") throw std::runtime_error(call);
       };
     },
     ZYN_ERROR_EXCEPTION, ZYN_ERROR_EXCEPTION},
    {"AnInvalidFrame",
     [](ProfileGrab&, FakeImage& frame, FakeChunk&, fakes::FakeCamera& device) {
       frame.isValid = false;
       device.Deliver(0, &frame);
     },
     ZYN_ERROR_INVALID_FRAME, ZYN_ERROR_INVALID_FRAME},
    {"NoChunks",
     [](ProfileGrab&, FakeImage& frame, FakeChunk&, fakes::FakeCamera& device) {
       frame.chunks.clear();
       device.Deliver(0, &frame);
     },
     ZYN_OK, ZYN_ERROR_NO_CHUNK_DATA},
    {"AMissingChunk",
     [](ProfileGrab&, FakeImage& frame, FakeChunk&, fakes::FakeCamera& device) {
       frame.chunks = {nullptr};
       device.Deliver(0, &frame);
     },
     ZYN_OK, ZYN_ERROR_NO_CHUNK_DATA},
    {"AChunkWithoutData",
     [](ProfileGrab&, FakeImage& frame, FakeChunk& chunk, fakes::FakeCamera& device) {
       chunk.isNull = true;
       device.Deliver(0, &frame);
     },
     ZYN_OK, ZYN_ERROR_NO_CHUNK_DATA},
    {"AnEmptyChunk",
     [](ProfileGrab&, FakeImage& frame, FakeChunk& chunk, fakes::FakeCamera& device) {
       chunk.claimedLength = 0;
       device.Deliver(0, &frame);
     },
     ZYN_OK, ZYN_OK},
    {"AChunkLongerThanAnyArray",
     [](ProfileGrab&, FakeImage& frame, FakeChunk& chunk, fakes::FakeCamera& device) {
       chunk.claimedLength = 4ULL * INT_MAX + 1;
       device.Deliver(0, &frame);
     },
     ZYN_ERROR_INVALID_FRAME, ZYN_ERROR_INVALID_FRAME},
    {"TheLongestChunk",
     [](ProfileGrab&, FakeImage& frame, FakeChunk& chunk, fakes::FakeCamera& device) {
       chunk.claimedLength = ULLONG_MAX;
       device.Deliver(0, &frame);
     },
     ZYN_ERROR_INVALID_FRAME, ZYN_ERROR_INVALID_FRAME},
    {"AnExceptionAboutValidity", FrameThrowsIn("IsValid"), ZYN_ERROR_EXCEPTION, ZYN_ERROR_EXCEPTION},
    {"AnExceptionInTheChunks", FrameThrowsIn("Chunks"), ZYN_ERROR_EXCEPTION, ZYN_ERROR_EXCEPTION},
    {"AnExceptionInTheRelease",
     [](ProfileGrab&, FakeImage& frame, FakeChunk&, fakes::FakeCamera& device) {
       frame.throwsOnRelease = true;
       device.Deliver(0, &frame);
     },
     ZYN_ERROR_EXCEPTION, ZYN_ERROR_EXCEPTION},
};

}  // namespace

TEST_P(ProfileRecords, BecomeHeightsOfTenBitsAndIntensities) {
  Start(ZYN_3D_GRAB_PROFILE);
  FakeChunk records(GetParam().records);
  frame.chunks = {&records};
  device.Deliver(0, &frame);
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectLine(GetParam().heights, GetParam().intensities);
  EXPECT_EQ(frame.Releases(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ProfileRecords,
    testing::Values(Profile{"TwoBitsOfTheIntensityAreTheHighBits", {0x00, 0xff, 0x80, 0x55}, {896}, {255}},
                    Profile{"Largest", {0, 3, 0xff, 0}, {1023}, {3}},
                    Profile{"TheOtherBitsDoNotCount", {0, 0xfc, 1, 0}, {1}, {0xfc}},
                    Profile{"FirstAndLastByteAreNotUsed", {0xff, 0, 0, 0xff}, {0}, {0}},
                    Profile{"InOrder", {0, 1, 2, 3, 0, 5, 6, 7}, {258, 262}, {1, 5}},
                    Profile{"OneByteOfALastPoint", {0, 1, 2, 3, 9}, {258, 0}, {1, 0}},
                    Profile{"TwoBytesOfALastPoint", {0, 1, 2, 3, 9, 0xfe}, {258, 512}, {1, 0xfe}},
                    Profile{"ThreeBytesOfALastPoint", {9, 0xfe, 7}, {519}, {0xfe}},
                    Many("Many",
                         [](const unsigned char* record) { return (record[1] & 3) << 8 | record[2]; })),
    [](const auto& test) { return test.param.name; });

TEST_P(ContourRecords, BecomeHeightsOfSixteenBitsAndIntensities) {
  Start(ZYN_3D_GRAB_CONTOUR);
  FakeChunk records(GetParam().records);
  frame.chunks = {&records};
  device.Deliver(0, &frame);
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectLine(GetParam().heights, GetParam().intensities);
  EXPECT_EQ(frame.Releases(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ContourRecords,
    testing::Values(Profile{"MostSignificantByteFirst", {0x00, 0x10, 0x12, 0x34}, {4660}, {16}},
                    Profile{"Largest", {0, 0xff, 0xff, 0xff}, {65535}, {255}},
                    Profile{"TheFirstByteIsNotUsed", {0xff, 0, 0, 0}, {0}, {0}},
                    Profile{"InOrder", {0, 1, 2, 3, 0, 5, 6, 7}, {515, 1543}, {1, 5}},
                    Profile{"OneByteOfALastPoint", {0, 1, 2, 3, 9}, {515, 0}, {1, 0}},
                    Profile{"TwoBytesOfALastPoint", {0, 1, 2, 3, 9, 0xfe}, {515, 0}, {1, 0xfe}},
                    Profile{"ThreeBytesOfALastPoint", {9, 0xfe, 7}, {1792}, {0xfe}},
                    Many("Many", [](const unsigned char* record) { return record[2] << 8 | record[3]; })),
    [](const auto& test) { return test.param.name; });

TEST_P(EachEnding, HasItsCodeReleasesTheFrameOnceAndLeavesNoHeights) {
  const auto& [type, ending] = GetParam();
  Start(type);
  ending.arrange(*this, frame, chunk, device);
  const long code = type == ZYN_3D_GRAB_CONTOUR ? ending.codeOfContour : ending.code;
  EXPECT_EQ(Grab(), code);
  EXPECT_EQ(heights.Length(), 0);
  // Only a release that fails comes after the delivery.
  if (std::string(ending.name) != "AnExceptionInTheRelease") {
    EXPECT_TRUE(IntensityIsUntouched());
  }
  if (code == ZYN_OK && type == ZYN_3D_GRAB_PROFILE) {
    EXPECT_EQ(image.Width(), 4);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, EachEnding,
                         testing::Combine(testing::Values(ZYN_3D_GRAB_PROFILE, ZYN_3D_GRAB_CONTOUR),
                                          testing::ValuesIn(kEndings)),
                         [](const auto& test) {
                           const bool isContour = std::get<0>(test.param) == ZYN_3D_GRAB_CONTOUR;
                           return std::string(isContour ? "Contour" : "Profile") +
                                  std::get<1>(test.param).name;
                         });

TEST_F(ProfileGrab, ASensorImageComesWithItsShape) {
  Start(ZYN_3D_GRAB_PROFILE);
  FakeImage colored(4, 3, 2, 10);
  colored.chunks = {&chunk};
  device.Deliver(0, &colored);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(image.Width(), 4);
  EXPECT_EQ(image.Height(), 3);
  EXPECT_EQ(image.Step(), 10);
  EXPECT_EQ(image.Channels(), 2);
  EXPECT_EQ(image.BitDepth(), 0);
  EXPECT_EQ(Bytes(image.ImageData(), image.ImageData() + 30), colored.Bytes());
  EXPECT_NE(image.ImageData(), colored.Bytes().data());
}

TEST_F(ProfileGrab, ASensorImageThatCannotBeMadeIsACode) {
  Start(ZYN_3D_GRAB_PROFILE);
  FakeImage shapes[] = {{0, 3, 1, 10}, {4, 0, 1, 10}, {4, 3, 0, 10}, {4, 3, 1, 0}};
  for (FakeImage& shape : shapes) {
    shape.chunks = {&chunk};
    device.Deliver(0, &shape);
    heights.Append(99);
    EXPECT_EQ(Grab(), ZYN_ERROR_NO_SENSOR_IMAGE);
    EXPECT_EQ(shape.Releases(), 1);
    EXPECT_EQ(heights.Length(), 0);
    EXPECT_TRUE(ImageIsUntouched());
    EXPECT_TRUE(IntensityIsUntouched());
  }
}

TEST_F(ProfileGrab, ASensorImageWithoutPixelsIsACode) {
  Start(ZYN_3D_GRAB_PROFILE);
  Bytes().swap(frame.Bytes());
  device.Deliver(0, &frame);
  EXPECT_EQ(Grab(), ZYN_ERROR_NO_SENSOR_IMAGE);
  EXPECT_EQ(frame.Releases(), 1);
  EXPECT_EQ(heights.Length(), 0);
  EXPECT_TRUE(ImageIsUntouched());
  EXPECT_TRUE(IntensityIsUntouched());
}

// As for images of 2D cameras, only zero is refused; what no memory holds is an exception.
TEST_F(ProfileGrab, ASensorImageOfNegativeSizeIsAnException) {
  Start(ZYN_3D_GRAB_PROFILE);
  FakeImage backwards(4, -3, 1, 10);
  backwards.chunks = {&chunk};
  backwards.Bytes().assign(30, 1);
  device.Deliver(0, &backwards);
  EXPECT_EQ(Grab(), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(backwards.Releases(), 1);
  EXPECT_TRUE(ImageIsUntouched());
}

TEST_F(ProfileGrab, ASensorImageThatThrowsIsACode) {
  Start(ZYN_3D_GRAB_PROFILE);
  frame.throwsOnData = true;
  device.Deliver(0, &frame);
  EXPECT_EQ(Grab(), ZYN_ERROR_EXCEPTION);
  EXPECT_TRUE(ImageIsUntouched());
}

TEST_F(ProfileGrab, AContourLooksAtNoPixels) {
  Start(ZYN_3D_GRAB_CONTOUR);
  device.Deliver(0, &frame);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(frame.calls.Count("Data"), 0);
}

TEST_F(ProfileGrab, FurtherChunksAreIgnored) {
  Start(ZYN_3D_GRAB_CONTOUR);
  FakeChunk second({0, 9, 9, 9});
  frame.chunks = {&chunk, &second};
  device.Deliver(0, &frame);
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectLine({0x1234}, {0x10});
}

TEST_F(ProfileGrab, AGrabOfAnotherModeIsRefusedWithoutWaiting) {
  const auto expectRefused = [&](long result) {
    EXPECT_EQ(result, ZYN_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(device.calls.Count("Grab"), 0);
  };
  device.isGrabbing = true;
  expectRefused(camera.Grab3DData(&image, &heights, &intensity));
  expectRefused(camera.Grab3DContour(&heights, &intensity));
  device.isGrabbing = false;
  Start(ZYN_3D_GRAB_CONTOUR);
  expectRefused(camera.Grab3DData(&image, &heights, &intensity));
  EXPECT_EQ(heights.Length(), 0);  // cleared before the mode is looked at
  camera.Stop3DGrab();
  Start(ZYN_3D_GRAB_PROFILE);
  expectRefused(camera.Grab3DContour(&heights, &intensity));
  camera.Stop3DGrab();
  Start(ZYN_3D_GRAB_BATCH);
  expectRefused(camera.Grab3DData(&image, &heights, &intensity));
  expectRefused(camera.Grab3DContour(&heights, &intensity));
}

TEST_F(ProfileGrab, NullIsRefusedBeforeTheHeightsAreCleared) {
  Start(ZYN_3D_GRAB_PROFILE);
  EXPECT_EQ(camera.Grab3DData(nullptr, &heights, &intensity), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.Grab3DData(&image, nullptr, &intensity), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.Grab3DData(&image, &heights, nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.Grab3DContour(nullptr, &intensity), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.Grab3DContour(&heights, nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(heights.Length(), 1);
  EXPECT_TRUE(device.calls.Names().empty());
}

TEST_F(ProfileGrab, OnlyTheGrabWithTheSensorImageAsksWhetherTheCameraIs3D) {
  info.model = "Area-1";
  EXPECT_EQ(camera.Grab3DData(nullptr, &heights, &intensity), ZYN_ERROR_NOT_3D_CAMERA);
  EXPECT_EQ(camera.Grab3DContour(nullptr, &intensity), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.Grab3DContour(&heights, &intensity), ZYN_ERROR_INVALID_ARGUMENT);
  info.model = "VX7";
  Start(ZYN_3D_GRAB_CONTOUR);
  info.model = "Area-1";
  device.Deliver(0, &frame);
  EXPECT_EQ(Grab(), ZYN_OK);
}

TEST_F(ProfileGrab, WaitsAsLongAsTheTimeoutSays) {
  Start(ZYN_3D_GRAB_CONTOUR);
  Grab();
  EXPECT_EQ(device.timeoutMs, 5000);
  EXPECT_EQ(device.calls.Count("Grab"), 1);
  camera.SetGrabTimeout(7);
  Grab();
  EXPECT_EQ(device.timeoutMs, 7);
}

TEST_F(ProfileGrab, TheUnguardedWaitHandsTheFrameToItsCaller) {
  Start(ZYN_3D_GRAB_CONTOUR);
  KELGENICAM::IImage* out = nullptr;
  EXPECT_EQ(camera.Grab3DDataAction(&out, ZYN_3D_GRAB_PROFILE), ZYN_ERROR_INVALID_ARGUMENT);
  device.grabResult = -3;
  EXPECT_EQ(camera.Grab3DDataAction(&out, ZYN_3D_GRAB_CONTOUR), -3);
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab3DDataAction(&out, ZYN_3D_GRAB_CONTOUR), ZYN_OK);
  EXPECT_EQ(out, &frame);
  EXPECT_EQ(frame.Releases(), 0);
  out->Release();
  ThrowIn("Grab");
  EXPECT_THROW(camera.Grab3DDataAction(&out, ZYN_3D_GRAB_CONTOUR), std::runtime_error);
}

TEST_F(ProfileGrab, CopiesOfTheHeightsSeeTheNewOnes) {
  Start(ZYN_3D_GRAB_CONTOUR);
  const Zyn3DIntArray sharing(heights);
  device.Deliver(0, &frame);
  EXPECT_EQ(Grab(), ZYN_OK);
  ASSERT_EQ(sharing.Length(), 1);
  EXPECT_EQ(sharing[0], 0x1234);
}

TEST_F(ProfileGrab, AnIntensityHeldElsewhereStays) {
  Start(ZYN_3D_GRAB_CONTOUR);
  const ZynImage held(intensity);
  device.Deliver(0, &frame);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(held.Height(), 2);
  EXPECT_EQ(held.ImageData()[1], 2);
}

TEST_F(ProfileGrab, StoppingDuringTheWaitReturnsAtOnce) {
  Start(ZYN_3D_GRAB_CONTOUR);
  std::latch entered(1);
  std::latch allowed(1);
  device.hook = [&](const std::string& call) {
    if (call != "Grab") return;
    entered.count_down();
    allowed.wait();
  };
  device.Deliver(0, &frame);
  auto grab = std::async(std::launch::async, [&] { return Grab(); });
  entered.wait();
  EXPECT_EQ(camera.Stop3DGrab(), ZYN_OK);
  allowed.count_down();
  EXPECT_EQ(grab.get(), ZYN_OK);  // the frame was there
  EXPECT_EQ(frame.Releases(), 1);
  EXPECT_EQ(Grab(), ZYN_ERROR_INVALID_ARGUMENT);
}
