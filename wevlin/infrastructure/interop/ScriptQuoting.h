#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_SCRIPTQUOTING_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_SCRIPTQUOTING_H_

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// How a HostControlInstance writes each argument of a call into the page as a
// single-quoted script string, e.g. tavoInterop_WebMethod('...','...');
// Choose it with HostControlInstance::SetScriptQuoting; docs/script-quoting.md
// shows what each mode produces.
enum class ScriptQuoting : int {
  // The default. Puts a backslash before every single quote and changes
  // nothing else. The page's script engine then reads the argument as a
  // string literal: a backslash in the argument starts an escape (so "\n"
  // written as two characters arrives as a line feed), and a raw line feed,
  // carriage return or backslash right before a single quote breaks or ends
  // the literal. Pages written for this protocol expect exactly this.
  Compatible = 0,

  // Escapes everything that a script string literal would read otherwise:
  // backslash as \\, single quote as \', double quote as \", line feed as \n,
  // carriage return as \r, U+2028 and U+2029 (the UTF-8 bytes E2 80 A8 and
  // E2 80 A9) as \u2028 and \u2029, and every other control character
  // (0x00 to 0x1F and 0x7F) as \u00xx with two lower-case hexadecimal digits.
  // All other bytes are copied. For valid UTF-8 the page function then
  // receives exactly the host's text, NUL characters included.
  Strict = 1,
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_SCRIPTQUOTING_H_
