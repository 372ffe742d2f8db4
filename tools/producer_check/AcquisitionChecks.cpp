// Checks: frames from the camera.
#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <memory>
#include <thread>

#include "BufferSet.h"
#include "Modules.h"
#include "NodeMap.h"

namespace zyn::producercheck {

using namespace GenTL;

namespace {

constexpr std::uint64_t kFrameMs = 5000;  // longer than any camera needs for a frame at its own pace
constexpr std::uint64_t kNoFrameMs = 400;
constexpr std::size_t kBuffers = 4;

Module CameraModule(Bench& bench) {
  return {"the camera", bench.Remote(), GENTL_MODULE_REMOTE_DEVICE, false};
}

std::size_t PayloadBytes(Bench& bench, const NodeMap& camera) {
  std::uint64_t bytes = 0;
  if (StreamNumber(bench, STREAM_INFO_DEFINES_PAYLOADSIZE).value_or(0) != 0)
    bytes = StreamNumber(bench, STREAM_INFO_PAYLOAD_SIZE).value_or(0);
  if (bytes == 0)
    bytes =
        static_cast<std::uint64_t>(std::max<std::int64_t>(0, camera.ReadInteger("PayloadSize").value_or(0)));
  constexpr std::uint64_t kMostBytes = 1ULL << 32U;
  Expect(bytes > 0 && bytes < kMostBytes, "neither the stream nor the camera tells a usable payload size");
  return static_cast<std::size_t>(bytes);
}

// A stream with buffers, started and stopped as a consumer does it.
class Acquisition {
 public:
  enum class Memory { kOurs, kTheirs };

  explicit Acquisition(Bench& bench, std::size_t count = kBuffers, Memory memory = Memory::kOurs)
      : bench_(bench),
        camera_(bench, CameraModule(bench)),
        event_(bench, bench.Stream(), EVENT_NEW_BUFFER),
        buffers_(bench, count, PayloadBytes(bench, Lock()), memory == Memory::kOurs) {
    buffers_.QueueAll();
  }
  ~Acquisition() {
    try {
      if (isRunning_) Stop(ACQ_STOP_FLAGS_KILL);
    } catch (const CheckFailed&) {  // NOLINT(bugprone-empty-catch): a failure is on its way already
    }
    try {
      Unlock();
    } catch (const CheckFailed&) {  // NOLINT(bugprone-empty-catch): the same
    }
  }
  Acquisition(const Acquisition&) = delete;
  Acquisition& operator=(const Acquisition&) = delete;

  void Start(std::uint64_t frames = GENTL_INFINITE) {
    bench_.ExpectSuccess("DSStartAcquisition",
                         bench_.F().DSStartAcquisition(bench_.Stream(), ACQ_START_FLAGS_DEFAULT, frames));
    isRunning_ = true;
    if (camera_.Has("AcquisitionStart")) camera_.Execute("AcquisitionStart");
  }

  void StopCamera() {
    if (camera_.Has("AcquisitionStop")) camera_.Execute("AcquisitionStop");
  }

  void Stop(ACQ_STOP_FLAGS flags = ACQ_STOP_FLAGS_DEFAULT) {
    isRunning_ = false;
    StopCamera();
    bench_.ExpectSuccess("DSStopAcquisition", bench_.F().DSStopAcquisition(bench_.Stream(), flags));
  }

  /// The index of the next frame's buffer.
  std::size_t Next() {
    EVENT_NEW_BUFFER_DATA data = {};
    const GC_ERROR error = event_.Fetch(data, kFrameMs);
    if (error == GC_ERR_TIMEOUT && IsTriggered()) Skip("the camera waits for a trigger");
    bench_.ExpectSuccess("EventGetData with the stream running", error);
    const auto index = buffers_.IndexOf(data.BufferHandle);
    Expect(index.has_value(), "a new-buffer event carries a handle that was not announced");
    Expect(data.pUserPointer == BufferSet::UserOf(*index), "a new-buffer event carries another user pointer");
    return *index;
  }

  /// The same, for a frame that is complete: the network may lose packets.
  std::size_t NextWhole() {
    constexpr int kAttempts = 20;
    for (int i = 0; i < kAttempts; ++i) {
      const std::size_t index = Next();
      if (!buffers_.IsTrue(index, BUFFER_INFO_IS_INCOMPLETE)) return index;
      Requeue(index);
    }
    Fail(std::to_string(kAttempts) + " frames in a row were incomplete");
  }

  void Requeue(std::size_t index) const {
    bench_.ExpectSuccess("DSQueueBuffer of a delivered buffer", buffers_.Queue(index));
  }

  /// The stream was closed under the buffers.
  void Forget() {
    isRunning_ = false;
    buffers_.Forget();
    event_.Forget();
  }

  std::uint64_t Number(std::size_t index, BUFFER_INFO_CMD command) const {
    return Get(buffers_.Info(index).Bound(command)).Number();
  }
  std::optional<std::uint64_t> NumberIfTold(std::size_t index, BUFFER_INFO_CMD command) const {
    const Answer answer = Get(buffers_.Info(index).Bound(command));
    return answer.IsThere() ? std::optional<std::uint64_t>(answer.Number()) : std::nullopt;
  }
  const unsigned char* Data(std::size_t index) const {
    const auto address = static_cast<std::uintptr_t>(Number(index, BUFFER_INFO_BASE));
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the producer's answer
    return reinterpret_cast<unsigned char*>(address);
  }
  const BufferSet& Buffers() const { return buffers_; }
  const Event& NewBuffer() const { return event_; }

 private:
  const NodeMap& Lock() const {
    if (camera_.Has("TLParamsLocked")) camera_.Write("TLParamsLocked", "1");
    return camera_;
  }
  void Unlock() const {
    if (camera_.Has("TLParamsLocked")) camera_.Write("TLParamsLocked", "0");
  }
  bool IsTriggered() const {
    std::string reason;
    return camera_.Has("TriggerMode") && camera_.Read("TriggerMode", reason) == "On";
  }

  Bench& bench_;
  const NodeMap camera_;
  Event event_;
  BufferSet buffers_;
  bool isRunning_ = false;
};

void Acquire(Bench& bench) {
  constexpr std::size_t kFrames = 10;
  Acquisition acquisition(bench);
  acquisition.Start();
  Expect(StreamNumber(bench, STREAM_INFO_IS_GRABBING).value_or(1) == 1,
         "a running stream says it is not grabbing");
  std::optional<std::uint64_t> last;
  for (std::size_t i = 0; i < kFrames; ++i) {
    const std::size_t index = acquisition.Next();
    Expect(acquisition.Buffers().IsTrue(index, BUFFER_INFO_NEW_DATA), "a delivered frame has no new data");
    Expect(!acquisition.Buffers().IsTrue(index, BUFFER_INFO_IS_QUEUED),
           "a delivered buffer counts as queued");
    const std::uint64_t id = acquisition.Number(index, BUFFER_INFO_FRAMEID);
    Expect(!last || *last != id, "two frames in a row have the same identifier");
    last = id;
    acquisition.Requeue(index);
  }
  const auto delivered = StreamNumber(bench, STREAM_INFO_NUM_DELIVERED);
  Expect(!delivered || *delivered >= kFrames, "after " + std::to_string(kFrames) +
                                                  " frames the stream says " +
                                                  std::to_string(delivered.value_or(0)) + " were delivered");
  acquisition.Stop();
  Expect(StreamNumber(bench, STREAM_INFO_IS_GRABBING).value_or(0) == 0,
         "a stopped stream says it is grabbing");
}

void AcquireIntoTheirs(Bench& bench) {
  Acquisition acquisition(bench, kBuffers, Acquisition::Memory::kTheirs);
  acquisition.Start();
  for (std::size_t i = 0; i < 2 * kBuffers; ++i) acquisition.Requeue(acquisition.Next());
  acquisition.Stop();
}

void StartTwice(Bench& bench) {
  Acquisition acquisition(bench);
  acquisition.Start();
  bench.ExpectError("a second DSStartAcquisition",
                    bench.F().DSStartAcquisition(bench.Stream(), ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE),
                    {GC_ERR_RESOURCE_IN_USE});
  acquisition.Requeue(acquisition.Next());
  acquisition.Stop();
  bench.ExpectError("a second DSStopAcquisition",
                    bench.F().DSStopAcquisition(bench.Stream(), ACQ_STOP_FLAGS_DEFAULT),
                    {GC_ERR_RESOURCE_IN_USE});
}

void FrameInfo(Bench& bench) {
  Acquisition acquisition(bench);
  acquisition.Start();
  const std::size_t index = acquisition.NextWhole();
  ExpectCommands(bench, acquisition.Buffers().Info(index));
  const std::uint64_t capacity = acquisition.Number(index, BUFFER_INFO_SIZE);
  const std::uint64_t filled = acquisition.NumberIfTold(index, BUFFER_INFO_SIZE_FILLED).value_or(capacity);
  Expect(filled > 0 && filled <= capacity, "a complete frame fills " + std::to_string(filled) +
                                               " bytes of a buffer of " + std::to_string(capacity));
  Expect(acquisition.Data(index) == acquisition.Buffers().Memory(index),
         "BUFFER_INFO_BASE of a frame is not its memory");
  Expect(acquisition.Number(index, BUFFER_INFO_USER_PTR) ==
                 reinterpret_cast<std::uintptr_t>(BufferSet::UserOf(index)) ||
             !acquisition.NumberIfTold(index, BUFFER_INFO_USER_PTR),
         "BUFFER_INFO_USER_PTR of a frame is not the pointer announced");
  Expect(acquisition.NumberIfTold(index, BUFFER_INFO_IS_ACQUIRING).value_or(0) == 0,
         "a delivered buffer says it is being filled");
  const std::uint64_t payload = acquisition.Number(index, BUFFER_INFO_PAYLOADTYPE);
  Expect(payload != PAYLOAD_TYPE_UNKNOWN, "a complete frame has the payload type 0, unknown");
  if (payload != PAYLOAD_TYPE_IMAGE) return;
  Expect(acquisition.Number(index, BUFFER_INFO_IMAGEPRESENT) != 0,
         "an image frame says that no image is present");
  const auto width = acquisition.NumberIfTold(index, BUFFER_INFO_WIDTH);
  const auto height = acquisition.NumberIfTold(index, BUFFER_INFO_HEIGHT);
  const std::uint64_t offset = acquisition.NumberIfTold(index, BUFFER_INFO_IMAGEOFFSET).value_or(0);
  Expect(offset < capacity, "an image begins behind the end of its buffer");
  Expect(!width || *width > 0, "an image has the width 0");
  Expect(!height || *height > 0, "an image has the height 0");
  constexpr std::uint64_t kNamespaces = 5;
  const auto kind = acquisition.NumberIfTold(index, BUFFER_INFO_PIXELFORMAT_NAMESPACE);
  Expect(!kind || *kind < kNamespaces || *kind >= PIXELFORMAT_NAMESPACE_CUSTOM_ID,
         "a pixel format has no known namespace");
  const auto format = acquisition.NumberIfTold(index, BUFFER_INFO_PIXELFORMAT);
  const bool isPfnc = kind == std::uint64_t{PIXELFORMAT_NAMESPACE_PFNC_32BIT} && format;
  if (!isPfnc || !width || !height) return;
  const std::uint64_t bits = (*format >> 16U) & 0xFFU;  // what a pixel takes is part of its code
  Expect(offset + *width * *height * bits / 8 <= filled,
         "an image of " + std::to_string(*width) + " x " + std::to_string(*height) + " pixels of " +
             std::to_string(bits) + " bits does not fit into the " + std::to_string(filled) +
             " bytes delivered");
}

void FrameInfoStacked(Bench& bench) {
  constexpr std::int32_t kNoCommand = 999;
  Acquisition acquisition(bench);
  acquisition.Start();
  const std::size_t index = acquisition.Next();
  const std::array<BUFFER_INFO_CMD, 5> commands = {BUFFER_INFO_BASE, BUFFER_INFO_FRAMEID, kNoCommand,
                                                   BUFFER_INFO_PAYLOADTYPE, BUFFER_INFO_IS_INCOMPLETE};
  std::array<std::array<unsigned char, 8>, commands.size()> values{};
  std::array<DS_BUFFER_INFO_STACKED, commands.size()> questions{};
  for (std::size_t i = 0; i < commands.size(); ++i) {
    questions[i].iInfoCmd = commands[i];
    questions[i].pBuffer = values[i].data();
    questions[i].iSize = values[i].size();
    questions[i].iResult = GC_ERR_ERROR;
  }
  DS_HANDLE stream = bench.Stream();
  BUFFER_HANDLE buffer = acquisition.Buffers()[index];
  bench.ExpectSuccess("DSGetBufferInfoStacked",
                      bench.F().DSGetBufferInfoStacked(stream, buffer, questions.data(), questions.size()));
  for (std::size_t i = 0; i < commands.size(); ++i) {
    const Answer single = Get(acquisition.Buffers().Info(index).Bound(commands[i]));
    const GC_ERROR result = questions[i].iResult;
    Expect(result == single.error, "DSGetBufferInfoStacked and DSGetBufferInfo disagree about command " +
                                       std::to_string(commands[i]) + ": " + NameOf(result) + " and " +
                                       NameOf(single.error));
    if (!single.IsThere()) continue;
    const std::size_t size = questions[i].iSize;
    const INFO_DATATYPE type = questions[i].iType;
    Expect(type == single.type && size == single.bytes.size() &&
               std::equal(single.bytes.begin(), single.bytes.end(), values[i].begin()),
           "DSGetBufferInfoStacked and DSGetBufferInfo give different values for command " +
               std::to_string(commands[i]));
  }
  bench.ExpectError("DSGetBufferInfoStacked without questions",
                    bench.F().DSGetBufferInfoStacked(stream, buffer, questions.data(), 0),
                    {GC_ERR_INVALID_PARAMETER});
}

void Parts(Bench& bench) {
  Acquisition acquisition(bench);
  acquisition.Start();
  const std::size_t index = acquisition.NextWhole();
  DS_HANDLE stream = bench.Stream();
  BUFFER_HANDLE buffer = acquisition.Buffers()[index];
  std::uint32_t count = 0;
  const GC_ERROR error = bench.F().DSGetNumBufferParts(stream, buffer, &count);
  if (acquisition.Number(index, BUFFER_INFO_PAYLOADTYPE) != PAYLOAD_TYPE_MULTI_PART) {
    bench.ExpectError("DSGetNumBufferParts of a buffer without parts", error,
                      {GC_ERR_NO_DATA, GC_ERR_NOT_IMPLEMENTED});
    return;
  }
  bench.ExpectSuccess("DSGetNumBufferParts", error);
  const auto part = [&](std::uint32_t i, BUFFER_PART_INFO_CMD command) {
    const Answer answer = Get([&](INFO_DATATYPE* type, void* out, std::size_t* size) {
      return bench.F().DSGetBufferPartInfo(stream, buffer, i, command, type, out, size);
    });
    bench.ExpectSuccess("DSGetBufferPartInfo with command " + std::to_string(command), answer.error);
    return answer.Number();
  };
  const auto begin = reinterpret_cast<std::uintptr_t>(acquisition.Data(index));
  const std::uint64_t capacity = acquisition.Number(index, BUFFER_INFO_SIZE);
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint64_t base = part(i, BUFFER_PART_INFO_BASE);
    const std::uint64_t size = part(i, BUFFER_PART_INFO_DATA_SIZE);
    Expect(base >= begin && base - begin <= capacity && size <= capacity - (base - begin),
           "part " + std::to_string(i) + " leaves its buffer");
    part(i, BUFFER_PART_INFO_DATA_TYPE);
    part(i, BUFFER_PART_INFO_DATA_FORMAT);
    part(i, BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE);
  }
  std::uint64_t number = 0;
  std::size_t size = sizeof number;
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  bench.ExpectError(
      "DSGetBufferPartInfo for a part too many",
      bench.F().DSGetBufferPartInfo(stream, buffer, count, BUFFER_PART_INFO_BASE, &type, &number, &size),
      {GC_ERR_INVALID_INDEX});
}

void Chunks(Bench& bench) {
  Acquisition acquisition(bench);
  acquisition.Start();
  const std::size_t index = acquisition.NextWhole();
  std::size_t count = 0;
  DS_HANDLE stream = bench.Stream();
  BUFFER_HANDLE buffer = acquisition.Buffers()[index];
  const GC_ERROR error = bench.F().DSGetBufferChunkData(stream, buffer, nullptr, &count);
  if (acquisition.Number(index, BUFFER_INFO_CONTAINS_CHUNKDATA) == 0) {
    bench.ExpectError("DSGetBufferChunkData of a buffer without chunks", error, {GC_ERR_NO_DATA});
    return;
  }
  bench.ExpectSuccess("DSGetBufferChunkData", error);
  Expect(count > 0, "a buffer that contains chunks has none");
  std::vector<SINGLE_CHUNK_DATA> chunks(count);
  std::size_t fewer = count - 1;
  bench.ExpectError("DSGetBufferChunkData with memory for a chunk too few",
                    bench.F().DSGetBufferChunkData(stream, buffer, chunks.data(), &fewer),
                    {GC_ERR_BUFFER_TOO_SMALL});
  bench.ExpectSuccess("DSGetBufferChunkData",
                      bench.F().DSGetBufferChunkData(stream, buffer, chunks.data(), &count));
  Expect(count == chunks.size(), "DSGetBufferChunkData gives another number of chunks than it told");
  const std::uint64_t filled = acquisition.NumberIfTold(index, BUFFER_INFO_SIZE_FILLED)
                                   .value_or(acquisition.Number(index, BUFFER_INFO_SIZE));
  for (const SINGLE_CHUNK_DATA& chunk : chunks) {
    const std::ptrdiff_t offset = chunk.ChunkOffset;
    const std::size_t length = chunk.ChunkLength;
    Expect(offset >= 0 && static_cast<std::uint64_t>(offset) <= filled &&
               length <= filled - static_cast<std::uint64_t>(offset),
           "a chunk leaves the data of its buffer");
  }
}

// A buffer belongs to the consumer from its delivery to the moment it is queued again.
void KeepsFrames(Bench& bench) {
  Acquisition acquisition(bench);
  acquisition.Start();
  const std::size_t kept = acquisition.Next();
  const auto bytes = static_cast<std::size_t>(acquisition.Number(kept, BUFFER_INFO_SIZE));
  const unsigned char* const data = acquisition.Data(kept);
  const std::vector<unsigned char> copy(data, data + bytes);
  const std::uint64_t id = acquisition.Number(kept, BUFFER_INFO_FRAMEID);
  for (std::size_t i = 0; i < 3 * kBuffers; ++i) {
    const std::size_t next = acquisition.Next();
    Expect(next != kept, "a buffer was delivered again without being queued");
    acquisition.Requeue(next);
  }
  Expect(std::equal(copy.begin(), copy.end(), data),
         "the producer wrote into a buffer that the consumer holds");
  Expect(acquisition.Number(kept, BUFFER_INFO_FRAMEID) == id,
         "the frame identifier of a held buffer changed");
}

void Timestamps(Bench& bench) {
  Acquisition acquisition(bench);
  acquisition.Start();
  std::uint64_t last = 0;
  for (int i = 0; i < 5; ++i) {
    const std::size_t index = acquisition.Next();
    auto stamp = acquisition.NumberIfTold(index, BUFFER_INFO_TIMESTAMP_NS);
    if (!stamp) stamp = acquisition.NumberIfTold(index, BUFFER_INFO_TIMESTAMP);
    if (!stamp) Skip("the frames have no time stamps");
    Expect(*stamp >= last, "a frame is older than the one before");
    last = *stamp;
    acquisition.Requeue(index);
  }
}

void Counted(Bench& bench) {
  constexpr std::uint64_t kFrames = 2;
  Acquisition acquisition(bench);
  acquisition.Start(kFrames);
  for (std::uint64_t i = 0; i < kFrames; ++i) acquisition.Requeue(acquisition.Next());
  bench.ExpectError("EventGetData after the last frame that was asked for",
                    acquisition.NewBuffer().Fetch(kNoFrameMs), {GC_ERR_TIMEOUT});
  acquisition.Stop();
}

void Again(Bench& bench) {
  Acquisition acquisition(bench);
  for (int i = 0; i < 3; ++i) {
    acquisition.Start();
    acquisition.Requeue(acquisition.Next());
    acquisition.Stop(i == 1 ? ACQ_STOP_FLAGS_KILL : ACQ_STOP_FLAGS_DEFAULT);
    bench.ExpectSuccess("DSFlushQueue(ALL_TO_INPUT)",
                        bench.F().DSFlushQueue(bench.Stream(), ACQ_QUEUE_ALL_TO_INPUT));
    Expect(acquisition.NewBuffer().Queued() == 0,
           "a flush of everything to the input left events in the queue");
  }
}

void StoppedIsStill(Bench& bench) {
  Acquisition acquisition(bench);
  acquisition.Start();
  acquisition.Requeue(acquisition.Next());
  acquisition.Stop();
  bench.ExpectSuccess("DSFlushQueue(ALL_DISCARD)",
                      bench.F().DSFlushQueue(bench.Stream(), ACQ_QUEUE_ALL_DISCARD));
  bench.ExpectError("EventGetData of a stopped stream", acquisition.NewBuffer().Fetch(kNoFrameMs),
                    {GC_ERR_TIMEOUT});
  for (std::size_t i = 0; i < acquisition.Buffers().Count(); ++i) {
    Expect(!acquisition.Buffers().IsTrue(i, BUFFER_INFO_IS_QUEUED),
           "a buffer counts as queued after the stream was stopped and everything discarded");
  }
}

void CloseRunning(Bench& bench) {
  Acquisition acquisition(bench);
  acquisition.Start();
  acquisition.Next();
  acquisition.StopCamera();
  bench.EndStream();
  acquisition.Forget();
  bench.Stream();
  ExpectStreamNumber(bench, STREAM_INFO_NUM_ANNOUNCED, 0, "announced buffers");
  Expect(StreamNumber(bench, STREAM_INFO_IS_GRABBING).value_or(0) == 0,
         "a stream that was opened again is grabbing");
}

void Threads(Bench& bench) {
  constexpr std::size_t kFrames = 10;
  Acquisition acquisition(bench);
  const std::vector<Module> modules = Modules(bench);
  acquisition.Start();
  std::atomic<bool> isOver{false};
  std::atomic<GC_ERROR> failure{GC_ERR_SUCCESS};
  std::vector<std::thread> threads;
  for (const Module& module : modules) {
    const auto url = ParseLocalUrl(UrlsOf(bench, module).front());
    if (!url) continue;
    threads.emplace_back([&, port = module.handle, address = url->address] {
      while (!isOver) {
        std::array<char, 64> bytes{};
        std::size_t size = bytes.size();
        const GC_ERROR error = bench.F().GCReadPort(port, address, bytes.data(), &size);
        if (error != GC_ERR_SUCCESS) failure = error;
      }
    });
  }
  std::exception_ptr problem;
  try {
    for (std::size_t i = 0; i < kFrames; ++i) acquisition.Requeue(acquisition.Next());
  } catch (...) {
    problem = std::current_exception();
  }
  isOver = true;
  for (std::thread& thread : threads) thread.join();
  if (problem) std::rethrow_exception(problem);
  bench.ExpectSuccess("GCReadPort while frames are acquired and other ports are read", failure);
}

}  // namespace

std::vector<Check> AcquisitionChecks() {
  return {
      {"acquire", "frames arrive in announced buffers, each once", &Acquire},
      {"acquire-allocated", "frames arrive in buffers that the producer allocated", &AcquireIntoTheirs},
      {"start-twice", "a stream starts once and stops once", &StartTwice},
      {"frame-info", "the information about a frame is complete and fits", &FrameInfo},
      {"frame-info-stacked", "several questions about a frame can be asked in one call", &FrameInfoStacked},
      {"frame-parts", "the parts of a frame lie inside it, and other frames have none", &Parts},
      {"frame-chunks", "the chunks of a frame lie inside it, and other frames have none", &Chunks},
      {"frame-kept", "a delivered frame stays as it is until it is queued again", &KeepsFrames},
      {"frame-times", "time stamps do not run backwards", &Timestamps},
      {"counted", "an acquisition of so many frames delivers so many", &Counted},
      {"again", "a stream starts again with the same buffers", &Again},
      {"stopped", "a stopped stream delivers nothing and gives its buffers back", &StoppedIsStill},
      {"close-running", "closing a running stream ends it", &CloseRunning},
      {"threads", "ports can be read from several threads while frames arrive", &Threads},
  };
}

}  // namespace zyn::producercheck
