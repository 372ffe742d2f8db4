/// Where producers are looked for.
#ifndef ZYN_TRANSPORT_SEARCH_PATH_H
#define ZYN_TRANSPORT_SEARCH_PATH_H

#include <string>
#include <vector>

namespace zyn::transport {

/// One producer file, or a place that cannot be used.
struct SearchEntry {
  std::string path;       ///< the folder or file as it was found
  std::string canonical;  ///< the file without links; "" for a place that cannot be used
  std::string reason;     ///< why the place cannot be used; "" for a producer file
};

/// The places in search order: the folder `zyncamera/gentl` beside this library, then each entry of
/// GENICAM_GENTL64_PATH (GENICAM_GENTL32_PATH in a 32-bit process). Empty entries are left out.
std::vector<std::string> SearchPlaces();

/// The producer files of the places, folder by folder, sorted by name within each. An entry may be a folder or
/// a *.cti file. A file that several places lead to is listed once and reported for the others.
std::vector<SearchEntry> FindProducerFiles(const std::vector<std::string>& places);

/// Splits a list of folders as environment variables write it; strips quotes, leaves out empty entries.
std::vector<std::string> SplitPathList(const char* list);

}  // namespace zyn::transport

#endif
