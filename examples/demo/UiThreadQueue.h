#ifndef WEVLIN_EXAMPLES_DEMO_UITHREADQUEUE_H_
#define WEVLIN_EXAMPLES_DEMO_UITHREADQUEUE_H_

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace wevlin_demo {

// Hands work from other threads to the application's thread: the one thread
// that may drive the browser control. A desktop application would post a
// message to its window for this; the demo's main loop runs what is queued
// each time it waits for the browser.
//
// Post may be called from any thread; RunPending only on the application's
// thread. Tasks still queued when the queue is destroyed are dropped.
class UiThreadQueue {
 public:
  UiThreadQueue() = default;
  UiThreadQueue(const UiThreadQueue&) = delete;
  UiThreadQueue& operator=(const UiThreadQueue&) = delete;

  // Queues `task` to run on the application's thread.
  void Post(std::function<void()> task);

  // Runs the tasks queued so far, oldest first, and returns how many ran.
  // Tasks that they post run at the next call.
  std::size_t RunPending();

 private:
  std::mutex mutex_;
  std::deque<std::function<void()>> tasks_;
};

}  // namespace wevlin_demo

#endif  // WEVLIN_EXAMPLES_DEMO_UITHREADQUEUE_H_
