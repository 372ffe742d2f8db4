// The functions that this file leaves out with ZYN_MOCK_OLD are those that came after version 1.2; with
// ZYN_MOCK_ALLOCATES it takes no memory of the consumer.
#define GENTL_PRODUCER
#include "MockProducer.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

#include "MockDescriptions.h"

using namespace GenTL;

namespace zyn::mock {
namespace {

constexpr std::uint64_t kXmlAt = 0x10000;
constexpr std::chrono::seconds kWaitLimit{10};

struct Event {
  std::string id;
  std::int32_t code = 0;
  std::string value;
};

struct Module;

struct EventQueue {
  EVENT_TYPE type = 0;
  Module* module = nullptr;
  std::deque<Event> events;
  int kills = 0;
  int waiting = 0;
  bool isGone = false;
};

struct Buffer {
  std::vector<unsigned char> own;  // memory that the producer allocated
  unsigned char* base = nullptr;
  std::size_t size = 0;
  void* user = nullptr;
  enum class Place { kUser, kInput, kFilling, kOutput } place = Place::kUser;
  MockFrame frame;
  std::size_t filled = 0;
  std::vector<SINGLE_CHUNK_DATA> layout;
  std::vector<std::size_t> partOffsets;
};

enum class Kind { kSystem, kInterface, kDevice, kRemote, kStream };

struct Module {
  Kind kind;
  std::string id;  // interface ID or device ID
  Module* parent = nullptr;
  std::string xml;
  std::map<EVENT_TYPE, std::shared_ptr<EventQueue>> queues;
  // Stream only.
  std::list<std::unique_ptr<Buffer>> buffers;
  std::deque<Buffer*> input;
  std::deque<Buffer*> filling;
  std::deque<Buffer*> output;
  bool isRunning = false;
  std::uint64_t underruns = 0;
  // Interface only: what its device selector stands at.
  std::uint32_t selected = 0;
};

class Producer final : public MockProducer {
 public:
  void Reset() override {
    const std::lock_guard lock(mutex);
    interfaces.clear();
    hooks.clear();
    lost.clear();
    calls.clear();
    registers.clear();
    textLie = TextLie::kNone;
    mistakes = 0;
    firstMistake.clear();
  }

  void SetInterfaces(std::vector<MockInterface> list) override {
    const std::lock_guard lock(mutex);
    interfaces = std::move(list);
  }

  void SetHook(const std::string& function, Hook hook) override {
    const std::lock_guard lock(mutex);
    hooks[function] = std::move(hook);
  }

  void SetTextLie(TextLie lie) override {
    const std::lock_guard lock(mutex);
    textLie = lie;
  }

  Module* RunningStream() {
    for (const auto& module : modules) {
      if (module->kind == Kind::kStream && module->isRunning) return module.get();
    }
    return nullptr;
  }

  bool BeginFrame() override {
    const std::lock_guard lock(mutex);
    Module* stream = RunningStream();
    if (!stream) return false;
    if (stream->input.empty()) {
      ++stream->underruns;
      return false;
    }
    Buffer* buffer = stream->input.front();
    stream->input.pop_front();
    buffer->place = Buffer::Place::kFilling;
    stream->filling.push_back(buffer);
    return true;
  }

  void EndFrame(const MockFrame& frame) override {
    const std::lock_guard lock(mutex);
    Module* stream = RunningStream();
    if (!stream || stream->filling.empty()) return;
    Buffer* buffer = stream->filling.front();
    stream->filling.pop_front();
    Fill(*buffer, frame);
    buffer->place = Buffer::Place::kOutput;
    stream->output.push_back(buffer);
    if (frame.isDoubled) stream->output.push_back(buffer);
    changed.notify_all();
  }

  static void Fill(Buffer& buffer, const MockFrame& frame) {
    buffer.frame = frame;
    buffer.layout.clear();
    buffer.partOffsets.clear();
    const bool hasParts = frame.payloadType == PAYLOAD_TYPE_MULTI_PART;
    const bool hasImage = frame.payloadType != PAYLOAD_TYPE_CHUNK_ONLY && !hasParts;
    std::vector<unsigned char> data;
    std::vector<unsigned char> allParts;
    for (const MockPart& part : frame.parts) {
      buffer.partOffsets.push_back(allParts.size());
      allParts.insert(allParts.end(), part.width * part.height, part.fill);
      allParts.insert(allParts.end(), part.padding, 0xEE);
    }
    const auto append = [&](std::uint64_t id, const std::vector<unsigned char>& bytes) {
      buffer.layout.push_back({id, static_cast<std::ptrdiff_t>(data.size()), bytes.size()});
      data.insert(data.end(), bytes.begin(), bytes.end());
      for (const std::uint64_t number : {id, static_cast<std::uint64_t>(bytes.size())}) {
        for (int shift = 24; shift >= 0; shift -= 8)
          data.push_back(static_cast<unsigned char>(number >> shift));
      }
    };
    const std::vector<unsigned char> image =
        hasParts ? allParts
                 : std::vector<unsigned char>(hasImage ? frame.width * frame.height : 0, frame.fill);
    if (frame.chunks.empty()) {
      data = image;
    } else if (hasImage || hasParts) {
      append(1, image);
    }
    for (const MockChunk& chunk : frame.chunks) append(chunk.id, chunk.data);
    buffer.filled = std::min(data.size(), buffer.size);
    std::copy_n(data.begin(), buffer.filled, buffer.base);
  }

  void LoseDevice(const std::string& id, bool tells) override {
    {
      const std::lock_guard lock(mutex);
      lost.insert(id);
    }
    if (tells) SendDeviceEvent(EVENT_ERROR, id, GC_ERR_IO, "the link is down");
  }

  void SendDeviceEvent(EVENT_TYPE type, const std::string& id, std::int32_t code,
                       const std::string& value) override {
    SendModuleEvent("device", type, id, code, value);
  }

  void SendModuleEvent(const std::string& kind, EVENT_TYPE type, const std::string& id, std::int32_t code,
                       const std::string& value) override {
    static const std::map<std::string, Kind> kinds = {{"system", Kind::kSystem},
                                                      {"interface", Kind::kInterface},
                                                      {"device", Kind::kDevice},
                                                      {"stream", Kind::kStream}};
    const std::lock_guard lock(mutex);
    for (const auto& module : modules) {
      if (module->kind != kinds.at(kind)) continue;
      const auto it = module->queues.find(type);
      if (it != module->queues.end()) it->second->events.push_back(Event{id, code, value});
    }
    changed.notify_all();
  }

  bool AwaitFetching() override {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, kWaitLimit, [&] {
      Module* stream = RunningStream();
      if (!stream || !stream->output.empty()) return false;
      const auto it = stream->queues.find(EVENT_NEW_BUFFER);
      return it != stream->queues.end() && it->second->waiting > 0;
    });
  }

  bool AwaitQueued(std::size_t count) override {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, kWaitLimit, [&] {
      Module* stream = RunningStream();
      return stream && stream->input.size() == count;
    });
  }

  bool AwaitClosed() override {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, kWaitLimit, [&] { return modules.empty() && !isInitialised; });
  }

  std::size_t Queued() override {
    const std::lock_guard lock(mutex);
    Module* stream = RunningStream();
    return stream ? stream->input.size() : 0;
  }

  std::size_t Announced() override {
    const std::lock_guard lock(mutex);
    std::size_t count = 0;
    for (const auto& module : modules) count += module->buffers.size();
    return count;
  }

  std::size_t Allocated() override {
    const std::lock_guard lock(mutex);
    std::size_t count = 0;
    for (const auto& module : modules) {
      for (const auto& buffer : module->buffers) count += buffer->own.empty() ? 0 : 1;
    }
    return count;
  }

  int OpenHandles() override {
    const std::lock_guard lock(mutex);
    return static_cast<int>(std::count_if(modules.begin(), modules.end(),
                                          [](const auto& module) { return module->kind != Kind::kRemote; }));
  }

  int Mistakes() override {
    const std::lock_guard lock(mutex);
    return mistakes;
  }

  std::string FirstMistake() override {
    const std::lock_guard lock(mutex);
    return firstMistake;
  }

  int Calls(const std::string& function) override {
    const std::lock_guard lock(mutex);
    return calls[function];
  }

  std::uint32_t Register(std::uint64_t address) override {
    const std::lock_guard lock(mutex);
    return registers[address];
  }

  void SetRegister(std::uint64_t address, std::uint32_t value) override {
    const std::lock_guard lock(mutex);
    registers[address] = value;
  }

  // Counts the call and runs its hook.
  GC_ERROR Enter(const char* function, const std::string& id = {}) {
    std::unique_lock lock(mutex);
    ++calls[function];
    const auto it = hooks.find(function);
    if (it == hooks.end()) return GC_ERR_SUCCESS;
    const Hook hook = it->second;
    lock.unlock();
    return hook(id);
  }

  // The module behind a handle; null for a handle that is not alive, which is a mistake of the consumer.
  Module* Find(void* handle, std::initializer_list<Kind> kinds) {
    for (const auto& module : modules) {
      if (module.get() != handle) continue;
      for (const Kind kind : kinds) {
        if (module->kind == kind) return module.get();
      }
    }
    Mistake("dead handle");
    return nullptr;
  }

  void Mistake(const char* what) {
    ++mistakes;
    if (firstMistake.empty()) firstMistake = what;
  }

  Module* Add(Kind kind, const std::string& id, Module* parent) {
    modules.push_back(std::make_unique<Module>());
    Module* module = modules.back().get();
    module->kind = kind;
    module->id = id;
    module->parent = parent;
    return module;
  }

  void Remove(Module* module) {
    for (auto it = modules.begin(); it != modules.end();) {
      if ((*it)->parent == module) {
        if ((*it)->kind != Kind::kRemote) Mistake("closed before its children");
        Module* child = it->get();
        Remove(child);
        it = modules.begin();
      } else {
        ++it;
      }
    }
    for (auto& [type, queue] : module->queues) queue->isGone = true;
    modules.remove_if([&](const auto& candidate) { return candidate.get() == module; });
    changed.notify_all();
  }

  const MockInterface* InterfaceOf(const std::string& id) const {
    for (const MockInterface& interface : interfaces) {
      if (interface.id == id) return &interface;
    }
    return nullptr;
  }

  const MockDevice* DeviceOf(const std::string& id) const {
    for (const MockInterface& interface : interfaces) {
      for (const MockDevice& device : interface.devices) {
        if (device.id == id) return &device;
      }
    }
    return nullptr;
  }

  std::shared_ptr<EventQueue> QueueOf(void* handle) {
    for (const auto& queue : eventHandles) {
      if (queue.get() == handle) return queue;
    }
    Mistake("dead event handle");
    return nullptr;
  }

  std::mutex mutex;
  std::condition_variable changed;
  bool isInitialised = false;
  std::vector<MockInterface> interfaces;
  std::map<std::string, Hook> hooks;
  std::set<std::string> lost;
  std::map<std::string, int> calls;
  std::map<std::uint64_t, std::uint32_t> registers;
  TextLie textLie = TextLie::kNone;
  std::list<std::unique_ptr<Module>> modules;
  std::vector<std::shared_ptr<EventQueue>> eventHandles;
  int mistakes = 0;
  std::string firstMistake;
};

Producer& P() {
  static auto* const producer = new Producer;
  return *producer;
}

GC_ERROR Put(INFO_DATATYPE type, const void* data, std::size_t bytes, INFO_DATATYPE* piType, void* pBuffer,
             std::size_t* piSize) {
  if (piType) *piType = type;
  if (pBuffer && *piSize < bytes) return GC_ERR_BUFFER_TOO_SMALL;
  if (pBuffer) std::memcpy(pBuffer, data, bytes);
  *piSize = bytes;
  return GC_ERR_SUCCESS;
}

GC_ERROR PutText(const std::string& text, INFO_DATATYPE* piType, void* pBuffer, std::size_t* piSize) {
  if (piType) *piType = INFO_DATATYPE_STRING;
  switch (P().textLie) {
    case TextLie::kNone:
      break;
    case TextLie::kHuge:
      *piSize = ~std::size_t{0};
      return GC_ERR_SUCCESS;
    case TextLie::kEmpty:
      *piSize = 0;
      return GC_ERR_SUCCESS;
    case TextLie::kGrowing:
      if (pBuffer) return GC_ERR_BUFFER_TOO_SMALL;
      *piSize = 2000;
      return GC_ERR_SUCCESS;
    case TextLie::kUnterminated:
      return Put(INFO_DATATYPE_STRING, text.c_str(), text.size(), piType, pBuffer, piSize);
  }
  return Put(INFO_DATATYPE_STRING, text.c_str(), text.size() + 1, piType, pBuffer, piSize);
}

template <class Number>
GC_ERROR PutNumber(INFO_DATATYPE type, Number number, INFO_DATATYPE* piType, void* pBuffer,
                   std::size_t* piSize) {
  return Put(type, &number, sizeof(number), piType, pBuffer, piSize);
}

GC_ERROR PutSize(std::size_t value, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
  return PutNumber(INFO_DATATYPE_SIZET, value, type, buffer, size);
}

GC_ERROR PutBool(bool value, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
  return PutNumber(INFO_DATATYPE_BOOL8, static_cast<std::uint8_t>(value), type, buffer, size);
}

GC_ERROR DeviceInfo(const MockDevice& device, const std::string& tlType, DEVICE_INFO_CMD command,
                    INFO_DATATYPE* type, void* buffer, std::size_t* size) {
  switch (command) {
    case DEVICE_INFO_ID:
      return PutText(device.id, type, buffer, size);
    case DEVICE_INFO_VENDOR:
      return PutText(device.vendor, type, buffer, size);
    case DEVICE_INFO_MODEL:
      return PutText(device.model, type, buffer, size);
    case DEVICE_INFO_TLTYPE:
      return PutText(tlType, type, buffer, size);
    case DEVICE_INFO_ACCESS_STATUS: {
      const bool isLost = P().lost.count(device.id) != 0;
      const std::int32_t status =
          isLost ? static_cast<std::int32_t>(DEVICE_ACCESS_STATUS_NOACCESS) : device.status;
      return PutNumber(INFO_DATATYPE_INT32, status, type, buffer, size);
    }
#ifndef ZYN_MOCK_OLD
    case DEVICE_INFO_DISPLAYNAME:
      return PutText("Display " + device.id, type, buffer, size);
    case DEVICE_INFO_USER_DEFINED_NAME:
      return PutText(device.userName, type, buffer, size);
    case DEVICE_INFO_SERIAL_NUMBER:
      return device.serial.empty() ? static_cast<GC_ERROR>(GC_ERR_NOT_AVAILABLE)
                                   : PutText(device.serial, type, buffer, size);
    case DEVICE_INFO_VERSION:
      return PutText("1.0", type, buffer, size);
#endif
    default:
      return GC_ERR_NOT_IMPLEMENTED;
  }
}

GC_ERROR BufferInfo(const Buffer& buffer, BUFFER_INFO_CMD command, INFO_DATATYPE* type, void* out,
                    std::size_t* size) {
  const MockFrame& frame = buffer.frame;
  switch (command) {
    case BUFFER_INFO_BASE:
      return PutNumber(INFO_DATATYPE_PTR, buffer.base, type, out, size);
    case BUFFER_INFO_SIZE:
      return PutSize(buffer.size, type, out, size);
    case BUFFER_INFO_NEW_DATA:
      return PutBool(frame.isNew, type, out, size);
    case BUFFER_INFO_IS_QUEUED:
      return PutBool(buffer.place != Buffer::Place::kUser, type, out, size);
    case BUFFER_INFO_IS_ACQUIRING:
      return PutBool(buffer.place == Buffer::Place::kFilling, type, out, size);
    case BUFFER_INFO_IS_INCOMPLETE:
      return PutBool(frame.isIncomplete, type, out, size);
    case BUFFER_INFO_SIZE_FILLED:
      return PutSize(buffer.filled, type, out, size);
    case BUFFER_INFO_WIDTH:
      return PutSize(frame.width, type, out, size);
    case BUFFER_INFO_HEIGHT:
      return PutSize(frame.height, type, out, size);
    case BUFFER_INFO_FRAMEID:
      return PutNumber(INFO_DATATYPE_UINT64, frame.frameId, type, out, size);
    case BUFFER_INFO_PAYLOADTYPE:
      return PutSize(frame.payloadType, type, out, size);
    case BUFFER_INFO_PIXELFORMAT:
      return PutNumber(INFO_DATATYPE_UINT64, frame.pixelFormat, type, out, size);
    case BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE:
      return PutSize(frame.chunks.empty() ? 0 : buffer.filled, type, out, size);
#ifndef ZYN_MOCK_OLD
    case BUFFER_INFO_DATA_LARGER_THAN_BUFFER:
      return PutBool(frame.isTooLarge, type, out, size);
    case BUFFER_INFO_CONTAINS_CHUNKDATA:
      return PutBool(!frame.chunks.empty(), type, out, size);
#endif
    default:
      return GC_ERR_NOT_IMPLEMENTED;
  }
}

std::string InterfaceTypeOf(const Module& module) {
  const MockInterface* interface = P().InterfaceOf(module.id);
  return interface ? interface->tlType : "GEV";
}

// The interface's registers: the selector, and what it selects.
bool ReadInterface(const Module& module, std::uint64_t address, unsigned char* bytes, std::size_t size) {
  const MockInterface* interface = P().InterfaceOf(module.id);
  if (!interface) return false;
  const MockDevice* device =
      module.selected < interface->devices.size() ? &interface->devices[module.selected] : nullptr;
  const auto put = [&](std::uint64_t value) {
    std::memset(bytes, 0, size);
    std::memcpy(bytes, &value, std::min<std::size_t>(size, 8));
    return true;
  };
  switch (address) {
    case kSelectorAt:
      return put(module.selected);
    case kDeviceIpAt:
      return put(device ? device->ip : 0);
    case kDeviceMaskAt:
      return put(device ? device->mask : 0);
    case kDeviceGatewayAt:
      return put(0xC0A80101);
    case kDeviceMacAt:
      return put(device ? device->mac : 0);
    case kSubnetIpAt:
      return put(0xC0A8010A);
    case kSubnetMaskAt:
      return put(0xFFFFFF00);
    case kDeviceCountAt:
      return put(interface->devices.size());
    case kDeviceIdAt:
      std::memset(bytes, 0, size);
      if (device) std::memcpy(bytes, device->id.data(), std::min(size, device->id.size()));
      return true;
    default:
      return false;
  }
}

GC_ERROR ReadRegisters(Module& module, std::uint64_t address, unsigned char* bytes, std::size_t size) {
  if (address >= kXmlAt) {
    const std::string xml = module.kind == Kind::kRemote      ? RemoteXml()
                            : module.kind == Kind::kInterface ? InterfaceXml()
                            : module.kind == Kind::kDevice    ? LocalXml()
                                                              : std::string();
    if (address - kXmlAt + size > xml.size()) return GC_ERR_INVALID_ADDRESS;
    std::memcpy(bytes, xml.data() + (address - kXmlAt), size);
    return GC_ERR_SUCCESS;
  }
  if (module.kind == Kind::kInterface) {
    return ReadInterface(module, address, bytes, size) ? GC_ERR_SUCCESS : GC_ERR_INVALID_ADDRESS;
  }
  if (size > 4) return GC_ERR_INVALID_ADDRESS;
  const std::uint32_t value = P().registers[address];
  std::memcpy(bytes, &value, size);
  return GC_ERR_SUCCESS;
}

std::string XmlOf(const Module& module) {
  switch (module.kind) {
    case Kind::kRemote:
      return RemoteXml();
    case Kind::kInterface:
      return InterfaceXml();
    case Kind::kDevice:
      return LocalXml();
    default:
      return {};
  }
}

std::string UrlOf(const Module& module) {
  const std::string xml = XmlOf(module);
  char text[64];
  std::snprintf(text, sizeof(text), "local:///mock.xml;%llx;%zx", static_cast<unsigned long long>(kXmlAt),
                xml.size());
  return text;
}

bool IsLost(const Module& module) {
  return module.kind == Kind::kRemote && P().lost.count(module.id) != 0;
}

const std::initializer_list<Kind> kAnyKind = {Kind::kSystem, Kind::kInterface, Kind::kDevice, Kind::kRemote,
                                              Kind::kStream};

#define ENTER(id)                                                                  \
  if (const GC_ERROR entered = P().Enter(__func__, id))                            \
    return entered == MockProducer::kPretend ? GC_ERROR{GC_ERR_SUCCESS} : entered; \
  const std::lock_guard lock(P().mutex)
#define FIND(variable, handle, ...)                   \
  Module* variable = P().Find(handle, {__VA_ARGS__}); \
  if (!variable) return GC_ERR_INVALID_HANDLE

}  // namespace
}  // namespace zyn::mock

using namespace zyn::mock;

extern "C" __attribute__((visibility("default"))) MockProducer* ZynMock() {
  return &P();
}

namespace GenTL {
extern "C" {

GC_ERROR GCInitLib() {
  ENTER("");
  if (P().isInitialised) return GC_ERR_RESOURCE_IN_USE;
  P().isInitialised = true;
  return GC_ERR_SUCCESS;
}

GC_ERROR GCCloseLib() {
  ENTER("");
  P().isInitialised = false;
  P().changed.notify_all();
  return GC_ERR_SUCCESS;
}

GC_ERROR TLOpen(TL_HANDLE* handle) {
  ENTER("");
  *handle = P().Add(Kind::kSystem, "system", nullptr);
  return GC_ERR_SUCCESS;
}

GC_ERROR TLClose(TL_HANDLE handle) {
  ENTER("");
  FIND(module, handle, Kind::kSystem);
  P().Remove(module);
  return GC_ERR_SUCCESS;
}

GC_ERROR TLUpdateInterfaceList(TL_HANDLE handle, bool8_t*, uint64_t) {
  ENTER("");
  FIND(module, handle, Kind::kSystem);
  return module ? GC_ERR_SUCCESS : GC_ERR_ERROR;
}

GC_ERROR TLGetNumInterfaces(TL_HANDLE handle, uint32_t* count) {
  ENTER("");
  FIND(module, handle, Kind::kSystem);
  *count = module ? static_cast<uint32_t>(P().interfaces.size()) : 0;
  return GC_ERR_SUCCESS;
}

GC_ERROR TLGetInterfaceID(TL_HANDLE, uint32_t index, char* id, size_t* size) {
  ENTER("");
  if (index >= P().interfaces.size()) return GC_ERR_INVALID_INDEX;
  return PutText(P().interfaces[index].id, nullptr, id, size);
}

GC_ERROR TLGetInterfaceInfo(TL_HANDLE, const char* id, INTERFACE_INFO_CMD command, INFO_DATATYPE* type,
                            void* buffer, size_t* size) {
  ENTER(id);
  const MockInterface* interface = P().InterfaceOf(id);
  if (!interface) return GC_ERR_INVALID_ID;
  if (command == INTERFACE_INFO_TLTYPE) return PutText(interface->tlType, type, buffer, size);
  if (command == INTERFACE_INFO_DISPLAYNAME) return PutText("Adapter " + interface->id, type, buffer, size);
  return GC_ERR_NOT_IMPLEMENTED;
}

GC_ERROR TLOpenInterface(TL_HANDLE handle, const char* id, IF_HANDLE* interface) {
  ENTER(id);
  FIND(system, handle, Kind::kSystem);
  if (!P().InterfaceOf(id)) return GC_ERR_INVALID_ID;
  *interface = P().Add(Kind::kInterface, id, system);
  return GC_ERR_SUCCESS;
}

GC_ERROR IFClose(IF_HANDLE handle) {
  ENTER("");
  FIND(module, handle, Kind::kInterface);
  P().Remove(module);
  return GC_ERR_SUCCESS;
}

GC_ERROR IFUpdateDeviceList(IF_HANDLE handle, bool8_t*, uint64_t) {
  std::string id;
  {
    const std::lock_guard lock(P().mutex);
    FIND(module, handle, Kind::kInterface);
    id = module->id;
  }
  return P().Enter(__func__, id);
}

GC_ERROR IFGetNumDevices(IF_HANDLE handle, uint32_t* count) {
  ENTER("");
  FIND(module, handle, Kind::kInterface);
  const MockInterface* interface = P().InterfaceOf(module->id);
  *count = interface ? static_cast<uint32_t>(interface->devices.size()) : 0;
  return GC_ERR_SUCCESS;
}

GC_ERROR IFGetDeviceID(IF_HANDLE handle, uint32_t index, char* id, size_t* size) {
  ENTER("");
  FIND(module, handle, Kind::kInterface);
  const MockInterface* interface = P().InterfaceOf(module->id);
  if (!interface || index >= interface->devices.size()) return GC_ERR_INVALID_INDEX;
  return PutText(interface->devices[index].id, nullptr, id, size);
}

GC_ERROR IFGetDeviceInfo(IF_HANDLE handle, const char* id, DEVICE_INFO_CMD command, INFO_DATATYPE* type,
                         void* buffer, size_t* size) {
  ENTER(id);
  FIND(module, handle, Kind::kInterface);
  const MockDevice* device = P().DeviceOf(id);
  if (!device) return GC_ERR_INVALID_ID;
  return DeviceInfo(*device, InterfaceTypeOf(*module), command, type, buffer, size);
}

GC_ERROR IFOpenDevice(IF_HANDLE handle, const char* id, DEVICE_ACCESS_FLAGS, DEV_HANDLE* opened) {
  ENTER(id);
  FIND(interface, handle, Kind::kInterface);
  if (!P().DeviceOf(id)) return GC_ERR_INVALID_ID;
  for (const auto& module : P().modules) {
    if (module->kind == Kind::kDevice && module->id == id) return GC_ERR_RESOURCE_IN_USE;
  }
  if (P().lost.count(id) != 0) return GC_ERR_IO;
  *opened = P().Add(Kind::kDevice, id, interface);
  return GC_ERR_SUCCESS;
}

GC_ERROR DevGetInfo(DEV_HANDLE handle, DEVICE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                    size_t* size) {
  ENTER("");
  FIND(module, handle, Kind::kDevice);
  const MockDevice* device = P().DeviceOf(module->id);
  if (!device) return GC_ERR_IO;
  return DeviceInfo(*device, "GEV", command, type, buffer, size);
}

GC_ERROR DevGetPort(DEV_HANDLE handle, PORT_HANDLE* port) {
  ENTER("");
  FIND(module, handle, Kind::kDevice);
  *port = P().Add(Kind::kRemote, module->id, module);
  return GC_ERR_SUCCESS;
}

GC_ERROR DevClose(DEV_HANDLE handle) {
  ENTER("");
  FIND(module, handle, Kind::kDevice);
  P().Remove(module);
  return GC_ERR_SUCCESS;
}

GC_ERROR GCGetPortInfo(PORT_HANDLE handle, PORT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                       size_t* size) {
  ENTER("");
  Module* module = P().Find(handle, kAnyKind);
  if (!module) return GC_ERR_INVALID_HANDLE;
  if (command == PORT_INFO_PORTNAME) return PutText("Device", type, buffer, size);
  if (command == PORT_INFO_BIG_ENDIAN) return PutBool(false, type, buffer, size);
  return GC_ERR_NOT_IMPLEMENTED;
}

#ifdef ZYN_MOCK_OLD
GC_ERROR GCGetPortURL(PORT_HANDLE handle, char* url, size_t* size) {
  ENTER("");
  Module* module = P().Find(handle, kAnyKind);
  if (!module) return GC_ERR_INVALID_HANDLE;
  if (XmlOf(*module).empty()) return GC_ERR_NOT_IMPLEMENTED;
  const std::string list = UrlOf(*module) + "?SchemaVersion=1.1.0" + std::string(1, '\0');
  return PutText(list, nullptr, url, size);
}
#else
GC_ERROR GCGetNumPortURLs(PORT_HANDLE handle, uint32_t* count) {
  ENTER("");
  Module* module = P().Find(handle, kAnyKind);
  if (!module) return GC_ERR_INVALID_HANDLE;
  *count = XmlOf(*module).empty() ? 0 : 1;
  return GC_ERR_SUCCESS;
}

GC_ERROR GCGetPortURLInfo(PORT_HANDLE handle, uint32_t, URL_INFO_CMD command, INFO_DATATYPE* type,
                          void* buffer, size_t* size) {
  ENTER("");
  Module* module = P().Find(handle, kAnyKind);
  if (!module) return GC_ERR_INVALID_HANDLE;
  if (command != URL_INFO_URL) return GC_ERR_NOT_IMPLEMENTED;
  return PutText(UrlOf(*module), type, buffer, size);
}
#endif

GC_ERROR GCReadPort(PORT_HANDLE handle, uint64_t address, void* buffer, size_t* size) {
  ENTER("");
  Module* module = P().Find(handle, kAnyKind);
  if (!module) return GC_ERR_INVALID_HANDLE;
  if (IsLost(*module)) return GC_ERR_IO;
  return ReadRegisters(*module, address, static_cast<unsigned char*>(buffer), *size);
}

GC_ERROR GCWritePort(PORT_HANDLE handle, uint64_t address, const void* buffer, size_t* size) {
  ENTER("");
  Module* module = P().Find(handle, kAnyKind);
  if (!module) return GC_ERR_INVALID_HANDLE;
  if (IsLost(*module)) return GC_ERR_IO;
  std::uint32_t value = 0;
  std::memcpy(&value, buffer, std::min<std::size_t>(*size, 4));
  if (module->kind == Kind::kInterface && address == kSelectorAt) {
    module->selected = value;
  } else {
    P().registers[address] = value;
  }
  return GC_ERR_SUCCESS;
}

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE handle, EVENT_TYPE type, EVENT_HANDLE* event) {
  ENTER("");
  FIND(module, handle, Kind::kSystem, Kind::kInterface, Kind::kDevice, Kind::kStream);
  const bool isForAll = type == EVENT_ERROR || type == EVENT_MODULE;
  const bool isOffered = isForAll || (module->kind == Kind::kStream && type == EVENT_NEW_BUFFER) ||
                         (module->kind == Kind::kDevice && type != EVENT_NEW_BUFFER);
  if (!isOffered) return GC_ERR_NOT_IMPLEMENTED;
  if (module->queues.count(type) != 0) return GC_ERR_RESOURCE_IN_USE;
  auto queue = std::make_shared<EventQueue>();
  queue->type = type;
  queue->module = module;
  module->queues[type] = queue;
  P().eventHandles.push_back(queue);
  *event = queue.get();
  return GC_ERR_SUCCESS;
}

GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE handle, EVENT_TYPE type) {
  ENTER("");
  FIND(module, handle, Kind::kSystem, Kind::kInterface, Kind::kDevice, Kind::kStream);
  const auto it = module->queues.find(type);
  if (it == module->queues.end()) return GC_ERR_NOT_INITIALIZED;
  it->second->isGone = true;
  const std::shared_ptr<EventQueue> queue = it->second;
  module->queues.erase(it);
  auto& handles = P().eventHandles;
  handles.erase(std::remove(handles.begin(), handles.end(), queue), handles.end());
  P().changed.notify_all();
  return GC_ERR_SUCCESS;
}

GC_ERROR EventKill(EVENT_HANDLE handle) {
  ENTER("");
  const auto queue = P().QueueOf(handle);
  if (!queue) return GC_ERR_INVALID_HANDLE;
  ++queue->kills;
  P().changed.notify_all();
  return GC_ERR_SUCCESS;
}

GC_ERROR EventGetData(EVENT_HANDLE handle, void* buffer, size_t* size, uint64_t timeout) {
  if (const GC_ERROR entered = P().Enter(__func__)) return entered;
  std::unique_lock lock(P().mutex);
  const auto queue = P().QueueOf(handle);
  if (!queue) return GC_ERR_INVALID_HANDLE;
  const auto hasEvent = [&] {
    return queue->type == EVENT_NEW_BUFFER ? !queue->module->output.empty() : !queue->events.empty();
  };
  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::milliseconds(std::min<uint64_t>(timeout, 60000));
  if (timeout > 0) ++queue->waiting;
  P().changed.notify_all();
  const bool isReady =
      P().changed.wait_until(lock, deadline, [&] { return queue->isGone || queue->kills > 0 || hasEvent(); });
  if (timeout > 0) --queue->waiting;
  if (queue->isGone) return GC_ERR_ABORT;
  if (queue->kills > 0) {
    --queue->kills;
    return GC_ERR_ABORT;
  }
  if (!isReady) return GC_ERR_TIMEOUT;
  if (queue->type != EVENT_NEW_BUFFER) {
    auto* event = new Event(queue->events.front());
    queue->events.pop_front();
    std::memcpy(buffer, &event, sizeof(event));
    *size = sizeof(event);
    return GC_ERR_SUCCESS;
  }
  Buffer* delivered = queue->module->output.front();
  queue->module->output.pop_front();
  delivered->place = Buffer::Place::kUser;
  const EVENT_NEW_BUFFER_DATA data{delivered, delivered->user};
  std::memcpy(buffer, &data, sizeof(data));
  *size = sizeof(data);
  return GC_ERR_SUCCESS;
}

GC_ERROR EventGetDataInfo(EVENT_HANDLE, const void* data, size_t, EVENT_DATA_INFO_CMD command,
                          INFO_DATATYPE* type, void* buffer, size_t* size) {
  Event* event = nullptr;
  std::memcpy(&event, data, sizeof(event));
  if (command == EVENT_DATA_ID) {
    return event->id.empty() || event->code != 0
               ? PutNumber(INFO_DATATYPE_INT32, event->code, type, buffer, size)
               : PutText(event->id, type, buffer, size);
  }
  if (command != EVENT_DATA_VALUE) return GC_ERR_NOT_IMPLEMENTED;
  const GC_ERROR result = PutText(event->value, type, buffer, size);
  if (buffer) delete event;  // the consumer asks for the value last
  return result;
}

GC_ERROR DevGetNumDataStreams(DEV_HANDLE handle, uint32_t* count) {
  ENTER("");
  FIND(module, handle, Kind::kDevice);
  const MockDevice* device = P().DeviceOf(module->id);
  *count = device && device->hasStream ? 1 : 0;
  return GC_ERR_SUCCESS;
}

GC_ERROR DevGetDataStreamID(DEV_HANDLE, uint32_t, char* id, size_t* size) {
  ENTER("");
  return PutText("stream", nullptr, id, size);
}

GC_ERROR DevOpenDataStream(DEV_HANDLE handle, const char*, DS_HANDLE* stream) {
  ENTER("");
  FIND(module, handle, Kind::kDevice);
  *stream = P().Add(Kind::kStream, module->id, module);
  return GC_ERR_SUCCESS;
}

GC_ERROR DSClose(DS_HANDLE handle) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  if (!module->buffers.empty()) P().Mistake("stream closed with announced buffers");
  P().Remove(module);
  return GC_ERR_SUCCESS;
}

GC_ERROR DSGetInfo(DS_HANDLE handle, STREAM_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  const MockDevice* device = P().DeviceOf(module->id);
  switch (command) {
    case STREAM_INFO_DEFINES_PAYLOADSIZE:
      return PutBool(true, type, buffer, size);
    case STREAM_INFO_PAYLOAD_SIZE:
      return PutSize(device ? device->payloadBytes : 0, type, buffer, size);
    case STREAM_INFO_NUM_UNDERRUN:
      return PutNumber(INFO_DATATYPE_UINT64, module->underruns, type, buffer, size);
    default:
      return GC_ERR_INVALID_PARAMETER;
  }
}

#ifndef ZYN_MOCK_ALLOCATES
GC_ERROR DSAnnounceBuffer(DS_HANDLE handle, void* base, size_t bytes, void* user, BUFFER_HANDLE* announced) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  auto buffer = std::make_unique<Buffer>();
  buffer->base = static_cast<unsigned char*>(base);
  buffer->size = bytes;
  buffer->user = user;
  *announced = buffer.get();
  module->buffers.push_back(std::move(buffer));
  return GC_ERR_SUCCESS;
}
#endif

GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE handle, size_t bytes, void* user, BUFFER_HANDLE* announced) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  auto buffer = std::make_unique<Buffer>();
  buffer->own.resize(bytes);
  buffer->base = buffer->own.data();
  buffer->size = bytes;
  buffer->user = user;
  *announced = buffer.get();
  module->buffers.push_back(std::move(buffer));
  return GC_ERR_SUCCESS;
}

GC_ERROR DSQueueBuffer(DS_HANDLE handle, BUFFER_HANDLE announced) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  auto* buffer = static_cast<Buffer*>(announced);
  if (buffer->place != Buffer::Place::kUser) {
    P().Mistake("queued twice");
    return GC_ERR_RESOURCE_IN_USE;
  }
  buffer->place = Buffer::Place::kInput;
  module->input.push_back(buffer);
  P().changed.notify_all();
  return GC_ERR_SUCCESS;
}

GC_ERROR DSFlushQueue(DS_HANDLE handle, ACQ_QUEUE_TYPE) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  module->input.clear();
  module->filling.clear();
  module->output.clear();
  for (const auto& buffer : module->buffers) buffer->place = Buffer::Place::kUser;
  return GC_ERR_SUCCESS;
}

GC_ERROR DSRevokeBuffer(DS_HANDLE handle, BUFFER_HANDLE announced, void**, void**) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  auto* buffer = static_cast<Buffer*>(announced);
  if (buffer->place != Buffer::Place::kUser) {
    P().Mistake("revoked while queued");
    return GC_ERR_BUSY;
  }
  module->buffers.remove_if([&](const auto& candidate) { return candidate.get() == buffer; });
  return GC_ERR_SUCCESS;
}

GC_ERROR DSStartAcquisition(DS_HANDLE handle, ACQ_START_FLAGS, uint64_t) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  module->isRunning = true;
  return GC_ERR_SUCCESS;
}

GC_ERROR DSStopAcquisition(DS_HANDLE handle, ACQ_STOP_FLAGS) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  if (!module->isRunning) return GC_ERR_RESOURCE_IN_USE;
  module->isRunning = false;
  return GC_ERR_SUCCESS;
}

GC_ERROR DSGetBufferInfo(DS_HANDLE handle, BUFFER_HANDLE buffer, BUFFER_INFO_CMD command, INFO_DATATYPE* type,
                         void* out, size_t* size) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  return module ? BufferInfo(*static_cast<Buffer*>(buffer), command, type, out, size) : GC_ERR_ERROR;
}

#ifndef ZYN_MOCK_OLD
GC_ERROR DSGetBufferInfoStacked(DS_HANDLE handle, BUFFER_HANDLE buffer, DS_BUFFER_INFO_STACKED* questions,
                                size_t count) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  for (size_t i = 0; i < count; ++i) {
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    size_t size = questions[i].iSize;
    questions[i].iResult =
        BufferInfo(*static_cast<Buffer*>(buffer), questions[i].iInfoCmd, &type, questions[i].pBuffer, &size);
    questions[i].iType = type;
    questions[i].iSize = size;
  }
  return module ? GC_ERR_SUCCESS : GC_ERR_ERROR;
}

GC_ERROR DSGetNumBufferParts(DS_HANDLE handle, BUFFER_HANDLE buffer, uint32_t* count) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  const MockFrame& frame = static_cast<Buffer*>(buffer)->frame;
  if (frame.payloadType != PAYLOAD_TYPE_MULTI_PART) return GC_ERR_NO_DATA;
  *count = module ? frame.partCount.value_or(static_cast<uint32_t>(frame.parts.size())) : 0;
  return GC_ERR_SUCCESS;
}

GC_ERROR DSGetBufferPartInfo(DS_HANDLE handle, BUFFER_HANDLE announced, uint32_t index,
                             BUFFER_PART_INFO_CMD command, INFO_DATATYPE* type, void* out, size_t* size) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  const auto& buffer = *static_cast<Buffer*>(announced);
  if (index >= buffer.frame.parts.size() || !module) return GC_ERR_INVALID_INDEX;
  const MockPart& part = buffer.frame.parts[index];
  if (const auto told = part.told.find(command); told != part.told.end()) {
    if (!told->second) return GC_ERR_NOT_IMPLEMENTED;
    const bool isBase = command == BUFFER_PART_INFO_BASE;
    const std::uint64_t origin = isBase ? reinterpret_cast<std::uintptr_t>(buffer.base) : 0;
    return PutNumber(isBase ? INFO_DATATYPE_PTR : INFO_DATATYPE_UINT64, origin + *told->second, type, out,
                     size);
  }
  switch (command) {
    case BUFFER_PART_INFO_BASE:
      return PutNumber(INFO_DATATYPE_PTR, buffer.base + buffer.partOffsets[index], type, out, size);
    case BUFFER_PART_INFO_DATA_SIZE:
      return PutSize(part.width * part.height, type, out, size);
    case BUFFER_PART_INFO_DATA_TYPE:
      return PutSize(part.type, type, out, size);
    case BUFFER_PART_INFO_DATA_FORMAT:
      return PutNumber(INFO_DATATYPE_UINT64, part.format, type, out, size);
    case BUFFER_PART_INFO_WIDTH:
      return PutSize(part.width, type, out, size);
    case BUFFER_PART_INFO_HEIGHT:
      return PutSize(part.height, type, out, size);
    default:
      return GC_ERR_NOT_IMPLEMENTED;
  }
}

GC_ERROR DSGetBufferChunkData(DS_HANDLE handle, BUFFER_HANDLE announced, SINGLE_CHUNK_DATA* chunks,
                              size_t* count) {
  ENTER("");
  FIND(module, handle, Kind::kStream);
  const auto& layout = static_cast<Buffer*>(announced)->layout;
  if (layout.empty() || !module) return GC_ERR_NO_DATA;
  if (chunks && *count < layout.size()) return GC_ERR_BUFFER_TOO_SMALL;
  if (chunks) std::copy(layout.begin(), layout.end(), chunks);
  *count = layout.size();
  return GC_ERR_SUCCESS;
}
#endif

}  // extern "C"
}  // namespace GenTL
