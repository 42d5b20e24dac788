#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_IWEBCONTROL_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_IWEBCONTROL_H_

#include <string>

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The browser control, as the library sees it.
//
// The library owns no browser. The application wraps its browser control in
// an object that implements this interface and hands it to each
// HostControlInstance, which navigates it, runs script lines in its page and
// listens to its load notifications. The application keeps ownership: the
// library never deletes a web control (the destructor is protected for that
// reason), and the control must outlive every HostControlInstance made on it.
//
// Threads: the library calls Navigate, ExecuteScript, AddLoadObserver and
// RemoveLoadObserver only on the application's thread that drives the
// browser control, and the control must call ILoadObserver::OnLoadCompleted
// on that same thread.
//
// How the application exposes a HostAPI object to the page's script, so that
// the page can call into the host, is the browser control's business.
class WEVLIN_EXPORT IWebControl {
 public:
  // Told by a web control each time a page has finished loading. Every host
  // control instance is one, on its own control.
  //
  // The control does not own its observers and never deletes them through
  // this interface. OnLoadCompleted is called on the thread that drives the
  // control.
  class WEVLIN_EXPORT ILoadObserver {
   public:
    // Handles the end of a page load in the control this observer is
    // registered on.
    virtual void OnLoadCompleted() = 0;

   protected:
    ILoadObserver() = default;
    ILoadObserver(const ILoadObserver&) = default;
    ILoadObserver& operator=(const ILoadObserver&) = default;
    ~ILoadObserver() = default;
  };

  // How a web control reports that a script line failed in the page. The
  // control fills it and throws it from ExecuteScript; the library catches
  // it, logs, and rethrows copies of it.
  //
  // A plain value: it has no base class and no virtual operations, and in
  // particular it is not a std::exception, so `catch (const std::exception&)`
  // does not catch it. What the two texts contain is up to the control;
  // typically `message` is the script engine's error message and `details`
  // the position or stack of the failure.
  class WEVLIN_EXPORT ScriptException {
   public:
    // Creates an exception whose message and details are both empty.
    ScriptException();

    // Creates an exception with the given message and details.
    ScriptException(std::string message, std::string details);

    // Copies both texts of `other`.
    ScriptException(const ScriptException& other);

    // Replaces both texts with those of `other`.
    ScriptException& operator=(const ScriptException& other);

    ~ScriptException();

    std::string message;
    std::string details;
  };

  // Starts loading `target` (a URL) in the browser control and returns at
  // once; the control reports the end of the load to its observers.
  virtual void Navigate(std::string target) = 0;

  // Runs the one line of script `script` in the current page and returns its
  // result as text. Throws ScriptException when the script fails.
  virtual std::string ExecuteScript(std::string script) = 0;

  // Registers `observer` to be told, through OnLoadCompleted, each time a
  // page has finished loading. The control does not take ownership; the
  // observer stays registered until RemoveLoadObserver.
  virtual void AddLoadObserver(IWebControl::ILoadObserver* observer) = 0;

  // Forgets `observer`; it is not told of later loads. Removing an observer
  // that is not registered does nothing.
  virtual void RemoveLoadObserver(IWebControl::ILoadObserver* observer) = 0;

 protected:
  IWebControl();
  IWebControl(const IWebControl& other);
  IWebControl& operator=(const IWebControl& other);

  // Destroys the control. Declared last so that it follows the four
  // operations above in the table of virtual functions.
  virtual ~IWebControl();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_IWEBCONTROL_H_
