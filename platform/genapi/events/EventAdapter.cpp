#include "GenApi/EventAdapter.h"

#include "Base/GCException.h"
#include "events/AdapterCore.h"

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;

void CEventAdapter::Impl::AttachNodeMap(INodeMap* map) {
  DetachNodeMap();
  if (!map) throw INVALID_ARGUMENT_EXCEPTION("A null node map cannot be attached.");
  const AutoLock lock(map->GetLock());
  NodeList_t nodes;
  map->GetNodes(nodes);
  for (INode* const node : nodes) {
    if (node->GetEventID().empty()) continue;
    auto port = std::make_unique<CEventPort>(node);
    if (port->GetNode()) ports_.push_back(std::move(port));
  }
  map_ = map;
}

void CEventAdapter::Impl::DetachNodeMap() {
  if (!map_) return;
  const AutoLock lock(map_->GetLock());
  ports_.clear();
  map_ = nullptr;
}

template <class Id>
void CEventAdapter::Impl::DeliverTo(const Id& id, std::span<const std::uint8_t> event) {
  if (!map_) throw RUNTIME_EXCEPTION("An event needs a node map that it can be delivered to.");
  std::vector<INode*> waiting;
  {
    const AutoLock lock(map_->GetLock());
    for (const auto& port : ports_) {
      if (!port->CheckEventID(id)) continue;
      // The port copies the bytes; its signature only lacks the const.
      port->AttachEvent(const_cast<std::uint8_t*>(event.data()), static_cast<std::int64_t>(event.size()));
      waiting.push_back(port->GetNode());
    }
  }
  for (INode* const node : waiting) node->InvalidateNode();
}

void CEventAdapter::Impl::Deliver(const gcstring& id, std::span<const std::uint8_t> event) {
  DeliverTo(id, event);
}
void CEventAdapter::Impl::Deliver(std::uint64_t id, std::span<const std::uint8_t> event) {
  DeliverTo(id, event);
}

CEventAdapter::CEventAdapter(INodeMap* pNodeMap) : m_pImpl(new Impl) {
  if (!pNodeMap) return;
  try {
    m_pImpl->AttachNodeMap(pNodeMap);
  } catch (...) {
    delete m_pImpl;
    throw;
  }
}

CEventAdapter::~CEventAdapter() {
  delete m_pImpl;
}

void CEventAdapter::AttachNodeMap(INodeMap* pNodeMap) {
  m_pImpl->AttachNodeMap(pNodeMap);
}
void CEventAdapter::DetachNodeMap() {
  m_pImpl->DetachNodeMap();
}

}  // namespace GENAPI_NAMESPACE
