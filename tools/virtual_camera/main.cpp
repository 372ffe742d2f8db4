// zyn-virtual-camera: GigE Vision cameras of this computer, for every GigE Vision client. Prints one line when all
// are on the wire, and ends with SIGINT or SIGTERM.

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "CameraList.h"
#include "cameras/Catalog.h"
#include "cameras/FeatureAccess.h"
#include "gigedevice/GigeDevice.h"

namespace {

using virtualcamera::CameraEntry;
using zyn::gigedevice::GigeDevice;
using zyn::gigedevice::SendMethod;

struct CommandLine {
  std::vector<std::string> addresses{"127.0.0.1"};
  std::string file;
  CameraEntry defaults;
  int delayMs = 0;
  bool hasNoResend = false;
};

// The camera goes after its device.
struct Running {
  std::unique_ptr<zyn::cameras::CameraModel> camera;
  std::unique_ptr<GigeDevice> device;
};

void AddOptions(CLI::App& app, CommandLine& line) {
  auto* const addresses =
      app.add_option("-a,--address", line.addresses, "Addresses to answer on, one camera each (127.0.0.1)");
  app.add_option("-m,--model", line.defaults.model, "Model, as in the simulation (ZS-A1600)");
  app.add_option("-s,--serial", line.defaults.serial, "Serial number of a single camera");
  app.add_option("-c,--config", line.file, "JSON file with a list of cameras")->excludes(addresses);
  app.add_option("-l,--loss", line.defaults.device.lossPerThousand, "Stream packets lost, per thousand (0)")
      ->check(CLI::Range(0, 1000));
  app.add_option("--seed", line.defaults.device.seed, "The same seed loses the same packets (1)");
  app.add_option("-d,--delay", line.delayMs, "Each frame leaves so many milliseconds later (0)")
      ->check(CLI::Range(0, 60000));
  app.add_flag(
      "--configure-adapter", line.defaults.device.configuresAdapter,
      "An address that a client assigns is given to the adapter, too (a network of its own is advised)");
  app.add_flag("--no-resend", line.hasNoResend, "Lost packets cannot be had again");
  app.add_option("--send", line.defaults.device.sendMethod, "How packets are handed to the system (auto)")
      ->transform(
          CLI::CheckedTransformer(std::map<std::string, SendMethod>{{"auto", SendMethod::automatic},
                                                                    {"plain", SendMethod::plain},
                                                                    {"segmented", SendMethod::segmented}}));
}

std::vector<CameraEntry> Cameras(CommandLine& line) {
  line.defaults.device.delay = std::chrono::milliseconds(line.delayMs);
  line.defaults.device.hasResend = !line.hasNoResend;
  if (!line.file.empty()) return virtualcamera::ReadCameraList(line.file, line.defaults);
  std::vector<CameraEntry> cameras;
  for (const std::string& address : line.addresses) {
    cameras.push_back(line.defaults);
    cameras.back().device.ip = virtualcamera::ParseAddress(address);
  }
  return cameras;
}

Running Start(const CameraEntry& entry) {
  Running running;
  running.camera = zyn::cameras::MakeCamera(entry.model, entry.serial);
  if (!entry.userName.empty())
    zyn::cameras::WriteTextFeature(*running.camera, "DeviceUserID", entry.userName);
  running.device = std::make_unique<GigeDevice>(*running.camera, zyn::cameras::SteadyClock(), entry.device);
  return running;
}

}  // namespace

int main(int count, char** arguments) try {
  CommandLine line;
  CLI::App app("GigE Vision cameras on this computer, without hardware");
  AddOptions(app, line);
  CLI11_PARSE(app, count, arguments);
  // Blocked before any thread begins, so that only the wait below gets them.
  sigset_t ends;
  sigemptyset(&ends);
  sigaddset(&ends, SIGINT);
  sigaddset(&ends, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ends, nullptr);
  std::vector<CameraEntry> cameras = Cameras(line);
  virtualcamera::Complete(cameras);
  std::list<Running> running;
  for (const CameraEntry& entry : cameras) running.push_back(Start(entry));
  std::printf("%zu on the wire\n", running.size());
  std::fflush(stdout);
  int signal = 0;
  sigwait(&ends, &signal);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "zyn-virtual-camera: %s\n", error.what());
  return 1;
}
