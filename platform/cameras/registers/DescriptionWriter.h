/// Writes a feature table as a GenICam description.
#ifndef ZYN_CAMERAS_REGISTERS_DESCRIPTION_WRITER_H
#define ZYN_CAMERAS_REGISTERS_DESCRIPTION_WRITER_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cameras/registers/FeatureTable.h"

namespace zyn::cameras {

/// Every feature becomes a node of its name; its register, where it has one, a node with "Reg" behind the name.
class DescriptionWriter {
 public:
  explicit DescriptionWriter(const FeatureTable& table) : table_(table) {}

  std::string Write(const std::string& vendor, const std::string& model, const std::string& tip);

 private:
  using Attributes = std::vector<std::pair<std::string_view, std::string>>;

  void Open(std::string_view element, const Attributes& attributes = {});
  void Close(std::string_view element);
  void Line(std::string_view element, std::string_view content, const Attributes& attributes = {});

  void WriteCategories();
  void WriteFeature(const Feature& feature);
  void WriteCommon(const Feature& feature);
  void WriteRange(const Feature& feature);
  void WriteChoices(const Feature& feature);
  void WriteSelected(const Feature& selector);
  void WriteRegister(const Feature& feature);
  void WriteMaximum(const Feature& feature);
  void WriteChunkRegister(const Feature& feature);
  void WritePorts();

  const FeatureTable& table_;
  std::string text_;
  int depth_ = 0;
};

}  // namespace zyn::cameras

#endif
