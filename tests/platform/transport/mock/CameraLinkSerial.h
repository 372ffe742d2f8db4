/// A Camera Link serial library whose functions a test writes. Every copy of the file is a library of its own.
#ifndef ZYN_TESTS_MOCK_CAMERA_LINK_SERIAL_H
#define ZYN_TESTS_MOCK_CAMERA_LINK_SERIAL_H

#include <cstdint>

/// What the library's functions do; the library exports one as `zynSerial`. At first it has the ports "Port 0" and
/// "Port 1" of the manufacturer "Grabbers".
struct MockSerial {
  std::int32_t (*manufacturer)(char* name, std::uint32_t* size, std::uint32_t* version);
  std::int32_t (*count)(std::uint32_t* count);
  std::int32_t (*identify)(std::uint32_t index, char* id, std::uint32_t* size);
};

#endif
