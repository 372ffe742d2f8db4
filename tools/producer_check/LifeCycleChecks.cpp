// Checks: loading, initialising and ending the library.
#include <chrono>
#include <thread>

#include "Bench.h"
#include "Calls.h"

namespace zyn::producercheck {

using namespace GenTL;

namespace {

// Calls every function that needs an initialised library. Missing functions are left out.
void ExpectAllUninitialised(Bench& bench, const std::string& when, void* handle) {
  Functions& f = bench.F();
  const auto expect = [&](const std::string& name, auto&& call) {
    try {
      bench.ExpectError(name + " " + when, call(), {GC_ERR_NOT_INITIALIZED});
    } catch (const MissingFunction&) {  // NOLINT(bugprone-empty-catch): another check tells
    }
  };
  expect("GCCloseLib", [&] { return f.GCCloseLib(); });
  expect("GCGetInfo", [&] {
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    std::size_t size = 0;
    return f.GCGetInfo(TL_INFO_ID, &type, nullptr, &size);
  });
  expect("TLOpen", [&] {
    TL_HANDLE system = nullptr;
    return f.TLOpen(&system);
  });
  for (const Call& call : Calls()) {
    expect(call.name, [&] { return call.run(f, handle); });
  }
}

void Load(Bench& bench) {
  bench.F();
}

void BeforeInit(Bench& bench) {
  bench.EndLibrary();
  ExpectAllUninitialised(bench, "before GCInitLib", nullptr);
}

void Init(Bench& bench) {
  bench.Library();
}

void Exports(Bench& bench) {
  bench.Library();
  std::string names;
  for (const MissingName& missing : bench.F().Missing()) {
    if (missing.since <= bench.Version()) names += (names.empty() ? "" : ", ") + missing.name;
  }
  Expect(names.empty(),
         "the producer claims version 1." + std::to_string(bench.Version()) + " and lacks " + names);
}

void InitTwice(Bench& bench) {
  bench.Library();
  bench.ExpectError("a second GCInitLib", bench.F().GCInitLib(), {GC_ERR_RESOURCE_IN_USE});
  bench.System();  // the refused call must have changed nothing
}

void CloseTwice(Bench& bench) {
  bench.Library();
  bench.EndLibrary();
  bench.ExpectError("a second GCCloseLib", bench.F().GCCloseLib(), {GC_ERR_NOT_INITIALIZED});
}

void InitAgain(Bench& bench) {
  constexpr int kTimes = 5;
  for (int i = 0; i < kTimes; ++i) {
    bench.EndLibrary();
    bench.System();
  }
  bench.Interface();
}

void AfterClose(Bench& bench) {
  void* const device = bench.Device();
  bench.ExpectSuccess("GCCloseLib with a device open", bench.F().GCCloseLib());
  bench.ForgetLibrary();
  ExpectAllUninitialised(bench, "after GCCloseLib", device);
}

void Unload(Bench& bench) {
  constexpr std::chrono::milliseconds kLeftOverTime{200};
  bench.Device();
  bench.Unload();
  std::this_thread::sleep_for(kLeftOverTime);  // a thread that was left behind crashes now
  bench.Device();
}

}  // namespace

std::vector<Check> LifeCycleChecks() {
  return {
      {"load", "the file loads by itself", &Load, true},
      {"before-init", "before GCInitLib every function answers \"not initialized\"", &BeforeInit},
      {"init", "GCInitLib succeeds", &Init, true},
      {"exports", "every function of the claimed version is there", &Exports},
      {"init-twice", "a second GCInitLib answers \"resource in use\"", &InitTwice},
      {"close-twice", "a second GCCloseLib answers \"not initialized\"", &CloseTwice},
      {"init-again", "the library starts again after it was closed", &InitAgain},
      {"after-close", "after GCCloseLib every function answers \"not initialized\"", &AfterClose},
      {"unload", "the file can be unloaded and loaded again", &Unload},
  };
}

}  // namespace zyn::producercheck
