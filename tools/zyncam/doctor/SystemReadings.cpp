#include "doctor/SystemReadings.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <system_error>

namespace zyncam {
namespace {

namespace fs = std::filesystem;
using zyn::gige::Adapter;

constexpr int kDecimal = 10;
constexpr int kHexadecimal = 16;
constexpr int kFromPrefix = 0;  // 0x… is hexadecimal
constexpr long long kSwitchedOn = 1;
constexpr long long kEthernet = 1;
constexpr long long kLoopback = 772;

std::optional<long long> Number(const std::string& text, int base) {
  errno = 0;
  char* end = nullptr;
  const long long value = std::strtoll(text.c_str(), &end, base);
  if (end == text.c_str() || errno != 0) return std::nullopt;
  return value;
}

// The number in the first line of a file; nothing without one, or without the file.
std::optional<long long> NumberIn(const fs::path& file, int base = kDecimal) {
  std::ifstream stream(file);
  std::string line;
  if (!std::getline(stream, line)) return std::nullopt;
  return Number(line, base);
}

std::optional<std::uint64_t> CapabilitiesIn(const fs::path& status) {
  std::ifstream stream(status);
  const std::string key = "CapEff:";
  std::string line;
  while (std::getline(stream, line)) {
    if (line.compare(0, key.size(), key) != 0) continue;
    errno = 0;
    char* end = nullptr;
    const char* const begin = line.c_str() + key.size();
    const std::uint64_t value = std::strtoull(begin, &end, kHexadecimal);
    if (end == begin || errno != 0) return std::nullopt;
    return value;
  }
  return std::nullopt;
}

// The system takes the larger of the two, where both are told.
std::optional<long long> PathFilterOf(const fs::path& settings, const std::string& adapter) {
  const auto all = NumberIn(settings / "all" / "rp_filter");
  const auto own = NumberIn(settings / adapter / "rp_filter");
  if (!all || !own) return own ? own : all;
  return std::max(*all, *own);
}

AdapterReading ReadAdapter(const SystemRoots& roots, const std::string& name) {
  const fs::path folder = fs::path(roots.sys) / "class" / "net" / name;
  AdapterReading reading;
  reading.name = name;
  reading.isLoopback = NumberIn(folder / "type") == kLoopback;
  const auto flags = NumberIn(folder / "flags", kFromPrefix);
  if (flags) reading.isUp = (*flags & kSwitchedOn) != 0;
  std::error_code ignored;
  reading.isWireless = fs::exists(folder / "wireless", ignored) || fs::exists(folder / "phy80211", ignored);
  const auto carrier = NumberIn(folder / "carrier");
  if (carrier) reading.hasCarrier = *carrier != 0;
  reading.mtu = NumberIn(folder / "mtu");
  reading.speedMbps = NumberIn(folder / "speed");
  if (reading.speedMbps && *reading.speedMbps <= 0) reading.speedMbps.reset();  // the driver does not know
  reading.pathFilter = PathFilterOf(fs::path(roots.proc) / "sys" / "net" / "ipv4" / "conf", name);
  return reading;
}

bool IsOfKnownKind(const fs::path& folder) {
  const auto type = NumberIn(folder / "type");
  return type && (*type == kEthernet || *type == kLoopback);
}

std::vector<AdapterReading> ReadAdapters(const SystemRoots& roots, const std::vector<Adapter>& adapters) {
  std::map<std::string, AdapterReading> readings;
  std::error_code error;
  fs::directory_iterator entry(fs::path(roots.sys) / "class" / "net", error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (IsOfKnownKind(entry->path())) readings.emplace(name, ReadAdapter(roots, name));
  }
  for (const Adapter& adapter : adapters) {
    const auto place = readings.try_emplace(adapter.name, ReadAdapter(roots, adapter.name)).first;
    place->second.addresses = adapter.addresses;
    place->second.isLoopback |= zyn::gige::IsLoopback(adapter.addresses.front().ip);
  }
  std::vector<AdapterReading> result;
  result.reserve(readings.size());
  for (auto& [name, reading] : readings) result.push_back(std::move(reading));
  return result;
}

}  // namespace

SystemReadings ReadSystem(const SystemRoots& roots, const std::vector<Adapter>& adapters) {
  const fs::path core = fs::path(roots.proc) / "sys" / "net" / "core";
  SystemReadings readings;
  readings.adapters = ReadAdapters(roots, adapters);
  readings.receiveBufferMax = NumberIn(core / "rmem_max");
  readings.receiveBufferDefault = NumberIn(core / "rmem_default");
  readings.backlog = NumberIn(core / "netdev_max_backlog");
  readings.capabilities = CapabilitiesIn(fs::path(roots.proc) / "self" / "status");
  readings.usbMemoryMb =
      NumberIn(fs::path(roots.sys) / "module" / "usbcore" / "parameters" / "usbfs_memory_mb");
  return readings;
}

}  // namespace zyncam
