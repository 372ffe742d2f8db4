/// What receiving a GigE Vision stream costs: processor time per frame of a program over the SDK, beside that of libaravis' own
/// test client on the same camera, in turns, with and without the right to open packet sockets. Each program runs for a short
/// and for a long time, and the difference counts: what starting costs cancels out. Medians of several rounds.
/// Run it with scripts/in-namespace.sh. stream_cost [FRAMES_PER_SECOND], 30 by default.
#include <KELGeniCam.h>
#include <ZynCamera.h>
#include <fcntl.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <stdexcept>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "PrivateNetwork.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kSerial = "COST";
constexpr int kShortSeconds = 1;
constexpr int kLongSeconds = 4;
constexpr int kRounds = 5;
constexpr double kMostRatio = 1.1;
// In ns: as far apart as a line of 1 Gbit/s carries packets of 1500 bytes. Frames that come as fast as memory takes them
// overrun the socket buffer that a system allows by default.
constexpr const char* kPacketGap = "GevSCPD=12000";
constexpr int kFrameWaitMs = 5000;

// What one program did.
struct Run {
  double cpuSeconds = 0;
  double frames = 0;
  double lost = 0;
};

// The number behind "name = " or "name            = ".
double NumberBehind(const std::string& text, const std::string& name) {
  const std::size_t at = text.find('=', text.find(name));
  if (text.find(name) == std::string::npos || at == std::string::npos)
    throw std::runtime_error("no " + name + " in:\n" + text);
  return std::strtod(text.c_str() + at + 1, nullptr);
}

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

std::string ReadToEnd(int descriptor) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = read(descriptor, buffer.data(), buffer.size())) > 0;)
    text.append(buffer.data(), static_cast<std::size_t>(count));
  return text;
}

/// Runs a program to its end. Its output goes to `out`; returns its processor time.
double RunChild(const std::vector<std::string>& command, bool mayOpenPacketSockets, std::string& out) {
  std::vector<char*> arguments;
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const pid_t pid = fork();
  if (pid == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (!mayOpenPacketSockets && prctl(PR_CAPBSET_DROP, CAP_NET_RAW, 0, 0, 0) != 0) _exit(126);
    dup2(ends[1], STDOUT_FILENO);
    execvp(arguments[0], arguments.data());
    _exit(127);
  }
  close(ends[1]);
  out = ReadToEnd(ends[0]);
  close(ends[0]);
  int status = 0;
  rusage usage{};
  if (wait4(pid, &status, 0, &usage) != pid || status != 0)
    throw std::runtime_error(command[0] + " failed:\n" + out);
  return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
}

Run RunAravis(int seconds, bool mayOpenPacketSockets) {
  std::string out;
  Run run;
  run.cpuSeconds = RunChild({"arv-camera-test-0.8", "--auto", "--duration", std::to_string(seconds)},
                            mayOpenPacketSockets, out);
  run.frames = NumberBehind(out, "n_completed_buffers");
  run.lost = NumberBehind(out, "n_failures") + NumberBehind(out, "n_underruns");
  return run;
}

Run RunOwn(const char* receiver, int seconds, bool mayOpenPacketSockets) {
  std::string out;
  Run run;
  run.cpuSeconds = RunChild({"/proc/self/exe", receiver, std::to_string(seconds)}, mayOpenPacketSockets, out);
  run.frames = NumberBehind(out, "frames");
  run.lost = NumberBehind(out, "lost");
  return run;
}

void Report(int frames, int lost) {
  std::printf("frames = %d\nlost = %d\n", frames, lost);
}

// The receivers: programs of their own, so that their processor time is theirs alone.

int ReceiveThroughSdk(int seconds) {
  using namespace ZYNSDK;
  ZynSDKInit();
  ZynCameraArray cameras;
  DiscoveryCameras(&cameras);
  ZynCamera camera;
  if (DiscoveryCamera(kSerial, &camera) != 0 || camera.Open(nullptr) != 0) return 1;
  if (camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0) != 0) return 1;
  ZynImage image;
  int frames = 0;
  int lost = 0;
  for (const auto end = Clock::now() + std::chrono::seconds(seconds); Clock::now() < end;)
    ++(camera.GrabImage(&image, nullptr) == 0 ? frames : lost);
  camera.StopGrab();
  camera.Close();
  ZynSDKUnInit();
  Report(frames, lost);
  return 0;
}

int ReceiveThroughTransport(int seconds) {
  using namespace KELGENICAM;
  Init();
  std::list<ICameraInfo*> found;
  Discovery(nullptr, found);
  ICamera* const camera = CreateCameraBySN(kSerial);
  if (camera == nullptr || camera->Open(1) != RESULT_OK) return 1;
  if (camera->StartGrabbing(GRAB_ONE_BY_ONE, -1) != RESULT_OK) return 1;
  int frames = 0;
  int lost = 0;
  for (const auto end = Clock::now() + std::chrono::seconds(seconds); Clock::now() < end;) {
    IImage* image = nullptr;
    const bool isWhole = camera->Grab(&image, kFrameWaitMs) == RESULT_OK && image->IsValid();
    ++(isWhole ? frames : lost);
    if (image != nullptr) image->Release();
  }
  camera->StopGrabbing();
  camera->Release();
  UnInit();
  Report(frames, lost);
  return 0;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Of the long run, less what the short one cost.
template <class Program>
double Measure(Program program, double& frames, double& lost) {
  const Run shortRun = program(kShortSeconds);
  const Run longRun = program(kLongSeconds);
  frames += shortRun.frames + longRun.frames;
  lost += shortRun.lost + longRun.lost;
  return (longRun.cpuSeconds - shortRun.cpuSeconds) / (longRun.frames - shortRun.frames) * 1e6;
}

/// Prints one line. False when the promise is broken.
bool Compare(const char* name, const char* receiver, bool mayOpenPacketSockets) {
  std::vector<double> own;
  std::vector<double> aravis;
  double frames = 0;
  double lost = 0;
  double aravisFrames = 0;
  double aravisLost = 0;
  for (int round = 0; round < kRounds; ++round) {
    own.push_back(
        Measure([&](int seconds) { return RunOwn(receiver, seconds, mayOpenPacketSockets); }, frames, lost));
    aravis.push_back(Measure([&](int seconds) { return RunAravis(seconds, mayOpenPacketSockets); },
                             aravisFrames, aravisLost));
  }
  const double ratio = Median(own) / Median(aravis);
  std::printf(
      "%-10s %-14s %6.0f us/frame, libaravis %6.0f us/frame, ratio %.2f; lost %.0f of %.0f, libaravis %.0f "
      "of %.0f\n",
      name, mayOpenPacketSockets ? "packet socket" : "plain socket", Median(own), Median(aravis), ratio, lost,
      frames, aravisLost, aravisFrames);
  std::fflush(stdout);
  return ratio <= kMostRatio && lost == 0;
}

int CompareAll(const char* framesPerSecond) {
  const zyntest::ChildProcess camera(
      {ZYN_VIRTUAL_CAMERA, "-m", "ZS-A1600", "-s", kSerial, "--send", "plain"});
  const std::string rate = std::string("AcquisitionFrameRate=") + framesPerSecond;
  for (int attempt = 0; attempt < 50; ++attempt) {
    const auto set = zyntest::RunToEnd(
        {"arv-tool-0.8", "-a", "127.0.0.1", "control", "ExposureTime=1000", kPacketGap, rate});
    if (set.out.find("AcquisitionFrameRate") != std::string::npos) break;
    usleep(100'000);
  }
  bool isKept = true;
  for (const bool mayOpenPacketSockets : {true, false}) {
    isKept = Compare("SDK", "--sdk", mayOpenPacketSockets) && isKept;
    Compare("transport", "--transport", mayOpenPacketSockets);  // without the copy that an image is
  }
  std::printf("promised: at most %.1f, and no frame lost: %s\n", kMostRatio, isKept ? "kept" : "broken");
  return isKept ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) try {
  if (!zyntest::IsPrivateNetwork()) {
    std::fprintf(stderr, "This sends packets. Run it with scripts/in-namespace.sh.\n");
    return 2;
  }
  if (count == 3 && std::strcmp(arguments[1], "--sdk") == 0)
    return ReceiveThroughSdk(std::atoi(arguments[2]));
  if (count == 3 && std::strcmp(arguments[1], "--transport") == 0)
    return ReceiveThroughTransport(std::atoi(arguments[2]));
  return CompareAll(count == 2 ? arguments[1] : "30");
} catch (const std::exception& error) {
  std::fprintf(stderr, "stream_cost: %s\n", error.what());
  return 1;
}
