/// A program that a test starts and ends.
#ifndef ZYN_TEST_CHILD_PROCESS_H
#define ZYN_TEST_CHILD_PROCESS_H

#include <sys/types.h>

#include <map>
#include <regex>
#include <string>
#include <vector>

namespace zyntest {

/// Owns one running program. Ends it when it goes, and never leaves one behind: the program also ends when
/// this process dies.
class ChildProcess {
 public:
  /// Starts arguments[0] (looked up on PATH) with its output discarded. Throws std::runtime_error when it
  /// cannot start.
  explicit ChildProcess(const std::vector<std::string>& arguments);
  /// The same, but its standard output can be read with NextLine.
  struct WithOutput {};
  ChildProcess(const std::vector<std::string>& arguments, WithOutput);
  /// The same, but its standard error is a terminal, which can be read with WaitForText.
  struct OnTerminal {};
  ChildProcess(const std::vector<std::string>& arguments, OnTerminal);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  bool IsRunning();
  /// Sends a signal and waits until the program has ended. Returns its exit code, 128 + signal when it was ended
  /// by one, and -1 when it had ended before.
  int End(int signal);
  /// Stops the program in the middle of what it does, and returns when it stands still. Only while it runs.
  void Suspend() const;
  void Resume() const;

  /// Waits for the next line that the program writes. Throws std::runtime_error when it ends without another,
  /// or writes none for a minute.
  std::string NextLine();

  /// Waits until the pattern is found in what the program has written, and forgets everything up to its end. Returns
  /// what the pattern's first group matched. Throws std::runtime_error as NextLine does.
  std::string WaitForText(const std::regex& pattern);

 private:
  void Start(const std::vector<std::string>& arguments, int output, int error);
  void ReadMore();

  pid_t pid_ = -1;
  int output_ = -1;      // to read from; -1 when the output is discarded
  std::string pending_;  // read, but not returned yet
};

/// What a program that ran to its end left.
struct Finished {
  int exitCode = -1;  ///< 128 + signal when it was ended by one
  std::string out;
  std::string err;
};

/// Runs a program to its end. environment: variables to add or replace.
Finished RunToEnd(const std::vector<std::string>& arguments,
                  const std::map<std::string, std::string>& environment = {});

}  // namespace zyntest

#endif
