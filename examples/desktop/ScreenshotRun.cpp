#include "ScreenshotRun.h"

#include <gtk/gtk.h>

#include <exception>
#include <utility>

namespace wevlin_desktop {

namespace {

// How long the window gets to draw the page's last changes before the
// picture is taken.
constexpr std::chrono::milliseconds kSettleTime{600};

}  // namespace

ScreenshotRun::ScreenshotRun(DesktopHost& host, DesktopWindow& window, std::string path,
                             std::chrono::milliseconds limit)
    : host_(host), window_(window), path_(std::move(path)), limit_(limit) {}

ScreenshotRun::~ScreenshotRun() {
  if (source_ != 0) g_source_remove(source_);
}

void ScreenshotRun::Start() {
  deadline_ = std::chrono::steady_clock::now() + limit_;
  source_ = g_timeout_add(50, &ScreenshotRun::OnTick, this);
}

gboolean ScreenshotRun::OnTick(gpointer self) {
  auto* run = static_cast<ScreenshotRun*>(self);
  if (run->Tick()) return G_SOURCE_CONTINUE;
  run->source_ = 0;
  return G_SOURCE_REMOVE;
}

bool ScreenshotRun::Tick() {
  const DesktopHost::Progress progress = host_.GetProgress();
  if (progress.errors > 0) {
    Finish(1, "the page reported an error (see the transcript)");
    return false;
  }
  const auto now = std::chrono::steady_clock::now();
  if (now > deadline_) {
    const char* waitingFor = step_ == Step::kWaitingForPage
                                 ? "the page to log in and finish its calls"
                             : step_ == Step::kWaitingForAnswers
                                 ? "the page to confirm the session and the refresh"
                                 : "the web view to show up in the picture of the window";
    Finish(1, std::string("gave up waiting for ") + waitingFor + " after " +
                  std::to_string(limit_.count()) + " ms");
    return false;
  }
  switch (step_) {
    case Step::kWaitingForPage:
      if (progress.loggedIn && progress.pageIdle) {
        // What a user would do next: press the two buttons.
        logLinesBefore_ = progress.logLines;
        host_.SendSession();
        host_.SendRefresh();
        step_ = Step::kWaitingForAnswers;
      }
      return true;
    case Step::kWaitingForAnswers:
      if (progress.logLines >= logLinesBefore_ + 2) {
        settledAt_ = now + kSettleTime;
        step_ = Step::kSettling;
      }
      return true;
    case Step::kSettling:
      if (now < settledAt_) return true;
      try {
        int width = 0;
        int height = 0;
        if (!window_.SaveScreenshot(path_, width, height)) {
          // The view has not presented the page yet (a busy machine); retry.
          settledAt_ = now + kSettleTime;
          return true;
        }
        window_.AddEntry("host", "saved the " + std::to_string(width) + "x" +
                                     std::to_string(height) + " window to " + path_);
        Finish(0, "");
      } catch (const std::exception& error) {
        Finish(1, std::string("cannot save the screenshot: ") + error.what());
      }
      return false;
    case Step::kDone:
      break;
  }
  return false;
}

void ScreenshotRun::Finish(int exitStatus, const std::string& failure) {
  step_ = Step::kDone;
  exitStatus_ = exitStatus;
  failure_ = failure;
  gtk_main_quit();
}

}  // namespace wevlin_desktop
