#ifndef WEVLIN_INFRASTRUCTURE_BASE_IPROPERTYCHANGELISTENER_H_
#define WEVLIN_INFRASTRUCTURE_BASE_IPROPERTYCHANGELISTENER_H_

#include "wevlin/infrastructure/base/PropertyChangeEvent.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// Receives the property changes of every source it is registered on (see
// INotifyPropertyChange). Implemented by the application.
//
// The source never owns its listeners: a listener must be removed from every
// source before it is destroyed. Notifications arrive synchronously on the
// thread that changed the property; for a host control instance that is the
// browser control's thread, except for a time-out, which arrives on the
// system's timer thread.
class WEVLIN_EXPORT IPropertyChangeListener {
 public:
  virtual ~IPropertyChangeListener() = default;

  // Handles one change. `event` names the property and the source; it lives
  // only for the duration of the call. An exception thrown here is swallowed
  // by the source, which logs one line and skips the listeners after this one
  // for this change.
  virtual void OnPropertyChanged(const PropertyChangeEvent& event) = 0;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_IPROPERTYCHANGELISTENER_H_
