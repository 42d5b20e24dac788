#include "HostHarness.h"

#include <deque>
#include <utility>

#include "support/HostCleanup.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/services/Pair.h"
#include "wevlin/infrastructure/services/core/_2014_02/HostConfigurationSvc.h"
#include "wevlin/infrastructure/services/core/_2014_02/StartupNotificationSvc.h"
#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusSvc.h"
#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationSvc.h"
#include "wevlin/infrastructure/services/logging/_2014_02/LoggerForwardSvc.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshSvc.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaJsonMessageSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/HostSessionInfoSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthSvc.h"

namespace wevlin_fuzz {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;
namespace core02 = services::Core::_2014_02;
namespace core07 = services::Core::_2014_07;
namespace logging02 = services::Logging::_2014_02;
namespace refresh07 = services::Refresh::_2014_07;
namespace session07 = services::Session::_2014_07;
namespace soa02 = services::Soa::_2014_02;

namespace {

interop::ExceptionInfo ErrorRecord(const std::string& name, const std::string& message) {
  interop::ExceptionInfo error;
  error.name = name;
  error.message = message;
  return error;
}

void ForwardNowhere(const logging02::LoggerEntryMsg& /*entry*/) {}

}  // namespace

// The handlers of the registered services. The configuration handlers answer
// with fixed messages; the others count or keep what they receive.
struct HostHarness::Handlers final : core02::IHandleHostConfigurationSvc,
                                     core07::IHandleClientStatusSvc,
                                     soa02::IHandleAsyncSoaJsonServiceRequest,
                                     soa02::IHandleHostSessionInfoSvc,
                                     soa02::IHandleRequestHostAuthSvc,
                                     session07::IHandleSessionSvc,
                                     refresh07::IHandleRefreshSvc {
  // The "_2014_07" configuration handler has the same operation as the
  // "_2014_02" one with another message type, so it is a member of its own.
  struct Configuration07 final : core07::IHandleHostConfigurationSvc {
    Configuration07() {
      message.Settings.emplace_back("Theme", "dark \"night\"");
      message.Settings.emplace_back("Locale", "en-GB");
    }
    const core07::HostConfigurationResponseMsg& GetHostConfiguration(
        interop::IHostControlInstance* /*instance*/,
        interop::IHostServiceDescriptor* /*descriptor*/) override {
      return message;
    }
    core07::HostConfigurationResponseMsg message;
  };

  Handlers() {
    configuration02.HostType = "fuzz";
    configuration02.Theme = "light";
    sessionInfo.IsSessionActive = true;
    sessionInfo.UserName = "user\\name";
  }

  const core02::HostConfigurationResponseMsg& GetHostConfiguration(
      interop::IHostControlInstance* /*instance*/,
      interop::IHostServiceDescriptor* /*descriptor*/) override {
    return configuration02;
  }
  void OnClientStatus(const core07::ClientStatusMsg& /*status*/) override { ++statuses; }
  void OnSoaJsonRequest(std::string /*serviceName*/, std::string /*operationName*/,
                        std::string /*message*/, void* context,
                        soa02::SoaResponseCallback callback) override {
    soaCalls.emplace_back(context, callback);
  }
  const soa02::HostSessionInfoResponseMsg& GetHostSessionInfo(
      interop::IHostControlInstance* /*instance*/,
      interop::IHostServiceDescriptor* /*descriptor*/) override {
    return sessionInfo;
  }
  void OnRequestHostAuth(void* context, soa02::RequestHostAuthCallback callback) override {
    authCalls.emplace_back(context, callback);
  }
  void OnSession(const session07::SessionMsg& /*session*/) override { ++sessions; }
  void OnRefresh(const refresh07::RefreshMsg& /*refresh*/) override { ++refreshes; }

  core02::HostConfigurationResponseMsg configuration02;
  Configuration07 configuration07;
  soa02::HostSessionInfoResponseMsg sessionInfo;
  int statuses = 0;
  int sessions = 0;
  int refreshes = 0;
  std::deque<std::pair<void*, soa02::SoaResponseCallback>> soaCalls;
  std::deque<std::pair<void*, soa02::RequestHostAuthCallback>> authCalls;
};

HostHarness::HostHarness() : handlers_(std::make_unique<Handlers>()) {
  previousManager_ = interop::internal::HostManagerTestPeer::InstallFresh();
  interop::HostManager* manager = interop::HostManager::TheInstance();
  Handlers& h = *handlers_;
  manager->RegisterService(new core02::HostConfigurationSvc(&h));
  manager->RegisterService(new core07::HostConfigurationSvc(&h.configuration07));
  manager->RegisterService(new core02::StartupNotificationSvc());
  manager->RegisterService(new core07::ClientStatusSvc(&h));
  manager->RegisterService(new soa02::AsyncSoaJsonMessageSvc(&h));
  manager->RegisterService(new soa02::HostSessionInfoSvc(&h));
  manager->RegisterService(new soa02::RequestHostAuthSvc(&h));
  manager->RegisterService(new session07::SessionSvc(&h));
  manager->RegisterService(new refresh07::RefreshSvc(&h));
  manager->RegisterService(new logging02::LoggerForwardSvc(&ForwardNowhere));
  instance_ = std::make_unique<interop::HostControlInstance>(&page_);
  api_ = std::make_unique<interop::HostAPI>(instance_.get());
}

HostHarness::~HostHarness() {
  while (AnswerSoa("", "", "")) {
  }
  while (AnswerAuth(false, "", "")) {
  }
  api_.reset();
  wevlin_test::DestroyHostControlInstance(instance_);
  wevlin_test::RestoreHostManager(previousManager_);
}

std::string HostHarness::Talk() {
  instance_->LaunchToTarget(&target_);
  page_.CompleteLoad();
  return api_->tavoHost_WebSideStartHandShake();
}

std::size_t HostHarness::PendingSoaCalls() const { return handlers_->soaCalls.size(); }

std::size_t HostHarness::PendingAuthCalls() const { return handlers_->authCalls.size(); }

bool HostHarness::AnswerSoa(const std::string& answer, const std::string& errorName,
                            const std::string& errorMessage) {
  if (handlers_->soaCalls.empty()) return false;
  const auto [context, callback] = handlers_->soaCalls.front();
  handlers_->soaCalls.pop_front();
  callback(context, answer, ErrorRecord(errorName, errorMessage));
  return true;
}

bool HostHarness::AnswerAuth(bool authenticated, const std::string& errorName,
                             const std::string& errorMessage) {
  if (handlers_->authCalls.empty()) return false;
  const auto [context, callback] = handlers_->authCalls.front();
  handlers_->authCalls.pop_front();
  callback(context, authenticated, ErrorRecord(errorName, errorMessage));
  return true;
}

}  // namespace wevlin_fuzz
