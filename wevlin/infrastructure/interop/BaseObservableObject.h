#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_BASEOBSERVABLEOBJECT_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_BASEOBSERVABLEOBJECT_H_

#include <set>
#include <string>

#include "wevlin/infrastructure/base/INotifyPropertyChange.h"
#include "wevlin/infrastructure/base/IPropertyChangeListener.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// Ready-made INotifyPropertyChange: keeps the registered listeners and tells
// them about changes that a derived class announces with RaisePropertyChanged.
// The host control instance derives from it to publish "ContentState",
// "WebSideVersion" and "InstanceDestroyed".
//
// Listeners are kept as a set of distinct pointers and are notified in
// ascending pointer order, not in the order they were registered. They are not
// owned: the object never deletes a listener, and its destructor does not
// touch them. Copying the object copies the set of registered pointers.
//
// Not thread-safe: register, remove and raise on one thread at a time.
// Listeners run synchronously on the thread that raises the change.
class WEVLIN_EXPORT BaseObservableObject : public Base::INotifyPropertyChange {
 public:
  // Creates an object with no listeners.
  BaseObservableObject();
  BaseObservableObject(const BaseObservableObject& other);
  BaseObservableObject& operator=(const BaseObservableObject& other);
  ~BaseObservableObject() override;

  // Registers `listener`. Registering a listener that is already registered
  // changes nothing, so it is still notified once per change. A null pointer
  // is not refused, and would be called on the next change: do not pass one.
  void AddChangeListener(Base::IPropertyChangeListener* listener) override;

  // Removes `listener`. Removing a listener that is not registered changes
  // nothing.
  void RemoveChangeListener(Base::IPropertyChangeListener* listener) override;

  // Tells every registered listener, in ascending pointer order, that the
  // property `propertyName` of this object has changed; all of them receive
  // the same event, whose source is this object. Derived classes call it after
  // the property has changed.
  //
  // The first listener that throws (anything) ends the notification: the
  // listeners after it are not called for this change. The exception is
  // swallowed and, once the event is gone, the line
  // "Exception occurred when notifying change to property <name>" is logged.
  // Never throws because of a listener.
  //
  // A listener may add or remove listeners of this object while it is being
  // notified: the walk goes on with the first listener, in the set as it then
  // stands, whose pointer is above the one just called.
  void RaisePropertyChanged(std::string propertyName);

 private:
  std::set<Base::IPropertyChangeListener*> listeners_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_BASEOBSERVABLEOBJECT_H_
