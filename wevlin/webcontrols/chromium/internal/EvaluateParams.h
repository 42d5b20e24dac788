#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVALUATEPARAMS_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVALUATEPARAMS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

// The params object of a Runtime.evaluate that runs a script of the host:
//   {"expression":<script>,"objectGroup":<group>,"returnByValue":true,
//    "awaitPromise":false,"contextId":<id>}
// ("contextId" only when it is not 0). The script is escaped as a JSON string
// straight into the pieces Write hands out, so that a big script is never
// held a second time, escaped, on its way to the pipe.
//
// Holds a view of the script, which must outlive it, and a copy of the rest.
// Immutable; any thread.
class EvaluateParams {
 public:
  // REQUIRES: `script` and `objectGroup` are valid UTF-8.
  EvaluateParams(std::string_view script, std::string_view objectGroup, std::int64_t contextId);

  // Returns how many bytes Write hands out.
  std::size_t Size() const;

  // Hands the text out to `put` in pieces of at most about 64 KiB.
  void Write(const std::function<void(std::string_view)>& put) const;

  // Returns the whole text at once (for small scripts and tests).
  std::string Text() const;

 private:
  std::string_view script_;
  std::string tail_;  // ","objectGroup":...}
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVALUATEPARAMS_H_
