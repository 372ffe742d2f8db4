// Multi-part buffers: which part becomes the image, and what happens to a table of parts that is damaged.
#include <limits>

#include "TransportFixture.h"

namespace zyn::transport_test {
namespace {

using namespace KELGENICAM;
using mock::MockPart;

constexpr std::uint64_t kMono8 = 0x01080001;
constexpr std::uint64_t kMono16 = 0x01100007;
constexpr std::uint64_t kRgb8 = 0x02180014;
constexpr std::uint64_t kDepth16 = 0x011000B8;
constexpr std::uint64_t kPoints16 = 0x023000B9;
constexpr std::size_t kPayloadBytes = 256;

// What an application sees of a frame. Without an image everything is 0.
struct Seen {
  bool isValid = true;
  int width = 0;
  int height = 0;
  int channels = 0;
  int step = 0;
  int first = 0;  // the first byte and the last one
  int last = 0;

  bool operator==(const Seen& other) const {
    return isValid == other.isValid && width == other.width && height == other.height &&
           channels == other.channels && step == other.step && first == other.first && last == other.last;
  }
};

std::ostream& operator<<(std::ostream& out, const Seen& seen) {
  return out << (seen.isValid ? "valid " : "not valid ") << seen.width << "x" << seen.height << " channels "
             << seen.channels << " step " << seen.step << " bytes " << seen.first << ".." << seen.last;
}

class MultiPart : public TransportTest {
 protected:
  // Sends the parts as one frame and says what arrived.
  Seen Deliver(std::vector<MockPart> parts, std::optional<std::uint32_t> count = {}) {
    if (!camera_) {
      MockDevice device{"cam", "SN1"};
      device.payloadBytes = kPayloadBytes;
      camera_ = OpenOne(mock_, device);
      EXPECT_EQ(camera_->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
    }
    MockFrame frame = Frame(1);
    frame.payloadType = GenTL::PAYLOAD_TYPE_MULTI_PART;
    frame.parts = std::move(parts);
    frame.partCount = count;
    EXPECT_TRUE(mock_.SendFrame(frame));
    const ImagePtr image = GrabOne(*camera_);
    Seen seen{image->IsValid(), image->Width(), image->Height(), image->Channels(), image->Step()};
    if (!image->Data()) {
      seen.channels = 0;
      return seen;
    }
    seen.first = image->Data()[0];
    seen.last = image->Data()[seen.step * seen.height - 1];
    return seen;
  }

  void TearDown() override {
    camera_.reset();
    TransportTest::TearDown();
  }

  CameraPtr camera_;
};

struct ChoiceCase {
  const char* name;
  std::vector<MockPart> parts;
  Seen seen;
};

// A part of `width` bytes by `height`; the format says how many pixels that is.
MockPart Part(std::size_t type, std::size_t width, std::size_t height, std::uint64_t format, int fill,
              std::size_t pixels) {
  MockPart part{type, width, height, format, static_cast<unsigned char>(fill), 0, {}};
  if (pixels != width) part.told[GenTL::BUFFER_PART_INFO_WIDTH] = pixels;
  return part;
}

TEST_F(MultiPart, TheFirstPartThatIsAnImageOrADepthMapIsTheFramesImage) {
  constexpr std::size_t kOther = GenTL::PART_DATATYPE_CUSTOM_ID;
  constexpr std::size_t kImage = GenTL::PART_DATATYPE_2D_IMAGE;
  constexpr std::size_t kDepth = GenTL::PART_DATATYPE_3D_IMAGE;
  constexpr std::size_t kConfidence = GenTL::PART_DATATYPE_CONFIDENCE_MAP;
  const MockPart meta = Part(kOther, 5, 3, 0, 1, 5);
  const MockPart confidence = Part(kConfidence, 6, 2, kMono8, 2, 6);
  const MockPart mono = Part(kImage, 8, 4, kMono8, 3, 8);
  const MockPart wide = Part(kImage, 8, 4, kMono16, 4, 4);
  const MockPart colour = Part(kImage, 9, 2, kRgb8, 5, 3);
  const MockPart depth = Part(kDepth, 10, 3, kDepth16, 6, 5);
  const MockPart points = Part(kDepth, 12, 2, kPoints16, 7, 2);
  const ChoiceCase rows[] = {
      {"alone", {mono}, {true, 8, 4, 1, 8, 3, 3}},
      {"two bytes per pixel", {wide}, {true, 4, 4, 1, 8, 4, 4}},
      {"colour", {colour}, {true, 3, 2, 3, 9, 5, 5}},
      {"points", {points}, {true, 2, 2, 3, 12, 7, 7}},
      {"first of two", {colour, mono}, {true, 3, 2, 3, 9, 5, 5}},
      {"the other order", {mono, colour}, {true, 8, 4, 1, 8, 3, 3}},
      {"behind other data", {meta, depth, mono}, {true, 5, 3, 1, 10, 6, 6}},
      {"confidence comes second", {confidence, depth}, {true, 5, 3, 1, 10, 6, 6}},
      {"confidence alone", {meta, confidence}, {true, 6, 2, 1, 6, 2, 2}},
      {"no image", {meta}, {true, 0, 0, 0, 0, 0, 0}},
      {"no part", {}, {true, 0, 0, 0, 0, 0, 0}},
      {"a plane",
       {Part(GenTL::PART_DATATYPE_2D_PLANE_TRIPLANAR, 4, 4, kMono8, 8, 4),
        Part(GenTL::PART_DATATYPE_2D_PLANE_TRIPLANAR, 4, 4, kMono8, 9, 4)},
       {true, 4, 4, 1, 4, 8, 8}},
      {"jpeg is none", {Part(GenTL::PART_DATATYPE_JPEG, 4, 4, 0, 8, 4)}, {true, 0, 0, 0, 0, 0, 0}},
  };
  for (const ChoiceCase& row : rows) EXPECT_EQ(Deliver(row.parts), row.seen) << row.name;
}

struct DamageCase {
  const char* name;
  GenTL::BUFFER_PART_INFO_CMD command;
  std::optional<std::uint64_t> told;
  Seen seen;
};

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
constexpr Seen kRefused{false, 0, 0, 0, 0, 0, 0};

// A part of 8 by 4 bytes behind one of 20: the buffer has 256 bytes.
TEST_F(MultiPart, GarbageInTheTableNeverLeadsOutOfThePart) {
  const DamageCase rows[] = {
      {"nothing wrong", GenTL::BUFFER_PART_INFO_XOFFSET, 0, {true, 8, 4, 1, 8, 3, 3}},
      {"no base", GenTL::BUFFER_PART_INFO_BASE, std::nullopt, kRefused},
      {"base before the buffer", GenTL::BUFFER_PART_INFO_BASE, kMost, kRefused},
      {"base behind the buffer", GenTL::BUFFER_PART_INFO_BASE, kPayloadBytes, kRefused},
      {"base far behind", GenTL::BUFFER_PART_INFO_BASE, std::uint64_t{1} << 40U, kRefused},
      {"base so late that the size does not fit", GenTL::BUFFER_PART_INFO_BASE, kPayloadBytes - 31, kRefused},
      {"base as late as possible",
       GenTL::BUFFER_PART_INFO_BASE,
       kPayloadBytes - 32,
       {true, 8, 4, 1, 8, -1, -1}},
      {"size beyond the buffer", GenTL::BUFFER_PART_INFO_DATA_SIZE, kPayloadBytes - 19, kRefused},
      {"huge size", GenTL::BUFFER_PART_INFO_DATA_SIZE, kMost, kRefused},
      {"no size told", GenTL::BUFFER_PART_INFO_DATA_SIZE, std::nullopt, {true, 8, 4, 1, 8, 3, 3}},
      {"no data", GenTL::BUFFER_PART_INFO_DATA_SIZE, 0, kRefused},
      {"less than one row", GenTL::BUFFER_PART_INFO_DATA_SIZE, 7, kRefused},
      {"half of it", GenTL::BUFFER_PART_INFO_DATA_SIZE, 17, {false, 8, 2, 1, 8, 3, 3}},
      {"no width", GenTL::BUFFER_PART_INFO_WIDTH, std::nullopt, kRefused},
      {"width 0", GenTL::BUFFER_PART_INFO_WIDTH, 0, kRefused},
      {"too wide", GenTL::BUFFER_PART_INFO_WIDTH, 33, kRefused},
      {"wide enough for one row", GenTL::BUFFER_PART_INFO_WIDTH, 32, {false, 32, 1, 1, 32, 3, 3}},
      {"width beyond an int", GenTL::BUFFER_PART_INFO_WIDTH, 0x80000000, kRefused},
      {"huge width", GenTL::BUFFER_PART_INFO_WIDTH, kMost, kRefused},
      {"no rows", GenTL::BUFFER_PART_INFO_HEIGHT, 0, {true, 0, 0, 0, 0, 0, 0}},
      {"one row too many", GenTL::BUFFER_PART_INFO_HEIGHT, 5, {false, 8, 4, 1, 8, 3, 3}},
      {"height beyond an int", GenTL::BUFFER_PART_INFO_HEIGHT, 0x80000000, kRefused},
      {"huge height", GenTL::BUFFER_PART_INFO_HEIGHT, kMost, kRefused},
      {"more rows delivered than there are",
       GenTL::BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT,
       1000,
       {false, 8, 4, 1, 8, 3, 3}},
      {"fewer rows delivered", GenTL::BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT, 3, {true, 8, 3, 1, 8, 3, 3}},
      {"padding that the size does not have",
       GenTL::BUFFER_PART_INFO_XPADDING,
       100,
       {true, 8, 4, 1, 8, 3, 3}},
      {"huge padding", GenTL::BUFFER_PART_INFO_XPADDING, kMost, {true, 8, 4, 1, 8, 3, 3}},
      {"wider pixels than told", GenTL::BUFFER_PART_INFO_DATA_FORMAT, kRgb8, {false, 8, 1, 3, 24, 3, 3}},
      {"a type nobody knows", GenTL::BUFFER_PART_INFO_DATA_TYPE, kMost, {true, 0, 0, 0, 0, 0, 0}},
  };
  for (const DamageCase& row : rows) {
    MockPart part = Part(GenTL::PART_DATATYPE_2D_IMAGE, 8, 4, kMono8, 3, 8);
    part.told[row.command] = row.told;
    Seen seen = Deliver({Part(GenTL::PART_DATATYPE_CUSTOM_ID, 5, 4, 0, 1, 5), part});
    // Where the table leads to bytes that nobody wrote, only the place counts.
    if (row.seen.first < 0) seen.first = row.seen.first;
    if (row.seen.last < 0) seen.last = row.seen.last;
    EXPECT_EQ(seen, row.seen) << row.name;
  }
}

TEST_F(MultiPart, PaddingBetweenRowsThatCannotBeIsRefused) {
  // 33 bytes for 4 rows: the size does not settle the step, so the padding does.
  MockPart part = Part(GenTL::PART_DATATYPE_2D_IMAGE, 8, 4, kMono8, 3, 8);
  part.told[GenTL::BUFFER_PART_INFO_DATA_SIZE] = 33;
  part.told[GenTL::BUFFER_PART_INFO_XPADDING] = kMost;  // one less, in an unsigned number
  EXPECT_EQ(Deliver({part}), kRefused);
}

TEST_F(MultiPart, ANumberOfPartsThatCannotBeIsRefused) {
  const MockPart part = Part(GenTL::PART_DATATYPE_2D_IMAGE, 8, 4, kMono8, 3, 8);
  const Seen whole{true, 8, 4, 1, 8, 3, 3};
  EXPECT_EQ(Deliver({part}, 0xFFFFFFFF), kRefused);
  EXPECT_EQ(Deliver({part}, 257), kRefused);
  EXPECT_EQ(Deliver({part}, 256), whole);
  EXPECT_EQ(Deliver({part}, 0), (Seen{true, 0, 0, 0, 0, 0, 0}));
  mock_.SetHook("DSGetNumBufferParts", [](const std::string&) { return GenTL::GC_ERR_ERROR; });
  EXPECT_EQ(Deliver({part}), kRefused);
}

}  // namespace
}  // namespace zyn::transport_test
