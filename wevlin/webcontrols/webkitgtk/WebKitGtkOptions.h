#ifndef WEVLIN_WEBCONTROLS_WEBKITGTK_WEBKITGTKOPTIONS_H_
#define WEVLIN_WEBCONTROLS_WEBKITGTK_WEBKITGTKOPTIONS_H_

#include <chrono>
#include <cstddef>
#include <functional>

#include "wevlin/webcontrols/BridgePolicy.h"
#include "wevlin/webcontrols/PageDialog.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk {

// How a WebKitGtkWebControl sets up its view. A plain value, copied into the
// control at construction; the defaults suit most uses.
struct WebKitGtkOptions {
  // Which documents may reach the host through globalThis.wevlinHost, and so
  // which documents the host runs scripts in. The default: the top frame
  // only, and only the origin of the address the host last navigated to.
  WebControls::BridgePolicy bridgePolicy;

  // The largest call of the page, answer of the host or script of the host,
  // in bytes of text. Bigger ones are refused before they are copied around.
  std::size_t maxCallBytes = std::size_t{16} * 1024 * 1024;

  // Answers a dialog of the page (alert, confirm, prompt, beforeunload) at
  // once, so that it never stalls the host. Called on the GTK main thread:
  // it must return quickly and must not call into the control. Unset:
  // alert, confirm and prompt are dismissed, and beforeunload is accepted so
  // that the host's navigation goes on.
  std::function<WebControls::PageDialogAnswer(const WebControls::PageDialog&)> dialogHandler;

  // Longest wait for a script of the host (ExecuteScript) or a screenshot.
  std::chrono::milliseconds scriptTimeout{30000};

  // Whether the page's console messages are written to the log, one line
  // each: "console.<type>: <text>", for console.log, info, warn (type
  // "warning"), error and debug in every frame; the arguments are joined by
  // blanks, objects written as JSON. WebKitGTK reports no console messages to
  // the application, so a script the control adds to every document passes
  // them on.
  bool logConsoleMessages = false;

  // Whether the view offers WebKit's web inspector (right click, Inspect
  // Element): for developing a page, not for shipping.
  bool enableDeveloperExtras = false;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk

#endif  // WEVLIN_WEBCONTROLS_WEBKITGTK_WEBKITGTKOPTIONS_H_
