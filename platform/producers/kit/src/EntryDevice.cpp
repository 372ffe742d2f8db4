// C functions: device.
#include "Answer.h"
#include "DeviceModule.h"
#include "Guard.h"
#include "InterfaceModule.h"
#include "StreamModule.h"
#include "producer/Error.h"

using namespace zyn::producer;

namespace GenTL {
extern "C" {

GC_ERROR GC_CALLTYPE DevGetPort(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice) {
  return Guarded(__func__, [&] {
    const Pin<DeviceModule> device(hDevice);
    RequirePointer(phRemoteDevice, "phRemoteDevice");
    *phRemoteDevice = device->Remote()->Handle();
  });
}

GC_ERROR GC_CALLTYPE DevGetNumDataStreams(DEV_HANDLE hDevice, uint32_t* piNumDataStreams) {
  return Guarded(__func__, [&] {
    const Pin<DeviceModule> device(hDevice);
    RequirePointer(piNumDataStreams, "piNumDataStreams");
    *piNumDataStreams = static_cast<uint32_t>(device->Traits().streamIds.size());
  });
}

GC_ERROR GC_CALLTYPE DevGetDataStreamID(DEV_HANDLE hDevice, uint32_t iIndex, char* sDataStreamID,
                                        size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<DeviceModule> device(hDevice);
    RequirePointer(piSize, "piSize");
    const std::vector<std::string>& ids = device->Traits().streamIds;
    if (ids.empty()) throw Error(GC_ERR_NOT_IMPLEMENTED, "The device has no data streams.");
    if (iIndex >= ids.size())
      throw Error(GC_ERR_INVALID_INDEX, "There is no data stream number " + std::to_string(iIndex) + ".");
    AnswerText(ids[iIndex], sDataStreamID, piSize);
  });
}

GC_ERROR GC_CALLTYPE DevOpenDataStream(DEV_HANDLE hDevice, const char* sDataStreamID,
                                       DS_HANDLE* phDataStream) {
  return Guarded(__func__, [&] {
    const Pin<DeviceModule> device(hDevice);
    RequirePointer(sDataStreamID, "sDataStreamID");
    RequirePointer(phDataStream, "phDataStream");
    *phDataStream = device->OpenStream(sDataStreamID)->Handle();
  });
}

GC_ERROR GC_CALLTYPE DevGetInfo(DEV_HANDLE hDevice, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                                void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<DeviceModule> device(hDevice);
    const Answer answer(piType, pBuffer, piSize);
    AnswerDeviceInfo(device->CurrentInfo(), iInfoCmd, answer);
  });
}

GC_ERROR GC_CALLTYPE DevClose(DEV_HANDLE hDevice) {
  return Guarded(__func__, [&] { Lookup<DeviceModule>(hDevice)->Close(); });
}

GC_ERROR GC_CALLTYPE DevGetParentIF(DEV_HANDLE hDevice, IF_HANDLE* phIface) {
  return Guarded(__func__, [&] {
    const Pin<DeviceModule> device(hDevice);
    RequirePointer(phIface, "phIface");
    *phIface = device->Parent().Handle();
  });
}

}  // extern "C"
}  // namespace GenTL
