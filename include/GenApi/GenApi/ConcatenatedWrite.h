/// Collects writes to several nodes, to be done in one go.
#ifndef GENAPI_CONCATENATEDWRITE_H
#define GENAPI_CONCATENATEDWRITE_H

#include "../Base/GCString.h"
#include "../Base/GCStringVector.h"
#include "GenApiDll.h"
#include "INodeMap.h"

namespace GENAPI_NAMESPACE {

/// A list of node names and values. Made by INodeMap::NewNodeWriteConcatenator(). Not synchronised.
class GENAPI_DECL CNodeWriteConcatenator {
 public:
  CNodeWriteConcatenator();
  CNodeWriteConcatenator(const CNodeWriteConcatenator&) = delete;
  CNodeWriteConcatenator& operator=(const CNodeWriteConcatenator&) = delete;

  void Add(const GENICAM_NAMESPACE::gcstring& nodeName, const GENICAM_NAMESPACE::gcstring& value);
  void Add(const GENICAM_NAMESPACE::gcstring& nodeName, const char* value);
  void Add(const GENICAM_NAMESPACE::gcstring& nodeName, int64_t value);
  void Add(const GENICAM_NAMESPACE::gcstring& nodeName, double value);
  void Add(const GENICAM_NAMESPACE::gcstring& nodeName, bool value);
  void Clear();
  /// Deletes the object.
  void Destroy();

  /// What was added, in order; both lists have one entry per write.
  const GENICAM_NAMESPACE::gcstring_vector& Names() const { return m_Names; }
  const GENICAM_NAMESPACE::gcstring_vector& Values() const { return m_Values; }

 private:
  ~CNodeWriteConcatenator();

  GENICAM_NAMESPACE::gcstring_vector m_Names;
  GENICAM_NAMESPACE::gcstring_vector m_Values;
};

/// Owns a list of writes.
class CNodeWriteConcatenatorRef {
 public:
  explicit CNodeWriteConcatenatorRef(CNodeWriteConcatenator* pConcatenatedWrite)
      : m_pConcatenatedWrite(pConcatenatedWrite) {}
  ~CNodeWriteConcatenatorRef() {
    if (m_pConcatenatedWrite) m_pConcatenatedWrite->Destroy();
  }
  CNodeWriteConcatenatorRef(const CNodeWriteConcatenatorRef&) = delete;
  CNodeWriteConcatenatorRef& operator=(const CNodeWriteConcatenatorRef&) = delete;

  template <class Value>
  void _Add(const GENICAM_NAMESPACE::gcstring& nodeName, const Value& value) const {
    m_pConcatenatedWrite->Add(nodeName, value);
  }
  void _Clear() const { m_pConcatenatedWrite->Clear(); }
  CNodeWriteConcatenator* get() const { return m_pConcatenatedWrite; }
  /// Gives the list up.
  CNodeWriteConcatenator* Release() {
    CNodeWriteConcatenator* const list = m_pConcatenatedWrite;
    m_pConcatenatedWrite = nullptr;
    return list;
  }

 private:
  CNodeWriteConcatenator* m_pConcatenatedWrite;
};

}  // namespace GENAPI_NAMESPACE

#endif
