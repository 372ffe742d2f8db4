/// The vocabulary of device descriptions: node kinds, child elements, and how an element's text reads.
#ifndef ZYN_GENAPI_DESCRIPTION_ELEMENT_H
#define ZYN_GENAPI_DESCRIPTION_ELEMENT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zyn::genapi {

enum class NodeKind : std::uint8_t {
  node,
  category,
  integer,
  intReg,
  maskedIntReg,
  boolean,
  command,
  enumeration,
  enumEntry,
  floating,
  floatReg,
  string,
  stringReg,
  reg,
  converter,
  intConverter,
  swissKnife,
  intSwissKnife,
  port,
  // Of cameras on older buses. They load, and are never implemented.
  confRom,
  textDesc,
  intKey,
  advFeatureLock,
  smartFeature,
  /// A kind that no version of the schema has.
  unknown,
};

enum class Element : std::uint8_t {
  // texts about the node
  toolTip,
  description,
  displayName,
  docuUrl,
  eventId,
  unit,
  symbolic,
  chunkId,
  validValueSet,
  formula,
  formulaTo,
  formulaFrom,
  expression,
  // words
  visibility,
  isDeprecated,
  imposedAccessMode,
  accessMode,
  streamable,
  cachable,
  sign,
  endianess,
  representation,
  displayNotation,
  slope,
  isLinear,
  isSelfClearing,
  swapEndianess,
  cacheChunkData,
  // numbers
  value,
  min,
  max,
  inc,
  valueIndexed,
  valueDefault,
  onValue,
  offValue,
  commandValue,
  numericValue,
  constant,
  address,
  length,
  pollingTime,
  lsb,
  msb,
  bit,
  displayPrecision,
  // links, and nothing but links, to the end
  pIsImplemented,
  pIsAvailable,
  pIsLocked,
  pBlockPolling,
  pError,
  pAlias,
  pCastAlias,
  pInvalidator,
  pFeature,
  pValue,
  pValueCopy,
  pMin,
  pMax,
  pInc,
  pIndex,
  pValueIndexed,
  pValueDefault,
  pSelected,
  pAddress,
  pOffset,
  pLength,
  pPort,
  pCommandValue,
  pVariable,
  pChunkId,
  pEnumEntry,  ///< schema 1.0; the linker makes enumEntry of it
  // nodes written inside another one
  enumEntry,
  intSwissKnife,
};

constexpr std::size_t kElementCount = static_cast<std::size_t>(Element::intSwissKnife) + 1;

/// How the text of an element reads.
enum class Lexical : std::uint8_t {
  text,
  word,     ///< one of a few words; the property's number is their enumerator
  integer,  ///< decimal or 0x
  real,
  truth,  ///< true, false, 1, 0
  link,
  inner,  ///< a node of its own
};

/// Whether nodes of this kind load but are never implemented. Of such a node only texts are kept.
constexpr bool IsNeverImplemented(NodeKind kind) {
  return kind >= NodeKind::confRom;
}

std::optional<NodeKind> FindNodeKind(std::string_view xmlName);
std::optional<Element> FindElement(std::string_view xmlName);

/// As written in XML.
const char* XmlName(NodeKind kind);
const char* XmlName(Element element);

/// The lexical form depends on the node: the Value of a Float is a real number, that of a String a text.
Lexical LexicalOf(Element element, NodeKind kind);

/// The enumerator (of the public enumeration) that a word stands for; nothing when the word is unknown.
std::optional<std::int64_t> FindWord(Element element, std::string_view word);

/// The other way round; "" for a number that no word stands for.
const char* WordText(Element element, std::int64_t value);

/// Whether the property leads to a node, one that it names or one written inside.
constexpr bool IsLink(Element element) {
  return element >= Element::pIsImplemented;
}

/// Whether the reading node needs the target to give its value, limits, address or access mode.
constexpr bool IsReadingLink(Element element) {
  switch (element) {
    case Element::pBlockPolling:
    case Element::pError:
    case Element::pAlias:
    case Element::pCastAlias:
    case Element::pInvalidator:
    case Element::pSelected:
    case Element::pEnumEntry:
    case Element::enumEntry:
      return false;
    default:
      return IsLink(element);
  }
}

/// Whether the description still means something when the target is missing.
bool MayDangle(Element element);

}  // namespace zyn::genapi

#endif
