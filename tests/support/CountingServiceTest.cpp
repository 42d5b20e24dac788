#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/CountingService.h"

namespace {

using wevlin_test::CountingService;
using wevlin_test::ServiceCall;
using wevlin_test::ServiceProbe;

TEST(CountingServiceTest, ReportsCallsAndDestructionToItsProbe) {
  ServiceProbe probe;
  auto* first = new CountingService("a.b", "_2014_02", &probe);
  auto* second = new CountingService("c.d", "_2014_07", &probe);
  first->InvokeMethod(nullptr, first, "one");
  second->InvokeEvent(nullptr, second, "two");
  delete first;
  EXPECT_EQ(probe.destroyed, 1);
  delete second;
  EXPECT_EQ(probe.destroyed, 2);

  ASSERT_EQ(probe.calls.size(), 2u);
  EXPECT_EQ(probe.calls[0].service, first);
  EXPECT_EQ(probe.calls[0].kind, ServiceCall::kMethod);
  EXPECT_EQ(probe.calls[0].payload, "one");
  EXPECT_EQ(probe.calls[1].service, second);
  EXPECT_EQ(probe.calls[1].kind, ServiceCall::kEvent);
  EXPECT_EQ(probe.calls[1].payload, "two");
}

TEST(CountingServiceTest, WorksWithoutAProbe) {
  auto* service = new CountingService("a.b", "_2014_02");
  EXPECT_EQ(service->InvokeMethod(nullptr, nullptr, "x"), "");
  EXPECT_EQ(service->Calls().size(), 1u);
  delete service;
}

TEST(CountingServiceTest, AnswersWithTheHandlerElseTheAnswer) {
  CountingService service("a.b", "_2014_02");
  service.SetAnswer("fixed");
  EXPECT_EQ(service.InvokeMethod(nullptr, nullptr, "p"), "fixed");
  service.SetMethodHandler([](CountingService::Instance*, CountingService::Descriptor*,
                              const std::string& payload) { return "handled " + payload; });
  EXPECT_EQ(service.InvokeMethod(nullptr, nullptr, "p"), "handled p");
  service.SetMethodHandler(nullptr);
  EXPECT_EQ(service.InvokeMethod(nullptr, nullptr, "p"), "fixed");
}

TEST(CountingServiceTest, RunsTheEventHandler) {
  CountingService service("a.b", "_2014_02");
  std::string seen;
  service.SetEventHandler(
      [&seen](CountingService::Instance*, CountingService::Descriptor* descriptor,
              const std::string& payload) { seen = descriptor->GetFQN() + "/" + payload; });
  service.InvokeEvent(nullptr, &service, "e");
  EXPECT_EQ(seen, "a.b/e");
}

TEST(CountingServiceTest, ThrowsUntilToldToStopAndRecordsEveryCall) {
  CountingService service("a.b", "_2014_02");
  service.ThrowOnInvoke(std::out_of_range("index 1"));
  for (int i = 0; i < 2; ++i) {
    try {
      service.InvokeMethod(nullptr, nullptr, "m");
      ADD_FAILURE() << "no exception";
    } catch (const std::out_of_range& e) {
      EXPECT_EQ(std::string(e.what()), "index 1");
    }
  }
  EXPECT_THROW(service.InvokeEvent(nullptr, nullptr, "e"), std::out_of_range);
  service.StopThrowing();
  EXPECT_EQ(service.InvokeMethod(nullptr, nullptr, "m"), "");
  EXPECT_EQ(service.Calls().size(), 4u);
}

}  // namespace
