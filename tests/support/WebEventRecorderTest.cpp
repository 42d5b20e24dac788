#include "support/WebEventRecorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "support/MockHostControlInstance.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"

namespace wevlin_test {
namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::BaseServiceDescriptor;
using ::testing::StrictMock;

TEST(WebEventRecorderTest, RecordsTargetTextAndThreadOfEachEvent) {
  StrictMock<MockHostControlInstance> instance;
  WebEventRecorder sent;
  EXPECT_EQ(sent.Count(), 0);
  EXPECT_EQ(sent.Last().text, "");
  sent.Expect(instance, 2);

  BaseServiceDescriptor first("app.One.client", "_2014_02");
  BaseServiceDescriptor second("app.Two.client", "_2014_07");
  instance.InvokeWebEvent(&first, "one");
  std::thread::id worker;
  std::thread other([&] {
    worker = std::this_thread::get_id();
    instance.InvokeWebEvent(&second, "two");
  });
  other.join();

  EXPECT_EQ(sent.Count(), 2);
  EXPECT_EQ(sent.Texts(), (std::vector<std::string>{"one", "two"}));
  const WebEventRecorder::Event last = sent.Last();
  EXPECT_EQ(last.fqn, "app.Two.client");
  EXPECT_EQ(last.version, "_2014_07");
  EXPECT_EQ(last.text, "two");
  EXPECT_EQ(last.thread, worker);
}

TEST(WebEventRecorderTest, AMissingEventFailsTheExpectation) {
  EXPECT_NONFATAL_FAILURE(
      {
        StrictMock<MockHostControlInstance> instance;
        WebEventRecorder sent;
        sent.Expect(instance);
      },
      "never called");
}

}  // namespace
}  // namespace wevlin_test
