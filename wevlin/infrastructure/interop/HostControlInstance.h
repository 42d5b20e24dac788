#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_HOSTCONTROLINSTANCE_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_HOSTCONTROLINSTANCE_H_

#include <atomic>
#include <mutex>
#include <string>

#include "wevlin/infrastructure/base/IListChangeListener.h"
#include "wevlin/infrastructure/base/ObservableList.h"
#include "wevlin/infrastructure/interop/BaseObservableObject.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/interop/IHandleTimerEvent.h"
#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostManager.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/infrastructure/interop/ScriptQuoting.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/Timer.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The host side of the content shown in one browser control.
//
// The application creates one instance per IWebControl. The instance starts
// navigation to a target, watches the page load, runs the handshake when the
// page starts it, keeps the content state that the application observes
// ("ContentState", "WebSideVersion" and "InstanceDestroyed" notifications),
// gives up with a time-out when the page never answers, and carries calls
// between host services and the page's five script functions.
//
// States: a launch gives Navigating; the load completes (Waiting); the page
// calls tavoHost_WebSideStartHandShake (Initializing); the handshake pings the
// page with "tavoInterop_Ping", sends the host's service lists with
// "tavoInterop_HostServiceListUpdate" and "Add", takes the page's list from
// "tavoInterop_RequestWebServiceList" with "Replace", and ends in
// LoadedCanTalk (then raises the startup-notification event on the page) or
// LoadedNoTalk. No handshake before the time-out (150000 ms by default,
// checked every 150 s) gives TimedOut. LoggedIn is set from outside, by the
// startup-notification host service.
//
// Script lines: every call into the page is one line of script such as
// tavoInterop_WebMethod('descriptor JSON','payload'); whose arguments are
// single-quoted as SetScriptQuoting says: ScriptQuoting::Compatible (the
// default) escapes single quotes only, ScriptQuoting::Strict makes the page
// receive exactly the host's text (docs/script-quoting.md).
//
// Ownership: the instance does not own the web control, which must outlive
// it. It owns the descriptors of the page's services (knownWebSideServices)
// and its timer. Services registered on the instance alone (RegisterService)
// are not deleted by it, except one that a later registration replaces; the
// list that holds them is left alive too.
//
// Threads: everything runs on the application's thread that drives the web
// control, except the time-out, which runs on the system timer thread and so
// announces a "ContentState" change to TimedOut there. Listeners that touch
// user interface must marshal it themselves. The content state, the timer and
// the property-listener set are guarded by locks so that the two threads never
// race; no lock is held while the web control or a listener is called, except
// the listener-set lock during a notification (a listener must not wait for
// another thread that is adding or removing listeners of the same instance).
// A listener on the application's thread may launch again or start the
// handshake from inside a notification even while a time-out fires: the
// time-out then gives way to the cancellation. InvokeWebMethod and
// InvokeWebEvent may also be called from another thread while the instance
// lives, as the reply callbacks of the asynchronous services do when the
// application answers from a worker thread: they read the content state under
// its lock and the quoting atomically, and need only a web control whose
// ExecuteScript accepts calls from that thread. Destroy the instance on the
// application's thread, after such threads are done with it; the destructor
// waits for a time-out check that is running on the timer thread.
class WEVLIN_EXPORT HostControlInstance : public IHostControlInstance,
                                          public BaseObservableObject,
                                          public Base::IListChangeListener<IHostServiceDescriptor*>,
                                          public IWebControl::ILoadObserver,
                                          public IHandleTimerEvent {
 public:
  // Names of the five script functions that every hosted page defines.
  static const std::string WEBSIDEFUNCNAME_PING;  // "tavoInterop_Ping"
  static const std::string
      WEBSIDEFUNCNAME_HOSTSERVICEUPDATES;                    // "tavoInterop_HostServiceListUpdate"
  static const std::string WEBSIDEFUNCNAME_INVOKEWEBMETHOD;  // "tavoInterop_WebMethod"
  static const std::string WEBSIDEFUNCNAME_INVOKEWEBEVENT;   // "tavoInterop_WebEvent"
  static const std::string
      WEBSIDEFUNCNAME_REQUESTWEBSIDELIST;  // "tavoInterop_RequestWebServiceList"

  // Creates the instance for `webControl` (not owned; must outlive the
  // instance): state NoContent, time-out 150000 ms. Registers the instance as
  // a listener of the host manager's service list and as a load observer of
  // the control.
  explicit HostControlInstance(IWebControl* webControl);

  // Copying would share the owned timer and lists, so it is not offered.
  HostControlInstance(const HostControlInstance&) = delete;
  HostControlInstance& operator=(const HostControlInstance&) = delete;

  // Raises "InstanceDestroyed", stops listening to the manager's list and to
  // the control, deletes the timer and the descriptors of the page's services.
  // "InstanceDestroyed" is the last change raised: a time-out that fires
  // during the destruction changes nothing. Waits for a time-out that is
  // running on the timer thread.
  ~HostControlInstance() override;

  // Returns the name of `state` ("NoContent", ..., "LoggedIn"), or "Unknown".
  static std::string NameOfState(HostContentState state);

  // ILaunchIntegration

  // Returns false: active content is never set (see SetActiveContent).
  bool GetActiveContent() const override;
  // Unless `force` is false and content is active (never the case), makes
  // `target` the active target, navigates to target->GetTarget() and restarts
  // the time-out; returns true. Precondition: `target` is not null.
  bool LaunchToTarget(TargetConfig* target, bool force) override;
  // Same as LaunchToTarget(target, true).
  void LaunchToTarget(TargetConfig* target) override;
  // Returns the target of the last launch, or null (not owned).
  TargetConfig* GetActiveTarget() const override;

  // IHostControlInstance

  // Returns the process-wide host manager.
  IHostManager* GetGlobalConfig() const override;
  // Returns the version text that the page returned to the last ping.
  std::string GetWebSideVersion() const override;
  // Returns the services the page announced; owned by the instance, valid
  // until the page's next list or the instance's destruction.
  Base::IObservableList<ITargetServiceDesc*>* GetKnownWebSideServices() const override;
  // Replaces the page's service list with the descriptors of `listJson`.
  // Only the action "Replace" is accepted, in any letter case; another action
  // throws std::runtime_error "unknown action" and leaves the list unchanged.
  // Elements that are not descriptors are skipped. Throws std::runtime_error
  // "JSON data is not an array" for a text that is not an array. Returns "".
  std::string WebSideServiceListUpdate(std::string action, std::string listJson) override;
  // Handles the page's request to start the handshake: deletes the time-out,
  // then by state: Navigating -> Initializing (the handshake runs when the
  // load completes); Waiting, LoadedCanTalk, LoggedIn -> the handshake; other
  // states: nothing more.
  void WebSideStartHandShake() override;
  // Calls method `service` of the page with `payload` through
  // tavoInterop_WebMethod and returns its answer. Throws std::runtime_error
  // "Cannot talk to hosted content" unless the state is LoadedCanTalk or
  // LoggedIn; std::runtime_error "name message" when the page answers with an
  // exception record; std::invalid_argument "Could not decipher web side
  // error: ..." for a record that names nothing; std::invalid_argument
  // "target" for a null service; a copy of the control's
  // IWebControl::ScriptException when the script fails (after one log line).
  std::string InvokeWebMethod(ITargetServiceDesc* service, std::string payload) override;
  // Same as InvokeWebMethod with tavoInterop_WebEvent; the answer is dropped.
  void InvokeWebEvent(ITargetServiceDesc* service, std::string payload) override;
  // Returns the content state. Safe on any thread.
  HostContentState GetContentState() override;
  // Stores `state` and raises "ContentState" when it differs from the current
  // one. Safe on any thread; the notification runs on the calling thread.
  void SetContentState(HostContentState state) override;
  // Returns true when LookupService(service) finds a service.
  bool IsServiceSupported(ITargetServiceDesc* service) override;
  // Returns the service registered on this instance under the FQN and version
  // of `service` (exact), else the host manager's, else null.
  IHostServiceDescriptor* LookupService(ITargetServiceDesc* service) override;
  // Same, with the FQN and SvcVersion fields of a wire descriptor.
  IHostServiceDescriptor* LookupService(DataServiceDescriptor* service) override;
  // Registers `descriptor` on this instance alone, shadowing a process-wide
  // service of the same FQN and version. Throws std::invalid_argument
  // "descriptor", "fqn" or "version" (checked in that order). Registering the
  // same object again does nothing; another object under the same FQN and
  // version replaces and deletes the earlier one. Not owned otherwise.
  void RegisterService(IHostServiceDescriptor* descriptor) override;
  // Returns the services registered on this instance alone.
  Base::IObservableList<IHostServiceDescriptor*>* KnownServices() const override;

  // INotifyPropertyChange, forwarded to BaseObservableObject under a lock.
  void AddChangeListener(Base::IPropertyChangeListener* listener) override;
  void RemoveChangeListener(Base::IPropertyChangeListener* listener) override;

  // Writes "service list changed": the host manager's list changed.
  void OnListChanged(const Base::ListChangeEvent<IHostServiceDescriptor*>& event) override;
  // Reports a finished page load: Navigating -> Waiting and a ping;
  // Initializing -> the handshake; any other state -> a ping. Lets no
  // standard exception out to the web control: one thrown on the way (by
  // reading a page's service list that is not JSON, say) is written to the
  // log as "HostControlInstance::OnLoadCompleted - " followed by its text.
  void OnLoadCompleted() override;
  // Runs on the timer thread: writes "HostControlInstance::OnTimerElapsed",
  // moves Navigating or Waiting to TimedOut, and deletes the timer.
  void OnTimerElapsed() override;

  // Does nothing: active content is never set.
  void SetActiveContent(bool active);
  // Returns the time-out of launches in milliseconds.
  double GetTimeOutInterval() const;
  // Sets the time-out of launches started afterwards, in milliseconds.
  void SetTimeOutInterval(unsigned int intervalMs);
  // Stores `version` and raises "WebSideVersion" when it differs.
  void SetWebSideVersion(std::string version);
  // Sets how the arguments of every later call into the page (ping, service
  // lists, methods and events) are quoted in the script line; see
  // ScriptQuoting. The default is ScriptQuoting::Compatible. Safe on any
  // thread; a call that is already writing its script line keeps the mode it
  // started with.
  void SetScriptQuoting(ScriptQuoting quoting);
  // Returns the quoting of script arguments. Safe on any thread.
  ScriptQuoting GetScriptQuoting() const;

 private:
  void DoStartLaunch(std::string target);
  void WebControl_LoadCompleted();
  void DoHandShake();
  bool PingWebSide();
  void TimeOut_Elapsed();
  bool LockUnlessTimerAbandoned(std::unique_lock<std::recursive_mutex>& lock);
  void DisposeTimer();
  void KnownServices_ContentChanged();
  void RaiseChange(const std::string& propertyName);

  std::string InvokeScriptFunction(std::string name);
  std::string InvokeScriptFunction(std::string name, std::string arg);
  std::string InvokeScriptFunction(std::string name, std::string arg1, std::string arg2);
  void CheckResponseForError(std::string response);
  std::string InvokeWebFunction(const std::string& function, ITargetServiceDesc* service,
                                std::string payload);
  bool SendServiceListToWeb(Base::IObservableList<IHostServiceDescriptor*>* list);
  bool RequestWebSideServices();
  IHostServiceDescriptor* DoLookupService(std::string fqn, std::string version);

  IWebControl* webControl;
  HostContentState contentState = NoContent;
  TargetConfig* activeTarget = nullptr;
  Base::ObservableList<IHostServiceDescriptor*>* knownServices = nullptr;
  Base::ObservableList<ITargetServiceDesc*>* knownWebSideServices = nullptr;
  bool canTalk = false;
  std::string webSideVersion;
  IHostManager* hostManager;
  bool activeContent = false;
  Timer* timer = nullptr;
  unsigned int timeOutInterval;
  // Read by whichever thread calls into the page (asynchronous replies may
  // come from any thread), so atomic.
  std::atomic<ScriptQuoting> scriptQuoting_{ScriptQuoting::Compatible};

  // Guards contentState and timer, which the timer thread touches too.
  mutable std::mutex stateMutex_;
  // Guards the property-listener set during changes and notifications, and
  // makes the state checks of a load completion and of a time-out each one
  // step with the change they lead to.
  std::recursive_mutex listenerMutex_;
  // Set under listenerMutex_ when destruction begins; a time-out then
  // changes nothing.
  bool destroying_ = false;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_HOSTCONTROLINSTANCE_H_
