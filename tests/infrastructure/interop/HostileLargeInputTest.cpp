// Very large hostile input at the entry points of the hosting core: a
// million nested brackets (which must not exhaust the stack: the readers cut
// nesting without recursion and read at most 1000 levels deep) and 64 MiB
// texts, as descriptor JSON, payload, service list and as the page's answers.
// Rows of docs/robustness.md; the smaller hostile inputs are in
// HostileInputTest.cpp.

#include <gtest/gtest.h>

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
#include "wevlin/infrastructure/interop/JsonValue.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::HostAPI;
using interop::HostControlInstance;
using interop::JsonValue;
using wevlin_test::AnsweringControl;
using wevlin_test::AnsweringHost;
using wevlin_test::CountingService;
using wevlin_test::ServiceProbe;
using wevlin_test::StdoutCapture;
using wevlin_test::ThrowsExactly;

constexpr std::size_t kMillion = 1000000;
constexpr std::size_t k64MiB = std::size_t{64} << 20;

std::string Record(const std::string& name, const std::string& message) {
  return "{\"Exception\": {\"name\": \"" + name + "\", \"message\": \"" + message + "\"}}";
}

std::string NotFound(const std::string& fqn, const std::string& version) {
  return Record("std::invalid_argument",
                "No matching service descriptor found for: " + fqn + " ver: " + version);
}

// A million arrays nested in each other, balanced: [[[...]]].
std::string MillionBalanced() { return std::string(kMillion, '[') + std::string(kMillion, ']'); }

// A million opening brackets that never close.
std::string MillionOpen() { return std::string(kMillion, '['); }

// A million objects nested in each other: {"a": {"a": ... {} ... }}.
std::string MillionObjects() {
  std::string text;
  text.reserve(kMillion * 7);
  for (std::size_t i = 1; i < kMillion; ++i) text += "{\"a\": ";
  text += "{}";
  text.append(kMillion - 1, '}');
  return text;
}

// 64 MiB of text without quotes or backslashes, including bytes that are not
// UTF-8 and NUL bytes.
std::string Big() {
  std::string text(k64MiB, 'x');
  for (std::size_t i = 0; i < text.size(); i += 4099) text[i] = '\xff';
  for (std::size_t i = 7; i < text.size(); i += 8191) text[i] = '\0';
  return text;
}

const interop::BaseServiceDescriptor kPageService("page.svc", "1");
interop::ITargetServiceDesc* PageService() {
  return const_cast<interop::BaseServiceDescriptor*>(&kPageService);
}

// A service that reads its payload into a JsonValue and into a contract's
// JsonValue field, and answers how that went.
class ReadingService
    : public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::BaseHostingService {
 public:
  ReadingService() : BaseHostingService("reader", "1") {}

 protected:
  std::string DoInvokeMethod(interop::IHostControlInstance* /*instance*/,
                             interop::IHostServiceDescriptor* /*descriptor*/,
                             std::string payload) override {
    JsonValue value;
    const bool valueRead = value.FromJsonString(payload);
    Holder holder;
    const bool fieldRead = holder.FromJsonString("{\"v\": " + payload + "}");
    return std::string(valueRead ? "value read" : "value false") +
           (fieldRead ? ", field read" : ", field false");
  }

 private:
  class Holder : public interop::DataContract {
   public:
    Holder() { RegisterField("v", v); }
    JsonValue v;
  };
};

class HostileLargeInputTest : public wevlin_test::HostedPageFixture {
 protected:
  std::vector<std::pair<std::string, std::string>> Known() const {
    std::vector<std::pair<std::string, std::string>> known;
    auto* list = instance_->GetKnownWebSideServices();
    for (int i = 0; i < list->GetSize(); ++i) {
      known.emplace_back(list->GetAt(i)->GetFQN(), list->GetAt(i)->GetSvcVersion());
    }
    return known;
  }

  ServiceProbe probe_;
};

// ---------------------------------------------------------------------------
// A million nested brackets

TEST_F(HostileLargeInputTest, MillionNestedBracketsAsDescriptor) {
  instance_->RegisterService(new CountingService("a.b", "1", &probe_));
  EXPECT_EQ(api_->tavoHostMethod(MillionBalanced(), ""),
            Record("std::runtime_error", "JSON data is not an object"));
  EXPECT_EQ(api_->tavoHostMethod(MillionObjects(), ""), NotFound("", ""));
  {
    StdoutCapture capture;
    EXPECT_EQ(api_->tavoHostEvent("{\"FQN\": " + MillionOpen(), ""), NotFound("", ""));
    EXPECT_EQ(capture.Text(), "EndOfArray: final character incorrect\n");
  }
  // A value that is no string is kept as its raw text, brackets and all.
  const std::string balanced = MillionBalanced();
  EXPECT_EQ(api_->tavoHostMethod("{\"FQN\": " + balanced + ", \"SvcVersion\": \"1\"}", ""),
            NotFound(balanced, "1"));
  EXPECT_TRUE(probe_.calls.empty());
}

TEST_F(HostileLargeInputTest, MillionNestedBracketsAsPayload) {
  auto* counting = new CountingService("a.b", "1", &probe_);
  instance_->RegisterService(counting);
  instance_->RegisterService(new ReadingService());
  const std::string balanced = MillionBalanced();
  EXPECT_EQ(api_->tavoHostEvent("{\"FQN\": \"a.b\", \"SvcVersion\": \"1\"}", balanced), "");
  ASSERT_EQ(counting->Calls().size(), 1U);
  EXPECT_EQ(counting->Calls()[0].payload, balanced);
  // Read by a service: deeper than 1000 levels reads false, whether the
  // brackets close or not.
  StdoutCapture capture;
  const std::string reader = "{\"FQN\": \"reader\", \"SvcVersion\": \"1\"}";
  EXPECT_EQ(api_->tavoHostMethod(reader, balanced), "value false, field false");
  EXPECT_EQ(capture.Text(),
            "DataContract::FromJsonString: failed to read v from JSON data " + balanced + "\n");
  StdoutCapture again;
  EXPECT_EQ(api_->tavoHostMethod(reader, MillionOpen()), "value false, field read");
  EXPECT_EQ(again.Text(),
            "EndOfArray: final character incorrect\n"
            "EndOfArray: final character incorrect\n");
  const std::string nestedObjects = MillionObjects();
  StdoutCapture objects;
  EXPECT_EQ(api_->tavoHostMethod(reader, nestedObjects), "value false, field false");
  EXPECT_EQ(objects.Text(), "DataContract::FromJsonString: failed to read v from JSON data " +
                                nestedObjects + "\n");
}

TEST_F(HostileLargeInputTest, MillionNestedBracketsAsServiceList) {
  const char kOne[] = "[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}]";
  ASSERT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", kOne), "");
  // One element, the arrays nested in it, which is no descriptor.
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", MillionBalanced()), "");
  EXPECT_TRUE(Known().empty());
  ASSERT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", kOne), "");
  StdoutCapture capture;
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", MillionOpen()), "");
  EXPECT_TRUE(Known().empty());
  EXPECT_EQ(capture.Text(), "EndOfArray: final character incorrect\n");
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate("Replace", "[" + MillionObjects() + "]"), "");
  EXPECT_EQ(Known(), (std::vector<std::pair<std::string, std::string>>{{"", ""}}));
}

TEST_F(HostileLargeInputTest, MillionNestedBracketsAsThePagesAnswers) {
  // As the page's version and as its service list.
  page_.PageVersion = MillionOpen();
  page_.WebServiceList = MillionBalanced();
  Talk();
  EXPECT_EQ(instance_->GetWebSideVersion(), MillionOpen());
  EXPECT_TRUE(Known().empty());
  // As the answer to a call into the page.
  page_.MethodReply = MillionBalanced();
  EXPECT_EQ(instance_->InvokeWebMethod(PageService(), ""), MillionBalanced());
  const std::string deepRecord = "{\"Exception\": " + MillionOpen();
  page_.MethodReply = deepRecord;
  StdoutCapture capture;
  EXPECT_TRUE(
      ThrowsExactly<std::invalid_argument>([&] { instance_->InvokeWebMethod(PageService(), ""); },
                                           "Could not decipher web side error: " + deepRecord));
  EXPECT_EQ(capture.Text(), "EndOfArray: final character incorrect\n");
  page_.MethodReply = "{\"Exception\": {\"name\": " + MillionBalanced() + "}}";
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [&] { instance_->InvokeWebMethod(PageService(), ""); }, MillionBalanced() + " "));
}

// ---------------------------------------------------------------------------
// 64 MiB texts

TEST_F(HostileLargeInputTest, HugeStringAsDescriptorAndPayload) {
  const std::string big = Big();
  auto* service = new CountingService("a.b", "1", &probe_);
  service->SetAnswer("ok");
  instance_->RegisterService(service);
  // The name is matched and reported in full, up to its first NUL byte.
  EXPECT_EQ(api_->tavoHostMethod("{\"FQN\": \"" + big + "\", \"SvcVersion\": \"1\"}", ""),
            Record("std::invalid_argument",
                   "No matching service descriptor found for: " + big.substr(0, 7)));
  const std::string noNul(k64MiB, 'y');
  EXPECT_EQ(api_->tavoHostMethod("{\"FQN\": \"" + noNul + "\", \"SvcVersion\": \"1\"}", ""),
            NotFound(noNul, "1"));
  // A payload reaches the service unchanged.
  EXPECT_EQ(api_->tavoHostMethod("{\"FQN\": \"a.b\", \"SvcVersion\": \"1\"}", big), "ok");
  ASSERT_EQ(service->Calls().size(), 1U);
  EXPECT_TRUE(service->Calls()[0].payload == big);
}

TEST_F(HostileLargeInputTest, HugeStringInTheServiceList) {
  const std::string big = Big();
  EXPECT_EQ(api_->tavoHost_WebSideServiceListUpdate(
                "Replace", "[{\"FQN\": \"" + big + "\", \"SvcVersion\": \"1\"}]"),
            "");
  const auto known = Known();
  ASSERT_EQ(known.size(), 1U);
  EXPECT_TRUE(known[0].first == big);
  EXPECT_EQ(known[0].second, "1");
}

TEST_F(HostileLargeInputTest, HugeStringAsThePagesAnswers) {
  const std::string big = Big();
  const std::string list = "[{\"FQN\": \"" + big + "\", \"SvcVersion\": \"2\"}]";
  const std::string record = Record("E", big);
  AnsweringHost host([&](const std::string& script) -> std::string {
    if (wevlin_test::Calls(script, "tavoInterop_Ping")) return big;
    if (wevlin_test::Calls(script, "tavoInterop_HostServiceListUpdate")) return big;
    if (wevlin_test::Calls(script, "tavoInterop_RequestWebServiceList")) return list;
    if (wevlin_test::Calls(script, "tavoInterop_WebEvent")) return record;
    return big;
  });
  StdoutCapture capture;
  EXPECT_EQ(host.Handshake(), "");
  EXPECT_EQ(host.Instance().GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(capture.Text(), "Error invoking the startup notification.\n");
  EXPECT_TRUE(host.Instance().GetWebSideVersion() == big);
  ASSERT_EQ(host.Instance().GetKnownWebSideServices()->GetSize(), 1);
  EXPECT_TRUE(host.Instance().GetKnownWebSideServices()->GetAt(0)->GetFQN() == big);
  EXPECT_TRUE(host.Instance().InvokeWebMethod(PageService(), "") == big);
  // A record's message is cut at its first NUL byte, by what().
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [&] { host.Instance().InvokeWebEvent(PageService(), ""); }, "E " + big.substr(0, 7)));
}

TEST_F(HostileLargeInputTest, HugePayloadSentToThePage) {
  const std::string big = Big() + "'";
  std::size_t received = 0;
  AnsweringHost host([&](const std::string& script) -> std::string {
    if (wevlin_test::Calls(script, "tavoInterop_WebMethod")) received = script.size();
    return "";
  });
  ASSERT_EQ(host.Handshake(), "");
  EXPECT_EQ(host.Instance().InvokeWebMethod(PageService(), big), "");
  // The line holds the payload with a backslash before its one single quote.
  const std::string descriptor = "{\"FQN\": \"page.svc\", \"SvcVersion\": \"1\"}";
  EXPECT_EQ(received, std::string("tavoInterop_WebMethod('").size() + descriptor.size() +
                          std::string("','").size() + big.size() + 1 + std::string("');").size());
}

}  // namespace
