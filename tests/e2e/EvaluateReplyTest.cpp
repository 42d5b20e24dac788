#include "wevlin/webcontrols/chromium/internal/EvaluateReply.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal::IsUncopyableValueError;
using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal::MakeScriptException;
using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal::ReadResultText;
using Json = nlohmann::ordered_json;

// Returns the text of a result, or "<handle>" when the result is only a
// handle to an object of the page.
std::string Read(const char* remoteObject) {
  std::string text = "unchanged";
  return ReadResultText(Json::parse(remoteObject), &text) ? text : "<handle>";
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

TEST(EvaluateReplyTest, ValuesCopiedByTheBrowserAreWrittenAsJson) {
  // Keys stay in the order the browser wrote them.
  EXPECT_EQ(Read(R"J({"type":"object","value":{"b":[1,"x",null,3e-7],"a":{"c":true}}})J"),
            R"J({"b":[1,"x",null,3e-7],"a":{"c":true}})J");
  EXPECT_EQ(Read(R"J({"type":"object","value":{"2":"a","1":"c","z":{}}})J"),
            R"J({"2":"a","1":"c","z":{}})J");
  EXPECT_EQ(Read(R"J({"type":"object","value":[]})J"), "[]");
  EXPECT_EQ(Read(R"J({"type":"object","value":{}})J"), "{}");
  EXPECT_EQ(Read(R"J({"type":"object","subtype":"array","value":[[],[[false]]]})J"),
            "[[],[[false]]]");
  // Strings are escaped as JSON.stringify escapes them, UTF-8 stays as it is.
  EXPECT_EQ(Read(R"J({"type":"object","value":{"\u0001\n\"\\":"\u001f\t/Grüße"}})J"),
            R"J({"\u0001\n\"\\":"\u001f\t/Grüße"})J");
}

TEST(EvaluateReplyTest, NumbersInsideCopiesAreWrittenAsJavaScriptWritesThem) {
  const auto number = [](const std::string& literal) {
    return Read(("{\"type\":\"object\",\"value\":[" + literal + "]}").c_str());
  };
  EXPECT_EQ(number("0"), "[0]");
  EXPECT_EQ(number("-0.0"), "[0]");
  EXPECT_EQ(number("-7"), "[-7]");
  EXPECT_EQ(number("2147483648"), "[2147483648]");
  EXPECT_EQ(number("-2147483649"), "[-2147483649]");
  EXPECT_EQ(number("1.5"), "[1.5]");
  EXPECT_EQ(number("-0.1"), "[-0.1]");
  EXPECT_EQ(number("0.000001"), "[0.000001]");
  EXPECT_EQ(number("1e-7"), "[1e-7]");
  EXPECT_EQ(number("1.25e-7"), "[1.25e-7]");
  EXPECT_EQ(number("123.456"), "[123.456]");
  EXPECT_EQ(number("1e16"), "[10000000000000000]");
  EXPECT_EQ(number("1e20"), "[100000000000000000000]");
  EXPECT_EQ(number("123456789012345680000"), "[123456789012345680000]");
  EXPECT_EQ(number("1e21"), "[1e+21]");
  EXPECT_EQ(number("-1.5e300"), "[-1.5e+300]");
  EXPECT_EQ(number("5e-324"), "[5e-324]");
  EXPECT_EQ(number("0.30000000000000004"), "[0.30000000000000004]");
}

TEST(EvaluateReplyTest, FunctionsAndSymbolsGiveNothing) {
  EXPECT_EQ(Read(R"J({"type":"function","value":{}})J"), "");
  EXPECT_EQ(Read(R"J({"type":"function","className":"Function","objectId":"1.2.4"})J"), "");
  EXPECT_EQ(Read(R"J({"type":"symbol","description":"Symbol(s)","objectId":"1.2.3"})J"), "");
}

TEST(EvaluateReplyTest, ObjectsWithOnlyAHandleAreNotRead) {
  EXPECT_EQ(Read(R"J({"type":"object","className":"Object","description":"Object",
                      "objectId":"1.2.3"})J"),
            "<handle>");
  EXPECT_EQ(Read(R"J({"type":"object","className":"Object"})J"), "");
}

TEST(EvaluateReplyTest, RecognisesValuesTheBrowserCannotCopy) {
  EXPECT_TRUE(
      IsUncopyableValueError("Runtime.evaluate failed: Object couldn't be returned by value"));
  EXPECT_TRUE(
      IsUncopyableValueError("Runtime.evaluate failed: Object reference chain is too long"));
  EXPECT_TRUE(IsUncopyableValueError(
      "Runtime.evaluate failed: Failed to convert response to JSON: CBOR: stack limit exceeded at "
      "position 2444"));
  EXPECT_FALSE(
      IsUncopyableValueError("Runtime.evaluate failed: Cannot find default execution context"));
  EXPECT_FALSE(IsUncopyableValueError("The page's renderer process crashed"));
  EXPECT_FALSE(IsUncopyableValueError(""));
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
