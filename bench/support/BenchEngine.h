#ifndef WEVLIN_BENCH_SUPPORT_BENCHENGINE_H_
#define WEVLIN_BENCH_SUPPORT_BENCHENGINE_H_

#include <memory>

#include "wevlin/webcontrols/IBridgedWebControl.h"

namespace wevlin_bench {

// The browser engines the browser benchmarks run on.
enum class Engine { Chromium, WebKitGtk };

// Returns "chromium" or "webkitgtk", as the benchmark names spell it.
const char* EngineName(Engine engine);

// One started web control of an engine, with what the engine needs around it
// (a window for a windowed engine), so that the benchmarks can be written
// against IBridgedWebControl alone. Made by StartBenchEngine; the benchmark
// program owns it and destroys it, after every HostControlInstance made on
// its control, on the thread that started it.
// REQUIRES: the thread that started it (for WebKitGTK, GTK's main thread).
class BenchEngine {
 public:
  using IBridgedWebControl = Com::Velmora::TAVO::Wevlin::WebControls::IBridgedWebControl;

  BenchEngine(const BenchEngine&) = delete;
  BenchEngine& operator=(const BenchEngine&) = delete;
  virtual ~BenchEngine();

  // Returns the control; it lives as long as this object.
  virtual IBridgedWebControl& Control() = 0;

 protected:
  BenchEngine() = default;
};

// Starts a control of `engine`. Throws std::runtime_error with the reason
// when it cannot: the engine is not in this build, there is no display for
// it, or its browser does not start.
std::unique_ptr<BenchEngine> StartBenchEngine(Engine engine);

// Starts a headless Chromium control. Used by StartBenchEngine.
std::unique_ptr<BenchEngine> StartChromiumBenchEngine();

// Starts a WebKitGTK control in an offscreen window (builds with that
// control), or throws (the others). Used by StartBenchEngine.
std::unique_ptr<BenchEngine> StartWebKitGtkBenchEngine();

}  // namespace wevlin_bench

#endif  // WEVLIN_BENCH_SUPPORT_BENCHENGINE_H_
