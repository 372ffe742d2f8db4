#include <algorithm>
#include <array>
#include <vector>

#include "Camera.h"
#include "CameraJson.h"
#include "JsonText.h"
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
