#include "nodes/EnumEntryNode.h"

#include <string>

namespace zyn::genapi {

std::string_view EnumEntryNode::Symbolic() const {
  const std::string_view own = Text(Element::symbolic);
  if (!own.empty()) return own;
  if (Record().owner == kNoNode) return Name();
  // The name that the entry has inside its enumeration.
  for (const Property& property : Map().Facts().Properties(Record().owner))
    if (property.element == Element::enumEntry && property.Target() == Id())
      return Map().Facts().Text(property.attribute);
  return Name();
}

gcstring EnumEntryNode::GetSymbolic() const {
  const std::string_view symbolic = Symbolic();
  return {symbolic.data(), symbolic.size()};
}

double EnumEntryNode::NumericValue() const {
  const Property* const own = Find(Element::numericValue);
  return own ? own->Real() : static_cast<double>(EntryValue());
}

gcstring EnumEntryNode::TextValue(ReadMode) {
  RequireReadable();
  return std::to_string(EntryValue()).c_str();
}

}  // namespace zyn::genapi
