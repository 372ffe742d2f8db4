/// The port of one kind of event.
#ifndef GENAPI_EVENTPORT_H
#define GENAPI_EVENTPORT_H

#include "../Base/GCString.h"
#include "GenApiDll.h"
#include "INode.h"
#include "IPortConstruct.h"

namespace GENAPI_NAMESPACE {

/// Serves a node that has an event identifier out of the last event of that kind. Address 0 is the first byte
/// of the event. Access mode NA until one came. To be used with the lock of the node map held; nothing is
/// invalidated here.
class GENAPI_DECL CEventPort : public IPortConstruct {
 public:
  explicit CEventPort(INode* pNode = nullptr);
  ~CEventPort() override;
  CEventPort(const CEventPort&) = delete;
  CEventPort& operator=(const CEventPort&) = delete;

  EAccessMode GetAccessMode() const override;
  void Read(void* pBuffer, int64_t Address, int64_t Length) override;
  /// Always throws AccessException: what happened cannot be changed.
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override;
  void SetPortImpl(IPort* pPort) override;
  EYesNo GetSwapEndianess() override;

  /// A Port node reads the event through this object; of any other node only the identifier matters. A node
  /// without identifier is left alone.
  void AttachNode(INode* pNode);
  void DetachNode();
  /// Whether the node waits for this event; leading zeros do not matter. The bytes are most significant first.
  bool CheckEventID(uint8_t* pEventIDBuffer, int EventIDLength) const;
  bool CheckEventID(uint64_t EventID) const;
  bool CheckEventID(const GENICAM_NAMESPACE::gcstring& EventID) const;
  /// Copies the event.
  void AttachEvent(uint8_t* pBaseAddress, int64_t Length);
  void DetachEvent();
  /// The node this port serves; null while not attached.
  INode* GetNode() const { return m_pNode; }

 private:
  struct Storage;
  INode* m_pNode;
  Storage* m_pStorage;
};

}  // namespace GENAPI_NAMESPACE

#endif
