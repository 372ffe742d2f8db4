#include "StandardCamera.h"

#include "../MemoryPort.h"

namespace zyn::genapi::test {
namespace {

const char* const kCategories[] = {"DeviceControl",    "ImageFormatControl",     "AcquisitionControl",
                                   "DigitalIOControl", "CounterAndTimerControl", "AnalogControl",
                                   "LUTControl",       "TransportLayerControl",  "UserSetControl",
                                   "ChunkDataControl"};

// One category: every feature has registers of its own, and all but the selector depend on the selector.
class CategoryWriter {
 public:
  CategoryWriter(const std::string& name, int base) : name_(name), address_(base) {}

  std::string Write() {
    Add("Enumeration", "Selector",
        "<EnumEntry Name=\"First\"><Value>0</Value></EnumEntry><EnumEntry Name=\"Second\"><Value>1</Value>"
        "</EnumEntry><pValue>" +
            name_ + "SelectorReg</pValue>" + selected_marker_);
    nodes_ += Register("IntReg", name_ + "SelectorReg", address_, 4, "<Endianess>BigEndian</Endianess>");
    address_ += 4;
    for (int i = 0; i < 9; ++i) AddInteger("Integer" + std::to_string(i));
    for (int i = 0; i < 5; ++i) AddFloat("Float" + std::to_string(i));
    for (int i = 0; i < 5; ++i) AddEnumeration("Mode" + std::to_string(i));
    for (int i = 0; i < 4; ++i) AddBoolean("Enable" + std::to_string(i));
    for (int i = 0; i < 3; ++i) AddString("Name" + std::to_string(i));
    for (int i = 0; i < 3; ++i) AddCommand("Execute" + std::to_string(i));
    const std::size_t at = nodes_.find(selected_marker_);
    nodes_.replace(at, selected_marker_.size(), selected_);
    return "<Category Name=\"" + name_ + "\" NameSpace=\"Standard\">" + features_ + "</Category>\n" + nodes_;
  }

 private:
  void Add(const std::string& kind, const std::string& feature, const std::string& content) {
    features_ += "<pFeature>" + name_ + feature + "</pFeature>";
    nodes_ += "<" + kind + " Name=\"" + name_ + feature + "\" NameSpace=\"Standard\"><ToolTip>" + feature +
              " of " + name_ + "</ToolTip><Streamable>Yes</Streamable>" + content + "</" + kind + ">\n";
  }

  // Two places, one per value of the selector.
  void AddRegister(const std::string& kind, const std::string& feature, int length, const std::string& more) {
    nodes_ += "<" + kind + " Name=\"" + name_ + feature + "Reg\"><Address>" + std::to_string(address_) +
              "</Address><pIndex Offset=\"" + std::to_string(length) + "\">" + name_ +
              "SelectorReg</pIndex><Length>" + std::to_string(length) +
              "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" + more + "</" + kind + ">\n";
    selected_ += "<pSelected>" + name_ + feature + "</pSelected>";
    address_ += 2 * length;
  }

  std::string Link(const std::string& feature) const { return "<pValue>" + name_ + feature + "Reg</pValue>"; }

  void AddInteger(const std::string& feature) {
    Add("Integer", feature, Link(feature) + "<Min>0</Min><Max>4096</Max><Inc>4</Inc><Unit>px</Unit>");
    AddRegister("IntReg", feature, 4, "<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>");
  }
  void AddFloat(const std::string& feature) {
    Add("Converter", feature,
        "<FormulaTo>FROM*10</FormulaTo><FormulaFrom>TO/10</FormulaFrom>" + Link(feature) + "<Unit>us</Unit>");
    AddRegister("IntReg", feature, 4, "<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>");
  }
  void AddEnumeration(const std::string& feature) {
    Add("Enumeration", feature,
        "<EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry><EnumEntry "
        "Name=\"On\"><Value>1</Value></EnumEntry>" +
            Link(feature));
    AddRegister("MaskedIntReg", feature, 4, "<LSB>31</LSB><MSB>24</MSB><Endianess>BigEndian</Endianess>");
  }
  void AddBoolean(const std::string& feature) {
    Add("Boolean", feature, Link(feature));
    AddRegister("IntReg", feature, 1, "");
  }
  void AddString(const std::string& feature) {
    Add("String", feature, Link(feature));
    AddRegister("StringReg", feature, 8, "");
  }
  void AddCommand(const std::string& feature) {
    features_ += "<pFeature>" + name_ + feature + "</pFeature>";
    nodes_ += "<Command Name=\"" + name_ + feature + "\">" + Link(feature) +
              "<CommandValue>1</CommandValue></Command>\n";
    AddRegister("IntReg", feature, 1, "");
  }

  const std::string selected_marker_ = "<!-- selected -->";
  const std::string name_;
  int address_;
  std::string features_;
  std::string nodes_;
  std::string selected_;
};

}  // namespace

std::string StandardCameraNodes() {
  std::string root = "<Category Name=\"Root\" NameSpace=\"Standard\">";
  std::string nodes;
  int base = 0x100;
  for (const char* const category : kCategories) {
    root += std::string("<pFeature>") + category + "</pFeature>";
    nodes += CategoryWriter(category, base).Write();
    base += 0x400;
  }
  return root + "</Category>\n" + nodes;
}

std::string ProfileCameraNodes() {
  return "<Category Name=\"Root\"><pFeature>Scan3dControl</pFeature></Category>"
         "<Category Name=\"Scan3dControl\"><pFeature>Scan3dCoordinateSelector</pFeature>"
         "<pFeature>Scan3dCoordinateScale</pFeature><pFeature>Scan3dCoordinateOffset</pFeature>"
         "<pFeature>ProfilePointSelector</pFeature><pFeature>ProfileHeight</pFeature><pFeature>ProfileCount</"
         "pFeature>"
         "</Category>"
         "<Enumeration Name=\"Scan3dCoordinateSelector\"><EnumEntry "
         "Name=\"CoordinateA\"><Value>0</Value></EnumEntry>"
         "<EnumEntry Name=\"CoordinateB\"><Value>1</Value></EnumEntry><EnumEntry "
         "Name=\"CoordinateC\"><Value>2</Value>"
         "</EnumEntry><Value>0</Value><pSelected>Scan3dCoordinateScale</pSelected>"
         "<pSelected>Scan3dCoordinateOffset</pSelected></Enumeration>"
         "<Float Name=\"Scan3dCoordinateScale\"><pValue>ScaleReg</pValue></Float>"
         "<FloatReg Name=\"ScaleReg\"><Address>0x100</Address><pIndex "
         "Offset=\"4\">Scan3dCoordinateSelector</pIndex>"
         "<Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort></FloatReg>"
         "<FloatReg Name=\"Scan3dCoordinateOffset\"><Address>0x110</Address>"
         "<pIndex Offset=\"8\">Scan3dCoordinateSelector</pIndex><Length>8</Length><AccessMode>RO</AccessMode>"
         "<pPort>Device</pPort><Endianess>BigEndian</Endianess></FloatReg>"
         "<Integer Name=\"ProfilePointSelector\"><Value>0</Value><Min>0</Min><pMax>LastPoint</pMax>"
         "<pSelected>ProfileHeightRaw</pSelected></Integer>"
         "<IntSwissKnife Name=\"LastPoint\"><pVariable "
         "Name=\"N\">ProfileCount</pVariable><Formula>N-1</Formula>"
         "</IntSwissKnife>"
         "<Integer Name=\"ProfileCount\"><Value>300</Value><Min>1</Min><Max>300</Max></Integer>"
         "<IntReg Name=\"ProfileHeightRaw\"><Address>0x200</Address><pIndex>ProfilePointSelector</pIndex>"
         "<Length>2</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><Endianess>BigEndian</"
         "Endianess></IntReg>"
         "<SwissKnife Name=\"ProfileHeight\"><pVariable Name=\"RAW\">ProfileHeightRaw</pVariable>"
         "<pVariable Name=\"SCALE\">Scan3dCoordinateScale</pVariable>"
         "<pVariable "
         "Name=\"OFFSET\">Scan3dCoordinateOffset</pVariable><Formula>RAW=0?-1:RAW*SCALE+OFFSET</Formula>"
         "<Unit>mm</Unit></SwissKnife>";
}

}  // namespace zyn::genapi::test
