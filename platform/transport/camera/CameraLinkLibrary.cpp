#include "CameraLinkLibrary.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace zyn::transport {

namespace {

using GetManufacturerInfo = std::int32_t (*)(char*, std::uint32_t*, std::uint32_t*);
using GetNumSerialPorts = std::int32_t (*)(std::uint32_t*);
using GetSerialPortIdentifier = std::int32_t (*)(std::uint32_t, char*, std::uint32_t*);

constexpr std::int32_t kNoError = 0;
constexpr std::int32_t kBufferTooSmall = -10001;

constexpr std::uint32_t kMostPorts = 1024;
constexpr std::uint32_t kUsualText = 512;
constexpr std::uint32_t kLongestText = 65536;
constexpr std::size_t kSlack = 64;  // for libraries that write a little behind what they were given

template <class Function>
Function Symbol(void* library, const char* name) {
  void* symbol = dlsym(library, name);
  Function function = nullptr;
  std::memcpy(&function, &symbol, sizeof(function));
  return function;
}

bool IsPrintable(const std::string& text) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  return !text.empty() && std::none_of(text.begin(), text.end(), isControl);
}

// What `ask(buffer, size)` writes. A buffer that is too small makes it tell the size it needs, and it is asked once
// more. The size that it leaves behind on success is not relied upon, nor is the final zero.
template <class Ask>
std::optional<std::string> TextFrom(Ask&& ask) {
  std::vector<char> text(kUsualText + kSlack);
  std::uint32_t size = kUsualText;
  std::int32_t result = ask(text.data(), &size);
  if (result == kBufferTooSmall && size > kUsualText && size <= kLongestText) {
    text.assign(size + kSlack, '\0');
    result = ask(text.data(), &size);
  }
  if (result != kNoError) return std::nullopt;
  std::string found(text.begin(), std::find(text.begin(), text.end(), '\0'));
  if (!IsPrintable(found)) return std::nullopt;
  return found;
}

std::string ManufacturerIn(const std::string& file) {
  constexpr std::string_view kPrefix = "libclser";
  const std::string name = std::filesystem::path(file).stem().string();
  return name.size() > kPrefix.size() && name.starts_with(kPrefix) ? name.substr(kPrefix.size()) : name;
}

std::string Manufacturer(void* library, const std::string& file) {
  const auto ask = Symbol<GetManufacturerInfo>(library, "clGetManufacturerInfo");
  if (!ask) return ManufacturerIn(file);
  const auto told = TextFrom([ask](char* text, std::uint32_t* size) {
    std::uint32_t version = 0;
    return ask(text, size, &version);
  });
  return told.value_or(ManufacturerIn(file));
}

// All symbols are needed at once: a library that lacks what it stands on must not fail later, in a call.
void* Load(const std::string& file) {
  return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

}  // namespace

std::list<std::string> SerialPortsOf(const std::string& file) {
  void* const library = Load(file);
  if (!library) return {};
  const auto count = Symbol<GetNumSerialPorts>(library, "clGetNumSerialPorts");
  const auto identify = Symbol<GetSerialPortIdentifier>(library, "clGetSerialPortIdentifier");
  std::uint32_t number = 0;
  if (!count || !identify || count(&number) != kNoError || number > kMostPorts) return {};
  const std::string manufacturer = Manufacturer(library, file);
  std::list<std::string> ports;
  for (std::uint32_t i = 0; i < number; ++i) {
    const auto port =
        TextFrom([identify, i](char* text, std::uint32_t* size) { return identify(i, text, size); });
    if (port) ports.push_back(manufacturer + "#" + *port);
  }
  return ports;
}

std::list<std::string> ProtocolDriverIn(const std::string& file) {
  void* const library = Load(file);
  if (!library || !dlsym(library, "clpProbeDevice")) return {};
  return {file};
}

}  // namespace zyn::transport
