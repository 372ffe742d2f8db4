#include "cameras/acquisition/Triggers.h"

namespace zyn::cameras {

namespace {

constexpr std::int64_t kSoftware = 0;
constexpr std::int64_t kFirstLine = 1;
constexpr std::int64_t kEncoder = 3;
constexpr std::int64_t kRisingEdge = 0;

}  // namespace

void Triggers::AddFeatures(FeatureTable& features) {
  auto& s = settings_;
  std::vector<Choice> sources = {{"Software", kSoftware}, {"Line0", kFirstLine}, {"Line1", kFirstLine + 1}};
  if (names_.hasEncoder) sources.push_back({"Encoder0", kEncoder});

  features.Selector("TriggerSelector", names_.tip, {names_.names[0], names_.names[1]});
  features.Enum("TriggerMode", "On: waits for a trigger.", {{"Off", 0}, {"On", 1}}, {&s.mode[0], &s.mode[1]})
      .SelectedBy("TriggerSelector")
      .Locked();
  features.Enum("TriggerSource", "Where the trigger comes from.", sources, {&s.source[0], &s.source[1]})
      .SelectedBy("TriggerSelector");
  features
      .Enum("TriggerActivation", "The edge of a line that triggers.",
            {{"RisingEdge", kRisingEdge}, {"FallingEdge", 1}}, {&s.activation[0], &s.activation[1]})
      .SelectedBy("TriggerSelector");
  features
      .Command("TriggerSoftware", "Triggers, where the source is Software.",
               {[this] { return Software(0); }, [this] { return Software(1); }})
      .SelectedBy("TriggerSelector");
  if (!names_.hasEncoder) return;
  features.Int("EncoderDivider", "Steps of the encoder from one trigger to the next.", {&s.encoderDivider})
      .Range(1, 10'000)
      .Expert();
}

bool Triggers::IsOn(TriggerRole role) const {
  for (std::size_t i = 0; i < names_.roles.size(); ++i) {
    if (names_.roles[i] == role && settings_.mode[i] != 0) return true;
  }
  return false;
}

RegisterStatus Triggers::Software(std::size_t trigger) {
  if (settings_.source[trigger] == kSoftware) Fire(trigger, 1);
  return RegisterStatus::ok;
}

void Triggers::OnEdge(unsigned line, bool isRising) {
  for (std::size_t i = 0; i < names_.roles.size(); ++i) {
    const bool isSource = settings_.source[i] == kFirstLine + static_cast<std::int64_t>(line);
    const bool isEdge = (settings_.activation[i] == kRisingEdge) == isRising;
    if (isSource && isEdge) Fire(i, 1);
  }
}

void Triggers::TurnEncoder(std::uint32_t steps) {
  if (!names_.hasEncoder) return;
  const auto divider = static_cast<std::uint64_t>(settings_.encoderDivider);
  encoderSteps_ += steps;
  const std::uint64_t count = encoderSteps_ / divider;
  encoderSteps_ %= divider;
  if (count == 0) return;
  for (std::size_t i = 0; i < names_.roles.size(); ++i) {
    if (settings_.source[i] == kEncoder) Fire(i, count);
  }
}

void Triggers::Fire(std::size_t trigger, std::uint64_t count) {
  if (settings_.mode[trigger] == 0) return;
  if (names_.roles[trigger] == TriggerRole::series) {
    pacer_.TriggerSeries(clock_.NowNs());
  } else {
    pacer_.TriggerUnits(clock_.NowNs(), count);
  }
}

}  // namespace zyn::cameras
