/// Which devices this process has open, across all camera objects.
#ifndef ZYN_TRANSPORT_OPEN_DEVICES_H
#define ZYN_TRANSPORT_OPEN_DEVICES_H

#include <condition_variable>
#include <map>
#include <memory>

#include "../discovery/CameraDescription.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// Thread-safe. A device counts as open until the producer has really closed its handle, which for a lost
/// device happens in the background; a new open waits for that.
class OpenDevices {
 public:
  /// The right to open one device. Given back by its destructor.
  class Claim {
   public:
    Claim(OpenDevices& owner, CameraKey key) : owner_(owner), key_(std::move(key)) {}
    ~Claim();
    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;

    /// From now on a new open waits for the end of this claim instead of being refused.
    void BeginClosing();
    void SetReadOnly();

   private:
    OpenDevices& owner_;
    const CameraKey key_;
  };

  static OpenDevices& Instance();

  /// Null with RESULT_ALREADY_OPEN when another camera object has the device open, with RESULT_BUSY when its
  /// closing takes longer than ten seconds.
  std::shared_ptr<Claim> TryClaim(const CameraKey& key, int& result) ZYN_EXCLUDES(mutex_);

  /// DEVICE_STATE_OPEN_READWRITE or _READONLY for a device that is open here, else `state`.
  int StateOf(const CameraKey& key, int state) ZYN_EXCLUDES(mutex_);

 private:
  struct Entry {
    bool isClosing = false;
    bool isReadOnly = false;
  };

  Mutex mutex_;
  std::condition_variable closed_;
  std::map<CameraKey, Entry> entries_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::transport

#endif
