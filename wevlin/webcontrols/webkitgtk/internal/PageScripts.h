#ifndef WEVLIN_WEBCONTROLS_WEBKITGTK_INTERNAL_PAGESCRIPTS_H_
#define WEVLIN_WEBCONTROLS_WEBKITGTK_INTERNAL_PAGESCRIPTS_H_

#include <string_view>

namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::internal {

// Returns webkit-transport.js, the bridge's transport in this control: a
// function expression of the handler's name and the control's key.
std::string_view WebKitTransportScript();

// Returns webkit-console.js, the console hook: a function expression of the
// console handler's name.
std::string_view WebKitConsoleScript();

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::internal

#endif  // WEVLIN_WEBCONTROLS_WEBKITGTK_INTERNAL_PAGESCRIPTS_H_
