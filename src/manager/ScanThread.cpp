#include "ScanThread.h"

#include <utility>

#include "CameraManager.h"

namespace ZYNSDK {

void ScanThread::SleepOneTick() {
  std::this_thread::sleep_for(kTick);
}

ScanThread::ScanThread(CameraManager* manager, Tick tick) : manager_(manager), tick_(std::move(tick)) {
  if (manager_) thread_ = std::thread(&ScanThread::Run, this);
}

ScanThread::~ScanThread() {
  // On the thread itself only when a handler ended the program: it never comes back from there.
  if (thread_.get_id() == std::this_thread::get_id()) thread_.detach();
  Stop();
}

void ScanThread::Stop() {
  isStopped_ = true;
  if (thread_.joinable()) thread_.join();
}

void ScanThread::Run() {
  if (isStopped_) return;
  unsigned int ticks = 0;
  do {
    if (ticks == 0) manager_->ScanForListeners();
    tick_();
    ticks = (ticks + 1) % kTicksPerScan;  // never overflows, so the period stays the same for years
  } while (!isStopped_);
}

}  // namespace ZYNSDK
