/// A formula with the nodes it reads.
#ifndef ZYN_GENAPI_NODES_NODEFORMULA_H
#define ZYN_GENAPI_NODES_NODEFORMULA_H

#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "formula/Compiler.h"
#include "formula/Evaluator.h"
#include "nodes/Node.h"

namespace zyn::genapi {

/// One formula element of a node, compiled on first use. T is double or std::int64_t. Part of its node;
/// called with the lock held.
///
/// Variables are named in the pVariable elements, where a suffix says what of the node is meant: nothing or
/// .Value the value, .Min .Max .Inc the limits, .AccessMode .Visibility .CachingMode those numbers, .Entry.X
/// the value of an entry. Each variable and expression is worked out at most once per evaluation, and only if
/// needed; expressions may use each other in any order, but not themselves.
template <class T>
class NodeFormula final : private formula::Names {
 public:
  /// `inputName` is the name of the value put in ("TO" or "FROM"), or empty.
  NodeFormula(Node& owner, Element element, std::string_view inputName)
      : owner_(owner), element_(element), inputName_(inputName) {}

  T Evaluate(T input, ReadMode read);
  void Compile();

 private:
  class Evaluation;

  enum class What : std::uint8_t {
    input,
    value,
    min,
    max,
    inc,
    accessMode,
    visibility,
    cachingMode,
    entry,
    constant
  };
  struct Variable {
    std::string_view name;
    What what;
    NodeId node;
    NodeId entry;
    T constant;
  };
  struct Expression {
    std::string_view name;
    std::string_view text;
    std::optional<formula::Program<T>> program;
  };

  std::optional<formula::Symbol> Find(std::string_view name) const override;
  void CollectNames();
  Variable MakeVariable(const Property& property);
  NodeId FindEntry(NodeId enumeration, std::string_view symbolic);
  const formula::Program<T>& ExpressionProgram(std::size_t index);
  T Read(const Variable& variable, T input, ReadMode read) const;
  [[noreturn]] void Fail(const char* message) const;

  Node& owner_;
  const Element element_;
  const std::string_view inputName_;
  std::vector<Variable> variables_;
  std::vector<Expression> expressions_;
  // Only while compiling. Of several with one name the first holds.
  using Index = std::unordered_map<std::string_view, std::uint32_t>;
  Index variablesByName_;
  Index expressionsByName_;
  std::unordered_map<NodeId, Index> entriesByName_;
  std::optional<formula::Program<T>> program_;
};

extern template class NodeFormula<double>;
extern template class NodeFormula<std::int64_t>;

}  // namespace zyn::genapi

#endif
