#include "support/BenchEngine.h"

namespace wevlin_bench {

const char* EngineName(Engine engine) {
  return engine == Engine::WebKitGtk ? "webkitgtk" : "chromium";
}

BenchEngine::~BenchEngine() = default;

std::unique_ptr<BenchEngine> StartBenchEngine(Engine engine) {
  return engine == Engine::WebKitGtk ? StartWebKitGtkBenchEngine() : StartChromiumBenchEngine();
}

}  // namespace wevlin_bench
