#include <unistd.h>

#include "Terminal.h"

namespace wevlin_demo {

bool StandardOutputIsTerminal() { return isatty(STDOUT_FILENO) == 1; }

}  // namespace wevlin_demo
