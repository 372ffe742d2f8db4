/// What a producer does wrong, as the environment variable ZYN_FAULT tells.
///
///   FUNCTION[#NUMBER][@CALL]:ACTION
///
/// concerns one function; with #NUMBER only where its first 32-bit argument (a command, flag or type) is NUMBER, and
/// with @CALL only the call of that number, counted from 1. ACTION is one of
///
///   =CODE        return CODE without doing anything
///   CODE>CODE    return the second where the first would have been returned
///   value=N      answer N instead
///   text=TEXT    answer TEXT instead
///   type=N       answer with another type
///   size=N       tell another size or count, also after a failure
///   replace=A/B  change A into B in what is read; both equally long
///   self         hand out the handle that came in
///   twice        do it twice
///   countdown    answer numbers that go down
///   elsewhere=CODE  return CODE on every thread but the first
///   crash, hang
///
/// or a mistake of its own (see FaultyProducer.cpp): "scribble", "endless", "needs-update", "unload".
#ifndef ZYN_TESTS_PRODUCER_CHECK_FAULT_H
#define ZYN_TESTS_PRODUCER_CHECK_FAULT_H

#include <optional>
#include <string>

namespace faulty {

struct Fault {
  std::string function;  ///< or the name of a mistake of its own
  std::optional<int> number;
  std::optional<int> call;
  std::string action;
  std::string argument;
};

/// The fault of this process; read once.
const Fault& TheFault();

/// True when the process has that mistake of its own.
bool Has(const char* mistake);

}  // namespace faulty

#endif
