// Hostile payloads sent by a page to the standard host services through the
// HostAPI, with every standard service registered as an application would.
// Each test is one row of docs/robustness.md: what the page gets back, and
// what reaches the application's handler. The version test services are not
// here: they check their callers with debug assertions on purpose (see
// version/_2014_02/TestVersionSvcTest.cpp and ndebug/VersionNoAssertTest.cpp).

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/HostedPageFixture.h"
#include "support/StandardServiceHandlers.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/services/logging/_2014_02/LoggerForwardSvc.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;
namespace logging02 = services::Logging::_2014_02;

constexpr std::size_t kMillion = 1000000;

const std::string kInvalidUtf8("\x80\xc0\x80\xed\xa0\x80\xff", 7);
const std::string kWithNul("a\0b", 3);
const std::string kPageRecord =
    "{\"Exception\": {\"name\": \"Error\", \"message\": \"page says no\"}}";

std::string Record(const std::string& name, const std::string& message) {
  return "{\"Exception\": {\"name\": \"" + name + "\", \"message\": \"" + message + "\"}}";
}

std::string Descriptor(const char* fqn, const char* version) {
  return std::string("{\"FQN\": \"") + fqn + "\", \"SvcVersion\": \"" + version + "\"}";
}

const std::string kClientStatus =
    Descriptor("tavo.wevlin.infrastructure.services.core.ClientStatus.host", "_2014_07");
const std::string kSoa =
    Descriptor("tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host", "_2014_02");
const std::string kAuth =
    Descriptor("tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host", "_2014_02");
const std::string kSession =
    Descriptor("tavo.wevlin.infrastructure.services.session.Session.host", "_2014_07");
const std::string kRefresh =
    Descriptor("tavo.wevlin.infrastructure.services.refresh.Refresh.host", "_2014_07");
const std::string kLogger =
    Descriptor("tavo.wevlin.infrastructure.services.LoggerForward.host", "_2014_02");
const std::string kConfiguration02 =
    Descriptor("tavo.wevlin.infrastructure.services.core.HostConfiguration.host", "_2014_02");
const std::string kConfiguration07 =
    Descriptor("tavo.wevlin.infrastructure.services.core.HostConfiguration.host", "_2014_07");
const std::string kSessionInfo =
    Descriptor("tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host", "_2014_02");
const std::string kStartup =
    Descriptor("tavo.wevlin.infrastructure.services.startup.StartupNotification.host", "_2014_02");

// A reply service descriptor as the SOA and authentication requests carry it.
const std::string kReplyTo =
    "\"{\\\"FQN\\\": \\\"app.Reply.client\\\", \\\"SvcVersion\\\": \\\"1\\\"}\"";

std::vector<std::string> forwardedLevels;

void Forward(const logging02::LoggerEntryMsg& entry) { forwardedLevels.push_back(entry.Level); }

class HostileServicePayloadTest : public wevlin_test::HostedPageFixture {
 protected:
  void SetUp() override {
    HostedPageFixture::SetUp();
    forwardedLevels.clear();
    handlers_.RegisterStandardServices(manager_, &Forward);
    Talk();
  }

  void TearDown() override {
    handlers_.AnswerAll();
    HostedPageFixture::TearDown();
  }

  // Every test answers the pending requests it makes; TearDown answers the
  // rest while the instance lives.
  wevlin_test::StandardServiceHandlers handlers_;
};

// ---------------------------------------------------------------------------
// Client status

TEST_F(HostileServicePayloadTest, ClientStatusPayloads) {
  const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
      {"{\"State\": \"busy\", \"Version\": \"_2014_07\"}", {"busy"}},
      // Not an object, a malformed object, a mistyped member: nothing reaches
      // the handler and the page hears nothing.
      {"not json", {}},
      {"", {}},
      {"[" + std::string(kMillion, '[') + std::string(kMillion, ']') + "]", {}},
      {"{\"State\": " + std::string(kMillion, '['), {"idle"}},
      // Odd bytes are kept; other keys are ignored; a value that is not a
      // string is kept as its text.
      {"{\"State\": \"" + kWithNul + kInvalidUtf8 + "\"}", {kWithNul + kInvalidUtf8}},
      {"{\"__proto__\": {\"State\": \"x\"}, \"constructor\": 1, \"State\": \"busy\"}", {"busy"}},
      {"{\"State\": 2147483648}", {"2147483648"}},
      {kPageRecord, {"idle"}},
  };
  for (const auto& [payload, expected] : cases) {
    handlers_.statuses.clear();
    EXPECT_EQ(api_->tavoHostEvent(kClientStatus, payload), "") << payload.substr(0, 80);
    EXPECT_EQ(handlers_.statuses, expected) << payload.substr(0, 80);
  }
  // Called as a method, the event service answers "".
  EXPECT_EQ(api_->tavoHostMethod(kClientStatus, "not json"), "");
}

TEST_F(HostileServicePayloadTest, ClientStatusWithAHugeState) {
  const std::string big(std::size_t{64} << 20, 's');
  EXPECT_EQ(api_->tavoHostEvent(kClientStatus, "{\"State\": \"" + big + "\"}"), "");
  ASSERT_EQ(handlers_.statuses.size(), 1U);
  EXPECT_TRUE(handlers_.statuses[0] == big);
}

// ---------------------------------------------------------------------------
// Asynchronous SOA request and host authentication request

// The requests both services refuse, and their answers.
std::vector<std::pair<std::string, std::string>> RefusedRequests() {
  return {
      {"not json", "Bad payload data"},
      {"", "Bad payload data"},
      {std::string(kMillion, '[') + std::string(kMillion, ']'), "Bad payload data"},
      {"{\"CacheId\": \"1x\", \"Version\": 5}", "ReplyServiceDescriptor is missing"},
      {"{}", "CacheId is missing"},
      {kPageRecord, "CacheId is missing"},
      {"{\"CacheId\": " + std::string(kMillion, '['), "CacheId is missing"},
      {"{\"__proto__\": {\"CacheId\": \"7\"}, \"constructor\": {\"CacheId\": \"7\"}}",
       "CacheId is missing"},
      {"{\"CacheId\": \"7\", \"ReplyServiceDescriptor\": \"\"}",
       "ReplyServiceDescriptor is missing"},
      {"{\"CacheId\": \"7\", \"ReplyServiceDescriptor\": \"not json\"}",
       "ReplyServiceDescriptor is incorrect"},
      {"{\"CacheId\": \"7\", \"ReplyServiceDescriptor\": \"[1]\"}",
       "ReplyServiceDescriptor is incorrect"},
      {"{\"CacheId\": \"7\", \"ReplyServiceDescriptor\": " + std::string(kMillion, '[') +
           std::string(kMillion, ']') + "}",
       "ReplyServiceDescriptor is incorrect"},
  };
}

TEST_F(HostileServicePayloadTest, SoaRequestsThatAreRefused) {
  for (const auto& [payload, message] : RefusedRequests()) {
    EXPECT_EQ(api_->tavoHostEvent(kSoa, payload), Record("std::invalid_argument", message))
        << payload.substr(0, 80);
  }
  EXPECT_TRUE(handlers_.soaRequests.empty());
}

TEST_F(HostileServicePayloadTest, HostAuthRequestsThatAreRefused) {
  for (const auto& [payload, message] : RefusedRequests()) {
    EXPECT_EQ(api_->tavoHostEvent(kAuth, payload), Record("std::invalid_argument", message))
        << payload.substr(0, 80);
  }
  EXPECT_TRUE(handlers_.authRequests.empty());
}

TEST_F(HostileServicePayloadTest, SoaRequestsThatAreTakenAsTheyStand) {
  const std::string big(std::size_t{64} << 20, 'm');
  const std::vector<std::string> accepted = {
      // A malformed descriptor reads as an empty one: the reply goes to
      // service "" of version "".
      "{\"CacheId\": \"7\", \"ReplyServiceDescriptor\": \"{\\\"FQN\\\" 1}\"}",
      // Numbers and odd bytes are texts like any other; without "Version" the
      // request is one of "_2014_02".
      "{\"CacheId\": 2147483648, \"ReplyServiceDescriptor\": " + kReplyTo +
          ", \"ServiceName\": -0.0, \"Message\": \"" + kWithNul + kInvalidUtf8 + "\"}",
      "{\"CacheId\": \"7\", \"ReplyServiceDescriptor\": " + kReplyTo + ", \"Message\": \"" + big +
          "\", \"__proto__\": 1}",
  };
  for (const std::string& payload : accepted) {
    EXPECT_EQ(api_->tavoHostEvent(kSoa, payload), "") << payload.substr(0, 80);
  }
  ASSERT_EQ(handlers_.soaRequests.size(), 3U);
  EXPECT_EQ(handlers_.soaRequests[1].serviceName, "-0.0");
  EXPECT_EQ(handlers_.soaRequests[1].message, kWithNul + kInvalidUtf8);
  EXPECT_TRUE(handlers_.soaRequests[2].message == big);
  // Each is answered to the service it named.
  page_.ClearRecords();
  handlers_.AnswerAll();
  const auto events = page_.CallsOf("tavoInterop_WebEvent");
  ASSERT_EQ(events.size(), 3U);
  EXPECT_EQ(events[0].args[0], "{\"FQN\": \"\", \"SvcVersion\": \"\"}");
  EXPECT_EQ(events[1].args[1],
            "{\"Version\": \"_2014_02\", \"CacheId\": \"2147483648\", \"SoaResponse\": \"\", "
            "\"Exception\": null}");
}

// ---------------------------------------------------------------------------
// Session, refresh and log forwarding

TEST_F(HostileServicePayloadTest, SessionAndRefreshPayloads) {
  for (const std::string& payload :
       {std::string("not json"), std::string(kMillion, '['), kPageRecord,
        std::string("{\"SessionObjects\": [1], \"CreatedObjects\": [1]}"),
        std::string("{\"SessionObjects\": [{\"DBId\": 2147483648, \"__proto__\": 1}], "
                    "\"CreatedObjects\": [{\"ObjId\": \"") +
            kWithNul + "\"}, \"x\"]}"}) {
    EXPECT_EQ(api_->tavoHostEvent(kSession, payload), "") << payload.substr(0, 80);
    EXPECT_EQ(api_->tavoHostEvent(kRefresh, payload), "") << payload.substr(0, 80);
  }
  // Texts that are no object do not reach the handlers; an exception record
  // is an object without the keys; elements that are no records are skipped.
  EXPECT_EQ(handlers_.sessions, (std::vector<std::size_t>{0, 0, 1}));
  EXPECT_EQ(handlers_.refreshes, (std::vector<std::size_t>{0, 0, 1}));
}

TEST_F(HostileServicePayloadTest, LogForwardingPayloads) {
  for (const std::string& payload :
       {std::string("not json"), std::string(kMillion, '['), kPageRecord,
        std::string("{\"Level\": \"") + kWithNul + "\", \"FormatMessage\": 2147483648}"}) {
    // The method answers "OK" whether or not the entry could be read.
    EXPECT_EQ(api_->tavoHostMethod(kLogger, payload), "OK") << payload.substr(0, 80);
    EXPECT_EQ(api_->tavoHostEvent(kLogger, payload), "") << payload.substr(0, 80);
  }
  EXPECT_EQ(forwardedLevels, (std::vector<std::string>{"", "", kWithNul, kWithNul}));
}

// ---------------------------------------------------------------------------
// Services that do not read their payload

TEST_F(HostileServicePayloadTest, PayloadsThatAreNotRead) {
  const std::string configuration02 = api_->tavoHostMethod(kConfiguration02, "");
  const std::string configuration07 = api_->tavoHostMethod(kConfiguration07, "");
  const std::string sessionInfo = api_->tavoHostMethod(kSessionInfo, "");
  for (const std::string& payload : {std::string("not json"), std::string(kMillion, '['),
                                     kPageRecord, kWithNul + kInvalidUtf8}) {
    EXPECT_EQ(api_->tavoHostMethod(kConfiguration02, payload), configuration02);
    EXPECT_EQ(api_->tavoHostMethod(kConfiguration07, payload), configuration07);
    EXPECT_EQ(api_->tavoHostMethod(kSessionInfo, payload), sessionInfo);
    instance_->SetContentState(interop::LoadedCanTalk);
    EXPECT_EQ(api_->tavoHostEvent(kStartup, payload), "");
    EXPECT_EQ(instance_->GetContentState(), interop::LoggedIn);
  }
}

}  // namespace
