/// What the five modules and the remote port have in common: a port, events, and being closed once.
#ifndef ZYN_PRODUCER_MODULE_H
#define ZYN_PRODUCER_MODULE_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Event.h"
#include "Handles.h"
#include "producer/FeatureTable.h"

namespace zyn::producer {

/// Constant facts about a port.
struct PortFacts {
  std::string id, vendor, model, tlType;
  std::string module;  ///< a GENTL_MODULE_*
  std::string portName;
  std::string version = "1.0.0";
  bool bigEndian = false;
};

/// A register space with a description: what GCReadPort and its like work on.
class Port : public HandleTarget {
 public:
  virtual PortFacts Facts() const = 0;
  virtual bool Reachable() const { return true; }
  virtual bool Writable() const { return true; }
  virtual std::vector<XmlLocation> Locations() const = 0;
  /// Any address; size is at least 1. Throws Error.
  virtual void Read(std::uint64_t address, void* data, std::size_t size) = 0;
  virtual void Write(std::uint64_t address, const void* data, std::size_t size) = 0;
};

/// A module of the producer: everything but the remote port and the buffers.
class Module : public Port {
 public:
  /// Registers an event and returns its handle. Throws Error: GC_ERR_NOT_IMPLEMENTED, GC_ERR_RESOURCE_IN_USE.
  void* RegisterEvent(GenTL::EVENT_TYPE type) ZYN_EXCLUDES(eventsMutex_);
  /// Throws Error with GC_ERR_NOT_INITIALIZED when it is not registered.
  void UnregisterEvent(GenTL::EVENT_TYPE type) ZYN_EXCLUDES(eventsMutex_);

  /// Raises an event; lost when it is not registered. Never blocks.
  void RaiseError(GenTL::GC_ERROR code, const std::string& text) ZYN_EXCLUDES(eventsMutex_);

  /// Makes the handle invalid, ends the waits, waits for calls in progress, closes the children and then the
  /// module. Later and simultaneous calls return when it is closed.
  void Close();

  std::vector<XmlLocation> Locations() const override;
  void Read(std::uint64_t address, void* data, std::size_t size) override;
  void Write(std::uint64_t address, const void* data, std::size_t size) override;

 protected:
  /// Which event types RegisterEvent takes.
  virtual bool Supports(GenTL::EVENT_TYPE type) const;
  virtual std::shared_ptr<Event> MakeEvent(GenTL::EVENT_TYPE type);
  /// An event was unregistered; it is closed already.
  virtual void OnUnregistered(GenTL::EVENT_TYPE) {}
  /// Closes the children, then what this module owns. Runs once; no call is inside this module any more.
  virtual void Shutdown() = 0;

  /// The registered event of this type, or null.
  std::shared_ptr<Event> Registered(GenTL::EVENT_TYPE type) const ZYN_EXCLUDES(eventsMutex_);
  void Raise(GenTL::EVENT_TYPE type, std::vector<std::uint8_t> entry) ZYN_EXCLUDES(eventsMutex_);

  /// Adds the category EventControl for these module events, numbered from 1 on, to the features.
  void AddModuleEvents(const std::vector<std::string>& names);
  /// Raises EVENT_MODULE for the event `number` of AddModuleEvents, unless its notification is off.
  void RaiseModuleEvent(std::uint64_t number) ZYN_EXCLUDES(eventsMutex_);

  std::unique_ptr<FeatureTable> features_;  // set in the constructor of the derived class

 private:
  struct Notification {
    std::int64_t mode = 1;  // 0 off, 1 on, 2 once
    std::uint64_t raised = 0;
  };

  void CloseEvent(const std::shared_ptr<Event>& event);

  mutable Mutex eventsMutex_;  // a leaf
  std::map<GenTL::EVENT_TYPE, std::shared_ptr<Event>> events_ ZYN_GUARDED_BY(eventsMutex_);
  std::map<std::int64_t, Notification> notifications_ ZYN_GUARDED_BY(eventsMutex_);
  std::int64_t eventSelector_ ZYN_GUARDED_BY(eventsMutex_) = 1;
  bool eventsEnded_ ZYN_GUARDED_BY(eventsMutex_) = false;
};

/// Names of the technologies in descriptions, with the numbers that enumerations give them.
const FeatureTable::Entries& TechnologyEntries();
/// The entry for a GENTL_TLTYPE_*; that of "Custom" for the unknown.
std::int64_t TechnologyEntry(const std::string& tlType);

}  // namespace zyn::producer

#endif
