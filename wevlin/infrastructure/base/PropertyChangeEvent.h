#ifndef WEVLIN_INFRASTRUCTURE_BASE_PROPERTYCHANGEEVENT_H_
#define WEVLIN_INFRASTRUCTURE_BASE_PROPERTYCHANGEEVENT_H_

#include <string>

#include "wevlin/infrastructure/base/EventObject.h"
#include "wevlin/infrastructure/base/IEventSource.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// Tells a listener that one named property of its source has changed, for
// example "ContentState" of a host control instance. The event carries only
// the name; the listener reads the new value from the source itself.
//
// The source is not owned (see EventObject). The event is a value: copies are
// independent. Any thread may read an event; one thread at a time may assign.
class WEVLIN_EXPORT PropertyChangeEvent : public EventObject {
 public:
  // Creates the event for the property `propertyName` of `source`. The name
  // is taken as it is; it may be empty.
  PropertyChangeEvent(IEventSource* source, std::string propertyName);

  PropertyChangeEvent(const PropertyChangeEvent& other);
  PropertyChangeEvent& operator=(const PropertyChangeEvent& other);
  ~PropertyChangeEvent() override;

  // Returns a copy of the name of the property that changed.
  std::string GetPropertyName() const;

 private:
  std::string propertyName_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_PROPERTYCHANGEEVENT_H_
