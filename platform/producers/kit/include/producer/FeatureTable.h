/// Features backed by functions: one table from which both the register space and the description (XML) come,
/// so that the two cannot disagree. The kit describes its modules with it, backends their extensions.
#ifndef ZYN_PRODUCER_FEATURE_TABLE_H
#define ZYN_PRODUCER_FEATURE_TABLE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "producer/Backend.h"

namespace zyn::producer {

/// What features have in common. Everything is optional.
struct FeatureOptions {
  std::string selectedBy;      ///< name of the selector
  std::string availableIf;     ///< name of a condition, see FeatureTable::Condition
  std::string representation;  ///< "IPV4Address", "MACAddress", …
  std::string unit;
  std::string toolTip;
  bool custom = false;                    ///< not a feature that the naming conventions know
  std::function<std::int64_t()> maximum;  ///< of an integer, which then has a minimum too
  std::int64_t minimum = 0;
};

/// Built in a module's constructor, not changed after Finish; then any thread may read and write. The getters
/// and setters run on the calling thread, without a lock of this class; setters throw Error to refuse.
class FeatureTable {
 public:
  using GetText = std::function<std::string()>;
  using SetText = std::function<void(const std::string&)>;
  using GetInteger = std::function<std::int64_t()>;
  using SetInteger = std::function<void(std::int64_t)>;
  using GetFloat = std::function<double()>;
  using SetFloat = std::function<void(double)>;
  using Entries = std::vector<std::pair<std::string, std::int64_t>>;

  static constexpr std::size_t kTextBytes = 512;
  static constexpr std::size_t kPathBytes = 4096;
  static constexpr std::uint64_t kXmlAddress = 0x10000000;
  static constexpr std::uint64_t kFirstRegister = 0x1000;

  /// portName: name of the Port node. extension: may be null; must outlive the table. The registers lie at
  /// firstRegister and above.
  FeatureTable(std::string portName, ModuleExtension* extension,
               std::uint64_t firstRegister = kFirstRegister);

  /// Later features belong to this category, which appears beneath Root.
  void Category(const std::string& name);

  /// A truth that features can depend on; a feature whose condition is false reads as "not available".
  void Condition(const std::string& name, std::function<bool()> holds);

  void Text(const std::string& name, GetText get, SetText set = nullptr, const FeatureOptions& options = {},
            std::size_t bytes = kTextBytes);
  void Integer(const std::string& name, const GetInteger& get, SetInteger set = nullptr,
               const FeatureOptions& options = {});
  void Float(const std::string& name, GetFloat get, SetFloat set = nullptr,
             const FeatureOptions& options = {});
  void Boolean(const std::string& name, std::function<bool()> get, std::function<void(bool)> set = nullptr,
               const FeatureOptions& options = {});
  void Enumeration(const std::string& name, const Entries& entries, const GetInteger& get,
                   SetInteger set = nullptr, const FeatureOptions& options = {});
  void Command(const std::string& name, std::function<void()> execute, const FeatureOptions& options = {});

  /// A port for the event `id` and the feature Event<name> on it, which holds the running number of the
  /// event.
  void EventPort(const std::string& name, std::uint64_t id);

  /// Ends the building. vendor, model: of the producer; module: "TLSystem" and so on.
  void Finish(const std::string& vendor, const std::string& model, const std::string& module);

  /// The elements of all nodes so far, categories included, and the names of the categories.
  std::string Nodes() const;
  std::vector<std::string> CategoryNames() const;

  const std::string& PortName() const { return portName_; }
  const std::string& Xml() const { return xml_; }
  const std::string& XmlFileName() const { return xmlFileName_; }

  /// Any address and size within the registers, the extension or the description. Throws Error with
  /// GC_ERR_INVALID_ADDRESS, GC_ERR_ACCESS_DENIED, GC_ERR_INVALID_VALUE.
  void Read(std::uint64_t address, void* data, std::size_t size) const;
  void Write(std::uint64_t address, const void* data, std::size_t size) const;

 private:
  struct Register {
    std::size_t bytes = 0;
    std::function<void(std::uint8_t*)> load;         // fills `bytes` bytes
    std::function<void(const std::uint8_t*)> store;  // null when read-only
  };

  std::uint64_t AddRegister(Register&& entry);
  std::uint64_t AddIntegerRegister(const GetInteger& get, const SetInteger& set);
  void BeginNode(const std::string& kind, const std::string& name, const FeatureOptions& options);
  void IntegerRegisterNode(const std::string& name, std::uint64_t address, bool writable);
  void List(const std::string& name, const FeatureOptions& options);
  std::string Selected(const std::string& selector) const;
  const Register* Find(std::uint64_t address, std::uint64_t& start) const;
  void ReadXml(std::uint64_t address, void* data, std::size_t size) const;

  const std::string portName_;
  ModuleExtension* const extension_;
  std::map<std::uint64_t, Register> registers_;  // by start address; without gaps
  std::uint64_t nextAddress_ = 0;
  std::vector<std::pair<std::string, std::vector<std::string>>> categories_;
  std::vector<std::pair<std::string, std::string>> selections_;  // selector, feature
  std::string nodes_;  // "@SELECTED:name@" stands for the features that `name` selects
  std::string xml_;
  std::string xmlFileName_;
};

/// An extension made of such a table: derive from it, and fill the table in the constructor.
class TableExtension : public ModuleExtension {
 public:
  explicit TableExtension(const std::string& portName) : table_(portName, nullptr, kBase) {}

  std::string Nodes() const override { return table_.Nodes(); }
  std::vector<std::string> RootFeatures() const override { return table_.CategoryNames(); }
  void Read(std::uint64_t address, void* data, std::size_t size) override {
    table_.Read(address, data, size);
  }
  void Write(std::uint64_t address, const void* data, std::size_t size) override {
    table_.Write(address, data, size);
  }

 protected:
  FeatureTable& Table() { return table_; }

 private:
  FeatureTable table_;
};

}  // namespace zyn::producer

#endif
