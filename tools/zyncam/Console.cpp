#include "Console.h"

#include <fcntl.h>
#include <unistd.h>

namespace zyncam {

Console::Console(bool showTrace) : results_(stdout), errorIsTerminal_(isatty(STDERR_FILENO) != 0) {
  const int kept = dup(STDOUT_FILENO);
  if (kept < 0) return;
  std::FILE* results = fdopen(kept, "w");
  if (results == nullptr) {
    close(kept);
    return;
  }
  results_ = results;
  const int elsewhere = showTrace ? dup(STDERR_FILENO) : open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (elsewhere < 0) return;
  dup2(elsewhere, STDOUT_FILENO);
  close(elsewhere);
}

Console::~Console() {
  if (results_ != stdout) std::fclose(results_);
}

void Console::Line(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), results_);
  std::fputc('\n', results_);
  std::fflush(results_);
}

void Console::Note(const std::string& text) {
  std::fprintf(stderr, "%s\n", text.c_str());
}

void Console::Progress(const std::string& text) {
  if (!errorIsTerminal_) return;
  std::fprintf(stderr, "\r\x1b[K%s", text.c_str());
  std::fflush(stderr);
  progressShown_ = true;
}

void Console::EndProgress() {
  if (!progressShown_) return;
  std::fprintf(stderr, "\r\x1b[K");
  std::fflush(stderr);
  progressShown_ = false;
}

}  // namespace zyncam
