// C functions: system.
#include "Answer.h"
#include "Guard.h"
#include "InterfaceModule.h"
#include "System.h"
#include "producer/Error.h"

using namespace zyn::producer;

namespace GenTL {
extern "C" {

GC_ERROR GC_CALLTYPE TLOpen(TL_HANDLE* phTL) {
  return Guarded(__func__, [&] {
    const Pin<Library> library(Library::Current());
    RequirePointer(phTL, "phTL");
    *phTL = library->OpenSystem()->Handle();
  });
}

GC_ERROR GC_CALLTYPE TLClose(TL_HANDLE hTL) {
  return Guarded(__func__, [&] { Lookup<System>(hTL)->Close(); });
}

GC_ERROR GC_CALLTYPE TLGetInfo(TL_HANDLE hTL, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                               size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<System> system(hTL);
    system->TheLibrary().Info(iInfoCmd, Answer(piType, pBuffer, piSize));
  });
}

GC_ERROR GC_CALLTYPE TLGetNumInterfaces(TL_HANDLE hTL, uint32_t* piNumIfaces) {
  return Guarded(__func__, [&] {
    const Pin<System> system(hTL);
    RequirePointer(piNumIfaces, "piNumIfaces");
    *piNumIfaces = static_cast<uint32_t>(system->Interfaces().size());
  });
}

GC_ERROR GC_CALLTYPE TLGetInterfaceID(TL_HANDLE hTL, uint32_t iIndex, char* sID, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<System> system(hTL);
    RequirePointer(piSize, "piSize");
    const std::vector<InterfaceInfo> list = system->Interfaces();
    if (iIndex >= list.size())
      throw Error(GC_ERR_INVALID_INDEX, "There is no interface number " + std::to_string(iIndex) + ".");
    AnswerText(list[iIndex].id, sID, piSize);
  });
}

GC_ERROR GC_CALLTYPE TLGetInterfaceInfo(TL_HANDLE hTL, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd,
                                        INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<System> system(hTL);
    RequirePointer(sIfaceID, "sIfaceID");
    const Answer answer(piType, pBuffer, piSize);
    AnswerInterfaceInfo(system->Find(sIfaceID), iInfoCmd, answer);
  });
}

GC_ERROR GC_CALLTYPE TLOpenInterface(TL_HANDLE hTL, const char* sIfaceID, IF_HANDLE* phIface) {
  return Guarded(__func__, [&] {
    const Pin<System> system(hTL);
    RequirePointer(sIfaceID, "sIfaceID");
    RequirePointer(phIface, "phIface");
    *phIface = system->Open(sIfaceID)->Handle();
  });
}

GC_ERROR GC_CALLTYPE TLUpdateInterfaceList(TL_HANDLE hTL, bool8_t* pbChanged, uint64_t iTimeout) {
  return Guarded(__func__, [&] {
    const Pin<System> system(hTL);
    const bool changed = system->UpdateInterfaces(iTimeout);
    if (pbChanged != nullptr) *pbChanged = changed;
  });
}

}  // extern "C"
}  // namespace GenTL
