/// Ports that know the node they serve.
#ifndef GENAPI_IPORTCONSTRUCT_H
#define GENAPI_IPORTCONSTRUCT_H

#include "IPort.h"
#include "IPortStacked.h"

namespace GENAPI_NAMESPACE {

/// A connected object with this interface is told which Port node it was connected to.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortConstruct : virtual public IPort {
  virtual void SetPortImpl(IPort * pPort) = 0;
  virtual EYesNo GetSwapEndianess() = 0;
};

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortStackedConstruct : virtual public IPortStacked {
  virtual void SetPortImpl(IPortStacked * pPort) = 0;
  virtual EYesNo GetSwapEndianess() = 0;
};

}  // namespace GENAPI_NAMESPACE

#endif
