/// What the stream endpoint sends: leader, image and trailer of each frame of a camera model.
#ifndef ZYN_TEST_USB3VISION_STREAM_SOURCE_H
#define ZYN_TEST_USB3VISION_STREAM_SOURCE_H

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <thread>

#include "ThreadAnnotations.h"
#include "cameras/CameraModel.h"
#include "usb3vision/Wire.h"

namespace zyntest::usb3 {

/// Takes one frame after another from the camera, on a thread of its own, and keeps it until it was fetched. The
/// camera must outlive it. Thread-safe.
class StreamSource {
 public:
  /// onReady: called on the thread of the source, without a lock, when there is something to fetch.
  StreamSource(zyn::cameras::CameraModel& camera, std::function<void()> onReady);
  ~StreamSource();
  StreamSource(const StreamSource&) = delete;
  StreamSource& operator=(const StreamSource&) = delete;

  /// Disabling drops what was not fetched.
  void Enable(bool isEnabled);

  /// The next bytes of the present transfer, as many as there are and as fit. False when there is none. A transfer
  /// ends where one of its pieces is shorter than asked for, or exactly at the end of a piece.
  bool Fetch(std::span<std::uint8_t> bytes, std::size_t& fetched);

 private:
  void Run();
  bool AwaitRoom(std::uint64_t& generation) ZYN_EXCLUDES(mutex_);
  void AddFrame(std::uint64_t generation) ZYN_EXCLUDES(mutex_);

  zyn::cameras::CameraModel& camera_;
  const std::function<void()> onReady_;
  Bytes buffer_;  // the thread's

  zyn::Mutex mutex_;
  std::condition_variable changed_;
  bool isEnding_ ZYN_GUARDED_BY(mutex_) = false;
  bool isEnabled_ ZYN_GUARDED_BY(mutex_) = false;
  std::uint64_t generation_ ZYN_GUARDED_BY(mutex_) = 0;  // of enabling
  std::deque<Bytes> transfers_ ZYN_GUARDED_BY(mutex_);
  std::size_t fetched_ ZYN_GUARDED_BY(mutex_) = 0;  // of the first transfer
  std::thread thread_;
};

}  // namespace zyntest::usb3

#endif
