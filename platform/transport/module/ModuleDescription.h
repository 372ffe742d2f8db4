/// Fetches the XML description of a module through its port.
#ifndef ZYN_TRANSPORT_MODULE_DESCRIPTION_H
#define ZYN_TRANSPORT_MODULE_DESCRIPTION_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "../producer/ProducerLibrary.h"

namespace zyn::transport {

/// A parsed description URL.
struct DescriptionUrl {
  enum class Scheme { kLocal, kFile, kHttp, kUnknown };
  Scheme scheme = Scheme::kUnknown;
  std::string name;  ///< local: the file name; file: the decoded path; http: the URL
  std::uint64_t address = 0;
  std::uint64_t length = 0;
  /// The length read as a decimal number, where it differs and its digits allow it: some producers write it so.
  std::optional<std::uint64_t> decimalLength;
};

/// Takes the spellings found in the field: any letter case, up to three slashes, blanks, "0x", a query part.
DescriptionUrl ParseDescriptionUrl(const std::string& url);

/// One module's description as it came: plain XML, cut to the document, or a ZIP archive.
struct ModuleDescription {
  std::vector<char> bytes;
  bool isZip = false;
};

/// Fetches the best description: a local one before a file before anything else. `reason` says why there is
/// none. Blocks while the port is read.
/// producerFolder  where a file URL without a location is looked for.
std::optional<ModuleDescription> FetchDescription(const ProducerLibrary& producer, GenTL::PORT_HANDLE port,
                                                  const std::string& producerFolder, std::string& reason);

/// Finds out whether the bytes are XML or a ZIP archive whatever the name says, and cuts padding and junk off
/// plain XML. Empty when they are neither.
std::optional<ModuleDescription> RecogniseDescription(std::vector<char> bytes);

}  // namespace zyn::transport

#endif
