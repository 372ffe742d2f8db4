#include <time.h>

#include <chrono>
#include <cstdint>
#include <thread>

#include "Borrow.h"
#include "GenICam.h"
#include "PhysicCamera.h"
#include "ZynCamera/HandleArrays.h"
#include "ZynCamera/ZynString.h"

namespace ZYNSDK {

namespace {

using KELGENICAM::ICamera;
using KELGENICAM::INodeMapHolder;

INodeMapHolder* HolderOf(ICamera& camera, ZynXmlSource source) {
  switch (source) {
    case ZYN_XML_REMOTE_DEVICE:
      return camera.RemoteDeviceNodeMap();
    case ZYN_XML_LOCAL_DEVICE:
      return camera.LocalDeviceNodeMap();
    case ZYN_XML_TRANSPORT_LAYER:
      return camera.TLNodeMap();
    case ZYN_XML_INTERFACE:
      return camera.InterfaceNodeMap();
    case ZYN_XML_DATA_STREAM:
      return camera.DataStreamNodeMap();
  }
  return nullptr;
}

bool IsReadableMode(GenApi::EAccessMode mode) {
  return mode == GenApi::RO || mode == GenApi::RW;
}

// The typed interface of a node that can be read now, or null.
template <class Interface>
Interface* ReadableAs(GenApi::INode* node) {
  auto* typed = dynamic_cast<Interface*>(node);
  return typed && IsReadableMode(typed->GetAccessMode()) ? typed : nullptr;
}

bool IsListed(const GenApi::INode& node) {
  if (!node.IsFeature()) return false;
  if (node.GetVisibility() > GenApi::Guru) return false;
  switch (node.GetPrincipalInterfaceType()) {
    case GenApi::intfIInteger:
    case GenApi::intfIBoolean:
    case GenApi::intfICommand:
    case GenApi::intfIFloat:
    case GenApi::intfIEnumeration:
      return true;
    default:
      return false;
  }
}

bool ReadInt(GenApi::IInteger& node, int& value, int& minimum, int& maximum, int& increment) {
  try {
    value = static_cast<int>(node.GetValue(false, false));
    minimum = static_cast<int>(node.GetMin());
    maximum = static_cast<int>(node.GetMax());
    increment = static_cast<int>(node.GetInc());
    return true;
  } catch (...) {
    return false;
  }
}

bool HasFixedIncrement(GenApi::IFloat& node) {
  return node.HasInc() && node.GetIncMode() == GenApi::fixedIncrement;
}

timespec Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now;
}

std::int32_t MillisecondsSince(const timespec& start) {
  const timespec now = Now();
  const auto milliseconds = [](const timespec& time) { return time.tv_nsec / 1'000'000; };
  return static_cast<std::int32_t>((now.tv_sec - start.tv_sec) * 1000 + milliseconds(now) -
                                   milliseconds(start));
}

// Whether an earlier execution has ended, or ends within the time.
bool WaitUntilDone(GenApi::ICommand& command, int timeoutMs) {
  const timespec start = Now();
  if (command.IsDone(true)) return true;
  while (MillisecondsSince(start) < timeoutMs) {
    std::this_thread::sleep_for(std::chrono::microseconds(1));
    if (command.IsDone(true)) return true;
  }
  return false;
}

}  // namespace

// Runs `use` on the node with the device borrowed all the while: without that, Close on another thread could
// release the device, and the node with it, between look-up and use.
template <class Use>
long PhysicCamera::WithNode(const std::string& name, ZynXmlSource source, Use use) {
  Borrow camera(*this);
  if (!camera) return ZYN_ERROR_NOT_OPEN;
  GenApi::INode* node = nullptr;
  if (const long error = GetNodeAction(camera.Get(), name, source, node)) return error;
  return use(node);
}

ZynNodeType PhysicCamera::GetNodeType(GenApi::INode* node) {
  if (!node) return ZYN_NODE_UNKNOWN;
  switch (node->GetPrincipalInterfaceType()) {
    case GenApi::intfIBoolean:
      return ZYN_NODE_BOOLEAN;
    case GenApi::intfIInteger:
      return ZYN_NODE_INTEGER;
    case GenApi::intfIFloat:
      return ZYN_NODE_FLOAT;
    case GenApi::intfIEnumeration:
      return ZYN_NODE_ENUMERATION;
    case GenApi::intfICommand:
      return ZYN_NODE_COMMAND;
    default:
      return ZYN_NODE_UNKNOWN;
  }
}

GenApi::INodeMap* PhysicCamera::GetNodesMapAction(ICamera* camera, ZynXmlSource source) {
  INodeMapHolder* holder = HolderOf(*camera, source);
  return holder ? holder->NodeMap() : nullptr;
}

GenApi::INodeMap* PhysicCamera::GetNodesMap(ZynXmlSource source) {
  Borrow camera(*this);
  return camera ? GetNodesMapAction(camera.Get(), source) : nullptr;
}

long PhysicCamera::GetNodeAction(ICamera* camera, const std::string& name, ZynXmlSource source,
                                 GenApi::INode*& node) {
  node = nullptr;
  if (!camera->IsOpen()) return ZYN_ERROR_NOT_OPEN;
  GenApi::INodeMap* map = GetNodesMapAction(camera, source);
  if (!map) return ZYN_ERROR_NO_NODE_MAP;
  node = map->GetNode(GenICam::gcstring(name.c_str()));
  return node ? ZYN_OK : ZYN_ERROR_NO_SUCH_NODE;
}

long PhysicCamera::GetNode(const std::string& name, ZynXmlSource source, GenApi::INode*& node) {
  node = nullptr;
  Borrow camera(*this);
  if (!camera) return ZYN_ERROR_NOT_OPEN;
  return GetNodeAction(camera.Get(), name, source, node);
}

long PhysicCamera::GetNodeType(const std::string& name, ZynXmlSource source, ZynNodeType& type) {
  type = ZYN_NODE_UNKNOWN;
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    type = GetNodeType(node);
    return type == ZYN_NODE_UNKNOWN ? ZYN_ERROR_UNSUPPORTED_NODE : ZYN_OK;
  });
}

long PhysicCamera::GetNodesAction(ICamera* camera, ZynXmlSource source,
                                  std::vector<std::pair<std::string, ZynNodeType>>& out) {
  if (!camera->IsOpen()) return ZYN_ERROR_NOT_OPEN;
  GenApi::INodeMap* map = GetNodesMapAction(camera, source);
  if (!map) return ZYN_ERROR_NO_NODE_MAP;
  GenApi::NodeList_t nodes;
  map->GetNodes(nodes);
  for (GenApi::INode* node : nodes) {
    if (node && IsListed(*node)) out.emplace_back(node->GetName(false).c_str(), GetNodeType(node));
  }
  return ZYN_OK;
}

long PhysicCamera::GetNodes(ZynXmlSource source, std::vector<std::pair<std::string, ZynNodeType>>& out) {
  Borrow camera(*this);
  if (!camera) return ZYN_ERROR_NOT_OPEN;
  return GetNodesAction(camera.Get(), source, out);
}

long PhysicCamera::GetBool(const std::string& name, ZynXmlSource source, bool& value) {
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    auto* boolean = ReadableAs<GenApi::IBoolean>(node);
    if (!boolean) return ZYN_ERROR_NOT_READABLE;
    value = boolean->GetValue(false, false);
    return ZYN_OK;
  });
}

// Design decision: an integer is read three times before it counts as failed, because geometry is read right
// after cameras were reconfigured; no other type is retried. Pinned by AnIntegerReadIsTriedThreeTimes.
long PhysicCamera::GetInt(const std::string& name, ZynXmlSource source, int& value, int& minimum,
                          int& maximum, int& increment) {
  constexpr int kAttempts = 3;
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    auto* integer = ReadableAs<GenApi::IInteger>(node);
    if (!integer) return ZYN_ERROR_NOT_READABLE;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      if (ReadInt(*integer, value, minimum, maximum, increment)) return ZYN_OK;
    }
    return ZYN_ERROR_EXCEPTION;
  });
}

long PhysicCamera::GetFloat(const std::string& name, ZynXmlSource source, float& value, float& minimum,
                            float& maximum, float& increment) {
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    auto* real = ReadableAs<GenApi::IFloat>(node);
    if (!real) return ZYN_ERROR_NOT_READABLE;
    value = static_cast<float>(real->GetValue(false, false));
    minimum = static_cast<float>(real->GetMin());
    maximum = static_cast<float>(real->GetMax());
    increment = HasFixedIncrement(*real) ? static_cast<float>(real->GetInc()) : 1.0F;
    return ZYN_OK;
  });
}

// Design decision: unlike the other reads, another type or an unreadable node is no failure here; it reads as
// nothing. Pinned by AnEnumerationReadOfSomethingElseIsEmptyAndNoFailure.
long PhysicCamera::GetEnum(const std::string& name, ZynXmlSource source, ZynString& current,
                           ZynStringArray& entries) {
  current.clear();
  entries.clear();
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    auto* enumeration = ReadableAs<GenApi::IEnumeration>(node);
    if (!enumeration) return ZYN_OK;
    current = enumeration->ToString(false, false).c_str();
    GenApi::NodeList_t nodes;
    enumeration->GetEntries(nodes);
    for (GenApi::INode* entryNode : nodes) {
      auto* entry = dynamic_cast<GenApi::IEnumEntry*>(entryNode);
      if (!entry || entry->GetAccessMode() <= GenApi::NA) continue;
      ZynString symbolic;
      symbolic = entry->GetSymbolic().c_str();
      entries.push_back(symbolic);
    }
    return ZYN_OK;
  });
}

// The setters leave all checks to GenICam: its null pointers throw when the node is of another type.

long PhysicCamera::SetBool(const std::string& name, ZynXmlSource source, bool value) {
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    GenApi::CBooleanPtr(node)->SetValue(value);
    return ZYN_OK;
  });
}

long PhysicCamera::SetInt(const std::string& name, ZynXmlSource source, int value) {
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    GenApi::CIntegerPtr(node)->SetValue(value);
    return ZYN_OK;
  });
}

long PhysicCamera::SetFloat(const std::string& name, ZynXmlSource source, float value) {
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    GenApi::CFloatPtr(node)->SetValue(static_cast<double>(value));
    return ZYN_OK;
  });
}

long PhysicCamera::SetEnumString(const std::string& name, ZynXmlSource source, const std::string& entry) {
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    GenApi::CEnumerationPtr(node)->FromString(entry.c_str());
    return ZYN_OK;
  });
}

long PhysicCamera::SetEnumIndex(const std::string& name, ZynXmlSource source, int value) {
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    GenApi::CEnumerationPtr(node)->SetIntValue(value);
    return ZYN_OK;
  });
}

// Design decision: the time-out is for an execution that may still be running; the new one is issued in any
// case and not waited for. Pinned by ExecuteWithTimeoutZeroOnABusyCommandExecutesAndAnswersMinusOne.
long PhysicCamera::Execute(const std::string& name, ZynXmlSource source, int timeoutMs) {
  constexpr long kTimedOut = -1;
  return WithNode(name, source, [&](GenApi::INode* node) -> long {
    const GenApi::CCommandPtr command(node);
    const bool wasDone = WaitUntilDone(*command, timeoutMs);
    command->Execute(true);
    return wasDone ? ZYN_OK : kTimedOut;
  });
}

}  // namespace ZYNSDK
