#include "LaserFeatures.h"

#include <cstring>
#include <stdexcept>

namespace fakes {

namespace {

using Features = std::vector<LaserFeatures::Feature>;

std::vector<LaserFeatures::Feature> All(const LaserFeatures& features) {
  std::vector<LaserFeatures::Feature> all = features.booleans;
  all.insert(all.end(), features.integers.begin(), features.integers.end());
  all.insert(all.end(), features.floats.begin(), features.floats.end());
  return all;
}

std::string Register(const char* kind, const LaserFeatures::Feature& feature, const char* more) {
  return std::string("<") + kind + " Name=\"" + feature.name + "Reg\"><Address>" +
         std::to_string(feature.address) +
         "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
         "<Cachable>NoCache</Cachable>" +
         more + "<Endianess>BigEndian</Endianess></" + kind + ">\n";
}

std::string Node(const char* kind, const LaserFeatures::Feature& feature, const char* more) {
  return std::string("<") + kind + " Name=\"" + feature.name + "\"><pValue>" + feature.name + "Reg</pValue>" +
         more + "</" + kind + ">\n";
}

}  // namespace

std::int64_t LaserFeatures::AddressOf(const std::string& name) {
  for (const Feature& feature : All(LaserFeatures())) {
    if (feature.name == name) return feature.address;
  }
  throw std::out_of_range(name);
}

void LaserFeatures::Drop(const std::string& name) {
  for (Features* list : {&booleans, &integers, &floats}) {
    std::erase_if(*list, [&](const Feature& feature) { return feature.name == name; });
  }
}

std::string LaserFeatures::Nodes() const {
  std::string nodes;
  for (const Feature& feature : booleans) {
    nodes += Node("Boolean", feature, "<OnValue>1</OnValue><OffValue>0</OffValue>") +
             Register("IntReg", feature, "<Sign>Unsigned</Sign>");
  }
  for (const Feature& feature : integers) {
    nodes += Node("Integer", feature, "") + Register("IntReg", feature, "<Sign>Signed</Sign>");
  }
  for (const Feature& feature : floats)
    nodes += Node("Float", feature, "") + Register("FloatReg", feature, "");
  return nodes;
}

std::vector<std::string> LaserFeatures::Names() const {
  std::vector<std::string> names;
  for (const Feature& feature : All(*this)) names.push_back(feature.name);
  return names;
}

LaserNodeMap::LaserNodeMap(const LaserFeatures& features) : TestNodeMap(features.Nodes(), features.Names()) {}

void LaserNodeMap::PutInt(const std::string& name, int value) {
  port.Put(LaserFeatures::AddressOf(name), static_cast<std::uint32_t>(value));
}

void LaserNodeMap::PutFloat(const std::string& name, float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof(bits));
  port.Put(LaserFeatures::AddressOf(name), bits);
}

int LaserNodeMap::GetInt(const std::string& name) const {
  return static_cast<int>(port.Get(LaserFeatures::AddressOf(name)));
}

std::vector<std::pair<std::string, int>> LaserNodeMap::Written() const {
  std::vector<std::pair<std::string, int>> written;
  for (const auto& [address, value] : port.Written()) {
    for (const LaserFeatures::Feature& feature : All(LaserFeatures())) {
      if (feature.address == address) written.emplace_back(feature.name, static_cast<int>(value));
    }
  }
  return written;
}

}  // namespace fakes
