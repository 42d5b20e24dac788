#ifndef WEVLIN_EXAMPLES_DESKTOP_DESKTOPHOST_H_
#define WEVLIN_EXAMPLES_DESKTOP_DESKTOPHOST_H_

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "DesktopWindow.h"
#include "wevlin/webcontrols/webkitgtk/WebKitGtkWebControl.h"
#include "wevlin/wevlin.h"

namespace wevlin_desktop {

namespace wevlin = Com::Velmora::TAVO::Wevlin;
namespace interop = wevlin::Infrastructure::Interop;
namespace core07 = wevlin::Infrastructure::Services::Core::_2014_07;
namespace logging02 = wevlin::Infrastructure::Services::Logging::_2014_02;
namespace soa02 = wevlin::Infrastructure::Services::Soa::_2014_02;

// The wevlin side of the desktop example: the host services the page calls
// (configuration, startup notification, client status, log forwarding, an
// asynchronous request answered by a worker thread), the HostControlInstance
// and HostAPI around the web control, and the proxies through which the
// native buttons call the page. Everything it sees goes to the window's list,
// and the instance's content state to its status line.
//
// Ownership: registers its services with the process-wide HostManager, which
// owns them; they keep pointers to this object, which must therefore be the
// only DesktopHost and stay alive while the page can call. Owns the instance,
// the HostAPI and the worker threads; the web control and the window belong
// to the caller and must outlive this object. The destructor waits for the
// workers, delivering the control's events meanwhile so that their answers
// can still reach the page.
//
// Threads: create, call and destroy it on the GTK main thread; the services
// run there too. The workers and the library's timer thread only post work
// to the main thread.
class DesktopHost : private core07::IHandleHostConfigurationSvc,
                    private core07::IHandleClientStatusSvc,
                    private soa02::IHandleAsyncSoaJsonServiceRequest,
                    private wevlin::Infrastructure::Base::IPropertyChangeListener {
 public:
  // How long the worker "works" on an asynchronous request.
  static constexpr int kAnswerDelayMs = 400;

  // What the page has done since the last launch, for a run without a user.
  struct Progress {
    bool loggedIn = false;  // the content state is LoggedIn
    bool pageIdle = false;  // the page said "idle": its own calls are done
    int logLines = 0;       // log entries the page forwarded
    int errors = 0;         // of which at the level "Error"
  };

  // Registers the services, sets up the instance and HostAPI on `control`
  // and routes the library's log lines to `window`. Launches nothing yet.
  DesktopHost(wevlin::WebControls::WebKitGtk::WebKitGtkWebControl& control, DesktopWindow& window,
              const std::string& pageUrl);
  DesktopHost(const DesktopHost&) = delete;
  DesktopHost& operator=(const DesktopHost&) = delete;
  ~DesktopHost() override;

  // Navigates to the page (again); the page then starts the handshake.
  void LaunchPage();
  // Sends a session to the page through the session proxy.
  void SendSession();
  // Sends a refresh to the page through the refresh proxy.
  void SendRefresh();
  // Returns what the page has done since the last launch.
  Progress GetProgress();

 private:
  const core07::HostConfigurationResponseMsg& GetHostConfiguration(
      interop::IHostControlInstance* instance, interop::IHostServiceDescriptor* service) override;
  void OnClientStatus(const core07::ClientStatusMsg& status) override;
  void OnSoaJsonRequest(std::string serviceName, std::string operationName, std::string message,
                        void* context, soa02::SoaResponseCallback callback) override;
  void OnPropertyChanged(const wevlin::Infrastructure::Base::PropertyChangeEvent& event) override;
  static void ForwardLogEntry(const logging02::LoggerEntryMsg& entry);

  // Runs `task` on the main thread: at once when called there, else from
  // the main loop, unless this object is gone by then.
  void OnMainThread(std::function<void()> task);
  // Runs `send` (a proxy call) and lists what it sent, or why it failed.
  void CallPage(const std::string& what, const std::function<void()>& send);

  static DesktopHost* current_;  // for ForwardLogEntry, a plain function

  wevlin::WebControls::WebKitGtk::WebKitGtkWebControl& control_;
  DesktopWindow& window_;
  const std::thread::id mainThread_;
  // Shared with posted tasks, which check it on the main thread.
  std::shared_ptr<bool> alive_;
  core07::HostConfigurationResponseMsg configuration_;
  interop::TargetConfig* target_ = nullptr;  // owned by the host manager
  std::unique_ptr<interop::HostControlInstance> instance_;
  std::unique_ptr<interop::HostAPI> api_;
  Progress progress_;

  std::mutex workersMutex_;
  std::vector<std::thread> workers_;
  std::atomic<int> busyWorkers_{0};
};

}  // namespace wevlin_desktop

#endif  // WEVLIN_EXAMPLES_DESKTOP_DESKTOPHOST_H_
