// Checks: registering events, waiting for them, and ending a wait.
#include <algorithm>
#include <array>
#include <future>
#include <thread>

#include "BufferSet.h"
#include "Modules.h"

namespace zyn::producercheck {

using namespace GenTL;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint64_t kLongWaitMs = 10000;
constexpr std::chrono::milliseconds kTimeToWait{150};  // for a thread to be inside its wait
constexpr std::size_t kBytes = 4096;

void* const kUntouched =
    reinterpret_cast<void*>(std::uintptr_t{0x5A5A});  // NOLINT(performance-no-int-to-ptr)

void RegisterTwice(Bench& bench) {
  const Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
  EVENT_HANDLE second = kUntouched;
  bench.ExpectError("a second GCRegisterEvent",
                    bench.F().GCRegisterEvent(bench.Stream(), EVENT_NEW_BUFFER, &second),
                    {GC_ERR_RESOURCE_IN_USE});
  Expect(second == kUntouched, "a refused GCRegisterEvent changed the handle");
}

void Unregistered(Bench& bench) {
  Functions& f = bench.F();
  bench.ExpectError("GCUnregisterEvent of an event that is not registered",
                    f.GCUnregisterEvent(bench.Stream(), EVENT_NEW_BUFFER), {GC_ERR_NOT_INITIALIZED});
  Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
  EVENT_HANDLE old = event.Handle();
  bench.ExpectSuccess("GCUnregisterEvent", event.Unregister());
  bench.ExpectError("EventKill of an event that was unregistered", f.EventKill(old), {GC_ERR_INVALID_HANDLE});
  const Event again(bench, bench.Stream(), EVENT_NEW_BUFFER);
  bench.ExpectError("EventGetData of an event registered again", again.Fetch(0), {GC_ERR_TIMEOUT});
}

void ExpectRefused(Bench& bench, const std::string& what, void* module, EVENT_TYPE type,
                   std::initializer_list<GC_ERROR> errors) {
  EVENT_HANDLE handle = kUntouched;
  bench.ExpectError("GCRegisterEvent of " + what, bench.F().GCRegisterEvent(module, type, &handle), errors);
  Expect(handle == kUntouched, "a refused GCRegisterEvent of " + what + " changed the handle");
}

void EventTypes(Bench& bench) {
  constexpr EVENT_TYPE kNoType = 99;
  const std::vector<Module> modules = Modules(bench);
  for (const Module& module : modules) {
    if (!module.isEventSource) continue;
    ExpectRefused(bench, "an unknown type on " + module.name, module.handle, kNoType,
                  {GC_ERR_NOT_IMPLEMENTED});
    const bool isStream = module.module == std::string(GENTL_MODULE_STREAM);
    if (!isStream) {
      ExpectRefused(bench, "new buffers on " + module.name, module.handle, EVENT_NEW_BUFFER,
                    {GC_ERR_NOT_IMPLEMENTED});
    }
    for (const EVENT_TYPE type :
         {EVENT_ERROR, EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE, EVENT_MODULE}) {
      EVENT_HANDLE handle = nullptr;
      const GC_ERROR error = bench.F().GCRegisterEvent(module.handle, type, &handle);
      bench.ExpectError("GCRegisterEvent of type " + std::to_string(type) + " on " + module.name, error,
                        {GC_ERR_SUCCESS, GC_ERR_NOT_IMPLEMENTED});
      if (error == GC_ERR_SUCCESS)
        bench.ExpectSuccess("GCUnregisterEvent", bench.F().GCUnregisterEvent(module.handle, type));
    }
  }
  ExpectRefused(bench, "an error on the camera's port", bench.Remote(), EVENT_ERROR, {GC_ERR_INVALID_HANDLE});
  bench.ExpectError("GCRegisterEvent without a place for the handle",
                    bench.F().GCRegisterEvent(bench.Device(), EVENT_ERROR, nullptr),
                    {GC_ERR_INVALID_PARAMETER, GC_ERR_NOT_IMPLEMENTED});
}

void EventInfo(Bench& bench) {
  const Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
  const InfoFunction info{"EventGetInfo",
                          [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
                            return bench.F().EventGetInfo(event.Handle(), command, type, buffer, size);
                          },
                          &EventCommands()};
  ExpectCommands(bench, info);
  Expect(Get(info.Bound(EVENT_EVENT_TYPE)).Number() == EVENT_NEW_BUFFER,
         "EventGetInfo tells another event type");
  Expect(event.Queued() == 0, "an event that was just registered has a queue");
  const Answer most = Get(info.Bound(EVENT_SIZE_MAX));
  Expect(!most.IsThere() || most.Number() >= sizeof(EVENT_NEW_BUFFER_DATA),
         "EVENT_SIZE_MAX is smaller than a new-buffer event");
}

void Timeout(Bench& bench) {
  constexpr std::uint64_t kWaitMs = 100;
  const Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
  bench.ExpectError("EventGetData without an event and with a time-out of 0", event.Fetch(0),
                    {GC_ERR_TIMEOUT});
  const auto begin = Clock::now();
  bench.ExpectError("EventGetData without an event", event.Fetch(kWaitMs), {GC_ERR_TIMEOUT});
  // A clock of the producer's own may tick coarsely; a wait that returns in half the time has not waited.
  Expect(Clock::now() - begin >= std::chrono::milliseconds(kWaitMs / 2),
         "EventGetData with a time-out of " + std::to_string(kWaitMs) + " ms does not wait");
}

// A wait for an event on another thread.
std::future<GC_ERROR> Wait(const Event& event) {
  return std::async(std::launch::async, [&event] { return event.Fetch(kLongWaitMs); });
}

void Kill(Bench& bench) {
  const Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
  std::future<GC_ERROR> waiting = Wait(event);
  std::this_thread::sleep_for(kTimeToWait);
  bench.ExpectSuccess("EventKill", bench.F().EventKill(event.Handle()));
  bench.ExpectError("a wait that EventKill should end", waiting.get(), {GC_ERR_ABORT});
  bench.ExpectError("the wait after the one that EventKill ended", event.Fetch(0), {GC_ERR_TIMEOUT});
}

void KillAhead(Bench& bench) {
  const Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
  bench.ExpectSuccess("EventKill", bench.F().EventKill(event.Handle()));
  bench.ExpectError("the first wait after EventKill", event.Fetch(0), {GC_ERR_ABORT});
  bench.ExpectError("the second wait after EventKill", event.Fetch(0), {GC_ERR_TIMEOUT});
}

void KillOne(Bench& bench) {
  const Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
  std::array<std::future<GC_ERROR>, 2> waiting = {Wait(event), Wait(event)};
  std::this_thread::sleep_for(kTimeToWait);
  bench.ExpectSuccess("EventKill", bench.F().EventKill(event.Handle()));
  std::this_thread::sleep_for(kTimeToWait);
  const auto isOver = [](std::future<GC_ERROR>& wait) {
    return wait.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  };
  const auto over = std::count_if(waiting.begin(), waiting.end(), isOver);
  bench.F().EventKill(event.Handle());
  for (std::future<GC_ERROR>& wait : waiting) wait.wait();
  Expect(over < 2, "one EventKill ended two waits");
  for (std::future<GC_ERROR>& wait : waiting)
    bench.ExpectError("one of two waits that two EventKill should end", wait.get(), {GC_ERR_ABORT});
}

void KillForgotten(Bench& bench) {
  Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
  bench.ExpectSuccess("EventKill", bench.F().EventKill(event.Handle()));
  bench.ExpectSuccess("GCUnregisterEvent", event.Unregister());
  const Event again(bench, bench.Stream(), EVENT_NEW_BUFFER);
  bench.ExpectError("a wait after EventKill, unregistering and registering again", again.Fetch(0),
                    {GC_ERR_TIMEOUT});
}

// Ends a wait by something else than EventKill. A thread that is not inside its wait yet when that happens finds an
// invalid handle: that is repeated with more time.
void ExpectEnded(Bench& bench, const std::string& by, const std::function<void(Event&)>& end) {
  GC_ERROR error = GC_ERR_INVALID_HANDLE;
  for (int attempt = 1; attempt <= 4 && error == GC_ERR_INVALID_HANDLE; ++attempt) {
    Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
    std::future<GC_ERROR> waiting = Wait(event);
    std::this_thread::sleep_for(kTimeToWait * attempt);
    end(event);
    error = waiting.get();
  }
  bench.ExpectError("a wait during " + by, error, {GC_ERR_ABORT});
}

void UnregisterWakes(Bench& bench) {
  ExpectEnded(bench, "GCUnregisterEvent",
              [&](Event& event) { bench.ExpectSuccess("GCUnregisterEvent", event.Unregister()); });
}

void CloseWakes(Bench& bench) {
  ExpectEnded(bench, "DSClose", [&](Event& event) {
    event.Forget();
    bench.EndStream();
  });
}

void DataParameters(Bench& bench) {
  const Event event(bench, bench.Stream(), EVENT_NEW_BUFFER);
  EVENT_NEW_BUFFER_DATA data = {};
  bench.ExpectError("EventGetData without a size", bench.F().EventGetData(event.Handle(), &data, nullptr, 0),
                    {GC_ERR_INVALID_PARAMETER});
}

// Events without a camera: a flush delivers queued buffers.
class FlushedEvents {
 public:
  explicit FlushedEvents(Bench& bench)
      : event(bench, bench.Stream(), EVENT_NEW_BUFFER), buffers(bench, 3, kBytes), count(buffers.Count()) {
    buffers.QueueAll();
    bench.ExpectSuccess("DSFlushQueue(INPUT_TO_OUTPUT)",
                        bench.F().DSFlushQueue(bench.Stream(), ACQ_QUEUE_INPUT_TO_OUTPUT));
    Expect(event.Queued() == count, "EVENT_NUM_IN_QUEUE is " + std::to_string(event.Queued()) +
                                        " after a flush of " + std::to_string(count) +
                                        " buffers to the output");
  }

  const Event event;
  const BufferSet buffers;
  const std::size_t count;
};

void TooSmall(Bench& bench) {
  const FlushedEvents flushed(bench);
  std::array<unsigned char, sizeof(EVENT_NEW_BUFFER_DATA)> bytes{};
  std::size_t size = bytes.size() - 1;
  bench.ExpectError("EventGetData with too little memory",
                    bench.F().EventGetData(flushed.event.Handle(), bytes.data(), &size, 0),
                    {GC_ERR_BUFFER_TOO_SMALL});
  Expect(flushed.event.Queued() == flushed.count, "EventGetData with too little memory dropped the event");
}

void NullDrops(Bench& bench) {
  const FlushedEvents flushed(bench);
  std::size_t size = 0;
  bench.ExpectSuccess("EventGetData with a null buffer",
                      bench.F().EventGetData(flushed.event.Handle(), nullptr, &size, 0));
  Expect(flushed.event.Queued() == flushed.count - 1,
         "EventGetData with a null buffer did not drop one event");
}

void KillFirst(Bench& bench) {
  const FlushedEvents flushed(bench);
  bench.ExpectSuccess("EventKill", bench.F().EventKill(flushed.event.Handle()));
  bench.ExpectError("a wait after EventKill while events are queued", flushed.event.Fetch(0), {GC_ERR_ABORT});
  Expect(flushed.event.Queued() == flushed.count, "EventKill took an event out of the queue");
  bench.ExpectSuccess("the wait after that", flushed.event.Fetch(0));
}

void Flush(Bench& bench) {
  const FlushedEvents flushed(bench);
  bench.ExpectSuccess("EventFlush", bench.F().EventFlush(flushed.event.Handle()));
  Expect(flushed.event.Queued() == 0, "EventFlush left events in the queue");
  bench.ExpectError("EventGetData after EventFlush", flushed.event.Fetch(0), {GC_ERR_TIMEOUT});
  for (std::size_t i = 0; i < flushed.count; ++i) {
    Expect(!flushed.buffers.IsTrue(i, BUFFER_INFO_IS_QUEUED),
           "a buffer whose event was flushed counts as queued");
  }
}

void DataInfo(Bench& bench) {
  const FlushedEvents flushed(bench);
  EVENT_NEW_BUFFER_DATA data = {};
  bench.ExpectSuccess("EventGetData", flushed.event.Fetch(data, 0));
  const auto ask = [&](EVENT_DATA_INFO_CMD command) {
    return Get([&](INFO_DATATYPE* type, void* buffer, std::size_t* size) {
      return bench.F().EventGetDataInfo(flushed.event.Handle(), &data, sizeof data, command, type, buffer,
                                        size);
    });
  };
  const Answer id = ask(EVENT_DATA_ID);
  bench.ExpectSuccess("EventGetDataInfo(EVENT_DATA_ID)", id.error);
  Expect(id.Number() == reinterpret_cast<std::uintptr_t>(data.BufferHandle),
         "EVENT_DATA_ID of a new buffer is not its handle");
  const Answer value = ask(EVENT_DATA_VALUE);
  bench.ExpectSuccess("EventGetDataInfo(EVENT_DATA_VALUE)", value.error);
  Expect(value.Number() == reinterpret_cast<std::uintptr_t>(data.pUserPointer),
         "EVENT_DATA_VALUE of a new buffer is not its user pointer");
}

}  // namespace

std::vector<Check> EventChecks() {
  return {
      {"event-twice", "an event is registered once", &RegisterTwice},
      {"event-unregistered", "unregistering ends an event, and it can be registered again", &Unregistered},
      {"event-types", "unsupported events are refused when they are registered", &EventTypes},
      {"event-info", "the information about an event is complete", &EventInfo},
      {"event-timeout", "a wait without an event takes the time given, then answers \"timeout\"", &Timeout},
      {"event-kill", "EventKill ends a wait", &Kill},
      {"event-kill-ahead", "EventKill before a wait ends that wait and no other", &KillAhead},
      {"event-kill-one", "EventKill ends one wait of several", &KillOne},
      {"event-kill-forgotten", "unregistering forgets an EventKill", &KillForgotten},
      {"event-unregister-wakes", "unregistering ends a wait", &UnregisterWakes},
      {"event-close-wakes", "closing the module ends a wait", &CloseWakes},
      {"event-parameters", "EventGetData needs a size", &DataParameters},
      {"event-too-small", "an event stays queued when the memory for it is too small", &TooSmall},
      {"event-null-drops", "a null buffer drops one event", &NullDrops},
      {"event-kill-first", "EventKill goes before queued events", &KillFirst},
      {"event-flush", "EventFlush empties the queue", &Flush},
      {"event-data", "the parts of a new-buffer event can be asked for", &DataInfo},
  };
}

}  // namespace zyn::producercheck
