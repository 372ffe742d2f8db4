#include "ScriptedBackend.h"

#include <algorithm>
#include <cstring>

namespace scripted {

Script& TheScript() {
  static Script script;
  return script;
}

void Script::Reset() {
  InterfaceInfo eth;
  eth.id = "eth0";
  eth.displayName = "eth0 display";
  eth.tlType = GENTL_TLTYPE_GEV;
  eth.tlVersionMajor = 2;
  eth.tlVersionMinor = 1;
  AdapterInfo adapter;
  adapter.mac = 0x0A0B0C0D0E0F;
  adapter.subnets = {{0xC0A80001, 0xFFFFFF00}, {0x0A000001, 0xFF000000}};
  adapter.gateways = {0xC0A800FE};
  eth.adapter = adapter;
  interfaces = {eth};

  DeviceInfo camera;
  camera.id = "CAM1";
  camera.vendor = "Maker & Sons";
  camera.model = "Model<1>";
  camera.serialNumber = "SN1";
  camera.userDefinedName = "left";
  camera.version = "1.2";
  camera.familyName = "Family";
  camera.manufacturerInfo = "info";
  camera.tlType = GENTL_TLTYPE_GEV;
  camera.tlVersionMajor = 2;
  camera.tlVersionMinor = 0;
  camera.accessStatus = GenTL::DEVICE_ACCESS_STATUS_READWRITE;
  camera.timestampFrequency = 1000;
  camera.gev =
      GevDeviceInfo{0x001122334455, 0xC0A80010, 0xFFFFFF00, 0xC0A800FE, IpConfiguration::persistentIp};
  devices = {{"eth0", {camera}}};

  deviceTraits = DeviceTraits();
  deviceTraits.bigEndian = true;
  deviceTraits.xml = {{"local:camera.xml;100;20"}, {"file:///opt/camera.xml"}};
  deviceTraits.streamIds = {"Stream0"};
  deviceTraits.chunkFormat = DeviceTraits::ChunkFormat::gigEVision;
  streamTraits = StreamTraits();
  streamTraits.minimumBuffers = 2;
  payloadSize = 64;
  openError = GenTL::GC_ERR_SUCCESS;
  startError = GenTL::GC_ERR_SUCCESS;
  onFindDevices = nullptr;
  onRead = nullptr;
  std::fill(registers.begin(), registers.end(), std::uint8_t{0});
  std::fill(extension.begin(), extension.end(), std::uint8_t{0});
  buffersRevoked = 0;
  hints = 0;
  searches = 0;
  lastKill = false;
  forced = ForcedAddress();
  ahead.clear();
}

bool Script::SendFrame(std::uint8_t value) {
  FrameInfo info;
  info.frameId = value;
  return SendFrame(value, info);
}

bool Script::SendFrame(std::uint8_t value, FrameInfo info) {
  return SendPayload(std::vector<std::uint8_t>(payloadSize, value), std::move(info));
}

bool Script::SendPayload(const std::vector<std::uint8_t>& payload, FrameInfo info) {
  StreamBuffer* const buffer = sink->TakeForFrame();
  if (buffer == nullptr) return false;
  info.largerThanBuffer = payload.size() > buffer->Size();
  info.sizeFilled = std::min(payload.size(), buffer->Size());
  info.dataSize = payload.size();
  std::memcpy(buffer->Memory(), payload.data(), info.sizeFilled);
  sink->Deliver(*buffer, std::move(info));
  return true;
}

namespace {

/// One integer register of our own in the interface module.
class ScriptedExtension final : public ModuleExtension {
 public:
  std::string Nodes() const override {
    return "<Integer Name=\"ScriptedValue\" NameSpace=\"Custom\"><pValue>ScriptedValueReg</pValue></Integer>"
           "<IntReg Name=\"ScriptedValueReg\" "
           "NameSpace=\"Custom\"><Address>0x08000000</Address><Length>4</Length>"
           "<AccessMode>RW</AccessMode><pPort>InterfacePort</pPort><Cachable>NoCache</Cachable>"
           "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>\n";
  }
  std::vector<std::string> RootFeatures() const override { return {"ScriptedValue"}; }

  void Read(std::uint64_t address, void* data, std::size_t size) override {
    std::memcpy(data, At(address, size), size);
  }
  void Write(std::uint64_t address, const void* data, std::size_t size) override {
    std::memcpy(At(address, size), data, size);
  }

 private:
  static std::uint8_t* At(std::uint64_t address, std::size_t size) {
    auto& memory = TheScript().extension;
    if (address < kBase || address - kBase + size > memory.size())
      throw Error(GenTL::GC_ERR_INVALID_ADDRESS, "outside the extension");
    return memory.data() + (address - kBase);
  }
};

}  // namespace

class ScriptedStream final : public Stream {
 public:
  explicit ScriptedStream(StreamSink& sink) : sink_(sink) {
    const std::lock_guard lock(TheScript().mutex);
    TheScript().sink = &sink;
    ++TheScript().streamsAlive;
  }
  ~ScriptedStream() override {
    const std::lock_guard lock(TheScript().mutex);
    --TheScript().streamsAlive;
  }

  StreamTraits Traits() const override { return TheScript().streamTraits; }
  std::size_t PayloadSize() override { return TheScript().payloadSize; }

  void Start() override {
    if (TheScript().startError != GenTL::GC_ERR_SUCCESS) throw Error(TheScript().startError, "scripted");
    TakeAhead();
  }

  void Stop(bool kill) override {
    TheScript().lastKill = kill;
    for (StreamBuffer* const buffer : TheScript().ahead) {
      if (!kill) {
        sink_.GiveBack(*buffer);
        continue;
      }
      FrameInfo info;
      info.incomplete = true;
      sink_.Deliver(*buffer, std::move(info));
    }
    TheScript().ahead.clear();
  }

  void OnBuffersQueued() override {
    {
      const std::lock_guard lock(TheScript().mutex);
      ++TheScript().hints;
    }
    TakeAhead();
  }

  void OnBufferRevoked(StreamBuffer& buffer) override {
    buffer.backendData = nullptr;
    const std::lock_guard lock(TheScript().mutex);
    ++TheScript().buffersRevoked;
  }

 private:
  void TakeAhead() {
    if (!TheScript().streamTraits.takesAhead) return;
    while (StreamBuffer* const buffer = sink_.TakeQueued()) {
      buffer->backendData = this;
      TheScript().ahead.push_back(buffer);
    }
  }

  StreamSink& sink_;
};

namespace {

class ScriptedDevice final : public Device {
 public:
  explicit ScriptedDevice(DeviceListener& listener) {
    const std::lock_guard lock(TheScript().mutex);
    TheScript().listener = &listener;
    ++TheScript().devicesAlive;
  }
  ~ScriptedDevice() override {
    const std::lock_guard lock(TheScript().mutex);
    --TheScript().devicesAlive;
  }

  DeviceTraits Traits() const override { return TheScript().deviceTraits; }

  void Read(std::uint64_t address, void* data, std::size_t size) override {
    if (TheScript().onRead) TheScript().onRead(address);
    const std::lock_guard lock(registersMutex_);
    std::memcpy(data, At(address, size), size);
  }

  void Write(std::uint64_t address, const void* data, std::size_t size) override {
    const std::lock_guard lock(registersMutex_);
    std::memcpy(At(address, size), data, size);
  }

  std::unique_ptr<Stream> OpenStream(std::size_t, StreamSink& sink) override {
    return std::make_unique<ScriptedStream>(sink);
  }

  LinkSettings Link() const override { return link_; }
  void SetLink(const LinkSettings& link) override { link_ = link; }
  void SetUserDefinedName(const std::string& name) override {
    if (name.size() > 16) throw Error(GenTL::GC_ERR_INVALID_VALUE, "too long");
  }

 private:
  static std::uint8_t* At(std::uint64_t address, std::size_t size) {
    auto& memory = TheScript().registers;
    if (address > memory.size() || size > memory.size() - address)
      throw Error(GenTL::GC_ERR_INVALID_ADDRESS, "outside the camera");
    return memory.data() + address;
  }

  std::mutex registersMutex_;
  LinkSettings link_ = {500000.0, 3};
};

class ScriptedInterface final : public Interface {
 public:
  explicit ScriptedInterface(std::string id) : id_(std::move(id)) {}

  std::vector<DeviceInfo> FindDevices(std::chrono::milliseconds) override {
    if (TheScript().onFindDevices) TheScript().onFindDevices();
    const std::lock_guard lock(TheScript().mutex);
    ++TheScript().searches;
    return TheScript().devices[id_];
  }

  std::unique_ptr<Device> OpenDevice(const DeviceInfo&, Access, DeviceListener& listener) override {
    if (TheScript().openError != GenTL::GC_ERR_SUCCESS) throw Error(TheScript().openError, "scripted");
    return std::make_unique<ScriptedDevice>(listener);
  }

  void ForceAddress(const DeviceInfo&, const ForcedAddress& forced) override { TheScript().forced = forced; }

  ModuleExtension* Extension() override { return &extension_; }

 private:
  const std::string id_;
  ScriptedExtension extension_;
};

class ScriptedBackend final : public Backend {
 public:
  ProducerInfo Info() const override {
    ProducerInfo info;
    info.vendor = "Scripted Vendor";
    info.model = "Scripted Model";
    info.version = "3.2.1";
    info.displayName = "Scripted";
    info.tlType = GENTL_TLTYPE_GEV;
    return info;
  }
  std::vector<InterfaceInfo> FindInterfaces(std::chrono::milliseconds) override {
    return TheScript().interfaces;
  }
  std::unique_ptr<Interface> OpenInterface(const InterfaceInfo& info) override {
    return std::make_unique<ScriptedInterface>(info.id);
  }
};

}  // namespace
}  // namespace scripted

std::unique_ptr<zyn::producer::Backend> zyn::producer::CreateBackend() {
  if (scripted::TheScript().refusesToStart) throw Error(GenTL::GC_ERR_INVALID_VALUE, "The script refuses.");
  return std::make_unique<scripted::ScriptedBackend>();
}
