#include "wevlin/infrastructure/services/openlocation/_2014_02/OpenLocationProxy.h"

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
#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::InteropObjRef;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::OpenLocation::_2014_02::
    OpenLocationProxy;
using ::testing::_;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::MockHostControlInstance;

// A proxy on a strict mock instance: the instance may be called only as a
// test expects.
class OpenLocationProxyTest : public ::testing::Test {
 protected:
  StrictMock<MockHostControlInstance> instance_;
  OpenLocationProxy proxy_{&instance_};
};

TEST_F(OpenLocationProxyTest, TargetsThePagesOpenLocationService) {
  EXPECT_EQ(proxy_.GetBaseServiceDescriptor()->GetFQN(),
            "tavo.wevlin.infrastructure.services.openlocation.OpenLocation.client");
  EXPECT_EQ(proxy_.GetBaseServiceDescriptor()->GetSvcVersion(), "_2014_02");
}

TEST_F(OpenLocationProxyTest, AnEmptyLocationWithoutObjectsSendsExactlyThat) {
  EXPECT_CALL(instance_,
              InvokeWebEvent(proxy_.GetBaseServiceDescriptor(),
                             R"({"Version": "_2014_02", "location": "", "OpenComponent": []})"))
      .Times(1);
  proxy_.openLocation("", {});
}

TEST_F(OpenLocationProxyTest, SendsTheLocationAndTheObjectsInOrder) {
  std::vector<InteropObjRef> objects{InteropObjRef("db", "1", "Part"),
                                     InteropObjRef("db", "2", "Doc")};
  EXPECT_CALL(instance_,
              InvokeWebEvent(proxy_.GetBaseServiceDescriptor(),
                             R"({"Version": "_2014_02", "location": "parts", "OpenComponent": )"
                             R"([{"DBId": "db", "ObjId": "1", "ObjType": "Part"}, )"
                             R"({"DBId": "db", "ObjId": "2", "ObjType": "Doc"}]})"))
      .Times(1);
  proxy_.openLocation("parts", objects);
  EXPECT_EQ(objects.size(), 2u);
}

TEST_F(OpenLocationProxyTest, AStandardExceptionOfTheInstanceIsSwallowed) {
  EXPECT_CALL(instance_, InvokeWebEvent(proxy_.GetBaseServiceDescriptor(), _))
      .WillOnce(Throw(std::runtime_error("Cannot talk to hosted content")));
  EXPECT_NO_THROW(proxy_.openLocation("home", {}));
}

TEST_F(OpenLocationProxyTest, AScriptFailureOfTheInstanceIsSwallowed) {
  EXPECT_CALL(instance_, InvokeWebEvent(proxy_.GetBaseServiceDescriptor(), _))
      .WillOnce(Throw(IWebControl::ScriptException("ReferenceError", "line 1")));
  EXPECT_NO_THROW(proxy_.openLocation("home", {}));
}

TEST_F(OpenLocationProxyTest, WithoutInstanceNothingIsSent) {
  OpenLocationProxy proxy(nullptr);
  EXPECT_NO_THROW(proxy.openLocation("home", {InteropObjRef("db", "1", "Part")}));
}

// ---- End to end: a host control instance on a scripted page ------------------

using OpenLocationProxyEndToEndTest = wevlin_test::HostedPageFixture;

TEST_F(OpenLocationProxyEndToEndTest, AnEmptyLocationRunsExactlyThisLine) {
  Talk();
  OpenLocationProxy proxy(instance_.get());
  proxy.openLocation("", {});
  EXPECT_EQ(page_.Scripts(),
            std::vector<std::string>{
                R"(tavoInterop_WebEvent('{"FQN": "tavo.wevlin.infrastructure.services.)"
                R"(openlocation.OpenLocation.client", "SvcVersion": "_2014_02"}',)"
                R"('{"Version": "_2014_02", "location": "", "OpenComponent": []}');)"});
}

TEST_F(OpenLocationProxyEndToEndTest, TheLocationAndObjectsReachThePageQuotedForScript) {
  Talk();
  OpenLocationProxy proxy(instance_.get());
  proxy.openLocation("it's/here", {InteropObjRef("db", "1", "Part")});
  EXPECT_EQ(page_.Scripts(),
            std::vector<std::string>{
                R"(tavoInterop_WebEvent('{"FQN": "tavo.wevlin.infrastructure.services.)"
                R"(openlocation.OpenLocation.client", "SvcVersion": "_2014_02"}',)"
                R"('{"Version": "_2014_02", "location": "it\'s\/here", "OpenComponent": )"
                R"([{"DBId": "db", "ObjId": "1", "ObjType": "Part"}]}');)"});
}

TEST_F(OpenLocationProxyEndToEndTest, BeforeTheHandshakeNothingRunsAndNothingIsThrown) {
  OpenLocationProxy proxy(instance_.get());
  EXPECT_NO_THROW(proxy.openLocation("home", {}));
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(OpenLocationProxyEndToEndTest, FailuresInThePageAreSwallowed) {
  Talk();
  OpenLocationProxy proxy(instance_.get());
  page_.EventReply = R"({"Exception": {"name": "Error", "message": "no such location"}})";
  EXPECT_NO_THROW(proxy.openLocation("nowhere", {}));
  page_.Fail("tavoInterop_WebEvent", IWebControl::ScriptException("ReferenceError", "x"));
  wevlin_test::StdoutCapture capture;
  EXPECT_NO_THROW(proxy.openLocation("nowhere", {}));
  EXPECT_EQ(capture.Text(), "Caught exception running tavoInterop_HostServiceListUpdate\n");
  EXPECT_EQ(page_.CallsOf("tavoInterop_WebEvent").size(), 2u);
}

}  // namespace
