// Calls between a page and the host through a real headless browser (the
// Chromium web control), on the one DevTools pipe:
//
//   Browser/Evaluate                    a bare Runtime.evaluate round trip
//                                       (ExecuteScript("1")), the floor for
//                                       anything that crosses the pipe
//   Browser/HostToPage/<bytes>          HostControlInstance::InvokeWebMethod
//                                       of the page's echo service
//   Browser/PageToHost/<path>/<bytes>   the page calls the host's echo
//                                       service, one call after another,
//                                       through the control's bridge
//                                       (wevlinHost.tavoHostMethod) or
//                                       through wevlin.js (page.invokeMethod)
//
// Payloads of 100 bytes and 100 KiB. Counters: p50_us and p99_us per call;
// items_per_second is calls per second. Host-to-page and evaluate times are
// taken on the host around each call; page-to-host times by the page
// (performance.now) around each call, each iteration being one batch of calls
// whose total is the iteration's (manual) time. The page's clock has coarse
// steps in a browser that is not cross-origin isolated (100 us in Chromium),
// reported as page_clock_us: page-side percentiles are good to one step, the
// mean (the iteration time over the calls) is exact.
//
// The browser starts once for the whole program. Without a browser (Debian
// package chromium not installed) every benchmark is skipped with the
// reason. WEVLIN_BENCH_SMOKE=1 makes the page's batches small, for a quick
// check that the benchmarks still run.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/EchoService.h"
#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/webcontrols/chromium/ChromiumWebControl.h"

#ifndef WEVLIN_BENCH_PAGES_DIR
#define WEVLIN_BENCH_PAGES_DIR "bench/pages"
#endif

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumWebControl;
using wevlin_bench::EchoService;

constexpr std::chrono::milliseconds kWait{60000};

bool Smoke() {
  const char* smoke = std::getenv("WEVLIN_BENCH_SMOKE");
  return smoke != nullptr && std::string(smoke) == "1";
}

// The browser with the benchmark page, logged in and ready, for the whole
// program; or the reason why there is none.
class Browser {
 public:
  static Browser& Shared() {
    static Browser browser;
    return browser;
  }

  const std::string& Error() const { return error_; }
  ChromiumWebControl& Control() { return *control_; }
  interop::HostControlInstance& Instance() { return *instance_; }
  interop::BaseServiceDescriptor& PageEcho() { return pageEcho_; }
  // The host's echo service (owned by the host manager).
  const EchoService& HostEcho() const { return *hostEcho_; }
  // The smallest step of the page's clock (performance.now), in microseconds.
  double PageClockStepUs() const { return pageClockStepUs_; }

  // Runs `script` and returns its value; an IWebControl::ScriptException
  // becomes a std::runtime_error.
  std::string Eval(const std::string& script) {
    try {
      return control_->ExecuteScript(script);
    } catch (const interop::IWebControl::ScriptException& e) {
      throw std::runtime_error("script failed: " + e.message + " " + e.details);
    }
  }

 private:
  Browser()
      : pageEcho_("bench.browser.Echo.client", "_2014_07"),
        target_("bench", "Benchmark page",
                std::string("file://") + WEVLIN_BENCH_PAGES_DIR + "/bench.html") {
    try {
      Start();
    } catch (const std::exception& e) {
      error_ = std::string("no browser benchmark: ") + e.what();
    }
  }

  ~Browser() {
    // API, instance, control: the order an application must use.
    if (control_) control_->SetHostAPI(nullptr);
    api_.reset();
    instance_.reset();
    control_.reset();
  }

  void Start() {
    Com::Velmora::TAVO::Wevlin::Infrastructure::Base::SetLogSink([](const std::string&) {});
    hostEcho_ = new EchoService("tavo.wevlin.infrastructure.services.bench.Echo.host", "_2014_07");
    interop::HostManager::TheInstance()->RegisterService(hostEcho_);
    control_ = std::make_unique<ChromiumWebControl>();
    instance_ = std::make_unique<interop::HostControlInstance>(control_.get());
    api_ = std::make_unique<interop::HostAPI>(instance_.get());
    control_->SetHostAPI(api_.get());
    instance_->LaunchToTarget(&target_);
    if (!control_->RunUntil([&] { return instance_->GetContentState() == interop::LoadedCanTalk; },
                            kWait)) {
      throw std::runtime_error(
          "the benchmark page did not finish its handshake (state " +
          interop::HostControlInstance::NameOfState(instance_->GetContentState()) + ")");
    }
    if (!control_->RunUntil([&] { return Eval("bench.ready()") == "true"; }, kWait)) {
      throw std::runtime_error("the benchmark page did not become ready");
    }
    pageClockStepUs_ = std::stod(Eval("bench.clock()")) * 1000.0;
  }

  std::string error_;
  EchoService* hostEcho_ = nullptr;
  double pageClockStepUs_ = 0;
  interop::BaseServiceDescriptor pageEcho_;
  interop::TargetConfig target_;
  std::unique_ptr<ChromiumWebControl> control_;
  std::unique_ptr<interop::HostControlInstance> instance_;
  std::unique_ptr<interop::HostAPI> api_;
};

// Per-call times in seconds, summarised into the benchmark's counters.
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

void Evaluate(benchmark::State& state) {
  Browser& browser = Browser::Shared();
  if (!browser.Error().empty()) {
    state.SkipWithError(browser.Error().c_str());
    return;
  }
  Latencies latencies;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    std::string value = browser.Control().ExecuteScript("1");
    latencies.Add(Since(start));
    benchmark::DoNotOptimize(value);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  latencies.Report(state);
}

void HostToPage(benchmark::State& state) {
  Browser& browser = Browser::Shared();
  if (!browser.Error().empty()) {
    state.SkipWithError(browser.Error().c_str());
    return;
  }
  const std::string payload(static_cast<std::size_t>(state.range(0)), 'x');
  if (browser.Instance().InvokeWebMethod(&browser.PageEcho(), payload) != payload) {
    state.SkipWithError("the page's echo service did not answer its payload");
    return;
  }
  Latencies latencies;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    std::string answer = browser.Instance().InvokeWebMethod(&browser.PageEcho(), payload);
    latencies.Add(Since(start));
    benchmark::DoNotOptimize(answer);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
  latencies.Report(state);
}

void PageToHost(benchmark::State& state, const std::string& path) {
  Browser& browser = Browser::Shared();
  if (!browser.Error().empty()) {
    state.SkipWithError(browser.Error().c_str());
    return;
  }
  const int size = static_cast<int>(state.range(0));
  const int batch = Smoke() ? 5 : (size > 1000 ? 100 : 500);
  Latencies latencies;
  int64_t calls = 0;
  for (auto _ : state) {
    const long served = browser.HostEcho().Calls();
    browser.Eval("bench.start('" + path + "', " + std::to_string(batch) + ", " +
                 std::to_string(size) + ")");
    // The host serves the calls while it waits. The condition looks only at
    // the host's side, so that waiting adds nothing to the pipe; the last
    // answer is then on its way, and the page is asked when it has arrived.
    const bool served_all = browser.Control().RunUntil(
        [&] { return browser.HostEcho().Calls() >= served + batch; }, kWait);
    if (!served_all || !browser.Control().RunUntil(
                           [&] { return browser.Eval("bench.done()") == "true"; }, kWait)) {
      state.SkipWithError("the page's calls did not end");
      break;
    }
    std::istringstream result(browser.Eval("bench.result()"));
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
  state.counters["page_clock_us"] = browser.PageClockStepUs();
}

void Sizes(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(100)->Arg(100 << 10); }

BENCHMARK(Evaluate)->Name("Browser/Evaluate")->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(HostToPage)
    ->Name("Browser/HostToPage")
    ->Apply(Sizes)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(PageToHost, bridge, std::string("bridge"))
    ->Name("Browser/PageToHost/bridge")
    ->Apply(Sizes)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PageToHost, library, std::string("library"))
    ->Name("Browser/PageToHost/library")
    ->Apply(Sizes)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
