// Producers that fill only memory which they allocated themselves.
#include <array>

#include "TransportFixture.h"

namespace zyn::transport_test {
namespace {

using namespace KELGENICAM;

// Two ways to say so: the function is not there, or it is and says that it is not implemented.
enum class Way { kLeftOut, kRefused };

class AllocatingProducer : public TransportTest, public testing::WithParamInterface<Way> {
 protected:
  void SetUp() override {
    TransportTest::SetUp();
    if (GetParam() == Way::kLeftOut) SetPath(ZYN_MOCK_ALLOCATING_CTI);
    producer_.SetHook("DSAnnounceBuffer", [](const std::string&) { return GenTL::GC_ERR_NOT_IMPLEMENTED; });
  }

  CameraPtr Grabbing(GRAB_STRATEGY strategy) {
    CameraPtr camera = OpenOne(producer_);
    EXPECT_EQ(camera->StartGrabbing(strategy, -1), RESULT_OK);
    buffers_ = producer_.Announced();
    EXPECT_GE(buffers_, 3U);
    EXPECT_EQ(producer_.Allocated(), buffers_);
    return camera;
  }

  void Send(std::uint64_t id) {
    ASSERT_TRUE(producer_.SendFrame(Frame(id)));
    ASSERT_TRUE(producer_.AwaitFetching());
  }

  static void ExpectFilled(IImage& image, int value) {
    ASSERT_EQ(image.Step() * image.Height(), 8);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(image.Data()[i], value);
  }

  MockProducer& producer_ = GetParam() == Way::kLeftOut ? allocating_ : mock_;
  std::size_t buffers_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Table, AllocatingProducer, testing::Values(Way::kLeftOut, Way::kRefused),
                         [](const auto& way) { return way.param == Way::kLeftOut ? "LeftOut" : "Refused"; });

TEST_P(AllocatingProducer, DeliversEveryFrameInOrder) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  for (std::uint64_t id = 1; id <= buffers_; ++id) Send(id);
  for (std::uint64_t id = 1; id <= buffers_; ++id) {
    const ImagePtr image = GrabOne(*camera);
    EXPECT_EQ(image->FrameID(), static_cast<long long>(id));
    EXPECT_TRUE(image->IsValid());
    EXPECT_EQ(image->Width(), 4);
    EXPECT_EQ(image->Height(), 2);
    ExpectFilled(*image, static_cast<int>(id));
  }
  ASSERT_TRUE(producer_.AwaitQueued(buffers_));
  Send(99);
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 99);
}

TEST_P(AllocatingProducer, StartsAgainAfterAStopAndGetsItsBuffersRevoked) {
  const CameraPtr camera = OpenOne(producer_);
  for (const GRAB_STRATEGY strategy : {GRAB_ONE_BY_ONE, GRAB_LATEST_ONLY, GRAB_LATEST}) {
    ASSERT_EQ(camera->StartGrabbing(strategy, -1), RESULT_OK);
    Send(7);
    ExpectFilled(*GrabOne(*camera), 7);
    ASSERT_EQ(camera->StopGrabbing(), RESULT_OK);
    EXPECT_EQ(producer_.Announced(), 0U);
  }
}

TEST_P(AllocatingProducer, FramesStayReadableAfterTheCameraIsGone) {
  CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  Send(1);
  Send(2);
  Send(3);
  const ImagePtr first = GrabOne(*camera);
  const ImagePtr second = GrabOne(*camera);
  camera.reset();
  ASSERT_EQ(UnInit(), RESULT_OK);
  EXPECT_EQ(producer_.OpenHandles(), 0);
  ExpectFilled(*first, 1);
  ExpectFilled(*second, 2);
}

TEST_P(AllocatingProducer, AHeldFrameIsNeverOverwritten) {
  const CameraPtr camera = Grabbing(GRAB_LATEST_ONLY);
  Send(200);
  const ImagePtr held = GrabOne(*camera);
  for (std::uint64_t id = 1; id <= 4 * buffers_; ++id) Send(id);
  ExpectFilled(*held, 200);
  ExpectFilled(*GrabOne(*camera), static_cast<int>(4 * buffers_));
}

TEST_P(AllocatingProducer, WhatTheApplicationHoldsIsBounded) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  std::vector<ImagePtr> held;
  for (std::uint64_t id = 1; id <= buffers_; ++id) {
    Send(id);
    held.push_back(GrabOne(*camera));
  }
  EXPECT_FALSE(producer_.SendFrame(Frame(99)));
  EXPECT_EQ(GrabResult(*camera, 0), RESULT_NO_FREE_BUFFER);
  for (std::size_t i = 0; i < held.size(); ++i) ExpectFilled(*held[i], static_cast<int>(i) + 1);
}

TEST_P(AllocatingProducer, PartsAndChunksAreFoundInIt) {
  const CameraPtr camera = Grabbing(GRAB_ONE_BY_ONE);
  MockFrame frame = Frame(1);
  frame.payloadType = GenTL::PAYLOAD_TYPE_MULTI_PART;
  frame.parts = {mock::MockPart{1000, 3, 1, 0, 9},
                 mock::MockPart{GenTL::PART_DATATYPE_2D_IMAGE, 4, 2, 0x01080001, 5}};
  frame.chunks = {{0x20, {1, 2, 3}}};
  ASSERT_TRUE(producer_.SendFrame(frame));
  const ImagePtr image = GrabOne(*camera);
  EXPECT_TRUE(image->IsValid());
  ExpectFilled(*image, 5);
  std::list<IChunk*> chunks;
  image->Chunks(chunks);
  ASSERT_EQ(chunks.size(), 1U);
  EXPECT_EQ(
      std::vector<unsigned char>(chunks.front()->Data(), chunks.front()->Data() + chunks.front()->Length()),
      (std::vector<unsigned char>{1, 2, 3}));
}

TEST_P(AllocatingProducer, BuffersWhoseMemoryItDoesNotTellAreRevoked) {
  const CameraPtr camera = OpenOne(producer_);
  producer_.SetHook("DSGetBufferInfo", [](const std::string&) { return GenTL::GC_ERR_NOT_IMPLEMENTED; });
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_INVALID_BUFFER);
  EXPECT_EQ(producer_.Announced(), 0U);
  EXPECT_FALSE(camera->IsGrabbing());
}

// Also behind as many buffers as would do: a frame in such memory cannot be read.
TEST_P(AllocatingProducer, NoBufferWithoutKnownMemoryIsQueued) {
  const CameraPtr camera = OpenOne(producer_);
  producer_.SetHook("DSGetBufferInfo", [this](const std::string&) {
    return producer_.Announced() <= 20 ? GenTL::GC_ERR_SUCCESS : GenTL::GC_ERR_NOT_IMPLEMENTED;
  });
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_INVALID_BUFFER);
  EXPECT_EQ(producer_.Announced(), 0U);
}

TEST_P(AllocatingProducer, ThatRefusesItsOwnMemoryTooCannotStart) {
  const CameraPtr camera = OpenOne(producer_);
  producer_.SetHook("DSAllocAndAnnounceBuffer",
                    [](const std::string&) { return GenTL::GC_ERR_NOT_IMPLEMENTED; });
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_NOT_IMPLEMENTED);
}

TEST_P(AllocatingProducer, WithLittleMemoryServesWithFewerBuffers) {
  const CameraPtr camera = OpenOne(producer_);
  producer_.SetHook("DSAllocAndAnnounceBuffer", [this](const std::string&) {
    return producer_.Announced() < 4 ? GenTL::GC_ERR_SUCCESS : GenTL::GC_ERR_OUT_OF_MEMORY;
  });
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  EXPECT_EQ(producer_.Announced(), 4U);
  Send(3);
  ExpectFilled(*GrabOne(*camera), 3);
}

}  // namespace
}  // namespace zyn::transport_test
