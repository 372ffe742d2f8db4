/// Ownership of GLib objects.
#ifndef ZYN_ARAVIS_GLIB_PTR_H
#define ZYN_ARAVIS_GLIB_PTR_H

#include <glib-object.h>

#include <memory>

namespace zyn::aravis {

struct GlibUnref {
  void operator()(gpointer object) const { g_object_unref(object); }
};

/// Holds one reference to a GObject.
template <class T>
using GlibPtr = std::unique_ptr<T, GlibUnref>;

/// A further reference to `object`.
template <class T>
GlibPtr<T> Share(T* object) {
  return GlibPtr<T>(static_cast<T*>(g_object_ref(object)));
}

}  // namespace zyn::aravis

#endif
