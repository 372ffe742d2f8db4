#include "description/SchemaLayout.h"

namespace zyn::genapi {
namespace {

using enum Element;

constexpr auto kAnyNode = SchemaLayout().Then({toolTip, description, displayName, visibility, docuUrl,
                                               isDeprecated, eventId, pIsImplemented, pIsAvailable, pIsLocked,
                                               pBlockPolling, imposedAccessMode, pError, pAlias, pCastAlias});
constexpr auto kPlain = kAnyNode.Then({pInvalidator});
constexpr auto kValue = kPlain.Then({streamable});
constexpr auto kIndexed = kValue.ThenAny({value, pValue, pValueCopy, pIndex})
                              .ThenAny({valueIndexed, pValueIndexed})
                              .ThenAny({valueDefault, pValueDefault})
                              .ThenAny({min, pMin})
                              .ThenAny({max, pMax})
                              .ThenAny({inc, pInc})
                              .Then({unit, representation});
constexpr auto kConstantOrLinked = kValue.ThenAny({value, pValue});
constexpr auto kComputed = kValue.Then({pVariable, constant, expression});
constexpr auto kConverted = kComputed.Then({formulaTo, formulaFrom, pValue, unit, representation});

constexpr auto kRegister = kAnyNode.Then({streamable})
                               .ThenAny({address, intSwissKnife, pAddress, pIndex})
                               .ThenAny({length, pLength})
                               .Then({accessMode, pPort, cachable, pollingTime, pInvalidator});
constexpr auto kBits = kRegister.ThenAny({bit, lsb, msb});

constexpr auto kNode = kPlain;
constexpr auto kCategory = kPlain.Then({pFeature});
constexpr auto kInteger = kIndexed.Then({validValueSet, pSelected});
constexpr auto kIntReg = kRegister.Then({sign, endianess, unit, representation, pSelected});
constexpr auto kMaskedIntReg = kBits.Then({sign, endianess, unit, representation, pSelected});
constexpr auto kBoolean = kConstantOrLinked.Then({onValue, offValue, pSelected});
constexpr auto kCommand =
    kPlain.ThenAny({value, pValue}).ThenAny({commandValue, pCommandValue}).Then({pollingTime});
constexpr auto kEnumeration =
    kValue.ThenAny({enumEntry, pEnumEntry}).ThenAny({value, pValue}).Then({pSelected, pollingTime});
constexpr auto kEnumEntry = kPlain.Then({value, numericValue, symbolic, isSelfClearing});
constexpr auto kFloat = kIndexed.Then({displayNotation, displayPrecision});
constexpr auto kFloatReg =
    kRegister.Then({endianess, unit, representation, displayNotation, displayPrecision});
constexpr auto kString = kConstantOrLinked;
constexpr auto kConverter = kConverted.Then({displayNotation, displayPrecision, slope, isLinear});
constexpr auto kIntConverter = kConverted.Then({slope});
constexpr auto kSwissKnife =
    kComputed.Then({formula, unit, representation, displayNotation, displayPrecision});
constexpr auto kIntSwissKnife = kComputed.Then({formula, unit, representation});
constexpr auto kPort = kPlain.ThenAny({chunkId, pChunkId}).Then({swapEndianess, cacheChunkData});
constexpr auto kStruct = kRegister.Then({endianess});
constexpr auto kStructEntry = kPlain.Then({accessMode, cachable, pollingTime, streamable})
                                  .ThenAny({bit, lsb, msb})
                                  .Then({sign, unit, representation, pSelected});
constexpr SchemaLayout kNothing;

}  // namespace

const SchemaLayout& LayoutOf(NodeKind kind) {
  switch (kind) {
    case NodeKind::node:
      return kNode;
    case NodeKind::category:
      return kCategory;
    case NodeKind::integer:
      return kInteger;
    case NodeKind::intReg:
      return kIntReg;
    case NodeKind::maskedIntReg:
      return kMaskedIntReg;
    case NodeKind::boolean:
      return kBoolean;
    case NodeKind::command:
      return kCommand;
    case NodeKind::enumeration:
      return kEnumeration;
    case NodeKind::enumEntry:
      return kEnumEntry;
    case NodeKind::floating:
      return kFloat;
    case NodeKind::floatReg:
      return kFloatReg;
    case NodeKind::string:
      return kString;
    case NodeKind::stringReg:
    case NodeKind::reg:
      return kRegister;
    case NodeKind::converter:
      return kConverter;
    case NodeKind::intConverter:
      return kIntConverter;
    case NodeKind::swissKnife:
      return kSwissKnife;
    case NodeKind::intSwissKnife:
      return kIntSwissKnife;
    case NodeKind::port:
      return kPort;
    default:
      return kNothing;
  }
}

const SchemaLayout& StructLayout() {
  return kStruct;
}

const SchemaLayout& StructEntryLayout() {
  return kStructEntry;
}

}  // namespace zyn::genapi
