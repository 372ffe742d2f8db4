/// Gives up GLib objects whose end may take seconds.
#ifndef ZYN_ARAVIS_DISPOSER_H
#define ZYN_ARAVIS_DISPOSER_H

#include <chrono>
#include <condition_variable>
#include <list>
#include <memory>
#include <thread>

#include "GlibPtr.h"
#include "ThreadAnnotations.h"

namespace zyn::aravis {

/// libaravis says goodbye to a camera when its last reference goes, and tries for up to five seconds when the camera does
/// not answer. No caller shall wait for that, so each object goes on a thread of its own. The destructor waits for
/// all of them: afterwards the library can be unloaded. Thread-safe.
class Disposer {
 public:
  Disposer() = default;
  ~Disposer();
  Disposer(const Disposer&) = delete;
  Disposer& operator=(const Disposer&) = delete;

  /// A disposal on its way.
  class Ticket {
   public:
    /// Waits until the object is gone, but not longer than `patience`. Returns whether it is.
    bool Wait(std::chrono::milliseconds patience) const;

   private:
    friend class Disposer;
    struct State;
    explicit Ticket(std::shared_ptr<State> state) : state_(std::move(state)) {}
    std::shared_ptr<State> state_;
  };

  /// Takes over one reference and gives it up in the background.
  template <class T>
  Ticket Dispose(GlibPtr<T> object) {
    return DisposeObject(object.release());
  }

 private:
  struct Worker {
    std::thread thread;
    std::shared_ptr<Ticket::State> state;
  };

  Ticket DisposeObject(gpointer object);
  void JoinFinished() ZYN_REQUIRES(mutex_);

  Mutex mutex_;
  std::list<Worker> workers_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::aravis

#endif
