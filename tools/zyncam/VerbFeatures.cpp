#include <GenApi/GenApi.h>

#include <algorithm>
#include <functional>
#include <set>

#include "Camera.h"
#include "Failure.h"
#include "FeatureText.h"
#include "JsonText.h"
#include "Verbs.h"

namespace zyncam {
namespace {

using GenApi_3_4::INode;
using GenApi_3_4::INodeMap;

bool IsShown(const INode& node, const FeaturesOptions& options) {
  return GenApi_3_4::IsVisible(node.GetVisibility(),
                               static_cast<GenApi_3_4::EVisibility>(options.visibility)) &&
         GenApi_3_4::IsImplemented(node.GetAccessMode());
}

std::string Summary(INode& node) {
  std::string line = NameOf(node) + "  [" + KindOf(node) + " " + AccessOf(node) + "]";
  const FeatureValue value = ReadValue(node);
  if (value.readable) line += "  " + (value.text.empty() ? std::string("\"\"") : value.text);
  const std::string range = RangeOf(node);
  if (!range.empty()) line += "  (" + range + ")";
  return line;
}

std::vector<INode*> FeaturesOf(const INode& category) {
  const auto* asCategory = dynamic_cast<const GenApi_3_4::ICategory*>(&category);
  if (asCategory == nullptr) return {};
  GenApi_3_4::FeatureList_t features;
  asCategory->GetFeatures(features);
  std::vector<INode*> nodes;
  for (GenApi_3_4::IValue* feature : features) nodes.push_back(feature->GetNode());
  return nodes;
}

/// Walks the tree of categories. A description may name a category within itself: `open` holds those being
/// shown.
class Tree {
 public:
  explicit Tree(const FeaturesOptions& options) : options_(options) {}

  void Print(Console& console, const INode& category, const std::string& indent) {
    for (INode* node : FeaturesOf(category)) {
      if (node == nullptr || !IsShown(*node, options_)) continue;
      if (node->GetPrincipalInterfaceType() != GenApi_3_4::intfICategory) {
        console.Line(indent + Summary(*node));
        continue;
      }
      if (!open_.insert(node).second) continue;
      console.Line(indent + NameOf(*node));
      Print(console, *node, indent + "  ");
      open_.erase(node);
    }
  }

  nlohmann::ordered_json Json(const INode& category) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (INode* node : FeaturesOf(category)) {
      if (node == nullptr || !IsShown(*node, options_)) continue;
      if (node->GetPrincipalInterfaceType() != GenApi_3_4::intfICategory) {
        list.push_back(DescribeFeature(*node));
        continue;
      }
      if (!open_.insert(node).second) continue;
      nlohmann::ordered_json entry;
      entry["name"] = NameOf(*node);
      entry["kind"] = "category";
      entry["features"] = Json(*node);
      list.push_back(std::move(entry));
      open_.erase(node);
    }
    return list;
  }

 private:
  const FeaturesOptions& options_;
  std::set<const INode*> open_;
};

std::vector<INode*> FlatList(INodeMap& map, const FeaturesOptions& options) {
  GenApi_3_4::NodeList_t all;
  map.GetNodes(all);
  std::vector<INode*> features;
  for (INode* node : all) {
    const bool isCategory = node->GetPrincipalInterfaceType() == GenApi_3_4::intfICategory;
    if (!isCategory && node->IsFeature() && IsShown(*node, options)) features.push_back(node);
  }
  std::sort(features.begin(), features.end(), [](INode* a, INode* b) { return NameOf(*a) < NameOf(*b); });
  return features;
}

void ShowFlat(Console& console, const CommonOptions& common, INodeMap& map, const FeaturesOptions& options) {
  if (!common.json) {
    for (INode* node : FlatList(map, options)) console.Line(Summary(*node));
    return;
  }
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (INode* node : FlatList(map, options)) list.push_back(DescribeFeature(*node));
  console.Line(JsonText(list));
}

}  // namespace

void ShowFeatures(Console& console, const CommonOptions& common, const FeaturesOptions& options) {
  Session session;
  Camera camera = session.Select(common.camera);
  camera.Open(common.card);
  INodeMap& map = camera.NodeMap(options.map);
  const INode* root = map.GetNode("Root");
  if (options.flat || root == nullptr) {
    ShowFlat(console, common, map, options);
    return;
  }
  Tree tree(options);
  if (common.json) {
    console.Line(JsonText(tree.Json(*root)));
  } else {
    tree.Print(console, *root, "");
  }
}

}  // namespace zyncam
