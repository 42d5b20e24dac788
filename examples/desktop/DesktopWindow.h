#ifndef WEVLIN_EXAMPLES_DESKTOP_DESKTOPWINDOW_H_
#define WEVLIN_EXAMPLES_DESKTOP_DESKTOPWINDOW_H_

#include <functional>
#include <string>

#include <gtk/gtk.h>

namespace wevlin_desktop {

// The application's main window: a header bar, a side panel of native widgets
// (buttons, a status line, a list of what happened) and the web view beside
// it. Every entry added to the list is also printed on standard output, one
// line each, so that a run without a screen leaves a transcript.
//
// Ownership: the object owns the top-level window and destroys it (and so
// every widget in it) in its destructor. The web view belongs to the web
// control: packing it adds the window's reference, and the destructor takes
// it out again before destroying the window. Closing the window only quits
// the GTK main loop.
//
// REQUIRES: the GTK main thread, for every method.
class DesktopWindow {
 public:
  // What the buttons of the side panel do.
  struct Actions {
    std::function<void()> sendSession;
    std::function<void()> sendRefresh;
    std::function<void()> reloadPage;
  };

  // The size the window asks for; the header bar and the window's frame
  // come on top of it.
  static constexpr int kWidth = 1180;
  static constexpr int kHeight = 720;

  // Builds the window around `webView` (packed into it) with buttons that
  // call `actions`. The window stays hidden until Show.
  DesktopWindow(GtkWidget* webView, Actions actions);
  DesktopWindow(const DesktopWindow&) = delete;
  DesktopWindow& operator=(const DesktopWindow&) = delete;
  ~DesktopWindow();

  // Shows the window and everything in it.
  void Show();

  // Appends `text` to the list, under the tag `who` ("page", "host", ...),
  // scrolls to it and prints "who      text" on standard output.
  void AddEntry(const std::string& who, const std::string& text);

  // Shows `stateName` in the status line ("Content: LoggedIn") and makes the
  // buttons that call the page usable only while `canTalk`.
  void ShowContentState(const std::string& stateName, bool canTalk);

  // Draws the whole window, header bar and native widgets included, and
  // writes the picture as a PNG file to `path`; stores its size in `width`
  // and `height`. Returns false, writing nothing, while the web view's part
  // of the picture is one single colour: the page has not made it into the
  // picture yet. Throws std::runtime_error when the window is not shown or
  // the file cannot be written.
  bool SaveScreenshot(const std::string& path, int& width, int& height) const;

 private:
  GtkWidget* AddButton(GtkWidget* box, const char* label, const char* tooltip,
                       std::function<void()>* action);

  Actions actions_;
  GtkWidget* window_ = nullptr;
  GtkWidget* webView_ = nullptr;
  GtkWidget* status_ = nullptr;
  GtkWidget* list_ = nullptr;
  GtkWidget* scroller_ = nullptr;
  GtkWidget* sessionButton_ = nullptr;
  GtkWidget* refreshButton_ = nullptr;
};

}  // namespace wevlin_desktop

#endif  // WEVLIN_EXAMPLES_DESKTOP_DESKTOPWINDOW_H_
