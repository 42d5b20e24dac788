#ifndef WEVLIN_BENCH_SUPPORT_NUMBERNORMALIZER_H_
#define WEVLIN_BENCH_SUPPORT_NUMBERNORMALIZER_H_

#include <string>

namespace wevlin_bench {

// Rewrites the numbers of a standard JSON text so that wevlin's reader takes
// them with the same meaning as any other JSON library: an integer outside
// the 32-bit range gets ".0" (wevlin reads numbers without a point as 32-bit
// integers), and a number with an exponent is written out as a plain decimal
// with a point ("1.5e-3" gives "0.0015", "2E+2" gives "200.0"). The rewrite is
// done on the digits, so the value is exactly the same; everything else of
// the text (strings, blanks, layout) is copied unchanged.
//
// Every benchmark library then reads the same normalized bytes. Stateless;
// any thread.
class NumberNormalizer {
 public:
  NumberNormalizer() = delete;

  // Returns `json` with its numbers rewritten as described above. `json` is
  // expected to be valid JSON; text that is not is copied as it is.
  static std::string Normalize(const std::string& json);
};

}  // namespace wevlin_bench

#endif  // WEVLIN_BENCH_SUPPORT_NUMBERNORMALIZER_H_
