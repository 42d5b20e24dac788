#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthSvc.h"

#include <map>
#include <memory>
#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"
#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthRequestMessage.h"
#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthResponseMsg.h"
#include "wevlin/infrastructure/services/soa/_2014_02/internal/AsyncRequestReader.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {
namespace {

using Context = std::map<std::string, void*>;

constexpr char kDescriptorKey[] = "descriptor";
constexpr char kResponseKey[] = "responseMsg";
constexpr char kInstanceKey[] = "hostInstance";
constexpr char kSendFailedLine[] = "RequestHostAuthSvc::ReplyCallback - Error sending async reply";

// Returns the entry `key` of `context`, or null.
void* Entry(const Context& context, const char* key) {
  auto found = context.find(key);
  return found == context.end() ? nullptr : found->second;
}

}  // namespace

RequestHostAuthSvc::RequestHostAuthSvc(IHandleRequestHostAuthSvc* handler)
    : BaseHostingService(ServiceNames::kRequestHostAuthHost, ServiceVersions::k2014_02),
      handler_(handler) {}

RequestHostAuthSvc::RequestHostAuthSvc(const RequestHostAuthSvc& other) = default;

RequestHostAuthSvc& RequestHostAuthSvc::operator=(const RequestHostAuthSvc& other) = default;

RequestHostAuthSvc::~RequestHostAuthSvc() = default;

void RequestHostAuthSvc::DoInvokeEvent(Interop::IHostControlInstance* instance,
                                       Interop::IHostServiceDescriptor* /*descriptor*/,
                                       std::string payload) {
  RequestHostAuthRequestMessage request;
  std::unique_ptr<Interop::WebSideServiceDescriptor> replyTarget =
      internal::ReadAsyncRequest(payload, request);
  // The request's cache identifier is deliberately not copied: the reply's
  // "CacheId" stays empty.
  auto response = std::make_unique<RequestHostAuthResponseMsg>();
  auto context = std::make_unique<Context>();
  context->emplace(kDescriptorKey, replyTarget.get());
  context->emplace(kResponseKey, response.get());
  context->emplace(kInstanceKey, instance);
  // From here on the three belong to the handler until the callback frees them.
  static_cast<void>(replyTarget.release());
  static_cast<void>(response.release());
  handler_->OnRequestHostAuth(context.release(), &RequestHostAuthSvc::ReplyCallback);
}

void RequestHostAuthSvc::ReplyCallback(void* context, bool isAuthenticated,
                                       const Interop::ExceptionInfo& error) {
  if (context == nullptr) return;
  // All three are freed when this function returns, whichever way it does.
  std::unique_ptr<Context> entries(static_cast<Context*>(context));
  std::unique_ptr<Interop::WebSideServiceDescriptor> replyTarget(
      static_cast<Interop::WebSideServiceDescriptor*>(Entry(*entries, kDescriptorKey)));
  std::unique_ptr<RequestHostAuthResponseMsg> response(
      static_cast<RequestHostAuthResponseMsg*>(Entry(*entries, kResponseKey)));
  auto* instance = static_cast<Interop::IHostControlInstance*>(Entry(*entries, kInstanceKey));
  try {
    if (response == nullptr || replyTarget == nullptr || instance == nullptr) {
      throw std::runtime_error("incomplete reply context");
    }
    response->IsAuthenticated = isAuthenticated;
    if (error.HasError()) response->Exception = error;
    instance->InvokeWebEvent(replyTarget.get(), response->ToJsonString());
  } catch (...) {
    // Nothing may reach the application's thread: the web control's script
    // failure is not a std::exception, so everything is caught here.
    Base::internal::WriteLogLine(kSendFailedLine);
  }
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02
