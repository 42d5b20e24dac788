#include "HostHarness.h"

#include <utility>

#include "support/HostCleanup.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/services/logging/_2014_02/LoggerForwardSvc.h"

namespace wevlin_fuzz {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;
namespace logging02 = services::Logging::_2014_02;

namespace {

interop::ExceptionInfo ErrorRecord(const std::string& name, const std::string& message) {
  interop::ExceptionInfo error;
  error.name = name;
  error.message = message;
  return error;
}

void ForwardNowhere(const logging02::LoggerEntryMsg& /*entry*/) {}

}  // namespace

HostHarness::HostHarness() {
  // Answers with text that needs escaping, so that the replies exercise the
  // writer.
  handlers_.configuration02.HostType = "fuzz";
  handlers_.configuration02.Theme = "light";
  handlers_.configuration07.message.Settings.emplace_back("Theme", "dark \"night\"");
  handlers_.configuration07.message.Settings.emplace_back("Locale", "en-GB");
  handlers_.sessionInfo.IsSessionActive = true;
  handlers_.sessionInfo.UserName = "user\\name";
  previousManager_ = interop::internal::HostManagerTestPeer::InstallFresh();
  handlers_.RegisterStandardServices(interop::HostManager::TheInstance(), &ForwardNowhere);
  instance_ = std::make_unique<interop::HostControlInstance>(&page_);
  api_ = std::make_unique<interop::HostAPI>(instance_.get());
}

HostHarness::~HostHarness() {
  handlers_.AnswerAll();
  api_.reset();
  wevlin_test::DestroyHostControlInstance(instance_);
  wevlin_test::RestoreHostManager(previousManager_);
}

std::string HostHarness::Talk() {
  instance_->LaunchToTarget(&target_);
  page_.CompleteLoad();
  return api_->tavoHost_WebSideStartHandShake();
}

std::size_t HostHarness::PendingSoaCalls() const { return handlers_.soaRequests.size(); }

std::size_t HostHarness::PendingAuthCalls() const { return handlers_.authRequests.size(); }

bool HostHarness::AnswerSoa(const std::string& answer, const std::string& errorName,
                            const std::string& errorMessage) {
  return handlers_.AnswerOldestSoa(answer, ErrorRecord(errorName, errorMessage));
}

bool HostHarness::AnswerAuth(bool authenticated, const std::string& errorName,
                             const std::string& errorMessage) {
  return handlers_.AnswerOldestAuth(authenticated, ErrorRecord(errorName, errorMessage));
}

}  // namespace wevlin_fuzz
