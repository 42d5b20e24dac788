#ifndef WEVLIN_EXAMPLES_DESKTOP_SCREENSHOTRUN_H_
#define WEVLIN_EXAMPLES_DESKTOP_SCREENSHOTRUN_H_

#include <chrono>
#include <string>

#include <glib.h>

#include "DesktopHost.h"
#include "DesktopWindow.h"

namespace wevlin_desktop {

// Plays the user for --screenshot: waits until the page has logged in and
// finished its own calls, presses "Send session" and "Refresh", waits until
// the page has forwarded a log line for each, lets the window draw, saves a
// picture of the whole window (trying again while the web view's part is
// still blank) and quits the GTK main loop. Gives up, and quits too, when the
// page reports an error or the time limit passes.
//
// Ownership: uses the host and the window, which must outlive it; owns the
// main-loop source that checks the progress every 50 ms.
// REQUIRES: the GTK main thread.
class ScreenshotRun {
 public:
  ScreenshotRun(DesktopHost& host, DesktopWindow& window, std::string path,
                std::chrono::milliseconds limit);
  ScreenshotRun(const ScreenshotRun&) = delete;
  ScreenshotRun& operator=(const ScreenshotRun&) = delete;
  ~ScreenshotRun();

  // Starts watching; the time limit counts from here.
  void Start();

  // Returns 0 once the picture is saved, 1 when the run failed, -1 while it
  // runs (or the user closed the window first).
  int ExitStatus() const { return exitStatus_; }
  // Returns why the run failed, in one sentence.
  const std::string& Failure() const { return failure_; }

 private:
  enum class Step { kWaitingForPage, kWaitingForAnswers, kSettling, kDone };

  static gboolean OnTick(gpointer self);
  // Moves on as far as the page's progress allows; returns false when done.
  bool Tick();
  void Finish(int exitStatus, const std::string& failure);

  DesktopHost& host_;
  DesktopWindow& window_;
  const std::string path_;
  const std::chrono::milliseconds limit_;
  std::chrono::steady_clock::time_point deadline_;
  std::chrono::steady_clock::time_point settledAt_;
  Step step_ = Step::kWaitingForPage;
  int logLinesBefore_ = 0;
  guint source_ = 0;
  int exitStatus_ = -1;
  std::string failure_;
};

}  // namespace wevlin_desktop

#endif  // WEVLIN_EXAMPLES_DESKTOP_SCREENSHOTRUN_H_
