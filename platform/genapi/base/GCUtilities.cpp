#include "Base/GCUtilities.h"

namespace GENICAM_NAMESPACE {

void Tokenize(const gcstring& str, gcstring_vector& tokens, const gcstring& delimiters) {
  tokens.clear();
  size_t start = str.find_first_not_of(delimiters);
  while (start != GCSTRING_NPOS) {
    const size_t end = str.find_first_of(delimiters, start);
    tokens.push_back(str.substr(start, end == GCSTRING_NPOS ? end : end - start));
    start = end == GCSTRING_NPOS ? end : str.find_first_not_of(delimiters, end);
  }
}

}  // namespace GENICAM_NAMESPACE
