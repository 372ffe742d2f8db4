/// Tells a device that many values are about to be read or written.
#ifndef ZYN_GENAPI_PERSISTENCE_ANNOUNCEMENT_H
#define ZYN_GENAPI_PERSISTENCE_ANNOUNCEMENT_H

#include "GenApi/INodeMap.h"

namespace zyn::genapi {

/// Executes one command now and another one in the end, of the standard features that come in such pairs. Devices that
/// lack one, or do not allow it now, are not told.
class Announcement {
 public:
  /// Throws what the start command throws. The map outlives this; its lock is held by the caller.
  Announcement(GENAPI_NAMESPACE::INodeMap& map, const char* start, const char* end);
  ~Announcement();
  Announcement(const Announcement&) = delete;
  Announcement& operator=(const Announcement&) = delete;

  /// Executes the end command now. Throws what it throws.
  void End();

 private:
  void Execute(const char* name);

  GENAPI_NAMESPACE::INodeMap& map_;
  const char* end_;
};

}  // namespace zyn::genapi

#endif
