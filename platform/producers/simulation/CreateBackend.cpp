#include "SimBackend.h"
#include "producer/Error.h"

std::unique_ptr<zyn::producer::Backend> zyn::producer::CreateBackend() {
  using namespace simulation;
  try {
    return std::make_unique<SimBackend>(LoadConfiguration(Models()));
  } catch (const ConfigurationError& error) {
    throw Error(GenTL::GC_ERR_INVALID_VALUE, error.what());
  }
}
