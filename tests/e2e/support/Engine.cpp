#include "support/Engine.h"

#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/BrowserFixture.h"

namespace wevlin_e2e {

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumOptions;
using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumWebControl;

// A ChromiumWebControl; closing it checks that the browser's processes were
// reaped and its profile removed.
class ChromiumEngineControl : public EngineControl {
 public:
  explicit ChromiumEngineControl(const ControlSettings& settings) {
    ChromiumOptions options;
    options.bridgePolicy = settings.bridgePolicy;
    options.maxCallBytes = settings.maxCallBytes;
    options.commandTimeout = settings.scriptTimeout;
    options.dialogHandler = settings.dialogHandler;
    options.logConsoleMessages = settings.logConsoleMessages;
    options.extraArguments = settings.chromiumArguments;
    control_ = std::make_unique<ChromiumWebControl>(std::move(options));
  }

  ~ChromiumEngineControl() override { Close(); }

  IBridgedWebControl& Control() override { return *control_; }

  ChromiumWebControl* Chromium() override { return control_.get(); }

  void CrashPage() override { ::kill(static_cast<pid_t>(control_->BrowserProcessId()), SIGKILL); }

  void Close() override {
    if (!control_) return;
    const std::int64_t pid = control_->BrowserProcessId();
    const std::string profile = control_->ProfileDirectory();
    control_.reset();
    ExpectNothingLeft(pid, profile);
  }

 private:
  std::unique_ptr<ChromiumWebControl> control_;
};

}  // namespace

EngineControl::~EngineControl() = default;

EngineControl::ChromiumWebControl* EngineControl::Chromium() { return nullptr; }

Engine CurrentEngine() {
  const char* name = std::getenv("WEVLIN_E2E_ENGINE");
  if (name == nullptr || *name == '\0' || std::string(name) == "chromium") return Engine::Chromium;
  if (std::string(name) == "webkitgtk") return Engine::WebKitGtk;
  std::fprintf(stderr, "WEVLIN_E2E_ENGINE=%s names no engine (chromium, webkitgtk)\n", name);
  std::abort();
}

const char* EngineName(Engine engine) {
  return engine == Engine::Chromium ? "chromium" : "webkitgtk";
}

std::unique_ptr<EngineControl> StartEngine(Engine engine, const ControlSettings& settings) {
  if (engine == Engine::WebKitGtk) return StartWebKitGtk(settings);
  return std::make_unique<ChromiumEngineControl>(settings);
}

}  // namespace wevlin_e2e
