// Built several times: each time one of the functions may be missing.
#include "CameraLinkSerial.h"

#include <cstdio>
#include <cstring>

#define ZYN_MOCK_EXPORT __attribute__((visibility("default")))

namespace {

std::int32_t Manufacturer(char* name, std::uint32_t* size, std::uint32_t* version) {
  std::strcpy(name, "Grabbers");
  *size = 9;
  *version = 4;
  return 0;
}

std::int32_t Count(std::uint32_t* count) {
  *count = 2;
  return 0;
}

std::int32_t Identify(std::uint32_t index, char* id, std::uint32_t* size) {
  *size = static_cast<std::uint32_t>(std::snprintf(id, *size, "Port %u", index)) + 1;
  return 0;
}

}  // namespace

extern "C" {

ZYN_MOCK_EXPORT MockSerial zynSerial = {&Manufacturer, &Count, &Identify};

#ifndef ZYN_MOCK_NO_MANUFACTURER
ZYN_MOCK_EXPORT std::int32_t clGetManufacturerInfo(char* name, std::uint32_t* size, std::uint32_t* version) {
  return zynSerial.manufacturer(name, size, version);
}
#endif

#ifndef ZYN_MOCK_NO_COUNT
ZYN_MOCK_EXPORT std::int32_t clGetNumSerialPorts(std::uint32_t* count) {
  return zynSerial.count(count);
}
#endif

#ifndef ZYN_MOCK_NO_IDENTIFIER
ZYN_MOCK_EXPORT std::int32_t clGetSerialPortIdentifier(std::uint32_t index, char* id, std::uint32_t* size) {
  return zynSerial.identify(index, id, size);
}
#endif

}  // extern "C"
