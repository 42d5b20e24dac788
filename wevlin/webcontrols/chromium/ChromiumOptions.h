#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMOPTIONS_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMOPTIONS_H_

#include <chrono>
#include <string>
#include <vector>

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium {

// How a ChromiumWebControl starts and talks to its browser. A plain value,
// copied into the control at construction; the defaults suit most uses.
struct ChromiumOptions {
  // The browser executable. Empty means the WEVLIN_CHROMIUM environment
  // variable when set, else "/usr/bin/chromium" (Debian's package chromium).
  std::string executable;

  // Command-line arguments added after the control's own (which start the
  // browser headless, without sandbox, GPU, network services or first-run
  // work, with a DevTools pipe and a fresh temporary profile).
  std::vector<std::string> extraArguments;

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
