#include "map/CallbackRunner.h"

#include <algorithm>

namespace zyn::genapi {

void CallbackRunner::Remove(Callback* callback) {
  const auto found = registered_.find(callback);
  if (found != registered_.end() && --found->second == 0) registered_.erase(found);
}

void CallbackRunner::Begin(Callback* callback) {
  const MutexLock lock(mutex_);
  running_.push_back({callback, std::this_thread::get_id(), false});
}

void CallbackRunner::Run(Callback* callback, GENAPI_NAMESPACE::ECallbackType phase) {
  struct Ender {
    CallbackRunner& runner;
    Callback* callback;
    ~Ender() { runner.End(callback); }
  };
  const Ender ender{*this, callback};
  (*callback)(phase);
}

CallbackRunner::Running* CallbackRunner::FindRunning(Callback* callback) {
  const auto found = std::find_if(running_.begin(), running_.end(),
                                  [callback](const Running& entry) { return entry.callback == callback; });
  return found == running_.end() ? nullptr : &*found;
}

bool CallbackRunner::RunsHere(Callback* callback) {
  return std::any_of(running_.begin(), running_.end(), [callback](const Running& entry) {
    return entry.callback == callback && entry.thread == std::this_thread::get_id();
  });
}

void CallbackRunner::End(Callback* callback) {
  bool destroys = false;
  {
    const MutexLock lock(mutex_);
    // The innermost run of this thread is the one that ends.
    const auto own = std::find_if(running_.rbegin(), running_.rend(), [callback](const Running& entry) {
      return entry.callback == callback && entry.thread == std::this_thread::get_id();
    });
    destroys = own->destroyAfterwards;
    running_.erase(std::next(own).base());
    if (Running* const other = FindRunning(callback)) {
      other->destroyAfterwards = other->destroyAfterwards || destroys;
      destroys = false;
    }
    ended_.notify_all();
  }
  if (destroys) callback->Destroy();
}

void CallbackRunner::Retire(Callback* callback, bool holdsLock, bool destroys) {
  {
    MutexLock lock(mutex_);
    if (holdsLock || RunsHere(callback)) {
      Running* const running = FindRunning(callback);
      if (running && destroys) running->destroyAfterwards = true;
      if (running) return;
    }
    while (FindRunning(callback)) lock.Wait(ended_);
  }
  if (destroys) callback->Destroy();
}

}  // namespace zyn::genapi
