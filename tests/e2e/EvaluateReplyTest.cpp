#include "wevlin/webcontrols/chromium/internal/EvaluateReply.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal::MakeScriptException;
using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal::ReadPrimitiveResult;
using Json = nlohmann::json;

// Returns the text of a primitive result, or "<object>" when the value must
// be asked of the page.
std::string Read(const char* remoteObject) {
  std::string text = "unchanged";
  return ReadPrimitiveResult(Json::parse(remoteObject), &text) ? text : "<object>";
}

TEST(EvaluateReplyTest, ReadsPrimitiveValuesAsJavaScriptWritesThem) {
  EXPECT_EQ(Read(R"J({"type":"string","value":"a \"b\""})J"), "a \"b\"");
  EXPECT_EQ(Read(R"J({"type":"undefined"})J"), "");
  EXPECT_EQ(Read(R"J({"type":"object","subtype":"null","value":null})J"), "");
  EXPECT_EQ(Read(R"J({"type":"symbol","description":"Symbol(s)","objectId":"1.2.3"})J"), "");
  EXPECT_EQ(Read(R"J({"type":"boolean","value":true})J"), "true");
  EXPECT_EQ(Read(R"J({"type":"boolean","value":false})J"), "false");
  EXPECT_EQ(Read(R"J({"type":"number","value":0.1,"description":"0.1"})J"), "0.1");
  EXPECT_EQ(Read(R"J({"type":"number","value":1e+21,"description":"1e+21"})J"), "1e+21");
  EXPECT_EQ(Read(R"J({"type":"number","unserializableValue":"-0","description":"-0"})J"), "0");
  EXPECT_EQ(Read(R"J({"type":"number","unserializableValue":"NaN","description":"NaN"})J"), "NaN");
  EXPECT_EQ(Read(R"J({"type":"bigint","unserializableValue":"10n","description":"10n"})J"), "10");
  EXPECT_EQ(Read(R"J({"type":"number","value":7})J"), "7");
}

TEST(EvaluateReplyTest, ObjectsWithAHandleAreLeftToThePage) {
  EXPECT_EQ(Read(R"J({"type":"object","className":"Object","objectId":"1.2.3"})J"), "<object>");
  EXPECT_EQ(Read(R"J({"type":"function","className":"Function","objectId":"1.2.4"})J"), "<object>");
  EXPECT_EQ(Read(R"J({"type":"object","value":{"a":[1,"x"]}})J"), "{\"a\":[1,\"x\"]}");
}

TEST(EvaluateReplyTest, ErrorMessageLeavesTheStackOut) {
  const auto exception = MakeScriptException(Json::parse(R"J({
      "exceptionId": 1, "text": "Uncaught", "lineNumber": 0, "columnNumber": 14, "scriptId": "6",
      "exception": {"type": "object", "subtype": "error", "className": "Error",
        "description": "Error: deep\nsecond line\n    at f (<anonymous>:1:21)\n    at <anonymous>:2:1"}})J"),
                                             "function f(){ throw new Error('deep'); }\nf()");
  EXPECT_EQ(exception.message, "Error: deep\nsecond line");
  EXPECT_EQ(exception.details, "line 1, column 15: function f(){ throw new Error('deep'); }");
}

TEST(EvaluateReplyTest, ThrownValuesOtherThanErrors) {
  const auto text = MakeScriptException(Json::parse(R"J({
      "text": "Uncaught", "lineNumber": 1, "columnNumber": 0,
      "exception": {"type": "string", "value": "plain"}})J"),
                                        "let a = 1;\r\nthrow 'plain'");
  EXPECT_EQ(text.message, "plain");
  EXPECT_EQ(text.details, "line 2, column 1: throw 'plain'");

  const auto object = MakeScriptException(Json::parse(R"J({
      "text": "Uncaught", "lineNumber": 0, "columnNumber": 0,
      "exception": {"type": "object", "className": "Object", "description": "Object"}})J"),
                                          "throw {}");
  EXPECT_EQ(object.message, "Object");

  const auto nothing = MakeScriptException(
      Json::parse(R"J({"text": "Uncaught", "lineNumber": 4, "columnNumber": 2})J"), "short");
  EXPECT_EQ(nothing.message, "Uncaught");
  EXPECT_EQ(nothing.details, "line 5, column 3: ");
}

TEST(EvaluateReplyTest, FailureInAFileOfThePageNamesTheFile) {
  const auto exception = MakeScriptException(Json::parse(R"J({
      "text": "Uncaught", "lineNumber": 7, "columnNumber": 2, "scriptId": "4",
      "stackTrace": {"callFrames": [
        {"functionName": "failInPageFile", "scriptId": "4", "url": "file:///pages/plain.js",
         "lineNumber": 7, "columnNumber": 8},
        {"functionName": "", "scriptId": "5", "url": "", "lineNumber": 0, "columnNumber": 0}]},
      "exception": {"type": "object", "subtype": "error",
        "description": "TypeError: failed\n    at failInPageFile (file:///pages/plain.js:8:9)"}})J"),
                                             "failInPageFile()");
  EXPECT_EQ(exception.message, "TypeError: failed");
  EXPECT_EQ(exception.details, "line 8, column 3 of file:///pages/plain.js");

  const auto withUrl = MakeScriptException(Json::parse(R"J({
      "text": "Uncaught", "lineNumber": 0, "columnNumber": 0, "url": "file:///x.js"})J"),
                                           "x()");
  EXPECT_EQ(withUrl.details, "line 1, column 1 of file:///x.js");
}

}  // namespace
