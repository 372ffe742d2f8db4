// Initialising, opening, closing; handles; lists; information about systems, interfaces and devices.
#include <condition_variable>
#include <future>
#include <latch>

#include "AllFunctions.h"
#include "KitFixture.h"

namespace {

using namespace kittest;

TEST(KitLifeCycle, EveryFunctionAsksForInitialisationFirst) {
  EXPECT_EQ(HandleCalls().size() + 5, 64U);  // and GCInitLib, GCCloseLib, GCGetInfo, GCGetLastError, TLOpen
  for (const HandleCall& call : HandleCalls())
    EXPECT_EQ(call.call(nullptr), GC_ERR_NOT_INITIALIZED) << call.name;
  Scratch s;
  EXPECT_EQ(GCCloseLib(), GC_ERR_NOT_INITIALIZED);
  EXPECT_EQ(GCGetInfo(TL_INFO_ID, &s.type, s.text, &s.size), GC_ERR_NOT_INITIALIZED);
  EXPECT_EQ(GCGetLastError(&s.type, s.text, &s.size), GC_ERR_NOT_INITIALIZED);
  EXPECT_EQ(TLOpen(&s.handle), GC_ERR_NOT_INITIALIZED);
}

TEST(KitLifeCycle, TellsWhyItCouldNotBeInitialised) {
  TheScript().Reset();
  TheScript().refusesToStart = true;
  ASSERT_EQ(GCInitLib(), GC_ERR_INVALID_VALUE);
  TheScript().refusesToStart = false;
  GC_ERROR code = GC_ERR_SUCCESS;
  char text[600];
  std::size_t size = sizeof text;
  ASSERT_EQ(GCGetLastError(&code, text, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(code, GC_ERR_INVALID_VALUE);
  EXPECT_STREQ(text, "GCInitLib: The script refuses.");
  TL_HANDLE system = nullptr;
  EXPECT_EQ(TLOpen(&system), GC_ERR_NOT_INITIALIZED);
  EXPECT_EQ(GCGetLastError(&code, text, &size), GC_ERR_NOT_INITIALIZED);  // nothing to add to that
  ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
  EXPECT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
}

TEST(KitLifeCycle, InitialisesOnceAndAgainAfterClosing) {
  TheScript().Reset();
  for (int i = 0; i < 100; ++i) {
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    ASSERT_EQ(GCInitLib(), GC_ERR_RESOURCE_IN_USE);
    TL_HANDLE system = nullptr;
    ASSERT_EQ(TLOpen(&system), GC_ERR_SUCCESS);
    ASSERT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
  }
}

using KitLibrary = LibraryTest;
using KitDevice = DeviceTest;
using KitStream = StreamTest;

TEST_F(KitLibrary, TellsAboutItselfBeforeTheSystemIsOpen) {
  const auto text = [](TL_INFO_CMD command) { return Text(Bound(GCGetInfo, command)); };
  EXPECT_EQ(text(TL_INFO_VENDOR), "Scripted Vendor");
  EXPECT_EQ(text(TL_INFO_MODEL), "Scripted Model");
  EXPECT_EQ(text(TL_INFO_VERSION), "3.2.1");
  EXPECT_EQ(text(TL_INFO_TLTYPE), "GEV");
  EXPECT_EQ(text(TL_INFO_DISPLAYNAME), "Scripted");
  EXPECT_EQ(text(TL_INFO_PATHNAME), text(TL_INFO_ID));
  EXPECT_TRUE(text(TL_INFO_PATHNAME).ends_with("/" + text(TL_INFO_NAME)));
  EXPECT_EQ(Int32(Bound(GCGetInfo, TL_INFO_CHAR_ENCODING)), TL_CHAR_ENCODING_UTF8);
  EXPECT_EQ(Value<std::uint32_t>(Bound(GCGetInfo, TL_INFO_GENTL_VER_MAJOR), INFO_DATATYPE_UINT32), 1U);
  EXPECT_EQ(Value<std::uint32_t>(Bound(GCGetInfo, TL_INFO_GENTL_VER_MINOR), INFO_DATATYPE_UINT32), 6U);
}

TEST_F(KitDevice, SystemInformationIsTheSameThroughBothGetters) {
  for (TL_INFO_CMD command = TL_INFO_ID; command <= TL_INFO_DISPLAYNAME; ++command)
    EXPECT_EQ(Text(Bound(GCGetInfo, command)), Text(Bound(TLGetInfo, system_, command))) << command;
}

TEST_F(KitLibrary, TheLastErrorIsThatOfTheLatestFailureOnThisThread) {
  TL_HANDLE system = nullptr;
  GC_ERROR code = GC_ERR_ERROR;
  char text[600];
  std::size_t size = sizeof text;
  std::async(std::launch::async, [&] {
    EXPECT_EQ(GCGetLastError(&code, text, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(code, GC_ERR_SUCCESS);
    EXPECT_STREQ(text, "No Error");
  }).get();
  EXPECT_EQ(TLClose(nullptr), GC_ERR_INVALID_HANDLE);
  EXPECT_EQ(TLOpen(&system), GC_ERR_SUCCESS);  // a success does not clear it
  size = 0;
  EXPECT_EQ(GCGetLastError(&code, nullptr, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(code, GC_ERR_INVALID_HANDLE);
  EXPECT_GT(size, 1U);
  --size;
  EXPECT_EQ(GCGetLastError(&code, text, &size), GC_ERR_BUFFER_TOO_SMALL);
  size = sizeof text;
  EXPECT_EQ(GCGetLastError(&code, text, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(code, GC_ERR_INVALID_HANDLE);
  EXPECT_EQ(std::string(text).rfind("TLClose: ", 0), 0U) << text;
}

TEST_F(KitStream, EveryFunctionRefusesHandlesOfAnotherKind) {
  BUFFER_HANDLE buffer = Announce();
  int local = 0;
  const std::vector<void*> none = {nullptr, &local, reinterpret_cast<void*>(~std::uintptr_t{0})};
  for (const HandleCall& call : HandleCalls()) {
    for (void* const handle : none) EXPECT_EQ(call.call(handle), GC_ERR_INVALID_HANDLE) << call.name;
    const std::string name = call.name;
    const bool takesPorts = name.rfind("GC", 0) == 0;
    const std::pair<const char*, void*> kinds[] = {{"TL", system_},   {"IF", interface_}, {"Dev", device_},
                                                   {"DS", stream_},   {"Event", event_},  {"remote", remote_},
                                                   {"buffer", buffer}};
    for (const auto& [prefix, handle] : kinds) {
      const bool isEvent = std::string(prefix) == "Event";
      if (name.rfind(prefix, 0) == 0 || (takesPorts && !isEvent)) continue;
      EXPECT_EQ(call.call(handle), GC_ERR_INVALID_HANDLE) << call.name << " with " << prefix;
    }
  }
  // The remote port is a port, not a source of events; buffers are neither, but known as modules without.
  EVENT_HANDLE event = nullptr;
  EXPECT_EQ(GCRegisterEvent(remote_, EVENT_ERROR, &event), GC_ERR_INVALID_HANDLE);
  EXPECT_EQ(GCRegisterEvent(buffer, EVENT_ERROR, &event), GC_ERR_NOT_IMPLEMENTED);
  EXPECT_EQ(ResultOf(Bound(GCGetPortInfo, buffer, PORT_INFO_ID)), GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(KitStream, ClosingTheSystemMakesEveryHandleBeneathStale) {
  BUFFER_HANDLE buffer = Announce();
  ASSERT_EQ(TLClose(system_), GC_ERR_SUCCESS);
  EXPECT_EQ(TheScript().devicesAlive, 0);
  EXPECT_EQ(TheScript().streamsAlive, 0);
  for (const HandleCall& call : HandleCalls()) {
    for (void* const handle : {system_, interface_, device_, stream_, event_, remote_, buffer})
      EXPECT_EQ(call.call(handle), GC_ERR_INVALID_HANDLE) << call.name;
  }
  TL_HANDLE again = nullptr;
  EXPECT_EQ(TLOpen(&again), GC_ERR_SUCCESS);
  EXPECT_NE(again, system_);
}

TEST_F(KitStream, ABufferOfAnotherStreamIsRefused) {
  BUFFER_HANDLE mine = Announce();
  ASSERT_EQ(DSClose(stream_), GC_ERR_SUCCESS);
  DS_HANDLE other = nullptr;
  ASSERT_EQ(DevOpenDataStream(device_, "Stream0", &other), GC_ERR_SUCCESS);
  EXPECT_EQ(DSQueueBuffer(other, mine), GC_ERR_INVALID_HANDLE);
  EXPECT_EQ(DSRevokeBuffer(other, device_, nullptr, nullptr), GC_ERR_INVALID_HANDLE);
}

TEST_F(KitStream, NothingOpensTwiceAndTheHandleIsLeftAlone) {
  void* const untouched = this;
  void* handle = untouched;
  EXPECT_EQ(TLOpen(&handle), GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(TLOpenInterface(system_, "eth0", &handle), GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(IFOpenDevice(interface_, "CAM1", DEVICE_ACCESS_CONTROL, &handle), GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(DevOpenDataStream(device_, "Stream0", &handle), GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(handle, untouched);
}

TEST_F(KitStream, EverythingOpensAgainAfterClosing) {
  EXPECT_EQ(DSClose(stream_), GC_ERR_SUCCESS);
  EXPECT_EQ(DSClose(stream_), GC_ERR_INVALID_HANDLE);
  OpenStream();
  EXPECT_EQ(DevClose(device_), GC_ERR_SUCCESS);
  OpenDevice();
  OpenStream();
  EXPECT_EQ(IFClose(interface_), GC_ERR_SUCCESS);
  EXPECT_EQ(TLOpenInterface(system_, "eth0", &interface_), GC_ERR_SUCCESS);
  OpenDevice();
}

TEST_F(KitStream, ModulesKnowTheirParents) {
  void* parent = nullptr;
  EXPECT_EQ(DSGetParentDev(stream_, &parent), GC_ERR_SUCCESS);
  EXPECT_EQ(parent, device_);
  EXPECT_EQ(DevGetParentIF(device_, &parent), GC_ERR_SUCCESS);
  EXPECT_EQ(parent, interface_);
  EXPECT_EQ(IFGetParentTL(interface_, &parent), GC_ERR_SUCCESS);
  EXPECT_EQ(parent, system_);
}

TEST_F(KitLibrary, ListsChangeOnlyWhenUpdatedAndTellWhether) {
  TL_HANDLE system = nullptr;
  ASSERT_EQ(TLOpen(&system), GC_ERR_SUCCESS);
  std::uint32_t count = 99;
  EXPECT_EQ(TLGetNumInterfaces(system, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 0U);
  bool changed = false;
  EXPECT_EQ(TLUpdateInterfaceList(system, &changed, 100), GC_ERR_SUCCESS);
  EXPECT_TRUE(changed);
  EXPECT_EQ(TLUpdateInterfaceList(system, &changed, GENTL_INFINITE), GC_ERR_SUCCESS);
  EXPECT_FALSE(changed);
  EXPECT_EQ(TLGetNumInterfaces(system, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 1U);
  char id[64];
  std::size_t size = sizeof id;
  EXPECT_EQ(TLGetInterfaceID(system, 0, id, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(id, "eth0");
  EXPECT_EQ(size, 5U);
  size = 4;
  EXPECT_EQ(TLGetInterfaceID(system, 0, id, &size), GC_ERR_BUFFER_TOO_SMALL);
  EXPECT_EQ(TLGetInterfaceID(system, 1, id, &size), GC_ERR_INVALID_INDEX);
  EXPECT_EQ(TLGetInterfaceID(system, 0, id, nullptr), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(Text(Bound(TLGetInterfaceInfo, system, "eth0", INTERFACE_INFO_DISPLAYNAME)), "eth0 display");
  EXPECT_EQ(ResultOf(Bound(TLGetInterfaceInfo, system, "eth9", INTERFACE_INFO_ID)), GC_ERR_INVALID_ID);
}

TEST_F(KitDevice, DeviceListsAreFrozenBetweenUpdates) {
  scripted::DeviceInfo second = TheScript().devices["eth0"][0];
  second.id = "CAM2";
  TheScript().devices["eth0"].push_back(second);
  std::uint32_t count = 0;
  EXPECT_EQ(IFGetNumDevices(interface_, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 1U);
  bool changed = false;
  EXPECT_EQ(IFUpdateDeviceList(interface_, &changed, 10), GC_ERR_SUCCESS);
  EXPECT_TRUE(changed);
  EXPECT_EQ(IFGetNumDevices(interface_, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 2U);
  char id[64];
  std::size_t size = sizeof id;
  EXPECT_EQ(IFGetDeviceID(interface_, 1, id, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(id, "CAM2");
  EXPECT_EQ(IFGetDeviceID(interface_, 2, id, &size), GC_ERR_INVALID_INDEX);
}

TEST_F(KitDevice, AnOpenDeviceThatDidNotAnswerTheSearchStaysListedUntilItIsLost) {
  TheScript().devices["eth0"].clear();
  std::uint32_t count = 0;
  EXPECT_EQ(IFUpdateDeviceList(interface_, nullptr, 10), GC_ERR_SUCCESS);
  EXPECT_EQ(IFGetNumDevices(interface_, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 1U);
  TheScript().listener->OnLost("unplugged");
  EXPECT_EQ(IFUpdateDeviceList(interface_, nullptr, 10), GC_ERR_SUCCESS);
  EXPECT_EQ(IFGetNumDevices(interface_, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 0U);
}

TEST_F(KitDevice, AnUpdateGivesUpWhileAnotherOneRuns) {
  std::latch entered(1);
  std::latch allowed(1);
  TheScript().onFindDevices = [&] {
    entered.count_down();
    allowed.wait();
  };
  auto first = std::async(std::launch::async, [&] { return IFUpdateDeviceList(interface_, nullptr, 1000); });
  entered.wait();
  EXPECT_EQ(IFUpdateDeviceList(interface_, nullptr, 1), GC_ERR_TIMEOUT);
  std::uint32_t count = 0;
  EXPECT_EQ(IFGetNumDevices(interface_, &count), GC_ERR_SUCCESS);  // no lock is held meanwhile
  EXPECT_EQ(count, 1U);
  allowed.count_down();
  EXPECT_EQ(first.get(), GC_ERR_SUCCESS);
  TheScript().onFindDevices = nullptr;
}

TEST_F(KitDevice, DeviceInformationIsCompleteAndTyped) {
  for (const bool byHandle : {false, true}) {
    const auto ask = [&](DEVICE_INFO_CMD command) {
      return byHandle ? Bound(DevGetInfo, device_, command)
                      : Bound(IFGetDeviceInfo, interface_, "CAM1", command);
    };
    EXPECT_EQ(Text(ask(DEVICE_INFO_ID)), "CAM1");
    EXPECT_EQ(Text(ask(DEVICE_INFO_VENDOR)), "Maker & Sons");
    EXPECT_EQ(Text(ask(DEVICE_INFO_MODEL)), "Model<1>");
    EXPECT_EQ(Text(ask(DEVICE_INFO_TLTYPE)), "GEV");
    EXPECT_EQ(Text(ask(DEVICE_INFO_DISPLAYNAME)), "Maker & Sons Model<1> (CAM1)");
    EXPECT_EQ(Int32(ask(DEVICE_INFO_ACCESS_STATUS)), DEVICE_ACCESS_STATUS_OPEN_READWRITE);
    EXPECT_EQ(Text(ask(DEVICE_INFO_USER_DEFINED_NAME)), "left");
    EXPECT_EQ(Text(ask(DEVICE_INFO_SERIAL_NUMBER)), "SN1");
    EXPECT_EQ(Text(ask(DEVICE_INFO_VERSION)), "1.2");
    EXPECT_EQ(UInt64(ask(DEVICE_INFO_TIMESTAMP_FREQUENCY)), 1000U);
    EXPECT_EQ(ResultOf(ask(DEVICE_INFO_CUSTOM_ID)), GC_ERR_NOT_IMPLEMENTED);
  }
  EXPECT_EQ(ResultOf(Bound(IFGetDeviceInfo, interface_, "CAM9", DEVICE_INFO_ID)), GC_ERR_INVALID_ID);
}

TEST_F(KitDevice, AnUnknownTextIsNotAvailable) {
  auto& camera = TheScript().devices["eth0"][0];
  camera.serialNumber.clear();
  camera.timestampFrequency = 0;
  EXPECT_EQ(IFUpdateDeviceList(interface_, nullptr, 10), GC_ERR_SUCCESS);
  const auto result = [&](DEVICE_INFO_CMD command) {
    return ResultOf(Bound(IFGetDeviceInfo, interface_, "CAM1", command));
  };
  EXPECT_EQ(result(DEVICE_INFO_SERIAL_NUMBER), GC_ERR_NOT_AVAILABLE);
  EXPECT_EQ(result(DEVICE_INFO_TIMESTAMP_FREQUENCY), GC_ERR_NOT_AVAILABLE);
}

TEST_F(KitDevice, TheAccessStatusFollowsOpeningAndClosing) {
  const auto status = [&] {
    return Int32(Bound(IFGetDeviceInfo, interface_, "CAM1", DEVICE_INFO_ACCESS_STATUS));
  };
  EXPECT_EQ(status(), DEVICE_ACCESS_STATUS_OPEN_READWRITE);
  EXPECT_EQ(DevClose(device_), GC_ERR_SUCCESS);
  EXPECT_EQ(status(), DEVICE_ACCESS_STATUS_READWRITE);
  OpenDevice(DEVICE_ACCESS_READONLY);
  EXPECT_EQ(status(), DEVICE_ACCESS_STATUS_OPEN_READONLY);
}

TEST_F(KitLibrary, OpensByIdAndByOtherNamesWithoutASearchBefore) {
  TL_HANDLE system = nullptr;
  ASSERT_EQ(TLOpen(&system), GC_ERR_SUCCESS);
  IF_HANDLE interface = nullptr;
  ASSERT_EQ(TLOpenInterface(system, "eth0", &interface), GC_ERR_SUCCESS);
  for (const char* name : {"CAM1", "SN1", "left", "192.168.0.16", "00:11:22:33:44:55"}) {
    DEV_HANDLE device = nullptr;
    EXPECT_EQ(IFOpenDevice(interface, name, DEVICE_ACCESS_EXCLUSIVE, &device), GC_ERR_SUCCESS) << name;
    EXPECT_EQ(Text(Bound(DevGetInfo, device, DEVICE_INFO_ID)), "CAM1");
    EXPECT_EQ(DevClose(device), GC_ERR_SUCCESS);
  }
  DEV_HANDLE device = nullptr;
  EXPECT_EQ(IFOpenDevice(interface, "CAM9", DEVICE_ACCESS_CONTROL, &device), GC_ERR_INVALID_ID);
  EXPECT_EQ(IFOpenDevice(interface, "", DEVICE_ACCESS_CONTROL, &device), GC_ERR_INVALID_ID);
  EXPECT_EQ(TLOpenInterface(system, "eth9", &interface), GC_ERR_INVALID_ID);
  scripted::DeviceInfo twin = TheScript().devices["eth0"][0];
  twin.id = "CAM2";
  TheScript().devices["eth0"].push_back(twin);
  EXPECT_EQ(IFOpenDevice(interface, "SN1", DEVICE_ACCESS_CONTROL, &device), GC_ERR_AMBIGUOUS);
}

TEST_F(KitDevice, RefusesUnknownKindsOfAccess) {
  EXPECT_EQ(DevClose(device_), GC_ERR_SUCCESS);
  for (const DEVICE_ACCESS_FLAGS flags : {0, 1, 5, 1000, -1})
    EXPECT_EQ(IFOpenDevice(interface_, "CAM1", flags, &device_), GC_ERR_INVALID_PARAMETER) << flags;
  EXPECT_EQ(IFOpenDevice(interface_, nullptr, DEVICE_ACCESS_CONTROL, &device_), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(IFOpenDevice(interface_, "CAM1", DEVICE_ACCESS_CONTROL, nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST_F(KitDevice, AFailedOpenCanBeRepeated) {
  EXPECT_EQ(DevClose(device_), GC_ERR_SUCCESS);
  TheScript().openError = GC_ERR_ACCESS_DENIED;
  EXPECT_EQ(IFOpenDevice(interface_, "CAM1", DEVICE_ACCESS_CONTROL, &device_), GC_ERR_ACCESS_DENIED);
  TheScript().openError = GC_ERR_SUCCESS;
  OpenDevice();
}

TEST_F(KitDevice, ADeviceWithoutStreamsSaysSo) {
  EXPECT_EQ(DevClose(device_), GC_ERR_SUCCESS);
  TheScript().deviceTraits.streamIds.clear();
  OpenDevice();
  std::uint32_t count = 9;
  EXPECT_EQ(DevGetNumDataStreams(device_, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 0U);
  char id[64];
  std::size_t size = sizeof id;
  EXPECT_EQ(DevGetDataStreamID(device_, 0, id, &size), GC_ERR_NOT_IMPLEMENTED);
  DS_HANDLE stream = nullptr;
  EXPECT_EQ(DevOpenDataStream(device_, "Stream0", &stream), GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(KitDevice, StreamsAreListedAndOpenedById) {
  char id[64];
  std::size_t size = sizeof id;
  EXPECT_EQ(DevGetDataStreamID(device_, 0, id, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(id, "Stream0");
  EXPECT_EQ(DevGetDataStreamID(device_, 1, id, &size), GC_ERR_INVALID_INDEX);
  DS_HANDLE stream = nullptr;
  EXPECT_EQ(DevOpenDataStream(device_, "Stream1", &stream), GC_ERR_INVALID_ID);
}

struct Asked {
  const char* name;
  Getter get;
};

TEST_F(KitStream, EveryGetterFollowsTheSizeQueryIdiom) {
  BUFFER_HANDLE buffer = Announce();
  const std::vector<Asked> all = {
      {"GCGetInfo", Bound(GCGetInfo, TL_INFO_VENDOR)},
      {"TLGetInfo", Bound(TLGetInfo, system_, TL_INFO_CHAR_ENCODING)},
      {"TLGetInterfaceInfo", Bound(TLGetInterfaceInfo, system_, "eth0", INTERFACE_INFO_ID)},
      {"IFGetInfo", Bound(IFGetInfo, interface_, INTERFACE_INFO_TLTYPE)},
      {"IFGetDeviceInfo", Bound(IFGetDeviceInfo, interface_, "CAM1", DEVICE_INFO_ACCESS_STATUS)},
      {"DevGetInfo", Bound(DevGetInfo, device_, DEVICE_INFO_MODEL)},
      {"DSGetInfo", Bound(DSGetInfo, stream_, STREAM_INFO_NUM_DELIVERED)},
      {"DSGetBufferInfo", Bound(DSGetBufferInfo, stream_, buffer, BUFFER_INFO_BASE)},
      {"DSGetBufferSegmentInfo", Bound(DSGetBufferSegmentInfo, stream_, buffer, 0U, SEGMENT_INFO_SIZE)},
      {"GCGetPortInfo", Bound(GCGetPortInfo, remote_, PORT_INFO_LITTLE_ENDIAN)},
      {"GCGetPortURLInfo", Bound(GCGetPortURLInfo, remote_, 0U, URL_INFO_URL)},
      {"EventGetInfo", Bound(EventGetInfo, event_, EVENT_SIZE_MAX)},
  };
  for (const Asked& asked : all) {
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    char memory[256];
    std::memset(memory, 'x', sizeof memory);
    std::size_t needed = 0;
    EXPECT_EQ(asked.get(&type, nullptr, &needed), GC_ERR_SUCCESS) << asked.name;
    EXPECT_NE(type, INFO_DATATYPE_UNKNOWN) << asked.name;
    EXPECT_GT(needed, 0U) << asked.name;
    std::size_t size = needed - 1;
    EXPECT_EQ(asked.get(&type, memory, &size), GC_ERR_BUFFER_TOO_SMALL) << asked.name;
    EXPECT_EQ(memory[0], 'x') << asked.name;
    size = needed;
    EXPECT_EQ(asked.get(&type, memory, &size), GC_ERR_SUCCESS) << asked.name;
    EXPECT_EQ(memory[needed], 'x') << asked.name;
    size = sizeof memory;
    EXPECT_EQ(asked.get(&type, memory, &size), GC_ERR_SUCCESS) << asked.name;
    EXPECT_EQ(size, needed) << asked.name;
    EXPECT_EQ(asked.get(nullptr, memory, &size), GC_ERR_INVALID_PARAMETER) << asked.name;
    EXPECT_EQ(asked.get(&type, memory, nullptr), GC_ERR_INVALID_PARAMETER) << asked.name;
  }
}

TEST_F(KitStream, UnknownCommandsAreNotImplemented) {
  BUFFER_HANDLE buffer = Announce();
  for (const std::int32_t command : {-1, 999, 1000}) {
    const std::vector<Asked> all = {
        {"GCGetInfo", Bound(GCGetInfo, command)},
        {"TLGetInfo", Bound(TLGetInfo, system_, command)},
        {"TLGetInterfaceInfo", Bound(TLGetInterfaceInfo, system_, "eth0", command)},
        {"IFGetInfo", Bound(IFGetInfo, interface_, command)},
        {"IFGetDeviceInfo", Bound(IFGetDeviceInfo, interface_, "CAM1", command)},
        {"DevGetInfo", Bound(DevGetInfo, device_, command)},
        {"DSGetInfo", Bound(DSGetInfo, stream_, command)},
        {"DSGetBufferInfo", Bound(DSGetBufferInfo, stream_, buffer, command)},
        {"DSGetBufferSegmentInfo", Bound(DSGetBufferSegmentInfo, stream_, buffer, 0U, command)},
        {"GCGetPortInfo", Bound(GCGetPortInfo, remote_, command)},
        {"GCGetPortURLInfo", Bound(GCGetPortURLInfo, remote_, 0U, command)},
        {"EventGetInfo", Bound(EventGetInfo, event_, command)},
    };
    for (const Asked& asked : all)
      EXPECT_EQ(ResultOf(asked.get), GC_ERR_NOT_IMPLEMENTED) << asked.name << " " << command;
  }
}

TEST_F(KitDevice, ClosingWaitsForACallInProgressAndThenRefusesTheHandle) {
  std::latch entered(1);
  std::latch allowed(1);
  TheScript().onRead = [&](std::uint64_t) {
    entered.count_down();
    allowed.wait();
  };
  auto read = std::async(std::launch::async, [&] {
    char byte = 0;
    std::size_t size = 1;
    return GCReadPort(remote_, 0, &byte, &size);
  });
  entered.wait();
  auto closed = std::async(std::launch::async, [&] { return DevClose(device_); });
  // The handle goes before the waiting begins; until then the device answers.
  while (ResultOf(Bound(DevGetInfo, device_, DEVICE_INFO_ID)) == GC_ERR_SUCCESS) std::this_thread::yield();
  EXPECT_EQ(TheScript().devicesAlive, 1);
  allowed.count_down();
  EXPECT_EQ(read.get(), GC_ERR_SUCCESS);
  EXPECT_EQ(closed.get(), GC_ERR_SUCCESS);
  EXPECT_EQ(TheScript().devicesAlive, 0);
  TheScript().onRead = nullptr;
}

}  // namespace
