#include "gigedevice/TransportDescription.h"

#include <pugixml.hpp>
#include <sstream>

namespace zyn::gigedevice {
namespace {

void Leaf(pugi::xml_node parent, const char* name, const std::string& text) {
  parent.append_child(name).text().set(text.c_str());
}

pugi::xml_node Named(pugi::xml_node parent, const char* element, const char* name) {
  pugi::xml_node node = parent.append_child(element);
  node.append_attribute("Name").set_value(name);
  return node;
}

void AddInteger(pugi::xml_node parent, const char* name, const std::string& registerName, std::uint32_t low,
                std::uint32_t high, std::uint32_t step) {
  pugi::xml_node node = Named(parent, "Integer", name);
  Leaf(node, "Visibility", "Expert");
  Leaf(node, "pIsLocked", "TLParamsLocked");
  Leaf(node, "pValue", registerName);
  Leaf(node, "Min", std::to_string(low));
  Leaf(node, "Max", std::to_string(high));
  Leaf(node, "Inc", std::to_string(step));
}

// A field of a register of 32 bits; bits count from the most significant one.
void AddField(pugi::xml_node parent, const char* name, const char* address, int first, int last,
              const char* caching) {
  pugi::xml_node node = Named(parent, "MaskedIntReg", name);
  Leaf(node, "Address", address);
  Leaf(node, "Length", "4");
  Leaf(node, "AccessMode", "RW");
  Leaf(node, "pPort", "Device");
  Leaf(node, "Cachable", caching);
  Leaf(node, "LSB", std::to_string(last));
  Leaf(node, "MSB", std::to_string(first));
  Leaf(node, "Sign", "Unsigned");
  Leaf(node, "Endianess", "BigEndian");
}

void AddBoolean(pugi::xml_node parent, const char* name, const char* registerName) {
  pugi::xml_node node = Named(parent, "Boolean", name);
  Leaf(node, "Visibility", "Guru");
  Leaf(node, "pValue", registerName);
  Leaf(node, "OnValue", "1");
  Leaf(node, "OffValue", "0");
}

void AddOffAndOn(pugi::xml_node parent, const char* name, const char* registerName) {
  pugi::xml_node node = Named(parent, "Enumeration", name);
  Leaf(node, "Visibility", "Expert");
  Leaf(node, "pIsLocked", "TLParamsLocked");
  Leaf(Named(node, "EnumEntry", "Off"), "Value", "0");
  Leaf(Named(node, "EnumEntry", "On"), "Value", "1");
  Leaf(node, "pValue", registerName);
}

}  // namespace

std::string WithTransportFeatures(std::string_view description) {
  pugi::xml_document document;
  constexpr unsigned kEverything = pugi::parse_full & ~static_cast<unsigned>(pugi::parse_doctype);
  const bool isRead =
      static_cast<bool>(document.load_buffer(description.data(), description.size(), kEverything));
  pugi::xml_node root = document.child("RegisterDescription");
  pugi::xml_node category = root.find_child_by_attribute("Category", "Name", "TransportLayerControl");
  if (!isRead || !category) return std::string(description);
  for (const char* feature : {"GevSCPSPacketSize", "GevSCPSDoNotFragment", "GevSCPSFireTestPacket", "GevSCPD",
                              "GevGVSPExtendedIDMode"})
    Leaf(category, "pFeature", feature);
  AddInteger(root, "GevSCPSPacketSize", "GevSCPSPacketSizeReg", kSmallestPacket, kLargestPacket, 4);
  AddInteger(root, "GevSCPD", "GevSCPDReg", 0, 1'000'000'000, 1);
  AddBoolean(root, "GevSCPSDoNotFragment", "GevSCPSDoNotFragmentReg");
  AddBoolean(root, "GevSCPSFireTestPacket", "GevSCPSFireTestPacketReg");
  AddOffAndOn(root, "GevGVSPExtendedIDMode", "GevGVSPExtendedIDModeReg");
  AddField(root, "GevSCPSFireTestPacketReg", "0xD04", 0, 0, "NoCache");
  AddField(root, "GevSCPSDoNotFragmentReg", "0xD04", 1, 1, "NoCache");
  AddField(root, "GevSCPSPacketSizeReg", "0xD04", 16, 31, "NoCache");
  AddField(root, "GevSCPDReg", "0xD08", 0, 31, "NoCache");
  AddField(root, "GevGVSPExtendedIDModeReg", "0x960", 1, 1, "NoCache");
  std::ostringstream text;
  document.save(text, "", pugi::format_raw);
  return text.str();
}

}  // namespace zyn::gigedevice
