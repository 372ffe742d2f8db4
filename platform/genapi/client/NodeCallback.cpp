#include "GenApi/NodeCallback.h"

#include "nodes/Node.h"

namespace GENAPI_NAMESPACE {

CNodeCallback::~CNodeCallback() = default;

void Deregister(CallbackHandleType hCallback) {
  if (hCallback == 0) return;
  // The handle of a registration is the address of its callback.
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the published type of a handle is an integer
  auto* const callback = reinterpret_cast<CNodeCallback*>(hCallback);
  INode* const node = callback->GetNode();
  if (auto* const own = dynamic_cast<zyn::genapi::Node*>(node)) return own->DeregisterAndDestroy(hCallback);
  if (node != nullptr) node->DeregisterCallback(hCallback);
  callback->Destroy();
}

}  // namespace GENAPI_NAMESPACE
