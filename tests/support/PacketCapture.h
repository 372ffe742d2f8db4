/// Records what passes over the loopback adapter, for other programs to judge.
#ifndef ZYN_TEST_PACKET_CAPTURE_H
#define ZYN_TEST_PACKET_CAPTURE_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <thread>
#include <vector>

namespace zyntest {

/// Records from construction on, with a thread of its own. Needs the right to open packet sockets, which every
/// private network (PrivateNetwork.h) gives. Every packet is recorded once.
class PacketCapture {
 public:
  /// Throws std::runtime_error when the system refuses.
  PacketCapture();
  ~PacketCapture();
  PacketCapture(const PacketCapture&) = delete;
  PacketCapture& operator=(const PacketCapture&) = delete;

  /// Ends the recording, with everything that was sent before, and writes it as a pcap file. Throws
  /// std::runtime_error when packets escaped it.
  void Save(const std::filesystem::path& path);

 private:
  void Run();
  bool TakeOne();
  void End();
  void Close();

  int socket_ = -1;
  std::atomic<bool> isEnding_{false};
  std::uint8_t* ring_ = nullptr;  // memory that the system fills
  // The recording thread's until its end.
  std::size_t next_ = 0;               // packet of the ring
  bool isCut_ = false;                 // a packet did not fit its place
  std::vector<std::uint8_t> records_;  // as in the file, one behind the other
  std::thread thread_;
};

}  // namespace zyntest

#endif
