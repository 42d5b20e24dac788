#include "wevlin/infrastructure/interop/BaseObservableObject.h"

#include "wevlin/infrastructure/base/PropertyChangeEvent.h"
#include "wevlin/infrastructure/base/internal/Log.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

BaseObservableObject::BaseObservableObject() = default;

BaseObservableObject::BaseObservableObject(const BaseObservableObject& other) = default;

BaseObservableObject& BaseObservableObject::operator=(const BaseObservableObject& other) = default;

BaseObservableObject::~BaseObservableObject() = default;

void BaseObservableObject::AddChangeListener(Base::IPropertyChangeListener* listener) {
  listeners_.insert(listener);
}

void BaseObservableObject::RemoveChangeListener(Base::IPropertyChangeListener* listener) {
  listeners_.erase(listener);
}

void BaseObservableObject::RaisePropertyChanged(std::string propertyName) {
  bool listenerThrew = false;
  {
    const Base::PropertyChangeEvent event(this, propertyName);
    try {
      // Each step looks the next listener up again instead of keeping an
      // iterator, so a listener that unregisters itself (or another one) during
      // the call cannot leave the walk on an erased node.
      auto next = listeners_.begin();
      while (next != listeners_.end()) {
        Base::IPropertyChangeListener* listener = *next;
        listener->OnPropertyChanged(event);
        next = listeners_.upper_bound(listener);
      }
    } catch (...) {
      listenerThrew = true;
    }
  }
  if (listenerThrew) {
    Base::internal::WriteLogLine("Exception occurred when notifying change to property " +
                                 propertyName);
  }
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
