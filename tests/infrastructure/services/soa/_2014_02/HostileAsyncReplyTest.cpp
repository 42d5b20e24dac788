// Hostile input at the asynchronous reply callbacks of the SOA and host
// authentication services: what the application passes back (any answer
// text, any error record, a null context) and what the page does with the
// reply event (answers it with an exception record, or dies). Each test is
// one row of docs/robustness.md. The callbacks never throw; every record is
// freed exactly once, whichever way the reply goes (the leak checks of the
// sanitizer and memcheck runs see to that). Calls from other threads are in
// the services' *ThreadTest.cpp files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/MockHostControlInstance.h"
#include "support/StdoutCapture.h"
#include "support/TalkingPageFixture.h"
#include "support/WebEventRecorder.h"
#include "wevlin/infrastructure/interop/Base64.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaJsonMessageSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthSvc.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace soa02 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02;
using interop::ExceptionInfo;
using interop::JsonObject;
using interop::JsonValue;
using ScriptException = interop::IWebControl::ScriptException;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;
using wevlin_test::WebEventRecorder;

constexpr char kSoaLine[] =
    "Services::AsyncSoaJsonMessageSvc::ExternalFacingCallback - Error sending async reply\n";
constexpr char kAuthLine[] = "RequestHostAuthSvc::ReplyCallback - Error sending async reply\n";

const std::string kInvalidUtf8("\x80\xc0\x80\xed\xa0\x80\xff", 7);
const std::string kWithNul("a\0b", 3);
const std::string kPageRecord =
    "{\"Exception\": {\"name\": \"Error\", \"message\": \"page says no\"}}";

// A request of `version` whose reply goes to "app.Reply.client" "1".
std::string Request(const std::string& version, const std::string& cacheIdJson = "\"7\"") {
  return "{\"Version\": \"" + version + "\", \"CacheId\": " + cacheIdJson +
         ", \"ReplyServiceDescriptor\": \"{\\\"FQN\\\": \\\"app.Reply.client\\\", "
         "\\\"SvcVersion\\\": \\\"1\\\"}\"}";
}

ExceptionInfo Error(const std::string& name, const std::string& message) {
  ExceptionInfo error;
  error.name = name;
  error.message = message;
  return error;
}

class SoaHandler : public soa02::IHandleAsyncSoaJsonServiceRequest {
 public:
  void OnSoaJsonRequest(std::string, std::string, std::string, void* context,
                        soa02::SoaResponseCallback callback) override {
    pending.emplace_back(context, callback);
  }
  std::vector<std::pair<void*, soa02::SoaResponseCallback>> pending;
};

class AuthHandler : public soa02::IHandleRequestHostAuthSvc {
 public:
  void OnRequestHostAuth(void* context, soa02::RequestHostAuthCallback callback) override {
    pending.emplace_back(context, callback);
  }
  std::vector<std::pair<void*, soa02::RequestHostAuthCallback>> pending;
};

// Reaches the protected callbacks, for the calls no handler would make.
class ExposedSoa : public soa02::AsyncSoaJsonMessageSvc {
 public:
  using AsyncSoaJsonMessageSvc::AsyncSoaJsonMessageSvc;
  using AsyncSoaJsonMessageSvc::ExternalFacingCallback;
};
class ExposedAuth : public soa02::RequestHostAuthSvc {
 public:
  using RequestHostAuthSvc::ReplyCallback;
  using RequestHostAuthSvc::RequestHostAuthSvc;
};

// Sends `request` to a fresh SOA service on a mock instance, answers it with
// `answer` and `error`, and returns the reply text sent.
std::string SoaReply(const std::string& request, const std::string& answer,
                     const ExceptionInfo& error = ExceptionInfo()) {
  StrictMock<MockHostControlInstance> instance;
  SoaHandler handler;
  soa02::AsyncSoaJsonMessageSvc service(&handler);
  WebEventRecorder sent;
  sent.Expect(instance);
  service.InvokeEvent(&instance, &service, request);
  if (handler.pending.size() != 1U) return "not pending";
  handler.pending[0].second(handler.pending[0].first, answer, error);
  return sent.Count() == 1 ? sent.Last().text : "not sent";
}

// The same for the authentication service.
std::string AuthReply(bool authenticated, const ExceptionInfo& error) {
  StrictMock<MockHostControlInstance> instance;
  AuthHandler handler;
  soa02::RequestHostAuthSvc service(&handler);
  WebEventRecorder sent;
  sent.Expect(instance);
  service.InvokeEvent(&instance, &service, Request("_2014_02"));
  if (handler.pending.size() != 1U) return "not pending";
  handler.pending[0].second(handler.pending[0].first, authenticated, error);
  return sent.Count() == 1 ? sent.Last().text : "not sent";
}

// Reads the reply as a JSON object; fails the test if it does not read.
JsonObject Read(const std::string& reply) {
  JsonObject object;
  EXPECT_TRUE(object.FromJsonString(reply)) << reply.substr(0, 200);
  return object;
}

std::string Decoded(const JsonObject& reply) {
  std::string decoded;
  interop::Base64::DecodeString(reply.GetProperty("SoaResponse").GetAsString(), decoded);
  return decoded;
}

// ---------------------------------------------------------------------------
// What the application answers

TEST(HostileAsyncReplyTest, SoaAnswerWithOddBytesIsCarriedExactly) {
  const std::string answer = kWithNul + kInvalidUtf8 + "\"'\\\n{\"__proto__\": 1}";
  const JsonObject reply = Read(SoaReply(Request("_2014_07"), answer));
  EXPECT_EQ(Decoded(reply), answer);
  EXPECT_EQ(reply.GetProperty("Exception").GetType(), JsonValue::Null);
}

// 16 MiB rather than the 64 MiB of the other large rows: the reply path
// encodes and escapes byte by byte, and 64 MiB would take minutes under
// memcheck.
TEST(HostileAsyncReplyTest, SoaAnswerOf16MiB) {
  std::string answer(std::size_t{16} << 20, 'x');
  for (std::size_t i = 0; i < answer.size(); i += 4093) answer[i] = '\0';
  const std::string text = SoaReply(Request("_2014_02"), answer);
  // The reply is the message's text around the Base64 of the answer, which
  // makes four characters of every three bytes. (Cut out directly rather
  // than read as JSON, to keep the test quick under memcheck.)
  const std::string head = "{\"Version\": \"_2014_02\", \"CacheId\": \"7\", \"SoaResponse\": \"";
  const std::string tail = "\", \"Exception\": null}";
  ASSERT_EQ(text.size(), head.size() + (answer.size() + 2) / 3 * 4 + tail.size());
  EXPECT_EQ(text.compare(0, head.size(), head), 0);
  EXPECT_EQ(text.compare(text.size() - tail.size(), tail.size(), tail), 0);
  std::string decoded;
  interop::Base64::DecodeString(text.substr(head.size(), text.size() - head.size() - tail.size()),
                                decoded);
  EXPECT_TRUE(decoded == answer);
}

TEST(HostileAsyncReplyTest, SoaAnswerThatIsNotQuotedJsonFor2015_10) {
  // The "_2015_10" reply embeds the answer, less its first character and
  // everything from its last double quote on, as it stands: an answer that is
  // not what the page expects gives a reply that is not JSON. The cache
  // identifier is escaped as a JSON string, so it cannot add members or end
  // the string early.
  EXPECT_EQ(SoaReply(Request("_2015_10"), "not json"),
            "{\"CacheId\":\"7\",\"SoaResponse\":ot json,\"Version\":\"_2015_10\"}");
  EXPECT_EQ(
      SoaReply(Request("_2015_10"), std::string(1000, '[')),
      "{\"CacheId\":\"7\",\"SoaResponse\":" + std::string(999, '[') + ",\"Version\":\"_2015_10\"}");
  EXPECT_EQ(SoaReply(Request("_2015_10", "\"a\\\",\\\"x\\\":\\\"y\""), "\"1\""),
            "{\"CacheId\":\"a\\\",\\\"x\\\":\\\"y\",\"SoaResponse\":1,\"Version\":\"_2015_10\"}");
  EXPECT_EQ(
      SoaReply(Request("_2015_10"), kWithNul),
      "{\"CacheId\":\"7\",\"SoaResponse\":" + kWithNul.substr(1) + ",\"Version\":\"_2015_10\"}");
}

TEST(HostileAsyncReplyTest, SoaErrorRecordWithOddTexts) {
  const std::string name = kWithNul + "\"quoted\"\n" + kInvalidUtf8;
  const std::string message = std::string(100000, '[') + "\\u0041" + kWithNul;
  for (const char* version : {"_2014_02", "_2014_07", "_2015_10", "x"}) {
    const JsonObject reply = Read(SoaReply(Request(version), "ignored", Error(name, message)));
    const JsonObject& record = reply.GetProperty("Exception").GetAsObject();
    // The record's texts are escaped on the way and read back exactly.
    EXPECT_EQ(record.GetProperty("name").GetAsString(), name);
    EXPECT_EQ(record.GetProperty("message").GetAsString(), message);
    EXPECT_EQ(reply.GetProperty("Version").GetAsString(), version);
    EXPECT_EQ(reply.GetProperty("SoaResponse").GetAsString(), "");
  }
  // Only a message, or only a name, is an error as well.
  EXPECT_EQ(Read(SoaReply(Request("_2014_07"), "", Error("", "m")))
                .GetProperty("Exception")
                .GetAsObject()
                .GetProperty("message")
                .GetAsString(),
            "m");
}

TEST(HostileAsyncReplyTest, AuthErrorRecordWithOddTexts) {
  const std::string name = kWithNul + kInvalidUtf8 + "\"";
  const std::string message = std::string(100000, '{') + "\r\t/";
  const JsonObject reply = Read(AuthReply(true, Error(name, message)));
  EXPECT_TRUE(reply.GetProperty("IsAuthenticated").GetAsBool());
  EXPECT_EQ(reply.GetProperty("CacheId").GetAsString(), "");
  EXPECT_EQ(reply.GetProperty("Exception").GetAsObject().GetProperty("name").GetAsString(), name);
  EXPECT_EQ(reply.GetProperty("Exception").GetAsObject().GetProperty("message").GetAsString(),
            message);
}

TEST(HostileAsyncReplyTest, NullContextDoesNothing) {
  StdoutCapture capture;
  ExposedSoa::ExternalFacingCallback(nullptr, "answer", Error("E", "M"));
  ExposedAuth::ReplyCallback(nullptr, true, Error("E", "M"));
  EXPECT_EQ(capture.Text(), "");
}

// ---------------------------------------------------------------------------
// What the page does with the reply event, end to end

class HostileAsyncReplyPageTest : public wevlin_test::TalkingPageFixture {
 protected:
  void SetUp() override {
    TalkingPageFixture::SetUp();
    instance_->RegisterService(new soa02::AsyncSoaJsonMessageSvc(&soa_));
    instance_->RegisterService(new soa02::RequestHostAuthSvc(&auth_));
  }

  // Sends one request to each service and returns when both are pending.
  void Request2() {
    ASSERT_EQ(api_->tavoHostEvent("{\"FQN\": "
                                  "\"tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage."
                                  "host\", \"SvcVersion\": \"_2014_02\"}",
                                  Request("_2014_07")),
              "");
    ASSERT_EQ(api_->tavoHostEvent("{\"FQN\": "
                                  "\"tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host\""
                                  ", \"SvcVersion\": \"_2014_02\"}",
                                  Request("_2014_02")),
              "");
    ASSERT_EQ(soa_.pending.size(), 1U);
    ASSERT_EQ(auth_.pending.size(), 1U);
  }

  // Answers both requests.
  void AnswerBoth() {
    soa_.pending[0].second(soa_.pending[0].first, "{}", ExceptionInfo());
    auth_.pending[0].second(auth_.pending[0].first, true, ExceptionInfo());
  }

  SoaHandler soa_;
  AuthHandler auth_;
};

TEST_F(HostileAsyncReplyPageTest, PageAnswersTheReplyWithARecord) {
  Request2();
  page_.EventReply = kPageRecord;
  StdoutCapture capture;
  AnswerBoth();
  EXPECT_EQ(capture.Text(), std::string(kSoaLine) + kAuthLine);
  EXPECT_EQ(page_.CallsOf("tavoInterop_WebEvent").size(), 2U);
}

TEST_F(HostileAsyncReplyPageTest, BrowserDiesBeforeTheReply) {
  Request2();
  page_.Fail("tavoInterop_WebEvent", ScriptException("browser gone", ""));
  StdoutCapture capture;
  AnswerBoth();
  EXPECT_EQ(capture.Text(),
            std::string("Caught exception running tavoInterop_HostServiceListUpdate\n") + kSoaLine +
                "Caught exception running tavoInterop_HostServiceListUpdate\n" + kAuthLine);
}

TEST_F(HostileAsyncReplyPageTest, PageNoLongerTalkingWhenTheReplyComes) {
  Request2();
  instance_->SetContentState(interop::LoadedNoTalk);
  StdoutCapture capture;
  AnswerBoth();
  EXPECT_EQ(capture.Text(), std::string(kSoaLine) + kAuthLine);
  EXPECT_TRUE(page_.CallsOf("tavoInterop_WebEvent").empty());
}

}  // namespace
