#ifndef WEVLIN_WEBCONTROLS_INTERNAL_BRIDGESHIMSCRIPT_H_
#define WEVLIN_WEBCONTROLS_INTERNAL_BRIDGESHIMSCRIPT_H_

#include <string_view>

namespace Com::Velmora::TAVO::Wevlin::WebControls::internal {

// Returns the text of bridge-shim.js, the page half of the bridge: a function
// expression that takes the control's transport and the page-side policy and
// defines globalThis.wevlinHost in a document that may reach the host.
// Defined by a source file that the build generates from the script.
std::string_view BridgeShimScript();

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::internal

#endif  // WEVLIN_WEBCONTROLS_INTERNAL_BRIDGESHIMSCRIPT_H_
