/// The producer as a whole: the network adapters and the USB of this computer.
#ifndef ZYN_ARAVIS_ARAVIS_BACKEND_H
#define ZYN_ARAVIS_ARAVIS_BACKEND_H

#include "Disposer.h"
#include "producer/Backend.h"

namespace zyn::aravis {

class AravisBackend final : public producer::Backend {
 public:
  AravisBackend();

  producer::ProducerInfo Info() const override;
  std::vector<producer::InterfaceInfo> FindInterfaces(std::chrono::milliseconds timeout) override;
  std::unique_ptr<producer::Interface> OpenInterface(const producer::InterfaceInfo& info) override;

 private:
  Disposer disposer_;
};

}  // namespace zyn::aravis

#endif
