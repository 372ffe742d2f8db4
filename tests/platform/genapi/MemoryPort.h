// A device of 64 KiB in memory that counts accesses and fails when told to.
#ifndef ZYN_TESTS_GENAPI_MEMORYPORT_H
#define ZYN_TESTS_GENAPI_MEMORYPORT_H

#include <array>
#include <atomic>
#include <cstring>
#include <initializer_list>
#include <string>

#include "GenICam.h"

namespace zyn::genapi::test {

class MemoryPort : public GenApi::CPortImpl {
 public:
  GenApi::EAccessMode GetAccessMode() const override { return mode; }

  void Read(void* buffer, int64_t address, int64_t length) override {
    Check(address, length);
    ++reads;
    std::memcpy(buffer, bytes.data() + address, static_cast<std::size_t>(length));
  }

  void Write(const void* buffer, int64_t address, int64_t length) override {
    Check(address, length);
    ++writes;
    std::memcpy(bytes.data() + address, buffer, static_cast<std::size_t>(length));
  }

  void Set(std::size_t address, std::initializer_list<int> values) {
    for (const int value : values) bytes[address++] = static_cast<unsigned char>(value);
  }

  GenApi::EAccessMode mode = GenApi::RW;
  bool fails = false;
  int reads = 0;
  int writes = 0;
  std::array<unsigned char, 65536> bytes{};

 private:
  void Check(int64_t address, int64_t length) const {
    if (fails) throw TIMEOUT_EXCEPTION("The device does not answer");
    const auto size = static_cast<int64_t>(bytes.size());
    if (address < 0 || length < 0 || address > size || length > size - address)
      throw RUNTIME_EXCEPTION("Address %lld is outside the device", static_cast<long long>(address));
  }
};

inline std::string Description(const std::string& nodes) {
  return "<?xml version=\"1.0\"?>\n<RegisterDescription ModelName=\"Model\" VendorName=\"Vendor\" "
         "ToolTip=\"Tip\" "
         "StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
         "SchemaSubMinorVersion=\"0\" "
         "MajorVersion=\"1\" MinorVersion=\"2\" SubMinorVersion=\"3\" ProductGuid=\"P\" VersionGuid=\"V\" "
         "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n" +
         nodes + "\n<Port Name=\"Device\"/>\n</RegisterDescription>\n";
}

inline std::string Register(const std::string& kind, const std::string& name, int address, int length,
                            const std::string& more = "", const std::string& access = "RW") {
  return "<" + kind + " Name=\"" + name + "\"><Address>" + std::to_string(address) + "</Address><Length>" +
         std::to_string(length) + "</Length><AccessMode>" + access + "</AccessMode><pPort>Device</pPort>" +
         more + "</" + kind + ">\n";
}

// A camera with these nodes, connected to a memory.
class Camera {
 public:
  explicit Camera(const std::string& nodes) {
    map._LoadXMLFromString(Description(nodes).c_str());
    map._Connect(&port);
  }

  template <class T>
  T& As(const char* name) {
    T* const node = dynamic_cast<T*>(map._GetNode(name));
    if (!node) throw std::string("no such node: ") + name;
    return *node;
  }
  GenApi::IInteger& Integer(const char* name) { return As<GenApi::IInteger>(name); }
  GenApi::IFloat& Float(const char* name) { return As<GenApi::IFloat>(name); }
  GenApi::IValue& Value(const char* name) { return As<GenApi::IValue>(name); }
  GenApi::INode& Node(const char* name) { return As<GenApi::INode>(name); }
  std::string Text(const char* name) { return std::string(Value(name).ToString().c_str()); }
  GenApi::EAccessMode Access(const char* name) { return Node(name).GetAccessMode(); }

  MemoryPort port;
  GenApi::CNodeMapRef map;
};

}  // namespace zyn::genapi::test

#endif
