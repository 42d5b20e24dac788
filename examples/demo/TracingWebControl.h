#ifndef WEVLIN_EXAMPLES_DEMO_TRACINGWEBCONTROL_H_
#define WEVLIN_EXAMPLES_DEMO_TRACINGWEBCONTROL_H_

#include <string>

#include "Transcript.h"
#include "wevlin/infrastructure/interop/IWebControl.h"

namespace wevlin_demo {

// An IWebControl that passes everything to another control and writes to the
// transcript what the library asks of it: each navigation, and each line of
// script with the page's answer and the time it took. Put between the
// HostControlInstance and the real control, it shows the wire: the ping, the
// service lists, and every call into the page as the script line it becomes.
//
// Owns neither the inner control nor the transcript; both must outlive it.
// Called on the application's thread, like the inner control, except that
// ExecuteScript may also be called from other threads when the inner control
// allows it (the demo's workers answer the page that way). Each script line
// is written together with its answer, never split by another thread's lines.
class TracingWebControl : public Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl {
 public:
  TracingWebControl(IWebControl& inner, Transcript& transcript);
  TracingWebControl(const TracingWebControl&) = delete;
  TracingWebControl& operator=(const TracingWebControl&) = delete;
  ~TracingWebControl() override;

  void Navigate(std::string target) override;
  std::string ExecuteScript(std::string script) override;
  void AddLoadObserver(IWebControl::ILoadObserver* observer) override;
  void RemoveLoadObserver(IWebControl::ILoadObserver* observer) override;

 private:
  IWebControl& inner_;
  Transcript& transcript_;
};

// Returns `text` cut to at most `limit` bytes, with "..." at the end when it
// was cut (never in the middle of a UTF-8 sequence).
std::string Shorten(const std::string& text, std::size_t limit);

}  // namespace wevlin_demo

#endif  // WEVLIN_EXAMPLES_DEMO_TRACINGWEBCONTROL_H_
