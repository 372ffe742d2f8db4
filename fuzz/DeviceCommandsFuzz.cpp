// Commands at a device: whatever arrives, it neither crashes nor hangs, and answers only what asks for it. The input
// is a list of datagrams, each behind one byte that tells its length; the sender holds control until it gives it up.
#include <cstdint>
#include <cstdlib>
#include <span>

#include "cameras/Catalog.h"
#include "gigedevice/CommandHandler.h"

namespace {

using namespace zyn;

constexpr gigedevice::Peer kClient{{0x7F000001}, 40000};

class NoActions final : public gigedevice::DeviceActions {
 public:
  void SetStream(const gigedevice::StreamTarget& target) override {
    if (target.packetSize < 100) std::abort();
  }
  void SetMessages(const gigedevice::MessageTarget& /*target*/) override {}
  void FireTestPacket(const gigedevice::StreamTarget& target) override {
    if (!target.IsOpen()) std::abort();
  }
  void Resend(const gigedevice::ResendRequest& /*request*/) override {}
  bool ChangeAddress(gige::Ipv4 ip, gige::Ipv4 mask) override {
    if (!gige::IsSubnetMask(mask) || !gige::IsHostAddress(ip, mask)) std::abort();
    return true;
  }
};

void Check(std::span<const std::uint8_t> command,
           const std::optional<gigedevice::CommandHandler::Answer>& answer) {
  if (!answer) return;
  if (command.size() < gige::kGvcpHeaderBytes || (command[1] & gige::flag::kAckRequired) == 0) std::abort();
  const auto ack = gige::ParseAck(answer->datagram);
  if (!ack || ack->payload.size() + gige::kGvcpHeaderBytes != answer->datagram.size()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto camera = cameras::MakeCamera("KEL-LP1000F", "F1");
  NoActions actions;
  gigedevice::DeviceSettings settings;
  settings.ip = {0x7F000002};
  gigedevice::CommandHandler handler(*camera, cameras::SteadyClock(), actions, settings, {0xFF000000});
  handler.Handle(gige::EncodeWriteRegister(1, gige::bootstrap::kControlPrivilege, gige::kControlAccess),
                 kClient, 0);
  std::span<const std::uint8_t> rest(data, size);
  while (!rest.empty()) {
    const std::size_t length = std::min<std::size_t>(rest[0], rest.size() - 1);
    const auto command = rest.subspan(1, length);
    Check(command, handler.Handle(command, kClient, 0));
    rest = rest.subspan(1 + length);
  }
  return 0;
}
