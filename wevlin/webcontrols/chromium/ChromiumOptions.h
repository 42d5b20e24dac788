#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMOPTIONS_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMOPTIONS_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "wevlin/webcontrols/BridgePolicy.h"
#include "wevlin/webcontrols/PageDialog.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium {

// How a ChromiumWebControl starts and talks to its browser. A plain value,
// copied into the control at construction; the defaults suit most uses.
struct ChromiumOptions {
  // The browser executable. Empty means the WEVLIN_CHROMIUM environment
  // variable when set, else "/usr/bin/chromium" (Debian's package chromium).
  std::string executable;

  // Command-line arguments added after the control's own (which start the
  // browser headless, without GPU, network services or first-run work, with a
  // DevTools pipe and a fresh temporary profile).
  std::vector<std::string> extraArguments;

  // Which documents may reach the host through globalThis.wevlinHost, and so
  // which documents the host runs scripts in. The default: the top frame
  // only, and only the origin of the address the host last navigated to.
  WebControls::BridgePolicy bridgePolicy;

  // The largest call of the page, answer of the host or script of the host,
  // in bytes of text. Bigger ones are refused before they are copied around.
  std::size_t maxCallBytes = std::size_t{16} * 1024 * 1024;

  // Whether the browser runs without its sandbox although it could have one.
  // It always does when the process runs as root, where the browser cannot
  // start with it. Either way the control writes one log line saying so.
  bool disableSandbox = false;

  // Answers a dialog of the page (alert, confirm, prompt, beforeunload) at
  // once, so that it never stalls the host. Called on the control's protocol
  // thread: it must return quickly and must not call into the control. Unset:
  // alert, confirm and prompt are dismissed, and beforeunload is accepted so
  // that the host's navigation goes on.
  std::function<WebControls::PageDialogAnswer(const WebControls::PageDialog&)> dialogHandler;

  // Size of the page's viewport in CSS pixels; screenshots have this size.
  int windowWidth = 1280;
  int windowHeight = 800;

  // Longest wait for the browser to start and open the page.
  std::chrono::milliseconds startTimeout{30000};

  // Longest wait for the answer to any one command, a script included. A
  // script still running after it is stopped.
  std::chrono::milliseconds commandTimeout{30000};

  // Longest wait for the browser to close by itself at destruction before it
  // is killed.
  std::chrono::milliseconds closeTimeout{3000};

  // Whether the browser's own standard output and error stay attached to the
  // application's (for diagnosing the browser); by default they are discarded.
  bool showBrowserOutput = false;

  // Whether the page's console messages are written to the log, one line
  // each: "console.<type>: <text>" (delivered by PumpEvents).
  bool logConsoleMessages = false;

  // Whether every DevTools message is written to the log as it is sent
  // ("devtools >> <json>") and received ("devtools << <json>"), each cut to
  // its first 2000 bytes. Also switched on by the environment variable
  // WEVLIN_CHROMIUM_TRACE=1. For diagnosing the control.
  bool traceProtocol = false;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMOPTIONS_H_
