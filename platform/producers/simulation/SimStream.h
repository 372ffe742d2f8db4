/// The data stream of a simulated camera.
#ifndef ZYN_SIMULATION_SIM_STREAM_H
#define ZYN_SIMULATION_SIM_STREAM_H

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "CameraSlot.h"
#include "CardImage.h"
#include "Connection.h"
#include "producer/Backend.h"

namespace zyn::simulation {

/// One thread takes the camera's frames while the stream is started. How it meets a missing buffer depends on
/// the camera's pacing. Behind a frame grabber card, the card decides what becomes of the camera's image.
class SimStream final : public producer::Stream {
 public:
  /// All of these outlive the stream.
  SimStream(CameraSlot& slot, Connection& connection, producer::StreamSink& sink);
  ~SimStream() override;
  SimStream(const SimStream&) = delete;
  SimStream& operator=(const SimStream&) = delete;

  producer::StreamTraits Traits() const override;
  std::size_t PayloadSize() override;
  void Start() override;
  void Stop(bool kill) override;
  void OnBuffersQueued() override { connection_.Notify(); }

 private:
  void Run();
  bool HasEnded() const { return hasEnded_ || connection_.IsCut(); }
  bool AwaitFrame();
  /// Lets frames pass until the card takes one. False when the stream ended.
  bool AwaitCardTrigger();
  void PassOverEarlierFrames();
  /// Whether a frame waits for a buffer, instead of being lost without one.
  bool WaitsForReader() const;
  producer::StreamBuffer* TakeBuffer();
  producer::StreamBuffer* AwaitBuffer();
  void Fill(producer::StreamBuffer& buffer);
  void FillThroughCard(producer::StreamBuffer& buffer);

  CameraSlot& slot_;
  Connection& connection_;
  producer::StreamSink& sink_;
  Card* const card_;  // null where no card shapes the frames
  std::atomic<bool> hasEnded_{true};
  CardImage cardImage_;                    // touched by the thread only
  std::vector<std::uint8_t> cameraFrame_;  // likewise: what comes over the link
  std::thread thread_;                     // touched by Start and Stop only, which come one at a time
};

}  // namespace zyn::simulation

#endif
