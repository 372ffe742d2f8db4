#include "ModuleNodeMap.h"

#include <exception>

#include <GenApi/NodeMapFactory.h>
#include <GenICam.h>

#include "../producer/GenTLInfo.h"
#include "ModuleDescription.h"

namespace zyn::transport {

namespace {

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

void Destroy(GenApi_3_4::INodeMap* map) {
  if (auto* destroyable = dynamic_cast<GenApi_3_4::IDestroy*>(map)) destroyable->Destroy();
}

bool IsPlainPort(GenApi_3_4::INode* node) {
  if (!dynamic_cast<GenApi_3_4::IPort*>(node)) return false;
  auto* chunk = dynamic_cast<GenApi_3_4::IChunkPort*>(node);
  if (chunk && !chunk->GetChunkID().empty()) return false;
  return node->GetEventID().empty();
}

// The port's name comes from the producer. Old producers do not tell it: then it is "Device", or else the
// first port that serves neither chunks nor events.
bool Connect(GenApi_3_4::INodeMap& map, GenApi_3_4::IPort& port, const std::string& name) {
  if (!name.empty() && map.Connect(&port, name.c_str())) return true;
  if (map.Connect(&port, "Device")) return true;
  GenApi_3_4::NodeList_t nodes;
  map.GetNodes(nodes);
  for (GenApi_3_4::INode* node : nodes) {
    if (IsPlainPort(node)) return map.Connect(&port, node->GetName());
  }
  return false;
}

std::string PortName(const ProducerLibrary& producer, GenTL::PORT_HANDLE port) {
  if (!producer.GCGetPortInfo) return {};
  const auto name = GetString([&](auto* type, void* buffer, std::size_t* size) {
    return producer.GCGetPortInfo(port, GenTL::PORT_INFO_PORTNAME, type, buffer, size);
  });
  return name.value_or("");
}

}  // namespace

std::shared_ptr<ModuleNodeMap> ModuleNodeMap::Load(const ProducerPtr& producer,
                                                   const std::shared_ptr<void>& module,
                                                   GenTL::PORT_HANDLE port,
                                                   const std::shared_ptr<DeviceLink>& link) {
  std::shared_ptr<ModuleNodeMap> loaded(new ModuleNodeMap(producer, module, port, link));
  try {
    loaded->Build(*producer, port);
  } catch (const GenICam_3_4::GenericException& error) {
    loaded->Drop(error.GetDescription());
  } catch (const std::exception& error) {
    loaded->Drop(error.what());
  }
  return loaded;
}

ModuleNodeMap::ModuleNodeMap(const ProducerPtr& producer, const std::shared_ptr<void>& module,
                             GenTL::PORT_HANDLE port, const std::shared_ptr<DeviceLink>& link)
    : port_(producer, module, port, link) {}

ModuleNodeMap::~ModuleNodeMap() {
  Destroy(map_);
}

void ModuleNodeMap::Build(const ProducerLibrary& producer, GenTL::PORT_HANDLE port) {
  const auto description = FetchDescription(producer, port, FolderOf(producer.Path()), reason_);
  if (!description) return;
  const auto kind = description->isZip ? GenApi_3_4::ContentType_ZippedXml : GenApi_3_4::ContentType_Xml;
  GenApi_3_4::CNodeMapFactory factory(kind, description->bytes.data(), description->bytes.size());
  map_ = factory.CreateNodeMap();
  if (!map_) {
    reason_ = "the description makes no node map";
  } else if (!Connect(*map_, port_, PortName(producer, port))) {
    Drop("the description has no port to connect to");
  }
}

void ModuleNodeMap::Drop(const char* reason) {
  Destroy(map_);
  map_ = nullptr;
  reason_ = reason;
}

}  // namespace zyn::transport
