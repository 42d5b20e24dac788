#ifndef WEVLIN_INFRASTRUCTURE_BASE_IEVENTSOURCE_H_
#define WEVLIN_INFRASTRUCTURE_BASE_IEVENTSOURCE_H_

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// Marks an object that raises events. Every event (see EventObject) names its
// source through this interface, so a listener that watches several sources
// can tell them apart by comparing pointers, or recover the concrete type with
// dynamic_cast.
//
// The interface has no operations; its only virtual member is the destructor,
// which makes a source deletable through this pointer and gives it run-time
// type information. It says nothing about ownership or threads: those are the
// implementing class's business.
class WEVLIN_EXPORT IEventSource {
 public:
  virtual ~IEventSource() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_IEVENTSOURCE_H_
