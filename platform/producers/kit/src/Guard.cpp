#include "Guard.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "producer/Error.h"

namespace zyn::producer {
namespace {

constexpr std::size_t kTextBytes = 512;

// Plain memory on purpose: a thread-local object with a destructor would run code of this library when a
// thread ends after the library was unloaded.
struct LastError {
  GenTL::GC_ERROR code;
  bool initialising;
  char text[kTextBytes];
};
thread_local LastError lastError = {GenTL::GC_ERR_SUCCESS, false, {}};

void Append(std::size_t& at, const char* text) {
  const std::size_t length = std::min(std::strlen(text), kTextBytes - 1 - at);
  std::memcpy(lastError.text + at, text, length);
  at += length;
  lastError.text[at] = '\0';
}

GenTL::GC_ERROR Remember(const char* function, GenTL::GC_ERROR code, const char* text) noexcept {
  lastError.code = code;
  std::size_t at = 0;
  Append(at, function);
  Append(at, ": ");
  Append(at, text);
  return code;
}

}  // namespace

GenTL::GC_ERROR RememberCurrentException(const char* function, bool initialising) noexcept {
  lastError.initialising = initialising;
  try {
    throw;
  } catch (const Error& error) {
    // A backend that throws "success" by mistake must still look like a failure to the consumer.
    const GenTL::GC_ERROR code = error.Code() == GenTL::GC_ERR_SUCCESS ? GenTL::GC_ERR_ERROR : error.Code();
    return Remember(function, code, error.what());
  } catch (const std::bad_alloc&) {
    return Remember(function, GenTL::GC_ERR_OUT_OF_MEMORY, "There is not enough memory.");
  } catch (const std::exception& error) {
    return Remember(function, GenTL::GC_ERR_ERROR, error.what());
  } catch (...) {
    return Remember(function, GenTL::GC_ERR_ERROR, "An unknown exception was thrown.");
  }
}

bool LastErrorIsOfInitialising() {
  return lastError.initialising;
}

GenTL::GC_ERROR LastErrorCode() {
  return lastError.code;
}

std::string LastErrorText() {
  return lastError.code == GenTL::GC_ERR_SUCCESS ? "No Error" : std::string(lastError.text);
}

}  // namespace zyn::producer
