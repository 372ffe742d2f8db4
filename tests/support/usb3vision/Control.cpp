#include "usb3vision/Control.h"

namespace zyntest::usb3 {
namespace {

Bytes Packet(Status status, std::uint16_t command, std::uint16_t request, const Bytes& data) {
  Bytes packet;
  Append(packet, kControlMagic, 4);
  Append(packet, static_cast<std::uint16_t>(status), 2);
  Append(packet, command, 2);
  Append(packet, data.size(), 2);
  Append(packet, request, 2);
  packet.insert(packet.end(), data.begin(), data.end());
  return packet;
}

Status Read(Registers& registers, std::span<const std::uint8_t> command, Bytes& answer) {
  if (command.size() != 12) return Status::invalidParameter;
  const std::size_t size = Load(command.data() + 10, 2);
  if (size == 0 || size + kControlHeaderBytes > kLargestControlPacket) return Status::invalidParameter;
  answer.resize(size);
  const Status status = registers.Read(Load(command.data(), 8), answer);
  if (status != Status::success) answer.clear();
  return status;
}

Status Write(Registers& registers, std::span<const std::uint8_t> command, Bytes& answer) {
  if (command.size() <= 8 || command.size() + kControlHeaderBytes > kLargestControlPacket)
    return Status::invalidParameter;
  const Status status = registers.Write(Load(command.data(), 8), command.subspan(8));
  if (status != Status::success) return status;
  Append(answer, 0, 2);
  Append(answer, command.size() - 8, 2);
  return status;
}

}  // namespace

std::vector<Bytes> Execute(Registers& registers, std::span<const std::uint8_t> command) {
  if (command.size() < kControlHeaderBytes || Load(command.data(), 4) != kControlMagic) return {};
  const auto code = static_cast<std::uint16_t>(Load(command.data() + 6, 2));
  const auto request = static_cast<std::uint16_t>(Load(command.data() + 10, 2));
  const std::size_t size = Load(command.data() + 8, 2);
  if (size != command.size() - kControlHeaderBytes) return {};
  const auto data = command.subspan(kControlHeaderBytes);
  Bytes answer;
  switch (code) {
    case kReadMemory: {
      const Status status = Read(registers, data, answer);
      return {Packet(status, code | kAckBit, request, answer)};
    }
    case kWriteMemory: {
      const Status status = Write(registers, data, answer);
      // A camera may ask for patience at any time; this one does so with each write.
      Bytes patience;
      Append(patience, 0, 2);
      Append(patience, 1000, 2);
      return {Packet(Status::success, kPendingAck, request, patience),
              Packet(status, code | kAckBit, request, answer)};
    }
    default:
      return {Packet(Status::notImplemented, code | kAckBit, request, {})};
  }
}

}  // namespace zyntest::usb3
