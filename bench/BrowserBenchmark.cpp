// Calls between a page and the host through a real browser, on each web
// control of the build: the headless Chromium control (engine "chromium")
// and the WebKitGTK control in an offscreen window (engine "webkitgtk").
// Every benchmark has one body, written against IBridgedWebControl, and runs
// once per engine:
//
//   Browser/<engine>/Evaluate                    a bare script round trip
//                                                (ExecuteScript("1")), the
//                                                floor for anything that
//                                                crosses from the host into
//                                                the page and back
//   Browser/<engine>/Floor/<in|out>/<bytes>      the engine's own channel
//                                                carrying <bytes> without the
//                                                bridge: a script whose text
//                                                carries them into the page
//                                                and gives back their number
//                                                (in), or one that makes them
//                                                in the page and gives them
//                                                back as its value (out)
//   Browser/<engine>/HostToPage/<bytes>          HostControlInstance::
//                                                InvokeWebMethod of the
//                                                page's echo service
//   Browser/<engine>/PageToHost/<path>/<bytes>   the page calls the host's
//                                                echo service, one call after
//                                                another, through the
//                                                control's bridge
//                                                (wevlinHost.tavoHostMethod)
//                                                or through wevlin.js
//                                                (page.invokeMethod)
//
// Payloads of 100 bytes, 100 KiB, 1 MiB and 10 MiB (the two big sizes run a
// fixed, small number of calls). Counters: p50_us and p99_us per call;
// items_per_second is calls per second; for the calls of 1 MiB and more,
// peak_rss_x: how much the host's resident set grew at its peak during the
// calls, as a multiple of the payload (the kernel's VmHWM, reset before the
// first timed call, less the resident set then, with the heap's free memory
// returned to the system first). Host-to-page and evaluate times are
// taken on the host around each call; page-to-host times by the page
// (performance.now) around each call, each iteration being one batch of calls
// whose total is the iteration's (manual) time. The page's clock has coarse
// steps in a browser that is not cross-origin isolated, reported as
// page_clock_us: page-side percentiles are good to one step, the mean (the
// iteration time over the calls) is exact.
//
// Each engine's browser starts when its first benchmark runs and stays up
// until every benchmark has run. An engine that cannot start (Debian package
// chromium not installed, no WebKitGTK control in the build, no display for
// it) has its benchmarks skipped with the reason. WEVLIN_BENCH_SMOKE=1 makes
// the page's batches small, for a quick check that the benchmarks still run.
// The program runs on its main thread, which is GTK's main thread too.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/BenchEngine.h"
#include "support/EchoService.h"
#include "support/ProcessMemory.h"
#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/webcontrols/IBridgedWebControl.h"

#ifndef WEVLIN_BENCH_PAGES_DIR
#define WEVLIN_BENCH_PAGES_DIR "bench/pages"
#endif

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::WebControls::IBridgedWebControl;
using wevlin_bench::BenchEngine;
using wevlin_bench::EchoService;
using wevlin_bench::Engine;
using wevlin_bench::EngineName;
using wevlin_bench::ProcessMemory;

constexpr std::chrono::milliseconds kWait{60000};
constexpr std::array<Engine, 2> kEngines{Engine::Chromium, Engine::WebKitGtk};

bool Smoke() {
  const char* smoke = std::getenv("WEVLIN_BENCH_SMOKE");
  return smoke != nullptr && std::string(smoke) == "1";
}

// Returns the host's echo service, registered with the host manager (which
// owns it) on first use. Every engine's page calls this one service.
const EchoService& HostEcho() {
  static EchoService* const echo = [] {
    auto* service =
        new EchoService("tavo.wevlin.infrastructure.services.bench.Echo.host", "_2014_07");
    interop::HostManager::TheInstance()->RegisterService(service);
    return service;
  }();
  return *echo;
}

// The benchmark page in one engine's control, logged in and ready; or the
// reason why there is none. One per engine, made by Of on first use and
// destroyed by CloseAll. Owns the engine (control and window), the host
// control instance and its API.
// REQUIRES: the program's main thread.
class Browser {
 public:
  Browser(const Browser&) = delete;
  Browser& operator=(const Browser&) = delete;

  // Returns the browser of `engine`, starting it on first use.
  static Browser& Of(Engine engine) {
    std::unique_ptr<Browser>& browser = Slots()[static_cast<std::size_t>(engine)];
    if (!browser) browser.reset(new Browser(engine));
    return *browser;
  }

  // Closes every browser started, in the order they were made.
  static void CloseAll() {
    for (std::unique_ptr<Browser>& browser : Slots()) browser.reset();
  }

  ~Browser() {
    // API, instance, control: the order an application must use.
    if (engine_) engine_->Control().SetHostAPI(nullptr);
    api_.reset();
    instance_.reset();
    engine_.reset();
  }

  const std::string& Error() const { return error_; }
  IBridgedWebControl& Control() { return engine_->Control(); }
  interop::HostControlInstance& Instance() { return *instance_; }
  interop::BaseServiceDescriptor& PageEcho() { return pageEcho_; }
  // Returns the smallest step of the page's clock (performance.now), in
  // microseconds.
  double PageClockStepUs() const { return pageClockStepUs_; }

  // Runs `script` and returns its value; an IWebControl::ScriptException
  // becomes a std::runtime_error.
  std::string Eval(const std::string& script) {
    try {
      return Control().ExecuteScript(script);
    } catch (const interop::IWebControl::ScriptException& e) {
      throw std::runtime_error("script failed: " + e.message + " " + e.details);
    }
  }

 private:
  static std::array<std::unique_ptr<Browser>, kEngines.size()>& Slots() {
    static std::array<std::unique_ptr<Browser>, kEngines.size()> slots;
    return slots;
  }

  explicit Browser(Engine engine)
      : pageEcho_("bench.browser.Echo.client", "_2014_07"),
        target_("bench", "Benchmark page",
                std::string("file://") + WEVLIN_BENCH_PAGES_DIR + "/bench.html") {
    try {
      Start(engine);
    } catch (const std::exception& e) {
      error_ = std::string("no ") + EngineName(engine) + " browser benchmark: " + e.what();
    }
  }

  void Start(Engine engine) {
    Com::Velmora::TAVO::Wevlin::Infrastructure::Base::SetLogSink([](const std::string&) {});
    HostEcho();
    engine_ = wevlin_bench::StartBenchEngine(engine);
    instance_ = std::make_unique<interop::HostControlInstance>(&Control());
    api_ = std::make_unique<interop::HostAPI>(instance_.get());
    Control().SetHostAPI(api_.get());
    instance_->LaunchToTarget(&target_);
    if (!Control().RunUntil([&] { return instance_->GetContentState() == interop::LoadedCanTalk; },
                            kWait)) {
      throw std::runtime_error(
          "the benchmark page did not finish its handshake (state " +
          interop::HostControlInstance::NameOfState(instance_->GetContentState()) + ")");
    }
    if (!Control().RunUntil([&] { return Eval("bench.ready()") == "true"; }, kWait)) {
      throw std::runtime_error("the benchmark page did not become ready");
    }
    pageClockStepUs_ = std::stod(Eval("bench.clock()")) * 1000.0;
  }

  std::string error_;
  double pageClockStepUs_ = 0;
  interop::BaseServiceDescriptor pageEcho_;
  interop::TargetConfig target_;
  std::unique_ptr<BenchEngine> engine_;
  std::unique_ptr<interop::HostControlInstance> instance_;
  std::unique_ptr<interop::HostAPI> api_;
};

// Per-call times in seconds, summarised into the benchmark's counters.
// REQUIRES: one thread.
class Latencies {
 public:
  void Add(double seconds) { samples_.push_back(seconds); }

  void Report(benchmark::State& state) {
    if (samples_.empty()) return;
    std::sort(samples_.begin(), samples_.end());
    state.counters["p50_us"] = Percentile(0.50) * 1e6;
    state.counters["p99_us"] = Percentile(0.99) * 1e6;
    state.counters["calls"] = static_cast<double>(samples_.size());
  }

 private:
  double Percentile(double fraction) const {
    const auto index =
        static_cast<std::size_t>(fraction * static_cast<double>(samples_.size() - 1));
    return samples_[index];
  }
  std::vector<double> samples_;
};

double Since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Returns the browser of `engine`, or null after skipping the benchmark with
// the reason why there is none.
Browser* Ready(benchmark::State& state, Engine engine) {
  Browser& browser = Browser::Of(engine);
  if (!browser.Error().empty()) {
    state.SkipWithError(browser.Error().c_str());
    return nullptr;
  }
  return &browser;
}

void Evaluate(benchmark::State& state, Engine engine) {
  Browser* browser = Ready(state, engine);
  if (browser == nullptr) return;
  Latencies latencies;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    std::string value = browser->Control().ExecuteScript("1");
    latencies.Add(Since(start));
    benchmark::DoNotOptimize(value);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  latencies.Report(state);
}

// Measures how far the host's resident set rises above where it is now, for
// payloads of 1 MiB and more (smaller ones drown in the noise of pages).
class PeakResident {
 public:
  explicit PeakResident(std::int64_t payload) : payload_(payload) {
    if (payload < (1 << 20)) return;
    // What earlier benchmarks freed would otherwise hide what this one needs.
    ProcessMemory::ReleaseFreeHeap();
    before_ = ProcessMemory::ResidentBytes();
    on_ = ProcessMemory::ResetPeakResident();
  }

  // Reports the rise as a multiple of the payload (counter peak_rss_x).
  void Report(benchmark::State& state) const {
    if (!on_) return;
    const std::size_t peak = ProcessMemory::PeakResidentBytes();
    const double growth = peak > before_ ? static_cast<double>(peak - before_) : 0.0;
    state.counters["peak_rss_x"] = growth / static_cast<double>(payload_);
  }

 private:
  std::int64_t payload_;
  std::size_t before_ = 0;
  bool on_ = false;
};

void Floor(benchmark::State& state, Engine engine, bool in) {
  Browser* browser = Ready(state, engine);
  if (browser == nullptr) return;
  const auto size = static_cast<std::size_t>(state.range(0));
  const std::string script =
      in ? "'" + std::string(size, 'x') + "'.length" : "'x'.repeat(" + std::to_string(size) + ")";
  const auto answered = [&](const std::string& value) {
    return in ? value == std::to_string(size) : value.size() == size;
  };
  if (!answered(browser->Eval(script))) {
    state.SkipWithError("the script did not give back what it carried");
    return;
  }
  Latencies latencies;
  PeakResident peak(state.range(0));
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    std::string value = browser->Control().ExecuteScript(script);
    latencies.Add(Since(start));
    benchmark::DoNotOptimize(value);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
  latencies.Report(state);
  peak.Report(state);
}

void HostToPage(benchmark::State& state, Engine engine) {
  Browser* browser = Ready(state, engine);
  if (browser == nullptr) return;
  const std::string payload(static_cast<std::size_t>(state.range(0)), 'x');
  if (browser->Instance().InvokeWebMethod(&browser->PageEcho(), payload) != payload) {
    state.SkipWithError("the page's echo service did not answer its payload");
    return;
  }
  Latencies latencies;
  PeakResident peak(state.range(0));
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    std::string answer = browser->Instance().InvokeWebMethod(&browser->PageEcho(), payload);
    latencies.Add(Since(start));
    benchmark::DoNotOptimize(answer);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
  latencies.Report(state);
  peak.Report(state);
}

void PageToHost(benchmark::State& state, Engine engine, const std::string& path) {
  Browser* browser = Ready(state, engine);
  if (browser == nullptr) return;
  const int size = static_cast<int>(state.range(0));
  // Calls per iteration: fewer for bigger payloads, one of 10 MiB.
  int batch = size >= (10 << 20) ? 1 : size >= (1 << 20) ? 5 : size > 1000 ? 20 : 500;
  if (Smoke()) batch = std::min(batch, 5);
  Latencies latencies;
  int64_t calls = 0;
  PeakResident peak(state.range(0));
  for (auto _ : state) {
    const long served = HostEcho().Calls();
    browser->Eval("bench.start('" + path + "', " + std::to_string(batch) + ", " +
                  std::to_string(size) + ")");
    // The host serves the calls while it waits. The condition looks only at
    // the host's side, so that waiting adds nothing to the page's traffic;
    // the last answer is then on its way, and the page is asked when it has
    // arrived.
    const bool served_all =
        browser->Control().RunUntil([&] { return HostEcho().Calls() >= served + batch; }, kWait);
    if (!served_all || !browser->Control().RunUntil(
                           [&] { return browser->Eval("bench.done()") == "true"; }, kWait)) {
      state.SkipWithError("the page's calls did not end");
      break;
    }
    std::istringstream result(browser->Eval("bench.result()"));
    int count = 0;
    int failures = 0;
    double totalMs = 0;
    result >> count >> failures >> totalMs;
    if (count != batch || failures != 0) {
      state.SkipWithError("the host's echo service did not answer every call with its payload");
      break;
    }
    for (double ms = 0; result >> ms;) latencies.Add(ms / 1000.0);
    state.SetIterationTime(totalMs / 1000.0);
    calls += count;
  }
  state.SetItemsProcessed(calls);
  state.SetBytesProcessed(calls * size);
  latencies.Report(state);
  peak.Report(state);
  state.counters["page_clock_us"] = browser->PageClockStepUs();
}

// The payload sizes: the small ones run for the minimum time, the big ones a
// fixed number of times (a 10 MiB call takes a good part of a second).
constexpr std::int64_t kSmallSizes[] = {100, 100 << 10};
constexpr std::int64_t kBigSizes[] = {1 << 20, 10 << 20};

// Registers `name` once per payload size, with `apply` setting the timing.
template <typename Run>
void RegisterSized(const std::string& name, Run run,
                   void (*apply)(benchmark::internal::Benchmark*)) {
  for (const std::int64_t size : kSmallSizes) {
    apply(benchmark::RegisterBenchmark(name.c_str(), run)->Arg(size));
  }
  for (const std::int64_t size : kBigSizes) {
    const std::int64_t iterations = Smoke() ? 1 : size >= (10 << 20) ? 3 : 5;
    apply(benchmark::RegisterBenchmark(name.c_str(), run)->Arg(size)->Iterations(iterations));
  }
}

void RealMicroseconds(benchmark::internal::Benchmark* benchmark) {
  benchmark->UseRealTime()->Unit(benchmark::kMicrosecond);
}

void ManualMilliseconds(benchmark::internal::Benchmark* benchmark) {
  benchmark->UseManualTime()->Unit(benchmark::kMillisecond);
}

// Registers every benchmark of `engine`, named Browser/<engine>/...
void RegisterEngine(Engine engine) {
  const std::string prefix = std::string("Browser/") + EngineName(engine) + "/";
  RealMicroseconds(benchmark::RegisterBenchmark((prefix + "Evaluate").c_str(), Evaluate, engine));
  for (const bool in : {true, false}) {
    RegisterSized(
        prefix + "Floor/" + (in ? "in" : "out"),
        [engine, in](benchmark::State& state) { Floor(state, engine, in); }, RealMicroseconds);
  }
  RegisterSized(
      prefix + "HostToPage", [engine](benchmark::State& state) { HostToPage(state, engine); },
      RealMicroseconds);
  for (const char* path : {"bridge", "library"}) {
    RegisterSized(
        prefix + "PageToHost/" + path,
        [engine, path = std::string(path)](benchmark::State& state) {
          PageToHost(state, engine, path);
        },
        ManualMilliseconds);
  }
}

}  // namespace

int main(int argc, char** argv) {
  for (Engine engine : kEngines) RegisterEngine(engine);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  // The browsers close before the program's statics go (the host manager
  // among them), while GTK can still finish what closing starts.
  Browser::CloseAll();
  benchmark::Shutdown();
  return 0;
}
