#ifndef WEVLIN_INFRASTRUCTURE_BASE_INOTIFYPROPERTYCHANGE_H_
#define WEVLIN_INFRASTRUCTURE_BASE_INOTIFYPROPERTYCHANGE_H_

#include "wevlin/infrastructure/base/IEventSource.h"
#include "wevlin/infrastructure/base/IPropertyChangeListener.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// An object whose named properties can be watched: listeners registered here
// are told the name of every property that changes (see
// IPropertyChangeListener).
//
// The object does not own its listeners. Register and remove listeners on
// the thread that owns the object, never from inside a notification of the
// same object unless the implementation says it tolerates that.
class WEVLIN_EXPORT INotifyPropertyChange : public IEventSource {
 public:
  ~INotifyPropertyChange() override = default;

  // Registers `listener` for every later change. The listener must outlive
  // its registration.
  virtual void AddChangeListener(IPropertyChangeListener* listener) = 0;

  // Ends the registration of `listener`.
  virtual void RemoveChangeListener(IPropertyChangeListener* listener) = 0;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_INOTIFYPROPERTYCHANGE_H_
