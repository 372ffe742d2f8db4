/// Features that select others.
#ifndef GENAPI_ISELECTOR_H
#define GENAPI_ISELECTOR_H

#include "Container.h"
#include "IBase.h"

namespace GENAPI_NAMESPACE {

/// Implemented by every node.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ISelector : virtual public IBase {
  virtual bool IsSelector() const = 0;
  virtual void GetSelectedFeatures(FeatureList_t & SelectedFeatures) const = 0;
  virtual void GetSelectingFeatures(FeatureList_t & SelectingFeatures) const = 0;
};

}  // namespace GENAPI_NAMESPACE

#endif
