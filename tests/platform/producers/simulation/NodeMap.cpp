#include "NodeMap.h"

#include <GenApi/NodeMapFactory.h>

#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "Getters.h"

namespace simtest {

using namespace GenTL;

class NodeMap::Port final : public GenApi_3_4::IPort {
 public:
  explicit Port(PORT_HANDLE handle) : handle_(handle) {}

  GenApi_3_4::EAccessMode GetAccessMode() const override { return GenApi_3_4::RW; }
  void Read(void* buffer, int64_t address, int64_t length) override {
    auto size = static_cast<std::size_t>(length);
    Require(GCReadPort(handle_, static_cast<std::uint64_t>(address), buffer, &size));
  }
  void Write(const void* buffer, int64_t address, int64_t length) override {
    auto size = static_cast<std::size_t>(length);
    Require(GCWritePort(handle_, static_cast<std::uint64_t>(address), buffer, &size));
  }

 private:
  static void Require(GC_ERROR result) {
    if (result != GC_ERR_SUCCESS)
      throw ACCESS_EXCEPTION("The producer answered %d.", static_cast<int>(result));
  }

  const PORT_HANDLE handle_;
};

NodeMap::NodeMap(PORT_HANDLE port) : port_(std::make_unique<Port>(port)) {
  const std::string url = kittest::Text(kittest::Bound(GCGetPortURLInfo, port, 0U, URL_INFO_URL));
  const std::size_t first = url.find(';');
  if (first == std::string::npos) throw std::runtime_error("no local description: " + url);
  char* end = nullptr;
  const std::uint64_t address = std::strtoull(url.c_str() + first + 1, &end, 16);
  std::size_t size = std::strtoull(end + 1, nullptr, 16);
  std::vector<char> xml(size);
  if (GCReadPort(port, address, xml.data(), &size) != GC_ERR_SUCCESS)
    throw std::runtime_error("unreadable: " + url);
  GenApi_3_4::CNodeMapFactory factory(GenApi_3_4::ContentType_Xml, xml.data(), xml.size());
  map_ = factory.CreateNodeMap();
  const std::string name = kittest::Text(kittest::Bound(GCGetPortInfo, port, PORT_INFO_PORTNAME));
  if (!map_->Connect(port_.get(), name.c_str())) throw std::runtime_error("there is no port " + name);
}

NodeMap::~NodeMap() {
  if (auto* const map = dynamic_cast<GenApi_3_4::IDestroy*>(map_)) map->Destroy();
}

template <class Interface>
Interface& NodeMap::Get(const std::string& name) const {
  auto* const node = dynamic_cast<Interface*>(map_->GetNode(name.c_str()));
  if (node == nullptr) throw std::runtime_error("there is no such feature " + name);
  return *node;
}

bool NodeMap::Has(const std::string& name) const {
  return map_->GetNode(name.c_str()) != nullptr;
}
std::int64_t NodeMap::Int(const std::string& name) const {
  return Get<GenApi_3_4::IInteger>(name).GetValue();
}
double NodeMap::Float(const std::string& name) const {
  return Get<GenApi_3_4::IFloat>(name).GetValue();
}
bool NodeMap::Bool(const std::string& name) const {
  return Get<GenApi_3_4::IBoolean>(name).GetValue();
}
std::string NodeMap::Text(const std::string& name) const {
  return Get<GenApi_3_4::IValue>(name).ToString().c_str();
}
void NodeMap::Set(const std::string& name, std::int64_t value) const {
  Get<GenApi_3_4::IInteger>(name).SetValue(value);
}
void NodeMap::SetFloat(const std::string& name, double value) const {
  Get<GenApi_3_4::IFloat>(name).SetValue(value);
}
void NodeMap::SetBool(const std::string& name, bool value) const {
  Get<GenApi_3_4::IBoolean>(name).SetValue(value);
}
void NodeMap::SetText(const std::string& name, const std::string& value) const {
  Get<GenApi_3_4::IValue>(name).FromString(value.c_str());
}
void NodeMap::Execute(const std::string& name) const {
  Get<GenApi_3_4::ICommand>(name).Execute();
}

}  // namespace simtest
