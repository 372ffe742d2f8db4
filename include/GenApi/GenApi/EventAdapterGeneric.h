/// Events that something else has taken apart.
#ifndef GENAPI_EVENTADAPTERGENERIC_H
#define GENAPI_EVENTADAPTERGENERIC_H

#include "EventAdapter.h"

namespace GENAPI_NAMESPACE {

/// The bytes delivered are the event.
class GENAPI_DECL CEventAdapterGeneric : public CEventAdapter {
 public:
  explicit CEventAdapterGeneric(INodeMap* pNodeMap = nullptr);
  ~CEventAdapterGeneric() override;

  /// Always throws RuntimeException: the identifier is missing.
  void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
  /// The identifier is hexadecimal digits without prefix.
  void DeliverMessage(const uint8_t msg[], uint32_t numBytes, const GENICAM_NAMESPACE::gcstring& EventID);
  void DeliverMessage(const uint8_t msg[], uint32_t numBytes, uint64_t EventID);
};

}  // namespace GENAPI_NAMESPACE

#endif
