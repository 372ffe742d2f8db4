/// A node map over a port of the producer, made the way any consumer makes one.
#ifndef ZYN_TESTS_SIMULATION_NODE_MAP_H
#define ZYN_TESTS_SIMULATION_NODE_MAP_H

#include <GenICam.h>

#include <cstdint>
#include <memory>
#include <string>

#include "GenTL/GenTL.h"

namespace simtest {

/// Throws std::runtime_error when the port has no usable description. Features that are missing or of another kind
/// throw too, as do refused accesses (GenericException).
class NodeMap {
 public:
  explicit NodeMap(GenTL::PORT_HANDLE port);
  ~NodeMap();
  NodeMap(const NodeMap&) = delete;
  NodeMap& operator=(const NodeMap&) = delete;

  bool Has(const std::string& name) const;
  std::int64_t Int(const std::string& name) const;
  double Float(const std::string& name) const;
  bool Bool(const std::string& name) const;
  std::string Text(const std::string& name) const;
  void Set(const std::string& name, std::int64_t value) const;
  void SetFloat(const std::string& name, double value) const;
  void SetBool(const std::string& name, bool value) const;
  void SetText(const std::string& name, const std::string& value) const;
  void Execute(const std::string& name) const;

 private:
  class Port;

  template <class Interface>
  Interface& Get(const std::string& name) const;

  std::unique_ptr<Port> port_;
  GenApi_3_4::INodeMap* map_ = nullptr;
};

}  // namespace simtest

#endif
