#include "DesktopWindow.h"

#include <cairo.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <utility>

namespace wevlin_desktop {

namespace {

// A little styling for the side panel: the tags of the list in colour.
const char kStyle[] =
    ".side-panel { padding: 12px; }"
    ".section-title { font-weight: bold; margin-top: 6px; }"
    ".status-line { font-weight: bold; padding: 6px; border-radius: 4px;"
    "  background-color: alpha(@theme_selected_bg_color, 0.15); }"
    ".tag { font-family: monospace; font-size: smaller; }"
    ".tag-state { color: #7a5c00; } .tag-page { color: #1f6f43; }"
    ".tag-host { color: #2a5db0; } .tag-worker { color: #8a3ca8; }"
    ".tag-wevlin { color: #666666; }";

void CallAction(GtkButton* /*button*/, gpointer action) {
  auto* call = static_cast<std::function<void()>*>(action);
  if (*call) (*call)();
}

// Keeps the newest entry in view: the list has grown once it is allocated.
void ScrollToEnd(GtkWidget* /*list*/, GdkRectangle* /*allocation*/, gpointer scroller) {
  GtkAdjustment* adjustment = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller));
  gtk_adjustment_set_value(adjustment, gtk_adjustment_get_upper(adjustment));
}

// Closing the window ends the main loop; the window itself stays until its
// owner destroys it.
gboolean QuitOnClose(GtkWidget* /*window*/, GdkEvent* /*event*/, gpointer /*unused*/) {
  gtk_main_quit();
  return TRUE;
}

GtkWidget* SectionTitle(const char* text) {
  GtkWidget* label = gtk_label_new(text);
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  gtk_style_context_add_class(gtk_widget_get_style_context(label), "section-title");
  return label;
}

// Returns whether every pixel of the rectangle (clipped to the surface) has
// the same value: what an empty or undrawn web view leaves.
bool OneColour(cairo_surface_t* surface, int x, int y, int width, int height) {
  const int surfaceWidth = cairo_image_surface_get_width(surface);
  const int surfaceHeight = cairo_image_surface_get_height(surface);
  const int left = std::max(x, 0);
  const int top = std::max(y, 0);
  const int right = std::min(x + width, surfaceWidth);
  const int bottom = std::min(y + height, surfaceHeight);
  if (left >= right || top >= bottom) return true;
  const unsigned char* data = cairo_image_surface_get_data(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  const auto pixel = [&](int px, int py) {
    return reinterpret_cast<const std::uint32_t*>(data +
                                                  static_cast<std::ptrdiff_t>(py) * stride)[px];
  };
  const std::uint32_t first = pixel(left, top);
  for (int py = top; py < bottom; ++py) {
    for (int px = left; px < right; ++px) {
      if (pixel(px, py) != first) return false;
    }
  }
  return true;
}

}  // namespace

DesktopWindow::DesktopWindow(GtkWidget* webView, Actions actions)
    : actions_(std::move(actions)),
      window_(gtk_window_new(GTK_WINDOW_TOPLEVEL)),
      webView_(webView),
      status_(gtk_label_new("")),
      list_(gtk_list_box_new()),
      scroller_(gtk_scrolled_window_new(nullptr, nullptr)) {
  GtkCssProvider* css = gtk_css_provider_new();
  gtk_css_provider_load_from_data(css, kStyle, -1, nullptr);
  gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(css),
                                            GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
  g_object_unref(css);

  gtk_window_set_default_size(GTK_WINDOW(window_), kWidth, kHeight);
  g_signal_connect(window_, "delete-event", G_CALLBACK(QuitOnClose), nullptr);

  GtkWidget* header = gtk_header_bar_new();
  gtk_header_bar_set_title(GTK_HEADER_BAR(header), "wevlin desktop");
  gtk_header_bar_set_subtitle(GTK_HEADER_BAR(header), "Native GTK widgets beside a hosted page");
  gtk_header_bar_set_show_close_button(GTK_HEADER_BAR(header), TRUE);
  gtk_window_set_titlebar(GTK_WINDOW(window_), header);

  // The side panel: buttons, status line, the list of what happened.
  GtkWidget* panel = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
  gtk_style_context_add_class(gtk_widget_get_style_context(panel), "side-panel");
  gtk_widget_set_size_request(panel, 400, -1);
  gtk_box_pack_start(GTK_BOX(panel), SectionTitle("Call the page"), FALSE, FALSE, 0);
  GtkWidget* buttons = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  sessionButton_ = AddButton(buttons, "Send session", "Sends a session through the page's proxy",
                             &actions_.sendSession);
  refreshButton_ = AddButton(buttons, "Refresh", "Sends a refresh through the page's proxy",
                             &actions_.sendRefresh);
  AddButton(buttons, "Reload page", "Launches the page again", &actions_.reloadPage);
  gtk_box_pack_start(GTK_BOX(panel), buttons, FALSE, FALSE, 0);

  gtk_label_set_xalign(GTK_LABEL(status_), 0);
  gtk_style_context_add_class(gtk_widget_get_style_context(status_), "status-line");
  gtk_box_pack_start(GTK_BOX(panel), status_, FALSE, FALSE, 0);

  gtk_box_pack_start(GTK_BOX(panel), SectionTitle("What happened"), FALSE, FALSE, 0);
  gtk_list_box_set_selection_mode(GTK_LIST_BOX(list_), GTK_SELECTION_NONE);
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller_), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroller_), GTK_SHADOW_IN);
  gtk_container_add(GTK_CONTAINER(scroller_), list_);
  g_signal_connect(list_, "size-allocate", G_CALLBACK(ScrollToEnd), scroller_);
  gtk_box_pack_start(GTK_BOX(panel), scroller_, TRUE, TRUE, 0);

  GtkWidget* body = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
  gtk_box_pack_start(GTK_BOX(body), panel, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(body), gtk_separator_new(GTK_ORIENTATION_VERTICAL), FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(body), webView_, TRUE, TRUE, 0);
  gtk_container_add(GTK_CONTAINER(window_), body);
  ShowContentState("NoContent", false);
}

DesktopWindow::~DesktopWindow() {
  // The web view belongs to the web control: take it out first, so that
  // destroying the window does not dispose of it under the control.
  gtk_container_remove(GTK_CONTAINER(gtk_widget_get_parent(webView_)), webView_);
  gtk_widget_destroy(window_);
}

GtkWidget* DesktopWindow::AddButton(GtkWidget* box, const char* label, const char* tooltip,
                                    std::function<void()>* action) {
  GtkWidget* button = gtk_button_new_with_label(label);
  gtk_widget_set_tooltip_text(button, tooltip);
  g_signal_connect(button, "clicked", G_CALLBACK(CallAction), action);
  gtk_box_pack_start(GTK_BOX(box), button, TRUE, TRUE, 0);
  return button;
}

void DesktopWindow::Show() { gtk_widget_show_all(window_); }

void DesktopWindow::AddEntry(const std::string& who, const std::string& text) {
  std::cout << std::left << std::setw(9) << who << text << std::endl;

  GtkWidget* tag = gtk_label_new(who.c_str());
  gtk_label_set_xalign(GTK_LABEL(tag), 0);
  gtk_label_set_yalign(GTK_LABEL(tag), 0);
  gtk_label_set_width_chars(GTK_LABEL(tag), 8);
  GtkStyleContext* style = gtk_widget_get_style_context(tag);
  gtk_style_context_add_class(style, "tag");
  gtk_style_context_add_class(style, ("tag-" + who.substr(0, who.find(' '))).c_str());

  GtkWidget* line = gtk_label_new(text.c_str());
  gtk_label_set_xalign(GTK_LABEL(line), 0);
  gtk_label_set_line_wrap(GTK_LABEL(line), TRUE);
  gtk_label_set_line_wrap_mode(GTK_LABEL(line), PANGO_WRAP_WORD_CHAR);
  gtk_label_set_max_width_chars(GTK_LABEL(line), 40);

  GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  gtk_container_set_border_width(GTK_CONTAINER(row), 3);
  gtk_box_pack_start(GTK_BOX(row), tag, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(row), line, TRUE, TRUE, 0);
  gtk_widget_show_all(row);
  gtk_list_box_insert(GTK_LIST_BOX(list_), row, -1);
}

void DesktopWindow::ShowContentState(const std::string& stateName, bool canTalk) {
  gtk_label_set_text(GTK_LABEL(status_), ("Content: " + stateName).c_str());
  gtk_widget_set_sensitive(sessionButton_, canTalk ? TRUE : FALSE);
  gtk_widget_set_sensitive(refreshButton_, canTalk ? TRUE : FALSE);
}

bool DesktopWindow::SaveScreenshot(const std::string& path, int& width, int& height) const {
  if (gtk_widget_get_mapped(window_) == FALSE) throw std::runtime_error("The window is not shown");
  width = gtk_widget_get_allocated_width(window_);
  height = gtk_widget_get_allocated_height(window_);
  std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
      cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height), &cairo_surface_destroy);
  cairo_t* context = cairo_create(surface.get());
  gtk_widget_draw(window_, context);
  cairo_destroy(context);
  cairo_surface_flush(surface.get());

  int viewX = 0;
  int viewY = 0;
  gtk_widget_translate_coordinates(webView_, window_, 0, 0, &viewX, &viewY);
  if (OneColour(surface.get(), viewX, viewY, gtk_widget_get_allocated_width(webView_),
                gtk_widget_get_allocated_height(webView_))) {
    return false;
  }
  const cairo_status_t status = cairo_surface_write_to_png(surface.get(), path.c_str());
  if (status != CAIRO_STATUS_SUCCESS) {
    throw std::runtime_error("Cannot write " + path + ": " + cairo_status_to_string(status));
  }
  return true;
}

}  // namespace wevlin_desktop
