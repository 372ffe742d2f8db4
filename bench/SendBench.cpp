/// How much of a stream one core sends: packet by packet, and as the virtual camera does, plain and in segments that the
/// system cuts; each beside many packets in one call (sendmmsg), in the same run. Nobody reads, so what is measured is sending alone; over the loopback adapter that
/// includes the way to the receiver's socket.
/// Run it with scripts/in-namespace.sh.
#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <vector>

#include "PrivateNetwork.h"
#include "gigedevice/PacketSender.h"

namespace {

using namespace zyn::gigedevice;

constexpr zyn::gige::Ipv4 kLoopback{0x7F000001};
constexpr std::size_t kFrameBytes = std::size_t{8} << 20U;

DeviceSettings Settings(SendMethod method) {
  DeviceSettings settings;
  settings.ip = kLoopback;
  settings.sendMethod = method;
  return settings;
}

Block MakeBlock(const DeviceSocket& receiver, std::uint16_t packetSize) {
  Block block;
  block.id = 1;
  block.target.ip = kLoopback;
  block.target.port = receiver.Port();
  block.target.packetSize = packetSize;
  block.frame.hasImage = true;
  block.frame.size = kFrameBytes;
  block.frame.intendedSize = kFrameBytes;
  block.data.resize(kFrameBytes);
  block.payloadPackets =
      static_cast<std::uint32_t>((kFrameBytes + block.DataBytes() - 1) / block.DataBytes());
  return block;
}

std::uint32_t LastOfGroup(const Block& block, std::uint32_t first) {
  return std::min(first + PacketSender::kGroup - 1, block.TrailerId());
}

// What the sender was told to send must have come, packet by packet.
bool Arrives(const DeviceSocket& receiver, PacketSender& sender, const Block& block) {
  std::vector<std::uint8_t> packet(65536);
  while (receiver.Receive(packet)) {
  }
  sender.Send(block, 1, 4, false);
  for (int i = 0; i < 4; ++i) {
    const auto received = receiver.Receive(packet);
    if (!received || received->bytes != block.target.packetSize - kIpAndUdpBytes) return false;
  }
  return !receiver.Receive(packet);
}

// The yardstick: the same bytes in packets of the same size, all ready in memory.
class Datagrams {
 public:
  explicit Datagrams(const Block& block)
      : receiver_(SocketAddress(block.target.ip, block.target.port)),
        parts_(block.payloadPackets),
        messages_(block.payloadPackets) {
    const std::size_t size = block.target.packetSize - kIpAndUdpBytes;
    memory_.resize(size * parts_.size());
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      parts_[i] = {memory_.data() + i * size, size};
      messages_[i].msg_hdr.msg_name = &receiver_;
      messages_[i].msg_hdr.msg_namelen = sizeof receiver_;
      messages_[i].msg_hdr.msg_iov = &parts_[i];
      messages_[i].msg_hdr.msg_iovlen = 1;
    }
  }
  Datagrams(const Datagrams&) = delete;
  Datagrams& operator=(const Datagrams&) = delete;

  void SendOneByOne() const {
    for (const mmsghdr& message : messages_)
      benchmark::DoNotOptimize(sendmsg(sender_->Descriptor(), &message.msg_hdr, 0));
  }
  void SendManyInOneCall() {
    for (std::size_t at = 0; at < messages_.size(); at += PacketSender::kGroup) {
      const auto count =
          static_cast<unsigned>(std::min<std::size_t>(PacketSender::kGroup, messages_.size() - at));
      benchmark::DoNotOptimize(sendmmsg(sender_->Descriptor(), &messages_[at], count, 0));
    }
  }

 private:
  const std::optional<DeviceSocket> sender_ = DeviceSocket::BoundTo(kLoopback, 0, false);
  sockaddr_in receiver_;
  std::vector<std::uint8_t> memory_;
  std::vector<iovec> parts_;
  std::vector<mmsghdr> messages_;
};

// Of this thread, in seconds: what other programs do meanwhile does not count.
double CpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Gbit per second of one core, beside that of many packets in one call, in turns. `ratio` is how many times as fast.
template <class Send>
void BesideTheYardstick(benchmark::State& state, Datagrams& yardstick, Send send) {
  double seconds = 0;
  double yardstickSeconds = 0;
  for (auto _ : state) {
    const double start = CpuSeconds();
    send();
    const double middle = CpuSeconds();
    yardstick.SendManyInOneCall();
    const double end = CpuSeconds();
    seconds += middle - start;
    yardstickSeconds += end - middle;
    state.SetIterationTime(middle - start);
  }
  const double gigabits = static_cast<double>(state.iterations()) * static_cast<double>(kFrameBytes) * 8e-9;
  state.counters["Gbit/s"] = gigabits / seconds;
  state.counters["yardstick Gbit/s"] = gigabits / yardstickSeconds;
  state.counters["ratio"] = yardstickSeconds / seconds;
}

void AsTheCameraDoes(benchmark::State& state, SendMethod method) {
  const auto receiver = DeviceSocket::BoundTo(kLoopback, 0, false);
  PacketSender sender(Settings(method));
  sender.Bind(kLoopback);
  const Block block = MakeBlock(*receiver, static_cast<std::uint16_t>(state.range(0)));
  Datagrams yardstick(block);
  BesideTheYardstick(state, yardstick, [&] {
    for (std::uint32_t first = 0; first <= block.TrailerId(); first += PacketSender::kGroup)
      sender.Send(block, first, LastOfGroup(block, first), false);
  });
  if (!Arrives(*receiver, sender, block)) state.SkipWithError("packets do not arrive as they are");
}

void CameraPlain(benchmark::State& state) {
  AsTheCameraDoes(state, SendMethod::plain);
}
void CameraSegmented(benchmark::State& state) {
  AsTheCameraDoes(state, SendMethod::segmented);
}
void OneByOne(benchmark::State& state) {
  const auto receiver = DeviceSocket::BoundTo(kLoopback, 0, false);
  Datagrams datagrams(MakeBlock(*receiver, static_cast<std::uint16_t>(state.range(0))));
  BesideTheYardstick(state, datagrams, [&] { datagrams.SendOneByOne(); });
}

// Packets of the usual adapters, and of those for cameras.
BENCHMARK(OneByOne)->Arg(1500)->Arg(9000)->UseManualTime();
BENCHMARK(CameraPlain)->Arg(1500)->Arg(9000)->UseManualTime();
BENCHMARK(CameraSegmented)->Arg(1500)->Arg(9000)->UseManualTime();

}  // namespace

int main(int argc, char** argv) {
  if (!zyntest::IsPrivateNetwork()) {
    std::fprintf(stderr, "This sends packets. Run it with scripts/in-namespace.sh.\n");
    return 2;
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
