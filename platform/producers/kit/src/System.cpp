#include "System.h"

#include <algorithm>

#include "InterfaceModule.h"
#include "Timeout.h"
#include "producer/Error.h"

namespace zyn::producer {
namespace {

constexpr std::uint64_t kInterfaceListChanged = 1;  // number of the module event
constexpr std::uint64_t kSearchToOpenMs = 1000;
constexpr std::int64_t kSfncMajor = 1;
constexpr std::int64_t kSfncMinor = 2;
constexpr std::int64_t kMixedEntry = 100;
constexpr std::int64_t kLongestTimeoutMs = 3600000;

FeatureOptions WithRepresentation(FeatureOptions options, const char* representation) {
  options.representation = representation;
  return options;
}

}  // namespace

System::System(Library& library) : library_(library) {
  features_ = std::make_unique<FeatureTable>("TLPort", nullptr);
  AddSystemFeatures();
  AddInterfaceFeatures();
  AddModuleEvents({"InterfaceListChanged"});
  features_->Finish(Producer().info.vendor, Producer().info.model, GENTL_MODULE_SYSTEM);
}

void System::AddSystemFeatures() {
  const ProducerFacts& facts = library_.Facts();
  FeatureTable& table = *features_;
  table.Category("SystemInformation");
  table.Text(
      "TLID", [&facts] { return facts.path; }, nullptr, {}, FeatureTable::kPathBytes);
  table.Text("TLVendorName", [&facts] { return facts.info.vendor; });
  table.Text("TLModelName", [&facts] { return facts.info.model; });
  table.Text("TLVersion", [&facts] { return facts.info.version; });
  table.Text("TLFileName", [&facts] { return facts.fileName; });
  table.Text("TLDisplayName", [&facts] { return facts.info.displayName; });
  table.Text(
      "TLPath", [&facts] { return facts.path; }, nullptr, {}, FeatureTable::kPathBytes);
  FeatureTable::Entries types = TechnologyEntries();
  types.emplace_back("Mixed", kMixedEntry);
  table.Enumeration("TLType", types, [&facts] {
    return facts.info.tlType == GENTL_TLTYPE_MIXED ? kMixedEntry : TechnologyEntry(facts.info.tlType);
  });
  table.Integer("GenTLVersionMajor", [] { return GENTL_VERSION_MAJOR; });
  table.Integer("GenTLVersionMinor", [] { return GENTL_VERSION_MINOR; });
  table.Integer("GenTLSFNCVersionMajor", [] { return kSfncMajor; });
  table.Integer("GenTLSFNCVersionMinor", [] { return kSfncMinor; });
}

void System::AddInterfaceFeatures() {
  FeatureTable& table = *features_;
  table.Category("InterfaceEnumeration");
  table.Condition("InterfaceListed", [this] { return !Interfaces().empty(); });
  table.Condition("InterfaceHasAdapter", [this] { return Selected().adapter.has_value(); });
  table.Command("InterfaceUpdateList", [this] {
    std::int64_t timeoutMs = 0;
    {
      MutexLock lock(listMutex_);
      timeoutMs = updateTimeoutMs_;
    }
    UpdateInterfaces(static_cast<std::uint64_t>(timeoutMs));
  });
  FeatureOptions timeout;
  timeout.unit = "ms";
  timeout.maximum = [] { return kLongestTimeoutMs; };
  table.Integer(
      "InterfaceUpdateTimeout",
      [this] {
        MutexLock lock(listMutex_);
        return updateTimeoutMs_;
      },
      [this](std::int64_t value) {
        MutexLock lock(listMutex_);
        updateTimeoutMs_ = value;
      },
      timeout);
  FeatureOptions selector;
  selector.maximum = [this] {
    return std::max<std::int64_t>(1, static_cast<std::int64_t>(Interfaces().size())) - 1;
  };
  table.Integer(
      "InterfaceSelector",
      [this] {
        MutexLock lock(listMutex_);
        return static_cast<std::int64_t>(selector_);
      },
      [this](std::int64_t value) {
        MutexLock lock(listMutex_);
        selector_ = static_cast<std::size_t>(value);
      },
      selector);
  FeatureOptions listed;
  listed.selectedBy = "InterfaceSelector";
  listed.availableIf = "InterfaceListed";
  table.Text(
      "InterfaceID", [this] { return Selected().id; }, nullptr, listed);
  table.Text(
      "InterfaceDisplayName", [this] { return Selected().displayName; }, nullptr, listed);

  FeatureOptions network = listed;
  network.availableIf = "InterfaceHasAdapter";
  const FeatureOptions address = WithRepresentation(network, "IPV4Address");
  table.Integer(
      "GevInterfaceMACAddress", [this] { return static_cast<std::int64_t>(SelectedAdapter().mac); }, nullptr,
      WithRepresentation(network, "MACAddress"));
  const auto subnet = [this] {
    const AdapterInfo adapter = SelectedAdapter();
    return adapter.subnets.empty() ? Subnet() : adapter.subnets.front();
  };
  table.Integer(
      "GevInterfaceDefaultIPAddress", [subnet] { return subnet().address; }, nullptr, address);
  table.Integer(
      "GevInterfaceDefaultSubnetMask", [subnet] { return subnet().mask; }, nullptr, address);
  table.Integer(
      "GevInterfaceDefaultGateway",
      [this] {
        const AdapterInfo adapter = SelectedAdapter();
        return adapter.gateways.empty() ? 0 : adapter.gateways.front();
      },
      nullptr, address);
}

PortFacts System::Facts() const {
  const ProducerInfo& info = library_.Facts().info;
  PortFacts facts;
  facts.id = library_.Facts().path;
  facts.vendor = info.vendor;
  facts.model = info.model;
  facts.tlType = info.tlType;
  facts.module = GENTL_MODULE_SYSTEM;
  facts.portName = features_->PortName();
  return facts;
}

bool System::UpdateInterfaces(std::uint64_t timeoutMs) {
  const auto deadline = DeadlineAfter(timeoutMs);
  bool changed = false;
  {
    TurnHolder turn(turn_, deadline);
    std::vector<InterfaceInfo> found = library_.TheBackend().FindInterfaces(Milliseconds(timeoutMs));
    MutexLock lock(listMutex_);
    changed = found != list_;
    list_ = std::move(found);
    if (selector_ >= list_.size()) selector_ = 0;
  }
  if (changed) RaiseModuleEvent(kInterfaceListChanged);
  return changed;
}

std::vector<InterfaceInfo> System::Interfaces() const {
  MutexLock lock(listMutex_);
  return list_;
}

InterfaceInfo System::Selected() const {
  MutexLock lock(listMutex_);
  return selector_ < list_.size() ? list_[selector_] : InterfaceInfo();
}

InterfaceInfo System::Find(const std::string& id) const {
  for (const InterfaceInfo& info : Interfaces()) {
    if (info.id == id) return info;
  }
  if (const auto open = open_.Find(id)) return open->Info();
  throw Error(GenTL::GC_ERR_INVALID_ID, "There is no interface \"" + id + "\".");
}

std::shared_ptr<InterfaceModule> System::Open(const std::string& id) {
  return open_.Open(id, [this, &id] {
    TurnHolder turn(turn_);
    InterfaceInfo info;
    const auto same = [&id](const InterfaceInfo& other) { return other.id == id; };
    std::vector<InterfaceInfo> known = Interfaces();
    auto found = std::find_if(known.begin(), known.end(), same);
    if (found == known.end()) {
      // A consumer may know the ID from an earlier session.
      known = library_.TheBackend().FindInterfaces(Milliseconds(kSearchToOpenMs));
      found = std::find_if(known.begin(), known.end(), same);
    }
    if (found == known.end()) throw Error(GenTL::GC_ERR_INVALID_ID, "There is no interface \"" + id + "\".");
    auto module =
        std::make_shared<InterfaceModule>(*this, *found, library_.TheBackend().OpenInterface(*found));
    Handles().Insert(module);
    return module;
  });
}

void System::Shutdown() {
  for (const auto& child : open_.All()) child->Close();
  library_.OnSystemClosed();
}

void AnswerInterfaceInfo(const InterfaceInfo& info, GenTL::INTERFACE_INFO_CMD command, const Answer& answer) {
  switch (command) {
    case GenTL::INTERFACE_INFO_ID:
      return answer.Text(info.id);
    case GenTL::INTERFACE_INFO_DISPLAYNAME:
      return answer.Text(info.displayName);
    case GenTL::INTERFACE_INFO_TLTYPE:
      return answer.Text(info.tlType);
    default:
      throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED,
                  "There is no interface information " + std::to_string(command) + ".");
  }
}

}  // namespace zyn::producer
