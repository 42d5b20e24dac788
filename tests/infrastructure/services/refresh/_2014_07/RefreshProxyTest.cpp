#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshProxy.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MockHostControlInstance.h"
#include "support/ScriptedPage.h"
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::InteropObjRef;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::RefreshMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::RefreshProxy;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::MockHostControlInstance;

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
  try {
    proxy.SendRefresh(RefreshMsg());
    FAIL() << "no exception";
  } catch (const std::exception& e) {
    EXPECT_EQ(typeid(e), typeid(std::runtime_error));
    EXPECT_EQ(std::string(e.what()), "Cannot talk to hosted content");
  }
}

// ---- End to end: a host control instance on a scripted page ------------------

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

// A fresh host manager, a scripted page, a host control instance on it and the
// API through which the page's script calls the host. Services registered
// with the manager are deleted at the end of each test.
class RefreshProxyEndToEndTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previousManager_ = e2e::internal::HostManagerTestPeer::InstallFresh();
    manager_ = e2e::HostManager::TheInstance();
    instance_ = std::make_unique<e2e::HostControlInstance>(&page_);
    api_ = std::make_unique<e2e::HostAPI>(instance_.get());
  }

  void TearDown() override {
    api_.reset();
    Com::Velmora::TAVO::Wevlin::Infrastructure::Base::IObservableList<e2e::IHostServiceDescriptor*>*
        own = instance_->KnownServices();
    instance_.reset();
    delete own;
    std::vector<e2e::IHostServiceDescriptor*> services;
    for (int i = 0; i < manager_->KnownServices()->GetSize(); ++i) {
      services.push_back(manager_->KnownServices()->GetAt(i));
    }
    e2e::internal::HostManagerTestPeer::Restore(previousManager_);
    for (e2e::IHostServiceDescriptor* service : services) delete service;
  }

  // Launches, completes the load and lets the page run the handshake, so
  // that calls into the page are allowed; then forgets the lines run so far.
  void Talk() {
    instance_->LaunchToTarget(&target_);
    page_.CompleteLoad();
    ASSERT_EQ(api_->tavoHost_WebSideStartHandShake(), "");
    ASSERT_EQ(instance_->GetContentState(), e2e::LoadedCanTalk);
    page_.ClearRecords();
  }

  wevlin_test::TimerEnvironmentScope env_;
  wevlin_test::ScriptedPage page_;
  e2e::TargetConfig target_{"app", "App", "https://app.example/"};
  e2e::HostManager* previousManager_ = nullptr;
  e2e::HostManager* manager_ = nullptr;
  std::unique_ptr<e2e::HostControlInstance> instance_;
  std::unique_ptr<e2e::HostAPI> api_;
};

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
  try {
    proxy.SendRefresh(RefreshMsg());
    FAIL() << "no exception";
  } catch (const std::exception& e) {
    EXPECT_EQ(typeid(e), typeid(std::runtime_error));
    EXPECT_EQ(std::string(e.what()), "TypeError no refresh");
  }
}

TEST_F(RefreshProxyEndToEndTest, AProxyWithoutInstanceRunsNothing) {
  Talk();
  RefreshProxy proxy(nullptr);
  proxy.SendRefresh(RefreshMsg());
  EXPECT_TRUE(page_.Scripts().empty());
}

}  // namespace
