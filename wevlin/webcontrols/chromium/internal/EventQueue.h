#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVENTQUEUE_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVENTQUEUE_H_

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

#include "wevlin/webcontrols/chromium/internal/PageEvent.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

// The events that wait for delivery on the application's thread, in arrival
// order. The protocol reader thread pushes; the application's thread takes
// them in batches and may wait for the next one. Owns its events. Every
// operation is safe on any thread.
class EventQueue {
 public:
  EventQueue();
  EventQueue(const EventQueue&) = delete;
  EventQueue& operator=(const EventQueue&) = delete;
  ~EventQueue();

  // Appends `event` and wakes a waiting WaitUntil.
  void Push(PageEvent event);

  // Removes and returns every event queued so far, oldest first.
  std::deque<PageEvent> TakeAll();

  // Returns true when no event waits.
  bool Empty() const;

  // Discards every queued event.
  void Clear();

  // Waits until an event is queued or `deadline` passes; returns true when
  // an event waits.
  bool WaitUntil(std::chrono::steady_clock::time_point deadline);

 private:
  mutable std::mutex mutex_;
  std::condition_variable pushed_;
  std::deque<PageEvent> events_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVENTQUEUE_H_
