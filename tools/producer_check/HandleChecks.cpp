// Checks: handles that are null, wrong, or old; and the last error.
#include <algorithm>
#include <array>
#include <thread>

#include "Bench.h"
#include "Calls.h"
#include "Modules.h"

namespace zyn::producercheck {

using namespace GenTL;

namespace {

// Calls a function with a handle that it must refuse.
void ExpectInvalid(Bench& bench, const Call& call, void* handle, const std::string& what) {
  try {
    bench.ExpectError(call.name + (" with " + what), call.run(bench.F(), handle), {GC_ERR_INVALID_HANDLE});
  } catch (const MissingFunction&) {  // NOLINT(bugprone-empty-catch): another check tells
  }
}

void NullHandles(Bench& bench) {
  bench.Library();
  for (const Call& call : Calls()) ExpectInvalid(bench, call, nullptr, "a null handle");
}

void GarbageHandles(Bench& bench) {
  bench.Library();
  alignas(64) static std::array<unsigned char, 4096> garbage{};
  for (const Call& call : Calls()) ExpectInvalid(bench, call, garbage.data(), "a pointer that is no handle");
}

// A handle of another kind than the function takes.
void WrongHandles(Bench& bench) {
  const std::vector<Module> modules = Modules(bench);
  void* const system = bench.System();
  void* const device = bench.Device();
  for (const Call& call : Calls()) {
    if (call.kind == HandleKind::kPort || call.kind == HandleKind::kEventSource) continue;  // take nearly all
    const bool takesDevice = call.kind == HandleKind::kDevice;
    ExpectInvalid(bench, call, takesDevice ? system : device,
                  takesDevice ? "the handle of the system" : "the handle of a device");
  }
}

void StaleHandles(Bench& bench) {
  void* const system = bench.System();
  void* const interface = bench.Interface();
  void* const device = bench.Device();
  void* const remote = bench.Remote();
  void* const stream = HasStream(bench) ? bench.Stream() : nullptr;
  bench.EndSystem();
  bench.System();  // a new one; the old handle must not mean it, unless the two are equal
  for (const Call& call : Calls()) {
    void* old = nullptr;
    if (call.kind == HandleKind::kInterface) old = interface;
    if (call.kind == HandleKind::kDevice) old = device;
    if (call.kind == HandleKind::kStream) old = stream;
    if (call.kind == HandleKind::kPort) old = remote;
    if (call.kind == HandleKind::kSystem && system != bench.System()) old = system;
    if (old != nullptr) ExpectInvalid(bench, call, old, "the handle of a closed module");
  }
}

void CloseParents(Bench& bench) {
  Functions& f = bench.F();
  const bool hasStream = HasStream(bench);
  void* const stream = hasStream ? bench.Stream() : nullptr;
  void* const device = bench.Device();
  void* const interface = bench.Interface();
  void* const system = bench.System();
  bench.ExpectSuccess("TLClose with an interface, a device and a stream open", f.TLClose(system));
  bench.ForgetSystem();
  bench.ExpectError("IFClose after TLClose", f.IFClose(interface), {GC_ERR_INVALID_HANDLE});
  bench.ExpectError("DevClose after TLClose", f.DevClose(device), {GC_ERR_INVALID_HANDLE});
  if (hasStream) bench.ExpectError("DSClose after TLClose", f.DSClose(stream), {GC_ERR_INVALID_HANDLE});
  bench.Device();  // nothing of the old session is in the way
}

void CloseRemote(Bench& bench) {
  PORT_HANDLE remote = bench.Remote();
  bench.ExpectError("DevClose with the handle of the camera's port", bench.F().DevClose(remote),
                    {GC_ERR_INVALID_HANDLE});
  PORT_HANDLE again = nullptr;
  bench.ExpectSuccess("a second DevGetPort", bench.F().DevGetPort(bench.Device(), &again));
  Expect(again != bench.Device(), "the camera's port has the handle of the device module");
}

void Parents(Bench& bench) {
  Functions& f = bench.F();
  void* parent = nullptr;
  bench.Device();
  bench.ExpectSuccess("IFGetParentTL", f.IFGetParentTL(bench.Interface(), &parent));
  Expect(parent == bench.System(), "IFGetParentTL returns another handle than that of the system");
  bench.ExpectSuccess("DevGetParentIF", f.DevGetParentIF(bench.Device(), &parent));
  Expect(parent == bench.Interface(), "DevGetParentIF returns another handle than that of the interface");
  if (!HasStream(bench)) return;
  bench.ExpectSuccess("DSGetParentDev", f.DSGetParentDev(bench.Stream(), &parent));
  Expect(parent == bench.Device(), "DSGetParentDev returns another handle than that of the device");
}

GC_ERROR LastCode(Bench& bench) {
  std::array<char, 1024> text{};
  std::size_t size = text.size();
  GC_ERROR code = GC_ERR_SUCCESS;
  bench.ExpectSuccess("GCGetLastError", bench.F().GCGetLastError(&code, text.data(), &size));
  Expect(std::find(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(std::min(size, text.size())),
                   '\0') != text.end(),
         "GCGetLastError writes a text without its NUL");
  return code;
}

void LastError(Bench& bench) {
  Functions& f = bench.F();
  TL_HANDLE system = bench.System();
  std::uint32_t count = 0;
  bench.ExpectError("TLGetNumInterfaces with a null handle", f.TLGetNumInterfaces(nullptr, &count),
                    {GC_ERR_INVALID_HANDLE});
  Expect(LastCode(bench) == GC_ERR_INVALID_HANDLE, "GCGetLastError does not tell the failure before it");
  bench.ExpectSuccess("TLGetNumInterfaces", f.TLGetNumInterfaces(system, &count));
  Expect(LastCode(bench) == GC_ERR_INVALID_HANDLE, "GCGetLastError forgets a failure when a call succeeds");
  GC_ERROR elsewhere = GC_ERR_ERROR;
  std::thread([&] {
    std::array<char, 1024> text{};
    std::size_t size = text.size();
    if (f.GCGetLastError(&elsewhere, text.data(), &size) != GC_ERR_SUCCESS) elsewhere = GC_ERR_ERROR;
  }).join();
  Expect(elsewhere == GC_ERR_SUCCESS, "GCGetLastError tells one thread of the failures of another");
}

}  // namespace

std::vector<Check> HandleChecks() {
  return {
      {"null-handles", "every function refuses a null handle", &NullHandles},
      {"garbage-handles", "every function refuses a pointer that is no handle", &GarbageHandles},
      {"wrong-handles", "every function refuses the handle of another kind of module", &WrongHandles},
      {"stale-handles", "every function refuses the handle of a closed module", &StaleHandles},
      {"close-parents", "closing a module closes what was opened from it", &CloseParents},
      {"close-remote", "the camera's port is no device and cannot be closed", &CloseRemote},
      {"parents", "every module knows the one it was opened from", &Parents},
      {"last-error", "each thread can ask for its last failure", &LastError},
  };
}

}  // namespace zyn::producercheck
