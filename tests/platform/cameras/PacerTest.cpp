#include <gtest/gtest.h>

#include "cameras/acquisition/Pacer.h"

namespace {

using zyn::cameras::Pace;
using zyn::cameras::Pacer;
using Due = std::optional<std::int64_t>;

constexpr std::int64_t kMs = 1'000'000;

TEST(Pacer, NothingIsDueBeforeTheStartAndAfterTheStop) {
  Pacer pacer;
  EXPECT_EQ(pacer.DueNs(), std::nullopt);
  pacer.Start({.unitPeriodNs = 5}, 100);
  EXPECT_EQ(pacer.DueNs(), Due(105));
  pacer.Stop();
  EXPECT_EQ(pacer.DueNs(), std::nullopt);
  EXPECT_FALSE(pacer.IsRunning());
}

TEST(Pacer, FramesKeepTheirRateWhenTheyAreTakenALittleLate) {
  Pacer pacer;
  pacer.Start({.unitPeriodNs = 10 * kMs}, 0);
  pacer.Take(14 * kMs);
  EXPECT_EQ(pacer.DueNs(), Due(20 * kMs));
  pacer.Take(20 * kMs);
  EXPECT_EQ(pacer.DueNs(), Due(30 * kMs));
}

TEST(Pacer, FramesMoveWhenTheyAreTakenMuchTooLate) {
  Pacer pacer;
  pacer.Start({.unitPeriodNs = 10 * kMs}, 0);
  pacer.Take(10 * kMs + Pacer::kCatchUpNs + 1);
  EXPECT_EQ(pacer.DueNs(), Due(20 * kMs + Pacer::kCatchUpNs + 1));
}

TEST(Pacer, LongFramesMayBeLateByEightOfThem) {
  Pacer pacer;
  pacer.Start({.unitPeriodNs = 100 * kMs}, 0);
  pacer.Take(900 * kMs);
  EXPECT_EQ(pacer.DueNs(), Due(200 * kMs));
}

TEST(Pacer, WithoutPeriodAFrameIsAlwaysDue) {
  Pacer pacer;
  pacer.Start({}, 7);
  EXPECT_EQ(pacer.DueNs(), Due(7));
  pacer.Take(9);
  EXPECT_EQ(pacer.DueNs(), Due(9));
}

TEST(Pacer, AFrameTakesAsLongAsItsUnits) {
  Pacer pacer;
  pacer.Start({.unitsPerFrame = 300, .unitPeriodNs = 50}, 0);
  EXPECT_EQ(pacer.DueNs(), Due(15000));
  pacer.SetUnitPeriod(100);
  EXPECT_EQ(pacer.DueNs(), Due(30000));
}

TEST(Pacer, EndsAfterItsFrames) {
  Pacer pacer;
  pacer.Start({.frames = 2}, 0);
  pacer.Take(0);
  EXPECT_TRUE(pacer.IsRunning());
  pacer.Take(0);
  EXPECT_FALSE(pacer.IsRunning());
  EXPECT_EQ(pacer.DueNs(), std::nullopt);
}

TEST(Pacer, ASeriesWaitsForItsTriggerAndEndsAfterItsFrames) {
  Pacer pacer;
  pacer.Start({.framesPerSeries = 2, .seriesAreTriggered = true, .unitPeriodNs = 10}, 0);
  EXPECT_EQ(pacer.DueNs(), std::nullopt);
  pacer.TriggerSeries(100);
  EXPECT_EQ(pacer.DueNs(), Due(110));
  pacer.Take(110);
  pacer.TriggerSeries(111);
  EXPECT_EQ(pacer.DueNs(), Due(120)) << "a trigger within a series is lost";
  pacer.Take(120);
  EXPECT_EQ(pacer.DueNs(), std::nullopt);
  pacer.TriggerSeries(200);
  EXPECT_EQ(pacer.DueNs(), Due(210));
}

TEST(Pacer, AFrameIsDueWhenItsLastUnitWasTriggered) {
  Pacer pacer;
  pacer.Start({.unitsPerFrame = 3, .unitsAreTriggered = true, .latencyNs = 5}, 0);
  pacer.TriggerUnits(10, 2);
  EXPECT_EQ(pacer.DueNs(), std::nullopt);
  pacer.TriggerUnits(20, 4);
  EXPECT_EQ(pacer.DueNs(), Due(25));
  pacer.Take(30);
  EXPECT_EQ(pacer.DueNs(), Due(25)) << "the second frame was complete with the same trigger";
  pacer.Take(30);
  EXPECT_EQ(pacer.DueNs(), std::nullopt);
}

TEST(Pacer, TriggersBeyondWhatWaitsAreLost) {
  Pacer pacer;
  pacer.Start({.unitsAreTriggered = true}, 0);
  pacer.TriggerUnits(1, Pacer::kMostWaiting + 10);
  for (std::size_t i = 0; i < Pacer::kMostWaiting; ++i) {
    ASSERT_EQ(pacer.DueNs(), Due(1));
    pacer.Take(1);
  }
  EXPECT_EQ(pacer.DueNs(), std::nullopt);
}

TEST(Pacer, UnitsOutsideASeriesAreLost) {
  Pacer pacer;
  pacer.Start(
      {.framesPerSeries = 1, .seriesAreTriggered = true, .unitsPerFrame = 2, .unitsAreTriggered = true}, 0);
  pacer.TriggerUnits(1, 2);
  EXPECT_EQ(pacer.DueNs(), std::nullopt);
  pacer.TriggerSeries(2);
  pacer.TriggerUnits(3, 5);
  EXPECT_EQ(pacer.DueNs(), Due(3));
  pacer.Take(3);
  EXPECT_EQ(pacer.DueNs(), std::nullopt);
  pacer.TriggerSeries(4);
  EXPECT_EQ(pacer.DueNs(), std::nullopt) << "nothing is left over from the series before";
}

TEST(Pacer, UntriggeredUnitsIgnoreTriggers) {
  Pacer pacer;
  pacer.Start({.unitPeriodNs = 10}, 0);
  pacer.TriggerUnits(1, 1);
  EXPECT_EQ(pacer.DueNs(), Due(10));
}

}  // namespace
