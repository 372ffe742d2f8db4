#include <gtest/gtest.h>

#include <algorithm>

#include "CameraFixture.h"
#include "cameras/ChunkIds.h"
#include "cameras/registers/BigEndian.h"

namespace {

using namespace zyn::cameras;
using zyn::cameras::test::Camera;

class FaultsTest : public testing::Test {
 protected:
  FaultsTest() {
    camera.Set("AcquisitionLineRateEnable", "0");
    camera.Execute("AcquisitionStart");
  }

  Camera camera{"KEL-LP2000"};
  Faults& faults = camera.model->GetFaults();
};

TEST_F(FaultsTest, DroppedFramesLeaveAGapInTheNumbers) {
  ASSERT_EQ(camera.Take(), FrameResult::written);
  faults.DropFrames(2);
  EXPECT_EQ(faults.FramesToDrop(), 2U);
  EXPECT_EQ(camera.Take(), FrameResult::dropped);
  EXPECT_EQ(camera.frame.id, 2U);
  EXPECT_EQ(camera.Take(), FrameResult::dropped);
  EXPECT_EQ(camera.Take(), FrameResult::written);
  EXPECT_EQ(camera.frame.id, 4U);
}

TEST_F(FaultsTest, DamagedFramesLoseTheirSecondHalf) {
  faults.DamageFrames(1);
  ASSERT_EQ(camera.Take(), FrameResult::written);
  EXPECT_FALSE(camera.frame.isComplete);
  EXPECT_TRUE(camera.frame.fits);
  EXPECT_EQ(camera.frame.size, camera.frame.intendedSize / 2);
  EXPECT_TRUE(std::all_of(camera.buffer.begin() + static_cast<std::ptrdiff_t>(camera.frame.size),
                          camera.buffer.end(), [](std::uint8_t byte) { return byte == 0; }));
  ASSERT_EQ(camera.Take(), FrameResult::written);
  EXPECT_TRUE(camera.frame.isComplete);
  EXPECT_EQ(camera.frame.size, camera.frame.intendedSize);
}

TEST_F(FaultsTest, AShortenedChunkIsOneRecordShorterAndTheFrameStaysWhole) {
  faults.ShortenChunks(1);
  ASSERT_EQ(camera.Take(), FrameResult::written);
  EXPECT_TRUE(camera.frame.isComplete);
  EXPECT_EQ(camera.frame.chunks[0].id, kProfileChunk);
  EXPECT_EQ(camera.frame.chunks[0].length, 7996U);
  EXPECT_EQ(camera.frame.chunks[1].offset, 8004U);
  EXPECT_EQ(LoadBig(camera.buffer.data() + 8000, 4), 7996U) << "the tag says so too";
  const auto layout = camera.frame.chunkLayoutId;
  ASSERT_EQ(camera.Take(), FrameResult::written);
  EXPECT_EQ(camera.frame.chunks[0].length, 8000U);
  EXPECT_NE(camera.frame.chunkLayoutId, layout);
}

TEST_F(FaultsTest, DelayedFramesComeLater) {
  EXPECT_EQ(camera.model->NextFrameDueNs(), 0);
  faults.DelayFrames(1000);
  EXPECT_EQ(camera.model->NextFrameDueNs(), 1000);
  EXPECT_EQ(camera.Take(), FrameResult::notDue);
  camera.clock.Advance(1000);
  EXPECT_EQ(camera.Take(), FrameResult::written);
  faults.DelayFrames(INT64_MAX);
  EXPECT_EQ(faults.FrameDelayNs(), kLongestDelayNs);
  faults.DelayFrames(-1);
  EXPECT_EQ(faults.FrameDelayNs(), 0);
}

TEST_F(FaultsTest, RegistersFailAsOftenAsTold) {
  faults.FailAllRegisters(2);
  EXPECT_THROW(camera.Float("Gain").GetValue(true), GenICam::GenericException);
  EXPECT_THROW(camera.Set("Gain", "3"), GenICam::GenericException);
  EXPECT_EQ(camera.Float("Gain").GetValue(true), 0);
}

TEST_F(FaultsTest, FailingAddressesLeaveOthersAlone) {
  std::uint8_t bytes[8];
  const std::uint64_t first = 0x100000;
  faults.FailRegisters(first + 4, first + 4, kUntilCleared, RegisterStatus::accessDenied);
  EXPECT_EQ(camera.model->ReadRegisters(first, std::span(bytes, 4)), RegisterStatus::ok);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(camera.model->ReadRegisters(first, std::span(bytes, 8)), RegisterStatus::accessDenied);
  }
  faults.FailRegisters(first + 4, first + 4, 0);
  EXPECT_EQ(camera.model->ReadRegisters(first, std::span(bytes, 8)), RegisterStatus::ok);
}

TEST_F(FaultsTest, ABusyCameraRefusesRegistersAndGoesOnSending) {
  faults.SetBusy(true);
  std::uint8_t bytes[4] = {};
  EXPECT_EQ(camera.model->ReadRegisters(0x100000, bytes), RegisterStatus::busy);
  EXPECT_EQ(camera.model->WriteRegisters(0x100000, bytes), RegisterStatus::busy);
  EXPECT_EQ(camera.Take(), FrameResult::written);
  faults.SetBusy(false);
  EXPECT_EQ(camera.model->ReadRegisters(0x100000, bytes), RegisterStatus::ok);
}

TEST_F(FaultsTest, ClearingEndsThemAll) {
  faults.DropFrames(kUntilCleared);
  faults.DamageFrames(kUntilCleared);
  faults.ShortenChunks(kUntilCleared);
  faults.DelayFrames(1000);
  faults.FailAllRegisters(kUntilCleared);
  faults.SetBusy(true);
  EXPECT_EQ(camera.Take(), FrameResult::notDue);
  faults.Clear();
  EXPECT_EQ(camera.Take(), FrameResult::written);
  EXPECT_TRUE(camera.frame.isComplete);
  EXPECT_EQ(camera.frame.chunks[0].length, 8000U);
  EXPECT_NO_THROW(camera.Set("Gain", "3"));
  EXPECT_EQ(faults.FramesToDamage() + faults.ChunksToShorten(), 0U);
}

TEST_F(FaultsTest, ANewScanCutsTheOneInProgress) {
  camera.Execute("AcquisitionStop");
  camera.Set("BatchEnable", "1");
  camera.Set("BatchNumber", "100");
  camera.Execute("AcquisitionStart");
  const auto identifier = [&] { return LoadBig(camera.buffer.data() + camera.frame.chunks[1].offset, 8); };
  std::vector<std::uint64_t> identifiers;
  for (int batch = 0; batch < 14; ++batch) {
    if (batch == 3) faults.BeginNewScan();
    ASSERT_EQ(camera.Take(), FrameResult::written);
    identifiers.push_back(identifier());
  }
  // Three batches of the first scan, then a whole one of ten.
  EXPECT_EQ(identifiers, (std::vector<std::uint64_t>{1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 3}));
}

}  // namespace
