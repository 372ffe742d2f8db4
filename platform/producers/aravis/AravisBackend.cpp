#include "AravisBackend.h"

#include <arv.h>
#include <dlfcn.h>

#include "GevInterface.h"
#include "U3vInterface.h"

namespace zyn::aravis {
namespace {

// GLib keeps the types that libaravis registers for as long as the process lives, and they point into libaravis. A
// consumer that unloads this producer and loads it again would find half of them. Unloading takes this file only.
void KeepLibaravisLoaded() {
  Dl_info info{};
  const auto address = reinterpret_cast<void*>(&arv_gv_device_new);
  if (dladdr(address, &info) == 0) return;
  // Never closed: the flag outlives the handle.
  dlopen(info.dli_fname, RTLD_LAZY | RTLD_NODELETE | RTLD_NOLOAD);
}

}  // namespace

AravisBackend::AravisBackend() {
  KeepLibaravisLoaded();
}

producer::ProducerInfo AravisBackend::Info() const {
  producer::ProducerInfo info;
  info.vendor = "Zyn";
  info.model = "ZynTL";
  info.version = "1.0.0";
  info.displayName = "GigE Vision and USB3 Vision cameras";
  info.tlType = GENTL_TLTYPE_MIXED;
  return info;
}

std::vector<producer::InterfaceInfo> AravisBackend::FindInterfaces(std::chrono::milliseconds) {
  std::vector<producer::InterfaceInfo> interfaces;
  for (const gige::Adapter& adapter : gige::ListAdapters()) interfaces.push_back(DescribeAdapter(adapter));
  interfaces.push_back(DescribeUsb());
  return interfaces;
}

std::unique_ptr<producer::Interface> AravisBackend::OpenInterface(const producer::InterfaceInfo& info) {
  if (info.tlType == GENTL_TLTYPE_U3V) return std::make_unique<U3vInterface>(disposer_);
  return std::make_unique<GevInterface>(info.displayName, disposer_);
}

}  // namespace zyn::aravis
