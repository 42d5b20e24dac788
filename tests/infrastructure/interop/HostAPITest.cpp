#include "wevlin/infrastructure/interop/HostAPI.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "support/CountingService.h"
#include "support/HostedPageFixture.h"
#include "support/MockHostControlInstance.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::HostAPI;
using wevlin_test::CountingService;
using wevlin_test::ServiceCall;
using wevlin_test::ServiceProbe;
using wevlin_test::StdoutCapture;

static_assert(std::has_virtual_destructor_v<HostAPI>);
static_assert(std::is_copy_constructible_v<HostAPI>);
static_assert(std::is_copy_assignable_v<HostAPI>);

const char kGreeter[] = "{\"FQN\": \"a.b\", \"SvcVersion\": \"_2014_07\"}";

std::string Record(const std::string& name, const std::string& message) {
  return "{\"Exception\": {\"name\": \"" + name + "\", \"message\": \"" + message + "\"}}";
}

// A fresh host manager, a scripted page, an instance on it and the API that
// the page would call (see HostedPageFixture), and a probe that sees every
// call of the counting services the tests register.
class HostAPITest : public wevlin_test::HostedPageFixture {
 protected:
  // Registers a counting service "a.b" / "_2014_07" on the instance.
  CountingService* OnInstance() {
    auto* service = new CountingService("a.b", "_2014_07", &probe_);
    instance_->RegisterService(service);
    return service;
  }

  // Outlives every service that reports to it, also those released in
  // TearDown.
  ServiceProbe probe_;
};

// ---- tavoHostMethod -------------------------------------------------------------

TEST_F(HostAPITest, MethodFoundOnTheInstanceAnswersWithTheServicesText) {
  CountingService* service = OnInstance();
  service->SetAnswer("{\"answer\": 42}");
  const std::string payload = "{\"q\": \"it's\"}\n\\";
  EXPECT_EQ(api_->tavoHostMethod(kGreeter, payload), "{\"answer\": 42}");

  ASSERT_EQ(service->Calls().size(), 1U);
  const ServiceCall& call = service->Calls()[0];
  EXPECT_EQ(call.kind, ServiceCall::kMethod);
  EXPECT_EQ(call.instance, instance_.get());
  EXPECT_EQ(call.descriptor, service);
  EXPECT_EQ(call.payload, payload);
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(HostAPITest, MethodFoundOnTheManager) {
  auto* service = new CountingService("a.b", "_2014_07", &probe_);
  service->SetAnswer("from the manager");
  manager_->RegisterService(service);
  EXPECT_EQ(api_->tavoHostMethod(kGreeter, "p"), "from the manager");
  ASSERT_EQ(probe_.calls.size(), 1U);
  EXPECT_EQ(probe_.calls[0].service, service);
  EXPECT_EQ(probe_.calls[0].instance, instance_.get());
}

TEST_F(HostAPITest, MethodPrefersTheInstancesServiceOverTheManagers) {
  auto* global = new CountingService("a.b", "_2014_07", &probe_);
  global->SetAnswer("global");
  manager_->RegisterService(global);
  OnInstance()->SetAnswer("own");
  EXPECT_EQ(api_->tavoHostMethod(kGreeter, ""), "own");
  EXPECT_TRUE(global->Calls().empty());
}

TEST_F(HostAPITest, MissingServiceIsAnsweredWithAnInvalidArgumentRecord) {
  EXPECT_EQ(api_->tavoHostMethod(kGreeter, "p"),
            "{\"Exception\": {\"name\": \"std::invalid_argument\", \"message\": \"No matching "
            "service descriptor found for: a.b ver: _2014_07\"}}");
}

TEST_F(HostAPITest, ServiceOfAnotherVersionOnlyIsNotFound) {
  manager_->RegisterService(new CountingService("a.b", "_2014_02"));
  instance_->RegisterService(new CountingService("a.b", "_2014_10"));
  EXPECT_EQ(api_->tavoHostMethod(kGreeter, ""),
            Record("std::invalid_argument",
                   "No matching service descriptor found for: a.b ver: _2014_07"));
  EXPECT_EQ(api_->tavoHostEvent(kGreeter, ""),
            Record("std::invalid_argument",
                   "No matching service descriptor found for: a.b ver: _2014_07"));
}

TEST_F(HostAPITest, ReplyThatLooksLikeARecordIsReturnedUnchanged) {
  const std::string reply = "{\"Exception\": {\"name\": \"mine\", \"message\": \"not an error\"}}";
  OnInstance()->SetAnswer(reply);
  EXPECT_EQ(api_->tavoHostMethod(kGreeter, ""), reply);
}

struct ThrownKind {
  const char* label;
  std::function<void(CountingService&)> arm;
  const char* name;
  const char* message;
};

// Derives from std::runtime_error, as a service's own exception class might.
class ServiceFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class ThrowingServiceTest : public HostAPITest, public ::testing::WithParamInterface<ThrownKind> {};

TEST_P(ThrowingServiceTest, MethodAndEventAnswerWithTheRecordOfTheException) {
  CountingService* service = OnInstance();
  GetParam().arm(*service);
  const std::string expected = Record(GetParam().name, GetParam().message);
  EXPECT_EQ(api_->tavoHostMethod(kGreeter, "p"), expected);
  EXPECT_EQ(api_->tavoHostEvent(kGreeter, "p"), expected);
  EXPECT_EQ(service->Calls().size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(
    StandardExceptions, ThrowingServiceTest,
    ::testing::Values(
        ThrownKind{"underflow",
                   [](CountingService& s) { s.ThrowOnInvoke(std::underflow_error("u")); },
                   "std::underflow_error", "u"},
        ThrownKind{"overflow",
                   [](CountingService& s) { s.ThrowOnInvoke(std::overflow_error("o")); },
                   "std::overflow_error", "o"},
        ThrownKind{"range", [](CountingService& s) { s.ThrowOnInvoke(std::range_error("r")); },
                   "std::range_error", "r"},
        ThrownKind{"runtime",
                   [](CountingService& s) { s.ThrowOnInvoke(std::runtime_error("failed")); },
                   "std::runtime_error", "failed"},
        ThrownKind{"outOfRange",
                   [](CountingService& s) { s.ThrowOnInvoke(std::out_of_range("index 3")); },
                   "std::out_of_range", "index 3"},
        ThrownKind{"length",
                   [](CountingService& s) { s.ThrowOnInvoke(std::length_error("too long")); },
                   "std::length_error", "too long"},
        ThrownKind{"invalidArgument",
                   [](CountingService& s) { s.ThrowOnInvoke(std::invalid_argument("payload")); },
                   "std::invalid_argument", "payload"},
        ThrownKind{"domain", [](CountingService& s) { s.ThrowOnInvoke(std::domain_error("d")); },
                   "std::domain_error", "d"},
        ThrownKind{"logic", [](CountingService& s) { s.ThrowOnInvoke(std::logic_error("l")); },
                   "std::logic_error", "l"},
        ThrownKind{"badAlloc", [](CountingService& s) { s.ThrowOnInvoke(std::bad_alloc()); },
                   "std::exception", "std::bad_alloc"},
        ThrownKind{"derived",
                   [](CountingService& s) { s.ThrowOnInvoke(ServiceFailure("own \"kind\"")); },
                   "std::runtime_error", "own \\\"kind\\\""}),
    [](const ::testing::TestParamInfo<ThrownKind>& info) { return info.param.label; });

TEST_F(HostAPITest, ExceptionsThatAreNotStandardPassThrough) {
  CountingService* service = OnInstance();
  service->ThrowOnInvoke(42);
  EXPECT_THROW(api_->tavoHostMethod(kGreeter, ""), int);
  EXPECT_THROW(api_->tavoHostEvent(kGreeter, ""), int);
  service->ThrowOnInvoke(interop::IWebControl::ScriptException("m", "d"));
  EXPECT_THROW(api_->tavoHostMethod(kGreeter, ""), interop::IWebControl::ScriptException);
}

TEST_F(HostAPITest, MalformedDescriptorJsonIsAnsweredWithARecord) {
  OnInstance();
  EXPECT_EQ(api_->tavoHostMethod("[1]", ""),
            Record("std::runtime_error", "JSON data is not an object"));
  EXPECT_EQ(api_->tavoHostMethod("x", ""),
            Record("std::runtime_error", "JSON data is not an object"));
  EXPECT_EQ(api_->tavoHostMethod("", ""),
            Record("std::runtime_error", "JSON data is not an object"));
  EXPECT_EQ(api_->tavoHostEvent("[1]", ""),
            Record("std::runtime_error", "JSON data is not an object"));
  EXPECT_TRUE(probe_.calls.empty());
}

TEST_F(HostAPITest, DescriptorJsonThatReadsAsNothingFindsNothing) {
  OnInstance();
  // A misplaced token leaves both texts empty.
  EXPECT_EQ(api_->tavoHostMethod("{\"FQN\" 1}", ""),
            Record("std::invalid_argument", "No matching service descriptor found for:  ver: "));
  // A missing key leaves its text empty.
  EXPECT_EQ(api_->tavoHostMethod("{\"FQN\": \"a.b\"}", ""),
            Record("std::invalid_argument", "No matching service descriptor found for: a.b ver: "));
  // An unquoted value is taken as its raw text.
  EXPECT_EQ(
      api_->tavoHostMethod("{\"FQN\": 5, \"SvcVersion\": \"_2014_07\"}", ""),
      Record("std::invalid_argument", "No matching service descriptor found for: 5 ver: _2014_07"));
  EXPECT_TRUE(probe_.calls.empty());
}

TEST_F(HostAPITest, DescriptorKeysAreMatchedInAnyOrderWithExtraKeysIgnored) {
  OnInstance()->SetAnswer("found");
  EXPECT_EQ(api_->tavoHostMethod(
                "{\"SvcVersion\": \"_2014_07\", \"extra\": [1, 2], \"FQN\": \"a.b\"}", ""),
            "found");
}

// ---- tavoHostEvent ----------------------------------------------------------------

TEST_F(HostAPITest, EventReturnsAnEmptyTextOnSuccess) {
  CountingService* service = OnInstance();
  service->SetAnswer("never returned for an event");
  EXPECT_EQ(api_->tavoHostEvent(kGreeter, "{\"e\": 1}"), "");
  ASSERT_EQ(service->Calls().size(), 1U);
  EXPECT_EQ(service->Calls()[0].kind, ServiceCall::kEvent);
  EXPECT_EQ(service->Calls()[0].payload, "{\"e\": 1}");
  EXPECT_EQ(service->Calls()[0].instance, instance_.get());
}

TEST_F(HostAPITest, EventForAMissingServiceIsAnsweredWithTheSameRecordAsAMethod) {
  EXPECT_EQ(api_->tavoHostEvent(kGreeter, ""), api_->tavoHostMethod(kGreeter, ""));
  EXPECT_EQ(
      api_->tavoHostEvent("{\"FQN\": \"x.y\", \"SvcVersion\": \"1\"}", ""),
      Record("std::invalid_argument", "No matching service descriptor found for: x.y ver: 1"));
}

// ---- tavoHostPing ---------------------------------------------------------------------

TEST_F(HostAPITest, PingReturnsTheManagersVersion) { EXPECT_EQ(api_->tavoHostPing(), "0.9"); }

TEST_F(HostAPITest, ApiWithoutAnInstanceAnswersPong) {
  HostAPI lonely(nullptr);
  EXPECT_EQ(lonely.tavoHostPing(), "Pong");
  EXPECT_EQ(lonely.tavoHost_WebSideServiceListUpdate("Replace", "[]"), "");
  EXPECT_EQ(lonely.tavoHost_WebSideServiceListUpdate("Add", "x"), "");
  EXPECT_EQ(lonely.tavoHost_WebSideStartHandShake(), "");
  EXPECT_EQ(lonely.tavoHostMethod(kGreeter, ""),
            Record("std::invalid_argument",
                   "No matching service descriptor found for: a.b ver: _2014_07"));
}

TEST_F(HostAPITest, CopiesServeTheSameInstance) {
  OnInstance()->SetAnswer("same");
  HostAPI copy(*api_);
  EXPECT_EQ(copy.tavoHostPing(), "0.9");
  EXPECT_EQ(copy.tavoHostMethod(kGreeter, ""), "same");
  HostAPI assigned(nullptr);
  assigned = *api_;
  EXPECT_EQ(assigned.tavoHostPing(), "0.9");
  EXPECT_EQ(assigned.tavoHostMethod(kGreeter, ""), "same");
  EXPECT_EQ(probe_.calls.size(), 2U);
  EXPECT_EQ(probe_.calls[1].instance, instance_.get());
}

// ---- The page's list and the handshake --------------------------------------------

TEST_F(HostAPITest, ReplacedListReachesTheInstance) {
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate(
                "Replace", "[{\"FQN\": \"page.Svc.client\", \"SvcVersion\": \"1\"}]"),
            "");
  ASSERT_EQ(instance_->GetKnownWebSideServices()->GetSize(), 1);
  EXPECT_EQ(instance_->GetKnownWebSideServices()->GetAt(0)->GetFQN(), "page.Svc.client");
}

TEST_F(HostAPITest, ListWithAnotherActionIsAnsweredWithUnknownAction) {
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate(
                "Add", "[{\"FQN\": \"page.Svc.client\", \"SvcVersion\": \"1\"}]"),
            Record("std::runtime_error", "unknown action"));
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", "{}"),
            Record("std::runtime_error", "JSON data is not an array"));
  EXPECT_EQ(instance_->GetKnownWebSideServices()->GetSize(), 0);
}

TEST_F(HostAPITest, StartHandShakeRunsTheHandshakeAndReturnsEmpty) {
  interop::TargetConfig target("t", "T", "https://app.example/");
  instance_->LaunchToTarget(&target);
  page_.CompleteLoad();
  EXPECT_EQ(api_->tavoHost_WebSideStartHandShake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
}

TEST_F(HostAPITest, HandshakeFailureThatIsNotAScriptErrorIsAnsweredWithARecord) {
  interop::TargetConfig target("t", "T", "https://app.example/");
  instance_->LaunchToTarget(&target);
  page_.CompleteLoad();
  page_.WebServiceList = "not a list";
  StdoutCapture capture;
  EXPECT_EQ(api_->tavoHost_WebSideStartHandShake(),
            Record("std::runtime_error", "JSON data is not an array"));
  EXPECT_EQ(instance_->GetContentState(), interop::Initializing);
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(HostAPITest, NothingIsLogged) {
  StdoutCapture capture;
  api_->tavoHostMethod("[1]", "");
  api_->tavoHostEvent(kGreeter, "");
  api_->tavoHost_WebSideServiceListUpdate("Add", "[]");
  EXPECT_EQ(capture.Text(), "");
}

// ---- Against a mock instance ----------------------------------------------------------

using ::testing::Return;
using ::testing::StrictMock;
using ::testing::Throw;

MATCHER_P2(NamesService, fqn, version, "") {
  return arg != nullptr && arg->FQN == fqn && arg->SvcVersion == version;
}

TEST(HostAPIMockTest, TakesTheManagerOnceAtConstruction) {
  StrictMock<wevlin_test::MockHostControlInstance> mock;
  EXPECT_CALL(mock, GetGlobalConfig()).Times(1).WillOnce(Return(nullptr));
  HostAPI api(&mock);
  EXPECT_EQ(api.tavoHostPing(), "Pong");
  EXPECT_EQ(api.tavoHostPing(), "Pong");
}

TEST(HostAPIMockTest, LooksTheServiceUpWithTheTextsOfTheDescriptorJson) {
  StrictMock<wevlin_test::MockHostControlInstance> mock;
  EXPECT_CALL(mock, GetGlobalConfig()).WillOnce(Return(nullptr));
  CountingService service("tavo.x.Svc.host", "_2014_10");
  service.SetAnswer("mocked");
  EXPECT_CALL(mock, LookupService(::testing::Matcher<interop::DataServiceDescriptor*>(
                        NamesService("tavo.x.Svc.host", "_2014_10"))))
      .WillOnce(Return(&service));
  HostAPI api(&mock);
  EXPECT_EQ(
      api.tavoHostMethod("{\"FQN\": \"tavo.x.Svc.host\", \"SvcVersion\": \"_2014_10\"}", "pl"),
      "mocked");
  ASSERT_EQ(service.Calls().size(), 1U);
  EXPECT_EQ(service.Calls()[0].instance, &mock);
}

TEST(HostAPIMockTest, PassesListAndHandshakeToTheInstanceAndRecordsItsFailures) {
  StrictMock<wevlin_test::MockHostControlInstance> mock;
  EXPECT_CALL(mock, GetGlobalConfig()).WillOnce(Return(nullptr));
  EXPECT_CALL(mock, WebSideServiceListUpdate("Replace", "[]")).WillOnce(Return("as is"));
  EXPECT_CALL(mock, WebSideServiceListUpdate("Add", "[]"))
      .WillOnce(Throw(std::out_of_range("list")));
  EXPECT_CALL(mock, WebSideStartHandShake())
      .WillOnce(Return())
      .WillOnce(Throw(std::length_error("handshake")));
  HostAPI api(&mock);
  EXPECT_EQ(api.tavoHost_WebSideServiceListUpdate("Replace", "[]"), "as is");
  EXPECT_EQ(api.tavoHost_WebSideServiceListUpdate("Add", "[]"),
            Record("std::out_of_range", "list"));
  EXPECT_EQ(api.tavoHost_WebSideStartHandShake(), "");
  EXPECT_EQ(api.tavoHost_WebSideStartHandShake(), Record("std::length_error", "handshake"));
}

}  // namespace
