#include "cameras/registers/DescriptionWriter.h"

#include <charconv>
#include <cstdio>

namespace zyn::cameras {

namespace {

std::string Escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string Hex(std::uint64_t value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
  return text;
}

// Independent of the process's locale.
std::string Number(double value) {
  char text[40];
  const auto result = std::to_chars(text, text + sizeof text, value);
  return std::string(text, result.ptr);
}

// FNV-1a.
std::uint64_t Fingerprint(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char c : text) hash = (hash ^ static_cast<std::uint8_t>(c)) * 0x100000001B3;
  return hash;
}

// Stands for a GUID until the text is complete.
constexpr std::string_view kNoGuid = "00000000-0000-0000-0000-000000000000";

// Two fingerprints in the shape of a GUID.
std::string Guid(const std::string& text) {
  const std::uint64_t a = Fingerprint(text);
  const std::uint64_t b = Fingerprint(text + "/");
  char digits[48];
  std::snprintf(digits, sizeof digits, "%08X-%04X-%04X-%04X-%012llX", static_cast<unsigned>(a >> 32U),
                static_cast<unsigned>(a >> 16U & 0xFFFFU), static_cast<unsigned>(a & 0xFFFFU),
                static_cast<unsigned>(b >> 48U), static_cast<unsigned long long>(b & 0xFFFFFFFFFFFFU));
  return digits;
}

std::string_view Element(FeatureKind kind, bool isFloatChunk) {
  switch (kind) {
    case FeatureKind::floating:
      return "Float";
    case FeatureKind::boolean:
      return "Boolean";
    case FeatureKind::enumeration:
    case FeatureKind::hostSelector:
      return "Enumeration";
    case FeatureKind::command:
      return "Command";
    case FeatureKind::text:
      return "StringReg";
    case FeatureKind::chunkValue:
      return isFloatChunk ? "Float" : "Integer";
    case FeatureKind::integer:
    case FeatureKind::hostInteger:
      break;
  }
  return "Integer";
}

}  // namespace

void DescriptionWriter::Open(std::string_view element, const Attributes& attributes) {
  text_.append(static_cast<std::size_t>(depth_) * 2, ' ').append("<").append(element);
  for (const auto& [name, value] : attributes) {
    text_.append(" ").append(name).append("=\"").append(Escaped(value)).append("\"");
  }
  text_ += ">\n";
  ++depth_;
}

void DescriptionWriter::Close(std::string_view element) {
  --depth_;
  text_.append(static_cast<std::size_t>(depth_) * 2, ' ').append("</").append(element).append(">\n");
}

void DescriptionWriter::Line(std::string_view element, std::string_view content,
                             const Attributes& attributes) {
  text_.append(static_cast<std::size_t>(depth_) * 2, ' ').append("<").append(element);
  for (const auto& [name, value] : attributes) {
    text_.append(" ").append(name).append("=\"").append(Escaped(value)).append("\"");
  }
  text_.append(">").append(Escaped(content)).append("</").append(element).append(">\n");
}

std::string DescriptionWriter::Write(const std::string& vendor, const std::string& model,
                                     const std::string& tip) {
  text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  Open("RegisterDescription", {{"ModelName", model},
                               {"VendorName", vendor},
                               {"ToolTip", tip},
                               {"StandardNameSpace", "None"},
                               {"SchemaMajorVersion", "1"},
                               {"SchemaMinorVersion", "1"},
                               {"SchemaSubMinorVersion", "0"},
                               {"MajorVersion", "1"},
                               {"MinorVersion", "0"},
                               {"SubMinorVersion", "0"},
                               {"ProductGuid", Guid(vendor + "/" + model)},
                               {"VersionGuid", std::string(kNoGuid)},
                               {"xmlns", "http://www.genicam.org/GenApi/Version_1_1"}});
  WriteCategories();
  for (const Feature& feature : table_.features_) WriteFeature(feature);
  WritePorts();
  Close("RegisterDescription");
  // Consumers keep descriptions by this number: it tells models apart, and versions of one.
  text_.replace(text_.find(kNoGuid), kNoGuid.size(), Guid(text_));
  return std::move(text_);
}

void DescriptionWriter::WriteCategories() {
  Open("Category", {{"Name", "Root"}, {"NameSpace", "Standard"}});
  for (const auto& category : table_.categories_) Line("pFeature", category.name);
  Close("Category");
  for (const auto& category : table_.categories_) {
    const bool isStandard = category.origin == CategoryOrigin::standardNames;
    Open("Category", {{"Name", category.name}, {"NameSpace", isStandard ? "Standard" : "Custom"}});
    Line("ToolTip", category.tip);
    for (const Feature& feature : table_.features_) {
      if (feature.category_ == category.name) Line("pFeature", feature.name_);
    }
    Close("Category");
  }
}

void DescriptionWriter::WriteCommon(const Feature& feature) {
  Line("ToolTip", feature.tip_);
  Line("Visibility", feature.visibility_);
  if (feature.isLocked_) Line("pIsLocked", "TLParamsLocked");
}

void DescriptionWriter::WriteFeature(const Feature& feature) {
  if (feature.kind_ == FeatureKind::text) {
    WriteRegister(feature);
    return;
  }
  const std::string_view element = Element(feature.kind_, feature.isFloatChunk_);
  const std::string registerName = feature.name_ + "Reg";
  Open(element, {{"Name", feature.name_}, {"NameSpace", feature.isStandard_ ? "Standard" : "Custom"}});
  WriteCommon(feature);
  const bool isWritable = (!feature.integers_.empty() && feature.integers_.front().set) ||
                          (!feature.floats_.empty() && feature.floats_.front().set);
  if (feature.isStored_ && isWritable) Line("Streamable", "Yes");
  WriteChoices(feature);
  if (feature.kind_ == FeatureKind::hostSelector) {
    Line("pValue", feature.name_ + "Value");
    WriteSelected(feature);
  } else if (feature.kind_ == FeatureKind::hostInteger) {
    Line("Value", "0");
  } else {
    Line("pValue", registerName);
  }
  if (feature.kind_ == FeatureKind::command) Line("CommandValue", "1");
  WriteRange(feature);
  Close(element);
  if (feature.kind_ == FeatureKind::hostSelector) {
    // Registers are indexed by this number: not every runtime takes an enumeration there.
    Open("Integer", {{"Name", feature.name_ + "Value"}, {"NameSpace", "Custom"}});
    Line("Visibility", "Invisible");
    Line("Value", "0");
    Close("Integer");
    return;
  }
  if (feature.kind_ == FeatureKind::hostInteger) return;
  if (feature.kind_ == FeatureKind::chunkValue) {
    WriteChunkRegister(feature);
    return;
  }
  WriteRegister(feature);
  WriteMaximum(feature);
}

void DescriptionWriter::WriteRange(const Feature& feature) {
  const std::string maximum = feature.name_ + "LimitReg";
  if (feature.kind_ == FeatureKind::integer || feature.kind_ == FeatureKind::hostInteger) {
    if (feature.min_.Exists()) Line("Min", std::to_string(feature.min_.Get()));
    if (feature.max_.constant) Line("Max", std::to_string(*feature.max_.constant));
    if (feature.max_.computed) Line("pMax", maximum);
    if (feature.min_.Exists()) Line("Inc", std::to_string(feature.step_));
  }
  if (feature.kind_ == FeatureKind::floating) {
    if (feature.floatMin_.Exists()) Line("Min", Number(feature.floatMin_.Get()));
    if (feature.floatMax_.constant) Line("Max", Number(*feature.floatMax_.constant));
    if (feature.floatMax_.computed) Line("pMax", maximum);
  }
  if (!feature.unit_.empty()) Line("Unit", feature.unit_);
  if (!feature.representation_.empty()) Line("Representation", feature.representation_);
}

void DescriptionWriter::WriteChoices(const Feature& feature) {
  for (const Choice& choice : feature.choices_) {
    Open("EnumEntry", {{"Name", choice.name}, {"NameSpace", "Standard"}});
    Line("Value", std::to_string(choice.value));
    Close("EnumEntry");
  }
}

void DescriptionWriter::WriteSelected(const Feature& selector) {
  for (const Feature& feature : table_.features_) {
    if (feature.selector_ == selector.name_) Line("pSelected", feature.name_);
  }
}

void DescriptionWriter::WriteRegister(const Feature& feature) {
  const bool isText = feature.kind_ == FeatureKind::text;
  const bool isFloat = feature.kind_ == FeatureKind::floating;
  const bool isCommand = feature.kind_ == FeatureKind::command;
  const bool isWritable = isText    ? static_cast<bool>(feature.texts_.front().set)
                          : isFloat ? static_cast<bool>(feature.floats_.front().set)
                                    : static_cast<bool>(feature.integers_.front().set);
  const bool isShort =
      isCommand || feature.kind_ == FeatureKind::boolean || feature.kind_ == FeatureKind::enumeration;
  const std::size_t length = isText ? feature.textLength_ : isShort ? 4 : 8;
  const std::string_view element = isText ? "StringReg" : isFloat ? "FloatReg" : "IntReg";

  Open(element, {{"Name", isText ? feature.name_ : feature.name_ + "Reg"},
                 {"NameSpace", isText && feature.isStandard_ ? "Standard" : "Custom"}});
  if (isText) WriteCommon(feature);
  if (!isText) Line("Visibility", "Invisible");
  Line("Address", Hex(feature.address_));
  if (!feature.selector_.empty()) {
    Line("pIndex", feature.selector_ + "Value", {{"Offset", std::to_string(length)}});
  }
  Line("Length", std::to_string(length));
  Line("AccessMode", isWritable ? "RW" : "RO");
  Line("pPort", "Device");
  if (isCommand || feature.isVolatile_) Line("Cachable", "NoCache");
  if (isWritable && !isCommand && !feature.isVolatile_) {
    for (const std::string& command : table_.restorers_) Line("pInvalidator", command);
  }
  if (!isText) Line("Endianess", "BigEndian");
  Close(element);
}

void DescriptionWriter::WriteMaximum(const Feature& feature) {
  if (!feature.max_.computed && !feature.floatMax_.computed) return;
  const std::string_view element = feature.kind_ == FeatureKind::floating ? "FloatReg" : "IntReg";
  Open(element, {{"Name", feature.name_ + "LimitReg"}, {"NameSpace", "Custom"}});
  Line("Visibility", "Invisible");
  Line("Address", Hex(feature.maxAddress_));
  Line("Length", "8");
  Line("AccessMode", "RO");
  Line("pPort", "Device");
  Line("Cachable", "NoCache");
  Line("Endianess", "BigEndian");
  Close(element);
}

void DescriptionWriter::WriteChunkRegister(const Feature& feature) {
  const std::string_view element = feature.isFloatChunk_ ? "FloatReg" : "IntReg";
  Open(element, {{"Name", feature.name_ + "Reg"}, {"NameSpace", "Custom"}});
  Line("Visibility", "Invisible");
  Line("Address", Hex(feature.chunkOffset_));
  Line("Length", "8");
  Line("AccessMode", "RO");
  Line("pPort", feature.chunkPort_);
  Line("Cachable", "NoCache");
  Line("Endianess", "BigEndian");
  Close(element);
}

void DescriptionWriter::WritePorts() {
  Open("Port", {{"Name", "Device"}, {"NameSpace", "Standard"}});
  Line("ToolTip", "The camera's registers.");
  Line("Visibility", "Invisible");
  Close("Port");
  for (const auto& port : table_.ports_) {
    char id[16];
    std::snprintf(id, sizeof id, "%08X", port.id);
    Open("Port", {{"Name", port.name}, {"NameSpace", "Custom"}});
    Line("Visibility", "Invisible");
    Line(port.idElement, id);
    Close("Port");
  }
}

std::string FeatureTable::BuildDescription(const std::string& vendor, const std::string& model,
                                           const std::string& tip) const {
  return DescriptionWriter(*this).Write(vendor, model, tip);
}

}  // namespace zyn::cameras
