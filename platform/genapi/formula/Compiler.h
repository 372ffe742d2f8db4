/// Compiles formula text.
#ifndef ZYN_GENAPI_FORMULA_COMPILER_H
#define ZYN_GENAPI_FORMULA_COMPILER_H

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "formula/Program.h"

namespace zyn::genapi::formula {

/// A formula that is malformed, or cannot be evaluated; what() is one of the texts that GenICam users know,
/// as
/// "#Syntax error!".
class FormulaError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Where a name leads.
struct Symbol {
  Op op;  ///< variable or expression
  std::uint32_t index;
};

/// Knows the names that a formula may use.
class Names {
 public:
  virtual std::optional<Symbol> Find(std::string_view name) const = 0;

 protected:
  ~Names() = default;
};

/// Operators, tightest first: calls, and signs directly before a number or a name; ** << >> & ^ |; * / %; +
/// -; comparisons, && and ||; ?: . Those of one level group to the left. This is not C's precedence, and
/// descriptions rely on it. A minus before a bracket or a call, and a function without brackets, take
/// everything to their right. Only the branch that is needed gets evaluated. Throws FormulaError.
template <class T>
Program<T> Compile(std::string_view text, const Names& names);

extern template Program<double> Compile<double>(std::string_view, const Names&);
extern template Program<std::int64_t> Compile<std::int64_t>(std::string_view, const Names&);

}  // namespace zyn::genapi::formula

#endif
