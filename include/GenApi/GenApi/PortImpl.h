/// Base class for the ports that programs write.
#ifndef GENAPI_PORTIMPL_H
#define GENAPI_PORTIMPL_H

#include "IPortConstruct.h"
#include "IPortRecorder.h"

namespace GENAPI_NAMESPACE {

/// Derive from it and implement GetAccessMode, Read and Write.
class GENAPI_DECL CPortImpl : public IPortConstruct, public IPortReplay {
 public:
  CPortImpl();
  ~CPortImpl() override;

  EAccessMode GetAccessMode() const override = 0;
  void Read(void* pBuffer, int64_t Address, int64_t Length) override = 0;
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override = 0;

  void SetPortImpl(IPort* pPort) override;
  EYesNo GetSwapEndianess() override;
  void Replay(IPortWriteList* pPortRecorder, bool Invalidate = true) override;
  /// Forgets everything the node map cached behind this port. Does nothing while not connected.
  void InvalidateNode();

 private:
  // The Port node this object was connected to.
  IPort* m_pPortNode;
};

}  // namespace GENAPI_NAMESPACE

#endif
