#ifndef ZYN_CAMERA_GUARDED_H
#define ZYN_CAMERA_GUARDED_H

#include "ZynCamera/Status.h"

namespace ZYNSDK {

/// Runs `work` and returns its result, or `onException` when it throws anything at all: GenICam's exceptions
/// have no standard base.
template <class Work, class Result = long>
Result Guarded(Work work, Result onException = ZYN_ERROR_EXCEPTION) {
  try {
    return work();
  } catch (...) {
    return onException;
  }
}

}  // namespace ZYNSDK

#endif
