#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshProxy.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"
#include "support/HostedPageFixture.h"
#include "support/MockHostControlInstance.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::InteropObjRef;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::RefreshMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::RefreshProxy;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::MockHostControlInstance;
using wevlin_test::ThrowsExactly;

TEST(RefreshProxyTest, TargetsThePagesRefreshService) {
  RefreshProxy proxy(nullptr);
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetFQN(),
            "tavo.wevlin.infrastructure.services.refresh.Refresh.client");
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetSvcVersion(), "_2014_07");
}

TEST(RefreshProxyTest, SendRefreshSendsTheMessageAsAnEvent) {
  StrictMock<MockHostControlInstance> instance;
  RefreshProxy proxy(&instance);
  RefreshMsg refresh;
  refresh.UpdatedObjects.push_back(InteropObjRef("db", "9", "Doc"));
  EXPECT_CALL(instance,
              InvokeWebEvent(proxy.GetBaseServiceDescriptor(),
                             R"({"Version": "_2014_07", "CreatedObjects": [], "UpdatedObjects": )"
                             R"([{"DBId": "db", "ObjId": "9", "ObjType": "Doc"}], )"
                             R"("DeletedObjects": [], "PlainObjects": [], )"
                             R"("ChildChangeObjects": [], "DataObjects": []})"))
      .Times(1);
  proxy.SendRefresh(refresh);
}

TEST(RefreshProxyTest, SendRefreshWithoutInstanceDoesNothing) {
  RefreshProxy proxy(nullptr);
  proxy.SendRefresh(RefreshMsg());
  EXPECT_FALSE(proxy.IsTargetServiceAvailable());
}

TEST(RefreshProxyTest, AFailureOfTheInstanceReachesTheCaller) {
  StrictMock<MockHostControlInstance> instance;
  RefreshProxy proxy(&instance);
  EXPECT_CALL(instance, InvokeWebEvent(proxy.GetBaseServiceDescriptor(), ::testing::_))
      .WillOnce(Throw(std::runtime_error("Cannot talk to hosted content")));
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { proxy.SendRefresh(RefreshMsg()); },
                                                "Cannot talk to hosted content"));
}

// ---- End to end: a host control instance on a scripted page ------------------

using RefreshProxyEndToEndTest = wevlin_test::HostedPageFixture;

TEST_F(RefreshProxyEndToEndTest, SendRefreshRunsExactlyOneEventLineInThePage) {
  Talk();
  RefreshProxy proxy(instance_.get());
  RefreshMsg refresh;
  refresh.DeletedObjects.push_back(InteropObjRef("db", "9", "Doc"));
  proxy.SendRefresh(refresh);
  EXPECT_EQ(
      page_.Scripts(),
      std::vector<std::string>{
          R"(tavoInterop_WebEvent('{"FQN": "tavo.wevlin.infrastructure.services.refresh.)"
          R"(Refresh.client", "SvcVersion": "_2014_07"}','{"Version": "_2014_07", )"
          R"("CreatedObjects": [], "UpdatedObjects": [], "DeletedObjects": [{"DBId": "db", )"
          R"("ObjId": "9", "ObjType": "Doc"}], "PlainObjects": [], "ChildChangeObjects": [], )"
          R"("DataObjects": []}');)"});
}

TEST_F(RefreshProxyEndToEndTest, AnExceptionRecordFromThePageReachesTheCaller) {
  Talk();
  page_.EventReply = R"({"Exception": {"name": "TypeError", "message": "no refresh"}})";
  RefreshProxy proxy(instance_.get());
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { proxy.SendRefresh(RefreshMsg()); },
                                                "TypeError no refresh"));
}

TEST_F(RefreshProxyEndToEndTest, AProxyWithoutInstanceRunsNothing) {
  Talk();
  RefreshProxy proxy(nullptr);
  proxy.SendRefresh(RefreshMsg());
  EXPECT_TRUE(page_.Scripts().empty());
}

}  // namespace
