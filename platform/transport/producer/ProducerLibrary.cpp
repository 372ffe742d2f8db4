#include "ProducerLibrary.h"

#include <dlfcn.h>

#include <array>
#include <cstring>

namespace zyn::transport {

namespace {

std::string LoaderError() {
  const char* text = dlerror();  // NOLINT(concurrency-mt-unsafe): the loader keeps it per thread
  return text ? text : "unknown cause";
}

template <class Function>
bool Resolve(void* library, const char* name, Function& function) {
  void* symbol = dlsym(library, name);
  std::memcpy(&function, &symbol, sizeof(function));
  return symbol != nullptr;
}

}  // namespace

std::shared_ptr<const ProducerLibrary> ProducerLibrary::Load(const std::string& path, std::string& reason) {
  dlerror();  // NOLINT(concurrency-mt-unsafe): forgets older errors of this thread
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    reason = "cannot be loaded: " + LoaderError();
    return nullptr;
  }
  std::shared_ptr<ProducerLibrary> producer(new ProducerLibrary);
  producer->path_ = path;
  std::string missing;
#define ZYN_RESOLVE(name) \
  if (!Resolve(library, #name, producer->name) && missing.empty()) missing = #name;
  ZYN_GENTL_REQUIRED_FUNCTIONS(ZYN_RESOLVE)
  if (!missing.empty()) {
    reason = "is no GenTL producer: it lacks the function " + missing;
    return nullptr;
  }
  ZYN_GENTL_STREAMING_FUNCTIONS(ZYN_RESOLVE)
  const bool hasStreams = missing.empty();
  ZYN_GENTL_OPTIONAL_FUNCTIONS(ZYN_RESOLVE)
#undef ZYN_RESOLVE
  producer->canStream_ = hasStreams && (producer->DSAnnounceBuffer || producer->DSAllocAndAnnounceBuffer);
  return producer;
}

std::string ProducerLibrary::LastError() const {
  if (!GCGetLastError) return {};
  std::array<char, 1024> text{};
  std::size_t size = text.size() - 1;
  GenTL::GC_ERROR code = 0;
  if (GCGetLastError(&code, text.data(), &size) != GenTL::GC_ERR_SUCCESS || code == 0) return {};
  text.back() = '\0';
  return text.data();
}

}  // namespace zyn::transport
