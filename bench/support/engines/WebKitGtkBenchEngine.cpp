// The WebKitGTK engine of the browser benchmarks, in builds with that
// control: the control's view in an offscreen GTK window, on the benchmark
// program's main thread, which is GTK's main thread.
#include <gtk/gtk.h>

#include <memory>
#include <stdexcept>

#include "support/BenchEngine.h"
#include "wevlin/webcontrols/webkitgtk/WebKitGtkWebControl.h"

namespace wevlin_bench {

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::WebKitGtkWebControl;

// Initialises GTK once per program; returns false without a display.
bool GtkReady() {
  static const bool ready = gtk_init_check(nullptr, nullptr) != FALSE;
  return ready;
}

// Owns a WebKitGTK control and the offscreen window that holds its view.
// REQUIRES: GTK's main thread.
class WebKitGtkBenchEngine : public BenchEngine {
 public:
  // Creates the window and the control, and shows them (offscreen).
  WebKitGtkBenchEngine() {
    window_ = gtk_offscreen_window_new();
    gtk_window_set_default_size(GTK_WINDOW(window_), 1280, 800);
    control_ = std::make_unique<WebKitGtkWebControl>();
    gtk_container_add(GTK_CONTAINER(window_), control_->Widget());
    gtk_widget_show_all(window_);
  }

  // Destroys the control, then the window, and lets GTK and WebKit finish
  // what the destruction started.
  ~WebKitGtkBenchEngine() override {
    control_.reset();
    gtk_widget_destroy(window_);
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
  }

  IBridgedWebControl& Control() override { return *control_; }

 private:
  GtkWidget* window_ = nullptr;
  std::unique_ptr<WebKitGtkWebControl> control_;
};

}  // namespace

std::unique_ptr<BenchEngine> StartWebKitGtkBenchEngine() {
  if (!GtkReady()) {
    throw std::runtime_error("GTK cannot open a display (run the program under xvfb-run)");
  }
  return std::make_unique<WebKitGtkBenchEngine>();
}

}  // namespace wevlin_bench
