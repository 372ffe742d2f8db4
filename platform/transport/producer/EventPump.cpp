#include "EventPump.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

#include "GenTLInfo.h"

namespace zyn::transport {

namespace {

constexpr std::uint64_t kWaitMs = 500;  // finite: not every producer wakes waiters reliably
constexpr std::chrono::seconds kEndLimit{1};
constexpr std::size_t kUsualBytes = 4096;
constexpr std::size_t kMostBytes = 16U << 20U;

std::size_t EventBytes(const ProducerLibrary& producer, GenTL::EVENT_HANDLE event) {
  if (!producer.EventGetInfo) return kUsualBytes;
  const auto size = GetInteger([&](auto* type, void* buffer, std::size_t* bytes) {
    return producer.EventGetInfo(event, GenTL::EVENT_SIZE_MAX, type, buffer, bytes);
  });
  const bool isUsable = size && *size > 0 && *size <= kMostBytes;
  return isUsable ? static_cast<std::size_t>(*size) : kUsualBytes;
}

// The ID as a number where the producer sends one, as text where it sends that.
void DecodeId(GenTL::INFO_DATATYPE type, const std::vector<char>& bytes, GenTLEvent& event) {
  if (type == GenTL::INFO_DATATYPE_STRING || bytes.size() > 8) {
    event.id = TextOf(bytes.data(), bytes.size());
    event.number = std::strtoull(event.id.c_str(), nullptr, 16);
    return;
  }
  alignas(8) unsigned char number[8] = {};
  std::memcpy(number, bytes.data(), bytes.size());
  event.number = DecodeInteger(type, number, bytes.size());
}

GenTLEvent Decode(const ProducerLibrary& producer, GenTL::EVENT_HANDLE handle,
                  const std::vector<char>& data) {
  GenTLEvent event;
  if (!producer.EventGetDataInfo) {
    event.value = data;
    return event;
  }
  GenTL::INFO_DATATYPE idType = GenTL::INFO_DATATYPE_UNKNOWN;
  const auto ask = [&](GenTL::EVENT_DATA_INFO_CMD command) {
    return [&, command](GenTL::INFO_DATATYPE* type, void* buffer, std::size_t* size) {
      const GenTL::GC_ERROR error =
          producer.EventGetDataInfo(handle, data.data(), data.size(), command, type, buffer, size);
      if (command == GenTL::EVENT_DATA_ID) idType = *type;
      return error;
    };
  };
  if (const auto id = GetBytes(ask(GenTL::EVENT_DATA_ID))) DecodeId(idType, *id, event);
  if (auto value = GetBytes(ask(GenTL::EVENT_DATA_VALUE))) event.value = std::move(*value);
  return event;
}

}  // namespace

std::unique_ptr<EventPump> EventPump::Start(const ProducerPtr& producer, const std::shared_ptr<void>& module,
                                            GenTL::EVENT_TYPE type, Handler handler) {
  if (!producer->GCRegisterEvent || !producer->GCUnregisterEvent || !producer->EventGetData) return nullptr;
  GenTL::EVENT_HANDLE event = nullptr;
  if (producer->GCRegisterEvent(module.get(), type, &event) != GenTL::GC_ERR_SUCCESS || !event)
    return nullptr;
  auto state = std::make_shared<State>();
  state->producer = producer;
  state->module = module;
  state->type = type;
  state->event = event;
  state->handler = std::move(handler);
  Background thread = Background::Run([state] { Run(*state); });
  return std::unique_ptr<EventPump>(new EventPump(std::move(state), std::move(thread)));
}

bool EventPump::Handle(State& state, const GenTLEvent& event) {
  MutexLock lock(state.mutex);
  if (state.isEnding) return false;
  state.isHandling = true;
  lock.Unlock();
  state.handler(event);
  lock.Lock();
  state.isHandling = false;
  return !state.isEnding;
}

void EventPump::Run(State& state) {
  MutexLock lock(state.mutex);
  state.thread = std::this_thread::get_id();
  lock.Unlock();
  const ProducerLibrary& producer = *state.producer;
  std::vector<char> buffer(EventBytes(producer, state.event));
  for (bool goesOn = true; goesOn;) {
    std::size_t size = buffer.size();
    const GenTL::GC_ERROR error = producer.EventGetData(state.event, buffer.data(), &size, kWaitMs);
    if (error == GenTL::GC_ERR_SUCCESS) {
      const std::vector<char> data(
          buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(std::min(size, buffer.size())));
      goesOn = Handle(state, Decode(producer, state.event, data));
      continue;
    }
    if (error == GenTL::GC_ERR_BUFFER_TOO_SMALL && buffer.size() < kMostBytes) {
      buffer.resize(buffer.size() * 4);
      continue;
    }
    lock.Lock();
    // A kill meant for nobody else can only mean the end; any other failure is waited out, not retried hotly.
    const bool isPlainWait = error == GenTL::GC_ERR_TIMEOUT || error == GenTL::GC_ERR_ABORT;
    const auto pause =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(isPlainWait ? 0 : kWaitMs);
    while (!isPlainWait && !state.isEnding && lock.WaitUntil(state.changed, pause)) {
    }
    goesOn = !state.isEnding && error != GenTL::GC_ERR_INVALID_HANDLE;
    lock.Unlock();
  }
}

void EventPump::AwaitEnd() {
  while (!thread_.WaitUntil(std::chrono::steady_clock::now() + kEndLimit)) {
    MutexLock lock(state_->mutex);
    if (!state_->isHandling) return;  // the application's time does not count, the producer's does
  }
}

void EventPump::BeginEnd() {
  State& state = *state_;
  MutexLock lock(state.mutex);
  if (std::exchange(state.isEnding, true)) return;
  state.changed.notify_all();
  lock.Unlock();
  if (state.producer->EventKill) state.producer->EventKill(state.event);
}

EventPump::~EventPump() {
  BeginEnd();
  State& state = *state_;
  MutexLock lock(state.mutex);
  const bool isOwnThread = state.thread == std::this_thread::get_id();
  lock.Unlock();
  if (!isOwnThread) AwaitEnd();
  // Unregistering ends every wait, also in producers that ignore the kill.
  state.producer->GCUnregisterEvent(state.module.get(), state.type);
  if (!isOwnThread) AwaitEnd();
}

}  // namespace zyn::transport
