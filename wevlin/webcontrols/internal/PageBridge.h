#ifndef WEVLIN_WEBCONTROLS_INTERNAL_PAGEBRIDGE_H_
#define WEVLIN_WEBCONTROLS_INTERNAL_PAGEBRIDGE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/webcontrols/BridgePolicy.h"
#include "wevlin/webcontrols/PageCaller.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::internal {

// The control-neutral half of the page bridge, shared by every web control:
// the message format of the page's calls, the policy check, the table from
// the five host function names to the HostAPI, the one place where failures
// become answers, the size limit, and the script that settles a call in the
// page. A control supplies the transport: it hands each call message with
// the caller that its browser reported to Serve, and runs the reply
// expression in the calling document.
//
// One per control, owned by it. Not thread-safe: the control calls it on the
// application's thread, except where a method says otherwise.
class PageBridge {
 public:
  // One call of the page: {"id": 1, "fn": "tavoHostMethod", "args": [...]}.
  struct Call {
    std::int64_t id = 0;
    std::string function;
    std::vector<std::string> args;
  };

  // What settles a call in the page: the answer text when `ok`, else the
  // text of the Error with which the page's Promise is rejected.
  struct Answer {
    std::int64_t id = 0;
    bool ok = false;
    std::string text;
  };

  // The default limit of one call's texts, in each direction.
  static constexpr std::size_t kDefaultMaxCallBytes = std::size_t{16} * 1024 * 1024;

  // Creates a bridge whose log lines start with `controlName` and ": ".
  explicit PageBridge(std::string controlName);

  // Sets the HostAPI that serves the calls (null: none; calls are then
  // rejected). Not owned.
  void SetHostAPI(Infrastructure::Interop::HostAPI* hostApi);
  Infrastructure::Interop::HostAPI* GetHostAPI() const;

  // Sets who may reach the host.
  void SetPolicy(BridgePolicy policy);
  const BridgePolicy& GetPolicy() const;

  // Records the address the host navigated the control to, whose origin the
  // default policy allows. Until the first call the control's own blank page
  // is shown, and the host may run scripts there.
  void SetNavigatedUrl(const std::string& url);
  // Returns the navigated URL's origin ("" before the first navigation).
  const std::string& NavigatedOrigin() const;
  bool HasNavigated() const;

  // Sets the largest call or answer, in bytes of text (not below 1).
  void SetMaxCallBytes(std::size_t bytes);
  std::size_t GetMaxCallBytes() const;

  // Returns true when the policy lets the document `caller` reach the host.
  // A document of an opaque origin in the top frame is allowed when the host
  // navigated the control to exactly its URL.
  bool Allows(const PageCaller& caller) const;

  // Returns why the host must not run a script in the top document `top`, or
  // "" when it may. Safe to call from any thread while the policy and the
  // navigation do not change.
  std::string ScriptRefusal(const PageCaller& top) const;

  // Reads one call message, which it takes and frees as soon as it is read
  // (a call may be as big as the limit). Returns false for a message that is
  // not a call (it cannot be answered: there is no id to answer).
  static bool ReadCall(std::string message, Call& call);

  // Serves `call`, made by the document `caller`: refuses it with an
  // exception record when the policy does not allow the caller or the call is
  // too large (one log line each, no service entered), else calls the HostAPI
  // function it names. Never throws: every failure becomes an answer.
  Answer Serve(Call call, const PageCaller& caller);

  // Returns the document whose call Serve is serving on this bridge, or null
  // outside Serve.
  const PageCaller* CurrentCaller() const;

  // Writes the parameters of a DevTools Runtime.evaluate that settles
  // `answer` in the page, in the script context `contextId` (none when 0), to
  // `put` piece by piece, as JSON text: {"expression":
  // "globalThis.<replyFunction>(<id>, <ok>, \"<base64>\")", "contextId": N}.
  // The answer's UTF-8 bytes travel Base64-encoded, so no text of the host is
  // ever parsed as script, and are encoded as they are written, so that no
  // second copy of a big answer is ever held. Returns the number of bytes
  // written.
  static std::size_t WriteReplyEvaluateParams(const std::string& replyFunction,
                                              const Answer& answer, std::int64_t contextId,
                                              const std::function<void(std::string_view)>& put);

  // Returns the number of bytes WriteReplyEvaluateParams writes.
  static std::size_t ReplyEvaluateParamsSize(const std::string& replyFunction, const Answer& answer,
                                             std::int64_t contextId);

  // Returns the script that installs the page half of the bridge in a new
  // document: bridge-shim.js called with the control's transport (the
  // expression `transportExpression`) and the page-side part of the policy.
  std::string ShimSource(const std::string& transportExpression) const;

 private:
  void Log(const std::string& text) const;
  Answer Refuse(std::int64_t id, const std::string& function, const PageCaller& caller,
                const std::string& why) const;

  std::string controlName_;
  Infrastructure::Interop::HostAPI* hostApi_ = nullptr;
  BridgePolicy policy_;
  std::string navigatedUrl_;
  std::string navigatedOrigin_;
  bool navigated_ = false;
  std::size_t maxCallBytes_ = kDefaultMaxCallBytes;
  const PageCaller* current_ = nullptr;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::internal

#endif  // WEVLIN_WEBCONTROLS_INTERNAL_PAGEBRIDGE_H_
