#include <gtest/gtest.h>

#include <exception>
#include <future>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <typeinfo>

#include "wevlin/infrastructure/interop/ExceptionInfo.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo;

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

// Runs `statement`, expecting a std::runtime_error whose what() is `text`.
template <typename Statement>
void ExpectRuntimeError(Statement statement, const std::string& text) {
  try {
    statement();
    ADD_FAILURE() << "no exception; expected std::runtime_error \"" << text << "\"";
  } catch (const std::runtime_error& e) {
    EXPECT_EQ(std::string(e.what()), text);
  }
}

// --- Names ----------------------------------------------------------------------

TEST(ExceptionInfoTest, NamesUnderflowError) {
  ExceptionInfo info{std::underflow_error("u")};
  EXPECT_EQ(info.name, "std::underflow_error");
  EXPECT_EQ(info.message, "u");
}

TEST(ExceptionInfoTest, NamesOverflowError) {
  ExceptionInfo info{std::overflow_error("o")};
  EXPECT_EQ(info.name, "std::overflow_error");
  EXPECT_EQ(info.message, "o");
}

TEST(ExceptionInfoTest, NamesRangeError) {
  ExceptionInfo info{std::range_error("r")};
  EXPECT_EQ(info.name, "std::range_error");
  EXPECT_EQ(info.message, "r");
}

TEST(ExceptionInfoTest, NamesRuntimeError) {
  ExceptionInfo info{std::runtime_error("JSON data is not an object")};
  EXPECT_EQ(info.name, "std::runtime_error");
  EXPECT_EQ(info.message, "JSON data is not an object");
}

TEST(ExceptionInfoTest, NamesOutOfRange) {
  ExceptionInfo info{std::out_of_range("index 3")};
  EXPECT_EQ(info.name, "std::out_of_range");
  EXPECT_EQ(info.message, "index 3");
}

TEST(ExceptionInfoTest, NamesLengthError) {
  ExceptionInfo info{std::length_error("too long")};
  EXPECT_EQ(info.name, "std::length_error");
  EXPECT_EQ(info.message, "too long");
}

TEST(ExceptionInfoTest, NamesInvalidArgument) {
  ExceptionInfo info{std::invalid_argument("descriptor")};
  EXPECT_EQ(info.name, "std::invalid_argument");
  EXPECT_EQ(info.message, "descriptor");
}

TEST(ExceptionInfoTest, NamesDomainError) {
  ExceptionInfo info{std::domain_error("d")};
  EXPECT_EQ(info.name, "std::domain_error");
  EXPECT_EQ(info.message, "d");
}

TEST(ExceptionInfoTest, NamesLogicError) {
  ExceptionInfo info{std::logic_error("l")};
  EXPECT_EQ(info.name, "std::logic_error");
  EXPECT_EQ(info.message, "l");
}

TEST(ExceptionInfoTest, NamesAnyOtherExceptionStdException) {
  ExceptionInfo info{PlainFailure()};
  EXPECT_EQ(info.name, "std::exception");
  EXPECT_EQ(info.message, "plain failure");
}

TEST(ExceptionInfoTest, NamesBadAllocStdException) {
  const std::bad_alloc failure;
  ExceptionInfo info{failure};
  EXPECT_EQ(info.name, "std::exception");
  EXPECT_EQ(info.message, std::string(failure.what()));
}

TEST(ExceptionInfoTest, NamesBadCastStdException) {
  const std::bad_cast failure;
  ExceptionInfo info{failure};
  EXPECT_EQ(info.name, "std::exception");
  EXPECT_EQ(info.message, std::string(failure.what()));
}

TEST(ExceptionInfoTest, NamesADefaultStdExceptionStdException) {
  const std::exception failure;
  ExceptionInfo info{failure};
  EXPECT_EQ(info.name, "std::exception");
  EXPECT_EQ(info.message, std::string(failure.what()));
}

TEST(ExceptionInfoTest, NamesAClassDerivedFromRuntimeErrorRuntimeError) {
  ExceptionInfo info{ServiceFailure("service failed")};
  EXPECT_EQ(info.name, "std::runtime_error");
  EXPECT_EQ(info.message, "service failed");
}

TEST(ExceptionInfoTest, NamesSystemErrorRuntimeError) {
  const std::system_error failure(std::make_error_code(std::errc::timed_out), "waiting");
  ExceptionInfo info{failure};
  EXPECT_EQ(info.name, "std::runtime_error");
  EXPECT_EQ(info.message, std::string(failure.what()));
}

TEST(ExceptionInfoTest, NamesAClassDerivedFromOutOfRangeOutOfRange) {
  ExceptionInfo info{IndexFailure()};
  EXPECT_EQ(info.name, "std::out_of_range");
  EXPECT_EQ(info.message, "index 7");
}

TEST(ExceptionInfoTest, NamesFutureErrorLogicError) {
  const std::future_error failure(std::future_errc::no_state);
  ExceptionInfo info{failure};
  EXPECT_EQ(info.name, "std::logic_error");
  EXPECT_EQ(info.message, std::string(failure.what()));
}

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
  ExpectRuntimeError([&] { info.FromJsonString("null"); }, "JSON data is not an object");
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
