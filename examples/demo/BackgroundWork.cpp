#include "BackgroundWork.h"

#include <utility>

namespace wevlin_demo {

BackgroundWork::~BackgroundWork() { JoinAll(); }

void BackgroundWork::Start(std::chrono::milliseconds delay, std::function<void(int)> job) {
  std::lock_guard<std::mutex> lock(mutex_);
  const int number = ++started_;
  threads_.emplace_back([delay, number, job = std::move(job)] {
    std::this_thread::sleep_for(delay);
    job(number);
  });
}

void BackgroundWork::JoinAll() {
  std::vector<std::thread> threads;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    threads.swap(threads_);
  }
  for (std::thread& thread : threads) {
    if (thread.joinable()) thread.join();
  }
}

}  // namespace wevlin_demo
