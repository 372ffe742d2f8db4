/// The exceptions of the interface, and the macros that throw them with their source position.
///
/// GenericException has no base class: `catch (const std::exception&)` does not catch it.
#ifndef BASE_GCEXCEPTION_H
#define BASE_GCEXCEPTION_H

#include <cstdarg>
#include <cstdio>
#include <sstream>
#include <string>

#include "GCString.h"
#include "GCTypes.h"

namespace GENICAM_NAMESPACE {

/// Base of all exceptions of the interface. Immutable. what() reads
/// "<description> : <type> thrown in node '<node>' while calling '<entry point>' (file '<base name>', line
/// <n>)"; a clause whose fact is unknown (null or empty) is left out.
class GCBASE_RTTI_CLASS_API GenericException {
 public:
  GenericException(const char* pDescription, const char* pSourceFileName, unsigned int SourceLine);
  GenericException(const char* pDescription, const char* pSourceFileName, unsigned int SourceLine,
                   const char* pExceptionType);
  GenericException(const char* pDescription, const char* pSourceFileName, unsigned int SourceLine,
                   const char* pEntryPoint, const char* pErrorNodeName, const char* pExceptionType);
  GenericException(const GenericException& other);
  GenericException& operator=(const GenericException& other);
  virtual ~GenericException() noexcept;

  /// The bare text, without position.
  virtual const char* GetDescription() const noexcept;
  /// The file as given, with its folders.
  virtual const char* GetSourceFileName() const noexcept;
  virtual unsigned int GetSourceLine() const noexcept;
  /// The text and everything known about its origin.
  virtual const char* what() const noexcept;

 private:
  gcstring m_Description;
  gcstring m_SourceFileName;
  gcstring m_What;
  unsigned int m_SourceLine;
};

// NOLINTBEGIN(bugprone-macro-parentheses): the name of a class cannot stand in brackets
#define GENICAM_DECLARE_EXCEPTION(name)                                                                      \
  class GCBASE_RTTI_CLASS_API name : public GenericException {                                               \
   public:                                                                                                   \
    name(const char* pDescription, const char* pSourceFileName, int SourceLine);                             \
    name(const char* pDescription, const char* pSourceFileName, int SourceLine, const char* pExceptionType); \
    name(const char* pDescription, const char* pSourceFileName, int SourceLine, const char* pEntryPoint,     \
         const char* pErrorNodeName, const char* pExceptionType);                                            \
    name(const name& other);                                                                                 \
    name& operator=(const name& other);                                                                      \
    ~name() noexcept override;                                                                               \
  }

// NOLINTEND(bugprone-macro-parentheses)

/// Memory could not be allocated.
GENICAM_DECLARE_EXCEPTION(BadAllocException);
/// An argument, often a text, does not mean anything here.
GENICAM_DECLARE_EXCEPTION(InvalidArgumentException);
/// A value lies outside its limits.
GENICAM_DECLARE_EXCEPTION(OutOfRangeException);
/// A property of a description could not be converted.
GENICAM_DECLARE_EXCEPTION(PropertyException);
/// Everything that fails at run time and fits no other kind.
GENICAM_DECLARE_EXCEPTION(RuntimeException);
/// The program or the description contradicts itself.
GENICAM_DECLARE_EXCEPTION(LogicalErrorException);
/// The access mode of a node does not allow the operation.
GENICAM_DECLARE_EXCEPTION(AccessException);
/// Something took too long.
GENICAM_DECLARE_EXCEPTION(TimeoutException);
/// An object does not have the interface asked for.
GENICAM_DECLARE_EXCEPTION(DynamicCastException);

#undef GENICAM_DECLARE_EXCEPTION

/// Builds an exception of type E at a source position. Texts are cut after 2047 characters.
template <class E>
class ExceptionReporter {
 public:
  ExceptionReporter(const char* pSourceFileName, int SourceLine)
      : m_SourceFileName(pSourceFileName), m_SourceLine(SourceLine) {}
  ExceptionReporter(const char* pSourceFileName, int SourceLine, const char* pExceptionType)
      : m_SourceFileName(pSourceFileName), m_ExceptionType(pExceptionType), m_SourceLine(SourceLine) {}

  /// printf style.
  E Report(const char* pFormat, ...) {
    char text[2048];
    std::va_list arguments;
    va_start(arguments, pFormat);
    if (std::vsnprintf(text, sizeof(text), pFormat ? pFormat : "", arguments) < 0) text[0] = '\0';
    va_end(arguments);
    return Make(text);
  }
  E Report() { return Make(""); }
  E Report(const std::string& Description) { return Make(Description.c_str()); }
  E Report(const std::stringstream& Description) { return Make(Description.str().c_str()); }

 private:
  E Make(const char* text) const { return E(text, m_SourceFileName, m_SourceLine, m_ExceptionType); }

  gcstring m_SourceFileName;
  gcstring m_ExceptionType;
  int m_SourceLine;
};

/// Whether the value is the minimum plus a multiple of the (positive) increment, without overflow.
inline bool IsOnIncrementGrid(long long Value, long long Min, long long Inc) {
  return (static_cast<unsigned long long>(Value) - static_cast<unsigned long long>(Min)) %
             static_cast<unsigned long long>(Inc) ==
         0;
}

}  // namespace GENICAM_NAMESPACE

#define GENICAM_REPORTER(type) \
  GENICAM_NAMESPACE::ExceptionReporter<GENICAM_NAMESPACE::type>(__FILE__, __LINE__, #type).Report

#define GENERIC_EXCEPTION GENICAM_REPORTER(GenericException)
#define BAD_ALLOC_EXCEPTION GENICAM_REPORTER(BadAllocException)
#define INVALID_ARGUMENT_EXCEPTION GENICAM_REPORTER(InvalidArgumentException)
#define OUT_OF_RANGE_EXCEPTION GENICAM_REPORTER(OutOfRangeException)
#define PROPERTY_EXCEPTION GENICAM_REPORTER(PropertyException)
#define RUNTIME_EXCEPTION GENICAM_REPORTER(RuntimeException)
#define LOGICAL_ERROR_EXCEPTION GENICAM_REPORTER(LogicalErrorException)
#define ACCESS_EXCEPTION GENICAM_REPORTER(AccessException)
#define TIMEOUT_EXCEPTION GENICAM_REPORTER(TimeoutException)
#define DYNAMICCAST_EXCEPTION GENICAM_REPORTER(DynamicCastException)

/// Throw OutOfRangeException unless the value lies inside the limits (and on the grid of the increment).
#define CHECK_RANGE_I64(_Value, _Min, _Max, _Inc)                                                          \
  do {                                                                                                     \
    const long long checkedValue = (_Value);                                                               \
    const long long checkedMin = (_Min);                                                                   \
    const long long checkedMax = (_Max);                                                                   \
    const long long checkedInc = (_Inc);                                                                   \
    if (checkedInc <= 0) throw LOGICAL_ERROR_EXCEPTION("Increment must be larger than 0.");                \
    if (checkedValue < checkedMin)                                                                         \
      throw OUT_OF_RANGE_EXCEPTION("Value = %lld must be equal or greater than Min = %lld.", checkedValue, \
                                   checkedMin);                                                            \
    if (checkedValue > checkedMax)                                                                         \
      throw OUT_OF_RANGE_EXCEPTION("Value = %lld must be equal or smaller than Max = %lld.", checkedValue, \
                                   checkedMax);                                                            \
    if (!GENICAM_NAMESPACE::IsOnIncrementGrid(checkedValue, checkedMin, checkedInc))                       \
      throw OUT_OF_RANGE_EXCEPTION(                                                                        \
          "The difference between Value = %lld and Min = %lld must be dividable without rest by Inc = "    \
          "%lld.",                                                                                         \
          checkedValue, checkedMin, checkedInc);                                                           \
  } while (false)

#define CHECK_RANGE_FLT(_Value, _Min, _Max)                                                                 \
  do {                                                                                                      \
    const double checkedValue = (_Value);                                                                   \
    const double checkedMin = (_Min);                                                                       \
    const double checkedMax = (_Max);                                                                       \
    if (checkedValue < checkedMin)                                                                          \
      throw OUT_OF_RANGE_EXCEPTION("Value %f must be greater than or equal %f.", checkedValue, checkedMin); \
    if (checkedValue > checkedMax)                                                                          \
      throw OUT_OF_RANGE_EXCEPTION("Value %f must be smaller than or equal %f.", checkedValue, checkedMax); \
  } while (false)

#define CHECK_DYNAMIC_CAST_POINTER(_Pointer)                                         \
  do {                                                                               \
    if (!(_Pointer)) throw DYNAMICCAST_EXCEPTION("Unexpected type in dynamic cast"); \
  } while (false)

#endif
