#include "GenApi/PortImpl.h"

#include "GenApi/INode.h"

namespace GENAPI_NAMESPACE {

CPortImpl::CPortImpl() : m_pPortNode(nullptr) {}
CPortImpl::~CPortImpl() = default;

void CPortImpl::SetPortImpl(IPort* pPort) {
  m_pPortNode = pPort;
}

EYesNo CPortImpl::GetSwapEndianess() {
  return No;
}

void CPortImpl::Replay(IPortWriteList* pPortRecorder, bool Invalidate) {
  pPortRecorder->Replay(this);
  if (Invalidate) InvalidateNode();
}

void CPortImpl::InvalidateNode() {
  if (INode* const node = dynamic_cast<INode*>(m_pPortNode)) node->InvalidateNode();
}

}  // namespace GENAPI_NAMESPACE
