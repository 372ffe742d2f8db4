#include "FeatureText.h"

#include <ZynCamera/Status.h>

#include <GenApi/GenApi.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <limits>
#include <thread>

#include "Failure.h"

namespace zyncam {

using GenApi_3_4::CBooleanPtr;
using GenApi_3_4::CCommandPtr;
using GenApi_3_4::CEnumEntryPtr;
using GenApi_3_4::CEnumerationPtr;
using GenApi_3_4::CFloatPtr;
using GenApi_3_4::CIntegerPtr;
using GenApi_3_4::CStringPtr;
using GenApi_3_4::CValuePtr;
using GenApi_3_4::INode;
using GenApi_3_4::INodeMap;

namespace {

bool IsRenamedFeature(const std::string& name) {
  return name == "ExposureTime" || name == "TriggerDelay" || name == "Gain" || name == "AcquisitionFrameRate";
}

std::string NumberText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.10g", value);
  return text;
}

std::vector<std::string> AvailableEntries(const CEnumerationPtr& enumeration) {
  GenApi_3_4::NodeList_t nodes;
  enumeration->GetEntries(nodes);
  std::vector<std::string> names;
  for (INode* node : nodes) {
    const CEnumEntryPtr entry(node);
    if (entry.IsValid() && GenApi_3_4::IsAvailable(entry->GetAccessMode())) {
      names.emplace_back(entry->GetSymbolic().c_str());
    }
  }
  return names;
}

// An end that says nothing, because the type ends there too, is left out: ">= 0", "any".
template <class Number>
std::string LimitsText(Number min, Number max, const std::string& minText, const std::string& maxText) {
  using Type = std::numeric_limits<Number>;
  const bool hasMin = min > Type::lowest();
  const bool hasMax = max < Type::max();
  if (hasMin && hasMax) return minText + ".." + maxText;
  if (hasMin) return ">= " + minText;
  return hasMax ? "<= " + maxText : "any";
}

std::string JoinWords(std::initializer_list<std::string> words) {
  std::string text;
  for (const std::string& word : words) {
    if (!word.empty() && !text.empty()) text += ' ';
    text += word;
  }
  return text;
}

std::string IntegerRange(const CIntegerPtr& integer) {
  const std::int64_t min = integer->GetMin();
  const std::int64_t max = integer->GetMax();
  const bool hasStep = integer->GetIncMode() == GenApi_3_4::fixedIncrement && integer->GetInc() > 1;
  return JoinWords({LimitsText(min, max, std::to_string(min), std::to_string(max)),
                    hasStep ? "step " + std::to_string(integer->GetInc()) : "", integer->GetUnit().c_str()});
}

std::string FloatRange(const CFloatPtr& real) {
  const double min = real->GetMin();
  const double max = real->GetMax();
  return JoinWords({LimitsText(min, max, NumberText(min), NumberText(max)), real->GetUnit().c_str()});
}

FeatureValue ReadOrThrow(INode& node) {
  FeatureValue value;
  if (const CIntegerPtr integer(&node); integer.IsValid()) {
    value.json = integer->GetValue();
    value.text = integer->ToString().c_str();
  } else if (const CFloatPtr real(&node); real.IsValid()) {
    const double number = real->GetValue();
    value.json = number;
    value.text = NumberText(number);
  } else if (const CBooleanPtr boolean(&node); boolean.IsValid()) {
    value.json = boolean->GetValue();
    value.text = boolean->GetValue() ? "true" : "false";
  } else {
    const CValuePtr other(&node);
    if (!other.IsValid()) return value;
    value.text = other->ToString().c_str();
    value.json = value.text;
  }
  value.readable = true;
  return value;
}

}  // namespace

INode& FindFeature(INodeMap& map, const std::string& name) {
  if (INode* node = map.GetNode(name.c_str())) return *node;
  if (IsRenamedFeature(name)) {
    for (const char* ending : {"Abs", "Raw"}) {
      if (INode* node = map.GetNode((name + ending).c_str())) return *node;
    }
  }
  throw Failure::OfStatus("feature \"" + name + "\"", ZYNSDK::ZYN_ERROR_NO_SUCH_NODE);
}

std::string NameOf(const INode& node) {
  return node.GetName().c_str();
}

const char* KindOf(const INode& node) {
  switch (node.GetPrincipalInterfaceType()) {
    case GenApi_3_4::intfIInteger:
      return "integer";
    case GenApi_3_4::intfIBoolean:
      return "boolean";
    case GenApi_3_4::intfICommand:
      return "command";
    case GenApi_3_4::intfIFloat:
      return "float";
    case GenApi_3_4::intfIString:
      return "string";
    case GenApi_3_4::intfIRegister:
      return "register";
    case GenApi_3_4::intfICategory:
      return "category";
    case GenApi_3_4::intfIEnumeration:
      return "enumeration";
    case GenApi_3_4::intfIEnumEntry:
      return "entry";
    case GenApi_3_4::intfIPort:
      return "port";
    default:
      return "other";
  }
}

const char* AccessOf(const INode& node) {
  try {
    switch (node.GetAccessMode()) {
      case GenApi_3_4::RW:
        return "RW";
      case GenApi_3_4::RO:
        return "RO";
      case GenApi_3_4::WO:
        return "WO";
      case GenApi_3_4::NA:
        return "NA";
      default:
        return "NI";
    }
  } catch (const GenICam_3_4::GenericException&) {
    return "NA";
  }
}

FeatureValue ReadValue(INode& node) {
  try {
    const bool isCommand = node.GetPrincipalInterfaceType() == GenApi_3_4::intfICommand;
    if (isCommand || !GenApi_3_4::IsReadable(node.GetAccessMode())) return {};
    return ReadOrThrow(node);
  } catch (const GenICam_3_4::GenericException&) {
    return {};
  }
}

std::string RangeOf(INode& node) {
  try {
    if (!GenApi_3_4::IsAvailable(node.GetAccessMode())) return "";
    if (const CIntegerPtr integer(&node); integer.IsValid()) return IntegerRange(integer);
    if (const CFloatPtr real(&node); real.IsValid()) return FloatRange(real);
    if (const CEnumerationPtr enumeration(&node); enumeration.IsValid()) {
      std::string text;
      for (const std::string& name : AvailableEntries(enumeration)) text += (text.empty() ? "" : "|") + name;
      return text;
    }
  } catch (const GenICam_3_4::GenericException&) {
  }
  return "";
}

void WriteValue(INode& node, const std::string& value) {
  const std::string name = NameOf(node);
  const CValuePtr target(&node);
  const bool isCommand = node.GetPrincipalInterfaceType() == GenApi_3_4::intfICommand;
  if (!target.IsValid() || isCommand) {
    throw Failure(kExitFeature, "feature \"" + name + "\" is a " + KindOf(node) + " and takes no value",
                  isCommand ? "use 'zyncam exec'" : "");
  }
  if (!GenApi_3_4::IsWritable(node.GetAccessMode())) {
    throw Failure(kExitFeature, "feature \"" + name + "\" cannot be written now (" + AccessOf(node) + ")",
                  "some features are locked while another one is on, or while the camera streams");
  }
  try {
    target->FromString(value.c_str());
  } catch (const GenICam_3_4::GenericException& error) {
    const std::string range = RangeOf(node);
    throw Failure(
        kExitFeature,
        "feature \"" + name + "\" does not take the value \"" + value + "\": " + error.GetDescription(),
        range.empty() ? "" : "it takes " + range);
  }
}

void ExecuteCommand(INode& node, int timeoutMs) {
  const std::string name = NameOf(node);
  const CCommandPtr command(&node);
  if (!command.IsValid()) {
    throw Failure(kExitFeature, "feature \"" + name + "\" is a " + KindOf(node) + ", no command",
                  "use 'zyncam set' to write it");
  }
  if (!GenApi_3_4::IsWritable(node.GetAccessMode())) {
    throw Failure(kExitFeature, "command \"" + name + "\" cannot be executed now (" + AccessOf(node) + ")");
  }
  try {
    command->Execute();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!command->IsDone()) {
      if (std::chrono::steady_clock::now() >= deadline) {
        throw Failure(kExitFailed,
                      "command \"" + name + "\" was not done after " + std::to_string(timeoutMs) + " ms",
                      "it may still be running; raise --timeout to wait longer");
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  } catch (const GenICam_3_4::GenericException& error) {
    throw Failure(kExitFailed, "command \"" + name + "\" failed: " + error.GetDescription());
  }
}

nlohmann::ordered_json DescribeFeature(INode& node) {
  nlohmann::ordered_json result;
  result["name"] = NameOf(node);
  result["kind"] = KindOf(node);
  result["access"] = AccessOf(node);
  result["value"] = ReadValue(node).json;
  const std::string range = RangeOf(node);
  if (!range.empty()) result["range"] = range;
  return result;
}

}  // namespace zyncam
