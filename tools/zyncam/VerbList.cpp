#include <string>
#include <vector>

#include "Camera.h"
#include "CameraJson.h"
#include "JsonText.h"
#include "Table.h"
#include "Verbs.h"

namespace zyncam {
namespace {

using Row = std::vector<std::string>;

Row RowOf(const CameraDescription& camera) {
  return {OrDash(camera.serialNumber),
          OrDash(camera.model),
          OrDash(camera.manufacturer),
          camera.protocol,
          OrDash(camera.address),
          OrDash(camera.mac),
          camera.status};
}

}  // namespace

void ListCameras(Console& console, const CommonOptions& common) {
  Session session;
  std::vector<Camera> cameras = session.Search();
  ReportUnloadedProducers();
  if (common.json) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (Camera& camera : cameras) list.push_back(JsonOf(camera.Describe()));
    console.Line(JsonText(list));
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
    console.Line(JsonText(json));
    return;
  }
  for (const auto& [key, value] : json.items()) {
    std::string label = key;
    label.append(label.size() < 18 ? 18 - label.size() : 1, ' ');
    console.Line(label + (value.is_string() ? OrDash(value.get<std::string>()) : JsonText(value, -1)));
  }
}

}  // namespace zyncam
