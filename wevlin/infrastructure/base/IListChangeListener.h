#ifndef WEVLIN_INFRASTRUCTURE_BASE_ILISTCHANGELISTENER_H_
#define WEVLIN_INFRASTRUCTURE_BASE_ILISTCHANGELISTENER_H_

#include "wevlin/infrastructure/base/ListChangeEvent.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

// Receives the changes of every observable list of T it is registered on (see
// INotifyListChange). Every host control instance is one, on the host
// manager's list of services.
//
// A list never owns its listeners: a listener must be removed from every list
// before it is destroyed. Notifications arrive synchronously on the thread
// that changed the list, after the change has been made.
template <typename T>
class IListChangeListener {
 public:
  virtual ~IListChangeListener() = default;

  // Handles one change. `event` lives only for the duration of the call. The
  // listener may read the list (the change is already applied) but must not
  // add or remove listeners of it. An exception thrown here is swallowed and
  // logged by the list; the other listeners are still called.
  virtual void OnListChanged(const ListChangeEvent<T>& event) = 0;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base

#endif  // WEVLIN_INFRASTRUCTURE_BASE_ILISTCHANGELISTENER_H_
