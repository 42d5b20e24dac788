#ifndef WEVLIN_BENCH_SUPPORT_INSTANTPAGE_H_
#define WEVLIN_BENCH_SUPPORT_INSTANTPAGE_H_

#include <string>
#include <vector>

#include "wevlin/infrastructure/interop/IWebControl.h"

namespace wevlin_bench {

// A web control whose page answers every script line at once, without
// parsing it, so that benchmarks measure the library's side of a call to the
// page and nothing else. It tells the five page functions apart by the name
// at the start of the line:
//   tavoInterop_Ping                    -> "1.0"
//   tavoInterop_WebMethod               -> MethodReply
//   every other function                -> ""
// Navigate records nothing; CompleteLoad reports a finished load to the
// registered observers (not owned). Single-threaded, like a browser control.
class InstantPage : public Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl {
 public:
  InstantPage() = default;
  ~InstantPage() override = default;

  void Navigate(std::string target) override;
  std::string ExecuteScript(std::string script) override;
  void AddLoadObserver(ILoadObserver* observer) override;
  void RemoveLoadObserver(ILoadObserver* observer) override;

  // Reports a finished load to every registered observer.
  void CompleteLoad();

  // Returns the number of script lines run so far.
  long ScriptCount() const { return scriptCount_; }

  // The answer of tavoInterop_WebMethod.
  std::string MethodReply;

 private:
  std::vector<ILoadObserver*> observers_;
  long scriptCount_ = 0;
};

}  // namespace wevlin_bench

#endif  // WEVLIN_BENCH_SUPPORT_INSTANTPAGE_H_
