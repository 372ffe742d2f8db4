#include "AravisEngine.h"

#include <arv.h>

#include <stdexcept>
#include <utility>

namespace {

using zyn::genapi::test::Registers;

struct MemoryDevice {
  ArvDevice parent;
  Registers* registers;
};
struct MemoryDeviceClass {
  ArvDeviceClass parent;
};

Registers& RegistersOf(ArvDevice* device) {
  return *reinterpret_cast<MemoryDevice*>(device)->registers;
}

gboolean Report(bool done, guint64 address, GError** error) {
  if (!done)
    g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_UNKNOWN, "No register at 0x%" G_GINT64_MODIFIER "x",
                address);
  return done ? TRUE : FALSE;
}

gboolean ReadMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error) {
  return Report(RegistersOf(device).read(address, size, buffer), address, error);
}

gboolean WriteMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error) {
  return Report(RegistersOf(device).write(address, size, buffer), address, error);
}

// Registers in host order, as USB3 Vision devices have them.
gboolean ReadRegister(ArvDevice* device, guint64 address, guint32* value, GError** error) {
  return ReadMemory(device, address, sizeof(*value), value, error);
}

gboolean WriteRegister(ArvDevice* device, guint64 address, guint32 value, GError** error) {
  return WriteMemory(device, address, sizeof(value), &value, error);
}

void InitClass(void* type, void*) {
  auto* const device = static_cast<ArvDeviceClass*>(type);
  device->read_memory = ReadMemory;
  device->write_memory = WriteMemory;
  device->read_register = ReadRegister;
  device->write_register = WriteRegister;
}

void Finalize(GObject* object) {
  delete reinterpret_cast<MemoryDevice*>(object)->registers;
  auto* const parent = static_cast<GObjectClass*>(g_type_class_peek(ARV_TYPE_DEVICE));
  parent->finalize(object);
}

GType MemoryDeviceType() {
  static const GType type = [] {
    const GTypeInfo info{sizeof(MemoryDeviceClass),
                         nullptr,
                         nullptr,
                         [](void* klass, void* data) {
                           InitClass(klass, data);
                           static_cast<GObjectClass*>(klass)->finalize = Finalize;
                         },
                         nullptr,
                         nullptr,
                         sizeof(MemoryDevice),
                         0,
                         nullptr,
                         nullptr};
    return g_type_register_static(ARV_TYPE_DEVICE, "ZynTestMemoryDevice", &info, static_cast<GTypeFlags>(0));
  }();
  return type;
}

}  // namespace

namespace zyn::genapi::test {

AravisEngine::AravisEngine(std::string_view xml, Registers registers)
    : device_(static_cast<ArvDevice*>(g_object_new(MemoryDeviceType(), nullptr))) {
  reinterpret_cast<MemoryDevice*>(device_)->registers = new Registers(std::move(registers));
  gc_ = arv_gc_new(device_, xml.data(), xml.size());
  if (gc_) return;
  g_object_unref(device_);
  throw std::runtime_error("libaravis refuses the description");
}

AravisEngine::~AravisEngine() {
  g_object_unref(gc_);
  g_object_unref(device_);
}

void AravisEngine::CacheRegisters(bool on) {
  arv_gc_set_register_cache_policy(gc_,
                                   on ? ARV_REGISTER_CACHE_POLICY_ENABLE : ARV_REGISTER_CACHE_POLICY_DISABLE);
}

}  // namespace zyn::genapi::test
