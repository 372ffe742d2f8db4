/// The system module: the list of interfaces.
#ifndef ZYN_PRODUCER_SYSTEM_H
#define ZYN_PRODUCER_SYSTEM_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Children.h"
#include "Library.h"
#include "Module.h"
#include "Turn.h"

namespace zyn::producer {

class InterfaceModule;

/// Any thread. Lock order: `listMutex_` is a leaf; the turn is held while the backend searches or opens.
class System final : public Module, public std::enable_shared_from_this<System> {
 public:
  explicit System(Library& library);

  const ProducerFacts& Producer() const { return library_.Facts(); }
  Library& TheLibrary() { return library_; }

  /// Searches anew; returns whether the list changed. Throws Error with GC_ERR_TIMEOUT; the list stays then.
  bool UpdateInterfaces(std::uint64_t timeoutMs) ZYN_EXCLUDES(listMutex_);
  std::vector<InterfaceInfo> Interfaces() const ZYN_EXCLUDES(listMutex_);
  /// Throws Error with GC_ERR_INVALID_ID.
  InterfaceInfo Find(const std::string& id) const;
  std::shared_ptr<InterfaceModule> Open(const std::string& id);
  void OnInterfaceClosed(const std::string& id) { open_.Drop(id); }

  PortFacts Facts() const override;

 protected:
  void Shutdown() override;

 private:
  void AddSystemFeatures();
  void AddInterfaceFeatures();
  InterfaceInfo Selected() const ZYN_EXCLUDES(listMutex_);
  AdapterInfo SelectedAdapter() const { return Selected().adapter.value_or(AdapterInfo()); }

  Library& library_;
  Turn turn_;
  Children<InterfaceModule> open_;

  mutable Mutex listMutex_;
  std::vector<InterfaceInfo> list_ ZYN_GUARDED_BY(listMutex_);
  std::size_t selector_ ZYN_GUARDED_BY(listMutex_) = 0;
  std::int64_t updateTimeoutMs_ ZYN_GUARDED_BY(listMutex_) = 1000;
};

/// INTERFACE_INFO_* for TLGetInterfaceInfo and IFGetInfo.
void AnswerInterfaceInfo(const InterfaceInfo& info, GenTL::INTERFACE_INFO_CMD command, const Answer& answer);

}  // namespace zyn::producer

#endif
