#ifndef WEVLIN_TESTS_SUPPORT_SCRIPTEDPAGE_H_
#define WEVLIN_TESTS_SUPPORT_SCRIPTEDPAGE_H_

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/infrastructure/interop/ScriptQuoting.h"

namespace wevlin_test {

// A scripted page: an IWebControl test double that records every script line
// the host runs and answers the five page functions as a page would.
//
// Each script line is parsed as name('arg',...); with the host's quoting
// undone exactly, so the handlers see the host's original texts: with Quoting
// left at ScriptQuoting::Compatible a backslash before a single quote is
// dropped and nothing else is unescaped; with ScriptQuoting::Strict the
// escapes of the strict mode (\\ \' \" \n \r \uXXXX) are decoded, any other
// escape or a raw line break makes the line unparsable. Answers:
//   tavoInterop_Ping(version)                 -> PageVersion (default "1.0")
//   tavoInterop_HostServiceListUpdate(a, l)   -> "" (recorded in HostLists)
//   tavoInterop_RequestWebServiceList()       -> WebServiceList (default "")
//   tavoInterop_WebMethod(descriptor, payload)-> MethodHandler or MethodReply
//   tavoInterop_WebEvent(descriptor, payload) -> EventHandler or EventReply
// Fail(name, e) makes every later call of function `name` throw `e` until
// Heal(name); FailAfter(name, n, e) lets the next n calls of `name` succeed
// first. A failing call is recorded like any other. An unknown function or an
// unparsable line throws a ScriptException.
// CompleteLoad() reports a finished load to the registered observers.
//
// Recording and failures are guarded by a lock, so host calls may come from
// any thread; set the public answer fields and handlers before calls start.
// The page does not own its observers.
class ScriptedPage : public Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl {
 public:
  using ScriptException =
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl::ScriptException;
  using Handler =
      std::function<std::string(const std::string& descriptorJson, const std::string& payload)>;

  struct Call {
    std::string function;
    std::vector<std::string> args;
  };

  ScriptedPage();
  ~ScriptedPage() override;

  // IWebControl
  void Navigate(std::string target) override;
  std::string ExecuteScript(std::string script) override;
  void AddLoadObserver(ILoadObserver* observer) override;
  void RemoveLoadObserver(ILoadObserver* observer) override;

  // Reports a finished page load to every registered observer.
  void CompleteLoad();
  // Makes function `name` throw `e` from now on; Heal undoes it.
  void Fail(const std::string& name, ScriptException e);
  // Lets the next `successes` calls of function `name` answer normally, then
  // makes every later one throw `e` until Heal(name).
  void FailAfter(const std::string& name, int successes, ScriptException e);
  // Ends a failure set with Fail or FailAfter.
  void Heal(const std::string& name);

  // Returns every script line run so far, in order.
  std::vector<std::string> Scripts() const;
  // Returns every parsed call so far, in order.
  std::vector<Call> Calls() const;
  // Returns the calls of function `name`, in order.
  std::vector<Call> CallsOf(const std::string& name) const;
  // Returns every navigation target, in order.
  std::vector<std::string> Navigations() const;
  // Returns the number of registered load observers.
  std::size_t ObserverCount() const;
  // Forgets the recorded scripts, calls and navigations.
  void ClearRecords();

  // Parses one script line; returns nothing when it is not name('a',...);
  static std::optional<Call> Parse(const std::string& script);
  // Parses one script line whose arguments are quoted as `quoting` says.
  static std::optional<Call> Parse(
      const std::string& script,
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ScriptQuoting quoting);

  // How the host quotes the arguments that this page parses.
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ScriptQuoting Quoting =
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ScriptQuoting::Compatible;

  std::string PageVersion = "1.0";
  std::string WebServiceList;
  std::string MethodReply;
  std::string EventReply;
  Handler MethodHandler;
  Handler EventHandler;

 private:
  std::string Answer(const Call& call);

  struct Failure {
    int successesLeft;
    ScriptException exception;
  };

  mutable std::mutex mutex_;
  std::vector<std::string> scripts_;
  std::vector<Call> calls_;
  std::vector<std::string> navigations_;
  std::vector<ILoadObserver*> observers_;
  std::map<std::string, Failure> failures_;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_SCRIPTEDPAGE_H_
