#include "wevlin/infrastructure/interop/port/Port.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <mutex>
#include <thread>

namespace {

namespace port = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::port;

constexpr std::chrono::seconds kPatience(20);

// One-shot callbacks take no argument, so what they report goes through
// process-wide state: a count and the thread of the last call per callback.
struct CallbackRecord {
  std::mutex mutex;
  std::condition_variable changed;
  int calls = 0;
  std::thread::id thread;

  void Record() {
    std::lock_guard<std::mutex> lock(mutex);
    ++calls;
    thread = std::this_thread::get_id();
    changed.notify_all();
  }

  // Returns whether `calls` reached `count` within kPatience.
  bool WaitForCalls(int count) {
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, kPatience, [this, count] { return calls >= count; });
  }

  int Calls() {
    std::lock_guard<std::mutex> lock(mutex);
    return calls;
  }

  std::thread::id Thread() {
    std::lock_guard<std::mutex> lock(mutex);
    return thread;
  }
};

// Never destroyed: a callback may still be running when the process exits.
CallbackRecord& firing = *new CallbackRecord();
CallbackRecord& deleted = *new CallbackRecord();
CallbackRecord& sentinel = *new CallbackRecord();
CallbackRecord& chained = *new CallbackRecord();

void OnFiring() { firing.Record(); }
void OnDeleted() { deleted.Record(); }
void OnSentinel() { sentinel.Record(); }

// Starts itself again from inside its own callback until it has run three
// times.
void OnChained() {
  chained.Record();
  if (chained.Calls() < 3) {
    port::CreateOneShotTimer(1, &OnChained);
  }
}

TEST(PortTest, CompareIgnoreCaseIgnoresLetterCase) {
  EXPECT_EQ(port::CompareIgnoreCase("Replace", "rEPLACE"), 0);
  EXPECT_EQ(port::CompareIgnoreCase("Add", "ADD"), 0);
  EXPECT_EQ(port::CompareIgnoreCase("", ""), 0);
  EXPECT_NE(port::CompareIgnoreCase("Replace", "Add"), 0);
  EXPECT_GT(port::CompareIgnoreCase("Replace", "Add"), 0);
  EXPECT_LT(port::CompareIgnoreCase("add", "REPLACE"), 0);
  EXPECT_LT(port::CompareIgnoreCase("Add", "Adds"), 0);
  EXPECT_GT(port::CompareIgnoreCase("Adds", "ADD"), 0);
}

TEST(PortTest, WallClockSecondsIsTheTimeSinceTheEpoch) {
  const std::time_t before = std::time(nullptr);
  const std::int64_t now = port::WallClockSeconds();
  const std::time_t after = std::time(nullptr);
  EXPECT_GE(now, static_cast<std::int64_t>(before));
  EXPECT_LE(now, static_cast<std::int64_t>(after));
}

TEST(PortTest, OneShotTimerFiresOnceOnAnotherThread) {
  void* handle = port::CreateOneShotTimer(10, &OnFiring);
  ASSERT_NE(handle, nullptr);
  ASSERT_TRUE(firing.WaitForCalls(1));
  EXPECT_NE(firing.Thread(), std::this_thread::get_id());

  // A later timer has fired, so the first one had every chance to repeat.
  void* later = port::CreateOneShotTimer(50, &OnSentinel);
  ASSERT_NE(later, nullptr);
  ASSERT_TRUE(sentinel.WaitForCalls(1));
  EXPECT_EQ(firing.Calls(), 1);

  // Deleting a timer that has fired releases it and changes nothing else.
  port::DeleteOneShotTimer(handle);
  port::DeleteOneShotTimer(later);
  EXPECT_EQ(firing.Calls(), 1);
}

TEST(PortTest, DeletedOneShotTimerNeverFires) {
  void* handle = port::CreateOneShotTimer(20, &OnDeleted);
  ASSERT_NE(handle, nullptr);
  port::DeleteOneShotTimer(handle);

  // Due well after the deleted one: once it has fired, the deleted one would
  // have fired before it.
  void* later = port::CreateOneShotTimer(200, &OnSentinel);
  ASSERT_NE(later, nullptr);
  ASSERT_TRUE(sentinel.WaitForCalls(sentinel.Calls() + 1));
  EXPECT_EQ(deleted.Calls(), 0);
  port::DeleteOneShotTimer(later);
}

TEST(PortTest, CallbackMayStartAnotherTimer) {
  void* handle = port::CreateOneShotTimer(1, &OnChained);
  ASSERT_NE(handle, nullptr);
  ASSERT_TRUE(chained.WaitForCalls(3));
  EXPECT_NE(chained.Thread(), std::this_thread::get_id());
}

TEST(PortTest, HandlesAreDistinctAndNullIsRefused) {
  void* first = port::CreateOneShotTimer(600000, &OnDeleted);
  void* second = port::CreateOneShotTimer(600000, &OnDeleted);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  port::DeleteOneShotTimer(first);
  port::DeleteOneShotTimer(second);
  EXPECT_EQ(port::CreateOneShotTimer(10, nullptr), nullptr);
  port::DeleteOneShotTimer(nullptr);
  EXPECT_EQ(deleted.Calls(), 0);
}

}  // namespace
