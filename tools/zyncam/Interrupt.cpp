#include "Interrupt.h"

#include <atomic>
#include <csignal>

namespace zyncam {
namespace {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): set by a signal
std::atomic<bool> g_interrupted{false};

void OnSignal(int) {
  g_interrupted = true;
}

}  // namespace

InterruptGuard::InterruptGuard() : previous_(std::signal(SIGINT, &OnSignal)) {}

InterruptGuard::~InterruptGuard() {
  std::signal(SIGINT, previous_);
}

bool IsInterrupted() {
  return g_interrupted;
}

}  // namespace zyncam
