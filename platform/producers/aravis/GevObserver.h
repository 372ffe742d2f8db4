/// A GigE Vision camera that we only look at: somebody else may control it.
#ifndef ZYN_ARAVIS_GEV_OBSERVER_H
#define ZYN_ARAVIS_GEV_OBSERVER_H

#include <memory>
#include <string>

#include "GevDevice.h"
#include "gige/RegisterClient.h"

namespace zyn::aravis {

/// Reads registers; writes and streams belong to the controller.
class GevObserver final : public producer::Device {
 public:
  /// Throws Error with GC_ERR_ACCESS_DENIED when the camera's owner allows no reading, GC_ERR_TIMEOUT or GC_ERR_IO when
  /// nobody answers.
  GevObserver(const producer::DeviceInfo& info, const GevRoute& route);

  producer::DeviceTraits Traits() const override { return traits_; }
  void Read(std::uint64_t address, void* data, std::size_t size) override;
  void Write(std::uint64_t address, const void* data, std::size_t size) override;
  std::unique_ptr<producer::Stream> OpenStream(std::size_t index, producer::StreamSink& sink) override;
  producer::LinkSettings Link() const override;

 private:
  std::string name_;
  std::unique_ptr<gige::RegisterClient> client_;
  producer::DeviceTraits traits_;
};

}  // namespace zyn::aravis

#endif
