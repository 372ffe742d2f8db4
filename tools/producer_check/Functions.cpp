#include "Functions.h"

#include <dlfcn.h>

#include <cstring>

#include "Check.h"

namespace zyn::producercheck {

Functions::Functions(const std::string& file) : library_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (library_ == nullptr) {
    const char* reason = dlerror();  // NOLINT(concurrency-mt-unsafe): the loader keeps it per thread
    Fail("the file cannot be loaded: " + std::string(reason != nullptr ? reason : "unknown cause"));
  }
#define ZYN_RESOLVE(name, since)                                                   \
  if (void* const symbol = dlsym(library_, #name)) {                               \
    std::memcpy(&this->name, &symbol, sizeof symbol);                              \
  } else {                                                                         \
    this->name = [](auto...) -> GenTL::GC_ERROR { throw MissingFunction{#name}; }; \
    missing_.push_back({#name, since});                                            \
  }
  ZYN_GENTL_FUNCTIONS(ZYN_RESOLVE)
#undef ZYN_RESOLVE
}

void Functions::Unload() {
  if (library_ != nullptr) dlclose(library_);
  library_ = nullptr;
}

}  // namespace zyn::producercheck
