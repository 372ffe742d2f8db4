// C functions: data stream.
#include "Answer.h"
#include "Guard.h"
#include "StreamModule.h"
#include "producer/Error.h"

using namespace zyn::producer;

namespace GenTL {
extern "C" {

GC_ERROR GC_CALLTYPE DSAnnounceBuffer(DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pPrivate,
                                      BUFFER_HANDLE* phBuffer) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    RequirePointer(pBuffer, "pBuffer");
    RequirePointer(phBuffer, "phBuffer");
    *phBuffer = stream->Queues().Announce(pBuffer, iSize, pPrivate)->Handle();
  });
}

GC_ERROR GC_CALLTYPE DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t iSize, void* pPrivate,
                                              BUFFER_HANDLE* phBuffer) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    RequirePointer(phBuffer, "phBuffer");
    *phBuffer = stream->Queues().Allocate(iSize, pPrivate)->Handle();
  });
}

GC_ERROR GC_CALLTYPE DSAnnounceCompositeBuffer(DS_HANDLE hDataStream, size_t, void**, size_t*, void*,
                                               BUFFER_HANDLE*) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    throw Error(GC_ERR_NOT_IMPLEMENTED, "Buffers are in one piece here.");
  });
}

GC_ERROR GC_CALLTYPE DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    stream->Flush(iOperation);
  });
}

GC_ERROR GC_CALLTYPE DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS iStartFlags,
                                        uint64_t iNumToAcquire) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    if (iStartFlags != ACQ_START_FLAGS_DEFAULT)
      throw Error(GC_ERR_NOT_IMPLEMENTED, "There is no start flag " + std::to_string(iStartFlags) + ".");
    stream->Start(iNumToAcquire);
  });
}

GC_ERROR GC_CALLTYPE DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS iStopFlags) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    if (iStopFlags != ACQ_STOP_FLAGS_DEFAULT && iStopFlags != ACQ_STOP_FLAGS_KILL)
      throw Error(GC_ERR_NOT_IMPLEMENTED, "There is no stop flag " + std::to_string(iStopFlags) + ".");
    stream->Stop(iStopFlags == ACQ_STOP_FLAGS_KILL);
  });
}

GC_ERROR GC_CALLTYPE DSGetInfo(DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                               void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    stream->Info(iInfoCmd, Answer(piType, pBuffer, piSize));
  });
}

GC_ERROR GC_CALLTYPE DSGetBufferID(DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    RequirePointer(phBuffer, "phBuffer");
    *phBuffer = stream->Queues().At(iIndex)->Handle();
  });
}

GC_ERROR GC_CALLTYPE DSClose(DS_HANDLE hDataStream) {
  return Guarded(__func__, [&] { Lookup<StreamModule>(hDataStream)->Close(); });
}

GC_ERROR GC_CALLTYPE DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** pBuffer,
                                    void** pPrivate) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    const auto buffer = stream->Revoke(hBuffer);
    if (pBuffer != nullptr) *pBuffer = buffer->ownMemory ? nullptr : buffer->Memory();
    if (pPrivate != nullptr) *pPrivate = buffer->UserPointer();
  });
}

GC_ERROR GC_CALLTYPE DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    stream->Queue(hBuffer);
  });
}

GC_ERROR GC_CALLTYPE DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    RequirePointer(phDevice, "phDevice");
    *phDevice = stream->Parent().Handle();
  });
}

GC_ERROR GC_CALLTYPE DSGetNumFlows(DS_HANDLE hDataStream, uint32_t* piNumFlows) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    RequirePointer(piNumFlows, "piNumFlows");
    throw Error(GC_ERR_NO_DATA, "The stream does not use flows.");
  });
}

GC_ERROR GC_CALLTYPE DSGetFlowInfo(DS_HANDLE hDataStream, uint32_t, FLOW_INFO_CMD, INFO_DATATYPE* piType,
                                   void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    const Answer answer(piType, pBuffer, piSize);
    throw Error(GC_ERR_NO_DATA, "The stream does not use flows.");
  });
}

}  // extern "C"
}  // namespace GenTL
