#ifndef WEVLIN_EXAMPLES_DEMO_BACKGROUNDWORK_H_
#define WEVLIN_EXAMPLES_DEMO_BACKGROUNDWORK_H_

#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace wevlin_demo {

// Runs slow work off the application's thread, the way the demo's
// asynchronous service handlers finish a request later: each job gets a
// thread of its own, waits its delay, then runs.
//
// Start may be called from any thread. JoinAll (and the destructor) waits for
// every job started so far; call it before destroying what the jobs use.
class BackgroundWork {
 public:
  BackgroundWork() = default;
  BackgroundWork(const BackgroundWork&) = delete;
  BackgroundWork& operator=(const BackgroundWork&) = delete;
  ~BackgroundWork();

  // Starts a thread that sleeps for `delay` and then calls `job` with the
  // job's number (1 for the first job started, 2 for the next, ...).
  void Start(std::chrono::milliseconds delay, std::function<void(int)> job);

  // Waits for every job started so far to finish.
  void JoinAll();

 private:
  std::mutex mutex_;
  std::vector<std::thread> threads_;
  int started_ = 0;
};

}  // namespace wevlin_demo

#endif  // WEVLIN_EXAMPLES_DEMO_BACKGROUNDWORK_H_
