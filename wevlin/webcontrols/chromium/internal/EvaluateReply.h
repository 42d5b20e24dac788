#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVALUATEREPLY_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVALUATEREPLY_H_

#include <string>

#include <nlohmann/json.hpp>

#include "wevlin/infrastructure/interop/IWebControl.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

// Reads the value a script produced from its DevTools description (a
// RemoteObject of Runtime.evaluate). For a value that is not an object, sets
// `*text` and returns true: a string as it is; undefined, null and symbols
// ""; booleans "true" or "false"; numbers as JavaScript writes them ("1.5",
// "1e+21", "NaN", "Infinity", "0" for minus zero); a BigInt its digits.
// Returns false for an object or function, whose JSON text must be asked
// of the page.
bool ReadPrimitiveResult(const nlohmann::json& remoteObject, std::string* text);

// Builds the exception that reports a failed script from the exceptionDetails
// of Runtime.evaluate. `message` is what was thrown: the description of an
// error ("ReferenceError: nope is not defined"), a thrown
// string as it is, another value's description (an error's stack is left
// out). `details` gives the place,
// lines and columns counted from 1: "line 2, column 5: <that line of
// `script`>" when the failure is in the script itself, "line 12, column 9 of
// <url>" when it is in a file of the page.
Infrastructure::Interop::IWebControl::ScriptException MakeScriptException(
    const nlohmann::json& exceptionDetails, const std::string& script);

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVALUATEREPLY_H_
