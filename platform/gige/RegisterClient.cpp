#include "gige/RegisterClient.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "gige/Reply.h"

namespace zyn::gige {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kLongestPending{10'000};

bool IsAligned(std::uint32_t address, std::size_t bytes) {
  return address % 4 == 0 && bytes % 4 == 0;
}

// True when the socket has something before `until`.
bool WaitFor(const UdpSocket& socket, Clock::time_point until) {
  const auto wait = std::chrono::ceil<milliseconds>(until - Clock::now()).count();
  if (wait <= 0) return false;
  pollfd descriptor{socket.Descriptor(), POLLIN, 0};
  return poll(&descriptor, 1, static_cast<int>(wait)) > 0;
}

}  // namespace

std::unique_ptr<RegisterClient> RegisterClient::Connect(Ipv4 local, Ipv4 device, const Options& options) {
  auto socket = UdpSocket::ConnectedTo(local, device, kGvcpPort);
  if (!socket) return nullptr;
  return std::unique_ptr<RegisterClient>(new RegisterClient(std::move(*socket), options));
}

Result RegisterClient::ReadRegister(std::uint32_t address, std::uint32_t& value) {
  const MutexLock lock(mutex_);
  const std::uint16_t request = NextRequest();
  const Answer answer = Execute(EncodeReadRegister(request, address), command::kReadRegister, request);
  if (answer.result != Result::ok) return answer.result;
  const auto read = ParseReadRegister(answer.payload);
  if (!read) return Result::deviceError;
  value = *read;
  return Result::ok;
}

Result RegisterClient::WriteRegister(std::uint32_t address, std::uint32_t value) {
  const MutexLock lock(mutex_);
  const std::uint16_t request = NextRequest();
  return Execute(EncodeWriteRegister(request, address, value), command::kWriteRegister, request).result;
}

Result RegisterClient::ReadMemory(std::uint32_t address, std::span<std::uint8_t> data) {
  if (!IsAligned(address, data.size())) return Result::invalidParameter;
  const MutexLock lock(mutex_);
  while (!data.empty()) {
    const std::size_t count = std::min(data.size(), kMostMemoryBytes);
    const Result result = ReadBlock(address, data.first(count));
    if (result != Result::ok) return result;
    address += static_cast<std::uint32_t>(count);
    data = data.subspan(count);
  }
  return Result::ok;
}

Result RegisterClient::WriteMemory(std::uint32_t address, ByteView data) {
  if (!IsAligned(address, data.size())) return Result::invalidParameter;
  const MutexLock lock(mutex_);
  while (!data.empty()) {
    const std::size_t count = std::min(data.size(), kMostMemoryBytes);
    const Result result = WriteBlock(address, data.first(count));
    if (result != Result::ok) return result;
    address += static_cast<std::uint32_t>(count);
    data = data.subspan(count);
  }
  return Result::ok;
}

Result RegisterClient::ReadBlock(std::uint32_t address, std::span<std::uint8_t> data) {
  const std::uint16_t request = NextRequest();
  const auto count = static_cast<std::uint16_t>(data.size());
  const Answer answer = Execute(EncodeReadMemory(request, address, count), command::kReadMemory, request);
  if (answer.result != Result::ok) return answer.result;
  const auto read = ParseReadMemory(answer.payload, address, data.size());
  if (!read) return Result::deviceError;
  std::copy(read->begin(), read->end(), data.begin());
  return Result::ok;
}

Result RegisterClient::WriteBlock(std::uint32_t address, ByteView data) {
  const std::uint16_t request = NextRequest();
  return Execute(EncodeWriteMemory(request, address, data), command::kWriteMemory, request).result;
}

// Identifiers run from 1 to 65535: 0 is none.
std::uint16_t RegisterClient::NextRequest() {
  if (++lastRequest_ == 0) lastRequest_ = 1;
  return lastRequest_;
}

// Attempts carry the same identifier, so that the device does not run the command twice.
RegisterClient::Answer RegisterClient::Execute(const Bytes& command, std::uint16_t commandId,
                                               std::uint16_t requestId) {
  for (int attempt = 0; attempt < options_.attempts; ++attempt) {
    Answer answer = Attempt(command, commandId, requestId);
    if (answer.result != Result::noAnswer) return answer;
  }
  return {};
}

RegisterClient::Answer RegisterClient::Attempt(const Bytes& command, std::uint16_t commandId,
                                               std::uint16_t requestId) {
  // A refusal left over from an earlier command is reported by the first call after it: a second try tells.
  if (!socket_.Send(command) && !socket_.Send(command)) {
    return {errno == ECONNREFUSED ? Result::nobodyListens : Result::systemError, {}};
  }
  const Clock::time_point start = Clock::now();
  Clock::time_point until = start + options_.timeout;
  std::array<std::uint8_t, kLargestDatagram> buffer{};
  while (WaitFor(socket_, until)) {
    const auto received = socket_.Receive(buffer);
    if (!received) continue;
    if (received->refused) return {Result::nobodyListens, {}};
    const Reply reply = InterpretReply(ByteView(buffer).first(received->bytes), commandId, requestId);
    if (reply.kind == Reply::Kind::pending)
      until = std::min(Clock::now() + reply.more, start + options_.timeout + kLongestPending);
    if (reply.kind == Reply::Kind::answer)
      return {reply.result, Bytes(reply.payload.begin(), reply.payload.end())};
  }
  return {};
}

}  // namespace zyn::gige
