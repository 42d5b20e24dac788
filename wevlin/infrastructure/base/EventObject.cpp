#include "wevlin/infrastructure/base/EventObject.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base {

EventObject::EventObject(IEventSource* source) : source_(source) {}

EventObject::EventObject(const EventObject& other) = default;

EventObject& EventObject::operator=(const EventObject& other) = default;

EventObject::~EventObject() = default;

IEventSource* EventObject::GetSource() const { return source_; }

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Base
