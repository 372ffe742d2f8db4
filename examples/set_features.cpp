// Opens a camera, and reads and writes features of each kind.
//
//   set_features SERIAL

#include <ZynCamera.h>

#include <iostream>

using namespace ZYNSDK;

// Half of the largest width, in the steps that the camera has.
static long HalveWidth(ZynCamera& camera) {
  ZynNode width;
  if (const long status = camera.GetRemoteNode("Width", &width)) return status;

  int value, minimum, maximum, increment;
  if (const long status = width.GetInt(&value, &minimum, &maximum, &increment)) return status;
  std::cout << "Width is " << value << ", may be " << minimum << " to " << maximum << " in steps of "
            << increment << "\n";

  value = minimum + (maximum / 2 - minimum) / increment * increment;
  if (const long status = width.SetInt(value)) return status;
  if (const long status = width.GetInt(&value)) return status;
  std::cout << "Width is now " << value << "\n";
  return ZYN_OK;
}

// "ExposureTime" is found on older cameras too, where it is called "ExposureTimeAbs".
static long SetExposure(ZynCamera& camera, float microseconds) {
  ZynNode exposure;
  if (const long status = camera.GetRemoteNode("ExposureTime", &exposure)) return status;
  if (const long status = exposure.SetFloat(microseconds)) return status;

  float value;
  if (const long status = exposure.GetFloat(&value)) return status;
  std::cout << exposure.Name() << " is now " << value << "\n";
  return ZYN_OK;
}

static long ShowPixelFormats(ZynCamera& camera) {
  ZynNode format;
  if (const long status = camera.GetRemoteNode("PixelFormat", &format)) return status;

  ZynString current;
  ZynStringArray entries;
  if (const long status = format.GetEnumString(&current, &entries)) return status;
  std::cout << "PixelFormat is " << current.getStr() << ", may be";
  for (unsigned int i = 0; i < entries.length(); ++i)
    std::cout << " " << entries[static_cast<int>(i)].getStr();
  std::cout << "\n";
  return format.SetEnumString(current);
}

static long UseCamera(ZynCamera& camera) {
  if (const long status = HalveWidth(camera)) return status;
  if (const long status = SetExposure(camera, 5000)) return status;
  if (const long status = ShowPixelFormats(camera)) return status;

  // What a camera does not have is no accident: the status says so.
  ZynNode missing;
  if (camera.GetRemoteNode("NoSuchFeature", &missing) == ZYN_ERROR_NO_SUCH_NODE)
    std::cout << "There is no NoSuchFeature\n";
  return ZYN_OK;
}

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: set_features SERIAL\n";
    return 2;
  }
  ZynSDKInit();

  ZynCamera camera;
  long status = DiscoveryCamera(argv[1], &camera);
  if (status == ZYN_OK) status = camera.Open(nullptr);
  if (status == ZYN_OK) {
    status = UseCamera(camera);
    camera.Close();
  }

  ZynSDKUnInit();
  if (status != ZYN_OK) std::cerr << "failed with status " << status << ", see ZynCamera/Status.h\n";
  return status == ZYN_OK ? 0 : 1;
}
