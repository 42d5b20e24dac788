#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/ExceptionChecks.h"
#include "wevlin/infrastructure/interop/ExceptionHolder.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::ExceptionHolder;
using interop::ExceptionInfo;
using wevlin_test::ThrowsExactly;

TEST(ExceptionHolderTest, DefaultHolderWritesANullRecord) {
  ExceptionHolder holder;
  EXPECT_EQ(holder.Exception.name, "");
  EXPECT_EQ(holder.Exception.message, "");
  EXPECT_EQ(holder.ToJsonString(), "{\"Exception\": null}");
}

TEST(ExceptionHolderTest, WritesTheRecordAsASubObject) {
  ExceptionHolder holder;
  holder.Exception = ExceptionInfo(std::runtime_error("JSON data is not an object"));
  EXPECT_EQ(holder.ToJsonString(),
            "{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"JSON data is not an "
            "object\"}}");
}

TEST(ExceptionHolderTest, EveryWrittenRecordStartsWithTheExceptionKey) {
  ExceptionHolder empty;
  ExceptionHolder full;
  full.Exception = ExceptionInfo(std::invalid_argument("fqn"));
  EXPECT_EQ(empty.ToJsonString().rfind("{\"Exception", 0), 0u);
  EXPECT_EQ(full.ToJsonString().rfind("{\"Exception", 0), 0u);
}

TEST(ExceptionHolderTest, WritesChangesMadeToItsRecord) {
  ExceptionHolder holder;
  holder.Exception.name = "std::logic_error";
  holder.Exception.message = "wrong kind";
  EXPECT_EQ(holder.ToJsonString(),
            "{\"Exception\": {\"name\": \"std::logic_error\", \"message\": \"wrong kind\"}}");
}

TEST(ExceptionHolderTest, EscapedMessageKeepsTheDocumentOnOneLine) {
  ExceptionHolder holder;
  holder.Exception = ExceptionInfo(std::runtime_error("line one\nline \"two\""));
  const std::string text = holder.ToJsonString();
  EXPECT_EQ(text,
            "{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"line "
            "one\\nline \\\"two\\\"\"}}");
  EXPECT_EQ(text.find('\n'), std::string::npos);
}

TEST(ExceptionHolderTest, ReadsARecordBack) {
  ExceptionHolder holder;
  EXPECT_TRUE(holder.FromJsonString(
      "{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"JSON data is not an "
      "object\"}}"));
  EXPECT_EQ(holder.Exception.name, "std::runtime_error");
  EXPECT_EQ(holder.Exception.message, "JSON data is not an object");
}

TEST(ExceptionHolderTest, ReadsWhatItWroteBackIdentically) {
  ExceptionHolder original;
  original.Exception = ExceptionInfo(std::out_of_range("a \"b\"\n\\c/"));
  ExceptionHolder read;
  EXPECT_TRUE(read.FromJsonString(original.ToJsonString()));
  EXPECT_EQ(read.Exception.name, "std::out_of_range");
  EXPECT_EQ(read.Exception.message, "a \"b\"\n\\c/");
  EXPECT_EQ(read.ToJsonString(), original.ToJsonString());
}

TEST(ExceptionHolderTest, ReadingARecordWithoutMessageKeepsTheMessage) {
  ExceptionHolder holder;
  holder.Exception.message = "kept";
  EXPECT_TRUE(holder.FromJsonString("{\"Exception\": {\"name\": \"std::domain_error\"}}"));
  EXPECT_EQ(holder.Exception.name, "std::domain_error");
  EXPECT_EQ(holder.Exception.message, "kept");
}

TEST(ExceptionHolderTest, ReadingWithoutTheExceptionKeyChangesNothing) {
  ExceptionHolder holder;
  EXPECT_TRUE(holder.FromJsonString("{\"Other\": 1}"));
  EXPECT_EQ(holder.ToJsonString(), "{\"Exception\": null}");
}

TEST(ExceptionHolderTest, ReadingANullRecordThrowsNotAnObject) {
  ExceptionHolder holder;
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [&] { holder.FromJsonString("{\"Exception\": null}"); }, "JSON data is not an object"));
}

TEST(ExceptionHolderTest, ReadingAnArrayThrowsNotAnObject) {
  ExceptionHolder holder;
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { holder.FromJsonString("[]"); },
                                                "JSON data is not an object"));
}

TEST(ExceptionHolderTest, CopyConstructionCopiesTheRecordAndWritesTheKeyOnce) {
  ExceptionHolder original;
  original.Exception = ExceptionInfo(std::length_error("too long"));
  ExceptionHolder copy(original);
  EXPECT_EQ(copy.ToJsonString(),
            "{\"Exception\": {\"name\": \"std::length_error\", \"message\": \"too long\"}}");

  copy.Exception.message = "changed";
  EXPECT_EQ(original.Exception.message, "too long");
  EXPECT_EQ(copy.ToJsonString(),
            "{\"Exception\": {\"name\": \"std::length_error\", \"message\": \"changed\"}}");
}

TEST(ExceptionHolderTest, CopyOfAnEmptyHolderWritesANullRecord) {
  ExceptionHolder original;
  ExceptionHolder copy(original);
  EXPECT_EQ(copy.ToJsonString(), "{\"Exception\": null}");
}

TEST(ExceptionHolderTest, CopyAssignmentCopiesTheRecordAndWritesTheKeyOnce) {
  ExceptionHolder source;
  source.Exception = ExceptionInfo(std::invalid_argument("target"));
  ExceptionHolder target;
  target = source;
  EXPECT_EQ(target.ToJsonString(),
            "{\"Exception\": {\"name\": \"std::invalid_argument\", \"message\": \"target\"}}");
  target.Exception.name.clear();
  EXPECT_EQ(source.Exception.name, "std::invalid_argument");
}

}  // namespace
