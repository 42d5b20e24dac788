#ifndef WEVLIN_WEVLIN_H_
#define WEVLIN_WEVLIN_H_

// The whole public interface of wevlin. Include this one header, or the
// individual headers it lists.

#include "wevlin/infrastructure/base/LogSink.h"

#endif  // WEVLIN_WEVLIN_H_
