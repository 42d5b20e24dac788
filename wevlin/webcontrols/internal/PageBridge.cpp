#include "wevlin/webcontrols/internal/PageBridge.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/Base64.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"
#include "wevlin/webcontrols/internal/BridgeShimScript.h"
#include "wevlin/webcontrols/internal/CallReader.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::internal {

namespace {

using Infrastructure::Base::internal::WriteLogLine;
using Infrastructure::Interop::HostAPI;
using Json = nlohmann::json;

// Calls that the page has posted and the host has not answered yet, at most;
// the shim keeps further calls in the page until answers arrive, so that a
// flood of calls costs the page's memory and not the host's.
constexpr int kMaxCallsInFlight = 64;

// The five functions the page may call, with the number of texts each takes.
struct HostFunction {
  const char* name;
  std::size_t arity;
  std::string (*invoke)(HostAPI& api, std::vector<std::string>& args);
};

const HostFunction kHostFunctions[] = {
    {"tavoHostMethod", 2,
     [](HostAPI& api, std::vector<std::string>& args) {
       return api.tavoHostMethod(std::move(args[0]), std::move(args[1]));
     }},
    {"tavoHostEvent", 2,
     [](HostAPI& api, std::vector<std::string>& args) {
       return api.tavoHostEvent(std::move(args[0]), std::move(args[1]));
     }},
    {"tavoHostPing", 0,
     [](HostAPI& api, std::vector<std::string>& /*args*/) { return api.tavoHostPing(); }},
    {"tavoHost_WebSideServiceListUpdate", 2,
     [](HostAPI& api, std::vector<std::string>& args) {
       return api.tavoHost_WebSideServiceListUpdate(std::move(args[0]), std::move(args[1]));
     }},
    {"tavoHost_WebSideStartHandShake", 0,
     [](HostAPI& api, std::vector<std::string>& /*args*/) {
       return api.tavoHost_WebSideStartHandShake();
     }},
};

const HostFunction* FindHostFunction(const std::string& name, std::size_t arity) {
  for (const HostFunction& function : kHostFunctions) {
    if (name == function.name && arity == function.arity) return &function;
  }
  return nullptr;
}

std::string TooLarge(const char* what, std::size_t bytes, std::size_t limit) {
  return std::string("The ") + what + " takes " + std::to_string(bytes) +
         " bytes, more than the limit of " + std::to_string(limit);
}

// Sets a pointer for the time of one scope, and puts the old one back.
class CurrentCallerScope {
 public:
  CurrentCallerScope(const PageCaller*& slot, const PageCaller* caller)
      : slot_(&slot), previous_(std::exchange(slot, caller)) {}
  ~CurrentCallerScope() { *slot_ = previous_; }
  CurrentCallerScope(const CurrentCallerScope&) = delete;
  CurrentCallerScope& operator=(const CurrentCallerScope&) = delete;

 private:
  const PageCaller** slot_;
  const PageCaller* previous_;
};

}  // namespace

PageBridge::PageBridge(std::string controlName) : controlName_(std::move(controlName)) {}

void PageBridge::SetHostAPI(HostAPI* hostApi) { hostApi_ = hostApi; }

HostAPI* PageBridge::GetHostAPI() const { return hostApi_; }

void PageBridge::SetPolicy(BridgePolicy policy) { policy_ = std::move(policy); }

const BridgePolicy& PageBridge::GetPolicy() const { return policy_; }

void PageBridge::SetNavigatedUrl(const std::string& url) {
  navigatedUrl_ = url;
  navigatedOrigin_ = BridgePolicy::OriginOf(url);
  navigated_ = true;
}

const std::string& PageBridge::NavigatedOrigin() const { return navigatedOrigin_; }

bool PageBridge::HasNavigated() const { return navigated_; }

void PageBridge::SetMaxCallBytes(std::size_t bytes) { maxCallBytes_ = bytes == 0 ? 1 : bytes; }

std::size_t PageBridge::GetMaxCallBytes() const { return maxCallBytes_; }

bool PageBridge::Allows(const PageCaller& caller) const {
  if (policy_.Allows(caller.origin, caller.topFrame, navigatedOrigin_)) return true;
  // The host chose this very document, though its origin is opaque (data:).
  return navigated_ && caller.topFrame && navigatedOrigin_ == BridgePolicy::kOpaqueOrigin &&
         caller.origin == BridgePolicy::kOpaqueOrigin && caller.url == navigatedUrl_;
}

std::string PageBridge::ScriptRefusal(const PageCaller& top) const {
  if (!navigated_ || Allows(top)) return {};
  return "The page's origin " + top.origin + " is not allowed to talk to the host";
}

bool PageBridge::ReadCall(std::string message, Call& call) {
  const bool read = CallReader::Read(message, call.id, call.function, call.args);
  std::string().swap(message);
  return read;
}

void PageBridge::Log(const std::string& text) const { WriteLogLine(controlName_ + ": " + text); }

PageBridge::Answer PageBridge::Refuse(std::int64_t id, const std::string& function,
                                      const PageCaller& caller, const std::string& why) const {
  Log("refused " + function + " from " + caller.origin + " (" + caller.url + ")");
  return Answer{id, true,
                Infrastructure::Interop::JsonSerializationHelper::GetJsonForException(
                    std::runtime_error(why))};
}

PageBridge::Answer PageBridge::Serve(Call call, const PageCaller& caller) {
  // Whoever the browser says called comes first: a document that may not
  // reach the host learns nothing more than that.
  if (!Allows(caller)) {
    const bool frameOfAllowedOrigin =
        !caller.topFrame &&
        BridgePolicy(policy_).AllowSubframes().Allows(caller.origin, false, navigatedOrigin_);
    return Refuse(call.id, call.function, caller,
                  frameOfAllowedOrigin ? "The host does not serve frames (" + caller.origin + ")"
                                       : "The host does not serve " + caller.origin);
  }
  std::size_t bytes = 0;
  for (const std::string& arg : call.args) bytes += arg.size();
  if (bytes > maxCallBytes_) {
    Log("refused " + call.function + " of " + std::to_string(bytes) + " bytes from " +
        caller.origin);
    return Answer{call.id, true,
                  Infrastructure::Interop::JsonSerializationHelper::GetJsonForException(
                      std::length_error(TooLarge("call", bytes, maxCallBytes_)))};
  }
  if (hostApi_ == nullptr) return Answer{call.id, false, "No HostAPI is set on the web control"};

  const HostFunction* function = FindHostFunction(call.function, call.args.size());
  Answer answer{call.id, true, std::string()};
  std::string failure;
  try {
    if (function == nullptr) {
      failure = "No host function " + call.function + " taking " +
                std::to_string(call.args.size()) + " arguments";
    } else {
      const CurrentCallerScope scope(current_, &caller);
      answer.text = function->invoke(*hostApi_, call.args);
    }
  } catch (const std::exception& error) {
    failure = error.what();
  } catch (const Infrastructure::Interop::IWebControl::ScriptException& error) {
    failure = error.message;
  } catch (...) {
    failure = "unknown exception";
  }
  if (!failure.empty()) {
    Log("the page's call of " + call.function + " failed: " + failure);
    return Answer{call.id, false, failure};
  }
  if (answer.text.size() > maxCallBytes_) {
    Log("refused the answer to " + call.function + ": " + std::to_string(answer.text.size()) +
        " bytes");
    answer.text = Infrastructure::Interop::JsonSerializationHelper::GetJsonForException(
        std::length_error(TooLarge("answer", answer.text.size(), maxCallBytes_)));
  }
  return answer;
}

const PageCaller* PageBridge::CurrentCaller() const { return current_; }

namespace {

// The parts of a reply's Runtime.evaluate parameters around the answer's
// Base64 encoding (which needs no escape inside a JSON string).
struct ReplyParamsFrame {
  std::string head;
  std::string tail;
};

ReplyParamsFrame FrameReplyParams(const std::string& replyFunction,
                                  const PageBridge::Answer& answer, std::int64_t contextId) {
  ReplyParamsFrame frame;
  frame.head = R"({"expression":"globalThis.)" + replyFunction + "(" + std::to_string(answer.id) +
               (answer.ok ? R"(, true, \")" : R"(, false, \")");
  frame.tail = R"x(\")")x";
  if (contextId != 0) frame.tail += R"(,"contextId":)" + std::to_string(contextId);
  frame.tail += "}";
  return frame;
}

std::size_t EncodedSize(std::size_t bytes) { return (bytes + 2) / 3 * 4; }

}  // namespace

std::size_t PageBridge::WriteReplyEvaluateParams(const std::string& replyFunction,
                                                 const Answer& answer, std::int64_t contextId,
                                                 const std::function<void(std::string_view)>& put) {
  const ReplyParamsFrame frame = FrameReplyParams(replyFunction, answer, contextId);
  put(frame.head);
  // Pieces of a multiple of 3 bytes encode to exactly the pieces of the
  // whole text's encoding.
  constexpr std::size_t kPieceBytes = std::size_t{3} * 16 * 1024;
  std::string piece;
  std::string encoded;
  for (std::size_t at = 0; at < answer.text.size(); at += kPieceBytes) {
    piece.assign(answer.text, at, kPieceBytes);
    Infrastructure::Interop::Base64::EncodeString(piece, encoded);
    put(encoded);
  }
  put(frame.tail);
  return frame.head.size() + EncodedSize(answer.text.size()) + frame.tail.size();
}

std::size_t PageBridge::ReplyEvaluateParamsSize(const std::string& replyFunction,
                                                const Answer& answer, std::int64_t contextId) {
  const ReplyParamsFrame frame = FrameReplyParams(replyFunction, answer, contextId);
  return frame.head.size() + EncodedSize(answer.text.size()) + frame.tail.size();
}

std::string PageBridge::ShimSource(const std::string& transportExpression) const {
  Json config = Json::object();
  config["topOnly"] = !policy_.AllowsSubframes();
  if (policy_.AllowsAnyOrigin()) {
    config["origins"] = nullptr;
  } else {
    Json origins = Json::array();
    if (navigated_ && navigatedOrigin_ != BridgePolicy::kOpaqueOrigin) {
      origins.push_back(navigatedOrigin_);
    }
    for (const std::string& origin : policy_.AllowedOrigins()) origins.push_back(origin);
    config["origins"] = origins;
  }
  // A document of an opaque origin that the host navigated to itself.
  Json urls = Json::array();
  if (navigated_ && navigatedOrigin_ == BridgePolicy::kOpaqueOrigin) urls.push_back(navigatedUrl_);
  config["urls"] = urls;
  config["maxCallBytes"] = maxCallBytes_;
  config["maxCallsInFlight"] = kMaxCallsInFlight;
  return "(() => {\nconst install = " + std::string(BridgeShimScript()) + "\ninstall(" +
         transportExpression + ", " + config.dump() + ");\n})();\n";
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::internal
