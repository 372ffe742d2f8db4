/// Connects a node map to a GenTL port.
#ifndef ZYN_TRANSPORT_PORT_ADAPTER_H
#define ZYN_TRANSPORT_PORT_ADAPTER_H

#include <memory>

#include <GenApi/IPort.h>

#include "../producer/ProducerLibrary.h"
#include "DeviceLink.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// Thread-safe. Keeps the module open while a transfer runs. A lost device and a closed module fail at once,
/// without asking the producer.
class PortAdapter final : public GenApi_3_4::IPort {
 public:
  /// module  keeps `port` valid; given up by Close.
  /// link    null for modules whose failures say nothing about a device.
  PortAdapter(ProducerPtr producer, std::shared_ptr<void> module, GenTL::PORT_HANDLE port,
              std::shared_ptr<DeviceLink> link);

  GenApi_3_4::EAccessMode GetAccessMode() const override;
  /// Throws a GenericException when not every byte was transferred.
  void Read(void* buffer, int64_t address, int64_t length) override;
  void Write(const void* buffer, int64_t address, int64_t length) override;

  /// Ends access; later transfers throw. A transfer in progress finishes.
  void Close() ZYN_EXCLUDES(mutex_);

 private:
  std::shared_ptr<void> Module() const ZYN_EXCLUDES(mutex_);
  std::shared_ptr<void> ModuleOrThrow() const;
  [[noreturn]] void Fail(const char* action, int64_t address, int64_t length, GenTL::GC_ERROR error) const;

  const ProducerPtr producer_;
  const GenTL::PORT_HANDLE port_;
  const std::shared_ptr<DeviceLink> link_;
  mutable Mutex mutex_;  // never held during a transfer
  std::shared_ptr<void> module_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::transport

#endif
