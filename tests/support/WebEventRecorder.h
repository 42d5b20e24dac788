#ifndef WEVLIN_TESTS_SUPPORT_WEBEVENTRECORDER_H_
#define WEVLIN_TESTS_SUPPORT_WEBEVENTRECORDER_H_

#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/MockHostControlInstance.h"

namespace wevlin_test {

// Records the events that code under test sends to the page through
// InvokeWebEvent of a MockHostControlInstance: for each one the target
// service's FQN and version, the payload text and the sending thread.
//
// Expect() sets the mock's expectation; the recorder must outlive every call
// it records (declare it before the code that sends, and keep it to the end
// of the test). Recording is guarded by a lock, so events may be sent from any
// thread; the readers return copies and may be called on any thread.
class WebEventRecorder {
 public:
  // One event as it reached the mock.
  struct Event {
    std::string fqn;
    std::string version;
    std::string text;
    std::thread::id thread;
  };

  WebEventRecorder();
  ~WebEventRecorder();
  WebEventRecorder(const WebEventRecorder&) = delete;
  WebEventRecorder& operator=(const WebEventRecorder&) = delete;

  // Expects exactly `times` calls of InvokeWebEvent on `instance`, whatever
  // their arguments, and records each of them here.
  void Expect(MockHostControlInstance& instance, int times = 1);

  // Returns how many events were recorded so far.
  int Count() const;
  // Returns the payloads of all recorded events, in arrival order.
  std::vector<std::string> Texts() const;
  // Returns the last recorded event; an empty one (no texts, no thread) when
  // none arrived yet.
  Event Last() const;

 private:
  void Record(Event event);

  mutable std::mutex mutex_;
  std::vector<Event> events_;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_WEBEVENTRECORDER_H_
