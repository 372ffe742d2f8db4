/// Ports whose registers lie in a chunk.
#ifndef GENAPI_ICHUNKPORT_H
#define GENAPI_ICHUNKPORT_H

#include "../Base/GCString.h"
#include "IPort.h"

namespace GENAPI_NAMESPACE {

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IChunkPort : virtual public IPort {
  /// Hexadecimal digits without prefix; empty when the port serves no chunk.
  virtual GENICAM_NAMESPACE::gcstring GetChunkID() const = 0;
  virtual EYesNo CacheChunkData() const = 0;
};

}  // namespace GENAPI_NAMESPACE

#endif
