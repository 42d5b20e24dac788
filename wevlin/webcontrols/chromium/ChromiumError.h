#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMERROR_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMERROR_H_

#include <stdexcept>
#include <string>

#include "wevlin/webcontrols/chromium/wevlin_chromium_export.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium {

// The failure of the browser behind a ChromiumWebControl, as opposed to a
// failure of a page's script (IWebControl::ScriptException).
//
// what() names the problem in one sentence, for example
// "The browser exited (killed by signal 9)" or
// "The browser did not answer Page.captureScreenshot within 30000 ms";
// kind() classifies it for code that reacts differently. ExecuteScript never
// throws this type: it reports the same texts as a ScriptException, as the
// host library expects of a web control.
//
// A plain value; any thread may read it.
class WEVLIN_CHROMIUM_EXPORT ChromiumError : public std::runtime_error {
 public:
  enum class Kind {
    // The browser could not be started (missing executable, failed start-up).
    LaunchFailed,
    // The browser process has ended, or its DevTools connection closed.
    Exited,
    // The browser did not answer a command within the time limit.
    NotAnswering,
    // The browser answered a command with an error, or the page went away.
    ProtocolError,
    // A file could not be written.
    FileError,
  };

  // Creates an error of `kind` whose what() is `message`.
  ChromiumError(Kind kind, const std::string& message);
  ChromiumError(const ChromiumError& other);
  ChromiumError& operator=(const ChromiumError& other);
  ~ChromiumError() override;

  // Returns the kind given at construction.
  Kind kind() const noexcept;

 private:
  Kind kind_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_CHROMIUMERROR_H_
