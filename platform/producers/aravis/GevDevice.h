/// A GigE Vision camera under our control.
#ifndef ZYN_ARAVIS_GEV_DEVICE_H
#define ZYN_ARAVIS_GEV_DEVICE_H

#include <memory>
#include <string>
#include <vector>

#include "AravisStream.h"
#include "ControlMonitor.h"
#include "gige/Address.h"
#include "producer/Backend.h"

namespace zyn::aravis {

/// Where a camera is, and from where it is reached.
struct GevRoute {
  gige::Ipv4 local;
  gige::Ipv4 device;
};

/// The constant facts about an open camera with that many streams, read from its registers. Throws Error.
producer::DeviceTraits ReadGevTraits(producer::Device& device, const std::string& deviceId,
                                     std::size_t streams);

class GevDevice final : public producer::Device {
 public:
  /// Takes control. Throws Error with GC_ERR_ACCESS_DENIED when somebody else has it, GC_ERR_IO or GC_ERR_TIMEOUT
  /// when nobody answers at that address; both within a second.
  GevDevice(const producer::DeviceInfo& info, const GevRoute& route, bool isExclusive, Disposer& disposer,
            producer::DeviceListener& listener);
  ~GevDevice() override;
  GevDevice(const GevDevice&) = delete;
  GevDevice& operator=(const GevDevice&) = delete;

  producer::DeviceTraits Traits() const override { return traits_; }
  void Read(std::uint64_t address, void* data, std::size_t size) override;
  void Write(std::uint64_t address, const void* data, std::size_t size) override;
  std::unique_ptr<producer::Stream> OpenStream(std::size_t index, producer::StreamSink& sink) override;
  producer::LinkSettings Link() const override;
  void SetUserDefinedName(const std::string& name) override;

 private:
  void OnLost(const std::string& cause);
  void CheckPresent() const;
  void ReadAligned(std::uint64_t address, std::uint8_t* data, std::size_t size);
  void WriteAligned(std::uint64_t address, const std::uint8_t* data, std::size_t size);
  void WriteRegisters(std::uint64_t address, const std::uint8_t* data, std::size_t size);

  Disposer& disposer_;
  producer::DeviceListener& listener_;
  DeviceLink link_;
  producer::DeviceTraits traits_;
  Mutex writeMutex_;  // keeps the reading and writing of a word together; held while the camera is waited for
  std::unique_ptr<ControlMonitor> monitor_;
};

}  // namespace zyn::aravis

#endif
