/// Makes the events of a device readable as features.
#ifndef GENAPI_EVENTADAPTER_H
#define GENAPI_EVENTADAPTER_H

#include "../Base/GCString.h"
#include "../Base/GCTypes.h"
#include "GenApiDll.h"
#include "INodeMap.h"

namespace GENAPI_NAMESPACE {

/// Base of the adapters; each knows one kind of message. Every node with the identifier of a delivered event
/// is invalidated, so its callbacks fire; Port nodes give access to the event's bytes, which are copied.
///
/// The map must outlive the adapter or be detached. Messages may come on any thread, one at a time; callbacks
/// run on that thread.
class GENAPI_DECL CEventAdapter {
 public:
  virtual ~CEventAdapter();
  CEventAdapter(const CEventAdapter&) = delete;
  CEventAdapter& operator=(const CEventAdapter&) = delete;

  virtual void AttachNodeMap(INodeMap* pNodeMap);
  virtual void DetachNodeMap();
  /// Throws RuntimeException when the message is malformed; events before the damage were delivered then.
  virtual void DeliverMessage(const uint8_t msg[], uint32_t numBytes) = 0;

 protected:
  explicit CEventAdapter(INodeMap* pNodeMap = nullptr);

  struct Impl;
  Impl* m_pImpl;
};

}  // namespace GENAPI_NAMESPACE

#endif
