// Lists the cameras that answer.
//
//   list_cameras

#include <ZynCamera.h>

#include <iostream>
#include <memory>

using namespace ZYNSDK;

int main() {
  ZynSDKInit();

  ZynCameraArray cameras;
  const long status = DiscoveryCameras(&cameras);
  std::cout << cameras.length() << " camera(s)\n";

  for (unsigned int i = 0; i < cameras.length(); ++i) {
    // What is known about a camera without opening it. The handle is ours to delete.
    const std::unique_ptr<ZynCameraAttribute> about(cameras[static_cast<int>(i)].Attribute());
    std::cout << about->CameraSerialNumber() << ": " << about->CameraManufactureName() << " "
              << about->CameraModel();
    if (about->ProtocolType() == ZYN_PROTOCOL_GIGE_VISION) std::cout << " at " << about->CameraIp();
    std::cout << "\n";
  }

  ZynSDKUnInit();
  return status == ZYN_OK ? 0 : 1;
}
