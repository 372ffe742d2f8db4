/// The node map of one GenTL module, with the port it is connected to.
#ifndef ZYN_TRANSPORT_MODULE_NODE_MAP_H
#define ZYN_TRANSPORT_MODULE_NODE_MAP_H

#include <memory>
#include <string>

#include "DeviceLink.h"
#include "PortAdapter.h"

namespace GenApi_3_4 {
struct INodeMap;
}

namespace zyn::transport {

/// Constant after Load; the node map has its own lock. A module without a usable description has none, which
/// is no failure: the camera can still stream.
class ModuleNodeMap {
 public:
  /// Fetches the description, builds the map and connects it. Never null. Blocks while the port is read.
  /// link  see PortAdapter.
  static std::shared_ptr<ModuleNodeMap> Load(const ProducerPtr& producer, const std::shared_ptr<void>& module,
                                             GenTL::PORT_HANDLE port,
                                             const std::shared_ptr<DeviceLink>& link);
  ~ModuleNodeMap();
  ModuleNodeMap(const ModuleNodeMap&) = delete;
  ModuleNodeMap& operator=(const ModuleNodeMap&) = delete;

  GenApi_3_4::INodeMap* Map() const { return map_; }     ///< null when the module has no usable description
  const std::string& Reason() const { return reason_; }  ///< why Map() is null

  /// Ends access to the module. The map stays, and its nodes throw.
  void Close() { port_.Close(); }

 private:
  ModuleNodeMap(const ProducerPtr& producer, const std::shared_ptr<void>& module, GenTL::PORT_HANDLE port,
                const std::shared_ptr<DeviceLink>& link);
  void Build(const ProducerLibrary& producer, GenTL::PORT_HANDLE port);
  void Drop(const char* reason);

  PortAdapter port_;
  GenApi_3_4::INodeMap* map_ = nullptr;
  std::string reason_;
};

using NodeMapPtr = std::shared_ptr<ModuleNodeMap>;

}  // namespace zyn::transport

#endif
