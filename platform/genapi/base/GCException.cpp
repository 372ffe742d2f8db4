#include "Base/GCException.h"

#include <string>
#include <string_view>

namespace GENICAM_NAMESPACE {
namespace {

std::string_view View(const char* text) {
  return text ? std::string_view(text) : std::string_view();
}

std::string_view BaseName(std::string_view path) {
  const std::size_t slash = path.find_last_of("/\\");
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string Compose(std::string_view description, std::string_view file, unsigned int line,
                    std::string_view entryPoint, std::string_view node, std::string_view type) {
  std::string text(description);
  if (!type.empty()) {
    text.append(" : ").append(type).append(" thrown");
    if (!node.empty()) text.append(" in node '").append(node).append("'");
    if (!entryPoint.empty()) text.append(" while calling '").append(entryPoint).append("'");
  }
  text.append(" (file '").append(BaseName(file)).append("', line ").append(std::to_string(line)).append(")");
  return text;
}

}  // namespace

GenericException::GenericException(const char* pDescription, const char* pSourceFileName,
                                   unsigned int SourceLine)
    : GenericException(pDescription, pSourceFileName, SourceLine, nullptr, nullptr, nullptr) {}

GenericException::GenericException(const char* pDescription, const char* pSourceFileName,
                                   unsigned int SourceLine, const char* pExceptionType)
    : GenericException(pDescription, pSourceFileName, SourceLine, nullptr, nullptr, pExceptionType) {}

GenericException::GenericException(const char* pDescription, const char* pSourceFileName,
                                   unsigned int SourceLine, const char* pEntryPoint,
                                   const char* pErrorNodeName, const char* pExceptionType)
    : m_Description(pDescription),
      m_SourceFileName(pSourceFileName),
      m_What(Compose(View(pDescription), View(pSourceFileName), SourceLine, View(pEntryPoint),
                     View(pErrorNodeName), View(pExceptionType))
                 .c_str()),
      m_SourceLine(SourceLine) {}

GenericException::GenericException(const GenericException& other) = default;
GenericException& GenericException::operator=(const GenericException& other) = default;
GenericException::~GenericException() noexcept = default;

const char* GenericException::GetDescription() const noexcept {
  return m_Description.c_str();
}
const char* GenericException::GetSourceFileName() const noexcept {
  return m_SourceFileName.c_str();
}
unsigned int GenericException::GetSourceLine() const noexcept {
  return m_SourceLine;
}
const char* GenericException::what() const noexcept {
  return m_What.c_str();
}

// One kind is as the other; only their types differ.
// NOLINTBEGIN(bugprone-macro-parentheses): the name of a class cannot stand in brackets
#define DEFINE_EXCEPTION(name)                                                                               \
  name::name(const char* pDescription, const char* pSourceFileName, int SourceLine)                          \
      : GenericException(pDescription, pSourceFileName, static_cast<unsigned int>(SourceLine)) {}            \
  name::name(const char* pDescription, const char* pSourceFileName, int SourceLine,                          \
             const char* pExceptionType)                                                                     \
      : GenericException(pDescription, pSourceFileName, static_cast<unsigned int>(SourceLine),               \
                         pExceptionType) {}                                                                  \
  name::name(const char* pDescription, const char* pSourceFileName, int SourceLine, const char* pEntryPoint, \
             const char* pErrorNodeName, const char* pExceptionType)                                         \
      : GenericException(pDescription, pSourceFileName, static_cast<unsigned int>(SourceLine), pEntryPoint,  \
                         pErrorNodeName, pExceptionType) {}                                                  \
  name::name(const name& other) = default;                                                                   \
  name& name::operator=(const name& other) = default;                                                        \
  name::~name() noexcept = default;

// NOLINTEND(bugprone-macro-parentheses)

DEFINE_EXCEPTION(BadAllocException)
DEFINE_EXCEPTION(InvalidArgumentException)
DEFINE_EXCEPTION(OutOfRangeException)
DEFINE_EXCEPTION(PropertyException)
DEFINE_EXCEPTION(RuntimeException)
DEFINE_EXCEPTION(LogicalErrorException)
DEFINE_EXCEPTION(AccessException)
DEFINE_EXCEPTION(TimeoutException)
DEFINE_EXCEPTION(DynamicCastException)

}  // namespace GENICAM_NAMESPACE
