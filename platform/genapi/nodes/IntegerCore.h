/// What all integer nodes share.
#ifndef ZYN_GENAPI_NODES_INTEGERCORE_H
#define ZYN_GENAPI_NODES_INTEGERCORE_H

#include <optional>

#include "nodes/ValueNode.h"

namespace zyn::genapi {

/// Checks, caching and texts of integers; derived classes compute, write and limit.
class IntegerCore : public ValueNode<IInteger> {
 public:
  using ValueNode<IInteger>::ValueNode;

  void SetValue(int64_t Value, bool Verify) override;
  // The interface decides the type returned. NOLINTNEXTLINE(misc-unconventional-assign-operator)
  IInteger& operator=(int64_t Value) override;
  int64_t GetValue(bool Verify, bool IgnoreCache) override;
  int64_t operator()() override;
  int64_t operator*() override;
  int64_t GetMin() override;
  int64_t GetMax() override;
  EIncMode GetIncMode() override;
  int64_t GetInc() override;
  int64_autovector_t GetListOfValidValues(bool bounded) override;
  ERepresentation GetRepresentation() override;
  gcstring GetUnit() override;
  void ImposeMin(int64_t Value) override;
  void ImposeMax(int64_t Value) override;

  bool IsIntegerKind() const override { return true; }
  std::int64_t IntegerValue(ReadMode read) override;
  double RealValue(ReadMode read) override;
  void WriteInteger(std::int64_t value, bool verify) override;
  /// Rounds, then snaps to the grid of the increment.
  void WriteReal(double value, bool verify) override;
  std::int64_t IntegerMin() override;
  std::int64_t IntegerMax() override;
  std::int64_t IntegerInc() override;
  double RealMin() override { return static_cast<double>(IntegerMin()); }
  double RealMax() override { return static_cast<double>(IntegerMax()); }
  std::optional<double> RealInc() override { return static_cast<double>(IntegerInc()); }
  void Forget(bool device) override;
  void ForgetDerived() override;
  gcstring TextValue(ReadMode read) override;
  void WriteText(const gcstring& text, bool verify) override;

 protected:
  virtual std::int64_t Compute(ReadMode read) = 0;
  virtual void Put(std::int64_t value, bool verify) = 0;
  virtual std::int64_t OwnMin() { return INT64_MIN; }
  virtual std::int64_t OwnMax() { return INT64_MAX; }
  virtual std::int64_t OwnInc() { return 1; }
  /// Whether reading back gives what was written, if it passed the checks.
  virtual bool KeepsWrittenValue() { return true; }

 private:
  using Limit = std::int64_t (IntegerCore::*)();
  std::int64_t Remember(std::optional<std::int64_t>& limit, Limit compute);
  void CheckRange(std::int64_t value);

  std::int64_t value_ = 0;
  // Remembered where the description allows it; without what was imposed.
  std::optional<std::int64_t> min_, max_, inc_;
  std::optional<std::int64_t> imposedMin_;
  std::optional<std::int64_t> imposedMax_;
};

/// The integer nearest to a real number, halves away from zero; nothing beyond 64 bits.
std::optional<std::int64_t> RoundToInteger(double value);

}  // namespace zyn::genapi

#endif
