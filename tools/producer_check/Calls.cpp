#include "Calls.h"

#include <array>
#include <cstdint>

namespace zyn::producercheck {

using namespace GenTL;

namespace {

// Memory for what a function hands out.
struct Out {
  std::array<char, 4096> text{};
  std::size_t size = text.size();
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  std::uint32_t number = 0;
  void* handle = nullptr;
  bool8_t flag = false;
  std::size_t four = 4;
  std::size_t one = 1;
  PORT_REGISTER_STACK_ENTRY entry = {0, text.data(), 4};
  DS_BUFFER_INFO_STACKED info = {};
  DS_BUFFER_PART_INFO_STACKED partInfo = {};
};

}  // namespace

#define ZYN_CALL(kind, function, ...)                                  \
  {                                                                    \
#function, HandleKind::kind, [](Functions& f, void* h) -> GC_ERROR { \
      Out o;                                                           \
      static_cast<void>(o);                                            \
      return f.function(h __VA_OPT__(, ) __VA_ARGS__);                 \
    } \
  }
#define ZYN_INFO &o.type, o.text.data(), &o.size

const std::vector<Call>& Calls() {
  static const std::vector<Call> calls = {
      ZYN_CALL(kSystem, TLGetInfo, TL_INFO_ID, ZYN_INFO),
      ZYN_CALL(kSystem, TLGetNumInterfaces, &o.number),
      ZYN_CALL(kSystem, TLGetInterfaceID, 0, o.text.data(), &o.size),
      ZYN_CALL(kSystem, TLGetInterfaceInfo, "x", INTERFACE_INFO_ID, ZYN_INFO),
      ZYN_CALL(kSystem, TLOpenInterface, "x", &o.handle),
      ZYN_CALL(kSystem, TLUpdateInterfaceList, &o.flag, 0),
      ZYN_CALL(kSystem, TLClose),
      ZYN_CALL(kInterface, IFGetInfo, INTERFACE_INFO_ID, ZYN_INFO),
      ZYN_CALL(kInterface, IFGetNumDevices, &o.number),
      ZYN_CALL(kInterface, IFGetDeviceID, 0, o.text.data(), &o.size),
      ZYN_CALL(kInterface, IFUpdateDeviceList, &o.flag, 0),
      ZYN_CALL(kInterface, IFGetDeviceInfo, "x", DEVICE_INFO_ID, ZYN_INFO),
      ZYN_CALL(kInterface, IFOpenDevice, "x", DEVICE_ACCESS_CONTROL, &o.handle),
      ZYN_CALL(kInterface, IFGetParentTL, &o.handle),
      ZYN_CALL(kInterface, IFClose),
      ZYN_CALL(kDevice, DevGetPort, &o.handle),
      ZYN_CALL(kDevice, DevGetNumDataStreams, &o.number),
      ZYN_CALL(kDevice, DevGetDataStreamID, 0, o.text.data(), &o.size),
      ZYN_CALL(kDevice, DevOpenDataStream, "x", &o.handle),
      ZYN_CALL(kDevice, DevGetInfo, DEVICE_INFO_ID, ZYN_INFO),
      ZYN_CALL(kDevice, DevGetParentIF, &o.handle),
      ZYN_CALL(kDevice, DevClose),
      ZYN_CALL(kStream, DSAnnounceBuffer, o.text.data(), o.text.size(), nullptr, &o.handle),
      ZYN_CALL(kStream, DSAllocAndAnnounceBuffer, 64, nullptr, &o.handle),
      ZYN_CALL(kStream, DSFlushQueue, ACQ_QUEUE_ALL_DISCARD),
      ZYN_CALL(kStream, DSStartAcquisition, ACQ_START_FLAGS_DEFAULT, 1),
      ZYN_CALL(kStream, DSStopAcquisition, ACQ_STOP_FLAGS_DEFAULT),
      ZYN_CALL(kStream, DSGetInfo, STREAM_INFO_ID, ZYN_INFO),
      ZYN_CALL(kStream, DSGetBufferID, 0, &o.handle),
      ZYN_CALL(kStream, DSRevokeBuffer, nullptr, nullptr, nullptr),
      ZYN_CALL(kStream, DSQueueBuffer, nullptr),
      ZYN_CALL(kStream, DSGetBufferInfo, nullptr, BUFFER_INFO_BASE, ZYN_INFO),
      ZYN_CALL(kStream, DSGetBufferChunkData, nullptr, nullptr, &o.size),
      ZYN_CALL(kStream, DSGetParentDev, &o.handle),
      ZYN_CALL(kStream, DSGetNumBufferParts, nullptr, &o.number),
      ZYN_CALL(kStream, DSGetBufferPartInfo, nullptr, 0, BUFFER_PART_INFO_BASE, ZYN_INFO),
      ZYN_CALL(kStream, DSAnnounceCompositeBuffer, 1, &o.handle, &o.size, nullptr, &o.handle),
      ZYN_CALL(kStream, DSGetBufferInfoStacked, nullptr, &o.info, 1),
      ZYN_CALL(kStream, DSGetBufferPartInfoStacked, nullptr, &o.partInfo, 1),
      ZYN_CALL(kStream, DSGetNumFlows, &o.number),
      ZYN_CALL(kStream, DSGetFlowInfo, 0, FLOW_INFO_SIZE, ZYN_INFO),
      ZYN_CALL(kStream, DSGetNumBufferSegments, nullptr, &o.number),
      ZYN_CALL(kStream, DSGetBufferSegmentInfo, nullptr, 0, SEGMENT_INFO_BASE, ZYN_INFO),
      ZYN_CALL(kStream, DSClose),
      ZYN_CALL(kPort, GCReadPort, 0, o.text.data(), &o.four),
      ZYN_CALL(kPort, GCWritePort, 0, o.text.data(), &o.four),
      ZYN_CALL(kPort, GCGetPortURL, o.text.data(), &o.size),
      ZYN_CALL(kPort, GCGetPortInfo, PORT_INFO_ID, ZYN_INFO),
      ZYN_CALL(kPort, GCGetNumPortURLs, &o.number),
      ZYN_CALL(kPort, GCGetPortURLInfo, 0, URL_INFO_URL, ZYN_INFO),
      ZYN_CALL(kPort, GCReadPortStacked, &o.entry, &o.one),
      ZYN_CALL(kPort, GCWritePortStacked, &o.entry, &o.one),
      ZYN_CALL(kEventSource, GCRegisterEvent, EVENT_ERROR, &o.handle),
      ZYN_CALL(kEventSource, GCUnregisterEvent, EVENT_ERROR),
      ZYN_CALL(kEvent, EventGetData, o.text.data(), &o.size, 0),
      ZYN_CALL(kEvent, EventGetDataInfo, o.text.data(), 16, EVENT_DATA_ID, ZYN_INFO),
      ZYN_CALL(kEvent, EventGetInfo, EVENT_EVENT_TYPE, ZYN_INFO),
      ZYN_CALL(kEvent, EventFlush),
      ZYN_CALL(kEvent, EventKill),
  };
  return calls;
}

#undef ZYN_CALL
#define ZYN_CALL(function, ...)                                     \
  {                                                                 \
#function, [](Functions& f, void* h, void* b) -> GC_ERROR {       \
      Out o;                                                      \
      static_cast<void>(o);                                       \
      return f.function(h, b __VA_OPT__(, ) __VA_ARGS__);         \
    } \
  }

const std::vector<BufferCall>& BufferCalls() {
  static const std::vector<BufferCall> calls = {
      ZYN_CALL(DSRevokeBuffer, nullptr, nullptr),
      ZYN_CALL(DSQueueBuffer),
      ZYN_CALL(DSGetBufferInfo, BUFFER_INFO_BASE, ZYN_INFO),
      ZYN_CALL(DSGetBufferChunkData, nullptr, &o.size),
      ZYN_CALL(DSGetNumBufferParts, &o.number),
      ZYN_CALL(DSGetBufferPartInfo, 0, BUFFER_PART_INFO_BASE, ZYN_INFO),
      ZYN_CALL(DSGetBufferInfoStacked, &o.info, 1),
      ZYN_CALL(DSGetBufferPartInfoStacked, &o.partInfo, 1),
      ZYN_CALL(DSGetNumBufferSegments, &o.number),
      ZYN_CALL(DSGetBufferSegmentInfo, 0, SEGMENT_INFO_BASE, ZYN_INFO),
  };
  return calls;
}

#undef ZYN_INFO
#undef ZYN_CALL

}  // namespace zyn::producercheck
