/// One feature of a camera: what its description says about it, and what its registers do.
#ifndef ZYN_CAMERAS_REGISTERS_FEATURE_H
#define ZYN_CAMERAS_REGISTERS_FEATURE_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cameras/RegisterStatus.h"

namespace zyn::cameras {

enum class FeatureKind {
  integer,
  floating,
  boolean,
  enumeration,
  command,
  text,
  hostSelector,
  hostInteger,
  chunkValue
};

/// The value behind a register. Without `set` it is read-only.
template <class Value>
struct Cell {
  std::function<Value()> get;
  std::function<RegisterStatus(Value)> set;
};

/// A bound of a number: constant, or computed whenever it is asked for.
template <class Value>
struct Limit {
  std::optional<Value> constant;
  std::function<Value()> computed;

  bool Exists() const { return constant.has_value() || computed; }
  Value Get() const { return computed ? computed() : *constant; }
};

/// One choice of an enumeration.
struct Choice {
  std::string name;
  std::int64_t value;
};

/// A feature under construction: FeatureTable makes it, the calls below refine it. Features that a selector
/// selects have one cell for each value of the selector, in its order.
class Feature {
 public:
  using Integer = std::int64_t;

  Feature& Unit(std::string unit) { return Set(unit_, std::move(unit)); }
  Feature& Representation(std::string text) { return Set(representation_, std::move(text)); }
  Feature& Expert() { return Set(visibility_, "Expert"); }
  Feature& Guru() { return Set(visibility_, "Guru"); }
  Feature& Invisible() { return Set(visibility_, "Invisible"); }
  /// Cannot be written while frames are acquired.
  Feature& Locked() { return Set(isLocked_, true); }
  /// The camera may change the value by itself: it is never cached.
  Feature& Volatile() { return Set(isVolatile_, true); }
  /// A value that identifies or measures, not a setting: left out when settings are stored.
  Feature& NotStored() { return Set(isStored_, false); }
  /// Not one of the standard names.
  Feature& OwnName() { return Set(isStandard_, false); }
  Feature& SelectedBy(std::string selector) { return Set(selector_, std::move(selector)); }
  /// What shows once a value was written.
  Feature& Then(std::function<void()> action) { return Set(then_, std::move(action)); }

  Feature& Range(Integer min, Integer max, Integer step = 1);
  Feature& Range(Integer min, std::function<Integer()> max, Integer step = 1);
  Feature& FloatRange(double min, double max);
  Feature& FloatRange(double min, std::function<double()> max);

 private:
  friend class FeatureTable;
  friend class DescriptionWriter;

  template <class T, class V>
  Feature& Set(T& member, V&& value) {
    member = std::forward<V>(value);
    return *this;
  }

  FeatureKind kind_ = FeatureKind::integer;
  std::string name_;
  std::string tip_;
  std::string category_;
  std::string unit_;
  std::string representation_;
  std::string visibility_ = "Beginner";
  std::string selector_;
  std::vector<Choice> choices_;  // of enumerations and selectors
  bool isStandard_ = true;
  bool isLocked_ = false;
  bool isVolatile_ = false;
  bool isStored_ = true;
  std::function<void()> then_;

  std::vector<Cell<Integer>> integers_;   // integer, boolean, enumeration; command: set executes
  std::vector<Cell<double>> floats_;      // floating
  std::vector<Cell<std::string>> texts_;  // text
  std::size_t textLength_ = 0;            // bytes of the register
  Limit<Integer> min_, max_;
  Integer step_ = 1;
  Limit<double> floatMin_, floatMax_;

  std::string chunkPort_;        // chunkValue: the port whose chunk holds the value
  std::size_t chunkOffset_ = 0;  // bytes
  bool isFloatChunk_ = false;

  std::uint64_t address_ = 0;  // of the first cell's register; later cells follow without gaps
  std::uint64_t maxAddress_ = 0;
};

}  // namespace zyn::cameras

#endif
