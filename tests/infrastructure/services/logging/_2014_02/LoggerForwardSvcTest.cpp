#include "wevlin/infrastructure/services/logging/_2014_02/LoggerForwardSvc.h"

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "support/TalkingPageFixture.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/logging/_2014_02/LoggerEntryMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02::LoggerEntryMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02::LoggerForwardSvc;

static_assert(std::has_virtual_destructor_v<LoggerForwardSvc>);
static_assert(std::is_copy_constructible_v<LoggerForwardSvc>);
static_assert(std::is_copy_assignable_v<LoggerForwardSvc>);

// What the forwarding functions below received, as "level|text" lines.
std::vector<std::string> forwarded;

void Record(const LoggerEntryMsg& entry) {
  forwarded.push_back(entry.Level + "|" + entry.FormatMessage + "|" + entry.GetVersion());
}

void RecordThenThrowRuntimeError(const LoggerEntryMsg& entry) {
  Record(entry);
  throw std::runtime_error("log file full");
}

void ThrowInteger(const LoggerEntryMsg&) { throw 42; }

class LoggerForwardSvcTest : public ::testing::Test {
 protected:
  void SetUp() override { forwarded.clear(); }
};

TEST_F(LoggerForwardSvcTest, IsTheLoggerForwardServiceOfVersion2014_02) {
  LoggerForwardSvc service(&Record);
  EXPECT_EQ(service.GetFQN(), "tavo.wevlin.infrastructure.services.LoggerForward.host");
  EXPECT_EQ(service.GetSvcVersion(), "_2014_02");
}

TEST_F(LoggerForwardSvcTest, AMethodCallWithAnEntryForwardsItOnceAndAnswersOK) {
  LoggerForwardSvc service(&Record);
  EXPECT_EQ(service.InvokeMethod(
                nullptr, &service,
                R"({"FormatMessage":"clicked save","Level":"info","Version":"_2014_02"})"),
            "OK");
  EXPECT_EQ(forwarded, std::vector<std::string>{"info|clicked save|_2014_02"});
}

TEST_F(LoggerForwardSvcTest, AnEntryOfAnotherVersionIsForwardedAsItCame) {
  LoggerForwardSvc service(&Record);
  EXPECT_EQ(service.InvokeMethod(nullptr, nullptr, R"({"FormatMessage": "x", "Version": "9"})"),
            "OK");
  EXPECT_EQ(forwarded, std::vector<std::string>{"|x|9"});
}

TEST_F(LoggerForwardSvcTest, AMethodCallThatIsNotJsonIsNotForwardedAndAnswersOK) {
  LoggerForwardSvc service(&Record);
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, "not json"), "OK");
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, ""), "OK");
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, "[\"a\"]"), "OK");
  EXPECT_TRUE(forwarded.empty());
}

TEST_F(LoggerForwardSvcTest, AThrowingFunctionGivesFAILForAMethodCall) {
  LoggerForwardSvc service(&RecordThenThrowRuntimeError);
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, R"({"FormatMessage":"m","Level":"l"})"),
            "FAIL");
  EXPECT_EQ(forwarded, std::vector<std::string>{"l|m|_2014_02"});
}

TEST_F(LoggerForwardSvcTest, AnythingThrownGivesFAIL) {
  LoggerForwardSvc service(&ThrowInteger);
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, "{}"), "FAIL");
}

TEST_F(LoggerForwardSvcTest, AnEventForwardsTheEntry) {
  LoggerForwardSvc service(&Record);
  service.InvokeEvent(nullptr, &service, R"({"FormatMessage":"e","Level":"warn"})");
  EXPECT_EQ(forwarded, std::vector<std::string>{"warn|e|_2014_02"});
}

TEST_F(LoggerForwardSvcTest, AnEventSwallowsWhatTheFunctionThrows) {
  LoggerForwardSvc service(&RecordThenThrowRuntimeError);
  EXPECT_NO_THROW(service.InvokeEvent(nullptr, &service, R"({"FormatMessage":"e"})"));
  EXPECT_EQ(forwarded, std::vector<std::string>{"|e|_2014_02"});
  LoggerForwardSvc other(&ThrowInteger);
  EXPECT_NO_THROW(other.InvokeEvent(nullptr, &other, "{}"));
}

TEST_F(LoggerForwardSvcTest, AnEventThatIsNotJsonIsDropped) {
  LoggerForwardSvc service(&Record);
  EXPECT_NO_THROW(service.InvokeEvent(nullptr, &service, "}{"));
  EXPECT_TRUE(forwarded.empty());
}

TEST_F(LoggerForwardSvcTest, CopiesForwardToTheSameFunction) {
  LoggerForwardSvc original(&Record);
  LoggerForwardSvc copy(original);
  LoggerForwardSvc assigned(&ThrowInteger);
  assigned = original;
  EXPECT_EQ(copy.InvokeMethod(nullptr, &copy, R"({"Level":"a"})"), "OK");
  EXPECT_EQ(assigned.InvokeMethod(nullptr, &assigned, R"({"Level":"b"})"), "OK");
  EXPECT_EQ(forwarded, (std::vector<std::string>{"a||_2014_02", "b||_2014_02"}));
}

TEST_F(LoggerForwardSvcTest, IsDeletedThroughItsDescriptorInterface) {
  IHostServiceDescriptor* descriptor = new LoggerForwardSvc(&Record);
  EXPECT_EQ(descriptor->GetInteraction()->InvokeMethod(nullptr, descriptor, "{}"), "OK");
  delete descriptor;
  EXPECT_EQ(forwarded, std::vector<std::string>{"||_2014_02"});
}

// ---- End to end: the service on a host control instance over a scripted page

using LoggerForwardSvcEndToEndTest = wevlin_test::TalkingPageFixture;

constexpr char kLoggerForwardHost[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.LoggerForward.host", "SvcVersion": "_2014_02"})";

TEST_F(LoggerForwardSvcEndToEndTest, ThePagesEntriesReachTheFunction) {
  forwarded.clear();
  manager_->RegisterService(new LoggerForwardSvc(&Record));
  EXPECT_EQ(
      api_->tavoHostMethod(kLoggerForwardHost,
                           R"({"FormatMessage":"saved","Level":"info","Version":"_2014_02"})"),
      "OK");
  EXPECT_EQ(
      api_->tavoHostEvent(kLoggerForwardHost, R"({"FormatMessage":"closed","Level":"debug"})"), "");
  EXPECT_EQ(api_->tavoHostMethod(kLoggerForwardHost, "not json"), "OK");
  EXPECT_EQ(forwarded, (std::vector<std::string>{"info|saved|_2014_02", "debug|closed|_2014_02"}));
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(LoggerForwardSvcEndToEndTest, AFailingFunctionIsAnsweredFAILAndNeverAnExceptionRecord) {
  forwarded.clear();
  manager_->RegisterService(new LoggerForwardSvc(&RecordThenThrowRuntimeError));
  EXPECT_EQ(api_->tavoHostMethod(kLoggerForwardHost, R"({"FormatMessage":"a"})"), "FAIL");
  EXPECT_EQ(api_->tavoHostEvent(kLoggerForwardHost, R"({"FormatMessage":"b"})"), "");
  EXPECT_EQ(forwarded, (std::vector<std::string>{"|a|_2014_02", "|b|_2014_02"}));
}

}  // namespace
