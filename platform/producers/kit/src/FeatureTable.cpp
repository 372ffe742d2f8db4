#include "producer/FeatureTable.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace zyn::producer {
namespace {

constexpr std::size_t kIntegerBytes = 8;
constexpr std::size_t kCellBytes = 8;  // registers begin at multiples of it

std::string Hexadecimal(std::uint64_t value) {
  char digits[20];
  std::snprintf(digits, sizeof digits, "%llX", static_cast<unsigned long long>(value));
  return digits;
}

std::string Escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string Element(const std::string& name, const std::string& text) {
  return "<" + name + ">" + Escaped(text) + "</" + name + ">";
}

std::string OptionalElement(const std::string& name, const std::string& text) {
  return text.empty() ? std::string() : Element(name, text);
}

// FNV-1a. Tells descriptions apart in a consumer's cache; not a protection against anything.
std::uint64_t Fingerprint(const std::string& text) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char c : text) hash = (hash ^ static_cast<std::uint8_t>(c)) * 0x100000001B3;
  return hash;
}

// Two fingerprints in the shape of a GUID.
std::string Guid(const std::string& text) {
  char digits[48];
  const std::uint64_t a = Fingerprint(text);
  const std::uint64_t b = Fingerprint(text + "/");
  std::snprintf(digits, sizeof digits, "%08X-%04X-%04X-%04X-%012llX", static_cast<unsigned>(a >> 32),
                static_cast<unsigned>(a >> 16 & 0xFFFF), static_cast<unsigned>(a & 0xFFFF),
                static_cast<unsigned>(b >> 48), static_cast<unsigned long long>(b & 0xFFFFFFFFFFFF));
  return digits;
}

// Names in a description's head are identifiers.
std::string Identifier(const std::string& text) {
  std::string result;
  for (const char c : text) result += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
  return result.empty() ? "Unknown" : result;
}

// Cut to fit with its NUL, without splitting a character.
std::string Fitting(std::string text, std::size_t bytes) {
  if (text.size() < bytes) return text;
  std::size_t end = bytes - 1;
  while (end > 0 && (static_cast<std::uint8_t>(text[end]) & 0xC0) == 0x80) --end;
  text.resize(end);
  return text;
}

void StoreLittleEndian(std::uint8_t* out, std::uint64_t value) {
  for (std::size_t i = 0; i < kIntegerBytes; ++i) out[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

std::uint64_t LoadLittleEndian(const std::uint8_t* in) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < kIntegerBytes; ++i) value |= static_cast<std::uint64_t>(in[i]) << (8 * i);
  return value;
}

double ToDouble(std::uint64_t bits) {
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

std::uint64_t ToBits(double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

[[noreturn]] void ThrowNoRegister(std::uint64_t address) {
  throw Error(GenTL::GC_ERR_INVALID_ADDRESS, "There is no register at 0x" + Hexadecimal(address) + ".");
}

}  // namespace

FeatureTable::FeatureTable(std::string portName, ModuleExtension* extension, std::uint64_t firstRegister)
    : portName_(std::move(portName)), extension_(extension), nextAddress_(firstRegister) {}

void FeatureTable::Category(const std::string& name) {
  categories_.push_back({name, {}});
}

void FeatureTable::Condition(const std::string& name, std::function<bool()> holds) {
  const std::uint64_t address =
      AddIntegerRegister([holds = std::move(holds)] { return holds() ? 1 : 0; }, nullptr);
  IntegerRegisterNode(name, address, false);
}

void FeatureTable::Text(const std::string& name, GetText get, SetText set, const FeatureOptions& options,
                        std::size_t bytes) {
  Register entry;
  entry.bytes = bytes;
  entry.load = [get = std::move(get), bytes](std::uint8_t* out) {
    const std::string text = Fitting(get(), bytes);
    std::memset(out, 0, bytes);
    std::copy(text.begin(), text.end(), out);
  };
  const bool writable = set != nullptr;
  if (writable) {
    entry.store = [set = std::move(set), bytes](const std::uint8_t* in) {
      set(std::string(in, std::find(in, in + bytes, std::uint8_t{0})));
    };
  }
  const std::uint64_t address = AddRegister(std::move(entry));
  BeginNode("StringReg", name, options);
  nodes_ += Element("Address", "0x" + Hexadecimal(address)) + Element("Length", std::to_string(bytes)) +
            Element("AccessMode", writable ? "RW" : "RO") + Element("pPort", portName_) +
            Element("Cachable", "NoCache") + "</StringReg>\n";
  List(name, options);
}

void FeatureTable::Integer(const std::string& name, const GetInteger& get, SetInteger set,
                           const FeatureOptions& options) {
  const bool writable = set != nullptr;
  if (writable && options.maximum) {
    set = [set = std::move(set), minimum = options.minimum, maximum = options.maximum,
           name](std::int64_t value) {
      if (value < minimum || value > maximum())
        throw Error(GenTL::GC_ERR_INVALID_VALUE,
                    std::to_string(value) + " is out of range for " + name + ".");
      set(value);
    };
  }
  const std::uint64_t address = AddIntegerRegister(get, set);
  BeginNode("Integer", name, options);
  nodes_ += Element("pValue", name + "Reg");
  if (options.maximum)
    nodes_ += Element("Min", std::to_string(options.minimum)) + Element("pMax", name + "MaxReg");
  nodes_ += OptionalElement("Unit", options.unit) +
            OptionalElement("Representation", options.representation) + "@SELECTED:" + name + "@</Integer>\n";
  IntegerRegisterNode(name + "Reg", address, writable);
  if (options.maximum)
    IntegerRegisterNode(name + "MaxReg", AddIntegerRegister(options.maximum, nullptr), false);
  List(name, options);
}

void FeatureTable::Float(const std::string& name, GetFloat get, SetFloat set, const FeatureOptions& options) {
  SetInteger setBits;
  if (set) {
    setBits = [set = std::move(set)](std::int64_t bits) { set(ToDouble(static_cast<std::uint64_t>(bits))); };
  }
  const bool writable = setBits != nullptr;
  const std::uint64_t address = AddIntegerRegister(
      [get = std::move(get)] { return static_cast<std::int64_t>(ToBits(get())); }, setBits);
  BeginNode("Float", name, options);
  nodes_ += Element("pValue", name + "Reg") + OptionalElement("Unit", options.unit) + "</Float>\n";
  nodes_ += "<FloatReg Name=\"" + name + "Reg\" NameSpace=\"Custom\">" +
            Element("Address", "0x" + Hexadecimal(address)) +
            Element("Length", std::to_string(kIntegerBytes)) + Element("AccessMode", writable ? "RW" : "RO") +
            Element("pPort", portName_) + Element("Cachable", "NoCache") +
            Element("Endianess", "LittleEndian") + "</FloatReg>\n";
  List(name, options);
}

void FeatureTable::Boolean(const std::string& name, std::function<bool()> get, std::function<void(bool)> set,
                           const FeatureOptions& options) {
  SetInteger setInteger;
  if (set) setInteger = [set = std::move(set)](std::int64_t value) { set(value != 0); };
  const bool writable = setInteger != nullptr;
  const std::uint64_t address =
      AddIntegerRegister([get = std::move(get)] { return get() ? 1 : 0; }, setInteger);
  BeginNode("Boolean", name, options);
  nodes_ +=
      Element("pValue", name + "Reg") + Element("OnValue", "1") + Element("OffValue", "0") + "</Boolean>\n";
  IntegerRegisterNode(name + "Reg", address, writable);
  List(name, options);
}

void FeatureTable::Enumeration(const std::string& name, const Entries& entries, const GetInteger& get,
                               SetInteger set, const FeatureOptions& options) {
  const bool writable = set != nullptr;
  if (writable) {
    set = [set = std::move(set), entries, name](std::int64_t value) {
      const auto known = [value](const auto& entry) { return entry.second == value; };
      if (std::none_of(entries.begin(), entries.end(), known))
        throw Error(GenTL::GC_ERR_INVALID_VALUE, std::to_string(value) + " is no entry of " + name + ".");
      set(value);
    };
  }
  const std::uint64_t address = AddIntegerRegister(get, set);
  BeginNode("Enumeration", name, options);
  for (const auto& [entry, value] : entries) {
    nodes_ += "<EnumEntry Name=\"" + entry + "\" NameSpace=\"" + (options.custom ? "Custom" : "Standard") +
              "\">" + Element("Value", std::to_string(value)) + "</EnumEntry>";
  }
  nodes_ += Element("pValue", name + "Reg") + "@SELECTED:" + name + "@</Enumeration>\n";
  IntegerRegisterNode(name + "Reg", address, writable);
  List(name, options);
}

void FeatureTable::Command(const std::string& name, std::function<void()> execute,
                           const FeatureOptions& options) {
  // The command runs to its end within the write, so reading always says that it is done.
  const std::uint64_t address = AddIntegerRegister([] { return 0; },
                                                   [execute = std::move(execute), name](std::int64_t value) {
                                                     if (value != 1)
                                                       throw Error(GenTL::GC_ERR_INVALID_VALUE,
                                                                   "Only 1 can be written to " + name + ".");
                                                     execute();
                                                   });
  BeginNode("Command", name, options);
  nodes_ += Element("pValue", name + "Reg") + Element("CommandValue", "1") + "</Command>\n";
  IntegerRegisterNode(name + "Reg", address, true);
  List(name, options);
}

void FeatureTable::EventPort(const std::string& name, std::uint64_t id) {
  const std::string digits = Hexadecimal(id);
  const std::string port = "Event" + name + "Port";
  nodes_ += "<Port Name=\"" + port + "\" NameSpace=\"Custom\">" +
            Element("EventID", digits.size() % 2 == 0 ? digits : "0" + digits) + "</Port>\n";
  const FeatureOptions options;
  BeginNode("Integer", "Event" + name, options);
  nodes_ += Element("pValue", "Event" + name + "Reg") + "</Integer>\n";
  nodes_ += "<IntReg Name=\"Event" + name + "Reg\" NameSpace=\"Custom\">" + Element("Address", "0x0") +
            Element("Length", std::to_string(kIntegerBytes)) + Element("AccessMode", "RO") +
            Element("pPort", port) + Element("Cachable", "NoCache") + Element("Sign", "Signed") +
            Element("Endianess", "LittleEndian") + "</IntReg>\n";
  List("Event" + name, options);
}

std::uint64_t FeatureTable::AddRegister(Register&& entry) {
  const std::uint64_t address = nextAddress_;
  entry.bytes = (entry.bytes + kCellBytes - 1) / kCellBytes * kCellBytes;
  nextAddress_ += entry.bytes;
  registers_.emplace(address, std::move(entry));
  return address;
}

std::uint64_t FeatureTable::AddIntegerRegister(const GetInteger& get, const SetInteger& set) {
  Register entry;
  entry.bytes = kIntegerBytes;
  entry.load = [get](std::uint8_t* out) { StoreLittleEndian(out, static_cast<std::uint64_t>(get())); };
  if (set)
    entry.store = [set](const std::uint8_t* in) { set(static_cast<std::int64_t>(LoadLittleEndian(in))); };
  return AddRegister(std::move(entry));
}

void FeatureTable::BeginNode(const std::string& kind, const std::string& name,
                             const FeatureOptions& options) {
  nodes_ += "<" + kind + " Name=\"" + name + "\" NameSpace=\"" + (options.custom ? "Custom" : "Standard") +
            "\">" + OptionalElement("ToolTip", options.toolTip) + Element("Visibility", "Beginner") +
            OptionalElement("pIsAvailable", options.availableIf);
}

void FeatureTable::IntegerRegisterNode(const std::string& name, std::uint64_t address, bool writable) {
  nodes_ += "<IntReg Name=\"" + name + "\" NameSpace=\"Custom\">" +
            Element("Address", "0x" + Hexadecimal(address)) +
            Element("Length", std::to_string(kIntegerBytes)) + Element("AccessMode", writable ? "RW" : "RO") +
            Element("pPort", portName_) + Element("Cachable", "NoCache") + Element("Sign", "Signed") +
            Element("Endianess", "LittleEndian") + "</IntReg>\n";
}

void FeatureTable::List(const std::string& name, const FeatureOptions& options) {
  categories_.back().second.push_back(name);
  if (!options.selectedBy.empty()) selections_.emplace_back(options.selectedBy, name);
}

std::string FeatureTable::Selected(const std::string& selector) const {
  std::string result;
  for (const auto& [by, feature] : selections_) {
    if (by == selector) result += Element("pSelected", feature);
  }
  return result;
}

std::string FeatureTable::Nodes() const {
  static const std::string kMark = "@SELECTED:";
  std::string nodes = nodes_;
  for (std::size_t at = nodes.find(kMark); at != std::string::npos; at = nodes.find(kMark, at)) {
    const std::size_t end = nodes.find('@', at + kMark.size());
    const std::string selector = nodes.substr(at + kMark.size(), end - at - kMark.size());
    nodes.replace(at, end + 1 - at, Selected(selector));
  }
  std::string categories;
  for (const auto& [category, features] : categories_) {
    categories += "<Category Name=\"" + category + "\" NameSpace=\"Standard\">";
    for (const std::string& feature : features) categories += Element("pFeature", feature);
    categories += "</Category>\n";
  }
  return categories + nodes;
}

std::vector<std::string> FeatureTable::CategoryNames() const {
  std::vector<std::string> names;
  for (const auto& entry : categories_) names.push_back(entry.first);
  return names;
}

void FeatureTable::Finish(const std::string& vendor, const std::string& model, const std::string& module) {
  std::string nodes = Nodes();
  std::string root = "<Category Name=\"Root\" NameSpace=\"Standard\">";
  for (const std::string& category : CategoryNames()) root += Element("pFeature", category);
  if (extension_ != nullptr) {
    for (const std::string& feature : extension_->RootFeatures()) root += Element("pFeature", feature);
    nodes += extension_->Nodes();
  }
  root += "</Category>\n";

  const std::string body = root + nodes + "<Port Name=\"" + portName_ + "\" NameSpace=\"Standard\"/>\n";
  const std::string name = Identifier(model) + "_" + module;
  xml_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<RegisterDescription ModelName=\"" + name +
         "\" VendorName=\"" + Identifier(vendor) +
         "\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
         "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
         "ProductGuid=\"" +
         Guid(vendor + model + module) + "\" VersionGuid=\"" + Guid(body) +
         "\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\" "
         "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
         "xsi:schemaLocation=\"http://www.genicam.org/GenApi/Version_1_1 "
         "http://www.genicam.org/GenApi/GenApiSchema_Version_1_1.xsd\">\n" +
         body + "</RegisterDescription>\n";
  // The fingerprint keeps a consumer's file cache from mixing up descriptions of different extensions.
  xmlFileName_ = Identifier(vendor) + "_" + name + "_" + Hexadecimal(Fingerprint(xml_)) + ".xml";
}

const FeatureTable::Register* FeatureTable::Find(std::uint64_t address, std::uint64_t& start) const {
  auto next = registers_.upper_bound(address);
  if (next == registers_.begin()) return nullptr;
  --next;
  start = next->first;
  return address < start + next->second.bytes ? &next->second : nullptr;
}

void FeatureTable::ReadXml(std::uint64_t address, void* data, std::size_t size) const {
  const std::uint64_t at = address - kXmlAddress;
  const std::uint64_t padded = (xml_.size() + kCellBytes - 1) / kCellBytes * kCellBytes;
  if (at >= padded || size > padded - at) ThrowNoRegister(kXmlAddress + padded);
  std::memset(data, 0, size);
  if (at < xml_.size()) std::memcpy(data, xml_.data() + at, std::min<std::uint64_t>(size, xml_.size() - at));
}

void FeatureTable::Read(std::uint64_t address, void* data, std::size_t size) const {
  if (address >= kXmlAddress) return ReadXml(address, data, size);
  if (address >= ModuleExtension::kBase && extension_ != nullptr)
    return extension_->Read(address, data, size);

  auto* out = static_cast<std::uint8_t*>(data);
  std::vector<std::uint8_t> content;
  while (size > 0) {
    std::uint64_t start = 0;
    const Register* const entry = Find(address, start);
    if (entry == nullptr) ThrowNoRegister(address);
    content.assign(entry->bytes, 0);
    entry->load(content.data());
    const std::size_t offset = address - start;
    const std::size_t part = std::min(size, entry->bytes - offset);
    std::memcpy(out, content.data() + offset, part);
    out += part;
    address += part;
    size -= part;
  }
}

void FeatureTable::Write(std::uint64_t address, const void* data, std::size_t size) const {
  if (address >= kXmlAddress) throw Error(GenTL::GC_ERR_ACCESS_DENIED, "The description cannot be written.");
  if (address >= ModuleExtension::kBase && extension_ != nullptr)
    return extension_->Write(address, data, size);

  const auto* in = static_cast<const std::uint8_t*>(data);
  std::vector<std::uint8_t> content;
  while (size > 0) {
    std::uint64_t start = 0;
    const Register* const entry = Find(address, start);
    if (entry == nullptr) ThrowNoRegister(address);
    if (!entry->store)
      throw Error(GenTL::GC_ERR_ACCESS_DENIED, "The register at 0x" + Hexadecimal(start) + " is read-only.");
    content.assign(entry->bytes, 0);
    const std::size_t offset = address - start;
    const std::size_t part = std::min(size, entry->bytes - offset);
    if (part < entry->bytes) entry->load(content.data());
    std::memcpy(content.data() + offset, in, part);
    entry->store(content.data());
    in += part;
    address += part;
    size -= part;
  }
}

}  // namespace zyn::producer
