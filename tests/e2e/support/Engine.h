#ifndef WEVLIN_TESTS_E2E_SUPPORT_ENGINE_H_
#define WEVLIN_TESTS_E2E_SUPPORT_ENGINE_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "wevlin/webcontrols/BridgePolicy.h"
#include "wevlin/webcontrols/IBridgedWebControl.h"
#include "wevlin/webcontrols/PageDialog.h"
#include "wevlin/webcontrols/chromium/ChromiumWebControl.h"

namespace wevlin_e2e {

// The browser engines the end-to-end tests run on. One test program serves
// every engine: CTest runs it once per engine, with the environment variable
// WEVLIN_E2E_ENGINE naming the engine ("chromium" or "webkitgtk").
enum class Engine { Chromium, WebKitGtk };

// Returns the engine WEVLIN_E2E_ENGINE names; Chromium when it is unset.
// Fails the program with a message for a name it does not know.
Engine CurrentEngine();

// Returns "chromium" or "webkitgtk".
const char* EngineName(Engine engine);

// What a test asks of its control, whatever the engine: each engine's
// factory turns it into that control's own options.
struct ControlSettings {
  using BridgePolicy = Com::Velmora::TAVO::Wevlin::WebControls::BridgePolicy;
  using PageDialog = Com::Velmora::TAVO::Wevlin::WebControls::PageDialog;
  using PageDialogAnswer = Com::Velmora::TAVO::Wevlin::WebControls::PageDialogAnswer;

  BridgePolicy bridgePolicy;
  std::size_t maxCallBytes = std::size_t{16} * 1024 * 1024;
  // The longest wait for a script of the host (Chromium: for any command).
  std::chrono::milliseconds scriptTimeout{30000};
  std::function<PageDialogAnswer(const PageDialog&)> dialogHandler;
  bool logConsoleMessages = false;
  // Added to the Chromium command line; other engines ignore them.
  std::vector<std::string> chromiumArguments;
};

// One running control of an engine, with what it needs around it (a window
// for a windowed engine). Owned by the test; destroy it on the test's thread.
class EngineControl {
 public:
  using IBridgedWebControl = Com::Velmora::TAVO::Wevlin::WebControls::IBridgedWebControl;
  using ChromiumWebControl = Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumWebControl;

  virtual ~EngineControl();

  // Returns the control.
  virtual IBridgedWebControl& Control() = 0;

  // Returns the control as a ChromiumWebControl, or null on other engines.
  virtual ChromiumWebControl* Chromium();

  // Kills the process that runs the page, as a crash would.
  virtual void CrashPage() = 0;

  // Destroys the control and checks (with test assertions) that it left
  // nothing behind. Does nothing the second time.
  virtual void Close() = 0;

 protected:
  EngineControl() = default;
};

// Starts a control of `engine` as `settings` say.
std::unique_ptr<EngineControl> StartEngine(Engine engine, const ControlSettings& settings);

// Starts a WebKitGTK control in an offscreen window (the builds with that
// control), or fails the test (the others). Used by StartEngine.
std::unique_ptr<EngineControl> StartWebKitGtk(const ControlSettings& settings);

}  // namespace wevlin_e2e

#endif  // WEVLIN_TESTS_E2E_SUPPORT_ENGINE_H_
