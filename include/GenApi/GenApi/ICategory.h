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

/// A reference to a category.
template <class T, class I = T>
class CCategoryRefT : public CValueRefT<T, I> {
 public:
  void GetFeatures(FeatureList_t& Features) const override { this->Ref()->GetFeatures(Features); }
};

typedef CCategoryRefT<ICategory> CCategoryRef;

}  // namespace GENAPI_NAMESPACE

#endif
