#include "support/ManualTimerQueue.h"

namespace wevlin_test {

ManualTimerQueue::ManualTimerQueue() = default;

ManualTimerQueue::~ManualTimerQueue() = default;

void* ManualTimerQueue::Arm(unsigned int dueMs, void (*callback)()) {
  std::lock_guard<std::mutex> lock(mutex_);
  armedPeriods_.push_back(dueMs);
  if (armFails_) {
    return nullptr;
  }
  const std::uintptr_t id = nextId_++;
  pending_.emplace(id, callback);
  return reinterpret_cast<void*>(id);
}

void ManualTimerQueue::Disarm(void* handle) {
  const auto id = reinterpret_cast<std::uintptr_t>(handle);
  std::lock_guard<std::mutex> lock(mutex_);
  ++disarmCount_;
  pending_.erase(id);
}

bool ManualTimerQueue::IsArmed() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return !pending_.empty();
}

std::size_t ManualTimerQueue::PendingCount() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return pending_.size();
}

int ManualTimerQueue::ArmCount() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return static_cast<int>(armedPeriods_.size());
}

int ManualTimerQueue::DisarmCount() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return disarmCount_;
}

unsigned int ManualTimerQueue::LastPeriod() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return armedPeriods_.empty() ? 0 : armedPeriods_.back();
}

std::vector<unsigned int> ManualTimerQueue::ArmedPeriods() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return armedPeriods_;
}

void ManualTimerQueue::SetArmFails(bool fails) {
  std::lock_guard<std::mutex> lock(mutex_);
  armFails_ = fails;
}

bool ManualTimerQueue::Fire() {
  void (*callback)() = nullptr;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    if (pending_.empty()) {
      return false;
    }
    callback = pending_.begin()->second;
    pending_.erase(pending_.begin());
  }
  callback();
  return true;
}

}  // namespace wevlin_test
