// What a frame grabber card makes of a camera's image, sample by sample, and the card's own state.
#include "CardImage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Card.h"
#include "producer/Error.h"

namespace zyn::simulation {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A camera's frame: 6 x 3 pixels, of which pixel x of line y has the value 10 y + x + 1.
struct Sent {
  cameras::Frame frame;
  Bytes bytes;
};

Sent Send(std::uint32_t format = cameras::kMono8, std::uint32_t taps = 2) {
  Sent sent;
  sent.frame.id = 7;
  sent.frame.hasImage = true;
  sent.frame.width = 6;
  sent.frame.height = 3;
  sent.frame.offsetX = 100;
  sent.frame.offsetY = 200;
  sent.frame.pixelFormat = format;
  sent.frame.taps = taps;
  const std::size_t pixelBytes = cameras::BytesPerPixel(format);
  for (std::uint8_t y = 0; y < 3; ++y) {
    for (std::uint8_t x = 0; x < 6; ++x) {
      for (std::size_t i = 0; i < pixelBytes; ++i)
        sent.bytes.push_back(static_cast<std::uint8_t>(10 * y + x + 1 + 100 * i));
    }
  }
  sent.frame.imageSize = sent.bytes.size();
  sent.frame.size = sent.bytes.size();
  sent.frame.intendedSize = sent.bytes.size();
  return sent;
}

CardSettings Card6x3() {
  CardSettings card;
  card.width = 6;
  card.height = 3;
  return card;
}

/// What the card stored; the memory is full of 0xEE before.
struct Stored {
  producer::FrameInfo info;
  Bytes bytes;
};

Stored Store(const CardSettings& card, const Sent& sent, std::size_t memory = 0) {
  Stored stored;
  const std::size_t size = static_cast<std::size_t>(card.width * card.height) *
                           cameras::BytesPerPixel(static_cast<std::uint32_t>(card.pixelFormat));
  stored.bytes.assign(memory == 0 ? size : memory, 0xEE);
  CardImage image;
  stored.info = image.Store(card, sent.frame, sent.bytes, stored.bytes);
  return stored;
}

TEST(CardImage, IsTheCamerasWhereBothAgree) {
  for (const std::uint32_t format : {cameras::kMono8, cameras::kMono12, cameras::kRGB8, cameras::kBGR8}) {
    const Sent sent = Send(format);
    CardSettings card = Card6x3();
    card.pixelFormat = format;
    Sent masked = sent;
    if (format == cameras::kMono12) {  // the camera's bytes have bits beyond the twelve
      for (std::size_t i = 1; i < masked.bytes.size(); i += 2) masked.bytes[i] &= 0x0F;
    }
    const Stored stored = Store(card, sent);
    EXPECT_EQ(stored.bytes, masked.bytes) << format;
    EXPECT_FALSE(stored.info.incomplete) << format;
    EXPECT_EQ(stored.info.pixelFormat, format);
    EXPECT_EQ(stored.info.sizeFilled, sent.bytes.size());
  }
}

TEST(CardImage, IsDescribedAsTheCardWasTold) {
  CardSettings card = Card6x3();
  card.width = 3;
  card.height = 2;
  card.offsetX = 2;
  card.offsetY = 1;
  const Stored stored = Store(card, Send());
  EXPECT_EQ(stored.bytes, (Bytes{13, 14, 15, 23, 24, 25}));
  EXPECT_EQ(stored.info.frameId, 7U);
  EXPECT_EQ(stored.info.width, 3U);
  EXPECT_EQ(stored.info.height, 2U);
  EXPECT_EQ(stored.info.deliveredHeight, 2U);
  EXPECT_EQ(stored.info.xOffset, 102U) << "on the sensor";
  EXPECT_EQ(stored.info.yOffset, 201U);
  EXPECT_EQ(stored.info.pixelFormat, cameras::kMono8);
  EXPECT_EQ(stored.info.payloadType, GenTL::PAYLOAD_TYPE_IMAGE);
  EXPECT_EQ(stored.info.dataSize, 6U);
  EXPECT_FALSE(stored.info.incomplete);
}

struct LineCase {
  const char* name;
  void (*change)(CardSettings& card, Sent& sent);
  Bytes first;  // the first line that the card stores
  bool isIncomplete;
};

class CardLine : public testing::TestWithParam<LineCase> {};

TEST_P(CardLine, HoldsTheSamplesInTheirPlaces) {
  CardSettings card = Card6x3();
  Sent sent = Send();
  GetParam().change(card, sent);
  const Stored stored = Store(card, sent);
  ASSERT_GE(stored.bytes.size(), GetParam().first.size());
  EXPECT_EQ(Bytes(stored.bytes.begin(),
                  stored.bytes.begin() + static_cast<std::ptrdiff_t>(GetParam().first.size())),
            GetParam().first);
  EXPECT_EQ(stored.info.incomplete, GetParam().isIncomplete);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CardLine,
    testing::Values(
        LineCase{
            "Mirrored", [](CardSettings& card, Sent&) { card.reverseX = true; }, {6, 5, 4, 3, 2, 1}, false},
        LineCase{"MirroredPart",
                 [](CardSettings& card, Sent&) {
                   card.reverseX = true;
                   card.width = 2;
                   card.offsetX = 1;
                 },
                 {3, 2},
                 false},
        LineCase{"OneTapTooFew", [](CardSettings& card, Sent&) { card.taps = 1; }, {1, 3, 5, 0, 0, 0}, true},
        LineCase{"OneTapTooFewButNoLongerExpected",
                 [](CardSettings& card, Sent&) {
                   card.taps = 1;
                   card.width = 3;
                 },
                 {1, 3, 5},
                 false},
        LineCase{"TooManyTaps", [](CardSettings& card, Sent&) { card.taps = 4; }, {1, 2, 0, 0, 3, 4}, false},
        LineCase{"TooManyTapsWholeLine",
                 [](CardSettings& card, Sent&) {
                   card.taps = 4;
                   card.width = 12;
                 },
                 {1, 2, 0, 0, 3, 4, 0, 0, 5, 6, 0, 0},
                 false},
        LineCase{"ACameraWithoutTapsAdaptsItself",
                 [](CardSettings& card, Sent& sent) {
                   card.taps = 3;
                   sent.frame.taps = 0;
                 },
                 {1, 2, 3, 4, 5, 6},
                 false},
        LineCase{"TheLastTimeIsNotFull",
                 [](CardSettings& card, Sent& sent) {
                   card.taps = sent.frame.taps = 4;
                   card.width = 8;
                 },
                 {1, 2, 3, 4, 5, 6, 0, 0},
                 false},
        LineCase{"WiderThanTheCamera",
                 [](CardSettings& card, Sent&) { card.width = 8; },
                 {1, 2, 3, 4, 5, 6, 0, 0},
                 true},
        LineCase{
            "BeyondTheCamera", [](CardSettings& card, Sent&) { card.offsetX = 6; }, {0, 0, 0, 0, 0, 0}, true},
        LineCase{"HigherThanTheCamera",
                 [](CardSettings& card, Sent&) { card.height = 4; },
                 {1, 2, 3, 4, 5, 6},
                 true},
        LineCase{"FewerBits",
                 [](CardSettings& card, Sent& sent) {
                   sent = Send(cameras::kMono12);
                   sent.bytes[2] = 0xFF;
                   card.pixelFormat = cameras::kMono8;
                 },
                 {1, 0xFF, 3, 4, 5, 6},
                 false},
        LineCase{"MoreBits",
                 [](CardSettings& card, Sent&) { card.pixelFormat = cameras::kMono12; },
                 {1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0},
                 false},
        LineCase{"BitsBeyondTheFormat",
                 [](CardSettings& card, Sent& sent) {
                   sent = Send(cameras::kMono12);
                   card.pixelFormat = cameras::kMono10;
                 },
                 {1, 101 & 3, 2, 102 & 3, 3, 103 & 3},
                 false},
        LineCase{"ColourTakenForGreyOnThreeTaps",
                 [](CardSettings& card, Sent& sent) {
                   sent = Send(cameras::kRGB8, 1);
                   card.taps = 3;
                   card.width = 18;
                 },
                 {1, 101, 201, 2, 102, 202},
                 false},
        LineCase{"GreyTakenForColour",
                 [](CardSettings& card, Sent&) {
                   card.pixelFormat = cameras::kRGB8;
                   card.taps = 1;
                   card.width = 3;
                 },
                 {1, 2, 0, 3, 4, 0, 5, 6, 0},
                 false},
        LineCase{"Amplified", [](CardSettings& card, Sent&) { card.gain = 1.5; }, {2, 3, 5, 6, 8, 9}, false},
        LineCase{"AmplifiedToTheLimit",
                 [](CardSettings& card, Sent& sent) {
                   sent.bytes[1] = 200;
                   card.gain = 16;
                 },
                 {16, 255, 48},
                 false},
        LineCase{"AmplifiedToNothing", [](CardSettings& card, Sent&) { card.gain = 0; }, {0, 0, 0}, false}),
    [](const auto& row) { return row.param.name; });

TEST(CardImage, LinesThatDoNotComeAreBlackAndNotCounted) {
  CardSettings card = Card6x3();
  card.offsetY = 2;
  const Stored stored = Store(card, Send());
  EXPECT_EQ(Bytes(stored.bytes.begin(), stored.bytes.begin() + 6), (Bytes{21, 22, 23, 24, 25, 26}));
  EXPECT_TRUE(std::all_of(stored.bytes.begin() + 6, stored.bytes.end(), [](auto byte) { return byte == 0; }));
  EXPECT_EQ(stored.info.deliveredHeight, 1U);
  EXPECT_EQ(stored.info.sizeFilled, 6U);
  EXPECT_TRUE(stored.info.incomplete);
  card.offsetY = 8000;
  EXPECT_EQ(Store(card, Send()).info.deliveredHeight, 0U);
}

TEST(CardImage, OfADamagedFrameHoldsTheLinesThatCame) {
  Sent sent = Send();
  sent.frame.isComplete = false;
  sent.frame.size = 9;  // a line and a half
  CardSettings card = Card6x3();
  Stored stored = Store(card, sent);
  EXPECT_EQ(stored.info.deliveredHeight, 1U);
  EXPECT_TRUE(stored.info.incomplete);
  card.height = 1;
  stored = Store(card, sent);
  EXPECT_EQ(stored.info.deliveredHeight, 1U);
  EXPECT_TRUE(stored.info.incomplete) << "a damaged frame stays one";
}

TEST(CardImage, DoesNotTouchAMemoryThatIsTooSmall) {
  const Stored stored = Store(Card6x3(), Send(), 17);
  EXPECT_EQ(stored.bytes, Bytes(17, 0xEE));
  EXPECT_TRUE(stored.info.largerThanBuffer);
  EXPECT_TRUE(stored.info.incomplete);
  EXPECT_EQ(stored.info.sizeFilled, 0U);
  EXPECT_EQ(stored.info.dataSize, 18U);
}

TEST(CardImage, DoesNotTouchWhatLiesBehindTheImage) {
  const Stored stored = Store(Card6x3(), Send(), 20);
  EXPECT_EQ(stored.bytes[17], 26);
  EXPECT_EQ(stored.bytes[18], 0xEE);
  EXPECT_EQ(stored.bytes[19], 0xEE);
}

// ---- the card -------------------------------------------------------------------------------------------

class CardTest : public testing::Test {
 protected:
  int changes_ = 0;
  Card card_{Card6x3(), [this] { ++changes_; }};
};

TEST_F(CardTest, KeepsItsShapeWhileFramesAreAcquired) {
  card_.BeginAcquisition();
  EXPECT_THROW(card_.SetShape(&CardSettings::width, 4), producer::Error);
  card_.Set(&CardSettings::gain, 2.0);
  EXPECT_EQ(card_.Settings().width, 6);
  EXPECT_EQ(card_.Settings().gain, 2.0);
  card_.EndAcquisition();
  card_.SetShape(&CardSettings::width, 4);
  EXPECT_EQ(card_.FrameBytes(), 12U);
  card_.SetShape(&CardSettings::pixelFormat, cameras::kMono12);
  EXPECT_EQ(card_.FrameBytes(), 24U);
  card_.PowerUp();
  EXPECT_EQ(card_.FrameBytes(), 18U);
  EXPECT_EQ(card_.Settings().gain, 1.0);
}

struct LinkCase {
  ClConfiguration configuration;
  std::uint32_t format;
  std::int64_t mostTaps;  // one more is refused
};

TEST_F(CardTest, StartsOnlyWithTapsThatItsConfigurationCarries) {
  const LinkCase cases[] = {
      {ClConfiguration::base, cameras::kMono8, 3},       {ClConfiguration::base, cameras::kMono12, 2},
      {ClConfiguration::base, cameras::kRGB8, 1},        {ClConfiguration::medium, cameras::kMono8, 6},
      {ClConfiguration::medium, cameras::kMono12, 4},    {ClConfiguration::full, cameras::kMono8, 8},
      {ClConfiguration::full, cameras::kMono16, 4},      {ClConfiguration::eightyBit, cameras::kMono8, 10},
      {ClConfiguration::eightyBit, cameras::kMono10, 8},
  };
  for (const LinkCase& row : cases) {
    card_.SetShape(&CardSettings::configuration, static_cast<std::int64_t>(row.configuration));
    card_.SetShape(&CardSettings::pixelFormat, row.format);
    card_.SetShape(&CardSettings::taps, row.mostTaps);
    EXPECT_NO_THROW(card_.BeginAcquisition()) << row.mostTaps;
    card_.EndAcquisition();
    card_.SetShape(&CardSettings::taps, row.mostTaps + 1);
    EXPECT_THROW(card_.BeginAcquisition(), producer::Error) << row.mostTaps;
  }
}

TEST_F(CardTest, CountsTriggersOfItsSourceWhileItAcquires) {
  card_.Set(&CardSettings::isTriggered, true);
  card_.Trigger(CardTriggerSource::software);
  EXPECT_TRUE(card_.AwaitsTrigger()) << "there is no acquisition yet";
  card_.BeginAcquisition();
  card_.Trigger(CardTriggerSource::line0);
  EXPECT_TRUE(card_.AwaitsTrigger()) << "another source";
  const int before = changes_;
  card_.Trigger(CardTriggerSource::software);
  card_.Trigger(CardTriggerSource::software);
  EXPECT_EQ(changes_, before + 2);
  EXPECT_FALSE(card_.AwaitsTrigger());
  EXPECT_TRUE(card_.TakeTrigger());
  EXPECT_TRUE(card_.TakeTrigger());
  EXPECT_FALSE(card_.TakeTrigger());
  EXPECT_TRUE(card_.AwaitsTrigger());
}

TEST_F(CardTest, ForgetsTriggersOfAnEarlierAcquisition) {
  card_.Set(&CardSettings::isTriggered, true);
  card_.BeginAcquisition();
  card_.Trigger(CardTriggerSource::software);
  card_.EndAcquisition();
  card_.BeginAcquisition();
  EXPECT_TRUE(card_.AwaitsTrigger());
}

TEST_F(CardTest, KeepsABoundedNumberOfTriggers) {
  card_.Set(&CardSettings::isTriggered, true);
  card_.BeginAcquisition();
  for (int i = 0; i < 1000; ++i) card_.Trigger(CardTriggerSource::software);
  int taken = 0;
  while (card_.TakeTrigger()) ++taken;
  EXPECT_EQ(taken, 64);
}

TEST_F(CardTest, WithoutTriggersEveryFrameIsTaken) {
  card_.BeginAcquisition();
  EXPECT_FALSE(card_.AwaitsTrigger());
  EXPECT_FALSE(card_.TakeTrigger());
}

}  // namespace
}  // namespace zyn::simulation
