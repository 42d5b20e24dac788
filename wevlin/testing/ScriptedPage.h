#ifndef WEVLIN_TESTING_SCRIPTEDPAGE_H_
#define WEVLIN_TESTING_SCRIPTEDPAGE_H_

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/infrastructure/interop/ScriptQuoting.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/testing/wevlin_testing_export.h"

namespace Com::Velmora::TAVO::Wevlin::Testing {

// A page without a browser: an in-memory IWebControl that plays the hosted
// page, so that an application can test its host services and proxies with a
// real HostControlInstance and HostAPI and any test framework.
//
// Host to page. Every script line the host runs is recorded, then parsed as
// name('arg',...); with the host's quoting undone exactly, so that handlers
// see the host's original texts: with Quoting left at
// ScriptQuoting::Compatible a backslash before a single quote is dropped and
// nothing else is unescaped; with ScriptQuoting::Strict the escapes of the
// strict mode (\\ \' \" \n \r \uXXXX) are decoded, and any other escape or a
// raw line break makes the line unparsable. The five page functions answer:
//   tavoInterop_Ping(hostVersion)                -> PageVersion ("1.0")
//   tavoInterop_HostServiceListUpdate(action, l) -> "" (see HostServices)
//   tavoInterop_RequestWebServiceList()          -> WebServiceList, or when
//                                                   that is empty the list of
//                                                   the registered services
//                                                   ("" when there are none)
//   tavoInterop_WebMethod(descriptor, payload)   -> the method registered for
//                                                   the descriptor's service,
//                                                   else MethodHandler, else
//                                                   MethodReply ("")
//   tavoInterop_WebEvent(descriptor, payload)    -> "" after the event
//                                                   registered for the
//                                                   service, else EventHandler,
//                                                   else EventReply ("")
// A handler that throws a std::exception makes the page answer its exception
// record, {"Exception": {"name": "...", "message": "..."}}, as a page answers
// a failed call; a ScriptException thrown by a handler fails the script line
// instead. Fail(name, e) makes every later call of function `name` throw `e`
// until Heal(name); FailAfter(name, n, e) lets the next n calls succeed first.
// A failing call is recorded like any other. An unknown function or an
// unparsable line throws a ScriptException.
//
// Page to host. ConnectHost gives the page the HostAPI through which a real
// page's script calls the host; CallHostMethod, RaiseHostEvent, PingHost,
// AnnounceServices and StartHandshake call it as the page library does, with
// descriptors written {"FQN": "...", "SvcVersion": "..."}. Talk and LogIn run
// the whole start of a page in one call.
//
// Ownership: the page owns its records and handlers; it owns neither its
// load observers nor the HostAPI, which must outlive their use by the page.
// A HostControlInstance made on the page must be destroyed before the page.
//
// Threads: records, failures and registrations are guarded by a lock, so the
// host may call the page from any thread. Set the public answer fields and
// handlers before calls start. Handlers run without the lock held, so they
// may call back into the host. Calls into the host run on the caller's thread.
class WEVLIN_TESTING_EXPORT ScriptedPage : public Infrastructure::Interop::IWebControl {
 public:
  using ScriptException = Infrastructure::Interop::IWebControl::ScriptException;
  // Answers a page function of every service: receives the descriptor JSON
  // and the payload, returns the page's answer.
  using Handler =
      std::function<std::string(const std::string& descriptorJson, const std::string& payload)>;
  // Answers a method of one page service: receives the payload, returns the
  // page's answer.
  using ServiceMethod = std::function<std::string(const std::string& payload)>;
  // Takes an event of one page service: receives the payload.
  using ServiceEvent = std::function<void(const std::string& payload)>;

  // One parsed script line: the page function and its arguments.
  struct Call {
    std::string function;
    std::vector<std::string> args;
  };

  // A service, named by its FQN and interface version.
  struct Service {
    std::string fqn;
    std::string version;
  };

  ScriptedPage();
  ~ScriptedPage() override;
  ScriptedPage(const ScriptedPage&) = delete;
  ScriptedPage& operator=(const ScriptedPage&) = delete;

  // IWebControl

  // Records `target`; the load completes only when CompleteLoad is called.
  void Navigate(std::string target) override;
  // Records and answers one script line as described above.
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

  // Page services

  // Registers `method` as the method of the page service `fqn` in `version`,
  // keeping an event already registered for it. Replaces an earlier method.
  void RegisterMethod(const std::string& fqn, const std::string& version, ServiceMethod method);
  // Registers `event` as the event of the page service `fqn` in `version`,
  // keeping a method already registered for it. Replaces an earlier event.
  void RegisterEvent(const std::string& fqn, const std::string& version, ServiceEvent event);
  // Forgets the page service `fqn` in `version`; returns false when it was
  // not registered.
  bool UnregisterService(const std::string& fqn, const std::string& version);
  // Returns the registered page services, in the order of registration.
  std::vector<Service> Services() const;
  // Returns the registered page services as the page announces them, e.g.
  // [{"FQN": "a.b.client", "SvcVersion": "1"}]; [] when there are none.
  std::string ServiceListJson() const;
  // Returns the host services the host announced through
  // tavoInterop_HostServiceListUpdate ("Add", "Replace" and "Remove", in any
  // letter case), in the order they were added. An update with another
  // action or a list that does not read leaves them unchanged.
  std::vector<Service> HostServices() const;
  // Returns true when the host announced its service `fqn` in `version`.
  bool HostOffers(const std::string& fqn, const std::string& version) const;

  // Calls into the host. Each throws std::logic_error "ScriptedPage: no
  // HostAPI connected" without a connected HostAPI.

  // Makes the page call the host through `api` (not owned); null disconnects.
  void ConnectHost(Infrastructure::Interop::HostAPI* api);
  // Calls the method of host service `fqn` in `version` with `payload`;
  // returns the host's answer, an exception record included.
  std::string CallHostMethod(const std::string& fqn, const std::string& version,
                             const std::string& payload);
  // Raises the event of host service `fqn` in `version` with `payload`;
  // returns the host's answer: "" or an exception record.
  std::string RaiseHostEvent(const std::string& fqn, const std::string& version,
                             const std::string& payload);
  // Pings the host; returns its version text.
  std::string PingHost();
  // Sends the registered page services to the host with the action "Replace";
  // returns the host's answer: "" or an exception record.
  std::string AnnounceServices();
  // Asks the host to start the handshake; returns the host's answer: "" or an
  // exception record.
  std::string StartHandshake();
  // Raises the standard startup-notification event
  // ("tavo.wevlin.infrastructure.services.startup.StartupNotification.host",
  // "_2014_02", empty payload), with which a started page tells the host that
  // its user is logged in; returns the host's answer.
  std::string SendStartupNotification();

  // Launches `instance` (made on this page) to `target`, completes the load
  // and starts the handshake from the page, as a real page does once it has
  // loaded. Throws std::runtime_error naming what went wrong unless the host
  // answers the handshake with "" and the instance is then in LoadedCanTalk.
  void Talk(Infrastructure::Interop::IHostControlInstance& instance,
            Infrastructure::Interop::TargetConfig& target);
  // Talk, then SendStartupNotification. Throws std::runtime_error unless the
  // host answers "" and the instance is then in LoggedIn; the host answers
  // only when its startup-notification service is registered (with the host
  // manager or on the instance).
  void LogIn(Infrastructure::Interop::IHostControlInstance& instance,
             Infrastructure::Interop::TargetConfig& target);

  // Records

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

  // Parses one script line quoted the compatible way; returns nothing when it
  // is not name('a',...);
  static std::optional<Call> Parse(const std::string& script);
  // Parses one script line whose arguments are quoted as `quoting` says.
  static std::optional<Call> Parse(const std::string& script,
                                   Infrastructure::Interop::ScriptQuoting quoting);
  // Returns the exception record {"Exception": {"name": name, "message":
  // message}} that a page answers for a failed call.
  static std::string ExceptionRecord(const std::string& name, const std::string& message);
  // Returns true when `answer` is an exception record: it starts with
  // {"Exception.
  static bool IsExceptionRecord(const std::string& answer);

  // How the host quotes the arguments that this page parses.
  Infrastructure::Interop::ScriptQuoting Quoting =
      Infrastructure::Interop::ScriptQuoting::Compatible;

  std::string PageVersion = "1.0";
  std::string WebServiceList;
  std::string MethodReply;
  std::string EventReply;
  Handler MethodHandler;
  Handler EventHandler;

 private:
  struct PageService {
    Service name;
    ServiceMethod method;
    ServiceEvent event;
  };

  struct Failure {
    int successesLeft;
    ScriptException exception;
  };

  std::string Answer(const Call& call);
  std::string AnswerMethod(const std::string& descriptorJson, const std::string& payload);
  std::string AnswerEvent(const std::string& descriptorJson, const std::string& payload);
  std::string AnswerServiceList();
  void TakeHostServices(const std::string& action, const std::string& listJson);
  std::optional<PageService> FindService(const std::string& descriptorJson) const;
  Infrastructure::Interop::HostAPI& Host() const;

  mutable std::mutex mutex_;
  std::vector<std::string> scripts_;
  std::vector<Call> calls_;
  std::vector<std::string> navigations_;
  std::vector<ILoadObserver*> observers_;
  std::map<std::string, Failure> failures_;
  std::vector<PageService> services_;
  std::vector<Service> hostServices_;
  Infrastructure::Interop::HostAPI* host_ = nullptr;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Testing

#endif  // WEVLIN_TESTING_SCRIPTEDPAGE_H_
