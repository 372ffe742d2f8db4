#include "SimulatorFeatures.h"

#include <cmath>
#include <limits>
#include <utility>

#include "producer/Error.h"

namespace zyn::simulation {
namespace {

using cameras::RegisterStatus;
using producer::Error;
using producer::FeatureOptions;
using producer::FeatureTable;

constexpr std::int64_t kMostFrames = 1'000'000'000;
constexpr double kLongestDelayUs = 60'000'000;
constexpr double kNsPerUs = 1000;
constexpr std::int64_t kLines = 2;
constexpr std::int64_t kMostSteps = 1'000'000;

FeatureOptions UpTo(FeatureOptions options, std::int64_t maximum) {
  options.maximum = [maximum] { return maximum; };
  return options;
}

const FeatureTable::Entries& FaultEntries() {
  static const FeatureTable::Entries entries = {
      {"NoAnswer", static_cast<std::int64_t>(RegisterStatus::noAnswer)},
      {"AccessDenied", static_cast<std::int64_t>(RegisterStatus::accessDenied)},
      {"Busy", static_cast<std::int64_t>(RegisterStatus::busy)},
      {"OutOfRange", static_cast<std::int64_t>(RegisterStatus::outOfRange)},
      {"Unmapped", static_cast<std::int64_t>(RegisterStatus::unmapped)}};
  return entries;
}

}  // namespace

SimulatorFeatures::SimulatorFeatures(std::vector<CameraSlot*> slots)
    : TableExtension("InterfacePort"), slots_(std::move(slots)) {
  fault_.kind = static_cast<std::int64_t>(RegisterStatus::noAnswer);
  fault_.last = std::numeric_limits<std::int64_t>::max();
  Table().Category("SimulatedCameraControl");
  AddSelector();
  AddCable();
  AddStream();
  Table().Category("SimulatedFaultControl");
  AddFrameFaults();
  AddRegisterFaults();
  Table().Category("SimulatedInputControl");
  AddInputs();
}

FeatureOptions SimulatorFeatures::Options(const std::string& toolTip) const {
  FeatureOptions options;
  options.toolTip = toolTip;
  options.selectedBy = "SimCameraSelector";
  options.availableIf = "SimHasCameras";
  options.custom = true;
  return options;
}

CameraSlot& SimulatorFeatures::Selected() const {
  const MutexLock lock(mutex_);
  if (slots_.empty()) throw Error(GenTL::GC_ERR_NOT_AVAILABLE, "There are no simulated cameras here.");
  return *slots_[selected_];
}

void SimulatorFeatures::Select(const std::string& serial) {
  const MutexLock lock(mutex_);
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    if (slots_[i]->Serial() != serial) continue;
    selected_ = i;
    return;
  }
  throw Error(GenTL::GC_ERR_INVALID_VALUE, "There is no simulated camera \"" + serial + "\" here.");
}

void SimulatorFeatures::AddSelector() {
  Table().Condition("SimHasCameras", [this] { return !slots_.empty(); });
  FeatureOptions selector = Options("Which camera the other features act on, plugged or not");
  selector.selectedBy.clear();
  selector.maximum = [this] { return static_cast<std::int64_t>(slots_.empty() ? 0 : slots_.size() - 1); };
  Table().Integer(
      "SimCameraSelector",
      [this] {
        const MutexLock lock(mutex_);
        return static_cast<std::int64_t>(selected_);
      },
      [this](std::int64_t index) {
        const MutexLock lock(mutex_);
        selected_ = static_cast<std::size_t>(index);
      },
      selector);
  Table().Text(
      "SimCameraSerialNumber", [this] { return Selected().Serial(); },
      [this](const std::string& serial) { Select(serial); },
      Options("Serial number of the selected camera; writing one selects its camera"));
  Table().Text(
      "SimCameraModelName", [this] { return Selected().ModelName(); }, nullptr,
      Options("Model of the selected camera"));
}

void SimulatorFeatures::AddCable() {
  Table().Boolean(
      "SimCameraPlugged", [this] { return Selected().IsPlugged(); },
      [this](bool isPlugged) { Selected().SetPlugged(isPlugged); },
      Options("False: the camera is gone, and whoever has it open loses it. True again: as after power-up"));
  Table().Boolean(
      "SimCameraBusy", [this] { return Selected().IsBusy(); },
      [this](bool isBusy) { Selected().SetBusy(isBusy); },
      Options("True: another program took over the control; opening is refused"));
}

void SimulatorFeatures::AddStream() {
  Table().Enumeration(
      "SimStreamPacing",
      {{"Camera", static_cast<std::int64_t>(Pacing::camera)},
       {"Reader", static_cast<std::int64_t>(Pacing::reader)}},
      [this] { return static_cast<std::int64_t>(Selected().Clock().GetPacing()); },
      [this](std::int64_t pacing) { Selected().SetPacing(static_cast<Pacing>(pacing)); },
      Options(
          "Camera: frames come at the camera's rate and are lost when no buffer waits. Reader: frames come "
          "as fast as they are read, and none is lost"));
  Table().Enumeration(
      "SimChunkPayloadType", {{"Image", 0}, {"ChunkData", 1}},
      [this] { return Selected().MarksChunkPayload() ? 1 : 0; },
      [this](std::int64_t type) { Selected().SetMarksChunkPayload(type != 0); },
      Options("How frames with chunks are marked: as images that have chunks, or as chunk data, which older "
              "producers do"));
}

void SimulatorFeatures::AddFrameFaults() {
  using cameras::Faults;
  const auto count = [this](const char* name, std::uint64_t (Faults::*get)() const,
                            void (Faults::*set)(std::uint64_t), const char* toolTip) {
    Table().Integer(
        name, [this, get] { return static_cast<std::int64_t>((SelectedFaults().*get)()); },
        [this, set](std::int64_t frames) { (SelectedFaults().*set)(static_cast<std::uint64_t>(frames)); },
        UpTo(Options(toolTip), kMostFrames));
  };
  count("SimDropFrames", &Faults::FramesToDrop, &Faults::DropFrames,
        "So many of the next frames get lost; reading tells how many are left");
  count("SimDamageFrames", &Faults::FramesToDamage, &Faults::DamageFrames,
        "So many of the next frames arrive without their second half, marked as incomplete");
  count("SimShortenChunks", &Faults::ChunksToShorten, &Faults::ShortenChunks,
        "In so many of the next frames the first chunk behind the image lacks its last record");
  FeatureOptions delay = Options("By how much frames come too late");
  delay.unit = "us";
  Table().Float(
      "SimFrameDelay", [this] { return static_cast<double>(SelectedFaults().FrameDelayNs()) / kNsPerUs; },
      [this](double us) {
        if (!(us >= 0 && us <= kLongestDelayUs))
          throw Error(GenTL::GC_ERR_INVALID_VALUE, "A delay lasts from 0 to 60 seconds.");
        SelectedFaults().DelayFrames(std::llround(us * kNsPerUs));
      },
      delay);
  Table().Command(
      "SimNewScan", [this] { SelectedFaults().BeginNewScan(); },
      Options("A laser camera in batch mode breaks its scan off: the next batch has a new identifier"));
}

void SimulatorFeatures::ArmRegisterFault(std::int64_t count) {
  RegisterFault fault;
  {
    const MutexLock lock(mutex_);
    fault_.count = count;
    fault = fault_;
  }
  SelectedFaults().FailRegisters(
      static_cast<std::uint64_t>(fault.first), static_cast<std::uint64_t>(fault.last),
      static_cast<std::uint64_t>(fault.count), static_cast<RegisterStatus>(fault.kind));
}

void SimulatorFeatures::AddRegisterFaults() {
  const auto field = [this](std::int64_t RegisterFault::*member) {
    return std::pair(
        [this, member] {
          const MutexLock lock(mutex_);
          return fault_.*member;
        },
        [this, member](std::int64_t value) {
          const MutexLock lock(mutex_);
          fault_.*member = value;
        });
  };
  const auto [kind, setKind] = field(&RegisterFault::kind);
  Table().Enumeration("SimRegisterFault", FaultEntries(), kind, setKind,
                      Options("How the accesses fail that SimRegisterFaultCount counts"));
  constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
  const auto [first, setFirst] = field(&RegisterFault::first);
  Table().Integer("SimRegisterFaultFirst", first, setFirst,
                  UpTo(Options("The lowest address at which accesses fail"), kHighest));
  const auto [last, setLast] = field(&RegisterFault::last);
  Table().Integer("SimRegisterFaultLast", last, setLast,
                  UpTo(Options("The highest address at which accesses fail"), kHighest));
  const auto [count, unused] = field(&RegisterFault::count);
  static_cast<void>(unused);
  Table().Integer(
      "SimRegisterFaultCount", count, [this](std::int64_t accesses) { ArmRegisterFault(accesses); },
      UpTo(Options("So many of the next accesses to the camera's registers fail; writing it arms the fault"),
           kMostFrames));
  Table().Command(
      "SimClearFaults", [this] { SelectedFaults().Clear(); },
      Options("Ends all faults of frames and registers"));
}

void SimulatorFeatures::AddInputs() {
  Table().Integer(
      "SimInputLine",
      [this] {
        const MutexLock lock(mutex_);
        return line_;
      },
      [this](std::int64_t line) {
        const MutexLock lock(mutex_);
        line_ = line;
      },
      UpTo(Options("Number of the camera's input line that SimPulseInputLine acts on"), kLines - 1));
  Table().Command(
      "SimPulseInputLine",
      [this] {
        std::int64_t line = 0;
        {
          const MutexLock lock(mutex_);
          line = line_;
        }
        Selected().PulseLine(static_cast<unsigned>(line));
      },
      Options("Sends a pulse to the input line, of the camera and of the card before it"));
  Table().Integer(
      "SimTurnEncoder", [] { return std::int64_t{0}; },
      [this](std::int64_t steps) { Selected().Camera().TurnEncoder(static_cast<std::uint32_t>(steps)); },
      UpTo(Options("Writing a number turns the camera's encoder by so many steps"), kMostSteps));
}

}  // namespace zyn::simulation
