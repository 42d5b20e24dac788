#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthSvc.h"

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MockHostControlInstance.h"
#include "support/ScriptedPage.h"
#include "support/StdoutCapture.h"
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleRequestHostAuthSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthResponseMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ITargetServiceDesc;
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
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;

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

struct Sent {
  int count = 0;
  std::string target;
  std::string text;
};

void ExpectOneReply(StrictMock<MockHostControlInstance>& instance, Sent& sent) {
  EXPECT_CALL(instance, InvokeWebEvent(_, _))
      .WillOnce([&sent](ITargetServiceDesc* target, std::string text) {
        ++sent.count;
        sent.target = target->GetFQN() + " " + target->GetSvcVersion();
        sent.text = text;
      });
}

// Sends kRequest, answers it with the given outcome and returns what reached
// the page.
Sent ReplyTo(bool isAuthenticated, const ExceptionInfo& error) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  RequestHostAuthSvc service(&handler);
  service.InvokeEvent(&instance, &service, kRequest);
  Sent sent;
  EXPECT_EQ(handler.calls, 1);
  if (handler.callback == nullptr) return sent;
  ExpectOneReply(instance, sent);
  handler.callback(handler.context, isAuthenticated, error);
  return sent;
}

std::string RejectionOf(const std::string& payload) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  RequestHostAuthSvc service(&handler);
  std::string what = "accepted";
  try {
    service.InvokeEvent(&instance, &service, payload);
  } catch (const std::exception& e) {
    what = typeid(e) == typeid(std::invalid_argument) ? e.what()
                                                      : std::string("wrong type: ") + e.what();
  }
  EXPECT_EQ(handler.calls, 0);
  return what;
}

TEST(RequestHostAuthSvcTest, IsTheRequestHostAuthServiceOfVersion2014_02) {
  CapturingHandler handler;
  RequestHostAuthSvc service(&handler);
  EXPECT_EQ(service.GetFQN(), "tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host");
  EXPECT_EQ(service.GetSvcVersion(), "_2014_02");
}

TEST(RequestHostAuthSvcTest, TheContextHoldsExactlyDescriptorResponseAndInstance) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  ExposedService service(&handler);
  service.InvokeEvent(&instance, &service, kRequest);
  ASSERT_EQ(handler.calls, 1);
  EXPECT_EQ(handler.callback, &ExposedService::ReplyCallback);

  const Context& context = *static_cast<Context*>(handler.context);
  ASSERT_EQ(context.size(), 3u);
  auto* descriptor = static_cast<WebSideServiceDescriptor*>(context.at("descriptor"));
  EXPECT_EQ(descriptor->GetFQN(), "app.AuthReply.client");
  EXPECT_EQ(descriptor->GetSvcVersion(), "_2014_02");
  auto* response = static_cast<RequestHostAuthResponseMsg*>(context.at("responseMsg"));
  // The request's cache identifier is not copied into the response.
  EXPECT_EQ(response->ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": false, )"
            R"("Exception": null})");
  EXPECT_EQ(static_cast<IHostControlInstance*>(context.at("hostInstance")), &instance);

  Sent sent;
  ExpectOneReply(instance, sent);
  handler.callback(handler.context, false, ExceptionInfo());
}

TEST(RequestHostAuthSvcTest, ASuccessfulLoginReachesTheReplyServiceWithAnEmptyCacheId) {
  Sent sent = ReplyTo(true, ExceptionInfo());
  EXPECT_EQ(sent.count, 1);
  EXPECT_EQ(sent.target, "app.AuthReply.client _2014_02");
  EXPECT_EQ(sent.text, R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": true, )"
                       R"("Exception": null})");
}

TEST(RequestHostAuthSvcTest, AFailedLoginSendsFalse) {
  Sent sent = ReplyTo(false, ExceptionInfo());
  EXPECT_EQ(sent.text, R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": false, )"
                       R"("Exception": null})");
}

TEST(RequestHostAuthSvcTest, AnErrorIsCopiedIntoTheReply) {
  Sent sent = ReplyTo(false, ExceptionInfo(std::runtime_error("login cancelled")));
  EXPECT_EQ(sent.text,
            R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": false, )"
            R"("Exception": {"name": "std::runtime_error", "message": "login cancelled"}})");
  ExceptionInfo nameOnly;
  nameOnly.name = "Cancelled";
  EXPECT_EQ(ReplyTo(true, nameOnly).text,
            R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": true, )"
            R"("Exception": {"name": "Cancelled", "message": ""}})");
}

TEST(RequestHostAuthSvcTest, RejectsANonRequestWithBadPayloadData) {
  EXPECT_EQ(RejectionOf("<xml/>"), "Bad payload data");
  EXPECT_EQ(RejectionOf("[]"), "Bad payload data");
}

TEST(RequestHostAuthSvcTest, AMissingCacheIdIsReportedFirst) {
  EXPECT_EQ(RejectionOf(R"({"Version": "_2014_02"})"), "CacheId is missing");
  EXPECT_EQ(RejectionOf(R"({"CacheId": "", "ReplyServiceDescriptor": "x"})"), "CacheId is missing");
}

TEST(RequestHostAuthSvcTest, AnEmptyReplyDescriptorIsMissing) {
  EXPECT_EQ(RejectionOf(R"({"CacheId":"7","ReplyServiceDescriptor":"","Version":"_2014_02"})"),
            "ReplyServiceDescriptor is missing");
}

TEST(RequestHostAuthSvcTest, AReplyDescriptorThatIsNoObjectIsIncorrect) {
  EXPECT_EQ(RejectionOf(R"({"CacheId":"7","ReplyServiceDescriptor":"x.client"})"),
            "ReplyServiceDescriptor is incorrect");
}

TEST(RequestHostAuthSvcTest, ASendingFailureWritesOneLineAndDoesNotThrow) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  RequestHostAuthSvc service(&handler);
  service.InvokeEvent(&instance, &service, kRequest);
  ASSERT_NE(handler.callback, nullptr);
  EXPECT_CALL(instance, InvokeWebEvent(_, _)).WillOnce([](ITargetServiceDesc*, std::string) {
    throw std::runtime_error("Cannot talk to hosted content");
  });
  StdoutCapture capture;
  EXPECT_NO_THROW(handler.callback(handler.context, true, ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST(RequestHostAuthSvcTest, AScriptFailureWhileSendingIsCaughtToo) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  RequestHostAuthSvc service(&handler);
  service.InvokeEvent(&instance, &service, kRequest);
  ASSERT_NE(handler.callback, nullptr);
  EXPECT_CALL(instance, InvokeWebEvent(_, _)).WillOnce([](ITargetServiceDesc*, std::string) {
    throw IWebControl::ScriptException("script failed", "");
  });
  StdoutCapture capture;
  EXPECT_NO_THROW(handler.callback(handler.context, false, ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST(RequestHostAuthSvcTest, ARequestReceivedWithoutInstanceIsReportedWhenAnswered) {
  CapturingHandler handler;
  RequestHostAuthSvc service(&handler);
  service.InvokeEvent(nullptr, &service, kRequest);
  ASSERT_NE(handler.callback, nullptr);
  StdoutCapture capture;
  EXPECT_NO_THROW(handler.callback(handler.context, true, ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST(RequestHostAuthSvcTest, ANullContextDoesNothing) {
  StdoutCapture capture;
  EXPECT_NO_THROW(ExposedService::ReplyCallback(nullptr, true, ExceptionInfo()));
  EXPECT_EQ(capture.Text(), "");
}

TEST(RequestHostAuthSvcTest, AMethodCallIsNotServed) {
  CapturingHandler handler;
  RequestHostAuthSvc service(&handler);
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, kRequest), "");
  EXPECT_EQ(handler.calls, 0);
}

TEST(RequestHostAuthSvcTest, ACopyServesTheSameHandler) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  RequestHostAuthSvc original(&handler);
  RequestHostAuthSvc copy(original);
  copy.InvokeEvent(&instance, &copy, kRequest);
  EXPECT_EQ(handler.calls, 1);
  Sent sent;
  ExpectOneReply(instance, sent);
  handler.callback(handler.context, true, ExceptionInfo());
  EXPECT_EQ(sent.count, 1);
}

// ---- End to end: the service on a host control instance over a scripted page

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

// A fresh host manager, a scripted page, a host control instance on it that
// has finished the handshake, and the API through which the page's script
// calls the host. Services registered with the manager are deleted at the end
// of each test.
class RequestHostAuthSvcEndToEndTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previousManager_ = e2e::internal::HostManagerTestPeer::InstallFresh();
    manager_ = e2e::HostManager::TheInstance();
    instance_ = std::make_unique<e2e::HostControlInstance>(&page_);
    api_ = std::make_unique<e2e::HostAPI>(instance_.get());
    instance_->LaunchToTarget(&target_);
    page_.CompleteLoad();
    ASSERT_EQ(api_->tavoHost_WebSideStartHandShake(), "");
    ASSERT_EQ(instance_->GetContentState(), e2e::LoadedCanTalk);
    page_.ClearRecords();
  }

  void TearDown() override {
    api_.reset();
    Com::Velmora::TAVO::Wevlin::Infrastructure::Base::IObservableList<e2e::IHostServiceDescriptor*>*
        own = instance_->KnownServices();
    instance_.reset();
    delete own;
    std::vector<e2e::IHostServiceDescriptor*> services;
    for (int i = 0; i < manager_->KnownServices()->GetSize(); ++i) {
      services.push_back(manager_->KnownServices()->GetAt(i));
    }
    e2e::internal::HostManagerTestPeer::Restore(previousManager_);
    for (e2e::IHostServiceDescriptor* service : services) delete service;
  }

  wevlin_test::TimerEnvironmentScope env_;
  wevlin_test::ScriptedPage page_;
  e2e::TargetConfig target_{"app", "App", "https://app.example/"};
  e2e::HostManager* previousManager_ = nullptr;
  e2e::HostManager* manager_ = nullptr;
  std::unique_ptr<e2e::HostControlInstance> instance_;
  std::unique_ptr<e2e::HostAPI> api_;
};

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
