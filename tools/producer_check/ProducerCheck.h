/// Puts a GenTL producer file through the rules that consumers rely on.
#ifndef ZYN_PRODUCER_CHECK_H
#define ZYN_PRODUCER_CHECK_H

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace zyn::producercheck {

enum class Outcome { kPassed, kFailed, kNotApplicable };

/// What one check found.
struct CheckResult {
  std::string name;  ///< for example "event-kill"; stays the same between versions
  std::string what;  ///< the rule in a few words
  Outcome outcome = Outcome::kPassed;
  std::string sentence;      ///< what went wrong, or why the check does not apply; "" when it passed
  bool lacksCamera = false;  ///< it does not apply because the camera of CheckOptions::device is not there
};

struct CheckName {
  std::string name;
  std::string what;
};

struct CheckOptions {
  /// The device to check with, by ID or serial number; "" for the first that can be opened.
  std::string device;
  /// The checks to run, by name; empty for all.
  std::vector<std::string> only;
  /// A check that takes longer has hung, and fails.
  std::chrono::milliseconds limit{30000};
  /// Called after every check.
  std::function<void(const CheckResult&)> onResult;
};

/// Every check, in the order in which they run.
std::vector<CheckName> AllChecks();

/// Runs the checks and returns one result each, in order. The producer runs in child processes: one that crashes
/// or hangs costs the check it did so in, and the next one starts in a new process. A check that fails ends its
/// process too, so that a broken state does not spread.
///
/// The checks open a camera, start its stream and run the commands that refresh lists; they change no setting of
/// the camera but TLParamsLocked. A camera that sends only when it is triggered sends nothing here, and the checks
/// that need frames do not apply.
///
/// Call it while the process has no other thread: child processes are forked. Throws std::invalid_argument for an
/// unknown name in `only`, std::runtime_error when no process can be made.
std::vector<CheckResult> CheckProducer(const std::string& file, const CheckOptions& options);

}  // namespace zyn::producercheck

#endif
