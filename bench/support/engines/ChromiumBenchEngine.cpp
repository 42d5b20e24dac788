// The Chromium engine of the browser benchmarks: a headless Chromium control
// with default options, nothing around it.
#include <memory>

#include "support/BenchEngine.h"
#include "wevlin/webcontrols/chromium/ChromiumWebControl.h"

namespace wevlin_bench {

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumWebControl;

// Owns one headless Chromium control (and so its browser process).
// REQUIRES: the thread that created it.
class ChromiumBenchEngine : public BenchEngine {
 public:
  // Starts the browser; throws its ChromiumError when it cannot.
  ChromiumBenchEngine() : control_(std::make_unique<ChromiumWebControl>()) {}

  IBridgedWebControl& Control() override { return *control_; }

 private:
  std::unique_ptr<ChromiumWebControl> control_;
};

}  // namespace

std::unique_ptr<BenchEngine> StartChromiumBenchEngine() {
  return std::make_unique<ChromiumBenchEngine>();
}

}  // namespace wevlin_bench
