#ifndef WEVLIN_EXAMPLES_DEMO_TERMINAL_H_
#define WEVLIN_EXAMPLES_DEMO_TERMINAL_H_

namespace wevlin_demo {

// Returns true when the process's standard output is a terminal (and not a
// file or a pipe), so that the transcript may use colour. One implementation
// per platform, in port/.
bool StandardOutputIsTerminal();

}  // namespace wevlin_demo

#endif  // WEVLIN_EXAMPLES_DEMO_TERMINAL_H_
