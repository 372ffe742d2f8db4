#ifndef ZYN_DEVICE_NODE_MANAGER_H
#define ZYN_DEVICE_NODE_MANAGER_H

#include <array>
#include <memory>
#include <string>
#include <unordered_map>

#include "CameraNode.h"
#include "ThreadAnnotations.h"
#include "ZynCamera/Types.h"

namespace ZYNSDK {

/// The feature objects of one logical camera, which owns it. Makes each once and keeps it for the camera's
/// whole life, so that handles are cheap and stay valid. May be used from any thread.
class NodeManager {
 public:
  NodeManager() = default;
  NodeManager(const NodeManager&) = delete;
  NodeManager& operator=(const NodeManager&) = delete;
  virtual ~NodeManager() = default;

  /// The object known in that node map by `handleName`; made from the other arguments at the first call,
  /// which later calls ignore. Null for a node map that does not exist.
  CameraNode* GetNode(LogicCamera* camera, const std::string& accessName, const std::string& handleName,
                      ZynNodeType type, ZynXmlSource source) ZYN_EXCLUDES(mutex_);

 private:
  using Nodes = std::unordered_map<std::string, std::unique_ptr<CameraNode>>;

  zyn::Mutex mutex_;                                                         // nothing is taken under it
  std::array<Nodes, ZYN_XML_DATA_STREAM + 1> nodes_ ZYN_GUARDED_BY(mutex_);  // by source
};

}  // namespace ZYNSDK

#endif
