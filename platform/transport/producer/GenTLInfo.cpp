#include "GenTLInfo.h"

#include <algorithm>

namespace zyn::transport {

namespace {

template <class Number>
std::uint64_t Load(const unsigned char* bytes) {
  Number value;
  std::memcpy(&value, bytes, sizeof(value));
  return static_cast<std::uint64_t>(value);  // sign-extends the signed types
}

std::uint64_t LoadBySize(const unsigned char* bytes, std::size_t size) {
  if (size == 1) return Load<std::uint8_t>(bytes);
  if (size == 2) return Load<std::uint16_t>(bytes);
  if (size == 4) return Load<std::uint32_t>(bytes);
  return Load<std::uint64_t>(bytes);
}

}  // namespace

std::uint64_t DecodeInteger(GenTL::INFO_DATATYPE type, const unsigned char* bytes, std::size_t size) {
  switch (type) {
    case GenTL::INFO_DATATYPE_INT16:
      return Load<std::int16_t>(bytes);
    case GenTL::INFO_DATATYPE_UINT16:
      return Load<std::uint16_t>(bytes);
    case GenTL::INFO_DATATYPE_INT32:
      return Load<std::int32_t>(bytes);
    case GenTL::INFO_DATATYPE_UINT32:
      return Load<std::uint32_t>(bytes);
    case GenTL::INFO_DATATYPE_BOOL8:
      return bytes[0];
    default:
      return LoadBySize(bytes, size);
  }
}

std::string TextOf(const char* bytes, std::size_t size) {
  return {bytes, std::find(bytes, bytes + size, '\0')};
}

}  // namespace zyn::transport
