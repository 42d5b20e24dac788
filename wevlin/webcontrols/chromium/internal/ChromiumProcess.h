#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_CHROMIUMPROCESS_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_CHROMIUMPROCESS_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

// One browser process with its DevTools pipe and its temporary profile.
//
// The constructor creates a fresh profile directory, starts the executable
// with the given arguments plus "--user-data-dir=<profile>", and connects the
// browser's DevTools pipe: the browser reads commands on its descriptor 3 and
// writes answers and events on its descriptor 4, each message a JSON text
// ended by a NUL byte. The browser and every process it starts share one
// process group, so that Terminate() ends them all. Its standard input is
// empty; its standard output and error are discarded unless `showOutput`.
//
// The destructor terminates the browser (if still running), reaps it and
// removes the profile directory. Everything that depends on the platform is
// in the one port file of this class.
//
// Threads: Read() is for one reader thread; Write() may be called from any
// thread (writes are serialised); StopReading(), WaitForExit(),
// ExitDescription() and Terminate() may be called from any thread.
class ChromiumProcess {
 public:
  // Starts `executable` with `arguments`. Throws ChromiumError(LaunchFailed)
  // naming the problem: "Cannot start the browser: <executable> does not
  // exist or is not executable (install the Debian package chromium)" for a
  // missing executable, or the system's reason for another failure.
  ChromiumProcess(const std::string& executable, const std::vector<std::string>& arguments,
                  bool showOutput);
  ChromiumProcess(const ChromiumProcess&) = delete;
  ChromiumProcess& operator=(const ChromiumProcess&) = delete;

  // Terminates the browser, reaps it and removes the profile directory.
  ~ChromiumProcess();

  // Returns the profile directory (removed at destruction).
  const std::string& ProfileDirectory() const;

  // Returns the browser's process id, which is also its process group id.
  std::int64_t ProcessId() const;

  // Writes all `size` bytes of `data` to the command pipe, waiting for room
  // until `deadline`. Returns true when everything was written; otherwise
  // false with `*error` set to "timeout", or to the system's reason.
  bool Write(const char* data, std::size_t size, std::chrono::steady_clock::time_point deadline,
             std::string* error);

  // Reads what the browser has written, waiting until something arrives.
  // Returns the number of bytes stored in `buffer` (at most `size`); 0 at the
  // end of the pipe or after StopReading(); -1 on a read error.
  std::ptrdiff_t Read(char* buffer, std::size_t size);

  // Makes a waiting and every later Read() return 0.
  void StopReading();

  // Waits up to `timeout` for the browser process to end and reaps it.
  // Returns true when it has ended.
  bool WaitForExit(std::chrono::milliseconds timeout);

  // Returns how the browser ended, "exit code N" or "killed by signal N", or
  // "" while it runs.
  std::string ExitDescription();

  // Kills the browser's whole process group and reaps the browser. Does
  // nothing more once done.
  void Terminate();

  // Returns true when this process runs with the privileges of the system's
  // administrator (root), under which the browser's sandbox cannot start.
  static bool RunsAsAdministrator();

 private:
  // Notes, without reaping, whether the browser has ended.
  bool ObserveExitLocked();

  std::string executable_;
  std::string profileDirectory_;
  std::int64_t pid_ = -1;
  int commandFd_ = -1;  // our end of the browser's descriptor 3
  int eventFd_ = -1;    // our end of the browser's descriptor 4
  std::mutex writeMutex_;
  std::mutex stateMutex_;
  bool exited_ = false;
  bool terminated_ = false;
  bool statusKnown_ = false;
  int exitCode_ = 0;
  int exitSignal_ = 0;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_CHROMIUMPROCESS_H_
