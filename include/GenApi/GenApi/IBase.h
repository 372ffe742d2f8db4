/// The root of all interfaces, and questions about access modes.
#ifndef GENAPI_IBASE_H
#define GENAPI_IBASE_H

#include "Types.h"

namespace GENAPI_NAMESPACE {

/// Every interface derives virtually from IBase, and a node is one object with all its interfaces, so any two
/// interfaces of a node can be cast into each other with dynamic_cast.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IBase {
  /// What may be done with the node at this moment. May read the device.
  virtual EAccessMode GetAccessMode() const = 0;
  virtual ~IBase() = 0;
};

inline IBase::~IBase() {}

inline bool IsReadable(EAccessMode AccessMode) {
  return AccessMode == RW || AccessMode == RO;
}
inline bool IsWritable(EAccessMode AccessMode) {
  return AccessMode == RW || AccessMode == WO;
}
inline bool IsImplemented(EAccessMode AccessMode) {
  return AccessMode != NI;
}
inline bool IsAvailable(EAccessMode AccessMode) {
  return !(AccessMode == NA || AccessMode == NI);
}

// A null pointer is a node that is not implemented.
inline bool IsReadable(const IBase* p) {
  return p && IsReadable(p->GetAccessMode());
}
inline bool IsWritable(const IBase* p) {
  return p && IsWritable(p->GetAccessMode());
}
inline bool IsImplemented(const IBase* p) {
  return p && IsImplemented(p->GetAccessMode());
}
inline bool IsAvailable(const IBase* p) {
  return p && IsAvailable(p->GetAccessMode());
}

inline bool IsReadable(const IBase& r) {
  return IsReadable(r.GetAccessMode());
}
inline bool IsWritable(const IBase& r) {
  return IsWritable(r.GetAccessMode());
}
inline bool IsImplemented(const IBase& r) {
  return IsImplemented(r.GetAccessMode());
}
inline bool IsAvailable(const IBase& r) {
  return IsAvailable(r.GetAccessMode());
}

/// The access that remains when both apply: NI beats NA beats everything else; WO and RO together leave NA.
inline EAccessMode Combine(EAccessMode Peter, EAccessMode Paul) {
  if (Peter == NI || Paul == NI) return NI;
  if (Peter == NA || Paul == NA) return NA;
  if (Peter == RW) return Paul;
  if (Paul == RW) return Peter;
  return Peter == Paul ? Peter : NA;
}

/// The more restrictive of the two.
inline EVisibility Combine(EVisibility Peter, EVisibility Paul) {
  return Peter > Paul ? Peter : Paul;
}

/// NoCache wins, then WriteAround.
inline ECachingMode Combine(ECachingMode Peter, ECachingMode Paul) {
  if (Peter == NoCache || Paul == NoCache) return NoCache;
  if (Peter == WriteAround || Paul == WriteAround) return WriteAround;
  return WriteThrough;
}

/// Whether a node of this visibility shows for a user who may see up to MaxVisiblity.
inline bool IsVisible(EVisibility Visibility, EVisibility MaxVisiblity) {
  return Visibility <= MaxVisiblity;
}

inline bool IsCacheable(ECachingMode CachingMode) {
  return CachingMode != NoCache;
}

}  // namespace GENAPI_NAMESPACE

#endif
