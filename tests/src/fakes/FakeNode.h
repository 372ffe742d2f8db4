#ifndef ZYN_FAKES_FAKE_NODE_H
#define ZYN_FAKES_FAKE_NODE_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "GenICam.h"

namespace fakes {

/// The two flags of one read of a value.
struct ReadFlags {
  bool verify;
  bool ignoreCache;
  bool operator==(const ReadFlags&) const = default;
};

/// A scripted node, for states no description can produce. What is not scripted answers neutrally.
class FakeNode : public GenApi::INode {
 public:
  FakeNode(std::string nodeName, GenApi::EInterfaceType interfaceType)
      : name(std::move(nodeName)), type(interfaceType) {}

  GenApi::EAccessMode GetAccessMode() const override { return accessMode; }
  GenICam::gcstring GetName(bool /*fullQualified*/) const override {
    if (nameThrows) throw RUNTIME_EXCEPTION("lost");
    return name.c_str();
  }
  GenApi::ENameSpace GetNameSpace() const override { return GenApi::Standard; }
  GenApi::EVisibility GetVisibility() const override { return visibility; }
  void InvalidateNode() override {}
  bool IsCachable() const override { return true; }
  GenApi::EYesNo IsAccessModeCacheable() const override { return GenApi::Yes; }
  GenApi::ECachingMode GetCachingMode() const override { return GenApi::WriteThrough; }
  std::int64_t GetPollingTime() const override { return -1; }
  GenICam::gcstring GetToolTip() const override { return ""; }
  GenICam::gcstring GetDescription() const override { return ""; }
  GenICam::gcstring GetDisplayName() const override { return ""; }
  GenICam::gcstring GetDeviceName() const override { return ""; }
  void GetChildren(GenApi::NodeList_t& /*children*/, GenApi::ELinkType /*link*/) const override {}
  void GetParents(GenApi::NodeList_t& /*parents*/) const override {}
  GenApi::CallbackHandleType RegisterCallback(GenApi::CNodeCallback* /*callback*/) override { return 0; }
  bool DeregisterCallback(GenApi::CallbackHandleType /*handle*/) override { return false; }
  GenApi::INodeMap* GetNodeMap() const override { return nullptr; }
  GenICam::gcstring GetEventID() const override { return ""; }
  bool IsStreamable() const override { return false; }
  void GetPropertyNames(GenICam::gcstring_vector& /*names*/) const override {}
  bool GetProperty(const GenICam::gcstring& /*property*/, GenICam::gcstring& /*value*/,
                   GenICam::gcstring& /*attribute*/) override {
    return false;
  }
  void ImposeAccessMode(GenApi::EAccessMode /*mode*/) override {}
  void ImposeVisibility(GenApi::EVisibility /*imposed*/) override {}
  GenApi::INode* GetAlias() const override { return nullptr; }
  GenApi::INode* GetCastAlias() const override { return nullptr; }
  GenICam::gcstring GetDocuURL() const override { return ""; }
  bool IsDeprecated() const override { return false; }
  GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return type; }
  bool IsFeature() const override { return true; }

  const std::string name;
  const GenApi::EInterfaceType type;
  GenApi::EAccessMode accessMode = GenApi::RW;
  GenApi::EVisibility visibility = GenApi::Beginner;
  bool nameThrows = false;
};

/// A node with a value; `reads` is how each read of it, as number or text, was asked for.
template <class Interface, GenApi::EInterfaceType kType>
class FakeValueNode : public FakeNode, public Interface {
 public:
  explicit FakeValueNode(std::string nodeName) : FakeNode(std::move(nodeName), kType) {}

  GenICam::gcstring ToString(bool verify, bool ignoreCache) override {
    Record(verify, ignoreCache);
    return text.c_str();
  }
  void FromString(const GenICam::gcstring& /*value*/, bool /*verify*/) override {}
  bool IsValueCacheValid() const override { return true; }

  std::string text;
  mutable std::vector<ReadFlags> reads;

 protected:
  void Record(bool verify, bool ignoreCache) const { reads.push_back({verify, ignoreCache}); }
};

class FakeInteger : public FakeValueNode<GenApi::IInteger, GenApi::intfIInteger> {
 public:
  using FakeValueNode::FakeValueNode;

  void SetValue(std::int64_t /*value*/, bool /*verify*/) override {}
  GenApi::IInteger& operator=(std::int64_t /*value*/) override { return *this; }
  std::int64_t GetValue(bool verify, bool ignoreCache) override {
    Record(verify, ignoreCache);
    return value;
  }
  std::int64_t operator()() override { return GetValue(false, false); }
  std::int64_t operator*() override { return GetValue(false, false); }
  std::int64_t GetMin() override { return minimum; }
  std::int64_t GetMax() override { return maximum; }
  GenApi::EIncMode GetIncMode() override { return GenApi::fixedIncrement; }
  std::int64_t GetInc() override { return increment; }
  GenApi::int64_autovector_t GetListOfValidValues(bool /*bounded*/) override {
    return GenApi::int64_autovector_t();
  }
  GenApi::ERepresentation GetRepresentation() override { return GenApi::Linear; }
  GenICam::gcstring GetUnit() override { return ""; }
  void ImposeMin(std::int64_t /*value*/) override {}
  void ImposeMax(std::int64_t /*value*/) override {}

  std::int64_t value = 7, minimum = 1, maximum = 9, increment = 2;
};

/// Has an increment, 0.25, in whichever mode is scripted; may say that it has none.
class FakeFloat : public FakeValueNode<GenApi::IFloat, GenApi::intfIFloat> {
 public:
  using FakeValueNode::FakeValueNode;

  void SetValue(double /*value*/, bool /*verify*/) override {}
  GenApi::IFloat& operator=(double /*value*/) override { return *this; }
  double GetValue(bool verify, bool ignoreCache) override {
    Record(verify, ignoreCache);
    return 0.5;
  }
  double operator()() override { return GetValue(false, false); }
  double operator*() override { return GetValue(false, false); }
  double GetMin() override { return 0.0; }
  double GetMax() override { return 8.0; }
  bool HasInc() override { return hasIncrement; }
  GenApi::EIncMode GetIncMode() override { return incrementMode; }
  double GetInc() override { return 0.25; }
  GenApi::double_autovector_t GetListOfValidValues(bool /*bounded*/) override {
    return GenApi::double_autovector_t();
  }
  GenApi::ERepresentation GetRepresentation() override { return GenApi::Linear; }
  GenICam::gcstring GetUnit() const override { return ""; }
  GenApi::EDisplayNotation GetDisplayNotation() const override { return GenApi::fnAutomatic; }
  std::int64_t GetDisplayPrecision() const override { return 6; }
  void ImposeMin(double /*value*/) override {}
  void ImposeMax(double /*value*/) override {}

  GenApi::EIncMode incrementMode = GenApi::fixedIncrement;
  bool hasIncrement = true;
};

class FakeBoolean : public FakeValueNode<GenApi::IBoolean, GenApi::intfIBoolean> {
 public:
  using FakeValueNode::FakeValueNode;
  using GenApi::IBoolean::operator=;

  void SetValue(bool /*value*/, bool /*verify*/) override {}
  bool GetValue(bool verify, bool ignoreCache) const override {
    Record(verify, ignoreCache);
    return true;
  }
};

/// Is always done. `calls` is each call with its flag, in order.
class FakeCommand : public FakeValueNode<GenApi::ICommand, GenApi::intfICommand> {
 public:
  using FakeValueNode::FakeValueNode;
  using Call = std::pair<std::string, bool>;

  void Execute(bool verify) override { calls.emplace_back("Execute", verify); }
  void operator()() override { calls.emplace_back("operator()", true); }
  bool IsDone(bool verify) override {
    calls.emplace_back("IsDone", verify);
    return true;
  }

  std::vector<Call> calls;
};

/// One entry of an enumeration; its symbolic is the node's name.
class FakeEnumEntry : public FakeValueNode<GenApi::IEnumEntry, GenApi::intfIEnumEntry> {
 public:
  FakeEnumEntry(std::string symbolic, GenApi::EAccessMode mode) : FakeValueNode(std::move(symbolic)) {
    accessMode = mode;
  }

  std::int64_t GetValue() override { return 0; }
  GenICam::gcstring GetSymbolic() const override { return name.c_str(); }
  double GetNumericValue() override { return 0.0; }
  bool IsSelfClearing() override { return false; }
};

/// Borrows its entries.
class FakeEnumeration : public FakeValueNode<GenApi::IEnumeration, GenApi::intfIEnumeration> {
 public:
  using FakeValueNode::FakeValueNode;

  void GetSymbolics(GenApi::StringList_t& /*symbolics*/) override {}
  void GetEntries(GenApi::NodeList_t& out) override {
    for (FakeEnumEntry* entry : entries) out.push_back(entry);
  }
  GenApi::IEnumeration& operator=(const GenICam::gcstring& /*value*/) override { return *this; }
  void SetIntValue(std::int64_t /*value*/, bool /*verify*/) override {}
  GenICam::gcstring operator*() override { return ToString(false, false); }
  std::int64_t GetIntValue(bool verify, bool ignoreCache) override {
    Record(verify, ignoreCache);
    return 0;
  }
  GenApi::IEnumEntry* GetEntryByName(const GenICam::gcstring& /*symbolic*/) override { return nullptr; }
  GenApi::IEnumEntry* GetEntry(std::int64_t /*value*/) override { return nullptr; }
  GenApi::IEnumEntry* GetCurrentEntry(bool verify, bool ignoreCache) override {
    Record(verify, ignoreCache);
    return nullptr;
  }

  std::vector<FakeEnumEntry*> entries;
};

}  // namespace fakes

#endif
