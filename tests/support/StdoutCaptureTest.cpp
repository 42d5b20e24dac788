#include "support/StdoutCapture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>
#include <string>

namespace wevlin_test {
namespace {

TEST(StdoutCaptureTest, SeesCoutAndPrintfAlike) {
  StdoutCapture capture;
  std::cout << "from cout" << std::endl;
  std::printf("from printf\n");
  EXPECT_EQ(capture.Text(), "from cout\nfrom printf\n");
}

TEST(StdoutCaptureTest, SeesUnflushedOutputWhenAskedForText) {
  StdoutCapture capture;
  std::cout << "no flush";
  std::printf(" and more");
  EXPECT_EQ(capture.Text(), "no flush and more");
}

TEST(StdoutCaptureTest, CapturesNothingWhenNothingIsWritten) {
  StdoutCapture capture;
  EXPECT_EQ(capture.Text(), "");
}

TEST(StdoutCaptureTest, SequentialCapturesAreIndependent) {
  {
    StdoutCapture first;
    std::cout << "one" << std::endl;
    EXPECT_EQ(first.Text(), "one\n");
  }
  StdoutCapture second;
  std::cout << "two" << std::endl;
  EXPECT_EQ(second.Text(), "two\n");
}

}  // namespace
}  // namespace wevlin_test
