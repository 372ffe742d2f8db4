/// Base class for ports that take several writes at once.
#ifndef GENAPI_PORTSTACKEDIMPL_H
#define GENAPI_PORTSTACKEDIMPL_H

#include "IPortConstruct.h"
#include "IPortRecorder.h"

namespace GENAPI_NAMESPACE {

/// Derive from it and implement GetAccessMode, Read and both Write functions.
class GENAPI_DECL CPortStackedImpl : public IPortStackedConstruct, public IPortReplay {
 public:
  CPortStackedImpl();
  ~CPortStackedImpl() override;

  EAccessMode GetAccessMode() const override = 0;
  void Read(void* pBuffer, int64_t Address, int64_t Length) override = 0;
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override = 0;
  void Write(PORT_REGISTER_STACK_ENTRY* pEntries, size_t numEntries) override = 0;

  void SetPortImpl(IPortStacked* pPort) override;
  EYesNo GetSwapEndianess() override;
  void Replay(IPortWriteList* pPortRecorder, bool Invalidate = true) override;
  /// Forgets everything the node map cached behind this port. Does nothing while not connected.
  void InvalidateNode();

 private:
  // The Port node this object was connected to.
  IPortStacked* m_pPortNode;
};

}  // namespace GENAPI_NAMESPACE

#endif
