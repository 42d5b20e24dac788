#ifndef WEVLIN_INFRASTRUCTURE_BASE_LOGSINK_H_
#define WEVLIN_INFRASTRUCTURE_BASE_LOGSINK_H_

#include <functional>
#include <string>

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// Receives one diagnostic line of the library, without its line end.
//
// The library writes each diagnostic (for example "service list changed") as
// one line. By default the line goes to the process's standard output and the
// stream is flushed. An application that keeps its own log can take the lines
// instead by setting a sink.
//
// A sink may be called on any thread that runs library code: the application's
// thread, the system timer thread, or the thread that completes an
// asynchronous reply. Calls are serialised: the library never calls the sink
// from two threads at once. A sink must not throw; an exception it throws is
// dropped.
using LogSink = std::function<void(const std::string& line)>;

// Installs `sink` as the destination of every diagnostic line and returns the
// sink that was installed before (empty when standard output was in use).
// Passing an empty function restores standard output. Safe to call from any
// thread.
WEVLIN_EXPORT LogSink SetLogSink(LogSink sink);

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_LOGSINK_H_
