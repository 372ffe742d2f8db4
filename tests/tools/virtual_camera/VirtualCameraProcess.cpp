#include "VirtualCameraProcess.h"

#include <csignal>
#include <stdexcept>
#include <utility>

#include "PrivateNetwork.h"

namespace zyntest {
namespace {

std::vector<std::string> CommandOf(std::vector<std::string> options) {
  if (!IsPrivateNetwork()) throw std::runtime_error("cameras on the wire need a private network");
  options.insert(options.begin(), ZYN_VIRTUAL_CAMERA);
  return options;
}

}  // namespace

VirtualCameraProcess::VirtualCameraProcess(std::vector<std::string> options, int cameras)
    : process_(CommandOf(std::move(options)), ChildProcess::WithOutput{}) {
  const std::string line = process_.NextLine();
  if (line != std::to_string(cameras) + " on the wire") throw std::runtime_error(line);
}

int VirtualCameraProcess::End() {
  return process_.End(SIGTERM);
}

}  // namespace zyntest
