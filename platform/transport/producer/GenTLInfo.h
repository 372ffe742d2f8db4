/// Reads GenTL information commands from producers that follow the rules more or less.
///
/// Every getter takes a callable `GC_ERROR(INFO_DATATYPE*, void* buffer, size_t*)` that asks one question. A
/// question that the producer cannot answer, for whatever reason, has no value.
#ifndef ZYN_TRANSPORT_GENTL_INFO_H
#define ZYN_TRANSPORT_GENTL_INFO_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <GenTL/GenTL.h>

namespace zyn::transport {

/// Decodes an integer of any width and sign from the 8 zero-initialised bytes that a producer wrote into.
/// Producers report other types than the standard lists; the type they name and the size decide.
std::uint64_t DecodeInteger(GenTL::INFO_DATATYPE type, const unsigned char* bytes, std::size_t size);

/// The text up to the first NUL, or all of it.
std::string TextOf(const char* bytes, std::size_t size);

/// The value of an integer, boolean, size or pointer command.
template <class Ask>
std::optional<std::uint64_t> GetInteger(Ask&& ask) {
  GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
  alignas(8) std::array<unsigned char, 8> bytes{};
  std::size_t size = bytes.size();
  if (ask(&type, bytes.data(), &size) != GenTL::GC_ERR_SUCCESS) return std::nullopt;
  if (type == GenTL::INFO_DATATYPE_STRING || size > bytes.size()) return std::nullopt;
  return DecodeInteger(type, bytes.data(), size);
}

/// The bytes of a command of any length. One call when they fit into a kilobyte, which is nearly always; else
/// the size is asked first. The size may grow between the two calls, so this is tried a few times.
template <class Ask>
std::optional<std::vector<char>> GetBytes(Ask&& ask) {
  GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
  std::vector<char> bytes(1024);
  std::size_t size = bytes.size();
  if (ask(&type, bytes.data(), &size) == GenTL::GC_ERR_SUCCESS && size <= bytes.size()) {
    bytes.resize(size);
    return bytes;
  }
  constexpr std::size_t kMostBytes = 64U << 20U;  // a larger answer is a broken producer
  for (int attempt = 0; attempt < 3; ++attempt) {
    size = 0;
    if (ask(&type, nullptr, &size) != GenTL::GC_ERR_SUCCESS || size == 0 || size > kMostBytes) break;
    bytes.assign(size, 0);
    if (ask(&type, bytes.data(), &size) == GenTL::GC_ERR_SUCCESS && size <= bytes.size()) {
      bytes.resize(size);
      return bytes;
    }
  }
  return std::nullopt;
}

template <class Ask>
std::optional<std::string> GetString(Ask&& ask) {
  std::array<char, 512> text{};
  GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_STRING;
  std::size_t size = text.size();
  if (ask(&type, text.data(), &size) == GenTL::GC_ERR_SUCCESS && size <= text.size()) {
    return TextOf(text.data(), text.size());
  }
  const std::optional<std::vector<char>> bytes = GetBytes(ask);
  if (!bytes) return std::nullopt;
  return TextOf(bytes->data(), bytes->size());
}

}  // namespace zyn::transport

#endif
