/// The GenTL functions of one producer file.
#ifndef ZYN_PRODUCER_CHECK_FUNCTIONS_H
#define ZYN_PRODUCER_CHECK_FUNCTIONS_H

#include <GenTL/GenTL.h>

#include <string>
#include <vector>

// X(name, the minor version of GenTL 1.x that brought the function)
#define ZYN_GENTL_FUNCTIONS(X)     \
  X(GCInitLib, 0)                  \
  X(GCCloseLib, 0)                 \
  X(GCGetInfo, 0)                  \
  X(GCGetLastError, 0)             \
  X(GCReadPort, 0)                 \
  X(GCWritePort, 0)                \
  X(GCGetPortURL, 0)               \
  X(GCGetPortInfo, 0)              \
  X(GCGetNumPortURLs, 1)           \
  X(GCGetPortURLInfo, 1)           \
  X(GCReadPortStacked, 1)          \
  X(GCWritePortStacked, 1)         \
  X(GCRegisterEvent, 0)            \
  X(GCUnregisterEvent, 0)          \
  X(EventGetData, 0)               \
  X(EventGetDataInfo, 0)           \
  X(EventGetInfo, 0)               \
  X(EventFlush, 0)                 \
  X(EventKill, 0)                  \
  X(TLOpen, 0)                     \
  X(TLClose, 0)                    \
  X(TLGetInfo, 0)                  \
  X(TLGetNumInterfaces, 0)         \
  X(TLGetInterfaceID, 0)           \
  X(TLGetInterfaceInfo, 0)         \
  X(TLOpenInterface, 0)            \
  X(TLUpdateInterfaceList, 0)      \
  X(IFClose, 0)                    \
  X(IFGetInfo, 0)                  \
  X(IFGetNumDevices, 0)            \
  X(IFGetDeviceID, 0)              \
  X(IFUpdateDeviceList, 0)         \
  X(IFGetDeviceInfo, 0)            \
  X(IFOpenDevice, 0)               \
  X(IFGetParentTL, 4)              \
  X(DevGetPort, 0)                 \
  X(DevGetNumDataStreams, 0)       \
  X(DevGetDataStreamID, 0)         \
  X(DevOpenDataStream, 0)          \
  X(DevGetInfo, 0)                 \
  X(DevClose, 0)                   \
  X(DevGetParentIF, 4)             \
  X(DSAnnounceBuffer, 0)           \
  X(DSAllocAndAnnounceBuffer, 0)   \
  X(DSFlushQueue, 0)               \
  X(DSStartAcquisition, 0)         \
  X(DSStopAcquisition, 0)          \
  X(DSGetInfo, 0)                  \
  X(DSGetBufferID, 0)              \
  X(DSClose, 0)                    \
  X(DSRevokeBuffer, 0)             \
  X(DSQueueBuffer, 0)              \
  X(DSGetBufferInfo, 0)            \
  X(DSGetBufferChunkData, 3)       \
  X(DSGetParentDev, 4)             \
  X(DSGetNumBufferParts, 5)        \
  X(DSGetBufferPartInfo, 5)        \
  X(DSAnnounceCompositeBuffer, 6)  \
  X(DSGetBufferInfoStacked, 6)     \
  X(DSGetBufferPartInfoStacked, 6) \
  X(DSGetNumFlows, 6)              \
  X(DSGetFlowInfo, 6)              \
  X(DSGetNumBufferSegments, 6)     \
  X(DSGetBufferSegmentInfo, 6)

namespace zyn::producercheck {

/// Thrown by calling a function that the producer does not have.
struct MissingFunction {
  const char* name;
};

/// A function that is missing.
struct MissingName {
  std::string name;
  int since;  ///< minor version that brought it
};

/// Every pointer can be called; that of a missing function throws MissingFunction.
class Functions {
 public:
  /// Loads the file. Throws CheckFailed when that fails. Never unloads it by itself.
  explicit Functions(const std::string& file);

  /// Takes the library out of memory; no pointer may be used afterwards.
  void Unload();

  const std::vector<MissingName>& Missing() const { return missing_; }

#define ZYN_DECLARE_FUNCTION(name, since) GenTL::P##name name = nullptr;
  ZYN_GENTL_FUNCTIONS(ZYN_DECLARE_FUNCTION)
#undef ZYN_DECLARE_FUNCTION

 private:
  void* library_ = nullptr;
  std::vector<MissingName> missing_;
};

}  // namespace zyn::producercheck

#endif
