/* Compiled as C11 and as C++11 with every warning on: the header must be clean in both languages, alone and
   as the first include. The C view must lay the structures out as the C++ view does. */
#include "GenTL/GenTL.h"

#ifdef __cplusplus
#define VIEW_ASSERT(condition) static_assert(condition, #condition)
using namespace GenTL;
#else
#define VIEW_ASSERT(condition) _Static_assert(condition, #condition)
#endif

VIEW_ASSERT(sizeof(bool8_t) == 1);
VIEW_ASSERT(sizeof(EVENT_NEW_BUFFER_DATA) == 2 * sizeof(void*));
VIEW_ASSERT(sizeof(PORT_REGISTER_STACK_ENTRY) == 8 + 2 * sizeof(void*));
VIEW_ASSERT(sizeof(SINGLE_CHUNK_DATA) == 8 + 2 * sizeof(void*));
VIEW_ASSERT(sizeof(DS_BUFFER_INFO_STACKED) == 12 + 2 * sizeof(void*));
VIEW_ASSERT(sizeof(DS_BUFFER_PART_INFO_STACKED) == 16 + 2 * sizeof(void*));
VIEW_ASSERT(sizeof(enum GC_ERROR_LIST) == sizeof(GC_ERROR));

/* Every function has its pointer type. */
struct AllFunctions {
  PGCInitLib GCInitLib_;
  PGCCloseLib GCCloseLib_;
  PGCGetInfo GCGetInfo_;
  PGCGetLastError GCGetLastError_;
  PGCReadPort GCReadPort_;
  PGCWritePort GCWritePort_;
  PGCGetPortURL GCGetPortURL_;
  PGCGetPortInfo GCGetPortInfo_;
  PGCGetNumPortURLs GCGetNumPortURLs_;
  PGCGetPortURLInfo GCGetPortURLInfo_;
  PGCReadPortStacked GCReadPortStacked_;
  PGCWritePortStacked GCWritePortStacked_;
  PGCRegisterEvent GCRegisterEvent_;
  PGCUnregisterEvent GCUnregisterEvent_;
  PEventGetData EventGetData_;
  PEventGetDataInfo EventGetDataInfo_;
  PEventGetInfo EventGetInfo_;
  PEventFlush EventFlush_;
  PEventKill EventKill_;
  PTLOpen TLOpen_;
  PTLClose TLClose_;
  PTLGetInfo TLGetInfo_;
  PTLGetNumInterfaces TLGetNumInterfaces_;
  PTLGetInterfaceID TLGetInterfaceID_;
  PTLGetInterfaceInfo TLGetInterfaceInfo_;
  PTLOpenInterface TLOpenInterface_;
  PTLUpdateInterfaceList TLUpdateInterfaceList_;
  PIFClose IFClose_;
  PIFGetInfo IFGetInfo_;
  PIFGetNumDevices IFGetNumDevices_;
  PIFGetDeviceID IFGetDeviceID_;
  PIFUpdateDeviceList IFUpdateDeviceList_;
  PIFGetDeviceInfo IFGetDeviceInfo_;
  PIFOpenDevice IFOpenDevice_;
  PIFGetParentTL IFGetParentTL_;
  PDevGetPort DevGetPort_;
  PDevGetNumDataStreams DevGetNumDataStreams_;
  PDevGetDataStreamID DevGetDataStreamID_;
  PDevOpenDataStream DevOpenDataStream_;
  PDevGetInfo DevGetInfo_;
  PDevClose DevClose_;
  PDevGetParentIF DevGetParentIF_;
  PDSAnnounceBuffer DSAnnounceBuffer_;
  PDSAllocAndAnnounceBuffer DSAllocAndAnnounceBuffer_;
  PDSFlushQueue DSFlushQueue_;
  PDSStartAcquisition DSStartAcquisition_;
  PDSStopAcquisition DSStopAcquisition_;
  PDSGetInfo DSGetInfo_;
  PDSGetBufferID DSGetBufferID_;
  PDSClose DSClose_;
  PDSRevokeBuffer DSRevokeBuffer_;
  PDSQueueBuffer DSQueueBuffer_;
  PDSGetBufferInfo DSGetBufferInfo_;
  PDSGetBufferChunkData DSGetBufferChunkData_;
  PDSGetParentDev DSGetParentDev_;
  PDSGetNumBufferParts DSGetNumBufferParts_;
  PDSGetBufferPartInfo DSGetBufferPartInfo_;
  PDSAnnounceCompositeBuffer DSAnnounceCompositeBuffer_;
  PDSGetBufferInfoStacked DSGetBufferInfoStacked_;
  PDSGetBufferPartInfoStacked DSGetBufferPartInfoStacked_;
  PDSGetNumFlows DSGetNumFlows_;
  PDSGetFlowInfo DSGetFlowInfo_;
  PDSGetNumBufferSegments DSGetNumBufferSegments_;
  PDSGetBufferSegmentInfo DSGetBufferSegmentInfo_;
};
VIEW_ASSERT(sizeof(struct AllFunctions) == 64 * sizeof(PGCInitLib));

/* Assigning a function with the documented parameters shows that the pointer type has them. */
static GC_ERROR GC_CALLTYPE ReadPort(PORT_HANDLE port, uint64_t address, void* buffer, size_t* size) {
  (void)port;
  (void)address;
  (void)buffer;
  (void)size;
  return GC_ERR_SUCCESS;
}
PGCReadPort gentlHeaderViewReadPort = ReadPort;
