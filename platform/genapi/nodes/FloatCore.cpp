#include "nodes/FloatCore.h"

#include <algorithm>
#include <limits>

#include "nodes/IntegerCore.h"
#include "nodes/ValueText.h"

namespace zyn::genapi {

void FloatCore::SetValue(double Value, bool Verify) {
  WriteCall call(*this, "SetValue");
  WriteReal(Value, Verify);
  call.Commit(Verify);
}

IFloat& FloatCore::operator=(double Value) {
  SetValue(Value, true);
  return *this;
}

double FloatCore::GetValue(bool Verify, bool IgnoreCache) {
  const Call call(*this, "GetValue");
  const double value = RealValue({Verify, IgnoreCache});
  if (Verify) CheckError();
  return value;
}

double FloatCore::operator()() {
  return GetValue(false, false);
}
double FloatCore::operator*() {
  return GetValue(false, false);
}

double FloatCore::RealValue(ReadMode read) {
  RequireReadable();
  if (valueValid_ && !read.ignoreCache) {
    if (read.verify) CheckRange(value_);
    return value_;
  }
  const DepthGuard depth(*this);
  valueValid_ = false;
  const double value = Compute(read);
  if (read.verify) CheckRange(value);
  value_ = value;
  valueValid_ = !read.ignoreCache && CachingMode() != NoCache;
  return value;
}

std::int64_t FloatCore::IntegerValue(ReadMode read) {
  const double value = RealValue(read);
  const auto rounded = RoundToInteger(value);
  if (!rounded) ZYN_THROW(RuntimeException, "Value %f does not fit into 64 bits.", value);
  return *rounded;
}

void FloatCore::WriteReal(double value, bool verify) {
  const DepthGuard depth(*this);
  valueValid_ = false;
  RequireWritable();
  if (verify) CheckRange(value);
  WriteCall::MarkWritten(*this);
  Put(value, verify);
}

void FloatCore::WriteInteger(std::int64_t value, bool verify) {
  WriteReal(static_cast<double>(value), verify);
}

void FloatCore::CheckRange(double value) {
  const double min = RealMin();
  if (!(value >= min))
    ZYN_THROW(OutOfRangeException, "Value %f must be greater than or equal %f.", value, min);
  const double max = RealMax();
  if (!(value <= max))
    ZYN_THROW(OutOfRangeException, "Value %f must be smaller than or equal %f.", value, max);
}

double FloatCore::OwnMin() {
  return -std::numeric_limits<double>::max();
}
double FloatCore::OwnMax() {
  return std::numeric_limits<double>::max();
}

template <class T>
T FloatCore::Remember(std::optional<T>& limit, T (FloatCore::*compute)()) {
  if (limit) return *limit;
  const DepthGuard depth(*this);
  const T value = (this->*compute)();
  if (AreLimitsCacheable()) limit = value;
  return value;
}

double FloatCore::RealMin() {
  const double own = Remember(min_, &FloatCore::OwnMin);
  return imposedMin_ ? std::max(own, *imposedMin_) : own;
}

double FloatCore::RealMax() {
  const double own = Remember(max_, &FloatCore::OwnMax);
  return imposedMax_ ? std::min(own, *imposedMax_) : own;
}

std::optional<double> FloatCore::RealInc() {
  return Remember(inc_, &FloatCore::OwnInc);
}

void FloatCore::Forget(bool device) {
  ValueNode<IFloat>::Forget(device);
  ForgetDerived();
}

void FloatCore::ForgetDerived() {
  ValueNode<IFloat>::ForgetDerived();
  min_ = max_ = std::nullopt;
  inc_ = std::nullopt;
}

std::int64_t FloatCore::IntegerMin() {
  return RoundToInteger(RealMin()).value_or(INT64_MIN);
}
std::int64_t FloatCore::IntegerMax() {
  return RoundToInteger(RealMax()).value_or(INT64_MAX);
}

double FloatCore::GetMin() {
  const Call call(*this, "GetMin");
  RequireAvailable();
  return RealMin();
}

double FloatCore::GetMax() {
  const Call call(*this, "GetMax");
  RequireAvailable();
  return RealMax();
}

bool FloatCore::HasInc() {
  const Call call(*this, "HasInc");
  return RealInc().has_value();
}

EIncMode FloatCore::GetIncMode() {
  const Call call(*this, "GetIncMode");
  return RealInc() ? fixedIncrement : noIncrement;
}

double FloatCore::GetInc() {
  const Call call(*this, "GetInc");
  RequireAvailable();
  const auto inc = RealInc();
  if (!inc) ZYN_THROW(RuntimeException, "node does not have an increment.");
  return *inc;
}

double_autovector_t FloatCore::GetListOfValidValues(bool) {
  return double_autovector_t();
}

ERepresentation FloatCore::GetRepresentation() {
  const Call call(*this, "GetRepresentation");
  return RepresentationOf();
}

gcstring FloatCore::GetUnit() const {
  const Call call(*this, "GetUnit");
  const std::string_view unit = const_cast<FloatCore*>(this)->UnitOf();
  return {unit.data(), unit.size()};
}

EDisplayNotation FloatCore::GetDisplayNotation() const {
  const Call call(*this, "GetDisplayNotation");
  return const_cast<FloatCore*>(this)->NotationOf();
}

int64_t FloatCore::GetDisplayPrecision() const {
  const Call call(*this, "GetDisplayPrecision");
  return const_cast<FloatCore*>(this)->PrecisionOf();
}

void FloatCore::ImposeMin(double Value) {
  WriteCall call(*this, "ImposeMin");
  imposedMin_ = Value;
  WriteCall::MarkWritten(*this);
  call.Commit(false);
}

void FloatCore::ImposeMax(double Value) {
  WriteCall call(*this, "ImposeMax");
  imposedMax_ = Value;
  WriteCall::MarkWritten(*this);
  call.Commit(false);
}

ECachingMode FloatCore::ComputeCachingMode() {
  return Combine(Node::ComputeCachingMode(), WriteAround);
}

gcstring FloatCore::TextValue(ReadMode read) {
  const double value = RealValue(read);
  const std::string text = FormatReal(value, NotationOf(), PrecisionOf(), RealMin(), RealMax());
  return {text.data(), text.size()};
}

void FloatCore::WriteText(const gcstring& text, bool verify) {
  RequireWritable();
  const auto value = ParseRealText({text.c_str(), text.size()});
  if (!value) ZYN_THROW(InvalidArgumentException, "'%s' is not a number.", text.c_str());
  WriteReal(*value, verify);
}

}  // namespace zyn::genapi
