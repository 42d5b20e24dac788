#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "support/ExceptionChecks.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::DataServiceDescriptor;
using wevlin_test::ThrowsExactly;

TEST(DataServiceDescriptorTest, DefaultHasEmptyTextsAndWritesBothKeys) {
  DataServiceDescriptor descriptor;
  EXPECT_EQ(descriptor.FQN, "");
  EXPECT_EQ(descriptor.SvcVersion, "");
  EXPECT_EQ(descriptor.ToJsonString(), "{\"FQN\": \"\", \"SvcVersion\": \"\"}");
}

TEST(DataServiceDescriptorTest, WritesFqnThenSvcVersion) {
  DataServiceDescriptor descriptor("a.b.c", "2");
  EXPECT_EQ(descriptor.FQN, "a.b.c");
  EXPECT_EQ(descriptor.SvcVersion, "2");
  EXPECT_EQ(descriptor.ToJsonString(), "{\"FQN\": \"a.b.c\", \"SvcVersion\": \"2\"}");
}

TEST(DataServiceDescriptorTest, WritesTheCurrentValuesOfItsFields) {
  DataServiceDescriptor descriptor("a.b.c", "2");
  descriptor.FQN = "tavo.wevlin.infrastructure.services.session.Session.client";
  descriptor.SvcVersion = "_2014_07";
  EXPECT_EQ(descriptor.ToJsonString(),
            "{\"FQN\": \"tavo.wevlin.infrastructure.services.session.Session.client\", "
            "\"SvcVersion\": \"_2014_07\"}");
}

TEST(DataServiceDescriptorTest, EscapesTheValues) {
  DataServiceDescriptor descriptor("say \"hi\"\\now/", "line\nfeed\ttab");
  EXPECT_EQ(descriptor.ToJsonString(),
            "{\"FQN\": \"say \\\"hi\\\"\\\\now\\/\", \"SvcVersion\": \"line\\nfeed\\ttab\"}");
}

TEST(DataServiceDescriptorTest, ReadsBothKeys) {
  DataServiceDescriptor descriptor;
  EXPECT_TRUE(descriptor.FromJsonString(
      "{\"FQN\": \"tavo.wevlin.infrastructure.services.core.HostConfiguration.host\", "
      "\"SvcVersion\": \"_2014_07\"}"));
  EXPECT_EQ(descriptor.FQN, "tavo.wevlin.infrastructure.services.core.HostConfiguration.host");
  EXPECT_EQ(descriptor.SvcVersion, "_2014_07");
}

TEST(DataServiceDescriptorTest, ReadsKeysInAnyOrderAndIgnoresOthers) {
  DataServiceDescriptor descriptor;
  EXPECT_TRUE(
      descriptor.FromJsonString("{\"Extra\": [1, 2], \"SvcVersion\": \"1\", \"FQN\": \"x.y\"}"));
  EXPECT_EQ(descriptor.FQN, "x.y");
  EXPECT_EQ(descriptor.SvcVersion, "1");
}

TEST(DataServiceDescriptorTest, ReadingWithoutSvcVersionKeepsItEmpty) {
  DataServiceDescriptor descriptor;
  EXPECT_TRUE(descriptor.FromJsonString("{\"FQN\": \"a.b\"}"));
  EXPECT_EQ(descriptor.FQN, "a.b");
  EXPECT_EQ(descriptor.SvcVersion, "");
  EXPECT_EQ(descriptor.ToJsonString(), "{\"FQN\": \"a.b\", \"SvcVersion\": \"\"}");
}

TEST(DataServiceDescriptorTest, ReadingWithoutAKeyKeepsTheValueItHad) {
  DataServiceDescriptor descriptor("old.name", "_2014_02");
  EXPECT_TRUE(descriptor.FromJsonString("{\"SvcVersion\": \"_2014_07\"}"));
  EXPECT_EQ(descriptor.FQN, "old.name");
  EXPECT_EQ(descriptor.SvcVersion, "_2014_07");
}

TEST(DataServiceDescriptorTest, ReadsEscapedValues) {
  DataServiceDescriptor descriptor;
  EXPECT_TRUE(descriptor.FromJsonString(
      "{\"FQN\": \"say \\\"hi\\\"\\\\now\\/\", \"SvcVersion\": \"line\\nfeed\"}"));
  EXPECT_EQ(descriptor.FQN, "say \"hi\"\\now/");
  EXPECT_EQ(descriptor.SvcVersion, "line\nfeed");
}

TEST(DataServiceDescriptorTest, KeepsTheRawTextOfAValueThatIsNotAString) {
  DataServiceDescriptor descriptor;
  EXPECT_TRUE(descriptor.FromJsonString("{\"FQN\": 5, \"SvcVersion\": true}"));
  EXPECT_EQ(descriptor.FQN, "5");
  EXPECT_EQ(descriptor.SvcVersion, "true");
}

TEST(DataServiceDescriptorTest, WritesWhatItReadBackIdentically) {
  const std::string text = "{\"FQN\": \"a\\\"b\\\\c\\/d\", \"SvcVersion\": \"_2016_04\"}";
  DataServiceDescriptor descriptor;
  EXPECT_TRUE(descriptor.FromJsonString(text));
  EXPECT_EQ(descriptor.ToJsonString(), text);
}

TEST(DataServiceDescriptorTest, ThrowsWhenTheTextIsNotAnObject) {
  DataServiceDescriptor descriptor("a.b", "1");
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { descriptor.FromJsonString("[1]"); },
                                                "JSON data is not an object"));
  EXPECT_EQ(descriptor.FQN, "a.b");
  EXPECT_EQ(descriptor.SvcVersion, "1");
}

TEST(DataServiceDescriptorTest, MalformedObjectReadsTrueAndChangesNothing) {
  DataServiceDescriptor descriptor("a.b", "1");
  EXPECT_TRUE(descriptor.FromJsonString("{\"FQN\" \"x\"}"));
  EXPECT_EQ(descriptor.FQN, "a.b");
  EXPECT_EQ(descriptor.SvcVersion, "1");
}

TEST(DataServiceDescriptorTest, CopyConstructionWritesEachKeyOnce) {
  DataServiceDescriptor original("a.b.c", "2");
  DataServiceDescriptor copy(original);
  EXPECT_EQ(copy.FQN, "a.b.c");
  EXPECT_EQ(copy.SvcVersion, "2");
  EXPECT_EQ(copy.ToJsonString(), "{\"FQN\": \"a.b.c\", \"SvcVersion\": \"2\"}");
  EXPECT_EQ(original.ToJsonString(), "{\"FQN\": \"a.b.c\", \"SvcVersion\": \"2\"}");
}

TEST(DataServiceDescriptorTest, CopyIsBoundToItsOwnFields) {
  DataServiceDescriptor original("a.b.c", "2");
  DataServiceDescriptor copy(original);

  copy.FQN = "x.y";
  EXPECT_TRUE(copy.FromJsonString("{\"SvcVersion\": \"3\"}"));
  EXPECT_EQ(copy.ToJsonString(), "{\"FQN\": \"x.y\", \"SvcVersion\": \"3\"}");
  EXPECT_EQ(original.FQN, "a.b.c");
  EXPECT_EQ(original.SvcVersion, "2");
  EXPECT_EQ(original.ToJsonString(), "{\"FQN\": \"a.b.c\", \"SvcVersion\": \"2\"}");
}

TEST(DataServiceDescriptorTest, CopyOfACopyStillWritesEachKeyOnce) {
  DataServiceDescriptor original("a", "1");
  DataServiceDescriptor first(original);
  DataServiceDescriptor second(first);
  EXPECT_EQ(second.ToJsonString(), "{\"FQN\": \"a\", \"SvcVersion\": \"1\"}");
}

TEST(DataServiceDescriptorTest, CopyAssignmentWritesEachKeyOnce) {
  DataServiceDescriptor source("c.d", "_2015_10");
  DataServiceDescriptor target("a.b", "_2014_02");
  target = source;
  EXPECT_EQ(target.FQN, "c.d");
  EXPECT_EQ(target.SvcVersion, "_2015_10");
  EXPECT_EQ(target.ToJsonString(), "{\"FQN\": \"c.d\", \"SvcVersion\": \"_2015_10\"}");

  // Assigning again registers nothing further either.
  target = source;
  EXPECT_EQ(target.ToJsonString(), "{\"FQN\": \"c.d\", \"SvcVersion\": \"_2015_10\"}");
}

TEST(DataServiceDescriptorTest, CopyAssignmentCopiesEmptyTexts) {
  DataServiceDescriptor source;
  DataServiceDescriptor target("a.b", "_2014_02");
  target = source;
  EXPECT_EQ(target.FQN, "");
  EXPECT_EQ(target.SvcVersion, "");
  EXPECT_EQ(target.ToJsonString(), "{\"FQN\": \"\", \"SvcVersion\": \"\"}");
}

TEST(DataServiceDescriptorTest, AssignedObjectStaysBoundToItsOwnFields) {
  DataServiceDescriptor source("c.d", "_2015_10");
  DataServiceDescriptor target;
  target = source;
  EXPECT_TRUE(target.FromJsonString("{\"FQN\": \"e.f\"}"));
  EXPECT_EQ(target.ToJsonString(), "{\"FQN\": \"e.f\", \"SvcVersion\": \"_2015_10\"}");
  EXPECT_EQ(source.ToJsonString(), "{\"FQN\": \"c.d\", \"SvcVersion\": \"_2015_10\"}");
}

TEST(DataServiceDescriptorTest, SelfAssignmentKeepsTheTexts) {
  DataServiceDescriptor descriptor("a.b", "_2014_02");
  DataServiceDescriptor& alias = descriptor;
  descriptor = alias;
  EXPECT_EQ(descriptor.ToJsonString(), "{\"FQN\": \"a.b\", \"SvcVersion\": \"_2014_02\"}");
}

TEST(DataServiceDescriptorTest, CanBeAllocatedAndDestroyedThroughItsOwnType) {
  auto descriptor = std::make_unique<DataServiceDescriptor>("a.b", "_2014_02");
  EXPECT_EQ(descriptor->ToJsonString(), "{\"FQN\": \"a.b\", \"SvcVersion\": \"_2014_02\"}");
  descriptor.reset();
  EXPECT_EQ(descriptor, nullptr);
}

}  // namespace
