/// Every function that takes a handle first, to be called with any handle.
#ifndef ZYN_PRODUCER_CHECK_CALLS_H
#define ZYN_PRODUCER_CHECK_CALLS_H

#include <vector>

#include "Functions.h"

namespace zyn::producercheck {

enum class HandleKind { kSystem, kInterface, kDevice, kStream, kPort, kEvent, kEventSource };

struct Call {
  const char* name;
  HandleKind kind;
  GenTL::GC_ERROR (*run)(Functions& f, void* handle);  ///< all other arguments are valid
};

const std::vector<Call>& Calls();

/// The functions of a buffer, called with a stream and any buffer handle.
struct BufferCall {
  const char* name;
  GenTL::GC_ERROR (*run)(Functions& f, void* stream, void* buffer);
};

const std::vector<BufferCall>& BufferCalls();

}  // namespace zyn::producercheck

#endif
