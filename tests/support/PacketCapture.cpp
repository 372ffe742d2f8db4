#include "PacketCapture.h"

#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <stdexcept>

namespace zyntest {
namespace {

constexpr std::size_t kPlace = 2048;  // of one packet, with what the system says about it
constexpr std::size_t kBlock = std::size_t{1} << 20U;
constexpr std::size_t kRing = 32 * kBlock;
constexpr int kLookForTheEndMs = 20;
constexpr std::uint32_t kEthernet = 1;  // what the loopback adapter's packets begin with

// In the byte order of this computer, which readers tell by the first number.
void Append(std::vector<std::uint8_t>& bytes, std::uint32_t value) {
  const auto* first = reinterpret_cast<const std::uint8_t*>(&value);
  bytes.insert(bytes.end(), first, first + sizeof value);
}

}  // namespace

PacketCapture::PacketCapture() {
  socket_ = socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0);
  const int version = TPACKET_V2;
  const tpacket_req size{kBlock, kRing / kBlock, kPlace, kRing / kPlace};
  const bool isReady = setsockopt(socket_, SOL_PACKET, PACKET_VERSION, &version, sizeof version) == 0 &&
                       setsockopt(socket_, SOL_PACKET, PACKET_RX_RING, &size, sizeof size) == 0;
  void* ring = isReady ? mmap(nullptr, kRing, PROT_READ | PROT_WRITE, MAP_SHARED, socket_, 0) : MAP_FAILED;
  if (ring != MAP_FAILED) ring_ = static_cast<std::uint8_t*>(ring);
  sockaddr_ll address{};
  address.sll_family = AF_PACKET;
  address.sll_protocol = htons(ETH_P_ALL);
  address.sll_ifindex = static_cast<int>(if_nametoindex("lo"));
  if (ring_ == nullptr || bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    Close();
    throw std::runtime_error("no packet socket");
  }
  thread_ = std::thread([this] { Run(); });
}

PacketCapture::~PacketCapture() {
  End();
  Close();
}

void PacketCapture::Close() {
  if (ring_ != nullptr) munmap(ring_, kRing);
  if (socket_ >= 0) close(socket_);
}

void PacketCapture::End() {
  isEnding_ = true;
  if (thread_.joinable()) thread_.join();
}

void PacketCapture::Run() {
  while (!isEnding_) {
    pollfd wait{socket_, POLLIN, 0};
    poll(&wait, 1, kLookForTheEndMs);
    while (TakeOne()) {
    }
  }
  while (TakeOne()) {
  }
}

bool PacketCapture::TakeOne() {
  std::uint8_t* const place = ring_ + next_ * kPlace;
  auto* const header = reinterpret_cast<tpacket2_hdr*>(place);
  std::atomic_ref<std::uint32_t> status(header->tp_status);
  if ((status.load(std::memory_order_acquire) & TP_STATUS_USER) == 0) return false;
  sockaddr_ll origin{};
  std::memcpy(&origin, place + TPACKET_ALIGN(sizeof(tpacket2_hdr)), sizeof origin);
  if (origin.sll_pkttype != PACKET_OUTGOING) {  // those come back in, too
    for (const std::uint32_t number : {0U, 0U, header->tp_snaplen, header->tp_len}) Append(records_, number);
    records_.insert(records_.end(), place + header->tp_mac, place + header->tp_mac + header->tp_snaplen);
    isCut_ = isCut_ || header->tp_snaplen < header->tp_len;
  }
  status.store(TP_STATUS_KERNEL, std::memory_order_release);
  next_ = (next_ + 1) % (kRing / kPlace);
  return true;
}

void PacketCapture::Save(const std::filesystem::path& path) {
  End();
  tpacket_stats statistics{};
  socklen_t length = sizeof statistics;
  getsockopt(socket_, SOL_PACKET, PACKET_STATISTICS, &statistics, &length);
  if (statistics.tp_drops > 0 || isCut_) throw std::runtime_error("packets escaped the recording");
  std::vector<std::uint8_t> header;
  constexpr std::uint32_t kVersion24 = 2U | (4U << 16U);
  for (const std::uint32_t number : {0xA1B2C3D4U, kVersion24, 0U, 0U, std::uint32_t{kPlace}, kEthernet})
    Append(header, number);
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(header.data()), static_cast<std::streamsize>(header.size()));
  file.write(reinterpret_cast<const char*>(records_.data()), static_cast<std::streamsize>(records_.size()));
  if (!file) throw std::runtime_error("the file cannot be written");
}

}  // namespace zyntest
