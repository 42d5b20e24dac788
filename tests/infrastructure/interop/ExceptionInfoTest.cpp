#include "wevlin/infrastructure/interop/ExceptionInfo.h"

#include <exception>
#include <future>
#include <memory>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <typeinfo>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo;
using wevlin_test::ThrowsExactly;

// A failure class of the embedding application, as any code might define it.
class ServiceFailure : public std::runtime_error {
 public:
  explicit ServiceFailure(const std::string& what) : std::runtime_error(what) {}
};

// A standard exception whose what() is chosen by the test.
class PlainFailure : public std::exception {
 public:
  const char* what() const noexcept override { return "plain failure"; }
};

class IndexFailure : public std::out_of_range {
 public:
  IndexFailure() : std::out_of_range("index 7") {}
};

// --- Names ----------------------------------------------------------------------

// One exception and the record it must give: the name of the standard class
// it is reported as, and its what() text.
struct NameCase {
  // The test's name suffix.
  const char* label;
  std::shared_ptr<const std::exception> failure;
  const char* name;
  // The expected message; null where it is the text the standard library
  // itself gives the exception (its own what()).
  const char* message;
};

void PrintTo(const NameCase& nameCase, std::ostream* out) { *out << nameCase.label; }

template <typename E, typename... Args>
std::shared_ptr<const std::exception> Make(Args&&... args) {
  return std::make_shared<E>(std::forward<Args>(args)...);
}

std::vector<NameCase> NameCases() {
  return {
      {"UnderflowError", Make<std::underflow_error>("u"), "std::underflow_error", "u"},
      {"OverflowError", Make<std::overflow_error>("o"), "std::overflow_error", "o"},
      {"RangeError", Make<std::range_error>("r"), "std::range_error", "r"},
      {"RuntimeError", Make<std::runtime_error>("JSON data is not an object"), "std::runtime_error",
       "JSON data is not an object"},
      {"OutOfRange", Make<std::out_of_range>("index 3"), "std::out_of_range", "index 3"},
      {"LengthError", Make<std::length_error>("too long"), "std::length_error", "too long"},
      {"InvalidArgument", Make<std::invalid_argument>("descriptor"), "std::invalid_argument",
       "descriptor"},
      {"DomainError", Make<std::domain_error>("d"), "std::domain_error", "d"},
      {"LogicError", Make<std::logic_error>("l"), "std::logic_error", "l"},
      {"AnyOtherExceptionStdException", Make<PlainFailure>(), "std::exception", "plain failure"},
      {"BadAllocStdException", Make<std::bad_alloc>(), "std::exception", nullptr},
      {"BadCastStdException", Make<std::bad_cast>(), "std::exception", nullptr},
      {"ADefaultStdExceptionStdException", Make<std::exception>(), "std::exception", nullptr},
      {"AClassDerivedFromRuntimeErrorRuntimeError", Make<ServiceFailure>("service failed"),
       "std::runtime_error", "service failed"},
      {"SystemErrorRuntimeError",
       Make<std::system_error>(std::make_error_code(std::errc::timed_out), "waiting"),
       "std::runtime_error", nullptr},
      {"AClassDerivedFromOutOfRangeOutOfRange", Make<IndexFailure>(), "std::out_of_range",
       "index 7"},
      {"FutureErrorLogicError", Make<std::future_error>(std::future_errc::no_state),
       "std::logic_error", nullptr},
  };
}

class ExceptionInfoNameTest : public ::testing::TestWithParam<NameCase> {};

// Each exception is handed over as a std::exception reference, as the
// library's callers do; the record must still name its dynamic type.
TEST_P(ExceptionInfoNameTest, Names) {
  const NameCase& nameCase = GetParam();
  ExceptionInfo info{*nameCase.failure};
  EXPECT_EQ(info.name, nameCase.name);
  EXPECT_EQ(info.message, nameCase.message != nullptr ? std::string(nameCase.message)
                                                      : std::string(nameCase.failure->what()));
}

INSTANTIATE_TEST_SUITE_P(EveryKind, ExceptionInfoNameTest, ::testing::ValuesIn(NameCases()),
                         [](const ::testing::TestParamInfo<NameCase>& info) {
                           return std::string(info.param.label);
                         });

TEST(ExceptionInfoTest, NamesTheDynamicTypeNotTheStaticOne) {
  const std::invalid_argument failure("fqn");
  const std::exception& seenAsBase = failure;
  ExceptionInfo info{seenAsBase};
  EXPECT_EQ(info.name, "std::invalid_argument");
  EXPECT_EQ(info.message, "fqn");
}

// --- Writing ------------------------------------------------------------------------

TEST(ExceptionInfoTest, DefaultRecordIsEmptyAndWritesNull) {
  ExceptionInfo info;
  EXPECT_EQ(info.name, "");
  EXPECT_EQ(info.message, "");
  EXPECT_FALSE(info.HasError());
  EXPECT_EQ(info.ToJsonString(), "null");
}

TEST(ExceptionInfoTest, WritesNameThenMessage) {
  ExceptionInfo info{std::out_of_range("index 3")};
  EXPECT_TRUE(info.HasError());
  EXPECT_EQ(info.ToJsonString(), "{\"name\": \"std::out_of_range\", \"message\": \"index 3\"}");
}

TEST(ExceptionInfoTest, EmptyMessageIsStillWritten) {
  ExceptionInfo info{std::runtime_error("")};
  EXPECT_TRUE(info.HasError());
  EXPECT_EQ(info.ToJsonString(), "{\"name\": \"std::runtime_error\", \"message\": \"\"}");
}

TEST(ExceptionInfoTest, EitherTextAloneMakesARecord) {
  ExceptionInfo onlyName;
  onlyName.name = "x";
  EXPECT_TRUE(onlyName.HasError());
  EXPECT_EQ(onlyName.ToJsonString(), "{\"name\": \"x\", \"message\": \"\"}");

  ExceptionInfo onlyMessage;
  onlyMessage.message = "y";
  EXPECT_TRUE(onlyMessage.HasError());
  EXPECT_EQ(onlyMessage.ToJsonString(), "{\"name\": \"\", \"message\": \"y\"}");
}

TEST(ExceptionInfoTest, EscapesAMessageAndStaysOneLine) {
  ExceptionInfo info{std::runtime_error("say \"no\"\nthen stop")};
  const std::string text = info.ToJsonString();
  EXPECT_EQ(text,
            "{\"name\": \"std::runtime_error\", \"message\": \"say \\\"no\\\"\\nthen stop\"}");
  EXPECT_EQ(text.find('\n'), std::string::npos);
}

TEST(ExceptionInfoTest, EscapesEveryEscapedCharacter) {
  ExceptionInfo info{std::logic_error("\b\t\n\f\r\"/\\")};
  EXPECT_EQ(info.ToJsonString(),
            "{\"name\": \"std::logic_error\", \"message\": \"\\b\\t\\n\\f\\r\\\"\\/\\\\\"}");
}

TEST(ExceptionInfoTest, WritesTheCurrentTexts) {
  ExceptionInfo info{std::runtime_error("a")};
  info.message = "b";
  EXPECT_EQ(info.ToJsonString(), "{\"name\": \"std::runtime_error\", \"message\": \"b\"}");
  info.name.clear();
  info.message.clear();
  EXPECT_EQ(info.ToJsonString(), "null");
}

// --- Reading ------------------------------------------------------------------------

TEST(ExceptionInfoTest, ReadsNameAndMessage) {
  ExceptionInfo info;
  EXPECT_TRUE(info.FromJsonString(
      "{\"name\": \"std::invalid_argument\", \"message\": \"say \\\"x\\\"\\nok\"}"));
  EXPECT_EQ(info.name, "std::invalid_argument");
  EXPECT_EQ(info.message, "say \"x\"\nok");
}

TEST(ExceptionInfoTest, ReadingKeepsAMissingField) {
  ExceptionInfo info{std::runtime_error("old")};
  EXPECT_TRUE(info.FromJsonString("{\"message\": \"new\"}"));
  EXPECT_EQ(info.name, "std::runtime_error");
  EXPECT_EQ(info.message, "new");
}

TEST(ExceptionInfoTest, ReadingKeepsTheRawTextOfANonString) {
  ExceptionInfo info;
  EXPECT_TRUE(info.FromJsonString("{\"name\": 12, \"message\": null}"));
  EXPECT_EQ(info.name, "12");
  EXPECT_EQ(info.message, "null");
}

TEST(ExceptionInfoTest, ReadingNullThrowsNotAnObject) {
  ExceptionInfo info;
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { info.FromJsonString("null"); },
                                                "JSON data is not an object"));
}

TEST(ExceptionInfoTest, WrittenRecordReadsBackIdentically) {
  ExceptionInfo original{std::domain_error("a/b \"c\"\td")};
  ExceptionInfo read;
  EXPECT_TRUE(read.FromJsonString(original.ToJsonString()));
  EXPECT_EQ(read.name, "std::domain_error");
  EXPECT_EQ(read.message, "a/b \"c\"\td");
  EXPECT_EQ(read.ToJsonString(), original.ToJsonString());
}

// --- Copies -------------------------------------------------------------------------

TEST(ExceptionInfoTest, CopyConstructionCopiesTheTextsAndWritesEachKeyOnce) {
  ExceptionInfo original{std::length_error("too long")};
  ExceptionInfo copy(original);
  EXPECT_EQ(copy.name, "std::length_error");
  EXPECT_EQ(copy.message, "too long");
  EXPECT_EQ(copy.ToJsonString(), "{\"name\": \"std::length_error\", \"message\": \"too long\"}");
}

TEST(ExceptionInfoTest, CopyIsBoundToItsOwnFields) {
  ExceptionInfo original{std::length_error("too long")};
  ExceptionInfo copy(original);
  EXPECT_TRUE(copy.FromJsonString("{\"message\": \"changed\"}"));
  EXPECT_EQ(copy.message, "changed");
  EXPECT_EQ(original.message, "too long");
  EXPECT_EQ(original.ToJsonString(),
            "{\"name\": \"std::length_error\", \"message\": \"too long\"}");
}

TEST(ExceptionInfoTest, CopyOfAnEmptyRecordWritesNull) {
  ExceptionInfo original;
  ExceptionInfo copy(original);
  EXPECT_EQ(copy.ToJsonString(), "null");
}

TEST(ExceptionInfoTest, CopyAssignmentCopiesTheTextsAndWritesEachKeyOnce) {
  ExceptionInfo source{std::overflow_error("big")};
  ExceptionInfo target{std::underflow_error("small")};
  target = source;
  EXPECT_EQ(target.name, "std::overflow_error");
  EXPECT_EQ(target.message, "big");
  EXPECT_EQ(target.ToJsonString(), "{\"name\": \"std::overflow_error\", \"message\": \"big\"}");
  EXPECT_TRUE(target.FromJsonString("{\"message\": \"bigger\"}"));
  EXPECT_EQ(source.message, "big");
}

TEST(ExceptionInfoTest, AssigningAnEmptyRecordEmptiesTheTarget) {
  ExceptionInfo target{std::runtime_error("x")};
  target = ExceptionInfo();
  EXPECT_EQ(target.name, "");
  EXPECT_EQ(target.message, "");
  EXPECT_EQ(target.ToJsonString(), "null");
}

}  // namespace
