#include "U3vManifest.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <tuple>

#include "U3vRegisters.h"

namespace zyn::aravis {
namespace {

using producer::Error;
using producer::XmlLocation;

constexpr std::uint64_t kCountBytes = 8;
constexpr std::uint64_t kEntryBytes = 64;
constexpr std::uint64_t kMostEntries = 64;
// Of the second word: file type in bits 0 to 2, format in bits 10 to 15, schema version in the upper half.
constexpr std::uint32_t kFileTypeMask = 0x7;
constexpr std::uint32_t kCameraDescription = 0;
constexpr std::uint32_t kPlain = 0;
constexpr std::uint32_t kZipped = 1;

// Cameras are named in any way; a URL is not.
std::string FileName(const std::string& model, bool isZipped) {
  std::string name = model.empty() ? "camera" : model;
  const auto isOrdinary = [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '_';
  };
  std::replace_if(
      name.begin(), name.end(), [&](char c) { return !isOrdinary(c); }, '_');
  return name + (isZipped ? ".zip" : ".xml");
}

std::optional<XmlLocation> ReadEntry(producer::Device& device, std::uint64_t at, const std::string& model) {
  const auto fileVersion = static_cast<std::uint32_t>(ReadU3vNumber(device, at, 4));
  const auto kind = static_cast<std::uint32_t>(ReadU3vNumber(device, at + 4, 4));
  const std::uint64_t address = ReadU3vNumber(device, at + 8, 8);
  const std::uint64_t size = ReadU3vNumber(device, at + 16, 8);
  const std::uint32_t format = kind >> 10U & 0x3FU;
  if ((kind & kFileTypeMask) != kCameraDescription || size == 0) return std::nullopt;
  if (format != kPlain && format != kZipped) return std::nullopt;
  std::array<char, 48> place{};
  std::snprintf(place.data(), place.size(), ";%llx;%llx", static_cast<unsigned long long>(address),
                static_cast<unsigned long long>(size));
  XmlLocation location;
  location.url = "local:" + FileName(model, format == kZipped) + place.data();
  location.schemaMajor = static_cast<std::int32_t>(kind >> 24U);
  location.schemaMinor = static_cast<std::int32_t>(kind >> 16U & 0xFFU);
  location.fileMajor = static_cast<std::int32_t>(fileVersion >> 24U);
  location.fileMinor = static_cast<std::int32_t>(fileVersion >> 16U & 0xFFU);
  location.fileSubMinor = static_cast<std::int32_t>(fileVersion & 0xFFFFU);
  return location;
}

}  // namespace

std::vector<XmlLocation> ReadU3vManifest(producer::Device& device, const std::string& model) {
  const std::uint64_t manifest = ReadU3vNumber(device, kU3vManifestAddress, 8);
  const std::uint64_t count = std::min(ReadU3vNumber(device, manifest, kCountBytes), kMostEntries);
  std::vector<XmlLocation> found;
  for (std::uint64_t i = 0; i < count; ++i) {
    auto location = ReadEntry(device, manifest + kCountBytes + i * kEntryBytes, model);
    if (location) found.push_back(std::move(*location));
  }
  if (found.empty()) throw Error(GenTL::GC_ERR_IO, "The camera does not tell where its description is.");
  std::stable_sort(found.begin(), found.end(), [](const XmlLocation& a, const XmlLocation& b) {
    return std::tie(a.schemaMajor, a.schemaMinor) > std::tie(b.schemaMajor, b.schemaMinor);
  });
  return found;
}

}  // namespace zyn::aravis
