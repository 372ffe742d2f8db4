#include "InterfaceModule.h"

#include <algorithm>

#include "DeviceModule.h"
#include "Timeout.h"
#include "producer/Error.h"

namespace zyn::producer {
namespace {

constexpr std::uint64_t kSearchToOpenMs = 1000;

Access AccessOf(GenTL::DEVICE_ACCESS_FLAGS flags) {
  switch (flags) {
    case GenTL::DEVICE_ACCESS_READONLY:
      return Access::readOnly;
    case GenTL::DEVICE_ACCESS_CONTROL:
      return Access::control;
    case GenTL::DEVICE_ACCESS_EXCLUSIVE:
      return Access::exclusive;
    default:
      throw Error(GenTL::GC_ERR_INVALID_PARAMETER,
                  "There is no kind of access " + std::to_string(flags) + ".");
  }
}

std::string DottedAddress(std::uint32_t address) {
  std::string text = std::to_string(address >> 24);
  for (const int shift : {16, 8, 0}) text += "." + std::to_string(address >> shift & 0xFF);
  return text;
}

std::string MacText(std::uint64_t mac) {
  static const char* const kDigits = "0123456789ABCDEF";
  std::string text;
  for (int shift = 44; shift >= 0; shift -= 4) {
    text += kDigits[mac >> shift & 0xF];
    if (shift > 0 && shift % 8 == 0) text += ':';
  }
  return text;
}

// By which other names a device can be opened.
bool AnswersTo(const DeviceInfo& info, const std::string& name) {
  if (name.empty()) return false;
  if (info.serialNumber == name || info.userDefinedName == name) return true;
  return info.gev && (DottedAddress(info.gev->address) == name || MacText(info.gev->mac) == name);
}

// The one device of that name, or null. Throws when several have it.
const DeviceInfo* Match(const std::vector<DeviceInfo>& devices, const std::string& name) {
  const auto sameId = [&name](const DeviceInfo& info) { return info.id == name; };
  const auto exact = std::find_if(devices.begin(), devices.end(), sameId);
  if (exact != devices.end()) return &*exact;
  const DeviceInfo* match = nullptr;
  for (const DeviceInfo& info : devices) {
    if (!AnswersTo(info, name)) continue;
    if (match != nullptr)
      throw Error(GenTL::GC_ERR_AMBIGUOUS, "Several devices are called \"" + name + "\".");
    match = &info;
  }
  return match;
}

}  // namespace

InterfaceModule::InterfaceModule(System& system, InterfaceInfo info, std::unique_ptr<Interface> backend)
    : system_(system), info_(std::move(info)), backend_(std::move(backend)) {
  features_ = std::make_unique<FeatureTable>("InterfacePort", backend_->Extension());
  AddInterfaceFeatures();
  if (info_.adapter) AddAdapterFeatures();
  AddDeviceFeatures();
  AddDeviceAddressFeatures();
  if (info_.tlType == GENTL_TLTYPE_GEV) AddForceIpFeatures();
  AddModuleEvents({"DeviceListChanged"});
  const ProducerInfo& producer = system_.Producer().info;
  features_->Finish(producer.vendor, producer.model, GENTL_MODULE_INTERFACE);
}

PortFacts InterfaceModule::Facts() const {
  const ProducerInfo& producer = system_.Producer().info;
  PortFacts facts;
  facts.id = info_.id;
  facts.vendor = producer.vendor;
  facts.model = producer.model;
  facts.tlType = info_.tlType;
  facts.module = GENTL_MODULE_INTERFACE;
  facts.portName = features_->PortName();
  return facts;
}

bool InterfaceModule::UpdateDevices(std::uint64_t timeoutMs) {
  constexpr std::uint64_t kDeviceListChanged = 1;  // number of the module event
  const auto deadline = DeadlineAfter(timeoutMs);
  bool changed = false;
  {
    TurnHolder turn(turn_, deadline);
    std::vector<DeviceInfo> found = backend_->FindDevices(Milliseconds(timeoutMs));
    // An open device that is still there may have been too busy to answer the search.
    for (const auto& device : open_.All()) {
      const auto same = [&device](const DeviceInfo& info) { return info.id == device->Info().id; };
      if (!device->IsLost() && std::none_of(found.begin(), found.end(), same))
        found.push_back(device->Info());
    }
    MutexLock lock(listMutex_);
    changed = found != list_;
    list_ = std::move(found);
    if (selectors_.device >= list_.size()) selectors_.device = 0;
  }
  if (changed) RaiseModuleEvent(kDeviceListChanged);
  return changed;
}

std::vector<DeviceInfo> InterfaceModule::Devices() const {
  MutexLock lock(listMutex_);
  return list_;
}

GenTL::DEVICE_ACCESS_STATUS InterfaceModule::StatusOf(const DeviceInfo& info) const {
  const auto open = open_.Find(info.id);
  return open ? open->AccessStatus() : info.accessStatus;
}

DeviceInfo InterfaceModule::Find(const std::string& id) const {
  const auto open = open_.Find(id);
  for (DeviceInfo& info : Devices()) {
    if (info.id != id) continue;
    if (open) info.accessStatus = open->AccessStatus();
    return info;
  }
  if (!open) throw Error(GenTL::GC_ERR_INVALID_ID, "There is no device \"" + id + "\".");
  DeviceInfo info = open->Info();
  info.accessStatus = open->AccessStatus();
  return info;
}

// A consumer may know the device from an earlier session, so an unknown name starts a search. The list that
// consumers see does not change by it.
DeviceInfo InterfaceModule::Resolve(const std::string& id) {
  const std::vector<DeviceInfo> known = Devices();
  if (const DeviceInfo* const match = Match(known, id)) return *match;
  TurnHolder turn(turn_);
  const std::vector<DeviceInfo> found = backend_->FindDevices(Milliseconds(kSearchToOpenMs));
  if (const DeviceInfo* const match = Match(found, id)) return *match;
  throw Error(GenTL::GC_ERR_INVALID_ID, "There is no device \"" + id + "\".");
}

std::shared_ptr<DeviceModule> InterfaceModule::Open(const std::string& id, GenTL::DEVICE_ACCESS_FLAGS flags) {
  const Access access = AccessOf(flags);
  const DeviceInfo info = Resolve(id);
  return open_.Open(info.id, [&] { return OpenFound(info, access); });
}

std::shared_ptr<DeviceModule> InterfaceModule::OpenFound(const DeviceInfo& info, Access access) {
  auto module = std::make_shared<DeviceModule>(*this, info, access);
  {
    TurnHolder turn(turn_);
    module->Attach(backend_->OpenDevice(info, access, *module));
  }
  Handles().Insert(module);
  module->InsertRemotePort();
  return module;
}

void InterfaceModule::Shutdown() {
  for (const auto& child : open_.All()) child->Close();
  backend_.reset();
  system_.OnInterfaceClosed(info_.id);
}

void AnswerDeviceInfo(const DeviceInfo& info, GenTL::DEVICE_INFO_CMD command, const Answer& answer) {
  const auto optional = [&answer](const std::string& text) {
    if (text.empty()) throw Error(GenTL::GC_ERR_NOT_AVAILABLE, "The device does not tell this.");
    answer.Text(text);
  };
  switch (command) {
    case GenTL::DEVICE_INFO_ID:
      return answer.Text(info.id);
    case GenTL::DEVICE_INFO_VENDOR:
      return answer.Text(info.vendor);
    case GenTL::DEVICE_INFO_MODEL:
      return answer.Text(info.model);
    case GenTL::DEVICE_INFO_TLTYPE:
      return answer.Text(info.tlType);
    case GenTL::DEVICE_INFO_DISPLAYNAME:
      return answer.Text(DisplayName(info));
    case GenTL::DEVICE_INFO_ACCESS_STATUS:
      return answer.Int32(info.accessStatus);
    case GenTL::DEVICE_INFO_USER_DEFINED_NAME:
      return optional(info.userDefinedName);
    case GenTL::DEVICE_INFO_SERIAL_NUMBER:
      return optional(info.serialNumber);
    case GenTL::DEVICE_INFO_VERSION:
      return optional(info.version);
    case GenTL::DEVICE_INFO_TIMESTAMP_FREQUENCY:
      if (info.timestampFrequency == 0)
        throw Error(GenTL::GC_ERR_NOT_AVAILABLE, "The frequency is not known.");
      return answer.UInt64(info.timestampFrequency);
    default:
      throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED,
                  "There is no device information " + std::to_string(command) + ".");
  }
}

std::string DisplayName(const DeviceInfo& info) {
  if (!info.displayName.empty()) return info.displayName;
  return info.vendor + " " + info.model + " (" + info.id + ")";
}

const FeatureTable::Entries& AccessStatusEntries() {
  static const FeatureTable::Entries entries = {{"Unknown", GenTL::DEVICE_ACCESS_STATUS_UNKNOWN},
                                                {"ReadWrite", GenTL::DEVICE_ACCESS_STATUS_READWRITE},
                                                {"ReadOnly", GenTL::DEVICE_ACCESS_STATUS_READONLY},
                                                {"NoAccess", GenTL::DEVICE_ACCESS_STATUS_NOACCESS},
                                                {"Busy", GenTL::DEVICE_ACCESS_STATUS_BUSY},
                                                {"OpenReadWrite", GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE},
                                                {"OpenReadOnly", GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY}};
  return entries;
}

}  // namespace zyn::producer
