// Takes each image at a moment of the program's choosing.
//
//   software_trigger SERIAL COUNT

#include <ZynCamera.h>

#include <cstdlib>
#include <iostream>

using namespace ZYNSDK;

static long SetEntry(ZynCamera& camera, const char* feature, const char* entry) {
  ZynNode node;
  if (const long status = camera.GetRemoteNode(feature, &node)) return status;
  return node.SetEnumString(ZynString(entry, 0));
}

static long TakeImages(ZynCamera& camera, int count) {
  if (const long status = SetEntry(camera, "TriggerMode", "On")) return status;
  if (const long status = SetEntry(camera, "TriggerSource", "Software")) return status;
  ZynNode trigger;
  if (const long status = camera.GetRemoteNode("TriggerSoftware", &trigger)) return status;

  camera.SetGrabTimeout(2000);
  if (const long status = camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0)) return status;
  long status = ZYN_OK;
  ZynImage image;
  for (int i = 1; i <= count && status == ZYN_OK; ++i) {
    status = trigger.Execute(100);  // waits up to 100 ms for an earlier trigger to be done
    if (status == ZYN_OK) status = camera.GrabImage(&image, nullptr);
    if (status == ZYN_OK)
      std::cout << "triggered image " << i << ": " << image.Width() << " x " << image.Height() << "\n";
  }
  camera.StopGrab();

  const long restored = SetEntry(camera, "TriggerMode", "Off");
  return status == ZYN_OK ? restored : status;
}

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: software_trigger SERIAL COUNT\n";
    return 2;
  }
  ZynSDKInit();

  ZynCamera camera;
  long status = DiscoveryCamera(argv[1], &camera);
  if (status == ZYN_OK) status = camera.Open(nullptr);
  if (status == ZYN_OK) {
    status = TakeImages(camera, std::atoi(argv[2]));
    camera.Close();
  }

  ZynSDKUnInit();
  if (status != ZYN_OK) std::cerr << "failed with status " << status << ", see ZynCamera/Status.h\n";
  return status == ZYN_OK ? 0 : 1;
}
