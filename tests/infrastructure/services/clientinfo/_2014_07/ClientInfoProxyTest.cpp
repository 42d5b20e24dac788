#include "wevlin/infrastructure/services/clientinfo/_2014_07/ClientInfoProxy.h"

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/HostedPageFixture.h"
#include "support/MockHostControlInstance.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/IWebControl.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::ClientInfo::_2014_07::ClientInfoProxy;
using ::testing::Return;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;

using Info = std::map<std::string, std::string>;

class ClientInfoProxyTest : public ::testing::Test {
 protected:
  // Makes the page answer the next request (payload "") with `reply`.
  void Reply(const std::string& reply) {
    EXPECT_CALL(instance_, InvokeWebMethod(proxy_.GetBaseServiceDescriptor(), ""))
        .WillOnce(Return(reply));
  }

  StrictMock<MockHostControlInstance> instance_;
  ClientInfoProxy proxy_{&instance_};
};

TEST_F(ClientInfoProxyTest, TargetsThePagesClientInfoService) {
  EXPECT_EQ(proxy_.GetBaseServiceDescriptor()->GetFQN(),
            "tavo.wevlin.infrastructure.services.clientinfo.ClientInfo.client");
  EXPECT_EQ(proxy_.GetBaseServiceDescriptor()->GetSvcVersion(), "_2014_07");
}

TEST_F(ClientInfoProxyTest, WithoutInstanceReturnsAnEmptyMapAndCallsNothing) {
  ClientInfoProxy detached(nullptr);
  StdoutCapture capture;
  EXPECT_EQ(detached.GetClientInfo(), Info());
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(ClientInfoProxyTest, OnePairGivesAMapWithOneEntry) {
  Reply(R"({"Data": [{"Key": "a", "Value": "1"}], "Version": "_2014_07"})");
  EXPECT_EQ(proxy_.GetClientInfo(), (Info{{"a", "1"}}));
}

TEST_F(ClientInfoProxyTest, EveryPairBecomesAnEntry) {
  Reply(R"({"Version":"_2014_07","Data":[{"Key":"browser","Value":"x"},)"
        R"({"Key":"locale","Value":"de-DE"},{"Key":"","Value":"empty"}]})");
  EXPECT_EQ(proxy_.GetClientInfo(), (Info{{"browser", "x"}, {"locale", "de-DE"}, {"", "empty"}}));
}

TEST_F(ClientInfoProxyTest, WhenANameRepeatsTheLastValueWins) {
  Reply(R"({"Data": [{"Key": "a", "Value": "1"}, {"Key": "b", "Value": "2"}, )"
        R"({"Key": "a", "Value": "3"}]})");
  EXPECT_EQ(proxy_.GetClientInfo(), (Info{{"a", "3"}, {"b", "2"}}));
}

TEST_F(ClientInfoProxyTest, ElementsThatAreNoPairsAreSkipped) {
  Reply(R"({"Data": [7, {"Key": "a", "Value": "1"}, "b"]})");
  EXPECT_EQ(proxy_.GetClientInfo(), (Info{{"a", "1"}}));
}

TEST_F(ClientInfoProxyTest, AnEmptyReplyObjectGivesAnEmptyMap) {
  Reply("{}");
  EXPECT_EQ(proxy_.GetClientInfo(), Info());
}

TEST_F(ClientInfoProxyTest, AReplyThatDoesNotParseGivesAnEmptyMapWithoutALine) {
  StdoutCapture capture;
  Reply("not json");
  EXPECT_EQ(proxy_.GetClientInfo(), Info());
  Reply("");
  EXPECT_EQ(proxy_.GetClientInfo(), Info());
  Reply(R"({"Data": "a=1"})");
  EXPECT_EQ(proxy_.GetClientInfo(), Info());
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(ClientInfoProxyTest, AFailingCallWritesOneLineAndReturnsAnEmptyMap) {
  EXPECT_CALL(instance_, InvokeWebMethod(proxy_.GetBaseServiceDescriptor(), ""))
      .WillOnce(Throw(std::runtime_error("Cannot talk to hosted content")));
  StdoutCapture capture;
  Info info;
  EXPECT_NO_THROW(info = proxy_.GetClientInfo());
  EXPECT_EQ(info, Info());
  EXPECT_EQ(capture.Text(), "Cannot call web content for GetClientInfo invocation.\n");
}

TEST_F(ClientInfoProxyTest, AScriptFailureWritesTheSameLine) {
  EXPECT_CALL(instance_, InvokeWebMethod(proxy_.GetBaseServiceDescriptor(), ""))
      .WillOnce(Throw(IWebControl::ScriptException("TypeError", "at 1:1")));
  StdoutCapture capture;
  Info info;
  EXPECT_NO_THROW(info = proxy_.GetClientInfo());
  EXPECT_EQ(info, Info());
  EXPECT_EQ(capture.Text(), "Cannot call web content for GetClientInfo invocation.\n");
}

// ---- End to end: a host control instance on a scripted page ------------------

using ClientInfoProxyEndToEndTest = wevlin_test::HostedPageFixture;

constexpr char kClientInfoLine[] =
    R"(tavoInterop_WebMethod('{"FQN": "tavo.wevlin.infrastructure.services.clientinfo.)"
    R"(ClientInfo.client", "SvcVersion": "_2014_07"}','');)";

TEST_F(ClientInfoProxyEndToEndTest, ThePagesPairsBecomeTheMap) {
  Talk();
  page_.MethodReply =
      R"({"Version": "_2014_07", "Data": [{"Key": "a", "Value": "1"}, {"Key": "b", "Value": "2"}]})";
  ClientInfoProxy proxy(instance_.get());
  EXPECT_EQ(proxy.GetClientInfo(), (Info{{"a", "1"}, {"b", "2"}}));
  EXPECT_EQ(page_.Scripts(), std::vector<std::string>{kClientInfoLine});
}

TEST_F(ClientInfoProxyEndToEndTest, AnExceptionRecordFromThePageWritesTheLine) {
  Talk();
  page_.MethodReply = R"({"Exception": {"name": "Error", "message": "no info"}})";
  ClientInfoProxy proxy(instance_.get());
  StdoutCapture capture;
  EXPECT_EQ(proxy.GetClientInfo(), Info());
  EXPECT_EQ(capture.Text(), "Cannot call web content for GetClientInfo invocation.\n");
}

TEST_F(ClientInfoProxyEndToEndTest, AScriptFailureWritesBothLines) {
  Talk();
  page_.Fail("tavoInterop_WebMethod", IWebControl::ScriptException("TypeError", "x"));
  ClientInfoProxy proxy(instance_.get());
  StdoutCapture capture;
  EXPECT_EQ(proxy.GetClientInfo(), Info());
  EXPECT_EQ(capture.Text(),
            "Caught exception running tavoInterop_HostServiceListUpdate\n"
            "Cannot call web content for GetClientInfo invocation.\n");
}

TEST_F(ClientInfoProxyEndToEndTest, BeforeTheHandshakeTheLineIsWrittenAndNothingRuns) {
  ClientInfoProxy proxy(instance_.get());
  StdoutCapture capture;
  EXPECT_EQ(proxy.GetClientInfo(), Info());
  EXPECT_EQ(capture.Text(), "Cannot call web content for GetClientInfo invocation.\n");
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(ClientInfoProxyEndToEndTest, AnUnreadableAnswerGivesAnEmptyMapSilently) {
  Talk();
  page_.MethodReply = "undefined";
  ClientInfoProxy proxy(instance_.get());
  StdoutCapture capture;
  EXPECT_EQ(proxy.GetClientInfo(), Info());
  EXPECT_EQ(capture.Text(), "");
  EXPECT_EQ(page_.Scripts(), std::vector<std::string>{kClientInfoLine});
}

}  // namespace
