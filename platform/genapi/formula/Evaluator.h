/// Runs a compiled formula.
#ifndef ZYN_GENAPI_FORMULA_EVALUATOR_H
#define ZYN_GENAPI_FORMULA_EVALUATOR_H

#include <cstdint>

#include "formula/Program.h"

namespace zyn::genapi::formula {

/// Gives a formula its ingredients when they are needed; may throw anything.
template <class T>
class Environment {
 public:
  virtual T Variable(std::uint32_t index) = 0;
  virtual T Expression(std::uint32_t index) = 0;

 protected:
  ~Environment() = default;
};

/// Reals: division and modulo by zero throw FormulaError, other domain errors give NaN or infinity; bit
/// operations cut off the fraction. Integers: 64 bits that wrap, division towards zero, shift counts modulo
/// 64, powers through reals. Allocates nothing.
template <class T>
T Evaluate(const Program<T>& program, Environment<T>& environment);

extern template double Evaluate<double>(const Program<double>&, Environment<double>&);
extern template std::int64_t Evaluate<std::int64_t>(const Program<std::int64_t>&, Environment<std::int64_t>&);

}  // namespace zyn::genapi::formula

#endif
