#include "formula/Evaluator.h"

#include <cmath>
#include <limits>
#include <type_traits>

#include "formula/Compiler.h"

namespace zyn::genapi::formula {
namespace {

constexpr double kTwo63 = 9223372036854775808.0;

std::uint64_t Bits(std::int64_t value) {
  return static_cast<std::uint64_t>(value);
}
std::int64_t Number(std::uint64_t bits) {
  return static_cast<std::int64_t>(bits);
}

// What a processor's conversion gives, but defined everywhere: the smallest integer stands for everything
// that does not fit.
std::int64_t Truncate(double value) {
  return value >= -kTwo63 && value < kTwo63 ? static_cast<std::int64_t>(value)
                                            : std::numeric_limits<std::int64_t>::min();
}

double RoundTo(double value, double decimals) {
  const double factor = std::pow(10.0, std::trunc(decimals));
  const double rounded = std::round(value * factor) / factor;
  return std::isfinite(rounded) ? rounded : value;
}

double Function(Op op, double x) {
  switch (op) {
    case Op::sgn:
      return x > 0 ? 1 : (x < 0 ? -1 : 0);
    case Op::atan:
      return std::atan(x);
    case Op::cos:
      return std::cos(x);
    case Op::sin:
      return std::sin(x);
    case Op::tan:
      return std::tan(x);
    case Op::abs:
      return std::fabs(x);
    case Op::exp:
      return std::exp(x);
    case Op::ln:
      return std::log(x);
    case Op::lg:
      return std::log10(x);
    case Op::sqrt:
      return std::sqrt(x);
    case Op::trunc:
      return std::trunc(x);
    case Op::floor:
      return std::floor(x);
    case Op::ceil:
      return std::ceil(x);
    case Op::asin:
      return std::asin(x);
    case Op::acos:
      return std::acos(x);
    case Op::round:
      return std::round(x);
    default:
      throw FormulaError("#Internal error!");
  }
}

template <class T>
struct Arithmetic;

template <>
struct Arithmetic<double> {
  static std::int64_t Whole(double value) {
    if (value >= kTwo63 && value < 2 * kTwo63) return Number(static_cast<std::uint64_t>(value));
    if (!(value >= -kTwo63 && value < kTwo63)) throw FormulaError("#Value too big for operation!");
    return static_cast<std::int64_t>(value);
  }

  static double Negate(double x) { return -x; }
  static double Complement(double x) { return static_cast<double>(~Whole(x)); }
  static double Call(Op op, double x) { return Function(op, x); }

  static double Binary(Op op, double a, double b) {
    switch (op) {
      case Op::add:
        return a + b;
      case Op::subtract:
        return a - b;
      case Op::multiply:
        return a * b;
      case Op::divide:
        if (b == 0) throw FormulaError("#Infinity somewhere!");
        return a / b;
      case Op::modulo:
        if (b == 0) throw FormulaError("#Infinity somewhere!");
        return std::fmod(a, b);
      case Op::power:
        return std::pow(a, b);
      case Op::shiftLeft:
        return static_cast<double>(Number(Bits(Whole(a)) << (Bits(Whole(b)) & 63U)));
      case Op::shiftRight:
        return static_cast<double>(Whole(a) >> (Bits(Whole(b)) & 63U));
      case Op::bitAnd:
        return static_cast<double>(Whole(a) & Whole(b));
      case Op::bitXor:
        return static_cast<double>(Whole(a) ^ Whole(b));
      case Op::bitOr:
        return static_cast<double>(Whole(a) | Whole(b));
      case Op::roundTo:
        return RoundTo(a, b);
      default:
        throw FormulaError("#Internal error!");
    }
  }
};

template <>
struct Arithmetic<std::int64_t> {
  static std::int64_t Negate(std::int64_t x) { return Number(0 - Bits(x)); }
  static std::int64_t Complement(std::int64_t x) { return ~x; }

  static std::int64_t Call(Op op, std::int64_t x) {
    switch (op) {
      case Op::sgn:
        return x > 0 ? 1 : (x < 0 ? -1 : 0);
      case Op::abs:
        return x < 0 ? Negate(x) : x;
      case Op::trunc:
      case Op::floor:
      case Op::ceil:
      case Op::round:
        return x;
      default:
        return Truncate(Function(op, static_cast<double>(x)));
    }
  }

  static std::int64_t Quotient(std::int64_t a, std::int64_t b) {
    if (b == 0) throw FormulaError("#Infinity somewhere!");
    return b == -1 ? Negate(a) : a / b;
  }
  static std::int64_t Remainder(std::int64_t a, std::int64_t b) {
    if (b == 0) throw FormulaError("#Infinity somewhere!");
    return b == -1 ? 0 : a % b;
  }

  static std::int64_t Binary(Op op, std::int64_t a, std::int64_t b) {
    switch (op) {
      case Op::add:
        return Number(Bits(a) + Bits(b));
      case Op::subtract:
        return Number(Bits(a) - Bits(b));
      case Op::multiply:
        return Number(Bits(a) * Bits(b));
      case Op::divide:
        return Quotient(a, b);
      case Op::modulo:
        return Remainder(a, b);
      case Op::power:
        return Truncate(std::pow(static_cast<double>(a), static_cast<double>(b)));
      case Op::shiftLeft:
        return Number(Bits(a) << (Bits(b) & 63U));
      case Op::shiftRight:
        return a >> (Bits(b) & 63U);
      case Op::bitAnd:
        return a & b;
      case Op::bitXor:
        return a ^ b;
      case Op::bitOr:
        return a | b;
      case Op::roundTo:
        return Truncate(RoundTo(static_cast<double>(a), static_cast<double>(b)));
      default:
        throw FormulaError("#Internal error!");
    }
  }
};

template <class T>
T Compare(Op op, T a, T b) {
  switch (op) {
    case Op::less:
      return a < b;
    case Op::lessEqual:
      return a <= b;
    case Op::greater:
      return a > b;
    case Op::greaterEqual:
      return a >= b;
    case Op::equal:
      return a == b;
    default:
      return a != b;
  }
}

bool IsComparison(Op op) {
  return op >= Op::less && op <= Op::notEqual;
}
bool IsFunction(Op op) {
  return op >= Op::sgn && op <= Op::round;
}

}  // namespace

// The compiler has followed the depth of the stack along every path: no value is used before it was put there.
// NOLINTBEGIN(clang-analyzer-core.*)
template <class T>
T Evaluate(const Program<T>& program, Environment<T>& environment) {
  T stack[kMaxStack + 1];
  T* top = stack;  // one above the topmost value
  const std::size_t size = program.code.size();
  for (std::size_t at = 0; at < size; ++at) {
    const Instruction step = program.code[at];
    switch (step.op) {
      case Op::constant:
        *top++ = program.constants[step.argument];
        continue;
      case Op::variable:
        *top++ = environment.Variable(step.argument);
        continue;
      case Op::expression:
        *top++ = environment.Expression(step.argument);
        continue;
      case Op::jump:
        at = step.argument - std::size_t{1};
        continue;
      case Op::jumpIfZero:
        if (*--top == T(0)) at = step.argument - std::size_t{1};
        continue;
      case Op::truth:
        top[-1] = top[-1] != T(0);
        continue;
      case Op::negate:
        top[-1] = Arithmetic<T>::Negate(top[-1]);
        continue;
      case Op::complement:
        top[-1] = Arithmetic<T>::Complement(top[-1]);
        continue;
      default:
        break;
    }
    if (IsFunction(step.op)) {
      top[-1] = Arithmetic<T>::Call(step.op, top[-1]);
      continue;
    }
    --top;
    top[-1] = IsComparison(step.op) ? Compare(step.op, top[-1], *top)
                                    : Arithmetic<T>::Binary(step.op, top[-1], *top);
  }
  return stack[0];
}
// NOLINTEND(clang-analyzer-core.*)

template double Evaluate<double>(const Program<double>&, Environment<double>&);
template std::int64_t Evaluate<std::int64_t>(const Program<std::int64_t>&, Environment<std::int64_t>&);

}  // namespace zyn::genapi::formula
