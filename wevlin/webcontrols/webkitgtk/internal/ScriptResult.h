#ifndef WEVLIN_WEBCONTROLS_WEBKITGTK_INTERNAL_SCRIPTRESULT_H_
#define WEVLIN_WEBCONTROLS_WEBKITGTK_INTERNAL_SCRIPTRESULT_H_

#include <string>

#include <glib.h>
#include <jsc/jsc.h>

#include "wevlin/infrastructure/interop/IWebControl.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::internal {

// Turning what webkit_web_view_evaluate_javascript gives back into what
// IWebControl::ExecuteScript returns or throws. Stateless free functions; any
// thread may call them with values it holds.

// Returns the text of a script's value: a string as it is; undefined or null
// as ""; a number or boolean as JavaScript writes it ("1.5", "1e+21", "NaN",
// "true"); an object or array as its JSON text.
std::string ScriptResultText(JSCValue* value);

// Returns true when `error` says that the script ran but its value cannot be
// copied out of the page (a function, a Promise, a symbol, a DOM node).
bool IsUncopyableValue(const GError* error);

// Returns the exception for a script that failed with `error`. A script that
// threw or did not parse gives what was thrown as the message and where as
// the details ("line 3, column 4 of http://127.0.0.1:8080/").
Infrastructure::Interop::IWebControl::ScriptException ScriptFailure(const GError* error);

// Splits WebKit's text of a thrown script, "<url>:<line>:<column>: <what>" or
// "<url>:<line>: <what>", into its message and details. A text without a
// location is the message as it is, with empty details.
Infrastructure::Interop::IWebControl::ScriptException SplitFailureText(const std::string& text);

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::internal

#endif  // WEVLIN_WEBCONTROLS_WEBKITGTK_INTERNAL_SCRIPTRESULT_H_
