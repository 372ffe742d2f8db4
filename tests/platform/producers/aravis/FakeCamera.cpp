#include "FakeCamera.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>
#include <vector>

#include "gige/RegisterClient.h"

namespace zyn::test {
namespace {

constexpr const char* kProgram = "arv-fake-gv-camera-0.8";

pid_t Spawn(const std::vector<std::string>& arguments) {
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);
  pid_t process = -1;
  if (posix_spawnp(&process, pointers[0], nullptr, nullptr, pointers.data(), environ) != 0) {
    throw std::runtime_error("cannot start " + arguments[0]);
  }
  return process;
}

void Run(const std::vector<std::string>& arguments) {
  int status = 0;
  waitpid(Spawn(arguments), &status, 0);
}

void WaitUntilItAnswers(gige::Ipv4 address) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (std::chrono::steady_clock::now() < deadline) {
    const auto client =
        gige::RegisterClient::Connect(gige::kNoAddress, address, {std::chrono::milliseconds(200), 1});
    std::uint32_t value = 0;
    if (client && client->ReadRegister(gige::bootstrap::kControlPrivilege, value) == gige::Result::ok) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  throw std::runtime_error("the fake camera does not answer");
}

}  // namespace

FakeCamera::FakeCamera(const std::string& address, const std::string& serial)
    : address_(address), serial_(serial) {
  // 127.0.0.1 is there from the start; adding it again fails, and that is fine.
  if (address != "127.0.0.1") Run({"ip", "address", "replace", address + "/8", "dev", "lo"});
  Restart();
}

FakeCamera::~FakeCamera() {
  Kill();
}

void FakeCamera::Kill() {
  if (process_ < 0) return;
  kill(process_, SIGKILL);
  int status = 0;
  waitpid(process_, &status, 0);
  process_ = -1;
}

void FakeCamera::Restart() {
  Kill();
  process_ = Spawn({kProgram, "-i", address_, "-s", serial_});
  WaitUntilItAnswers(*gige::ParseIpv4(address_));
}

void FakeCamera::Freeze() {
  kill(process_, SIGSTOP);
  int status = 0;
  waitpid(process_, &status, WUNTRACED);  // until it has really stopped: the signal may take its time
}

void FakeCamera::Thaw() {
  kill(process_, SIGCONT);
}

}  // namespace zyn::test
