#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaJsonMessageSvc.h"

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
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleAsyncSoaJsonServiceRequest.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ITargetServiceDesc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::BaseHostingService;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::AsyncSoaJsonMessageSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    IHandleAsyncSoaJsonServiceRequest;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::SoaResponseCallback;
using ::testing::_;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;

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

// What reached the page's reply service.
struct Sent {
  int count = 0;
  std::string fqn;
  std::string version;
  std::string text;
};

void ExpectOneReply(StrictMock<MockHostControlInstance>& instance, Sent& sent) {
  EXPECT_CALL(instance, InvokeWebEvent(_, _))
      .WillOnce([&sent](ITargetServiceDesc* target, std::string text) {
        ++sent.count;
        sent.fqn = target->GetFQN();
        sent.version = target->GetSvcVersion();
        sent.text = text;
      });
}

// Sends `request` through a fresh service, answers it with `answer` and
// `error`, and returns the reply text that reached the page.
std::string ReplyTo(const std::string& request, const std::string& answer,
                    const ExceptionInfo& error = ExceptionInfo()) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  Sent sent;
  ExpectOneReply(instance, sent);
  service.InvokeEvent(&instance, &service, request);
  EXPECT_EQ(handler.calls, 1);
  if (handler.callback == nullptr) return "no callback";
  handler.callback(handler.context, answer, error);
  EXPECT_EQ(sent.count, 1);
  EXPECT_EQ(sent.fqn, "app.Reply.client");
  EXPECT_EQ(sent.version, "_2014_02");
  return sent.text;
}

// Returns the what() of the std::invalid_argument that the event `payload`
// throws, after checking that the handler was not called.
std::string RejectionOf(const std::string& payload) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  std::string what = "accepted";
  try {
    service.InvokeEvent(&instance, &service, payload);
  } catch (const std::exception& e) {
    what = typeid(e) == typeid(std::invalid_argument) ? e.what()
                                                      : std::string("wrong type: ") + e.what();
  }
  EXPECT_EQ(handler.calls, 0);
  if (handler.callback != nullptr) handler.callback(handler.context, "", ExceptionInfo());
  return what;
}

TEST(AsyncSoaJsonMessageSvcTest, IsTheAsyncSoaHostServiceOfVersion2014_02) {
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  EXPECT_EQ(service.GetFQN(), "tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host");
  EXPECT_EQ(service.GetSvcVersion(), "_2014_02");
}

TEST(AsyncSoaJsonMessageSvcTest, HandsNamesAndBodyToTheHandlerAndSendsNothingYet) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  service.InvokeEvent(&instance, &service, Request("_2014_07"));
  ASSERT_EQ(handler.calls, 1);
  EXPECT_EQ(handler.serviceName, "Orders");
  EXPECT_EQ(handler.operationName, "List");
  EXPECT_EQ(handler.message, R"({"page": 2})");
  EXPECT_NE(handler.context, nullptr);
  ASSERT_NE(handler.callback, nullptr);
  ::testing::Mock::VerifyAndClearExpectations(&instance);

  // Answering sends exactly one event.
  Sent sent;
  ExpectOneReply(instance, sent);
  handler.callback(handler.context, "{}", ExceptionInfo());
  EXPECT_EQ(sent.count, 1);
}

TEST(AsyncSoaJsonMessageSvcTest, AMethodCallIsNotServed) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  EXPECT_EQ(service.InvokeMethod(&instance, &service, Request("_2014_02")), "");
  EXPECT_EQ(handler.calls, 0);
}

TEST(AsyncSoaJsonMessageSvcTest, Version2014_02RequestGetsAnEmbeddedReplyOfVersion2014_02) {
  EXPECT_EQ(ReplyTo(Request("_2014_02"), R"({"a": 1})"),
            R"({"Version": "_2014_02", "CacheId": "7", "SoaResponse": "eyJhIjogMX0=", )"
            R"("Exception": null})");
}

TEST(AsyncSoaJsonMessageSvcTest, Version2014_07RequestGetsAnEmbeddedReplyOfVersion2014_07) {
  EXPECT_EQ(ReplyTo(Request("_2014_07"), R"({"rows": []})"),
            R"({"Version": "_2014_07", "CacheId": "7", "SoaResponse": "eyJyb3dzIjogW119", )"
            R"("Exception": null})");
}

TEST(AsyncSoaJsonMessageSvcTest, AnyOtherVersionGetsAReplyOfVersion2014_07) {
  const std::string expected =
      R"({"Version": "_2014_07", "CacheId": "7", "SoaResponse": "eyJhIjogMX0=", )"
      R"("Exception": null})";
  EXPECT_EQ(ReplyTo(Request("_2016_04"), R"({"a": 1})"), expected);
  EXPECT_EQ(ReplyTo(Request("_2014_02x"), R"({"a": 1})"), expected);
  EXPECT_EQ(ReplyTo(Request(""), R"({"a": 1})"), expected);
}

TEST(AsyncSoaJsonMessageSvcTest, ARequestWithoutVersionCountsAsVersion2014_02) {
  EXPECT_EQ(
      ReplyTo(
          R"({"CacheId": "7", "ReplyServiceDescriptor": "{\"FQN\": \"app.Reply.client\", \"SvcVersion\": \"_2014_02\"}"})",
          ""),
      R"({"Version": "_2014_02", "CacheId": "7", "SoaResponse": "", "Exception": null})");
}

TEST(AsyncSoaJsonMessageSvcTest, Version2015_10EmbedsTheQuotedAnswerAsRawJson) {
  EXPECT_EQ(ReplyTo(Request("_2015_10"), R"("{"a": 1}")"),
            R"({"CacheId":"7","SoaResponse":{"a": 1},"Version":"_2015_10"})");
}

TEST(AsyncSoaJsonMessageSvcTest, Version2015_10CutsAtTheLastDoubleQuote) {
  // Whatever follows the last quote is dropped, the first character always.
  EXPECT_EQ(ReplyTo(Request("_2015_10"), R"("[1, "x"]"  )"),
            R"({"CacheId":"7","SoaResponse":[1, "x"],"Version":"_2015_10"})");
  EXPECT_EQ(ReplyTo(Request("_2015_10"), R"({"a":"b"})"),
            R"({"CacheId":"7","SoaResponse":"a":"b,"Version":"_2015_10"})");
}

TEST(AsyncSoaJsonMessageSvcTest, Version2015_10WithoutQuoteKeepsAllButTheFirstCharacter) {
  EXPECT_EQ(ReplyTo(Request("_2015_10"), "[42]"),
            R"({"CacheId":"7","SoaResponse":42],"Version":"_2015_10"})");
}

TEST(AsyncSoaJsonMessageSvcTest, Version2015_10WithNothingToEmbedWritesNull) {
  const std::string expected = R"({"CacheId":"7","SoaResponse":null,"Version":"_2015_10"})";
  EXPECT_EQ(ReplyTo(Request("_2015_10"), ""), expected);
  EXPECT_EQ(ReplyTo(Request("_2015_10"), "\""), expected);
  EXPECT_EQ(ReplyTo(Request("_2015_10"), "\"\""), expected);
  EXPECT_EQ(ReplyTo(Request("_2015_10"), "x"), expected);
}

TEST(AsyncSoaJsonMessageSvcTest, Version2015_10InsertsTheCacheIdAsItStands) {
  EXPECT_EQ(ReplyTo(Request("_2015_10", R"("a\"b")"), R"("1")"),
            R"({"CacheId":"a"b","SoaResponse":1,"Version":"_2015_10"})");
}

TEST(AsyncSoaJsonMessageSvcTest, AFailureKeepsTheRequestsOwnVersionEvenVersion2015_10) {
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

TEST(AsyncSoaJsonMessageSvcTest, ARecordWithOnlyANameOrOnlyAMessageIsAFailure) {
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

TEST(AsyncSoaJsonMessageSvcTest, RejectsANonRequestWithBadPayloadData) {
  EXPECT_EQ(RejectionOf("not json"), "Bad payload data");
  EXPECT_EQ(RejectionOf("[1]"), "Bad payload data");
  EXPECT_EQ(RejectionOf(""), "Bad payload data");
}

TEST(AsyncSoaJsonMessageSvcTest, AMissingCacheIdIsReportedEvenWhenTheDescriptorIsMissingToo) {
  EXPECT_EQ(RejectionOf(R"({"Version": "_2014_02"})"), "CacheId is missing");
  EXPECT_EQ(RejectionOf(R"({"CacheId": "", "ReplyServiceDescriptor": "", "Version": "_2014_02"})"),
            "CacheId is missing");
}

TEST(AsyncSoaJsonMessageSvcTest, AnEmptyReplyDescriptorIsMissing) {
  EXPECT_EQ(RejectionOf(R"({"CacheId":"7","ReplyServiceDescriptor":"","Version":"_2014_02"})"),
            "ReplyServiceDescriptor is missing");
}

TEST(AsyncSoaJsonMessageSvcTest, AReplyDescriptorThatIsNoObjectIsIncorrect) {
  EXPECT_EQ(RejectionOf(R"({"CacheId": "7", "ReplyServiceDescriptor": "app.Reply.client"})"),
            "ReplyServiceDescriptor is incorrect");
  EXPECT_EQ(RejectionOf(R"({"CacheId": "7", "ReplyServiceDescriptor": "[]"})"),
            "ReplyServiceDescriptor is incorrect");
}

TEST(AsyncSoaJsonMessageSvcTest, ASendingFailureWritesOneLineAndDoesNotThrow) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  service.InvokeEvent(&instance, &service, Request("_2014_07"));
  ASSERT_NE(handler.callback, nullptr);
  EXPECT_CALL(instance, InvokeWebEvent(_, _)).WillOnce([](ITargetServiceDesc*, std::string) {
    throw std::runtime_error("Cannot talk to hosted content");
  });
  StdoutCapture capture;
  EXPECT_NO_THROW(handler.callback(handler.context, "{}", ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST(AsyncSoaJsonMessageSvcTest, AScriptFailureWhileSendingIsCaughtToo) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  service.InvokeEvent(&instance, &service, Request("_2015_10"));
  ASSERT_NE(handler.callback, nullptr);
  EXPECT_CALL(instance, InvokeWebEvent(_, _)).WillOnce([](ITargetServiceDesc*, std::string) {
    throw IWebControl::ScriptException("script failed", "line 1");
  });
  StdoutCapture capture;
  EXPECT_NO_THROW(handler.callback(handler.context, R"("1")", ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST(AsyncSoaJsonMessageSvcTest, ARequestReceivedWithoutInstanceIsReportedWhenAnswered) {
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  service.InvokeEvent(nullptr, &service, Request("_2014_02"));
  ASSERT_NE(handler.callback, nullptr);
  StdoutCapture capture;
  EXPECT_NO_THROW(handler.callback(handler.context, "{}", ExceptionInfo()));
  EXPECT_EQ(capture.Text(), kSendFailedLine);
}

TEST(AsyncSoaJsonMessageSvcTest, ANullContextDoesNothing) {
  StdoutCapture capture;
  EXPECT_NO_THROW(ExposedService::ExternalFacingCallback(nullptr, "{}", ExceptionInfo()));
  EXPECT_EQ(capture.Text(), "");
}

TEST(AsyncSoaJsonMessageSvcTest, TheHandlersCallbackIsTheServicesCallback) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  ExposedService service(&handler);
  service.InvokeEvent(&instance, &service, Request("_2014_02"));
  EXPECT_EQ(handler.callback, &ExposedService::ExternalFacingCallback);
  Sent sent;
  ExpectOneReply(instance, sent);
  handler.callback(handler.context, "", ExceptionInfo());
}

TEST(AsyncSoaJsonMessageSvcTest, AHandlerExceptionPassesToTheCaller) {
  class ThrowingHandler : public IHandleAsyncSoaJsonServiceRequest {
   public:
    void OnSoaJsonRequest(std::string, std::string, std::string, void* context,
                          SoaResponseCallback callback) override {
      // Answers first (so nothing leaks), then fails.
      callback(context, "", ExceptionInfo(std::runtime_error("busy")));
      throw std::logic_error("handler failed");
    }
  };
  StrictMock<MockHostControlInstance> instance;
  Sent sent;
  ExpectOneReply(instance, sent);
  ThrowingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  try {
    service.InvokeEvent(&instance, &service, Request("_2014_02"));
    FAIL() << "no exception";
  } catch (const std::logic_error& e) {
    EXPECT_EQ(std::string(e.what()), "handler failed");
  }
  EXPECT_EQ(sent.text, R"({"Version": "_2014_02", "CacheId": "7", "SoaResponse": "", )"
                       R"("Exception": {"name": "std::runtime_error", "message": "busy"}})");
}

TEST(AsyncSoaJsonMessageSvcTest, ACopyServesTheSameHandler) {
  StrictMock<MockHostControlInstance> instance;
  CapturingHandler handler;
  AsyncSoaJsonMessageSvc original(&handler);
  AsyncSoaJsonMessageSvc copy(original);
  EXPECT_EQ(copy.GetFQN(), original.GetFQN());
  EXPECT_EQ(copy.GetSvcVersion(), "_2014_02");
  copy.InvokeEvent(&instance, &copy, Request("_2014_02"));
  EXPECT_EQ(handler.calls, 1);
  Sent sent;
  ExpectOneReply(instance, sent);
  handler.callback(handler.context, "", ExceptionInfo());
}

TEST(AsyncSoaJsonMessageSvcTest, IsDeletedThroughItsDescriptorInterface) {
  CapturingHandler handler;
  IHostServiceDescriptor* descriptor = new AsyncSoaJsonMessageSvc(&handler);
  EXPECT_EQ(descriptor->GetFQN(),
            "tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host");
  delete descriptor;
  EXPECT_EQ(handler.calls, 0);
}

// ---- End to end: the service on a host control instance over a scripted page

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

// A fresh host manager, a scripted page, a host control instance on it that
// has finished the handshake, and the API through which the page's script
// calls the host. Services registered with the manager are deleted at the end
// of each test.
class AsyncSoaJsonMessageSvcEndToEndTest : public ::testing::Test {
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
