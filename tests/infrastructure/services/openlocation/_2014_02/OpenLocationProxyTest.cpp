#include "wevlin/infrastructure/services/openlocation/_2014_02/OpenLocationProxy.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MockHostControlInstance.h"
#include "support/ScriptedPage.h"
#include "support/StdoutCapture.h"
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
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

TEST(OpenLocationProxyTest, TargetsThePagesOpenLocationService) {
  StrictMock<MockHostControlInstance> instance;
  OpenLocationProxy proxy(&instance);
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetFQN(),
            "tavo.wevlin.infrastructure.services.openlocation.OpenLocation.client");
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetSvcVersion(), "_2014_02");
}

TEST(OpenLocationProxyTest, AnEmptyLocationWithoutObjectsSendsExactlyThat) {
  StrictMock<MockHostControlInstance> instance;
  OpenLocationProxy proxy(&instance);
  EXPECT_CALL(instance,
              InvokeWebEvent(proxy.GetBaseServiceDescriptor(),
                             R"({"Version": "_2014_02", "location": "", "OpenComponent": []})"))
      .Times(1);
  proxy.openLocation("", {});
}

TEST(OpenLocationProxyTest, SendsTheLocationAndTheObjectsInOrder) {
  StrictMock<MockHostControlInstance> instance;
  OpenLocationProxy proxy(&instance);
  std::vector<InteropObjRef> objects{InteropObjRef("db", "1", "Part"),
                                     InteropObjRef("db", "2", "Doc")};
  EXPECT_CALL(instance,
              InvokeWebEvent(proxy.GetBaseServiceDescriptor(),
                             R"({"Version": "_2014_02", "location": "parts", "OpenComponent": )"
                             R"([{"DBId": "db", "ObjId": "1", "ObjType": "Part"}, )"
                             R"({"DBId": "db", "ObjId": "2", "ObjType": "Doc"}]})"))
      .Times(1);
  proxy.openLocation("parts", objects);
  EXPECT_EQ(objects.size(), 2u);
}

TEST(OpenLocationProxyTest, AStandardExceptionOfTheInstanceIsSwallowed) {
  StrictMock<MockHostControlInstance> instance;
  OpenLocationProxy proxy(&instance);
  EXPECT_CALL(instance, InvokeWebEvent(proxy.GetBaseServiceDescriptor(), _))
      .WillOnce(Throw(std::runtime_error("Cannot talk to hosted content")));
  EXPECT_NO_THROW(proxy.openLocation("home", {}));
}

TEST(OpenLocationProxyTest, AScriptFailureOfTheInstanceIsSwallowed) {
  StrictMock<MockHostControlInstance> instance;
  OpenLocationProxy proxy(&instance);
  EXPECT_CALL(instance, InvokeWebEvent(proxy.GetBaseServiceDescriptor(), _))
      .WillOnce(Throw(IWebControl::ScriptException("ReferenceError", "line 1")));
  EXPECT_NO_THROW(proxy.openLocation("home", {}));
}

TEST(OpenLocationProxyTest, WithoutInstanceNothingIsSent) {
  OpenLocationProxy proxy(nullptr);
  EXPECT_NO_THROW(proxy.openLocation("home", {InteropObjRef("db", "1", "Part")}));
}

// ---- End to end: a host control instance on a scripted page ------------------

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

// A fresh host manager, a scripted page, a host control instance on it and the
// API through which the page's script calls the host. Services registered
// with the manager are deleted at the end of each test.
class OpenLocationProxyEndToEndTest : public ::testing::Test {
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
