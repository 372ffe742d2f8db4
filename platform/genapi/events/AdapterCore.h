/// What the event adapters share.
#ifndef ZYN_GENAPI_EVENTS_ADAPTERCORE_H
#define ZYN_GENAPI_EVENTS_ADAPTERCORE_H

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "GenApi/EventAdapter.h"
#include "GenApi/EventPort.h"

namespace GENAPI_NAMESPACE {

/// The nodes of one map that wait for events. The map's lock is taken inside, and never held while callbacks
/// run.
struct CEventAdapter::Impl {
  ~Impl() { DetachNodeMap(); }

  void AttachNodeMap(INodeMap* map);
  void DetachNodeMap();
  void Deliver(const GENICAM_NAMESPACE::gcstring& id, std::span<const std::uint8_t> event);
  void Deliver(std::uint64_t id, std::span<const std::uint8_t> event);

 private:
  template <class Id>
  void DeliverTo(const Id& id, std::span<const std::uint8_t> event);

  INodeMap* map_ = nullptr;
  std::vector<std::unique_ptr<CEventPort>> ports_;
};

}  // namespace GENAPI_NAMESPACE

#endif
