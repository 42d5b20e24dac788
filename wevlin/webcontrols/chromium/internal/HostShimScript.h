#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_HOSTSHIMSCRIPT_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_HOSTSHIMSCRIPT_H_

#include <string_view>

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

// Returns the text of host-shim.js, the script that defines
// globalThis.wevlinHost in every document of the control. The file is a
// function expression taking the binding's name and the reply function's
// name. Defined by a source file that the build generates from the script.
std::string_view HostShimScript();

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_HOSTSHIMSCRIPT_H_
