// Grabs images one by one.
//
//   grab_loop SERIAL COUNT

#include <ZynCamera.h>

#include <cstdlib>
#include <iostream>

using namespace ZYNSDK;

// Pixels of one byte; rows may be longer than their pixels.
static double MeanBrightness(const ZynImage& image) {
  double sum = 0;
  for (int y = 0; y < image.Height(); ++y) {
    const unsigned char* row = image.ImageData() + static_cast<long>(y) * image.Step();
    for (int x = 0; x < image.Width(); ++x) sum += row[x];
  }
  return sum / image.Width() / image.Height();
}

static long GrabImages(ZynCamera& camera, int count) {
  camera.SetGrabTimeout(2000);  // milliseconds
  if (const long status = camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0)) return status;

  long status = ZYN_OK;
  ZynImage image;
  for (int i = 1; i <= count && status == ZYN_OK; ++i) {
    status = camera.GrabImage(&image, nullptr);
    if (status == ZYN_ERROR_INVALID_FRAME) {  // a frame that lost packets is no reason to stop
      std::cout << "image " << i << " is damaged\n";
      status = ZYN_OK;
    } else if (status == ZYN_OK) {
      std::cout << "image " << i << ": " << image.Width() << " x " << image.Height() << ", mean "
                << MeanBrightness(image) << "\n";
    }
  }
  camera.StopGrab();
  return status;
}

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: grab_loop SERIAL COUNT\n";
    return 2;
  }
  ZynSDKInit();

  ZynCamera camera;
  long status = DiscoveryCamera(argv[1], &camera);
  if (status == ZYN_OK) status = camera.Open(nullptr);
  if (status == ZYN_OK) {
    status = GrabImages(camera, std::atoi(argv[2]));
    camera.Close();
  }

  ZynSDKUnInit();
  if (status != ZYN_OK) std::cerr << "failed with status " << status << ", see ZynCamera/Status.h\n";
  return status == ZYN_OK ? 0 : 1;
}
