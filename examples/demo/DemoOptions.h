#ifndef WEVLIN_EXAMPLES_DEMO_DEMOOPTIONS_H_
#define WEVLIN_EXAMPLES_DEMO_DEMOOPTIONS_H_

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

namespace wevlin_demo {

// A command line that the demo cannot run with; what() says what is wrong
// with it, in one sentence.
class UsageError : public std::invalid_argument {
 public:
  explicit UsageError(const std::string& message);
};

// The demo's command line, parsed. A plain value.
struct DemoOptions {
  // The page to host: a URL, or empty for the bundled demo page.
  std::string pageUrl;

  // How long the demo waits for the page to log in, and for any one call to
  // end. Also the host control instance's content time-out.
  std::chrono::milliseconds timeout{30000};

  // Where the screenshot of the page goes.
  std::string screenshotPath;

  // Whether --help was given: print the usage and do nothing else.
  bool help = false;

  // Parses `arguments` (without the program name). Options take their value
  // as the next argument or after "=" (--page=URL). A --page value that has
  // no scheme is taken as a file path and turned into a file:// URL.
  // Throws UsageError for an unknown option, a missing value, or a time-out
  // that is not a whole number of milliseconds from 1 to 3600000.
  static DemoOptions Parse(const std::vector<std::string>& arguments);

  // Returns the usage text, naming the program `program`.
  static std::string Usage(const std::string& program);

  // Returns the file:// URL of the file at `path`, made absolute and
  // percent-encoded where a URL needs it.
  static std::string FileUrl(const std::string& path);
};

}  // namespace wevlin_demo

#endif  // WEVLIN_EXAMPLES_DEMO_DEMOOPTIONS_H_
