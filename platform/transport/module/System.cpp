#include "System.h"

#include <algorithm>
#include <utility>

#include "../Result.h"
#include "../producer/GenTLInfo.h"

namespace zyn::transport {

namespace {

constexpr std::uint64_t kRefreshTimeoutMs = 1000;
constexpr std::chrono::seconds kRefreshInterval{1};
constexpr std::uint32_t kMostInterfaces = 4096;  // a larger count is a broken producer

std::string SystemText(const ProducerLibrary& producer, GenTL::TL_HANDLE handle, GenTL::TL_INFO_CMD command) {
  if (producer.TLGetInfo) {
    const auto text = GetString([&](auto* type, void* buffer, std::size_t* size) {
      return producer.TLGetInfo(handle, command, type, buffer, size);
    });
    if (text) return *text;
  }
  if (!producer.GCGetInfo) return {};
  return GetString([&](auto* type, void* buffer, std::size_t* size) {
           return producer.GCGetInfo(command, type, buffer, size);
         })
      .value_or("");
}

std::string Failure(const ProducerLibrary& producer, const char* function, GenTL::GC_ERROR error) {
  const std::string detail = producer.LastError();
  const std::string text = std::string(function) + " failed: " + ErrorName(error);
  return detail.empty() ? text : text + " (" + detail + ")";
}

}  // namespace

std::shared_ptr<System> System::Open(const ProducerPtr& producer, std::shared_ptr<void> use,
                                     std::string& reason) {
  const GenTL::GC_ERROR initialised = producer->GCInitLib();
  // In use: another user in this process initialised the library. It can be shared, but ending it is theirs.
  const bool ours = initialised == GenTL::GC_ERR_SUCCESS;
  if (!ours && initialised != GenTL::GC_ERR_RESOURCE_IN_USE) {
    reason = Failure(*producer, "GCInitLib", initialised);
    return nullptr;
  }
  GenTL::TL_HANDLE raw = nullptr;
  const GenTL::GC_ERROR opened = producer->TLOpen(&raw);
  if (opened != GenTL::GC_ERR_SUCCESS || !raw) {
    reason = Failure(*producer, "TLOpen", opened);
    if (ours) producer->GCCloseLib();
    return nullptr;
  }
  std::shared_ptr<void> handle(raw, [producer, ours, use = std::move(use)](void* system) {
    producer->TLClose(system);
    if (ours) producer->GCCloseLib();
  });
  std::shared_ptr<System> system(new System(producer, std::move(handle)));
  system->worker_ =
      std::make_unique<Worker>([weak = std::weak_ptr<System>(system)] { RefreshIfAlive(weak); });
  return system;
}

System::System(const ProducerPtr& producer, std::shared_ptr<void> handle)
    : producer_(producer),
      handle_(std::move(handle)),
      tlType_(SystemText(*producer, handle_.get(), GenTL::TL_INFO_TLTYPE)),
      name_(SystemText(*producer, handle_.get(), GenTL::TL_INFO_DISPLAYNAME)),
      version_(SystemText(*producer, handle_.get(), GenTL::TL_INFO_VERSION)),
      events_(producer, handle_, KELGENICAM::NOTIFY_SRC_TRANSPORT_LAYER) {}

std::string System::Describe() const {
  const std::size_t slash = Path().rfind('/');
  const std::string name = name_.empty() ? Path().substr(slash == std::string::npos ? 0 : slash + 1) : name_;
  return version_.empty() ? name : name + " " + version_;
}

void System::RefreshIfAlive(const std::weak_ptr<System>& system) {
  if (const std::shared_ptr<System> self = system.lock()) self->Refresh();
}

void System::StartRefresh() {
  MutexLock lock(mutex_);
  const bool isFresh =
      refreshed_ != Worker::Clock::time_point{} && Worker::Clock::now() - refreshed_ < kRefreshInterval;
  if (!isFresh) ticket_ = worker_->Request();
}

std::vector<std::shared_ptr<Interface>> System::Interfaces(Worker::Clock::time_point deadline) {
  MutexLock lock(mutex_);
  const std::uint64_t ticket = ticket_;
  lock.Unlock();
  worker_->WaitUntil(ticket, deadline);
  lock.Lock();
  return interfaces_;
}

std::vector<std::shared_ptr<Interface>> System::KnownInterfaces() const {
  MutexLock lock(mutex_);
  return interfaces_;
}

std::vector<std::string> System::InterfaceIds() const {
  // A time-out leaves the old list valid, and any other failure may too: what is listed is what there is.
  producer_->TLUpdateInterfaceList(handle_.get(), nullptr, kRefreshTimeoutMs);
  std::uint32_t count = 0;
  if (producer_->TLGetNumInterfaces(handle_.get(), &count) != GenTL::GC_ERR_SUCCESS) return {};
  std::vector<std::string> ids;
  for (std::uint32_t i = 0; i < std::min(count, kMostInterfaces); ++i) {
    auto id = GetString([&](auto*, void* buffer, std::size_t* size) {
      return producer_->TLGetInterfaceID(handle_.get(), i, static_cast<char*>(buffer), size);
    });
    if (id && !id->empty()) ids.push_back(std::move(*id));
  }
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

std::shared_ptr<Interface> System::OpenInterface(const std::string& id) {
  GenTL::IF_HANDLE raw = nullptr;
  if (producer_->TLOpenInterface(handle_.get(), id.c_str(), &raw) != GenTL::GC_ERR_SUCCESS || !raw) {
    return nullptr;
  }
  std::shared_ptr<void> handle(
      raw, [producer = producer_, parent = handle_](void* interface) { producer->IFClose(interface); });
  return Interface::Create(producer_, handle_, std::move(handle), id, tlType_);
}

void System::Refresh() {
  const std::vector<std::string> ids = InterfaceIds();
  MutexLock lock(mutex_);
  const std::vector<std::shared_ptr<Interface>> known = interfaces_;
  lock.Unlock();
  std::vector<std::shared_ptr<Interface>> present;
  for (const std::string& id : ids) {
    const auto it = std::find_if(known.begin(), known.end(),
                                 [&](const auto& interface) { return interface->Id() == id; });
    // A handle that the producer no longer accepts is replaced; cameras opened through it keep the old one.
    const bool isUsable = it != known.end() && !(*it)->IsStale();
    if (auto interface = isUsable ? *it : OpenInterface(id)) present.push_back(std::move(interface));
  }
  lock.Lock();
  interfaces_ = std::move(present);
  refreshed_ = Worker::Clock::now();
}

NodeMapPtr System::NodeMap() {
  MutexLock lock(nodeMapMutex_);
  if (!nodeMap_) nodeMap_ = ModuleNodeMap::Load(producer_, handle_, handle_.get(), nullptr);
  return nodeMap_;
}

}  // namespace zyn::transport
