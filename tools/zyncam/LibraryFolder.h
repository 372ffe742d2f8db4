/// Where the library's files lie.
#ifndef ZYNCAM_LIBRARY_FOLDER_H
#define ZYNCAM_LIBRARY_FOLDER_H

#include <filesystem>

namespace zyncam {

/// The folder of the transport's library: the library folder of the build tree, and of an installation alike. Empty
/// when the loader does not tell.
std::filesystem::path LibraryFolder();

}  // namespace zyncam

#endif
