// C functions: events.
#include "Answer.h"
#include "Buffer.h"
#include "Event.h"
#include "Guard.h"
#include "Module.h"
#include "producer/Error.h"

using namespace zyn::producer;

namespace GenTL {
namespace {

std::shared_ptr<Module> SourceOf(EVENTSRC_HANDLE handle) {
  const std::shared_ptr<HandleTarget> target = Handles().Find(handle);
  if (std::dynamic_pointer_cast<Buffer>(target))
    throw Error(GC_ERR_NOT_IMPLEMENTED, "Buffers have no events.");
  std::shared_ptr<Module> module = std::dynamic_pointer_cast<Module>(target);
  if (!module) ThrowInvalidHandle();
  return module;
}

}  // namespace

extern "C" {

GC_ERROR GC_CALLTYPE GCRegisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID, EVENT_HANDLE* phEvent) {
  return Guarded(__func__, [&] {
    const Pin<Module> source(SourceOf(hEventSrc));
    RequirePointer(phEvent, "phEvent");
    *phEvent = source->RegisterEvent(iEventID);
  });
}

GC_ERROR GC_CALLTYPE GCUnregisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID) {
  return Guarded(__func__, [&] {
    const Pin<Module> source(SourceOf(hEventSrc));
    source->UnregisterEvent(iEventID);
  });
}

// Not pinned: a wait must not keep the module from being closed. Closing ends the wait.
GC_ERROR GC_CALLTYPE EventGetData(EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout) {
  return Guarded(__func__, [&] {
    const auto event = Lookup<Event>(hEvent);
    RequirePointer(piSize, "piSize");
    event->Wait(pBuffer, piSize, iTimeout);
  });
}

GC_ERROR GC_CALLTYPE EventGetDataInfo(EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize,
                                      EVENT_DATA_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pOutBuffer,
                                      size_t* piOutSize) {
  return Guarded(__func__, [&] {
    const auto event = Lookup<Event>(hEvent);
    RequirePointer(pInBuffer, "pInBuffer");
    if (iInSize == 0) throw Error(GC_ERR_INVALID_PARAMETER, "iInSize is 0.");
    event->DataInfo(pInBuffer, iInSize, iInfoCmd, Answer(piType, pOutBuffer, piOutSize));
  });
}

GC_ERROR GC_CALLTYPE EventGetInfo(EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                  void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const auto event = Lookup<Event>(hEvent);
    event->Info(iInfoCmd, Answer(piType, pBuffer, piSize));
  });
}

GC_ERROR GC_CALLTYPE EventFlush(EVENT_HANDLE hEvent) {
  return Guarded(__func__, [&] { Lookup<Event>(hEvent)->Flush(); });
}

GC_ERROR GC_CALLTYPE EventKill(EVENT_HANDLE hEvent) {
  return Guarded(__func__, [&] { Lookup<Event>(hEvent)->Kill(); });
}

}  // extern "C"
}  // namespace GenTL
