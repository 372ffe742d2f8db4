/// EnumEntry nodes.
#ifndef ZYN_GENAPI_NODES_ENUMENTRYNODE_H
#define ZYN_GENAPI_NODES_ENUMENTRYNODE_H

#include "nodes/ValueNode.h"

namespace zyn::genapi {

/// One choice of an enumeration. Its numbers and names are constants of the description.
class EnumEntryNode final : public ValueNode<IEnumEntry> {
 public:
  using ValueNode<IEnumEntry>::ValueNode;

  int64_t GetValue() override { return EntryValue(); }
  gcstring GetSymbolic() const override;
  double GetNumericValue() override { return NumericValue(); }
  bool IsSelfClearing() override { return Number(Element::isSelfClearing, No) == Yes; }

  std::int64_t EntryValue() const { return Number(Element::value, 0); }
  double NumericValue() const;
  std::string_view Symbolic() const;

  std::int64_t IntegerValue(ReadMode) override { return EntryValue(); }
  double RealValue(ReadMode) override { return NumericValue(); }
  gcstring TextValue(ReadMode read) override;

 protected:
  EAccessMode BaseAccess() override { return RO; }
  std::string_view DefaultDisplayName() const override { return Symbolic(); }
};

}  // namespace zyn::genapi

#endif
