/// What a description had wrong and was read as what it must mean.
///
/// An extension of this runtime: other runtimes do not have this header, and GenApi.h does not include it.
#ifndef GENAPI_ILOADNOTES_H
#define GENAPI_ILOADNOTES_H

#include "../Base/GCStringVector.h"
#include "GenApiDll.h"
#include "Types.h"

namespace GENAPI_NAMESPACE {

/// Reached from a node map by dynamic_cast; null with a map of another runtime.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ILoadNotes {
  /// One sentence with element and line for each thing tolerated, in the order found; empty for a clean
  /// description. After 1000 the last entry says how many more there were.
  virtual void GetLoadNotes(GENICAM_NAMESPACE::gcstring_vector & Notes) const = 0;

 protected:
  ~ILoadNotes() {}
};

}  // namespace GENAPI_NAMESPACE

#endif
