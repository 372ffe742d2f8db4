/// Stored settings: Default as delivered, and two of the user's.
#ifndef ZYN_CAMERAS_USER_SETS_H
#define ZYN_CAMERAS_USER_SETS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "cameras/registers/FeatureTable.h"

namespace zyn::cameras {

/// `Settings` is a plain struct; `current` must outlive this. The stored sets live as long as the camera, also across
/// a DeviceReset.
template <class Settings>
class UserSets {
 public:
  explicit UserSets(Settings& current) : current_(current) { stored_.fill(current); }

  void AddFeatures(FeatureTable& features) {
    using Actions = std::vector<std::function<RegisterStatus()>>;
    features.Category("UserSetControl", "Stores all settings in the camera, and brings them back.");
    features.Selector("UserSetSelector", "The set that is loaded or saved.",
                      {"Default", "UserSet0", "UserSet1"});
    Actions load;
    Actions save;
    for (std::size_t i = 0; i < kSets; ++i) {
      load.push_back([this, i] { return Load(i); });
      save.push_back([this, i] { return Save(i); });
    }
    features.Command("UserSetLoad", "Takes all settings from the selected set.", load)
        .SelectedBy("UserSetSelector")
        .Locked();
    features
        .Command("UserSetSave", "Stores all settings in the selected set. Default cannot be changed.", save)
        .SelectedBy("UserSetSelector");
    features
        .Enum("UserSetDefault", "The set that is loaded when the camera starts.",
              {{"Default", 0}, {"UserSet0", 1}, {"UserSet1", 2}}, {&atPowerUp_})
        .NotStored();
  }

  void LoadAtPowerUp() { current_ = stored_[static_cast<std::size_t>(atPowerUp_)]; }

 private:
  static constexpr std::size_t kSets = 3;

  RegisterStatus Load(std::size_t index) {
    current_ = stored_[index];
    return RegisterStatus::ok;
  }

  RegisterStatus Save(std::size_t index) {
    if (index == 0) return RegisterStatus::accessDenied;
    stored_[index] = current_;
    return RegisterStatus::ok;
  }

  Settings& current_;
  std::array<Settings, kSets> stored_;
  std::int64_t atPowerUp_ = 0;
};

}  // namespace zyn::cameras

#endif
