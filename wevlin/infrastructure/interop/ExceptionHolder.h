#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_EXCEPTIONHOLDER_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_EXCEPTIONHOLDER_H_

#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The exception record document that crosses the script boundary in place of
// a result: {"Exception": {"name": "...", "message": "..."}}. Receivers
// recognise it by its opening characters {"Exception. An empty record writes
// {"Exception": null}.
//
// A value type; not thread-safe.
class WEVLIN_EXPORT ExceptionHolder : public DataContract {
 public:
  ExceptionHolder();
  ExceptionHolder(const ExceptionHolder& other);
  ExceptionHolder& operator=(const ExceptionHolder& other);
  ~ExceptionHolder();

  ExceptionInfo Exception;  // JSON key "Exception"
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_EXCEPTIONHOLDER_H_
