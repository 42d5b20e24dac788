#ifndef WEVLIN_TESTS_E2E_SUPPORT_BROWSERFIXTURE_H_
#define WEVLIN_TESTS_E2E_SUPPORT_BROWSERFIXTURE_H_

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/Engine.h"
#include "support/RecordingPropertyListener.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/webcontrols/IBridgedWebControl.h"
#include "wevlin/webcontrols/chromium/ChromiumWebControl.h"

namespace wevlin_e2e {

// Base of the end-to-end tests that host a page: a fresh host manager with
// the startup-notification service, a web control of the engine under test
// (CurrentEngine: each test program runs once per engine), a
// HostControlInstance on it, a HostAPI given to the control, and a listener
// that records the instance's changes (states included). A test body is
// written once, against IBridgedWebControl, and holds for every engine.
//
// SetUp builds all of it; TearDown takes it down in the order an application
// must (listener, API, instance, control, manager) and then checks that the
// browser left nothing behind (Chromium: the browser process reaped, no
// running process of its process group or naming its profile, and no profile
// directory). A test may call ShutDown itself to check that earlier.
//
// Everything runs on the test's thread, which is the control's application
// thread: the waits below deliver the control's events.
class BrowserFixture : public ::testing::Test {
 protected:
  using ChromiumWebControl = Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumWebControl;
  using IBridgedWebControl = Com::Velmora::TAVO::Wevlin::WebControls::IBridgedWebControl;
  using HostAPI = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI;
  using HostContentState = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostContentState;
  using HostControlInstance =
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance;
  using HostManager = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostManager;
  using IHostServiceDescriptor =
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor;
  using Json = nlohmann::json;

  // The longest any test waits for the page.
  static constexpr std::chrono::milliseconds kWait{30000};

  BrowserFixture();
  ~BrowserFixture() override;

  void SetUp() override;
  void TearDown() override;

  // Returns what the control starts with; the defaults unless a test
  // overrides it.
  virtual ControlSettings Settings() const;

  // Returns the engine under test.
  static Engine TheEngine();

  // Returns the name with which the control of the engine under test starts
  // its log lines ("ChromiumWebControl", "WebKitGtkWebControl").
  static std::string ControlName();

  // Returns `chromium` or `webkitgtk`, as the engine under test: for the
  // texts that each engine words its own way (a script's error messages).
  static std::string ByEngine(const std::string& chromium, const std::string& webkitgtk);

  // Kills the process that runs the page, as a crash would.
  void CrashPage();

  // Returns the control as a ChromiumWebControl, or null on other engines.
  ChromiumWebControl* Chromium() const;

  // Registers `service` with the host manager (which owns it from now on).
  void RegisterService(IHostServiceDescriptor* service);

  // Registers page `pageName` as the target "e2e" and launches the instance
  // to it.
  void Launch(const std::string& pageName);

  // Delivers the control's events until the instance is in `state`; returns
  // whether it got there in time.
  bool WaitForState(HostContentState state, std::chrono::milliseconds timeout = kWait);

  // Launches `pageName` and waits until the page has logged in.
  void LaunchAndLogIn(const std::string& pageName = "handshake.html");

  // Runs `script` in the page and returns its value.
  std::string Eval(const std::string& script);

  // Runs `startScript`, which starts a call with window.e2e and returns its
  // number, delivers events until the call has settled, and returns its
  // outcome: {"done": true, "ok": true, "value": ...} or {"done": true,
  // "ok": false, "name": ..., "message": ..., "record": ...}.
  Json PageCall(const std::string& startScript);

  // Returns `text` written as a JavaScript string literal.
  static std::string JsString(const std::string& text);

  // Takes down everything SetUp built and checks that the browser left
  // nothing behind. Does nothing the second time.
  void ShutDown();

  // The control of the engine under test, owned by engine_.
  IBridgedWebControl* control_ = nullptr;
  std::unique_ptr<HostControlInstance> instance_;
  std::unique_ptr<HostAPI> api_;
  std::unique_ptr<wevlin_test::RecordingPropertyListener> listener_;

 private:
  std::unique_ptr<EngineControl> engine_;
  HostManager* previousManager_ = nullptr;
  bool managerInstalled_ = false;
  std::vector<IHostServiceDescriptor*> services_;
};

// Checks that nothing of the browser whose process (group) id was `pid` and
// whose profile was `profileDirectory` is left: the browser, a child of this
// process, neither runs nor waits to be reaped; no other process of its group
// or naming its profile runs; and the directory is gone.
void ExpectNothingLeft(std::int64_t pid, const std::string& profileDirectory);

}  // namespace wevlin_e2e

#endif  // WEVLIN_TESTS_E2E_SUPPORT_BROWSERFIXTURE_H_
