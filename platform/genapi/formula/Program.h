/// A compiled formula.
#ifndef ZYN_GENAPI_FORMULA_PROGRAM_H
#define ZYN_GENAPI_FORMULA_PROGRAM_H

#include <cstdint>
#include <vector>

namespace zyn::genapi::formula {

/// What an instruction does on the stack of values.
enum class Op : std::uint8_t {
  constant,    ///< push constants[argument]
  variable,    ///< push the environment's variable `argument`
  expression,  ///< push the value of the environment's expression `argument`
  jump,        ///< continue at `argument`
  jumpIfZero,  ///< pop; continue at `argument` when it is zero
  truth,       ///< replace the top by 1 or 0
  add,
  subtract,
  multiply,
  divide,
  modulo,
  power,
  shiftLeft,
  shiftRight,
  bitAnd,
  bitXor,
  bitOr,
  less,
  lessEqual,
  greater,
  greaterEqual,
  equal,
  notEqual,
  negate,
  complement,
  // functions
  sgn,
  atan,
  cos,
  sin,
  tan,
  abs,
  exp,
  ln,
  lg,
  sqrt,
  trunc,
  floor,
  ceil,
  asin,
  acos,
  round,
  roundTo,  ///< pops the number of decimals first
};

struct Instruction {
  Op op;
  std::uint32_t argument;
};

/// Values needed at once; a formula that needs more is refused when it is compiled.
constexpr int kMaxStack = 128;

/// T is double or std::int64_t: descriptions have formulas of both kinds, with different arithmetic.
template <class T>
struct Program {
  std::vector<Instruction> code;
  std::vector<T> constants;
};

}  // namespace zyn::genapi::formula

#endif
