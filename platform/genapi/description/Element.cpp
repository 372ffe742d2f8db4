#include "description/Element.h"

#include <array>
#include <span>

#include "GenApi/Types.h"

namespace zyn::genapi {
namespace {

struct KindName {
  std::string_view name;
  NodeKind kind;
};

constexpr std::array kKinds = {
    KindName{"Node", NodeKind::node},
    KindName{"Category", NodeKind::category},
    KindName{"Integer", NodeKind::integer},
    KindName{"IntReg", NodeKind::intReg},
    KindName{"MaskedIntReg", NodeKind::maskedIntReg},
    KindName{"Boolean", NodeKind::boolean},
    KindName{"Command", NodeKind::command},
    KindName{"Enumeration", NodeKind::enumeration},
    KindName{"EnumEntry", NodeKind::enumEntry},
    KindName{"Float", NodeKind::floating},
    KindName{"FloatReg", NodeKind::floatReg},
    KindName{"String", NodeKind::string},
    KindName{"StringReg", NodeKind::stringReg},
    KindName{"Register", NodeKind::reg},
    KindName{"Converter", NodeKind::converter},
    KindName{"IntConverter", NodeKind::intConverter},
    KindName{"SwissKnife", NodeKind::swissKnife},
    KindName{"IntSwissKnife", NodeKind::intSwissKnife},
    KindName{"Port", NodeKind::port},
    KindName{"ConfRom", NodeKind::confRom},
    KindName{"TextDesc", NodeKind::textDesc},
    KindName{"IntKey", NodeKind::intKey},
    KindName{"AdvFeatureLock", NodeKind::advFeatureLock},
    KindName{"SmartFeature", NodeKind::smartFeature},
    KindName{"Unknown", NodeKind::unknown},
};

struct ElementRow {
  std::string_view name;
  Element element;
  Lexical lexical;
};

constexpr std::array kElements = {
    ElementRow{"ToolTip", Element::toolTip, Lexical::text},
    ElementRow{"Description", Element::description, Lexical::text},
    ElementRow{"DisplayName", Element::displayName, Lexical::text},
    ElementRow{"DocuURL", Element::docuUrl, Lexical::text},
    ElementRow{"EventID", Element::eventId, Lexical::text},
    ElementRow{"Unit", Element::unit, Lexical::text},
    ElementRow{"Symbolic", Element::symbolic, Lexical::text},
    ElementRow{"ChunkID", Element::chunkId, Lexical::text},
    ElementRow{"ValidValueSet", Element::validValueSet, Lexical::text},
    ElementRow{"Formula", Element::formula, Lexical::text},
    ElementRow{"FormulaTo", Element::formulaTo, Lexical::text},
    ElementRow{"FormulaFrom", Element::formulaFrom, Lexical::text},
    ElementRow{"Expression", Element::expression, Lexical::text},
    ElementRow{"Visibility", Element::visibility, Lexical::word},
    ElementRow{"IsDeprecated", Element::isDeprecated, Lexical::word},
    ElementRow{"ImposedAccessMode", Element::imposedAccessMode, Lexical::word},
    ElementRow{"AccessMode", Element::accessMode, Lexical::word},
    ElementRow{"Streamable", Element::streamable, Lexical::word},
    ElementRow{"Cachable", Element::cachable, Lexical::word},
    ElementRow{"Sign", Element::sign, Lexical::word},
    ElementRow{"Endianess", Element::endianess, Lexical::word},
    ElementRow{"Representation", Element::representation, Lexical::word},
    ElementRow{"DisplayNotation", Element::displayNotation, Lexical::word},
    ElementRow{"Slope", Element::slope, Lexical::word},
    ElementRow{"IsLinear", Element::isLinear, Lexical::word},
    ElementRow{"IsSelfClearing", Element::isSelfClearing, Lexical::word},
    ElementRow{"SwapEndianess", Element::swapEndianess, Lexical::word},
    ElementRow{"CacheChunkData", Element::cacheChunkData, Lexical::word},
    ElementRow{"Value", Element::value, Lexical::integer},
    ElementRow{"Min", Element::min, Lexical::integer},
    ElementRow{"Max", Element::max, Lexical::integer},
    ElementRow{"Inc", Element::inc, Lexical::integer},
    ElementRow{"ValueIndexed", Element::valueIndexed, Lexical::integer},
    ElementRow{"ValueDefault", Element::valueDefault, Lexical::integer},
    ElementRow{"OnValue", Element::onValue, Lexical::integer},
    ElementRow{"OffValue", Element::offValue, Lexical::integer},
    ElementRow{"CommandValue", Element::commandValue, Lexical::integer},
    ElementRow{"NumericValue", Element::numericValue, Lexical::real},
    ElementRow{"Constant", Element::constant, Lexical::real},
    ElementRow{"Address", Element::address, Lexical::integer},
    ElementRow{"Length", Element::length, Lexical::integer},
    ElementRow{"PollingTime", Element::pollingTime, Lexical::integer},
    ElementRow{"LSB", Element::lsb, Lexical::integer},
    ElementRow{"MSB", Element::msb, Lexical::integer},
    ElementRow{"Bit", Element::bit, Lexical::integer},
    ElementRow{"DisplayPrecision", Element::displayPrecision, Lexical::integer},
    ElementRow{"pIsImplemented", Element::pIsImplemented, Lexical::link},
    ElementRow{"pIsAvailable", Element::pIsAvailable, Lexical::link},
    ElementRow{"pIsLocked", Element::pIsLocked, Lexical::link},
    ElementRow{"pBlockPolling", Element::pBlockPolling, Lexical::link},
    ElementRow{"pError", Element::pError, Lexical::link},
    ElementRow{"pAlias", Element::pAlias, Lexical::link},
    ElementRow{"pCastAlias", Element::pCastAlias, Lexical::link},
    ElementRow{"pInvalidator", Element::pInvalidator, Lexical::link},
    ElementRow{"pFeature", Element::pFeature, Lexical::link},
    ElementRow{"pValue", Element::pValue, Lexical::link},
    ElementRow{"pValueCopy", Element::pValueCopy, Lexical::link},
    ElementRow{"pMin", Element::pMin, Lexical::link},
    ElementRow{"pMax", Element::pMax, Lexical::link},
    ElementRow{"pInc", Element::pInc, Lexical::link},
    ElementRow{"pIndex", Element::pIndex, Lexical::link},
    ElementRow{"pValueIndexed", Element::pValueIndexed, Lexical::link},
    ElementRow{"pValueDefault", Element::pValueDefault, Lexical::link},
    ElementRow{"pSelected", Element::pSelected, Lexical::link},
    ElementRow{"pAddress", Element::pAddress, Lexical::link},
    ElementRow{"pOffset", Element::pOffset, Lexical::link},
    ElementRow{"pLength", Element::pLength, Lexical::link},
    ElementRow{"pPort", Element::pPort, Lexical::link},
    ElementRow{"pCommandValue", Element::pCommandValue, Lexical::link},
    ElementRow{"pVariable", Element::pVariable, Lexical::link},
    ElementRow{"pChunkID", Element::pChunkId, Lexical::link},
    ElementRow{"pEnumEntry", Element::pEnumEntry, Lexical::link},
    ElementRow{"EnumEntry", Element::enumEntry, Lexical::inner},
    ElementRow{"IntSwissKnife", Element::intSwissKnife, Lexical::inner},
};

// Finds a row of a table by its name: open addressing, worked out by the compiler.
class WordIndex {
 public:
  template <std::size_t N, class Row>
  explicit constexpr WordIndex(const std::array<Row, N>& rows) {
    static_assert(N < 255);
    for (std::size_t i = 0; i < N; ++i) {
      std::size_t slot = Slot(rows[i].name);
      while (slots_[slot] != 0) slot = (slot + 1) % kSlots;
      slots_[slot] = static_cast<std::uint8_t>(i + 1);
    }
  }

  template <std::size_t N, class Row>
  const Row* Find(const std::array<Row, N>& rows, std::string_view name) const {
    if (name.empty()) return nullptr;
    for (std::size_t slot = Slot(name); slots_[slot] != 0; slot = (slot + 1) % kSlots)
      if (rows[slots_[slot] - 1U].name == name) return &rows[slots_[slot] - 1U];
    return nullptr;
  }

 private:
  static constexpr std::size_t kSlots = 512;

  static constexpr std::size_t Slot(std::string_view name) {
    const auto at = [name](std::size_t i) {
      return static_cast<std::size_t>(static_cast<unsigned char>(name[i]));
    };
    return (name.size() * 37 + at(0) * 5 + at(name.size() / 2) * 131 + at(name.size() - 1) * 11) % kSlots;
  }

  std::array<std::uint8_t, kSlots> slots_{};
};

static_assert([] {
  for (const ElementRow& row : kElements) {
    const bool leads = row.lexical == Lexical::link || row.lexical == Lexical::inner;
    if (leads != IsLink(row.element)) return false;
  }
  return true;
}());

const ElementRow& Row(Element element) {
  return kElements[static_cast<std::size_t>(element)];
}

struct Word {
  std::string_view text;
  std::int64_t value;
};

using namespace GENAPI_NAMESPACE;

constexpr Word kAccessModes[] = {{"RO", RO}, {"RW", RW}, {"WO", WO}, {"NA", NA}, {"NI", NI}};
constexpr Word kYesNo[] = {{"Yes", Yes}, {"No", No}};
constexpr Word kVisibilities[] = {
    {"Beginner", Beginner}, {"Expert", Expert}, {"Guru", Guru}, {"Invisible", Invisible}};
constexpr Word kCachingModes[] = {
    {"WriteThrough", WriteThrough}, {"WriteAround", WriteAround}, {"NoCache", NoCache}};
constexpr Word kSigns[] = {{"Unsigned", Unsigned}, {"Signed", Signed}};
constexpr Word kEndians[] = {{"LittleEndian", LittleEndian}, {"BigEndian", BigEndian}};
constexpr Word kRepresentations[] = {{"Linear", Linear},        {"Logarithmic", Logarithmic},
                                     {"Boolean", Boolean},      {"PureNumber", PureNumber},
                                     {"HexNumber", HexNumber},  {"IPV4Address", IPV4Address},
                                     {"MACAddress", MACAddress}};
constexpr Word kNotations[] = {{"Automatic", fnAutomatic}, {"Fixed", fnFixed}, {"Scientific", fnScientific}};
constexpr Word kSlopes[] = {
    {"Increasing", Increasing}, {"Decreasing", Decreasing}, {"Varying", Varying}, {"Automatic", Automatic}};

std::span<const Word> WordsOf(Element element) {
  switch (element) {
    case Element::visibility:
      return kVisibilities;
    case Element::imposedAccessMode:
    case Element::accessMode:
      return kAccessModes;
    case Element::cachable:
      return kCachingModes;
    case Element::sign:
      return kSigns;
    case Element::endianess:
      return kEndians;
    case Element::representation:
      return kRepresentations;
    case Element::displayNotation:
      return kNotations;
    case Element::slope:
      return kSlopes;
    default:
      return kYesNo;
  }
}

bool IsFloatKind(NodeKind kind) {
  return kind == NodeKind::floating || kind == NodeKind::floatReg || kind == NodeKind::swissKnife ||
         kind == NodeKind::converter;
}

}  // namespace

std::optional<NodeKind> FindNodeKind(std::string_view xmlName) {
  static constexpr auto kIndex = WordIndex(kKinds);
  const auto* const row = kIndex.Find(kKinds, xmlName);
  if (!row) return std::nullopt;
  return row->kind;
}

std::optional<Element> FindElement(std::string_view xmlName) {
  static constexpr auto kIndex = WordIndex(kElements);
  const auto* const row = kIndex.Find(kElements, xmlName);
  if (!row) return std::nullopt;
  return row->element;
}

const char* XmlName(NodeKind kind) {
  return kKinds[static_cast<std::size_t>(kind)].name.data();
}
const char* XmlName(Element element) {
  return Row(element).name.data();
}

Lexical LexicalOf(Element element, NodeKind kind) {
  switch (element) {
    case Element::value:
      if (kind == NodeKind::string || kind == NodeKind::node) return Lexical::text;
      if (kind == NodeKind::boolean) return Lexical::truth;
      [[fallthrough]];
    case Element::min:
    case Element::max:
    case Element::inc:
    case Element::valueIndexed:
    case Element::valueDefault:
      return IsFloatKind(kind) ? Lexical::real : Lexical::integer;
    case Element::constant:
      return IsFloatKind(kind) ? Lexical::real : Lexical::integer;
    default:
      return Row(element).lexical;
  }
}

std::optional<std::int64_t> FindWord(Element element, std::string_view word) {
  const std::span<const Word> words = WordsOf(element);
  for (const Word& candidate : words)
    if (word == candidate.text) return candidate.value;
  return std::nullopt;
}

const char* WordText(Element element, std::int64_t value) {
  for (const Word& candidate : WordsOf(element))
    if (value == candidate.value) return candidate.text.data();
  return "";
}

bool MayDangle(Element element) {
  return element == Element::pFeature || element == Element::pInvalidator || element == Element::pSelected ||
         element == Element::pAlias || element == Element::pCastAlias;
}

}  // namespace zyn::genapi
