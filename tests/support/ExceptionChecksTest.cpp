#include "support/ExceptionChecks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace wevlin_test {
namespace {

using ::testing::HasSubstr;

class DerivedFailure : public std::runtime_error {
 public:
  DerivedFailure() : std::runtime_error("derived") {}
};

TEST(ThrowsExactlyTest, SucceedsForTheExactTypeAndText) {
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([] { throw std::runtime_error("bad"); }, "bad"));
}

TEST(ThrowsExactlyTest, FailsWhenNothingIsThrown) {
  const ::testing::AssertionResult result = ThrowsExactly<std::runtime_error>([] {}, "bad");
  EXPECT_FALSE(result);
  EXPECT_THAT(result.message(), HasSubstr("threw nothing"));
}

TEST(ThrowsExactlyTest, FailsForAnotherText) {
  const ::testing::AssertionResult result =
      ThrowsExactly<std::runtime_error>([] { throw std::runtime_error("worse"); }, "bad");
  EXPECT_FALSE(result);
  EXPECT_THAT(result.message(), HasSubstr("\"worse\""));
}

TEST(ThrowsExactlyTest, FailsForADerivedType) {
  const ::testing::AssertionResult result =
      ThrowsExactly<std::runtime_error>([] { throw DerivedFailure(); }, "derived");
  EXPECT_FALSE(result);
  EXPECT_THAT(result.message(), HasSubstr("a class derived from"));
}

TEST(ThrowsExactlyTest, FailsForAnUnrelatedType) {
  EXPECT_FALSE(ThrowsExactly<std::runtime_error>([] { throw std::logic_error("bad"); }, "bad"));
  EXPECT_FALSE(ThrowsExactly<std::runtime_error>([] { throw 7; }, "bad"));
}

TEST(ThrownTest, NamesTheOutcome) {
  EXPECT_EQ(Thrown([] {}), "none");
  EXPECT_EQ(Thrown([] { throw std::runtime_error("r"); }), "runtime_error: r");
  EXPECT_EQ(Thrown([] { throw std::logic_error("l"); }), "logic_error: l");
  EXPECT_EQ(Thrown([] { throw std::invalid_argument("i"); }), "other: i");
  EXPECT_EQ(Thrown([] { throw DerivedFailure(); }), "other: derived");
  EXPECT_EQ(Thrown([] { throw 7; }), "unknown");
}

}  // namespace
}  // namespace wevlin_test
