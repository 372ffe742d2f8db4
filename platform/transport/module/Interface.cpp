#include "Interface.h"

#include <utility>

#include "../discovery/InterfaceSearch.h"
#include "../producer/GenTLInfo.h"

namespace zyn::transport {

namespace {

std::string InterfaceText(const ProducerLibrary& producer, GenTL::TL_HANDLE system, GenTL::IF_HANDLE handle,
                          const std::string& id, GenTL::INTERFACE_INFO_CMD command) {
  if (producer.IFGetInfo) {
    const auto text = GetString([&](auto* type, void* buffer, std::size_t* size) {
      return producer.IFGetInfo(handle, command, type, buffer, size);
    });
    if (text && !text->empty()) return *text;
  }
  if (!producer.TLGetInterfaceInfo) return {};
  return GetString([&](auto* type, void* buffer, std::size_t* size) {
           return producer.TLGetInterfaceInfo(system, id.c_str(), command, type, buffer, size);
         })
      .value_or("");
}

std::string ConcreteType(std::string own, const std::string& system) {
  if (!own.empty()) return own;
  return system == GENTL_TLTYPE_MIXED ? std::string() : system;
}

}  // namespace

std::shared_ptr<Interface> Interface::Create(const ProducerPtr& producer, const std::shared_ptr<void>& system,
                                             std::shared_ptr<void> handle, const std::string& id,
                                             const std::string& tlType) {
  std::shared_ptr<Interface> interface(new Interface(producer, system, std::move(handle), id, tlType));
  interface->worker_ =
      std::make_unique<Worker>([weak = std::weak_ptr<Interface>(interface)] { SearchIfAlive(weak); });
  return interface;
}

Interface::Interface(const ProducerPtr& producer, const std::shared_ptr<void>& system,
                     std::shared_ptr<void> handle, const std::string& id, const std::string& tlType)
    : producer_(producer),
      handle_(std::move(handle)),
      id_(id),
      tlType_(ConcreteType(
          InterfaceText(*producer, system.get(), handle_.get(), id, GenTL::INTERFACE_INFO_TLTYPE), tlType)),
      displayName_(
          InterfaceText(*producer, system.get(), handle_.get(), id, GenTL::INTERFACE_INFO_DISPLAYNAME)),
      events_(producer, handle_, KELGENICAM::NOTIFY_SRC_INTERFACE) {}

bool Interface::MayCarry(unsigned long protocols) const {
  return tlType_.empty() || (ProtocolOf(tlType_) & protocols) != 0;
}

std::vector<CameraDescription> Interface::Devices(std::uint64_t ticket, Worker::Clock::time_point deadline) {
  if (!worker_->WaitUntil(ticket, deadline)) return {};
  MutexLock lock(mutex_);
  return devices_;
}

void Interface::SearchIfAlive(const std::weak_ptr<Interface>& interface) {
  if (const std::shared_ptr<Interface> self = interface.lock()) self->Search();
}

void Interface::Search() {
  InterfaceSearch search(*producer_, handle_.get(), id_, tlType_, displayName_);
  if (search.Update() == GenTL::GC_ERR_INVALID_HANDLE) isStale_.store(true, std::memory_order_relaxed);
  std::vector<CameraDescription> found = search.Read(
      [this] { return NodeMap()->Map(); });  // the map is loaded for protocols with addresses only
  MutexLock lock(mutex_);
  devices_ = std::move(found);
}

NodeMapPtr Interface::NodeMap() {
  MutexLock lock(nodeMapMutex_);
  if (!nodeMap_) nodeMap_ = ModuleNodeMap::Load(producer_, handle_, handle_.get(), nullptr);
  return nodeMap_;
}

}  // namespace zyn::transport
