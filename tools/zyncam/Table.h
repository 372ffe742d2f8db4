/// Rows of text in columns.
#ifndef ZYNCAM_TABLE_H
#define ZYNCAM_TABLE_H

#include <string>
#include <vector>

#include "Console.h"

namespace zyncam {

/// "-" for an empty text, so that a table has something in every place.
std::string OrDash(const std::string& text);

/// Prints the rows with aligned columns, two spaces apart. All rows have as many cells as the first.
void PrintTable(Console& console, const std::vector<std::vector<std::string>>& rows);

}  // namespace zyncam

#endif
