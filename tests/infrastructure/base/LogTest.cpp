#include <gtest/gtest.h>

#include <string>

#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/infrastructure/base/internal/Log.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
using wevlin_test::StdoutCapture;

TEST(LogTest, WritesOneFlushedLineToStandardOutput) {
  StdoutCapture capture;
  base::internal::WriteLogLine("service list changed");
  EXPECT_EQ(capture.Text(), "service list changed\n");
}

TEST(LogTest, SinkReceivesLinesInsteadOfStandardOutput) {
  std::string received;
  base::LogSink previous =
      base::SetLogSink([&received](const std::string& line) { received += line + "|"; });
  EXPECT_FALSE(previous);
  {
    StdoutCapture capture;
    base::internal::WriteLogLine("a");
    base::internal::WriteLogLine("b");
    EXPECT_EQ(capture.Text(), "");
  }
  base::LogSink mine = base::SetLogSink(nullptr);
  EXPECT_TRUE(mine);
  EXPECT_EQ(received, "a|b|");

  StdoutCapture capture;
  base::internal::WriteLogLine("c");
  EXPECT_EQ(capture.Text(), "c\n");
}

TEST(LogTest, ThrowingSinkIsContained) {
  base::SetLogSink([](const std::string&) { throw 42; });
  EXPECT_NO_THROW(base::internal::WriteLogLine("x"));
  base::SetLogSink(nullptr);
}

}  // namespace
