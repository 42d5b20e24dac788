#include "wevlin/webcontrols/internal/PageBridge.h"

#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/CountingService.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/Base64.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/testing/ScriptedPage.h"
#include "wevlin/webcontrols/BridgePolicy.h"
#include "wevlin/webcontrols/PageCaller.h"
#include "wevlin/webcontrols/internal/BridgeShimScript.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage;
using Com::Velmora::TAVO::Wevlin::WebControls::BridgePolicy;
using Com::Velmora::TAVO::Wevlin::WebControls::PageCaller;
using Com::Velmora::TAVO::Wevlin::WebControls::internal::BridgeShimScript;
using Com::Velmora::TAVO::Wevlin::WebControls::internal::PageBridge;
using wevlin_test::CountingService;
using wevlin_test::StdoutCapture;

constexpr char kFqn[] = "app.Echo.host";
constexpr char kVersion[] = "1";
constexpr char kDescriptor[] = R"({"FQN": "app.Echo.host", "SvcVersion": "1"})";

PageCaller Caller(std::string origin, std::string url, bool topFrame) {
  PageCaller caller;
  caller.origin = std::move(origin);
  caller.url = std::move(url);
  caller.topFrame = topFrame;
  return caller;
}

PageBridge::Call MethodCall(std::string payload, std::int64_t id = 7) {
  PageBridge::Call call;
  call.id = id;
  call.function = "tavoHostMethod";
  call.args = {kDescriptor, std::move(payload)};
  return call;
}

// A bridge on a real HostAPI, whose instance has one counting service that
// echoes what it is given.
class PageBridgeTest : public ::testing::Test {
 protected:
  PageBridgeTest() {
    service_ = new CountingService(kFqn, kVersion);
    service_->SetMethodHandler([this](CountingService::Instance*, CountingService::Descriptor*,
                                      const std::string& payload) {
      const PageCaller* caller = bridge_.CurrentCaller();
      seenDuringCall_ = caller == nullptr ? "(none)" : caller->origin + " " + caller->url;
      return payload;
    });
    instance_.RegisterService(service_);
    bridge_.SetHostAPI(&api_);
    bridge_.SetNavigatedUrl("http://a.test:8080/index.html");
  }

  PageBridge::Answer Serve(PageBridge::Call call, const PageCaller& caller,
                           std::string* log = nullptr) {
    StdoutCapture capture;
    PageBridge::Answer answer = bridge_.Serve(std::move(call), caller);
    const std::string text = capture.Text();
    if (log != nullptr) *log = text;
    return answer;
  }

  ScriptedPage page_;
  interop::HostControlInstance instance_{&page_};
  interop::HostAPI api_{&instance_};
  PageBridge bridge_{"TestControl"};
  CountingService* service_ = nullptr;  // owned by the instance
  std::string seenDuringCall_;
};

const PageCaller kTop = Caller("http://a.test:8080", "http://a.test:8080/index.html", true);

TEST_F(PageBridgeTest, ReadsACallMessage) {
  PageBridge::Call call;
  ASSERT_TRUE(PageBridge::ReadCall(R"({"id": 3, "fn": "tavoHostPing", "args": []})", call));
  EXPECT_EQ(call.id, 3);
  EXPECT_EQ(call.function, "tavoHostPing");
  EXPECT_TRUE(call.args.empty());
  ASSERT_TRUE(PageBridge::ReadCall(R"({"id":4,"fn":"tavoHostMethod","args":["a",5,null]})", call));
  EXPECT_EQ(call.args, (std::vector<std::string>{"a", "", ""}));
}

TEST_F(PageBridgeTest, RefusesMessagesWithoutAnId) {
  PageBridge::Call call;
  for (const char* message :
       {"", "not json", "[]", R"({"fn": "tavoHostPing"})", R"({"id": "1"})", R"({"id": 1.5})"}) {
    EXPECT_FALSE(PageBridge::ReadCall(message, call)) << message;
  }
}

TEST_F(PageBridgeTest, ServesAnAllowedCallThroughTheHostAPI) {
  const PageBridge::Answer answer = Serve(MethodCall("hello"), kTop);
  EXPECT_EQ(answer.id, 7);
  EXPECT_TRUE(answer.ok);
  EXPECT_EQ(answer.text, "hello");
  EXPECT_EQ(service_->Calls().size(), 1U);
}

TEST_F(PageBridgeTest, TellsTheServiceWhoCalledAndForgetsItAfterwards) {
  EXPECT_EQ(bridge_.CurrentCaller(), nullptr);
  Serve(MethodCall("x"), kTop);
  EXPECT_EQ(seenDuringCall_, "http://a.test:8080 http://a.test:8080/index.html");
  EXPECT_EQ(bridge_.CurrentCaller(), nullptr);
}

TEST_F(PageBridgeTest, EachOfTheFiveFunctionsTakesItsNumberOfTexts) {
  PageBridge::Call ping;
  ping.id = 1;
  ping.function = "tavoHostPing";
  EXPECT_EQ(Serve(ping, kTop).text, "0.9");

  PageBridge::Call event = MethodCall("e");
  event.function = "tavoHostEvent";
  const PageBridge::Answer eventAnswer = Serve(event, kTop);
  EXPECT_TRUE(eventAnswer.ok);
  EXPECT_EQ(eventAnswer.text, "");

  PageBridge::Call list;
  list.function = "tavoHost_WebSideServiceListUpdate";
  list.args = {"Replace", "[]"};
  EXPECT_EQ(Serve(list, kTop).text, "");

  PageBridge::Call wrong = ping;
  wrong.args = {"extra"};
  std::string log;
  const PageBridge::Answer refused = Serve(wrong, kTop, &log);
  EXPECT_FALSE(refused.ok);
  EXPECT_EQ(refused.text, "No host function tavoHostPing taking 1 arguments");
  EXPECT_EQ(log,
            "TestControl: the page's call of tavoHostPing failed: No host function tavoHostPing "
            "taking 1 arguments\n");

  PageBridge::Call unknown;
  unknown.function = "eval";
  EXPECT_EQ(Serve(unknown, kTop).text, "No host function eval taking 0 arguments");
}

// The record writes "/" escaped, as every record of the host does.
TEST_F(PageBridgeTest, RefusesAnotherOriginWithARecordAndOneLogLineAndEntersNoService) {
  std::string log;
  const PageBridge::Answer answer =
      Serve(MethodCall("secret"), Caller("http://b.test", "http://b.test/evil.html", true), &log);
  EXPECT_TRUE(answer.ok);
  EXPECT_EQ(answer.text,
            R"({"Exception": {"name": "std::runtime_error", "message": "The host does not )"
            R"(serve http:\/\/b.test"}})");
  EXPECT_EQ(log,
            "TestControl: refused tavoHostMethod from http://b.test (http://b.test/evil.html)\n");
  EXPECT_TRUE(service_->Calls().empty());
}

TEST_F(PageBridgeTest, RefusesAFrameOfTheAllowedOriginAsAFrame) {
  std::string log;
  const PageBridge::Answer answer =
      Serve(MethodCall("x"), Caller("http://a.test:8080", "about:srcdoc", false), &log);
  EXPECT_EQ(answer.text,
            R"({"Exception": {"name": "std::runtime_error", "message": "The host does not )"
            R"x(serve frames (http:\/\/a.test:8080)"}})x");
  EXPECT_EQ(log, "TestControl: refused tavoHostMethod from http://a.test:8080 (about:srcdoc)\n");
  EXPECT_TRUE(service_->Calls().empty());
}

TEST_F(PageBridgeTest, RefusesOpaqueDocumentsAndUnknownCallers) {
  EXPECT_EQ(Serve(MethodCall("x"), Caller("null", "data:text/html,x", false), nullptr).text,
            R"({"Exception": {"name": "std::runtime_error", "message": "The host does not )"
            R"(serve null"}})");
  EXPECT_EQ(Serve(MethodCall("x"), Caller("null", "", false), nullptr).text,
            R"({"Exception": {"name": "std::runtime_error", "message": "The host does not )"
            R"(serve null"}})");
  EXPECT_TRUE(service_->Calls().empty());
}

TEST_F(PageBridgeTest, AllowsWhatThePolicyWidens) {
  BridgePolicy policy;
  policy.AllowOrigin("http://b.test").AllowSubframes();
  bridge_.SetPolicy(policy);
  EXPECT_EQ(Serve(MethodCall("1"), Caller("http://b.test", "http://b.test/", false)).text, "1");
  EXPECT_EQ(Serve(MethodCall("2"), Caller("http://a.test:8080", "about:blank", false)).text, "2");
  EXPECT_EQ(service_->Calls().size(), 2U);
}

TEST_F(PageBridgeTest, AllowsTheOpaqueDocumentTheHostNavigatedToItself) {
  bridge_.SetNavigatedUrl("data:text/html,<p>mine</p>");
  EXPECT_EQ(Serve(MethodCall("1"), Caller("null", "data:text/html,<p>mine</p>", true)).text, "1");
  EXPECT_NE(Serve(MethodCall("2"), Caller("null", "data:text/html,<p>other</p>", true)).text, "2");
  EXPECT_NE(Serve(MethodCall("3"), Caller("null", "data:text/html,<p>mine</p>", false)).text, "3");
}

TEST_F(PageBridgeTest, RefusesACallOverTheLimitBeforeTheServiceSeesIt) {
  bridge_.SetMaxCallBytes(100);
  std::string log;
  // The descriptor takes 43 bytes, the payload 58: 101 in all.
  const PageBridge::Answer answer = Serve(MethodCall(std::string(58, 'x')), kTop, &log);
  EXPECT_EQ(answer.text,
            R"({"Exception": {"name": "std::length_error", "message": "The call takes 101 )"
            R"(bytes, more than the limit of 100"}})");
  EXPECT_EQ(log, "TestControl: refused tavoHostMethod of 101 bytes from http://a.test:8080\n");
  EXPECT_TRUE(service_->Calls().empty());
  EXPECT_EQ(Serve(MethodCall(std::string(57, 'x')), kTop).text, std::string(57, 'x'));
}

TEST_F(PageBridgeTest, ReplacesAnAnswerOverTheLimitWithARecord) {
  bridge_.SetMaxCallBytes(60);
  service_->SetMethodHandler([](CountingService::Instance*, CountingService::Descriptor*,
                                const std::string&) { return std::string(61, 'y'); });
  std::string log;
  const PageBridge::Answer answer = Serve(MethodCall(""), kTop, &log);
  EXPECT_TRUE(answer.ok);
  EXPECT_EQ(answer.text,
            R"({"Exception": {"name": "std::length_error", "message": "The answer takes 61 )"
            R"(bytes, more than the limit of 60"}})");
  EXPECT_EQ(log, "TestControl: refused the answer to tavoHostMethod: 61 bytes\n");
}

TEST_F(PageBridgeTest, AnswersAFailureOutsideTheProtocolWithAnError) {
  service_->ThrowOnInvoke(interop::IWebControl::ScriptException("page gone", ""));
  std::string log;
  const PageBridge::Answer answer = Serve(MethodCall(""), kTop, &log);
  EXPECT_FALSE(answer.ok);
  EXPECT_EQ(answer.text, "page gone");
  EXPECT_EQ(log, "TestControl: the page's call of tavoHostMethod failed: page gone\n");
  EXPECT_EQ(bridge_.CurrentCaller(), nullptr);
}

TEST_F(PageBridgeTest, AStandardFailureOfAServiceIsTheHostAPIsRecord) {
  service_->ThrowOnInvoke(std::out_of_range("no such order"));
  const PageBridge::Answer answer = Serve(MethodCall(""), kTop);
  EXPECT_TRUE(answer.ok);
  EXPECT_EQ(answer.text,
            R"({"Exception": {"name": "std::out_of_range", "message": "no such order"}})");
}

TEST_F(PageBridgeTest, WithoutAHostAPIEveryCallIsRejected) {
  bridge_.SetHostAPI(nullptr);
  const PageBridge::Answer answer = Serve(MethodCall(""), kTop);
  EXPECT_FALSE(answer.ok);
  EXPECT_EQ(answer.text, "No HostAPI is set on the web control");
}

TEST_F(PageBridgeTest, RefusesScriptsIntoADocumentThatMayNotTalk) {
  PageBridge fresh("TestControl");
  // Before any navigation the control shows its own blank page.
  EXPECT_EQ(fresh.ScriptRefusal(Caller("null", "about:blank", true)), "");
  EXPECT_EQ(bridge_.ScriptRefusal(kTop), "");
  EXPECT_EQ(bridge_.ScriptRefusal(Caller("http://b.test", "http://b.test/", true)),
            "The page's origin http://b.test is not allowed to talk to the host");
}

// Returns the reply parameters WriteReplyEvaluateParams writes for `answer`,
// checking that they are as long as ReplyEvaluateParamsSize says.
std::string ReplyParams(const PageBridge::Answer& answer, std::int64_t contextId) {
  std::string params;
  const std::size_t written = PageBridge::WriteReplyEvaluateParams(
      "__reply", answer, contextId, [&params](std::string_view piece) { params.append(piece); });
  EXPECT_EQ(written, params.size());
  EXPECT_EQ(PageBridge::ReplyEvaluateParamsSize("__reply", answer, contextId), params.size());
  return params;
}

TEST_F(PageBridgeTest, ReplyParamsCarryTheAnswerInBase64) {
  PageBridge::Answer answer{12, true, "it's \"quoted\"\n\xC3\xA9"};
  std::string encoded;
  interop::Base64::EncodeString(answer.text, encoded);
  EXPECT_EQ(ReplyParams(answer, 0),
            R"x({"expression":"globalThis.__reply(12, true, \")x" + encoded + R"x(\")"})x");
  answer.ok = false;
  answer.text = "";
  EXPECT_EQ(ReplyParams(answer, 0), R"x({"expression":"globalThis.__reply(12, false, \"\")"})x");
}

TEST_F(PageBridgeTest, ReplyParamsAreTheEvaluateCommandsParameters) {
  // Longer than one piece of the encoding, and not a multiple of three.
  const std::string text = std::string(100000, 'z') + "\"\\\n";
  std::string encoded;
  interop::Base64::EncodeString(text, encoded);
  EXPECT_EQ(
      ReplyParams(PageBridge::Answer{5, true, text}, 42),
      R"x({"expression":"globalThis.__reply(5, true, \")x" + encoded + R"x(\")","contextId":42})x");
  EXPECT_EQ(ReplyParams(PageBridge::Answer{6, false, ""}, 0),
            R"x({"expression":"globalThis.__reply(6, false, \"\")"})x");
}

TEST_F(PageBridgeTest, ShimSourceCallsTheShimWithTransportAndPolicy) {
  BridgePolicy policy;
  policy.AllowOrigin("https://help.test");
  bridge_.SetPolicy(policy);
  bridge_.SetMaxCallBytes(1000);
  const std::string source = bridge_.ShimSource("{binding: \"b\", reply: \"r\"}");
  EXPECT_NE(source.find(std::string(BridgeShimScript())), std::string::npos);
  EXPECT_NE(source.find("install({binding: \"b\", reply: \"r\"}, "
                        R"({"maxCallBytes":1000,"maxCallsInFlight":64,)"
                        R"("origins":["http://a.test:8080","https://help.test"],)"
                        R"("topOnly":true,"urls":[]});)"),
            std::string::npos)
      << source.substr(source.size() - 200);
  policy.AllowAnyOrigin().AllowSubframes();
  bridge_.SetPolicy(policy);
  EXPECT_NE(bridge_.ShimSource("T").find(R"("origins":null,"topOnly":false)"), std::string::npos);
}

}  // namespace
