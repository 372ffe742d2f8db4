// Checks: announcing, queueing, flushing and revoking buffers, without a camera that sends.
#include <array>
#include <memory>

#include "BufferSet.h"
#include "Calls.h"
#include "Modules.h"

namespace zyn::producercheck {

using namespace GenTL;

namespace {

constexpr std::size_t kBytes = 4096;
constexpr std::int32_t kNoFlag = 999;

void Announce(Bench& bench) {
  Functions& f = bench.F();
  DS_HANDLE stream = bench.Stream();
  {
    const BufferSet buffers(bench, 3, kBytes);
    ExpectStreamNumber(bench, STREAM_INFO_NUM_ANNOUNCED, buffers.Count(), "announced buffers");
    for (std::size_t i = 0; i < buffers.Count(); ++i) {
      const InfoFunction info = buffers.Info(i);
      Expect(
          Get(info.Bound(BUFFER_INFO_BASE)).Number() == reinterpret_cast<std::uintptr_t>(buffers.Memory(i)),
          "BUFFER_INFO_BASE is not the memory that was announced");
      Expect(Get(info.Bound(BUFFER_INFO_SIZE)).Number() == kBytes,
             "BUFFER_INFO_SIZE is not the size announced");
      const Answer user = Get(info.Bound(BUFFER_INFO_USER_PTR));
      Expect(!user.IsThere() || user.Number() == reinterpret_cast<std::uintptr_t>(BufferSet::UserOf(i)),
             "BUFFER_INFO_USER_PTR is not the pointer that was announced");
      Expect(!buffers.IsTrue(i, BUFFER_INFO_IS_QUEUED), "announcing a buffer queued it");
    }
    BUFFER_HANDLE handle = nullptr;
    bench.ExpectError("announcing the same memory twice",
                      f.DSAnnounceBuffer(stream, buffers.Memory(0), kBytes, nullptr, &handle),
                      {GC_ERR_RESOURCE_IN_USE});
  }
  ExpectStreamNumber(bench, STREAM_INFO_NUM_ANNOUNCED, 0, "announced buffers");
}

void AnnounceParameters(Bench& bench) {
  Functions& f = bench.F();
  DS_HANDLE stream = bench.Stream();
  BUFFER_HANDLE handle = nullptr;
  alignas(4096) static std::array<unsigned char, kBytes> memory{};
  bench.ExpectError("DSAnnounceBuffer without memory",
                    f.DSAnnounceBuffer(stream, nullptr, kBytes, nullptr, &handle),
                    {GC_ERR_INVALID_PARAMETER});
  bench.ExpectError("DSAnnounceBuffer with a size of 0",
                    f.DSAnnounceBuffer(stream, memory.data(), 0, nullptr, &handle),
                    {GC_ERR_INVALID_PARAMETER});
  bench.ExpectError("DSAnnounceBuffer without a place for the handle",
                    f.DSAnnounceBuffer(stream, memory.data(), kBytes, nullptr, nullptr),
                    {GC_ERR_INVALID_PARAMETER});
  bench.ExpectError("DSAllocAndAnnounceBuffer with a size of 0",
                    f.DSAllocAndAnnounceBuffer(stream, 0, nullptr, &handle), {GC_ERR_INVALID_PARAMETER});
  ExpectStreamNumber(bench, STREAM_INFO_NUM_ANNOUNCED, 0, "announced buffers");
}

void Allocate(Bench& bench) {
  const BufferSet buffers(bench, 2, kBytes, false);
  for (std::size_t i = 0; i < buffers.Count(); ++i) {
    const InfoFunction info = buffers.Info(i);
    const Answer base = Get(info.Bound(BUFFER_INFO_BASE));
    bench.ExpectSuccess("BUFFER_INFO_BASE of a buffer that the producer allocated", base.error);
    Expect(base.Number() != 0, "a buffer that the producer allocated has no memory");
    Expect(Get(info.Bound(BUFFER_INFO_SIZE)).Number() >= kBytes,
           "a buffer that the producer allocated is smaller than asked for");
  }
  bench.ExpectSuccess("DSQueueBuffer of a buffer that the producer allocated", buffers.Queue(0));
}

void Revoke(Bench& bench) {
  BufferSet own(bench, 2, kBytes);
  for (std::size_t i = 0; i < own.Count(); ++i) {
    void* memory = nullptr;
    void* user = nullptr;
    bench.ExpectSuccess("DSRevokeBuffer", i == 0 ? own.Revoke(i, &memory, &user) : own.Revoke(i));
    Expect(i > 0 || memory == own.Memory(i), "DSRevokeBuffer does not return the memory that was announced");
    Expect(i > 0 || user == BufferSet::UserOf(i), "DSRevokeBuffer does not return the user pointer");
    bench.ExpectError("a second DSRevokeBuffer", own.Revoke(i), {GC_ERR_INVALID_HANDLE});
  }
  own.Forget();
  BufferSet theirs(bench, 1, kBytes, false);
  void* memory = BufferSet::UserOf(0);
  bench.ExpectSuccess("DSRevokeBuffer of a buffer that the producer allocated",
                      theirs.Revoke(0, &memory, nullptr));
  Expect(memory == nullptr, "DSRevokeBuffer returns memory that belongs to the producer");
}

void BufferIds(Bench& bench) {
  Functions& f = bench.F();
  DS_HANDLE stream = bench.Stream();
  const BufferSet buffers(bench, 3, kBytes);
  BUFFER_HANDLE handle = nullptr;
  for (std::uint32_t i = 0; i < buffers.Count(); ++i) {
    bench.ExpectSuccess("DSGetBufferID", f.DSGetBufferID(stream, i, &handle));
    Expect(handle == buffers[i], "DSGetBufferID does not follow the order of announcing");
  }
  bench.ExpectError("DSGetBufferID for a buffer too many",
                    f.DSGetBufferID(stream, static_cast<std::uint32_t>(buffers.Count()), &handle),
                    {GC_ERR_INVALID_INDEX});
  bench.ExpectSuccess("DSRevokeBuffer", buffers.Revoke(0));
  bench.ExpectSuccess("DSGetBufferID", f.DSGetBufferID(stream, 0, &handle));
  Expect(handle == buffers[1], "DSGetBufferID does not close the gap of a revoked buffer");
}

void QueueTwice(Bench& bench) {
  const BufferSet buffers(bench, 2, kBytes);
  bench.ExpectSuccess("DSQueueBuffer", buffers.Queue(0));
  Expect(buffers.IsTrue(0, BUFFER_INFO_IS_QUEUED), "a queued buffer does not count as queued");
  ExpectStreamNumber(bench, STREAM_INFO_NUM_QUEUED, 1, "queued buffers");
  bench.ExpectError("a second DSQueueBuffer", buffers.Queue(0), {GC_ERR_RESOURCE_IN_USE});
}

void RevokeQueued(Bench& bench) {
  const BufferSet buffers(bench, 2, kBytes);
  bench.ExpectSuccess("DSQueueBuffer", buffers.Queue(0));
  bench.ExpectError("DSRevokeBuffer of a queued buffer", buffers.Revoke(0), {GC_ERR_BUSY});
  ExpectStreamNumber(bench, STREAM_INFO_NUM_ANNOUNCED, buffers.Count(), "announced buffers");
}

void BufferHandles(Bench& bench) {
  alignas(64) static std::array<unsigned char, 4096> garbage{};
  DS_HANDLE stream = bench.Stream();
  BUFFER_HANDLE old = nullptr;
  {
    const BufferSet buffers(bench, 1, kBytes);
    old = buffers[0];
  }
  for (const BufferCall& call : BufferCalls()) {
    try {
      bench.ExpectError(call.name + std::string(" with a null buffer handle"),
                        call.run(bench.F(), stream, nullptr), {GC_ERR_INVALID_HANDLE});
      bench.ExpectError(call.name + std::string(" with a pointer that is no buffer"),
                        call.run(bench.F(), stream, garbage.data()), {GC_ERR_INVALID_HANDLE});
      bench.ExpectError(call.name + std::string(" with a revoked buffer"), call.run(bench.F(), stream, old),
                        {GC_ERR_INVALID_HANDLE});
    } catch (const MissingFunction&) {  // NOLINT(bugprone-empty-catch): another check tells
    }
  }
}

void Flush(Bench& bench, ACQ_QUEUE_TYPE operation) {
  bench.ExpectSuccess("DSFlushQueue with operation " + std::to_string(operation),
                      bench.F().DSFlushQueue(bench.Stream(), operation));
}

void ExpectPlaces(Bench& bench, const BufferSet& buffers, const Event& event, std::size_t input,
                  std::size_t output) {
  ExpectStreamNumber(bench, STREAM_INFO_NUM_QUEUED, input, "queued buffers");
  ExpectStreamNumber(bench, STREAM_INFO_NUM_AWAIT_DELIVERY, output, "buffers awaiting delivery");
  ExpectStreamNumber(bench, STREAM_INFO_NUM_ANNOUNCED, buffers.Count(), "announced buffers");
  Expect(event.Queued() == output,
         "EVENT_NUM_IN_QUEUE is " + std::to_string(event.Queued()) + " instead of " + std::to_string(output));
  std::size_t owned = 0;
  for (std::size_t i = 0; i < buffers.Count(); ++i) owned += buffers.IsTrue(i, BUFFER_INFO_IS_QUEUED) ? 1 : 0;
  Expect(owned == input + output,
         std::to_string(owned) + " buffers count as queued instead of " + std::to_string(input + output));
}

// One buffer in the output, one in the input, the others unqueued.
struct ThreePlaces {
  explicit ThreePlaces(Bench& bench)
      : event(bench, bench.Stream(), EVENT_NEW_BUFFER), buffers(bench, 3, kBytes) {
    bench.ExpectSuccess("DSQueueBuffer", buffers.Queue(0));
    Flush(bench, ACQ_QUEUE_INPUT_TO_OUTPUT);
    bench.ExpectSuccess("DSQueueBuffer", buffers.Queue(1));
    ExpectPlaces(bench, buffers, event, 1, 1);
  }
  Event event;
  const BufferSet buffers;
};

void InputToOutput(Bench& bench) {
  const Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
  const BufferSet buffers(bench, 3, kBytes);
  buffers.QueueAll();
  Flush(bench, ACQ_QUEUE_INPUT_TO_OUTPUT);
  ExpectPlaces(bench, buffers, event, 0, buffers.Count());
  bench.ExpectError("DSRevokeBuffer of a buffer that awaits delivery", buffers.Revoke(0), {GC_ERR_BUSY});
  std::vector<bool> seen(buffers.Count());
  for (std::size_t i = 0; i < buffers.Count(); ++i) {
    EVENT_NEW_BUFFER_DATA data = {};
    bench.ExpectSuccess("EventGetData after a flush to the output", event.Fetch(data, 0));
    const auto index = buffers.IndexOf(data.BufferHandle);
    Expect(index && !seen[*index], "a flush to the output delivers a buffer twice, or one that is not ours");
    seen[*index] = true;
    Expect(data.pUserPointer == BufferSet::UserOf(*index), "a new-buffer event carries another user pointer");
    Expect(!buffers.IsTrue(*index, BUFFER_INFO_NEW_DATA),
           "a buffer that was flushed to the output has new data");
    Expect(Get(buffers.Info(*index).Bound(BUFFER_INFO_BASE)).Number() ==
               reinterpret_cast<std::uintptr_t>(buffers.Memory(*index)),
           "a buffer that was flushed to the output does not tell its memory");
    Expect(!buffers.IsTrue(*index, BUFFER_INFO_IS_QUEUED), "a delivered buffer counts as queued");
  }
  ExpectPlaces(bench, buffers, event, 0, 0);
}

void OutputDiscard(Bench& bench) {
  const ThreePlaces places(bench);
  Flush(bench, ACQ_QUEUE_OUTPUT_DISCARD);
  ExpectPlaces(bench, places.buffers, places.event, 1, 0);
}

void AllToInput(Bench& bench) {
  const ThreePlaces places(bench);
  Flush(bench, ACQ_QUEUE_ALL_TO_INPUT);
  ExpectPlaces(bench, places.buffers, places.event, places.buffers.Count(), 0);
}

void UnqueuedToInput(Bench& bench) {
  const ThreePlaces places(bench);
  Flush(bench, ACQ_QUEUE_UNQUEUED_TO_INPUT);
  ExpectPlaces(bench, places.buffers, places.event, places.buffers.Count() - 1, 1);
}

void AllDiscard(Bench& bench) {
  const ThreePlaces places(bench);
  Flush(bench, ACQ_QUEUE_ALL_DISCARD);
  ExpectPlaces(bench, places.buffers, places.event, 0, 0);
  bench.ExpectSuccess("DSQueueBuffer after everything was discarded", places.buffers.Queue(0));
}

void UnregisterDiscards(Bench& bench) {
  ThreePlaces places(bench);
  bench.ExpectSuccess("GCUnregisterEvent", places.event.Unregister());
  Expect(!places.buffers.IsTrue(0, BUFFER_INFO_IS_QUEUED),
         "a buffer in the output counts as queued after the event was unregistered");
  Expect(places.buffers.IsTrue(1, BUFFER_INFO_IS_QUEUED),
         "a buffer in the input does not count as queued after the event was unregistered");
}

void FlushUnknown(Bench& bench) {
  bench.ExpectError("DSFlushQueue with an unknown operation", bench.F().DSFlushQueue(bench.Stream(), kNoFlag),
                    {GC_ERR_NOT_IMPLEMENTED, GC_ERR_INVALID_PARAMETER});
}

void StartParameters(Bench& bench) {
  Functions& f = bench.F();
  DS_HANDLE stream = bench.Stream();
  const BufferSet buffers(bench, 2, kBytes);
  bench.ExpectError("DSStartAcquisition of no buffers",
                    f.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 0), {GC_ERR_INVALID_PARAMETER});
  bench.ExpectError("DSStartAcquisition with an unknown flag",
                    f.DSStartAcquisition(stream, kNoFlag, GENTL_INFINITE),
                    {GC_ERR_NOT_IMPLEMENTED, GC_ERR_INVALID_PARAMETER});
  bench.ExpectError("DSStopAcquisition of a stream that was not started",
                    f.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), {GC_ERR_RESOURCE_IN_USE});
  Expect(StreamNumber(bench, STREAM_INFO_IS_GRABBING).value_or(0) == 0,
         "a refused start left the stream grabbing");
}

void TooFewBuffers(Bench& bench) {
  const auto least = StreamNumber(bench, STREAM_INFO_BUF_ANNOUNCE_MIN);
  if (!least || *least == 0) Skip("the stream starts without buffers");
  const GC_ERROR error =
      bench.F().DSStartAcquisition(bench.Stream(), ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
  if (error == GC_ERR_SUCCESS) bench.F().DSStopAcquisition(bench.Stream(), ACQ_STOP_FLAGS_KILL);
  bench.ExpectError("DSStartAcquisition with fewer buffers than BUF_ANNOUNCE_MIN", error,
                    {GC_ERR_INVALID_BUFFER});
}

void CloseRevokes(Bench& bench) {
  BufferSet buffers(bench, 2, kBytes);
  buffers.QueueAll();
  bench.EndStream();
  bench.Stream();
  ExpectStreamNumber(bench, STREAM_INFO_NUM_ANNOUNCED, 0, "announced buffers");
  BUFFER_HANDLE handle = nullptr;
  bench.ExpectSuccess(
      "announcing memory again after its stream was closed",
      bench.F().DSAnnounceBuffer(bench.Stream(), buffers.Memory(0), kBytes, nullptr, &handle));
  bench.EndStream();
  buffers.Forget();
}

}  // namespace

std::vector<Check> BufferChecks() {
  return {
      {"announce", "announced memory becomes a buffer, once", &Announce},
      {"announce-parameters", "memory that is none is refused", &AnnounceParameters},
      {"allocate", "the producer allocates buffers", &Allocate},
      {"revoke", "revoking gives memory and user pointer back", &Revoke},
      {"buffer-ids", "buffers are numbered in the order of announcing", &BufferIds},
      {"queue-twice", "a buffer is queued once", &QueueTwice},
      {"revoke-queued", "a queued buffer cannot be revoked", &RevokeQueued},
      {"buffer-handles", "handles that are no buffers are refused", &BufferHandles},
      {"flush-input-to-output", "waiting buffers are delivered without new data", &InputToOutput},
      {"flush-output-discard", "undelivered buffers become unqueued", &OutputDiscard},
      {"flush-all-to-input", "every buffer becomes queued", &AllToInput},
      {"flush-unqueued-to-input", "unqueued buffers become queued", &UnqueuedToInput},
      {"flush-all-discard", "every buffer becomes unqueued, and none is revoked", &AllDiscard},
      {"flush-by-unregistering", "unregistering the event empties the output, not the input",
       &UnregisterDiscards},
      {"flush-unknown", "unknown flush operations are refused", &FlushUnknown},
      {"start-parameters", "wrong starts and stops are refused and leave the stream stopped",
       &StartParameters},
      {"too-few-buffers", "a stream does not start with too few buffers", &TooFewBuffers},
      {"close-revokes", "closing a stream revokes its buffers", &CloseRevokes},
  };
}

}  // namespace zyn::producercheck
