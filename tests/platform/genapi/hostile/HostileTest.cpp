// Descriptions made to do harm: an exception of the right class that names element and line, or an answer; within one
// second and 256 MiB; never a crash or a hang.
#include <gtest/gtest.h>
#include <zip.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "../MemoryPort.h"
#include "GenApi/ILoadNotes.h"
#include "Limited.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

std::string Explain(const char* type, const GenericException& error) {
  return std::string(type) + ": " + error.what();
}

// What came out, as one text.
std::string Answer(const std::function<std::string()>& work) {
  try {
    return work();
  } catch (const PropertyException& error) {
    return Explain("PropertyException", error);
  } catch (const LogicalErrorException& error) {
    return Explain("LogicalErrorException", error);
  } catch (const OutOfRangeException& error) {
    return Explain("OutOfRangeException", error);
  } catch (const InvalidArgumentException& error) {
    return Explain("InvalidArgumentException", error);
  } catch (const AccessException& error) {
    return Explain("AccessException", error);
  } catch (const RuntimeException& error) {
    return Explain("RuntimeException", error);
  } catch (const GenericException& error) {
    return Explain("GenericException", error);
  } catch (const std::exception& error) {
    return std::string("std::exception: ") + error.what();
  }
}

using Use = std::function<std::string(Camera&)>;

std::string Loaded(Camera&) {
  return "loaded";
}
Use TextOf(const char* name) {
  return [name](Camera& camera) { return camera.Text(name); };
}
Use AccessOf(const char* name) {
  return [name](Camera& camera) { return std::to_string(camera.Access(name)); };
}

// Loads the nodes, uses them, and expects all of `expected` in what comes out.
void Expect(const char* name, const std::function<std::string()>& nodes, const Use& use,
            const std::vector<std::string>& expected) {
  const Outcome outcome = RunLimited([&] {
    return Answer([&] {
      Camera camera(nodes());
      return use(camera);
    });
  });
  for (const std::string& text : expected)
    EXPECT_NE(outcome.text.find(text), std::string::npos)
        << name << " gives: " << outcome.text.substr(0, 2000);
  ExpectModest(outcome, name);
}

void Expect(const char* name, const std::string& nodes, const Use& use,
            const std::vector<std::string>& expected) {
  Expect(
      name, [&] { return nodes; }, use, expected);
}

std::string Repeat(const std::string& text, std::size_t count) {
  std::string all;
  all.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

std::string Number(std::size_t i) {
  return std::to_string(i);
}

const std::string kPlace = "<Address>0</Address><Length>4</Length><pPort>Device</pPort>";

// Circles

struct CircleRow {
  const char* name;
  std::string nodes;
  const char* element;  // where it closes
};

TEST(Hostile, ReadingInCirclesIsRefusedWithElementAndLine) {
  const std::string formula = "<Formula>V</Formula>";
  const std::string both = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>";
  const std::vector<CircleRow> rows = {
      {"value",
       "<Integer Name=\"A\"><pValue>B</pValue></Integer>\n<Integer Name=\"B\"><pValue>A</pValue></Integer>",
       "pValue"},
      {"real value",
       "<Float Name=\"A\"><pValue>B</pValue></Float>\n<Float Name=\"B\"><pValue>A</pValue></Float>",
       "pValue"},
      {"text",
       "<String Name=\"A\"><pValue>B</pValue></String>\n<String Name=\"B\"><pValue>A</pValue></String>",
       "pValue"},
      {"minimum",
       "<Integer Name=\"A\"><Value>1</Value><pMin>B</pMin></Integer>\n<Integer "
       "Name=\"B\"><Value>1</Value><pMin>A</pMin></Integer>",
       "pMin"},
      {"maximum",
       "<Float Name=\"A\"><Value>1</Value><pMax>B</pMax></Float>\n<Float "
       "Name=\"B\"><Value>1</Value><pMax>A</pMax></Float>",
       "pMax"},
      {"increment",
       "<Integer Name=\"A\"><Value>1</Value><pInc>B</pInc></Integer>\n<Integer "
       "Name=\"B\"><Value>1</Value><pInc>A</pInc></Integer>",
       "pInc"},
      {"copy",
       "<Integer Name=\"A\"><Value>1</Value><pValueCopy>B</pValueCopy></Integer>\n<Integer "
       "Name=\"B\"><Value>1</Value><pValueCopy>A</pValueCopy></Integer>",
       "pValueCopy"},
      {"index",
       "<Integer Name=\"A\"><pIndex>B</pIndex><ValueDefault>1</ValueDefault></Integer>\n<Integer "
       "Name=\"B\"><pIndex>A</pIndex><ValueDefault>1</ValueDefault></Integer>",
       "pIndex"},
      {"indexed value",
       "<Integer Name=\"I\"><Value>0</Value></Integer><Integer Name=\"A\"><pIndex>I</pIndex><pValueIndexed "
       "Index=\"0\">A</pValueIndexed><ValueDefault>1</ValueDefault></Integer>",
       "pValueIndexed"},
      {"default value",
       "<Integer Name=\"I\"><Value>0</Value></Integer><Integer "
       "Name=\"A\"><pIndex>I</pIndex><pValueDefault>A</pValueDefault></Integer>",
       "pValueDefault"},
      {"choice",
       "<Enumeration Name=\"A\"><EnumEntry Name=\"X\"><Value>1</Value></EnumEntry><pValue>B</pValue>"
       "</Enumeration><Integer Name=\"B\"><pValue>A</pValue></Integer>",
       "pValue"},
      {"truth",
       "<Boolean Name=\"A\"><pValue>B</pValue></Boolean><Integer Name=\"B\"><pValue>A</pValue></Integer>",
       "pValue"},
      {"command",
       "<Command Name=\"A\"><Value>0</Value><pCommandValue>B</pCommandValue></Command><Integer "
       "Name=\"B\"><pValue>A</pValue></Integer>",
       "pValue"},
      {"formula",
       "<SwissKnife Name=\"A\"><pVariable Name=\"V\">B</pVariable>" + formula +
           "</SwissKnife><IntSwissKnife Name=\"B\"><pVariable Name=\"V\">A</pVariable>" + formula +
           "</IntSwissKnife>",
       "pVariable"},
      {"limits in a formula",
       "<SwissKnife Name=\"A\"><pVariable Name=\"V.Min\">B</pVariable>" + formula +
           "</SwissKnife><Float Name=\"B\"><Value>1</Value><pMin>A</pMin></Float>",
       "pMin"},
      {"converter",
       "<Converter Name=\"A\">" + both + "<pValue>B</pValue></Converter><IntConverter Name=\"B\">" + both +
           "<pValue>A</pValue></IntConverter>",
       "pValue"},
      {"implemented",
       "<Integer Name=\"A\"><pIsImplemented>B</pIsImplemented><Value>1</Value></Integer>\n<Integer "
       "Name=\"B\"><pIsImplemented>A</pIsImplemented><Value>1</Value></Integer>",
       "pIsImplemented"},
      {"available", "<Integer Name=\"A\"><pIsAvailable>A</pIsAvailable><Value>1</Value></Integer>",
       "pIsAvailable"},
      {"locked",
       "<Integer Name=\"A\"><pIsLocked>B</pIsLocked><Value>1</Value></Integer>\n<Integer "
       "Name=\"B\"><pValue>A</pValue></Integer>",
       "pValue"},
      {"address",
       "<IntReg Name=\"A\">" + kPlace + "<pAddress>B</pAddress></IntReg>\n<IntReg Name=\"B\">" + kPlace +
           "<pAddress>A</pAddress></IntReg>",
       "pAddress"},
      {"offset",
       "<Integer Name=\"I\"><Value>1</Value></Integer><IntReg Name=\"A\">" + kPlace +
           "<pIndex pOffset=\"A\">I</pIndex></IntReg>",
       "pOffset"},
      {"length", "<IntReg Name=\"A\"><Address>0</Address><pLength>A</pLength><pPort>Device</pPort></IntReg>",
       "pLength"},
      {"formula in an address",
       "<IntReg Name=\"A\">" + kPlace + "<IntSwissKnife><pVariable Name=\"V\">A</pVariable>" + formula +
           "</IntSwissKnife></IntReg>",
       "pVariable"},
      {"structure",
       "<StructReg>" + kPlace +
           "<pAddress>A</pAddress><StructEntry Name=\"A\"><Bit>0</Bit></StructEntry>"
           "</StructReg>",
       "pAddress"},
      {"chunk",
       "<Port Name=\"P\"><pChunkID>S</pChunkID></Port><StringReg "
       "Name=\"S\"><Address>0</Address><Length>4</Length><pPort>P</pPort></StringReg>",
       "pPort"},
      {"category",
       "<Category Name=\"Root\"><pFeature>C</pFeature></Category><Category "
       "Name=\"C\"><pFeature>Root</pFeature></Category>",
       "pFeature"},
  };
  for (const CircleRow& row : rows) {
    // It closes in the second node, which stands in a line of its own where there are lines.
    const char* const line =
        row.nodes.find('\n') == row.nodes.npos ? " at line 3 of node " : " at line 4 of node ";
    Expect(row.name, row.nodes, Loaded,
           {"RuntimeException: ", "Element " + std::string(row.element) + line, "read cycle detected"});
  }
  constexpr std::size_t kCount = 100000;
  Expect("a large circle",
         [] {
           std::string nodes;
           for (std::size_t i = 0; i < kCount; ++i)
             nodes += "<Integer Name=\"N" + Number(i) + "\"><pValue>N" + Number((i + 1) % kCount) +
                      "</pValue></Integer>\n";
           return nodes;
         },
         Loaded,
         {"RuntimeException: ", "Element pValue at line 100002 of node N99999 (Integer, line 100002)",
          "read cycle detected : N0 -> N1 -> "});
}

// These mean something: a selector may be selected by what it selects, and so on.
TEST(Hostile, OtherCirclesAreHarmless) {
  const std::string pair =
      "<Integer Name=\"A\"><pError>E</pError><pBlockPolling>B</pBlockPolling><pAlias>B</pAlias>"
      "<pCastAlias>B</pCastAlias><pInvalidator>B</pInvalidator><Value>1</Value><pSelected>B</pSelected></"
      "Integer>"
      "<Integer Name=\"B\"><pError>E</pError><pBlockPolling>A</pBlockPolling><pAlias>A</pAlias>"
      "<pCastAlias>A</pCastAlias><pInvalidator>A</pInvalidator><Value>1</Value><pSelected>A</pSelected></"
      "Integer>"
      "<Enumeration Name=\"E\"><pError>E</pError><EnumEntry "
      "Name=\"None\"><Value>0</Value></EnumEntry><Value>0</Value>"
      "<pSelected>E</pSelected></Enumeration>"
      "<Enumeration Name=\"F\"><EnumEntry "
      "Name=\"X\"><pIsAvailable>F</pIsAvailable><Value>1</Value></EnumEntry>"
      "<Value>1</Value></Enumeration>";
  Expect("harmless circles", pair,
         [](Camera& camera) {
           camera.Integer("A").SetValue(2);
           camera.As<IEnumeration>("F") = "X";
           camera.map._Poll(1000);
           camera.map._InvalidateNodes();
           NodeList_t children;
           camera.Node("A").GetChildren(children, ctDependingNodes);
           FeatureList_t selected;
           dynamic_cast<ISelector&>(camera.Node("A")).GetSelectedFeatures(selected);
           CSelectorPtr selector(camera.map._GetNode("A"));
           return camera.Text("A") + camera.Text("B") + camera.Text("F") + Number(children.size()) +
                  Number(selected.size());
         },
         {"21X1", "1"});
}

TEST(Hostile, ExpressionsInCirclesFailWhenTheyAreUsed) {
  Expect(
      "expressions",
      "<SwissKnife Name=\"K\"><Expression Name=\"A\">B+1</Expression><Expression Name=\"B\">A+1</Expression>"
      "<Formula>A</Formula></SwissKnife>",
      TextOf("K"),
      {"LogicalErrorException: ", "K : Failed to evaluate formula 'A'", "in node 'K'", "line 3)"});
  Expect(
      "self",
      "<IntSwissKnife Name=\"K\"><Expression Name=\"A\">A</Expression><Formula>A</Formula></IntSwissKnife>",
      TextOf("K"), {"LogicalErrorException: ", "in node 'K'", "line 3)"});
}

// Every level reads the next one twice: what is not remembered doubles with each.
TEST(Hostile, WorkThatDoublesWithEveryLevelEnds) {
  const auto knives = [](const std::string& last) {
    return [last] {
      std::string nodes = last;
      for (std::size_t i = 0; i < 40; ++i)
        nodes += "<IntSwissKnife Name=\"K" + Number(i) + "\"><pVariable Name=\"A\">K" + Number(i + 1) +
                 "</pVariable><pVariable Name=\"B\">K" + Number(i + 1) +
                 "</pVariable><Formula>A+B</Formula></IntSwissKnife>\n";
      return nodes;
    };
  };
  const std::string uncached = "<IntReg Name=\"K40\">" + kPlace + "<Cachable>NoCache</Cachable></IntReg>";
  const std::string cached = "<IntReg Name=\"K40\">" + kPlace + "</IntReg>";
  Expect("uncached", knives(uncached), TextOf("K0"),
         {"RuntimeException: ", "too much at K", "(IntSwissKnife, line ", "in node 'K"});
  Expect("asked to read anew", knives(cached),
         [](Camera& camera) {
           return Number(static_cast<std::size_t>(camera.Integer("K0").GetValue(false, true)));
         },
         {"RuntimeException: ", "too much"});
  Expect("cached", knives(cached), TextOf("K0"), {"0"});
  Expect("long formulas",
         [&] {
           std::string nodes = uncached;
           for (std::size_t i = 30; i < 40; ++i)
             nodes += "<IntSwissKnife Name=\"K" + Number(i) + "\"><pVariable Name=\"A\">K" + Number(i + 1) +
                      "</pVariable><pVariable Name=\"B\">K" + Number(i + 1) + "</pVariable><Formula>A+B" +
                      Repeat("+1", 200000) + "</Formula></IntSwissKnife>\n";
           return nodes;
         },
         TextOf("K30"), {"RuntimeException: ", "too much at K", "(IntSwissKnife, line "});
  Expect("access", knives(cached), AccessOf("K0"), {"3"});
  Expect("conditions",
         [] {
           std::string nodes;
           for (std::size_t i = 0; i < 40; ++i) {
             const std::string next = "E" + Number((i + 1) % 40);
             nodes += "<Enumeration Name=\"E" + Number(i) + "\"><EnumEntry Name=\"A\"><pIsAvailable>" + next +
                      "</pIsAvailable><Value>0</Value></EnumEntry><EnumEntry Name=\"B\"><pIsAvailable>" +
                      next + "</pIsAvailable><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>\n";
           }
           return nodes;
         },
         AccessOf("E0"), {""});
  Expect(
      "copies",
      [] {
        std::string nodes = "<Integer Name=\"C40\"><Value>1</Value></Integer>";
        for (std::size_t i = 0; i < 40; ++i)
          nodes += "<Integer Name=\"C" + Number(i) + "\"><pValueCopy>C" + Number(i + 1) +
                   "</pValueCopy><pValue>C" + Number(i + 1) + "</pValue></Integer>\n";
        return nodes;
      },
      [](Camera& camera) {
        camera.Integer("C0").SetValue(2);
        return "done";
      },
      {"RuntimeException: ", "too much"});
}

// One call that changes very much.
TEST(Hostile, ChangesThatReachVeryManyNodesEnd) {
  constexpr std::size_t kCount = 100000;
  constexpr std::size_t kChain = 4000;
  Expect(
      "polling",
      [] {
        std::string nodes;
        for (std::size_t i = 0; i < kCount; ++i) {
          const std::string place =
              i % kChain == 0 ? kPlace : "<pAddress>R" + Number(i - 1) + "</pAddress>" + kPlace;
          nodes += "<IntReg Name=\"R" + Number(i) + "\">" + place + "<PollingTime>1</PollingTime></IntReg>\n";
        }
        return nodes;
      },
      [](Camera& camera) {
        camera.map._Poll(INT64_MAX);
        camera.map._Poll(INT64_MAX);
        return "done";
      },
      {"done"});
  Expect(
      "copies",
      [] {
        std::string nodes = "<Integer Name=\"I\"><Value>0</Value></Integer>\n<Integer Name=\"A\">";
        for (std::size_t i = 0; i < kCount; ++i) nodes += "<pValueCopy>N" + Number(i) + "</pValueCopy>";
        nodes += "<pValue>I</pValue></Integer>";
        for (std::size_t i = 0; i < kCount; ++i)
          nodes += "<Integer Name=\"N" + Number(i) + "\"><Value>0</Value></Integer>";
        return nodes;
      },
      [](Camera& camera) {
        camera.Integer("A").SetValue(7);
        return camera.Text("N0") + camera.Text("N99999");
      },
      {"77"});
  Expect(
      "registers of one place",
      [] {
        std::string nodes;
        for (std::size_t i = 0; i < kCount; ++i) nodes += Register("IntReg", "R" + Number(i), 0, 4);
        return nodes;
      },
      [](Camera& camera) {
        for (std::size_t i = 0; i < kCount; ++i) camera.Integer(("R" + Number(i)).c_str()).GetValue();
        camera.Integer("R0").SetValue(5);
        return camera.Text("R99999");
      },
      {"5"});
}

std::string SelectorsOf(std::size_t count, const char* max) {
  std::string nodes =
      "<Category Name=\"Root\"><pFeature>F</pFeature></Category>"
      "<Integer Name=\"F\"><Streamable>Yes</Streamable><Value>1</Value></Integer>";
  for (std::size_t i = 0; i < count; ++i)
    nodes += "<Integer Name=\"S" + Number(i) + "\"><Value>0</Value><Min>0</Min><Max>" + max +
             "</Max><pSelected>F</pSelected></Integer>";
  return nodes;
}

TEST(Hostile, SelectorsOfEndlessCombinationsAreNotGoneThrough) {
  Expect("as many settings as asked for", SelectorsOf(20, "60000"),
         [](Camera& camera) {
           CFeatureBag few;
           const int64_t count = few.StoreToBag(camera.map._Ptr, 3);
           return Number(static_cast<std::size_t>(count)) + " settings, S19 is " + camera.Text("S19");
         },
         {"3 settings, S19 is 0"});
  // Takes its time, but ends, and leaves the selectors as they were.
  const Outcome outcome = RunLimited([] {
    Camera camera(SelectorsOf(2, "599"));
    return Answer([&] {
             CFeatureBag all;
             all.StoreToBag(camera.map._Ptr);
             return std::string("stored");
           }) +
           ", S1 is " + camera.Text("S1");
  });
  EXPECT_NE(outcome.text.find("RuntimeException: The selectors of 'F' have too many combinations"),
            std::string::npos)
      << outcome.text;
  EXPECT_NE(outcome.text.find(", S1 is 0"), std::string::npos) << outcome.text;
}

// Links to nothing

TEST(Hostile, LinksToNothingAreRefusedWithElementAndLine) {
  const std::string both = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>";
  const std::vector<std::pair<const char*, std::string>> rows = {
      {"pValue", "<Integer Name=\"A\">\n<pValue>X</pValue></Integer>"},
      {"pValueCopy", "<Integer Name=\"A\"><Value>1</Value>\n<pValueCopy>X</pValueCopy></Integer>"},
      {"pMin", "<Integer Name=\"A\"><Value>1</Value>\n<pMin>X</pMin></Integer>"},
      {"pMax", "<Float Name=\"A\"><Value>1</Value>\n<pMax>X</pMax></Float>"},
      {"pInc", "<Float Name=\"A\"><Value>1</Value>\n<pInc>X</pInc></Float>"},
      {"pIndex", "<Integer Name=\"A\">\n<pIndex>X</pIndex><ValueDefault>1</ValueDefault></Integer>"},
      {"pValueIndexed",
       "<Integer Name=\"I\"><Value>0</Value></Integer><Integer Name=\"A\"><pIndex>I</pIndex>\n"
       "<pValueIndexed Index=\"0\">X</pValueIndexed></Integer>"},
      {"pValueDefault",
       "<Integer Name=\"I\"><Value>0</Value></Integer><Integer Name=\"A\"><pIndex>I</pIndex>\n"
       "<pValueDefault>X</pValueDefault></Integer>"},
      {"pIsImplemented", "<Node Name=\"A\">\n<pIsImplemented>X</pIsImplemented></Node>"},
      {"pIsAvailable", "<Node Name=\"A\">\n<pIsAvailable>X</pIsAvailable></Node>"},
      {"pIsLocked", "<Node Name=\"A\">\n<pIsLocked>X</pIsLocked></Node>"},
      {"pBlockPolling", "<Node Name=\"A\">\n<pBlockPolling>X</pBlockPolling></Node>"},
      {"pError", "<Node Name=\"A\">\n<pError>X</pError></Node>"},
      {"pVariable",
       "<SwissKnife Name=\"A\">\n<pVariable Name=\"V\">X</pVariable><Formula>V</Formula></SwissKnife>"},
      {"pValue", "<Converter Name=\"A\">" + both + "\n<pValue>X</pValue></Converter>"},
      {"pCommandValue", "<Command Name=\"A\"><Value>0</Value>\n<pCommandValue>X</pCommandValue></Command>"},
      {"pPort", "<Register Name=\"A\"><Length>4</Length>\n<pPort>X</pPort></Register>"},
      {"pAddress", "<Register Name=\"A\">" + kPlace + "\n<pAddress>X</pAddress></Register>"},
      {"pLength", "<Register Name=\"A\"><pPort>Device</pPort>\n<pLength>X</pLength></Register>"},
      {"pOffset", "<Integer Name=\"I\"><Value>0</Value></Integer><Register Name=\"A\">" + kPlace +
                      "\n<pIndex pOffset=\"X\">I</pIndex></Register>"},
      {"pChunkID", "<Port Name=\"A\">\n<pChunkID>X</pChunkID></Port>"},
      {"pEnumEntry", "<Enumeration Name=\"A\"><Value>0</Value>\n<pEnumEntry>X</pEnumEntry></Enumeration>"},
  };
  for (const auto& [element, nodes] : rows)
    Expect(element, nodes, Loaded,
           {"RuntimeException: ", "Element " + std::string(element) + " at line 4 of node A", "'X'"});
  Expect("in a structure",
         "<StructReg>" + kPlace +
             "\n<pIsLocked>X</pIsLocked>\n<StructEntry Name=\"A\"><Bit>0</Bit></StructEntry></StructReg>",
         Loaded,
         {"RuntimeException: ", "Element pIsLocked at line 4 of node A (MaskedIntReg, line 5)", "'X'"});
  Expect("entry in a formula",
         "<Enumeration Name=\"E\"><EnumEntry "
         "Name=\"N\"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>\n"
         "<SwissKnife Name=\"A\"><pVariable "
         "Name=\"V.Entry.X\">E</pVariable><Formula>V.Entry.X</Formula></SwissKnife>",
         TextOf("A"),
         {"LogicalErrorException: ", "Enumeration E (Enumeration, line 3) has no entry 'X'", "in node 'A'",
          "line 4)"});
}

// Size and depth

constexpr std::size_t kTenMiB = std::size_t{10} << 20;

TEST(Hostile, TenMebibytesOfNestedElementsAreRefused) {
  Expect("groups", [] { return Repeat("<Group>", kTenMiB / 7); }, Loaded,
         {"RuntimeException: ", "Element Group at line 3"});
  Expect("unknown", [] { return Repeat("<a>", kTenMiB / 3); }, Loaded,
         {"RuntimeException: ", "Element a at line 3", "too deeply"});
  Expect("lines", [] { return "<Integer Name=\"I\">" + Repeat("<x>\n", kTenMiB / 4); }, Loaded,
         {"RuntimeException: ", "Element x at line ", "too deeply"});
  Expect("extension",
         [] {
           return "<Extension>" + Repeat("<e>", kTenMiB / 7) + Repeat("</e>", kTenMiB / 7) + "</Extension>";
         },
         Loaded, {"RuntimeException: ", "Element e at line 3", "too deeply"});
  Expect("inner nodes",
         [] { return "<IntReg Name=\"R\">" + Repeat("<IntSwissKnife Name=\"K\">", kTenMiB / 24); }, Loaded,
         {"RuntimeException: ", "Element IntSwissKnife at line 3"});
  Expect("text", [] { return "<Integer Name=\"I\"><Value>" + Repeat("<b>", kTenMiB / 3); }, Loaded,
         {"RuntimeException: ", "line 3"});
}

TEST(Hostile, VeryMuchOfOneThingEitherLoadsOrIsRefused) {
  Expect("brackets", [] { return Repeat("<", kTenMiB); }, Loaded, {"RuntimeException: ", "line 3"});
  Expect(
      "ampersands", [] { return "<Node Name=\"N\"><ToolTip>" + Repeat("&", kTenMiB) + "</ToolTip></Node>"; },
      [](Camera& camera) { return Number(camera.Node("N").GetToolTip().size()); }, {Number(kTenMiB)});
  Expect("nodes",
         [] {
           std::string nodes;
           for (std::size_t i = 0; i < 400000; ++i) nodes += "<Node Name=\"N" + Number(i) + "\"/>";
           return nodes;
         },
         Loaded, {"loaded"});
  Expect(
      "links",
      [] { return "<Node Name=\"N\">" + Repeat("<pInvalidator>N</pInvalidator>", 400000) + "</Node>"; },
      [](Camera& camera) {
        NodeList_t nodes;
        camera.Node("N").GetChildren(nodes, ctInvalidatingChildren);
        camera.Node("N").InvalidateNode();
        return Number(nodes.size());
      },
      {"1"});
  Expect("notes", [] { return "<Node Name=\"N\">" + Repeat("<u/>", 2000000) + "</Node>"; }, Loaded,
         {"loaded"});
  Expect("entries",
         [] {
           std::string nodes = "<Enumeration Name=\"E\">";
           for (std::size_t i = 0; i < 100000; ++i)
             nodes += "<EnumEntry Name=\"N" + Number(i) + "\"><Value>" + Number(i) + "</Value></EnumEntry>";
           return nodes + "<Value>99999</Value></Enumeration>";
         },
         TextOf("E"), {"N99999"});
  Expect("too large", [] { return "<!--" + std::string(std::size_t{33} << 20, ' ') + "-->"; }, Loaded,
         {"RuntimeException: ", "too large"});
}

// What an entry does not say the structure says for it, so a short text asks for very much.
TEST(Hostile, StructuresThatMultiplyAreRefused) {
  Expect("structure",
         [] {
           std::string nodes = "<StructReg>" + kPlace + Repeat("<pError>E</pError>", 100000);
           for (std::size_t i = 0; i < 50000; ++i)
             nodes += "<StructEntry Name=\"N" + Number(i) + "\"><Bit>0</Bit></StructEntry>\n";
           return nodes + "</StructReg>";
         },
         Loaded, {"RuntimeException: ", "too many elements", "N19 (MaskedIntReg, line 22)"});
  Expect("structure with a formula",
         [] {
           std::string nodes = "<Integer Name=\"I\"><Value>1</Value></Integer><StructReg>" + kPlace +
                               "<IntSwissKnife Name=\"K\">" +
                               Repeat("<pVariable Name=\"V\">I</pVariable>", 100000) +
                               "<Formula>V</Formula></IntSwissKnife>\n";
           for (std::size_t i = 0; i < 50000; ++i)
             nodes += "<StructEntry Name=\"N" + Number(i) + "\"><Bit>0</Bit></StructEntry>\n";
           return nodes + "</StructReg>";
         },
         Loaded, {"RuntimeException: ", "too many elements", "_N19_K (IntSwissKnife, line 3)"});
}

// Names and texts as long as the document allows, where they are wanted often.
TEST(Hostile, LongNamesTakeNoMemoryWithoutBound) {
  constexpr std::size_t kMiB = std::size_t{1} << 20;
  const std::string longName(4 * kMiB, 'N');
  Expect("entries of a long name",
         [&] {
           std::string nodes = "<Enumeration Name=\"" + longName + "\">\n";
           for (std::size_t i = 0; i < 10000; ++i)
             nodes += "<EnumEntry Name=\"E" + Number(i) + "\"><Value>1</Value></EnumEntry>\n";
           return nodes + "<Value>1</Value></Enumeration>";
         },
         Loaded, {"RuntimeException: ", "names of inner nodes are too long", "E14 (EnumEntry, line 18)"});
  Expect(
      "notes about a long name",
      [&] {
        return "<Integer Name=\"" + longName + "\"><Value>1</Value>" + Repeat("<u/>", 2000) + "</Integer>";
      },
      [](Camera& camera) {
        gcstring_vector notes;
        dynamic_cast<ILoadNotes&>(*camera.map._Ptr).GetLoadNotes(notes);
        std::size_t bytes = 0;
        for (const gcstring& note : notes) bytes += note.size();
        return bytes < kMiB ? "brief" : "long";
      },
      {"brief"});
  Expect("attributes of a long name",
         [&] {
           return "<" + longName + Repeat(" a=\"\"", 2000) + "/><Node Name=\"N\"" +
                  Repeat(" a=\"\"", 3000000) + "/>";
         },
         Loaded, {"loaded"});
  Expect("links to a long name",
         [&] {
           return "<Node Name=\"" + longName + "\">" + Repeat("<pInvalidator>X</pInvalidator>", 2000) +
                  "</Node>";
         },
         Loaded, {"loaded"});
  for (const char* const nodes :
       {"<Integer Name=\"%\"/>", "<Integer Name=\"%\"><pValue>%</pValue></Integer>",
        "<Integer Name=\"I\"><pValue>%</pValue></Integer>", "<Integer><%/></Integer>",
        "<Integer Name=\"I\"><Value>%</Value></Integer>", "<%", "<Node Name=\"%"}) {
    std::string text = nodes;
    for (std::size_t at = 0; (at = text.find('%', at)) != text.npos; at += longName.size())
      text.replace(at, 1, longName);
    Expect(nodes, text, Loaded, {"Exception: ", "line "});
  }
}

// Long chains and wide fans of links

TEST(Hostile, LongChainsAreNotFollowedWithoutEnd) {
  constexpr std::size_t kCount = 100000;
  const auto chain = [] {
    std::string nodes = "<Integer Name=\"N" + Number(kCount) + "\"><Value>1</Value></Integer>";
    for (std::size_t i = 0; i < kCount; ++i)
      nodes += "<Integer Name=\"N" + Number(i) + "\"><pValue>N" + Number(i + 1) + "</pValue></Integer>\n";
    return nodes;
  };
  Expect("value", chain, TextOf("N0"), {"RuntimeException: ", "too deeply", "line "});
  Expect("terminals", chain,
         [](Camera& camera) {
           NodeList_t nodes;
           camera.Node("N0").GetChildren(nodes, ctTerminalNodes);
           return std::string(nodes[0]->GetName().c_str());
         },
         {"N100000"});
  // Each node has as many dependents as stand before it.
  Expect("invalidation of many", chain,
         [](Camera& camera) {
           for (std::size_t i = kCount - 100; i < kCount; ++i)
             camera.Node(("N" + Number(i)).c_str()).InvalidateNode();
           return "done";
         },
         {"done"});
}

TEST(Hostile, FansOfManyVariablesAreFine) {
  constexpr std::size_t kCount = 30000;
  Expect("variables",
         [] {
           std::string nodes = "<Integer Name=\"I\"><Value>1</Value></Integer><IntSwissKnife Name=\"K\">";
           std::string formula = "0";
           for (std::size_t i = 0; i < kCount; ++i) {
             nodes += "<pVariable Name=\"V" + Number(i) + "\">I</pVariable>";
             formula += "+V" + Number(i);
           }
           return nodes + "<Formula>" + formula + "</Formula></IntSwissKnife>";
         },
         TextOf("K"), {Number(kCount)});
  Expect("entries as variables",
         [] {
           std::string nodes = "<Enumeration Name=\"E\">";
           std::string knife = "<IntSwissKnife Name=\"K\">";
           for (std::size_t i = 0; i < kCount; ++i) {
             nodes += "<EnumEntry Name=\"N" + Number(i) + "\"><Value>1</Value></EnumEntry>";
             knife += "<pVariable Name=\"V.Entry.N" + Number(i) + "\">E</pVariable>";
           }
           return nodes + "<Value>1</Value></Enumeration>" + knife +
                  "<Formula>V.Entry.N7</Formula></IntSwissKnife>";
         },
         TextOf("K"), {"1"});
  Expect(
      "features",
      [] {
        std::string nodes = "<Category Name=\"Root\">";
        std::string features;
        for (std::size_t i = 0; i < kCount; ++i) {
          nodes += "<pFeature>N" + Number(i) + "</pFeature>";
          features += "<Integer Name=\"N" + Number(i) + "\"><Value>1</Value></Integer>";
        }
        return nodes + "</Category>" + features;
      },
      [](Camera& camera) {
        NodeList_t nodes;
        camera.Node("Root").GetChildren(nodes, ctReadingChildren);
        return Number(nodes.size()) + " " + Number(static_cast<std::size_t>(camera.Access("Root")));
      },
      {Number(kCount) + " 3"});
}

// Formulas

std::string Knives(const std::string& formula) {
  return "<SwissKnife Name=\"Real\"><Formula>" + formula +
         "</Formula></SwissKnife><IntSwissKnife Name=\"Whole\"><Formula>" + formula +
         "</Formula></IntSwissKnife>";
}

TEST(Hostile, FormulasOfAHundredThousandOperators) {
  constexpr std::size_t kCount = 100000;
  const struct {
    const char* name;
    std::string formula;
    const char* expected;
  } rows[] = {
      {"sum", "1" + Repeat("+1", kCount), "100001"},
      {"powers", "1" + Repeat("**1", kCount), "1"},
      {"comparisons", "1" + Repeat("=1", kCount), "1"},
      {"and", "1" + Repeat("&amp;&amp;1", kCount), "1"},
      {"or", "0" + Repeat("||0", kCount), "0"},
      {"brackets", Repeat("(", kCount) + "1" + Repeat(")", kCount), "LogicalErrorException: "},
      {"open brackets", Repeat("(", kCount), "LogicalErrorException: "},
      {"signs", Repeat("-", kCount) + "1", "LogicalErrorException: "},
      {"complements", Repeat("~", kCount) + "1", "LogicalErrorException: "},
      {"choices", Repeat("0?1:", kCount) + "1", "LogicalErrorException: "},
      {"choices in the middle", Repeat("1?", kCount) + "1" + Repeat(":0", kCount), "LogicalErrorException: "},
      {"calls", Repeat("SGN(", kCount) + "1" + Repeat(")", kCount), "LogicalErrorException: "},
      {"calls without brackets", Repeat("NEG ", kCount) + "1", "LogicalErrorException: "},
      {"only operators", Repeat("*", kCount), "LogicalErrorException: "},
      {"one long number", Repeat("9", kCount), ""},
      {"one long name", Repeat("A", kCount), "LogicalErrorException: "},
  };
  for (const auto& row : rows) {
    for (const char* const node : {"Real", "Whole"}) {
      std::vector<std::string> expected = {row.expected};
      if (expected[0] == "LogicalErrorException: ") {
        expected.insert(expected.end(), {"in node '" + std::string(node) + "'", "line 3)"});
      }
      Expect(
          row.name, Knives(row.formula),
          [&](Camera& camera) {
            const std::string text = camera.Text(node);
            return text == "1.00001e+05" || text == "100001" ? "100001" : text;
          },
          expected);
    }
  }
}

TEST(Hostile, FormulasAsLongAsTheDescriptionTakeNoMemoryWithoutBound) {
  for (const char* const node : {"Real", "Whole"})
    Expect("one", [] { return Knives("1" + Repeat("+1", kTenMiB / 2)); }, TextOf(node),
           {"LogicalErrorException: ", "in node '" + std::string(node) + "'", "line 3)"});
  Expect(
      "many",
      [] {
        std::string nodes;
        for (std::size_t i = 0; i < 8; ++i)
          nodes += "<SwissKnife Name=\"K" + Number(i) + "\"><Formula>1" + Repeat("+1", 450000) +
                   "</Formula></SwissKnife>\n";
        return nodes;
      },
      [](Camera& camera) {
        gcstring_vector errors;
        const bool isGood = camera.map._ParseSwissKnifes(&errors);
        return std::to_string(isGood) + ", " + Number(errors.size()) + " refused: " + errors[0].c_str();
      },
      {"0, 2 refused: K6 : Failed to evaluate formula"});
}

TEST(Hostile, ArithmeticHasNoUndefinedCorner) {
  const std::string divided = "Failed to evaluate formula '";
  for (const char* const formula : {"1/0", "1%0", "0/0", "1/(2-2)", "0x8000000000000000/0"}) {
    Expect(
        formula, Knives(formula), TextOf("Real"),
        {"LogicalErrorException: ", divided + formula, "#Infinity somewhere!", "in node 'Real'", "line 3)"});
    Expect(
        formula, Knives(formula), TextOf("Whole"),
        {"LogicalErrorException: ", divided + formula, "#Infinity somewhere!", "in node 'Whole'", "line 3)"});
  }
  const std::string converter =
      "<Integer Name=\"I\"><Value>0</Value></Integer><Converter "
      "Name=\"C\"><FormulaTo>1/FROM</FormulaTo><FormulaFrom>1/TO"
      "</FormulaFrom><pValue>I</pValue></Converter>";
  Expect("converter", converter, TextOf("C"), {"LogicalErrorException: ", "in node 'C'", "line 3)"});
  Expect("converter backwards", converter,
         [](Camera& camera) {
           camera.Float("C").SetValue(0);
           return "done";
         },
         {"LogicalErrorException: ", "in node 'C'", "line 3)"});
  Expect("condition",
         Knives("1/0") + "<Integer Name=\"I\"><pIsAvailable>Whole</pIsAvailable><Value>1</Value></Integer>",
         AccessOf("I"), {"LogicalErrorException: ", "in node 'Whole'", "line 3)"});
  Expect("smallest by minus one", Knives("0x8000000000000000/-1"), TextOf("Whole"), {"-9223372036854775808"});
  Expect("real beyond integers", Knives("1e300") + "<Integer Name=\"I\"><pValue>Real</pValue></Integer>",
         TextOf("I"), {"RuntimeException: ", "in node 'Real'", "line 3)"});
  Expect("not a number", Knives("SQRT(-1)") + "<Integer Name=\"I\"><pValue>Real</pValue></Integer>",
         TextOf("I"), {"RuntimeException: ", "in node 'Real'", "line 3)"});
}

// Numbers

TEST(Hostile, NumbersBeyondSixtyFourBitsAreRefusedWithElementAndLine) {
  for (const char* const number :
       {"18446744073709551616", "0x10000000000000000", "99999999999999999999999999", "1e40", "-", "0x",
        "1.5.2", "--1", "0x-1", "-9223372036854775809", "-0xFFFFFFFFFFFFFFFF"}) {
    Expect(number, "<Integer Name=\"I\">\n<Value>" + std::string(number) + "</Value></Integer>", Loaded,
           {"PropertyException: ", "Element Value of node 'I' at line 4", number});
    Expect(number,
           "<Register Name=\"R\"><Length>4</Length><pPort>Device</pPort>\n<Address>" + std::string(number) +
               "</Address></Register>",
           Loaded, {"PropertyException: ", "Element Address of node 'R' at line 4", number});
  }
}

TEST(Hostile, AddressesBeyondSixtyFourBitsAreRefused) {
  const auto at = [](const std::string& parts) {
    return "<Integer Name=\"I\"><Value>0x7FFFFFFFFFFFFFFF</Value></Integer><IntReg "
           "Name=\"R\"><Length>4</Length>"
           "<pPort>Device</pPort>" +
           parts + "</IntReg>";
  };
  const auto beyond = [](const char* element) {
    return std::vector<std::string>{
        "OutOfRangeException: ", "beyond 64 bits with element " + std::string(element) + " at line 4",
        "in node 'R'", "line 3)"};
  };
  Expect("sum", at("<Address>1</Address>\n<pAddress>I</pAddress>"), TextOf("R"), beyond("pAddress"));
  Expect("constants", at("<Address>0x7FFFFFFFFFFFFFFF</Address>\n<Address>1</Address>"), TextOf("R"),
         beyond("Address"));
  Expect("product", at("\n<pIndex Offset=\"4\">I</pIndex>"), TextOf("R"), beyond("pIndex"));
  Expect("two sums", at("<pAddress>I</pAddress>\n<pAddress>I</pAddress>"), TextOf("R"), beyond("pAddress"));
  Expect("offset node", at("\n<pIndex pOffset=\"I\">I</pIndex>"), TextOf("R"), beyond("pIndex"));
  Expect("formula",
         at("<Address>1</Address>\n<IntSwissKnife Name=\"K\"><pVariable "
            "Name=\"V\">I</pVariable><Formula>V</Formula>"
            "</IntSwissKnife>"),
         TextOf("R"), beyond("IntSwissKnife"));
  Expect("far but inside", at("<pAddress>I</pAddress>"), TextOf("R"),
         {"RuntimeException: ", "outside the device"});
  Expect("negative", at("<Address>-1</Address>"), TextOf("R"), {"RuntimeException: ", "outside the device"});
  Expect("offset that is no number", at("<pIndex Offset=\"x\">I</pIndex>"), Loaded,
         {"PropertyException: ", "Attribute Offset", "'R'", "line 3"});
}

TEST(Hostile, LimitsAndIncrementsAtTheEdge) {
  const std::string edge =
      "<Integer Name=\"I\"><Value>0</Value><Min>-0x7FFFFFFFFFFFFFFF</Min><Max>0x7FFFFFFFFFFFFFFF</Max><Inc>"
      "0x7FFFFFFFFFFFFFFF</Inc></Integer><Float Name=\"F\"><pValue>I</pValue></Float><Integer "
      "Name=\"Z\"><Value>0</Value><Inc>0</Inc></Integer><Integer "
      "Name=\"N\"><Value>0</Value><Inc>-5</Inc></Integer>";
  Expect("on the grid", edge,
         [](Camera& camera) {
           camera.Integer("I").SetValue(INT64_MAX);
           camera.Float("F").SetValue(-9.2e18);
           return camera.Text("I");
         },
         {"-9223372036854775807"});
  Expect("no increment", edge,
         [](Camera& camera) {
           camera.Integer("Z").SetValue(1);
           return "done";
         },
         {"LogicalErrorException: ", "in node 'Z'", "line 3)"});
  Expect("negative increment", edge,
         [](Camera& camera) {
           camera.Integer("N").SetValue(1);
           return "done";
         },
         {"LogicalErrorException: ", "in node 'N'", "line 3)"});
}

TEST(Hostile, HugeRegistersTakeNoMemoryWithoutBound) {
  const auto sized = [](const char* kind, const char* length) {
    return "<" + std::string(kind) + " Name=\"R\"><Address>0</Address><Length>" + length +
           "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></" + kind + ">";
  };
  for (const char* const kind : {"Register", "StringReg"}) {
    Expect(kind, sized(kind, "0x7FFFFFFFFFFFFFFF"), TextOf("R"),
           {"OutOfRangeException: ", "impossible", "in node 'R'", "line 3)"});
    Expect(kind, sized(kind, "0"), TextOf("R"),
           {"OutOfRangeException: ", "impossible", "in node 'R'", "line 3)"});
    Expect(kind, sized(kind, "-5"), TextOf("R"),
           {"OutOfRangeException: ", "impossible", "in node 'R'", "line 3)"});
    Expect(kind, sized(kind, "16777216"), TextOf("R"), {"RuntimeException: ", "outside the device"});
  }
}

// Files

std::string Zip(const std::vector<std::pair<std::string, std::string>>& entries) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* const target = zip_source_buffer_create(nullptr, 0, 0, &error);
  zip_source_keep(target);
  zip_t* const archive = zip_open_from_source(target, ZIP_TRUNCATE, &error);
  for (const auto& [name, content] : entries)
    zip_file_add(archive, name.c_str(), zip_source_buffer(archive, content.data(), content.size(), 0), 0);
  EXPECT_EQ(zip_close(archive), 0);
  zip_source_open(target);
  zip_stat_t facts;
  zip_source_stat(target, &facts);
  std::string bytes(facts.size, '\0');
  zip_source_read(target, bytes.data(), bytes.size());
  zip_source_close(target);
  zip_source_free(target);
  return bytes;
}

void ExpectZip(const char* name, const std::string& bytes, const std::vector<std::string>& expected) {
  const Outcome outcome = RunLimited([&] {
    return Answer([&] {
      CNodeMapRef map;
      map._LoadXMLFromZIPData(bytes.data(), bytes.size());
      return std::string("loaded");
    });
  });
  for (const std::string& text : expected)
    EXPECT_NE(outcome.text.find(text), std::string::npos)
        << name << " gives: " << outcome.text.substr(0, 2000);
  ExpectModest(outcome, name);
}

TEST(Hostile, ArchivesThatUnpackToVeryMuchAreRefused) {
  const std::string blanks = Zip({{"x.xml", std::string(std::size_t{200} << 20, ' ')}});
  ExpectZip("blanks", blanks, {"RuntimeException: ", "unpacks to more than"});
  ExpectZip("large document",
            Zip({{"x.xml", "<RegisterDescription>" + Repeat("<a/>", std::size_t{6} << 20) +
                               "</RegisterDescription>"}}),
            {"loaded"});
  std::vector<std::pair<std::string, std::string>> many;
  for (std::size_t i = 0; i < 60000; ++i) many.emplace_back("f" + Number(i) + "/", "");
  ExpectZip("many folders", Zip(many), {"RuntimeException: ", "holds no file"});
  const std::string inner = Zip({{"x.xml", Description("")}});
  ExpectZip("archive in an archive", Zip({{"x.zip", inner}}), {"RuntimeException: ", "line 1"});
}

TEST(Hostile, ArchivesThatLieAreRefused) {
  const std::string good = Zip({{"x.xml", Description(Repeat("<!-- c -->", 200))}});
  ASSERT_NE(good.find("PK\x05\x06"), std::string::npos);
  // One process for all: each byte of the archive is damaged in turn.
  const Outcome outcome = RunLimited([&] {
    for (std::size_t at = 4; at < good.size(); ++at) {
      std::string damaged = good;
      damaged[at] = static_cast<char>(~damaged[at]);
      Answer([&] {
        CNodeMapRef map;
        map._LoadXMLFromZIPData(damaged.data(), damaged.size());
        return std::string();
      });
    }
    return std::string("survived");
  });
  EXPECT_EQ(outcome.text, "survived");
  ExpectModest(outcome, "damaged archives");
}

TEST(Hostile, TruncatedAndMisencodedTextsEndInAnErrorOrAMap) {
  const std::string good =
      Description("<Integer Name=\"I\"><ToolTip>\xC2\xB5m</ToolTip><Value>1</Value></Integer>");
  const struct {
    const char* name;
    std::string bytes;
    const char* expected;
  } rows[] = {
      {"cut", good.substr(0, good.find("Integer") + 3),
       "RuntimeException: Error while parsing XML at line 3 in element"},
      {"cut in a value", good.substr(0, good.find("<Value>") + 8),
       "RuntimeException: Error while parsing XML at line 3 in element 'Value'"},
      {"cut between nodes", good.substr(0, good.find("<Port")),
       "RuntimeException: Error while parsing XML at line 4 in element 'RegisterDescription'"},
      {"cut in a character", "<RegisterDescription ToolTip=\"\xE2\x82\"/>", "loaded"},
      {"overlong", "<RegisterDescription ToolTip=\"\xC0\xAF\"/>", "loaded"},
      {"surrogate", "<RegisterDescription ToolTip=\"\xED\xA0\x80\"/>", "loaded"},
      {"all bytes", std::string("\x80\x81\xFE\xFF", 4),
       "RuntimeException: Error while parsing XML at line 1"},
      {"odd UTF-16", std::string("\xFF\xFE<\0R", 5), "RuntimeException: Error while parsing XML at line 1"},
      {"half a mark", "\xEF\xBB", "RuntimeException: Error while parsing XML at line 1"},
      {"says UTF-16 and is not", "<?xml version=\"1.0\" encoding=\"UTF-16\"?><RegisterDescription/>",
       "loaded"},
      {"a zero inside", std::string("<RegisterDescription>\0</RegisterDescription>", 44),
       "RuntimeException: "},
      {"nothing", "", "RuntimeException: Error while parsing XML at line 1"},
      {"zeros", std::string(std::size_t{1} << 20, '\0'),
       "RuntimeException: Error while parsing XML at line 1"},
      {"high bytes", std::string(kTenMiB, '\xFF'), "RuntimeException: Error while parsing XML at line 1"},
  };
  for (const auto& row : rows) {
    const Outcome outcome = RunLimited([&] {
      return Answer([&] {
        CNodeMapRef map;
        map._LoadXMLFromString(gcstring(row.bytes.data(), row.bytes.size()));
        return std::string("loaded");
      });
    });
    EXPECT_NE(outcome.text.find(row.expected), std::string::npos) << row.name << " gives: " << outcome.text;
    ExpectModest(outcome, row.name);
  }
}

}  // namespace
