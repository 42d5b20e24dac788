#include "wevlin/webcontrols/chromium/internal/EventQueue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal::EventQueue;
using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal::PageEvent;
using namespace std::chrono_literals;

PageEvent Event(const std::string& text) {
  PageEvent event;
  event.kind = PageEvent::Kind::BindingCalled;
  event.text = text;
  return event;
}

TEST(EventQueueTest, TakesEventsInArrivalOrder) {
  EventQueue queue;
  EXPECT_TRUE(queue.Empty());
  queue.Push(Event("first"));
  queue.Push(Event("second"));
  EXPECT_FALSE(queue.Empty());
  const auto taken = queue.TakeAll();
  ASSERT_EQ(taken.size(), 2u);
  EXPECT_EQ(taken[0].text, "first");
  EXPECT_EQ(taken[1].text, "second");
  EXPECT_TRUE(queue.Empty());
  EXPECT_TRUE(queue.TakeAll().empty());
}

TEST(EventQueueTest, ClearDropsEverything) {
  EventQueue queue;
  queue.Push(Event("dropped"));
  queue.Clear();
  EXPECT_TRUE(queue.Empty());
}

TEST(EventQueueTest, WaitUntilReturnsAtOnceWhenAnEventWaits) {
  EventQueue queue;
  queue.Push(Event("waiting"));
  EXPECT_TRUE(queue.WaitUntil(std::chrono::steady_clock::now()));
}

TEST(EventQueueTest, WaitUntilGivesUpAtTheDeadline) {
  EventQueue queue;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(queue.WaitUntil(start + 50ms));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 50ms);
}

TEST(EventQueueTest, WaitUntilWakesWhenAnotherThreadPushes) {
  EventQueue queue;
  std::thread pusher([&] {
    std::this_thread::sleep_for(20ms);
    queue.Push(Event("from the reader"));
  });
  EXPECT_TRUE(queue.WaitUntil(std::chrono::steady_clock::now() + 30s));
  pusher.join();
  EXPECT_EQ(queue.TakeAll().at(0).text, "from the reader");
}

}  // namespace
