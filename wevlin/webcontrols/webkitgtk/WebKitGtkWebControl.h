#ifndef WEVLIN_WEBCONTROLS_WEBKITGTK_WEBKITGTKWEBCONTROL_H_
#define WEVLIN_WEBCONTROLS_WEBKITGTK_WEBKITGTKWEBCONTROL_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/webcontrols/BridgePolicy.h"
#include "wevlin/webcontrols/IBridgedWebControl.h"
#include "wevlin/webcontrols/PageCaller.h"
#include "wevlin/webcontrols/webkitgtk/WebKitGtkError.h"
#include "wevlin/webcontrols/webkitgtk/WebKitGtkOptions.h"
#include "wevlin/webcontrols/webkitgtk/wevlin_webkitgtk_export.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk {

// A browser control made of a WebKitGTK web view (WebKitWebView, GTK 3) that
// the application places in its own window. Hand it to a HostControlInstance
// like any IWebControl, give it the instance's HostAPI with SetHostAPI, and
// pack Widget() into a GTK container.
//
// Ownership: the control creates the view and holds one reference to it;
// packing the widget adds the container's. The application owns the control
// and destroys it after every HostControlInstance made on it, and before
// GTK itself goes away; the view is then disconnected from the control and
// freed when its last reference goes. The control owns neither its HostAPI
// nor its load observers.
//
// Who may talk to the host: the bridge policy (WebKitGtkOptions::bridgePolicy,
// SetBridgePolicy), as in every control of this project. By default only the
// top document, of the origin of the address the host last navigated to.
// WebKitGTK does not tell which document posted a message, and every frame of
// the page reaches the view's message handlers, so the bridge says it itself:
// the page half of the bridge is injected into the top frame only (into every
// frame when the policy allows subframes), and each control has a random key
// that only the injected bridge holds. With every call it sends the key and
// what it read of its document when the document started, before any script
// of the page ran: origin, URL and whether it is the top frame; no script of
// the page can change those. A message without the key (a frame or a page
// script posting to the handler itself) is answered with the record of a
// std::runtime_error "The host does not serve this document" and the log line
// "WebKitGtkWebControl: refused <function> without the bridge's key (in
// <url of the top document>)". Every call is then checked against the
// policy as it is when the call is served, for the document the bridge
// named (CurrentCaller() reports it): a call refused is answered with the
// record of a std::runtime_error "The host does not serve <origin>" (or "The
// host does not serve frames (<origin>)") and the log line
// "WebKitGtkWebControl: refused <function> from <origin> (<url>)", and no
// service is entered. Popups: the view opens none unless the application
// handles its "create" signal; a popup's view made with
// webkit_web_view_new_with_related_view shares this view's user content, so
// give it a user content manager of its own instead. While the top document's
// origin is not allowed, ExecuteScript refuses to run anything.
//
// Threads: GTK's. Create, navigate, pump and destroy the control on the GTK
// main thread (the thread that owns the default main context). Everything
// the view reports (finished loads, calls of the page) is delivered on that
// thread, from the GTK main loop when the application runs one, or by
// PumpEvents/RunUntil when it does not (tests and tools). ExecuteScript
// waits for its answer by iterating the main context without delivering
// anything: events that arrive meanwhile are delivered after it returns,
// never re-entrantly, so a host service is never entered again while it
// runs a script. ExecuteScript alone may also be called from other threads:
// the call is run on the main thread and the caller waits for it (the reply
// callbacks of the asynchronous services answer from worker threads). It
// does not deadlock while the main thread itself waits in ExecuteScript,
// PumpEvents or RunUntil, or runs the main loop: the script starts, and its
// answer comes back, whenever the main thread iterates the main context. A
// main thread that does neither (blocked on a lock, joining the caller)
// leaves the caller waiting until WebKitGtkOptions::scriptTimeout passes.
// REQUIRES: gtk_init (or gtk_application's start-up) before the first control.
//
// Failures: ExecuteScript throws IWebControl::ScriptException, the other
// operations WebKitGtkError. When the view's web process ends (logged as
// "WebKitGtkWebControl: the page's web process ended (<reason>)"),
// ExecuteScript and SaveScreenshot fail at once with "The page's web process
// ended (<reason>)" until the next Navigate loads a page again, and
// IsBrowserRunning returns false until then.
class WEVLIN_WEBKITGTK_EXPORT WebKitGtkWebControl : public WebControls::IBridgedWebControl {
 public:
  // Creates a view with default options. See the other constructor.
  WebKitGtkWebControl();

  // Creates a view as `options` say, showing an empty page.
  // REQUIRES: the GTK main thread, GTK initialised.
  explicit WebKitGtkWebControl(WebKitGtkOptions options);

  WebKitGtkWebControl(const WebKitGtkWebControl&) = delete;
  WebKitGtkWebControl& operator=(const WebKitGtkWebControl&) = delete;

  // Disconnects the view, drops queued events and releases the control's
  // reference to the view. REQUIRES: the GTK main thread.
  ~WebKitGtkWebControl() override;

  // Returns the view as a widget to pack into the application's window. The
  // control keeps its own reference; do not unref it.
  GtkWidget* Widget() const;

  // Returns the view, for settings the control does not cover.
  WebKitWebView* View() const;

  // IWebControl and IBridgedWebControl

  // Starts loading `target` (a URL; bytes that are not valid UTF-8 become
  // U+FFFD) and returns at once. The end of the load
  // of the main frame is reported to the load observers on the GTK thread. A
  // navigation that fails still ends in a load and writes the log line
  // "WebKitGtkWebControl: navigation to <url> failed: <reason>".
  void Navigate(std::string target) override;

  // Runs `script` in the top document, waits for it (at most
  // WebKitGtkOptions::scriptTimeout), and returns its value as text, as WebKit
  // copies it out of the page:
  //  - a string: the string as it is (U+0000 included);
  //  - undefined or null: "";
  //  - a number or boolean: as JavaScript writes it ("1.5", "1e+21", "NaN",
  //    "-Infinity", "0" for minus zero, "true");
  //  - an object or array: its JSON text, with keys in an order of WebKit's
  //    choosing, undefined elements, holes, NaN and Infinity as null (a Date
  //    gives its ISO text, a Map {});
  //  - a value WebKit cannot copy (a function, a Promise, a symbol, a DOM
  //    node, window) or a BigInt: "" (the script has run).
  // Throws IWebControl::ScriptException when the script throws or does not
  // parse (message: what was thrown, e.g. "ReferenceError: Can't find
  // variable: nope"; details: where, e.g. "line 1, column 5 of <document
  // URL>"), when the time-out passes ("The script did not finish within
  // <n> ms": WebKit stops a script only with its web process, so on the main
  // thread the control ends the page's web process, as a crash would; a
  // worker thread only stops waiting), when the web process has ended, and,
  // running nothing, when the script is bigger than maxCallBytes
  // or the top document's origin may not talk to the host ("The page's
  // origin <origin> is not allowed to talk to the host"). Bytes of `script`
  // that are not valid UTF-8 reach the page as U+FFFD.
  std::string ExecuteScript(std::string script) override;

  // Registers `observer` for finished loads of the main frame. Not owned;
  // registering an observer twice has no further effect.
  void AddLoadObserver(IWebControl::ILoadObserver* observer) override;

  // Forgets `observer`, also while a load is being delivered.
  void RemoveLoadObserver(IWebControl::ILoadObserver* observer) override;

  void SetHostAPI(Infrastructure::Interop::HostAPI* hostApi) override;
  Infrastructure::Interop::HostAPI* GetHostAPI() const override;
  void SetBridgePolicy(WebControls::BridgePolicy policy) override;
  const WebControls::BridgePolicy& GetBridgePolicy() const override;
  const WebControls::PageCaller* CurrentCaller() const override;

  // Iterates the GTK main context without blocking and delivers the events
  // queued so far; returns how many were delivered.
  std::size_t PumpEvents() override;

  // Iterates the GTK main context, delivering events, until `condition`
  // returns true or `timeout` passes; returns the condition's last value.
  bool RunUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout) override;

  // Writes a PNG picture of the visible part of the page to `path`. The view
  // must be in a realised window (an offscreen one will do). Throws
  // WebKitGtkError when it cannot.
  void SaveScreenshot(const std::string& path) override;

  // Returns false once the view's web process has ended, until the next
  // Navigate.
  bool IsBrowserRunning() const override;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk

#endif  // WEVLIN_WEBCONTROLS_WEBKITGTK_WEBKITGTKWEBCONTROL_H_
