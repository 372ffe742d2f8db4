/// Turns GenTL results into the results of the transport interface.
#ifndef ZYN_TRANSPORT_RESULT_H
#define ZYN_TRANSPORT_RESULT_H

#include <GenTL/GenTL.h>
#include <KELGeniCam.h>

namespace zyn::transport {

/// The KELGENICAM::RESULT that names the same cause. Codes that only a producer knows become RESULT_ERROR.
int ToResult(GenTL::GC_ERROR error);

/// The same for opening a device: a link failure or a time-out means that the camera does not answer.
int ToOpenResult(GenTL::GC_ERROR error);

/// The name of a GenTL result as the standard writes it, for messages.
const char* ErrorName(GenTL::GC_ERROR error);

}  // namespace zyn::transport

#endif
