#include "DeviceModule.h"

#include <algorithm>

#include "StreamModule.h"
#include "producer/Error.h"

namespace zyn::producer {
namespace {

constexpr std::uint64_t kDeviceLost = 1;  // number of the module event
constexpr std::int64_t kStandardEndianness = 1;

[[noreturn]] void ThrowLost() {
  throw Error(GenTL::GC_ERR_IO, "The device was lost: close it and open it again.");
}

}  // namespace

DeviceModule::DeviceModule(InterfaceModule& parent, DeviceInfo info, Access access)
    : parent_(parent), info_(std::move(info)), access_(access), userDefinedName_(info_.userDefinedName) {}

// The backend's threads report to members of this object.
DeviceModule::~DeviceModule() {
  device_.reset();
}

void DeviceModule::Attach(std::unique_ptr<Device> device) {
  device_ = std::move(device);
  traits_ = device_->Traits();
  features_ = std::make_unique<FeatureTable>("DevicePort", device_->Extension());
  AddInformation();
  if (info_.gev) AddAddresses();
  AddControl();
  if (!traits_.streamIds.empty()) AddStreams();
  AddModuleEvents({"DeviceLost"});
  const ProducerInfo& producer = parent_.Parent().Producer().info;
  features_->Finish(producer.vendor, producer.model, GENTL_MODULE_DEVICE);
}

void DeviceModule::InsertRemotePort() {
  remote_ = std::make_shared<RemotePort>(*this);
  Handles().Insert(remote_);
}

PortFacts DeviceModule::Facts() const {
  PortFacts facts;
  facts.id = info_.id;
  facts.vendor = info_.vendor;
  facts.model = info_.model;
  facts.tlType = info_.tlType;
  facts.module = GENTL_MODULE_DEVICE;
  facts.portName = features_->PortName();
  return facts;
}

GenTL::DEVICE_ACCESS_STATUS DeviceModule::AccessStatus() const {
  if (lost_) return GenTL::DEVICE_ACCESS_STATUS_NOACCESS;
  return IsReadOnly() ? GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY
                      : GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE;
}

DeviceInfo DeviceModule::CurrentInfo() const {
  DeviceInfo info = info_;
  info.accessStatus = AccessStatus();
  info.userDefinedName = UserDefinedName();
  return info;
}

bool DeviceModule::Supports(GenTL::EVENT_TYPE type) const {
  return Module::Supports(type) || type == GenTL::EVENT_REMOTE_DEVICE ||
         type == GenTL::EVENT_FEATURE_INVALIDATE;
}

void DeviceModule::OnLost(const std::string& text) {
  if (lost_.exchange(true)) return;
  RaiseError(GenTL::GC_ERR_IO, text);
  for (const auto& stream : open_.All()) stream->RaiseError(GenTL::GC_ERR_IO, text);
  RaiseModuleEvent(kDeviceLost);
}

void DeviceModule::OnRemoteEvent(std::uint64_t id, const void* data, std::size_t size) {
  Raise(GenTL::EVENT_REMOTE_DEVICE, QueuedEvent::NumberedEntry(id, data, size));
}

void DeviceModule::OnFeatureInvalidated(const std::string& name) {
  Raise(GenTL::EVENT_FEATURE_INVALIDATE, QueuedEvent::NamedEntry(name));
}

std::shared_ptr<StreamModule> DeviceModule::OpenStream(const std::string& id) {
  const std::vector<std::string>& ids = traits_.streamIds;
  if (ids.empty()) throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED, "The device has no data streams.");
  const auto found = std::find(ids.begin(), ids.end(), id);
  if (found == ids.end()) throw Error(GenTL::GC_ERR_INVALID_ID, "There is no data stream \"" + id + "\".");
  if (lost_) ThrowLost();
  const auto index = static_cast<std::size_t>(found - ids.begin());
  return open_.Open(id, [this, &id, index] {
    auto stream = std::make_shared<StreamModule>(*this, id);
    stream->Attach(device_->OpenStream(index, stream->Sink()));
    Handles().Insert(stream);
    return stream;
  });
}

void DeviceModule::Shutdown() {
  Handles().Remove(remote_->Handle());
  if (remote_->TheGate().BeginClose()) {
    remote_->TheGate().Drain();
    remote_->TheGate().EndClose();
  }
  for (const auto& child : open_.All()) child->Close();
  device_.reset();
  parent_.OnDeviceClosed(info_.id);
}

// ---- features ----

void DeviceModule::AddInformation() {
  FeatureTable& table = *features_;
  table.Category("DeviceInformation");
  table.Text("DeviceID", [this] { return info_.id; });
  table.Text("DeviceVendorName", [this] { return info_.vendor; });
  table.Text("DeviceModelName", [this] { return info_.model; });
  table.Text("DeviceFamilyName", [this] { return info_.familyName; });
  table.Text("DeviceManufacturerInfo", [this] { return info_.manufacturerInfo; });
  table.Text("DeviceVersion", [this] { return info_.version; });
  table.Text("DeviceSerialNumber", [this] { return info_.serialNumber; });
  table.Text("DeviceDisplayName", [this] { return DisplayName(info_); });
  table.Text(
      "DeviceUserID", [this] { return UserDefinedName(); },
      [this](const std::string& name) {
        RequireWritable();
        device_->SetUserDefinedName(name);
        MutexLock lock(stateMutex_);
        userDefinedName_ = name;
      });
  table.Enumeration("DeviceType", TechnologyEntries(), [this] { return TechnologyEntry(info_.tlType); });
  table.Enumeration("DeviceAccessStatus", AccessStatusEntries(), [this] { return AccessStatus(); });
  table.Integer("DeviceTimestampFrequency",
                [this] { return static_cast<std::int64_t>(info_.timestampFrequency); });
  table.Enumeration("DeviceChunkDataFormat", {{"None", 0}, {"GigEVision", 1}, {"Custom", 2}},
                    [this] { return static_cast<std::int64_t>(traits_.chunkFormat); });
  table.Enumeration("DeviceEventDataFormat",
                    {{"None", 0}, {"GigEVision", 1}, {"GigEVisionExtendedId", 2}, {"Custom", 3}},
                    [this] { return static_cast<std::int64_t>(traits_.eventFormat); });
}

void DeviceModule::AddAddresses() {
  FeatureTable& table = *features_;
  FeatureOptions address;
  address.representation = "IPV4Address";
  FeatureOptions mac;
  mac.representation = "MACAddress";
  table.Integer(
      "GevDeviceIPAddress", [this] { return info_.gev->address; }, nullptr, address);
  table.Integer(
      "GevDeviceSubnetMask", [this] { return info_.gev->mask; }, nullptr, address);
  table.Integer(
      "GevDeviceGateway", [this] { return info_.gev->gateway; }, nullptr, address);
  table.Integer(
      "GevDeviceMACAddress", [this] { return static_cast<std::int64_t>(info_.gev->mac); }, nullptr, mac);
}

void DeviceModule::AddControl() {
  FeatureTable& table = *features_;
  table.Category("DeviceControl");
  if (info_.tlType == GENTL_TLTYPE_GEV) {
    // The kit hands the camera's bytes through as they are, which is what "Standard" means. The older
    // swapping is not offered, so that no consumer can turn it on by mistake.
    table.Enumeration(
        "DeviceEndianessMechanism", {{"Standard", kStandardEndianness}}, [] { return kStandardEndianness; },
        [](std::int64_t) {});
  }
  FeatureOptions microseconds;
  microseconds.unit = "us";
  table.Float(
      "LinkCommandTimeout", [this] { return device_->Link().commandTimeoutUs; },
      [this](double value) {
        LinkSettings link = device_->Link();
        link.commandTimeoutUs = value;
        device_->SetLink(link);
      },
      microseconds);
  table.Integer(
      "LinkCommandRetryCount", [this] { return device_->Link().retryCount; },
      [this](std::int64_t value) {
        LinkSettings link = device_->Link();
        link.retryCount = value;
        device_->SetLink(link);
      });
}

void DeviceModule::AddStreams() {
  FeatureTable& table = *features_;
  table.Category("StreamEnumeration");
  FeatureOptions selector;
  selector.maximum = [this] { return static_cast<std::int64_t>(traits_.streamIds.size()) - 1; };
  table.Integer(
      "StreamSelector", [this] { return static_cast<std::int64_t>(StreamSelector()); },
      [this](std::int64_t value) {
        MutexLock lock(stateMutex_);
        streamSelector_ = static_cast<std::size_t>(value);
      },
      selector);
  FeatureOptions selected;
  selected.selectedBy = "StreamSelector";
  table.Text(
      "StreamID", [this] { return traits_.streamIds[StreamSelector()]; }, nullptr, selected);
}

std::string DeviceModule::UserDefinedName() const {
  MutexLock lock(stateMutex_);
  return userDefinedName_;
}

std::size_t DeviceModule::StreamSelector() const {
  MutexLock lock(stateMutex_);
  return streamSelector_;
}

void DeviceModule::RequireWritable() const {
  if (lost_) ThrowLost();
  if (IsReadOnly()) throw Error(GenTL::GC_ERR_ACCESS_DENIED, "The device is open for reading only.");
}

// ---- the remote port ----

PortFacts RemotePort::Facts() const {
  PortFacts facts = device_.Facts();
  facts.module = GENTL_MODULE_REMOTE_DEVICE;
  facts.portName = "Device";
  facts.bigEndian = device_.Traits().bigEndian;
  return facts;
}

bool RemotePort::Reachable() const {
  return !device_.IsLost();
}

bool RemotePort::Writable() const {
  return !device_.IsReadOnly();
}

std::vector<XmlLocation> RemotePort::Locations() const {
  return device_.Traits().xml;
}

// A transfer that fails because the device just went away must say so, whatever the link made of it.
template <class Transfer>
void RemotePort::Transferred(const Transfer& transfer) {
  if (device_.IsLost()) ThrowLost();
  try {
    transfer();
  } catch (...) {
    if (device_.IsLost()) ThrowLost();
    throw;
  }
}

void RemotePort::Read(std::uint64_t address, void* data, std::size_t size) {
  Transferred([&] { device_.TheDevice().Read(address, data, size); });
}

void RemotePort::Write(std::uint64_t address, const void* data, std::size_t size) {
  if (!Writable()) throw Error(GenTL::GC_ERR_ACCESS_DENIED, "The device is open for reading only.");
  Transferred([&] { device_.TheDevice().Write(address, data, size); });
}

}  // namespace zyn::producer
