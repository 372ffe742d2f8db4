/// Which elements a node has by the schema, and in which order.
#ifndef ZYN_GENAPI_DESCRIPTION_SCHEMALAYOUT_H
#define ZYN_GENAPI_DESCRIPTION_SCHEMALAYOUT_H

#include <array>
#include <cstdint>
#include <initializer_list>

#include "description/Element.h"

namespace zyn::genapi {

/// The elements of one kind of node. Descriptions are read whatever their order; this says what to note about them.
class SchemaLayout {
 public:
  /// Places rise in the order of schema 1.1. Elements that exclude each other, or may be mixed, share one. 0 when the
  /// kind has no such element.
  constexpr std::uint8_t PlaceOf(Element element) const { return places_[static_cast<std::size_t>(element)]; }

  /// Each element comes behind the one before it.
  constexpr SchemaLayout Then(std::initializer_list<Element> elements) const {
    SchemaLayout longer = *this;
    for (const Element element : elements) longer.places_[static_cast<std::size_t>(element)] = ++longer.last_;
    return longer;
  }
  /// All of them come next, in one place.
  constexpr SchemaLayout ThenAny(std::initializer_list<Element> elements) const {
    SchemaLayout longer = *this;
    ++longer.last_;
    for (const Element element : elements) longer.places_[static_cast<std::size_t>(element)] = longer.last_;
    return longer;
  }

 private:
  std::array<std::uint8_t, kElementCount> places_{};
  std::uint8_t last_ = 0;
};

/// Of a kind that is never implemented: an empty one.
const SchemaLayout& LayoutOf(NodeKind kind);
/// StructReg and StructEntry are no kinds of nodes: they become masked registers.
const SchemaLayout& StructLayout();
const SchemaLayout& StructEntryLayout();

/// Two ways to say the same, of which a node should have one.
struct Alternative {
  Element loses;
  Element holds;
};
inline constexpr std::array kAlternatives = {
    Alternative{Element::value, Element::pValue},
    Alternative{Element::value, Element::pIndex},
    Alternative{Element::pValue, Element::pIndex},
    Alternative{Element::valueDefault, Element::pValueDefault},
    Alternative{Element::min, Element::pMin},
    Alternative{Element::max, Element::pMax},
    Alternative{Element::inc, Element::pInc},
    Alternative{Element::length, Element::pLength},
    Alternative{Element::commandValue, Element::pCommandValue},
    Alternative{Element::chunkId, Element::pChunkId},
    Alternative{Element::lsb, Element::bit},
    Alternative{Element::msb, Element::bit},
};

}  // namespace zyn::genapi

#endif
