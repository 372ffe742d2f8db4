/// What this computer is like, as far as cameras care. Only looks: changes nothing and sends nothing.
#ifndef ZYNCAM_DOCTOR_SYSTEM_READINGS_H
#define ZYNCAM_DOCTOR_SYSTEM_READINGS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "gige/Adapter.h"

namespace zyncam {

/// Where the system shows its settings: "/proc" and "/sys" on Linux, made-up folders in tests. Where they do not
/// exist nothing is known, and every optional reading is empty.
struct SystemRoots {
  std::string proc = "/proc";
  std::string sys = "/sys";
};

struct AdapterReading {
  std::string name;
  bool isLoopback = false;
  bool isUp = true;  ///< switched on
  bool isWireless = false;
  std::optional<bool> hasCarrier;       ///< a cable with something at its other end
  std::optional<long long> mtu;         ///< bytes
  std::optional<long long> speedMbps;   ///< as negotiated
  std::optional<long long> pathFilter;  ///< 0 off, 1 strict, 2 loose: the one in force
  std::vector<zyn::gige::AdapterAddress> addresses;
};

struct SystemReadings {
  std::vector<AdapterReading> adapters;           ///< by name
  std::optional<long long> receiveBufferMax;      ///< bytes
  std::optional<long long> receiveBufferDefault;  ///< bytes
  std::optional<long long> backlog;               ///< packets
  std::optional<std::uint64_t> capabilities;      ///< of this process: one bit for each
  std::optional<long long> usbMemoryMb;           ///< 0: unlimited
};

/// Reads the folders. `adapters`: those with addresses, as the system lists them (gige::ListAdapters). Adapters
/// without addresses come from the folders; other kinds than Ethernet and loopback are left out.
SystemReadings ReadSystem(const SystemRoots& roots, const std::vector<zyn::gige::Adapter>& adapters);

}  // namespace zyncam

#endif
