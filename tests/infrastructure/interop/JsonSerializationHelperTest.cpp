#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/CountingService.h"
#include "support/ExceptionChecks.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/Base64.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace helper = interop::JsonSerializationHelper;
using interop::Base64;
using interop::BaseServiceDescriptor;
using interop::DataServiceDescriptor;
using wevlin_test::CountingService;
using wevlin_test::StdoutCapture;
using wevlin_test::ThrowsExactly;

using DescriptorList = std::vector<DataServiceDescriptor*>;

// Owns what Deserialize returns: the vector and every descriptor in it. (A
// descriptor is deleted through std::unique_ptr, as the library does: its
// destructor is not virtual, so a bare delete draws a compiler warning.)
struct OwnedList {
  explicit OwnedList(DescriptorList* list) : list(list) {}
  ~OwnedList() {
    if (list == nullptr) return;
    for (DataServiceDescriptor* descriptor : *list) {
      std::unique_ptr<DataServiceDescriptor> owned(descriptor);
    }
    delete list;
  }
  OwnedList(const OwnedList&) = delete;
  OwnedList& operator=(const OwnedList&) = delete;

  DescriptorList* list;
};

// Returns the (FQN, SvcVersion) pairs of `list`, for exact comparison.
std::vector<std::pair<std::string, std::string>> Pairs(const DescriptorList& list) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const DataServiceDescriptor* descriptor : list) {
    pairs.emplace_back(descriptor->FQN, descriptor->SvcVersion);
  }
  return pairs;
}

using PairList = std::vector<std::pair<std::string, std::string>>;

// A standard exception whose what() is chosen by the test.
class PlainFailure : public std::exception {
 public:
  const char* what() const noexcept override { return "plain \"failure\""; }
};

// --- GetServiceDescJson ------------------------------------------------------------

TEST(JsonSerializationHelperTest, GetServiceDescJsonOfNullThrowsTarget) {
  EXPECT_TRUE(
      ThrowsExactly<std::invalid_argument>([] { helper::GetServiceDescJson(nullptr); }, "target"));
}

TEST(JsonSerializationHelperTest, GetServiceDescJsonWritesFqnThenSvcVersion) {
  BaseServiceDescriptor descriptor("a.b.c", "2");
  EXPECT_EQ(helper::GetServiceDescJson(&descriptor), "{\"FQN\": \"a.b.c\", \"SvcVersion\": \"2\"}");
}

TEST(JsonSerializationHelperTest, GetServiceDescJsonOfAHostService) {
  CountingService service("tavo.wevlin.infrastructure.services.core.HostConfiguration.host",
                          "_2014_07");
  EXPECT_EQ(helper::GetServiceDescJson(&service),
            "{\"FQN\": \"tavo.wevlin.infrastructure.services.core.HostConfiguration.host\", "
            "\"SvcVersion\": \"_2014_07\"}");
}

TEST(JsonSerializationHelperTest, GetServiceDescJsonEscapesTheValues) {
  BaseServiceDescriptor descriptor("a\"b\\c/d", "1\n2");
  EXPECT_EQ(helper::GetServiceDescJson(&descriptor),
            "{\"FQN\": \"a\\\"b\\\\c\\/d\", \"SvcVersion\": \"1\\n2\"}");
}

TEST(JsonSerializationHelperTest, GetServiceDescJsonOfEmptyTexts) {
  BaseServiceDescriptor descriptor("", "");
  EXPECT_EQ(helper::GetServiceDescJson(&descriptor), "{\"FQN\": \"\", \"SvcVersion\": \"\"}");
}

// --- GetJsonForException --------------------------------------------------------------

TEST(JsonSerializationHelperTest, GetJsonForExceptionWritesTheRecord) {
  EXPECT_EQ(helper::GetJsonForException(std::runtime_error("JSON data is not an object")),
            "{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"JSON data is not "
            "an object\"}}");
}

TEST(JsonSerializationHelperTest, GetJsonForExceptionNamesTheClass) {
  EXPECT_EQ(helper::GetJsonForException(std::invalid_argument(
                "No matching service descriptor found for: a.b ver: _2014_07")),
            "{\"Exception\": {\"name\": \"std::invalid_argument\", \"message\": \"No matching "
            "service descriptor found for: a.b ver: _2014_07\"}}");
  EXPECT_EQ(helper::GetJsonForException(std::logic_error("wrong kind")),
            "{\"Exception\": {\"name\": \"std::logic_error\", \"message\": \"wrong kind\"}}");
}

TEST(JsonSerializationHelperTest, GetJsonForExceptionOfAPlainExceptionEscapesItsText) {
  EXPECT_EQ(helper::GetJsonForException(PlainFailure()),
            "{\"Exception\": {\"name\": \"std::exception\", \"message\": \"plain "
            "\\\"failure\\\"\"}}");
}

TEST(JsonSerializationHelperTest, GetJsonForExceptionWithAnEmptyMessageIsStillARecord) {
  EXPECT_EQ(helper::GetJsonForException(std::runtime_error("")),
            "{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"\"}}");
}

// --- Serialize ------------------------------------------------------------------------

TEST(JsonSerializationHelperTest, SerializeOfAnEmptyListIsEmptyBrackets) {
  EXPECT_EQ(helper::Serialize(DescriptorList{}), "[]");
}

TEST(JsonSerializationHelperTest, SerializeOfOneDescriptor) {
  DataServiceDescriptor a("a", "1");
  EXPECT_EQ(helper::Serialize(DescriptorList{&a}), "[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}]");
}

TEST(JsonSerializationHelperTest, SerializeOfTwoDescriptorsKeepsListOrder) {
  DataServiceDescriptor first("tavo.wevlin.infrastructure.services.session.Session.client",
                              "_2014_07");
  DataServiceDescriptor second("a\"b", "_2016_04");
  EXPECT_EQ(helper::Serialize(DescriptorList{&first, &second}),
            "[{\"FQN\": \"tavo.wevlin.infrastructure.services.session.Session.client\", "
            "\"SvcVersion\": \"_2014_07\"}, {\"FQN\": \"a\\\"b\", \"SvcVersion\": \"_2016_04\"}]");
}

TEST(JsonSerializationHelperTest, SerializeWritesTheSameDescriptorEachTimeItOccurs) {
  DataServiceDescriptor a("a", "1");
  EXPECT_EQ(helper::Serialize(DescriptorList{&a, &a}),
            "[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}, {\"FQN\": \"a\", \"SvcVersion\": \"1\"}]");
}

// --- Deserialize ----------------------------------------------------------------------

TEST(JsonSerializationHelperTest, DeserializeOfEmptyBracketsIsAnEmptyVector) {
  OwnedList result(helper::Deserialize<DescriptorList>("[]"));
  ASSERT_NE(result.list, nullptr);
  EXPECT_TRUE(result.list->empty());
}

TEST(JsonSerializationHelperTest, DeserializeOfALoneCommaIsAnEmptyVector) {
  OwnedList result(helper::Deserialize<DescriptorList>("[,]"));
  ASSERT_NE(result.list, nullptr);
  EXPECT_TRUE(result.list->empty());
}

TEST(JsonSerializationHelperTest, DeserializeTrimsTheText) {
  OwnedList result(
      helper::Deserialize<DescriptorList>(" \n\t[ {\"FQN\": \"a\", \"SvcVersion\": \"1\"} ]\r\n"));
  ASSERT_NE(result.list, nullptr);
  EXPECT_EQ(Pairs(*result.list), (PairList{{"a", "1"}}));
}

TEST(JsonSerializationHelperTest, DeserializeKeepsTheRawTextOfANonStringFqn) {
  OwnedList result(helper::Deserialize<DescriptorList>(
      "[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}, {\"FQN\": 5}]"));
  ASSERT_NE(result.list, nullptr);
  ASSERT_EQ(result.list->size(), 2u);
  EXPECT_EQ(Pairs(*result.list), (PairList{{"a", "1"}, {"5", ""}}));
}

TEST(JsonSerializationHelperTest, DeserializeSkipsElementsThatAreNotObjects) {
  StdoutCapture capture;
  OwnedList result(helper::Deserialize<DescriptorList>(
      "[1, \"x\", {\"FQN\": \"a\", \"SvcVersion\": \"1\"}, [2], null, true, "
      "{\"FQN\": \"b\", \"SvcVersion\": \"2\"}]"));
  ASSERT_NE(result.list, nullptr);
  EXPECT_EQ(Pairs(*result.list), (PairList{{"a", "1"}, {"b", "2"}}));
  EXPECT_EQ(capture.Text(), "");
}

TEST(JsonSerializationHelperTest, DeserializeIgnoresUnknownKeysAndKeepsMissingOnesEmpty) {
  OwnedList result(helper::Deserialize<DescriptorList>(
      "[{\"SvcVersion\": \"_2014_07\", \"Extra\": {\"x\": [1]}, \"FQN\": \"a.b\"}, "
      "{\"FQN\": \"c.d\"}, {\"SvcVersion\": \"9\"}, {}]"));
  ASSERT_NE(result.list, nullptr);
  EXPECT_EQ(Pairs(*result.list), (PairList{{"a.b", "_2014_07"}, {"c.d", ""}, {"", "9"}, {"", ""}}));
}

TEST(JsonSerializationHelperTest, DeserializeKeepsAMalformedObjectElementAsAnEmptyDescriptor) {
  // A misplaced token makes the element read true without changing anything.
  OwnedList result(helper::Deserialize<DescriptorList>(
      "[{\"FQN\" \"a\"}, {\"FQN\": \"b\", \"SvcVersion\": \"2\"}]"));
  ASSERT_NE(result.list, nullptr);
  EXPECT_EQ(Pairs(*result.list), (PairList{{"", ""}, {"b", "2"}}));
}

TEST(JsonSerializationHelperTest, DeserializeUnescapesTheTexts) {
  OwnedList result(helper::Deserialize<DescriptorList>(
      "[{\"FQN\": \"a\\\"b\\\\c\\/d\", \"SvcVersion\": \"1\\t2\"}]"));
  ASSERT_NE(result.list, nullptr);
  EXPECT_EQ(Pairs(*result.list), (PairList{{"a\"b\\c/d", "1\t2"}}));
}

TEST(JsonSerializationHelperTest, DeserializeAllocatesADescriptorPerElement) {
  OwnedList result(helper::Deserialize<DescriptorList>(
      "[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}, {\"FQN\": \"a\", \"SvcVersion\": \"1\"}]"));
  ASSERT_NE(result.list, nullptr);
  ASSERT_EQ(result.list->size(), 2u);
  EXPECT_NE((*result.list)[0], (*result.list)[1]);
  EXPECT_EQ((*result.list)[1]->ToJsonString(), "{\"FQN\": \"a\", \"SvcVersion\": \"1\"}");
}

TEST(JsonSerializationHelperTest, DeserializeReadsWhatSerializeWrote) {
  DataServiceDescriptor first("a.b", "_2014_02");
  DataServiceDescriptor second("c\"d", "_2014_07");
  const std::string text = helper::Serialize(DescriptorList{&first, &second});
  OwnedList result(helper::Deserialize<DescriptorList>(text));
  ASSERT_NE(result.list, nullptr);
  EXPECT_EQ(Pairs(*result.list), (PairList{{"a.b", "_2014_02"}, {"c\"d", "_2014_07"}}));
  EXPECT_EQ(helper::Serialize(*result.list), text);
}

TEST(JsonSerializationHelperTest, DeserializeOfTextNotStartingWithABracketThrows) {
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [] { OwnedList owned(helper::Deserialize<DescriptorList>("{\"FQN\": \"a\"}")); },
      "JSON data is not an array"));
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [] { OwnedList owned(helper::Deserialize<DescriptorList>("")); },
      "JSON data is not an array"));
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [] { OwnedList owned(helper::Deserialize<DescriptorList>("x[]")); },
      "JSON data is not an array"));
}

TEST(JsonSerializationHelperTest, DeserializeOfAnUnclosedArrayThrows) {
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [] { OwnedList owned(helper::Deserialize<DescriptorList>("[")); },
      "JSON data is not an array"));
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [] {
        OwnedList owned(
            helper::Deserialize<DescriptorList>("[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}"));
      },
      "JSON data is not an array"));
}

TEST(JsonSerializationHelperTest, DeserializeOfAnUnterminatedStringIsAnEmptyVector) {
  StdoutCapture capture;
  OwnedList result(helper::Deserialize<DescriptorList>("[\"abc"));
  ASSERT_NE(result.list, nullptr);
  EXPECT_TRUE(result.list->empty());
  EXPECT_EQ(capture.Text(), "");
}

TEST(JsonSerializationHelperTest, DeserializeOfAnUnclosedElementIsAnEmptyVector) {
  StdoutCapture capture;
  OwnedList result(helper::Deserialize<DescriptorList>(
      "[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}, {\"FQN\": \"b\""));
  ASSERT_NE(result.list, nullptr);
  EXPECT_TRUE(result.list->empty());
  EXPECT_EQ(capture.Text(), "EndOfObject: final character incorrect\n");
}

// --- Embedded JSON --------------------------------------------------------------------

TEST(JsonSerializationHelperTest, EncodeEmbeddedJsonIsBase64) {
  std::string out = "previous content";
  helper::EncodeEmbeddedJson("ab", out);
  EXPECT_EQ(out, "YWI=");
  helper::EncodeEmbeddedJson("abc", out);
  EXPECT_EQ(out, "YWJj");
  helper::EncodeEmbeddedJson("", out);
  EXPECT_EQ(out, "");

  helper::EncodeEmbeddedJson("{\"FQN\": \"a\"}", out);
  EXPECT_EQ(out, "eyJGUU4iOiAiYSJ9");
}

TEST(JsonSerializationHelperTest, DecodeEmbeddedJsonIsBase64) {
  std::string out = "previous content";
  helper::DecodeEmbeddedJson("eyJGUU4iOiAiYSJ9", out);
  EXPECT_EQ(out, "{\"FQN\": \"a\"}");
  helper::DecodeEmbeddedJson("YWI", out);
  EXPECT_EQ(out, "ab");
  helper::DecodeEmbeddedJson("YWI=====", out);
  EXPECT_EQ(out, "ab");
  helper::DecodeEmbeddedJson("", out);
  EXPECT_EQ(out, "");
}

TEST(JsonSerializationHelperTest, EmbeddedJsonHelpersMatchTheCodecOnAnyInput) {
  const std::vector<std::string> inputs = {
      "",
      "{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"x\\ny\"}}",
      std::string("\0\x01\xfe\xff", 4),
      "a",
      "YW\nJj",
      "-_ ==x",
  };
  for (const std::string& input : inputs) {
    std::string viaHelper;
    std::string viaCodec;
    helper::EncodeEmbeddedJson(input, viaHelper);
    Base64::EncodeString(input, viaCodec);
    EXPECT_EQ(viaHelper, viaCodec);

    helper::DecodeEmbeddedJson(input, viaHelper);
    Base64::DecodeString(input, viaCodec);
    EXPECT_EQ(viaHelper, viaCodec);
  }
}

TEST(JsonSerializationHelperTest, EmbeddedJsonRoundTrips) {
  const std::string json = "{\"SoaResponse\": \"{\\\"a\\\": [1, 2]}\", \"bytes\": \"\xc3\xa9\"}";
  std::string encoded;
  std::string decoded;
  helper::EncodeEmbeddedJson(json, encoded);
  helper::DecodeEmbeddedJson(encoded, decoded);
  EXPECT_EQ(decoded, json);
}

}  // namespace
