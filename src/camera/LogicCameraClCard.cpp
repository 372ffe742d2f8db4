#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "Guarded.h"
#include "LogicCamera.h"
#include "PhysicCamera.h"
#include "ZynCamera/ZynNode.h"
#include "ZynCamera/ZynString.h"

namespace ZYNSDK {

namespace {

constexpr char kComment = ';';
constexpr char kAssign = '=';

// Exactly this text; "true" and "1" say no. Pinned by OnlyTheWordTrueSwitchesOn.
constexpr char kTrue[] = "True";

struct Record {
  std::string name;
  std::string value;
};

// The assignment in a line; none in empty lines, comments, and lines that are not of the form name = value.
std::optional<Record> RecordIn(std::string line) {
  LogicCamera::StringTrim(line);
  if (line.empty() || line.front() == kComment) return std::nullopt;
  const std::string useful = LogicCamera::splitString(line, std::string(1, kComment), true).front();
  const std::vector<std::string> sides = LogicCamera::splitString(useful, std::string(1, kAssign), true);
  if (sides.size() != 2) return std::nullopt;
  return Record{sides[0], sides[1]};
}

// Opening a folder succeeds, but it holds no lines: whoever named one expects to hear of it.
bool IsFolder(const char* path) {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored);
}

}  // namespace

// Design decision: a record that fails does not change the result, and those after it are applied: one file serves
// cards whose features differ. Pinned by AFileWithOnlyBadRecordsIsASuccess.
long LogicCamera::SetClCardConfigFile(const char* path) {
  if (!path || IsFolder(path)) return ZYN_ERROR_CONFIG_FILE;
  std::ifstream file(path);
  if (!file) return ZYN_ERROR_CONFIG_FILE;
  std::string line;
  while (std::getline(file, line)) {
    if (const std::optional<Record> record = RecordIn(line)) SetDevNodeValue(record->name, record->value);
  }
  return ZYN_OK;
}

long LogicCamera::SetDevNodeValue(const std::string& name, const std::string& value) {
  ZynNode node;
  if (const long error = GetNodeByXmlType(name.c_str(), &node, ZYN_XML_LOCAL_DEVICE)) return error;
  return SetNodeValue(node, value);
}

long LogicCamera::SetNodeValue(ZynNode& node, const std::string& value) {
  const ZynString text(value.c_str(), static_cast<unsigned int>(value.size()));
  switch (node.Type()) {
    case ZYN_NODE_BOOLEAN:
      return node.SetBool(value == kTrue);
    case ZYN_NODE_INTEGER:
      return node.SetInt(std::stoi(value));
    case ZYN_NODE_FLOAT:
      return node.SetFloat(std::stof(value));
    case ZYN_NODE_ENUMERATION:
      return node.SetEnumString(text);
    case ZYN_NODE_STRING:
      return node.SetString(text);
    case ZYN_NODE_REGISTER:
      return node.SetRegister(text);
    case ZYN_NODE_UNKNOWN:
    case ZYN_NODE_COMMAND:
    case ZYN_NODE_OTHER:
      return ZYN_ERROR_WRONG_NODE_TYPE;
  }
  return ZYN_OK;  // a type of later days
}

std::vector<std::string> LogicCamera::splitString(std::string text, const std::string& separators,
                                                  bool skipEmpty) {
  const char separator = separators.at(0);
  std::replace_if(
      text.begin(), text.end(), [&](char c) { return separators.find(c) != std::string::npos; }, separator);
  std::vector<std::string> pieces;
  std::size_t begin = 0;
  while (begin <= text.size()) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    if (end > begin || !skipEmpty) pieces.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return pieces;
}

std::string& LogicCamera::StringTrim(std::string& text) {
  text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
  return text;
}

long LogicCamera::SetCLCameraParam(const char* name, const char* value) {
  return Guarded([&] { return device_->SetCLCameraParam(name, value); });
}

}  // namespace ZYNSDK
