#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusSvc.h"

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
#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusMsg.h"
#include "wevlin/infrastructure/services/core/_2014_07/IHandleClientStatusSvc.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::ClientStatusMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::ClientStatusSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::IHandleClientStatusSvc;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;

static_assert(std::is_abstract_v<IHandleClientStatusSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleClientStatusSvc>);
static_assert(!std::is_destructible_v<IHandleClientStatusSvc>);
static_assert(std::is_copy_assignable_v<IHandleClientStatusSvc>);

// Keeps a copy of every status it receives.
class RecordingHandler : public IHandleClientStatusSvc {
 public:
  void OnClientStatus(const ClientStatusMsg& status) override {
    if (failure_ != nullptr) throw *failure_;
    received.push_back(status);
  }
  void FailWith(const std::runtime_error* failure) { failure_ = failure; }

  std::vector<ClientStatusMsg> received;

 private:
  const std::runtime_error* failure_ = nullptr;
};

class ClientStatusSvcTest : public ::testing::Test {
 protected:
  StrictMock<MockHostControlInstance> instance_;
  RecordingHandler handler_;
  ClientStatusSvc service_{&handler_};
};

TEST_F(ClientStatusSvcTest, IsNamedAsTheWebSideExpects) {
  EXPECT_EQ(service_.GetFQN(), "tavo.wevlin.infrastructure.services.core.ClientStatus.host");
  EXPECT_EQ(service_.GetSvcVersion(), "_2014_07");
}

TEST_F(ClientStatusSvcTest, ABusyStatusReachesTheHandlerAsBusy) {
  service_.InvokeEvent(&instance_, &service_, R"({"State":"busy","Version":"_2014_07"})");
  ASSERT_EQ(handler_.received.size(), 1u);
  EXPECT_EQ(handler_.received[0].State, "busy");
  EXPECT_EQ(handler_.received[0].GetVersion(), "_2014_07");
  EXPECT_EQ(handler_.received[0].ToJsonString(), R"({"Version": "_2014_07", "State": "busy"})");
}

TEST_F(ClientStatusSvcTest, AStatusWithoutStateReachesTheHandlerAsIdle) {
  service_.InvokeEvent(&instance_, &service_, R"({"Version":"_2014_07"})");
  ASSERT_EQ(handler_.received.size(), 1u);
  EXPECT_EQ(handler_.received[0].State, "idle");
}

TEST_F(ClientStatusSvcTest, EachEventStartsFromIdle) {
  service_.InvokeEvent(&instance_, &service_, R"({"State":"busy"})");
  service_.InvokeEvent(&instance_, &service_, R"({})");
  ASSERT_EQ(handler_.received.size(), 2u);
  EXPECT_EQ(handler_.received[0].State, "busy");
  EXPECT_EQ(handler_.received[1].State, "idle");
}

TEST_F(ClientStatusSvcTest, TextThatIsNotJsonDoesNotReachTheHandler) {
  StdoutCapture capture;
  service_.InvokeEvent(&instance_, &service_, "busy");
  service_.InvokeEvent(&instance_, &service_, "");
  service_.InvokeEvent(&instance_, &service_, R"(["busy"])");
  service_.InvokeEvent(&instance_, &service_, R"({"State": "busy")");
  EXPECT_TRUE(handler_.received.empty());
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(ClientStatusSvcTest, WithoutHandlerEveryEventIsIgnored) {
  ClientStatusSvc unhandled(nullptr);
  StdoutCapture capture;
  unhandled.InvokeEvent(&instance_, &unhandled, R"({"State":"busy","Version":"_2014_07"})");
  unhandled.InvokeEvent(&instance_, &unhandled, "not json");
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(ClientStatusSvcTest, AnExceptionOfTheHandlerPassesThrough) {
  const std::runtime_error failure("handler failed");
  handler_.FailWith(&failure);
  try {
    service_.InvokeEvent(&instance_, &service_, R"({"State":"busy"})");
    FAIL() << "no exception";
  } catch (const std::exception& e) {
    EXPECT_EQ(typeid(e), typeid(std::runtime_error));
    EXPECT_EQ(std::string(e.what()), "handler failed");
  }
}

TEST_F(ClientStatusSvcTest, AMethodCallIsAnsweredWithTheEmptyText) {
  EXPECT_EQ(service_.InvokeMethod(&instance_, &service_, R"({"State":"busy"})"), "");
  EXPECT_TRUE(handler_.received.empty());
}

// ---- End to end: a host control instance on a scripted page ------------------

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

// A fresh host manager, a scripted page, a host control instance on it and the
// API through which the page's script calls the host. Services registered
// with the manager are deleted at the end of each test.
class ClientStatusSvcEndToEndTest : public ::testing::Test {
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

constexpr char kClientStatus[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.core.ClientStatus.host", )"
    R"("SvcVersion": "_2014_07"})";

TEST_F(ClientStatusSvcEndToEndTest, ThePagesStatusReachesTheHandler) {
  RecordingHandler handler;
  manager_->RegisterService(new ClientStatusSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kClientStatus, R"({"State":"busy","Version":"_2014_07"})"), "");
  EXPECT_EQ(api_->tavoHostEvent(kClientStatus, R"({"Version":"_2014_07"})"), "");
  ASSERT_EQ(handler.received.size(), 2u);
  EXPECT_EQ(handler.received[0].State, "busy");
  EXPECT_EQ(handler.received[1].State, "idle");
}

TEST_F(ClientStatusSvcEndToEndTest, AnUnreadableStatusIsDroppedWithoutARecord) {
  RecordingHandler handler;
  manager_->RegisterService(new ClientStatusSvc(&handler));
  wevlin_test::StdoutCapture capture;
  EXPECT_EQ(api_->tavoHostEvent(kClientStatus, "busy"), "");
  EXPECT_TRUE(handler.received.empty());
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(ClientStatusSvcEndToEndTest, AFailingHandlerReachesThePageAsAnExceptionRecord) {
  RecordingHandler handler;
  const std::runtime_error failure("status refused");
  handler.FailWith(&failure);
  manager_->RegisterService(new ClientStatusSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kClientStatus, R"({"State":"busy"})"),
            R"({"Exception": {"name": "std::runtime_error", "message": "status refused"}})");
}

}  // namespace
