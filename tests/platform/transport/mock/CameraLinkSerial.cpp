// A Camera Link serial library with two ports.
#include <cstdint>
#include <cstdio>
#include <cstring>

extern "C" {

__attribute__((visibility("default"))) std::int32_t clGetManufacturerInfo(char* name, std::uint32_t* size,
                                                                          std::uint32_t* version) {
  std::strcpy(name, "Grabbers");
  *size = 9;
  *version = 4;
  return 0;
}

__attribute__((visibility("default"))) std::int32_t clGetNumSerialPorts(std::uint32_t* count) {
  *count = 2;
  return 0;
}

__attribute__((visibility("default"))) std::int32_t clGetSerialPortIdentifier(std::uint32_t index, char* id,
                                                                              std::uint32_t* size) {
  *size = static_cast<std::uint32_t>(std::snprintf(id, *size, "Port %u", index)) + 1;
  return 0;
}

}  // extern "C"
