#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaJsonMessageSvc.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"
#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaPendingCall.h"
#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonRequestMsg.h"
#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonResponseMsg.h"
#include "wevlin/infrastructure/services/soa/_2014_02/internal/AsyncRequestReader.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {
namespace {

constexpr char kSendFailedLine[] =
    "Services::AsyncSoaJsonMessageSvc::ExternalFacingCallback - Error sending async reply";

// Returns the JSON that a quoted answer carries: `answer` without its first
// character and without everything from its last double quote on (without a
// double quote, from the second character on); "null" when that leaves
// nothing.
std::string UnquotedAnswer(const std::string& answer) {
  if (answer.size() < 2) return "null";
  std::string::size_type end = answer.rfind('"');
  if (end == std::string::npos) end = answer.size();
  if (end <= 1) return "null";
  return answer.substr(1, end - 1);
}

// Appends `text` as the content of a JSON string: a double quote and a
// backslash are escaped with a backslash, the control characters below U+0020
// as \b, \t, \n, \f, \r or \u00XX. Everything else, "/" and non-ASCII bytes
// included, is copied as it is, so an identifier without quotes, backslashes
// or control characters is written unchanged.
void AppendJsonStringContent(const std::string& text, std::string& out) {
  static constexpr char kHex[] = "0123456789abcdef";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\b':
        out += "\\b";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\f':
        out += "\\f";
        break;
      case '\r':
        out += "\\r";
        break;
      default:
        if (byte < 0x20) {
          out += "\\u00";
          out += kHex[byte >> 4U];
          out += kHex[byte & 0x0FU];
        } else {
          out += c;
        }
    }
  }
}

// Writes the "_2015_10" reply by hand, so that the answer is embedded as raw
// JSON rather than as a string. The cache identifier comes from the page that
// made the request and is escaped as a JSON string: written raw, a quote or
// a backslash in it could end the string early, and the reply's text is
// itself embedded in a script line.
std::string RawReply(const std::string& cacheId, const std::string& answer) {
  std::string reply;
  reply.reserve(answer.size() + cacheId.size() + 70);
  reply += R"({"CacheId":")";
  AppendJsonStringContent(cacheId, reply);
  reply += R"(","SoaResponse":)";
  reply += UnquotedAnswer(answer);
  reply += R"(,"Version":")";
  reply += ServiceVersions::k2015_10;
  reply += "\"}";
  return reply;
}

std::string BuildReply(const AsyncSoaPendingCall& call, const std::string& answer,
                       const Interop::ExceptionInfo& error) {
  const std::string& requestVersion = call.GetRequest().GetVersion();
  if (error.HasError()) {
    SoaJsonResponseMsg response(requestVersion);
    response.CacheId = call.CacheId;
    response.Exception = error;
    return response.ToJsonString();
  }
  if (requestVersion == ServiceVersions::k2015_10) return RawReply(call.CacheId, answer);
  SoaJsonResponseMsg response(call.RequestWasVersion2014_02() ? ServiceVersions::k2014_02
                                                              : ServiceVersions::k2014_07);
  response.CacheId = call.CacheId;
  Interop::JsonSerializationHelper::EncodeEmbeddedJson(answer, response.SoaResponse);
  return response.ToJsonString();
}

}  // namespace

AsyncSoaJsonMessageSvc::AsyncSoaJsonMessageSvc(IHandleAsyncSoaJsonServiceRequest* handler)
    : BaseHostingService(ServiceNames::kAsyncSoaJsonMessageHost, ServiceVersions::k2014_02),
      handler_(handler) {}

AsyncSoaJsonMessageSvc::AsyncSoaJsonMessageSvc(const AsyncSoaJsonMessageSvc& other) = default;

AsyncSoaJsonMessageSvc& AsyncSoaJsonMessageSvc::operator=(const AsyncSoaJsonMessageSvc& other) =
    default;

AsyncSoaJsonMessageSvc::~AsyncSoaJsonMessageSvc() = default;

void AsyncSoaJsonMessageSvc::DoInvokeEvent(Interop::IHostControlInstance* instance,
                                           Interop::IHostServiceDescriptor* /*descriptor*/,
                                           std::string payload) {
  SoaJsonRequestMsg request;
  std::unique_ptr<Interop::WebSideServiceDescriptor> replyTarget =
      internal::ReadAsyncRequest(payload, request);
  auto call = std::make_unique<AsyncSoaPendingCall>(replyTarget.get(), instance, request);
  static_cast<void>(replyTarget.release());  // now owned by the record
  // From here on the record belongs to the handler until the callback frees it.
  AsyncSoaPendingCall* context = call.release();
  handler_->OnSoaJsonRequest(request.ServiceName, request.OperationName, request.Message, context,
                             &AsyncSoaJsonMessageSvc::ExternalFacingCallback);
}

void AsyncSoaJsonMessageSvc::ExternalFacingCallback(void* context, std::string soaResponse,
                                                    const Interop::ExceptionInfo& error) {
  if (context == nullptr) return;
  // Freed when this function returns, whichever way it does.
  std::unique_ptr<AsyncSoaPendingCall> call(static_cast<AsyncSoaPendingCall*>(context));
  try {
    const std::string reply = BuildReply(*call, soaResponse, error);
    Interop::IHostControlInstance* instance = call->GetHostControlInstance();
    if (instance == nullptr) throw std::runtime_error("no control instance");
    instance->InvokeWebEvent(call->GetReplyDescriptor(), reply);
  } catch (...) {
    // Nothing may reach the application's thread: the web control's script
    // failure is not a std::exception, so everything is caught here.
    Base::internal::WriteLogLine(kSendFailedLine);
  }
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02
