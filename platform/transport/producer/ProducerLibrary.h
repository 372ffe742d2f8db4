/// One loaded producer file (*.cti): the library and its table of GenTL functions.
#ifndef ZYN_TRANSPORT_PRODUCER_LIBRARY_H
#define ZYN_TRANSPORT_PRODUCER_LIBRARY_H

#include <memory>
#include <string>

#include <GenTL/GenTL.h>

// Without these a producer cannot be asked which cameras there are.
#define ZYN_GENTL_REQUIRED_FUNCTIONS(X) \
  X(GCInitLib)                          \
  X(GCCloseLib)                         \
  X(GCReadPort)                         \
  X(GCWritePort)                        \
  X(TLOpen)                             \
  X(TLClose)                            \
  X(TLGetNumInterfaces)                 \
  X(TLGetInterfaceID)                   \
  X(TLOpenInterface)                    \
  X(TLUpdateInterfaceList)              \
  X(IFClose)                            \
  X(IFGetNumDevices)                    \
  X(IFGetDeviceID)                      \
  X(IFUpdateDeviceList)                 \
  X(IFGetDeviceInfo)                    \
  X(IFOpenDevice)                       \
  X(DevGetPort)                         \
  X(DevClose)

// Without these, and without one of the two functions that announce buffers, a producer's cameras can be found and
// configured, but they deliver no frames.
#define ZYN_GENTL_STREAMING_FUNCTIONS(X) \
  X(GCRegisterEvent)                     \
  X(GCUnregisterEvent)                   \
  X(EventGetData)                        \
  X(DevGetNumDataStreams)                \
  X(DevGetDataStreamID)                  \
  X(DevOpenDataStream)                   \
  X(DSFlushQueue)                        \
  X(DSStartAcquisition)                  \
  X(DSStopAcquisition)                   \
  X(DSGetInfo)                           \
  X(DSClose)                             \
  X(DSRevokeBuffer)                      \
  X(DSQueueBuffer)                       \
  X(DSGetBufferInfo)

// Each of these has a fallback; a null pointer is normal.
#define ZYN_GENTL_OPTIONAL_FUNCTIONS(X) \
  X(GCGetInfo)                          \
  X(GCGetLastError)                     \
  X(GCGetPortURL)                       \
  X(GCGetPortInfo)                      \
  X(GCGetNumPortURLs)                   \
  X(GCGetPortURLInfo)                   \
  X(EventGetDataInfo)                   \
  X(EventGetInfo)                       \
  X(EventFlush)                         \
  X(EventKill)                          \
  X(TLGetInfo)                          \
  X(TLGetInterfaceInfo)                 \
  X(IFGetInfo)                          \
  X(DevGetInfo)                         \
  X(DSAnnounceBuffer)                   \
  X(DSAllocAndAnnounceBuffer)           \
  X(DSGetBufferChunkData)               \
  X(DSGetNumBufferParts)                \
  X(DSGetBufferPartInfo)                \
  X(DSGetBufferInfoStacked)

namespace zyn::transport {

/// Constant after Load, so any thread may call through it. Never unloaded: producers leave threads and exit
/// handlers behind that must keep their code.
class ProducerLibrary {
 public:
  /// Loads the file. Null when it is no library of this machine or lacks a required function; `reason` then
  /// says why. Runs the library's constructors, so it may block as long as they do.
  static std::shared_ptr<const ProducerLibrary> Load(const std::string& path, std::string& reason);

  const std::string& Path() const { return path_; }
  /// True when every function that streaming needs is there.
  bool CanStream() const { return canStream_; }
  /// The producer's own words about the latest failure on this thread; "" when it has none.
  std::string LastError() const;

#define ZYN_DECLARE_MEMBER(name) GenTL::P##name name = nullptr;
  ZYN_GENTL_REQUIRED_FUNCTIONS(ZYN_DECLARE_MEMBER)
  ZYN_GENTL_STREAMING_FUNCTIONS(ZYN_DECLARE_MEMBER)
  ZYN_GENTL_OPTIONAL_FUNCTIONS(ZYN_DECLARE_MEMBER)
#undef ZYN_DECLARE_MEMBER

 private:
  ProducerLibrary() = default;

  std::string path_;
  bool canStream_ = false;
};

using ProducerPtr = std::shared_ptr<const ProducerLibrary>;

}  // namespace zyn::transport

#endif
