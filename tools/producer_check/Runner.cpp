// Runs the checks in child processes.
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "Bench.h"
#include "Check.h"
#include "ProducerCheck.h"

namespace zyn::producercheck {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kClosingLimit{5};  // for a producer to close after a check failed

// A message of a child: the outcome's letter and the sentence, ended by a newline. A line "." is the end of all.
constexpr char kPassedLetter = 'p';
constexpr char kFailedLetter = 'f';
constexpr char kSkippedLetter = 's';
constexpr char kLackingLetter = 'l';  // skipped, because the camera is not there

std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

void Send(int pipe, const std::string& line) {
  const std::string text = line + "\n";
  for (std::size_t at = 0; at < text.size();) {
    const ssize_t written = write(pipe, text.data() + at, text.size() - at);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) _exit(1);  // nobody listens any more
    at += static_cast<std::size_t>(written);
  }
}

// Runs one check and tells its outcome as a message.
std::string Run(const Check& check, Bench& bench) {
  try {
    check.run(bench);
    return {kPassedLetter};
  } catch (const CheckFailed& failure) {
    return kFailedLetter + OneLine(failure.sentence);
  } catch (const NotApplicable& skipped) {
    return (skipped.lacksCamera ? kLackingLetter : kSkippedLetter) + OneLine(skipped.reason);
  } catch (const MissingFunction& missing) {
    return kSkippedLetter + std::string("the producer lacks ") + missing.name;
  } catch (const std::exception& error) {
    return kFailedLetter + OneLine(std::string("an exception came out of the producer: ") + error.what());
  } catch (...) {
    return kFailedLetter + std::string("an exception came out of the producer");
  }
}

// The child's whole life. Ends after the first check that fails.
[[noreturn]] void LiveAsChild(int pipe, const std::string& file, const std::string& device,
                              const std::vector<Check>& checks) {
#ifdef __linux__
  prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
  const rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);  // a crash is a result here
  {
    Bench bench(file, device);
    for (const Check& check : checks) {
      const std::string message = Run(check, bench);
      Send(pipe, message);
      if (message.front() == kFailedLetter) break;
    }
  }
  Send(pipe, ".");
  _exit(0);
}

// One child process, and the messages it sends.
class Child {
 public:
  Child(const std::string& file, const std::string& device, const std::vector<Check>& checks) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("a pipe cannot be made");
    process_ = fork();
    if (process_ == 0) {
      close(ends[0]);
      LiveAsChild(ends[1], file, device, checks);
    }
    close(ends[1]);
    pipe_ = ends[0];
    if (process_ < 0) {
      close(pipe_);
      throw std::runtime_error("a process cannot be started");
    }
  }
  ~Child() {
    close(pipe_);
    if (isWaitedFor_) return;
    kill(process_, SIGKILL);
    Wait();
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  enum class Reading { kLine, kEnd, kOverdue };

  Reading Next(Clock::time_point deadline, std::string& line) {
    for (;;) {
      const std::size_t end = pending_.find('\n');
      if (end != std::string::npos) {
        line = pending_.substr(0, end);
        pending_.erase(0, end + 1);
        return Reading::kLine;
      }
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
      if (left.count() <= 0) return Reading::kOverdue;
      pollfd wanted{pipe_, POLLIN, 0};
      if (poll(&wanted, 1, static_cast<int>(left.count()) + 1) <= 0) continue;
      char bytes[4096];
      const ssize_t count = read(pipe_, bytes, sizeof bytes);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return Reading::kEnd;
      pending_.append(bytes, static_cast<std::size_t>(count));
    }
  }

  /// How the process ended. Waits for it.
  std::string Obituary() {
    const int status = Wait();
    if (!WIFSIGNALED(status))
      return "ended the process with exit code " + std::to_string(WEXITSTATUS(status));
    const int signal = WTERMSIG(status);
    const char* const name = strsignal(signal);  // NOLINT(concurrency-mt-unsafe): there is no other thread
    return "crashed with signal " + std::to_string(signal) + " (" + name + ")";
  }

 private:
  int Wait() {
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    isWaitedFor_ = true;
    return status;
  }

  pid_t process_ = -1;
  int pipe_ = -1;
  bool isWaitedFor_ = false;
  std::string pending_;
};

std::vector<Check> Choose(const std::vector<std::string>& only) {
  std::vector<Check> all = Catalogue();
  if (only.empty()) return all;
  for (const std::string& name : only) {
    const auto isIt = [&](const Check& check) { return check.name == name; };
    if (std::none_of(all.begin(), all.end(), isIt)) throw std::invalid_argument("there is no check " + name);
  }
  const auto isUnwanted = [&](const Check& check) {
    return std::find(only.begin(), only.end(), check.name) == only.end();
  };
  all.erase(std::remove_if(all.begin(), all.end(), isUnwanted), all.end());
  return all;
}

CheckResult Make(const Check& check, Outcome outcome, std::string sentence) {
  return CheckResult{check.name, check.what, outcome, std::move(sentence), false};
}

CheckResult FromMessage(const Check& check, const std::string& message) {
  const std::string sentence = message.substr(1);
  if (message.front() == kPassedLetter) return Make(check, Outcome::kPassed, sentence);
  if (message.front() == kSkippedLetter) return Make(check, Outcome::kNotApplicable, sentence);
  if (message.front() == kLackingLetter) {
    CheckResult result = Make(check, Outcome::kNotApplicable, sentence);
    result.lacksCamera = true;
    return result;
  }
  return Make(check, Outcome::kFailed, sentence);
}

// Runs checks from the first on in one process and returns what they came to: at least one result.
std::vector<CheckResult> RunInOneProcess(const std::string& file, const CheckOptions& options,
                                         const std::vector<Check>& checks) {
  Child child(file, options.device, checks);
  std::vector<CheckResult> results;
  const auto add = [&](CheckResult result) {
    results.push_back(std::move(result));
    if (options.onResult) options.onResult(results.back());
  };
  while (results.size() < checks.size()) {
    const Check& check = checks[results.size()];
    std::string message;
    const Child::Reading reading = child.Next(Clock::now() + options.limit, message);
    if (reading == Child::Reading::kOverdue) {
      add(Make(check, Outcome::kFailed, "the producer hangs"));
      return results;
    }
    if (reading == Child::Reading::kEnd || message.empty()) {
      add(Make(check, Outcome::kFailed, "the producer " + child.Obituary()));
      return results;
    }
    add(FromMessage(check, message));
    if (results.back().outcome == Outcome::kFailed) break;
  }
  std::string ignored;
  child.Next(Clock::now() + kClosingLimit, ignored);  // lets it close the camera
  return results;
}

}  // namespace

std::vector<CheckName> AllChecks() {
  std::vector<CheckName> names;
  for (const Check& check : Catalogue()) names.push_back({check.name, check.what});
  return names;
}

std::vector<CheckResult> CheckProducer(const std::string& file, const CheckOptions& options) {
  std::vector<Check> checks = Choose(options.only);
  std::vector<CheckResult> results;
  while (!checks.empty()) {
    std::vector<CheckResult> some = RunInOneProcess(file, options, checks);
    const bool isShut = checks[some.size() - 1].isGate && some.back().outcome == Outcome::kFailed;
    checks.erase(checks.begin(), checks.begin() + static_cast<std::ptrdiff_t>(some.size()));
    std::move(some.begin(), some.end(), std::back_inserter(results));
    if (isShut) break;
  }
  const std::string gate = results.empty() ? std::string() : results.back().name;
  for (const Check& check : checks) {
    results.push_back(Make(check, Outcome::kNotApplicable, gate + " failed"));
    if (options.onResult) options.onResult(results.back());
  }
  return results;
}

}  // namespace zyn::producercheck
