/// The simulator as a GenTL producer: ZynSimTL.cti.
#ifndef ZYN_SIMULATION_SIM_BACKEND_H
#define ZYN_SIMULATION_SIM_BACKEND_H

#include <memory>
#include <vector>

#include "Configuration.h"
#include "SimInterface.h"
#include "producer/Backend.h"

namespace zyn::simulation {

/// All models, in the catalog's order.
std::vector<ModelEntry> Models();

class SimBackend final : public producer::Backend {
 public:
  explicit SimBackend(const Configuration& configuration);

  producer::ProducerInfo Info() const override;
  std::vector<producer::InterfaceInfo> FindInterfaces(std::chrono::milliseconds timeout) override;
  std::unique_ptr<producer::Interface> OpenInterface(const producer::InterfaceInfo& info) override;

 private:
  Slots slots_;
};

}  // namespace zyn::simulation

#endif
