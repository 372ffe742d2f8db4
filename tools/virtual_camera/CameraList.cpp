#include "CameraList.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <string_view>

#include "cameras/Catalog.h"

namespace virtualcamera {
namespace {

using nlohmann::json;
using zyn::gige::Ipv4;

constexpr std::size_t kLongestName = 15;  // the fields on the wire take 16 bytes with the final zero
constexpr unsigned kMostPerThousand = 1000;
constexpr int kLongestDelayMs = 60'000;

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what);
}

long long Number(const json& value, const std::string& key, long long low, long long high) {
  if (!value.is_number_integer() || value < low || value > high)
    Fail(key + ": a number from " + std::to_string(low) + " to " + std::to_string(high) + " is expected");
  return value.get<long long>();
}

std::string Text(const json& value, const std::string& key) {
  if (!value.is_string()) Fail(key + ": a text is expected");
  return value.get<std::string>();
}

void Apply(const std::string& key, const json& value, CameraEntry& camera) {
  if (key == "address") {
    camera.device.ip = ParseAddress(Text(value, key));
  } else if (key == "model") {
    camera.model = Text(value, key);
  } else if (key == "serialNumber") {
    camera.serial = Text(value, key);
  } else if (key == "userDefinedName") {
    camera.userName = Text(value, key);
  } else if (key == "loss") {
    camera.device.lossPerThousand = static_cast<unsigned>(Number(value, key, 0, kMostPerThousand));
  } else if (key == "seed") {
    camera.device.seed = static_cast<std::uint64_t>(Number(value, key, 0, INT64_MAX));
  } else if (key == "delay") {
    camera.device.delay = std::chrono::milliseconds(Number(value, key, 0, kLongestDelayMs));
  } else if (key == "resend") {
    if (!value.is_boolean()) Fail(key + ": true or false is expected");
    camera.device.hasResend = value.get<bool>();
  } else {
    Fail("there is no setting \"" + key + "\"");
  }
}

CameraEntry Entry(const json& object, const CameraEntry& defaults) {
  if (!object.is_object()) Fail("an object is expected");
  CameraEntry camera = defaults;
  camera.device.ip = {};
  for (const auto& [key, value] : object.items()) Apply(key, value, camera);
  if (camera.device.ip == zyn::gige::kNoAddress) Fail("\"address\" is missing");
  return camera;
}

// nlohmann begins its messages with a number of its own in brackets.
std::string Readable(const std::string& message) {
  const std::size_t end = message.find("] ");
  return end == std::string::npos ? message : message.substr(end + 2);
}

json Parse(std::istream& file) {
  try {
    return json::parse(file, nullptr, true, true);  // comments are welcome
  } catch (const json::exception& error) {
    Fail("no JSON text: " + Readable(error.what()));
  }
}

// Misspelled settings would silently do nothing.
json ListIn(const json& root) {
  if (!root.is_object() || !root.contains("cameras") || !root["cameras"].is_array())
    Fail("an object with a list \"cameras\" is expected");
  if (root.size() > 1) Fail("there is nothing to be set beside \"cameras\"");
  if (root["cameras"].empty()) Fail("the list \"cameras\" is empty");
  return root["cameras"];
}

std::vector<CameraEntry> Entries(std::istream& file, const CameraEntry& defaults) {
  std::vector<CameraEntry> cameras;
  for (const json& entry : ListIn(Parse(file))) {
    try {
      cameras.push_back(Entry(entry, defaults));
    } catch (const std::runtime_error& error) {
      Fail("cameras[" + std::to_string(cameras.size()) + "]: " + error.what());
    }
  }
  return cameras;
}

void RequireModel(const std::string& name) {
  const zyn::cameras::CatalogEntry* const model = zyn::cameras::FindModel(name);
  if (model == nullptr) Fail("there is no model \"" + name + "\"");
  if (model->isCameraLink) Fail("the model \"" + name + "\" has a Camera Link connector only");
}

void CompleteOne(CameraEntry& camera) {
  const std::uint32_t ip = camera.device.ip.value;
  if (camera.serial.empty()) camera.serial = "VC" + std::to_string(ip & 0xFFU);
  RequireModel(camera.model);
  if (camera.serial.size() > kLongestName || camera.userName.size() > kLongestName)
    Fail("serial numbers and names take " + std::to_string(kLongestName) + " bytes at most");
  // Locally administered, and unique like the address.
  camera.device.mac.bytes = {0x02,
                             0x5A,
                             static_cast<std::uint8_t>(ip >> 24U),
                             static_cast<std::uint8_t>(ip >> 16U),
                             static_cast<std::uint8_t>(ip >> 8U),
                             static_cast<std::uint8_t>(ip)};
}

}  // namespace

Ipv4 ParseAddress(const std::string& text) {
  const auto ip = zyn::gige::ParseIpv4(text);
  if (!ip || *ip == zyn::gige::kNoAddress || zyn::gige::IsMulticast(*ip))
    Fail("\"" + text + "\" is no address of a device");
  return *ip;
}

std::vector<CameraEntry> ReadCameraList(const std::string& path, const CameraEntry& defaults) {
  std::ifstream file(path, std::ios::binary);
  if (!file) Fail(path + ": the file cannot be opened");
  try {
    return Entries(file, defaults);
  } catch (const std::runtime_error& error) {
    Fail(path + ": " + error.what());
  }
}

void Complete(std::vector<CameraEntry>& cameras) {
  std::set<Ipv4> addresses;
  std::set<std::string> serials;
  for (CameraEntry& camera : cameras) {
    CompleteOne(camera);
    if (!addresses.insert(camera.device.ip).second)
      Fail("the address " + zyn::gige::ToText(camera.device.ip) + " is there twice");
    if (!serials.insert(camera.serial).second)
      Fail("the serial number \"" + camera.serial + "\" is there twice");
  }
}

}  // namespace virtualcamera
