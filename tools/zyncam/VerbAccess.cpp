#include <GenApi/GenApi.h>

#include <utility>

#include "Camera.h"
#include "Failure.h"
#include "FeatureText.h"
#include "JsonText.h"
#include "Verbs.h"

namespace zyncam {
namespace {

using GenApi_3_4::INode;
using GenApi_3_4::INodeMap;

std::pair<std::string, std::string> SplitAssignment(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw Failure(kExitUsage, "\"" + text + "\" is no assignment",
                  "write NAME=VALUE, for example ExposureTime=5000");
  }
  return {text.substr(0, equals), text.substr(equals + 1)};
}

INode& ReadableFeature(INodeMap& map, const std::string& name) {
  INode& node = FindFeature(map, name);
  if (ReadValue(node).readable) return node;
  throw Failure(kExitFeature,
                "feature \"" + name + "\" cannot be read now (" + KindOf(node) + ", " + AccessOf(node) + ")");
}

}  // namespace

void GetFeatures(Console& console, const CommonOptions& common, const AccessOptions& options) {
  Session session;
  Camera camera = session.Select(common.camera);
  camera.Open(common.card);
  INodeMap& map = camera.NodeMap(options.map);
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  const bool several = options.features.size() > 1;
  for (const std::string& name : options.features) {
    INode& node = ReadableFeature(map, name);
    if (common.json) {
      list.push_back(DescribeFeature(node));
    } else {
      const std::string value = ReadValue(node).text;
      console.Line(several ? NameOf(node) + "=" + value : value);
    }
  }
  if (common.json) console.Line(JsonText(list));
}

void SetFeatures(Console& console, const CommonOptions& common, const AccessOptions& options) {
  // All assignments and names are checked before the first write, so that a slip of the pen changes nothing.
  std::vector<std::pair<std::string, std::string>> assignments;
  for (const std::string& text : options.features) assignments.push_back(SplitAssignment(text));
  Session session;
  Camera camera = session.Select(common.camera);
  camera.Open(common.card);
  INodeMap& map = camera.NodeMap(options.map);
  for (const auto& assignment : assignments) FindFeature(map, assignment.first);

  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const auto& [name, value] : assignments) {
    INode& node = FindFeature(map, name);
    WriteValue(node, value);
    if (common.json) {
      list.push_back(DescribeFeature(node));
      continue;
    }
    const FeatureValue readBack = ReadValue(node);
    console.Line(NameOf(node) + "=" + (readBack.readable ? readBack.text : value));
  }
  if (common.json) console.Line(JsonText(list));
}

void ExecuteFeature(Console& console, const CommonOptions& common, const AccessOptions& options) {
  Session session;
  Camera camera = session.Select(common.camera);
  camera.Open(common.card);
  const std::string& name = options.features.front();
  INode& node = FindFeature(camera.NodeMap(options.map), name);
  ExecuteCommand(node, options.timeoutMs);
  if (common.json) {
    console.Line(JsonText({{"name", NameOf(node)}, {"done", true}}));
  } else {
    console.Line(NameOf(node) + " done");
  }
}

}  // namespace zyncam
