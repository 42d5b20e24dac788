#include "UiThreadQueue.h"

#include <utility>

namespace wevlin_demo {

void UiThreadQueue::Post(std::function<void()> task) {
  std::lock_guard<std::mutex> lock(mutex_);
  tasks_.push_back(std::move(task));
}

std::size_t UiThreadQueue::RunPending() {
  std::deque<std::function<void()>> due;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    due.swap(tasks_);
  }
  for (auto& task : due) task();
  return due.size();
}

}  // namespace wevlin_demo
