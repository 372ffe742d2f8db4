/// Where the tool writes: results, messages and progress.
#ifndef ZYNCAM_CONSOLE_H
#define ZYNCAM_CONSOLE_H

#include <cstdio>
#include <string>

namespace zyncam {

/// Owns the tool's output for the life of the program. Results go to the standard output the tool was started
/// with.
///
/// The library writes trace lines to standard output, whatever the application prints there. They would end
/// up between a table's rows and inside JSON texts, so the constructor points file descriptor 1 elsewhere and
/// keeps the original for results: the trace goes to standard error when asked for, else nowhere.
class Console {
 public:
  explicit Console(bool showTrace);
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /// Writes a text to the results, with a newline after it.
  void Line(const std::string& text);

  /// Writes a message for the person at the terminal to standard error.
  static void Note(const std::string& text);

  /// Replaces the progress line on standard error. Does nothing when that is no terminal.
  void Progress(const std::string& text);
  /// Removes the progress line.
  void EndProgress();
  bool HasProgress() const { return errorIsTerminal_; }

 private:
  std::FILE* results_;
  bool errorIsTerminal_;
  bool progressShown_ = false;
};

}  // namespace zyncam

#endif
