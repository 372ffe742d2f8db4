/// The values of some selectors.
#ifndef GENAPI_SELECTORSTATE_H
#define GENAPI_SELECTORSTATE_H

#include "../Base/GCString.h"
#include "../Base/GCStringVector.h"
#include "GenApiDll.h"
#include "INodeMap.h"
#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// Names of selectors with their values, to be set in the order added. Not synchronised.
class GENAPI_DECL CSelectorState {
 public:
  CSelectorState();
  CSelectorState(const CSelectorState& other);
  CSelectorState& operator=(const CSelectorState& other);
  virtual ~CSelectorState();

  /// Walks through the selectors; false when there is none left.
  bool SetFirst();
  bool SetNext();
  /// Of the present selector; empty outside of a walk.
  GENICAM_NAMESPACE::gcstring GetNodeName() const;
  GENICAM_NAMESPACE::gcstring GetNodeValue() const;

  /// Adds a selector with its present value.
  void AddSelector(IValue& Selector);
  void AddSelector(const GENICAM_NAMESPACE::gcstring& Name, const GENICAM_NAMESPACE::gcstring& Value);
  bool IsEmpty() const;
  /// Sets the selectors of a map. Returns false when one could not be set; the others are set nevertheless, and
  /// a message each is appended to pErrorList.
  bool RestoreState(INodeMap* pNodeMap, GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) const;

 private:
  GENICAM_NAMESPACE::gcstring_vector m_Names;
  GENICAM_NAMESPACE::gcstring_vector m_Values;
  size_t m_Position;
};

}  // namespace GENAPI_NAMESPACE

#endif
