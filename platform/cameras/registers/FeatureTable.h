/// The features of a camera, in one table: the description and the registers are both made from it, so they cannot
/// disagree.
#ifndef ZYN_CAMERAS_REGISTERS_FEATURE_TABLE_H
#define ZYN_CAMERAS_REGISTERS_FEATURE_TABLE_H

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cameras/CameraModel.h"
#include "cameras/registers/Feature.h"
#include "cameras/registers/RegisterMap.h"

namespace zyn::cameras {

/// Whether a category's features have standard names.
enum class CategoryOrigin { standardNames, ownNames };

/// Filled once, in the order in which a user sees the features; then BuildRegisters and BuildDescription. Cells
/// may be pointers into the camera's settings; these and everything else that the functions use must outlive the
/// registers. Not thread-safe.
class FeatureTable {
 public:
  using Integer = std::int64_t;

  /// Features added from here on belong to this category.
  void Category(std::string name, std::string tip, CategoryOrigin origin = CategoryOrigin::standardNames);

  Feature& Int(std::string name, std::string tip, const std::vector<Integer*>& values);
  Feature& Int(std::string name, std::string tip, std::function<Integer()> computed);  ///< read-only
  Feature& Float(std::string name, std::string tip, double* value);
  Feature& Float(std::string name, std::string tip, const std::vector<double*>& values);
  Feature& Float(std::string name, std::string tip, std::function<double()> computed);  ///< read-only
  Feature& Bool(std::string name, std::string tip, const std::vector<Integer*>& values);
  Feature& Bool(std::string name, std::string tip, std::function<bool()> computed);  ///< read-only
  Feature& Enum(std::string name, std::string tip, std::vector<Choice> choices,
                const std::vector<Integer*>& values);
  Feature& Command(std::string name, std::string tip, std::vector<std::function<RegisterStatus()>> actions);
  Feature& Text(std::string name, std::string tip, std::size_t length, std::function<std::string()> get);
  Feature& Text(std::string name, std::string tip, std::size_t length, std::string* value);
  /// A selector that lives in the application; its choices are numbered from 0.
  Feature& Selector(std::string name, std::string tip, std::vector<std::string> choices);

  /// A number that lives in the application, 0 at first.
  Feature& HostInt(std::string name, std::string tip);

  /// The chunk that the port of this name reads.
  void ChunkPort(std::string name, std::uint32_t chunkId);
  /// The event whose data the port of this name reads.
  void EventPort(std::string name, std::uint32_t eventId);
  /// An 8-byte number `offset` bytes into a chunk, or into the data of an event.
  Feature& ChunkInt(std::string name, std::string tip, std::string port, std::size_t offset = 0);
  Feature& ChunkFloat(std::string name, std::string tip, std::string port, std::size_t offset = 0);

  /// Writing to a locked feature is refused while this is true.
  void LockWhile(std::function<bool()> isLocked) { isLocked_ = std::move(isLocked); }

  /// Commands that change the settings of the whole camera.
  void RestoredBy(std::vector<std::string> commands) { restorers_ = std::move(commands); }

  /// Gives every feature its addresses. The map's functions refer to this table.
  void BuildRegisters(RegisterMap& registers);

  /// As CameraModel::Find; after BuildRegisters.
  std::optional<FeaturePlace> Find(std::string_view name) const;

  /// The XML text; after BuildRegisters.
  std::string BuildDescription(const std::string& vendor, const std::string& model,
                               const std::string& tip) const;

 private:
  friend class DescriptionWriter;

  struct CategoryRow {
    std::string name;
    std::string tip;
    CategoryOrigin origin;
  };
  struct PortRow {
    std::string name;
    std::uint32_t id;
    const char* idElement;  // says what the port reads
  };

  Feature& Add(FeatureKind kind, std::string name, std::string tip);
  RegisterStatus CheckWritable(const Feature& feature) const;
  void AddIntegers(RegisterMap& registers, const Feature& feature, std::size_t length) const;
  void AddFloats(RegisterMap& registers, const Feature& feature) const;
  void AddTexts(RegisterMap& registers, const Feature& feature) const;
  void AddCommands(RegisterMap& registers, const Feature& feature) const;
  void AddMaximum(RegisterMap& registers, const Feature& feature) const;

  std::vector<CategoryRow> categories_;
  std::deque<Feature> features_;
  std::vector<PortRow> ports_;
  std::vector<std::string> restorers_;
  std::function<bool()> isLocked_;
};

}  // namespace zyn::cameras

#endif
