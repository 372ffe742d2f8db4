/// One network adapter with the GigE Vision cameras behind it.
#ifndef ZYN_ARAVIS_GEV_INTERFACE_H
#define ZYN_ARAVIS_GEV_INTERFACE_H

#include <string>

#include "Disposer.h"
#include "gige/Adapter.h"
#include "gige/Discovery.h"
#include "producer/Backend.h"

namespace zyn::aravis {

/// How an adapter and a camera appear in the lists of the producer.
producer::InterfaceInfo DescribeAdapter(const gige::Adapter& adapter);
producer::DeviceInfo DescribeDevice(const gige::DiscoveredDevice& device);

class GevInterface final : public producer::Interface {
 public:
  /// The adapter may change its addresses or go away meanwhile: it is looked up by name each time.
  GevInterface(std::string adapterName, Disposer& disposer);

  std::vector<producer::DeviceInfo> FindDevices(std::chrono::milliseconds timeout) override;
  std::unique_ptr<producer::Device> OpenDevice(const producer::DeviceInfo& info, producer::Access access,
                                               producer::DeviceListener& listener) override;
  void ForceAddress(const producer::DeviceInfo& info, const producer::ForcedAddress& address) override;

 private:
  gige::Adapter FindAdapter() const;

  const std::string adapterName_;
  Disposer& disposer_;
};

}  // namespace zyn::aravis

#endif
