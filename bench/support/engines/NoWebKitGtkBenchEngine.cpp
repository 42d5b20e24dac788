// The WebKitGTK engine of the browser benchmarks in builds without that
// control: there is none, and the benchmarks say why.
#include <memory>
#include <stdexcept>

#include "support/BenchEngine.h"

namespace wevlin_bench {

std::unique_ptr<BenchEngine> StartWebKitGtkBenchEngine() {
  throw std::runtime_error(
      "this build has no WebKitGTK control (configure with -DWEVLIN_BUILD_WEBKITGTK=ON)");
}

}  // namespace wevlin_bench
