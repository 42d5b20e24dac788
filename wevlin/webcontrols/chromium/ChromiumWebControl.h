#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMWEBCONTROL_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMWEBCONTROL_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/webcontrols/BridgePolicy.h"
#include "wevlin/webcontrols/IBridgedWebControl.h"
#include "wevlin/webcontrols/PageCaller.h"
#include "wevlin/webcontrols/chromium/ChromiumError.h"
#include "wevlin/webcontrols/chromium/ChromiumOptions.h"
#include "wevlin/webcontrols/chromium/wevlin_chromium_export.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium {

// A browser control made of a headless Chromium: one browser process with
// one page, driven over the DevTools protocol on a pipe (no network port).
// Hand it to a HostControlInstance like any IWebControl, and give it the
// instance's HostAPI with SetHostAPI so that the page can call the host.
//
// The browser starts in the constructor, with a fresh temporary profile, and
// ends in the destructor: it is asked to close, then its whole process group
// is killed and reaped, and the profile directory is removed. Nothing is left
// behind. The application owns the control and destroys it after every
// HostControlInstance made on it; the control owns its browser process and
// profile, and owns neither its HostAPI nor its load observers.
//
// Who may talk to the host: the bridge policy (ChromiumOptions::bridgePolicy,
// SetBridgePolicy). By default only documents in the top frame, of the
// origin of the address the host last navigated to (Navigate, as
// LaunchToTarget does). Other documents get no globalThis.wevlinHost; a call
// that arrives from one anyway, as the browser reports its document, is
// answered with the record of a std::runtime_error "The host does not serve
// <origin>" (or "The host does not serve frames (<origin>)") and the log line
// "ChromiumWebControl: refused <function> from <origin> (<url>)", and no
// service is entered. While the top document's origin is not allowed,
// ExecuteScript refuses to run anything in it. A host service asks
// CurrentCaller() which document made the call it serves.
//
// Page to host: before any script of an allowed document runs, the control
// defines globalThis.wevlinHost there, an object with the five host functions
// tavoHostMethod(descriptorJson, payload), tavoHostEvent(descriptorJson,
// payload), tavoHostPing(), tavoHost_WebSideServiceListUpdate(action,
// listJson) and tavoHost_WebSideStartHandShake(). Each returns a Promise that
// resolves with the HostAPI's answer text exactly (exception records
// included), or rejects with an Error when there is no HostAPI or the HostAPI
// failed with something other than a standard exception. The calls are
// served on the application's thread by PumpEvents/RunUntil.
//
// The application's thread: the control has no message loop of its own.
// Everything the browser reports (finished loads, calls of the page) is
// queued and delivered by PumpEvents or RunUntil, on the thread that calls
// them; load observers and the HostAPI are called there and nowhere else.
// ExecuteScript waits for its answer without delivering anything: events
// that arrive meanwhile are delivered by a later PumpEvents, never
// re-entrantly. Create, navigate, pump and destroy the control on that one
// thread, and do not destroy it from inside a delivery (a load observer or a
// host call). ExecuteScript alone may also be called from other threads while
// the control lives: the reply callbacks of the asynchronous services call
// into the page from whichever thread answers, and the protocol connection
// serialises the commands and routes each answer to its caller.
//
// Texts: the browser works with UTF-8. Bytes of a script or URL that are not
// valid UTF-8 are sent as U+FFFD (one per maximal ill-formed sequence, as a
// browser decodes them), so the page sees U+FFFD where they were. Lone
// surrogates that the page returns or passes to the host arrive as U+FFFD
// too. Answers of the HostAPI reach the page unchanged when they are valid
// UTF-8, with U+FFFD for ill-formed bytes.
//
// Failures: a browser that cannot start gives a ChromiumError from the
// constructor; a browser that has exited, or does not answer within
// ChromiumOptions::commandTimeout, gives an IWebControl::ScriptException from
// ExecuteScript (calls in flight included) and a ChromiumError from the other
// operations, with a text that names the problem, such as "The browser
// exited (killed by signal 9)". When the page's renderer process crashes
// (logged as "ChromiumWebControl: the page's renderer process crashed"),
// ExecuteScript and SaveScreenshot fail at once with "The page's renderer
// process crashed" until the next Navigate loads a page again. No operation
// waits longer than its time limit, and the destructor always finishes.
class WEVLIN_CHROMIUM_EXPORT ChromiumWebControl : public WebControls::IBridgedWebControl {
 public:
  // Starts a browser with default options. See the other constructor.
  ChromiumWebControl();

  // Starts a browser as `options` say and opens its page (about:blank).
  // Throws ChromiumError(LaunchFailed) when the browser cannot start, for
  // instance "Cannot start the browser: /usr/bin/chromium does not exist or
  // is not executable (install the Debian package chromium)", or when it
  // exits or does not answer during start-up.
  explicit ChromiumWebControl(ChromiumOptions options);

  ChromiumWebControl(const ChromiumWebControl&) = delete;
  ChromiumWebControl& operator=(const ChromiumWebControl&) = delete;

  // Closes the browser, kills what is left of its process group, reaps it
  // and removes its profile. Events still queued are dropped.
  ~ChromiumWebControl() override;

  // IWebControl and IBridgedWebControl

  // Starts loading `target` (a URL) in the page and returns at once. The end
  // of the load is reported to the load observers by a later PumpEvents. A
  // navigation that fails still ends in a load (of the browser's error page)
  // and writes the log line "ChromiumWebControl: navigation to <url> failed:
  // <reason>". Throws ChromiumError when the browser is gone or does not
  // take the command.
  void Navigate(std::string target) override;

  // Runs `script` in the page's main frame, waits for it, and returns its
  // value as text. The browser copies the value into its answer as JSON
  // (one Runtime.evaluate with returnByValue), and the text is:
  //  - a string: the string as it is;
  //  - undefined, null or a function: "";
  //  - a number, boolean or BigInt: as JavaScript writes it ("1.5", "1e+21",
  //    "NaN", "-Infinity", "0" for minus zero, a BigInt's digits);
  //  - an object or array: the JSON text of the browser's copy, keys in the
  //    page's order and numbers as JavaScript writes them, as in
  //    {"b":[1,"x",null],"a":{"c":true}}. Undefined members are left out;
  //    undefined elements, holes, NaN and Infinity are null. The copy takes
  //    own enumerable properties and does not call toJSON, so a Date, Map,
  //    RegExp, Promise or DOM node gives {} and a function inside an object
  //    gives {}.
  // Throws IWebControl::ScriptException when the script throws or does not
  // parse (message: what was thrown, e.g. "ReferenceError: nope is not
  // defined"; details: "line 1, column 1: nope()"); when the browser cannot
  // copy the value, which then has run: a symbol, a cyclic object such as
  // window, or a BigInt or symbol inside an object (message: "The browser
  // cannot copy the script's value (Object reference chain is too long)");
  // when the browser is gone or does not answer within the command
  // time-out (message: the problem; a script still running then is stopped);
  // and, running nothing, when the script is bigger than maxCallBytes, when
  // the top document's origin may not talk to the host ("The page's origin
  // <origin> is not allowed to talk to the host"), or when the document it
  // was checked against went away meanwhile ("The page's document changed
  // before the script ran").
  std::string ExecuteScript(std::string script) override;

  // Registers `observer` to be told of each finished load of the main frame,
  // by PumpEvents/RunUntil on the application's thread. Not owned;
  // registering an observer twice has no further effect.
  void AddLoadObserver(IWebControl::ILoadObserver* observer) override;

  // Forgets `observer`, also while a load is being delivered.
  void RemoveLoadObserver(IWebControl::ILoadObserver* observer) override;

  // The application's side

  // Sets the HostAPI that serves the page's calls (null: none, and the
  // page's calls are rejected). Not owned; it must outlive its use here.
  void SetHostAPI(Infrastructure::Interop::HostAPI* hostApi) override;

  // Returns the HostAPI set with SetHostAPI, or null.
  Infrastructure::Interop::HostAPI* GetHostAPI() const override;

  // Replaces the bridge policy. Documents loaded from now on get the bridge
  // as it says, and every later call and script is checked against it.
  void SetBridgePolicy(WebControls::BridgePolicy policy) override;

  // Returns the bridge policy.
  const WebControls::BridgePolicy& GetBridgePolicy() const override;

  // Returns the document that made the page's call being served, while a
  // HostAPI operation runs for it on the application's thread (inside a host
  // service, say); null otherwise. Valid until that operation returns.
  const WebControls::PageCaller* CurrentCaller() const override;

  // Delivers the events queued so far (finished loads, calls of the page),
  // oldest first, and returns how many were taken. A call of the page is
  // answered when its HostAPI operation returns. Inside a delivery (from a
  // load observer or a host service) it delivers nothing and returns 0.
  std::size_t PumpEvents() override;

  // Delivers events until `condition` returns true or `timeout` passes, and
  // returns the condition's last value. The condition is checked first, after
  // each batch of events, and at least every 10 ms. Returns early, with the
  // condition's value, once the browser has gone and no event remains.
  bool RunUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout) override;

  // Writes a PNG picture of the page's viewport to the file `path`. Throws
  // ChromiumError when the browser fails or the file cannot be written.
  void SaveScreenshot(const std::string& path) override;

  // Returns true while the browser's DevTools connection is open.
  bool IsBrowserRunning() const override;

  // Returns the browser's process id, which is also its process group id.
  std::int64_t BrowserProcessId() const;

  // Returns the temporary profile directory (removed at destruction).
  std::string ProfileDirectory() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMWEBCONTROL_H_
