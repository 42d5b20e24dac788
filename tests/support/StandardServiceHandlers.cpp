#include "support/StandardServiceHandlers.h"

#include "wevlin/infrastructure/services/core/_2014_02/HostConfigurationSvc.h"
#include "wevlin/infrastructure/services/core/_2014_02/StartupNotificationSvc.h"
#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusSvc.h"
#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationSvc.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshSvc.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaJsonMessageSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/HostSessionInfoSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthSvc.h"

namespace wevlin_test {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;
namespace core02 = services::Core::_2014_02;
namespace core07 = services::Core::_2014_07;
namespace logging02 = services::Logging::_2014_02;
namespace refresh07 = services::Refresh::_2014_07;
namespace session07 = services::Session::_2014_07;
namespace soa02 = services::Soa::_2014_02;

const core07::HostConfigurationResponseMsg&
StandardServiceHandlers::Configuration07::GetHostConfiguration(
    interop::IHostControlInstance* /*instance*/, interop::IHostServiceDescriptor* /*descriptor*/) {
  return message;
}

void StandardServiceHandlers::RegisterStandardServices(
    interop::HostManager* manager, logging02::LoggerForwardSvc::ForwardFunction forward) {
  manager->RegisterService(new core02::HostConfigurationSvc(this));
  manager->RegisterService(new core07::HostConfigurationSvc(&configuration07));
  manager->RegisterService(new core02::StartupNotificationSvc());
  manager->RegisterService(new core07::ClientStatusSvc(this));
  manager->RegisterService(new soa02::AsyncSoaJsonMessageSvc(this));
  manager->RegisterService(new soa02::HostSessionInfoSvc(this));
  manager->RegisterService(new soa02::RequestHostAuthSvc(this));
  manager->RegisterService(new session07::SessionSvc(this));
  manager->RegisterService(new refresh07::RefreshSvc(this));
  manager->RegisterService(new logging02::LoggerForwardSvc(forward));
}

bool StandardServiceHandlers::AnswerOldestSoa(const std::string& answer,
                                              const interop::ExceptionInfo& error) {
  if (soaRequests.empty()) return false;
  // Taken off the list first: the callback may lead to new requests.
  const SoaRequest request = soaRequests.front();
  soaRequests.pop_front();
  request.callback(request.context, answer, error);
  return true;
}

bool StandardServiceHandlers::AnswerOldestAuth(bool authenticated,
                                               const interop::ExceptionInfo& error) {
  if (authRequests.empty()) return false;
  const auto [context, callback] = authRequests.front();
  authRequests.pop_front();
  callback(context, authenticated, error);
  return true;
}

void StandardServiceHandlers::AnswerAll() {
  while (AnswerOldestSoa("", interop::ExceptionInfo())) {
  }
  while (AnswerOldestAuth(false, interop::ExceptionInfo())) {
  }
}

const core02::HostConfigurationResponseMsg& StandardServiceHandlers::GetHostConfiguration(
    interop::IHostControlInstance* /*instance*/, interop::IHostServiceDescriptor* /*descriptor*/) {
  return configuration02;
}

void StandardServiceHandlers::OnClientStatus(const core07::ClientStatusMsg& status) {
  statuses.push_back(status.State);
}

void StandardServiceHandlers::OnSoaJsonRequest(std::string serviceName, std::string operationName,
                                               std::string message, void* context,
                                               soa02::SoaResponseCallback callback) {
  soaRequests.push_back(SoaRequest{std::move(serviceName), std::move(operationName),
                                   std::move(message), context, callback});
}

const soa02::HostSessionInfoResponseMsg& StandardServiceHandlers::GetHostSessionInfo(
    interop::IHostControlInstance* /*instance*/, interop::IHostServiceDescriptor* /*descriptor*/) {
  return sessionInfo;
}

void StandardServiceHandlers::OnRequestHostAuth(void* context,
                                                soa02::RequestHostAuthCallback callback) {
  authRequests.emplace_back(context, callback);
}

void StandardServiceHandlers::OnSession(const session07::SessionMsg& session) {
  sessions.push_back(session.SessionObjects.size());
}

void StandardServiceHandlers::OnRefresh(const refresh07::RefreshMsg& refresh) {
  refreshes.push_back(refresh.CreatedObjects.size());
}

}  // namespace wevlin_test
