/// Small helpers of the base layer.
#ifndef BASE_GCUTILITIES_H
#define BASE_GCUTILITIES_H

#include "GCException.h"
#include "GCStringVector.h"
#include "GCTypes.h"

namespace GENICAM_NAMESPACE {

/// Converts between integer types. Throws RuntimeException when the value does not fit.
template <typename Td, typename Ts>
inline Td INTEGRAL_CAST2(Ts s) {
  const Td d = static_cast<Td>(s);
  if (static_cast<Ts>(d) != s || (d < Td(0)) != (s < Ts(0)))
    throw RUNTIME_EXCEPTION("Integer value does not fit into the requested type");
  return d;
}

template <typename T>
inline T INTEGRAL_CAST(int64_t ll) {
  return INTEGRAL_CAST2<T, int64_t>(ll);
}

/// Splits a text at any of the delimiters; empty parts are left out. The result replaces the content of
/// Tokens.
GCBASE_API void Tokenize(const gcstring& str, gcstring_vector& tokens, const gcstring& delimiters = " ");

}  // namespace GENICAM_NAMESPACE

#endif
