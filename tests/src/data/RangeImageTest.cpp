#include "RangeImage.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Handles.h"
#include "SetAllValues.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::InternalOf;

namespace {

using Bytes = std::vector<unsigned char>;

constexpr auto kNoType = static_cast<ZynImageType>(7);
constexpr auto kNegativeType = static_cast<ZynImageType>(-1);

const std::vector<std::pair<ZynImageType, int>> kElementBytes = {
    {ZYN_IMAGE_U8, 1},  {ZYN_IMAGE_S8, 1},  {ZYN_IMAGE_U16, 2}, {ZYN_IMAGE_S16, 2},
    {ZYN_IMAGE_S32, 4}, {ZYN_IMAGE_F32, 4}, {ZYN_IMAGE_F64, 8}};

Bytes Counting(std::size_t count) {
  Bytes bytes(count);
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<unsigned char>(i + 1);
  return bytes;
}

bool Create(ZynRangeImage& range, void* data, int width, int height, int stride, ZynImageType type,
            double minValue = 0, double maxValue = 9) {
  return range.CreateRangeImage(data, width, height, stride, type, minValue, maxValue, 1, 2, 3, 4, 5, 6);
}

// 3 x 2 bytes, 1 to 6.
ZynRangeImage Small() {
  Bytes data = Counting(6);
  return {data.data(), 3, 2, 3, ZYN_IMAGE_U8, 4, 9, 1, 2, 3, 4, 5, 6};
}

std::size_t ElementBytes(const ZynRangeImage& range) {
  return static_cast<RangeImage*>(InternalOf(range))->ElementBytes();
}

Bytes Content(const ZynRangeImage& range) {
  const auto* data = static_cast<const unsigned char*>(range.Data());
  return {data, data + static_cast<std::size_t>(range.Width() * range.Height()) * ElementBytes(range)};
}

struct State {
  int type, width, height;
  double minValue, maxValue, resolutionX, resolutionY, resolutionZ, offsetX, offsetY, offsetZ;
  bool operator==(const State& other) const = default;
};

State StateOf(const ZynRangeImage& range) {
  return {range.DataType(), range.Width(),       range.Height(),      range.MinValue(),
          range.MaxValue(), range.ResolutionX(), range.ResolutionY(), range.ResolutionZ(),
          range.OffsetX(),  range.OffsetY(),     range.OffsetZ()};
}

constexpr State kEmpty{0, 0, 0, 0, 0, 1, 1, 1, 0, 0, 0};
constexpr State kSmall{0, 3, 2, 4, 9, 3, 5, 1, 4, 6, 2};

bool IsEmptyRange(const ZynRangeImage& range) {
  return InternalOf(range) && StateOf(range) == kEmpty && ElementBytes(range) == 1 && !range.Data() &&
         !range.ColorData();
}

std::string TraceOf(const std::function<void()>& work) {
  testing::internal::CaptureStdout();
  work();
  return testing::internal::GetCapturedStdout();
}

template <class T>
double FirstValueOf(T value, ZynImageType type) {
  ZynRangeImage range;
  EXPECT_TRUE(Create(range, &value, 1, 1, sizeof(T), type));
  return range.GetValue(0, 0);
}

}  // namespace

TEST(ZynRangeImage, WithoutARangeImageAnswersNothing) {
  ZynRangeImage range;
  unsigned char byte = 1;
  range.SetColorSize(1, 1, 1);
  EXPECT_EQ(range.SetColorValue(&byte, 0, 1, 0, 0), 0);
  range.Clear();
  EXPECT_EQ(InternalOf(range), nullptr);
  EXPECT_EQ(StateOf(range), (State{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(range.Data(), nullptr);
  EXPECT_EQ(range.ColorData(), nullptr);
  EXPECT_EQ(range.GetValue(0, 0), 0.0);
  EXPECT_EQ(range.GetColor(0, 0), ZynColor(0, 0, 0, 255));
  EXPECT_FALSE(range.IsValidColor());
  EXPECT_EQ(InternalOf(range.DeepCopy()), nullptr);
  EXPECT_EQ(InternalOf(range.DeepCopyValues()), nullptr);
  EXPECT_EQ(InternalOf(range.DeepCopyColors()), nullptr);
  EXPECT_EQ(range.Save("x", 0), 0);
  EXPECT_EQ(range.Save(L"x", 0), 0);
}

TEST(ZynRangeImage, FourOperationsMakeARangeImageFirst) {
  const std::function<void(ZynRangeImage&)> operations[] = {
      [](ZynRangeImage& range) { EXPECT_FALSE(Create(range, nullptr, 1, 1, 1, ZYN_IMAGE_U8)); },
      [](ZynRangeImage& range) { range.SetSize(0, 0, ZYN_IMAGE_U8); },
      [](ZynRangeImage& range) { range.SetInfo(1, 0, 1, 0, 1, 0); },
      [](ZynRangeImage& range) {
        unsigned char byte = 1;
        EXPECT_FALSE(range.SetValue(&byte, 0, 0, 0, 0, 0));
      },
  };
  for (const auto& operation : operations) {
    ZynRangeImage range;
    operation(range);
    EXPECT_TRUE(IsEmptyRange(range));
    const void* made = InternalOf(range);
    operation(range);
    EXPECT_EQ(InternalOf(range), made);
  }
}

TEST(ZynRangeImage, TheConstructorTakesZThenXThenY) {
  Bytes data = Counting(6);
  const ZynRangeImage range(data.data(), 3, 2, 3, ZYN_IMAGE_U8, 4, 9, 1, 2, 3, 4, 5, 6);
  EXPECT_EQ(StateOf(range), kSmall);
  EXPECT_EQ(Content(range), data);
  EXPECT_NE(range.Data(), data.data());
}

TEST(ZynRangeImage, TheConstructorMakesAnEmptyOneOfBadArguments) {
  EXPECT_TRUE(IsEmptyRange(ZynRangeImage(nullptr, 3, 2, 3, ZYN_IMAGE_U8, 4, 9, 1, 2, 3, 4, 5, 6)));
}

TEST(ZynRangeImage, CreatingTakesZThenXThenY) {
  Bytes data = Counting(6);
  ZynRangeImage range;
  EXPECT_TRUE(range.CreateRangeImage(data.data(), 3, 2, 3, ZYN_IMAGE_U8, 4, 9, 1, 2, 3, 4, 5, 6));
  EXPECT_EQ(StateOf(range), kSmall);
  EXPECT_EQ(Content(range), data);
}

TEST(ZynRangeImage, CreatingPacksTheRowsOfEveryType) {
  for (const auto& [type, bytes] : kElementBytes) {
    const int rowBytes = 3 * bytes;
    const int stride = rowBytes + 5;
    Bytes data = Counting(static_cast<std::size_t>(2 * stride));
    ZynRangeImage range;
    ASSERT_TRUE(Create(range, data.data(), 3, 2, stride, type));
    Bytes expected(data.begin(), data.begin() + rowBytes);
    expected.insert(expected.end(), data.begin() + stride, data.begin() + stride + rowBytes);
    EXPECT_EQ(range.DataType(), type);
    EXPECT_EQ(ElementBytes(range), static_cast<std::size_t>(bytes));
    EXPECT_EQ(Content(range), expected) << type;
  }
}

struct BadRange {
  const char* name;
  bool hasData;
  int width, height, stride;
  ZynImageType type;
  double minValue, maxValue;
};

class ZynRangeImageRefuses : public testing::TestWithParam<BadRange> {};

TEST_P(ZynRangeImageRefuses, AndChangesNothing) {
  const BadRange& bad = GetParam();
  Bytes data = Counting(64);
  ZynRangeImage range = Small();
  EXPECT_FALSE(range.CreateRangeImage(bad.hasData ? data.data() : nullptr, bad.width, bad.height, bad.stride,
                                      bad.type, bad.minValue, bad.maxValue, 11, 12, 13, 14, 15, 16));
  EXPECT_EQ(StateOf(range), kSmall);
  EXPECT_EQ(Content(range), Counting(6));
}

INSTANTIATE_TEST_SUITE_P(
    Table, ZynRangeImageRefuses,
    testing::Values(BadRange{"NullData", false, 2, 2, 2, ZYN_IMAGE_U8, 0, 1},
                    BadRange{"NoWidthAndNoHeight", true, 0, 0, 2, ZYN_IMAGE_U8, 0, 1},
                    BadRange{"NegativeWidthAndHeight", true, -1, -1, 2, ZYN_IMAGE_U8, 0, 1},
                    BadRange{"WidthAboveStride", true, 3, 2, 2, ZYN_IMAGE_U8, 0, 1},
                    BadRange{"WidthAboveNegativeStride", true, 1, 2, -1, ZYN_IMAGE_U8, 0, 1},
                    BadRange{"TypeSeven", true, 2, 2, 2, kNoType, 0, 1},
                    BadRange{"NegativeType", true, 2, 2, 2, kNegativeType, 0, 1},
                    BadRange{"NegativeMinimum", true, 2, 2, 2, ZYN_IMAGE_U8, -1, 1},
                    BadRange{"MinimumAboveMaximum", true, 2, 2, 2, ZYN_IMAGE_U8, 2, 1}),
    [](const testing::TestParamInfo<BadRange>& tested) { return tested.param.name; });

TEST(ZynRangeImage, MinimumAndMaximumMayBeEqual) {
  unsigned char byte = 1;
  ZynRangeImage range;
  EXPECT_TRUE(Create(range, &byte, 1, 1, 1, ZYN_IMAGE_U8, 5, 5));
  EXPECT_EQ(range.MinValue(), 5.0);
  EXPECT_EQ(range.MaxValue(), 5.0);
}

TEST(ZynRangeImage, TheWidthInValuesIsComparedWithTheStrideInBytes) {
  Bytes data = Counting(32);
  ZynRangeImage range;
  EXPECT_TRUE(Create(range, data.data(), 4, 2, 4, ZYN_IMAGE_S32));  // 16 bytes a row, beginning every 4
  Bytes expected(data.begin(), data.begin() + 16);
  expected.insert(expected.end(), data.begin() + 4, data.begin() + 20);
  EXPECT_EQ(Content(range), expected);
}

TEST(ZynRangeImage, CreatingWithoutHeightTakesTheNumbersOnly) {
  Bytes data = Counting(20);
  ZynRangeImage range = Small();
  EXPECT_TRUE(range.CreateRangeImage(data.data(), 10, 0, 10, ZYN_IMAGE_U16, 0, 1, 11, 12, 13, 14, 15, 16));
  EXPECT_EQ(StateOf(range), (State{0, 3, 2, 0, 1, 13, 15, 11, 14, 16, 12}));
  EXPECT_EQ(Content(range), Counting(6));
  ZynRangeImage empty;
  EXPECT_TRUE(Create(empty, data.data(), 10, 0, 10, ZYN_IMAGE_U8, 0, 1));
  EXPECT_EQ(empty.Data(), nullptr);
  EXPECT_EQ(empty.MaxValue(), 1.0);
}

TEST(ZynRangeImage, CreatingWithoutWidthTakesTheNumbersOnly) {
  Bytes data = Counting(20);
  for (const int width : {0, -1, INT_MIN}) {
    ZynRangeImage range = Small();
    EXPECT_TRUE(
        range.CreateRangeImage(data.data(), width, 5, 10, ZYN_IMAGE_U16, 0, 1, 11, 12, 13, 14, 15, 16));
    EXPECT_EQ(StateOf(range), (State{0, 3, 2, 0, 1, 13, 15, 11, 14, 16, 12}));
    EXPECT_EQ(Content(range), Counting(6));
  }
}

TEST(ZynRangeImage, CanBeCreatedFromItsOwnValues) {
  ZynRangeImage range = Small();
  EXPECT_TRUE(Create(range, static_cast<unsigned char*>(range.Data()) + 1, 2, 2, 3, ZYN_IMAGE_U8));
  EXPECT_EQ(Content(range), (Bytes{2, 3, 5, 6}));
}

TEST(ZynRangeImage, TooManyBytesRaiseLengthErrorAndChangeNothing) {
  unsigned char byte = 1;
  ZynRangeImage range = Small();
  EXPECT_THROW(range.SetSize(65536, 65536, ZYN_IMAGE_U8), std::length_error);
  EXPECT_THROW(range.SetSize(INT_MAX, 1, ZYN_IMAGE_F64), std::length_error);
  EXPECT_THROW(Create(range, &byte, 65536, 32768, 65536, ZYN_IMAGE_U8), std::length_error);
  EXPECT_EQ(StateOf(range), kSmall);
  EXPECT_EQ(Content(range), Counting(6));
}

TEST(ZynRangeImage, SetSizeFillsTheValuesWithThePattern) {
  ZynRangeImage range = Small();
  range.SetSize(2, 2, ZYN_IMAGE_U8);
  EXPECT_EQ(StateOf(range), (State{0, 2, 2, 4, 9, 3, 5, 1, 4, 6, 2}));
  EXPECT_EQ(Content(range), (Bytes{0x0D, 0xF0, 0xAD, 0xBA}));
  EXPECT_EQ(range.GetValue(0, 0), 13.0);
  EXPECT_EQ(range.GetValue(0, 1), 240.0);
  range.SetSize(1, 2, ZYN_IMAGE_S32);
  EXPECT_EQ(range.GetValue(0, 0), -1163005939.0);
  EXPECT_EQ(range.GetValue(1, 0), -1163005939.0);
  EXPECT_EQ(ElementBytes(range), 4U);
}

TEST(ZynRangeImage, AShapeThatFitsLeavesTheValuesWhereTheyAre) {
  Bytes data = Counting(20000);
  ZynRangeImage range;
  range.SetSize(100, 100, ZYN_IMAGE_U16);
  const void* values = range.Data();
  range.SetSize(100, 100, ZYN_IMAGE_U16);
  EXPECT_EQ(range.Data(), values);
  EXPECT_TRUE(SetAllValues(range, data.data(), 100, 100, ZYN_IMAGE_U16, 0, 9));
  EXPECT_EQ(range.Data(), values);
  EXPECT_EQ(Content(range), data);
  range.SetSize(3, 2, ZYN_IMAGE_U8);
  EXPECT_EQ(range.Data(), values);
  EXPECT_EQ(Content(range), (Bytes{0x0D, 0xF0, 0xAD, 0xBA, 0x0D, 0xF0}));
  range.Clear();
  EXPECT_EQ(range.Data(), nullptr);
  range.SetSize(100, 100, ZYN_IMAGE_U16);
  EXPECT_EQ(range.Data(), values);
}

TEST(ZynRangeImage, SetSizeTakesEveryType) {
  for (const auto& [type, bytes] : kElementBytes) {
    ZynRangeImage range;
    range.SetSize(3, 1, type);
    EXPECT_EQ(range.DataType(), type);
    EXPECT_EQ(Content(range).size(), static_cast<std::size_t>(3 * bytes));
  }
}

TEST(ZynRangeImage, SetSizeRefusesOtherTypesAndEmptyShapes) {
  ZynRangeImage range = Small();
  range.SetSize(2, 2, kNoType);
  range.SetSize(2, 2, kNegativeType);
  range.SetSize(0, 2, ZYN_IMAGE_U8);
  range.SetSize(2, 0, ZYN_IMAGE_U8);
  range.SetSize(-1, -1, ZYN_IMAGE_U8);
  EXPECT_EQ(StateOf(range), kSmall);
  EXPECT_EQ(Content(range), Counting(6));
}

TEST(ZynRangeImage, SetInfoTakesZThenXThenY) {
  ZynRangeImage range;
  range.SetInfo(1, 2, 3, 4, 5, 6);
  EXPECT_EQ(StateOf(range), (State{0, 0, 0, 0, 0, 3, 5, 1, 4, 6, 2}));
}

TEST(ZynRangeImage, SetsRowsInclusively) {
  ZynRangeImage range;
  range.SetSize(2, 3, ZYN_IMAGE_U16);
  Bytes rows = Counting(8);
  EXPECT_TRUE(range.SetValue(rows.data(), ZYN_IMAGE_U16, 0, 0, 1, 2));
  EXPECT_EQ(Content(range), (Bytes{0x0D, 0xF0, 0xAD, 0xBA, 1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_TRUE(range.SetValue(rows.data() + 4, ZYN_IMAGE_U16, 0, 0, 0, 0));
  EXPECT_EQ(Content(range), (Bytes{5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(ZynRangeImage, RowsMayComeFromItself) {
  ZynRangeImage range;
  Bytes data = Counting(6);
  ASSERT_TRUE(Create(range, data.data(), 2, 3, 2, ZYN_IMAGE_U8));
  EXPECT_TRUE(range.SetValue(range.Data(), ZYN_IMAGE_U8, 0, 0, 1, 2));
  EXPECT_EQ(Content(range), (Bytes{1, 2, 1, 2, 3, 4}));
}

TEST(ZynRangeImage, SetValueRefusesAndChangesNothing) {
  ZynRangeImage range = Small();
  Bytes rows(64, 99);
  EXPECT_FALSE(range.SetValue(nullptr, ZYN_IMAGE_U8, 0, 99, 0, 1));
  EXPECT_FALSE(range.SetValue(rows.data(), ZYN_IMAGE_U8, 0, 99, -1, 1));
  EXPECT_FALSE(range.SetValue(rows.data(), ZYN_IMAGE_U8, 0, 99, 1, 0));
  EXPECT_FALSE(range.SetValue(rows.data(), ZYN_IMAGE_U8, 0, 99, 0, 2));
  EXPECT_FALSE(range.SetValue(rows.data(), ZYN_IMAGE_U8, 0, 99, 2, 2));
  EXPECT_FALSE(range.SetValue(rows.data(), ZYN_IMAGE_S8, 0, 99, 0, 1));
  EXPECT_FALSE(range.SetValue(rows.data(), 7, 0, 99, 0, 1));
  EXPECT_EQ(StateOf(range), kSmall);
  EXPECT_EQ(Content(range), Counting(6));
}

struct Bounds {
  const char* name;
  double minValue, maxValue;  // given
  double newMin, newMax;      // of a range from 4 to 9
};

class ZynRangeImageBounds : public testing::TestWithParam<Bounds> {};

TEST_P(ZynRangeImageBounds, WidenOnly) {
  const Bounds& bounds = GetParam();
  ZynRangeImage range = Small();
  unsigned char row[3] = {7, 8, 9};
  EXPECT_TRUE(range.SetValue(row, ZYN_IMAGE_U8, bounds.minValue, bounds.maxValue, 0, 0));
  EXPECT_EQ(range.MinValue(), bounds.newMin);
  EXPECT_EQ(range.MaxValue(), bounds.newMax);
}

INSTANTIATE_TEST_SUITE_P(Table, ZynRangeImageBounds,
                         testing::Values(Bounds{"BothWider", 3, 10, 3, 10},
                                         Bounds{"BothNarrower", 5, 8, 4, 9}, Bounds{"BothEqual", 4, 9, 4, 9},
                                         Bounds{"ZeroMinimum", 0, 9, 0, 9},
                                         Bounds{"NegativesAreIgnored", -1, -1, 4, 9},
                                         Bounds{"MaximumBelowMinimum", 2, 1, 2, 9}),
                         [](const testing::TestParamInfo<Bounds>& tested) { return tested.param.name; });

TEST(ZynRangeImage, AMinimumOfZeroStays) {
  ZynRangeImage range;
  range.SetSize(1, 1, ZYN_IMAGE_U8);
  unsigned char value = 7;
  EXPECT_TRUE(range.SetValue(&value, ZYN_IMAGE_U8, 5, 8, 0, 0));
  EXPECT_EQ(range.MinValue(), 0.0);
  EXPECT_EQ(range.MaxValue(), 8.0);
}

TEST(SetAllValues, DoesWhatSizingAndSettingAllRowsDo) {
  for (const auto& [type, bytes] : kElementBytes) {
    for (const auto& [minValue, maxValue] :
         {std::pair(3.0, 10.0), std::pair(5.0, 8.0), std::pair(-1.0, -1.0)}) {
      Bytes data = Counting(static_cast<std::size_t>(10 * bytes));
      ZynRangeImage expected = Small();
      expected.SetSize(5, 2, type);
      EXPECT_TRUE(expected.SetValue(data.data(), type, minValue, maxValue, 0, 1));
      ZynRangeImage range = Small();
      const ZynRangeImage sharing(range);
      EXPECT_TRUE(SetAllValues(range, data.data(), 5, 2, type, minValue, maxValue));
      EXPECT_EQ(StateOf(range), StateOf(expected));
      EXPECT_EQ(Content(range), Content(expected));
      EXPECT_EQ(sharing.Data(), range.Data());
    }
  }
}

TEST(SetAllValues, MakesARangeImageFirst) {
  ZynRangeImage range;
  Bytes data = Counting(6);
  EXPECT_TRUE(SetAllValues(range, data.data(), 3, 2, ZYN_IMAGE_U8, 0, 7));
  EXPECT_EQ(Content(range), data);
  EXPECT_EQ(range.MaxValue(), 7.0);
}

TEST(SetAllValues, RefusesAndChangesNothing) {
  unsigned char byte = 1;
  ZynRangeImage range = Small();
  EXPECT_FALSE(SetAllValues(range, nullptr, 1, 1, ZYN_IMAGE_U8, 0, 99));
  EXPECT_FALSE(SetAllValues(range, &byte, 0, 1, ZYN_IMAGE_U8, 0, 99));
  EXPECT_FALSE(SetAllValues(range, &byte, 1, 0, ZYN_IMAGE_U8, 0, 99));
  EXPECT_FALSE(SetAllValues(range, &byte, -1, -1, ZYN_IMAGE_U8, 0, 99));
  EXPECT_FALSE(SetAllValues(range, &byte, 1, 1, kNoType, 0, 99));
  EXPECT_FALSE(SetAllValues(range, &byte, 1, 1, kNegativeType, 0, 99));
  EXPECT_THROW(SetAllValues(range, &byte, 65536, 65536, ZYN_IMAGE_U8, 0, 99), std::length_error);
  EXPECT_EQ(StateOf(range), kSmall);
  EXPECT_EQ(Content(range), Counting(6));
}

TEST(ZynRangeImage, ReadsEveryTypeAsDouble) {
  EXPECT_EQ(FirstValueOf<std::uint8_t>(200, ZYN_IMAGE_U8), 200.0);
  EXPECT_EQ(FirstValueOf<std::int8_t>(-100, ZYN_IMAGE_S8), -100.0);
  EXPECT_EQ(FirstValueOf<std::uint16_t>(65535, ZYN_IMAGE_U16), 65535.0);
  EXPECT_EQ(FirstValueOf<std::int16_t>(-32768, ZYN_IMAGE_S16), -32768.0);
  EXPECT_EQ(FirstValueOf<std::int32_t>(INT_MIN, ZYN_IMAGE_S32), -2147483648.0);
  EXPECT_EQ(FirstValueOf<std::int32_t>(16777217, ZYN_IMAGE_S32), 16777217.0);
  EXPECT_EQ(FirstValueOf<float>(0.1F, ZYN_IMAGE_F32), static_cast<double>(0.1F));
  EXPECT_EQ(FirstValueOf<double>(0.1, ZYN_IMAGE_F64), 0.1);
}

TEST(ZynRangeImage, ReadsByRowAndColumnAndZeroOutside) {
  const ZynRangeImage range = Small();
  EXPECT_EQ(range.GetValue(0, 0), 1.0);
  EXPECT_EQ(range.GetValue(0, 2), 3.0);
  EXPECT_EQ(range.GetValue(1, 0), 4.0);
  EXPECT_EQ(range.GetValue(1, 2), 6.0);
  EXPECT_EQ(range.GetValue(-1, 0), 0.0);
  EXPECT_EQ(range.GetValue(1, -1), 0.0);
  EXPECT_EQ(range.GetValue(2, 0), 0.0);
  EXPECT_EQ(range.GetValue(0, 3), 0.0);
  EXPECT_EQ(range.GetValue(INT_MIN, INT_MAX), 0.0);
}

TEST(ZynRangeImage, HasNoColorsAtFirst) {
  const ZynRangeImage range = Small();
  EXPECT_FALSE(range.IsValidColor());
  EXPECT_EQ(range.ColorData(), nullptr);
  EXPECT_EQ(range.GetColor(0, 0), ZynColor(0, 0, 0, 255));
  EXPECT_EQ(InternalOf(range.DeepCopyColors()), nullptr);
}

TEST(ZynRangeImage, PassesColorsToItsColorArray) {
  ZynRangeImage range = Small();
  range.SetColorSize(2, 2, 3);
  ASSERT_TRUE(range.IsValidColor());
  EXPECT_EQ(Bytes(range.ColorData(), range.ColorData() + 12),
            (Bytes{0x0D, 0xF0, 0xAD, 0xBA, 0x0D, 0xF0, 0xAD, 0xBA, 0x0D, 0xF0, 0xAD, 0xBA}));
  Bytes row = Counting(6);
  EXPECT_EQ(range.SetColorValue(row.data(), 0, 3, 1, 1), 0);
  EXPECT_EQ(Bytes(range.ColorData() + 6, range.ColorData() + 12), row);
  EXPECT_EQ(range.GetColor(1, 1), ZynColor(6, 5, 4, 255));
  EXPECT_EQ(range.GetColor(2, 0), ZynColor());
  EXPECT_EQ(range.GetColor(0, 2), ZynColor());
}

TEST(ZynRangeImage, SettingColorsIgnoresTheFirstNumber) {
  for (const int ignored : {INT_MIN, -1, 0, 1, 3, INT_MAX}) {
    ZynRangeImage range = Small();
    range.SetColorSize(1, 1, 1);
    unsigned char byte = 77;
    EXPECT_EQ(range.SetColorValue(&byte, ignored, 1, 0, 0), 0);
    EXPECT_EQ(*range.ColorData(), 77);
    EXPECT_EQ(range.SetColorValue(&byte, ignored, 3, 0, 0), 0);  // 0 although nothing was copied
  }
}

TEST(ZynRangeImage, ANegativeColumnReadsTheColorOfTheRowBefore) {
  ZynRangeImage range = Small();
  range.SetColorSize(2, 2, 1);
  Bytes bytes{11, 12, 13, 14};
  range.SetColorValue(bytes.data(), 0, 1, 0, 1);
  EXPECT_EQ(range.GetColor(1, -1), ZynColor(12, 12, 12, 255));
  EXPECT_EQ(range.GetColor(1, -2), ZynColor(11, 11, 11, 255));
  EXPECT_EQ(range.GetColor(0, -1), ZynColor());
  EXPECT_EQ(range.GetColor(-1, 1), ZynColor());
  EXPECT_EQ(range.GetColor(2, -1), ZynColor());  // the row is tested, though the index would lie inside
  EXPECT_EQ(range.GetColor(INT_MIN, INT_MIN), ZynColor());
}

TEST(ZynRangeImage, ClearResetsEverything) {
  ZynRangeImage range = Small();
  range.SetSize(2, 2, ZYN_IMAGE_F64);
  range.SetColorSize(2, 2, 3);
  range.Clear();
  EXPECT_TRUE(IsEmptyRange(range));
  EXPECT_FALSE(range.IsValidColor());
  EXPECT_EQ(range.GetValue(0, 0), 0.0);
  EXPECT_EQ(range.GetColor(0, 0), ZynColor());
}

TEST(ZynRangeImage, CopiesShareTheValues) {
  ZynRangeImage first = Small();
  const ZynRangeImage second(first);
  ZynRangeImage third;
  third = first;
  static_cast<unsigned char*>(first.Data())[0] = 99;
  EXPECT_EQ(second.GetValue(0, 0), 99.0);
  EXPECT_EQ(third.GetValue(0, 0), 99.0);
  EXPECT_EQ(InternalOf(second), InternalOf(third));
}

TEST(ZynRangeImage, TheValuesLiveAsLongAsTheLastReference) {
  auto first = std::make_unique<ZynRangeImage>(Small());
  const ZynRangeImage second(*first);
  first.reset();
  EXPECT_EQ(Content(second), Counting(6));
}

TEST(ZynRangeImage, AssigningTheLastReferenceToItselfDropsTheRangeImage) {
  ZynRangeImage range = Small();
  const ZynRangeImage& same = range;
  range = same;
  EXPECT_EQ(InternalOf(range), nullptr);
  ZynRangeImage shared = Small();
  const ZynRangeImage other(shared);
  const ZynRangeImage& sameShared = shared;
  shared = sameShared;
  EXPECT_EQ(InternalOf(shared), InternalOf(other));
}

TEST(ZynRangeImage, ADeepCopyHasEverythingOfItsOwn) {
  ZynRangeImage range = Small();
  range.SetColorSize(1, 1, 1);
  const ZynRangeImage copy = range.DeepCopy();
  EXPECT_EQ(StateOf(copy), kSmall);
  EXPECT_EQ(ElementBytes(copy), 1U);
  static_cast<unsigned char*>(range.Data())[0] = 99;
  range.ColorData()[0] = 99;
  EXPECT_EQ(Content(copy), Counting(6));
  EXPECT_EQ(copy.GetColor(0, 0), ZynColor(13, 13, 13, 255));
}

TEST(ZynRangeImage, ADeepCopyOfAnEmptyOneIsEmpty) {
  ZynRangeImage range;
  range.SetInfo(1, 0, 1, 0, 1, 0);
  EXPECT_TRUE(IsEmptyRange(range.DeepCopy()));
}

TEST(ZynRangeImage, DeepCopyingTheValuesGivesAnImage) {
  for (const auto& [type, bytes] : kElementBytes) {
    Bytes data = Counting(static_cast<std::size_t>(6 * bytes));
    ZynRangeImage range;
    ASSERT_TRUE(Create(range, data.data(), 3, 2, 3 * bytes, type));
    const ZynImage image = range.DeepCopyValues();
    EXPECT_EQ(image.Step(), 3 * bytes);
    EXPECT_EQ(image.Height(), 2);
    EXPECT_EQ(image.Width(), 3);
    EXPECT_EQ(image.Channels(), 1);
    EXPECT_EQ(image.BitDepth(), type);
    EXPECT_NE(image.ImageData(), range.Data());
    EXPECT_EQ(Bytes(image.ImageData(), image.ImageData() + 6 * bytes), data);
  }
}

TEST(ZynRangeImage, DeepCopyingNoValuesGivesNoImage) {
  ZynRangeImage range;
  range.SetInfo(1, 0, 1, 0, 1, 0);
  EXPECT_EQ(InternalOf(range.DeepCopyValues()), nullptr);
}

TEST(ZynRangeImage, DeepCopyingTheColorsGivesAnArrayOfItsOwn) {
  ZynRangeImage range = Small();
  range.SetColorSize(2, 1, 1);
  const ZynColorArray colors = range.DeepCopyColors();
  EXPECT_EQ(colors.Width(), 2);
  EXPECT_EQ(colors.Height(), 1);
  EXPECT_EQ(colors.Channel(), 1);
  range.ColorData()[0] = 99;
  EXPECT_EQ(colors[0], ZynColor(13, 13, 13, 255));
}

TEST(ZynRangeImage, TracesItsColorsOnlyOnceTheyExist) {
  EXPECT_EQ(TraceOf([] {
              const ZynRangeImage range = Small();
              const ZynRangeImage copy = range.DeepCopy();
            }),
            "");
  EXPECT_EQ(TraceOf([] {
              ZynRangeImage range = Small();
              range.SetColorSize(1, 1, 1);
              range.SetColorSize(2, 1, 1);
              const ZynRangeImage copy = range.DeepCopy();
            }),
            "ColorArray()\nColorArray(void* data, int width, int height, int channel)\n"
            "~ColorArray()\n~ColorArray()\n");
}

TEST(ZynRangeImage, SavesNothingAndAnswersZero) {
  const std::string path = testing::TempDir() + "zyn-range-image-that-must-not-appear";
  ZynRangeImage range = Small();
  EXPECT_EQ(range.Save(path.c_str(), 0), 0);
  EXPECT_EQ(range.Save(std::wstring(path.begin(), path.end()).c_str(), 1), 0);
  EXPECT_EQ(range.Save("", 0), 0);
  EXPECT_EQ(range.Save(static_cast<const char*>(nullptr), 0), 0);
  EXPECT_EQ(range.Save(static_cast<const wchar_t*>(nullptr), 0), 0);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(RangeImage, ConvertsPaths) {
  wchar_t wide[8] = L"zzzzzzz";
  EXPECT_EQ(RangeImage::char_to_wchar(wide, ""), 0U);
  EXPECT_EQ(wide[0], L'z');
  EXPECT_EQ(RangeImage::char_to_wchar(wide, "a/b"), 3U);
  EXPECT_EQ(std::wstring(wide), L"a/b");
  char narrow[20] = "zzzz";
  EXPECT_EQ(RangeImage::wchar_to_char(narrow, L""), 0U);
  EXPECT_EQ(narrow[0], 'z');
  EXPECT_EQ(RangeImage::wchar_to_char(narrow, L"a/b"), 3U);
  EXPECT_EQ(std::string(narrow), "a/b");
}
