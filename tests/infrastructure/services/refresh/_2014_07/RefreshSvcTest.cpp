#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshSvc.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
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
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/IHandleRefreshSvc.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::IHandleRefreshSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::RefreshMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::RefreshSvc;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;

static_assert(std::is_abstract_v<IHandleRefreshSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleRefreshSvc>);
static_assert(!std::is_destructible_v<IHandleRefreshSvc>);
static_assert(std::is_copy_assignable_v<IHandleRefreshSvc>);

class RecordingHandler : public IHandleRefreshSvc {
 public:
  void OnRefresh(const RefreshMsg& refresh) override {
    if (fail_) throw std::domain_error("refresh refused");
    received.push_back(refresh);
  }

  std::vector<RefreshMsg> received;
  bool fail_ = false;
};

class RefreshSvcTest : public ::testing::Test {
 protected:
  StrictMock<MockHostControlInstance> instance_;
  RecordingHandler handler_;
  RefreshSvc service_{&handler_};
};

TEST_F(RefreshSvcTest, IsNamedAsTheWebSideExpects) {
  EXPECT_EQ(service_.GetFQN(), "tavo.wevlin.infrastructure.services.refresh.Refresh.host");
  EXPECT_EQ(service_.GetSvcVersion(), "_2014_07");
}

TEST_F(RefreshSvcTest, AMalformedDeletedObjectIsDroppedAndTheOthersArriveInOrder) {
  service_.InvokeEvent(&instance_, &service_,
                       R"({"Version":"_2014_07","DeletedObjects":[{"DBId":"db","ObjId":"1",)"
                       R"("ObjType":"T"},42,{"DBId":"db","ObjId":"2","ObjType":"T"}]})");
  ASSERT_EQ(handler_.received.size(), 1u);
  const RefreshMsg& refresh = handler_.received[0];
  ASSERT_EQ(refresh.DeletedObjects.size(), 2u);
  EXPECT_EQ(refresh.DeletedObjects[0].ObjId, "1");
  EXPECT_EQ(refresh.DeletedObjects[1].ObjId, "2");
  EXPECT_EQ(refresh.ToJsonString(),
            R"({"Version": "_2014_07", "CreatedObjects": [], "UpdatedObjects": [], )"
            R"("DeletedObjects": [{"DBId": "db", "ObjId": "1", "ObjType": "T"}, )"
            R"({"DBId": "db", "ObjId": "2", "ObjType": "T"}], "PlainObjects": [], )"
            R"("ChildChangeObjects": [], "DataObjects": []})");
}

TEST_F(RefreshSvcTest, AnEmptyObjectArrivesAsAnEmptyRefresh) {
  service_.InvokeEvent(&instance_, &service_, "{}");
  ASSERT_EQ(handler_.received.size(), 1u);
  EXPECT_EQ(handler_.received[0].ToJsonString(),
            R"({"Version": "_2014_07", "CreatedObjects": [], "UpdatedObjects": [], )"
            R"("DeletedObjects": [], "PlainObjects": [], "ChildChangeObjects": [], )"
            R"("DataObjects": []})");
}

TEST_F(RefreshSvcTest, TextThatDoesNotParseDoesNotReachTheHandler) {
  StdoutCapture capture;
  service_.InvokeEvent(&instance_, &service_, "refresh");
  service_.InvokeEvent(&instance_, &service_, R"({"CreatedObjects": {}})");
  service_.InvokeEvent(&instance_, &service_, "[]");
  EXPECT_TRUE(handler_.received.empty());
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(RefreshSvcTest, WithoutHandlerEveryEventIsIgnored) {
  RefreshSvc unhandled(nullptr);
  unhandled.InvokeEvent(&instance_, &unhandled, R"({"Version":"_2014_07"})");
  EXPECT_EQ(unhandled.InvokeMethod(&instance_, &unhandled, "{}"), "");
}

TEST_F(RefreshSvcTest, AnExceptionOfTheHandlerPassesThrough) {
  handler_.fail_ = true;
  try {
    service_.InvokeEvent(&instance_, &service_, "{}");
    FAIL() << "no exception";
  } catch (const std::exception& e) {
    EXPECT_EQ(typeid(e), typeid(std::domain_error));
    EXPECT_EQ(std::string(e.what()), "refresh refused");
  }
}

// ---- End to end: a host control instance on a scripted page ------------------

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

// A fresh host manager, a scripted page, a host control instance on it and the
// API through which the page's script calls the host. Services registered
// with the manager are deleted at the end of each test.
class RefreshSvcEndToEndTest : public ::testing::Test {
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

constexpr char kRefreshHost[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.refresh.Refresh.host", )"
    R"("SvcVersion": "_2014_07"})";

TEST_F(RefreshSvcEndToEndTest, ThePagesRefreshReachesTheHandler) {
  RecordingHandler handler;
  manager_->RegisterService(new RefreshSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kRefreshHost,
                                R"({"DeletedObjects":[{"ObjId":"1"},{"ObjId":2},{"ObjId":"3"}],)"
                                R"("DataObjects":[{"ObjRef":{"ObjId":"4"},"Properties":[]}]})"),
            "");
  ASSERT_EQ(handler.received.size(), 1u);
  const RefreshMsg& refresh = handler.received[0];
  ASSERT_EQ(refresh.DeletedObjects.size(), 3u);
  EXPECT_EQ(refresh.DeletedObjects[1].ObjId, "2");
  ASSERT_EQ(refresh.DataObjects.size(), 1u);
  EXPECT_EQ(refresh.DataObjects[0].ObjRef.ObjId, "4");
}

TEST_F(RefreshSvcEndToEndTest, AnUnreadableRefreshIsDroppedWithoutARecord) {
  RecordingHandler handler;
  manager_->RegisterService(new RefreshSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kRefreshHost, R"({"CreatedObjects": "all"})"), "");
  EXPECT_TRUE(handler.received.empty());
}

TEST_F(RefreshSvcEndToEndTest, AFailingHandlerReachesThePageAsAnExceptionRecord) {
  RecordingHandler handler;
  handler.fail_ = true;
  manager_->RegisterService(new RefreshSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kRefreshHost, "{}"),
            R"({"Exception": {"name": "std::domain_error", "message": "refresh refused"}})");
}

}  // namespace
