#include <array>
#include <cstring>
#include <utility>

#include "Guarded.h"
#include "LogicCamera.h"
#include "NodeManager.h"
#include "PhysicCamera.h"
#include "SetWrapperValue.h"
#include "ZynCamera/HandleArrays.h"
#include "ZynCamera/ZynNode.h"

namespace ZYNSDK {

namespace {

// Features that older cameras publish with another ending.
constexpr std::array<const char*, 4> kSpecialNodes = {"ExposureTime", "TriggerDelay", "Gain",
                                                      "AcquisitionFrameRate"};

constexpr char kSoftwareTrigger[] = "TriggerSoftware";

std::vector<std::string> CandidatesFor(const std::string& name) {
  if (!LogicCamera::IsSpecialNode(name)) return {name};
  return {name, name + "Abs", name + "Raw"};
}

}  // namespace

bool LogicCamera::IsSpecialNode(const std::string& name) {
  for (const char* special : kSpecialNodes) {
    if (name == special) return true;
  }
  return false;
}

// Design decision: a look-up of the software trigger tells the application the exception itself and not a
// code; applications that trigger depend on its text. Pinned by
// LookingUpTriggerSoftwareLetsExceptionsThrough.
long LogicCamera::GetNodeType(const std::string& name, ZynXmlSource source, ZynNodeType& type) {
  if (name == kSoftwareTrigger) return device_->GetNodeType(name, source, type);
  return Guarded([&] { return device_->GetNodeType(name, source, type); });
}

long LogicCamera::GetNodeByXmlType(const char* name, ZynNode* node, ZynXmlSource source) {
  if (!name || !node) return ZYN_ERROR_INVALID_ARGUMENT;
  if (std::strcmp(name, kSoftwareTrigger) == 0) return FindNode(name, *node, source);
  return Guarded([&] { return FindNode(name, *node, source); });
}

long LogicCamera::FindNode(const std::string& name, ZynNode& node, ZynXmlSource source) {
  long result = ZYN_OK;
  for (const std::string& candidate : CandidatesFor(name)) {
    ZynNodeType type = ZYN_NODE_UNKNOWN;
    result = GetNodeType(candidate, source, type);
    if (result != ZYN_OK) continue;
    SetWrapperValue(&node, nodes_->GetNode(this, candidate, name, type, source), false);
    return ZYN_OK;
  }
  return result;
}

long LogicCamera::GetNodesByXmlType(ZynNodeArray* nodes, ZynXmlSource source) {
  if (!nodes) return ZYN_ERROR_INVALID_ARGUMENT;
  nodes->clear();
  return Guarded([&] {
    std::vector<std::pair<std::string, ZynNodeType>> found;
    const long result = Guarded([&] { return device_->GetNodes(source, found); });
    // Also after a failure: what was found until then is listed.
    for (const auto& [name, type] : found) {
      ZynNode node;
      SetWrapperValue(&node, nodes_->GetNode(this, name, name, type, source), false);
      nodes->push_back(node);
    }
    return result;
  });
}

GenApi_3_4::INodeMap* LogicCamera::GetNodesMap(ZynXmlSource source) {
  zyn::MutexLock lock(mutex_);
  return Guarded([&] { return GetNodesMapAction(source); }, static_cast<GenApi_3_4::INodeMap*>(nullptr));
}

GenApi_3_4::INodeMap* LogicCamera::GetNodesMapAction(ZynXmlSource source) {
  return device_->GetNodesMap(source);
}

long LogicCamera::GetTLNode(const char* name, ZynNode* node) {
  return GetNodeByXmlType(name, node, ZYN_XML_TRANSPORT_LAYER);
}
long LogicCamera::GetTLNodes(ZynNodeArray* nodes) {
  return GetNodesByXmlType(nodes, ZYN_XML_TRANSPORT_LAYER);
}
long LogicCamera::GetIFNode(const char* name, ZynNode* node) {
  return GetNodeByXmlType(name, node, ZYN_XML_INTERFACE);
}
long LogicCamera::GetIFNodes(ZynNodeArray* nodes) {
  return GetNodesByXmlType(nodes, ZYN_XML_INTERFACE);
}
long LogicCamera::GetDevNode(const char* name, ZynNode* node) {
  return GetNodeByXmlType(name, node, ZYN_XML_LOCAL_DEVICE);
}
long LogicCamera::GetDevNodes(ZynNodeArray* nodes) {
  return GetNodesByXmlType(nodes, ZYN_XML_LOCAL_DEVICE);
}
long LogicCamera::GetRemoteNode(const char* name, ZynNode* node) {
  return GetNodeByXmlType(name, node, ZYN_XML_REMOTE_DEVICE);
}
long LogicCamera::GetRemoteNodes(ZynNodeArray* nodes) {
  return GetNodesByXmlType(nodes, ZYN_XML_REMOTE_DEVICE);
}
long LogicCamera::GetDSNode(const char* name, ZynNode* node) {
  return GetNodeByXmlType(name, node, ZYN_XML_DATA_STREAM);
}
long LogicCamera::GetDSNodes(ZynNodeArray* nodes) {
  return GetNodesByXmlType(nodes, ZYN_XML_DATA_STREAM);
}

long LogicCamera::GetBoolValue(const std::string& name, ZynXmlSource source, bool& value) {
  return Guarded([&] { return device_->GetBool(name, source, value); });
}
long LogicCamera::GetIntValue(const std::string& name, ZynXmlSource source, int& value, int& minimum,
                              int& maximum, int& increment) {
  return Guarded([&] { return device_->GetInt(name, source, value, minimum, maximum, increment); });
}
long LogicCamera::GetFloatValue(const std::string& name, ZynXmlSource source, float& value, float& minimum,
                                float& maximum, float& increment) {
  return Guarded([&] { return device_->GetFloat(name, source, value, minimum, maximum, increment); });
}
long LogicCamera::GetEnumValue(const std::string& name, ZynXmlSource source, ZynString& current,
                               ZynStringArray& entries) {
  return Guarded([&] { return device_->GetEnum(name, source, current, entries); });
}
long LogicCamera::SetBoolValue(const std::string& name, ZynXmlSource source, bool value) {
  return Guarded([&] { return device_->SetBool(name, source, value); });
}
long LogicCamera::SetIntValue(const std::string& name, ZynXmlSource source, int value) {
  return Guarded([&] { return device_->SetInt(name, source, value); });
}
long LogicCamera::SetFloatValue(const std::string& name, ZynXmlSource source, float value) {
  return Guarded([&] { return device_->SetFloat(name, source, value); });
}
long LogicCamera::SetEnumStringValue(const std::string& name, ZynXmlSource source, const std::string& entry) {
  return Guarded([&] { return device_->SetEnumString(name, source, entry); });
}
long LogicCamera::SetEnumIndexValue(const std::string& name, ZynXmlSource source, int value) {
  return Guarded([&] { return device_->SetEnumIndex(name, source, value); });
}
long LogicCamera::ExecuteNode(const std::string& name, ZynXmlSource source, int timeoutMs) {
  return Guarded([&] { return device_->Execute(name, source, timeoutMs); });
}

}  // namespace ZYNSDK
