#include "Module.h"

#include <cstdio>
#include <utility>

#include "producer/Error.h"

namespace zyn::producer {
namespace {

constexpr std::int64_t kOff = 0;
constexpr std::int64_t kOn = 1;
constexpr std::int64_t kOnce = 2;

}  // namespace

bool Module::Supports(GenTL::EVENT_TYPE type) const {
  return type == GenTL::EVENT_ERROR || type == GenTL::EVENT_MODULE;
}

std::shared_ptr<Event> Module::MakeEvent(GenTL::EVENT_TYPE type) {
  return std::make_shared<QueuedEvent>(type);
}

void* Module::RegisterEvent(GenTL::EVENT_TYPE type) {
  if (!Supports(type))
    throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED,
                "This module does not have events of type " + std::to_string(type) + ".");
  const std::shared_ptr<Event> event = MakeEvent(type);
  MutexLock lock(eventsMutex_);
  if (eventsEnded_) ThrowInvalidHandle();
  if (!events_.emplace(type, event).second)
    throw Error(GenTL::GC_ERR_RESOURCE_IN_USE, "The event is registered already.");
  Handles().Insert(event);
  return event->Handle();
}

void Module::UnregisterEvent(GenTL::EVENT_TYPE type) {
  if (!Supports(type))
    throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED,
                "This module does not have events of type " + std::to_string(type) + ".");
  std::shared_ptr<Event> event;
  {
    MutexLock lock(eventsMutex_);
    const auto found = events_.find(type);
    if (found == events_.end()) throw Error(GenTL::GC_ERR_NOT_INITIALIZED, "The event is not registered.");
    event = std::move(found->second);
    events_.erase(found);
  }
  CloseEvent(event);
}

void Module::CloseEvent(const std::shared_ptr<Event>& event) {
  Handles().Remove(event->Handle());
  event->Close();
  OnUnregistered(event->Type());
}

std::shared_ptr<Event> Module::Registered(GenTL::EVENT_TYPE type) const {
  MutexLock lock(eventsMutex_);
  const auto found = events_.find(type);
  return found == events_.end() ? nullptr : found->second;
}

void Module::Raise(GenTL::EVENT_TYPE type, std::vector<std::uint8_t> entry) {
  if (const auto event = std::dynamic_pointer_cast<QueuedEvent>(Registered(type)))
    event->Add(std::move(entry));
}

void Module::RaiseError(GenTL::GC_ERROR code, const std::string& text) {
  Raise(GenTL::EVENT_ERROR, QueuedEvent::ErrorEntry(code, text));
}

void Module::Close() {
  if (!TheGate().BeginClose()) return;
  Handles().Remove(Handle());
  std::map<GenTL::EVENT_TYPE, std::shared_ptr<Event>> events;
  {
    MutexLock lock(eventsMutex_);
    eventsEnded_ = true;
    events.swap(events_);
  }
  for (const auto& [type, event] : events) CloseEvent(event);
  TheGate().Drain();
  Shutdown();
  TheGate().EndClose();
}

std::vector<XmlLocation> Module::Locations() const {
  char place[64];
  std::snprintf(place, sizeof place, ";%llX;%zX", static_cast<unsigned long long>(FeatureTable::kXmlAddress),
                features_->Xml().size());
  XmlLocation location;
  location.url = "local:" + features_->XmlFileName() + place;
  return {location};
}

void Module::Read(std::uint64_t address, void* data, std::size_t size) {
  features_->Read(address, data, size);
}

void Module::Write(std::uint64_t address, const void* data, std::size_t size) {
  features_->Write(address, data, size);
}

void Module::AddModuleEvents(const std::vector<std::string>& names) {
  features_->Category("EventControl");
  FeatureTable::Entries entries;
  for (const std::string& name : names)
    entries.emplace_back(name, static_cast<std::int64_t>(entries.size()) + 1);
  {
    MutexLock lock(eventsMutex_);
    for (const auto& [name, number] : entries) notifications_[number] = {};
  }
  features_->Enumeration(
      "EventSelector", entries,
      [this] {
        MutexLock lock(eventsMutex_);
        return eventSelector_;
      },
      [this](std::int64_t number) {
        MutexLock lock(eventsMutex_);
        eventSelector_ = number;
      });
  FeatureOptions selected;
  selected.selectedBy = "EventSelector";
  features_->Enumeration(
      "EventNotification", {{"Off", kOff}, {"On", kOn}, {"Once", kOnce}},
      [this] {
        MutexLock lock(eventsMutex_);
        return notifications_[eventSelector_].mode;
      },
      [this](std::int64_t mode) {
        MutexLock lock(eventsMutex_);
        notifications_[eventSelector_].mode = mode;
      },
      selected);
  for (const auto& [name, number] : entries) features_->EventPort(name, static_cast<std::uint64_t>(number));
}

void Module::RaiseModuleEvent(std::uint64_t number) {
  std::uint64_t count = 0;
  {
    MutexLock lock(eventsMutex_);
    Notification& notification = notifications_[static_cast<std::int64_t>(number)];
    if (notification.mode == kOff) return;
    if (notification.mode == kOnce) notification.mode = kOff;
    count = ++notification.raised;
  }
  std::uint8_t data[sizeof count];
  for (std::size_t i = 0; i < sizeof count; ++i) data[i] = static_cast<std::uint8_t>(count >> (8 * i));
  Raise(GenTL::EVENT_MODULE, QueuedEvent::NumberedEntry(number, data, sizeof data));
}

const FeatureTable::Entries& TechnologyEntries() {
  static const FeatureTable::Entries entries = {{"Custom", 0},     {"GigEVision", 1}, {"USB3Vision", 2},
                                                {"CameraLink", 3}, {"CoaXPress", 4},  {"CameraLinkHS", 5}};
  return entries;
}

std::int64_t TechnologyEntry(const std::string& tlType) {
  if (tlType == GENTL_TLTYPE_GEV) return 1;
  if (tlType == GENTL_TLTYPE_U3V) return 2;
  if (tlType == GENTL_TLTYPE_CL) return 3;
  if (tlType == GENTL_TLTYPE_CXP) return 4;
  if (tlType == GENTL_TLTYPE_CLHS) return 5;
  return 0;
}

}  // namespace zyn::producer
