/// Reads, writes and describes features as text.
#ifndef ZYNCAM_FEATURE_TEXT_H
#define ZYNCAM_FEATURE_TEXT_H

#include <GenApi/INode.h>
#include <GenApi/INodeMap.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace zyncam {

/// The feature's value, or nothing when it cannot be read now.
struct FeatureValue {  // NOLINT(bugprone-exception-escape): a null JSON value takes no memory
  bool readable = false;
  std::string text;     ///< for people; empty when not readable
  nlohmann::json json;  ///< number, text or truth value; null when not readable
};

/// A feature by name. The names that older cameras publish with the ending "Abs" or "Raw" are found too, as
/// the library does it for ExposureTime, Gain, TriggerDelay and AcquisitionFrameRate. Throws Failure when
/// there is none.
GenApi_3_4::INode& FindFeature(GenApi_3_4::INodeMap& map, const std::string& name);

std::string NameOf(const GenApi_3_4::INode& node);
const char* KindOf(const GenApi_3_4::INode& node);    ///< "integer", "float", "enumeration", …
const char* AccessOf(const GenApi_3_4::INode& node);  ///< "RW", "RO", "WO", "NA" or "NI"

/// Never throws: a feature whose read fails is not readable.
FeatureValue ReadValue(GenApi_3_4::INode& node);

/// Limits and unit, or the entries that can be chosen: "16..2048 step 2", "Off|Once". Empty when there are
/// none.
std::string RangeOf(GenApi_3_4::INode& node);

/// Writes a value from its text. Throws Failure that names the feature, the value, and what would be
/// accepted.
void WriteValue(GenApi_3_4::INode& node, const std::string& value);

/// Executes a command and waits up to timeoutMs milliseconds until the camera reports it done. Throws
/// Failure.
void ExecuteCommand(GenApi_3_4::INode& node, int timeoutMs);

/// Everything about one feature as JSON.
nlohmann::ordered_json DescribeFeature(GenApi_3_4::INode& node);

}  // namespace zyncam

#endif
