// Descriptions: loads one, connects it to a memory, and uses every node in every way.
#include <array>
#include <cstdint>
#include <cstring>

#include "GenApi/GenApi.h"

namespace {

using namespace GenApi;
using GenICam::gcstring;
using GenICam::GenericException;

class Memory final : public CPortImpl {
 public:
  EAccessMode GetAccessMode() const override { return RW; }
  void Read(void* buffer, int64_t address, int64_t length) override {
    Check(address, length);
    std::memcpy(buffer, bytes_.data() + address, static_cast<std::size_t>(length));
  }
  void Write(const void* buffer, int64_t address, int64_t length) override {
    Check(address, length);
    std::memcpy(bytes_.data() + address, buffer, static_cast<std::size_t>(length));
  }

 private:
  void Check(int64_t address, int64_t length) const {
    constexpr auto kSize = static_cast<int64_t>(sizeof(bytes_));
    if (address < 0 || length < 0 || address > kSize || length > kSize - address)
      throw RUNTIME_EXCEPTION("outside");
  }

  std::array<unsigned char, 4096> bytes_{};
};

// One step may throw what the interface promises, and nothing else; the next one still runs.
template <class Step>
void Try(const Step& step) {
  try {
    step();
  } catch (const GenericException&) {
    return;
  }
}

void UseNumber(INode& node) {
  if (auto* const integer = dynamic_cast<IInteger*>(&node)) {
    Try([&] { integer->GetMin(); });
    Try([&] { integer->GetMax(); });
    Try([&] { integer->GetInc(); });
    Try([&] { integer->GetListOfValidValues(true); });
    Try([&] { integer->SetValue(integer->GetValue(true, true)); });
  }
  if (auto* const real = dynamic_cast<IFloat*>(&node)) {
    Try([&] { real->GetMin(); });
    Try([&] { real->GetMax(); });
    Try([&] { real->HasInc(); });
    Try([&] { real->GetInc(); });
    Try([&] { real->SetValue(real->GetValue(true, true)); });
  }
}

void UseChoice(INode& node) {
  if (auto* const enumeration = dynamic_cast<IEnumeration*>(&node)) {
    StringList_t names;
    Try([&] { enumeration->GetSymbolics(names); });
    Try([&] { enumeration->GetCurrentEntry(); });
    Try([&] { enumeration->SetIntValue(enumeration->GetIntValue()); });
    for (const gcstring& name : names) Try([&] { *enumeration = name; });
  }
  if (auto* const command = dynamic_cast<ICommand*>(&node)) {
    Try([&] { command->Execute(); });
    Try([&] { command->IsDone(); });
  }
  if (auto* const category = dynamic_cast<ICategory*>(&node)) {
    FeatureList_t features;
    Try([&] { category->GetFeatures(features); });
  }
}

void UseLinks(INode& node) {
  for (int type = ctParentNodes; type <= ctValueChangingChildren; ++type) {
    NodeList_t nodes;
    Try([&] { node.GetChildren(nodes, static_cast<ELinkType>(type)); });
  }
  GenICam::gcstring_vector properties;
  Try([&] { node.GetPropertyNames(properties); });
  for (const gcstring& property : properties) {
    gcstring value, attribute;
    Try([&] { node.GetProperty(property, value, attribute); });
  }
  Try([&] { node.GetCachingMode(); });
  Try([&] { node.IsAccessModeCacheable(); });
  FeatureList_t selected;
  if (auto* const selector = dynamic_cast<ISelector*>(&node))
    Try([&] { selector->GetSelectedFeatures(selected); });
}

void Use(INode& node) {
  Try([&] { node.GetAccessMode(); });
  if (auto* const value = dynamic_cast<IValue*>(&node)) {
    Try([&] { value->FromString(value->ToString()); });
    Try([&] { value->ToString(true, true); });
  }
  if (auto* const bytes = dynamic_cast<IRegister*>(&node)) {
    std::array<std::uint8_t, 16> buffer{};
    Try([&] { bytes->GetAddress(); });
    Try([&] { bytes->Get(buffer.data(), bytes->GetLength() < 16 ? bytes->GetLength() : 16); });
  }
  UseNumber(node);
  UseChoice(node);
  UseLinks(node);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMaxNodes = 100;
  try {
    Memory memory;
    CNodeMapRef map;
    map._LoadXMLFromString(gcstring(reinterpret_cast<const char*>(data), size));
    map._Connect(&memory);
    map._ParseSwissKnifes();
    NodeList_t nodes;
    map._GetNodes(nodes);
    for (std::size_t i = 0; i < nodes.size() && i < kMaxNodes; ++i) Use(*nodes[i]);
    Try([&] { map._Poll(1000000); });
    map._InvalidateNodes();
  } catch (const GenericException&) {
    return 0;
  }
  return 0;
}
