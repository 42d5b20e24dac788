// The cost of many hosted pages in one process: each iteration creates 100
// host control instances, each on its own page with its own HostAPI, launches
// them, completes their loads and their handshakes (state LoadedCanTalk),
// then destroys them (destruction is not timed).
//
// Counters: time_per_instance (seconds to set one up), heap_per_instance (bytes
// of heap in use per live instance, glibc's count, including its page
// object and API), rss_delta_kib (growth of the resident set over the first
// iteration; later iterations reuse the freed memory, so run this benchmark
// in a process of its own, as scripts/bench.sh does, for a meaningful figure).

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "support/HostedWorld.h"
#include "support/InstantPage.h"
#include "support/ProcessMemory.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using wevlin_bench::HostedWorld;
using wevlin_bench::InstantPage;
using wevlin_bench::ProcessMemory;

constexpr int kInstances = 100;

struct Hosted {
  std::unique_ptr<InstantPage> page;
  std::unique_ptr<interop::HostControlInstance> instance;
  std::unique_ptr<interop::HostAPI> api;
};

void Instances(benchmark::State& state) {
  // A fresh manager with ten services, current while the instances are made
  // (each binds to the manager current at its construction), so that each
  // handshake sends a list of realistic size whatever ran before.
  HostedWorld world(10);
  interop::TargetConfig target("bench", "Benchmark page", "about:blank");
  // Measured once per process, over the very first set of instances.
  static double rssDeltaKib = -1;
  double heapPerInstance = 0;
  for (auto _ : state) {
    const std::size_t rssBefore = ProcessMemory::ResidentBytes();
    const std::size_t heapBefore = ProcessMemory::HeapInUseBytes();
    std::vector<Hosted> hosted(kInstances);
    for (Hosted& h : hosted) {
      h.page = std::make_unique<InstantPage>();
      h.instance = std::make_unique<interop::HostControlInstance>(h.page.get());
      h.api = std::make_unique<interop::HostAPI>(h.instance.get());
      h.instance->LaunchToTarget(&target);
      h.page->CompleteLoad();
      h.api->tavoHost_WebSideStartHandShake();
    }
    state.PauseTiming();
    for (const Hosted& h : hosted) {
      if (h.instance->GetContentState() != interop::LoadedCanTalk) {
        state.SkipWithError("an instance did not finish its handshake");
      }
    }
    const std::size_t heapAfter = ProcessMemory::HeapInUseBytes();
    heapPerInstance =
        (static_cast<double>(heapAfter) - static_cast<double>(heapBefore)) / kInstances;
    if (rssDeltaKib < 0) {
      rssDeltaKib =
          (static_cast<double>(ProcessMemory::ResidentBytes()) - static_cast<double>(rssBefore)) /
          1024.0;
    }
    for (Hosted& h : hosted) {
      h.api.reset();
      h.instance.reset();
      h.page.reset();
    }
    hosted.clear();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kInstances);
  state.counters["instances"] = kInstances;
  state.counters["heap_per_instance"] = heapPerInstance;
  state.counters["rss_delta_kib"] = rssDeltaKib;
  state.counters["time_per_instance"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kInstances,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK(Instances)->Name("Scale/Instances/100")->Unit(benchmark::kMillisecond);

}  // namespace
