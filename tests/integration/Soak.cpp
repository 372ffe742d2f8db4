/// Rounds of open, stream, close over simulated cameras and cameras on the wire, with faults switched on: lost packets with and
/// without resend, lost, damaged and short frames, registers that do not answer, cameras unplugged in the middle of a stream.
/// Whatever happens, every call returns a code that fits, and nothing grows: threads, file descriptors, memory.
///
///   scripts/in-namespace.sh soak [ROUNDS]     200 rounds by default
///
/// GENICAM_GENTL64_PATH and ZYN_SIMULATOR_CONFIG name the simulated cameras: ctest sets them.
#include <GenApi/GenApi.h>
#include <ZynCamera.h>
#include <malloc.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <stdexcept>
#include <string>

#include "ChildProcess.h"
#include "PrivateNetwork.h"
#include "ProcessUsage.h"

namespace {

using namespace ZYNSDK;
using zyntest::ProcessUsage;

constexpr int kDeviceLost = -6;
constexpr int kKinds = 8;
constexpr int kSearchEvery = 50;
constexpr std::size_t kAllowedGrowthKiB = 2048;

// The address sanitizer holds freed memory back, so what is resident says nothing there; it finds leaks by itself.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kFreedMemoryStays = true;
#elif defined(__has_feature)
constexpr bool kFreedMemoryStays = __has_feature(address_sanitizer);
#else
constexpr bool kFreedMemoryStays = false;
#endif

void Expect(const char* what, long result, std::initializer_list<long> allowed) {
  for (const long one : allowed)
    if (result == one) return;
  throw std::runtime_error(std::string(what) + " returned " + std::to_string(result));
}

class Soak {
 public:
  Soak() {
    ZynSDKInit();
    Search();
    witness_ = Area("WITNESS");
    Expect("opening the witness", witness_.Open(nullptr), {0});
  }
  Soak(const Soak&) = delete;
  Soak& operator=(const Soak&) = delete;
  ~Soak() {
    witness_.Close();
    ZynSDKUnInit();
  }

  void Round(int number) {
    if (number % kSearchEvery == 0) Search();
    switch (number % kKinds) {
      case 0:
      case 4:
        return GrabImages("WIRE-AREA");
      case 1:
        return SimulatedFaults();
      case 2:
      case 6:
        return Scan("WIRE-LASER");
      case 3:
        return Unplug();
      case 5:
        return Contours();
      default:
        return SilentRegisters();
    }
  }

  int Whole() const { return whole_; }
  int Damaged() const { return damaged_; }

 private:
  static void Search() {
    ZynCameraArray areas;
    Expect("DiscoveryCameras", DiscoveryCameras(&areas), {0});
    Zyn3DCameraArray lasers;
    Expect("Discovery3DCameras", Discovery3DCameras(&lasers), {0});
  }
  static ZynCamera Area(const char* serial) {
    ZynCamera camera;
    Expect(serial, DiscoveryCamera(serial, &camera), {0});
    return camera;
  }
  static Zyn3DCamera Laser(const char* serial) {
    Zyn3DCamera camera;
    Expect(serial, Discovery3DCamera(serial, &camera), {0});
    return camera;
  }

  // A feature of the simulator, which acts on the camera with this serial number.
  void Fault(const char* serial, const char* name, const char* value) {
    GenApi::INodeMap* const map = Get2DCameraNodeMap(&witness_, ZYN_XML_INTERFACE);
    GenApi::CValuePtr(map->GetNode("SimCameraSerialNumber"))->FromString(serial);
    GenApi::CValuePtr(map->GetNode(name))->FromString(value);
  }
  void ClearFaults(const char* serial) { Fault(serial, "SimClearFaults", "1"); }

  void Count(const char* what, long result) {
    Expect(what, result, {0, ZYN_ERROR_INVALID_FRAME});
    ++(result == 0 ? whole_ : damaged_);
  }

  void GrabImages(const char* serial) {
    ZynCamera camera = Area(serial);
    Expect("Open", camera.Open(nullptr), {0});
    Expect("StartGrab", camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), {0});
    ZynImage image;
    for (int i = 0; i < 2; ++i) Count("GrabImage", camera.GrabImage(&image, nullptr));
    Expect("StopGrab", camera.StopGrab(), {0});
    Expect("Close", camera.Close(), {0});
  }
  void SimulatedFaults() {
    for (const char* fault : {"SimDropFrames", "SimDamageFrames"}) Fault("SIM-AREA", fault, "1");
    GrabImages("SIM-AREA");
    ClearFaults("SIM-AREA");
  }
  void Scan(const char* serial) {
    Zyn3DCamera camera = Laser(serial);
    Expect("Open", camera.Open(), {0});
    Expect("SetBatchCount", camera.SetBatchCount(100), {0});
    Expect("StartGrab", camera.StartGrab(ZYN_3D_GRAB_BATCH), {0});
    ZynRangeImage range;
    ZynImage intensity;
    Count("GrabBatchData", camera.GrabBatchData(&range, &intensity));
    Expect("StopGrab", camera.StopGrab(), {0});
    Expect("Close", camera.Close(), {0});
  }
  void Contours() {
    for (const char* fault : {"SimDropFrames", "SimDamageFrames", "SimShortenChunks"})
      Fault("SIM-LASER", fault, "1");
    Zyn3DCamera camera = Laser("SIM-LASER");
    Expect("Open", camera.Open(), {0});
    Expect("StartGrab", camera.StartGrab(ZYN_3D_GRAB_CONTOUR), {0});
    Zyn3DIntArray heights;
    ZynImage intensity;
    for (int i = 0; i < 5; ++i) Count("GrabContour", camera.GrabContour(&heights, &intensity));
    Expect("StopGrab", camera.StopGrab(), {0});
    Expect("Close", camera.Close(), {0});
    ClearFaults("SIM-LASER");
  }
  void Unplug() {
    ZynCamera camera = Area("SIM-AREA");
    Expect("Open", camera.Open(nullptr), {0});
    Expect("StartGrab", camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), {0});
    ZynImage image;
    Count("GrabImage", camera.GrabImage(&image, nullptr));
    Fault("SIM-AREA", "SimCameraPlugged", "0");
    long result = 0;
    while (result == 0) result = camera.GrabImage(&image, nullptr);  // what had arrived before is still there
    Expect("GrabImage of an unplugged camera", result, {kDeviceLost});
    camera.StopGrab();
    camera.Close();
    Fault("SIM-AREA", "SimCameraPlugged", "1");
    Search();
  }
  void SilentRegisters() {
    ZynCamera camera = Area("SIM-AREA");
    Expect("Open", camera.Open(nullptr), {0});
    Fault("SIM-AREA", "SimRegisterFault", "NoAnswer");
    Fault("SIM-AREA", "SimRegisterFaultCount", "1");
    ZynNode node;
    Expect("GetRemoteNode", camera.GetRemoteNode("Width", &node), {0});
    if (node.SetInt(320) == 0) throw std::runtime_error("a register that does not answer was written");
    Expect("SetInt", node.SetInt(320), {0});
    Expect("Close", camera.Close(), {0});
    ClearFaults("SIM-AREA");
  }

  ZynCamera witness_;
  int whole_ = 0;
  int damaged_ = 0;
};

ProcessUsage UsageNow(std::size_t threads) {
  malloc_trim(0);
  return zyntest::UsageAtRest(threads);
}

void Print(int round, const ProcessUsage& usage) {
  std::printf("round %5d: %zu threads, %zu file descriptors, %zu KiB resident\n", round, usage.threads,
              usage.fileDescriptors, usage.residentKiB);
  std::fflush(stdout);
}

bool Grew(const ProcessUsage& before, const ProcessUsage& after) {
  const bool hasGrown = !kFreedMemoryStays && after.residentKiB > before.residentKiB + kAllowedGrowthKiB;
  return after.threads != before.threads || after.fileDescriptors != before.fileDescriptors || hasGrown;
}

int Run(int rounds) {
  zyntest::ChildProcess wire({ZYN_VIRTUAL_CAMERA, "-c", ZYN_SOAK_WIRE}, zyntest::ChildProcess::WithOutput{});
  if (wire.NextLine() != "2 on the wire") throw std::runtime_error("no cameras on the wire");
  Soak soak;
  const int warmUp = rounds / 5;
  for (int round = 0; round < warmUp; ++round) soak.Round(round);
  const ProcessUsage before = UsageNow(0);
  Print(warmUp, before);
  for (int round = warmUp; round < rounds; ++round) {
    soak.Round(round);
    if (round % (rounds / 10) == 0) Print(round, UsageNow(before.threads));
  }
  const ProcessUsage after = UsageNow(before.threads);
  Print(rounds, after);
  std::printf("%d frames whole, %d damaged\n", soak.Whole(), soak.Damaged());
  if (soak.Whole() == 0 || soak.Damaged() == 0) throw std::runtime_error("the faults did not work");
  if (Grew(before, after)) throw std::runtime_error("something has grown");
  return wire.End(SIGTERM);
}

}  // namespace

int main(int count, char** arguments) try {
  if (!zyntest::IsPrivateNetwork()) {
    std::fprintf(stderr, "This sends packets. Run it with scripts/in-namespace.sh.\n");
    return 2;
  }
  const int rounds = count == 2 ? std::atoi(arguments[1]) : 200;
  if (rounds < 2 * kKinds) throw std::runtime_error("there must be a few rounds");
  return Run(rounds);
} catch (const std::exception& error) {
  std::fprintf(stderr, "soak: %s\n", error.what());
  return 1;
} catch (const GenICam::GenericException& error) {
  std::fprintf(stderr, "soak: %s\n", error.what());
  return 1;
}
