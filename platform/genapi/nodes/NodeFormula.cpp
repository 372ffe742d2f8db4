#include "nodes/NodeFormula.h"

#include <string>
#include <type_traits>
#include <utility>

#include "nodes/IntegerCore.h"

namespace zyn::genapi {
namespace {

// Instructions that cost about as much as asking a node.
constexpr std::size_t kInstructionsPerNode = 64;

template <class T>
std::size_t WorkOf(const formula::Program<T>& program) {
  return 1 + program.code.size() / kInstructionsPerNode;
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() > end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

// One run: what was worked out already, and a guard against expressions that use themselves.
template <class T>
class NodeFormula<T>::Evaluation final : public formula::Environment<T> {
 public:
  Evaluation(NodeFormula& formula, T input, ReadMode read)
      : formula_(formula),
        input_(input),
        read_(read),
        variables_(formula.variables_.size()),
        expressions_(formula.expressions_.size()) {}

  T Variable(std::uint32_t index) override {
    Slot& slot = variables_[index];
    if (slot.state != State::known)
      slot = {State::known, formula_.Read(formula_.variables_[index], input_, read_)};
    return slot.value;
  }

  T Expression(std::uint32_t index) override {
    Slot& slot = expressions_[index];
    if (slot.state == State::known) return slot.value;
    if (slot.state == State::open) throw formula::FormulaError("#Internal error!");
    const formula::Program<T>& program = formula_.ExpressionProgram(index);
    const DepthGuard depth(formula_.owner_, WorkOf(program));
    slot.state = State::open;
    const T value = formula::Evaluate(program, static_cast<formula::Environment<T>&>(*this));
    slot = {State::known, value};
    return value;
  }

 private:
  enum class State : std::uint8_t { unknown, open, known };
  struct Slot {
    State state = State::unknown;
    T value{};
  };

  NodeFormula& formula_;
  const T input_;
  const ReadMode read_;
  std::vector<Slot> variables_;
  std::vector<Slot> expressions_;
};

template <class T>
void NodeFormula<T>::Fail(const char* message) const {
  owner_.Throw<GENICAM_NAMESPACE::LogicalErrorException>(
      "LogicalErrorException", "%s : Failed to evaluate formula '%s' : error message is '%s'",
      std::string(owner_.Name()).c_str(), std::string(owner_.Text(element_)).c_str(), message);
}

template <class T>
T NodeFormula<T>::Evaluate(T input, ReadMode read) {
  Compile();
  const DepthGuard depth(owner_, WorkOf(*program_));
  try {
    Evaluation evaluation(*this, input, read);
    return formula::Evaluate(*program_, static_cast<formula::Environment<T>&>(evaluation));
  } catch (const formula::FormulaError& error) {
    Fail(error.what());
  }
}

template <class T>
void NodeFormula<T>::Compile() {
  if (program_) return;
  CollectNames();
  try {
    for (std::size_t i = 0; i < expressions_.size(); ++i) ExpressionProgram(i);
    formula::Program<T> program = formula::Compile<T>(owner_.Text(element_), *this);
    owner_.Map().CountInstructions(program.code.size());
    program_ = std::move(program);
    variablesByName_ = {};
    expressionsByName_ = {};
    entriesByName_ = {};
  } catch (const formula::FormulaError& error) {
    Fail(error.what());
  }
}

template <class T>
void NodeFormula<T>::CollectNames() {
  variables_.clear();
  expressions_.clear();
  variablesByName_.clear();
  expressionsByName_.clear();
  if (!inputName_.empty()) variables_.push_back({inputName_, What::input, kNoNode, kNoNode, T{}});
  for (const Property& property : owner_.Properties()) {
    const std::string_view name = owner_.Map().Facts().Text(property.attribute);
    if (property.element == Element::pVariable) variables_.push_back(MakeVariable(property));
    if (property.element == Element::constant) {
      const T value =
          std::is_integral_v<T> ? static_cast<T>(property.number) : static_cast<T>(property.Real());
      variables_.push_back({name, What::constant, kNoNode, kNoNode, value});
    }
    if (property.element == Element::expression)
      expressions_.push_back({name, owner_.Map().Facts().Text(property.text), std::nullopt});
  }
  for (std::uint32_t i = 0; i < variables_.size(); ++i) variablesByName_.emplace(variables_[i].name, i);
  for (std::uint32_t i = 0; i < expressions_.size(); ++i) expressionsByName_.emplace(expressions_[i].name, i);
}

template <class T>
typename NodeFormula<T>::Variable NodeFormula<T>::MakeVariable(const Property& property) {
  const std::string_view name = owner_.Map().Facts().Text(property.attribute);
  Variable variable{name, What::value, property.Target(), kNoNode, T{}};
  if (EndsWith(name, ".Min")) variable.what = What::min;
  if (EndsWith(name, ".Max")) variable.what = What::max;
  if (EndsWith(name, ".Inc")) variable.what = What::inc;
  if (EndsWith(name, ".AccessMode")) variable.what = What::accessMode;
  if (EndsWith(name, ".Visibility")) variable.what = What::visibility;
  if (EndsWith(name, ".CachingMode")) variable.what = What::cachingMode;
  constexpr std::string_view kEntry = ".Entry.";
  const std::size_t entry = name.find(kEntry);
  if (entry == std::string_view::npos) return variable;
  variable.what = What::entry;
  variable.entry = FindEntry(property.Target(), name.substr(entry + kEntry.size()));
  return variable;
}

template <class T>
NodeId NodeFormula<T>::FindEntry(NodeId enumeration, std::string_view symbolic) {
  const Description& facts = owner_.Map().Facts();
  const auto [entries, isNew] = entriesByName_.try_emplace(enumeration);
  if (isNew) {
    for (const Property& property : facts.Properties(enumeration)) {
      if (property.element != Element::enumEntry) continue;
      const Property* const own = facts.Find(property.Target(), Element::symbolic);
      entries->second.emplace(facts.Text(own ? own->text : property.attribute), property.Target());
    }
  }
  const auto found = entries->second.find(symbolic);
  if (found != entries->second.end()) return found->second;
  owner_.Throw<GENICAM_NAMESPACE::LogicalErrorException>(
      "LogicalErrorException", "Enumeration %s has no entry '%s'", facts.Label(enumeration).c_str(),
      std::string(symbolic).c_str());
}

template <class T>
std::optional<formula::Symbol> NodeFormula<T>::Find(std::string_view name) const {
  constexpr std::string_view kValue = ".Value";
  if (const auto found = variablesByName_.find(name); found != variablesByName_.end())
    return formula::Symbol{formula::Op::variable, found->second};
  if (EndsWith(name, kValue)) {
    const auto found = variablesByName_.find(name.substr(0, name.size() - kValue.size()));
    if (found != variablesByName_.end() && variables_[found->second].what == What::value)
      return formula::Symbol{formula::Op::variable, found->second};
  }
  if (const auto found = expressionsByName_.find(name); found != expressionsByName_.end())
    return formula::Symbol{formula::Op::expression, found->second};
  return std::nullopt;
}

template <class T>
const formula::Program<T>& NodeFormula<T>::ExpressionProgram(std::size_t index) {
  Expression& expression = expressions_[index];
  if (expression.program) return *expression.program;
  formula::Program<T> program = formula::Compile<T>(expression.text, *this);
  owner_.Map().CountInstructions(program.code.size());
  return expression.program.emplace(std::move(program));
}

template <class T>
T NodeFormula<T>::Read(const Variable& variable, T input, ReadMode read) const {
  constexpr bool isInteger = std::is_integral_v<T>;
  const auto number = [](auto value) { return static_cast<T>(value); };
  switch (variable.what) {
    case What::input:
      return input;
    case What::constant:
      return variable.constant;
    case What::value: {
      Node& node = owner_.At(variable.node);
      const ReadMode downwards{false, read.ignoreCache};
      return isInteger ? number(node.IntegerValue(downwards)) : number(node.RealValue(downwards));
    }
    case What::min:
      return isInteger ? number(owner_.At(variable.node).IntegerMin())
                       : number(owner_.At(variable.node).RealMin());
    case What::max:
      return isInteger ? number(owner_.At(variable.node).IntegerMax())
                       : number(owner_.At(variable.node).RealMax());
    case What::inc:
      return isInteger ? number(owner_.At(variable.node).IntegerInc())
                       : number(owner_.At(variable.node).RealInc().value_or(1));
    case What::accessMode:
      return number(owner_.At(variable.node).Access());
    case What::visibility:
      return number(owner_.At(variable.node).GetVisibility());
    case What::cachingMode:
      return number(owner_.At(variable.node).CachingMode());
    case What::entry:
      return number(owner_.At(variable.entry).Number(Element::value, 0));
  }
  return T{};
}

template class NodeFormula<double>;
template class NodeFormula<std::int64_t>;

}  // namespace zyn::genapi
