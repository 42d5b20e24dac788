// wevlin_demo: a native host program that embeds wevlin the way a desktop
// application would, with a headless Chromium as its browser control, and
// shows everything the two sides can say to each other. See DemoRun.h for
// what it does and DemoOptions.h for its command line; `wevlin_demo --help`
// prints both.

#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "DemoOptions.h"
#include "DemoRun.h"
#include "Terminal.h"
#include "Transcript.h"
#include "wevlin/infrastructure/interop/IWebControl.h"

int main(int argc, char** argv) {
  const std::string program = argc > 0 ? argv[0] : "wevlin_demo";
  wevlin_demo::DemoOptions options;
  try {
    options = wevlin_demo::DemoOptions::Parse(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const wevlin_demo::UsageError& error) {
    std::cerr << program << ": " << error.what() << "\nTry " << program << " --help\n";
    return wevlin_demo::kExitUsage;
  }
  if (options.help) {
    std::cout << wevlin_demo::DemoOptions::Usage(program);
    return wevlin_demo::kExitSuccess;
  }

  wevlin_demo::Transcript transcript(std::cout, wevlin_demo::StandardOutputIsTerminal());
  try {
    wevlin_demo::DemoRun run(options, transcript);
    const int status = run.Run();
    if (!run.ErrorSummary().empty()) std::cerr << program << ": " << run.ErrorSummary() << '\n';
    return status;
  } catch (const Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl::ScriptException&
               error) {
    std::cerr << program << ": a script in the page failed: " << error.message << " ("
              << error.details << ")\n";
  } catch (const std::exception& error) {
    std::cerr << program << ": " << error.what() << '\n';
  }
  return wevlin_demo::kExitStepFailed;
}
