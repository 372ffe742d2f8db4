/// The settings of the simulated frame grabber card, features of the local device module.
#ifndef ZYN_SIMULATION_CARD_FEATURES_H
#define ZYN_SIMULATION_CARD_FEATURES_H

#include "Card.h"
#include "producer/FeatureTable.h"

namespace zyn::simulation {

/// Thread-safe.
class CardFeatures final : public producer::TableExtension {
 public:
  /// The card outlives its features.
  explicit CardFeatures(Card& card);

 private:
  void AddImage();
  void AddLink();
  void AddStorage();
  void AddTrigger();
  void AddShape(const char* name, std::int64_t CardSettings::*member,
                const producer::FeatureOptions& options);

  Card& card_;
};

}  // namespace zyn::simulation

#endif
