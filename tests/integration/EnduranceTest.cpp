#include <ZynCamera.h>
#include <gtest/gtest.h>

#include "Chain.h"
#include "FakeGigeCamera.h"
#include "ProcessUsage.h"

namespace {

constexpr int kRounds = 200;
constexpr int kWarmUpRounds = 40;
constexpr std::size_t kAllowedGrowthKiB =
    2048;  // less than the frames of one round; a leak per round shows many times over

// The address sanitizer holds freed memory back to find its use, so what is resident says nothing there; it finds leaks by
// itself when the program ends.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kFreedMemoryStays = true;
#elif defined(__has_feature)
constexpr bool kFreedMemoryStays = __has_feature(address_sanitizer);
#else
constexpr bool kFreedMemoryStays = false;
#endif

void OneRound() {
  ZYNSDK::ZynCamera camera = chain::Find("GV01");
  ASSERT_EQ(camera.Open(nullptr), 0);
  ASSERT_EQ(camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
  ZYNSDK::ZynImage image;
  EXPECT_EQ(camera.GrabImage(&image, nullptr), 0);
  EXPECT_EQ(camera.StopGrab(), 0);
  EXPECT_EQ(camera.Close(), 0);
}

TEST(Endurance, TwoHundredRoundsOfDiscoverOpenGrabCloseGrowNothing) {
  const zyntest::FakeGigeCamera fake(1);
  for (int i = 0; i < kWarmUpRounds; ++i) ASSERT_NO_FATAL_FAILURE(OneRound()) << "round " << i;
  const zyntest::ProcessUsage before = zyntest::UsageAtRest(0);
  for (int i = kWarmUpRounds; i < kRounds; ++i) ASSERT_NO_FATAL_FAILURE(OneRound()) << "round " << i;
  const zyntest::ProcessUsage after = zyntest::UsageAtRest(before.threads);
  EXPECT_EQ(after.threads, before.threads);
  EXPECT_EQ(after.fileDescriptors, before.fileDescriptors);
  if (!kFreedMemoryStays) {
    EXPECT_LE(after.residentKiB, before.residentKiB + kAllowedGrowthKiB);
  }
  RecordProperty("residentKiBBefore", static_cast<int>(before.residentKiB));
  RecordProperty("residentKiBAfter", static_cast<int>(after.residentKiB));
}

}  // namespace
