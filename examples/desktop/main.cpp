// wevlin_desktop: a GTK 3 window with native widgets beside a WebKitGTK view
// that hosts the bundled page (page/index.html) through wevlin. The side
// panel's buttons call the page through its proxies, its list shows what
// crossed, and its status line follows the content state.
//
//   wevlin_desktop                          # until the window is closed
//   wevlin_desktop --screenshot out.png     # plays the user, saves a picture
//   wevlin_desktop --quit-after-ms 5000     # closes by itself
//
// Exits with 0; with 1 when a --screenshot run failed; with 2 when the
// program cannot start (bad option, no display, the web view failed).

#include <gtk/gtk.h>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "DesktopHost.h"
#include "DesktopWindow.h"
#include "ScreenshotRun.h"
#include "wevlin/webcontrols/webkitgtk/WebKitGtkWebControl.h"

namespace {

namespace webkitgtk = Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk;

const char kUsage[] =
    "usage: wevlin_desktop [--screenshot PATH] [--quit-after-ms N]\n"
    "  --screenshot PATH   wait until the page has logged in and made its calls, send it a\n"
    "                      session and a refresh, save a PNG of the whole window and exit\n"
    "  --quit-after-ms N   close after N ms; with --screenshot, give up after N ms\n"
    "                      (default 30000)\n";

struct Options {
  bool help = false;
  std::string screenshot;
  long quitAfterMs = 0;
};

// Reads the command line into `options`; returns false, after saying why,
// when it does not read.
bool ReadOptions(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string option = argv[i];
    if (option == "--help") {
      options.help = true;
      continue;
    }
    if (i + 1 >= argc || (option != "--screenshot" && option != "--quit-after-ms")) {
      std::cerr << "wevlin_desktop: unknown option or missing value: " << option << "\n" << kUsage;
      return false;
    }
    const std::string value = argv[++i];
    if (option == "--screenshot") {
      options.screenshot = value;
    } else {
      char* end = nullptr;
      options.quitAfterMs = std::strtol(value.c_str(), &end, 10);
      if (*end != '\0' || options.quitAfterMs <= 0) {
        std::cerr << "wevlin_desktop: --quit-after-ms needs a positive number, not " << value
                  << "\n";
        return false;
      }
    }
  }
  return true;
}

gboolean QuitMainLoop(gpointer /*unused*/) {
  gtk_main_quit();
  return G_SOURCE_REMOVE;
}

}  // namespace

int main(int argc, char** argv) {
  if (gtk_init_check(&argc, &argv) == FALSE) {
    std::cerr << "wevlin_desktop: cannot open a display (without one, run it under xvfb-run -a)\n";
    return 2;
  }
  Options options;
  if (!ReadOptions(argc, argv, options)) return 2;
  if (options.help) {
    std::cout << kUsage;
    return 0;
  }

  try {
    webkitgtk::WebKitGtkOptions controlOptions;
    controlOptions.logConsoleMessages = true;  // the page's console goes to the list too
    webkitgtk::WebKitGtkWebControl control(controlOptions);

    wevlin_desktop::DesktopHost* host = nullptr;  // set below, before any click
    wevlin_desktop::DesktopWindow window(
        control.Widget(),
        {[&] { host->SendSession(); }, [&] { host->SendRefresh(); }, [&] { host->LaunchPage(); }});
    wevlin_desktop::DesktopHost desktopHost(
        control, window, std::string("file://") + WEVLIN_DESKTOP_PAGE_DIR + "/index.html");
    host = &desktopHost;

    std::unique_ptr<wevlin_desktop::ScreenshotRun> run;
    if (!options.screenshot.empty()) {
      const long limitMs = options.quitAfterMs > 0 ? options.quitAfterMs : 30000;
      run = std::make_unique<wevlin_desktop::ScreenshotRun>(desktopHost, window, options.screenshot,
                                                            std::chrono::milliseconds(limitMs));
      run->Start();
    } else if (options.quitAfterMs > 0) {
      g_timeout_add(static_cast<guint>(options.quitAfterMs), &QuitMainLoop, nullptr);
    }

    window.Show();
    desktopHost.LaunchPage();
    gtk_main();  // the control delivers the page's calls from here

    if (run == nullptr) return 0;
    if (run->ExitStatus() == 0) return 0;
    std::cerr << "wevlin_desktop: "
              << (run->ExitStatus() < 0 ? "the window was closed before the picture was taken"
                                        : run->Failure())
              << "\n";
    return 1;
  } catch (const webkitgtk::WebKitGtkError& error) {
    std::cerr << "wevlin_desktop: " << error.what() << "\n";
  } catch (const std::exception& error) {
    std::cerr << "wevlin_desktop: " << error.what() << "\n";
  }
  return 2;
}
