#ifndef WEVLIN_WEBCONTROLS_INTERNAL_CALLREADER_H_
#define WEVLIN_WEBCONTROLS_INTERNAL_CALLREADER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Com::Velmora::TAVO::Wevlin::WebControls::internal {

// Reads the JSON text of one call of the page, {"id": 1, "fn": "...",
// "args": ["...", ...]}, straight into its parts: each argument is decoded
// once, into a string of its own, and nothing else of the text is kept, so a
// call as big as the size limit costs its text and its arguments, no more.
//
// Accepts any JSON object with an integer "id" (other members are skipped; of
// a repeated member the last counts). "fn" gives "" unless it is a string;
// "args" gives no arguments unless it is an array, whose elements that are
// not strings give "". Refuses (returns false) text that is not one JSON
// object, an object nested deeper than kMaxDepth, and an "id" that is not an
// integer of 64 bits.
//
// Stateless; any thread may call it.
class CallReader {
 public:
  // The deepest nesting of arrays and objects it reads.
  static constexpr std::size_t kMaxDepth = 512;

  // Reads `text` into `id`, `function` and `args`; returns false, leaving
  // them in an unspecified state, when it is not a call.
  static bool Read(std::string_view text, std::int64_t& id, std::string& function,
                   std::vector<std::string>& args);
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::internal

#endif  // WEVLIN_WEBCONTROLS_INTERNAL_CALLREADER_H_
