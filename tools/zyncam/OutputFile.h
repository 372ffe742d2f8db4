/// Files that the verbs write.
#ifndef ZYNCAM_OUTPUT_FILE_H
#define ZYNCAM_OUTPUT_FILE_H

#include <cstddef>
#include <string>

namespace zyncam {

/// Makes the folder when it is missing. Throws Failure.
void MakeFolder(const std::string& folder);

/// Writes a whole file. Throws Failure when that is not possible; an incomplete file is removed.
void WriteFile(const std::string& path, const void* data, std::size_t size);

/// "FOLDER/NAME_00001ENDING".
std::string NumberedPath(const std::string& folder, const std::string& name, int number,
                         const std::string& ending);

}  // namespace zyncam

#endif
