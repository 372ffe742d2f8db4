/// What all floating-point nodes share.
#ifndef ZYN_GENAPI_NODES_FLOATCORE_H
#define ZYN_GENAPI_NODES_FLOATCORE_H

#include <optional>

#include "nodes/ValueNode.h"

namespace zyn::genapi {

/// Checks, caching and texts of real numbers; derived classes compute, write and limit.
class FloatCore : public ValueNode<IFloat> {
 public:
  using ValueNode<IFloat>::ValueNode;

  void SetValue(double Value, bool Verify) override;
  // The interface decides the type returned. NOLINTNEXTLINE(misc-unconventional-assign-operator)
  IFloat& operator=(double Value) override;
  double GetValue(bool Verify, bool IgnoreCache) override;
  double operator()() override;
  double operator*() override;
  double GetMin() override;
  double GetMax() override;
  bool HasInc() override;
  EIncMode GetIncMode() override;
  double GetInc() override;
  double_autovector_t GetListOfValidValues(bool bounded) override;
  ERepresentation GetRepresentation() override;
  gcstring GetUnit() const override;
  EDisplayNotation GetDisplayNotation() const override;
  int64_t GetDisplayPrecision() const override;
  void ImposeMin(double Value) override;
  void ImposeMax(double Value) override;

  std::int64_t IntegerValue(ReadMode read) override;
  double RealValue(ReadMode read) override;
  bool IsTrue() override { return RealValue({}) != 0; }
  void WriteInteger(std::int64_t value, bool verify) override;
  void WriteReal(double value, bool verify) override;
  /// Rounded; the limits of the type when there are none.
  std::int64_t IntegerMin() override;
  std::int64_t IntegerMax() override;
  double RealMin() override;
  double RealMax() override;
  std::optional<double> RealInc() override;
  void Forget(bool device) override;
  void ForgetDerived() override;
  gcstring TextValue(ReadMode read) override;
  void WriteText(const gcstring& text, bool verify) override;

 protected:
  virtual double Compute(ReadMode read) = 0;
  virtual void Put(double value, bool verify) = 0;
  virtual double OwnMin();
  virtual double OwnMax();
  virtual std::optional<double> OwnInc() { return std::nullopt; }
  /// At best write-around: a device rounds.
  ECachingMode ComputeCachingMode() override;

 private:
  template <class T>
  T Remember(std::optional<T>& limit, T (FloatCore::*compute)());
  void CheckRange(double value);

  double value_ = 0;
  // Remembered where the description allows it; without what was imposed.
  std::optional<double> min_, max_;
  std::optional<std::optional<double>> inc_;
  std::optional<double> imposedMin_;
  std::optional<double> imposedMax_;
};

}  // namespace zyn::genapi

#endif
