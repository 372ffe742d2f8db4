#include "cameras/registers/FeatureTable.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "cameras/registers/BigEndian.h"

namespace zyn::cameras {

namespace {

// Lower addresses belong to the transport.
constexpr std::uint64_t kFirstAddress = 0x100000;

template <class Value>
Cell<Value> CellOf(Value* value) {
  return Cell<Value>{[value] { return *value; },
                     [value](Value written) {
                       *value = std::move(written);
                       return RegisterStatus::ok;
                     }};
}

template <class Value>
std::vector<Cell<Value>> CellsOf(const std::vector<Value*>& values) {
  std::vector<Cell<Value>> cells;
  cells.reserve(values.size());
  for (Value* value : values) cells.push_back(CellOf(value));
  return cells;
}

std::size_t RegisterLength(FeatureKind kind) {
  return kind == FeatureKind::boolean || kind == FeatureKind::enumeration || kind == FeatureKind::command ? 4
                                                                                                          : 8;
}

bool HasRegister(FeatureKind kind) {
  return kind != FeatureKind::hostSelector && kind != FeatureKind::hostInteger &&
         kind != FeatureKind::chunkValue;
}

}  // namespace

Feature& FeatureTable::Add(FeatureKind kind, std::string name, std::string tip) {
  Feature& feature = features_.emplace_back();
  feature.kind_ = kind;
  feature.name_ = std::move(name);
  feature.tip_ = std::move(tip);
  feature.category_ = categories_.back().name;
  feature.isStandard_ = categories_.back().origin == CategoryOrigin::standardNames;
  return feature;
}

void FeatureTable::Category(std::string name, std::string tip, CategoryOrigin origin) {
  categories_.push_back(CategoryRow{std::move(name), std::move(tip), origin});
}

Feature& FeatureTable::Int(std::string name, std::string tip, const std::vector<Integer*>& values) {
  Feature& feature = Add(FeatureKind::integer, std::move(name), std::move(tip));
  feature.integers_ = CellsOf(values);
  return feature;
}

Feature& FeatureTable::Int(std::string name, std::string tip, std::function<Integer()> computed) {
  Feature& feature = Add(FeatureKind::integer, std::move(name), std::move(tip));
  feature.integers_.push_back(Cell<Integer>{std::move(computed), nullptr});
  return feature;
}

Feature& FeatureTable::Float(std::string name, std::string tip, double* value) {
  return Float(std::move(name), std::move(tip), std::vector<double*>{value});
}

Feature& FeatureTable::Float(std::string name, std::string tip, const std::vector<double*>& values) {
  Feature& feature = Add(FeatureKind::floating, std::move(name), std::move(tip));
  feature.floats_ = CellsOf(values);
  return feature;
}

Feature& FeatureTable::Float(std::string name, std::string tip, std::function<double()> computed) {
  Feature& feature = Add(FeatureKind::floating, std::move(name), std::move(tip));
  feature.floats_.push_back(Cell<double>{std::move(computed), nullptr});
  return feature;
}

Feature& FeatureTable::Bool(std::string name, std::string tip, const std::vector<Integer*>& values) {
  Feature& feature = Add(FeatureKind::boolean, std::move(name), std::move(tip));
  feature.integers_ = CellsOf(values);
  return feature.Range(0, 1);
}

Feature& FeatureTable::Bool(std::string name, std::string tip, std::function<bool()> computed) {
  Feature& feature = Add(FeatureKind::boolean, std::move(name), std::move(tip));
  feature.integers_.push_back(Cell<Integer>{[get = std::move(computed)] { return get() ? 1 : 0; }, nullptr});
  return feature.Range(0, 1);
}

Feature& FeatureTable::Enum(std::string name, std::string tip, std::vector<Choice> choices,
                            const std::vector<Integer*>& values) {
  Feature& feature = Add(FeatureKind::enumeration, std::move(name), std::move(tip));
  feature.integers_ = CellsOf(values);
  feature.choices_ = std::move(choices);
  return feature;
}

Feature& FeatureTable::Command(std::string name, std::string tip,
                               std::vector<std::function<RegisterStatus()>> actions) {
  Feature& feature = Add(FeatureKind::command, std::move(name), std::move(tip));
  for (auto& action : actions) {
    feature.integers_.push_back(Cell<Integer>{[] { return Integer{0}; },
                                              [execute = std::move(action)](Integer) { return execute(); }});
  }
  return feature.NotStored();
}

Feature& FeatureTable::Text(std::string name, std::string tip, std::size_t length,
                            std::function<std::string()> get) {
  Feature& feature = Add(FeatureKind::text, std::move(name), std::move(tip));
  feature.texts_.push_back(Cell<std::string>{std::move(get), nullptr});
  feature.textLength_ = length;
  return feature;
}

Feature& FeatureTable::Text(std::string name, std::string tip, std::size_t length, std::string* value) {
  Feature& feature = Add(FeatureKind::text, std::move(name), std::move(tip));
  feature.texts_.push_back(CellOf(value));
  feature.textLength_ = length;
  return feature;
}

Feature& FeatureTable::Selector(std::string name, std::string tip, std::vector<std::string> choices) {
  Feature& feature = Add(FeatureKind::hostSelector, std::move(name), std::move(tip));
  for (std::size_t i = 0; i < choices.size(); ++i) {
    feature.choices_.push_back(Choice{std::move(choices[i]), static_cast<Integer>(i)});
  }
  return feature.NotStored();
}

Feature& FeatureTable::HostInt(std::string name, std::string tip) {
  return Add(FeatureKind::hostInteger, std::move(name), std::move(tip)).NotStored();
}

void FeatureTable::ChunkPort(std::string name, std::uint32_t chunkId) {
  ports_.push_back(PortRow{std::move(name), chunkId, "ChunkID"});
}

void FeatureTable::EventPort(std::string name, std::uint32_t eventId) {
  ports_.push_back(PortRow{std::move(name), eventId, "EventID"});
}

Feature& FeatureTable::ChunkInt(std::string name, std::string tip, std::string port, std::size_t offset) {
  Feature& feature = Add(FeatureKind::chunkValue, std::move(name), std::move(tip));
  feature.chunkPort_ = std::move(port);
  feature.chunkOffset_ = offset;
  return feature.NotStored();
}

Feature& FeatureTable::ChunkFloat(std::string name, std::string tip, std::string port, std::size_t offset) {
  Feature& feature = ChunkInt(std::move(name), std::move(tip), std::move(port), offset);
  feature.isFloatChunk_ = true;
  return feature;
}

RegisterStatus FeatureTable::CheckWritable(const Feature& feature) const {
  const bool isLocked = feature.isLocked_ && isLocked_ && isLocked_();
  return isLocked ? RegisterStatus::accessDenied : RegisterStatus::ok;
}

namespace {

bool IsChoice(const std::vector<Choice>& choices, std::int64_t value) {
  return std::any_of(choices.begin(), choices.end(),
                     [&](const Choice& choice) { return choice.value == value; });
}

bool IsInRange(std::int64_t value, std::int64_t min, std::int64_t max, std::int64_t step) {
  if (value < min || value > max) return false;
  // Unsigned: the difference of two 64-bit numbers may not fit a signed one.
  const std::uint64_t distance = static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(min);
  return distance % static_cast<std::uint64_t>(step) == 0;
}

}  // namespace

void FeatureTable::AddIntegers(RegisterMap& registers, const Feature& feature, std::size_t length) const {
  std::uint64_t address = feature.address_;
  for (const Cell<Integer>& cell : feature.integers_) {
    Register entry;
    entry.address = address;
    entry.length = length;
    entry.read = [&cell, length](std::span<std::uint8_t> bytes) {
      StoreBig(bytes.data(), static_cast<std::uint64_t>(cell.get()), length);
    };
    if (cell.set) {
      entry.write = [this, &feature, &cell, length](std::span<const std::uint8_t> bytes) {
        if (const auto status = CheckWritable(feature); status != RegisterStatus::ok) return status;
        const auto value = static_cast<Integer>(LoadBig(bytes.data(), length));
        const bool isKnown = feature.choices_.empty() || IsChoice(feature.choices_, value);
        const bool isInRange =
            !feature.min_.Exists() || IsInRange(value, feature.min_.Get(), feature.max_.Get(), feature.step_);
        if (!isKnown || !isInRange) return RegisterStatus::outOfRange;
        const RegisterStatus status = cell.set(value);
        if (status == RegisterStatus::ok && feature.then_) feature.then_();
        return status;
      };
    }
    registers.Add(std::move(entry));
    address += length;
  }
}

void FeatureTable::AddFloats(RegisterMap& registers, const Feature& feature) const {
  std::uint64_t address = feature.address_;
  for (const Cell<double>& cell : feature.floats_) {
    Register entry;
    entry.address = address;
    entry.length = 8;
    entry.read = [&cell](std::span<std::uint8_t> bytes) { StoreBigDouble(bytes.data(), cell.get()); };
    if (cell.set) {
      entry.write = [this, &feature, &cell](std::span<const std::uint8_t> bytes) {
        if (const auto status = CheckWritable(feature); status != RegisterStatus::ok) return status;
        const double value = LoadBigDouble(bytes.data());
        // Written so that a value that is not a number fails too.
        const bool isInRange =
            std::isfinite(value) && (!feature.floatMin_.Exists() ||
                                     (value >= feature.floatMin_.Get() && value <= feature.floatMax_.Get()));
        if (!isInRange) return RegisterStatus::outOfRange;
        const RegisterStatus status = cell.set(value);
        if (status == RegisterStatus::ok && feature.then_) feature.then_();
        return status;
      };
    }
    registers.Add(std::move(entry));
    address += 8;
  }
}

void FeatureTable::AddTexts(RegisterMap& registers, const Feature& feature) const {
  const Cell<std::string>& cell = feature.texts_.front();
  Register entry;
  entry.address = feature.address_;
  entry.length = feature.textLength_;
  entry.read = [&cell](std::span<std::uint8_t> bytes) {
    const std::string text = cell.get();
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
    std::copy_n(text.begin(), std::min(text.size(), bytes.size()), bytes.begin());
  };
  if (cell.set) {
    entry.write = [this, &feature, &cell](std::span<const std::uint8_t> bytes) {
      if (const auto status = CheckWritable(feature); status != RegisterStatus::ok) return status;
      const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
      return cell.set(std::string(bytes.begin(), end));
    };
  }
  registers.Add(std::move(entry));
}

void FeatureTable::AddCommands(RegisterMap& registers, const Feature& feature) const {
  std::uint64_t address = feature.address_;
  for (const Cell<Integer>& cell : feature.integers_) {
    Register entry;
    entry.address = address;
    entry.length = 4;
    // Commands are done when the write returns, so they always read as done.
    entry.read = [](std::span<std::uint8_t> bytes) { StoreBig(bytes.data(), 0, 4); };
    entry.write = [this, &feature, &cell](std::span<const std::uint8_t> bytes) {
      if (const auto status = CheckWritable(feature); status != RegisterStatus::ok) return status;
      if (LoadBig(bytes.data(), 4) != 1) return RegisterStatus::outOfRange;
      return cell.set(1);
    };
    registers.Add(std::move(entry));
    address += 4;
  }
}

void FeatureTable::AddMaximum(RegisterMap& registers, const Feature& feature) const {
  Register entry;
  entry.address = feature.maxAddress_;
  entry.length = 8;
  if (feature.kind_ == FeatureKind::floating) {
    entry.read = [&feature](std::span<std::uint8_t> bytes) {
      StoreBigDouble(bytes.data(), feature.floatMax_.Get());
    };
  } else {
    entry.read = [&feature](std::span<std::uint8_t> bytes) {
      StoreBig(bytes.data(), static_cast<std::uint64_t>(feature.max_.Get()), 8);
    };
  }
  registers.Add(std::move(entry));
}

void FeatureTable::BuildRegisters(RegisterMap& registers) {
  std::uint64_t next = kFirstAddress;
  for (Feature& feature : features_) {
    if (!HasRegister(feature.kind_)) continue;
    const std::size_t length = RegisterLength(feature.kind_);
    feature.address_ = next;
    const std::size_t cells = std::max(feature.integers_.size(), feature.floats_.size());
    next += feature.kind_ == FeatureKind::text ? feature.textLength_ : cells * length;
    next = (next + 7) / 8 * 8;
    switch (feature.kind_) {
      case FeatureKind::floating:
        AddFloats(registers, feature);
        break;
      case FeatureKind::text:
        AddTexts(registers, feature);
        break;
      case FeatureKind::command:
        AddCommands(registers, feature);
        break;
      default:
        AddIntegers(registers, feature, length);
        break;
    }
    if (feature.max_.computed || feature.floatMax_.computed) {
      feature.maxAddress_ = next;
      next += 8;
      AddMaximum(registers, feature);
    }
  }
}

std::optional<FeaturePlace> FeatureTable::Find(std::string_view name) const {
  const auto found = std::find_if(features_.begin(), features_.end(),
                                  [name](const Feature& feature) { return feature.name_ == name; });
  if (found == features_.end() || !HasRegister(found->kind_)) return std::nullopt;
  const bool isText = found->kind_ == FeatureKind::text;
  return FeaturePlace{found->address_, isText ? found->textLength_ : RegisterLength(found->kind_)};
}

}  // namespace zyn::cameras
