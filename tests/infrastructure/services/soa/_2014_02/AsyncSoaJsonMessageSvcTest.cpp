#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaJsonMessageSvc.h"

#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"
#include "support/MockHostControlInstance.h"
#include "support/ServiceFixture.h"
#include "support/StdoutCapture.h"
#include "support/TalkingPageFixture.h"
#include "support/WebEventRecorder.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleAsyncSoaJsonServiceRequest.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::BaseHostingService;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::AsyncSoaJsonMessageSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    IHandleAsyncSoaJsonServiceRequest;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::SoaResponseCallback;
using ::testing::_;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;
using wevlin_test::ThrowsExactly;
using wevlin_test::WebEventRecorder;

static_assert(std::is_abstract_v<IHandleAsyncSoaJsonServiceRequest>);
static_assert(!std::has_virtual_destructor_v<IHandleAsyncSoaJsonServiceRequest>);
static_assert(std::has_virtual_destructor_v<AsyncSoaJsonMessageSvc>);
static_assert(std::is_base_of_v<BaseHostingService, AsyncSoaJsonMessageSvc>);

constexpr char kSendFailedLine[] =
    "Services::AsyncSoaJsonMessageSvc::ExternalFacingCallback - Error sending async reply\n";

// Records the one request it is given; the test answers it.
class CapturingHandler : public IHandleAsyncSoaJsonServiceRequest {
 public:
  void OnSoaJsonRequest(std::string serviceName, std::string operationName, std::string message,
                        void* context, SoaResponseCallback callback) override {
    ++calls;
    this->serviceName = serviceName;
    this->operationName = operationName;
    this->message = message;
    this->context = context;
    this->callback = callback;
  }

  int calls = 0;
  std::string serviceName;
  std::string operationName;
  std::string message;
  void* context = nullptr;
  SoaResponseCallback callback = nullptr;
};

// Reaches the protected callback for the calls no handler would make.
class ExposedService : public AsyncSoaJsonMessageSvc {
 public:
  using AsyncSoaJsonMessageSvc::AsyncSoaJsonMessageSvc;
  using AsyncSoaJsonMessageSvc::ExternalFacingCallback;
};

// A request from the page whose answer goes to "app.Reply.client" "_2014_02".
std::string Request(const std::string& version, const std::string& cacheIdJson = "\"7\"") {
  return R"({"Version": ")" + version + R"(", "CacheId": )" + cacheIdJson +
         R"(, "ReplyServiceDescriptor": "{\"FQN\": \"app.Reply.client\", \"SvcVersion\": \"_2014_02\"}", )"
         R"("ServiceName": "Orders", "OperationName": "List", "Message": "{\"page\": 2}"})";
}

// Sends `request` through a fresh service, answers it with `answer` and
// `error`, and returns the reply text that reached the page.
std::string ReplyTo(const std::string& request, const std::string& answer,
                    const ExceptionInfo& error = ExceptionInfo()) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  WebEventRecorder sent;
  sent.Expect(instance);
  service.InvokeEvent(&instance, &service, request);
  EXPECT_EQ(handler.calls, 1);
  if (handler.callback == nullptr) return "no callback";
  handler.callback(handler.context, answer, error);
  EXPECT_EQ(sent.Count(), 1);
  EXPECT_EQ(sent.Last().fqn, "app.Reply.client");
  EXPECT_EQ(sent.Last().version, "_2014_02");
  return sent.Last().text;
}

// Checks that a fresh service rejects the event `payload` with a
// std::invalid_argument whose what() is `what`, without calling the handler.
::testing::AssertionResult Rejects(const std::string& payload, const std::string& what) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  ::testing::AssertionResult result = ThrowsExactly<std::invalid_argument>(
      [&] { service.InvokeEvent(&instance, &service, payload); }, what);
  EXPECT_EQ(handler.calls, 0);
  if (handler.callback != nullptr) handler.callback(handler.context, "", ExceptionInfo());
  return result;
}

using AsyncSoaJsonMessageSvcTest =
    wevlin_test::ServiceFixture<AsyncSoaJsonMessageSvc, CapturingHandler>;

TEST_F(AsyncSoaJsonMessageSvcTest, IsTheAsyncSoaHostServiceOfVersion2014_02) {
  EXPECT_EQ(service_.GetFQN(), "tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host");
  EXPECT_EQ(service_.GetSvcVersion(), "_2014_02");
}

TEST_F(AsyncSoaJsonMessageSvcTest, HandsNamesAndBodyToTheHandlerAndSendsNothingYet) {
  service_.InvokeEvent(&instance_, &service_, Request("_2014_07"));
  ASSERT_EQ(handler_.calls, 1);
  EXPECT_EQ(handler_.serviceName, "Orders");
  EXPECT_EQ(handler_.operationName, "List");
  EXPECT_EQ(handler_.message, R"({"page": 2})");
  EXPECT_NE(handler_.context, nullptr);
  ASSERT_NE(handler_.callback, nullptr);
  ::testing::Mock::VerifyAndClearExpectations(&instance_);

  // Answering sends exactly one event.
  WebEventRecorder sent;
  sent.Expect(instance_);
  handler_.callback(handler_.context, "{}", ExceptionInfo());
  EXPECT_EQ(sent.Count(), 1);
}

TEST_F(AsyncSoaJsonMessageSvcTest, AMethodCallIsNotServed) {
  EXPECT_EQ(service_.InvokeMethod(&instance_, &service_, Request("_2014_02")), "");
  EXPECT_EQ(handler_.calls, 0);
}

TEST_F(AsyncSoaJsonMessageSvcTest, Version2014_02RequestGetsAnEmbeddedReplyOfVersion2014_02) {
  EXPECT_EQ(ReplyTo(Request("_2014_02"), R"({"a": 1})"),
            R"({"Version": "_2014_02", "CacheId": "7", "SoaResponse": "eyJhIjogMX0=", )"
            R"("Exception": null})");
}

TEST_F(AsyncSoaJsonMessageSvcTest, Version2014_07RequestGetsAnEmbeddedReplyOfVersion2014_07) {
  EXPECT_EQ(ReplyTo(Request("_2014_07"), R"({"rows": []})"),
            R"({"Version": "_2014_07", "CacheId": "7", "SoaResponse": "eyJyb3dzIjogW119", )"
            R"("Exception": null})");
}

TEST_F(AsyncSoaJsonMessageSvcTest, AnyOtherVersionGetsAReplyOfVersion2014_07) {
  const std::string expected =
      R"({"Version": "_2014_07", "CacheId": "7", "SoaResponse": "eyJhIjogMX0=", )"
      R"("Exception": null})";
  EXPECT_EQ(ReplyTo(Request("_2016_04"), R"({"a": 1})"), expected);
  EXPECT_EQ(ReplyTo(Request("_2014_02x"), R"({"a": 1})"), expected);
  EXPECT_EQ(ReplyTo(Request(""), R"({"a": 1})"), expected);
}

TEST_F(AsyncSoaJsonMessageSvcTest, ARequestWithoutVersionCountsAsVersion2014_02) {
  EXPECT_EQ(
      ReplyTo(
          R"({"CacheId": "7", "ReplyServiceDescriptor": "{\"FQN\": \"app.Reply.client\", \"SvcVersion\": \"_2014_02\"}"})",
          ""),
      R"({"Version": "_2014_02", "CacheId": "7", "SoaResponse": "", "Exception": null})");
}

TEST_F(AsyncSoaJsonMessageSvcTest, Version2015_10EmbedsTheQuotedAnswerAsRawJson) {
  EXPECT_EQ(ReplyTo(Request("_2015_10"), R"("{"a": 1}")"),
            R"({"CacheId":"7","SoaResponse":{"a": 1},"Version":"_2015_10"})");
}

TEST_F(AsyncSoaJsonMessageSvcTest, Version2015_10CutsAtTheLastDoubleQuote) {
  // Whatever follows the last quote is dropped, the first character always.
  EXPECT_EQ(ReplyTo(Request("_2015_10"), R"("[1, "x"]"  )"),
            R"({"CacheId":"7","SoaResponse":[1, "x"],"Version":"_2015_10"})");
  EXPECT_EQ(ReplyTo(Request("_2015_10"), R"({"a":"b"})"),
            R"({"CacheId":"7","SoaResponse":"a":"b,"Version":"_2015_10"})");
}

TEST_F(AsyncSoaJsonMessageSvcTest, Version2015_10WithoutQuoteKeepsAllButTheFirstCharacter) {
  EXPECT_EQ(ReplyTo(Request("_2015_10"), "[42]"),
            R"({"CacheId":"7","SoaResponse":42],"Version":"_2015_10"})");
}

TEST_F(AsyncSoaJsonMessageSvcTest, Version2015_10WithNothingToEmbedWritesNull) {
  const std::string expected = R"({"CacheId":"7","SoaResponse":null,"Version":"_2015_10"})";
  EXPECT_EQ(ReplyTo(Request("_2015_10"), ""), expected);
  EXPECT_EQ(ReplyTo(Request("_2015_10"), "\""), expected);
  EXPECT_EQ(ReplyTo(Request("_2015_10"), "\"\""), expected);
  EXPECT_EQ(ReplyTo(Request("_2015_10"), "x"), expected);
}

TEST_F(AsyncSoaJsonMessageSvcTest, Version2015_10EscapesAQuoteInTheCacheId) {
  EXPECT_EQ(ReplyTo(Request("_2015_10", R"("a\"b")"), R"("1")"),
            R"({"CacheId":"a\"b","SoaResponse":1,"Version":"_2015_10"})");
}

TEST_F(AsyncSoaJsonMessageSvcTest,
       Version2015_10EscapesABackslashAndControlCharactersInTheCacheId) {
  // The identifier a page sent to break out of the string and of the script
  // line around the reply: a backslash, a single and a double quote.
  EXPECT_EQ(ReplyTo(Request("_2015_10", R"("x\\');alert(1);//\"")"), R"("1")"),
            R"({"CacheId":"x\\');alert(1);//\"","SoaResponse":1,"Version":"_2015_10"})");
  // A line feed and a tab arrive escaped, the other control characters raw.
  EXPECT_EQ(ReplyTo(Request("_2015_10",
                            "\"a\\nb\\tc\x01"
                            "d\x1f"
                            "e\""),
                    R"("1")"),
            R"({"CacheId":"a\nb\tc\u0001d\u001fe","SoaResponse":1,"Version":"_2015_10"})");
}

TEST_F(AsyncSoaJsonMessageSvcTest, Version2015_10WritesAnOrdinaryCacheIdAsItStands) {
  // Slashes, single quotes and non-ASCII text need no escape in a JSON string.
  EXPECT_EQ(
      ReplyTo(Request("_2015_10", "\"c/1 it's \xC3\xA9t\xC3\xA9\""), R"("1")"),
      "{\"CacheId\":\"c/1 it's \xC3\xA9t\xC3\xA9\",\"SoaResponse\":1,\"Version\":\"_2015_10\"}");
}

TEST_F(AsyncSoaJsonMessageSvcTest, AFailureKeepsTheRequestsOwnVersionEvenVersion2015_10) {
  const ExceptionInfo error(std::runtime_error("server down"));
  EXPECT_EQ(ReplyTo(Request("_2015_10"), R"("{"a": 1}")", error),
            R"({"Version": "_2015_10", "CacheId": "7", "SoaResponse": "", )"
            R"("Exception": {"name": "std::runtime_error", "message": "server down"}})");
  EXPECT_EQ(ReplyTo(Request("_2016_04"), "ignored", error),
            R"({"Version": "_2016_04", "CacheId": "7", "SoaResponse": "", )"
            R"("Exception": {"name": "std::runtime_error", "message": "server down"}})");
  EXPECT_EQ(ReplyTo(Request("_2014_02"), "", error),
            R"({"Version": "_2014_02", "CacheId": "7", "SoaResponse": "", )"
            R"("Exception": {"name": "std::runtime_error", "message": "server down"}})");
}

TEST_F(AsyncSoaJsonMessageSvcTest, ARecordWithOnlyANameOrOnlyAMessageIsAFailure) {
  ExceptionInfo nameOnly;
  nameOnly.name = "Timeout";
  EXPECT_EQ(ReplyTo(Request("_2014_07"), "x", nameOnly),
            R"({"Version": "_2014_07", "CacheId": "7", "SoaResponse": "", )"
            R"("Exception": {"name": "Timeout", "message": ""}})");
  ExceptionInfo messageOnly;
  messageOnly.message = "late";
  EXPECT_EQ(ReplyTo(Request("_2014_07"), "x", messageOnly),
            R"({"Version": "_2014_07", "CacheId": "7", "SoaResponse": "", )"
            R"("Exception": {"name": "", "message": "late"}})");
}

TEST_F(AsyncSoaJsonMessageSvcTest, RejectsANonRequestWithBadPayloadData) {
  EXPECT_TRUE(Rejects("not json", "Bad payload data"));
  EXPECT_TRUE(Rejects("[1]", "Bad payload data"));
  EXPECT_TRUE(Rejects("", "Bad payload data"));
}

TEST_F(AsyncSoaJsonMessageSvcTest, AMissingCacheIdIsReportedEvenWhenTheDescriptorIsMissingToo) {
  EXPECT_TRUE(Rejects(R"({"Version": "_2014_02"})", "CacheId is missing"));
  EXPECT_TRUE(Rejects(R"({"CacheId": "", "ReplyServiceDescriptor": "", "Version": "_2014_02"})",
                      "CacheId is missing"));
}

TEST_F(AsyncSoaJsonMessageSvcTest, AnEmptyReplyDescriptorIsMissing) {
  EXPECT_TRUE(Rejects(R"({"CacheId":"7","ReplyServiceDescriptor":"","Version":"_2014_02"})",
                      "ReplyServiceDescriptor is missing"));
}

TEST_F(AsyncSoaJsonMessageSvcTest, AReplyDescriptorThatIsNoObjectIsIncorrect) {
  EXPECT_TRUE(Rejects(R"({"CacheId": "7", "ReplyServiceDescriptor": "app.Reply.client"})",
                      "ReplyServiceDescriptor is incorrect"));
  EXPECT_TRUE(Rejects(R"({"CacheId": "7", "ReplyServiceDescriptor": "[]"})",
                      "ReplyServiceDescriptor is incorrect"));
}

TEST_F(AsyncSoaJsonMessageSvcTest, ASendingFailureWritesOneLineAndDoesNotThrow) {
  service_.InvokeEvent(&instance_, &service_, Request("_2014_07"));
  ASSERT_NE(handler_.callback, nullptr);
  EXPECT_CALL(instance_, InvokeWebEvent(_, _))
      .WillOnce(Throw(std::runtime_error("Cannot talk to hosted content")));
  StdoutCapture capture;
  EXPECT_NO_THROW(handler_.callback(handler_.context, "{}", ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST_F(AsyncSoaJsonMessageSvcTest, AScriptFailureWhileSendingIsCaughtToo) {
  service_.InvokeEvent(&instance_, &service_, Request("_2015_10"));
  ASSERT_NE(handler_.callback, nullptr);
  EXPECT_CALL(instance_, InvokeWebEvent(_, _))
      .WillOnce(Throw(IWebControl::ScriptException("script failed", "line 1")));
  StdoutCapture capture;
  EXPECT_NO_THROW(handler_.callback(handler_.context, R"("1")", ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST_F(AsyncSoaJsonMessageSvcTest, ARequestReceivedWithoutInstanceIsReportedWhenAnswered) {
  service_.InvokeEvent(nullptr, &service_, Request("_2014_02"));
  ASSERT_NE(handler_.callback, nullptr);
  StdoutCapture capture;
  EXPECT_NO_THROW(handler_.callback(handler_.context, "{}", ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST_F(AsyncSoaJsonMessageSvcTest, ANullContextDoesNothing) {
  StdoutCapture capture;
  EXPECT_NO_THROW(ExposedService::ExternalFacingCallback(nullptr, "{}", ExceptionInfo()));
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(AsyncSoaJsonMessageSvcTest, TheHandlersCallbackIsTheServicesCallback) {
  ExposedService service(&handler_);
  service.InvokeEvent(&instance_, &service, Request("_2014_02"));
  EXPECT_EQ(handler_.callback, &ExposedService::ExternalFacingCallback);
  WebEventRecorder sent;
  sent.Expect(instance_);
  handler_.callback(handler_.context, "", ExceptionInfo());
}

TEST_F(AsyncSoaJsonMessageSvcTest, AHandlerExceptionPassesToTheCaller) {
  class ThrowingHandler : public IHandleAsyncSoaJsonServiceRequest {
   public:
    void OnSoaJsonRequest(std::string, std::string, std::string, void* context,
                          SoaResponseCallback callback) override {
      // Answers first (so nothing leaks), then fails.
      callback(context, "", ExceptionInfo(std::runtime_error("busy")));
      throw std::logic_error("handler failed");
    }
  };
  WebEventRecorder sent;
  sent.Expect(instance_);
  ThrowingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  EXPECT_TRUE(ThrowsExactly<std::logic_error>(
      [&] { service.InvokeEvent(&instance_, &service, Request("_2014_02")); }, "handler failed"));
  EXPECT_EQ(sent.Last().text, R"({"Version": "_2014_02", "CacheId": "7", "SoaResponse": "", )"
                              R"("Exception": {"name": "std::runtime_error", "message": "busy"}})");
}

TEST_F(AsyncSoaJsonMessageSvcTest, ACopyServesTheSameHandler) {
  AsyncSoaJsonMessageSvc copy(service_);
  EXPECT_EQ(copy.GetFQN(), service_.GetFQN());
  EXPECT_EQ(copy.GetSvcVersion(), "_2014_02");
  copy.InvokeEvent(&instance_, &copy, Request("_2014_02"));
  EXPECT_EQ(handler_.calls, 1);
  WebEventRecorder sent;
  sent.Expect(instance_);
  handler_.callback(handler_.context, "", ExceptionInfo());
}

TEST_F(AsyncSoaJsonMessageSvcTest, IsDeletedThroughItsDescriptorInterface) {
  IHostServiceDescriptor* descriptor = new AsyncSoaJsonMessageSvc(&handler_);
  EXPECT_EQ(descriptor->GetFQN(),
            "tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host");
  delete descriptor;
  EXPECT_EQ(handler_.calls, 0);
}

// ---- End to end: the service on a host control instance over a scripted page

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

using AsyncSoaJsonMessageSvcEndToEndTest = wevlin_test::TalkingPageFixture;

constexpr char kAsyncSoaHost[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host", )"
    R"("SvcVersion": "_2014_02"})";

TEST_F(AsyncSoaJsonMessageSvcEndToEndTest, TheAnswerReachesThePageAsAnEventScriptLine) {
  CapturingHandler handler;
  manager_->RegisterService(new AsyncSoaJsonMessageSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kAsyncSoaHost, Request("_2014_07")), "");
  ASSERT_EQ(handler.calls, 1);
  EXPECT_EQ(handler.serviceName, "Orders");
  EXPECT_TRUE(page_.Scripts().empty());

  handler.callback(handler.context, R"({"a": 1})", ExceptionInfo());
  EXPECT_EQ(page_.Scripts(),
            std::vector<std::string>{
                R"(tavoInterop_WebEvent('{"FQN": "app.Reply.client", "SvcVersion": "_2014_02"}',)"
                R"('{"Version": "_2014_07", "CacheId": "7", "SoaResponse": "eyJhIjogMX0=", )"
                R"("Exception": null}');)"});
}

TEST_F(AsyncSoaJsonMessageSvcEndToEndTest, ARawAnswerAnsweredFromAnotherThreadReachesThePage) {
  CapturingHandler handler;
  manager_->RegisterService(new AsyncSoaJsonMessageSvc(&handler));
  ASSERT_EQ(api_->tavoHostEvent(kAsyncSoaHost, Request("_2015_10")), "");
  ASSERT_NE(handler.callback, nullptr);
  std::thread answering(
      [&handler] { handler.callback(handler.context, R"("{"a": 1}")", ExceptionInfo()); });
  answering.join();
  EXPECT_EQ(page_.Scripts(),
            std::vector<std::string>{
                R"(tavoInterop_WebEvent('{"FQN": "app.Reply.client", "SvcVersion": "_2014_02"}',)"
                R"('{"CacheId":"7","SoaResponse":{"a": 1},"Version":"_2015_10"}');)"});
}

TEST_F(AsyncSoaJsonMessageSvcEndToEndTest, SingleQuotesOfTheAnswerAreEscapedForTheScript) {
  CapturingHandler handler;
  manager_->RegisterService(new AsyncSoaJsonMessageSvc(&handler));
  ASSERT_EQ(api_->tavoHostEvent(kAsyncSoaHost, Request("_2015_10")), "");
  handler.callback(handler.context, R"("{"name": "O'Brien"}")", ExceptionInfo());
  ASSERT_EQ(page_.Scripts().size(), 1u);
  EXPECT_EQ(page_.Scripts()[0],
            R"(tavoInterop_WebEvent('{"FQN": "app.Reply.client", "SvcVersion": "_2014_02"}',)"
            R"('{"CacheId":"7","SoaResponse":{"name": "O\'Brien"},"Version":"_2015_10"}');)");
  // The page sees the text as the host wrote it.
  ASSERT_EQ(page_.CallsOf("tavoInterop_WebEvent").size(), 1u);
  EXPECT_EQ(page_.CallsOf("tavoInterop_WebEvent")[0].args[1],
            R"({"CacheId":"7","SoaResponse":{"name": "O'Brien"},"Version":"_2015_10"})");
}

TEST_F(AsyncSoaJsonMessageSvcEndToEndTest, ARejectedRequestReachesThePageAsAnExceptionRecord) {
  CapturingHandler handler;
  manager_->RegisterService(new AsyncSoaJsonMessageSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kAsyncSoaHost, R"({"ReplyServiceDescriptor": "{}"})"),
            R"({"Exception": {"name": "std::invalid_argument", "message": "CacheId is missing"}})");
  EXPECT_EQ(api_->tavoHostEvent(kAsyncSoaHost, "not json"),
            R"({"Exception": {"name": "std::invalid_argument", "message": "Bad payload data"}})");
  EXPECT_EQ(handler.calls, 0);
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(AsyncSoaJsonMessageSvcEndToEndTest, AnAnswerAfterThePageStoppedTalkingWritesOneLine) {
  CapturingHandler handler;
  manager_->RegisterService(new AsyncSoaJsonMessageSvc(&handler));
  ASSERT_EQ(api_->tavoHostEvent(kAsyncSoaHost, Request("_2014_02")), "");
  instance_->SetContentState(e2e::LoadedNoTalk);
  StdoutCapture capture;
  EXPECT_NO_THROW(handler.callback(handler.context, "{}", ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(AsyncSoaJsonMessageSvcEndToEndTest, AFailingPageScriptIsLoggedByBothLayers) {
  CapturingHandler handler;
  manager_->RegisterService(new AsyncSoaJsonMessageSvc(&handler));
  ASSERT_EQ(api_->tavoHostEvent(kAsyncSoaHost, Request("_2014_02")), "");
  page_.Fail("tavoInterop_WebEvent", IWebControl::ScriptException("TypeError", "reply"));
  StdoutCapture capture;
  EXPECT_NO_THROW(handler.callback(handler.context, "{}", ExceptionInfo()));
  EXPECT_EQ(capture.Text(),
            std::string("Caught exception running tavoInterop_HostServiceListUpdate\n") +
                kSendFailedLine);
}

TEST_F(AsyncSoaJsonMessageSvcEndToEndTest, AnErrorRecordAnsweredByThePageIsLoggedOnly) {
  CapturingHandler handler;
  manager_->RegisterService(new AsyncSoaJsonMessageSvc(&handler));
  ASSERT_EQ(api_->tavoHostEvent(kAsyncSoaHost, Request("_2014_07")), "");
  page_.EventReply = R"({"Exception": {"name": "Error", "message": "no reply service"}})";
  StdoutCapture capture;
  EXPECT_NO_THROW(
      handler.callback(handler.context, "", ExceptionInfo(std::runtime_error("server down"))));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
  ASSERT_EQ(page_.CallsOf("tavoInterop_WebEvent").size(), 1u);
  EXPECT_EQ(page_.CallsOf("tavoInterop_WebEvent")[0].args[1],
            R"({"Version": "_2014_07", "CacheId": "7", "SoaResponse": "", )"
            R"("Exception": {"name": "std::runtime_error", "message": "server down"}})");
}

}  // namespace
