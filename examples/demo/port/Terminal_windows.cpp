#include <io.h>
#include <stdio.h>

#include "Terminal.h"

namespace wevlin_demo {

// A console counts as a terminal; a redirected output (a file or a pipe)
// does not.
bool StandardOutputIsTerminal() { return _isatty(_fileno(stdout)) != 0; }

}  // namespace wevlin_demo
