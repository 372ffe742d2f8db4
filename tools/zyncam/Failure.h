/// How the tool says what went wrong: what failed, the status code and its meaning, and what to do.
#ifndef ZYNCAM_FAILURE_H
#define ZYNCAM_FAILURE_H

#include <stdexcept>
#include <string>

namespace zyncam {

/// Exit codes of the program. They are part of its interface: docs/zyncam.md lists them.
enum ExitCode {
  kExitOk = 0,
  kExitFailed = 1,    ///< the camera or the library refused; the message holds the status code
  kExitUsage = 2,     ///< the command line is wrong
  kExitNoCamera = 3,  ///< no camera, not this one, or more than one to choose from
  kExitFeature = 4,   ///< no such feature, not readable or writable, or a value it does not take
  kExitOutput = 5,    ///< a file or folder could not be written
  kExitInterrupted = 130
};

/// Ends a verb. Thrown inside the tool only; main turns it into a message and an exit code.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode exitCode, const std::string& what, const std::string& advice = std::string(),
          long status = 0)
      : std::runtime_error(what), exitCode_(exitCode), status_(status), advice_(advice) {}

  /// For a status code of the library: `what` failed with `status`.
  static Failure OfStatus(const std::string& what, long status);

  ExitCode Exit() const { return exitCode_; }
  long Status() const { return status_; }                ///< 0 when no status code is involved
  const std::string& Advice() const { return advice_; }  ///< may be empty

 private:
  ExitCode exitCode_;
  long status_;
  std::string advice_;
};

/// The meaning of a status code in a few words.
const char* MeaningOf(long status);

/// What a person can do about it; "" when there is nothing better than the meaning.
const char* AdviceFor(long status);

}  // namespace zyncam

#endif
