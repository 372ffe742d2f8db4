/// Hands notifications to the application.
#ifndef ZYN_TRANSPORT_NOTIFIER_H
#define ZYN_TRANSPORT_NOTIFIER_H

#include <array>
#include <atomic>
#include <cstddef>

#include <KELGeniCam.h>

namespace zyn::transport {

/// The receivers of one camera, one per source and type. Thread-safe, without a lock that a receiver could
/// run into.
class Notifier {
 public:
  static constexpr std::size_t kSources = KELGENICAM::NOTIFY_SRC_DATA_STREAM + 1;
  static constexpr std::size_t kTypes = KELGENICAM::NOTIFY_FRAME_DROPPED + 1;

  /// False for a source or type that does not exist.
  bool Register(int source, int type, KELGENICAM::INotify* receiver);
  bool IsWanted(KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type) const;
  /// Calls the receiver, on this thread. Nothing happens after End.
  void Send(KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type, const void* data,
            std::size_t length);
  /// The camera object is going: waits for calls under way, and nobody is called any more.
  void End();

 private:
  std::array<std::array<std::atomic<KELGENICAM::INotify*>, kTypes>, kSources> receivers_{};
  std::atomic<int> callsUnderWay_{0};
};

}  // namespace zyn::transport

#endif
