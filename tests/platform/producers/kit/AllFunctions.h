/// Every C function that takes a handle first, called with valid other arguments.
#ifndef ZYN_TESTS_ALL_FUNCTIONS_H
#define ZYN_TESTS_ALL_FUNCTIONS_H

#include <cstdint>
#include <vector>

#include "GenTL/GenTL.h"

namespace kittest {

struct HandleCall {
  const char* name;
  GenTL::GC_ERROR (*call)(void* handle);
};

/// Memory for out-parameters.
struct Scratch {
  char text[4200] = {};
  std::size_t size = sizeof text;
  GenTL::INFO_DATATYPE type = 0;
  std::uint32_t number = 0;
  void* handle = nullptr;
  bool flag = false;
  GenTL::PORT_REGISTER_STACK_ENTRY entry = {0, text, 4};
  std::size_t one = 1;
  GenTL::DS_BUFFER_INFO_STACKED info = {};
  GenTL::DS_BUFFER_PART_INFO_STACKED partInfo = {};
};

inline std::vector<HandleCall> HandleCalls() {
  using namespace GenTL;
#define ZYN_CALL(function, ...)                                 \
  {                                                             \
#function, [](void* h) -> GC_ERROR {                          \
      Scratch s;                                                  \
      static_cast<void>(s);                                       \
      return function(h __VA_OPT__(, ) __VA_ARGS__);              \
    } \
  }
#define ZYN_INFO &s.type, s.text, &s.size
  return {
      ZYN_CALL(GCReadPort, 0, s.text, &s.one),
      ZYN_CALL(GCWritePort, 0, s.text, &s.one),
      ZYN_CALL(GCGetPortURL, s.text, &s.size),
      ZYN_CALL(GCGetPortInfo, PORT_INFO_ID, ZYN_INFO),
      ZYN_CALL(GCGetNumPortURLs, &s.number),
      ZYN_CALL(GCGetPortURLInfo, 0, URL_INFO_URL, ZYN_INFO),
      ZYN_CALL(GCReadPortStacked, &s.entry, &s.one),
      ZYN_CALL(GCWritePortStacked, &s.entry, &s.one),
      ZYN_CALL(GCRegisterEvent, EVENT_ERROR, &s.handle),
      ZYN_CALL(GCUnregisterEvent, EVENT_ERROR),
      ZYN_CALL(EventGetData, s.text, &s.size, 0),
      ZYN_CALL(EventGetDataInfo, s.text, 8, EVENT_DATA_ID, ZYN_INFO),
      ZYN_CALL(EventGetInfo, EVENT_EVENT_TYPE, ZYN_INFO),
      ZYN_CALL(EventFlush),
      ZYN_CALL(EventKill),
      ZYN_CALL(TLClose),
      ZYN_CALL(TLGetInfo, TL_INFO_ID, ZYN_INFO),
      ZYN_CALL(TLGetNumInterfaces, &s.number),
      ZYN_CALL(TLGetInterfaceID, 0, s.text, &s.size),
      ZYN_CALL(TLGetInterfaceInfo, "eth0", INTERFACE_INFO_ID, ZYN_INFO),
      ZYN_CALL(TLOpenInterface, "eth0", &s.handle),
      ZYN_CALL(TLUpdateInterfaceList, &s.flag, 0),
      ZYN_CALL(IFClose),
      ZYN_CALL(IFGetInfo, INTERFACE_INFO_ID, ZYN_INFO),
      ZYN_CALL(IFGetNumDevices, &s.number),
      ZYN_CALL(IFGetDeviceID, 0, s.text, &s.size),
      ZYN_CALL(IFUpdateDeviceList, &s.flag, 0),
      ZYN_CALL(IFGetDeviceInfo, "CAM1", DEVICE_INFO_ID, ZYN_INFO),
      ZYN_CALL(IFOpenDevice, "CAM1", DEVICE_ACCESS_CONTROL, &s.handle),
      ZYN_CALL(IFGetParentTL, &s.handle),
      ZYN_CALL(DevGetPort, &s.handle),
      ZYN_CALL(DevGetNumDataStreams, &s.number),
      ZYN_CALL(DevGetDataStreamID, 0, s.text, &s.size),
      ZYN_CALL(DevOpenDataStream, "Stream0", &s.handle),
      ZYN_CALL(DevGetInfo, DEVICE_INFO_ID, ZYN_INFO),
      ZYN_CALL(DevClose),
      ZYN_CALL(DevGetParentIF, &s.handle),
      ZYN_CALL(DSAnnounceBuffer, s.text, 64, nullptr, &s.handle),
      ZYN_CALL(DSAllocAndAnnounceBuffer, 64, nullptr, &s.handle),
      ZYN_CALL(DSFlushQueue, ACQ_QUEUE_ALL_DISCARD),
      ZYN_CALL(DSStartAcquisition, ACQ_START_FLAGS_DEFAULT, 1),
      ZYN_CALL(DSStopAcquisition, ACQ_STOP_FLAGS_DEFAULT),
      ZYN_CALL(DSGetInfo, STREAM_INFO_ID, ZYN_INFO),
      ZYN_CALL(DSGetBufferID, 0, &s.handle),
      ZYN_CALL(DSClose),
      ZYN_CALL(DSRevokeBuffer, nullptr, nullptr, nullptr),
      ZYN_CALL(DSQueueBuffer, nullptr),
      ZYN_CALL(DSGetBufferInfo, nullptr, BUFFER_INFO_BASE, ZYN_INFO),
      ZYN_CALL(DSGetBufferChunkData, nullptr, nullptr, &s.size),
      ZYN_CALL(DSGetParentDev, &s.handle),
      ZYN_CALL(DSGetNumBufferParts, nullptr, &s.number),
      ZYN_CALL(DSGetBufferPartInfo, nullptr, 0, BUFFER_PART_INFO_BASE, ZYN_INFO),
      ZYN_CALL(DSAnnounceCompositeBuffer, 1, &s.handle, &s.size, nullptr, &s.handle),
      ZYN_CALL(DSGetBufferInfoStacked, nullptr, &s.info, 1),
      ZYN_CALL(DSGetBufferPartInfoStacked, nullptr, &s.partInfo, 1),
      ZYN_CALL(DSGetNumFlows, &s.number),
      ZYN_CALL(DSGetFlowInfo, 0, FLOW_INFO_SIZE, ZYN_INFO),
      ZYN_CALL(DSGetNumBufferSegments, nullptr, &s.number),
      ZYN_CALL(DSGetBufferSegmentInfo, nullptr, 0, SEGMENT_INFO_BASE, ZYN_INFO),
  };
#undef ZYN_INFO
#undef ZYN_CALL
}

}  // namespace kittest

#endif
