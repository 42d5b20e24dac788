#ifndef WEVLIN_EXAMPLES_DEMO_DEMORUN_H_
#define WEVLIN_EXAMPLES_DEMO_DEMORUN_H_

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "BackgroundWork.h"
#include "DemoOptions.h"
#include "HostServices.h"
#include "TracingWebControl.h"
#include "Transcript.h"
#include "wevlin/webcontrols/chromium/ChromiumWebControl.h"
#include "wevlin/wevlin.h"

namespace wevlin_demo {

// The exit statuses of the demo.
enum ExitStatus : int {
  kExitSuccess = 0,         // every step went as expected
  kExitStepFailed = 1,      // a step did not (the transcript says which)
  kExitUsage = 2,           // a bad command line
  kExitBrowserMissing = 3,  // the browser could not start
};

// One run of the demo: an application that embeds wevlin the way a desktop
// program would, with a headless Chromium as its browser control.
//
// Run registers every standard host service, opens the page, follows the
// launch, the handshake and the login, makes the page call each host service
// and the host call each page service (one failure each way), lets the page
// offer one more service late and announce its list, checks every answer,
// saves a screenshot and prints a transcript of all of it.
//
// Create, run and destroy on one thread: the application's thread (the UI
// thread), which drives the browser control. The workers of the asynchronous
// host services answer the page from their own threads; the run ends only
// after every worker has finished, and before the control goes. Run once.
class DemoRun {
 public:
  DemoRun(DemoOptions options, Transcript& transcript);
  DemoRun(const DemoRun&) = delete;
  DemoRun& operator=(const DemoRun&) = delete;
  ~DemoRun();

  // Runs the demo and returns its exit status.
  int Run();

  // Returns, after a run that failed, one line that says why (for standard
  // error; the transcript has the details). Empty after a successful run.
  const std::string& ErrorSummary() const;

 private:
  using Json = nlohmann::json;
  class StateListener;

  void Introduce();
  int StartBrowser();
  bool LaunchAndLogIn();
  void CallHostFromPage();
  void RunPageStep(const Json& step, std::size_t number, std::size_t count);
  std::string CheckPageStep(const Json& step, const Json& outcome);
  // What the host's instance knows of the page's services: how many, and
  // whether one service in particular is among them.
  struct HostKnowledge {
    int count = 0;
    bool known = false;
  };
  // Returns what the instance knows of the page's services and of `fqn`
  // `version`, and writes it to the transcript under `label`.
  HostKnowledge ReportKnowledge(const std::string& label, const std::string& fqn,
                                const std::string& version);
  // Returns a failure unless the announcement taught the host exactly the
  // late service: unknown `before`, known `after`, one service more.
  static std::string CheckAnnouncement(const HostKnowledge& before, const HostKnowledge& after);
  void CallPageFromHost();
  void SaveScreenshot();
  int Summarise();
  void TearDown();

  // Runs `script` in the page directly (not through the library) and returns
  // its value.
  std::string Eval(const std::string& script);

  // Delivers the browser's events until `condition` holds or the time-out
  // passes.
  bool WaitUntil(const std::function<bool()>& condition);

  // Counts one check; records `failure` when it is not empty, and writes the
  // verdict to the transcript.
  void Verdict(const std::string& failure);

  DemoOptions options_;
  Transcript& transcript_;
  std::string pageUrl_;
  std::string screenshotPath_;
  bool demoPage_ = false;
  std::string currentStep_;
  std::size_t pageCalls_ = 0;
  std::size_t hostCalls_ = 0;
  std::size_t checks_ = 0;
  std::vector<std::string> failures_;
  std::string errorSummary_;

  BackgroundWork work_;
  std::unique_ptr<HostServices> services_;
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumWebControl> control_;
  std::unique_ptr<TracingWebControl> tracing_;
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance>
      instance_;
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI> api_;
  std::unique_ptr<StateListener> listener_;
};

}  // namespace wevlin_demo

#endif  // WEVLIN_EXAMPLES_DEMO_DEMORUN_H_
