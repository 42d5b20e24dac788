#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationSvc.h"

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
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/services/Pair.h"
#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationResponseMsg.h"
#include "wevlin/infrastructure/services/core/_2014_07/IHandleHostConfigurationSvc.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Pair;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::
    HostConfigurationResponseMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::HostConfigurationSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::
    IHandleHostConfigurationSvc;
using ::testing::ReturnRef;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::MockHostControlInstance;

// The handler interface: one pure operation, no virtual destructor, and a
// destructor the library cannot call.
static_assert(std::is_abstract_v<IHandleHostConfigurationSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleHostConfigurationSvc>);
static_assert(!std::is_destructible_v<IHandleHostConfigurationSvc>);
static_assert(std::is_copy_assignable_v<IHandleHostConfigurationSvc>);

class MockHandler : public IHandleHostConfigurationSvc {
 public:
  MOCK_METHOD(const HostConfigurationResponseMsg&, GetHostConfiguration,
              (IHostControlInstance * instance, IHostServiceDescriptor* descriptor), (override));
};

constexpr char kEmpty[] = R"({"Version": "_2014_07", "Settings": []})";

class HostConfigurationSvcTest : public ::testing::Test {
 protected:
  StrictMock<MockHostControlInstance> instance_;
  StrictMock<MockHandler> handler_;
  HostConfigurationResponseMsg configuration_;
  HostConfigurationSvc service_{&handler_};
};

TEST_F(HostConfigurationSvcTest, IsNamedAsTheWebSideExpects) {
  EXPECT_EQ(service_.GetFQN(), "tavo.wevlin.infrastructure.services.core.HostConfiguration.host");
  EXPECT_EQ(service_.GetSvcVersion(), "_2014_07");
  EXPECT_EQ(service_.GetInteraction(), &service_);
}

TEST_F(HostConfigurationSvcTest, NoSettingsReplyWithAnEmptyArrayAndTheVersion) {
  EXPECT_CALL(handler_, GetHostConfiguration(&instance_, &service_))
      .WillOnce(ReturnRef(configuration_));
  EXPECT_EQ(service_.InvokeMethod(&instance_, &service_, "{}"), kEmpty);
}

TEST_F(HostConfigurationSvcTest, RepliesWithTheHandlersValues) {
  configuration_.Settings.push_back(Pair("AllowGoHome", "true"));
  configuration_.Settings.push_back(Pair("Theme", "dark \"night\""));
  EXPECT_CALL(handler_, GetHostConfiguration(&instance_, &service_))
      .WillOnce(ReturnRef(configuration_));
  EXPECT_EQ(service_.InvokeMethod(&instance_, &service_, ""),
            R"({"Version": "_2014_07", "Settings": [{"Key": "AllowGoHome", "Value": "true"}, )"
            R"({"Key": "Theme", "Value": "dark \"night\""}]})");
}

TEST_F(HostConfigurationSvcTest, TheHandlerGetsTheCallersInstanceAndDescriptor) {
  HostConfigurationSvc other(&handler_);
  EXPECT_CALL(handler_, GetHostConfiguration(nullptr, &other)).WillOnce(ReturnRef(configuration_));
  EXPECT_EQ(service_.InvokeMethod(nullptr, &other, ""), kEmpty);
}

TEST_F(HostConfigurationSvcTest, ThePayloadIsNotRead) {
  EXPECT_CALL(handler_, GetHostConfiguration(&instance_, &service_))
      .Times(2)
      .WillRepeatedly(ReturnRef(configuration_));
  EXPECT_EQ(service_.InvokeMethod(&instance_, &service_, "not json at all"), kEmpty);
  EXPECT_EQ(
      service_.InvokeMethod(&instance_, &service_, R"({"Settings": [{"Key": "a", "Value": "b"}]})"),
      kEmpty);
}

TEST_F(HostConfigurationSvcTest, TheHandlerIsAskedOnEveryCall) {
  EXPECT_CALL(handler_, GetHostConfiguration(&instance_, &service_))
      .Times(2)
      .WillRepeatedly(ReturnRef(configuration_));
  EXPECT_EQ(service_.InvokeMethod(&instance_, &service_, ""), kEmpty);
  configuration_.Settings.push_back(Pair("HostType", "Kiosk"));
  EXPECT_EQ(service_.InvokeMethod(&instance_, &service_, ""),
            R"({"Version": "_2014_07", "Settings": [{"Key": "HostType", "Value": "Kiosk"}]})");
}

TEST_F(HostConfigurationSvcTest, AnExceptionOfTheHandlerPassesThrough) {
  EXPECT_CALL(handler_, GetHostConfiguration(&instance_, &service_))
      .WillOnce(Throw(std::out_of_range("no configuration")));
  try {
    service_.InvokeMethod(&instance_, &service_, "");
    FAIL() << "no exception";
  } catch (const std::exception& e) {
    EXPECT_EQ(typeid(e), typeid(std::out_of_range));
    EXPECT_EQ(std::string(e.what()), "no configuration");
  }
}

TEST_F(HostConfigurationSvcTest, WithoutHandlerEveryCallFailsWithALogicError) {
  HostConfigurationSvc unhandled(nullptr);
  try {
    unhandled.InvokeMethod(&instance_, &unhandled, "");
    FAIL() << "no exception";
  } catch (const std::exception& e) {
    EXPECT_EQ(typeid(e), typeid(std::logic_error));
    EXPECT_EQ(std::string(e.what()), "No handler for the host configuration service");
  }
}

TEST_F(HostConfigurationSvcTest, AnEventIsIgnored) {
  // Strict mocks: neither the handler nor the instance may be called.
  service_.InvokeEvent(&instance_, &service_, R"({"Version": "_2014_07"})");
}

// ---- End to end: a host control instance on a scripted page ------------------

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

// A fresh host manager, a scripted page, a host control instance on it and the
// API through which the page's script calls the host. Services registered
// with the manager are deleted at the end of each test.
class HostConfigurationSvcEndToEndTest : public ::testing::Test {
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

constexpr char kHostConfiguration0207[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.core.HostConfiguration.host", )"
    R"("SvcVersion": "_2014_07"})";

class SettingsHandler : public IHandleHostConfigurationSvc {
 public:
  const HostConfigurationResponseMsg& GetHostConfiguration(IHostControlInstance* instance,
                                                           IHostServiceDescriptor*) override {
    instances.push_back(instance);
    return configuration;
  }

  HostConfigurationResponseMsg configuration;
  std::vector<IHostControlInstance*> instances;
};

TEST_F(HostConfigurationSvcEndToEndTest, ThePageReceivesTheSettings) {
  SettingsHandler handler;
  handler.configuration.Settings.push_back(Pair("Theme", "dark"));
  manager_->RegisterService(new HostConfigurationSvc(&handler));
  EXPECT_EQ(api_->tavoHostMethod(kHostConfiguration0207, "{}"),
            R"({"Version": "_2014_07", "Settings": [{"Key": "Theme", "Value": "dark"}]})");
  ASSERT_EQ(handler.instances.size(), 1u);
  EXPECT_EQ(handler.instances[0], instance_.get());
}

TEST_F(HostConfigurationSvcEndToEndTest, BothVersionsAreServedSideBySide) {
  SettingsHandler handler;
  manager_->RegisterService(new HostConfigurationSvc(&handler));
  EXPECT_EQ(api_->tavoHostMethod(kHostConfiguration0207, ""),
            R"({"Version": "_2014_07", "Settings": []})");
  EXPECT_EQ(api_->tavoHostMethod(
                R"({"FQN": "tavo.wevlin.infrastructure.services.core.HostConfiguration.host", )"
                R"("SvcVersion": "_2014_02"})",
                ""),
            R"({"Exception": {"name": "std::invalid_argument", "message": "No matching service )"
            R"(descriptor found for: tavo.wevlin.infrastructure.services.core.HostConfiguration)"
            R"(.host ver: _2014_02"}})");
}

}  // namespace
