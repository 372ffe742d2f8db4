/// The program zyn-virtual-camera, as tests run it.
#ifndef ZYN_TEST_VIRTUAL_CAMERA_PROCESS_H
#define ZYN_TEST_VIRTUAL_CAMERA_PROCESS_H

#include <string>
#include <vector>

#include "ChildProcess.h"

namespace zyntest {

/// Cameras on the wire from construction to destruction. Only inside a private network (PrivateNetwork.h).
class VirtualCameraProcess {
 public:
  /// Waits until `cameras` cameras answer. Throws std::runtime_error when they do not.
  explicit VirtualCameraProcess(std::vector<std::string> options, int cameras = 1);

  /// Asks the program to end. Returns its exit code.
  int End();

 private:
  ChildProcess process_;
};

}  // namespace zyntest

#endif
