#ifndef WEVLIN_TESTS_SUPPORT_STANDARDSERVICEHANDLERS_H_
#define WEVLIN_TESTS_SUPPORT_STANDARDSERVICEHANDLERS_H_

#include <cstddef>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/services/core/_2014_02/IHandleHostConfigurationSvc.h"
#include "wevlin/infrastructure/services/core/_2014_07/IHandleClientStatusSvc.h"
#include "wevlin/infrastructure/services/core/_2014_07/IHandleHostConfigurationSvc.h"
#include "wevlin/infrastructure/services/logging/_2014_02/LoggerForwardSvc.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/IHandleRefreshSvc.h"
#include "wevlin/infrastructure/services/session/_2014_07/IHandleSessionSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleAsyncSoaJsonServiceRequest.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleHostSessionInfoSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleRequestHostAuthSvc.h"

namespace wevlin_test {

// The handlers of every standard host service, for tests and fuzz harnesses
// that put a page in front of all of them: the configuration and session
// info handlers answer with the messages kept here (empty until the caller
// fills them in), the others record what reaches them, and the asynchronous
// SOA and host-authentication requests stay pending until the caller answers
// them.
//
// Answer every pending request while the host control instance lives (see
// AnswerAll): each request's record is freed by its callback. The services
// that RegisterStandardServices registers keep pointers to this object, so it
// must outlive them. Needs no test framework. Use it on one thread.
class StandardServiceHandlers final : public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::
                                          Core::_2014_02::IHandleHostConfigurationSvc,
                                      public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::
                                          Core::_2014_07::IHandleClientStatusSvc,
                                      public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::
                                          Soa::_2014_02::IHandleAsyncSoaJsonServiceRequest,
                                      public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::
                                          Soa::_2014_02::IHandleHostSessionInfoSvc,
                                      public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::
                                          Soa::_2014_02::IHandleRequestHostAuthSvc,
                                      public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::
                                          Session::_2014_07::IHandleSessionSvc,
                                      public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::
                                          Refresh::_2014_07::IHandleRefreshSvc {
 public:
  // The "_2014_07" configuration handler has the same operation as the
  // "_2014_02" one with another message type, so it is an object of its own.
  struct Configuration07 final : Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::
                                     _2014_07::IHandleHostConfigurationSvc {
    const Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::
        HostConfigurationResponseMsg&
        GetHostConfiguration(
            Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance* instance,
            Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor* descriptor)
            override;
    Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::
        HostConfigurationResponseMsg message;
  };

  // One pending asynchronous SOA request, as the service handed it over.
  struct SoaRequest {
    std::string serviceName;
    std::string operationName;
    std::string message;
    void* context;
    Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::SoaResponseCallback
        callback;
  };

  // One pending host-authentication request.
  using AuthRequest = std::pair<
      void*,
      Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::RequestHostAuthCallback>;

  // Registers with `manager`, in this order, host configuration "_2014_02"
  // and "_2014_07", startup notification, client status, asynchronous SOA
  // messages, host session info, host authentication requests, session,
  // refresh and log forwarding to `forward`, each with this object as its
  // handler. The manager owns the services. Precondition: `forward` is not
  // null.
  void RegisterStandardServices(
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostManager* manager,
      Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02::LoggerForwardSvc::
          ForwardFunction forward);

  // Answer the oldest pending request through its callback. Return false
  // when none is pending.
  bool AnswerOldestSoa(
      const std::string& answer,
      const Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo& error);
  bool AnswerOldestAuth(
      bool authenticated,
      const Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo& error);

  // Answers every pending request, oldest first: SOA requests with an empty
  // answer, authentication requests with false, all without an error.
  void AnswerAll();

  // The handler operations.
  const Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::
      HostConfigurationResponseMsg&
      GetHostConfiguration(
          Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance* instance,
          Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor* descriptor)
          override;
  void OnClientStatus(
      const Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::ClientStatusMsg&
          status) override;
  void OnSoaJsonRequest(
      std::string serviceName, std::string operationName, std::string message, void* context,
      Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::SoaResponseCallback
          callback) override;
  const Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
      HostSessionInfoResponseMsg&
      GetHostSessionInfo(
          Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance* instance,
          Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor* descriptor)
          override;
  void OnRequestHostAuth(
      void* context,
      Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::RequestHostAuthCallback
          callback) override;
  void OnSession(
      const Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07::SessionMsg&
          session) override;
  void OnRefresh(
      const Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::RefreshMsg&
          refresh) override;

  // The answers of the configuration and session info handlers.
  Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::HostConfigurationResponseMsg
      configuration02;
  Configuration07 configuration07;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::HostSessionInfoResponseMsg
      sessionInfo;

  // What reached the handlers, in order: each client status's State, the
  // pending requests, and the number of objects of each session (its
  // SessionObjects) and refresh (its CreatedObjects).
  std::vector<std::string> statuses;
  std::deque<SoaRequest> soaRequests;
  std::deque<AuthRequest> authRequests;
  std::vector<std::size_t> sessions;
  std::vector<std::size_t> refreshes;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_STANDARDSERVICEHANDLERS_H_
