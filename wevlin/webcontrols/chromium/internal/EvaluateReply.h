#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVALUATEREPLY_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVALUATEREPLY_H_

#include <string>

#include <nlohmann/json.hpp>

#include "wevlin/infrastructure/interop/IWebControl.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

// Reads the text of a value from its DevTools description (a RemoteObject),
// as Runtime.evaluate with "returnByValue" gives it. Sets `*text` and returns
// true: a string as it is; undefined, null, symbols and functions "";
// booleans "true" or "false"; numbers as JavaScript writes them ("1.5",
// "1e+21", "NaN", "Infinity", "0" for minus zero); a BigInt its digits; an
// object or array passed by value the JSON text of the copy the browser made,
// members in the order the browser wrote them and numbers as JavaScript
// writes them. Returns false for an object that is only a handle (an
// "objectId" and no value), whose text is then its description.
//
// The browser's copy is not JSON.stringify: toJSON is not called, so a Date,
// a Map or a Promise is {}, and a function inside an object is {}.
bool ReadResultText(const nlohmann::ordered_json& remoteObject, std::string* text);

// Reads like the overload above, and moves a string value out of
// `remoteObject` instead of copying it: a big string is never held twice.
bool ReadResultText(nlohmann::ordered_json&& remoteObject, std::string* text);

// Returns true when `errorText`, the error answer of Runtime.evaluate, says
// that the script ran but the browser could not copy its value: a cycle or
// nesting too deep, a symbol, or a BigInt inside an object.
bool IsUncopyableValueError(const std::string& errorText);

// Builds the exception that reports a failed script from the exceptionDetails
// of Runtime.evaluate. `message` is what was thrown: the description of an
// error ("ReferenceError: nope is not defined"), a thrown
// string as it is, another value's description (an error's stack is left
// out). `details` gives the place,
// lines and columns counted from 1: "line 2, column 5: <that line of
// `script`>" when the failure is in the script itself, "line 12, column 9 of
// <url>" when it is in a file of the page.
Infrastructure::Interop::IWebControl::ScriptException MakeScriptException(
    const nlohmann::ordered_json& exceptionDetails, const std::string& script);

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_EVALUATEREPLY_H_
