#ifndef WEVLIN_WEBCONTROLS_IBRIDGEDWEBCONTROL_H_
#define WEVLIN_WEBCONTROLS_IBRIDGEDWEBCONTROL_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/webcontrols/BridgePolicy.h"
#include "wevlin/webcontrols/PageCaller.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls {

// A web control of this project: an IWebControl that exposes a HostAPI to
// the documents its bridge policy allows (as globalThis.wevlinHost) and
// delivers its browser's events on the application's thread. Every control
// here (the headless Chromium, the WebKitGTK view) implements it, so code
// written against this interface runs on either engine.
//
// The application owns the control and destroys it, through this interface
// if it likes, after every HostControlInstance made on it. The control owns
// neither its HostAPI nor its load observers.
//
// Threads: every method is called on the application's thread that drives
// the control, except IWebControl::ExecuteScript, which a control also
// accepts from other threads (the reply callbacks of the asynchronous
// services call into the page from whichever thread answers). Each control's
// header says how it waits.
class IBridgedWebControl : public Infrastructure::Interop::IWebControl {
 public:
  IBridgedWebControl(const IBridgedWebControl&) = delete;
  IBridgedWebControl& operator=(const IBridgedWebControl&) = delete;

  // Closes the browser and frees what the control holds.
  ~IBridgedWebControl() override = default;

  // Sets the HostAPI that serves the page's calls (null: none, and the
  // page's calls are rejected). Not owned; it must outlive its use here.
  virtual void SetHostAPI(Infrastructure::Interop::HostAPI* hostApi) = 0;

  // Returns the HostAPI set with SetHostAPI, or null.
  virtual Infrastructure::Interop::HostAPI* GetHostAPI() const = 0;

  // Replaces the bridge policy. Documents loaded from now on get the bridge
  // as it says, and every later call and script is checked against it.
  virtual void SetBridgePolicy(BridgePolicy policy) = 0;

  // Returns the bridge policy.
  virtual const BridgePolicy& GetBridgePolicy() const = 0;

  // Returns the document that made the page's call being served, while a
  // HostAPI operation runs for it on the application's thread (inside a host
  // service, say); null otherwise. Valid until that operation returns.
  virtual const PageCaller* CurrentCaller() const = 0;

  // Delivers the events queued so far (finished loads, calls of the page),
  // oldest first, and returns how many were taken. Inside a delivery (from a
  // load observer or a host service) it delivers nothing and returns 0.
  virtual std::size_t PumpEvents() = 0;

  // Delivers events until `condition` returns true or `timeout` passes, and
  // returns the condition's last value. The condition is checked first, after
  // each batch of events, and at least every 10 ms.
  virtual bool RunUntil(const std::function<bool()>& condition,
                        std::chrono::milliseconds timeout) = 0;

  // Writes a PNG picture of the page to the file `path`. Throws a
  // std::runtime_error (the control's own error type) when it cannot.
  virtual void SaveScreenshot(const std::string& path) = 0;

  // Returns true while the browser that shows the page is alive and
  // connected: false once it has exited or crashed.
  virtual bool IsBrowserRunning() const = 0;

 protected:
  IBridgedWebControl() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls

#endif  // WEVLIN_WEBCONTROLS_IBRIDGEDWEBCONTROL_H_
