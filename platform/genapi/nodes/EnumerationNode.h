/// Enumeration nodes.
#ifndef ZYN_GENAPI_NODES_ENUMERATIONNODE_H
#define ZYN_GENAPI_NODES_ENUMERATIONNODE_H

#include <vector>

#include "nodes/EnumEntryNode.h"
#include "nodes/ValueNode.h"

namespace zyn::genapi {

/// A choice among entries. Where several entries have one value, the first available one stands for it.
class EnumerationNode final : public ValueNode<IEnumeration> {
 public:
  EnumerationNode(NodeMap& map, NodeId id);

  void GetSymbolics(StringList_t& Symbolics) override;
  void GetEntries(NodeList_t& Entries) override;
  // The interface decides the type returned. NOLINTNEXTLINE(misc-unconventional-assign-operator)
  IEnumeration& operator=(const gcstring& ValueStr) override;
  void SetIntValue(int64_t Value, bool Verify) override;
  gcstring operator*() override;
  int64_t GetIntValue(bool Verify, bool IgnoreCache) override;
  IEnumEntry* GetEntryByName(const gcstring& Symbolic) override;
  IEnumEntry* GetEntry(int64_t IntValue) override;
  IEnumEntry* GetCurrentEntry(bool Verify, bool IgnoreCache) override;

  /// The entry's numeric value, rounded.
  std::int64_t IntegerValue(ReadMode read) override;
  double RealValue(ReadMode read) override;
  /// By the value that the device holds, not by the numeric value of its entry.
  bool IsTrue() override { return RawValue({}) != 0; }
  /// Both choose the available entry whose numeric value is nearest.
  void WriteInteger(std::int64_t value, bool verify) override;
  void WriteReal(double value, bool verify) override;
  gcstring TextValue(ReadMode read) override;
  void WriteText(const gcstring& text, bool verify) override;
  bool WantsPolling() override { return waitsForClearing_; }

 protected:
  EAccessMode BaseAccess() override;

 private:
  EnumEntryNode& Entry(NodeId id) const;
  EnumEntryNode* FindEntry(std::int64_t value);
  EnumEntryNode* NearestEntry(double value);
  std::int64_t RawValue(ReadMode read);
  void WriteEntry(EnumEntryNode& entry, bool verify);

  std::vector<NodeId> entries_;
  const NodeId target_;
  std::int64_t constant_;
  std::int64_t value_ = 0;
  // A self-clearing entry was chosen: the device takes it back on its own, so nothing may be cached until it
  // did.
  bool waitsForClearing_ = false;
  std::int64_t clearingValue_ = 0;
};

}  // namespace zyn::genapi

#endif
