/// A scripted device that also streams: every packet is sent, or left out, on command.
#ifndef ZYN_TESTS_STREAMING_DEVICE_H
#define ZYN_TESTS_STREAMING_DEVICE_H

#include <cstdint>
#include <set>
#include <vector>

#include "ScriptedDevice.h"

namespace zyn::test {

/// One block, as it goes over the wire.
struct WireFrame {
  std::uint16_t payloadType = 0x0001;
  std::uint16_t id = 1;
  std::uint64_t timestamp = 1000;
  std::uint32_t pixelFormat = 0x01080001;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t xOffset = 0;
  std::uint32_t yOffset = 0;
  std::uint16_t xPadding = 0;
  std::uint16_t yPadding = 0;
  gige::Bytes data;
  std::set<std::size_t> dropped;  ///< packets that get lost: 0 is the leader, then the data, then the trailer
};

/// At 127.0.0.2. Its description tells the payload size `payloadBytes`.
class StreamingDevice {
 public:
  explicit StreamingDevice(std::uint32_t payloadBytes);
  ~StreamingDevice();
  StreamingDevice(const StreamingDevice&) = delete;
  StreamingDevice& operator=(const StreamingDevice&) = delete;

  ScriptedDevice& Control() { return control_; }
  /// Sends to where the stream channel was directed.
  void Send(const WireFrame& frame);

  static constexpr std::size_t kPacketDataBytes = 1464;  // of a packet of 1500 bytes

 private:
  void SendPacket(const gige::Bytes& packet);

  ScriptedDevice control_;
  int socket_ = -1;
};

/// `data` followed by the trailer of a chunk.
gige::Bytes Chunk(std::uint32_t id, const gige::Bytes& data);

}  // namespace zyn::test

#endif
