/// Objects that stand for a node and can be pointed at it later. Generated camera classes are made of them.
#ifndef GENAPI_REFERENCE_H
#define GENAPI_REFERENCE_H

#include "../Base/GCException.h"
#include "../Base/GCString.h"
#include "IBase.h"

namespace GENAPI_NAMESPACE {

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IReference {
  /// Null, or an object without the right interface, leaves the reference empty.
  virtual void SetReference(IBase * pBase) = 0;

 protected:
  ~IReference() {}
};

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IEnumReference {
  /// Index is the program's number for the entry of that name.
  virtual void SetEnumReference(int Index, GENICAM_NAMESPACE::gcstring Name) = 0;
  virtual void SetNumEnums(int NumEnums) = 0;

 protected:
  ~IEnumReference() {}
};

/// Implements interface T by passing every call on to a borrowed object with interface I. Empty at first;
/// then it counts as not implemented, and every other call throws AccessException. Each reference class stands
/// beside the interface that it implements.
template <class T, class I = T>
class CReferenceT : public T, public IReference {
 public:
  CReferenceT() : m_Ptr(nullptr) {}
  virtual ~CReferenceT() {}

  void SetReference(IBase* pBase) override { m_Ptr = pBase ? dynamic_cast<I*>(pBase) : nullptr; }
  bool IsValid() const { return m_Ptr != nullptr; }

 protected:
  I* Ref() const {
    if (!m_Ptr) throw ACCESS_EXCEPTION("Feature not present (reference not valid)");
    return m_Ptr;
  }

  I* m_Ptr;
};

/// Any object with an access mode.
template <class T, class I = T>
class CBaseRefT : public CReferenceT<T, I> {
 public:
  EAccessMode GetAccessMode() const override { return this->m_Ptr ? this->m_Ptr->GetAccessMode() : NI; }
};

typedef CBaseRefT<IBase> CBaseRef;

}  // namespace GENAPI_NAMESPACE

#endif
