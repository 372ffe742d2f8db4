#include "GenApi/ConcatenatedWrite.h"

#include <charconv>
#include <string>

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;

CNodeWriteConcatenator::CNodeWriteConcatenator() = default;
CNodeWriteConcatenator::~CNodeWriteConcatenator() = default;

void CNodeWriteConcatenator::Add(const gcstring& nodeName, const gcstring& value) {
  m_Names.push_back(nodeName);
  m_Values.push_back(value);
}

void CNodeWriteConcatenator::Add(const gcstring& nodeName, const char* value) {
  Add(nodeName, gcstring(value));
}

void CNodeWriteConcatenator::Add(const gcstring& nodeName, int64_t value) {
  Add(nodeName, gcstring(std::to_string(value).c_str()));
}

void CNodeWriteConcatenator::Add(const gcstring& nodeName, double value) {
  char text[64];
  const auto result = std::to_chars(text, text + sizeof(text), value);
  Add(nodeName, gcstring(text, static_cast<size_t>(result.ptr - text)));
}

void CNodeWriteConcatenator::Add(const gcstring& nodeName, bool value) {
  Add(nodeName, value ? "true" : "false");
}

void CNodeWriteConcatenator::Clear() {
  m_Names.clear();
  m_Values.clear();
}

void CNodeWriteConcatenator::Destroy() {
  delete this;
}

}  // namespace GENAPI_NAMESPACE
