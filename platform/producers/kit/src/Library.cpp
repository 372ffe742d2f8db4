#include "Library.h"

#include <dlfcn.h>
#include <stdlib.h>

#include "Guard.h"
#include "System.h"
#include "producer/Error.h"

namespace zyn::producer {
namespace {

const char* const kSystemKey = "system";

enum class State { closed, changing, initialised };

struct Global {
  Mutex mutex;
  State state ZYN_GUARDED_BY(mutex) = State::closed;
  std::shared_ptr<Library> library ZYN_GUARDED_BY(mutex);

  // A consumer that forgot GCCloseLib: the threads of the backend must not outlive its code.
  ~Global() {
    if (library) library->Close();
  }
};

// The handle table is made first, so that it is destroyed last.
Global& TheGlobal() {
  Handles();
  static Global global;
  return global;
}

// The file that this code was loaded from; a symbol of ours leads the dynamic linker to it.
std::string OwnPath() {
  static const char anchor = 0;
  Dl_info info = {};
  if (dladdr(&anchor, &info) == 0 || info.dli_fname == nullptr) return "";
  char* const absolute = realpath(info.dli_fname, nullptr);
  if (absolute == nullptr) return info.dli_fname;
  std::string path = absolute;
  free(absolute);  // NOLINT(cppcoreguidelines-no-malloc): realpath allocated it
  return path;
}

ProducerFacts MakeFacts(const Backend& backend) {
  ProducerFacts facts;
  facts.info = backend.Info();
  facts.path = OwnPath();
  facts.fileName = facts.path.substr(facts.path.rfind('/') + 1);
  return facts;
}

[[noreturn]] void ThrowNotInitialised() {
  throw Error(GenTL::GC_ERR_NOT_INITIALIZED, "GCInitLib has not been called.");
}

}  // namespace

HandleTable& Handles() {
  static HandleTable table;
  return table;
}

void RequireInitialized() {
  Library::Current();
}

std::shared_ptr<Library> Library::Current() {
  Global& global = TheGlobal();
  MutexLock lock(global.mutex);
  if (global.state != State::initialised) ThrowNotInitialised();
  return global.library;
}

void Library::Initialise() {
  Global& global = TheGlobal();
  {
    MutexLock lock(global.mutex);
    if (global.state != State::closed)
      throw Error(GenTL::GC_ERR_RESOURCE_IN_USE, "The producer is initialised already.");
    global.state = State::changing;
  }
  std::shared_ptr<Library> library;
  try {
    library = std::make_shared<Library>(CreateBackend());
  } catch (...) {
    MutexLock lock(global.mutex);
    global.state = State::closed;
    throw;
  }
  MutexLock lock(global.mutex);
  global.library = std::move(library);
  global.state = State::initialised;
}

void Library::CloseAll() {
  Global& global = TheGlobal();
  std::shared_ptr<Library> library;
  {
    MutexLock lock(global.mutex);
    if (global.state != State::initialised) ThrowNotInitialised();
    global.state = State::changing;
    library = std::move(global.library);
    global.library = nullptr;
  }
  library->Close();
  library.reset();
  MutexLock lock(global.mutex);
  global.state = State::closed;
}

Library::Library(std::unique_ptr<Backend> backend)
    : backend_(std::move(backend)), facts_(MakeFacts(*backend_)) {}

Library::~Library() = default;

void Library::Close() {
  if (!TheGate().BeginClose()) return;
  TheGate().Drain();
  for (const auto& system : systems_.All()) system->Close();
  TheGate().EndClose();
}

std::shared_ptr<System> Library::OpenSystem() {
  return systems_.Open(kSystemKey, [this] {
    auto system = std::make_shared<System>(*this);
    Handles().Insert(system);
    return system;
  });
}

void Library::OnSystemClosed() {
  systems_.Drop(kSystemKey);
}

void Library::Info(GenTL::TL_INFO_CMD command, const Answer& answer) const {
  const ProducerInfo& info = facts_.info;
  switch (command) {
    case GenTL::TL_INFO_ID:
    case GenTL::TL_INFO_PATHNAME:
      return answer.Text(facts_.path);
    case GenTL::TL_INFO_VENDOR:
      return answer.Text(info.vendor);
    case GenTL::TL_INFO_MODEL:
      return answer.Text(info.model);
    case GenTL::TL_INFO_VERSION:
      return answer.Text(info.version);
    case GenTL::TL_INFO_TLTYPE:
      return answer.Text(info.tlType);
    case GenTL::TL_INFO_NAME:
      return answer.Text(facts_.fileName);
    case GenTL::TL_INFO_DISPLAYNAME:
      return answer.Text(info.displayName);
    case GenTL::TL_INFO_CHAR_ENCODING:
      return answer.Int32(GenTL::TL_CHAR_ENCODING_UTF8);
    case GenTL::TL_INFO_GENTL_VER_MAJOR:
      return answer.UInt32(GENTL_VERSION_MAJOR);
    case GenTL::TL_INFO_GENTL_VER_MINOR:
      return answer.UInt32(GENTL_VERSION_MINOR);
    default:
      throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED,
                  "There is no system information " + std::to_string(command) + ".");
  }
}

}  // namespace zyn::producer
