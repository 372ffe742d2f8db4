// Buffers: announcing, queueing, filling, delivering, flushing, revoking.
#include "KitFixture.h"

namespace {

using namespace kittest;
using KitStreaming = StreamTest;

TEST_F(KitStreaming, DeliversFramesInOrderWithTheirData) {
  StartWith(3);
  for (std::uint8_t i = 1; i <= 3; ++i) EXPECT_TRUE(TheScript().SendFrame(i));
  EXPECT_EQ(Awaiting(), 3U);
  for (std::uint8_t i = 1; i <= 3; ++i) {
    BUFFER_HANDLE buffer = Fetch();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(UInt64(Ask(buffer, BUFFER_INFO_FRAMEID)), i);
    EXPECT_TRUE(Bool(Ask(buffer, BUFFER_INFO_NEW_DATA)));
    EXPECT_EQ(static_cast<std::uint8_t*>(Pointer(Ask(buffer, BUFFER_INFO_BASE)))[63], i);
    EXPECT_EQ(DSQueueBuffer(stream_, buffer), GC_ERR_SUCCESS);
  }
  EXPECT_EQ(Fetch(), nullptr);
  EXPECT_EQ(Queued(), 3U);
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_DELIVERED)), 3U);
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_STARTED)), 3U);
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_UNDERRUN)), 0U);
}

TEST_F(KitStreaming, AFrameWithoutABufferIsLostAndCounted) {
  StartWith(2);
  EXPECT_TRUE(TheScript().SendFrame(1));
  EXPECT_TRUE(TheScript().SendFrame(2));
  EXPECT_FALSE(TheScript().SendFrame(3));
  TheScript().sink->CountUnderruns(2);
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_UNDERRUN)), 3U);
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_DELIVERED)), 2U);
}

TEST_F(KitStreaming, StreamInformationIsTyped) {
  EXPECT_EQ(Text(Ask(STREAM_INFO_ID)), "Stream0");
  EXPECT_EQ(Text(Ask(STREAM_INFO_TLTYPE)), "GEV");
  EXPECT_EQ(Size(Ask(STREAM_INFO_BUF_ANNOUNCE_MIN)), 2U);
  EXPECT_EQ(Size(Ask(STREAM_INFO_BUF_ALIGNMENT)), 1U);
  EXPECT_TRUE(Bool(Ask(STREAM_INFO_DEFINES_PAYLOADSIZE)));
  EXPECT_EQ(Size(Ask(STREAM_INFO_PAYLOAD_SIZE)), 64U);
  EXPECT_EQ(ResultOf(Ask(STREAM_INFO_NUM_CHUNKS_MAX)), GC_ERR_NOT_AVAILABLE);
  EXPECT_EQ(ResultOf(Ask(STREAM_INFO_FLOW_TABLE)), GC_ERR_NO_DATA);
  EXPECT_EQ(ResultOf(Ask(STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR)), GC_ERR_NO_DATA);
  TheScript().payloadSize = 0;
  EXPECT_FALSE(Bool(Ask(STREAM_INFO_DEFINES_PAYLOADSIZE)));
  EXPECT_EQ(ResultOf(Ask(STREAM_INFO_PAYLOAD_SIZE)), GC_ERR_NOT_AVAILABLE);
}

TEST_F(KitStreaming, StartingAsksForEnoughBuffersAndFrames) {
  Announce();
  EXPECT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_INVALID_BUFFER);
  Announce();
  EXPECT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, 0), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(DSStartAcquisition(stream_, 1, 1), GC_ERR_NOT_IMPLEMENTED);
  EXPECT_EQ(DSStopAcquisition(stream_, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_RESOURCE_IN_USE);
  EXPECT_FALSE(Bool(Ask(STREAM_INFO_IS_GRABBING)));
  EXPECT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_SUCCESS);
  EXPECT_TRUE(Bool(Ask(STREAM_INFO_IS_GRABBING)));
  EXPECT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(DSStopAcquisition(stream_, 5), GC_ERR_NOT_IMPLEMENTED);
  EXPECT_EQ(DSStopAcquisition(stream_, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
  EXPECT_FALSE(TheScript().lastKill);
}

TEST_F(KitStreaming, AFailedStartCanBeRepeated) {
  Announce();
  Announce();
  TheScript().startError = GC_ERR_IO;
  EXPECT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_IO);
  EXPECT_FALSE(Bool(Ask(STREAM_INFO_IS_GRABBING)));
  TheScript().startError = GC_ERR_SUCCESS;
  EXPECT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_SUCCESS);
}

TEST_F(KitStreaming, ACountedAcquisitionEndsByItselfAndIsStoppedOnce) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(DSQueueBuffer(stream_, Announce()), GC_ERR_SUCCESS);
  ASSERT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, 2), GC_ERR_SUCCESS);
  EXPECT_TRUE(TheScript().SendFrame(1));
  EXPECT_TRUE(TheScript().SendFrame(2));
  EXPECT_FALSE(Bool(Ask(STREAM_INFO_IS_GRABBING)));
  EXPECT_FALSE(TheScript().SendFrame(3));
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_UNDERRUN)), 0U);
  EXPECT_EQ(DSStopAcquisition(stream_, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
  EXPECT_EQ(DSStopAcquisition(stream_, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_RESOURCE_IN_USE);
  ASSERT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, 2), GC_ERR_SUCCESS);
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_DELIVERED)), 0U);
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_STARTED)), 2U);
}

TEST_F(KitStreaming, AnnouncedMemoryIsTheConsumers) {
  alignas(64) static std::uint8_t memory[128];
  int user = 0;
  BUFFER_HANDLE buffer = nullptr;
  TheScript().streamTraits.alignment = 32;
  ASSERT_EQ(DSClose(stream_), GC_ERR_SUCCESS);
  OpenStream();
  EXPECT_EQ(DSAnnounceBuffer(stream_, nullptr, 64, &user, &buffer), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(DSAnnounceBuffer(stream_, memory, 0, &user, &buffer), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(DSAnnounceBuffer(stream_, memory + 1, 64, &user, &buffer), GC_ERR_INVALID_BUFFER);
  ASSERT_EQ(DSAnnounceBuffer(stream_, memory, 64, &user, &buffer), GC_ERR_SUCCESS);
  BUFFER_HANDLE again = nullptr;
  EXPECT_EQ(DSAnnounceBuffer(stream_, memory, 64, &user, &again), GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(Pointer(Ask(buffer, BUFFER_INFO_BASE)), memory);
  EXPECT_EQ(Pointer(Ask(buffer, BUFFER_INFO_USER_PTR)), &user);
  EXPECT_EQ(Size(Ask(buffer, BUFFER_INFO_SIZE)), 64U);
  void* base = nullptr;
  void* owner = nullptr;
  EXPECT_EQ(DSRevokeBuffer(stream_, buffer, &base, &owner), GC_ERR_SUCCESS);
  EXPECT_EQ(base, memory);
  EXPECT_EQ(owner, &user);
  EXPECT_EQ(DSRevokeBuffer(stream_, buffer, &base, &owner), GC_ERR_INVALID_HANDLE);
}

TEST_F(KitStreaming, AllocatedMemoryIsAlignedAndNotHandedBack) {
  TheScript().streamTraits.alignment = 4096;
  ASSERT_EQ(DSClose(stream_), GC_ERR_SUCCESS);
  OpenStream();
  BUFFER_HANDLE buffer = Announce(100);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(Pointer(Ask(buffer, BUFFER_INFO_BASE))) % 4096, 0U);
  void* base = this;
  EXPECT_EQ(DSRevokeBuffer(stream_, buffer, &base, nullptr), GC_ERR_SUCCESS);
  EXPECT_EQ(base, nullptr);
  EXPECT_EQ(DSAllocAndAnnounceBuffer(stream_, 0, nullptr, &buffer), GC_ERR_INVALID_PARAMETER);
}

TEST_F(KitStreaming, BuffersAreNumberedInTheOrderOfAnnouncing) {
  BUFFER_HANDLE a = Announce();
  BUFFER_HANDLE b = Announce();
  BUFFER_HANDLE found = nullptr;
  EXPECT_EQ(DSGetBufferID(stream_, 1, &found), GC_ERR_SUCCESS);
  EXPECT_EQ(found, b);
  EXPECT_EQ(DSRevokeBuffer(stream_, a, nullptr, nullptr), GC_ERR_SUCCESS);
  EXPECT_EQ(DSGetBufferID(stream_, 0, &found), GC_ERR_SUCCESS);
  EXPECT_EQ(found, b);
  EXPECT_EQ(DSGetBufferID(stream_, 1, &found), GC_ERR_INVALID_INDEX);
  EXPECT_EQ(DSGetBufferID(stream_, 0, nullptr), GC_ERR_INVALID_PARAMETER);
}

// Revoking and queueing in every place a buffer can be in.
TEST_F(KitStreaming, ABufferIsRevokedAndQueuedOnlyWhileItIsTheConsumers) {
  const auto buffers = StartWith(2);
  EXPECT_EQ(DSRevokeBuffer(stream_, buffers[0], nullptr, nullptr), GC_ERR_BUSY);  // waits for data
  EXPECT_EQ(DSQueueBuffer(stream_, buffers[0]), GC_ERR_RESOURCE_IN_USE);
  scripted::StreamBuffer* filling = TheScript().sink->TakeForFrame();
  EXPECT_TRUE(Bool(Ask(buffers[0], BUFFER_INFO_IS_ACQUIRING)));
  EXPECT_EQ(DSRevokeBuffer(stream_, buffers[0], nullptr, nullptr), GC_ERR_BUSY);  // being filled
  EXPECT_EQ(DSQueueBuffer(stream_, buffers[0]), GC_ERR_RESOURCE_IN_USE);
  TheScript().sink->Deliver(*filling, {});
  EXPECT_FALSE(Bool(Ask(buffers[0], BUFFER_INFO_IS_ACQUIRING)));
  EXPECT_EQ(DSRevokeBuffer(stream_, buffers[0], nullptr, nullptr), GC_ERR_BUSY);  // delivered, not fetched
  EXPECT_EQ(DSQueueBuffer(stream_, buffers[0]), GC_ERR_RESOURCE_IN_USE);
  EXPECT_TRUE(IsQueued(buffers[0]));
  ASSERT_EQ(Fetch(), buffers[0]);
  EXPECT_FALSE(IsQueued(buffers[0]));
  EXPECT_EQ(DSRevokeBuffer(stream_, buffers[0], nullptr, nullptr), GC_ERR_SUCCESS);
  EXPECT_EQ(DSQueueBuffer(stream_, buffers[0]), GC_ERR_INVALID_HANDLE);
}

// One buffer in each place: waiting, being filled, delivered, with the consumer.
class KitFlush : public StreamTest {
 protected:
  KitFlush() {
    const auto all = StartWith(3);
    delivered_ = all[0];
    filling_ = all[1];
    waiting_ = all[2];
    EXPECT_TRUE(TheScript().SendFrame(1));
    inBackend_ = TheScript().sink->TakeForFrame();
    mine_ = Announce();
  }
  ~KitFlush() override {
    if (inBackend_ != nullptr) TheScript().sink->GiveBack(*inBackend_);
  }

  void Arrive() {
    TheScript().sink->Deliver(*inBackend_, {});
    inBackend_ = nullptr;
  }

  BUFFER_HANDLE delivered_ = nullptr;
  BUFFER_HANDLE filling_ = nullptr;
  BUFFER_HANDLE waiting_ = nullptr;
  BUFFER_HANDLE mine_ = nullptr;
  scripted::StreamBuffer* inBackend_ = nullptr;
};

TEST_F(KitFlush, InputToOutputDeliversWaitingBuffersWithoutData) {
  EXPECT_EQ(DSFlushQueue(stream_, ACQ_QUEUE_INPUT_TO_OUTPUT), GC_ERR_SUCCESS);
  EXPECT_EQ(Awaiting(), 2U);
  EXPECT_EQ(Queued(), 1U);
  EXPECT_EQ(Fetch(), delivered_);
  EXPECT_EQ(Fetch(), waiting_);
  EXPECT_FALSE(Bool(Ask(waiting_, BUFFER_INFO_NEW_DATA)));
  EXPECT_EQ(Size(Ask(waiting_, BUFFER_INFO_SIZE_FILLED)), 0U);
  Arrive();
  EXPECT_EQ(Fetch(), filling_);
}

TEST_F(KitFlush, OutputDiscardTakesBackWhatNobodyFetched) {
  EXPECT_EQ(DSFlushQueue(stream_, ACQ_QUEUE_OUTPUT_DISCARD), GC_ERR_SUCCESS);
  EXPECT_EQ(Awaiting(), 0U);
  EXPECT_FALSE(IsQueued(delivered_));
  EXPECT_EQ(Queued(), 2U);
  Arrive();
  EXPECT_EQ(Fetch(), filling_);
}

TEST_F(KitFlush, AllToInputQueuesEverything) {
  EXPECT_EQ(DSFlushQueue(stream_, ACQ_QUEUE_ALL_TO_INPUT), GC_ERR_SUCCESS);
  EXPECT_EQ(Awaiting(), 0U);
  EXPECT_EQ(Queued(), 4U);
  Arrive();  // goes back to the input as well
  EXPECT_EQ(Fetch(), nullptr);
  EXPECT_EQ(Queued(), 4U);
  for (std::uint8_t i = 0; i < 4; ++i) EXPECT_TRUE(TheScript().SendFrame(i));
}

TEST_F(KitFlush, UnqueuedToInputQueuesWhatTheConsumerHolds) {
  EXPECT_EQ(DSFlushQueue(stream_, ACQ_QUEUE_UNQUEUED_TO_INPUT), GC_ERR_SUCCESS);
  EXPECT_TRUE(IsQueued(mine_));
  EXPECT_EQ(Awaiting(), 1U);
  EXPECT_EQ(Queued(), 3U);
  EXPECT_EQ(TheScript().hints, 1);  // only buffers queued while it runs are news to the backend
}

TEST_F(KitFlush, AllDiscardFreesEverythingAndRevokesNothing) {
  EXPECT_EQ(DSFlushQueue(stream_, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
  EXPECT_EQ(Awaiting(), 0U);
  EXPECT_FALSE(IsQueued(waiting_));
  EXPECT_FALSE(IsQueued(delivered_));
  EXPECT_TRUE(IsQueued(filling_));  // until the backend lets go of the memory
  Arrive();
  EXPECT_FALSE(IsQueued(filling_));
  EXPECT_EQ(Fetch(), nullptr);
  EXPECT_EQ(Queued(), 0U);
  EXPECT_EQ(Size(Ask(STREAM_INFO_NUM_ANNOUNCED)), 4U);
  for (BUFFER_HANDLE buffer : {delivered_, filling_, waiting_, mine_})
    EXPECT_EQ(DSRevokeBuffer(stream_, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
}

TEST_F(KitFlush, AnUnknownOperationIsRefused) {
  EXPECT_EQ(DSFlushQueue(stream_, 5), GC_ERR_NOT_IMPLEMENTED);
  EXPECT_EQ(Awaiting(), 1U);
}

TEST_F(KitFlush, FlushingTheEventDiscardsTheOutput) {
  EXPECT_EQ(EventFlush(event_), GC_ERR_SUCCESS);
  EXPECT_FALSE(IsQueued(delivered_));
  EXPECT_EQ(Queued(), 2U);
}

TEST_F(KitFlush, UnregisteringTheEventDiscardsTheOutputOnly) {
  EXPECT_EQ(GCUnregisterEvent(stream_, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
  EXPECT_FALSE(IsQueued(delivered_));
  EXPECT_EQ(Queued(), 2U);
}

TEST_F(KitFlush, ClosingTheStreamReleasesEveryBuffer) {
  Arrive();
  EXPECT_EQ(DSClose(stream_), GC_ERR_SUCCESS);
  EXPECT_TRUE(TheScript().lastKill);
  EXPECT_EQ(TheScript().streamsAlive, 0);
}

class KitTakesAhead : public StreamTest {
 protected:
  KitTakesAhead() {
    TheScript().streamTraits.takesAhead = true;
    EXPECT_EQ(DSClose(stream_), GC_ERR_SUCCESS);
    OpenStream();
  }
  scripted::StreamBuffer* NextTaken() {
    auto& ahead = TheScript().ahead;
    scripted::StreamBuffer* const first = ahead.front();
    ahead.erase(ahead.begin());
    return first;
  }
};

TEST_F(KitTakesAhead, TheBackendGetsBuffersAtTheStartAndWheneverOneIsQueued) {
  const auto buffers = StartWith(2);
  EXPECT_EQ(TheScript().ahead.size(), 2U);
  EXPECT_EQ(Queued(), 2U);
  EXPECT_FALSE(Bool(Ask(buffers[0], BUFFER_INFO_IS_ACQUIRING)));
  scripted::StreamBuffer* const buffer = NextTaken();
  TheScript().sink->MarkStarted(*buffer);
  EXPECT_TRUE(Bool(Ask(buffers[0], BUFFER_INFO_IS_ACQUIRING)));
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_STARTED)), 1U);
  TheScript().sink->Deliver(*buffer, {});
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_STARTED)), 1U);
  ASSERT_EQ(Fetch(), buffers[0]);
  EXPECT_EQ(DSQueueBuffer(stream_, buffers[0]), GC_ERR_SUCCESS);
  EXPECT_EQ(TheScript().ahead.size(), 2U);
}

TEST_F(KitTakesAhead, StoppingBringsTheBuffersBack) {
  const auto buffers = StartWith(3);
  EXPECT_EQ(DSStopAcquisition(stream_, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
  EXPECT_EQ(Queued(), 3U);
  EXPECT_EQ(DSFlushQueue(stream_, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
  for (BUFFER_HANDLE buffer : buffers)
    EXPECT_EQ(DSRevokeBuffer(stream_, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
  EXPECT_EQ(TheScript().buffersRevoked, 3);
}

TEST_F(KitTakesAhead, KillingDeliversTheUnfinishedFramesAsIncomplete) {
  const auto buffers = StartWith(2);
  EXPECT_EQ(DSStopAcquisition(stream_, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
  EXPECT_TRUE(TheScript().lastKill);
  ASSERT_EQ(Fetch(), buffers[0]);
  EXPECT_TRUE(Bool(Ask(buffers[0], BUFFER_INFO_IS_INCOMPLETE)));
}

TEST_F(KitTakesAhead, ACountedAcquisitionTakesNoMoreBuffersThanFrames) {
  for (int i = 0; i < 4; ++i) EXPECT_EQ(DSQueueBuffer(stream_, Announce()), GC_ERR_SUCCESS);
  ASSERT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, 2), GC_ERR_SUCCESS);
  EXPECT_EQ(TheScript().ahead.size(), 2U);
}

// ---- what a delivered buffer tells ----

TEST_F(KitStreaming, APlainImageIsDescribed) {
  StartWith(2);
  scripted::FrameInfo info;
  info.frameId = 77;
  info.timestamp = 2500;  // the frequency is 1000 ticks per second
  info.pixelFormat = 0x01080001;
  info.width = 8;
  info.height = 8;
  info.deliveredHeight = 6;
  info.xOffset = 1;
  info.yOffset = 2;
  info.xPadding = 3;
  info.yPadding = 4;
  info.imageOffset = 5;
  ASSERT_TRUE(TheScript().SendFrame(9, info));
  BUFFER_HANDLE b = Fetch();
  EXPECT_EQ(UInt64(Ask(b, BUFFER_INFO_FRAMEID)), 77U);
  EXPECT_EQ(UInt64(Ask(b, BUFFER_INFO_TIMESTAMP)), 2500U);
  EXPECT_EQ(UInt64(Ask(b, BUFFER_INFO_TIMESTAMP_NS)), 2500000000U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_PAYLOADTYPE)), static_cast<std::size_t>(PAYLOAD_TYPE_IMAGE));
  EXPECT_EQ(UInt64(Ask(b, BUFFER_INFO_PIXELFORMAT)), 0x01080001U);
  EXPECT_EQ(UInt64(Ask(b, BUFFER_INFO_PIXELFORMAT_NAMESPACE)), 4U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_WIDTH)), 8U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_HEIGHT)), 8U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_DELIVERED_IMAGEHEIGHT)), 6U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_XOFFSET)), 1U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_YOFFSET)), 2U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_XPADDING)), 3U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_YPADDING)), 4U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_IMAGEOFFSET)), 5U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_SIZE_FILLED)), 64U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_DATA_SIZE)), 64U);
  EXPECT_EQ(Int32(Ask(b, BUFFER_INFO_PIXEL_ENDIANNESS)), PIXELENDIANNESS_LITTLE);
  EXPECT_EQ(UInt64(Ask(b, BUFFER_INFO_CHUNKLAYOUTID)), 0U);
  EXPECT_EQ(Text(Ask(b, BUFFER_INFO_TLTYPE)), "GEV");
  EXPECT_TRUE(Bool(Ask(b, BUFFER_INFO_IMAGEPRESENT)));
  EXPECT_FALSE(Bool(Ask(b, BUFFER_INFO_IS_INCOMPLETE)));
  EXPECT_FALSE(Bool(Ask(b, BUFFER_INFO_CONTAINS_CHUNKDATA)));
  EXPECT_FALSE(Bool(Ask(b, BUFFER_INFO_DATA_LARGER_THAN_BUFFER)));
  EXPECT_FALSE(Bool(Ask(b, BUFFER_INFO_IS_COMPOSITE)));
  EXPECT_EQ(ResultOf(Ask(b, BUFFER_INFO_FILENAME)), GC_ERR_NO_DATA);
  EXPECT_EQ(ResultOf(Ask(b, BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE)), GC_ERR_NO_DATA);
  std::uint32_t parts = 0;
  EXPECT_EQ(DSGetNumBufferParts(stream_, b, &parts), GC_ERR_NO_DATA);
  EXPECT_EQ(DSGetNumBufferSegments(stream_, b, &parts), GC_ERR_SUCCESS);
  EXPECT_EQ(parts, 1U);
  EXPECT_EQ(Size(Bound(DSGetBufferSegmentInfo, stream_, b, 0U, SEGMENT_INFO_SIZE_FILLED)), 64U);
  EXPECT_EQ(ResultOf(Bound(DSGetBufferSegmentInfo, stream_, b, 1U, SEGMENT_INFO_SIZE)), GC_ERR_INVALID_INDEX);
}

TEST_F(KitStreaming, WhatTheBackendDoesNotKnowIsNotAvailable) {
  StartWith(2);
  ASSERT_TRUE(TheScript().SendFrame(1));
  BUFFER_HANDLE b = Fetch();
  for (const BUFFER_INFO_CMD command : {BUFFER_INFO_WIDTH, BUFFER_INFO_HEIGHT, BUFFER_INFO_PIXELFORMAT,
                                        BUFFER_INFO_TIMESTAMP, BUFFER_INFO_TIMESTAMP_NS, BUFFER_INFO_XOFFSET})
    EXPECT_EQ(ResultOf(Ask(b, command)), GC_ERR_NOT_AVAILABLE) << command;
}

TEST_F(KitStreaming, NanosecondsDoNotOverflow) {
  StartWith(2);
  scripted::FrameInfo info;
  info.timestamp = 0x7FFFFFFFFFFFFFFF / 1000000;  // times 10^9 would not fit in 64 bits
  ASSERT_TRUE(TheScript().SendFrame(1, info));
  EXPECT_EQ(UInt64(Ask(Fetch(), BUFFER_INFO_TIMESTAMP_NS)), *info.timestamp * 1000000);
}

TEST_F(KitStreaming, AFrameThatDoesNotFitIsIncompleteAndReported) {
  EVENT_HANDLE error = nullptr;
  ASSERT_EQ(GCRegisterEvent(stream_, EVENT_ERROR, &error), GC_ERR_SUCCESS);
  StartWith(2, 16);
  ASSERT_TRUE(TheScript().SendFrame(1));
  BUFFER_HANDLE b = Fetch();
  EXPECT_TRUE(Bool(Ask(b, BUFFER_INFO_DATA_LARGER_THAN_BUFFER)));
  EXPECT_TRUE(Bool(Ask(b, BUFFER_INFO_IS_INCOMPLETE)));
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_SIZE_FILLED)), 16U);
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_DATA_SIZE)), 64U);
  EXPECT_EQ(Size(Bound(EventGetInfo, error, EVENT_NUM_IN_QUEUE)), 1U);
}

void Append32(std::vector<std::uint8_t>& bytes, std::uint32_t value, bool big) {
  for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (big ? 24 - 8 * i : 8 * i)));
}

struct ChunkCase {
  const char* name;
  scripted::ChunkTrailers format;
};

class KitChunks : public StreamTest, public testing::WithParamInterface<ChunkCase> {};

TEST_P(KitChunks, TrailersAreReadFromTheEnd) {
  const bool big = GetParam().format == scripted::ChunkTrailers::bigEndian;
  std::vector<std::uint8_t> payload(10, 1);  // the image, first record
  Append32(payload, 0xA1, big);
  Append32(payload, 10, big);
  payload.insert(payload.end(), 4, 2);
  Append32(payload, 0xB2, big);
  Append32(payload, 4, big);
  Append32(payload, 0xC3, big);
  Append32(payload, 0, big);  // an empty chunk
  StartWith(2);
  scripted::FrameInfo info;
  info.chunkTrailers = GetParam().format;
  ASSERT_TRUE(TheScript().SendPayload(payload, info));
  BUFFER_HANDLE b = Fetch();
  EXPECT_TRUE(Bool(Ask(b, BUFFER_INFO_CONTAINS_CHUNKDATA)));
  EXPECT_EQ(Size(Ask(b, BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE)), payload.size());
  std::size_t count = 0;
  ASSERT_EQ(DSGetBufferChunkData(stream_, b, nullptr, &count), GC_ERR_SUCCESS);
  ASSERT_EQ(count, 3U);
  SINGLE_CHUNK_DATA chunks[4] = {};
  count = 2;
  EXPECT_EQ(DSGetBufferChunkData(stream_, b, chunks, &count), GC_ERR_BUFFER_TOO_SMALL);
  count = 4;
  ASSERT_EQ(DSGetBufferChunkData(stream_, b, chunks, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 3U);
  EXPECT_EQ(chunks[0].ChunkID, 0xA1U);
  EXPECT_EQ(chunks[0].ChunkOffset, 0);
  EXPECT_EQ(chunks[0].ChunkLength, 10U);
  EXPECT_EQ(chunks[1].ChunkID, 0xB2U);
  EXPECT_EQ(chunks[1].ChunkOffset, 18);
  EXPECT_EQ(chunks[1].ChunkLength, 4U);
  EXPECT_EQ(chunks[2].ChunkID, 0xC3U);
  EXPECT_EQ(chunks[2].ChunkLength, 0U);
}

TEST_P(KitChunks, ACorruptLengthIsAParsingError) {
  std::vector<std::uint8_t> payload(10, 1);
  const bool big = GetParam().format == scripted::ChunkTrailers::bigEndian;
  Append32(payload, 1, big);
  Append32(payload, 11, big);  // one more than there is
  StartWith(2);
  scripted::FrameInfo info;
  info.chunkTrailers = GetParam().format;
  ASSERT_TRUE(TheScript().SendPayload(payload, info));
  std::size_t count = 0;
  EXPECT_EQ(DSGetBufferChunkData(stream_, Fetch(), nullptr, &count), GC_ERR_PARSING_CHUNK_DATA);
}

TEST_P(KitChunks, ChunksOfAnIncompleteFrameAreNotRead) {
  StartWith(2);
  scripted::FrameInfo info;
  info.chunkTrailers = GetParam().format;
  info.incomplete = true;
  ASSERT_TRUE(TheScript().SendFrame(0, info));
  BUFFER_HANDLE b = Fetch();
  EXPECT_FALSE(Bool(Ask(b, BUFFER_INFO_CONTAINS_CHUNKDATA)));
  std::size_t count = 0;
  EXPECT_EQ(DSGetBufferChunkData(stream_, b, nullptr, &count), GC_ERR_NO_DATA);
}

INSTANTIATE_TEST_SUITE_P(Formats, KitChunks,
                         testing::Values(ChunkCase{"BigEndian", scripted::ChunkTrailers::bigEndian},
                                         ChunkCase{"LittleEndian", scripted::ChunkTrailers::littleEndian}),
                         [](const auto& test) { return test.param.name; });

TEST_F(KitStreaming, PartsOfAMultiPartPayloadAreDescribed) {
  StartWith(2);
  scripted::FrameInfo info;
  info.payloadType = PAYLOAD_TYPE_MULTI_PART;
  scripted::Part part;
  part.offset = 16;
  part.size = 32;
  part.dataType = PART_DATATYPE_3D_IMAGE;
  part.dataFormat = 0x011000B8;
  part.width = 4;
  part.height = 8;
  part.purposeId = 4;
  info.parts = {scripted::Part(), part};
  ASSERT_TRUE(TheScript().SendFrame(1, info));
  BUFFER_HANDLE b = Fetch();
  std::uint32_t count = 0;
  ASSERT_EQ(DSGetNumBufferParts(stream_, b, &count), GC_ERR_SUCCESS);
  ASSERT_EQ(count, 2U);
  const auto ask = [&](BUFFER_PART_INFO_CMD command) {
    return Bound(DSGetBufferPartInfo, stream_, b, 1U, command);
  };
  EXPECT_EQ(Pointer(ask(BUFFER_PART_INFO_BASE)),
            static_cast<std::uint8_t*>(Pointer(Ask(b, BUFFER_INFO_BASE))) + 16);
  EXPECT_EQ(Size(ask(BUFFER_PART_INFO_DATA_SIZE)), 32U);
  EXPECT_EQ(Size(ask(BUFFER_PART_INFO_DATA_TYPE)), static_cast<std::size_t>(PART_DATATYPE_3D_IMAGE));
  EXPECT_EQ(UInt64(ask(BUFFER_PART_INFO_DATA_FORMAT)), 0x011000B8U);
  EXPECT_EQ(UInt64(ask(BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE)), 4U);
  EXPECT_EQ(Size(ask(BUFFER_PART_INFO_WIDTH)), 4U);
  EXPECT_EQ(Size(ask(BUFFER_PART_INFO_HEIGHT)), 8U);
  EXPECT_EQ(Size(ask(BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT)), 8U);
  EXPECT_EQ(UInt64(ask(BUFFER_PART_INFO_DATA_PURPOSE_ID)), 4U);
  for (const BUFFER_PART_INFO_CMD command : {BUFFER_PART_INFO_XOFFSET, BUFFER_PART_INFO_SOURCE_ID})
    EXPECT_EQ(ResultOf(ask(command)), GC_ERR_NOT_AVAILABLE);
  EXPECT_EQ(ResultOf(ask(BUFFER_PART_INFO_CUSTOM_ID)), GC_ERR_NOT_IMPLEMENTED);
  EXPECT_EQ(ResultOf(Bound(DSGetBufferPartInfo, stream_, b, 2U, BUFFER_PART_INFO_BASE)),
            GC_ERR_INVALID_INDEX);
  EXPECT_EQ(ResultOf(Ask(b, BUFFER_INFO_WIDTH)), GC_ERR_NO_DATA);
  EXPECT_EQ(ResultOf(Ask(b, BUFFER_INFO_PIXELFORMAT)), GC_ERR_NO_DATA);
  EXPECT_FALSE(Bool(Ask(b, BUFFER_INFO_IMAGEPRESENT)));

  std::size_t size = 0;
  std::uint64_t format = 0;
  DS_BUFFER_PART_INFO_STACKED infos[3] = {{0, BUFFER_PART_INFO_DATA_SIZE, 0, 0, &size, sizeof size},
                                          {9, BUFFER_PART_INFO_DATA_SIZE, 0, 0, &size, sizeof size},
                                          {1, BUFFER_PART_INFO_DATA_FORMAT, 0, 0, &format, sizeof format}};
  EXPECT_EQ(DSGetBufferPartInfoStacked(stream_, b, infos, 3), GC_ERR_SUCCESS);
  EXPECT_EQ(infos[0].iResult, GC_ERR_SUCCESS);
  EXPECT_EQ(infos[1].iResult, GC_ERR_INVALID_INDEX);
  EXPECT_EQ(infos[2].iResult, GC_ERR_SUCCESS);
  EXPECT_EQ(format, 0x011000B8U);
}

TEST_F(KitStreaming, AMultiPartPayloadMayHaveNoParts) {
  StartWith(2);
  scripted::FrameInfo info;
  info.payloadType = PAYLOAD_TYPE_MULTI_PART;
  ASSERT_TRUE(TheScript().SendFrame(1, info));
  std::uint32_t count = 9;
  EXPECT_EQ(DSGetNumBufferParts(stream_, Fetch(), &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 0U);
}

TEST_F(KitStreaming, StackedQuestionsAnswerEachForItself) {
  StartWith(2);
  ASSERT_TRUE(TheScript().SendFrame(5));
  BUFFER_HANDLE b = Fetch();
  std::uint64_t frame = 0;
  std::size_t filled = 0;
  DS_BUFFER_INFO_STACKED infos[3] = {{BUFFER_INFO_FRAMEID, 0, &frame, sizeof frame, 1},
                                     {BUFFER_INFO_WIDTH, 0, &filled, sizeof filled, 1},
                                     {BUFFER_INFO_SIZE_FILLED, 0, &filled, sizeof filled, 1}};
  EXPECT_EQ(DSGetBufferInfoStacked(stream_, b, infos, 3), GC_ERR_SUCCESS);
  EXPECT_EQ(infos[0].iResult, GC_ERR_SUCCESS);
  EXPECT_EQ(infos[0].iType, INFO_DATATYPE_UINT64);
  EXPECT_EQ(frame, 5U);
  EXPECT_EQ(infos[1].iResult, GC_ERR_NOT_AVAILABLE);
  EXPECT_EQ(infos[2].iResult, GC_ERR_SUCCESS);
  EXPECT_EQ(filled, 64U);
  EXPECT_EQ(DSGetBufferInfoStacked(stream_, b, infos, 0), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(DSGetBufferInfoStacked(stream_, b, nullptr, 1), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(DSGetBufferPartInfoStacked(stream_, b, nullptr, 1), GC_ERR_INVALID_PARAMETER);
}

TEST_F(KitStreaming, FlowsAndCompositeBuffersAreRefusedAsTheyShould) {
  std::uint32_t number = 0;
  EXPECT_EQ(DSGetNumFlows(stream_, &number), GC_ERR_NO_DATA);
  EXPECT_EQ(ResultOf(Bound(DSGetFlowInfo, stream_, 0U, FLOW_INFO_SIZE)), GC_ERR_NO_DATA);
  void* segment = this;
  std::size_t size = 64;
  BUFFER_HANDLE buffer = nullptr;
  EXPECT_EQ(DSAnnounceCompositeBuffer(stream_, 1, &segment, &size, nullptr, &buffer), GC_ERR_NOT_IMPLEMENTED);
}

}  // namespace
