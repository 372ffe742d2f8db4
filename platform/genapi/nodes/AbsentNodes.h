/// Nodes that are never implemented.
#ifndef ZYN_GENAPI_NODES_ABSENTNODES_H
#define ZYN_GENAPI_NODES_ABSENTNODES_H

#include "nodes/IntegerCore.h"
#include "nodes/StringCore.h"

namespace zyn::genapi {

// The kinds that describe configuration memories of older buses, and kinds that no schema has. The camera
// loads, and whatever builds on such a node is not implemented either; nothing is guessed.

class AbsentNode final : public ValueNode<IValue> {
 public:
  using ValueNode<IValue>::ValueNode;

  gcstring TextValue(ReadMode) override {
    RequireReadable();
    return {};
  }

 protected:
  EAccessMode BaseAccess() override { return NI; }
};

class AbsentInteger final : public IntegerCore {
 public:
  using IntegerCore::IntegerCore;

 protected:
  EAccessMode BaseAccess() override { return NI; }
  std::int64_t Compute(ReadMode) override { return 0; }
  void Put(std::int64_t, bool) override {}
};

class AbsentString final : public StringCore {
 public:
  using StringCore::StringCore;

 protected:
  EAccessMode BaseAccess() override { return NI; }
  gcstring Compute(ReadMode) override { return {}; }
  void Put(const gcstring&, bool) override {}
};

}  // namespace zyn::genapi

#endif
