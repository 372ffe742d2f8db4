/// The border between the C functions and the C++ behind them: no exception crosses it, and the latest
/// failure of each thread is kept for GCGetLastError.
#ifndef ZYN_PRODUCER_GUARD_H
#define ZYN_PRODUCER_GUARD_H

#include <exception>
#include <string>

#include "GenTL/GenTL.h"

namespace zyn::producer {

/// Turns the exception in flight into a result, and remembers it. `function`: name of the C function.
/// initialising: that function is GCInitLib.
GenTL::GC_ERROR RememberCurrentException(const char* function, bool initialising = false) noexcept;

/// The latest failure on this thread. Code GC_ERR_SUCCESS and "No Error" when there was none.
GenTL::GC_ERROR LastErrorCode();
std::string LastErrorText();

/// Whether the latest failure on this thread is that of a GCInitLib.
bool LastErrorIsOfInitialising();

/// Throws Error with GC_ERR_NOT_INITIALIZED between GCCloseLib and GCInitLib.
void RequireInitialized();

/// Runs the body of a C function after checking that the library is initialised.
template <class Body>
GenTL::GC_ERROR Guarded(const char* function, const Body& body) noexcept {
  try {
    RequireInitialized();
    body();
    return GenTL::GC_ERR_SUCCESS;
  } catch (...) {
    return RememberCurrentException(function);
  }
}

}  // namespace zyn::producer

#endif
