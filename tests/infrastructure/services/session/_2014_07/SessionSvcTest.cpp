#include "wevlin/infrastructure/services/session/_2014_07/SessionSvc.h"

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
#include "wevlin/infrastructure/services/session/_2014_07/IHandleSessionSvc.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07::IHandleSessionSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07::SessionMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07::SessionSvc;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;

static_assert(std::is_abstract_v<IHandleSessionSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleSessionSvc>);
static_assert(!std::is_destructible_v<IHandleSessionSvc>);
static_assert(std::is_copy_assignable_v<IHandleSessionSvc>);

class RecordingHandler : public IHandleSessionSvc {
 public:
  void OnSession(const SessionMsg& session) override {
    if (fail_) throw std::invalid_argument("session refused");
    received.push_back(session);
  }

  std::vector<SessionMsg> received;
  bool fail_ = false;
};

class SessionSvcTest : public ::testing::Test {
 protected:
  StrictMock<MockHostControlInstance> instance_;
  RecordingHandler handler_;
  SessionSvc service_{&handler_};
};

TEST_F(SessionSvcTest, IsNamedAsTheWebSideExpects) {
  EXPECT_EQ(service_.GetFQN(), "tavo.wevlin.infrastructure.services.session.Session.host");
  EXPECT_EQ(service_.GetSvcVersion(), "_2014_07");
}

TEST_F(SessionSvcTest, ASessionReachesTheHandlerParsed) {
  service_.InvokeEvent(&instance_, &service_,
                       R"({"Version":"_2014_07","SessionObjects":[{"DBId":"db","ObjId":"1",)"
                       R"("ObjType":"User"}],"Preferences":[{"Name":"lang","Values":["en"]}]})");
  ASSERT_EQ(handler_.received.size(), 1u);
  EXPECT_EQ(handler_.received[0].ToJsonString(),
            R"({"Version": "_2014_07", "SessionObjects": [{"DBId": "db", "ObjId": "1", )"
            R"("ObjType": "User"}], "Preferences": [{"Name": "lang", "Values": ["en"]}]})");
}

TEST_F(SessionSvcTest, BadElementsAreDroppedAndTheOthersKeepTheirOrder) {
  service_.InvokeEvent(&instance_, &service_,
                       R"({"SessionObjects":[{"ObjId":"1"},false,{"ObjId":"2"}]})");
  ASSERT_EQ(handler_.received.size(), 1u);
  ASSERT_EQ(handler_.received[0].SessionObjects.size(), 2u);
  EXPECT_EQ(handler_.received[0].SessionObjects[0].ObjId, "1");
  EXPECT_EQ(handler_.received[0].SessionObjects[1].ObjId, "2");
}

TEST_F(SessionSvcTest, TextThatDoesNotParseDoesNotReachTheHandler) {
  StdoutCapture capture;
  service_.InvokeEvent(&instance_, &service_, "session");
  service_.InvokeEvent(&instance_, &service_, R"({"SessionObjects": 3})");
  service_.InvokeEvent(&instance_, &service_, R"({"SessionObjects": [{"ObjId": "1"}])");
  EXPECT_TRUE(handler_.received.empty());
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(SessionSvcTest, WithoutHandlerEveryEventIsIgnored) {
  SessionSvc unhandled(nullptr);
  unhandled.InvokeEvent(&instance_, &unhandled, R"({"Version":"_2014_07"})");
  EXPECT_EQ(unhandled.InvokeMethod(&instance_, &unhandled, "{}"), "");
}

TEST_F(SessionSvcTest, AnExceptionOfTheHandlerPassesThrough) {
  handler_.fail_ = true;
  try {
    service_.InvokeEvent(&instance_, &service_, "{}");
    FAIL() << "no exception";
  } catch (const std::exception& e) {
    EXPECT_EQ(typeid(e), typeid(std::invalid_argument));
    EXPECT_EQ(std::string(e.what()), "session refused");
  }
}

// ---- End to end: a host control instance on a scripted page ------------------

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

// A fresh host manager, a scripted page, a host control instance on it and the
// API through which the page's script calls the host. Services registered
// with the manager are deleted at the end of each test.
class SessionSvcEndToEndTest : public ::testing::Test {
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

constexpr char kSessionHost[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.session.Session.host", )"
    R"("SvcVersion": "_2014_07"})";

TEST_F(SessionSvcEndToEndTest, ThePagesSessionReachesTheHandler) {
  RecordingHandler handler;
  manager_->RegisterService(new SessionSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kSessionHost,
                                R"({"Version": "_2014_07", "SessionObjects": [{"DBId": "db", )"
                                R"("ObjId": "1", "ObjType": "User"}, 5], "Preferences": []})"),
            "");
  ASSERT_EQ(handler.received.size(), 1u);
  EXPECT_EQ(handler.received[0].ToJsonString(),
            R"({"Version": "_2014_07", "SessionObjects": [{"DBId": "db", "ObjId": "1", )"
            R"("ObjType": "User"}], "Preferences": []})");
}

TEST_F(SessionSvcEndToEndTest, AnUnreadableSessionIsDroppedWithoutARecord) {
  RecordingHandler handler;
  manager_->RegisterService(new SessionSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kSessionHost, "<session/>"), "");
  EXPECT_TRUE(handler.received.empty());
}

TEST_F(SessionSvcEndToEndTest, AFailingHandlerReachesThePageAsAnExceptionRecord) {
  RecordingHandler handler;
  handler.fail_ = true;
  manager_->RegisterService(new SessionSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kSessionHost, "{}"),
            R"({"Exception": {"name": "std::invalid_argument", "message": "session refused"}})");
}

}  // namespace
