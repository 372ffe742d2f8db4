#include "GlibError.h"

#include <arv.h>

namespace zyn::aravis {

using namespace GenTL;

GC_ERROR GlibError::Code(GC_ERROR fallback) const {
  if (error_ == nullptr || error_->domain != arv_device_error_quark()) return fallback;
  switch (error_->code) {
    case ARV_DEVICE_ERROR_TIMEOUT:
      return GC_ERR_TIMEOUT;
    case ARV_DEVICE_ERROR_NOT_CONTROLLER:
    case ARV_DEVICE_ERROR_PROTOCOL_ERROR_WRITE_PROTECT:
    case ARV_DEVICE_ERROR_PROTOCOL_ERROR_ACCESS_DENIED:
      return GC_ERR_ACCESS_DENIED;
    case ARV_DEVICE_ERROR_PROTOCOL_ERROR_INVALID_ADDRESS:
      return GC_ERR_INVALID_ADDRESS;
    case ARV_DEVICE_ERROR_PROTOCOL_ERROR_INVALID_PARAMETER:
    case ARV_DEVICE_ERROR_PROTOCOL_ERROR_BAD_ALIGNMENT:
      return GC_ERR_INVALID_VALUE;
    case ARV_DEVICE_ERROR_PROTOCOL_ERROR_NOT_IMPLEMENTED:
      return GC_ERR_NOT_IMPLEMENTED;
    default:
      return fallback;
  }
}

void GlibError::Throw(const std::string& action, GC_ERROR fallback) const {
  const std::string cause = error_ != nullptr ? error_->message : "unknown cause";
  throw producer::Error(Code(fallback), action + ": " + cause);
}

}  // namespace zyn::aravis
