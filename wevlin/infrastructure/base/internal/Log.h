#ifndef WEVLIN_INFRASTRUCTURE_BASE_INTERNAL_LOG_H_
#define WEVLIN_INFRASTRUCTURE_BASE_INTERNAL_LOG_H_

// The library's diagnostic output, for the library's sources: WriteLogLine.
// The declaration lives in the public LogLine.h, because the public class
// templates need it too; this header stays so that library code keeps one
// include for logging.
#include "wevlin/infrastructure/base/LogLine.h"

#endif  // WEVLIN_INFRASTRUCTURE_BASE_INTERNAL_LOG_H_
