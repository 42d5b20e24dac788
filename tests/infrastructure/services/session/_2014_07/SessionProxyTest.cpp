#include "wevlin/infrastructure/services/session/_2014_07/SessionProxy.h"

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
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
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
  try {
    proxy.UpdateSession(SessionMsg());
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
class SessionProxyEndToEndTest : public ::testing::Test {
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
  try {
    proxy.UpdateSession(SessionMsg());
    FAIL() << "no exception";
  } catch (const std::exception& e) {
    EXPECT_EQ(typeid(e), typeid(std::runtime_error));
    EXPECT_EQ(std::string(e.what()), "Cannot talk to hosted content");
  }
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
