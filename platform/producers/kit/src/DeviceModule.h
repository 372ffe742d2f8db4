/// A device module: the producer's side of one open device, and the port to the camera behind it.
#ifndef ZYN_PRODUCER_DEVICE_MODULE_H
#define ZYN_PRODUCER_DEVICE_MODULE_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Children.h"
#include "InterfaceModule.h"
#include "Module.h"

namespace zyn::producer {

class DeviceModule;
class StreamModule;

/// The camera's own registers: what DevGetPort returns. Ends with its device.
class RemotePort final : public Port {
 public:
  explicit RemotePort(DeviceModule& device) : device_(device) {}

  PortFacts Facts() const override;
  bool Reachable() const override;
  bool Writable() const override;
  std::vector<XmlLocation> Locations() const override;
  void Read(std::uint64_t address, void* data, std::size_t size) override;
  void Write(std::uint64_t address, const void* data, std::size_t size) override;

 private:
  template <class Transfer>
  void Transferred(const Transfer& transfer);

  DeviceModule& device_;
};

/// Any thread. Created unattached, so that the backend can report to it while it opens the device.
class DeviceModule final : public Module,
                           public DeviceListener,
                           public std::enable_shared_from_this<DeviceModule> {
 public:
  DeviceModule(InterfaceModule& parent, DeviceInfo info, Access access);
  ~DeviceModule() override;

  /// Ends the construction. Called once, before the module is used.
  void Attach(std::unique_ptr<Device> device);
  void InsertRemotePort();

  InterfaceModule& Parent() { return parent_; }
  const DeviceInfo& Info() const { return info_; }
  const DeviceTraits& Traits() const { return traits_; }
  Device& TheDevice() { return *device_; }
  const std::shared_ptr<RemotePort>& Remote() const { return remote_; }

  bool IsLost() const { return lost_; }
  bool IsReadOnly() const { return access_ == Access::readOnly; }
  GenTL::DEVICE_ACCESS_STATUS AccessStatus() const;
  /// Info(), with what changed since it was opened.
  DeviceInfo CurrentInfo() const;

  /// Throws Error: GC_ERR_INVALID_ID, GC_ERR_RESOURCE_IN_USE, GC_ERR_NOT_IMPLEMENTED without streams.
  std::shared_ptr<StreamModule> OpenStream(const std::string& id);
  void OnStreamClosed(const std::string& id) { open_.Drop(id); }

  PortFacts Facts() const override;

  // DeviceListener
  void OnLost(const std::string& text) override;
  void OnRemoteEvent(std::uint64_t id, const void* data, std::size_t size) override;
  void OnFeatureInvalidated(const std::string& name) override;
  void OnError(GenTL::GC_ERROR code, const std::string& text) override { RaiseError(code, text); }

 protected:
  bool Supports(GenTL::EVENT_TYPE type) const override;
  void Shutdown() override;

 private:
  void AddInformation();
  void AddAddresses();
  void AddControl();
  void AddStreams();
  std::string UserDefinedName() const ZYN_EXCLUDES(stateMutex_);
  std::size_t StreamSelector() const ZYN_EXCLUDES(stateMutex_);
  void RequireWritable() const;

  InterfaceModule& parent_;
  const DeviceInfo info_;
  const Access access_;
  DeviceTraits traits_;             // set by Attach
  std::unique_ptr<Device> device_;  // set by Attach
  std::shared_ptr<RemotePort> remote_;
  std::atomic<bool> lost_ = false;
  Children<StreamModule> open_;

  mutable Mutex stateMutex_;  // a leaf
  std::string userDefinedName_ ZYN_GUARDED_BY(stateMutex_);
  std::size_t streamSelector_ ZYN_GUARDED_BY(stateMutex_) = 0;
};

}  // namespace zyn::producer

#endif
