#include "wevlin/infrastructure/services/session/_2014_07/SessionProxy.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"
#include "support/HostedPageFixture.h"
#include "support/MockHostControlInstance.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ITargetServiceDesc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::InteropObjRef;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07::SessionMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07::SessionProxy;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::MockHostControlInstance;
using wevlin_test::ThrowsExactly;

TEST(SessionProxyTest, TargetsThePagesSessionService) {
  SessionProxy proxy(nullptr);
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetFQN(),
            "tavo.wevlin.infrastructure.services.session.Session.client");
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetSvcVersion(), "_2014_07");
}

TEST(SessionProxyTest, UpdateSessionSendsTheMessageAsAnEvent) {
  StrictMock<MockHostControlInstance> instance;
  SessionProxy proxy(&instance);
  SessionMsg session;
  session.SessionObjects.push_back(InteropObjRef("db", "7", "User"));
  EXPECT_CALL(instance,
              InvokeWebEvent(proxy.GetBaseServiceDescriptor(),
                             R"({"Version": "_2014_07", "SessionObjects": [{"DBId": "db", )"
                             R"("ObjId": "7", "ObjType": "User"}], "Preferences": []})"))
      .Times(1);
  proxy.UpdateSession(session);
}

TEST(SessionProxyTest, TheAvailabilityOfThePagesServiceIsNotTestedFirst) {
  // A strict mock: GetKnownWebSideServices must not be asked.
  StrictMock<MockHostControlInstance> instance;
  SessionProxy proxy(&instance);
  EXPECT_CALL(instance,
              InvokeWebEvent(proxy.GetBaseServiceDescriptor(),
                             R"({"Version": "_2014_07", "SessionObjects": [], "Preferences": []})"))
      .Times(1);
  proxy.UpdateSession(SessionMsg());
}

TEST(SessionProxyTest, UpdateSessionWithoutInstanceDoesNothing) {
  SessionProxy proxy(nullptr);
  proxy.UpdateSession(SessionMsg());
  EXPECT_FALSE(proxy.IsTargetServiceAvailable());
}

TEST(SessionProxyTest, AFailureOfTheInstanceReachesTheCaller) {
  StrictMock<MockHostControlInstance> instance;
  SessionProxy proxy(&instance);
  EXPECT_CALL(instance, InvokeWebEvent(proxy.GetBaseServiceDescriptor(), ::testing::_))
      .WillOnce(Throw(std::runtime_error("Cannot talk to hosted content")));
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { proxy.UpdateSession(SessionMsg()); },
                                                "Cannot talk to hosted content"));
}

// ---- End to end: a host control instance on a scripted page ------------------

using SessionProxyEndToEndTest = wevlin_test::HostedPageFixture;

TEST_F(SessionProxyEndToEndTest, UpdateSessionRunsExactlyOneEventLineInThePage) {
  Talk();
  SessionProxy proxy(instance_.get());
  SessionMsg session;
  session.SessionObjects.push_back(InteropObjRef("db", "7", "User's"));
  proxy.UpdateSession(session);
  EXPECT_EQ(page_.Scripts(),
            std::vector<std::string>{
                R"(tavoInterop_WebEvent('{"FQN": "tavo.wevlin.infrastructure.services.session.)"
                R"(Session.client", "SvcVersion": "_2014_07"}','{"Version": "_2014_07", )"
                R"("SessionObjects": [{"DBId": "db", "ObjId": "7", "ObjType": "User\'s"}], )"
                R"("Preferences": []}');)"});
  ASSERT_EQ(page_.CallsOf("tavoInterop_WebEvent").size(), 1u);
  EXPECT_EQ(page_.CallsOf("tavoInterop_WebEvent")[0].args.at(1), session.ToJsonString());
}

TEST_F(SessionProxyEndToEndTest, BeforeTheHandshakeTheInstanceRefusesTheCall) {
  SessionProxy proxy(instance_.get());
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { proxy.UpdateSession(SessionMsg()); },
                                                "Cannot talk to hosted content"));
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(SessionProxyEndToEndTest, ThePageAnnouncingTheServiceMakesItAvailable) {
  page_.WebServiceList =
      R"([{"FQN": "tavo.wevlin.infrastructure.services.session.Session.client", )"
      R"("SvcVersion": "_2014_07"}])";
  SessionProxy proxy(instance_.get());
  EXPECT_FALSE(proxy.IsTargetServiceAvailable());
  Talk();
  EXPECT_TRUE(proxy.IsTargetServiceAvailable());
}

}  // namespace
