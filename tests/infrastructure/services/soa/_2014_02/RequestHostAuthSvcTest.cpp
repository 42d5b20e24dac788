#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthSvc.h"

#include <map>
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
#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleRequestHostAuthSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthResponseMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::WebSideServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    IHandleRequestHostAuthSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::RequestHostAuthCallback;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    RequestHostAuthResponseMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::RequestHostAuthSvc;
using ::testing::_;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;
using wevlin_test::ThrowsExactly;
using wevlin_test::WebEventRecorder;

static_assert(std::is_abstract_v<IHandleRequestHostAuthSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleRequestHostAuthSvc>);
static_assert(std::has_virtual_destructor_v<RequestHostAuthSvc>);

using Context = std::map<std::string, void*>;

constexpr char kSendFailedLine[] =
    "RequestHostAuthSvc::ReplyCallback - Error sending async reply\n";
constexpr char kRequest[] =
    R"({"CacheId":"7","ReplyServiceDescriptor":"{\"FQN\":\"app.AuthReply.client\",\"SvcVersion\":\"_2014_02\"}","Version":"_2014_02"})";

class CapturingHandler : public IHandleRequestHostAuthSvc {
 public:
  void OnRequestHostAuth(void* context, RequestHostAuthCallback callback) override {
    ++calls;
    this->context = context;
    this->callback = callback;
  }

  int calls = 0;
  void* context = nullptr;
  RequestHostAuthCallback callback = nullptr;
};

class ExposedService : public RequestHostAuthSvc {
 public:
  using RequestHostAuthSvc::ReplyCallback;
  using RequestHostAuthSvc::RequestHostAuthSvc;
};

// Sends kRequest through a fresh service, answers it with the given outcome
// and returns the one event that reached the page.
WebEventRecorder::Event ReplyTo(bool isAuthenticated, const ExceptionInfo& error) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  RequestHostAuthSvc service(&handler);
  service.InvokeEvent(&instance, &service, kRequest);
  EXPECT_EQ(handler.calls, 1);
  if (handler.callback == nullptr) return WebEventRecorder::Event();
  WebEventRecorder sent;
  sent.Expect(instance);
  handler.callback(handler.context, isAuthenticated, error);
  EXPECT_EQ(sent.Count(), 1);
  return sent.Last();
}

// Checks that a fresh service rejects the event `payload` with a
// std::invalid_argument whose what() is `what`, without calling the handler.
::testing::AssertionResult Rejects(const std::string& payload, const std::string& what) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  RequestHostAuthSvc service(&handler);
  ::testing::AssertionResult result = ThrowsExactly<std::invalid_argument>(
      [&] { service.InvokeEvent(&instance, &service, payload); }, what);
  EXPECT_EQ(handler.calls, 0);
  return result;
}

using RequestHostAuthSvcTest = wevlin_test::ServiceFixture<RequestHostAuthSvc, CapturingHandler>;

TEST_F(RequestHostAuthSvcTest, IsTheRequestHostAuthServiceOfVersion2014_02) {
  EXPECT_EQ(service_.GetFQN(), "tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host");
  EXPECT_EQ(service_.GetSvcVersion(), "_2014_02");
}

TEST_F(RequestHostAuthSvcTest, TheContextHoldsExactlyDescriptorResponseAndInstance) {
  ExposedService service(&handler_);
  service.InvokeEvent(&instance_, &service, kRequest);
  ASSERT_EQ(handler_.calls, 1);
  EXPECT_EQ(handler_.callback, &ExposedService::ReplyCallback);

  const Context& context = *static_cast<Context*>(handler_.context);
  ASSERT_EQ(context.size(), 3u);
  auto* descriptor = static_cast<WebSideServiceDescriptor*>(context.at("descriptor"));
  EXPECT_EQ(descriptor->GetFQN(), "app.AuthReply.client");
  EXPECT_EQ(descriptor->GetSvcVersion(), "_2014_02");
  auto* response = static_cast<RequestHostAuthResponseMsg*>(context.at("responseMsg"));
  // The request's cache identifier is not copied into the response.
  EXPECT_EQ(response->ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": false, )"
            R"("Exception": null})");
  EXPECT_EQ(static_cast<IHostControlInstance*>(context.at("hostInstance")), &instance_);

  WebEventRecorder sent;
  sent.Expect(instance_);
  handler_.callback(handler_.context, false, ExceptionInfo());
}

TEST_F(RequestHostAuthSvcTest, ASuccessfulLoginReachesTheReplyServiceWithAnEmptyCacheId) {
  const WebEventRecorder::Event sent = ReplyTo(true, ExceptionInfo());
  EXPECT_EQ(sent.fqn, "app.AuthReply.client");
  EXPECT_EQ(sent.version, "_2014_02");
  EXPECT_EQ(sent.text, R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": true, )"
                       R"("Exception": null})");
}

TEST_F(RequestHostAuthSvcTest, AFailedLoginSendsFalse) {
  EXPECT_EQ(ReplyTo(false, ExceptionInfo()).text,
            R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": false, )"
            R"("Exception": null})");
}

TEST_F(RequestHostAuthSvcTest, AnErrorIsCopiedIntoTheReply) {
  EXPECT_EQ(ReplyTo(false, ExceptionInfo(std::runtime_error("login cancelled"))).text,
            R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": false, )"
            R"("Exception": {"name": "std::runtime_error", "message": "login cancelled"}})");
  ExceptionInfo nameOnly;
  nameOnly.name = "Cancelled";
  EXPECT_EQ(ReplyTo(true, nameOnly).text,
            R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": true, )"
            R"("Exception": {"name": "Cancelled", "message": ""}})");
}

TEST_F(RequestHostAuthSvcTest, RejectsANonRequestWithBadPayloadData) {
  EXPECT_TRUE(Rejects("<xml/>", "Bad payload data"));
  EXPECT_TRUE(Rejects("[]", "Bad payload data"));
}

TEST_F(RequestHostAuthSvcTest, AMissingCacheIdIsReportedFirst) {
  EXPECT_TRUE(Rejects(R"({"Version": "_2014_02"})", "CacheId is missing"));
  EXPECT_TRUE(Rejects(R"({"CacheId": "", "ReplyServiceDescriptor": "x"})", "CacheId is missing"));
}

TEST_F(RequestHostAuthSvcTest, AnEmptyReplyDescriptorIsMissing) {
  EXPECT_TRUE(Rejects(R"({"CacheId":"7","ReplyServiceDescriptor":"","Version":"_2014_02"})",
                      "ReplyServiceDescriptor is missing"));
}

TEST_F(RequestHostAuthSvcTest, AReplyDescriptorThatIsNoObjectIsIncorrect) {
  EXPECT_TRUE(Rejects(R"({"CacheId":"7","ReplyServiceDescriptor":"x.client"})",
                      "ReplyServiceDescriptor is incorrect"));
}

TEST_F(RequestHostAuthSvcTest, ASendingFailureWritesOneLineAndDoesNotThrow) {
  service_.InvokeEvent(&instance_, &service_, kRequest);
  ASSERT_NE(handler_.callback, nullptr);
  EXPECT_CALL(instance_, InvokeWebEvent(_, _))
      .WillOnce(Throw(std::runtime_error("Cannot talk to hosted content")));
  StdoutCapture capture;
  EXPECT_NO_THROW(handler_.callback(handler_.context, true, ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST_F(RequestHostAuthSvcTest, AScriptFailureWhileSendingIsCaughtToo) {
  service_.InvokeEvent(&instance_, &service_, kRequest);
  ASSERT_NE(handler_.callback, nullptr);
  EXPECT_CALL(instance_, InvokeWebEvent(_, _))
      .WillOnce(Throw(IWebControl::ScriptException("script failed", "")));
  StdoutCapture capture;
  EXPECT_NO_THROW(handler_.callback(handler_.context, false, ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST_F(RequestHostAuthSvcTest, ARequestReceivedWithoutInstanceIsReportedWhenAnswered) {
  service_.InvokeEvent(nullptr, &service_, kRequest);
  ASSERT_NE(handler_.callback, nullptr);
  StdoutCapture capture;
  EXPECT_NO_THROW(handler_.callback(handler_.context, true, ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST_F(RequestHostAuthSvcTest, ANullContextDoesNothing) {
  StdoutCapture capture;
  EXPECT_NO_THROW(ExposedService::ReplyCallback(nullptr, true, ExceptionInfo()));
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(RequestHostAuthSvcTest, AMethodCallIsNotServed) {
  EXPECT_EQ(service_.InvokeMethod(nullptr, &service_, kRequest), "");
  EXPECT_EQ(handler_.calls, 0);
}

TEST_F(RequestHostAuthSvcTest, ACopyServesTheSameHandler) {
  RequestHostAuthSvc copy(service_);
  copy.InvokeEvent(&instance_, &copy, kRequest);
  EXPECT_EQ(handler_.calls, 1);
  WebEventRecorder sent;
  sent.Expect(instance_);
  handler_.callback(handler_.context, true, ExceptionInfo());
  EXPECT_EQ(sent.Count(), 1);
}

// ---- End to end: the service on a host control instance over a scripted page

using RequestHostAuthSvcEndToEndTest = wevlin_test::TalkingPageFixture;

constexpr char kRequestHostAuthHost[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host", )"
    R"("SvcVersion": "_2014_02"})";

TEST_F(RequestHostAuthSvcEndToEndTest, ASuccessfulLoginReachesTheReplyServiceOfThePage) {
  CapturingHandler handler;
  manager_->RegisterService(new RequestHostAuthSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kRequestHostAuthHost, kRequest), "");
  ASSERT_EQ(handler.calls, 1);
  EXPECT_TRUE(page_.Scripts().empty());

  std::thread login([&handler] { handler.callback(handler.context, true, ExceptionInfo()); });
  login.join();
  EXPECT_EQ(
      page_.Scripts(),
      std::vector<std::string>{
          R"(tavoInterop_WebEvent('{"FQN": "app.AuthReply.client", "SvcVersion": "_2014_02"}',)"
          R"('{"Version": "_2014_02", "CacheId": "", "IsAuthenticated": true, "Exception": null}');)"});
}

TEST_F(RequestHostAuthSvcEndToEndTest, AnErrorReachesThePageInTheReply) {
  CapturingHandler handler;
  manager_->RegisterService(new RequestHostAuthSvc(&handler));
  ASSERT_EQ(api_->tavoHostEvent(kRequestHostAuthHost, kRequest), "");
  handler.callback(handler.context, false,
                   ExceptionInfo(std::runtime_error("user's login failed")));
  ASSERT_EQ(page_.Scripts().size(), 1u);
  EXPECT_EQ(
      page_.Scripts()[0],
      R"(tavoInterop_WebEvent('{"FQN": "app.AuthReply.client", "SvcVersion": "_2014_02"}',)"
      R"('{"Version": "_2014_02", "CacheId": "", "IsAuthenticated": false, )"
      R"("Exception": {"name": "std::runtime_error", "message": "user\'s login failed"}}');)");
}

TEST_F(RequestHostAuthSvcEndToEndTest, ARejectedRequestReachesThePageAsAnExceptionRecord) {
  CapturingHandler handler;
  manager_->RegisterService(new RequestHostAuthSvc(&handler));
  EXPECT_EQ(
      api_->tavoHostEvent(kRequestHostAuthHost,
                          R"({"CacheId":"7","ReplyServiceDescriptor":"","Version":"_2014_02"})"),
      R"({"Exception": {"name": "std::invalid_argument", )"
      R"("message": "ReplyServiceDescriptor is missing"}})");
  EXPECT_EQ(handler.calls, 0);
}

TEST_F(RequestHostAuthSvcEndToEndTest, AFailingPageScriptIsLoggedByBothLayers) {
  CapturingHandler handler;
  manager_->RegisterService(new RequestHostAuthSvc(&handler));
  ASSERT_EQ(api_->tavoHostEvent(kRequestHostAuthHost, kRequest), "");
  page_.Fail("tavoInterop_WebEvent", IWebControl::ScriptException("TypeError", "reply"));
  StdoutCapture capture;
  EXPECT_NO_THROW(handler.callback(handler.context, true, ExceptionInfo()));
  EXPECT_EQ(capture.Text(),
            std::string("Caught exception running tavoInterop_HostServiceListUpdate\n") +
                kSendFailedLine);
}

}  // namespace
