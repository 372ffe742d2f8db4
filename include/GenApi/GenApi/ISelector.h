/// Features that select others.
#ifndef GENAPI_ISELECTOR_H
#define GENAPI_ISELECTOR_H

#include "Container.h"
#include "IBase.h"
#include "Reference.h"

namespace GENAPI_NAMESPACE {

/// Implemented by every node.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ISelector : virtual public IBase {
  virtual bool IsSelector() const = 0;
  virtual void GetSelectedFeatures(FeatureList_t & SelectedFeatures) const = 0;
  virtual void GetSelectingFeatures(FeatureList_t & SelectingFeatures) const = 0;
};

/// A reference to a selector.
template <class T, class I = T>
class CSelectorRefT : public CBaseRefT<T, I> {
 public:
  bool IsSelector() const override { return this->Ref()->IsSelector(); }
  void GetSelectedFeatures(FeatureList_t& SelectedFeatures) const override {
    this->Ref()->GetSelectedFeatures(SelectedFeatures);
  }
  void GetSelectingFeatures(FeatureList_t& SelectingFeatures) const override {
    this->Ref()->GetSelectingFeatures(SelectingFeatures);
  }
};

typedef CSelectorRefT<ISelector> CSelectorRef;

}  // namespace GENAPI_NAMESPACE

#endif
