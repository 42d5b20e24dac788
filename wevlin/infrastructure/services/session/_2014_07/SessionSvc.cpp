#include "wevlin/infrastructure/services/session/_2014_07/SessionSvc.h"

#include <exception>
#include <string>

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07 {
namespace {

// Reads `payload` into `session`. A payload that fails to parse, by the
// contract's result or by an exception, gives false: the page's text must
// never make the event fail.
bool Parse(SessionMsg& session, const std::string& payload) {
  try {
    return session.FromJsonString(payload);
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace

SessionSvc::SessionSvc(IHandleSessionSvc* handler)
    : BaseHostingService(ServiceNames::kSessionHost, ServiceVersions::k2014_07),
      handler_(handler) {}

SessionSvc::~SessionSvc() = default;

void SessionSvc::DoInvokeEvent(Interop::IHostControlInstance* /*instance*/,
                               Interop::IHostServiceDescriptor* /*descriptor*/,
                               std::string payload) {
  SessionMsg session;
  if (handler_ == nullptr) return;
  if (!Parse(session, payload)) return;
  handler_->OnSession(session);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07
