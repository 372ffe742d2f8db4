/// Something that can be stepped through its values.
#ifndef GENAPI_ISELECTORDIGIT_H
#define GENAPI_ISELECTORDIGIT_H

#include "../Base/GCString.h"
#include "Container.h"
#include "GenApiDll.h"

namespace GENAPI_NAMESPACE {

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ISelectorDigit {
  /// Goes to the first value. Returns false when there is none.
  virtual bool SetFirst() = 0;
  /// Goes to the next value; without Tick sets the present one again. Returns false behind the last value.
  virtual bool SetNext(bool Tick = true) = 0;
  /// Goes back to the value before SetFirst.
  virtual void Restore() = 0;
  virtual GENICAM_NAMESPACE::gcstring ToString() = 0;
  /// The selectors stepped through, outermost first; Incremental appends to the list instead of replacing it.
  virtual void GetSelectorList(FeatureList_t & SelectorList, bool Incremental = false) = 0;
  virtual ~ISelectorDigit() {}
};

}  // namespace GENAPI_NAMESPACE

#endif
