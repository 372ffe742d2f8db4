/// Failures of libaravis as exceptions of the producer kit.
#ifndef ZYN_ARAVIS_GLIB_ERROR_H
#define ZYN_ARAVIS_GLIB_ERROR_H

#include <glib.h>

#include <string>

#include "producer/Error.h"

namespace zyn::aravis {

/// Where a GLib function leaves its error.
class GlibError {
 public:
  GlibError() = default;
  ~GlibError() { g_clear_error(&error_); }
  GlibError(const GlibError&) = delete;
  GlibError& operator=(const GlibError&) = delete;

  GError** Out() { return &error_; }
  explicit operator bool() const { return error_ != nullptr; }

  /// The code that says the same; `fallback` for what has none of its own.
  GenTL::GC_ERROR Code(GenTL::GC_ERROR fallback = GenTL::GC_ERR_IO) const;
  /// Throws what happened, told as "`action`: cause".
  [[noreturn]] void Throw(const std::string& action, GenTL::GC_ERROR fallback = GenTL::GC_ERR_IO) const;

 private:
  GError* error_ = nullptr;
};

}  // namespace zyn::aravis

#endif
