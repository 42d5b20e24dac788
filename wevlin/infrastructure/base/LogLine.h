#ifndef WEVLIN_INFRASTRUCTURE_BASE_LOGLINE_H_
#define WEVLIN_INFRASTRUCTURE_BASE_LOGLINE_H_

#include <string>

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base::internal {

// Writes one diagnostic line: to the sink set with SetLogSink, or else to
// standard output followed by a line end, flushing the stream. Every log line
// of the library goes through here. Safe to call from any thread.
//
// This is the library's own entry point. It is declared in a public header
// only because the library's class templates (such as ObservableList) write
// their diagnostics from code that is compiled into the application.
// Applications take the lines with SetLogSink and do not call this.
WEVLIN_EXPORT void WriteLogLine(const std::string& line);

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base::internal

#endif  // WEVLIN_INFRASTRUCTURE_BASE_LOGLINE_H_
