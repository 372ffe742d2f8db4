// Registering events, waiting for them, ending waits; the loss of a device; many threads at once.
#include <atomic>
#include <future>
#include <thread>

#include "KitFixture.h"

namespace {

using namespace kittest;
using KitEvent = StreamTest;

GC_ERROR Wait(EVENT_HANDLE event, std::uint64_t timeoutMs) {
  char data[9000];
  std::size_t size = sizeof data;
  return EventGetData(event, data, &size, timeoutMs);
}

struct Received {
  GC_ERROR result;
  std::vector<char> data;
};

Received Receive(EVENT_HANDLE event, std::uint64_t timeoutMs = 0) {
  Received received = {GC_ERR_SUCCESS, std::vector<char>(9000)};
  std::size_t size = received.data.size();
  received.result = EventGetData(event, received.data.data(), &size, timeoutMs);
  if (received.result == GC_ERR_SUCCESS) received.data.resize(size);
  return received;
}

Getter Ask(EVENT_HANDLE event, const Received& received, EVENT_DATA_INFO_CMD command) {
  return [=, &received](INFO_DATATYPE* type, void* buffer, std::size_t* size) {
    return EventGetDataInfo(event, received.data.data(), received.data.size(), command, type, buffer, size);
  };
}

std::vector<std::uint8_t> Bytes(const Getter& get) {
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  std::vector<std::uint8_t> bytes(9000);
  std::size_t size = bytes.size();
  EXPECT_EQ(get(&type, bytes.data(), &size), GC_ERR_SUCCESS);
  EXPECT_EQ(type, INFO_DATATYPE_BUFFER);
  bytes.resize(size);
  return bytes;
}

TEST_F(KitEvent, TypesAreAcceptedWhereTheyBelong) {
  struct Case {
    void* module;
    EVENT_TYPE type;
    GC_ERROR result;
  };
  const Case cases[] = {
      {system_, EVENT_ERROR, GC_ERR_SUCCESS},
      {system_, EVENT_MODULE, GC_ERR_SUCCESS},
      {system_, EVENT_NEW_BUFFER, GC_ERR_NOT_IMPLEMENTED},
      {system_, EVENT_REMOTE_DEVICE, GC_ERR_NOT_IMPLEMENTED},
      {interface_, EVENT_ERROR, GC_ERR_SUCCESS},
      {interface_, EVENT_FEATURE_INVALIDATE, GC_ERR_NOT_IMPLEMENTED},
      {device_, EVENT_ERROR, GC_ERR_SUCCESS},
      {device_, EVENT_MODULE, GC_ERR_SUCCESS},
      {device_, EVENT_FEATURE_INVALIDATE, GC_ERR_SUCCESS},
      {device_, EVENT_REMOTE_DEVICE, GC_ERR_SUCCESS},
      {device_, EVENT_FEATURE_CHANGE, GC_ERR_NOT_IMPLEMENTED},
      {device_, EVENT_NEW_BUFFER, GC_ERR_NOT_IMPLEMENTED},
      {stream_, EVENT_ERROR, GC_ERR_SUCCESS},
      {stream_, EVENT_NEW_BUFFER, GC_ERR_RESOURCE_IN_USE},  // the fixture has it
      {stream_, EVENT_CUSTOM_ID, GC_ERR_NOT_IMPLEMENTED},
      {stream_, -1, GC_ERR_NOT_IMPLEMENTED},
  };
  for (const Case& each : cases) {
    EVENT_HANDLE event = nullptr;
    EXPECT_EQ(GCRegisterEvent(each.module, each.type, &event), each.result) << each.type;
    if (each.result != GC_ERR_SUCCESS) continue;
    EXPECT_EQ(GCRegisterEvent(each.module, each.type, &event), GC_ERR_RESOURCE_IN_USE) << each.type;
    EXPECT_EQ(GCUnregisterEvent(each.module, each.type), GC_ERR_SUCCESS) << each.type;
    EXPECT_EQ(GCUnregisterEvent(each.module, each.type), GC_ERR_NOT_INITIALIZED) << each.type;
    EXPECT_EQ(Wait(event, 0), GC_ERR_INVALID_HANDLE);
  }
  EXPECT_EQ(GCRegisterEvent(system_, EVENT_ERROR, nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST_F(KitEvent, AnEmptyQueueTimesOut) {
  EXPECT_EQ(Wait(event_, 0), GC_ERR_TIMEOUT);
  EXPECT_EQ(Wait(event_, 1), GC_ERR_TIMEOUT);
  EXPECT_EQ(EventGetData(event_, nullptr, nullptr, 0), GC_ERR_INVALID_PARAMETER);
}

TEST_F(KitEvent, AWaitEndsWhenABufferComes) {
  StartWith(2);
  auto waiter = std::async(std::launch::async, [&] { return Wait(event_, GENTL_INFINITE); });
  EXPECT_TRUE(TheScript().SendFrame(1));
  EXPECT_EQ(waiter.get(), GC_ERR_SUCCESS);
}

TEST_F(KitEvent, ASmallBufferLeavesTheEventQueued) {
  StartWith(2);
  EXPECT_TRUE(TheScript().SendFrame(1));
  char data[sizeof(EVENT_NEW_BUFFER_DATA)];
  std::size_t size = sizeof data - 1;
  EXPECT_EQ(EventGetData(event_, data, &size, 0), GC_ERR_BUFFER_TOO_SMALL);
  EXPECT_EQ(Size(Bound(EventGetInfo, event_, EVENT_NUM_IN_QUEUE)), 1U);
  EXPECT_EQ(Awaiting(), 1U);
  EXPECT_NE(Fetch(), nullptr);
}

TEST_F(KitEvent, ANullBufferDropsTheEvent) {
  const auto buffers = StartWith(2);
  EXPECT_TRUE(TheScript().SendFrame(1));
  std::size_t size = 0;
  EXPECT_EQ(EventGetData(event_, nullptr, &size, 0), GC_ERR_SUCCESS);
  EXPECT_EQ(Awaiting(), 0U);
  EXPECT_FALSE(IsQueued(buffers[0]));
}

TEST_F(KitEvent, EventInformationIsTyped) {
  StartWith(2);
  EXPECT_TRUE(TheScript().SendFrame(1));
  EXPECT_EQ(Int32(Bound(EventGetInfo, event_, EVENT_EVENT_TYPE)), EVENT_NEW_BUFFER);
  EXPECT_EQ(Size(Bound(EventGetInfo, event_, EVENT_NUM_IN_QUEUE)), 1U);
  EXPECT_EQ(UInt64(Bound(EventGetInfo, event_, EVENT_NUM_FIRED)), 1U);
  EXPECT_EQ(Size(Bound(EventGetInfo, event_, EVENT_SIZE_MAX)), sizeof(EVENT_NEW_BUFFER_DATA));
  EXPECT_EQ(Size(Bound(EventGetInfo, event_, EVENT_INFO_DATA_SIZE_MAX)), sizeof(void*));
  const Received received = Receive(event_);
  EXPECT_EQ(Pointer(::Ask(event_, received, EVENT_DATA_VALUE)), this);
  EXPECT_FALSE(IsQueued(Pointer(::Ask(event_, received, EVENT_DATA_ID))));
  EXPECT_EQ(ResultOf(::Ask(event_, received, EVENT_DATA_NUMID)), GC_ERR_NOT_AVAILABLE);
  std::size_t size = 8;
  INFO_DATATYPE type = 0;
  EXPECT_EQ(EventGetDataInfo(event_, nullptr, 8, EVENT_DATA_ID, &type, &size, &size),
            GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(EventGetDataInfo(event_, &type, 0, EVENT_DATA_ID, &type, &size, &size), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(EventGetDataInfo(event_, &type, 4, EVENT_DATA_ID, &type, &size, &size), GC_ERR_INVALID_PARAMETER);
}

// ---- kills ----

TEST_F(KitEvent, EachKillEndsExactlyOneWait) {
  std::atomic<int> aborted = 0;
  std::vector<std::thread> waiters;
  for (int i = 0; i < 2; ++i) {
    waiters.emplace_back([&] {
      if (Wait(event_, GENTL_INFINITE) == GC_ERR_ABORT) ++aborted;
    });
  }
  EXPECT_EQ(EventKill(event_), GC_ERR_SUCCESS);
  while (aborted == 0) std::this_thread::yield();
  EXPECT_EQ(EventKill(event_), GC_ERR_SUCCESS);
  for (std::thread& waiter : waiters) waiter.join();
  EXPECT_EQ(aborted, 2);
  EXPECT_EQ(Wait(event_, 0), GC_ERR_TIMEOUT);
}

TEST_F(KitEvent, AKillWithoutAWaiterEndsTheNextWaitAheadOfQueuedEvents) {
  StartWith(2);
  EXPECT_TRUE(TheScript().SendFrame(1));
  EXPECT_EQ(EventKill(event_), GC_ERR_SUCCESS);
  EXPECT_EQ(EventKill(event_), GC_ERR_SUCCESS);
  EXPECT_EQ(Wait(event_, 0), GC_ERR_ABORT);
  EXPECT_EQ(Wait(event_, 0), GC_ERR_ABORT);
  EXPECT_EQ(Awaiting(), 1U);
  EXPECT_EQ(Wait(event_, 0), GC_ERR_SUCCESS);
}

TEST_F(KitEvent, RegisteringAnewForgetsKills) {
  EXPECT_EQ(EventKill(event_), GC_ERR_SUCCESS);
  EXPECT_EQ(GCUnregisterEvent(stream_, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
  EXPECT_EQ(GCRegisterEvent(stream_, EVENT_NEW_BUFFER, &event_), GC_ERR_SUCCESS);
  EXPECT_EQ(Wait(event_, 0), GC_ERR_TIMEOUT);
}

struct Ending {
  const char* name;
  GC_ERROR (*end)(void* system, void* interface, void* device, void* stream);
};

class KitWaitEnds : public StreamTest, public testing::WithParamInterface<Ending> {};

TEST_P(KitWaitEnds, WithAbort) {
  std::atomic<bool> started = false;
  auto waiter = std::async(std::launch::async, [&] {
    started = true;
    return Wait(event_, GENTL_INFINITE);
  });
  while (!started) std::this_thread::yield();
  EXPECT_EQ(GetParam().end(system_, interface_, device_, stream_), GC_ERR_SUCCESS);
  const GC_ERROR result = waiter.get();
  // Closed before the waiter looked the handle up is the one other way it can end.
  EXPECT_TRUE(result == GC_ERR_ABORT || result == GC_ERR_INVALID_HANDLE) << result;
}

INSTANTIATE_TEST_SUITE_P(
    Endings, KitWaitEnds,
    testing::Values(Ending{"Unregister", [](void*, void*, void*,
                                            void* s) { return GCUnregisterEvent(s, EVENT_NEW_BUFFER); }},
                    Ending{"CloseStream", [](void*, void*, void*, void* s) { return DSClose(s); }},
                    Ending{"CloseDevice", [](void*, void*, void* d, void*) { return DevClose(d); }},
                    Ending{"CloseInterface", [](void*, void* i, void*, void*) { return IFClose(i); }},
                    Ending{"CloseSystem", [](void* tl, void*, void*, void*) { return TLClose(tl); }}),
    [](const auto& test) { return test.param.name; });

// ---- events of the device ----

TEST_F(KitEvent, RemoteEventsCarryTheirNumberAndData) {
  EVENT_HANDLE event = nullptr;
  ASSERT_EQ(GCRegisterEvent(device_, EVENT_REMOTE_DEVICE, &event), GC_ERR_SUCCESS);
  const std::uint8_t data[] = {1, 2, 3};
  TheScript().listener->OnRemoteEvent(0x9ABC1, data, sizeof data);
  const Received received = Receive(event);
  ASSERT_EQ(received.result, GC_ERR_SUCCESS);
  EXPECT_EQ(Text(::Ask(event, received, EVENT_DATA_ID)), "09ABC1");
  EXPECT_EQ(UInt64(::Ask(event, received, EVENT_DATA_NUMID)), 0x9ABC1U);
  EXPECT_EQ(Bytes(::Ask(event, received, EVENT_DATA_VALUE)), std::vector<std::uint8_t>(data, data + 3));
  EXPECT_EQ(ResultOf(::Ask(event, received, EVENT_DATA_CUSTOM_ID)), GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(KitEvent, InvalidatedFeaturesAreNamed) {
  EVENT_HANDLE event = nullptr;
  ASSERT_EQ(GCRegisterEvent(device_, EVENT_FEATURE_INVALIDATE, &event), GC_ERR_SUCCESS);
  TheScript().listener->OnFeatureInvalidated("Width");
  const Received received = Receive(event);
  ASSERT_EQ(received.result, GC_ERR_SUCCESS);
  EXPECT_EQ(Text(::Ask(event, received, EVENT_DATA_ID)), "Width");
  EXPECT_EQ(ResultOf(::Ask(event, received, EVENT_DATA_VALUE)), GC_ERR_NOT_AVAILABLE);
}

TEST_F(KitEvent, AQueueThatNobodyReadsKeepsTheNewestEvents) {
  EVENT_HANDLE event = nullptr;
  ASSERT_EQ(GCRegisterEvent(device_, EVENT_REMOTE_DEVICE, &event), GC_ERR_SUCCESS);
  for (std::uint64_t i = 0; i < 1100; ++i) TheScript().listener->OnRemoteEvent(i, nullptr, 0);
  EXPECT_EQ(Size(Bound(EventGetInfo, event, EVENT_NUM_IN_QUEUE)), 1024U);
  EXPECT_EQ(UInt64(::Ask(event, Receive(event), EVENT_DATA_NUMID)), 76U);
  EXPECT_EQ(EventFlush(event), GC_ERR_SUCCESS);
  EXPECT_EQ(Receive(event).result, GC_ERR_TIMEOUT);
}

TEST_F(KitEvent, SignalsWithoutARegisteredEventAreLost) {
  TheScript().listener->OnFeatureInvalidated("Width");
  EVENT_HANDLE event = nullptr;
  ASSERT_EQ(GCRegisterEvent(device_, EVENT_FEATURE_INVALIDATE, &event), GC_ERR_SUCCESS);
  EXPECT_EQ(Receive(event).result, GC_ERR_TIMEOUT);
}

// ---- the loss of a device ----

TEST_F(KitEvent, ALostDeviceIsToldInEveryPromisedWay) {
  StartWith(2);
  EVENT_HANDLE onDevice = nullptr;
  EVENT_HANDLE onStream = nullptr;
  EVENT_HANDLE module = nullptr;
  ASSERT_EQ(GCRegisterEvent(device_, EVENT_ERROR, &onDevice), GC_ERR_SUCCESS);
  ASSERT_EQ(GCRegisterEvent(stream_, EVENT_ERROR, &onStream), GC_ERR_SUCCESS);
  ASSERT_EQ(GCRegisterEvent(device_, EVENT_MODULE, &module), GC_ERR_SUCCESS);
  auto waiter = std::async(std::launch::async, [&] { return Receive(onDevice, GENTL_INFINITE); });
  TheScript().listener->OnLost("cable pulled");
  TheScript().listener->OnLost("again");

  const Received received = waiter.get();
  ASSERT_EQ(received.result, GC_ERR_SUCCESS);
  EXPECT_EQ(Int32(::Ask(onDevice, received, EVENT_DATA_ID)), GC_ERR_IO);
  EXPECT_EQ(Text(::Ask(onDevice, received, EVENT_DATA_VALUE)), "cable pulled");
  EXPECT_EQ(Receive(onDevice).result, GC_ERR_TIMEOUT);
  const Received streamError = Receive(onStream);
  EXPECT_EQ(Int32(::Ask(onStream, streamError, EVENT_DATA_ID)), GC_ERR_IO);
  EXPECT_EQ(Text(::Ask(module, Receive(module), EVENT_DATA_ID)), "01");

  EXPECT_EQ(Int32(Bound(DevGetInfo, device_, DEVICE_INFO_ACCESS_STATUS)), DEVICE_ACCESS_STATUS_NOACCESS);
  EXPECT_EQ(Int32(Bound(IFGetDeviceInfo, interface_, "CAM1", DEVICE_INFO_ACCESS_STATUS)),
            DEVICE_ACCESS_STATUS_NOACCESS);
  EXPECT_TRUE(Bool(Bound(GCGetPortInfo, remote_, PORT_INFO_ACCESS_NA)));
  EXPECT_FALSE(Bool(Bound(GCGetPortInfo, remote_, PORT_INFO_ACCESS_READ)));
  TheScript().onRead = [](std::uint64_t) { ADD_FAILURE() << "a lost device must not be asked"; };
  char byte = 0;
  std::size_t size = 1;
  EXPECT_EQ(GCReadPort(remote_, 0, &byte, &size), GC_ERR_IO);
  EXPECT_EQ(GCWritePort(remote_, 0, &byte, &size), GC_ERR_IO);

  EXPECT_EQ(DSStopAcquisition(stream_, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
  EXPECT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_IO);
  EXPECT_EQ(DSFlushQueue(stream_, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
  EXPECT_EQ(DSClose(stream_), GC_ERR_SUCCESS);
  EXPECT_EQ(DevOpenDataStream(device_, "Stream0", &stream_), GC_ERR_IO);
  EXPECT_EQ(DevClose(device_), GC_ERR_SUCCESS);
  TheScript().onRead = nullptr;
  OpenDevice();  // it is back
  EXPECT_EQ(GCReadPort(remote_, 0, &byte, &size), GC_ERR_SUCCESS);
}

TEST_F(KitEvent, ATransferThatTheLossInterruptsIsAnInputOutputError) {
  TheScript().onRead = [](std::uint64_t) {
    TheScript().listener->OnLost("power off");
    throw scripted::Error(GC_ERR_TIMEOUT, "no answer");
  };
  char byte = 0;
  std::size_t size = 1;
  EXPECT_EQ(GCReadPort(remote_, 0, &byte, &size), GC_ERR_IO);
  TheScript().onRead = nullptr;
}

TEST_F(KitEvent, ExceptionsOfABackendBecomeResults) {
  struct Case {
    std::function<void(std::uint64_t)> thrower;
    GC_ERROR result;
  };
  const Case cases[] = {
      {[](std::uint64_t) { throw scripted::Error(GC_ERR_TIMEOUT, "no answer"); }, GC_ERR_TIMEOUT},
      {[](std::uint64_t) { throw scripted::Error(GC_ERR_SUCCESS, "a mistake"); }, GC_ERR_ERROR},
      {[](std::uint64_t) { throw std::bad_alloc(); }, GC_ERR_OUT_OF_MEMORY},
      {[](std::uint64_t) { throw std::runtime_error("text"); }, GC_ERR_ERROR},
      {[](std::uint64_t) { throw 7; }, GC_ERR_ERROR},
  };
  char byte = 0;
  std::size_t size = 1;
  for (const Case& each : cases) {
    TheScript().onRead = each.thrower;
    EXPECT_EQ(GCReadPort(remote_, 0, &byte, &size), each.result);
  }
  TheScript().onRead = nullptr;
}

// ---- many threads ----

TEST_F(KitEvent, EveryFrameReachesExactlyOneOfManyWaiters) {
  constexpr int kFrames = 2000;
  StartWith(8);
  std::atomic<bool> done = false;
  std::atomic<int> received = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([&] {
      while (!done) {
        EVENT_NEW_BUFFER_DATA data = {};
        std::size_t size = sizeof data;
        if (EventGetData(event_, &data, &size, 5) != GC_ERR_SUCCESS) continue;
        ++received;
        EXPECT_EQ(DSQueueBuffer(stream_, data.BufferHandle), GC_ERR_SUCCESS);
      }
    });
  }
  int sent = 0;
  while (sent < kFrames) {
    if (TheScript().SendFrame(1))
      ++sent;
    else
      std::this_thread::yield();
  }
  while (received < kFrames) std::this_thread::yield();
  done = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(received, kFrames);
  EXPECT_EQ(Queued(), 8U);
}

TEST_F(KitEvent, EverythingMayHappenAtOnce) {
  StartWith(4);
  std::atomic<bool> done = false;
  std::vector<std::thread> threads;
  const auto repeat = [&](auto action) {
    threads.emplace_back([&done, action] {
      while (!done) action();
    });
  };
  repeat([&] { IFUpdateDeviceList(interface_, nullptr, 100); });
  repeat([&] {
    char data[16];
    std::size_t size = sizeof data;
    GCReadPort(remote_, 0x10, data, &size);
    GCWritePort(remote_, 0x20, data, &size);
  });
  repeat([&] {
    char data[64];
    std::size_t size = sizeof data;
    GCReadPort(stream_, 0x1000, data, &size);
    ResultOf(Ask(STREAM_INFO_NUM_DELIVERED));
  });
  repeat([&] {
    EVENT_NEW_BUFFER_DATA data = {};
    std::size_t size = sizeof data;
    if (EventGetData(event_, &data, &size, 2) == GC_ERR_SUCCESS) DSQueueBuffer(stream_, data.BufferHandle);
  });
  repeat([&] {
    TheScript().listener->OnFeatureInvalidated("Width");
    EVENT_HANDLE event = nullptr;
    if (GCRegisterEvent(device_, EVENT_FEATURE_INVALIDATE, &event) == GC_ERR_SUCCESS)
      GCUnregisterEvent(device_, EVENT_FEATURE_INVALIDATE);
  });
  for (int i = 0; i < 500; ++i) TheScript().SendFrame(static_cast<std::uint8_t>(i));
  EXPECT_EQ(DSStopAcquisition(stream_, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
  // The sink and the listener end with their modules, so what uses them ends first.
  EXPECT_EQ(DSClose(stream_), GC_ERR_SUCCESS);
  done = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(TLClose(system_), GC_ERR_SUCCESS);
}

TEST_F(KitEvent, ClosingFromTwoThreadsIsSafe) {
  for (int i = 0; i < 50; ++i) {
    auto a = std::async(std::launch::async, [&] { return DevClose(device_); });
    auto b = std::async(std::launch::async, [&] { return IFClose(interface_); });
    const GC_ERROR device = a.get();
    EXPECT_TRUE(device == GC_ERR_SUCCESS || device == GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(b.get(), GC_ERR_SUCCESS);
    EXPECT_EQ(TheScript().devicesAlive, 0);
    EXPECT_EQ(TLOpenInterface(system_, "eth0", &interface_), GC_ERR_SUCCESS);
    OpenDevice();
    OpenStream();
  }
}

}  // namespace
