/// Integer nodes.
#ifndef ZYN_GENAPI_NODES_INTEGERNODE_H
#define ZYN_GENAPI_NODES_INTEGERNODE_H

#include "nodes/IndexedSource.h"
#include "nodes/IntegerCore.h"

namespace zyn::genapi {

/// An integer kept here or in other nodes, with limits of its own or theirs.
class IntegerNode final : public IntegerCore {
 public:
  IntegerNode(NodeMap& map, NodeId id);

  ERepresentation RepresentationOf() override;
  std::string_view UnitOf() override;

 protected:
  EAccessMode BaseAccess() override { return source_.BaseAccess(); }
  std::int64_t Compute(ReadMode read) override;
  void Put(std::int64_t value, bool verify) override;
  std::int64_t OwnMin() override;
  std::int64_t OwnMax() override;
  std::int64_t OwnInc() override;
  bool KeepsWrittenValue() override;

 private:
  void PutCopies(std::int64_t value, bool verify, bool beforeValue);

  IndexedSource<std::int64_t> source_;
  const Source<std::int64_t> min_, max_, inc_;
};

}  // namespace zyn::genapi

#endif
