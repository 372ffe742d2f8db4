/// Typed pointers to nodes.
#ifndef GENAPI_POINTER_H
#define GENAPI_POINTER_H

#include "../Base/GCException.h"
#include "IBase.h"
#include "IBoolean.h"
#include "ICategory.h"
#include "IChunkPort.h"
#include "ICommand.h"
#include "IDeviceInfo.h"
#include "IEnumEntry.h"
#include "IEnumeration.h"
#include "IFloat.h"
#include "IInteger.h"
#include "INode.h"
#include "INodeMap.h"
#include "IPort.h"
#include "IPortConstruct.h"
#include "IPortRecorder.h"
#include "IRegister.h"
#include "ISelector.h"
#include "IString.h"
#include "IUserData.h"
#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// Borrows a node through interface T. Assigning a node without that interface leaves the pointer empty,
/// silently; using an empty pointer throws LogicalErrorException "NULL pointer dereferenced", also when
/// converting it to T*.
template <class T, class B = IBase>
class CPointer {
 public:
  CPointer() noexcept : m_pT(nullptr) {}
  CPointer(B* pB) : m_pT(Cast(pB)) {}
  CPointer(const CPointer&) = default;
  virtual ~CPointer() {}

  CPointer& operator=(const CPointer&) = default;
  CPointer& operator=(B* pB) {
    m_pT = Cast(pB);
    return *this;
  }

  operator T*() const { return Checked(); }
  T& operator*() const { return *Checked(); }
  T& operator()() const { return *Checked(); }
  T* operator->() const { return Checked(); }

  bool IsValid() const noexcept { return m_pT != nullptr; }
  operator bool() const noexcept { return m_pT != nullptr; }

  bool operator==(T* pT) const { return m_pT == pT; }
  bool operator==(const CPointer& rT) const { return m_pT == rT.m_pT; }
  /// Compares with a literal 0; any other number throws LogicalErrorException.
  bool operator==(int nMustBeNull) const {
    if (nMustBeNull != 0) throw LOGICAL_ERROR_EXCEPTION("argument must be NULL");
    return m_pT == nullptr;
  }

 protected:
  T* m_pT;

 private:
  static T* Cast(B* pB) { return pB ? dynamic_cast<T*>(pB) : nullptr; }
  T* Checked() const {
    if (!m_pT) throw LOGICAL_ERROR_EXCEPTION("NULL pointer dereferenced");
    return m_pT;
  }
};

template <class T, class B>
inline bool IsReadable(const CPointer<T, B>& ptr) {
  return ptr.IsValid() && IsReadable(ptr->GetAccessMode());
}
template <class T, class B>
inline bool IsWritable(const CPointer<T, B>& ptr) {
  return ptr.IsValid() && IsWritable(ptr->GetAccessMode());
}
template <class T, class B>
inline bool IsImplemented(const CPointer<T, B>& ptr) {
  return ptr.IsValid() && IsImplemented(ptr->GetAccessMode());
}
template <class T, class B>
inline bool IsAvailable(const CPointer<T, B>& ptr) {
  return ptr.IsValid() && IsAvailable(ptr->GetAccessMode());
}

typedef CPointer<IBase> CBasePtr;
typedef CPointer<INode> CNodePtr;
typedef CPointer<IValue> CValuePtr;
typedef CPointer<ICategory> CCategoryPtr;
typedef CPointer<IBoolean> CBooleanPtr;
typedef CPointer<IInteger> CIntegerPtr;
typedef CPointer<IString> CStringPtr;
typedef CPointer<IRegister> CRegisterPtr;
typedef CPointer<IEnumeration> CEnumerationPtr;
typedef CPointer<IEnumEntry> CEnumEntryPtr;
typedef CPointer<IPort> CPortPtr;
typedef CPointer<IPortReplay> CPortReplayPtr;
typedef CPointer<IPortRecorder> CPortRecorderPtr;
typedef CPointer<IPortWriteList, IPortWriteList> CPortWriteListPtr;
typedef CPointer<IChunkPort> CChunkPortPtr;
typedef CPointer<ISelector> CSelectorPtr;
typedef CPointer<ICommand> CCommandPtr;
typedef CPointer<IPortConstruct> CPortConstructPtr;
typedef CPointer<IPortStackedConstruct> CPortStackedConstructPtr;
typedef CPointer<IUserData> CNodeUserDataPtr;
typedef CPointer<INodeMap, INodeMap> CNodeMapPtr;
typedef CPointer<IDeviceInfo, INodeMap> CDeviceInfoPtr;
typedef CPointer<IUserData, INodeMap> CNodeMapUserDataPtr;

/// A pointer to a float that may have an integer or an enumeration beside it (the node's cast alias).
class CFloatPtr : public CPointer<IFloat, IBase> {
 public:
  CFloatPtr() noexcept {}
  CFloatPtr(IBase* pB) : CPointer<IFloat, IBase>(pB) {}

  CFloatPtr& operator=(IBase* pB) {
    CPointer<IFloat, IBase>::operator=(pB);
    return *this;
  }

  /// Null when there is no alias of that kind.
  IInteger* GetIntAlias() { return dynamic_cast<IInteger*>((*this)->GetNode()->GetCastAlias()); }
  IEnumeration* GetEnumAlias() { return dynamic_cast<IEnumeration*>((*this)->GetNode()->GetCastAlias()); }
};

/// The name of the node's principal interface; "IBase" for anything that is no node.
inline GENICAM_NAMESPACE::gcstring GetInterfaceName(IBase* pBase) {
  const INode* const node = dynamic_cast<INode*>(pBase);
  if (!node) return "IBase";
  switch (node->GetPrincipalInterfaceType()) {
    case intfIValue:
      return "IValue";
    case intfIInteger:
      return "IInteger";
    case intfIBoolean:
      return "IBoolean";
    case intfICommand:
      return "ICommand";
    case intfIFloat:
      return "IFloat";
    case intfIString:
      return "IString";
    case intfIRegister:
      return "IRegister";
    case intfICategory:
      return "ICategory";
    case intfIEnumeration:
      return "IEnumeration";
    case intfIEnumEntry:
      return "IEnumEntry";
    case intfIPort:
      return "IPort";
    default:
      return "IBase";
  }
}

}  // namespace GENAPI_NAMESPACE

#endif
