#include "Device.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "../Result.h"
#include "../module/Features.h"
#include "../producer/Background.h"
#include "../producer/GenTLInfo.h"
#include "../producer/ProducerRegistry.h"

namespace zyn::transport {

namespace {

constexpr std::chrono::seconds kCloseLimit{3};
constexpr std::chrono::milliseconds kFindLimit{2500};
constexpr std::chrono::milliseconds kUserInterval{1};

GenTL::DEVICE_ACCESS_FLAGS FlagOf(int accessMode) {
  if (accessMode == KELGENICAM::ACCESS_READ_ONLY) return GenTL::DEVICE_ACCESS_READONLY;
  if (accessMode == KELGENICAM::ACCESS_EXCLUSIVE) return GenTL::DEVICE_ACCESS_EXCLUSIVE;
  return GenTL::DEVICE_ACCESS_CONTROL;
}

std::shared_ptr<Interface> Pick(std::vector<std::shared_ptr<Interface>> interfaces, const std::string& id) {
  const auto it = std::find_if(interfaces.begin(), interfaces.end(),
                               [&](const auto& interface) { return interface->Id() == id; });
  return it == interfaces.end() ? nullptr : *it;
}

std::shared_ptr<Interface> FindInterface(System& system, const std::string& id) {
  if (auto known = Pick(system.KnownInterfaces(), id)) return known;
  system.StartRefresh();
  return Pick(system.Interfaces(std::chrono::steady_clock::now() + kFindLimit), id);
}

// The last owner closes the device, which may take long: that must not be a thread of the application that
// was just woken in Grab.
void WaitForUsers(const std::shared_ptr<Device>& device) {
  while (device.use_count() > 1) std::this_thread::sleep_for(kUserInterval);
}

}  // namespace

std::shared_ptr<Device> Device::Open(const CameraDescription& camera, int accessMode, const Lent& lent,
                                     int& result) {
  ProducerRegistry& registry = ProducerRegistry::Instance();
  if (!registry.IsInitialized()) {
    result = KELGENICAM::RESULT_NOT_INITIALIZED;
    return nullptr;
  }
  std::shared_ptr<System> system = registry.Find(camera.key.producer);
  std::shared_ptr<Interface> interface = system ? FindInterface(*system, camera.key.interfaceId) : nullptr;
  if (!interface) {
    result = KELGENICAM::RESULT_INVALID_ID;
    return nullptr;
  }
  std::shared_ptr<Device> device(new Device(camera, std::move(system), std::move(interface), lent));
  device->claim_ = OpenDevices::Instance().TryClaim(camera.key, result);
  if (!device->claim_) return nullptr;
  result = device->OpenHandle(accessMode);
  if (result == KELGENICAM::RESULT_OK) result = device->LoadModules();
  if (result == KELGENICAM::RESULT_OK) return device;
  if (device->claim_) device->claim_->BeginClosing();
  if (device->handle_) Close(std::move(device));
  return nullptr;
}

Device::Device(const CameraDescription& camera, std::shared_ptr<System> system,
               std::shared_ptr<Interface> interface, Lent lent)
    : camera_(camera),
      system_(std::move(system)),
      interface_(std::move(interface)),
      producer_(interface_->Producer()),
      lent_(std::move(lent)) {}

GenTL::GC_ERROR Device::TryOpen(int accessMode, GenTL::DEV_HANDLE& device) const {
  GenTL::GC_ERROR error = GenTL::GC_ERR_NOT_IMPLEMENTED;
  // A producer need not know every mode; the next stronger one does what was asked for.
  for (GenTL::DEVICE_ACCESS_FLAGS flag = FlagOf(accessMode); flag <= GenTL::DEVICE_ACCESS_EXCLUSIVE; ++flag) {
    error = producer_->IFOpenDevice(interface_->Handle().get(), camera_.key.deviceId.c_str(), flag, &device);
    if (error != GenTL::GC_ERR_NOT_IMPLEMENTED) break;
  }
  return error;
}

int Device::Explain(GenTL::GC_ERROR error) const {
  if (error == GenTL::GC_ERR_SUCCESS) return KELGENICAM::RESULT_ERROR;  // without a handle
  if (error != GenTL::GC_ERR_ACCESS_DENIED) return ToOpenResult(error);
  const auto status = GetInteger([&](auto* type, void* buffer, std::size_t* size) {
    return producer_->IFGetDeviceInfo(interface_->Handle().get(), camera_.key.deviceId.c_str(),
                                      GenTL::DEVICE_INFO_ACCESS_STATUS, type, buffer, size);
  });
  const bool isUnreachable = status && *status == GenTL::DEVICE_ACCESS_STATUS_NOACCESS;
  return isUnreachable ? KELGENICAM::RESULT_UNREACHABLE : KELGENICAM::RESULT_ACCESS_DENIED;
}

int Device::OpenHandle(int accessMode) {
  GenTL::DEV_HANDLE raw = nullptr;
  GenTL::GC_ERROR error = TryOpen(accessMode, raw);
  if (error == GenTL::GC_ERR_INVALID_ID) {
    // Some producers know a device only after a search on this very interface.
    interface_->Devices(interface_->StartSearch(), std::chrono::steady_clock::now() + kFindLimit);
    error = TryOpen(accessMode, raw);
  }
  if (error != GenTL::GC_ERR_SUCCESS || !raw) return Explain(error);
  // What the deleter owns is let go of in it: weak pointers may keep the deleter itself much longer.
  handle_ = std::shared_ptr<void>(
      raw, [producer = producer_, parent = interface_->Handle(), claim = claim_](void* device) mutable {
        producer->DevClose(device);
        parent = nullptr;
        claim = nullptr;
      });
  if (accessMode == KELGENICAM::ACCESS_READ_ONLY) claim_->SetReadOnly();
  link_ = std::make_shared<DeviceLink>(producer_, handle_);
  return KELGENICAM::RESULT_OK;
}

int Device::LoadModules() {
  GenTL::PORT_HANDLE remote = nullptr;
  const GenTL::GC_ERROR error = producer_->DevGetPort(handle_.get(), &remote);
  if (error != GenTL::GC_ERR_SUCCESS) return ToOpenResult(error);
  if (!remote) return KELGENICAM::RESULT_ERROR;
  systemMap_ = system_->NodeMap();
  interfaceMap_ = interface_->NodeMap();
  localMap_ = ModuleNodeMap::Load(producer_, handle_, handle_.get(), nullptr);
  remoteMap_ = ModuleNodeMap::Load(producer_, handle_, remote, link_);
  if (link_->IsLost()) return KELGENICAM::RESULT_DEVICE_LOST;
  stream_ = Stream::Open(
      {producer_, handle_, link_, lent_.notifier, lent_.pool, remoteMap_, camera_.protocol}, streamResult_);
  StartPumps();
  link_->OnLost([weak = weak_from_this()] {
    const std::shared_ptr<Device> self = weak.lock();
    if (!self) return;
    if (self->stream_) self->stream_->WakeLost();
    // Whoever noticed may be a thread of the application; receivers are called on threads of this library.
    Background::Run([notifier = self->lent_.notifier] {
      notifier->Send(KELGENICAM::NOTIFY_SRC_LOCAL_DEVICE, KELGENICAM::NOTIFY_DEVICE_LOST, nullptr, 0);
      notifier->Send(KELGENICAM::NOTIFY_SRC_REMOTE_DEVICE, KELGENICAM::NOTIFY_DEVICE_LOST, nullptr, 0);
    });
  });
  return KELGENICAM::RESULT_OK;
}

void Device::StartPumps() {
  const auto start = [this](GenTL::EVENT_TYPE type, auto handler) {
    auto pump = EventPump::Start(producer_, handle_, type, std::move(handler));
    const bool isOffered = pump != nullptr;
    if (isOffered) pumps_.push_back(std::move(pump));
    return isOffered;
  };
  // The pumps end before this object does, so they may borrow it.
  reportsLoss_ = start(GenTL::EVENT_ERROR, [this](const GenTLEvent& event) { OnError(event); });
  start(GenTL::EVENT_FEATURE_INVALIDATE, [this](const GenTLEvent& event) {
    Invalidate(remoteMap_->Map(), event.id.c_str());
    lent_.notifier->Send(KELGENICAM::NOTIFY_SRC_REMOTE_DEVICE, KELGENICAM::NOTIFY_FEATURE_INVALIDATED,
                         event.id.c_str(), event.id.size() + 1);
  });
  start(GenTL::EVENT_FEATURE_CHANGE, [this](const GenTLEvent& event) {
    const std::string value = TextOf(event.value.data(), event.value.size());
    WriteText(remoteMap_->Map(), event.id.c_str(), value.c_str());
  });
  start(GenTL::EVENT_REMOTE_DEVICE, [this](const GenTLEvent& event) { OnRemoteEvent(event); });
  start(GenTL::EVENT_MODULE, [this](const GenTLEvent& event) {
    lent_.notifier->Send(KELGENICAM::NOTIFY_SRC_LOCAL_DEVICE, KELGENICAM::NOTIFY_DEVICE_EVENT,
                         event.value.data(), event.value.size());
  });
  system_->Events().Add(lent_.notifier);
  interface_->Events().Add(lent_.notifier);
}

void Device::OnError(const GenTLEvent& event) {
  const auto code = static_cast<GenTL::GC_ERROR>(event.number);
  // On the device's own module a failed link is the producer's word for a lost device.
  if (code == GenTL::GC_ERR_IO) {
    link_->MarkLost();
  } else {
    link_->ReportFailure(code);
  }
  lent_.notifier->Send(KELGENICAM::NOTIFY_SRC_LOCAL_DEVICE, KELGENICAM::NOTIFY_ERROR, event.value.data(),
                       event.value.size());
}

void Device::OnRemoteEvent(const GenTLEvent& event) {
  lent_.notifier->Send(KELGENICAM::NOTIFY_SRC_REMOTE_DEVICE, KELGENICAM::NOTIFY_DEVICE_EVENT,
                       event.value.data(), event.value.size());
}

bool Device::IsOnline() const {
  if (!reportsLoss_) link_->Poll();
  return !IsLost();
}

void Device::ShutDown() {
  system_->Events().Remove(lent_.notifier);
  interface_->Events().Remove(lent_.notifier);
  for (const auto& pump : pumps_) pump->BeginEnd();
  pumps_.clear();
  // Nobody waits for this thread, so it may wait for a producer that does not come back.
  while (stream_ && stream_->StopGrabbing() == KELGENICAM::RESULT_TIMEOUT) {
  }
  // The maps may be in the application's hands still; their ports let go of the handles here.
  if (remoteMap_) remoteMap_->Close();
  if (localMap_) localMap_->Close();
}

void Device::Close(std::shared_ptr<Device> device) {
  device->claim_->BeginClosing();
  device->link_->OnLost(nullptr);
  if (device->stream_) device->stream_->WakeAborted();
  const std::shared_ptr<DeviceLink> link = device->link_;
  const Background closing = Background::Run([ending = std::move(device)]() mutable {
    ending->ShutDown();
    WaitForUsers(ending);
    ending = nullptr;
  });
  if (!link->IsLost()) closing.WaitUntil(std::chrono::steady_clock::now() + kCloseLimit);
}

}  // namespace zyn::transport
