// Every kind of node, each in a small description of its own and under both schemas: what it says, takes and refuses.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "../MemoryPort.h"
#include "GenApi/ILoadNotes.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

struct Refusal {
  const char* text;
  const char* error;
};

// What is expected of one kind of node.
struct Kind {
  Kind(const char* kindOfNode, std::string description) : kind(kindOfNode), nodes(std::move(description)) {}

  Kind& At(const char* name) { return node = name, *this; }
  Kind& Is(EAccessMode mode) { return access = mode, *this; }
  /// As text, or the class of what is thrown instead.
  Kind& Says(const char* value) { return text = value, *this; }
  /// "min..max/increment", or "up to" so many characters.
  Kind& Within(const char* values) { return limits = values, *this; }
  /// A text, what is read back then, and the bytes of the device from 0x10 on.
  Kind& Takes(const char* value, const char* then, const char* inDevice) {
    written = value;
    readBack = then;
    bytes = inDevice;
    return *this;
  }
  /// What was written is known without reading it.
  Kind& AndKnowsIt() { return staysValid = true, *this; }
  Kind& Refuses(std::vector<Refusal> texts) { return refused = std::move(texts), *this; }

  const char* kind;
  std::string nodes;
  const char* node = "N";
  EAccessMode access = RW;
  const char* text = "";
  const char* limits = "";
  const char* written = nullptr;
  const char* readBack = "";
  const char* bytes = "";
  std::vector<Refusal> refused;
  bool staysValid = false;
};

const char* const kUntouched = "0500ff800000c03f41420000";

// A register in the schema's order, before its own elements.
std::string At(const char* kind, int address, int length, const std::string& more) {
  return Register(kind, "N", address, length, more);
}

std::string Short(const char* name = "R") {
  return Register("IntReg", name, 0x10, 2, "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess>");
}

std::string Legacy(const std::string& kind) {
  return "<" + kind + " Name=\"N\"><ToolTip>old</ToolTip></" + kind + ">";
}

const char* const kAccess = "AccessException";
const char* const kArgument = "InvalidArgumentException";
const char* const kRange = "OutOfRangeException";
const char* const kReal = "-1.79769e+308..1.79769e+308/-";
const char* const kWhole = "-9223372036854775808..9223372036854775807/1";

std::vector<Kind> Integers() {
  return {
      Kind("Integer", "<Integer Name=\"N\"><Value>7</Value><Min>1</Min><Max>100</Max><Inc>2</Inc></Integer>")
          .Says("7")
          .Within("1..100/2")
          .Takes("9", "9", kUntouched)
          .AndKnowsIt()
          .Refuses({{"8", kRange}, {"101", kRange}, {"-1", kRange}, {"nine", kArgument}, {"", kArgument}}),
      Kind("Integer over a register",
           "<Integer Name=\"N\"><pValue>R</pValue><Max>600</Max></Integer>" + Short())
          .Says("5")
          .Within("0..600/1")
          .Takes("258", "258", "0201ff800000c03f41420000")
          .AndKnowsIt()
          .Refuses({{"601", kRange}, {"-1", kRange}}),
      Kind("Integer with an index",
           "<Integer Name=\"N\"><pIndex>I</pIndex><ValueIndexed Index=\"3\">30</ValueIndexed>"
           "<pValueIndexed Index=\"5\">R</pValueIndexed><ValueDefault>1</ValueDefault></Integer>"
           "<Integer Name=\"I\"><Value>5</Value></Integer>" +
               Short())
          .Says("5")
          .Within("0..65535/1")
          .Takes("1", "1", "0100ff800000c03f41420000")
          .AndKnowsIt()
          .Refuses({{"65536", kRange}}),
      Kind("IntReg", At("IntReg", 0x10, 2, "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess>"))
          .Says("5")
          .Within("0..65535/1")
          .Takes("0x1234", "4660", "3412ff800000c03f41420000")
          .AndKnowsIt()
          .Refuses({{"65536", kRange}, {"-1", kRange}, {"x", kArgument}}),
      Kind("IntReg signed", At("IntReg", 0x10, 3, "<Sign>Signed</Sign><Endianess>BigEndian</Endianess>"))
          .Says("327935")
          .Within("-8388608..8388607/1")
          .Takes("-2", "-2", "fffffe800000c03f41420000")
          .AndKnowsIt()
          .Refuses({{"8388608", kRange}}),
      Kind("IntReg as wide as a number",
           At("IntReg", 0x10, 8, "<Sign>Signed</Sign><Endianess>BigEndian</Endianess>"))
          .Says("360568895410585663")
          .Within(kWhole)
          .Takes("-1", "-1", "ffffffffffffffff41420000")
          .AndKnowsIt()
          .Refuses({{"one", kArgument}}),
      Kind("MaskedIntReg",
           At("MaskedIntReg", 0x10, 4,
              "<LSB>16</LSB><MSB>23</MSB><Sign>Signed</Sign><Endianess>LittleEndian</Endianess>"))
          .Says("-1")
          .Within("-128..127/1")
          .Takes("2", "2", "050002800000c03f41420000")
          .AndKnowsIt()
          .Refuses({{"128", kRange}, {"-129", kRange}}),
      Kind("MaskedIntReg of one bit",
           At("MaskedIntReg", 0x10, 4, "<Bit>0</Bit><Endianess>BigEndian</Endianess>"))
          .Says("0")
          .Within("0..1/1")
          .Takes("1", "1", "8500ff800000c03f41420000")
          .AndKnowsIt()
          .Refuses({{"2", kRange}}),
      Kind("StructEntry",
           "<StructReg Comment=\"c\"><Address>0x10</Address><Length>2</Length><AccessMode>RW</AccessMode>"
           "<pPort>Device</pPort><Endianess>BigEndian</Endianess><StructEntry Name=\"Other\"><Bit>15</Bit>"
           "</StructEntry><StructEntry Name=\"N\"><LSB>7</LSB><MSB>4</MSB></StructEntry></StructReg>")
          .Says("5")
          .Within("0..15/1")
          .Takes("10", "10", "0a00ff800000c03f41420000")
          .AndKnowsIt()
          .Refuses({{"16", kRange}}),
      Kind("IntConverter",
           "<IntConverter Name=\"N\"><FormulaTo>FROM-1</FormulaTo><FormulaFrom>TO+1</FormulaFrom>"
           "<pValue>R</pValue><Slope>Increasing</Slope></IntConverter>" +
               Short())
          .Says("6")
          .Within("1..65536/1")
          .Takes("10", "10", "0900ff800000c03f41420000")
          .Refuses({{"0", kRange}, {"65537", kRange}, {"x", kArgument}}),
      Kind("IntSwissKnife",
           "<IntSwissKnife Name=\"N\"><pVariable Name=\"A\">R</pVariable><Constant Name=\"C\">4</Constant>"
           "<Expression Name=\"E\">A-C</Expression><Formula>E*10+C</Formula></IntSwissKnife>" +
               Short())
          .Is(RO)
          .Says("14")
          .Within(kWhole)
          .Refuses({{"1", kAccess}, {"x", kAccess}}),
      Kind("IntSwissKnife inside an address",
           "<IntReg Name=\"R\"><IntSwissKnife Name=\"N\"><Formula>0x10</Formula></IntSwissKnife>"
           "<Length>1</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>"
           "<Endianess>LittleEndian</Endianess></IntReg>")
          .At("_R_N")
          .Is(RO)
          .Says("16")
          .Within(kWhole)
          .Refuses({{"1", kAccess}}),
      Kind(
          "Group",
          "<Group Comment=\"outer\"><Group Comment=\"inner\"><Integer Name=\"N\"><pValue>R</pValue></Integer>"
          "</Group>" +
              Short() + "</Group>")
          .Says("5")
          .Within("0..65535/1")
          .Takes("6", "6", "0600ff800000c03f41420000")
          .AndKnowsIt()
          .Refuses({{"65536", kRange}}),
  };
}

std::vector<Kind> Floats() {
  return {
      Kind("Float", "<Float Name=\"N\"><Value>1.25</Value><Min>-1</Min><Max>2.5</Max><Inc>0.5</Inc></Float>")
          .Says("1.25")
          .Within("-1..2.5/0.5")
          .Takes("2.2", "2.2", kUntouched)
          .Refuses({{"2.6", kRange}, {"-1.1", kRange}, {"two", kArgument}, {"nan", kArgument}}),
      Kind("Float over an integer", "<Float Name=\"N\"><pValue>R</pValue></Float>" + Short())
          .Says("5")
          .Within("0..65535/1")
          .Takes("6.4", "6", "0600ff800000c03f41420000")
          .Refuses({{"65536", kRange}, {"-1", kRange}}),
      Kind("Float with an index",
           "<Float Name=\"N\"><pIndex>I</pIndex><ValueIndexed Index=\"1\">0.5</ValueIndexed>"
           "<ValueDefault>2.5</ValueDefault></Float><Integer Name=\"I\"><Value>1</Value></Integer>")
          .Says("0.5")
          .Within(kReal)
          .Takes("3.5", "3.5", kUntouched)
          .Refuses({{"x", kArgument}}),
      Kind("FloatReg of 4 bytes", At("FloatReg", 0x14, 4, "<Endianess>LittleEndian</Endianess>"))
          .Says("1.5")
          .Within("-3.40282e+38..3.40282e+38/-")
          .Takes("-2", "-2", "0500ff80000000c041420000")
          .Refuses({{"1e39", kRange}, {"-1e39", kRange}, {"x", kArgument}}),
      Kind("FloatReg of 8 bytes", At("FloatReg", 0x10, 8, "<Endianess>BigEndian</Endianess>"))
          .Says("1.42887e-284")
          .Within(kReal)
          .Takes("1.5", "1.5", "3ff800000000000041420000")
          .Refuses({{"", kArgument}}),
      Kind("Converter",
           "<Converter Name=\"N\"><FormulaTo>FROM*10</FormulaTo><FormulaFrom>TO/10</FormulaFrom>"
           "<pValue>R</pValue><Slope>Increasing</Slope></Converter>" +
               Short())
          .Says("0.5")
          .Within("0..6553.5/-")
          .Takes("1.24", "1.2", "0c00ff800000c03f41420000")
          .Refuses({{"6554", kRange}, {"-0.1", kRange}, {"x", kArgument}}),
      Kind("Converter over an enumeration",
           "<Converter Name=\"N\"><FormulaTo>FROM/2</FormulaTo><FormulaFrom>TO*2</FormulaFrom>"
           "<pValue>E</pValue></Converter><Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>5</Value>"
           "<NumericValue>5.5</NumericValue></EnumEntry><EnumEntry Name=\"B\"><Value>6</Value></EnumEntry>"
           "<pValue>R</pValue></Enumeration>" +
               Short())
          .Says("11")
          .Within(kReal)
          .Takes("14", "12", "0600ff800000c03f41420000")
          .Refuses({{"x", kArgument}}),
      Kind("SwissKnife",
           "<SwissKnife Name=\"N\"><pVariable Name=\"A\">R</pVariable><Constant Name=\"C\">0.25</Constant>"
           "<Formula>A*C</Formula></SwissKnife>" +
               Short())
          .Is(RO)
          .Says("1.25")
          .Within(kReal)
          .Refuses({{"1", kAccess}, {"x", kAccess}}),
  };
}

std::vector<Kind> Others() {
  const std::string entries =
      "<EnumEntry Name=\"A\"><Value>5</Value><Symbolic>First</Symbolic></EnumEntry>"
      "<EnumEntry Name=\"B\"><Value>0x102</Value></EnumEntry>"
      "<EnumEntry Name=\"C\"><pIsAvailable>Zero</pIsAvailable><Value>7</Value></EnumEntry>";
  const std::string zero = "<Integer Name=\"Zero\"><Value>0</Value></Integer>";
  return {
      Kind("Node", "<Node Name=\"N\"></Node>").Says("").Takes("any text", "any text", kUntouched),
      Kind("Category",
           "<Category Name=\"N\"><DisplayName>Shown</DisplayName><pFeature>I</pFeature></Category>"
           "<Integer Name=\"I\"><Value>1</Value></Integer>")
          .Is(RO)
          .Says("Shown")
          .Refuses({{"Shown", kAccess}}),
      Kind("Boolean", "<Boolean Name=\"N\"><Value>true</Value></Boolean>")
          .Says("1")
          .Takes("false", "0", kUntouched)
          .AndKnowsIt()
          .Refuses({{"2", kArgument}, {"yes", kArgument}, {"", kArgument}}),
      Kind("Boolean over a register",
           "<Boolean Name=\"N\"><pValue>R</pValue><OnValue>5</OnValue><OffValue>3</OffValue></Boolean>" +
               Short())
          .Says("1")
          .Takes("0", "0", "0300ff800000c03f41420000")
          .AndKnowsIt()
          .Refuses({{"5", kArgument}, {"True", kArgument}}),
      Kind("Command",
           "<Command Name=\"N\"><pValue>R</pValue><CommandValue>9</CommandValue></Command>" + Short())
          .Says("0")
          .Takes("true", "1", "0900ff800000c03f41420000")
          .Refuses({{"0", kArgument}, {"9", kArgument}}),
      Kind("Command without a register",
           "<Command Name=\"N\"><Value>0</Value><CommandValue>9</CommandValue></Command>")
          .Says("0")
          .Takes("1", "0", kUntouched)
          .Refuses({{"false", kArgument}}),
      Kind("Enumeration", "<Enumeration Name=\"N\">" + entries + "<Value>5</Value></Enumeration>" + zero)
          .Says("First")
          .Takes("B", "B", kUntouched)
          .AndKnowsIt()
          .Refuses({{"A", kArgument},
                    {"first", kArgument},
                    {"EnumEntry_N_A", kArgument},
                    {"5", kArgument},
                    {"C", kAccess}}),
      Kind("Enumeration over a register",
           "<Enumeration Name=\"N\">" + entries + "<pValue>R</pValue></Enumeration>" + zero + Short())
          .Says("First")
          .Takes("B", "B", "0201ff800000c03f41420000")
          .AndKnowsIt()
          .Refuses({{"A", kArgument}, {"C", kAccess}}),
      Kind("EnumEntry", "<Enumeration Name=\"N\">" + entries + "<Value>5</Value></Enumeration>" + zero)
          .At("EnumEntry_N_B")
          .Is(RO)
          .Says("258")
          .Refuses({{"258", kAccess}}),
      Kind("String", "<String Name=\"N\"><Value>was</Value></String>")
          .Says("was")
          .Takes("is", "is", kUntouched)
          .AndKnowsIt(),
      Kind("String over a register",
           "<String Name=\"N\"><pValue>S</pValue></String>" + Register("StringReg", "S", 0x18, 4))
          .Says("AB")
          .Within("up to 4")
          .Takes("x", "x", "0500ff800000c03f78000000")
          .AndKnowsIt()
          .Refuses({{"abcde", kRange}}),
      Kind("StringReg", At("StringReg", 0x18, 4, ""))
          .Says("AB")
          .Within("up to 4")
          .Takes("abcd", "abcd", "0500ff800000c03f61626364")
          .AndKnowsIt()
          .Refuses({{"abcde", kRange}}),
      Kind("Register", At("Register", 0x10, 3, ""))
          .Says("0x0500ff")
          .Takes("0xABCD", "0xabcdff", "abcdff800000c03f41420000")
          .Refuses({{"0xabcdef01", kArgument}, {"0x0", kArgument}, {"0xzz", kArgument}, {"", kArgument}}),
      Kind("ConfRom", Legacy("ConfRom")).Is(NI).Says(kAccess).Refuses({{"1", kAccess}}),
      Kind("TextDesc", Legacy("TextDesc")).Is(NI).Says(kAccess).Within(kAccess).Refuses({{"1", kAccess}}),
      Kind("IntKey", Legacy("IntKey")).Is(NI).Says(kAccess).Within(kAccess).Refuses({{"1", kAccess}}),
      Kind("AdvFeatureLock", Legacy("AdvFeatureLock")).Is(NI).Says(kAccess).Refuses({{"1", kAccess}}),
      Kind("SmartFeature", Legacy("SmartFeature"))
          .Is(NI)
          .Says(kAccess)
          .Within(kAccess)
          .Refuses({{"1", kAccess}}),
      Kind("DcamLock", Legacy("DcamLock")).Is(NI).Says(kAccess).Refuses({{"1", kAccess}}),
  };
}

std::vector<Kind> AllKinds() {
  std::vector<Kind> rows = Integers();
  for (const auto& more : {Floats(), Others()}) rows.insert(rows.end(), more.begin(), more.end());
  return rows;
}

// One row's description, connected to a device.
class Device {
 public:
  Device(const std::string& nodes, bool isOldSchema = false) {
    std::string text = Description(nodes);
    if (isOldSchema) {
      Replace(text, "SchemaMinorVersion=\"1\"", "SchemaMinorVersion=\"0\"");
      Replace(text, "Version_1_1", "Version_1_0");
    }
    map._LoadXMLFromString(text.c_str());
    port.Set(0x10, {0x05, 0x00, 0xFF, 0x80, 0x00, 0x00, 0xC0, 0x3F, 'A', 'B'});
    map._Connect(&port);
  }

  static void Replace(std::string& text, const std::string& what, const std::string& by) {
    const std::size_t at = text.find(what);
    if (at == text.npos) throw std::string("nothing to replace: ") + what;
    text.replace(at, what.size(), by);
  }

  INode& Node(const char* name) {
    INode* const node = map._GetNode(name);
    if (!node) throw std::string("no such node: ") + name;
    return *node;
  }
  IValue& Value(const char* name) { return dynamic_cast<IValue&>(Node(name)); }

  std::string Bytes() const {
    std::string text;
    for (int i = 0; i < 12; ++i) {
      char digits[3];
      std::snprintf(digits, sizeof(digits), "%02x", port.bytes[0x10U + static_cast<std::size_t>(i)]);
      text += digits;
    }
    return text;
  }

  MemoryPort port;
  CNodeMapRef map;
};

// What the call gives, or the class of what it throws.
template <class F>
std::string Outcome(const F& call) {
  try {
    return call();
  } catch (const AccessException&) {
    return kAccess;
  } catch (const InvalidArgumentException&) {
    return kArgument;
  } catch (const OutOfRangeException&) {
    return kRange;
  } catch (const LogicalErrorException&) {
    return "LogicalErrorException";
  } catch (const RuntimeException&) {
    return "RuntimeException";
  } catch (const GenericException& error) {
    return std::string("something else: ") + error.what();
  }
}

std::string TextOf(IValue& value) {
  return Outcome([&] { return std::string(value.ToString().c_str()); });
}

std::string Write(IValue& value, const char* text, bool verify = true) {
  return Outcome([&] {
    value.FromString(text, verify);
    return "written";
  });
}

std::string Short(double value) {
  char text[64];
  std::snprintf(text, sizeof(text), "%g", value);
  return text;
}

std::string LimitsOf(INode& node) {
  return Outcome([&]() -> std::string {
    if (auto* const integer = dynamic_cast<IInteger*>(&node))
      return std::to_string(integer->GetMin()) + ".." + std::to_string(integer->GetMax()) + "/" +
             std::to_string(integer->GetInc());
    if (auto* const real = dynamic_cast<IFloat*>(&node))
      return Short(real->GetMin()) + ".." + Short(real->GetMax()) + "/" +
             (real->HasInc() ? Short(real->GetInc()) : "-");
    auto* const string = dynamic_cast<IString*>(&node);
    constexpr int64_t kShort = 1000;
    if (!string || string->GetMaxLength() > kShort) return "";
    return "up to " + std::to_string(string->GetMaxLength());
  });
}

// The value by the interface that the node mainly has; as text, so that it can be compared with that.
std::string TypedRead(INode& node) {
  return Outcome([&]() -> std::string {
    if (auto* const integer = dynamic_cast<IInteger*>(&node)) return std::to_string(integer->GetValue());
    if (auto* const real = dynamic_cast<IFloat*>(&node)) return Short(real->GetValue());
    if (auto* const boolean = dynamic_cast<IBoolean*>(&node)) return boolean->GetValue() ? "1" : "0";
    if (auto* const string = dynamic_cast<IString*>(&node)) return string->GetValue().c_str();
    if (auto* const entry = dynamic_cast<IEnumEntry*>(&node)) return std::to_string(entry->GetValue());
    if (auto* const choice = dynamic_cast<IEnumeration*>(&node))
      return choice->GetCurrentEntry()->GetSymbolic().c_str();
    return dynamic_cast<IValue&>(node).ToString().c_str();
  });
}

// By every interface that can write the node.
std::vector<std::string> TypedWrites(INode& node, bool verify) {
  std::vector<std::string> outcomes;
  const auto add = [&](auto* typed, const auto& write) {
    if (typed)
      outcomes.push_back(Outcome([&] {
        write(*typed);
        return "written";
      }));
  };
  add(dynamic_cast<IInteger*>(&node), [&](IInteger& n) { n.SetValue(1, verify); });
  add(dynamic_cast<IFloat*>(&node), [&](IFloat& n) { n.SetValue(1, verify); });
  add(dynamic_cast<IBoolean*>(&node), [&](IBoolean& n) { n.SetValue(true, verify); });
  add(dynamic_cast<IString*>(&node), [&](IString& n) { n.SetValue("x", verify); });
  add(dynamic_cast<ICommand*>(&node), [&](ICommand& n) { n.Execute(verify); });
  add(dynamic_cast<IEnumeration*>(&node), [&](IEnumeration& n) { n.SetIntValue(5, verify); });
  const uint8_t byte = 1;
  add(dynamic_cast<IRegister*>(&node), [&](IRegister& n) { n.Set(&byte, 1, verify); });
  return outcomes;
}

TEST(Kinds, EachSaysTakesAndRefusesWhatItShouldUnderBothSchemas) {
  for (const Kind& row : AllKinds()) {
    for (const bool isOldSchema : {false, true}) {
      SCOPED_TRACE(std::string(row.kind) + (isOldSchema ? ", schema 1.0" : ", schema 1.1"));
      Device device(row.nodes, isOldSchema);
      INode& node = device.Node(row.node);
      IValue& value = device.Value(row.node);
      EXPECT_EQ(node.GetAccessMode(), row.access);
      EXPECT_EQ(TextOf(value), row.text);
      EXPECT_EQ(TypedRead(node), row.text);
      EXPECT_EQ(LimitsOf(node), row.limits);
      for (const Refusal& refusal : row.refused)
        EXPECT_EQ(Write(value, refusal.text), refusal.error) << refusal.text;
      EXPECT_EQ(TextOf(value), row.text) << "after what was refused";
      EXPECT_EQ(device.port.writes, 0);
      if (!row.written) continue;
      EXPECT_EQ(Write(value, row.written), "written");
      EXPECT_EQ(TextOf(value), row.readBack);
      device.map._InvalidateNodes();
      EXPECT_EQ(TextOf(value), row.readBack) << "read again";
      EXPECT_EQ(TypedRead(node), row.readBack);
      EXPECT_EQ(device.Bytes(), row.bytes);
    }
  }
}

TEST(Kinds, AreDescribedHereAsTheSchemaWants) {
  for (const Kind& row : AllKinds()) {
    SCOPED_TRACE(row.kind);
    Device device(row.nodes);
    gcstring_vector notes;
    dynamic_cast<ILoadNotes&>(*device.map._Ptr).GetLoadNotes(notes);
    EXPECT_EQ(notes.size(), row.access == NI ? 1U : 0U) << (notes.empty() ? "" : notes[0].c_str());
  }
}

struct RestrictionRow {
  const char* elements;
  EAccessMode access;
};

TEST(Kinds, AllKeepToTheirAccessModeInEveryInterface) {
  const RestrictionRow restrictions[] = {
      {"<ImposedAccessMode>RO</ImposedAccessMode>", RO}, {"<pIsLocked>One</pIsLocked>", RO},
      {"<ImposedAccessMode>WO</ImposedAccessMode>", WO}, {"<pIsAvailable>None</pIsAvailable>", NA},
      {"<pIsImplemented>None</pIsImplemented>", NI},
  };
  for (const Kind& row : AllKinds()) {
    if (row.access != RW) continue;
    for (const RestrictionRow& restriction : restrictions) {
      SCOPED_TRACE(std::string(row.kind) + " with " + restriction.elements);
      std::string nodes = row.nodes +
                          "<Integer Name=\"One\"><Value>1</Value></Integer>"
                          "<Integer Name=\"None\"><Value>0</Value></Integer>";
      Device::Replace(nodes, "Name=\"N\">", std::string("Name=\"N\">") + restriction.elements);
      Device device(nodes);
      INode& node = device.Node(row.node);
      IValue& value = device.Value(row.node);
      EXPECT_EQ(node.GetAccessMode(), restriction.access);
      const bool isReadable = IsReadable(restriction.access);
      EXPECT_EQ(TextOf(value), isReadable ? row.text : kAccess);
      EXPECT_EQ(TypedRead(node), isReadable ? row.text : kAccess);
      const bool isAvailable = IsAvailable(restriction.access);
      // What cannot be written can be as long as it is.
      if (!dynamic_cast<IString*>(&node)) {
        EXPECT_EQ(LimitsOf(node), isAvailable || !*row.limits ? row.limits : kAccess);
      }
      const char* const expected = IsWritable(restriction.access) ? "written" : kAccess;
      for (const bool verify : {true, false}) {
        EXPECT_EQ(Write(value, row.written, verify), expected);
        if (expected == kAccess) {
          for (const std::string& outcome : TypedWrites(node, verify)) EXPECT_EQ(outcome, kAccess);
        }
      }
      if (expected == kAccess) {
        EXPECT_EQ(device.port.writes, 0);
      }
    }
  }
}

TEST(Kinds, KnowWhetherTheyRememberTheirValue) {
  for (const Kind& row : AllKinds()) {
    const std::string kind = row.kind;
    // These have no value of their own to remember.
    const bool remembers = row.access != NI && kind != "Node" && kind != "Category" && kind != "EnumEntry" &&
                           kind.find("Command") == kind.npos;
    SCOPED_TRACE(kind);
    Device device(row.nodes);
    IValue& value = device.Value(row.node);
    EXPECT_FALSE(value.IsValueCacheValid());
    TextOf(value);
    EXPECT_EQ(value.IsValueCacheValid(), remembers) << "read";
    device.Node(row.node).InvalidateNode();
    EXPECT_FALSE(value.IsValueCacheValid()) << "invalidated";
    if (!row.written) continue;
    Write(value, row.written);
    EXPECT_EQ(value.IsValueCacheValid(), row.staysValid) << "written";
    const int reads = device.port.reads;
    EXPECT_EQ(TextOf(value), row.readBack);
    if (row.staysValid) {
      EXPECT_EQ(device.port.reads, reads);
    }
    device.map._InvalidateNodes();
    EXPECT_FALSE(value.IsValueCacheValid()) << "all invalidated";
  }
}

TEST(Kinds, ARegisterIsWrittenAsFarAsItIsGiven) {
  Device device(At("Register", 0x10, 4, ""));
  IRegister& reg = dynamic_cast<IRegister&>(device.Node("N"));
  const uint8_t bytes[] = {1, 2, 3, 4, 5};
  reg.Set(bytes, 2);
  EXPECT_FALSE(reg.IsValueCacheValid()) << "the rest is not known";
  EXPECT_EQ(device.Bytes(), "0102ff800000c03f41420000");
  uint8_t read[4] = {};
  reg.Get(read, 3);
  EXPECT_EQ(read[2], 0xFF);
  EXPECT_EQ(read[3], 0) << "no more than was asked for";
  EXPECT_EQ(Outcome([&] { return reg.Get(read, 5), "read"; }), kRange);
  EXPECT_EQ(Outcome([&] { return reg.Set(bytes, 5, false), "written"; }), kRange);
  EXPECT_EQ(Outcome([&] { return reg.Get(nullptr, 1), "read"; }), kArgument);
  EXPECT_EQ(Outcome([&] { return reg.Set(bytes, -1), "written"; }), kArgument);
  reg.Set(bytes, 4);
  EXPECT_TRUE(reg.IsValueCacheValid());
  const int reads = device.port.reads;
  reg.Get(read, 4);
  EXPECT_EQ(read[3], 4);
  EXPECT_EQ(device.port.reads, reads);
  reg.Get(read, 4, false, true);
  EXPECT_FALSE(reg.IsValueCacheValid());
  EXPECT_EQ(reg.GetAddress(), 0x10);
  EXPECT_EQ(reg.GetLength(), 4);
}

TEST(Kinds, APortPassesBytesAndKnowsItsProperties) {
  for (const bool isOldSchema : {false, true}) {
    Device device(
        "<Port Name=\"P\"></Port><Port Name=\"Swapped\"><SwapEndianess>Yes</SwapEndianess>"
        "<CacheChunkData>Yes</CacheChunkData></Port><Port Name=\"Chunk\"><ChunkID>1A2b</ChunkID></Port>"
        "<Port Name=\"Named\"><pChunkID>Id</pChunkID></Port><String Name=\"Id\"><Value>77</Value></String>",
        isOldSchema);
    IPort& port = dynamic_cast<IPort&>(device.Node("P"));
    uint8_t byte = 0;
    EXPECT_EQ(port.GetAccessMode(), NI);
    EXPECT_EQ(Outcome([&] { return port.Read(&byte, 0x10, 1), "read"; }), kAccess);
    EXPECT_EQ(Outcome([&] { return port.Write(&byte, 0x10, 1), "written"; }), kAccess);
    EXPECT_TRUE(device.map._Connect(&device.port, "P"));
    EXPECT_EQ(port.GetAccessMode(), RW);
    port.Read(&byte, 0x10, 1);
    EXPECT_EQ(byte, 5);
    byte = 6;
    port.Write(&byte, 0x10, 1);
    EXPECT_EQ(device.port.bytes[0x10], 6);
    EXPECT_EQ(Outcome([&] { return port.Read(&byte, -1, 1), "read"; }), "RuntimeException");
    const auto chunk = [&](const char* name) -> IChunkPort& {
      return dynamic_cast<IChunkPort&>(device.Node(name));
    };
    const auto construct = [&](const char* name) -> IPortConstruct& {
      return dynamic_cast<IPortConstruct&>(device.Node(name));
    };
    EXPECT_EQ(construct("P").GetSwapEndianess(), No);
    EXPECT_EQ(construct("Swapped").GetSwapEndianess(), Yes);
    EXPECT_EQ(chunk("P").CacheChunkData(), No);
    EXPECT_EQ(chunk("Swapped").CacheChunkData(), Yes);
    EXPECT_EQ(chunk("P").GetChunkID(), "");
    EXPECT_EQ(chunk("Chunk").GetChunkID(), "1A2b");
    EXPECT_EQ(chunk("Named").GetChunkID(), "77");
    EXPECT_EQ(device.Node("Chunk").GetAccessMode(), NA);
    EXPECT_EQ(device.Node("Named").GetAccessMode(), NA);
  }
}

}  // namespace
