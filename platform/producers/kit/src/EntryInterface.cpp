// C functions: interface.
#include "Answer.h"
#include "DeviceModule.h"
#include "Guard.h"
#include "InterfaceModule.h"
#include "producer/Error.h"

using namespace zyn::producer;

namespace GenTL {
extern "C" {

GC_ERROR GC_CALLTYPE IFClose(IF_HANDLE hIface) {
  return Guarded(__func__, [&] { Lookup<InterfaceModule>(hIface)->Close(); });
}

GC_ERROR GC_CALLTYPE IFGetInfo(IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                               void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<InterfaceModule> interface(hIface);
    AnswerInterfaceInfo(interface->Info(), iInfoCmd, Answer(piType, pBuffer, piSize));
  });
}

GC_ERROR GC_CALLTYPE IFGetNumDevices(IF_HANDLE hIface, uint32_t* piNumDevices) {
  return Guarded(__func__, [&] {
    const Pin<InterfaceModule> interface(hIface);
    RequirePointer(piNumDevices, "piNumDevices");
    *piNumDevices = static_cast<uint32_t>(interface->Devices().size());
  });
}

GC_ERROR GC_CALLTYPE IFGetDeviceID(IF_HANDLE hIface, uint32_t iIndex, char* sIDeviceID, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<InterfaceModule> interface(hIface);
    RequirePointer(piSize, "piSize");
    const std::vector<DeviceInfo> list = interface->Devices();
    if (iIndex >= list.size())
      throw Error(GC_ERR_INVALID_INDEX, "There is no device number " + std::to_string(iIndex) + ".");
    AnswerText(list[iIndex].id, sIDeviceID, piSize);
  });
}

GC_ERROR GC_CALLTYPE IFUpdateDeviceList(IF_HANDLE hIface, bool8_t* pbChanged, uint64_t iTimeout) {
  return Guarded(__func__, [&] {
    const Pin<InterfaceModule> interface(hIface);
    const bool changed = interface->UpdateDevices(iTimeout);
    if (pbChanged != nullptr) *pbChanged = changed;
  });
}

GC_ERROR GC_CALLTYPE IFGetDeviceInfo(IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd,
                                     INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<InterfaceModule> interface(hIface);
    RequirePointer(sDeviceID, "sDeviceID");
    const Answer answer(piType, pBuffer, piSize);
    AnswerDeviceInfo(interface->Find(sDeviceID), iInfoCmd, answer);
  });
}

GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlag,
                                  DEV_HANDLE* phDevice) {
  return Guarded(__func__, [&] {
    const Pin<InterfaceModule> interface(hIface);
    RequirePointer(sDeviceID, "sDeviceID");
    RequirePointer(phDevice, "phDevice");
    *phDevice = interface->Open(sDeviceID, iOpenFlag)->Handle();
  });
}

GC_ERROR GC_CALLTYPE IFGetParentTL(IF_HANDLE hIface, TL_HANDLE* phSystem) {
  return Guarded(__func__, [&] {
    const Pin<InterfaceModule> interface(hIface);
    RequirePointer(phSystem, "phSystem");
    *phSystem = interface->Parent().Handle();
  });
}

}  // extern "C"
}  // namespace GenTL
