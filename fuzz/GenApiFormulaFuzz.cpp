// Formula text: compiles and runs it in both arithmetics.
//
// Beyond not crashing, a formula in brackets must give what it gives without them.
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "formula/Compiler.h"
#include "formula/Evaluator.h"

namespace {

using namespace zyn::genapi::formula;

class FuzzNames final : public Names {
 public:
  std::optional<Symbol> Find(std::string_view name) const override {
    constexpr std::array kVariables = {"A", "B", "X.Max", "TO", "FROM"};
    for (std::uint32_t i = 0; i < kVariables.size(); ++i)
      if (name == kVariables[i]) return Symbol{Op::variable, i};
    if (name == "E1") return Symbol{Op::expression, 0};
    return std::nullopt;
  }
};

template <class T>
class FuzzEnvironment final : public Environment<T> {
 public:
  T Variable(std::uint32_t index) override {
    constexpr std::array kValues = {T(3), T(-2), T(0), T(0x7fffffff), T(9)};
    return kValues.at(index);
  }
  T Expression(std::uint32_t) override { return T(7); }
};

template <class T>
struct Outcome {
  std::string error;
  T value{};
};

template <class T>
Outcome<T> Run(std::string_view text) {
  try {
    const Program<T> program = Compile<T>(text, FuzzNames());
    FuzzEnvironment<T> environment;
    return {{}, Evaluate(program, static_cast<Environment<T>&>(environment))};
  } catch (const FormulaError& error) {
    return {error.what(), {}};
  }
}

bool Same(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || a == b;
}
bool Same(std::int64_t a, std::int64_t b) {
  return a == b;
}

template <class T>
void Check(std::string_view text) {
  const Outcome<T> plain = Run<T>(text);
  if (!plain.error.empty()) return;
  const Outcome<T> bracketed = Run<T>("(" + std::string(text) + ")");
  if (bracketed.error == "#Internal error!") return;  // one level too deep
  if (!bracketed.error.empty() || !Same(plain.value, bracketed.value)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Check<double>(text);
  Check<std::int64_t>(text);
  return 0;
}
