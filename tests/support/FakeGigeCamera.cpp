#include "FakeGigeCamera.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <vector>

namespace zyntest {
namespace {

constexpr std::uint16_t kControlPort = 3956;
constexpr int kTries = 200;
constexpr int kTryMilliseconds = 50;

constexpr std::uint16_t kDiscovery = 0x0002;
constexpr std::uint16_t kWriteRegister = 0x0082;
constexpr std::uint32_t kMacHighRegister = 0x0008;
constexpr std::uint32_t kMacLowRegister = 0x000c;
constexpr std::uint32_t kAddressRegister = 0x0024;
constexpr std::uint32_t kSubnetMaskRegister = 0x0034;

/// Just enough of the control protocol to set a camera up before a test begins.
class ControlChannel {
 public:
  explicit ControlChannel(const std::string& address)
      : descriptor_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    const timeval wait{0, kTryMilliseconds * 1000};
    setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
    peer_.sin_family = AF_INET;
    peer_.sin_port = htons(kControlPort);
    inet_pton(AF_INET, address.c_str(), &peer_.sin_addr);
  }
  ~ControlChannel() { close(descriptor_); }
  ControlChannel(const ControlChannel&) = delete;
  ControlChannel& operator=(const ControlChannel&) = delete;

  /// Sends a command until it is answered. Returns whether it was.
  bool Ask(std::uint16_t command, const std::vector<std::uint32_t>& words) const {
    std::vector<std::uint8_t> packet = {0x42, 0x01};
    const auto put = [&packet](std::uint32_t value, int bytes) {
      for (int i = bytes - 1; i >= 0; --i) packet.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    };
    put(command, 2);
    put(static_cast<std::uint32_t>(words.size() * 4), 2);
    put(1, 2);
    for (const std::uint32_t word : words) put(word, 4);
    std::array<std::uint8_t, 512> answer{};
    for (int i = 0; i < kTries; ++i) {
      sendto(descriptor_, packet.data(), packet.size(), 0, reinterpret_cast<const sockaddr*>(&peer_),
             sizeof peer_);
      if (recv(descriptor_, answer.data(), answer.size(), 0) > 0) return true;
      usleep(kTryMilliseconds * 1000);  // a refused packet returns at once
    }
    return false;
  }

 private:
  int descriptor_;
  sockaddr_in peer_{};
};

}  // namespace

FakeGigeCamera::FakeGigeCamera(int number) : FakeGigeCamera(number, false) {}

FakeGigeCamera::FakeGigeCamera(int number, Bare) : FakeGigeCamera(number, true) {}

FakeGigeCamera::FakeGigeCamera(int number, bool isBare) : number_(number), isBare_(isBare) {
  std::array<char, 16> serial{};
  std::snprintf(serial.data(), serial.size(), "GV%02d", number);
  serial_ = serial.data();
  address_ = "127.0.0." + std::to_string(number);
  if (number > 1) RunToEnd({"ip", "addr", "replace", address_ + "/8", "dev", "lo"});
  Start();
}

void FakeGigeCamera::Start() {
  process_.emplace(std::vector<std::string>{"arv-fake-gv-camera-0.8", "-i", address_, "-s", serial_});
  const ControlChannel channel(address_);
  bool isReady = channel.Ask(kDiscovery, {});
  // The program leaves out what a factory writes into a camera: its MAC address, and a subnet mask.
  if (!isBare_) {
    isReady = isReady && channel.Ask(kWriteRegister, {kMacHighRegister, 0x0200}) &&
              channel.Ask(kWriteRegister, {kMacLowRegister, static_cast<std::uint32_t>(number_)}) &&
              channel.Ask(kWriteRegister, {kSubnetMaskRegister, 0xff000000});
  }
  if (!isReady) throw std::runtime_error("the fake camera does not answer");
}

void FakeGigeCamera::PretendAddress(std::uint32_t address, std::uint32_t mask) const {
  const ControlChannel channel(address_);
  if (!channel.Ask(kWriteRegister, {kAddressRegister, address}) ||
      !channel.Ask(kWriteRegister, {kSubnetMaskRegister, mask})) {
    throw std::runtime_error("the fake camera does not answer");
  }
}

void FakeGigeCamera::Kill() {
  process_->End(SIGKILL);
}

void FakeGigeCamera::Freeze() const {
  process_->Suspend();
}

void FakeGigeCamera::Thaw() const {
  process_->Resume();
}

}  // namespace zyntest
