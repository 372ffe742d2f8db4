#include "GenApi/PortStackedImpl.h"

#include "GenApi/INode.h"

namespace GENAPI_NAMESPACE {

CPortStackedImpl::CPortStackedImpl() : m_pPortNode(nullptr) {}
CPortStackedImpl::~CPortStackedImpl() = default;

void CPortStackedImpl::SetPortImpl(IPortStacked* pPort) {
  m_pPortNode = pPort;
}

EYesNo CPortStackedImpl::GetSwapEndianess() {
  return No;
}

void CPortStackedImpl::Replay(IPortWriteList* pPortRecorder, bool Invalidate) {
  pPortRecorder->Replay(this);
  if (Invalidate) InvalidateNode();
}

void CPortStackedImpl::InvalidateNode() {
  if (INode* const node = dynamic_cast<INode*>(m_pPortNode)) node->InvalidateNode();
}

}  // namespace GENAPI_NAMESPACE
