#include "doctor/SystemFindings.h"

#include <algorithm>

namespace zyncam {
namespace {

using zyn::gige::AdapterAddress;

constexpr const char* kNetwork = "network";
constexpr const char* kReversePath = "reverse path filter";
constexpr const char* kBuffers = "buffers";
constexpr const char* kRights = "rights";
constexpr const char* kUsb = "usb";

constexpr long long kUsualMtu = 1500;
constexpr long long kJumboMtu = 8000;
constexpr long long kGigabit = 1000;
constexpr long long kEnoughReceiveBuffer = 8LL << 20;  // a frame of 8 megapixels that nobody fetches yet
constexpr long long kEnoughBacklog = 1000;
// This library's producer takes 1 MB for each camera, other makers' take much more.
constexpr long long kLeastUsbMemoryMb = 16;
constexpr long long kEnoughUsbMemoryMb = 256;
constexpr int kCapNetRaw = 13;
constexpr int kCapSysNice = 23;

std::string Bytes(long long count) {
  constexpr long long kKibi = 1024;
  if (count >= kKibi * kKibi) return std::to_string(count / (kKibi * kKibi)) + " MiB";
  return std::to_string(count / kKibi) + " KiB";
}

std::string AddressesOf(const AdapterReading& adapter) {
  std::string text;
  for (const AdapterAddress& address : adapter.addresses) {
    text += (text.empty() ? "" : ", ") + ToText(address.ip) + "/" + ToText(address.mask);
  }
  return text;
}

// What makes an adapter useless for cameras, the first thing first.
Finding UsabilityOf(const AdapterReading& adapter) {
  if (!adapter.isUp)
    return {kNetwork, adapter.name, Verdict::note, "switched off",
            "if cameras are connected to it: ip link set " + adapter.name + " up"};
  if (adapter.hasCarrier == false)
    return {kNetwork, adapter.name, Verdict::note, "no cable, or nothing at its other end",
            "if cameras are connected to it: check cable and power"};
  if (adapter.addresses.empty())
    return {kNetwork, adapter.name, Verdict::warning, "has no IPv4 address: cameras on it are not found",
            "give it one: ip addr add 192.168.77.1/24 dev " + adapter.name};
  if (adapter.isWireless)
    return {kNetwork, adapter.name, Verdict::warning,
            AddressesOf(adapter) + ", wireless: packets of images are lost", "connect cameras by cable"};
  return {kNetwork, adapter.name, Verdict::good, AddressesOf(adapter), ""};
}

bool Overlap(const AdapterAddress& a, const AdapterAddress& b) {
  return InSameSubnet(a.ip, b.ip, a.mask) || InSameSubnet(a.ip, b.ip, b.mask);
}

bool Overlap(const AdapterReading& a, const AdapterReading& b) {
  return std::any_of(a.addresses.begin(), a.addresses.end(), [&](const AdapterAddress& one) {
    return std::any_of(b.addresses.begin(), b.addresses.end(),
                       [&](const AdapterAddress& other) { return Overlap(one, other); });
  });
}

void JudgeMtu(const AdapterReading& adapter, std::vector<Finding>& findings) {
  if (!adapter.mtu) return;
  const std::string text = std::to_string(*adapter.mtu) + " bytes per packet";
  const std::string advice = "if cameras and switches can do it: ip link set " + adapter.name + " mtu 9000";
  if (*adapter.mtu >= kJumboMtu) {
    findings.push_back({kNetwork, adapter.name + " mtu", Verdict::good, text, ""});
  } else if (*adapter.mtu >= kUsualMtu) {
    findings.push_back({kNetwork, adapter.name + " mtu", Verdict::note,
                        text + ": larger packets cost less processor time", advice});
  } else {
    findings.push_back({kNetwork, adapter.name + " mtu", Verdict::warning,
                        text + ": cameras usually send 1500, which do not fit",
                        "ip link set " + adapter.name + " mtu 1500, or 9000"});
  }
}

void JudgeSpeed(const AdapterReading& adapter, std::vector<Finding>& findings) {
  if (!adapter.speedMbps) return;
  const std::string text = std::to_string(*adapter.speedMbps) + " Mbit/s";
  const bool isSlow = *adapter.speedMbps < kGigabit;
  findings.push_back({kNetwork, adapter.name + " speed", isSlow ? Verdict::warning : Verdict::good,
                      isSlow ? text + ": slower than the cameras send" : text,
                      isSlow ? "check the cable (all eight wires), the switch and the adapter" : ""});
}

void JudgePathFilter(const AdapterReading& adapter, std::vector<Finding>& findings) {
  if (!adapter.pathFilter) return;
  const std::string advice =
      "where only cameras are connected: sysctl -w net.ipv4.conf.all.rp_filter=0 "
      "net.ipv4.conf." +
      adapter.name + ".rp_filter=0";
  Finding finding{kReversePath, adapter.name, Verdict::good, "off", ""};
  if (*adapter.pathFilter == 1) {
    finding = {kReversePath, adapter.name, Verdict::warning,
               "strict: answers of cameras outside the adapter's network are dropped, so they are not found",
               advice};
  } else if (*adapter.pathFilter != 0) {
    finding = {kReversePath, adapter.name, Verdict::note,
               "loose: answers of cameras in networks that no route leads to are dropped", advice};
  }
  findings.push_back(std::move(finding));
}

bool IsForCameras(const AdapterReading& adapter) {
  return !adapter.isLoopback && adapter.isUp && adapter.hasCarrier != false && !adapter.addresses.empty();
}

void JudgeAdapters(const SystemReadings& readings, std::vector<Finding>& findings) {
  const std::vector<AdapterReading>& adapters = readings.adapters;
  if (adapters.empty())
    findings.push_back({kNetwork, "adapters", Verdict::problem, "the system lists none",
                        "run it where the network can be seen"});
  else if (std::none_of(adapters.begin(), adapters.end(), IsForCameras))
    findings.push_back({kNetwork, "adapters", Verdict::warning,
                        "no adapter is ready: cameras on a network are not found",
                        "connect one, switch it on and give it an address"});
  for (const AdapterReading& adapter : adapters) {
    findings.push_back(UsabilityOf(adapter));
    if (!IsForCameras(adapter)) continue;
    JudgeMtu(adapter, findings);
    JudgeSpeed(adapter, findings);
  }
  for (auto a = adapters.begin(); a != adapters.end(); ++a) {
    for (auto b = a + 1; b != adapters.end(); ++b) {
      if (!Overlap(*a, *b)) continue;
      findings.push_back({kNetwork, a->name + " and " + b->name, Verdict::warning,
                          "lie in one network: what is sent to cameras leaves through one of them only",
                          "give each adapter a network of its own"});
    }
  }
  for (const AdapterReading& adapter : adapters) {
    if (IsForCameras(adapter)) JudgePathFilter(adapter, findings);
  }
}

void JudgeBuffers(const SystemReadings& readings, std::vector<Finding>& findings) {
  if (readings.receiveBufferMax) {
    const bool isSmall = *readings.receiveBufferMax < kEnoughReceiveBuffer;
    findings.push_back(
        {kBuffers, "net.core.rmem_max", isSmall ? Verdict::warning : Verdict::good,
         Bytes(*readings.receiveBufferMax) +
             (isSmall ? " for each socket: a burst of packets may not fit, and images miss parts" : ""),
         isSmall ? "sysctl -w net.core.rmem_max=33554432, and the same line in /etc/sysctl.d" : ""});
  }
  if (readings.receiveBufferDefault) {
    findings.push_back({kBuffers, "net.core.rmem_default", Verdict::good,
                        Bytes(*readings.receiveBufferDefault) + "; streams ask for more themselves", ""});
  }
  if (readings.backlog) {
    const bool isSmall = *readings.backlog < kEnoughBacklog;
    findings.push_back({kBuffers, "net.core.netdev_max_backlog", isSmall ? Verdict::warning : Verdict::good,
                        std::to_string(*readings.backlog) +
                            (isSmall ? " packets: those of several cameras may be dropped" : " packets"),
                        isSmall ? "sysctl -w net.core.netdev_max_backlog=5000" : ""});
  }
}

void JudgeRights(const SystemReadings& readings, std::vector<Finding>& findings) {
  if (!readings.capabilities) return;
  const struct {
    int bit;
    const char* name;
    const char* lack;
    const char* advice;
  } rights[] = {
      {kCapNetRaw, "CAP_NET_RAW", "no: streams take more processor time, for want of packet sockets",
       "for your program: setcap cap_net_raw,cap_sys_nice+ep PROGRAM"},
      {kCapSysNice, "CAP_SYS_NICE", "no: receiving threads cannot be preferred on a busy computer",
       "for your program: setcap cap_net_raw,cap_sys_nice+ep PROGRAM"}};
  for (const auto& right : rights) {
    const bool isHeld = (*readings.capabilities >> right.bit & 1U) != 0;
    findings.push_back({kRights, right.name, isHeld ? Verdict::good : Verdict::note,
                        isHeld ? "yes" : right.lack, isHeld ? "" : right.advice});
  }
}

void JudgeUsb(const SystemReadings& readings, std::vector<Finding>& findings) {
  if (!readings.usbMemoryMb) return;
  const long long memory = *readings.usbMemoryMb;
  Finding finding{kUsb, "usbfs_memory_mb", Verdict::good, std::to_string(memory) + " MB for all transfers",
                  ""};
  if (memory == 0) finding.text = "unlimited";
  if (memory != 0 && memory < kEnoughUsbMemoryMb) {
    const bool isTooSmall = memory < kLeastUsbMemoryMb;
    finding.verdict = isTooSmall ? Verdict::warning : Verdict::note;
    finding.text += isTooSmall ? ": several USB3 Vision cameras cannot stream at once"
                               : ": enough for this library's producer, but little for those of other makers";
    finding.advice =
        "echo 256 > /sys/module/usbcore/parameters/usbfs_memory_mb; for good: "
        "usbcore.usbfs_memory_mb=256 on the kernel's command line";
  }
  findings.push_back(std::move(finding));
}

}  // namespace

std::vector<Finding> FindingsOf(const SystemReadings& readings) {
  std::vector<Finding> findings;
  JudgeAdapters(readings, findings);
  JudgeBuffers(readings, findings);
  JudgeRights(readings, findings);
  JudgeUsb(readings, findings);
  return findings;
}

}  // namespace zyncam
