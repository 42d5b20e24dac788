// The e2e support of a build with the WebKitGTK control: the control's view
// in an offscreen GTK window, on the test's thread, which is GTK's main
// thread.
#include <gtk/gtk.h>

#include <chrono>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "support/Engine.h"
#include "wevlin/webcontrols/webkitgtk/WebKitGtkWebControl.h"

namespace wevlin_e2e {

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::WebKitGtkOptions;
using Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::WebKitGtkWebControl;

// Initialises GTK once per program; returns false without a display.
bool GtkReady() {
  static const bool ready = gtk_init_check(nullptr, nullptr) != FALSE;
  return ready;
}

class WebKitGtkEngineControl : public EngineControl {
 public:
  explicit WebKitGtkEngineControl(const ControlSettings& settings) {
    WebKitGtkOptions options;
    options.bridgePolicy = settings.bridgePolicy;
    options.maxCallBytes = settings.maxCallBytes;
    options.scriptTimeout = settings.scriptTimeout;
    options.dialogHandler = settings.dialogHandler;
    options.logConsoleMessages = settings.logConsoleMessages;
    window_ = gtk_offscreen_window_new();
    gtk_window_set_default_size(GTK_WINDOW(window_), 1280, 800);
    control_ = std::make_unique<WebKitGtkWebControl>(std::move(options));
    gtk_container_add(GTK_CONTAINER(window_), control_->Widget());
    gtk_widget_show_all(window_);
  }

  ~WebKitGtkEngineControl() override { Close(); }

  IBridgedWebControl& Control() override { return *control_; }

  void CrashPage() override { webkit_web_view_terminate_web_process(control_->View()); }

  void Close() override {
    if (window_ == nullptr) return;
    control_.reset();
    gtk_widget_destroy(window_);
    window_ = nullptr;
    // Let GTK and WebKit finish what the destruction started.
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
  }

 private:
  GtkWidget* window_ = nullptr;
  std::unique_ptr<WebKitGtkWebControl> control_;
};

}  // namespace

std::unique_ptr<EngineControl> StartWebKitGtk(const ControlSettings& settings) {
  if (!GtkReady()) {
    ADD_FAILURE() << "GTK cannot open a display: run the WebKitGTK tests under xvfb-run";
    return nullptr;
  }
  return std::make_unique<WebKitGtkEngineControl>(settings);
}

}  // namespace wevlin_e2e
