#include "nodes/IntegerCore.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "description/NumberText.h"
#include "nodes/ValueText.h"

namespace zyn::genapi {

std::optional<std::int64_t> RoundToInteger(double value) {
  constexpr double kTwo63 = 9223372036854775808.0;
  const double rounded = std::round(value);
  if (!(rounded >= -kTwo63 && rounded < kTwo63)) return std::nullopt;
  return static_cast<std::int64_t>(rounded);
}

void IntegerCore::SetValue(int64_t Value, bool Verify) {
  WriteCall call(*this, "SetValue");
  WriteInteger(Value, Verify);
  call.Commit(Verify);
}

IInteger& IntegerCore::operator=(int64_t Value) {
  SetValue(Value, true);
  return *this;
}

int64_t IntegerCore::GetValue(bool Verify, bool IgnoreCache) {
  const Call call(*this, "GetValue");
  const std::int64_t value = IntegerValue({Verify, IgnoreCache});
  if (Verify) CheckError();
  return value;
}

int64_t IntegerCore::operator()() {
  return GetValue(false, false);
}
int64_t IntegerCore::operator*() {
  return GetValue(false, false);
}

std::int64_t IntegerCore::IntegerValue(ReadMode read) {
  RequireReadable();
  if (valueValid_ && !read.ignoreCache) {
    if (read.verify) CheckRange(value_);
    return value_;
  }
  const DepthGuard depth(*this);
  valueValid_ = false;
  const std::int64_t value = Compute(read);
  if (read.verify) CheckRange(value);
  value_ = value;
  valueValid_ = !read.ignoreCache && CachingMode() != NoCache;
  return value;
}

double IntegerCore::RealValue(ReadMode read) {
  return static_cast<double>(IntegerValue(read));
}

void IntegerCore::WriteInteger(std::int64_t value, bool verify) {
  const DepthGuard depth(*this);
  valueValid_ = false;
  RequireWritable();
  if (verify) CheckRange(value);
  WriteCall::MarkWritten(*this);
  Put(value, verify);
  value_ = value;
  valueValid_ = verify && CachingMode() == WriteThrough && KeepsWrittenValue();
}

void IntegerCore::WriteReal(double value, bool verify) {
  const auto rounded = RoundToInteger(value);
  if (!rounded) ZYN_THROW(OutOfRangeException, "Value %f does not fit into 64 bits.", value);
  const std::int64_t inc = IntegerInc();
  if (inc <= 1) return WriteInteger(*rounded, verify);
  const auto distance = static_cast<std::uint64_t>(*rounded) - static_cast<std::uint64_t>(IntegerMin());
  if (*rounded < IntegerMin()) return WriteInteger(*rounded, verify);
  const std::uint64_t rest = distance % static_cast<std::uint64_t>(inc);
  std::uint64_t snapped = static_cast<std::uint64_t>(*rounded) - rest;
  if (2 * rest > static_cast<std::uint64_t>(inc)) snapped += static_cast<std::uint64_t>(inc);
  WriteInteger(static_cast<std::int64_t>(snapped), verify);
}

void IntegerCore::CheckRange(std::int64_t value) {
  const std::int64_t min = IntegerMin();
  if (value < min)
    ZYN_THROW(OutOfRangeException, "Value = %lld must be equal or greater than Min = %lld.",
              static_cast<long long>(value), static_cast<long long>(min));
  const std::int64_t max = IntegerMax();
  if (value > max)
    ZYN_THROW(OutOfRangeException, "Value = %lld must be equal or smaller than Max = %lld.",
              static_cast<long long>(value), static_cast<long long>(max));
  const std::int64_t inc = IntegerInc();
  if (inc <= 0) ZYN_THROW(LogicalErrorException, "Increment must be larger than 0.");
  const std::uint64_t distance = static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(min);
  if (distance % static_cast<std::uint64_t>(inc) != 0)
    ZYN_THROW(
        OutOfRangeException,
        "The difference between Value = %lld and Min = %lld must be dividable without rest by Inc = %lld.",
        static_cast<long long>(value), static_cast<long long>(min), static_cast<long long>(inc));
}

std::int64_t IntegerCore::Remember(std::optional<std::int64_t>& limit, Limit compute) {
  if (limit) return *limit;
  const DepthGuard depth(*this);
  const std::int64_t value = (this->*compute)();
  if (AreLimitsCacheable()) limit = value;
  return value;
}

std::int64_t IntegerCore::IntegerMin() {
  const std::int64_t own = Remember(min_, &IntegerCore::OwnMin);
  return imposedMin_ ? std::max(own, *imposedMin_) : own;
}

std::int64_t IntegerCore::IntegerMax() {
  const std::int64_t own = Remember(max_, &IntegerCore::OwnMax);
  return imposedMax_ ? std::min(own, *imposedMax_) : own;
}

std::int64_t IntegerCore::IntegerInc() {
  return Remember(inc_, &IntegerCore::OwnInc);
}

void IntegerCore::Forget(bool device) {
  ValueNode<IInteger>::Forget(device);
  min_ = max_ = inc_ = std::nullopt;
}

void IntegerCore::ForgetDerived() {
  ValueNode<IInteger>::ForgetDerived();
  min_ = max_ = inc_ = std::nullopt;
}

int64_t IntegerCore::GetMin() {
  const Call call(*this, "GetMin");
  RequireAvailable();
  return IntegerMin();
}

int64_t IntegerCore::GetMax() {
  const Call call(*this, "GetMax");
  RequireAvailable();
  return IntegerMax();
}

int64_t IntegerCore::GetInc() {
  const Call call(*this, "GetInc");
  RequireAvailable();
  return IntegerInc();
}

EIncMode IntegerCore::GetIncMode() {
  const Call call(*this, "GetIncMode");
  return Find(Element::validValueSet) ? listIncrement : fixedIncrement;
}

int64_autovector_t IntegerCore::GetListOfValidValues(bool bounded) {
  const Call call(*this, "GetListOfValidValues");
  std::vector<std::int64_t> values = ParseIntegerList(Text(Element::validValueSet)).value();
  if (bounded && !values.empty()) {
    const std::int64_t min = IntegerMin();
    const std::int64_t max = IntegerMax();
    std::erase_if(values, [min, max](std::int64_t value) { return value < min || value > max; });
  }
  int64_autovector_t list(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) list[i] = values[i];
  return list;
}

ERepresentation IntegerCore::GetRepresentation() {
  const Call call(*this, "GetRepresentation");
  return RepresentationOf();
}

gcstring IntegerCore::GetUnit() {
  const Call call(*this, "GetUnit");
  const std::string_view unit = UnitOf();
  return {unit.data(), unit.size()};
}

void IntegerCore::ImposeMin(int64_t Value) {
  WriteCall call(*this, "ImposeMin");
  imposedMin_ = Value;
  WriteCall::MarkWritten(*this);
  call.Commit(false);
}

void IntegerCore::ImposeMax(int64_t Value) {
  WriteCall call(*this, "ImposeMax");
  imposedMax_ = Value;
  WriteCall::MarkWritten(*this);
  call.Commit(false);
}

gcstring IntegerCore::TextValue(ReadMode read) {
  const std::string text = FormatInteger(IntegerValue(read), RepresentationOf());
  return {text.data(), text.size()};
}

void IntegerCore::WriteText(const gcstring& text, bool verify) {
  RequireWritable();
  const auto value = ParseIntegerText({text.c_str(), text.size()}, RepresentationOf());
  if (!value) ZYN_THROW(InvalidArgumentException, "'%s' is not an integer of this node.", text.c_str());
  WriteInteger(*value, verify);
}

}  // namespace zyn::genapi
