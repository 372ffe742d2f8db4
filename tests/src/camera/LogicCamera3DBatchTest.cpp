#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <functional>
#include <future>
#include <latch>
#include <list>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "LaserCamera.h"

using namespace ZYNSDK;
using fakes::FakeChunk;
using fakes::FakeImage;

namespace {

using Bytes = std::vector<unsigned char>;
using Heights = std::vector<std::uint16_t>;

// The points of a scan are numbered through; every number has its height and its intensity.
std::uint16_t HeightOf(int point) {
  return static_cast<std::uint16_t>(point * 259 + 4660);
}
unsigned char IntensityOf(int point) {
  return static_cast<unsigned char>(point % 251 + 1);
}

Bytes Records(int firstPoint, int points) {
  Bytes records;
  for (int point = firstPoint; point < firstPoint + points; ++point) {
    const unsigned char record[] = {0xee, IntensityOf(point),
                                    static_cast<unsigned char>(HeightOf(point) >> 8),
                                    static_cast<unsigned char>(HeightOf(point))};
    records.insert(records.end(), record, record + 4);
  }
  return records;
}

/// One frame of a scan.
struct Frame {
  Frame(long long id, Bytes records) : chunk(std::move(records)) {
    image.id = id;
    image.chunks = {&chunk};
  }
  FakeChunk chunk;
  FakeImage image{0, 0, 0, 0};
};

/// A camera that was not started yet: scans of 10 lines of 5 points, 4 lines in a frame.
class BatchGrab : public LaserCamera {
 protected:
  long Start() { return camera.Start3DGrab(ZYN_3D_GRAB_BATCH); }
  long Grab() { return camera.Grab3DBatchData(&range, &intensity); }

  Frame& Deliver(long long id, int firstPoint, int points) {
    Frame& frame = frames.emplace_back(id, Records(firstPoint, points));
    device.Deliver(0, &frame.image);
    return frame;
  }
  Heights Values() const {
    const auto* data = static_cast<const std::uint16_t*>(range.Data());
    return {data, data + static_cast<std::ptrdiff_t>(range.Width()) * range.Height()};
  }
  Bytes Intensities() const {
    return {intensity.ImageData(),
            intensity.ImageData() + static_cast<std::ptrdiff_t>(intensity.Step()) * intensity.Height()};
  }

  // The points [first, first + points) of the scan delivered last are those from `point` on.
  void ExpectPoints(int first, int points, int point) {
    const Heights heights = Values();
    const Bytes intensities = Intensities();
    ASSERT_GE(heights.size(), static_cast<std::size_t>(first + points));
    ASSERT_EQ(heights.size(), intensities.size());
    for (int i = 0; i < points; ++i) {
      ASSERT_EQ(heights[static_cast<std::size_t>(first + i)], HeightOf(point + i)) << first + i;
      ASSERT_EQ(intensities[static_cast<std::size_t>(first + i)], IntensityOf(point + i)) << first + i;
    }
  }
  void ExpectZeros(int first, int points) {
    for (int i = first; i < first + points; ++i) {
      ASSERT_EQ(Values().at(static_cast<std::size_t>(i)), 0) << i;
      ASSERT_EQ(Intensities().at(static_cast<std::size_t>(i)), 0) << i;
    }
  }

  std::list<Frame> frames;
  ZynRangeImage range;
  ZynImage intensity;
};

/// One way for a frame to end a grab.
struct Failure {
  const char* name;
  std::function<void(Frame& frame, fakes::FakeCamera& device)> arrange;
  long code;
};

class EachFailure : public BatchGrab, public testing::WithParamInterface<Failure> {};

std::function<void(Frame&, fakes::FakeCamera&)> FrameThrowsIn(const char* where) {
  return [where](Frame& frame, fakes::FakeCamera& device) {
    frame.image.hook = [where](const std::string& call) {
      if (call == where) throw 42;
    };
    device.Deliver(0, &frame.image);
  };
}

/// A frame that is not one batch.
struct Size {
  const char* name;
  int points;
  int bytesMore;
};

class EachWrongSize : public BatchGrab, public testing::WithParamInterface<Size> {};

struct Count {
  const char* name;
  int asked;
  long result;
  std::vector<std::pair<std::string, int>> written;
};

class EachCount : public BatchGrab, public testing::WithParamInterface<Count> {};

Count Accepted(const char* name, int asked, int lines, int batchNumber) {
  return {name,
          asked,
          ZYN_OK,
          {{"AcquisitionFrameCount", lines}, {"AcquisitionLineCount", lines}, {"BatchNumber", batchNumber}}};
}

Count Refused(const char* name, int asked) {
  return {name, asked, ZYN_ERROR_INVALID_ARGUMENT, {}};
}

const auto kName = [](const auto& test) { return test.param.name; };

}  // namespace

TEST_F(BatchGrab, AWholeScanIsDelivered) {
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20);
  Deliver(1, 20, 20);
  Deliver(1, 40, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Width(), 5);
  EXPECT_EQ(range.Height(), 10);
  EXPECT_EQ(range.DataType(), ZYN_IMAGE_U16);
  EXPECT_EQ(intensity.Width(), 5);
  EXPECT_EQ(intensity.Height(), 10);
  EXPECT_EQ(intensity.Step(), 5);
  EXPECT_EQ(intensity.Channels(), 1);
  EXPECT_EQ(intensity.BitDepth(), ZYN_IMAGE_U8);
  ExpectPoints(0, 50, 0);
  for (Frame& frame : frames) EXPECT_EQ(frame.image.Releases(), 1);
  EXPECT_EQ(device.timeoutMs, 5000);
}

TEST_F(BatchGrab, ScansOfOneShapeComeToOnePlace) {
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 6; ++i) Deliver(1, i * 20, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  const void* heights = range.Data();
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Data(), heights);
  ExpectPoints(0, 50, 60);
}

TEST_F(BatchGrab, AScanCarriesTheLibrarysResolutions) {
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 3; ++i) Deliver(1, i * 20, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.ResolutionZ(), 0.001);
  EXPECT_EQ(range.OffsetZ(), 32768.0);
  EXPECT_EQ(range.ResolutionX(), 12.0);  // 60 over 5 points
  EXPECT_EQ(range.OffsetX(), 0.0);
  EXPECT_EQ(range.ResolutionY(), 0.02);
  EXPECT_EQ(range.OffsetY(), 0.0);
  EXPECT_EQ(range.MaxValue(), 40.5);
  EXPECT_EQ(range.MinValue(), 0.0);  // a range image begins at 0, and nothing raises that
}

TEST_F(BatchGrab, TheSmallestHeightIsTheDownSize) {
  ASSERT_EQ(Start(), ZYN_OK);
  unsigned char data[] = {0, 0};
  range.CreateRangeImage(data, 1, 1, 2, ZYN_IMAGE_U16, 5.0, 6.0, 1, 0, 1, 0, 1, 0);
  for (int i = 0; i < 3; ++i) Deliver(1, i * 20, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.MinValue(), 2.25);
  EXPECT_EQ(range.MaxValue(), 40.5);
}

TEST_F(BatchGrab, TheLastFrameOfAScanIsCopiedAsFarAsTheScanGoes) {
  SetGeometry(5, 1000, 300);
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 4; ++i) Deliver(1, i * 1500, 1500);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Height(), 1000);
  ExpectPoints(0, 5000, 0);
  // The next scan begins at its first row, though its frames have the same identifier.
  for (int i = 0; i < 4; ++i) Deliver(1, 9000 + i * 1500, 1500);
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectPoints(0, 5000, 9000);
}

TEST_F(BatchGrab, AFrameOfMoreLinesThanAScanIsAScan) {
  SetGeometry(5, 3, 4);
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Height(), 3);
  ExpectPoints(0, 15, 0);
}

TEST_F(BatchGrab, AFrameOfAllLinesIsAScan) {
  SetGeometry(5, 4, 4);
  ASSERT_EQ(Start(), ZYN_OK);
  for (long long id : {7, 8, 8}) {
    Deliver(id, static_cast<int>(id), 20);
    EXPECT_EQ(Grab(), ZYN_OK);
    ExpectPoints(0, 20, static_cast<int>(id));
  }
}

TEST_F(BatchGrab, AScanCutShortKeepsTheRowsOfTheOneBefore) {
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 3; ++i) Deliver(1, i * 20, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  Deliver(2, 1000, 20);
  Deliver(3, 2000, 20);  // cuts it short after 4 of 10 lines
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectPoints(0, 20, 1000);
  ExpectPoints(20, 30, 20);
  // The frame that cut it short is the beginning of the next.
  Deliver(3, 2020, 20);
  Deliver(3, 2040, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectPoints(0, 50, 2000);
}

TEST_F(BatchGrab, TheFirstScanCutShortEndsInZeros) {
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20);
  Deliver(1, 20, 20);
  Deliver(-1, 0, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Height(), 10);
  ExpectPoints(0, 40, 0);
  ExpectZeros(40, 10);
}

TEST_F(BatchGrab, AnIdentifierOfAnyNumberBeginsAScan) {
  ASSERT_EQ(Start(), ZYN_OK);
  for (long long id : {-1LL, 0LL, LLONG_MAX, LLONG_MIN}) {
    for (int i = 0; i < 3; ++i) Deliver(id, i * 20, 20);
    EXPECT_EQ(Grab(), ZYN_OK);
    ExpectPoints(0, 50, 0);
  }
}

TEST_P(EachWrongSize, IsSkippedReleasedAndCutsNothingShort) {
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20);
  Bytes records = Records(500, GetParam().points);
  records.resize(records.size() + static_cast<std::size_t>(GetParam().bytesMore));
  Frame& wrong = frames.emplace_back(2, records);
  wrong.chunk.claimedLength = records.size();
  device.Deliver(0, &wrong.image);
  Deliver(1, 20, 20);
  Deliver(1, 40, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectPoints(0, 50, 0);
  for (Frame& frame : frames) EXPECT_EQ(frame.image.Releases(), 1);
}

INSTANTIATE_TEST_SUITE_P(Table, EachWrongSize,
                         testing::Values(Size{"OneRecordShort", 19, 0}, Size{"OneRecordLong", 21, 0},
                                         Size{"OneByteLong", 20, 1}, Size{"OneByteShort", 19, 3},
                                         Size{"OneByte", 0, 1}, Size{"OneLineShort", 15, 0},
                                         Size{"AWholeScan", 50, 0}),
                         kName);

TEST_F(BatchGrab, FramesOfTheWrongSizeAreSkipped) {
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 5; ++i) Deliver(i, 0, 19);
  EXPECT_EQ(Grab(), ZYN_ERROR_GRAB_FAILED);  // when no more come
  EXPECT_EQ(device.calls.Count("Grab"), 6);
}

TEST_P(EachFailure, HasItsCodeReleasesTheFrameOnceAndKeepsTheRows) {
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20);
  GetParam().arrange(frames.emplace_back(2, Records(500, 20)), device);
  EXPECT_EQ(Grab(), GetParam().code);
  EXPECT_EQ(range.Data(), nullptr);
  EXPECT_EQ(intensity.ImageData(), nullptr);
  // The grab after it goes on with what is there.
  device.hook = nullptr;
  device.isGrabbing = true;
  Deliver(1, 20, 20);
  Deliver(1, 40, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectPoints(0, 50, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Table, EachFailure,
    testing::Values(
        Failure{"NoFrameInTime", [](Frame&, fakes::FakeCamera& device) { device.Deliver(-1, nullptr); },
                ZYN_ERROR_GRAB_FAILED},
        Failure{"AResultThatPasses", [](Frame&, fakes::FakeCamera& device) { device.Deliver(-6, nullptr); },
                -6},
        Failure{"AFrameWithAFailure",
                [](Frame& frame, fakes::FakeCamera& device) { device.Deliver(-14, &frame.image); },
                ZYN_ERROR_GRAB_FAILED},
        Failure{"AFrameWithAFailureOnceTheStreamStopped",
                [](Frame& frame, fakes::FakeCamera& device) {
                  device.hook = [&device](const std::string& call) {
                    if (call == "Grab") device.isGrabbing = device.calls.Count("Grab") < 2;
                  };
                  device.Deliver(-2, &frame.image);
                },
                ZYN_ERROR_GRAB_FAILED},
        Failure{"AStreamThatRunsNoMore",
                [](Frame&, fakes::FakeCamera& device) {
                  device.hook = [&device](const std::string& call) {
                    if (call == "Grab") device.isGrabbing = false;
                  };
                },
                ZYN_ERROR_NOT_GRABBING},
        Failure{"SuccessWithoutAFrame", [](Frame&, fakes::FakeCamera& device) { device.Deliver(0, nullptr); },
                ZYN_ERROR_NO_FRAME},
        Failure{"AnInvalidFrame",
                [](Frame& frame, fakes::FakeCamera& device) {
                  frame.image.isValid = false;
                  device.Deliver(0, &frame.image);
                },
                ZYN_ERROR_INVALID_FRAME},
        Failure{"NoChunks",
                [](Frame& frame, fakes::FakeCamera& device) {
                  frame.image.chunks.clear();
                  device.Deliver(0, &frame.image);
                },
                ZYN_ERROR_NO_CHUNK_DATA},
        Failure{"AMissingChunk",
                [](Frame& frame, fakes::FakeCamera& device) {
                  frame.image.chunks = {nullptr};
                  device.Deliver(0, &frame.image);
                },
                ZYN_ERROR_NO_CHUNK_DATA},
        Failure{"AChunkWithoutData",
                [](Frame& frame, fakes::FakeCamera& device) {
                  frame.chunk.isNull = true;
                  device.Deliver(0, &frame.image);
                },
                ZYN_ERROR_NO_CHUNK_DATA},
        Failure{"AnExceptionInTheWait",
                [](Frame&, fakes::FakeCamera& device) {
                  device.hook = [&device](const std::string& call) {
                    if (call == "Grab" && device.calls.Count("Grab") == 2) throw std::runtime_error(call);
                  };
                },
                ZYN_ERROR_EXCEPTION},
        Failure{"AnExceptionAboutValidity", FrameThrowsIn("IsValid"), ZYN_ERROR_EXCEPTION},
        Failure{"AnExceptionInTheChunks", FrameThrowsIn("Chunks"), ZYN_ERROR_EXCEPTION},
        Failure{"AnExceptionInTheIdentifier", FrameThrowsIn("FrameID"), ZYN_ERROR_EXCEPTION}),
    kName);

TEST_F(BatchGrab, AReleaseThatThrowsIsACode) {
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20).image.throwsOnRelease = true;
  EXPECT_EQ(Grab(), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(device.calls.Count("Grab"), 1);
}

TEST_F(BatchGrab, NullIsRefusedBeforeAnything) {
  device.calls.Clear();
  EXPECT_EQ(camera.Grab3DBatchData(nullptr, &intensity), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.Grab3DBatchData(&range, nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_TRUE(device.calls.Names().empty());
}

TEST_F(BatchGrab, AGrabOfAnotherModeIsRefusedWithoutWaiting) {
  for (Zyn3DGrabType type : {ZYN_3D_GRAB_NONE, ZYN_3D_GRAB_PROFILE, ZYN_3D_GRAB_CONTOUR}) {
    camera.Start3DGrab(type);
    EXPECT_EQ(Grab(), ZYN_ERROR_INVALID_ARGUMENT);
    camera.Stop3DGrab();
  }
  EXPECT_EQ(device.calls.Count("Grab"), 0);
}

TEST_F(BatchGrab, StoppingDropsTheScanInProgress) {
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 500, 20);
  EXPECT_EQ(Grab(), ZYN_ERROR_GRAB_FAILED);
  EXPECT_EQ(camera.Stop3DGrab(), ZYN_OK);
  EXPECT_EQ(Grab(), ZYN_ERROR_INVALID_ARGUMENT);
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20);
  Deliver(2, 0, 20);
  EXPECT_EQ(Grab(), ZYN_OK);  // cut short
  ExpectPoints(0, 20, 0);
  ExpectZeros(20, 30);
}

TEST_F(BatchGrab, AStopThatThrowsKeepsTheScanInProgress) {
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20);
  EXPECT_EQ(Grab(), ZYN_ERROR_GRAB_FAILED);
  ThrowIn("StopGrabbing");
  EXPECT_EQ(camera.Stop3DGrab(), ZYN_ERROR_EXCEPTION);
  device.hook = nullptr;
  device.isGrabbing = true;
  Deliver(1, 20, 20);
  Deliver(1, 40, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectPoints(0, 50, 0);
}

TEST_F(BatchGrab, StartingAgainReadsTheGeometryAnew) {
  ASSERT_EQ(Start(), ZYN_OK);
  camera.Stop3DGrab();
  SetGeometry(7, 6, 3);
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 21);
  Deliver(1, 21, 21);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Width(), 7);
  EXPECT_EQ(range.Height(), 6);
  ExpectPoints(0, 42, 0);
}

TEST_F(BatchGrab, StartingAgainWithoutA3DStopBeginsWithAnEmptyScan) {
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 500, 20);
  EXPECT_EQ(Grab(), ZYN_ERROR_GRAB_FAILED);
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);  // as in 2D: type and scan stay
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 3; ++i) Deliver(1, i * 20, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectPoints(0, 50, 0);
}

TEST_F(BatchGrab, ACameraWithoutItsOutlineLengthHasTwoThousandPoints) {
  OfferWithout("OutlineLengthMax");
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 3; ++i) Deliver(1, i * 8000, 8000);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Width(), 2000);
  EXPECT_EQ(range.ResolutionX(), static_cast<double>(60.0F / 2000.0F));
  ExpectPoints(0, 20000, 0);
}

TEST_F(BatchGrab, AnOutlineLengthOnceReadStaysUntilAnotherIsRead) {
  ASSERT_EQ(Start(), ZYN_OK);
  camera.Stop3DGrab();
  OfferWithout("OutlineLengthMax");
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 3; ++i) Deliver(1, i * 20, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Width(), 5);
}

TEST_F(BatchGrab, ACameraWithoutABatchNumberMakesNoScan) {
  ASSERT_EQ(Start(), ZYN_OK);  // with a number, which shall not stay
  camera.Stop3DGrab();
  OfferWithout("BatchNumber");
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 3; ++i) Deliver(1, i * 20, 20);
  EXPECT_EQ(Grab(), ZYN_ERROR_GRAB_FAILED);
  EXPECT_EQ(range.Data(), nullptr);
}

TEST_F(BatchGrab, ACameraWithoutALineCountHasAFrameCount) {
  OfferWithout("AcquisitionLineCount");
  Features().PutInt("AcquisitionFrameCount", 8);
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20);
  Deliver(1, 20, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Height(), 8);
}

TEST_F(BatchGrab, ALineCountComesBeforeAFrameCount) {
  Features().PutInt("AcquisitionFrameCount", 8);
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 3; ++i) Deliver(1, i * 20, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Height(), 10);
}

TEST_F(BatchGrab, SizesThatTheCameraDoesNotHaveAreZero) {
  fakes::LaserFeatures features;
  for (const char* name : {"ZUpSizeInfo", "ZDownSizeInfo", "XSizeInfo"}) features.Drop(name);
  ASSERT_EQ(Start(), ZYN_OK);  // with all sizes, which shall not stay
  camera.Stop3DGrab();
  Features();
  device.remoteMap.map = nullptr;
  fakes::LaserNodeMap without(features);
  without.PutInt("OutlineLengthMax", 5);
  without.PutInt("AcquisitionLineCount", 4);
  without.PutInt("BatchNumber", 4);
  device.remoteMap.map = without.Map();
  ASSERT_EQ(Start(), ZYN_OK);
  unsigned char data[] = {0, 0};
  range.CreateRangeImage(data, 1, 1, 2, ZYN_IMAGE_U16, 5.0, 6.0, 1, 0, 1, 0, 1, 0);
  Deliver(1, 0, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.MinValue(), 0.0);
  EXPECT_EQ(range.MaxValue(), 6.0);
  EXPECT_EQ(range.ResolutionX(), 0.0);
  camera.Close3D();
}

TEST_F(BatchGrab, ACameraWithoutAnyLineCountDeliversScansWithoutPoints) {
  fakes::LaserFeatures features;
  features.Drop("AcquisitionLineCount");
  features.Drop("AcquisitionFrameCount");
  fakes::LaserNodeMap without(features);
  without.PutInt("OutlineLengthMax", 5);
  without.PutInt("BatchNumber", 4);
  device.remoteMap.map = without.Map();
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20);
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Height(), 0);
  EXPECT_EQ(range.Data(), nullptr);
  EXPECT_EQ(intensity.ImageData(), nullptr);
  EXPECT_EQ(frames.front().image.Releases(), 1);
  camera.Close3D();
}

TEST_F(BatchGrab, AbsurdGeometryDeliversNothingAndTouchesNothing) {
  struct Geometry {
    int outlineLength, lineCount, batchNumber;
    unsigned long long bytes;  // what the product gives in too few bits
  };
  for (const Geometry& geometry :
       {Geometry{5, 10, -4, static_cast<unsigned long long>(-80)}, Geometry{5, 10, INT_MIN, 0},
        Geometry{16384, 10, 65536, 0}, Geometry{65535, 10, 65537, 4294967292ULL - 0x100000000ULL},
        Geometry{32768, 10, 32768 * 4, 0}}) {
    SetGeometry(geometry.outlineLength, geometry.lineCount, geometry.batchNumber);
    ASSERT_EQ(Start(), ZYN_OK);
    Deliver(1, 0, 20).chunk.claimedLength = geometry.bytes;
    EXPECT_EQ(Grab(), ZYN_ERROR_GRAB_FAILED) << geometry.batchNumber;
    EXPECT_EQ(range.Data(), nullptr);
    camera.Stop3DGrab();
  }
}

TEST_F(BatchGrab, AScanWithoutPointsEndsWithAnEmptyFrameAndDeliversNothing) {
  SetGeometry(0, 4, 4);
  ASSERT_EQ(Start(), ZYN_OK);
  Deliver(1, 0, 20).chunk.claimedLength = 0;
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(range.Data(), nullptr);
  EXPECT_EQ(intensity.ImageData(), nullptr);
  // Nor does it write into a range image of another shape.
  std::vector<std::uint16_t> old(50, 777);
  range.CreateRangeImage(old.data(), 5, 10, 10, ZYN_IMAGE_U16, 0, 1, 1, 0, 1, 0, 1, 0);
  Deliver(1, 0, 20).chunk.claimedLength = 0;
  EXPECT_EQ(Grab(), ZYN_OK);
  EXPECT_EQ(Values(), old);
}

TEST_F(BatchGrab, FramesWithoutLinesNeverMakeAScan) {
  SetGeometry(5, 10, 0);
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 5; ++i) Deliver(i, 0, 20).chunk.claimedLength = 0;
  EXPECT_EQ(Grab(), ZYN_ERROR_GRAB_FAILED);
  EXPECT_EQ(range.Data(), nullptr);
}

TEST_F(BatchGrab, AfterARefusedGeometryThereIsNoScanToGrabInto) {
  ASSERT_EQ(Start(), ZYN_OK);
  camera.StopGrab();  // as in 2D: type and scan stay
  SetGeometry(-5, 10, 4);
  EXPECT_EQ(Start(), ZYN_ERROR_EXCEPTION);
  camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0);
  Deliver(1, 0, 20);
  EXPECT_EQ(Grab(), ZYN_ERROR_INVALID_ARGUMENT);
}

TEST_F(BatchGrab, AStopBetweenWaitAndAssemblyIsAnOrderlyEnd) {
  for (const char* where : {"IsValid", "Chunks", "FrameID"}) {
    ASSERT_EQ(Start(), ZYN_OK);
    Deliver(1, 0, 20).image.hook = [&](const std::string& call) {
      if (call == where) std::thread([&] { EXPECT_EQ(camera.Stop3DGrab(), ZYN_OK); }).join();
    };
    EXPECT_EQ(Grab(), ZYN_ERROR_INVALID_ARGUMENT) << where;
    EXPECT_EQ(frames.back().image.Releases(), 1);
  }
}

TEST_F(BatchGrab, ClosingInTheMiddleOfAScanEndsTheGrab) {
  ASSERT_EQ(Start(), ZYN_OK);
  std::latch entered(1);
  std::latch allowed(1);
  device.hook = [&](const std::string& call) {
    if (call != "Grab" || device.calls.Count("Grab") != 2) return;
    entered.count_down();
    allowed.wait();
  };
  Deliver(1, 0, 20);
  Deliver(1, 20, 20);
  auto grab = std::async(std::launch::async, [&] { return Grab(); });
  entered.wait();
  EXPECT_EQ(camera.Close3D(), ZYN_OK);
  EXPECT_EQ(device.Releases(), 0);
  allowed.count_down();
  EXPECT_EQ(grab.get(), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(device.Releases(), 1);
  EXPECT_EQ(range.Data(), nullptr);
  for (Frame& frame : frames) EXPECT_EQ(frame.image.Releases(), 1);
  // Opened again, the camera starts with an empty scan.
  ASSERT_EQ(camera.Open3D(), ZYN_OK);
  ASSERT_EQ(Start(), ZYN_OK);
  for (int i = 0; i < 3; ++i) reopened.Deliver(0, &frames.emplace_back(1, Records(i * 20, 20)).image);
  EXPECT_EQ(Grab(), ZYN_OK);
  ExpectPoints(0, 50, 0);
}

TEST_F(BatchGrab, StoppingWhileAnotherThreadAssemblesIsSafe) {
  SetGeometry(500, 40, 10);
  constexpr int kFrames = 400;
  for (int i = 0; i < kFrames; ++i) Deliver(i / 4, i, 5000);
  ASSERT_EQ(Start(), ZYN_OK);
  std::set<long> seen;
  std::thread grabbing([&] {
    while (frames.back().image.Releases() == 0) seen.insert(Grab());
  });
  for (int i = 0; i < 100; ++i) {
    camera.Stop3DGrab();
    Start();
  }
  grabbing.join();
  for (long code : seen) {
    EXPECT_TRUE(code == ZYN_OK || code == ZYN_ERROR_INVALID_ARGUMENT || code == ZYN_ERROR_NOT_GRABBING)
        << code;
  }
  for (Frame& frame : frames) EXPECT_EQ(frame.image.Releases(), 1);
}

TEST_F(BatchGrab, TheUnguardedStepLeavesTheFrameToItsCaller) {
  ASSERT_EQ(Start(), ZYN_OK);
  Frame& first = Deliver(1, 0, 20);
  KELGENICAM::IImage* out = nullptr;
  bool done = true;
  EXPECT_EQ(camera.Grab3DBatchDataAction(&out, &range, &intensity, done), ZYN_OK);
  EXPECT_FALSE(done);
  EXPECT_EQ(out, &first.image);
  EXPECT_EQ(first.image.Releases(), 0);
  out->Release();
  out = nullptr;
  Deliver(2, 0, 20);
  EXPECT_EQ(camera.Grab3DBatchDataAction(&out, &range, &intensity, done), ZYN_OK);
  EXPECT_TRUE(done);
  out->Release();
  out = nullptr;
  device.grabResult = -3;
  EXPECT_EQ(camera.Grab3DBatchDataAction(&out, &range, &intensity, done), -3);
  EXPECT_FALSE(done);
  ThrowIn("Grab");
  EXPECT_THROW(camera.Grab3DBatchDataAction(&out, &range, &intensity, done), std::runtime_error);
  camera.Stop3DGrab();
  done = true;
  EXPECT_EQ(camera.Grab3DBatchDataAction(&out, &range, &intensity, done), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_FALSE(done);
}

TEST_P(EachCount, IsRoundedUpToHundredsOrRefused) {
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, GetParam().asked), GetParam().result);
  EXPECT_EQ(Features().Written(), GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(
    Table, EachCount,
    testing::Values(Accepted("TwoHundredFifty", 250, 300, 100), Accepted("Forty", 40, 100, 40),
                    Accepted("One", 1, 100, 1), Accepted("NinetyNine", 99, 100, 99),
                    Accepted("Hundred", 100, 100, 100), Accepted("HundredAndOne", 101, 200, 100),
                    Accepted("Largest", 65500, 65500, 100), Refused("RoundedBeyondTheLargest", 65501),
                    Refused("LargestOfSixteenBits", 65535), Refused("BeyondSixteenBits", 65536),
                    Refused("Zero", 0), Refused("MinusOne", -1), Refused("LargestNumber", INT_MAX),
                    Refused("SmallestNumber", INT_MIN)),
    kName);

TEST_F(BatchGrab, SettingTheCountIgnoresTheNodeMapAskedFor) {
  for (int source : {1, 4, 5, -1}) {
    EXPECT_EQ(camera.SetBatchCount(static_cast<ZynXmlSource>(source), 50), ZYN_OK);
  }
  EXPECT_EQ(Features().Written().size(), 12U);
}

TEST_F(BatchGrab, SettingTheCountChecksInItsOrder) {
  device.isGrabbing = true;
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 0), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 65535), ZYN_ERROR_ALREADY_GRABBING);
  camera.Close3D();
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 65536), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 65535), ZYN_ERROR_NOT_OPEN);
  info.model = "Area-1";
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 0), ZYN_ERROR_NOT_3D_CAMERA);
  EXPECT_TRUE(Features().Written().empty());
}

TEST_F(BatchGrab, OneOfTheTwoCountsIsEnough) {
  OfferWithout("AcquisitionFrameCount");
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 250), ZYN_OK);
  EXPECT_EQ(Features().GetInt("AcquisitionLineCount"), 300);
  EXPECT_EQ(Features().GetInt("BatchNumber"), 100);
  OfferWithout("AcquisitionLineCount");
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 250), ZYN_OK);
  EXPECT_EQ(Features().GetInt("AcquisitionFrameCount"), 300);
  EXPECT_EQ(Features().GetInt("BatchNumber"), 100);
}

TEST_F(BatchGrab, ACountThatCannotBeWrittenIsACode) {
  OfferWithout("BatchNumber");
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 250), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(Features().GetInt("AcquisitionLineCount"), 300);
  device.remoteMap.map = nullptr;
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 250), ZYN_ERROR_NO_NODE_MAP);
  Offer({});
  Features().port.failsToWrite = true;
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 250), ZYN_ERROR_EXCEPTION);
  EXPECT_THROW(camera.SetBatchCountAction(250), GenICam::GenericException);
}

TEST_F(BatchGrab, WithoutEitherCountTheBatchNumberIsNotWritten) {
  fakes::LaserFeatures features;
  features.Drop("AcquisitionLineCount");
  features.Drop("AcquisitionFrameCount");
  fakes::LaserNodeMap without(features);
  device.remoteMap.map = without.Map();
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 250), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_TRUE(without.Written().empty());
  camera.Close3D();
}

TEST_F(BatchGrab, OfTwoCountsThatFailTheWriteAnswersForTheFirstAndTheReadForTheSecond) {
  fakes::LaserFeatures features;
  features.Drop("AcquisitionLineCount");
  features.Drop("AcquisitionFrameCount");
  fakes::LaserNodeMap without(features);
  device.hook = [this](const std::string& call) {
    if (call == "RemoteDeviceNodeMap" && device.calls.Count(call) == 2) device.remoteMap.map = nullptr;
  };
  device.remoteMap.map = without.Map();
  device.calls.Clear();
  EXPECT_EQ(camera.SetBatchCount(ZYN_XML_REMOTE_DEVICE, 250), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(device.calls.Count("RemoteDeviceNodeMap"), 2);
  device.remoteMap.map = without.Map();
  device.calls.Clear();
  int count = 7;
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_REMOTE_DEVICE, &count), ZYN_ERROR_NO_NODE_MAP);
  EXPECT_EQ(count, 7);
  device.hook = nullptr;
  camera.Close3D();
}

TEST_F(BatchGrab, TheCountIsReadFromTheLinesOrElseTheFrames) {
  Features().PutInt("AcquisitionFrameCount", 8);
  int count = 0;
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_REMOTE_DEVICE, &count), ZYN_OK);
  EXPECT_EQ(count, 10);
  OfferWithout("AcquisitionLineCount");
  Features().PutInt("AcquisitionFrameCount", 8);
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_REMOTE_DEVICE, &count), ZYN_OK);
  EXPECT_EQ(count, 8);
}

TEST_F(BatchGrab, TheCountIsReadFromTheNodeMapAskedFor) {
  device.streamMap.map = device.remoteMap.map;
  device.remoteMap.map = nullptr;
  int count = 7;
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_REMOTE_DEVICE, &count), ZYN_ERROR_NO_NODE_MAP);
  EXPECT_EQ(count, 7);
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_DATA_STREAM, &count), ZYN_OK);
  EXPECT_EQ(count, 10);
  EXPECT_EQ(camera.GetBatchCount(static_cast<ZynXmlSource>(5), &count), ZYN_ERROR_NO_NODE_MAP);
}

TEST_F(BatchGrab, ReadingTheCountAnswersCodes) {
  int count = 7;
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_REMOTE_DEVICE, nullptr), ZYN_ERROR_INVALID_ARGUMENT);
  ThrowIn("RemoteDeviceNodeMap");
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_REMOTE_DEVICE, &count), ZYN_ERROR_EXCEPTION);
  device.hook = nullptr;
  Features().port.failingReads = 6;  // three of each feature
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_REMOTE_DEVICE, &count), ZYN_ERROR_EXCEPTION);
  camera.Close3D();
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_REMOTE_DEVICE, &count), ZYN_ERROR_NOT_OPEN);
  info.model = "Area-1";
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_REMOTE_DEVICE, nullptr), ZYN_ERROR_NOT_3D_CAMERA);
  EXPECT_EQ(count, 7);
}

TEST_F(BatchGrab, AnExceptionWhileReadingTheLinesLeavesTheFrames) {
  Features().PutInt("AcquisitionFrameCount", 8);
  device.hook = [this](const std::string& call) {
    if (call == "RemoteDeviceNodeMap" && device.calls.Count(call) == 1) throw std::runtime_error(call);
  };
  device.calls.Clear();
  int count = 0;
  EXPECT_EQ(camera.GetBatchCount(ZYN_XML_REMOTE_DEVICE, &count), ZYN_OK);
  EXPECT_EQ(count, 8);
}
