#include "Configuration.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

namespace zyn::simulation {
namespace {

using nlohmann::json;

constexpr const char* kVariable = "ZYN_SIMULATOR_CONFIG";
constexpr std::size_t kMostCameras = 10000;
constexpr std::size_t kLongestText = 15;  // the fields of GigE Vision take 16 bytes with the final zero
constexpr std::size_t kMostBytes = std::size_t{16} << 20U;

[[noreturn]] void Fail(const std::string& where, const std::string& what) {
  throw ConfigurationError(where + ": " + what);
}

std::string Quoted(const std::string& text) {
  return "\"" + text + "\"";
}

std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text.append(text.empty() ? "" : ", ").append(name);
  return text;
}

// Misspelled keys would silently do nothing.
void RequireKnownKeys(const json& object, const std::vector<std::string>& known, const std::string& where) {
  for (const auto& [key, value] : object.items()) {
    if (std::find(known.begin(), known.end(), key) == known.end())
      Fail(where, "there is no setting " + Quoted(key) + "; the settings are " + Listed(known));
  }
}

std::string Text(const json& value, const std::string& where) {
  if (!value.is_string()) Fail(where, "a text is expected");
  return value.get<std::string>();
}

bool Truth(const json& value, const std::string& where) {
  if (!value.is_boolean()) Fail(where, "true or false is expected");
  return value.get<bool>();
}

std::string Serial(const json& value, const std::string& where) {
  std::string serial = Text(value, where);
  const auto isAllowed = [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' ||
           c == '_' || c == '.';
  };
  if (serial.empty() || serial.size() > kLongestText ||
      !std::all_of(serial.begin(), serial.end(), isAllowed)) {
    Fail(where, Quoted(serial) + " is no serial number: 1 to " + std::to_string(kLongestText) +
                    " letters, digits, \"-\", \"_\" or \".\"");
  }
  return serial;
}

std::string UserName(const json& value, const std::string& where) {
  std::string name = Text(value, where);
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  if (name.size() > kLongestText || std::any_of(name.begin(), name.end(), isControl))
    Fail(where, "at most " + std::to_string(kLongestText) + " bytes without control characters are taken");
  return name;
}

template <class Value>
Value OneOf(const json& value, const std::string& where,
            const std::vector<std::pair<std::string, Value>>& choices) {
  const std::string text = Text(value, where);
  std::vector<std::string> names;
  for (const auto& [name, meaning] : choices) {
    if (name == text) return meaning;
    names.push_back(name);
  }
  Fail(where, Quoted(text) + " is none of " + Listed(names));
}

std::size_t Count(const json& value, const std::string& where) {
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() < 1 ||
      value.get<std::uint64_t>() > kMostCameras)
    Fail(where, "a number from 1 to " + std::to_string(kMostCameras) + " is expected");
  return value.get<std::size_t>();
}

// "SIM0001" and on.
std::string AutomaticSerial(std::size_t number) {
  char text[32];
  std::snprintf(text, sizeof text, "SIM%04zu", number);
  return text;
}

/// Reads the list of cameras.
class CameraList {
 public:
  explicit CameraList(const std::vector<ModelEntry>& models) : models_(models) {}

  void Add(const json& entry, const std::string& where) {
    if (!entry.is_object()) Fail(where, "an object is expected");
    RequireKnownKeys(
        entry, {"model", "serialNumber", "userDefinedName", "link", "pacing", "plugged", "busy", "count"},
        where);
    if (!entry.contains("model")) Fail(where, "\"model\" is missing");
    const CameraSetting setting = Setting(entry, where);
    const std::size_t count = entry.contains("count") ? Count(entry["count"], where + ".count") : 1;
    if (count > 1 && !setting.serial.empty())
      Fail(where, "\"serialNumber\" and \"count\" exclude each other");
    if (count > kMostCameras - cameras_.size())
      Fail(where, "more than " + std::to_string(kMostCameras) + " cameras");
    cameras_.insert(cameras_.end(), count, setting);
  }

  // Cameras without a serial number get one when all that were given are known.
  std::vector<CameraSetting> Finish() {
    std::size_t number = 0;
    for (CameraSetting& camera : cameras_) {
      while (camera.serial.empty()) {
        const std::string serial = AutomaticSerial(++number);
        if (serials_.insert(serial).second) camera.serial = serial;
      }
    }
    return std::move(cameras_);
  }

 private:
  CameraSetting Setting(const json& entry, const std::string& where) {
    CameraSetting setting;
    setting.model = Model(entry["model"], where + ".model");
    const bool isCameraLink = FindModel(setting.model)->isCameraLink;
    if (isCameraLink) setting.link = LinkKind::cameraLink;
    for (const auto& [key, value] : entry.items()) {
      std::string at = where;
      at.append(".").append(key);
      if (key == "serialNumber") setting.serial = NewSerial(value, at);
      if (key == "userDefinedName") setting.userName = UserName(value, at);
      if (key == "link") {
        setting.link = OneOf<LinkKind>(
            value, at, {{"Ethernet", LinkKind::ethernet}, {"CameraLink", LinkKind::cameraLink}});
        if (isCameraLink && setting.link == LinkKind::ethernet)
          Fail(at, "the model " + Quoted(setting.model) + " has a Camera Link connector only");
      }
      if (key == "pacing")
        setting.pacing = OneOf<Pacing>(value, at, {{"camera", Pacing::camera}, {"reader", Pacing::reader}});
      if (key == "plugged") setting.isPlugged = Truth(value, at);
      if (key == "busy") setting.isBusy = Truth(value, at);
    }
    return setting;
  }

  const ModelEntry* FindModel(const std::string& name) const {
    const auto found = std::find_if(models_.begin(), models_.end(),
                                    [&name](const ModelEntry& model) { return model.name == name; });
    return found == models_.end() ? nullptr : &*found;
  }

  std::string Model(const json& value, const std::string& where) const {
    std::string model = Text(value, where);
    if (FindModel(model) == nullptr) {
      std::vector<std::string> names;
      for (const ModelEntry& known : models_) names.push_back(known.name);
      Fail(where, "there is no model " + Quoted(model) + "; the models are " + Listed(names));
    }
    return model;
  }

  std::string NewSerial(const json& value, const std::string& where) {
    std::string serial = Serial(value, where);
    if (!serials_.insert(serial).second)
      Fail(where, "the serial number " + Quoted(serial) + " is there twice");
    return serial;
  }

  const std::vector<ModelEntry>& models_;
  std::vector<CameraSetting> cameras_;
  std::set<std::string> serials_;
};

// nlohmann begins its messages with a number of its own in brackets.
std::string Readable(const std::string& message) {
  const std::size_t end = message.find("] ");
  return end == std::string::npos ? message : message.substr(end + 2);
}

json Parse(const std::string& text) {
  try {
    return json::parse(text, nullptr, true, true);  // comments are welcome
  } catch (const json::exception& error) {
    throw ConfigurationError("no JSON text: " + Readable(error.what()));
  }
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) Fail(path, "the file cannot be opened");
  std::string text(kMostBytes + 1, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (file.bad()) Fail(path, "the file cannot be read");
  text.resize(static_cast<std::size_t>(file.gcount()));
  if (text.size() > kMostBytes) Fail(path, "the file is too large");
  return text;
}

}  // namespace

Configuration ParseConfiguration(const std::string& text, const std::vector<ModelEntry>& models) {
  const json root = Parse(text);
  if (!root.is_object()) Fail("the text", "an object is expected");
  RequireKnownKeys(root, {"cameras"}, "the text");
  if (!root.contains("cameras")) Fail("the text", "\"cameras\" is missing");
  const json& list = root["cameras"];
  if (!list.is_array()) Fail("cameras", "a list is expected");
  CameraList cameras(models);
  for (std::size_t i = 0; i < list.size(); ++i) cameras.Add(list[i], "cameras[" + std::to_string(i) + "]");
  return {cameras.Finish()};
}

Configuration DefaultConfiguration(const std::vector<ModelEntry>& models) {
  CameraList cameras(models);
  for (const ModelEntry& model : models) cameras.Add({{"model", model.name}}, model.name);
  return {cameras.Finish()};
}

Configuration LoadConfiguration(const std::vector<ModelEntry>& models) {
  const char* const path = std::getenv(kVariable);  // NOLINT(concurrency-mt-unsafe): read, never written here
  if (path == nullptr || *path == '\0') return DefaultConfiguration(models);
  const std::string text = ReadFile(path);
  try {
    return ParseConfiguration(text, models);
  } catch (const ConfigurationError& error) {
    throw ConfigurationError(std::string(path) + ": " + error.what());
  }
}

}  // namespace zyn::simulation
