#include "ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace zyntest {
namespace {

std::vector<char*> ArgumentsOf(const std::vector<std::string>& arguments) {
  std::vector<char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

int WaitFor(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

struct Pipe {
  int read = -1;
  int write = -1;
  Pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    read = ends[0];
    write = ends[1];
  }
};

bool Drain(int descriptor, std::string& text) {
  std::array<char, 4096> buffer{};
  const ssize_t count = read(descriptor, buffer.data(), buffer.size());
  if (count <= 0) return false;
  text.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

void DrainBoth(int out, int err, Finished& result) {
  std::array<pollfd, 2> ends = {pollfd{out, POLLIN, 0}, pollfd{err, POLLIN, 0}};
  while (ends[0].fd >= 0 || ends[1].fd >= 0) {
    if (poll(ends.data(), ends.size(), -1) < 0) continue;
    if (ends[0].revents != 0 && !Drain(out, result.out)) ends[0].fd = -1;
    if (ends[1].revents != 0 && !Drain(err, result.err)) ends[1].fd = -1;
  }
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments) {
  Start(arguments, -1, -1);
}

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, WithOutput) {
  const Pipe pipe;
  output_ = pipe.read;
  Start(arguments, pipe.write, -1);
  close(pipe.write);
}

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, OnTerminal) {
  output_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  std::array<char, 64> name{};
  if (output_ < 0 || grantpt(output_) != 0 || unlockpt(output_) != 0 ||
      ptsname_r(output_, name.data(), name.size()) != 0) {
    throw std::runtime_error("no terminal");
  }
  const int terminal = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  Start(arguments, -1, terminal);
  close(terminal);
}

void ChildProcess::Start(const std::vector<std::string>& arguments, int output, int error) {
  std::vector<char*> pointers = ArgumentsOf(arguments);
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("cannot start " + arguments.front());
  if (pid_ > 0) return;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);
  const int nothing = open("/dev/null", O_RDWR);
  dup2(nothing, STDIN_FILENO);
  dup2(output < 0 ? nothing : output, STDOUT_FILENO);
  dup2(error < 0 ? nothing : error, STDERR_FILENO);
  execvp(pointers[0], pointers.data());
  _exit(127);
}

ChildProcess::~ChildProcess() {
  End(SIGKILL);
  if (output_ >= 0) close(output_);
}

bool ChildProcess::IsRunning() {
  if (pid_ < 0) return false;
  int status = 0;
  if (waitpid(pid_, &status, WNOHANG) == 0) return true;
  pid_ = -1;
  return false;
}

int ChildProcess::End(int signal) {
  if (pid_ < 0) return -1;
  kill(pid_, signal);
  const int exitCode = WaitFor(pid_);
  pid_ = -1;
  return exitCode;
}

void ChildProcess::Suspend() const {
  kill(pid_, SIGSTOP);
  int status = 0;
  while (waitpid(pid_, &status, WUNTRACED) < 0 && errno == EINTR) {
  }
}

void ChildProcess::Resume() const {
  kill(pid_, SIGCONT);
}

void ChildProcess::ReadMore() {
  constexpr int kLongestWaitMs = 60'000;
  pollfd descriptor{output_, POLLIN, 0};
  if (poll(&descriptor, 1, kLongestWaitMs) <= 0)
    throw std::runtime_error("nothing for a minute behind: " + pending_);
  if (!Drain(output_, pending_)) throw std::runtime_error("nothing more behind: " + pending_);
}

std::string ChildProcess::NextLine() {
  while (pending_.find('\n') == std::string::npos) ReadMore();
  const std::size_t end = pending_.find('\n');
  std::string line = pending_.substr(0, end);
  pending_.erase(0, end + 1);
  return line;
}

std::string ChildProcess::WaitForText(const std::regex& pattern) {
  std::smatch found;
  while (!std::regex_search(pending_, found, pattern)) ReadMore();
  std::string group = found[1];
  pending_ = found.suffix().str();
  return group;
}

Finished RunToEnd(const std::vector<std::string>& arguments,
                  const std::map<std::string, std::string>& environment) {
  std::vector<char*> pointers = ArgumentsOf(arguments);
  const Pipe out;
  const Pipe err;
  const pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("cannot start " + arguments.front());
  if (pid == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (const auto& [name, value] : environment)
      setenv(name.c_str(), value.c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    dup2(out.write, STDOUT_FILENO);
    dup2(err.write, STDERR_FILENO);
    execvp(pointers[0], pointers.data());
    _exit(127);
  }
  close(out.write);
  close(err.write);
  Finished result;
  DrainBoth(out.read, err.read, result);
  close(out.read);
  close(err.read);
  result.exitCode = WaitFor(pid);
  return result;
}

}  // namespace zyntest
