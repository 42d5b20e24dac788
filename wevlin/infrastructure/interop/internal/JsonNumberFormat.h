#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONNUMBERFORMAT_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONNUMBERFORMAT_H_

// Writing numbers as the JSON text format wants them, without printf and
// without looking at any locale: integers in plain decimal, doubles and
// floats in general notation with a given number of significant digits,
// exactly as "%.<precision>g" writes them in the C locale. Internal; any
// thread.
#include <string>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// Appends `value` in plain decimal ("-12") to `out`.
void AppendInt(std::string& out, int value);

// Writes the finite `value` with `precision` significant digits in general
// notation, as "%.<precision>g" does, into `out`, which has room for 32
// characters, and returns the end of the text. Seventeen digits (the
// precision of doubles in the text format) take a fast exact path for most
// values.
char* WriteGeneral(char* out, double value, int precision);

// Appends `value` as WriteGeneral writes it; infinity and NaN as the
// string stream writes them.
void AppendGeneral(std::string& out, double value, int precision);

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONNUMBERFORMAT_H_
