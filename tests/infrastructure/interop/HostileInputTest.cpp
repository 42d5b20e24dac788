// Hostile input at every entry point a page reaches on the hosting core: the
// five HostAPI operations and the page's answers to the five page functions.
// Each test is one row of docs/robustness.md and pins what the host gives back
// exactly: the exception record, the log line, the state, the known services.
// Very large inputs (a million brackets, 64 MiB) are in
// HostileLargeInputTest.cpp; the standard services' payloads and the
// asynchronous callbacks are in the services' own hostile-input tests.

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/AnsweringControl.h"
#include "support/AnsweringHost.h"
#include "support/CountingService.h"
#include "support/ExceptionChecks.h"
#include "support/HostCleanup.h"
#include "support/HostedPageFixture.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/services/clientinfo/_2014_07/ClientInfoProxy.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionProxy.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;
using interop::HostAPI;
using interop::HostControlInstance;
using ScriptException = interop::IWebControl::ScriptException;
using wevlin_test::AnsweringControl;
using wevlin_test::AnsweringHost;
using wevlin_test::CountingService;
using wevlin_test::ServiceProbe;
using wevlin_test::StdoutCapture;
using wevlin_test::ThrowsExactly;

using Services = std::vector<std::pair<std::string, std::string>>;

std::string Record(const std::string& name, const std::string& message) {
  return "{\"Exception\": {\"name\": \"" + name + "\", \"message\": \"" + message + "\"}}";
}

std::string Descriptor(const std::string& fqn, const std::string& version) {
  return "{\"FQN\": \"" + fqn + "\", \"SvcVersion\": \"" + version + "\"}";
}

std::string NotFound(const std::string& fqn, const std::string& version) {
  return Record("std::invalid_argument",
                "No matching service descriptor found for: " + fqn + " ver: " + version);
}

// Bytes that are not UTF-8: a lone continuation byte, an overlong NUL, a
// surrogate, and a byte that never occurs; and an embedded NUL.
const std::string kInvalidUtf8("\x80\xc0\x80\xed\xa0\x80\xff", 7);
const std::string kWithNul("a\0b", 3);

// A page that answers every script line with an exception record.
const std::string kPageRecord = Record("Error", "page says no");

// The hosted page of HostedPageFixture, and a probe for the counting services
// the tests register on its instance.
class HostileInputTest : public wevlin_test::HostedPageFixture {
 protected:
  // Registers a counting service on the instance and returns it.
  CountingService* Serve(const std::string& fqn, const std::string& version) {
    auto* service = new CountingService(fqn, version, &probe_);
    instance_->RegisterService(service);
    return service;
  }

  // Returns the services the instance knows from the page.
  Services Known() const {
    Services known;
    auto* list = instance_->GetKnownWebSideServices();
    for (int i = 0; i < list->GetSize(); ++i) {
      known.emplace_back(list->GetAt(i)->GetFQN(), list->GetAt(i)->GetSvcVersion());
    }
    return known;
  }

  // Launches, completes the load and lets the page start the handshake;
  // returns the API's answer to the page.
  std::string Handshake() {
    instance_->LaunchToTarget(&target_);
    page_.CompleteLoad();
    return api_->tavoHost_WebSideStartHandShake();
  }

  ServiceProbe probe_;
};

// ---------------------------------------------------------------------------
// tavoHostMethod and tavoHostEvent: the descriptor JSON

TEST_F(HostileInputTest, DescriptorThatIsNotAnObject) {
  Serve("a.b", "1");
  for (const std::string& text : {std::string("not json"), std::string(""), std::string("[1]"),
                                  std::string("\"a\""), std::string("null"), kWithNul}) {
    EXPECT_EQ(api_->tavoHostMethod(text, ""),
              Record("std::runtime_error", "JSON data is not an object"))
        << text;
    EXPECT_EQ(api_->tavoHostEvent(text, ""),
              Record("std::runtime_error", "JSON data is not an object"))
        << text;
  }
  EXPECT_TRUE(probe_.calls.empty());
}

TEST_F(HostileInputTest, DescriptorThatIsAMalformedObject) {
  Serve("a.b", "1");
  // Malformed objects read as nothing, so both texts stay empty.
  for (const char* text : {"{\"FQN\" \"a.b\"}", "{\"FQN\": \"a.b\",, \"SvcVersion\": \"1\"}",
                           "{\"FQN\": \"a.b\", [1]}", "{\"FQN\": \"a.b\" \"SvcVersion\": \"1\"}"}) {
    EXPECT_EQ(api_->tavoHostMethod(text, ""), NotFound("", "")) << text;
  }
  // An unquoted name, or one with a bad escape, is a scalar error.
  EXPECT_EQ(api_->tavoHostMethod("{FQN: \"a.b\"}", ""),
            Record("std::runtime_error", "JSON data is not a string"));
  EXPECT_EQ(api_->tavoHostMethod("{\"F\\QN\": \"a.b\"}", ""),
            Record("std::runtime_error", "Invalid escape character"));
  // An object that does not end.
  EXPECT_EQ(api_->tavoHostEvent("{\"FQN\": \"a.b\"", ""),
            Record("std::runtime_error", "JSON data is not an object"));
  EXPECT_TRUE(probe_.calls.empty());
}

TEST_F(HostileInputTest, DescriptorWithInvalidUtf8AndNulBytes) {
  // Names are opaque bytes: invalid UTF-8 and NUL bytes match exactly.
  CountingService* odd = Serve("svc" + kInvalidUtf8, kWithNul);
  odd->SetAnswer("found");
  EXPECT_EQ(api_->tavoHostMethod(Descriptor("svc" + kInvalidUtf8, kWithNul), ""), "found");
  EXPECT_EQ(api_->tavoHostEvent(Descriptor("svc" + kInvalidUtf8, kWithNul), ""), "");
  EXPECT_EQ(odd->Calls().size(), 2U);
  // A miss names the texts in the record; the record's message is taken from
  // what(), a C string, so it ends at the first NUL byte.
  EXPECT_EQ(api_->tavoHostMethod(Descriptor("x" + kInvalidUtf8, "1"), ""),
            NotFound("x" + kInvalidUtf8, "1"));
  EXPECT_EQ(api_->tavoHostMethod(Descriptor(kWithNul, "1"), ""),
            Record("std::invalid_argument", "No matching service descriptor found for: a"));
}

TEST_F(HostileInputTest, DescriptorWithProtoAndConstructorKeys) {
  Serve("__proto__", "constructor")->SetAnswer("proto service");
  // Only "FQN" and "SvcVersion" count; other keys are ignored whatever their
  // names, and those names are ordinary service names.
  EXPECT_EQ(api_->tavoHostMethod(
                "{\"__proto__\": {\"FQN\": \"x\", \"SvcVersion\": \"1\"}, \"constructor\": "
                "{\"prototype\": 1}, \"FQN\": \"__proto__\", \"SvcVersion\": \"constructor\"}",
                ""),
            "proto service");
  EXPECT_EQ(api_->tavoHostMethod("{\"__proto__\": {\"FQN\": \"__proto__\", \"SvcVersion\": "
                                 "\"constructor\"}}",
                                 ""),
            NotFound("", ""));
  EXPECT_EQ(api_->tavoHostMethod(Descriptor("constructor", "__proto__"), ""),
            NotFound("constructor", "__proto__"));
}

TEST_F(HostileInputTest, DescriptorWithNumbersAtTheEdges) {
  // String fields keep a value that is not a quoted string as its raw text.
  EXPECT_EQ(
      api_->tavoHostMethod("{\"FQN\": 2147483648, \"SvcVersion\": -1.7976931348623157e308}", ""),
      NotFound("2147483648", "-1.7976931348623157e308"));
  EXPECT_EQ(api_->tavoHostMethod("{\"FQN\": -2147483649 , \"SvcVersion\": 1e-400}", ""),
            NotFound("-2147483649 ", "1e-400"));
  Serve("2147483647", "3.4028235e38")->SetAnswer("numbers");
  EXPECT_EQ(api_->tavoHostMethod("{\"FQN\": 2147483647, \"SvcVersion\": 3.4028235e38}", ""),
            "numbers");
}

TEST_F(HostileInputTest, DescriptorThatIsAnExceptionRecord) {
  EXPECT_EQ(api_->tavoHostMethod(kPageRecord, ""), NotFound("", ""));
  EXPECT_EQ(api_->tavoHostEvent(kPageRecord, ""), NotFound("", ""));
}

// ---------------------------------------------------------------------------
// tavoHostMethod and tavoHostEvent: the payload

TEST_F(HostileInputTest, PayloadReachesTheServiceByteForByte) {
  CountingService* service = Serve("a.b", "1");
  const std::string answer = "answer " + kInvalidUtf8 + kWithNul + "'\"\\\n";
  service->SetAnswer(answer);
  const std::string payload =
      kInvalidUtf8 + kWithNul + "{\"__proto__\": 1}'\\'\"\n\r\t" + std::string(1, '\0') + "\x7f";
  EXPECT_EQ(api_->tavoHostMethod(Descriptor("a.b", "1"), payload), answer);
  EXPECT_EQ(api_->tavoHostEvent(Descriptor("a.b", "1"), payload), "");
  ASSERT_EQ(service->Calls().size(), 2U);
  EXPECT_EQ(service->Calls()[0].payload, payload);
  EXPECT_EQ(service->Calls()[1].payload, payload);
  // The host does not look at the service's answer, nor at the page.
  EXPECT_TRUE(page_.Scripts().empty());
}

// A service of the application that reads its payload with a contract of
// numeric fields and lets the reader's errors reach the API.
class NumbersService : public services::BaseHostingService {
 public:
  NumbersService() : BaseHostingService("numbers", "1") {}

 protected:
  std::string DoInvokeMethod(interop::IHostControlInstance* /*instance*/,
                             interop::IHostServiceDescriptor* /*descriptor*/,
                             std::string payload) override {
    Numbers numbers;
    numbers.FromJsonString(payload);
    return numbers.ToJsonString();
  }

 private:
  class Numbers : public interop::DataContract {
   public:
    Numbers() {
      RegisterField("i", i);
      RegisterField("f", f);
      RegisterField("d", d);
    }
    int i = 0;
    float f = 0.0f;
    double d = 0.0;
  };
};

TEST_F(HostileInputTest, PayloadWithNumbersAtTheEdges) {
  instance_->RegisterService(new NumbersService());
  const std::string numbers = Descriptor("numbers", "1");
  const auto call = [&](const std::string& payload) {
    return api_->tavoHostMethod(numbers, payload);
  };
  EXPECT_EQ(call("{\"i\": 2147483647, \"f\": 3.4028235e38, \"d\": 1.7976931348623157e308}"),
            "{\"i\": 2147483647, \"f\": 3.40282e+38, \"d\": 1.7976931348623157e+308}");
  EXPECT_EQ(call("{\"i\": -2147483648, \"f\": -1.17549435e-38, \"d\": 4.9406564584124654e-324}"),
            "{\"i\": -2147483648, \"f\": -1.17549e-38, \"d\": 4.9406564584124654e-324}");
  EXPECT_EQ(call("{\"i\": -0, \"f\": -0.0, \"d\": -0.0}"), "{\"i\": 0, \"f\": -0, \"d\": -0}");
  EXPECT_EQ(call("{\"i\": 2147483648}"),
            Record("std::runtime_error", "JSON data is not an integer"));
  EXPECT_EQ(call("{\"i\": -2147483649}"),
            Record("std::runtime_error", "JSON data is not an integer"));
  EXPECT_EQ(call("{\"i\": 1.0}"), Record("std::runtime_error", "JSON data is not an integer"));
  EXPECT_EQ(call("{\"i\": 0x10}"), Record("std::runtime_error", "JSON data is not an integer"));
  EXPECT_EQ(call("{\"f\": 3.5e38}"), Record("std::runtime_error", "JSON data is not a float"));
  EXPECT_EQ(call("{\"d\": 1.8e308}"), Record("std::runtime_error", "JSON data is not a double"));
  EXPECT_EQ(call("{\"d\": NaN}"), Record("std::runtime_error", "JSON data is not a double"));
  EXPECT_EQ(call("{\"d\": Infinity}"), Record("std::runtime_error", "JSON data is not a double"));
  EXPECT_EQ(call("{\"d\": 1e400}"), Record("std::runtime_error", "JSON data is not a double"));
}

// ---------------------------------------------------------------------------
// tavoHostPing

TEST_F(HostileInputTest, PingHasNoInputAndAlwaysAnswersTheVersion) {
  EXPECT_EQ(api_->tavoHostPing(), "0.9");
  page_.PageVersion = kPageRecord;
  page_.Fail("tavoInterop_Ping", ScriptException("gone", "gone"));
  StdoutCapture capture;
  Handshake();
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedNoTalk);
  EXPECT_EQ(api_->tavoHostPing(), "0.9");
}

// ---------------------------------------------------------------------------
// tavoHost_WebSideServiceListUpdate

const char kOneService[] = "[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}]";

TEST_F(HostileInputTest, ListUpdateWithAnotherAction) {
  ASSERT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", kOneService), "");
  for (const std::string& action :
       {std::string("Add"), std::string(""), std::string("Replace "), std::string(" Replace"),
        std::string("Remove"), std::string("R\xc3\xa9place"), kWithNul, kPageRecord}) {
    EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate(action, "[]"),
              Record("std::runtime_error", "unknown action"))
        << action;
  }
  EXPECT_EQ(Known(), (Services{{"a", "1"}}));
  // The comparison ignores letter case, and, being one of C strings, ends at
  // a NUL byte.
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate("rEPLACE", "[]"), "");
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate(std::string("Replace\0Add", 11), kOneService),
            "");
  EXPECT_EQ(Known(), (Services{{"a", "1"}}));
}

TEST_F(HostileInputTest, ListUpdateThatIsNotAnArray) {
  ASSERT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", kOneService), "");
  for (const std::string& list : {std::string("not json"), std::string(""), std::string("{}"),
                                  kPageRecord, std::string("\"[]\""), kWithNul, kInvalidUtf8}) {
    EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", list),
              Record("std::runtime_error", "JSON data is not an array"))
        << list;
  }
  // The list is read before the action is looked at.
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate("Add", "x"),
            Record("std::runtime_error", "JSON data is not an array"));
  EXPECT_EQ(Known(), (Services{{"a", "1"}}));
}

TEST_F(HostileInputTest, ListUpdateThatDoesNotCutIsAnEmptyList) {
  ASSERT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", kOneService), "");
  StdoutCapture capture;
  // An unterminated string or nested object: the list reads as empty and
  // replaces what was known.
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", "[\"a"), "");
  EXPECT_EQ(Known(), Services{});
  ASSERT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", kOneService), "");
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", "[{\"FQN\": \"b\""), "");
  EXPECT_EQ(Known(), Services{});
  EXPECT_EQ(capture.Text(), "EndOfObject: final character incorrect\n");
  // The closing bracket missing altogether is not an array.
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", "[{\"FQN\": \"b\"}"),
            Record("std::runtime_error", "JSON data is not an array"));
}

TEST_F(HostileInputTest, ListUpdateSkipsElementsThatAreNotDescriptors) {
  StdoutCapture capture;
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate(
                "Replace",
                "[1, \"x\", null, [2], {\"FQN\": \"a\", \"SvcVersion\": \"1\"}, {\"FQN\" 3}, "
                "{FQN: 4}, " +
                    kPageRecord + ", {\"FQN\": \"b\"}]"),
            "");
  // A malformed object reads as an empty descriptor; an exception record is
  // an object without the two keys.
  EXPECT_EQ(Known(), (Services{{"a", "1"}, {"", ""}, {"", ""}, {"b", ""}}));
}

TEST_F(HostileInputTest, ListUpdateWithOddBytesProtoKeysAndNumbers) {
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate(
                "Replace", "[" + Descriptor(kWithNul, kInvalidUtf8) +
                               ", {\"__proto__\": {\"FQN\": \"x\"}, \"FQN\": \"__proto__\", "
                               "\"SvcVersion\": \"constructor\"}, {\"FQN\": 2147483648, "
                               "\"SvcVersion\": -0.0}]"),
            "");
  EXPECT_EQ(
      Known(),
      (Services{{kWithNul, kInvalidUtf8}, {"__proto__", "constructor"}, {"2147483648", "-0.0"}}));
}

// ---------------------------------------------------------------------------
// The page's answer to tavoInterop_Ping

TEST_F(HostileInputTest, PingAnswerOfAnyTextBecomesThePagesVersion) {
  page_.PageVersion = kPageRecord + kWithNul + kInvalidUtf8;
  EXPECT_EQ(Handshake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(instance_->GetWebSideVersion(), kPageRecord + kWithNul + kInvalidUtf8);
}

TEST_F(HostileInputTest, PingThatFailsEndsInLoadedNoTalk) {
  page_.Fail("tavoInterop_Ping", ScriptException("TypeError", "x is undefined"));
  StdoutCapture capture;
  EXPECT_EQ(Handshake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedNoTalk);
  EXPECT_EQ(capture.Text(),
            // The ping after the load, then the one of the handshake.
            "Caught exception running tavoInterop_Ping\n"
            "Caught exception running tavoInterop_Ping\n");
}

// ---------------------------------------------------------------------------
// The page's answer to tavoInterop_HostServiceListUpdate

TEST_F(HostileInputTest, HostServiceListUpdateAnswerIsIgnored) {
  for (const std::string& reply : {kPageRecord, std::string("not json"), kWithNul + kInvalidUtf8}) {
    AnsweringHost host([&](const std::string& script) {
      return wevlin_test::Calls(script, "tavoInterop_HostServiceListUpdate") ? reply
                                                                             : std::string();
    });
    EXPECT_EQ(host.Handshake(), "");
    EXPECT_EQ(host.Instance().GetContentState(), interop::LoadedCanTalk);
  }
}

TEST_F(HostileInputTest, HostServiceListUpdateThatFailsEndsInLoadedNoTalk) {
  page_.FailAfter("tavoInterop_HostServiceListUpdate", 1, ScriptException("gone", ""));
  StdoutCapture capture;
  EXPECT_EQ(Handshake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedNoTalk);
  EXPECT_EQ(capture.Text(), "Caught exception running tavoInterop_HostServiceListUpdate\n");
  // The second list was the one that failed; the page's list was never asked.
  EXPECT_EQ(page_.CallsOf("tavoInterop_HostServiceListUpdate").size(), 2U);
  EXPECT_TRUE(page_.CallsOf("tavoInterop_RequestWebServiceList").empty());
}

// ---------------------------------------------------------------------------
// The page's answer to tavoInterop_RequestWebServiceList

TEST_F(HostileInputTest, RequestWebServiceListAnswerThatIsNotJson) {
  ASSERT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", kOneService), "");
  for (const std::string& reply :
       {std::string("not json"), kPageRecord, std::string("{}"), kWithNul, kInvalidUtf8}) {
    page_.WebServiceList = reply;
    // The reading error reaches the page as the answer to its handshake
    // call; the handshake stops in Initializing with no time-out left, the
    // known services unchanged.
    EXPECT_EQ(Handshake(), Record("std::runtime_error", "JSON data is not an array")) << reply;
    EXPECT_EQ(instance_->GetContentState(), interop::Initializing);
    EXPECT_EQ(Known(), (Services{{"a", "1"}}));
    EXPECT_FALSE(env_.Queue().IsArmed());
  }
  // A later load runs the handshake again.
  page_.WebServiceList = "[{\"FQN\": \"b\", \"SvcVersion\": \"2\"}]";
  page_.CompleteLoad();
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(Known(), (Services{{"b", "2"}}));
}

// Found by fuzzing (fuzz_HostAPI): the handshake that a load completion runs
// in Initializing let the list's reading error out of OnLoadCompleted, into
// the web control's load notification.
TEST_F(HostileInputTest, RequestWebServiceListAnswerThatIsNotJsonAtALoadCompletion) {
  page_.WebServiceList = "{\"Exception\": e{a\"nq\": \"E\", \"message\": \"M\"}}";
  ASSERT_EQ(Handshake(), Record("std::runtime_error", "JSON data is not an array"));
  ASSERT_EQ(instance_->GetContentState(), interop::Initializing);
  // The page reloads: the load completion runs the handshake again.
  StdoutCapture capture;
  page_.CompleteLoad();
  EXPECT_EQ(capture.Text(), "HostControlInstance::OnLoadCompleted - JSON data is not an array\n");
  EXPECT_EQ(instance_->GetContentState(), interop::Initializing);
  // So does a page that starts the handshake before its load completes.
  instance_->LaunchToTarget(&target_);
  EXPECT_EQ(api_->tavoHost_WebSideStartHandShake(), "");
  page_.CompleteLoad();
  EXPECT_EQ(capture.Text(),
            "HostControlInstance::OnLoadCompleted - JSON data is not an array\n"
            "HostControlInstance::OnLoadCompleted - JSON data is not an array\n");
  EXPECT_EQ(instance_->GetContentState(), interop::Initializing);
  // A readable list at the next load completes the handshake.
  page_.WebServiceList = "[]";
  page_.CompleteLoad();
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
}

TEST_F(HostileInputTest, RequestWebServiceListAnswerThatIsEmptyOrMalformed) {
  ASSERT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", kOneService), "");
  // Empty: nothing to take in, the list stays.
  page_.WebServiceList = "";
  EXPECT_EQ(Handshake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(Known(), (Services{{"a", "1"}}));
  // An array that does not cut: an empty list replaces the known one.
  page_.WebServiceList = "[{\"FQN\": \"b\"";
  StdoutCapture capture;
  EXPECT_EQ(api_->tavoHost_WebSideStartHandShake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(Known(), Services{});
  EXPECT_EQ(capture.Text(), "EndOfObject: final character incorrect\n");
}

TEST_F(HostileInputTest, RequestWebServiceListAnswerWithOddBytesAndProtoKeys) {
  page_.WebServiceList = "[" + Descriptor(kInvalidUtf8, kWithNul) +
                         ", {\"constructor\": {}, \"FQN\": \"__proto__\", \"SvcVersion\": "
                         "\"constructor\"}, 7]";
  EXPECT_EQ(Handshake(), "");
  EXPECT_EQ(Known(), (Services{{kInvalidUtf8, kWithNul}, {"__proto__", "constructor"}}));
}

TEST_F(HostileInputTest, RequestWebServiceListThatFailsEndsInLoadedNoTalk) {
  page_.Fail("tavoInterop_RequestWebServiceList", ScriptException("gone", ""));
  StdoutCapture capture;
  EXPECT_EQ(Handshake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedNoTalk);
  EXPECT_EQ(capture.Text(), "Caught exception running tavoInterop_RequestWebServiceList\n");
}

// ---------------------------------------------------------------------------
// The page's answers to tavoInterop_WebMethod and tavoInterop_WebEvent

const interop::BaseServiceDescriptor kPageService("page.svc", "1");

// The page's service as the instance's calls take it.
interop::ITargetServiceDesc* PageService() {
  return const_cast<interop::BaseServiceDescriptor*>(&kPageService);
}

// What InvokeWebMethod and InvokeWebEvent make of a reply: the text returned,
// or the exception thrown, as "runtime_error: ..." and the like.
struct ReplyOutcome {
  std::string reply;
  std::string method;  // "returns <text>" or the exception
  std::string event;   // "returns" or the exception
};

std::string Describe(const std::function<std::string()>& call) {
  try {
    return "returns " + call();
  } catch (const std::invalid_argument& e) {
    return std::string("invalid_argument: ") + e.what();
  } catch (const std::runtime_error& e) {
    return std::string("runtime_error: ") + e.what();
  } catch (const ScriptException& e) {
    return "ScriptException: " + e.message + " / " + e.details;
  }
}

TEST_F(HostileInputTest, WebMethodAndWebEventAnswers) {
  Talk();
  const std::vector<ReplyOutcome> outcomes = {
      // Any text that does not start with {"Exception is a result.
      {kWithNul + kInvalidUtf8, "returns " + kWithNul + kInvalidUtf8, "returns "},
      {"{ \"Exception\": 1}", "returns { \"Exception\": 1}", "returns "},
      {"not json", "returns not json", "returns "},
      // A record.
      {Record("TypeError", "x is undefined"), "runtime_error: TypeError x is undefined",
       "runtime_error: TypeError x is undefined"},
      {"{\"Exception\": {\"name\": \"__proto__\", \"message\": \"constructor\"}}",
       "runtime_error: __proto__ constructor", "runtime_error: __proto__ constructor"},
      {"{\"Exception\": {\"name\": 2147483648, \"message\": [1, 2]}}",
       "runtime_error: 2147483648 [1, 2]", "runtime_error: 2147483648 [1, 2]"},
      {"{\"Exception\": {\"name\": \"E\"}}", "runtime_error: E ", "runtime_error: E "},
      // A record that names nothing.
      {"{\"Exception\": {}}",
       "invalid_argument: Could not decipher web side error: {\"Exception\": {}}",
       "invalid_argument: Could not decipher web side error: {\"Exception\": {}}"},
      {"{\"Exception\"", "runtime_error: JSON data is not an object",
       "runtime_error: JSON data is not an object"},
      {"{\"Exception", "invalid_argument: Could not decipher web side error: {\"Exception",
       "invalid_argument: Could not decipher web side error: {\"Exception"},
      {"{\"Exception\": 5}", "runtime_error: JSON data is not an object",
       "runtime_error: JSON data is not an object"},
      {"{\"Exception\": null}", "runtime_error: JSON data is not an object",
       "runtime_error: JSON data is not an object"},
      {"{\"Exception\": {\"name\": 1x}}", "runtime_error: 1x ", "runtime_error: 1x "},
      {"{\"Exception\": {\"name\": \"a\\x\"}}", "runtime_error: \"a\\x\" ",
       "runtime_error: \"a\\x\" "},
  };
  for (const ReplyOutcome& outcome : outcomes) {
    page_.MethodReply = outcome.reply;
    page_.EventReply = outcome.reply;
    EXPECT_EQ(Describe([&] { return instance_->InvokeWebMethod(PageService(), ""); }),
              outcome.method)
        << outcome.reply;
    EXPECT_EQ(Describe([&] {
                instance_->InvokeWebEvent(PageService(), "");
                return std::string();
              }),
              outcome.event)
        << outcome.reply;
  }
}

TEST_F(HostileInputTest, StartupNotificationAnsweredWithARecord) {
  page_.EventReply = kPageRecord;
  StdoutCapture capture;
  EXPECT_EQ(Handshake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(capture.Text(), "Error invoking the startup notification.\n");
}

TEST_F(HostileInputTest, ProxyAnswersFromAHostilePage) {
  Talk();
  services::ClientInfo::_2014_07::ClientInfoProxy clientInfo(instance_.get());
  // Prototype keys are plain names; the last duplicate wins.
  page_.MethodReply =
      "{\"Data\": [{\"Key\": \"__proto__\", \"Value\": \"p\"}, {\"Key\": \"constructor\", "
      "\"Value\": 2147483648}, {\"Key\": \"__proto__\", \"Value\": \"q\"}, 7], \"Version\": "
      "\"_2014_07\"}";
  EXPECT_EQ(clientInfo.GetClientInfo(), (std::map<std::string, std::string>{
                                            {"__proto__", "q"}, {"constructor", "2147483648"}}));
  // Not JSON: no information, no line.
  page_.MethodReply = "not json";
  {
    StdoutCapture capture;
    EXPECT_TRUE(clientInfo.GetClientInfo().empty());
    EXPECT_EQ(capture.Text(), "");
  }
  // A record: the call failed.
  page_.MethodReply = kPageRecord;
  StdoutCapture capture;
  EXPECT_TRUE(clientInfo.GetClientInfo().empty());
  EXPECT_EQ(capture.Text(), "Cannot call web content for GetClientInfo invocation.\n");
}

// ---------------------------------------------------------------------------
// A page that answers every script line with an exception record

TEST_F(HostileInputTest, PageThatAnswersEveryScriptWithARecord) {
  AnsweringHost host([](const std::string&) { return kPageRecord; });
  // The ping takes the record as the page's version; the lists' answers are
  // not read; the record as the page's list is not an array.
  EXPECT_EQ(host.Handshake(), Record("std::runtime_error", "JSON data is not an array"));
  EXPECT_EQ(host.Instance().GetContentState(), interop::Initializing);
  EXPECT_EQ(host.Instance().GetWebSideVersion(), kPageRecord);
  EXPECT_EQ(host.Instance().GetKnownWebSideServices()->GetSize(), 0);
  EXPECT_TRUE(
      ThrowsExactly<std::runtime_error>([&] { host.Instance().InvokeWebMethod(PageService(), ""); },
                                        "Cannot talk to hosted content"));
  // Were the instance told it can talk, every call would fail with the record.
  host.Instance().SetContentState(interop::LoadedCanTalk);
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [&] { host.Instance().InvokeWebMethod(PageService(), ""); }, "Error page says no"));
  services::Session::_2014_07::SessionProxy session(&host.Instance());
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [&] { session.UpdateSession(services::Session::_2014_07::SessionMsg()); },
      "Error page says no"));
  StdoutCapture capture;
  services::ClientInfo::_2014_07::ClientInfoProxy clientInfo(&host.Instance());
  EXPECT_TRUE(clientInfo.GetClientInfo().empty());
  EXPECT_EQ(capture.Text(), "Cannot call web content for GetClientInfo invocation.\n");
  // The host's own API still answers.
  EXPECT_EQ(host.Api().tavoHostPing(), "0.9");
}

// ---------------------------------------------------------------------------
// A browser that dies in the middle of a call

TEST_F(HostileInputTest, BrowserThatDiesDuringTheHandshake) {
  // Alive for the ping after the load, the handshake's ping and the first
  // host list; dead from the second list on.
  int linesLeft = 3;
  AnsweringHost host([&](const std::string&) -> std::string {
    if (linesLeft-- > 0) return "";
    throw ScriptException("browser gone", "target closed");
  });
  StdoutCapture capture;
  EXPECT_EQ(host.Handshake(), "");
  EXPECT_EQ(host.Instance().GetContentState(), interop::LoadedNoTalk);
  EXPECT_EQ(capture.Text(), "Caught exception running tavoInterop_HostServiceListUpdate\n");
  // Every later call fails cleanly.
  EXPECT_EQ(host.Api().tavoHost_WebSideStartHandShake(), "");
  host.Instance().SetContentState(interop::LoadedCanTalk);
  EXPECT_EQ(Describe([&] { return host.Instance().InvokeWebMethod(PageService(), ""); }),
            "ScriptException: browser gone / target closed");
}

TEST_F(HostileInputTest, BrowserThatDiesAtTheStartupNotification) {
  page_.Fail("tavoInterop_WebEvent", ScriptException("browser gone", ""));
  StdoutCapture capture;
  EXPECT_EQ(Handshake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(capture.Text(),
            "Caught exception running tavoInterop_HostServiceListUpdate\n"
            "Error invoking the startup notification.\n");
}

TEST_F(HostileInputTest, BrowserThatDiesDuringACallIntoThePage) {
  Talk();
  page_.Fail("tavoInterop_WebMethod", ScriptException("browser gone", "pipe closed"));
  page_.Fail("tavoInterop_WebEvent", ScriptException("browser gone", "pipe closed"));
  StdoutCapture capture;
  EXPECT_EQ(Describe([&] { return instance_->InvokeWebMethod(PageService(), ""); }),
            "ScriptException: browser gone / pipe closed");
  services::Session::_2014_07::SessionProxy session(instance_.get());
  EXPECT_EQ(Describe([&] {
              session.UpdateSession(services::Session::_2014_07::SessionMsg());
              return std::string();
            }),
            "ScriptException: browser gone / pipe closed");
  services::ClientInfo::_2014_07::ClientInfoProxy clientInfo(instance_.get());
  EXPECT_TRUE(clientInfo.GetClientInfo().empty());
  EXPECT_EQ(capture.Text(),
            "Caught exception running tavoInterop_HostServiceListUpdate\n"
            "Caught exception running tavoInterop_HostServiceListUpdate\n"
            "Caught exception running tavoInterop_HostServiceListUpdate\n"
            "Cannot call web content for GetClientInfo invocation.\n");
}

TEST_F(HostileInputTest, BrowserControlThatThrowsAStandardException) {
  // A control that reports a dead browser with its own std::runtime_error
  // rather than a ScriptException. Only ScriptException is caught on the way,
  // so the error reaches whoever called into the instance: the page's
  // handshake call gets its record; the control's own load notification,
  // which has nobody to tell, only writes it to the log.
  bool dead = false;
  AnsweringHost host([&](const std::string&) -> std::string {
    if (dead) throw std::runtime_error("browser process exited");
    return "";
  });
  host.Instance().LaunchToTarget(&target_);
  host.Control().CompleteLoad();
  dead = true;
  EXPECT_EQ(host.Api().tavoHost_WebSideStartHandShake(),
            Record("std::runtime_error", "browser process exited"));
  EXPECT_EQ(host.Instance().GetContentState(), interop::Initializing);
  StdoutCapture capture;
  host.Control().CompleteLoad();
  EXPECT_EQ(capture.Text(), "HostControlInstance::OnLoadCompleted - browser process exited\n");
  EXPECT_EQ(host.Instance().GetContentState(), interop::Initializing);
}

}  // namespace
