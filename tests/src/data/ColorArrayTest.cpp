#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "ColorArray.h"
#include "Handles.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::InternalOf;

namespace {

using Bytes = std::vector<unsigned char>;

Bytes Counting(std::size_t count) {
  Bytes bytes(count);
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<unsigned char>(i + 1);
  return bytes;
}

ZynColorArray Grid(int width, int height, int channel) {
  Bytes bytes = Counting(static_cast<std::size_t>(width * height * channel));
  return {bytes.data(), width, height, channel};
}

Bytes Content(const ZynColorArray& colors) {
  return {colors.Data(), colors.Data() + colors.Length() * colors.Channel()};
}

struct Shape {
  int width, height, channel;
  bool operator==(const Shape& other) const {
    return width == other.width && height == other.height && channel == other.channel;
  }
};

Shape ShapeOf(const ZynColorArray& colors) {
  return {colors.Width(), colors.Height(), colors.Channel()};
}

constexpr Shape kEmpty{0, 0, 1};

bool IsEmptyArray(const ZynColorArray& colors) {
  return InternalOf(colors) && ShapeOf(colors) == kEmpty && colors.Length() == 0 && !colors.Data();
}

std::string TraceOf(const std::function<void()>& work) {
  testing::internal::CaptureStdout();
  work();
  return testing::internal::GetCapturedStdout();
}

}  // namespace

TEST(ZynColor, IsBlackAndOpaqueAtFirst) {
  EXPECT_EQ(ZynColor(), ZynColor(0, 0, 0, 255));
}

TEST(ZynColor, TakesItsComponentsInOrderAndCopiesAllFour) {
  const ZynColor color(1, -2, 300, 4);
  EXPECT_EQ(color.red, 1);
  EXPECT_EQ(color.green, -2);
  EXPECT_EQ(color.blue, 300);
  EXPECT_EQ(color.alpha, 4);
  const ZynColor copy(color);
  ZynColor assigned;
  assigned = color;
  EXPECT_EQ(copy, color);
  EXPECT_EQ(assigned, color);
  EXPECT_NE(color, ZynColor(1, -2, 300, 5));
  EXPECT_NE(color, ZynColor(1, -2, 301, 4));
  EXPECT_NE(color, ZynColor(1, -1, 300, 4));
  EXPECT_NE(color, ZynColor(0, -2, 300, 4));
}

TEST(ZynColorArray, WithoutColorsAnswersNothing) {
  ZynColorArray colors;
  unsigned char byte = 1;
  ZynColor out(1, 2, 3, 4);
  EXPECT_EQ(colors.SetValue(&byte, 1, 0, 0), 0);
  colors.SetColor(5);
  colors.Replace(0, ZynColor());
  colors.Select(0, &out);
  colors.Clear();
  EXPECT_EQ(out, ZynColor(1, 2, 3, 4));
  EXPECT_EQ(ShapeOf(colors), (Shape{0, 0, 0}));
  EXPECT_EQ(colors.Length(), 0);
  EXPECT_EQ(colors.Data(), nullptr);
  EXPECT_EQ(colors[0], ZynColor());
  EXPECT_EQ(InternalOf(colors.DeepCopy()), nullptr);
  EXPECT_EQ(InternalOf(colors), nullptr);
}

TEST(ZynColorArray, ShapingOperationsMakeAnArrayFirst) {
  const std::function<void(ZynColorArray&)> operations[] = {
      [](ZynColorArray& colors) { colors.SetSize(-1, 0, 1); },
      [](ZynColorArray& colors) { colors.Create(-1, 1); },
      [](ZynColorArray& colors) { EXPECT_FALSE(colors.CreateColorArray(nullptr, 1, 1, 1)); },
      [](ZynColorArray& colors) { colors.Append(ZynColorArray()); },
  };
  for (const auto& operation : operations) {
    ZynColorArray colors;
    EXPECT_EQ(TraceOf([&] { operation(colors); }), "ColorArray()\n");
    EXPECT_TRUE(IsEmptyArray(colors));
    EXPECT_EQ(TraceOf([&] { operation(colors); }), "");  // the second time it is there
  }
}

TEST(ZynColorArray, MakingAndDestroyingIsTraced) {
  Bytes bytes = Counting(16);
  EXPECT_EQ(TraceOf([&] { const ZynColorArray colors(bytes.data(), 4, 3); }),
            "ColorArray(void* data, int size, int channel)\n~ColorArray()\n");
  EXPECT_EQ(TraceOf([&] { const ZynColorArray colors(bytes.data(), 2, 2, 4); }),
            "ColorArray(void* data, int width, int height, int channel)\n~ColorArray()\n");
  EXPECT_EQ(TraceOf([&] { const ZynColorArray colors(nullptr, 0, 0); }),
            "ColorArray(void* data, int size, int channel)\n~ColorArray()\n");
  EXPECT_EQ(TraceOf([&] {
              ZynColorArray colors;
              colors.SetSize(1, 1, 1);
            }),
            "ColorArray()\n~ColorArray()\n");
}

TEST(ZynColorArray, CopiesOfAHandleTraceNothing) {
  const ZynColorArray colors = Grid(2, 1, 1);
  EXPECT_EQ(TraceOf([&] {
              const ZynColorArray copy(colors);  // NOLINT(performance-unnecessary-copy-initialization)
              ZynColorArray assigned;
              assigned = copy;
            }),
            "");
}

TEST(ZynColorArray, ADeepCopyIsTracedAsMadeFromData) {
  const ZynColorArray colors = Grid(2, 1, 1);
  EXPECT_EQ(TraceOf([&] { const ZynColorArray copy = colors.DeepCopy(); }),
            "ColorArray(void* data, int width, int height, int channel)\n~ColorArray()\n");
}

TEST(ZynColorArray, OfASizeIsOneRow) {
  for (const int channel : {1, 3, 4}) {
    Bytes bytes = Counting(20);
    const ZynColorArray colors(bytes.data(), 5, channel);
    EXPECT_EQ(ShapeOf(colors), (Shape{5, 1, channel}));
    EXPECT_EQ(Content(colors), Counting(static_cast<std::size_t>(5 * channel)));
    EXPECT_NE(colors.Data(), bytes.data());
  }
}

TEST(ZynColorArray, OfAGridCopiesAllBytes) {
  for (const int channel : {1, 3, 4}) {
    const ZynColorArray colors = Grid(3, 2, channel);
    EXPECT_EQ(ShapeOf(colors), (Shape{3, 2, channel}));
    EXPECT_EQ(colors.Length(), 6);
    EXPECT_EQ(Content(colors), Counting(static_cast<std::size_t>(6 * channel)));
  }
}

TEST(ZynColorArray, StaysEmptyWhenMadeOfBadArguments) {
  Bytes bytes = Counting(64);
  EXPECT_TRUE(IsEmptyArray(ZynColorArray(nullptr, 2, 3)));
  EXPECT_TRUE(IsEmptyArray(ZynColorArray(bytes.data(), 0, 3)));
  EXPECT_TRUE(IsEmptyArray(ZynColorArray(bytes.data(), -1, 3)));
  for (const int channel : {-1, 0, 2, 5}) {
    EXPECT_TRUE(IsEmptyArray(ZynColorArray(bytes.data(), 2, channel))) << channel;
    EXPECT_TRUE(IsEmptyArray(ZynColorArray(bytes.data(), 2, 2, channel))) << channel;
  }
  EXPECT_TRUE(IsEmptyArray(ZynColorArray(nullptr, 2, 2, 3)));
  EXPECT_TRUE(IsEmptyArray(ZynColorArray(bytes.data(), 0, 2, 3)));
  EXPECT_TRUE(IsEmptyArray(ZynColorArray(bytes.data(), 2, 0, 3)));
}

TEST(ZynColorArray, CreatingReplacesShapeAndBytes) {
  ZynColorArray colors = Grid(3, 2, 4);
  Bytes bytes{9, 8, 7};
  EXPECT_TRUE(colors.CreateColorArray(bytes.data(), 1, 1, 3));
  EXPECT_EQ(ShapeOf(colors), (Shape{1, 1, 3}));
  EXPECT_EQ(Content(colors), bytes);
}

TEST(ZynColorArray, CreatingFromBadArgumentsChangesNothing) {
  ZynColorArray colors = Grid(3, 2, 1);
  Bytes bytes = Counting(64);
  EXPECT_FALSE(colors.CreateColorArray(nullptr, 1, 1, 1));
  EXPECT_FALSE(colors.CreateColorArray(bytes.data(), 0, 1, 1));
  EXPECT_FALSE(colors.CreateColorArray(bytes.data(), 1, 0, 1));
  EXPECT_FALSE(colors.CreateColorArray(bytes.data(), -1, 1, 1));
  for (const int channel : {-1, 0, 2, 5}) EXPECT_FALSE(colors.CreateColorArray(bytes.data(), 1, 1, channel));
  EXPECT_EQ(ShapeOf(colors), (Shape{3, 2, 1}));
  EXPECT_EQ(Content(colors), Counting(6));
}

TEST(ZynColorArray, CanBeCreatedFromItsOwnBytes) {
  ZynColorArray colors = Grid(4, 2, 1);
  EXPECT_TRUE(colors.CreateColorArray(colors.Data() + 2, 2, 2, 1));
  EXPECT_EQ(Content(colors), (Bytes{3, 4, 5, 6}));
}

TEST(ZynColorArray, SetSizeFillsTheBytesWithThePattern) {
  ZynColorArray colors = Grid(1, 1, 1);
  colors.SetSize(2, 1, 3);
  EXPECT_EQ(ShapeOf(colors), (Shape{2, 1, 3}));
  EXPECT_EQ(Content(colors), (Bytes{0x0D, 0xF0, 0xAD, 0xBA, 0x0D, 0xF0}));
}

TEST(ZynColorArray, AShapeThatFitsLeavesTheBytesWhereTheyAre) {
  ZynColorArray colors;
  colors.SetSize(100, 100, 4);
  const unsigned char* bytes = colors.Data();
  colors.SetSize(100, 100, 4);
  EXPECT_EQ(colors.Data(), bytes);
  colors.SetSize(2, 1, 3);
  EXPECT_EQ(colors.Data(), bytes);
  EXPECT_EQ(Content(colors), (Bytes{0x0D, 0xF0, 0xAD, 0xBA, 0x0D, 0xF0}));
}

TEST(ZynColorArray, SetSizeAllowsNoPoints) {
  ZynColorArray colors = Grid(1, 1, 1);
  colors.SetSize(0, 5, 3);
  EXPECT_EQ(ShapeOf(colors), (Shape{0, 5, 3}));
  EXPECT_EQ(colors.Data(), nullptr);
  EXPECT_EQ(colors.Length(), 0);
  colors.SetSize(INT_MAX, 0, 4);
  EXPECT_EQ(ShapeOf(colors), (Shape{INT_MAX, 0, 4}));
  EXPECT_EQ(colors[0], ZynColor());
}

TEST(ZynColorArray, SetSizeRefusesNegativesAndOtherChannels) {
  ZynColorArray colors = Grid(3, 2, 1);
  colors.SetSize(-1, 2, 1);
  colors.SetSize(2, -1, 1);
  for (const int channel : {-1, 0, 2, 5}) colors.SetSize(2, 2, channel);
  EXPECT_EQ(ShapeOf(colors), (Shape{3, 2, 1}));
  EXPECT_EQ(Content(colors), Counting(6));
}

TEST(ZynColorArray, TooManyBytesRaiseLengthErrorAndChangeNothing) {
  ZynColorArray colors = Grid(3, 2, 1);
  unsigned char byte = 0;
  EXPECT_THROW(colors.SetSize(65536, 65536, 1), std::length_error);
  EXPECT_THROW(colors.SetSize(INT_MAX, 1, 3), std::length_error);
  EXPECT_THROW(colors.CreateColorArray(&byte, 65536, 32768, 1), std::length_error);
  EXPECT_EQ(ShapeOf(colors), (Shape{3, 2, 1}));
  EXPECT_EQ(Content(colors), Counting(6));
}

TEST(ZynColorArray, CreateIsOneRowOfFilledPoints) {
  ZynColorArray colors;
  colors.Create(3, 1);
  EXPECT_EQ(ShapeOf(colors), (Shape{3, 1, 1}));
  EXPECT_EQ(Content(colors), (Bytes{0x0D, 0xF0, 0xAD}));
  colors.Create(-1, 1);
  colors.Create(1, 2);
  EXPECT_EQ(ShapeOf(colors), (Shape{3, 1, 1}));
  colors.Create(0, 4);
  EXPECT_EQ(ShapeOf(colors), (Shape{0, 1, 4}));
}

TEST(ZynColorArray, SetsRowsInclusively) {
  ZynColorArray colors = Grid(2, 4, 1);
  Bytes rows{91, 92, 93, 94};
  colors.SetValue(rows.data(), 1, 1, 2);
  EXPECT_EQ(Content(colors), (Bytes{1, 2, 91, 92, 93, 94, 7, 8}));
  colors.SetValue(rows.data(), 1, 3, 3);
  EXPECT_EQ(Content(colors), (Bytes{1, 2, 91, 92, 93, 94, 91, 92}));
}

TEST(ZynColorArray, SettingValuesAnswersZeroWhetherOrNotItCopied) {
  ZynColorArray colors = Grid(2, 2, 3);
  Bytes rows(12, 99);
  EXPECT_EQ(colors.SetValue(rows.data(), 1, 0, 1), 0);
  EXPECT_EQ(colors.SetValue(nullptr, 3, 0, 1), 0);
  EXPECT_EQ(colors.SetValue(rows.data(), 3, -1, 1), 0);
  EXPECT_EQ(colors.SetValue(rows.data(), 3, 1, 0), 0);
  EXPECT_EQ(colors.SetValue(rows.data(), 3, 0, 2), 0);
  EXPECT_EQ(Content(colors), Counting(12));
  EXPECT_EQ(colors.SetValue(rows.data(), 3, 0, 1), 0);
  EXPECT_EQ(Content(colors), rows);
}

TEST(ZynColorArray, SettingRowsWithoutPointsDoesNothing) {
  ZynColorArray colors;
  colors.SetSize(0, 3, 1);
  unsigned char byte = 1;
  EXPECT_EQ(colors.SetValue(&byte, 1, 0, 2), 0);
  colors.SetColor(4);
  EXPECT_EQ(colors.Data(), nullptr);
}

TEST(ZynColorArray, SetColorLimitsTheValue) {
  ZynColorArray colors = Grid(2, 1, 4);
  for (const auto& [value, byte] : std::vector<std::pair<int, unsigned char>>{
           {7, 7}, {0, 0}, {255, 255}, {256, 255}, {-1, 0}, {INT_MAX, 255}, {INT_MIN, 0}}) {
    colors.SetColor(value);
    EXPECT_EQ(Content(colors), Bytes(8, byte)) << value;
  }
}

TEST(ZynColorArray, AppendingJoinsTwoRows) {
  ZynColorArray two = Grid(2, 1, 3);
  two.Append(Grid(3, 1, 3));
  EXPECT_EQ(ShapeOf(two), (Shape{5, 1, 3}));
  EXPECT_EQ(Content(two), (Bytes{1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(ZynColorArray, AppendingToNothingTakesTheOther) {
  ZynColorArray colors;
  const ZynColorArray grid = Grid(3, 2, 3);
  colors.Append(grid);
  EXPECT_EQ(ShapeOf(colors), (Shape{3, 2, 3}));
  EXPECT_EQ(Content(colors), Content(grid));
  EXPECT_NE(colors.Data(), grid.Data());
  ZynColorArray wide;
  wide.SetSize(7, 0, 1);
  wide.Append(grid);
  EXPECT_EQ(ShapeOf(wide), (Shape{3, 2, 3}));
}

TEST(ZynColorArray, AppendingInOtherCasesDoesNothing) {
  const ZynColorArray row = Grid(3, 1, 1);
  ZynColorArray grid = Grid(2, 2, 1);
  grid.Append(row);
  grid.Append(ZynColorArray());
  EXPECT_EQ(Content(grid), Counting(4));
  ZynColorArray other = Grid(2, 1, 1);
  other.Append(Grid(2, 2, 1));
  other.Append(Grid(2, 1, 3));
  other.Append(ZynColorArray());
  EXPECT_EQ(ShapeOf(other), (Shape{2, 1, 1}));
  EXPECT_EQ(Content(other), Counting(2));
}

TEST(ZynColorArray, OnlyTheHeightTellsWhetherAnArrayIsAppendedToOrReplaced) {
  ZynColorArray tall;
  tall.SetSize(0, 5, 3);
  tall.Append(Grid(2, 1, 3));
  EXPECT_EQ(ShapeOf(tall), (Shape{0, 5, 3}));
  ZynColorArray row;
  row.Create(0, 3);
  row.Append(Grid(2, 2, 3));
  row.Append(Grid(2, 1, 1));
  EXPECT_EQ(ShapeOf(row), (Shape{0, 1, 3}));
  row.Append(Grid(2, 1, 3));
  EXPECT_EQ(ShapeOf(row), (Shape{2, 1, 3}));
  EXPECT_EQ(Content(row), Counting(6));
}

TEST(ZynColorArray, AppendingARowToItselfDoublesIt) {
  ZynColorArray row = Grid(2, 1, 1);
  row.Append(row);
  EXPECT_EQ(ShapeOf(row), (Shape{4, 1, 1}));
  EXPECT_EQ(Content(row), (Bytes{1, 2, 1, 2}));
}

TEST(ZynColorArray, TheFirstThreeComponentsAreStoredInReverse) {
  ZynColorArray four = Grid(2, 1, 4);
  four.Replace(0, ZynColor(10, 20, 30, 40));
  EXPECT_EQ(Content(four), (Bytes{30, 20, 10, 40, 5, 6, 7, 8}));
  EXPECT_EQ(four[0], ZynColor(10, 20, 30, 40));
  ZynColorArray three = Grid(2, 1, 3);
  three.Replace(1, ZynColor(10, 20, 30, 40));
  EXPECT_EQ(Content(three), (Bytes{1, 2, 3, 30, 20, 10}));
  EXPECT_EQ(three[1], ZynColor(10, 20, 30, 255));
  ZynColorArray one = Grid(3, 1, 1);
  one.Replace(1, ZynColor(10, 20, 30, 40));
  EXPECT_EQ(Content(one), (Bytes{1, 10, 3}));
  EXPECT_EQ(one[1], ZynColor(10, 10, 10, 255));
}

TEST(ZynColorArray, StoredComponentsAreLimited) {
  ZynColorArray one = Grid(1, 1, 1);
  one.Replace(0, ZynColor(300, -5, 0, 0));
  EXPECT_EQ(Content(one), Bytes{255});
  EXPECT_EQ(one[0], ZynColor(255, 255, 255, 255));
  ZynColorArray four = Grid(1, 1, 4);
  four.Replace(0, ZynColor(-1, 256, INT_MIN, INT_MAX));
  EXPECT_EQ(four[0], ZynColor(0, 255, 0, 255));
}

TEST(ZynColorArray, SelectingKeepsTheAlphaThatIsNotStored) {
  ZynColor out(1, 2, 3, 4);
  Grid(1, 1, 1).Select(0, &out);
  EXPECT_EQ(out, ZynColor(1, 1, 1, 4));
  Grid(1, 1, 3).Select(0, &out);
  EXPECT_EQ(out, ZynColor(3, 2, 1, 4));
  out.alpha = 77;
  Grid(1, 1, 4).Select(0, &out);
  EXPECT_EQ(out, ZynColor(3, 2, 1, 4));
  Grid(1, 1, 4).Select(0, nullptr);
}

TEST(ZynColorArray, PointsOutsideAreLeftAlone) {
  ZynColorArray colors = Grid(2, 2, 1);
  for (const int index : {-1, 4, INT_MAX, INT_MIN}) {
    ZynColor out(1, 2, 3, 4);
    colors.Replace(index, ZynColor(9, 9, 9, 9));
    colors.Select(index, &out);
    EXPECT_EQ(out, ZynColor(1, 2, 3, 4));
    EXPECT_EQ(colors[index], ZynColor());
  }
  EXPECT_EQ(Content(colors), Counting(4));
  EXPECT_EQ(colors[3], ZynColor(4, 4, 4, 255));
}

TEST(ZynColorArray, ClearResetsShapeAndChannel) {
  ZynColorArray colors = Grid(2, 2, 4);
  colors.Clear();
  EXPECT_TRUE(IsEmptyArray(colors));
}

TEST(ZynColorArray, CopiesShareTheColorsADeepCopyDoesNot) {
  ZynColorArray first = Grid(2, 1, 1);
  const ZynColorArray second(first);
  ZynColorArray third = Grid(1, 1, 1);
  third = first;
  const ZynColorArray deep = first.DeepCopy();
  first.SetColor(9);
  EXPECT_EQ(Content(second), (Bytes{9, 9}));
  EXPECT_EQ(Content(third), (Bytes{9, 9}));
  EXPECT_EQ(Content(deep), (Bytes{1, 2}));
  EXPECT_EQ(ShapeOf(deep), (Shape{2, 1, 1}));
}

TEST(ZynColorArray, ADeepCopyOfNoBytesIsAnEmptyArray) {
  ZynColorArray colors;
  colors.SetSize(0, 5, 3);
  EXPECT_TRUE(IsEmptyArray(colors.DeepCopy()));
}

TEST(ZynColorArray, TheLastReferenceDestroysTheColors) {
  EXPECT_EQ(TraceOf([] {
              auto first = std::make_unique<ZynColorArray>(Grid(1, 1, 1));
              auto second = std::make_unique<ZynColorArray>(*first);
              first.reset();
              std::fputs("one left\n", stdout);
              second.reset();
            }),
            "ColorArray(void* data, int width, int height, int channel)\none left\n~ColorArray()\n");
}

TEST(ZynColorArray, AssigningTheLastReferenceToItselfDropsTheColors) {
  ZynColorArray colors = Grid(1, 1, 1);
  const ZynColorArray& same = colors;
  EXPECT_EQ(TraceOf([&] { colors = same; }), "~ColorArray()\n");
  EXPECT_EQ(InternalOf(colors), nullptr);
}

TEST(ZynColorArray, AssigningToItselfKeepsSharedColors) {
  ZynColorArray colors = Grid(1, 1, 1);
  const ZynColorArray other(colors);
  const ZynColorArray& same = colors;
  colors = same;
  EXPECT_EQ(Content(colors), Bytes{1});
}
