/// Reads everything anew, for devices whose description says too little.
///
/// An extension of this runtime: other runtimes do not have this header, and GenApi.h does not include it.
#ifndef GENAPI_ICACHESWITCH_H
#define GENAPI_ICACHESWITCH_H

#include "GenApiDll.h"
#include "Types.h"

namespace GENAPI_NAMESPACE {

/// Reached from a node map by dynamic_cast; null with a map of another runtime. Takes the map's lock.
///
/// Some descriptions let registers be remembered that change by themselves, or do not say what a write changes. Then
/// values, access modes and limits are stale until InvalidateNodes(). With caching off no register is remembered: each
/// question that needs one reads it.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ICacheSwitch {
  /// On at first. Either way what is remembered is forgotten; no callback fires.
  virtual void SetCachingEnabled(bool IsEnabled) = 0;
  virtual bool IsCachingEnabled() const = 0;

 protected:
  ~ICacheSwitch() {}
};

}  // namespace GENAPI_NAMESPACE

#endif
