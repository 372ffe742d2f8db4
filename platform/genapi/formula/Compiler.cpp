#include "formula/Compiler.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>
#include <type_traits>

namespace zyn::genapi::formula {
namespace {

constexpr int kMaxNesting = 200;
// Formulas of 100,000 operators take less.
constexpr std::size_t kMaxInstructions = 1'000'000;

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsNameStart(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
bool IsNamePart(char c) {
  return IsNameStart(c) || IsDigit(c) || c == '.';
}

struct FunctionRow {
  std::string_view name;
  Op op;
};

constexpr std::array kFunctions = {
    FunctionRow{"SGN", Op::sgn},     FunctionRow{"NEG", Op::negate}, FunctionRow{"ATAN", Op::atan},
    FunctionRow{"COS", Op::cos},     FunctionRow{"SIN", Op::sin},    FunctionRow{"TAN", Op::tan},
    FunctionRow{"ABS", Op::abs},     FunctionRow{"EXP", Op::exp},    FunctionRow{"LN", Op::ln},
    FunctionRow{"LG", Op::lg},       FunctionRow{"SQRT", Op::sqrt},  FunctionRow{"TRUNC", Op::trunc},
    FunctionRow{"FLOOR", Op::floor}, FunctionRow{"CEIL", Op::ceil},  FunctionRow{"ASIN", Op::asin},
    FunctionRow{"ACOS", Op::acos},   FunctionRow{"ROUND", Op::round}};

std::string Upper(std::string_view name) {
  std::string upper(name);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return upper;
}

std::optional<Op> FindFunction(std::string_view name) {
  const std::string upper = Upper(name);
  for (const FunctionRow& row : kFunctions)
    if (row.name == upper) return row.op;
  return std::nullopt;
}

struct BinaryRow {
  std::string_view text;
  Op op;
};

// Longer spellings stand before their beginnings.
constexpr std::array kTight = {BinaryRow{"**", Op::power},      BinaryRow{"<<", Op::shiftLeft},
                               BinaryRow{">>", Op::shiftRight}, BinaryRow{"&", Op::bitAnd},
                               BinaryRow{"^", Op::bitXor},      BinaryRow{"|", Op::bitOr}};
constexpr std::array kProduct = {BinaryRow{"*", Op::multiply}, BinaryRow{"/", Op::divide},
                                 BinaryRow{"%", Op::modulo}};
constexpr std::array kSum = {BinaryRow{"+", Op::add}, BinaryRow{"-", Op::subtract}};
constexpr std::array kComparison = {BinaryRow{"<>", Op::notEqual},     BinaryRow{"<=", Op::lessEqual},
                                    BinaryRow{">=", Op::greaterEqual}, BinaryRow{"<", Op::less},
                                    BinaryRow{">", Op::greater},       BinaryRow{"=", Op::equal}};

// Recursive descent; each level leaves exactly one value on the stack.
template <class T>
class Parser {
 public:
  Parser(std::string_view text, const Names& names) : rest_(text), names_(names) {}

  Program<T> Run() {
    Ternary();
    SkipBlanks();
    if (!rest_.empty()) throw FormulaError(rest_[0] == ')' ? "#Brackets do not match!" : LeftoverMessage());
    program_.code.shrink_to_fit();
    program_.constants.shrink_to_fit();
    return std::move(program_);
  }

 private:
  class Nesting {
   public:
    explicit Nesting(int& depth) : depth_(depth) {
      if (++depth_ > kMaxNesting) throw FormulaError("#Internal error!");
    }
    ~Nesting() { --depth_; }

   private:
    int& depth_;
  };

  const char* LeftoverMessage() const {
    return IsDigit(rest_[0]) || IsNameStart(rest_[0]) || rest_[0] == '(' ? "#Invalid formula"
                                                                         : "#Syntax error!";
  }

  void SkipBlanks() {
    while (!rest_.empty() && IsBlank(rest_[0])) rest_.remove_prefix(1);
  }

  bool Peek(std::string_view text) {
    SkipBlanks();
    return rest_.substr(0, text.size()) == text;
  }

  bool Take(std::string_view text) {
    if (!Peek(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }

  std::size_t Emit(Op op, std::uint32_t argument = 0) {
    if (program_.code.size() == kMaxInstructions) throw FormulaError("#Internal error!");
    program_.code.push_back({op, argument});
    return program_.code.size() - 1;
  }
  void Push(Op op, std::uint32_t argument) {
    if (++height_ > kMaxStack) throw FormulaError("#Internal error!");
    Emit(op, argument);
  }
  void PushConstant(T value) {
    program_.constants.push_back(value);
    Push(Op::constant, static_cast<std::uint32_t>(program_.constants.size() - 1));
  }
  void EmitBinary(Op op) {
    --height_;
    Emit(op);
  }
  void JumpHere(std::size_t jump) {
    program_.code[jump].argument = static_cast<std::uint32_t>(program_.code.size());
  }

  // condition ? yes : no
  void Ternary() {
    const Nesting nesting(depth_);
    Comparison();
    if (!Take("?")) return;
    const std::size_t toElse = Emit(Op::jumpIfZero);
    --height_;
    Ternary();
    if (!Take(":")) throw FormulaError("#Logical expression error!");
    const std::size_t toEnd = Emit(Op::jump);
    --height_;
    JumpHere(toElse);
    Ternary();
    JumpHere(toEnd);
  }

  void Comparison() {
    Sum();
    while (true) {
      if (Take("&&")) {
        And();
      } else if (Take("||")) {
        Or();
      } else if (const auto op = TakeBinary(kComparison)) {
        Sum();
        EmitBinary(*op);
      } else {
        return;
      }
    }
  }

  void And() {
    const std::size_t toFalse = Emit(Op::jumpIfZero);
    --height_;
    Sum();
    Emit(Op::truth);
    const std::size_t toEnd = Emit(Op::jump);
    --height_;
    JumpHere(toFalse);
    PushConstant(T(0));
    JumpHere(toEnd);
  }

  void Or() {
    const std::size_t toRight = Emit(Op::jumpIfZero);
    --height_;
    PushConstant(T(1));
    const std::size_t toEnd = Emit(Op::jump);
    --height_;
    JumpHere(toRight);
    Sum();
    Emit(Op::truth);
    JumpHere(toEnd);
  }

  void Sum() {
    Product();
    while (const auto op = TakeBinary(kSum)) {
      Product();
      EmitBinary(*op);
    }
  }

  void Product() {
    Tight();
    while (!Peek("**")) {
      const auto op = TakeBinary(kProduct);
      if (!op) return;
      Tight();
      EmitBinary(*op);
    }
  }

  void Tight() {
    Unary();
    while (!Peek("&&") && !Peek("||")) {
      const auto op = TakeBinary(kTight);
      if (!op) return;
      Unary();
      EmitBinary(*op);
    }
  }

  template <std::size_t N>
  std::optional<Op> TakeBinary(const std::array<BinaryRow, N>& rows) {
    for (const BinaryRow& row : rows)
      if (Take(row.text)) return row.op;
    return std::nullopt;
  }

  void Unary() {
    const Nesting nesting(depth_);
    if (Take("~")) {
      Unary();
      Emit(Op::complement);
    } else if (Take("-")) {
      Negation();
    } else if (Take("+")) {
      Unary();
    } else {
      Primary();
    }
  }

  // Everything to the right belongs to the minus when a bracket or a call follows.
  void Negation() {
    if (Peek("(") || PeekFunction()) {
      Comparison();
    } else {
      Unary();
    }
    Emit(Op::negate);
  }

  std::string_view PeekName() {
    SkipBlanks();
    if (rest_.empty() || !IsNameStart(rest_[0])) return {};
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), IsNamePart);
    return rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
  }

  bool PeekFunction() {
    const std::string_view name = PeekName();
    return !name.empty() && !names_.Find(name) && FindFunction(name);
  }

  void Primary() {
    SkipBlanks();
    if (rest_.empty()) throw FormulaError("#Invalid formula");
    if (Take("(")) {
      Ternary();
      if (!Take(")")) throw FormulaError("#Brackets do not match!");
    } else if (IsDigit(rest_[0]) || rest_[0] == '.') {
      Number();
    } else if (IsNameStart(rest_[0])) {
      Name();
    } else {
      throw FormulaError(rest_[0] == ')' ? "#Invalid formula" : "#Syntax error!");
    }
  }

  void Number() {
    if (Peek("0x") || Peek("0X")) return HexNumber();
    double value = 0;
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
    const auto length = static_cast<std::size_t>(end - rest_.data());
    if (length == 0 || error == std::errc::invalid_argument) throw FormulaError("#Syntax error!");
    if (error != std::errc()) value = std::numeric_limits<double>::infinity();
    PushNumber(rest_.substr(0, length), value);
    rest_.remove_prefix(length);
    if (!rest_.empty() && IsNamePart(rest_[0])) throw FormulaError("#Syntax error!");
  }

  // Integers stay exact beyond 2^53, and saturate.
  void PushNumber(std::string_view text, double value) {
    if constexpr (std::is_integral_v<T>) {
      T whole = 0;
      const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), whole);
      if (error == std::errc() && end == text.data() + text.size()) return PushConstant(whole);
      const bool fits = value < 9223372036854775808.0;
      PushConstant(fits ? static_cast<T>(value) : std::numeric_limits<T>::max());
    } else {
      PushConstant(value);
    }
  }

  void HexNumber() {
    rest_.remove_prefix(2);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value, 16);
    if (error == std::errc::invalid_argument) throw FormulaError("#Syntax error!");
    if (error != std::errc()) throw FormulaError("#Value too big for operation!");
    rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
    if (!rest_.empty() && IsNamePart(rest_[0])) throw FormulaError("#Syntax error!");
    PushConstant(static_cast<T>(value));
  }

  void Name() {
    const std::string_view name = PeekName();
    if (TakeBuiltInConstant(name)) return;
    if (const auto symbol = names_.Find(name)) {
      rest_.remove_prefix(name.size());
      return Push(symbol->op, symbol->index);
    }
    const auto function = FindFunction(name);
    if (!function) throw FormulaError("# " + std::string(name) + " - Unknown function/variable!");
    rest_.remove_prefix(name.size());
    Call(*function);
  }

  // E and PI, also written as calls; they hide variables of that name, but only where reals are computed.
  bool TakeBuiltInConstant(std::string_view name) {
    if constexpr (std::is_integral_v<T>) {
      return false;
    } else {
      const std::string upper = Upper(name);
      if (upper != "E" && upper != "PI") return false;
      rest_.remove_prefix(name.size());
      PushConstant(upper == "E" ? std::numbers::e : std::numbers::pi);
      const std::string_view afterName = rest_;
      if (Take("(") && Take(")")) return true;
      rest_ = afterName;
      return true;
    }
  }

  void Call(Op function) {
    if (!Take("(")) {
      Comparison();
      Emit(function);
      return;
    }
    Ternary();
    if (function == Op::round && Take(",")) {
      Ternary();
      EmitBinary(Op::roundTo);
    } else {
      Emit(function);
    }
    if (!Take(")")) throw FormulaError("#Brackets do not match!");
  }

  std::string_view rest_;
  const Names& names_;
  Program<T> program_;
  int height_ = 0;
  int depth_ = 0;
};

}  // namespace

template <class T>
Program<T> Compile(std::string_view text, const Names& names) {
  return Parser<T>(text, names).Run();
}

template Program<double> Compile<double>(std::string_view, const Names&);
template Program<std::int64_t> Compile<std::int64_t>(std::string_view, const Names&);

}  // namespace zyn::genapi::formula
