#ifndef ZYN_MANAGER_HANDLE_ON_H
#define ZYN_MANAGER_HANDLE_ON_H

#include "SetWrapperValue.h"

namespace ZYNSDK {

class LogicCamera;

/// A camera handle of either kind on that camera. Owns nothing.
template <class Handle>
Handle HandleOn(LogicCamera* camera) {
  Handle handle;
  SetWrapperValue(&handle, camera, true);
  return handle;
}

}  // namespace ZYNSDK

#endif
