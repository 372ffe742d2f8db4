#include "cameras/RegisterStatus.h"

namespace zyn::cameras {

const char* Text(RegisterStatus status) {
  switch (status) {
    case RegisterStatus::ok:
      return "ok";
    case RegisterStatus::unmapped:
      return "unmapped address";
    case RegisterStatus::accessDenied:
      return "access denied";
    case RegisterStatus::busy:
      return "busy";
    case RegisterStatus::outOfRange:
      return "value out of range";
    case RegisterStatus::badAlignment:
      return "bad alignment";
    case RegisterStatus::noAnswer:
      return "no answer";
  }
  return "unknown";
}

}  // namespace zyn::cameras
