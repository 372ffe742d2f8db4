/// StringReg nodes.
#ifndef ZYN_GENAPI_NODES_STRINGREGNODE_H
#define ZYN_GENAPI_NODES_STRINGREGNODE_H

#include "nodes/RegisterNode.h"
#include "nodes/StringCore.h"

namespace zyn::genapi {

/// A text in a register: it ends at the first NUL or with the register; what is left over is filled with
/// NULs.
class StringRegNode final : public WithRegister<StringCore> {
 public:
  using WithRegister<StringCore>::WithRegister;

  std::int64_t TextMaxLength() override;

 protected:
  gcstring Compute(ReadMode read) override;
  void Put(const gcstring& text, bool verify) override;
};

}  // namespace zyn::genapi

#endif
