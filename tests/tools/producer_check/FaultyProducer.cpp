// A GenTL producer that forwards every call to a good one, but for the one mistake that it was told to make. Built with
// ZYN_LACKS_SEGMENTS it also lacks a function.
#define GENTL_PRODUCER
#include <GenTL/GenTL.h>
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>

#include "Fault.h"

using namespace GenTL;

namespace faulty {
namespace {

void* RealFunction(const char* name) {
  static void* const library = dlopen(ZYN_REAL_PRODUCER, RTLD_NOW | RTLD_LOCAL);
  void* const symbol = library != nullptr ? dlsym(library, name) : nullptr;
  if (symbol == nullptr) std::abort();
  return symbol;
}

// The arguments of a call, by what they are for.
struct Arguments {
  std::optional<std::int32_t> number;  // the first command, flag or type
  void* handle = nullptr;              // the first argument, where that is a handle
  void* out = nullptr;                 // where the answer goes
  std::size_t outBytes = 0;            // how large the answer is; 0 for what "size" tells
  INFO_DATATYPE* type = nullptr;
  std::size_t* size = nullptr;
};

template <class T>
void Sort(Arguments& arguments, T argument) {
  if constexpr (std::is_same_v<T, std::int32_t>) {
    if (!arguments.number) arguments.number = argument;
  } else if constexpr (std::is_same_v<T, INFO_DATATYPE*>) {
    arguments.type = argument;
  } else if constexpr (std::is_same_v<T, std::size_t*>) {
    arguments.size = argument;
  } else if constexpr (std::is_same_v<T, void**> || std::is_same_v<T, std::uint32_t*>) {
    arguments.out = argument;
    arguments.outBytes = sizeof(*argument);
  } else if constexpr (std::is_same_v<T, void*> || std::is_same_v<T, char*>) {
    if (arguments.handle == nullptr && std::is_same_v<T, void*>) {
      arguments.handle = argument;
    } else {
      arguments.out = argument;
    }
  }
}

std::size_t OutBytes(const Arguments& arguments) {
  if (arguments.outBytes != 0) return arguments.outBytes;
  return arguments.size != nullptr ? *arguments.size : 0;
}

void PutNumber(const Arguments& arguments, std::int64_t number) {
  if (arguments.out == nullptr) return;
  std::memset(arguments.out, 0, OutBytes(arguments));
  std::memcpy(arguments.out, &number, std::min(OutBytes(arguments), sizeof number));
}

void PutText(const Arguments& arguments, const std::string& text) {
  const std::size_t capacity = arguments.out != nullptr ? *arguments.size : text.size() + 1;
  if (arguments.out != nullptr) std::memcpy(arguments.out, text.c_str(), std::min(text.size() + 1, capacity));
  *arguments.size = text.size() + 1;
}

void Replace(const Arguments& arguments, const std::string& what) {
  const std::size_t slash = what.find('/');
  const std::string_view from = std::string_view(what).substr(0, slash);
  const std::string_view to = std::string_view(what).substr(slash + 1);
  auto* const bytes = static_cast<char*>(arguments.out);
  if (bytes == nullptr) return;
  char* const end = bytes + OutBytes(arguments);
  for (char* at = std::search(bytes, end, from.begin(), from.end()); at != end;
       at = std::search(at, end, from.begin(), from.end())) {
    std::copy(to.begin(), to.end(), at);
  }
}

// What comes out of a call that the fault concerns.
GC_ERROR Act(const Arguments& arguments, const std::function<GC_ERROR()>& real) {
  static std::atomic<std::int64_t> countdown{1000000};
  static const std::thread::id first = std::this_thread::get_id();
  const Fault& fault = TheFault();
  const auto code = [&] { return static_cast<GC_ERROR>(std::atoi(fault.argument.c_str())); };
  if (fault.action == "crash") std::abort();
  while (fault.action == "hang") pause();
  if (fault.action.empty()) return code();
  if (fault.action == "elsewhere") return std::this_thread::get_id() == first ? real() : code();
  if (fault.action == "twice") real();
  const GC_ERROR result = real();
  if (fault.action == "size" && arguments.size != nullptr)
    *arguments.size = static_cast<std::size_t>(std::atoi(fault.argument.c_str()));
  if (std::to_string(result) == fault.action) return code();
  if (result != GC_ERR_SUCCESS) return result;
  if (fault.action == "value") PutNumber(arguments, std::atoll(fault.argument.c_str()));
  if (fault.action == "countdown") PutNumber(arguments, --countdown);
  if (fault.action == "text") PutText(arguments, fault.argument);
  if (fault.action == "type") *arguments.type = code();
  if (fault.action == "replace") Replace(arguments, fault.argument);
  if (fault.action == "self") *static_cast<void**>(arguments.out) = arguments.handle;
  return result;
}

template <class... A>
GC_ERROR Forward(const char* name, std::atomic<int>& calls, GC_ERROR (*real)(A...),
                 std::type_identity_t<A>... a) {
  const Fault& fault = TheFault();
  if (fault.function != name) return real(a...);
  Arguments arguments;
  (Sort(arguments, a), ...);
  if (fault.number && arguments.number != fault.number) return real(a...);
  if (fault.call && ++calls != *fault.call) return real(a...);
  return Act(arguments, [&] { return real(a...); });
}

template <class Function>
Function Real(const char* name) {
  void* const symbol = RealFunction(name);
  Function function = nullptr;
  std::memcpy(&function, &symbol, sizeof function);
  return function;
}

// ---- mistakes of their own ----

// Whether the producer looked for devices since it was started.
std::atomic<bool> isUpdated{false};

void* theStream = nullptr;

// A producer that writes into the first buffer it delivered, whoever owns that now.
void Scribble(GC_ERROR result, void* event) {
  static std::atomic<unsigned char*> memory{nullptr};
  if (result != GC_ERR_SUCCESS || event == nullptr) return;
  EVENT_NEW_BUFFER_DATA data = {};
  std::memcpy(&data, event, sizeof data);
  if (memory == nullptr) {
    void* base = nullptr;
    std::size_t size = sizeof base;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    Real<PDSGetBufferInfo>("DSGetBufferInfo")(theStream, data.BufferHandle, BUFFER_INFO_BASE, &type, &base,
                                              &size);
    memory = static_cast<unsigned char*>(base);
    return;
  }
  ++*memory.load();
}

[[gnu::destructor]] void Unloaded() {
  if (Has("unload")) std::abort();
}

}  // namespace
}  // namespace faulty

#define ZYN_FORWARD(name, parameters, ...)                                 \
  GC_ERROR GC_CALLTYPE name parameters {                                   \
    static std::atomic<int> calls{0};                                      \
    static const auto real = faulty::Real<P##name>(#name);                 \
    return faulty::Forward(#name, calls, real __VA_OPT__(, ) __VA_ARGS__); \
  }
#define ZYN_INFO INFO_DATATYPE *t, void *p, size_t *s

namespace GenTL {
extern "C" {

ZYN_FORWARD(GCGetInfo, (TL_INFO_CMD c, ZYN_INFO), c, t, p, s)
ZYN_FORWARD(GCCloseLib, ())
ZYN_FORWARD(GCGetLastError, (GC_ERROR * e, char* x, size_t* s), e, x, s)
ZYN_FORWARD(GCReadPort, (PORT_HANDLE h, uint64_t a, void* p, size_t* s), h, a, p, s)
ZYN_FORWARD(GCWritePort, (PORT_HANDLE h, uint64_t a, const void* p, size_t* s), h, a, p, s)
ZYN_FORWARD(GCGetPortURL, (PORT_HANDLE h, char* x, size_t* s), h, x, s)
ZYN_FORWARD(GCGetPortInfo, (PORT_HANDLE h, PORT_INFO_CMD c, ZYN_INFO), h, c, t, p, s)
ZYN_FORWARD(GCGetNumPortURLs, (PORT_HANDLE h, uint32_t* n), h, n)
ZYN_FORWARD(GCGetPortURLInfo, (PORT_HANDLE h, uint32_t i, URL_INFO_CMD c, ZYN_INFO), h, i, c, t, p, s)
ZYN_FORWARD(GCReadPortStacked, (PORT_HANDLE h, PORT_REGISTER_STACK_ENTRY* e, size_t* s), h, e, s)
ZYN_FORWARD(GCWritePortStacked, (PORT_HANDLE h, PORT_REGISTER_STACK_ENTRY* e, size_t* s), h, e, s)
ZYN_FORWARD(GCRegisterEvent, (EVENTSRC_HANDLE h, EVENT_TYPE c, EVENT_HANDLE* o), h, c, o)
ZYN_FORWARD(GCUnregisterEvent, (EVENTSRC_HANDLE h, EVENT_TYPE c), h, c)
ZYN_FORWARD(EventGetDataInfo, (EVENT_HANDLE h, const void* d, size_t n, EVENT_DATA_INFO_CMD c, ZYN_INFO), h,
            d, n, c, t, p, s)
ZYN_FORWARD(EventGetInfo, (EVENT_HANDLE h, EVENT_INFO_CMD c, ZYN_INFO), h, c, t, p, s)
ZYN_FORWARD(EventFlush, (EVENT_HANDLE h), h)
ZYN_FORWARD(EventKill, (EVENT_HANDLE h), h)
ZYN_FORWARD(TLOpen, (TL_HANDLE * o), o)
ZYN_FORWARD(TLClose, (TL_HANDLE h), h)
ZYN_FORWARD(TLGetInfo, (TL_HANDLE h, TL_INFO_CMD c, ZYN_INFO), h, c, t, p, s)
ZYN_FORWARD(TLGetNumInterfaces, (TL_HANDLE h, uint32_t* n), h, n)
ZYN_FORWARD(TLGetInterfaceID, (TL_HANDLE h, uint32_t i, char* x, size_t* s), h, i, x, s)
ZYN_FORWARD(TLGetInterfaceInfo, (TL_HANDLE h, const char* i, INTERFACE_INFO_CMD c, ZYN_INFO), h, i, c, t, p,
            s)
ZYN_FORWARD(TLOpenInterface, (TL_HANDLE h, const char* i, IF_HANDLE* o), h, i, o)
ZYN_FORWARD(TLUpdateInterfaceList, (TL_HANDLE h, bool8_t* b, uint64_t m), h, b, m)
ZYN_FORWARD(IFClose, (IF_HANDLE h), h)
ZYN_FORWARD(IFGetInfo, (IF_HANDLE h, INTERFACE_INFO_CMD c, ZYN_INFO), h, c, t, p, s)
ZYN_FORWARD(IFGetNumDevices, (IF_HANDLE h, uint32_t* n), h, n)
ZYN_FORWARD(IFGetDeviceID, (IF_HANDLE h, uint32_t i, char* x, size_t* s), h, i, x, s)
ZYN_FORWARD(IFGetDeviceInfo, (IF_HANDLE h, const char* i, DEVICE_INFO_CMD c, ZYN_INFO), h, i, c, t, p, s)
ZYN_FORWARD(IFGetParentTL, (IF_HANDLE h, TL_HANDLE* o), h, o)
ZYN_FORWARD(DevGetPort, (DEV_HANDLE h, PORT_HANDLE* o), h, o)
ZYN_FORWARD(DevGetNumDataStreams, (DEV_HANDLE h, uint32_t* n), h, n)
ZYN_FORWARD(DevGetDataStreamID, (DEV_HANDLE h, uint32_t i, char* x, size_t* s), h, i, x, s)
ZYN_FORWARD(DevGetInfo, (DEV_HANDLE h, DEVICE_INFO_CMD c, ZYN_INFO), h, c, t, p, s)
ZYN_FORWARD(DevClose, (DEV_HANDLE h), h)
ZYN_FORWARD(DevGetParentIF, (DEV_HANDLE h, IF_HANDLE* o), h, o)
ZYN_FORWARD(DSAnnounceBuffer, (DS_HANDLE h, void* p, size_t n, void* u, BUFFER_HANDLE* o), h, p, n, u, o)
ZYN_FORWARD(DSAllocAndAnnounceBuffer, (DS_HANDLE h, size_t n, void* u, BUFFER_HANDLE* o), h, n, u, o)
ZYN_FORWARD(DSFlushQueue, (DS_HANDLE h, ACQ_QUEUE_TYPE c), h, c)
ZYN_FORWARD(DSStopAcquisition, (DS_HANDLE h, ACQ_STOP_FLAGS c), h, c)
ZYN_FORWARD(DSGetInfo, (DS_HANDLE h, STREAM_INFO_CMD c, ZYN_INFO), h, c, t, p, s)
ZYN_FORWARD(DSGetBufferID, (DS_HANDLE h, uint32_t i, BUFFER_HANDLE* o), h, i, o)
ZYN_FORWARD(DSClose, (DS_HANDLE h), h)
ZYN_FORWARD(DSRevokeBuffer, (DS_HANDLE h, BUFFER_HANDLE b, void** p, void** u), h, b, p, u)
ZYN_FORWARD(DSQueueBuffer, (DS_HANDLE h, BUFFER_HANDLE b), h, b)
ZYN_FORWARD(DSGetBufferInfo, (DS_HANDLE h, BUFFER_HANDLE b, BUFFER_INFO_CMD c, ZYN_INFO), h, b, c, t, p, s)
ZYN_FORWARD(DSGetBufferChunkData, (DS_HANDLE h, BUFFER_HANDLE b, SINGLE_CHUNK_DATA* d, size_t* s), h, b, d, s)
ZYN_FORWARD(DSGetParentDev, (DS_HANDLE h, DEV_HANDLE* o), h, o)
ZYN_FORWARD(DSGetNumBufferParts, (DS_HANDLE h, BUFFER_HANDLE b, uint32_t* n), h, b, n)
ZYN_FORWARD(DSGetBufferPartInfo, (DS_HANDLE h, BUFFER_HANDLE b, uint32_t i, BUFFER_PART_INFO_CMD c, ZYN_INFO),
            h, b, i, c, t, p, s)
ZYN_FORWARD(DSAnnounceCompositeBuffer,
            (DS_HANDLE h, size_t n, void** p, size_t* s, void* u, BUFFER_HANDLE* o), h, n, p, s, u, o)
ZYN_FORWARD(DSGetBufferInfoStacked, (DS_HANDLE h, BUFFER_HANDLE b, DS_BUFFER_INFO_STACKED* d, size_t n), h, b,
            d, n)
ZYN_FORWARD(DSGetBufferPartInfoStacked,
            (DS_HANDLE h, BUFFER_HANDLE b, DS_BUFFER_PART_INFO_STACKED* d, size_t n), h, b, d, n)
ZYN_FORWARD(DSGetNumFlows, (DS_HANDLE h, uint32_t* n), h, n)
ZYN_FORWARD(DSGetFlowInfo, (DS_HANDLE h, uint32_t i, FLOW_INFO_CMD c, ZYN_INFO), h, i, c, t, p, s)
#ifndef ZYN_LACKS_SEGMENTS
ZYN_FORWARD(DSGetNumBufferSegments, (DS_HANDLE h, BUFFER_HANDLE b, uint32_t* n), h, b, n)
#endif
ZYN_FORWARD(DSGetBufferSegmentInfo, (DS_HANDLE h, BUFFER_HANDLE b, uint32_t i, SEGMENT_INFO_CMD c, ZYN_INFO),
            h, b, i, c, t, p, s)

GC_ERROR GC_CALLTYPE GCInitLib() {
  static std::atomic<int> calls{0};
  faulty::isUpdated = false;
  return faulty::Forward("GCInitLib", calls, faulty::Real<PGCInitLib>("GCInitLib"));
}

GC_ERROR GC_CALLTYPE IFUpdateDeviceList(IF_HANDLE h, bool8_t* b, uint64_t m) {
  static std::atomic<int> calls{0};
  faulty::isUpdated = true;
  return faulty::Forward("IFUpdateDeviceList", calls, faulty::Real<PIFUpdateDeviceList>("IFUpdateDeviceList"),
                         h, b, m);
}

GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE h, const char* i, DEVICE_ACCESS_FLAGS c, DEV_HANDLE* o) {
  static std::atomic<int> calls{0};
  if (faulty::Has("needs-update") && !faulty::isUpdated) return GC_ERR_INVALID_ID;
  return faulty::Forward("IFOpenDevice", calls, faulty::Real<PIFOpenDevice>("IFOpenDevice"), h, i, c, o);
}

GC_ERROR GC_CALLTYPE DevOpenDataStream(DEV_HANDLE h, const char* i, DS_HANDLE* o) {
  static std::atomic<int> calls{0};
  const GC_ERROR result = faulty::Forward("DevOpenDataStream", calls,
                                          faulty::Real<PDevOpenDataStream>("DevOpenDataStream"), h, i, o);
  if (result == GC_ERR_SUCCESS && o != nullptr) faulty::theStream = *o;
  return result;
}

GC_ERROR GC_CALLTYPE DSStartAcquisition(DS_HANDLE h, ACQ_START_FLAGS c, uint64_t n) {
  static std::atomic<int> calls{0};
  if (faulty::Has("endless") && n != 0) n = GENTL_INFINITE;
  return faulty::Forward("DSStartAcquisition", calls, faulty::Real<PDSStartAcquisition>("DSStartAcquisition"),
                         h, c, n);
}

GC_ERROR GC_CALLTYPE EventGetData(EVENT_HANDLE h, void* p, size_t* s, uint64_t m) {
  static std::atomic<int> calls{0};
  const GC_ERROR result =
      faulty::Forward("EventGetData", calls, faulty::Real<PEventGetData>("EventGetData"), h, p, s, m);
  if (faulty::Has("scribble")) faulty::Scribble(result, p);
  return result;
}

}  // extern "C"
}  // namespace GenTL
