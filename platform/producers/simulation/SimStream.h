/// The data stream of a simulated camera.
#ifndef ZYN_SIMULATION_SIM_STREAM_H
#define ZYN_SIMULATION_SIM_STREAM_H

#include <atomic>
#include <thread>

#include "CameraSlot.h"
#include "Connection.h"
#include "producer/Backend.h"

namespace zyn::simulation {

/// One thread takes the camera's frames while the stream is started. How it meets a missing buffer depends on
/// the camera's pacing.
class SimStream final : public producer::Stream {
 public:
  /// All of these outlive the stream.
  SimStream(CameraSlot& slot, Connection& connection, producer::StreamSink& sink);
  ~SimStream() override;
  SimStream(const SimStream&) = delete;
  SimStream& operator=(const SimStream&) = delete;

  producer::StreamTraits Traits() const override;
  void Start() override;
  void Stop(bool kill) override;
  void OnBuffersQueued() override { connection_.Notify(); }

 private:
  void Run();
  bool HasEnded() const { return hasEnded_ || connection_.IsCut(); }
  bool AwaitFrame();
  /// Whether a frame waits for a buffer, instead of being lost without one.
  bool WaitsForReader() const;
  producer::StreamBuffer* TakeBuffer();
  producer::StreamBuffer* AwaitBuffer();
  void Fill(producer::StreamBuffer& buffer);

  CameraSlot& slot_;
  Connection& connection_;
  producer::StreamSink& sink_;
  std::atomic<bool> hasEnded_{true};
  std::thread thread_;  // touched by Start and Stop only, which come one at a time
};

}  // namespace zyn::simulation

#endif
