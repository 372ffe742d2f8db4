/// Which cameras are simulated: read from a JSON file, see docs/simulated-cameras.md.
#ifndef ZYN_SIMULATION_CONFIGURATION_H
#define ZYN_SIMULATION_CONFIGURATION_H

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zyn::simulation {

/// Who decides when frames come.
enum class Pacing : std::int32_t {
  camera = 0,  ///< the camera's rate; frames for which no buffer waits are lost, as with a real one
  reader = 1,  ///< as fast as frames are read: the camera's time runs on at once, and no frame is lost
};

/// What the simulated cameras hang on.
enum class LinkKind { ethernet, cameraLink };

/// A model that a camera may have.
struct ModelEntry {
  std::string name;
  bool isCameraLink = false;  ///< it hangs on a frame grabber, and on nothing else
};

/// One camera.
struct CameraSetting {
  std::string model;
  std::string serial;  ///< unique among all
  std::string userName;
  LinkKind link = LinkKind::ethernet;
  Pacing pacing = Pacing::camera;
  bool isPlugged = true;
  bool isBusy = false;
};

struct Configuration {
  std::vector<CameraSetting> cameras;
};

/// What is wrong with a configuration, for people to read.
class ConfigurationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads a configuration. models: those that a camera may have. Throws ConfigurationError.
Configuration ParseConfiguration(const std::string& json, const std::vector<ModelEntry>& models);

/// One camera of each model.
Configuration DefaultConfiguration(const std::vector<ModelEntry>& models);

/// The configuration in the file that the environment variable ZYN_SIMULATOR_CONFIG names; the default one when
/// it is not set or empty. Throws ConfigurationError, whose text begins with the file's name.
Configuration LoadConfiguration(const std::vector<ModelEntry>& models);

}  // namespace zyn::simulation

#endif
