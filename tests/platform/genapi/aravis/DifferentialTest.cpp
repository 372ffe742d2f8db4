// The same description and the same registers read by this runtime and by libaravis' engine: whatever can be asked of both
// must come out the same, before and after writing. Every difference is in the table of meant differences, with its reason;
// nothing else differs, and nothing stands in the table in vain.
#include <arv.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "AravisEngine.h"
#include "GenICam.h"
#include "cameras/Catalog.h"
#include "cameras/ManualClock.h"

namespace {

using namespace GenApi;
using GenICam::gcstring;
using GenICam::GenericException;
using zyn::genapi::test::AravisEngine;
using zyn::genapi::test::Registers;

/// Answers by question.
using Facts = std::map<std::string, std::string>;

std::string Real(double value) {
  char text[64];
  std::snprintf(text, sizeof(text), "%.15g", value);
  return text;
}

const char* const kError = "error";

// This runtime

class RegisterPort final : public CPortImpl {
 public:
  explicit RegisterPort(Registers registers) : registers_(std::move(registers)) {}
  EAccessMode GetAccessMode() const override { return RW; }
  void Read(void* buffer, int64_t address, int64_t length) override {
    if (!registers_.read(static_cast<std::uint64_t>(address), static_cast<std::size_t>(length), buffer))
      throw RUNTIME_EXCEPTION("no such register");
  }
  void Write(const void* buffer, int64_t address, int64_t length) override {
    if (!registers_.write(static_cast<std::uint64_t>(address), static_cast<std::size_t>(length), buffer))
      throw RUNTIME_EXCEPTION("no such register");
  }

 private:
  Registers registers_;
};

std::string Ask(const std::function<std::string()>& question) {
  try {
    return question();
  } catch (const GenericException&) {
    return kError;
  }
}

class Ours {
 public:
  Ours(const std::string& xml, Registers registers) : port_(std::move(registers)) {
    map_._LoadXMLFromString(gcstring(xml.data(), xml.size()));
    map_._Connect(&port_);
  }

  /// All nodes but entries of enumerations and ports.
  std::vector<std::string> Names() {
    NodeList_t nodes;
    map_._GetNodes(nodes);
    std::vector<std::string> names;
    for (INode* const node : nodes) {
      const EInterfaceType type = node->GetPrincipalInterfaceType();
      if (type != intfIEnumEntry && type != intfIPort) names.emplace_back(node->GetName().c_str());
    }
    return names;
  }

  Facts About(const std::string& name) {
    INode& node = *map_._GetNode(name.c_str());
    Facts facts;
    facts["display name"] = node.GetDisplayName().c_str();
    facts["tool tip"] = node.GetToolTip().c_str();
    facts["description"] = node.GetDescription().c_str();
    facts["visibility"] = EVisibilityText(node.GetVisibility());
    facts["implemented"] = Ask([&] { return std::to_string(IsImplemented(node.GetAccessMode())); });
    facts["available"] = Ask([&] { return std::to_string(IsAvailable(node.GetAccessMode())); });
    if (auto* const integer = dynamic_cast<IInteger*>(&node)) AboutInteger(*integer, facts);
    if (auto* const real = dynamic_cast<IFloat*>(&node)) AboutReal(*real, facts);
    if (auto* const enumeration = dynamic_cast<IEnumeration*>(&node)) AboutEnumeration(*enumeration, facts);
    if (auto* const boolean = dynamic_cast<IBoolean*>(&node))
      facts["value"] = Ask([&] { return std::to_string(boolean->GetValue(false, true)); });
    if (auto* const text = dynamic_cast<IString*>(&node))
      facts["value"] = Ask([&] { return std::string(text->GetValue(false, true).c_str()); });
    if (auto* const bytes = dynamic_cast<IRegister*>(&node)) AboutRegister(*bytes, facts);
    if (auto* const category = dynamic_cast<ICategory*>(&node)) {
      FeatureList_t features;
      category->GetFeatures(features);
      for (IValue* const feature : features)
        facts["features"] += std::string(feature->GetNode()->GetName().c_str()) + " ";
    }
    return facts;
  }

  bool Write(const std::string& name, const std::string& text) {
    return Ask([&] {
             auto* const value = dynamic_cast<IValue*>(map_._GetNode(name.c_str()));
             value->FromString(text.c_str());
             return std::string();
           }) != kError;
  }

  INode& Node(const std::string& name) { return *map_._GetNode(name.c_str()); }
  void Forget() { map_._InvalidateNodes(); }

 private:
  static std::string EVisibilityText(EVisibility visibility) {
    switch (visibility) {
      case Beginner:
        return "Beginner";
      case Expert:
        return "Expert";
      case Guru:
        return "Guru";
      default:
        return "Invisible";
    }
  }

  static void AboutInteger(IInteger& node, Facts& facts) {
    facts["value"] = Ask([&] { return std::to_string(node.GetValue(false, true)); });
    facts["minimum"] = Ask([&] { return std::to_string(node.GetMin()); });
    facts["maximum"] = Ask([&] { return std::to_string(node.GetMax()); });
    facts["increment"] = Ask([&] { return std::to_string(node.GetInc()); });
    facts["unit"] = Ask([&] { return std::string(node.GetUnit().c_str()); });
  }

  static void AboutReal(IFloat& node, Facts& facts) {
    facts["value"] = Ask([&] { return Real(node.GetValue(false, true)); });
    facts["minimum"] = Ask([&] { return Real(node.GetMin()); });
    facts["maximum"] = Ask([&] { return Real(node.GetMax()); });
    facts["unit"] = Ask([&] { return std::string(node.GetUnit().c_str()); });
  }

  static void AboutEnumeration(IEnumeration& node, Facts& facts) {
    facts["value"] = Ask([&] { return std::string(node.ToString(false, true).c_str()); });
    facts["number"] = Ask([&] { return std::to_string(node.GetIntValue(false, true)); });
    facts["entries"] = Ask([&] {
      GenICam::gcstring_vector symbolics;
      node.GetSymbolics(symbolics);
      std::set<std::string> names;
      for (const gcstring& symbolic : symbolics) names.insert(symbolic.c_str());
      std::string all;
      for (const std::string& name : names) all += name + " ";
      return all;
    });
  }

  static void AboutRegister(IRegister& node, Facts& facts) {
    facts["address"] = Ask([&] { return std::to_string(node.GetAddress()); });
    facts["length"] = Ask([&] { return std::to_string(node.GetLength()); });
  }

  RegisterPort port_;
  CNodeMapRef map_;
};

// libaravis

template <class Question>
std::string AskTheirs(const Question& question) {
  GError* error = nullptr;
  std::string answer = question(&error);
  if (!error) return answer;
  g_error_free(error);
  return kError;
}

std::string Text(const char* text) {
  return text ? text : "";
}

class Theirs {
 public:
  Theirs(const std::string& xml, Registers registers) : engine_(xml, std::move(registers)) {
    arv_gc_set_range_check_policy(engine_.Gc(), ARV_RANGE_CHECK_POLICY_ENABLE);
    arv_gc_set_access_check_policy(engine_.Gc(), ARV_ACCESS_CHECK_POLICY_ENABLE);
  }

  Facts About(const std::string& name) {
    ArvGcNode* const node = arv_gc_get_node(engine_.Gc(), name.c_str());
    if (!node) return {};
    Facts facts;
    auto* const feature = ARV_GC_FEATURE_NODE(node);
    facts["display name"] = Text(arv_gc_feature_node_get_display_name(feature));
    facts["tool tip"] = Text(arv_gc_feature_node_get_tooltip(feature));
    facts["description"] = Text(arv_gc_feature_node_get_description(feature));
    facts["visibility"] = VisibilityText(arv_gc_feature_node_get_visibility(feature));
    facts["implemented"] = AskTheirs(
        [&](GError** error) { return std::to_string(arv_gc_feature_node_is_implemented(feature, error)); });
    facts["available"] = AskTheirs(
        [&](GError** error) { return std::to_string(arv_gc_feature_node_is_available(feature, error)); });
    // Their enumerations and booleans are integers and strings, too.
    if (ARV_IS_GC_ENUMERATION(node)) {
      AboutEnumeration(ARV_GC_ENUMERATION(node), facts);
    } else if (ARV_IS_GC_BOOLEAN(node)) {
      facts["value"] = AskTheirs([&](GError** error) {
        return std::to_string(arv_gc_boolean_get_value(ARV_GC_BOOLEAN(node), error));
      });
    } else if (ARV_IS_GC_CATEGORY(node)) {
      for (const GSList* item = arv_gc_category_get_features(ARV_GC_CATEGORY(node)); item; item = item->next)
        facts["features"] += Text(static_cast<const char*>(item->data)) + " ";
    } else {
      AboutValue(node, facts);
    }
    return facts;
  }

  bool Write(const std::string& name, const std::string& text) {
    auto* const feature = ARV_GC_FEATURE_NODE(arv_gc_get_node(engine_.Gc(), name.c_str()));
    return AskTheirs([&](GError** error) {
             arv_gc_feature_node_set_value_from_string(feature, text.c_str(), error);
             return std::string();
           }) != kError;
  }

 private:
  static std::string VisibilityText(ArvGcVisibility visibility) {
    switch (visibility) {
      case ARV_GC_VISIBILITY_EXPERT:
        return "Expert";
      case ARV_GC_VISIBILITY_GURU:
        return "Guru";
      case ARV_GC_VISIBILITY_INVISIBLE:
        return "Invisible";
      default:
        return "Beginner";
    }
  }

  static void AboutValue(ArvGcNode* node, Facts& facts) {
    if (ARV_IS_GC_FLOAT(node)) {
      auto* const real = ARV_GC_FLOAT(node);
      facts["value"] = AskTheirs([&](GError** error) { return Real(arv_gc_float_get_value(real, error)); });
      facts["minimum"] = AskTheirs([&](GError** error) { return Real(arv_gc_float_get_min(real, error)); });
      facts["maximum"] = AskTheirs([&](GError** error) { return Real(arv_gc_float_get_max(real, error)); });
      facts["unit"] = Text(arv_gc_float_get_unit(real));
    } else if (ARV_IS_GC_INTEGER(node)) {
      auto* const integer = ARV_GC_INTEGER(node);
      facts["value"] =
          AskTheirs([&](GError** error) { return std::to_string(arv_gc_integer_get_value(integer, error)); });
      facts["minimum"] =
          AskTheirs([&](GError** error) { return std::to_string(arv_gc_integer_get_min(integer, error)); });
      facts["maximum"] =
          AskTheirs([&](GError** error) { return std::to_string(arv_gc_integer_get_max(integer, error)); });
      facts["increment"] =
          AskTheirs([&](GError** error) { return std::to_string(arv_gc_integer_get_inc(integer, error)); });
      facts["unit"] = Text(arv_gc_integer_get_unit(integer));
    } else if (ARV_IS_GC_STRING(node)) {
      facts["value"] = AskTheirs(
          [&](GError** error) { return Text(arv_gc_string_get_value(ARV_GC_STRING(node), error)); });
    }
    if (!ARV_IS_GC_REGISTER(node)) return;
    auto* const bytes = ARV_GC_REGISTER(node);
    facts["address"] = AskTheirs([&](GError** error) {
      return std::to_string(static_cast<std::int64_t>(arv_gc_register_get_address(bytes, error)));
    });
    facts["length"] =
        AskTheirs([&](GError** error) { return std::to_string(arv_gc_register_get_length(bytes, error)); });
  }

  static void AboutEnumeration(ArvGcEnumeration* node, Facts& facts) {
    facts["value"] =
        AskTheirs([&](GError** error) { return Text(arv_gc_enumeration_get_string_value(node, error)); });
    facts["number"] = AskTheirs(
        [&](GError** error) { return std::to_string(arv_gc_enumeration_get_int_value(node, error)); });
    facts["entries"] = AskTheirs([&](GError** error) {
      guint count = 0;
      const char** const names = arv_gc_enumeration_dup_available_string_values(node, &count, error);
      std::set<std::string> sorted;
      for (guint i = 0; i < count; ++i) sorted.insert(names[i]);
      g_free(names);
      std::string all;
      for (const std::string& name : sorted) all += name + " ";
      return all;
    });
  }

  AravisEngine engine_;
};

// Devices. Each engine has one of its own; what both hold is compared as bytes where the device allows it.

struct Device {
  std::string xml;
  Registers registers;
  std::function<std::vector<std::uint8_t>()> memory;
};

Device FakeCamera() {
  const std::shared_ptr<ArvFakeCamera> camera(arv_fake_camera_new("DIFF"), g_object_unref);
  std::size_t size = 0;
  const char* const xml = arv_fake_camera_get_genicam_xml(camera.get(), &size);
  const auto read = [camera](std::uint64_t address, std::size_t length, void* to) {
    if (address + length > ARV_FAKE_CAMERA_MEMORY_SIZE) return false;
    return arv_fake_camera_read_memory(camera.get(), static_cast<guint32>(address),
                                       static_cast<guint32>(length), to) != 0;
  };
  const auto write = [camera](std::uint64_t address, std::size_t length, const void* from) {
    if (address + length > ARV_FAKE_CAMERA_MEMORY_SIZE) return false;
    return arv_fake_camera_write_memory(camera.get(), static_cast<guint32>(address),
                                        static_cast<guint32>(length), from) != 0;
  };
  const auto memory = [read] {
    std::vector<std::uint8_t> bytes(ARV_FAKE_CAMERA_MEMORY_SIZE);
    read(0, bytes.size(), bytes.data());
    return bytes;
  };
  return {std::string(xml, size), {read, write}, memory};
}

Device Simulated(const std::string& model) {
  const auto clock = std::make_shared<zyn::cameras::ManualClock>();
  const std::shared_ptr<zyn::cameras::CameraModel> camera(
      zyn::cameras::MakeCamera(model, "DIFF", *clock).release(),
      [clock](zyn::cameras::CameraModel* made) { delete made; });
  const auto read = [camera](std::uint64_t address, std::size_t length, void* to) {
    return camera->ReadRegisters(address, {static_cast<std::uint8_t*>(to), length}) ==
           zyn::cameras::RegisterStatus::ok;
  };
  const auto write = [camera](std::uint64_t address, std::size_t length, const void* from) {
    return camera->WriteRegisters(address, {static_cast<const std::uint8_t*>(from), length}) ==
           zyn::cameras::RegisterStatus::ok;
  };
  return {std::string(camera->Description()), {read, write}, [] { return std::vector<std::uint8_t>(); }};
}

// Meant differences

struct Answers {
  const std::string& name;
  INode& node;
  const std::string& question;
  const std::string& ours;
  const std::string& theirs;
};

struct Difference {
  const char* reason;
  bool (*applies)(const Answers&);
};

bool IsLimit(const std::string& question) {
  return question == "minimum" || question == "maximum" || question == "increment";
}
bool IsOfKind(INode& node, const char* kind) {
  gcstring value, attribute;
  return node.GetProperty("NodeType", value, attribute) && value == kind;
}
bool HasFraction(const std::string& question) {
  return question.find('.') != std::string::npos;
}

const Difference kNoDisplayName = {
    "a node without a display name shows its name, theirs shows nothing",
    [](const Answers& a) { return a.question == "display name" && a.ours == a.name && a.theirs.empty(); }};
const Difference kFormulaLimits = {"an integer formula ranges over all integers, theirs cannot be asked",
                                   [](const Answers& a) {
                                     return IsLimit(a.question) && IsOfKind(a.node, "IntSwissKnife") &&
                                            a.ours != kError && a.theirs == kError;
                                   }};
const Difference kFieldIncrement = {"a bit field has the increment 1, theirs cannot be asked",
                                    [](const Answers& a) {
                                      return a.question == "increment" && IsOfKind(a.node, "MaskedIntReg") &&
                                             a.ours == "1" && a.theirs == kError;
                                    }};
const Difference kStrictTruth = {
    "a boolean whose register holds neither of its values is an error, theirs is false",
    [](const Answers& a) {
      return a.question == "value" && dynamic_cast<IBoolean*>(&a.node) && a.ours == kError && a.theirs == "0";
    }};
const Difference kRounding = {"a real number written to an integer is rounded, theirs is cut off",
                              [](const Answers& a) {
                                const bool isReal = dynamic_cast<IFloat*>(&a.node) != nullptr;
                                if (!isReal || a.ours == kError || a.theirs == kError) return false;
                                if (a.question == "value")
                                  return std::stod(a.ours) == std::stod(a.theirs) + 1;
                                return HasFraction(a.question) && a.theirs.rfind("differ at", 0) == 0;
                              }};
const Difference kCategoryVisibility = {
    "a category shows as soon as one of its features does, theirs by its own word",
    [](const Answers& a) { return a.question == "visibility" && dynamic_cast<ICategory*>(&a.node); }};
bool IsWithoutData(const Answers& a, const char* prefix, EAccessMode mode) {
  return a.name.rfind(prefix, 0) == 0 && a.node.GetAccessMode() == mode &&
         (a.ours == "0" || a.ours == kError);
}
const Difference kNoChunk = {"without a frame there is no chunk, theirs says it is available",
                             [](const Answers& a) { return IsWithoutData(a, "Chunk", NA); }};
const Difference kNoEvent = {"without an adapter there are no events, theirs says their data is available",
                             [](const Answers& a) { return IsWithoutData(a, "Event", NI); }};

class Comparison {
 public:
  Comparison(Device ours, Device theirs, std::vector<Difference> meant)
      : ourMemory_(ours.memory),
        theirMemory_(theirs.memory),
        ours_(ours.xml, ours.registers),
        theirs_(theirs.xml, theirs.registers),
        meant_(std::move(meant)) {}

  void CompareAll(const std::string& when) {
    ours_.Forget();
    for (const std::string& name : ours_.Names()) CompareNode(name, when);
  }

  // Texts that every kind of value has: its limits, what lies between, and what does not fit.
  void WriteAll() {
    for (const std::string& name : ours_.Names()) {
      INode& node = ours_.Node(name);
      if (!node.IsFeature() || !IsWritable(&node)) continue;
      for (const std::string& text : TextsFor(node)) WriteBoth(name, text);
    }
  }

  std::size_t Compared() const { return compared_; }
  std::size_t Written() const { return written_; }

  void ExpectAllReasonsNeeded() const {
    for (std::size_t i = 0; i < meant_.size(); ++i)
      EXPECT_TRUE(used_.count(i) > 0) << "nothing differs because: " << meant_[i].reason;
  }

 private:
  static std::vector<std::string> TextsFor(INode& node) {
    std::vector<std::string> texts;
    const auto add = [&texts](const gcstring& text) { texts.emplace_back(text.c_str()); };
    if (auto* const integer = dynamic_cast<IInteger*>(&node)) {
      const std::int64_t min = integer->GetMin();
      const std::int64_t max = integer->GetMax();
      const std::int64_t value = integer->GetValue();
      if (min > INT64_MIN) texts.push_back(std::to_string(min - 1));
      if (max < INT64_MAX) texts.push_back(std::to_string(max + 1));
      for (const std::int64_t number : {min, max, value}) texts.push_back(std::to_string(number));
    } else if (auto* const real = dynamic_cast<IFloat*>(&node)) {
      const double value = real->GetValue();
      const double min = real->GetMin();
      const double max = real->GetMax();
      for (const double number : {min, max}) texts.push_back(Real(number));
      if (max < 1e15) texts.push_back(Real(max * 2 + 1));
      if (max < 1e15 && min > -1e15) texts.push_back(Real(min + (max - min) / 4));
      texts.push_back(Real(value));  // last, so that what rounding made of the others does not stay
    } else if (auto* const enumeration = dynamic_cast<IEnumeration*>(&node)) {
      GenICam::gcstring_vector names;
      enumeration->GetSymbolics(names);
      const gcstring value = enumeration->ToString();
      for (const gcstring& name : names) add(name);
      texts.emplace_back("NoSuchEntry");
      add(value);
    } else if (dynamic_cast<IBoolean*>(&node)) {
      texts = {"true", "false"};
    } else if (dynamic_cast<IString*>(&node)) {
      texts = {"differential", ""};
    }
    return texts;
  }

  void WriteBoth(const std::string& name, const std::string& text) {
    const bool ours = ours_.Write(name, text);
    const bool theirs = theirs_.Write(name, text);
    ++written_;
    when_ = "at once";
    Check(name, "writing " + text, ours ? "done" : kError, theirs ? "done" : kError);
    const std::vector<std::uint8_t> our = ourMemory_();
    const std::vector<std::uint8_t> their = theirMemory_();
    ASSERT_EQ(our.size(), their.size());
    const auto at = std::mismatch(our.begin(), our.end(), their.begin());
    Check(name, "register bytes after writing " + text, at.first == our.end() ? "same" : "from here on ours",
          at.first == our.end() ? "same" : "differ at " + std::to_string(at.first - our.begin()));
    ours_.Forget();
    CompareNode(name, "after writing " + text);
  }

  void CompareNode(const std::string& name, const std::string& when) {
    const Facts ours = ours_.About(name);
    const Facts theirs = theirs_.About(name);
    for (const auto& [question, answer] : ours) {
      const auto found = theirs.find(question);
      when_ = when;
      Check(name, question, answer, found == theirs.end() ? "absent" : found->second);
    }
  }

  void Check(const std::string& name, const std::string& question, const std::string& ours,
             const std::string& theirs) {
    ++compared_;
    if (ours == theirs) return;
    for (std::size_t i = 0; i < meant_.size(); ++i) {
      if (!meant_[i].applies({name, ours_.Node(name), question, ours, theirs})) continue;
      used_.insert(i);
      return;
    }
    ADD_FAILURE() << name << ", " << question << " (" << when_ << "): ours '" << ours << "', theirs '"
                  << theirs << "'";
  }

  std::function<std::vector<std::uint8_t>()> ourMemory_, theirMemory_;
  Ours ours_;
  Theirs theirs_;
  std::vector<Difference> meant_;
  std::set<std::size_t> used_;
  std::string when_;
  std::size_t compared_ = 0;
  std::size_t written_ = 0;
};

TEST(Differential, TheirFakeCameraIsReadAndWrittenAlike) {
  Comparison comparison(FakeCamera(), FakeCamera(),
                        {kNoDisplayName, kFormulaLimits, kFieldIncrement, kStrictTruth, kRounding});
  comparison.CompareAll("as delivered");
  comparison.WriteAll();
  comparison.CompareAll("at the end");
  EXPECT_GT(comparison.Compared(), 500U);
  EXPECT_GT(comparison.Written(), 50U);
  comparison.ExpectAllReasonsNeeded();
}

class EveryModel : public testing::TestWithParam<std::string> {};

TEST_P(EveryModel, IsReadAndWrittenAlike) {
  std::vector<Difference> differences = {kNoDisplayName, kCategoryVisibility, kNoEvent};
  if (!zyn::cameras::FindModel(GetParam())->isCameraLink) differences.push_back(kNoChunk);
  Comparison comparison(Simulated(GetParam()), Simulated(GetParam()), differences);
  comparison.CompareAll("as delivered");
  comparison.WriteAll();
  comparison.CompareAll("at the end");
  EXPECT_GT(comparison.Compared(), 1000U);
  EXPECT_GT(comparison.Written(), 50U);
  comparison.ExpectAllReasonsNeeded();
}

std::vector<std::string> Models() {
  std::vector<std::string> names;
  for (const auto& entry : zyn::cameras::Catalog()) names.emplace_back(entry.model);
  return names;
}

std::string CaseName(const testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  std::erase(name, '-');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Catalog, EveryModel, testing::ValuesIn(Models()), CaseName);

}  // namespace
