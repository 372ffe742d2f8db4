#include "CImageThread.h"

#include <system_error>

#include "LogicCamera.h"
#include "SetWrapperValue.h"
#include "ZynCamera/IImageHandler.h"
#include "ZynCamera/ZynImage.h"

namespace ZYNSDK {

namespace {

// The object whose thread this is; null on every other thread.
thread_local const CImageThread* deliveringHere = nullptr;

// What the standard library says when there is no thread differs from one to the next.
template <class... Arguments>
std::thread MakeThread(Arguments... arguments) {
  try {
    return std::thread(arguments...);
  } catch (const std::system_error& error) {
    throw std::system_error(error.code(), "thread constructor failed");
  }
}

}  // namespace

CImageThread::CImageThread(LogicCamera& camera) : camera_(camera) {
  SetWrapperValue(&handle_, &camera, true);
}

CImageThread::~CImageThread() {
  Stop();
  handler_ = nullptr;
  zyn::MutexLock lock(mutex_);
  // Still there only when the handler ended the program, so that this runs on the thread itself.
  if (thread_.joinable()) thread_.detach();
}

void CImageThread::Start() {
  if (IsThisThread()) return;
  zyn::MutexLock lock(mutex_);
  if (!handler_) return;
  if (thread_.joinable() && isRunning_) return;
  Join();  // a thread that its own handler stopped
  if (camera_.HasStopped()) return;
  // Design decision: the flag comes first and stays when there is no thread to be had. Pinned by
  // WithoutAThreadToBeHadTheCallerLearnsAndTheFlagStays.
  isRunning_ = true;
  thread_ = MakeThread(&CImageThread::Run, this);
}

void CImageThread::Stop() {
  isRunning_ = false;
  if (IsThisThread()) return;
  zyn::MutexLock lock(mutex_);
  Join();
}

void CImageThread::StopUnlessStreaming() {
  if (IsThisThread()) return;
  zyn::MutexLock lock(mutex_);
  if (thread_.joinable() && camera_.HasStopped()) Join();
}

void CImageThread::Register(IImageHandler* handler) {
  isRunning_ = false;
  if (IsThisThread()) {
    handler_ = handler;
    return;
  }
  zyn::MutexLock lock(mutex_);
  Join();
  handler_ = handler;
}

bool CImageThread::HasThread() const {
  zyn::MutexLock lock(mutex_);
  return thread_.joinable();
}

// Design decision: a failed grab is neither reported nor followed by a pause, and failures are not counted: the
// grab time-out is the pace of this loop. Pinned by FailedGrabsAreNeitherReportedNorTheEnd.
// Design decision: nothing catches what a handler throws, so it ends the program. Pinned by
// CImageThreadDeathTest.AnExceptionOfTheHandlerEndsTheProgram.
void CImageThread::Run() {
  deliveringHere = this;
  ZynImage image;
  while (isRunning_) {
    if (camera_.Grab(&image, nullptr) != ZYN_OK) continue;
    if (IImageHandler* handler = handler_) handler->OnImage(handle_, image);
  }
}

void CImageThread::Join() {
  isRunning_ = false;
  if (thread_.joinable()) thread_.join();
}

bool CImageThread::IsThisThread() const {
  return deliveringHere == this;
}

}  // namespace ZYNSDK
