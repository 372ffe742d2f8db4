#include "GrabberFeatures.h"

#include <cmath>
#include <utility>

#include "producer/Error.h"

namespace zyn::simulation {
namespace {

constexpr std::int64_t kLargest = 65536;
constexpr std::int64_t kMostTaps = 10;
constexpr double kLongestDelayUs = 1'000'000;

producer::FeatureOptions Options(const char* toolTip, std::int64_t maximum = 0) {
  producer::FeatureOptions options;
  options.toolTip = toolTip;
  options.custom = true;
  if (maximum > 0) options.maximum = [maximum] { return maximum; };
  return options;
}

}  // namespace

template <class Value>
auto GrabberFeatures::Getter(Value GrabberFeatures::*member) {
  return [this, member] {
    const MutexLock lock(mutex_);
    return this->*member;
  };
}

template <class Value>
auto GrabberFeatures::Setter(Value GrabberFeatures::*member) {
  return [this, member](Value value) {
    const MutexLock lock(mutex_);
    this->*member = std::move(value);
  };
}

GrabberFeatures::GrabberFeatures() : TableExtension("DevicePort") {
  producer::FeatureTable& table = Table();
  table.Category("GrabberControl");
  table.Integer("GrabberWidth", Getter(&GrabberFeatures::width_), Setter(&GrabberFeatures::width_),
                Options("Pixels per line that the card expects", kLargest));
  table.Integer("GrabberHeight", Getter(&GrabberFeatures::height_), Setter(&GrabberFeatures::height_),
                Options("Lines per frame that the card expects", kLargest));
  table.Enumeration("GrabberClConfiguration", {{"Base", 0}, {"Medium", 1}, {"Full", 2}, {"EightyBit", 3}},
                    Getter(&GrabberFeatures::configuration_), Setter(&GrabberFeatures::configuration_),
                    Options("Cables and channels in use"));
  table.Integer("GrabberTaps", Getter(&GrabberFeatures::taps_), Setter(&GrabberFeatures::taps_),
                Options("Pixels per clock", kMostTaps));
  table.Boolean("GrabberExternalTrigger", Getter(&GrabberFeatures::usesExternalTrigger_),
                Setter(&GrabberFeatures::usesExternalTrigger_), Options("The card triggers the camera"));
  producer::FeatureOptions delay = Options("From the trigger to the start of the exposure");
  delay.unit = "us";
  const auto setDelay = Setter(&GrabberFeatures::triggerDelayUs_);
  table.Float(
      "GrabberTriggerDelay", Getter(&GrabberFeatures::triggerDelayUs_),
      [setDelay](double us) {
        if (!(us >= 0 && us <= kLongestDelayUs))
          throw producer::Error(GenTL::GC_ERR_INVALID_VALUE, "A trigger delay lasts from 0 to 1 second.");
        setDelay(us);
      },
      delay);
  const auto setName = Setter(&GrabberFeatures::boardName_);
  table.Text(
      "GrabberBoardName", Getter(&GrabberFeatures::boardName_),
      [setName](const std::string& name) { setName(name); }, Options("For people"));
}

}  // namespace zyn::simulation
