#include "NodeManager.h"

namespace ZYNSDK {

CameraNode* NodeManager::GetNode(LogicCamera* camera, const std::string& accessName,
                                 const std::string& handleName, ZynNodeType type, ZynXmlSource source) {
  const auto map = static_cast<std::size_t>(source);
  zyn::MutexLock lock(mutex_);
  if (map >= nodes_.size()) return nullptr;
  const auto known = nodes_[map].find(handleName);
  if (known != nodes_[map].end()) return known->second.get();
  auto node = std::make_unique<CameraNode>(camera, accessName, handleName, type, source);
  return nodes_[map].emplace(handleName, std::move(node)).first->second.get();
}

}  // namespace ZYNSDK
