#include "gige/Reply.h"

namespace zyn::gige {
namespace {

Result ResultOf(std::uint16_t code) {
  switch (code) {
    case status::kSuccess:
      return Result::ok;
    case status::kNotImplemented:
      return Result::notImplemented;
    case status::kInvalidParameter:
    case status::kBadAlignment:
      return Result::invalidParameter;
    case status::kInvalidAddress:
      return Result::invalidAddress;
    case status::kWriteProtect:
      return Result::writeProtected;
    case status::kAccessDenied:
      return Result::accessDenied;
    case status::kBusy:
      return Result::busy;
    default:
      return Result::deviceError;
  }
}

}  // namespace

Reply InterpretReply(ByteView datagram, std::uint16_t commandId, std::uint16_t requestId) {
  Reply reply;
  const auto ack = ParseAck(datagram);
  if (!ack || ack->requestId != requestId) return reply;
  if (ack->ackId == command::kPendingAck) {
    const auto more = ParsePendingAck(ack->payload);
    if (!more) return reply;
    reply.kind = Reply::Kind::pending;
    reply.more = std::chrono::milliseconds{*more};
    return reply;
  }
  if (ack->ackId != commandId + 1) return reply;
  reply.kind = Reply::Kind::answer;
  reply.result = ResultOf(ack->status);
  reply.payload = ack->payload;
  return reply;
}

ForceIpReply InterpretForceIpReply(ByteView datagram, const MacAddress& mac, const IpSettings& settings) {
  const auto ack = ParseAck(datagram);
  if (!ack) return ForceIpReply::none;
  if (ack->requestId == kForceRequest && ack->ackId == command::kForceIp + 1)
    return ack->status == status::kSuccess ? ForceIpReply::none : ForceIpReply::refused;
  if (ack->requestId != kForceSearchRequest || ack->ackId != command::kDiscovery + 1)
    return ForceIpReply::none;
  const auto device = ParseDiscovery(ack->payload);
  const bool isInForce =
      device && device->mac == mac && device->ip == settings.ip && device->mask == settings.mask;
  return isInForce ? ForceIpReply::confirmed : ForceIpReply::none;
}

}  // namespace zyn::gige
