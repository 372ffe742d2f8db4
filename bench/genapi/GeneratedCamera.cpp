#include "GeneratedCamera.h"

#include <array>
#include <cstdio>

namespace generated {
namespace {

constexpr std::size_t kNodesPerGroup = 24;
constexpr std::size_t kBytesPerGroup = 64;

class Writer {
 public:
  Writer(std::string& out, std::size_t group)
      : out_(out), number_(std::to_string(group)), address_(group * kBytesPerGroup % (kMemoryBytes / 2)) {}

  void Group() {
    Category();
    Integer("Width", 0, 4);
    Integer("Height", 8, 12);
    Enumeration();
    Exposure();
    Size();
    Flags();
    Start();
  }

 private:
  std::string Name(const char* stem) const { return stem + number_; }

  void Open(const char* kind, const char* stem, const char* visibility = "Beginner") {
    out_ += "  <" + std::string(kind) + " Name=\"" + Name(stem) + "\" NameSpace=\"Custom\">\n";
    if (!visibility) return;
    out_ += "    <ToolTip>" + Name(stem) + " of the image in sensor units.</ToolTip>\n";
    out_ += "    <Description>Sets the " + std::string(stem) +
            " of the image that the camera delivers. Changes take effect with the next frame &amp; stay "
            "until the "
            "camera is switched off.</Description>\n";
    out_ += "    <DisplayName>" + std::string(stem) + " " + number_ + "</DisplayName>\n";
    Put("Visibility", visibility);
  }
  void Put(const char* element, const std::string& text) {
    out_ += "    <" + std::string(element) + ">" + text + "</" + element + ">\n";
  }
  void Close(const char* kind) { out_ += "  </" + std::string(kind) + ">\n"; }

  void Place(std::size_t offset, int length, const char* access = "RW") {
    std::array<char, 24> hex{};
    std::snprintf(hex.data(), hex.size(), "0x%zX", address_ + offset);
    Put("Address", hex.data());
    Put("Length", std::to_string(length));
    Put("AccessMode", access);
    Put("pPort", "Device");
  }

  void IntReg(const char* stem, std::size_t offset, const char* access = "RW") {
    Open("IntReg", stem, nullptr);
    Place(offset, 4, access);
    Put("Sign", "Unsigned");
    Put("Endianess", "LittleEndian");
    Close("IntReg");
  }

  void Category() {
    Open("Category", "Group");
    for (const char* const stem : {"Width", "Height", "Format", "Time", "Reverse", "Start"})
      Put("pFeature", Name(stem));
    Close("Category");
  }

  void Integer(const char* stem, std::size_t offset, std::size_t maxOffset) {
    const std::string plain = stem;
    Open("Integer", stem);
    Put("pIsLocked", Name("Locked"));
    Put("pValue", Name((plain + "Reg").c_str()));
    Put("Min", "0");
    Put("pMax", Name((plain + "Max").c_str()));
    Put("Inc", "1");
    Put("Representation", "Linear");
    Close("Integer");
    IntReg((plain + "Reg").c_str(), offset);
    IntReg((plain + "Max").c_str(), maxOffset, "RO");
  }

  void Enumeration() {
    Open("Enumeration", "Format", "Expert");
    for (const char* const entry : {"Mono8", "Mono10", "Mono12", "BayerRG8", "RGB8"}) {
      out_ += "    <EnumEntry Name=\"" + std::string(entry) + "\" NameSpace=\"Standard\">\n";
      Put("ToolTip", std::string("Delivers ") + entry + " pixels.");
      Put("DisplayName", entry);
      Put("Value", std::to_string(formatValue_++));
      out_ += "    </EnumEntry>\n";
    }
    Put("pValue", Name("Field"));
    Close("Enumeration");
    Open("MaskedIntReg", "Field", nullptr);
    Place(16, 4);
    Put("LSB", "4");
    Put("MSB", "7");
    Put("Sign", "Unsigned");
    Put("Endianess", "LittleEndian");
    Close("MaskedIntReg");
  }

  void Exposure() {
    Open("Float", "Time");
    Put("pValue", Name("Exposure"));
    Put("Unit", "us");
    Put("Representation", "Logarithmic");
    Close("Float");
    Open("Converter", "Exposure", nullptr);
    out_ += "    <pVariable Name=\"TICK\">" + Name("TickReg") + "</pVariable>\n";
    Put("FormulaTo", "FROM * 1000 / (TICK + 1)");
    Put("FormulaFrom", "TO * (TICK + 1) / 1000");
    Put("pValue", Name("ExposureReg"));
    Put("Slope", "Increasing");
    Close("Converter");
    IntReg("ExposureReg", 20);
    IntReg("TickReg", 24);
  }

  void Size() {
    Open("SwissKnife", "Size", "Guru");
    out_ += "    <pVariable Name=\"W\">" + Name("WidthReg") + "</pVariable>\n    <pVariable Name=\"H\">" +
            Name("HeightReg") + "</pVariable>\n    <pVariable Name=\"BITS\">" + Name("TickReg") +
            "</pVariable>\n";
    Put("Formula", "(BITS &gt; 8) ? (W * H * 2) : (W * H + (BITS * 4))");
    Close("SwissKnife");
  }

  void Flags() {
    Open("Boolean", "Reverse");
    Put("pValue", Name("ReverseReg"));
    Put("OnValue", "1");
    Put("OffValue", "0");
    Close("Boolean");
    IntReg("ReverseReg", 28);
    IntReg("Locked", 32, "RO");
  }

  void Start() {
    Open("Command", "Start");
    Put("pValue", Name("StartReg"));
    Put("CommandValue", "1");
    Close("Command");
    IntReg("StartReg", 36, "RW");
  }

  std::string& out_;
  const std::string number_;
  const std::size_t address_;
  int formatValue_ = 0;
};

}  // namespace

std::string Camera(std::size_t nodes) {
  std::string out =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<RegisterDescription ModelName=\"Generated\" "
      "VendorName=\"Bench\" "
      "ToolTip=\"\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
      "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
      "ProductGuid=\"6B0D3F55-5C83-4D39-9F4E-2C4B4E1E6C01\" "
      "VersionGuid=\"6B0D3F55-5C83-4D39-9F4E-2C4B4E1E6C02\" "
      "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n";
  const std::size_t groups = (nodes + kNodesPerGroup - 1) / kNodesPerGroup;
  out += "  <Category Name=\"Root\" NameSpace=\"Standard\">\n";
  for (std::size_t i = 0; i < groups; ++i) out += "    <pFeature>Group" + std::to_string(i) + "</pFeature>\n";
  out += "  </Category>\n";
  for (std::size_t i = 0; i < groups; ++i) Writer(out, i).Group();
  return out + "  <Port Name=\"Device\" NameSpace=\"Standard\"/>\n</RegisterDescription>\n";
}

}  // namespace generated
