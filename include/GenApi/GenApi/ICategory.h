/// Groups of features.
#ifndef GENAPI_ICATEGORY_H
#define GENAPI_ICATEGORY_H

#include "Container.h"
#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// A group of features, in the order of the description.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ICategory : virtual public IValue {
  virtual void GetFeatures(FeatureList_t & Features) const = 0;
};

}  // namespace GENAPI_NAMESPACE

#endif
