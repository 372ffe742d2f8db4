/// The open modules that have a port, and their functions.
#ifndef ZYN_PRODUCER_CHECK_MODULES_H
#define ZYN_PRODUCER_CHECK_MODULES_H

#include <string>
#include <vector>

#include "InfoTables.h"

namespace zyn::producercheck {

struct Module {
  std::string name;  ///< for sentences: "the system"
  void* handle;
  const char* module;  ///< what PORT_INFO_MODULE answers
  bool isEventSource;
};

/// System, interface, device, camera, and the stream where there is one; opened when they are not.
std::vector<Module> Modules(Bench& bench);

/// True when the camera has a data stream.
bool HasStream(Bench& bench);

// The information functions of the modules.
InfoFunction LibraryInfo(Bench& bench);
InfoFunction SystemInfo(Bench& bench);
InfoFunction InterfaceInfoById(Bench& bench);
InfoFunction InterfaceInfo(Bench& bench);
InfoFunction DeviceInfoById(Bench& bench);
InfoFunction DeviceInfo(Bench& bench);
InfoFunction StreamInfo(Bench& bench);
InfoFunction PortInfo(Bench& bench, const Module& module);
InfoFunction UrlInfo(Bench& bench, const Module& module, std::uint32_t index);

/// The text that a command answers; "" when it fails.
std::string TextOf(const InfoFunction& function, std::int32_t command);

}  // namespace zyn::producercheck

#endif
