#include "Table.h"

#include <algorithm>

namespace zyncam {

std::string OrDash(const std::string& text) {
  return text.empty() ? "-" : text;
}

void PrintTable(Console& console, const std::vector<std::vector<std::string>>& rows) {
  if (rows.empty()) return;
  std::vector<std::size_t> widths(rows.front().size());
  for (const std::vector<std::string>& row : rows) {
    for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const std::vector<std::string>& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      line += row[i];
      if (i + 1 < widths.size()) line.append(widths[i] - row[i].size() + 2, ' ');
    }
    console.Line(line);
  }
}

}  // namespace zyncam
