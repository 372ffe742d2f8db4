#include "Patience.h"

#include <gtest/gtest.h>

namespace {

using std::chrono::milliseconds;
using zyncam::Patience;

Patience::Time At(int ms) {
  return Patience::Time() + milliseconds(ms);
}

TEST(Patience, EndsWhenNothingGoodCameForTheWholeLimit) {
  Patience patience(milliseconds(100), At(0));
  EXPECT_TRUE(patience.OutlastsIncomplete(At(50)));
  EXPECT_TRUE(patience.OutlastsIncomplete(At(99)));
  EXPECT_FALSE(patience.OutlastsIncomplete(At(100)));
}

TEST(Patience, BeginsAnewWithEveryGoodFrame) {
  Patience patience(milliseconds(100), At(0));
  EXPECT_TRUE(patience.OutlastsIncomplete(At(90)));
  patience.SawGood(At(95));
  EXPECT_TRUE(patience.OutlastsIncomplete(At(194)));
  EXPECT_FALSE(patience.OutlastsIncomplete(At(195)));
}

TEST(Patience, FramesThatAreNotIncompleteAreGood) {
  Patience patience(milliseconds(100), At(0));
  EXPECT_TRUE(patience.OutlastsIncomplete(At(10)));
  patience.SawFrames(1, At(10));  // the incomplete one itself
  EXPECT_TRUE(patience.OutlastsIncomplete(At(90)));
  patience.SawFrames(3, At(90));  // another between the two
  EXPECT_TRUE(patience.OutlastsIncomplete(At(180)));
  patience.SawFrames(4, At(180));
  EXPECT_FALSE(patience.OutlastsIncomplete(At(190)));
}

// Frames are counted when they come, and looked at later.
TEST(Patience, FramesThatWaitAreNewsOnce) {
  Patience patience(milliseconds(100), At(0));
  int count = 4;  // three of which turn out to be incomplete
  int now = 0;
  for (int i = 0; i < 11; ++i) {
    EXPECT_TRUE(patience.OutlastsIncomplete(At(now)));
    patience.SawFrames(count, At(now));
    count += i % 2 == 0 ? 0 : 2;  // they come in pairs, and are looked at one by one
    now += 9;
  }
  EXPECT_FALSE(patience.OutlastsIncomplete(At(100)));
}

}  // namespace
