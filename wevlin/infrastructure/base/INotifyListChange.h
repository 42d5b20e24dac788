#ifndef WEVLIN_INFRASTRUCTURE_BASE_INOTIFYLISTCHANGE_H_
#define WEVLIN_INFRASTRUCTURE_BASE_INOTIFYLISTCHANGE_H_

#include "wevlin/infrastructure/base/IEventSource.h"
#include "wevlin/infrastructure/base/IListChangeListener.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// A collection of T whose changes can be watched by IListChangeListener<T>
// objects.
//
// The collection does not own its listeners. Register and remove listeners on
// the thread that owns the collection, never from inside one of its
// notifications.
template <typename T>
class INotifyListChange : public IEventSource {
 public:
  ~INotifyListChange() override = default;

  // Registers `listener` for every later change. The listener must outlive
  // its registration.
  virtual void AddChangeListener(IListChangeListener<T>* listener) = 0;

  // Ends the registration of `listener`.
  virtual void RemoveChangeListener(IListChangeListener<T>* listener) = 0;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_INOTIFYLISTCHANGE_H_
