// Answers to a client: whatever arrives, a search lists only what can be, and a command takes only its own answer. The
// input is a list of datagrams, each behind its length in two bytes and a third one that tells adapter and sender.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <span>
#include <vector>

#include "gige/DeviceTable.h"
#include "gige/Reply.h"

namespace {

using namespace zyn::gige;

constexpr std::uint16_t kRequest = 1;  // of every command, and of the question to the first device
constexpr std::size_t kHeadBytes = 3;
constexpr std::size_t kMemoryBytes = 16;
constexpr std::uint32_t kMemoryAddress = 0x200;
constexpr MacAddress kMac{{0x02, 0x11, 0x22, 0x33, 0x44, 0x55}};
constexpr IpSettings kSettings{{0xC0A84D32}, {0xFFFFFF00}, {0xC0A84D01}};

void Must(bool isTrue) {
  if (!isTrue) std::abort();
}

Adapter MakeAdapter(unsigned index, Ipv4 ip) {
  Adapter adapter;
  adapter.name = "eth" + std::to_string(index);
  adapter.index = index;
  adapter.addresses.push_back({ip, {0xFFFFFF00}, {ip.value | 0xFFU}});
  return adapter;
}

bool LiesIn(ByteView part, ByteView whole) {
  return part.empty() ||
         (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

void CheckReply(ByteView datagram, std::uint16_t commandId) {
  const Reply reply = InterpretReply(datagram, commandId, kRequest);
  if (reply.kind == Reply::Kind::none) return;
  Must(datagram.size() >= kGvcpHeaderBytes && datagram[6] == 0 && datagram[7] == kRequest);
  if (reply.kind == Reply::Kind::pending) {
    Must(datagram[3] == command::kPendingAck && reply.more.count() >= 0 && reply.more.count() <= 0xFFFF);
    return;
  }
  Must(datagram[2] * 256 + datagram[3] == commandId + 1);
  Must((reply.result == Result::ok) == (datagram[0] == 0 && datagram[1] == 0));
  Must(reply.result != Result::noAnswer && reply.result != Result::nobodyListens);
  Must(LiesIn(reply.payload, datagram));
  Must(ParseReadRegister(reply.payload).has_value() == (reply.payload.size() >= 4));
  const auto memory = ParseReadMemory(reply.payload, kMemoryAddress, kMemoryBytes);
  if (memory) Must(memory->size() == kMemoryBytes && LiesIn(*memory, datagram));
}

void CheckForceIp(ByteView datagram) {
  const ForceIpReply reply = InterpretForceIpReply(datagram, kMac, kSettings);
  if (reply == ForceIpReply::refused)
    Must(datagram[3] == command::kForceIp + 1 && (datagram[0] != 0 || datagram[1] != 0));
  if (reply != ForceIpReply::confirmed) return;
  Must(datagram.size() >= kGvcpHeaderBytes + 0xF8);
  Must(std::equal(kMac.bytes.begin(), kMac.bytes.end(), datagram.begin() + kGvcpHeaderBytes + 0x0A));
}

void CheckText(const std::string& text, std::size_t most) {
  Must(text.size() <= most);
  Must(std::none_of(text.begin(), text.end(),
                    [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }));
}

void CheckDevices(const DeviceTable& table, const std::vector<Adapter>& adapters, std::size_t datagrams) {
  const std::vector<DiscoveredDevice>& devices = table.Devices();
  Must(devices.size() <= datagrams);
  std::set<std::tuple<MacAddress, std::uint32_t, std::string>> keys;
  for (std::size_t i = 0; i < devices.size(); ++i) {
    const DiscoveredDevice& device = devices[i];
    const DeviceDescription& description = device.description;
    const Adapter& adapter = adapters.at(table.AdapterPlaceOf(i));
    Must(device.adapterIndex == adapter.index && device.adapterName == adapter.name);
    Must(description.ip != kNoAddress);
    const bool isNear = adapter.AddressFor(description.ip) != nullptr;
    Must(isNear != (device.control == ControlState::outOfReach));
    for (const std::string* text : {&description.manufacturer, &description.model, &description.version})
      CheckText(*text, 32);
    CheckText(description.manufacturerInfo, 48);
    for (const std::string* text : {&description.serial, &description.userName}) CheckText(*text, 16);
    Must(keys.emplace(description.mac, description.mac.IsZero() ? i + 1 : 0, description.serial).second);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<Adapter> adapters = {MakeAdapter(1, {0xC0A84D01}), MakeAdapter(2, {0x0A090901})};
  DeviceTable table({&adapters[0], &adapters[1]});
  ByteView rest(data, size);
  std::size_t datagrams = 0;
  while (rest.size() >= kHeadBytes) {
    const std::size_t length = std::min<std::size_t>(rest[0] * 256U + rest[1], rest.size() - kHeadBytes);
    const std::size_t place = rest[2] % adapters.size();
    const std::size_t sender = rest[2] / adapters.size();  // the number of a device that was found
    const ByteView datagram = rest.subspan(kHeadBytes, length);
    rest = rest.subspan(kHeadBytes + length);
    ++datagrams;
    for (const std::uint16_t id : {command::kDiscovery, command::kForceIp, command::kReadRegister,
                                   command::kWriteRegister, command::kReadMemory, command::kWriteMemory}) {
      CheckReply(datagram, id);
    }
    CheckForceIp(datagram);
    const auto& devices = table.Devices();
    const Ipv4 ip = sender < devices.size() ? devices[sender].description.ip : kNoAddress;
    table.Take(place, datagram, ip);
    CheckDevices(table, adapters, datagrams);
  }
  return 0;
}
