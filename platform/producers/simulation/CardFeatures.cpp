#include "CardFeatures.h"

#include "producer/Error.h"

namespace zyn::simulation {
namespace {

constexpr std::int64_t kLargest = 8192;
constexpr std::int64_t kMostTaps = 10;
constexpr double kHighestGain = 16;

producer::FeatureOptions Options(const char* toolTip) {
  producer::FeatureOptions options;
  options.toolTip = toolTip;
  options.custom = true;
  return options;
}

producer::FeatureOptions Range(const char* toolTip, std::int64_t minimum, std::int64_t maximum) {
  producer::FeatureOptions options = Options(toolTip);
  options.minimum = minimum;
  options.maximum = [maximum] { return maximum; };
  return options;
}

}  // namespace

CardFeatures::CardFeatures(Card& card) : TableExtension("DevicePort"), card_(card) {
  Table().Category("CardControl");
  AddImage();
  AddLink();
  AddStorage();
  Table().Category("CardTriggerControl");
  AddTrigger();
}

void CardFeatures::AddShape(const char* name, std::int64_t CardSettings::*member,
                            const producer::FeatureOptions& options) {
  Table().Integer(
      name, [this, member] { return card_.Settings().*member; },
      [this, member](std::int64_t value) { card_.SetShape(member, value); }, options);
}

void CardFeatures::AddImage() {
  AddShape("Width", &CardSettings::width, Range("Pixels of each line that the card takes", 1, kLargest));
  AddShape("Height", &CardSettings::height, Range("Lines of each frame that the card takes", 1, kLargest));
  AddShape("OffsetX", &CardSettings::offsetX, Range("The first pixel that the card takes", 0, kLargest));
  AddShape("OffsetY", &CardSettings::offsetY, Range("The first line that the card takes", 0, kLargest));
  Table().Enumeration(
      "PixelFormat",
      {{"Mono8", cameras::kMono8},
       {"Mono10", cameras::kMono10},
       {"Mono12", cameras::kMono12},
       {"Mono16", cameras::kMono16},
       {"BayerRG8", cameras::kBayerRG8},
       {"RGB8", cameras::kRGB8},
       {"BGR8", cameras::kBGR8}},
      [this] { return card_.Settings().pixelFormat; },
      [this](std::int64_t format) { card_.SetShape(&CardSettings::pixelFormat, format); },
      Options("What the card takes the samples for: how many bits they have, and how many make a pixel"));
}

void CardFeatures::AddLink() {
  const auto value = [](ClConfiguration configuration) { return static_cast<std::int64_t>(configuration); };
  Table().Enumeration(
      "ClConfiguration",
      {{"Base", value(ClConfiguration::base)},
       {"Medium", value(ClConfiguration::medium)},
       {"Full", value(ClConfiguration::full)},
       {"EightyBit", value(ClConfiguration::eightyBit)}},
      [this] { return card_.Settings().configuration; },
      [this](std::int64_t configuration) { card_.SetShape(&CardSettings::configuration, configuration); },
      Options("Cables and channels in use: 24, 48, 64 or 80 bits at a time"));
  AddShape("TapCount", &CardSettings::taps, Range("Pixels that come at a time", 1, kMostTaps));
}

void CardFeatures::AddStorage() {
  Table().Boolean(
      "ReverseX", [this] { return card_.Settings().reverseX; },
      [this](bool reverse) { card_.Set(&CardSettings::reverseX, reverse); },
      Options("Lines are stored from right to left"));
  Table().Float(
      "DigitalGain", [this] { return card_.Settings().gain; },
      [this](double gain) {
        if (!(gain >= 0 && gain <= kHighestGain))
          throw producer::Error(GenTL::GC_ERR_INVALID_VALUE, "The card's gain lies between 0 and 16.");
        card_.Set(&CardSettings::gain, gain);
      },
      Options("Every sample is multiplied by it, 0 to 16"));
  Table().Text(
      "CardName", [this] { return card_.Settings().name; },
      [this](const std::string& name) { card_.Set(&CardSettings::name, name); }, Options("For people"));
}

void CardFeatures::AddTrigger() {
  Table().Enumeration(
      "TriggerMode", {{"Off", 0}, {"On", 1}}, [this] { return card_.Settings().isTriggered ? 1 : 0; },
      [this](std::int64_t mode) { card_.Set(&CardSettings::isTriggered, mode != 0); },
      Options("On: frames pass by but for the next one after each trigger"));
  const auto value = [](CardTriggerSource source) { return static_cast<std::int64_t>(source); };
  Table().Enumeration(
      "TriggerSource",
      {{"Software", value(CardTriggerSource::software)},
       {"Line0", value(CardTriggerSource::line0)},
       {"Line1", value(CardTriggerSource::line1)}},
      [this] { return card_.Settings().triggerSource; },
      [this](std::int64_t source) { card_.Set(&CardSettings::triggerSource, source); },
      Options("Where the card's triggers come from"));
  Table().Command(
      "TriggerSoftware", [this] { card_.Trigger(CardTriggerSource::software); },
      Options("Triggers the card, where the source is Software"));
}

}  // namespace zyn::simulation
