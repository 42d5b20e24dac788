#include <strings.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <ctime>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <utility>

#include "wevlin/infrastructure/interop/port/Port.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::port {
namespace {

// All one-shot timers of the process, served by one thread of their own.
//
// The thread is started by the first timer and then waits for the earliest
// pending timer to fall due, takes it out of the queue and runs its callback
// without holding the lock, so a callback may create or delete timers. A
// handle is a serial number that is never reused; deleting a timer only
// removes its entry, so nothing a running callback uses is ever freed.
//
// The queue and its thread are never destroyed: the thread is detached and
// the object leaked on purpose, so that process exit never has to stop or
// join a thread that may be inside a callback.
class TimerThread {
 public:
  using Clock = std::chrono::steady_clock;

  // Returns the process-wide instance.
  static TimerThread& Instance() {
    static auto* instance = new TimerThread();
    return *instance;
  }

  void* Create(unsigned int dueMs, void (*callback)()) {
    const Clock::time_point due = Clock::now() + std::chrono::milliseconds(dueMs);
    std::lock_guard<std::mutex> lock(mutex_);
    if (!started_) {
      try {
        std::thread(&TimerThread::Run, this).detach();
      } catch (const std::system_error&) {
        return nullptr;
      }
      started_ = true;
    }
    const std::uintptr_t id = nextId_++;
    if (nextId_ == 0) {
      nextId_ = 1;
    }
    byDue_.emplace(Key{due, id}, callback);
    dueOf_.emplace(id, due);
    changed_.notify_one();
    // The handle is the serial number itself and is never dereferenced.
    return reinterpret_cast<void*>(id);  // NOLINT(performance-no-int-to-ptr)
  }

  void Delete(void* handle) {
    const auto id = reinterpret_cast<std::uintptr_t>(handle);
    std::lock_guard<std::mutex> lock(mutex_);
    const auto found = dueOf_.find(id);
    if (found == dueOf_.end()) {
      return;  // Already fired (its callback may be running right now).
    }
    byDue_.erase(Key{found->second, id});
    dueOf_.erase(found);
    changed_.notify_one();
  }

 private:
  // Pending timers are ordered by due time, then by creation.
  using Key = std::pair<Clock::time_point, std::uintptr_t>;

  TimerThread() = default;

  void Run() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
      if (byDue_.empty()) {
        changed_.wait(lock);
        continue;
      }
      const auto first = byDue_.begin();
      const Clock::time_point due = first->first.first;
      if (Clock::now() < due) {
        changed_.wait_until(lock, due);
        continue;
      }
      void (*callback)() = first->second;
      dueOf_.erase(first->first.second);
      byDue_.erase(first);
      lock.unlock();
      try {
        callback();
      } catch (...) {
        // A callback must not throw; the thread serves every other timer, so
        // it is not allowed to die of one that does.
      }
      lock.lock();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<Key, void (*)()> byDue_;
  std::unordered_map<std::uintptr_t, Clock::time_point> dueOf_;
  std::uintptr_t nextId_ = 1;
  bool started_ = false;
};

}  // namespace

std::int64_t WallClockSeconds() { return static_cast<std::int64_t>(std::time(nullptr)); }

int CompareIgnoreCase(const char* a, const char* b) { return ::strcasecmp(a, b); }

void* CreateOneShotTimer(unsigned int dueMs, void (*callback)()) {
  if (callback == nullptr) {
    return nullptr;
  }
  return TimerThread::Instance().Create(dueMs, callback);
}

void DeleteOneShotTimer(void* handle) {
  if (handle == nullptr) {
    return;
  }
  TimerThread::Instance().Delete(handle);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::port
