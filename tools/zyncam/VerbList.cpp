#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <vector>

#include "Camera.h"
#include "Verbs.h"

namespace zyncam {
namespace {

constexpr std::size_t kColumns = 7;
using Row = std::array<std::string, kColumns>;

std::string OrDash(const std::string& text) {
  return text.empty() ? "-" : text;
}

Row RowOf(const CameraDescription& camera) {
  return {OrDash(camera.serialNumber),
          OrDash(camera.model),
          OrDash(camera.manufacturer),
          camera.protocol,
          OrDash(camera.address),
          OrDash(camera.mac),
          camera.status};
}

void PrintTable(Console& console, const std::vector<Row>& rows) {
  std::array<std::size_t, kColumns> widths{};
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < kColumns; ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const Row& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < kColumns; ++i) {
      line += row[i];
      if (i + 1 < kColumns) line.append(widths[i] - row[i].size() + 2, ' ');
    }
    console.Line(line);
  }
}

nlohmann::ordered_json JsonOf(const CameraDescription& camera) {
  nlohmann::ordered_json json;
  json["serialNumber"] = camera.serialNumber;
  json["model"] = camera.model;
  json["manufacturer"] = camera.manufacturer;
  json["name"] = camera.name;
  json["userDefinedName"] = camera.userDefinedName;
  json["version"] = camera.version;
  json["identifier"] = camera.identifier;
  json["protocol"] = camera.protocol;
  json["status"] = camera.status;
  json["is3D"] = camera.is3D;
  if (camera.protocol == "GigE Vision") {
    json["address"] = camera.address;
    json["mask"] = camera.mask;
    json["gateway"] = camera.gateway;
    json["mac"] = camera.mac;
    json["adapter"] = camera.adapter;
    json["adapterAddress"] = camera.adapterAddress;
    json["adapterMask"] = camera.adapterMask;
  }
  if (camera.protocol == "USB3 Vision") json["guid"] = camera.guid;
  return json;
}

}  // namespace

void ListCameras(Console& console, const CommonOptions& common) {
  Session session;
  std::vector<Camera> cameras = session.Search();
  ReportUnloadedProducers();
  if (common.json) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (Camera& camera : cameras) list.push_back(JsonOf(camera.Describe()));
    console.Line(list.dump(2));
    return;
  }
  if (cameras.empty()) {
    Console::Note("No camera found. Check cable, power and the adapter's address.");
    return;
  }
  std::vector<Row> rows = {{"SERIAL", "MODEL", "MANUFACTURER", "PROTOCOL", "ADDRESS", "MAC", "STATUS"}};
  for (Camera& camera : cameras) rows.push_back(RowOf(camera.Describe()));
  PrintTable(console, rows);
}

void ShowInfo(Console& console, const CommonOptions& common) {
  Session session;
  const CameraDescription camera = session.Select(common.camera).Describe();
  const nlohmann::ordered_json json = JsonOf(camera);
  if (common.json) {
    console.Line(json.dump(2));
    return;
  }
  for (const auto& [key, value] : json.items()) {
    std::string label = key;
    label.append(label.size() < 18 ? 18 - label.size() : 1, ' ');
    console.Line(label + (value.is_string() ? OrDash(value.get<std::string>()) : value.dump()));
  }
}

}  // namespace zyncam
