#ifndef WEVLIN_INFRASTRUCTURE_BASE_EVENTOBJECT_H_
#define WEVLIN_INFRASTRUCTURE_BASE_EVENTOBJECT_H_

#include "wevlin/infrastructure/base/IEventSource.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// Base of every event: remembers the object that raised it.
//
// An event does not own its source; the source is normally alive for as long
// as its listeners are being notified, and a listener that keeps a copy of an
// event beyond that must not use the pointer after the source is gone. Only
// derived events are created (the constructor and destructor are protected),
// but any event may be copied, which copies the source pointer.
//
// An event is an immutable value once built: any thread may read it, one
// thread at a time may assign to it.
class WEVLIN_EXPORT EventObject {
 public:
  EventObject(const EventObject& other);
  EventObject& operator=(const EventObject& other);

  // Returns the object that raised the event (as given to the constructor; it
  // may be null).
  IEventSource* GetSource() const;

 protected:
  // Creates an event raised by `source`, which is not owned.
  explicit EventObject(IEventSource* source);

  // Destroys the event; the source is left alone. Protected because an event
  // is never handled through this base alone.
  virtual ~EventObject();

 private:
  IEventSource* source_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_EVENTOBJECT_H_
