#include "wevlin/webcontrols/chromium/internal/EventQueue.h"

#include <utility>

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

EventQueue::EventQueue() = default;

EventQueue::~EventQueue() = default;

void EventQueue::Push(PageEvent event) {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    events_.push_back(std::move(event));
  }
  pushed_.notify_all();
}

std::deque<PageEvent> EventQueue::TakeAll() {
  std::lock_guard<std::mutex> lock(mutex_);
  std::deque<PageEvent> taken;
  taken.swap(events_);
  return taken;
}

bool EventQueue::Empty() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return events_.empty();
}

void EventQueue::Clear() {
  std::lock_guard<std::mutex> lock(mutex_);
  events_.clear();
}

bool EventQueue::WaitUntil(std::chrono::steady_clock::time_point deadline) {
  std::unique_lock<std::mutex> lock(mutex_);
  return pushed_.wait_until(lock, deadline, [this] { return !events_.empty(); });
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal
