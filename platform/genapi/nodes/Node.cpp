#include "nodes/Node.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <utility>

#include "nodes/InterfaceTypes.h"

namespace zyn::genapi {
namespace {

bool IsCondition(Element element) {
  return element == Element::pIsImplemented || element == Element::pIsAvailable ||
         element == Element::pIsLocked;
}

bool IsLimit(Element element) {
  return element == Element::pMin || element == Element::pMax || element == Element::pInc;
}

// Links whose access mode is part of a node's base mode rather than that of a helper.
bool IsBaseLink(Element element) {
  switch (element) {
    case Element::pValue:
    case Element::pValueCopy:
    case Element::pValueIndexed:
    case Element::pValueDefault:
    case Element::pFeature:
    case Element::pPort:
    case Element::pChunkId:
      return true;
    default:
      return IsCondition(element);
  }
}

// Links that decide which value a node has, or what its limits are.
bool IsValueLink(Element element) {
  return IsReadingLink(element) && !IsCondition(element) && element != Element::pFeature &&
         element != Element::pPort && element != Element::pChunkId;
}

// Whose value or limits come from each node.
Adjacency CollectValueUsers(const Description& facts) {
  Adjacency users;
  users.Build(facts.nodes.size(), [&facts](const auto& add) {
    for (NodeId id = 0; id < facts.nodes.size(); ++id)
      for (const Property& property : facts.Properties(id))
        if (IsValueLink(property.element)) add(property.Target(), id);
  });
  return users;
}

// Marks the node, and says whether it was not marked before.
bool MarkNew(std::vector<bool>& marks, NodeId id) {
  if (marks[id]) return false;
  marks[id] = true;
  return true;
}

bool IsWritingLink(Element element) {
  return element == Element::pValue || element == Element::pValueCopy || element == Element::pValueIndexed ||
         element == Element::pValueDefault;
}

}  // namespace

Node::Node(NodeMap& map, NodeId id)
    : map_(map), id_(id), imposedAccess_(static_cast<EAccessMode>(Number(Element::imposedAccessMode, RW))) {}

Node::~Node() {
  for (CNodeCallback* const callback : callbacks_) callback->Destroy();
}

std::string Node::Format(const char* format, std::va_list arguments) {
  char text[2048];
  if (std::vsnprintf(text, sizeof(text), format, arguments) < 0) return format;
  return text;
}

std::string_view Node::Text(Element element) const {
  const Property* const property = Find(element);
  return property ? map_.Facts().Text(property->text) : std::string_view();
}

NodeId Node::Link(Element element) const {
  const Property* const property = Find(element);
  return property ? property->Target() : kNoNode;
}

// Access mode

EAccessMode Node::GetAccessMode() const {
  const Call call(*this, "GetAccessMode");
  return const_cast<Node*>(this)->Access();
}

EAccessMode Node::Access() {
  if (access_) return *access_;
  if (accessInProgress_) {
    ++map_.accessLoops_;
    return RW;
  }
  const DepthGuard depth(*this);
  struct Mark {
    bool& flag;
    explicit Mark(bool& f) : flag(f) { flag = true; }
    ~Mark() { flag = false; }
  };
  const unsigned loopsBefore = map_.accessLoops_;
  EAccessMode mode = NI;
  {
    const Mark mark(accessInProgress_);
    mode = ComputeAccess();
  }
  // A mode that leans on an unfinished one may be wrong for the next question.
  if (map_.accessLoops_ == loopsBefore && IsAccessCacheable()) access_ = mode;
  return mode;
}

EAccessMode Node::ComputeAccess() {
  EAccessMode mode = ConditionAccess();
  if (mode == NI) return NI;
  mode = Combine(mode, BaseAccess());
  if (mode == NI) return NI;
  mode = Combine(mode, HelperAccess());
  return Combine(mode, imposedAccess_);
}

EAccessMode Node::ConditionAccess() {
  EAccessMode mode = RW;
  for (const Element element : {Element::pIsImplemented, Element::pIsAvailable, Element::pIsLocked}) {
    if (element == Element::pIsAvailable && IgnoresAvailability()) continue;
    const NodeId id = Link(element);
    if (id == kNoNode) continue;
    Node& condition = At(id);
    const EAccessMode access = condition.Access();
    if (access == NI) return NI;
    if (!IsReadable(access)) {
      mode = NA;
      continue;
    }
    const bool isSet = condition.IsTrue();
    if (element == Element::pIsImplemented && !isSet) return NI;
    if (element == Element::pIsAvailable && !isSet) mode = Combine(mode, NA);
    if (element == Element::pIsLocked && isSet) mode = Combine(mode, RO);
  }
  return mode;
}

EAccessMode Node::HelperAccess() {
  EAccessMode mode = RW;
  for (const Property& property : Properties()) {
    if (!IsReadingLink(property.element) || IsBaseLink(property.element)) continue;
    const EAccessMode access = At(property.Target()).Access();
    if (access == NI) return NI;
    const bool mustRead = property.element == Element::pCommandValue ||
                          (property.element == Element::pIndex && !dynamic_cast<IRegister*>(this));
    if (access == NA || (mustRead && access == WO)) mode = NA;
  }
  return mode;
}

void Node::RequireReadable() {
  if (!IsReadable(Access())) ZYN_THROW(AccessException, "Node is not readable.");
}

void Node::RequireWritable() {
  if (!IsWritable(Access())) ZYN_THROW(AccessException, "Node is not writable.");
}

void Node::RequireAvailable() {
  if (!IsAvailable(Access())) ZYN_THROW(AccessException, "Node is not available.");
}

void Node::ImposeAccessMode(EAccessMode ImposedAccessMode) {
  WriteCall call(*this, "ImposeAccessMode");
  imposedAccess_ = ImposedAccessMode;
  WriteCall::MarkWritten(*this);
  call.Commit(false);
}

bool Node::IsAccessCacheable() {
  if (accessCacheable_) return *accessCacheable_;
  const DepthGuard depth(*this);
  bool cacheable = true;
  for (const Property& property : Properties()) {
    if (!IsReadingLink(property.element) || property.Target() == kNoNode) continue;
    Node& child = At(property.Target());
    cacheable = cacheable && child.IsAccessCacheable() &&
                (!IsCondition(property.element) || child.CachingMode() != NoCache);
  }
  accessCacheable_ = cacheable;
  return cacheable;
}

bool Node::AreLimitsCacheable() {
  if (limitsCacheable_) return *limitsCacheable_;
  const DepthGuard depth(*this);
  bool cacheable = true;
  for (const Property& property : Properties()) {
    if (!IsValueLink(property.element) || property.element == Element::pCommandValue) continue;
    Node& child = At(property.Target());
    // Of the node that holds the value only the limits count.
    cacheable = cacheable && child.AreLimitsCacheable() &&
                (IsWritingLink(property.element) || child.CachingMode() != NoCache);
  }
  limitsCacheable_ = cacheable;
  return cacheable;
}

EYesNo Node::IsAccessModeCacheable() const {
  const Call call(*this, "IsAccessModeCacheable");
  return const_cast<Node*>(this)->IsAccessCacheable() ? Yes : No;
}

// Caching

ECachingMode Node::CachingMode() {
  if (!cachingMode_) {
    const DepthGuard depth(*this);
    cachingMode_ = ComputeCachingMode();
  }
  return *cachingMode_;
}

void Node::ForgetCachingModes() {
  cachingMode_.reset();
  accessCacheable_.reset();
  limitsCacheable_.reset();
}

ECachingMode Node::ComputeCachingMode() {
  // Everything that comes from the device comes from a register, and what is computed follows those.
  if (!map_.RemembersRegisters() && Find(Element::pPort)) return NoCache;
  ECachingMode mode = static_cast<ECachingMode>(Number(Element::cachable, WriteThrough));
  for (const Property& property : Properties()) {
    if (!IsReadingLink(property.element) || IsCondition(property.element) || IsLimit(property.element))
      continue;
    if (property.element == Element::pFeature || property.element == Element::pPort) continue;
    if (property.element == Element::pValueCopy) continue;  // never read
    mode = Combine(mode, At(property.Target()).CachingMode());
  }
  return mode;
}

ECachingMode Node::GetCachingMode() const {
  const Call call(*this, "GetCachingMode");
  return const_cast<Node*>(this)->CachingMode();
}

bool Node::IsCachable() const {
  return GetCachingMode() != NoCache;
}

void Node::Forget(bool) {
  access_.reset();
}

void Node::InvalidateNode() {
  WriteCall call(*this, "InvalidateNode");
  map_.InvalidateClosure(id_);
  WriteCall::MarkWritten(*this);
  call.Commit(false);
}

int64_t Node::GetPollingTime() const {
  return Number(Element::pollingTime, -1);
}

void Node::CheckError() {
  for (const Property& property : Properties()) {
    if (property.element != Element::pError) continue;
    Node& errors = At(property.Target());
    if (!IsReadable(errors.Access())) continue;
    const std::int64_t code = errors.IntegerValue({});
    if (code == 0) continue;
    auto* const enumeration = dynamic_cast<IEnumeration*>(&errors);
    IEnumEntry* const entry = enumeration ? enumeration->GetEntry(code) : nullptr;
    if (!entry) ZYN_THROW(RuntimeException, "Error %lld", static_cast<long long>(code));
    INode* const node = entry->GetNode();
    ZYN_THROW(RuntimeException, "%s : %s", node->GetDisplayName().c_str(), node->GetToolTip().c_str());
  }
}

// Texts and facts

gcstring Node::GetName(bool FullQualified) const {
  const std::string_view name = Name();
  gcstring text(name.data(), name.size());
  if (!FullQualified) return text;
  return (GetNameSpace() == Standard ? "Std::" : "Cust::") + text;
}

ENameSpace Node::GetNameSpace() const {
  return Record().nameSpace;
}

EVisibility Node::GetVisibility() const {
  const Call call(*this, "GetVisibility");
  return imposedVisibility_ ? Combine(Record().visibility, *imposedVisibility_) : Record().visibility;
}

void Node::ImposeVisibility(EVisibility ImposedVisibility) {
  const Call call(*this, "ImposeVisibility");
  imposedVisibility_ = ImposedVisibility;
}

gcstring Node::GetToolTip() const {
  const std::string_view text = Text(Element::toolTip);
  return {text.data(), text.size()};
}

gcstring Node::GetDescription() const {
  const std::string_view text = Text(Element::description);
  return {text.data(), text.size()};
}

gcstring Node::GetDisplayName() const {
  std::string_view text = Text(Element::displayName);
  if (text.empty()) text = DefaultDisplayName();
  return {text.data(), text.size()};
}

gcstring Node::GetDeviceName() const {
  return map_.DeviceName().c_str();
}

gcstring Node::GetEventID() const {
  const std::string_view text = Text(Element::eventId);
  return {text.data(), text.size()};
}

gcstring Node::GetDocuURL() const {
  const std::string_view text = Text(Element::docuUrl);
  return {text.data(), text.size()};
}

bool Node::IsStreamable() const {
  return Number(Element::streamable, No) == Yes;
}
bool Node::IsDeprecated() const {
  return Number(Element::isDeprecated, No) == Yes;
}
bool Node::IsFeature() const {
  return Record().isFeature;
}
INodeMap* Node::GetNodeMap() const {
  return &map_;
}
EInterfaceType Node::GetPrincipalInterfaceType() const {
  return InterfaceTypeOf(Kind());
}

// Links

INode* Node::LinkedNode(Element element) const {
  const Call call(*this, "GetAlias");
  const NodeId id = Link(element);
  return id == kNoNode ? nullptr : &At(id);
}

INode* Node::GetAlias() const {
  return LinkedNode(Element::pAlias);
}
INode* Node::GetCastAlias() const {
  return LinkedNode(Element::pCastAlias);
}

void Node::CollectTerminals(std::vector<NodeId>& terminals) const {
  std::vector<NodeId> waiting{id_};
  std::vector<bool> seen(map_.Facts().nodes.size(), false);
  while (!waiting.empty()) {
    const NodeId id = waiting.back();
    waiting.pop_back();
    if (seen[id]) continue;
    seen[id] = true;
    bool isTerminal = true;
    for (const Property& property : map_.Facts().Properties(id)) {
      if (!IsWritingLink(property.element)) continue;
      isTerminal = false;
      waiting.push_back(property.Target());
    }
    if (isTerminal) terminals.push_back(id);
  }
}

void Node::GetChildren(NodeList_t& Children, ELinkType LinkType) const {
  const Call call(*this, "GetChildren");
  Children.clear();
  if (LinkType == ctParentNodes) return GetParents(Children);
  if (LinkType == ctTerminalNodes) {
    std::vector<NodeId> terminals;
    CollectTerminals(terminals);
    for (const NodeId id : terminals) Children.push_back(&At(id));
    return;
  }
  if (LinkType == ctDependingNodes) {
    for (const NodeId id : map_.Closure(id_))
      if (id != id_) Children.push_back(&At(id));
    return;
  }
  std::vector<bool> seen(map_.Facts().nodes.size(), false);
  const auto add = [&](NodeId id) {
    if (id == kNoNode || seen[id]) return;
    seen[id] = true;
    Children.push_back(&At(id));
  };
  for (const Property& property : Properties()) {
    const bool isReading = IsReadingLink(property.element) || property.element == Element::enumEntry;
    bool belongs = isReading;
    if (LinkType == ctWritingChildren) belongs = IsWritingLink(property.element);
    if (LinkType == ctInvalidatingChildren) belongs = isReading || property.element == Element::pInvalidator;
    if (LinkType == ctValueChangingChildren)
      belongs = isReading && !IsCondition(property.element) && !IsLimit(property.element);
    if (belongs) add(property.Target());
  }
  if (LinkType != ctInvalidatingChildren) return;
  for (const NodeId id : map_.Facts().selectedBy.Of(id_)) add(id);
}

void Node::GetParents(NodeList_t& Parents) const {
  const Call call(*this, "GetParents");
  Parents.clear();
  for (const NodeId id : map_.Facts().mentionedBy.Of(id_)) Parents.push_back(&At(id));
}

bool Node::IsSelector() const {
  return Find(Element::pSelected) != nullptr;
}

// What is computed from a selected feature is selected with it. Conditions do not count: they say whether a
// feature may be used, not which one it is.
void Node::GetSelectedFeatures(FeatureList_t& SelectedFeatures) const {
  const Call call(*this, "GetSelectedFeatures");
  SelectedFeatures.clear();
  if (!Find(Element::pSelected)) return;
  std::vector<NodeId> selected;
  std::vector<bool> isListed(map_.Facts().nodes.size(), false);
  isListed[id_] = true;
  const auto add = [&](NodeId id) {
    if (id != kNoNode && MarkNew(isListed, id)) selected.push_back(id);
  };
  for (const Property& property : Properties())
    if (property.element == Element::pSelected) add(property.Target());
  const Adjacency users = CollectValueUsers(map_.Facts());
  for (std::size_t i = 0; i < selected.size(); ++i)
    for (const NodeId user : users.Of(selected[i])) add(user);
  for (const NodeId id : selected)
    if (auto* const value = dynamic_cast<IValue*>(&At(id))) SelectedFeatures.push_back(value);
}

void Node::GetSelectingFeatures(FeatureList_t& SelectingFeatures) const {
  const Call call(*this, "GetSelectingFeatures");
  SelectingFeatures.clear();
  std::vector<NodeId> sources{id_};
  std::vector<bool> isSource(map_.Facts().nodes.size(), false);
  std::vector<bool> isListed(map_.Facts().nodes.size(), false);
  isSource[id_] = true;
  isListed[id_] = true;
  for (std::size_t i = 0; i < sources.size(); ++i) {
    for (const NodeId id : map_.Facts().selectedBy.Of(sources[i])) {
      if (!MarkNew(isListed, id)) continue;
      if (auto* const value = dynamic_cast<IValue*>(&At(id))) SelectingFeatures.push_back(value);
    }
    for (const Property& property : map_.Facts().Properties(sources[i])) {
      if (IsValueLink(property.element) && MarkNew(isSource, property.Target()))
        sources.push_back(property.Target());
    }
  }
}

// Callbacks

CallbackHandleType Node::RegisterCallback(CNodeCallback* pCallback) {
  const Call call(*this, "RegisterCallback");
  if (!pCallback) ZYN_THROW(InvalidArgumentException, "A null callback cannot be registered.");
  callbacks_.push_back(pCallback);
  map_.Callbacks().Add(pCallback);
  return reinterpret_cast<CallbackHandleType>(pCallback);
}

CNodeCallback* Node::RemoveCallback(CallbackHandleType handle) {
  const auto found = std::find_if(callbacks_.begin(), callbacks_.end(), [handle](CNodeCallback* callback) {
    return reinterpret_cast<CallbackHandleType>(callback) == handle;
  });
  if (found == callbacks_.end()) return nullptr;
  CNodeCallback* const callback = *found;
  callbacks_.erase(found);
  map_.Callbacks().Remove(callback);
  return callback;
}

bool Node::DeregisterCallback(CallbackHandleType hCallback) {
  CNodeCallback* callback = nullptr;
  bool holdsLock = false;
  {
    const Call call(*this, "DeregisterCallback");
    callback = RemoveCallback(hCallback);
    holdsLock = map_.IsLockedOutside();
  }
  if (callback) map_.Callbacks().Retire(callback, holdsLock, false);
  return callback != nullptr;
}

void Node::DeregisterAndDestroy(CallbackHandleType handle) {
  CNodeCallback* callback = nullptr;
  bool holdsLock = false;
  {
    const Call call(*this, "DeregisterCallback");
    callback = RemoveCallback(handle);
    holdsLock = map_.IsLockedOutside();
  }
  if (callback) map_.Callbacks().Retire(callback, holdsLock, true);
}

UserData_t Node::GetUserData() const {
  const Call call(*this, "GetUserData");
  return userData_;
}

UserData_t Node::SetUserData(UserData_t pUserData) {
  const Call call(*this, "SetUserData");
  return std::exchange(userData_, pUserData);
}

// Numbers and texts

std::int64_t Node::IntegerValue(ReadMode) {
  ZYN_THROW(RuntimeException, "Node is not a number.");
}
double Node::RealValue(ReadMode) {
  ZYN_THROW(RuntimeException, "Node is not a number.");
}
void Node::WriteInteger(std::int64_t, bool) {
  ZYN_THROW(RuntimeException, "Node is not a number.");
}
void Node::WriteReal(double, bool) {
  ZYN_THROW(RuntimeException, "Node is not a number.");
}
std::int64_t Node::IntegerMin() {
  return INT64_MIN;
}
std::int64_t Node::IntegerMax() {
  return INT64_MAX;
}
std::int64_t Node::IntegerInc() {
  return 1;
}
double Node::RealMin() {
  return -std::numeric_limits<double>::max();
}
double Node::RealMax() {
  return std::numeric_limits<double>::max();
}
std::optional<double> Node::RealInc() {
  return std::nullopt;
}
ERepresentation Node::RepresentationOf() {
  return static_cast<ERepresentation>(Number(Element::representation, PureNumber));
}
std::string_view Node::UnitOf() {
  return Text(Element::unit);
}
EDisplayNotation Node::NotationOf() {
  return static_cast<EDisplayNotation>(Number(Element::displayNotation, fnAutomatic));
}
std::int64_t Node::PrecisionOf() {
  constexpr std::int64_t kUsual = 6;
  const std::int64_t own = Number(Element::displayPrecision, kUsual);
  return own < 0 ? kUsual : own;
}
gcstring Node::TextValue(ReadMode) {
  ZYN_THROW(RuntimeException, "Node has no value.");
}
void Node::WriteText(const gcstring&, bool) {
  ZYN_THROW(AccessException, "Node is not writable.");
}
std::int64_t Node::TextMaxLength() {
  return static_cast<std::int64_t>(gcstring().max_size());
}

}  // namespace zyn::genapi
