/// Objects that can be pointed at a node later.
#ifndef GENAPI_REFERENCE_H
#define GENAPI_REFERENCE_H

#include "../Base/GCString.h"
#include "IBase.h"

namespace GENAPI_NAMESPACE {

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IReference {
  virtual void SetReference(IBase * pBase) = 0;

 protected:
  ~IReference() {}
};

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IEnumReference {
  virtual void SetEnumReference(int Index, GENICAM_NAMESPACE::gcstring Name) = 0;
  virtual void SetNumEnums(int NumEnums) = 0;

 protected:
  ~IEnumReference() {}
};

}  // namespace GENAPI_NAMESPACE

#endif
