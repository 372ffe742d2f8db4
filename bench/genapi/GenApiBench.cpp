/// The GenICam runtime beside libaravis' engine: the same description, the same registers, one run.
///
/// Every measurement alternates the two in short batches and counts processor time. "ours" and "theirs" are
/// medians over the batches, "ratio" is theirs/ours from the medians, "best_ratio" from the fastest batches.
#include <GenICam.h>
#include <arv.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "AravisEngine.h"
#include "ChildProcess.h"
#include "GeneratedCamera.h"
#include "ProcessUsage.h"

namespace {

using namespace GenApi;
using zyn::genapi::test::AravisEngine;

class Memory final : public CPortImpl {
 public:
  Memory() : bytes_(generated::kMemoryBytes) {
    for (std::size_t group = 0; group < bytes_.size(); group += 64) {
      bytes_[group] = 100;        // width
      bytes_[group + 5] = 16;     // its maximum
      bytes_[group + 16] = 0x24;  // format 2
      bytes_[group + 20] = 200;   // exposure
      bytes_[group + 24] = 9;     // tick
    }
  }
  EAccessMode GetAccessMode() const override { return RW; }
  void Read(void* buffer, int64_t address, int64_t length) override {
    std::memcpy(buffer, bytes_.data() + address, static_cast<std::size_t>(length));
  }
  void Write(const void* buffer, int64_t address, int64_t length) override {
    std::memcpy(bytes_.data() + address, buffer, static_cast<std::size_t>(length));
  }

 private:
  std::vector<unsigned char> bytes_;
};

zyn::genapi::test::Registers RegistersOf(Memory& memory) {
  return {[&memory](std::uint64_t address, std::size_t length, void* to) {
            memory.Read(to, static_cast<int64_t>(address), static_cast<int64_t>(length));
            return true;
          },
          [&memory](std::uint64_t address, std::size_t length, const void* from) {
            memory.Write(from, static_cast<int64_t>(address), static_cast<int64_t>(length));
            return true;
          }};
}

// Of this thread: neither engine waits for anything, so only a busy machine could add to that.
double CpuNanoseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

std::unique_ptr<CNodeMapRef> LoadOurs(const std::string& xml) {
  CNodeMapFactory factory(ContentType_Xml, xml.data(), xml.size());
  return std::make_unique<CNodeMapRef>(factory.CreateNodeMap());
}

struct Figures {
  double median;
  double best;
};

/// Nanoseconds per step of both, over `batches` batches of `steps`.
class Duel {
 public:
  Duel(int steps, std::function<void()> ours, std::function<void()> theirs)
      : steps_(steps), ours_(std::move(ours)), theirs_(std::move(theirs)) {}

  void Run(benchmark::State& state, const char* unit, double nanosecondsPerUnit) {
    std::vector<double> ours, theirs;
    for (auto _ : state) {
      ours.push_back(Batch(ours_));
      theirs.push_back(Batch(theirs_));
      state.SetIterationTime(ours.back() * 1e-9);
    }
    const Figures a = Sum(ours);
    const Figures b = Sum(theirs);
    const std::string suffix = unit;
    state.counters["ours_" + suffix] = a.median / nanosecondsPerUnit;
    state.counters["ours_best_" + suffix] = a.best / nanosecondsPerUnit;
    state.counters["theirs_" + suffix] = b.median / nanosecondsPerUnit;
    state.counters["ratio"] = b.median / a.median;
    state.counters["best_ratio"] = b.best / a.best;
  }

 private:
  double Batch(const std::function<void()>& step) const {
    const double start = CpuNanoseconds();
    for (int i = 0; i < steps_; ++i) step();
    return (CpuNanoseconds() - start) / steps_;
  }
  static Figures Sum(std::vector<double>& times) {
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times.front()};
  }

  int steps_;
  std::function<void()> ours_, theirs_;
};

// Loading

/// Budget: at least 10 times faster. Each engine loads a few times in a row: a load right after one by the other engine finds
/// a heap and caches full of that engine's 50 MB, which costs the faster one a third more, and programs have one engine.
constexpr int kLoadsInARow = 4;

void Load(benchmark::State& state) {
  const std::string xml = generated::Camera(static_cast<std::size_t>(state.range(0)));
  Memory memory;
  std::uint64_t nodes = 0;
  Duel(
      kLoadsInARow, [&] { nodes = LoadOurs(xml)->_Ptr->GetNumNodes(); },
      [&] { const AravisEngine engine(xml, RegistersOf(memory)); })
      .Run(state, "ms", 1e6);
  state.counters["nodes"] = static_cast<double>(nodes);
  state.counters["xml_KiB"] = static_cast<double>(xml.size()) / 1024;
  if (nodes < static_cast<std::uint64_t>(state.range(0))) state.SkipWithError("too few nodes");
}
BENCHMARK(Load)->Arg(3000)->Arg(20000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(7);

/// From the text of a description to the value of a register feature.
void OpenToFirstValue(benchmark::State& state) {
  const std::string xml = generated::Camera(static_cast<std::size_t>(state.range(0)));
  Memory memory;
  std::int64_t ours = 0;
  std::int64_t theirs = 1;
  Duel(
      1,
      [&] {
        const auto map = LoadOurs(xml);
        map->_Connect(&memory);
        ours = CIntegerPtr(map->_GetNode("Width0"))->GetValue();
      },
      [&] {
        const AravisEngine engine(xml, RegistersOf(memory));
        theirs = arv_gc_integer_get_value(ARV_GC_INTEGER(arv_gc_get_node(engine.Gc(), "Width0")), nullptr);
      })
      .Run(state, "ms", 1e6);
  if (ours != theirs) state.SkipWithError("different values");
}
BENCHMARK(OpenToFirstValue)->Arg(3000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

// Memory. Each engine loads in a process of its own, which prints what the load added.

struct Growth {
  long resident = 0;
  long peak = 0;
};

Growth GrowthOf(const char* engine, long nodes) {
  const zyntest::Finished child =
      zyntest::RunToEnd({"/proc/self/exe", "--load", engine, std::to_string(nodes)});
  Growth growth;
  if (child.exitCode != 0 || std::sscanf(child.out.c_str(), "%ld %ld", &growth.resident, &growth.peak) != 2)
    return {};
  return growth;
}

/// Budget at 3,000 nodes: below theirs.
void ResidentMemory(benchmark::State& state) {
  Growth ours, theirs;
  for (auto _ : state) {
    ours = GrowthOf("ours", state.range(0));
    theirs = GrowthOf("theirs", state.range(0));
  }
  if (ours.resident <= 0 || theirs.resident <= 0) state.SkipWithError("the child failed");
  state.counters["ours_KiB"] = static_cast<double>(ours.resident);
  state.counters["theirs_KiB"] = static_cast<double>(theirs.resident);
  state.counters["ours_peak_KiB"] = static_cast<double>(ours.peak);
  state.counters["theirs_peak_KiB"] = static_cast<double>(theirs.peak);
  state.counters["ratio"] = static_cast<double>(theirs.resident) / static_cast<double>(ours.resident);
}
BENCHMARK(ResidentMemory)->Arg(3000)->Arg(20000)->Unit(benchmark::kMillisecond)->Iterations(3);

int LoadOnce(const std::string& engine, std::size_t nodes) {
  const std::string xml = generated::Camera(nodes);
  Memory memory;
  // What an engine needs once per process is not the description's.
  const std::string small = generated::Camera(1);
  const auto warmMap = LoadOurs(small);
  const AravisEngine warmEngine(small, RegistersOf(memory));

  zyntest::ForgetPeak();
  const zyntest::ProcessUsage before = zyntest::CurrentUsage();
  std::unique_ptr<CNodeMapRef> map;
  std::unique_ptr<AravisEngine> other;
  if (engine == "ours") {
    map = LoadOurs(xml);
    map->_Connect(&memory);
    CIntegerPtr(map->_GetNode("Width0"))->GetValue();
  } else {
    other = std::make_unique<AravisEngine>(xml, RegistersOf(memory));
    arv_gc_integer_get_value(ARV_GC_INTEGER(arv_gc_get_node(other->Gc(), "Width0")), nullptr);
  }
  const zyntest::ProcessUsage after = zyntest::CurrentUsage();
  std::printf("%ld %ld\n", static_cast<long>(after.residentKiB) - static_cast<long>(before.residentKiB),
              static_cast<long>(after.peakResidentKiB) - static_cast<long>(before.residentKiB));
  return 0;
}

// Reading

class Both {
 public:
  explicit Both(bool cached) {
    const std::string xml = generated::Camera(3000);
    map = LoadOurs(xml);
    map->_Connect(&memory);
    engine = std::make_unique<AravisEngine>(xml, RegistersOf(memory));
    engine->CacheRegisters(cached);
  }
  ArvGcNode* Theirs(const char* name) const { return arv_gc_get_node(engine->Gc(), name); }

  Memory memory;
  std::unique_ptr<CNodeMapRef> map;
  std::unique_ptr<AravisEngine> engine;
};

constexpr int kReads = 2000;

void ReadInteger(benchmark::State& state, const char* name) {
  const bool cached = state.range(0) != 0;
  const Both both(cached);
  const CIntegerPtr node = both.map->_GetNode(name);
  IInteger& integer = *node;
  ArvGcInteger* const theirs = ARV_GC_INTEGER(both.Theirs(name));
  if (integer.GetValue() != arv_gc_integer_get_value(theirs, nullptr))
    state.SkipWithError("different values");
  Duel(
      kReads, [&] { benchmark::DoNotOptimize(integer.GetValue(false, !cached)); },
      [&] { benchmark::DoNotOptimize(arv_gc_integer_get_value(theirs, nullptr)); })
      .Run(state, "ns", 1);
}

void ReadReal(benchmark::State& state, const char* name) {
  const bool cached = state.range(0) != 0;
  const Both both(cached);
  const CFloatPtr node = both.map->_GetNode(name);
  IFloat& real = *node;
  ArvGcFloat* const theirs = ARV_GC_FLOAT(both.Theirs(name));
  if (real.GetValue() != arv_gc_float_get_value(theirs, nullptr)) state.SkipWithError("different values");
  Duel(
      kReads, [&] { benchmark::DoNotOptimize(real.GetValue(false, !cached)); },
      [&] { benchmark::DoNotOptimize(arv_gc_float_get_value(theirs, nullptr)); })
      .Run(state, "ns", 1);
}

void ReadEnumerationText(benchmark::State& state) {
  const bool cached = state.range(0) != 0;
  const Both both(cached);
  const CEnumerationPtr node = both.map->_GetNode("Format0");
  IEnumeration& enumeration = *node;
  ArvGcEnumeration* const theirs = ARV_GC_ENUMERATION(both.Theirs("Format0"));
  if (enumeration.ToString() != arv_gc_enumeration_get_string_value(theirs, nullptr))
    state.SkipWithError("different values");
  Duel(
      kReads, [&] { benchmark::DoNotOptimize(enumeration.ToString(false, !cached)); },
      [&] { benchmark::DoNotOptimize(arv_gc_enumeration_get_string_value(theirs, nullptr)); })
      .Run(state, "ns", 1);
}

/// Budgets: cached (1) under 100 ns; uncached (0) at least 5 times faster over registers in memory.
#define ZYN_READ(function, ...)            \
  BENCHMARK_CAPTURE(function, __VA_ARGS__) \
      ->Arg(1)                             \
      ->Arg(0)                             \
      ->UseManualTime()                    \
      ->Unit(benchmark::kNanosecond)       \
      ->Iterations(50)
ZYN_READ(ReadInteger, Integer, "Width0");
ZYN_READ(ReadInteger, IntReg, "WidthReg0");
ZYN_READ(ReadInteger, MaskedIntReg, "Field0");
ZYN_READ(ReadReal, FloatOverConverter, "Time0");
ZYN_READ(ReadReal, Converter, "Exposure0");
ZYN_READ(ReadReal, SwissKnife, "Size0");
BENCHMARK(ReadEnumerationText)->Arg(1)->Arg(0)->UseManualTime()->Unit(benchmark::kNanosecond)->Iterations(50);

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[1], "--load") == 0) return LoadOnce(argv[2], std::stoul(argv[3]));
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
