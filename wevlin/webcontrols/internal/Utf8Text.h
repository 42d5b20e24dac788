#ifndef WEVLIN_WEBCONTROLS_INTERNAL_UTF8TEXT_H_
#define WEVLIN_WEBCONTROLS_INTERNAL_UTF8TEXT_H_

#include <string>
#include <string_view>

namespace Com::Velmora::TAVO::Wevlin::WebControls::internal {

// Returns `text` with every ill-formed UTF-8 sequence replaced by U+FFFD
// (EF BF BD), one replacement per maximal subpart, the way a browser's UTF-8
// decoder does: a lead byte whose continuation is missing or wrong gives one
// U+FFFD and decoding resumes at the offending byte. Overlong forms,
// surrogates (ED A0..BF) and values above U+10FFFF are ill-formed. Valid text
// comes back unchanged. Stateless; any thread.
std::string ToValidUtf8(std::string_view text);

// Returns true when `text` is well-formed UTF-8.
bool IsValidUtf8(std::string_view text);

// Returns the JSON text `json` with every \uXXXX escape of a surrogate that
// is not part of a high-low pair replaced by \ufffd. The browser writes a
// page's lone surrogates this way, and a strict JSON reader refuses them.
// Escaped backslashes are honoured; everything else is copied unchanged.
std::string RepairSurrogateEscapes(std::string_view json);

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::internal

#endif  // WEVLIN_WEBCONTROLS_INTERNAL_UTF8TEXT_H_
