#ifndef WEVLIN_WEBCONTROLS_WEBKITGTK_WEBKITGTKERROR_H_
#define WEVLIN_WEBCONTROLS_WEBKITGTK_WEBKITGTKERROR_H_

#include <stdexcept>
#include <string>

#include "wevlin/webcontrols/webkitgtk/wevlin_webkitgtk_export.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk {

// The failure of the view behind a WebKitGtkWebControl, as opposed to a
// failure of a page's script (IWebControl::ScriptException): what() names the
// problem in one sentence, for example "The page's web process ended
// (crashed)". ExecuteScript never throws this type.
//
// A plain value; any thread may read it.
class WEVLIN_WEBKITGTK_EXPORT WebKitGtkError : public std::runtime_error {
 public:
  // Creates an error whose what() is `message`.
  explicit WebKitGtkError(const std::string& message);
  WebKitGtkError(const WebKitGtkError& other);
  WebKitGtkError& operator=(const WebKitGtkError& other);
  ~WebKitGtkError() override;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk

#endif  // WEVLIN_WEBCONTROLS_WEBKITGTK_WEBKITGTKERROR_H_
