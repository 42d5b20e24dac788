#include "wevlin/infrastructure/base/PropertyChangeEvent.h"

#include <utility>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

PropertyChangeEvent::PropertyChangeEvent(IEventSource* source, std::string propertyName)
    : EventObject(source), propertyName_(std::move(propertyName)) {}

PropertyChangeEvent::PropertyChangeEvent(const PropertyChangeEvent& other) = default;

PropertyChangeEvent& PropertyChangeEvent::operator=(const PropertyChangeEvent& other) = default;

PropertyChangeEvent::~PropertyChangeEvent() = default;

std::string PropertyChangeEvent::GetPropertyName() const { return propertyName_; }

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base
