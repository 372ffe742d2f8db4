/// How a backend reports a failure to the kit.
#ifndef ZYN_PRODUCER_ERROR_H
#define ZYN_PRODUCER_ERROR_H

#include <stdexcept>
#include <string>

#include "GenTL/GenTL.h"

namespace zyn::producer {

/// Thrown by backends; the C entry point that was called returns `Code()`, and GCGetLastError on that thread
/// returns the text. Other exceptions work too: std::bad_alloc becomes GC_ERR_OUT_OF_MEMORY, everything else
/// GC_ERR_ERROR. None of them leaves the producer.
class Error : public std::runtime_error {
 public:
  /// code: a GC_ERR_* other than GC_ERR_SUCCESS. text: names the failing object, for people to read.
  Error(GenTL::GC_ERROR code, const std::string& text) : std::runtime_error(text), code_(code) {}

  GenTL::GC_ERROR Code() const { return code_; }

 private:
  GenTL::GC_ERROR code_;
};

}  // namespace zyn::producer

#endif
