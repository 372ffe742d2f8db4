#include "nodes/EnumerationNode.h"

#include <cmath>
#include <limits>

#include "nodes/IntegerCore.h"

namespace zyn::genapi {

EnumerationNode::EnumerationNode(NodeMap& map, NodeId id)
    : ValueNode<IEnumeration>(map, id), target_(Link(Element::pValue)), constant_(Number(Element::value, 0)) {
  for (const Property& property : Properties())
    if (property.element == Element::enumEntry) entries_.push_back(property.Target());
}

// Only entries are linked as such; asking each for its type would be most of the cost of reading a text.
EnumEntryNode& EnumerationNode::Entry(NodeId id) const {
  return static_cast<EnumEntryNode&>(At(id));
}

EAccessMode EnumerationNode::BaseAccess() {
  const EAccessMode mode = target_ == kNoNode ? RW : At(target_).Access();
  if (mode == NI || mode == NA) return mode;
  bool anyImplemented = false;
  for (const NodeId id : entries_) {
    const EAccessMode entry = Entry(id).Access();
    if (IsAvailable(entry)) return mode;
    anyImplemented = anyImplemented || IsImplemented(entry);
  }
  return anyImplemented ? NA : NI;
}

EnumEntryNode* EnumerationNode::FindEntry(std::int64_t value) {
  EnumEntryNode* last = nullptr;
  for (const NodeId id : entries_) {
    EnumEntryNode& entry = Entry(id);
    if (entry.EntryValue() != value) continue;
    if (last && IsAvailable(last->Access())) return last;
    last = &entry;
  }
  return last;
}

EnumEntryNode* EnumerationNode::NearestEntry(double value) {
  EnumEntryNode* nearest = nullptr;
  double distance = std::numeric_limits<double>::infinity();
  for (const NodeId id : entries_) {
    EnumEntryNode& entry = Entry(id);
    const double candidate = std::fabs(entry.NumericValue() - value);
    if (!(candidate < distance) || !IsAvailable(entry.Access())) continue;
    distance = candidate;
    nearest = &entry;
  }
  return nearest;
}

std::int64_t EnumerationNode::RawValue(ReadMode read) {
  RequireReadable();
  if (valueValid_ && !read.ignoreCache && !waitsForClearing_) return value_;
  const DepthGuard depth(*this);
  valueValid_ = false;
  const bool fromDevice = read.ignoreCache || waitsForClearing_;
  const std::int64_t value = target_ == kNoNode ? constant_ : At(target_).IntegerValue({false, fromDevice});
  if (waitsForClearing_ && value != clearingValue_) waitsForClearing_ = false;
  value_ = value;
  valueValid_ = !read.ignoreCache && !waitsForClearing_ && CachingMode() != NoCache;
  return value;
}

double EnumerationNode::RealValue(ReadMode read) {
  const std::int64_t raw = RawValue(read);
  const EnumEntryNode* const entry = FindEntry(raw);
  return entry ? entry->NumericValue() : static_cast<double>(raw);
}

std::int64_t EnumerationNode::IntegerValue(ReadMode read) {
  const std::int64_t raw = RawValue(read);
  const EnumEntryNode* const entry = FindEntry(raw);
  if (!entry || !entry->Find(Element::numericValue)) return raw;
  return RoundToInteger(entry->NumericValue()).value_or(raw);
}

void EnumerationNode::WriteEntry(EnumEntryNode& entry, bool verify) {
  const EAccessMode access = entry.Access();
  if (access == NI || (access == NA && verify)) ZYN_THROW(AccessException, "Enum entry is not writable");
  const std::int64_t value = entry.EntryValue();
  valueValid_ = false;
  WriteCall::MarkWritten(*this);
  if (target_ == kNoNode) {
    constant_ = value;
  } else {
    At(target_).WriteInteger(value, verify);
  }
  waitsForClearing_ = entry.IsSelfClearing();
  clearingValue_ = value;
  value_ = value;
  valueValid_ = verify && !waitsForClearing_ && CachingMode() == WriteThrough &&
                (target_ == kNoNode || At(target_).IsIntegerKind());
}

void EnumerationNode::WriteInteger(std::int64_t value, bool verify) {
  WriteReal(static_cast<double>(value), verify);
}

void EnumerationNode::WriteReal(double value, bool verify) {
  const DepthGuard depth(*this);
  RequireWritable();
  EnumEntryNode* const entry = NearestEntry(value);
  if (!entry) ZYN_THROW(InvalidArgumentException, "No entry is available for %f.", value);
  WriteEntry(*entry, verify);
}

void EnumerationNode::SetIntValue(int64_t Value, bool Verify) {
  WriteCall call(*this, "SetIntValue");
  RequireWritable();
  EnumEntryNode* const entry = FindEntry(Value);
  if (!entry)
    ZYN_THROW(InvalidArgumentException, "No entry has the value %lld.", static_cast<long long>(Value));
  WriteEntry(*entry, Verify);
  call.Commit(Verify);
}

int64_t EnumerationNode::GetIntValue(bool Verify, bool IgnoreCache) {
  const Call call(*this, "GetIntValue");
  const std::int64_t raw = RawValue({Verify, IgnoreCache});
  if (!Verify) return raw;
  if (!FindEntry(raw))
    ZYN_THROW(OutOfRangeException, "No entry has the value %lld.", static_cast<long long>(raw));
  CheckError();
  return raw;
}

gcstring EnumerationNode::TextValue(ReadMode read) {
  const std::int64_t raw = RawValue(read);
  const EnumEntryNode* const entry = FindEntry(raw);
  if (!entry)
    ZYN_THROW(InvalidArgumentException, "No entry has the value %lld.", static_cast<long long>(raw));
  return entry->GetSymbolic();
}

void EnumerationNode::WriteText(const gcstring& text, bool verify) {
  RequireWritable();
  auto* const entry = dynamic_cast<EnumEntryNode*>(GetEntryByName(text));
  if (!entry) ZYN_THROW(InvalidArgumentException, "'%s' is no entry of this enumeration.", text.c_str());
  WriteEntry(*entry, verify);
}

IEnumeration& EnumerationNode::operator=(const gcstring& ValueStr) {
  FromString(ValueStr, true);
  return *this;
}

gcstring EnumerationNode::operator*() {
  return ToString(false, false);
}

void EnumerationNode::GetSymbolics(StringList_t& Symbolics) {
  const Call call(*this, "GetSymbolics");
  Symbolics.clear();
  for (const NodeId id : entries_)
    if (IsAvailable(Entry(id).Access())) Symbolics.push_back(Entry(id).GetSymbolic());
}

void EnumerationNode::GetEntries(NodeList_t& Entries) {
  const Call call(*this, "GetEntries");
  Entries.clear();
  for (const NodeId id : entries_) Entries.push_back(&At(id));
}

IEnumEntry* EnumerationNode::GetEntryByName(const gcstring& Symbolic) {
  const Call call(*this, "GetEntryByName");
  const std::string_view wanted(Symbolic.c_str(), Symbolic.size());
  for (const NodeId id : entries_)
    if (Entry(id).Symbolic() == wanted) return &Entry(id);
  return nullptr;
}

IEnumEntry* EnumerationNode::GetEntry(int64_t IntValue) {
  const Call call(*this, "GetEntry");
  return FindEntry(IntValue);
}

IEnumEntry* EnumerationNode::GetCurrentEntry(bool Verify, bool IgnoreCache) {
  const Call call(*this, "GetCurrentEntry");
  IEnumEntry* const entry = FindEntry(RawValue({Verify, IgnoreCache}));
  if (Verify) CheckError();
  return entry;
}

}  // namespace zyn::genapi
