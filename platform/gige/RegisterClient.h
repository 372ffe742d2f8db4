/// Reads and writes registers and memory of one GigE Vision device.
#ifndef ZYN_GIGE_REGISTER_CLIENT_H
#define ZYN_GIGE_REGISTER_CLIENT_H

#include <chrono>
#include <memory>
#include <span>

#include "ThreadAnnotations.h"
#include "gige/Result.h"
#include "gige/UdpSocket.h"

namespace zyn::gige {

/// A client of its own in the eyes of the device: registers it takes control with belong to this object's
/// socket. Thread-safe; commands of several threads follow one another, as the protocol demands.
class RegisterClient {
 public:
  struct Options {
    std::chrono::milliseconds timeout{200};  ///< for one attempt; a device may ask for more time
    int attempts = 3;
  };

  /// `local`: the adapter address to talk from; kNoAddress lets the system choose. Sends nothing yet.
  /// Null when the system has no socket or no way to the device.
  static std::unique_ptr<RegisterClient> Connect(Ipv4 local, Ipv4 device, const Options& options);

  /// Each call blocks at most attempts x timeout, plus what the device asks for (10 seconds at most), per 512
  /// bytes. Out parameters are written on success only, but memory reads may leave a part of the data.
  Result ReadRegister(std::uint32_t address, std::uint32_t& value);
  Result WriteRegister(std::uint32_t address, std::uint32_t value);
  Result ReadMemory(std::uint32_t address, std::span<std::uint8_t> data);
  Result WriteMemory(std::uint32_t address, ByteView data);

 private:
  RegisterClient(UdpSocket socket, const Options& options) : options_(options), socket_(std::move(socket)) {}

  struct Answer {
    Result result = Result::noAnswer;
    Bytes payload;
  };

  std::uint16_t NextRequest() ZYN_REQUIRES(mutex_);
  Answer Execute(const Bytes& command, std::uint16_t commandId, std::uint16_t requestId) ZYN_REQUIRES(mutex_);
  Answer Attempt(const Bytes& command, std::uint16_t commandId, std::uint16_t requestId) ZYN_REQUIRES(mutex_);
  Result ReadBlock(std::uint32_t address, std::span<std::uint8_t> data) ZYN_REQUIRES(mutex_);
  Result WriteBlock(std::uint32_t address, ByteView data) ZYN_REQUIRES(mutex_);

  const Options options_;
  Mutex mutex_;
  UdpSocket socket_ ZYN_GUARDED_BY(mutex_);
  std::uint16_t lastRequest_ ZYN_GUARDED_BY(mutex_) = 0;
};

}  // namespace zyn::gige

#endif
