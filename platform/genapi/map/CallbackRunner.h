/// Calls callbacks and lets registrations end safely meanwhile.
#ifndef ZYN_GENAPI_MAP_CALLBACKRUNNER_H
#define ZYN_GENAPI_MAP_CALLBACKRUNNER_H

#include <condition_variable>
#include <thread>
#include <unordered_map>
#include <vector>

#include "GenApi/NodeCallback.h"
#include "ThreadAnnotations.h"

namespace zyn::genapi {

/// What is registered in one node map, and what is running. A registration may end at any time on any thread:
/// inside the callback itself, inside another one, or beside a running one.
class CallbackRunner {
 public:
  using Callback = GENAPI_NAMESPACE::CNodeCallback;

  // With the map's lock held.
  void Add(Callback* callback) { ++registered_[callback]; }
  void Remove(Callback* callback);
  bool IsEmpty() const { return registered_.empty(); }
  bool IsRegistered(Callback* callback) const { return registered_.count(callback) != 0; }
  /// From now until Run() is over the callback counts as running on this thread.
  void Begin(Callback* callback);

  /// Calls what was begun. Lets its exceptions through.
  void Run(Callback* callback, GENAPI_NAMESPACE::ECallbackType phase);

  /// After Remove(): waits until the callback runs on no other thread, so that whatever it uses may end. Does not
  /// wait where that could last for ever: when it runs on this thread, or `holdsLock` says that this thread
  /// holds the map's lock, which the callback may be waiting for. With `destroys` the object is destroyed as
  /// soon as it is no longer running.
  void Retire(Callback* callback, bool holdsLock, bool destroys);

 private:
  struct Running {
    Callback* callback;
    std::thread::id thread;
    bool destroyAfterwards;
  };
  void End(Callback* callback);
  Running* FindRunning(Callback* callback) ZYN_REQUIRES(mutex_);
  bool RunsHere(Callback* callback) ZYN_REQUIRES(mutex_);

  // Guarded by the map's lock.
  std::unordered_map<Callback*, int> registered_;

  Mutex mutex_;  // taken last, held for a few instructions
  std::condition_variable ended_;
  std::vector<Running> running_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::genapi

#endif
