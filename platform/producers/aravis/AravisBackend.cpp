#include "AravisBackend.h"

#include "GevInterface.h"

namespace zyn::aravis {

AravisBackend::AravisBackend() = default;

producer::ProducerInfo AravisBackend::Info() const {
  producer::ProducerInfo info;
  info.vendor = "Zyn";
  info.model = "ZynTL";
  info.version = "1.0.0";
  info.displayName = "GigE Vision cameras";
  info.tlType = GENTL_TLTYPE_MIXED;
  return info;
}

std::vector<producer::InterfaceInfo> AravisBackend::FindInterfaces(std::chrono::milliseconds) {
  std::vector<producer::InterfaceInfo> interfaces;
  for (const gige::Adapter& adapter : gige::ListAdapters()) interfaces.push_back(DescribeAdapter(adapter));
  return interfaces;
}

std::unique_ptr<producer::Interface> AravisBackend::OpenInterface(const producer::InterfaceInfo& info) {
  return std::make_unique<GevInterface>(info.displayName, disposer_);
}

}  // namespace zyn::aravis
