#include "support/CountingService.h"

#include <utility>

namespace wevlin_test {

CountingService::CountingService(std::string fqn, std::string version, ServiceProbe* probe)
    : BaseHostingService(std::move(fqn), std::move(version)), probe_(probe) {}

CountingService::~CountingService() {
  if (probe_ != nullptr) ++probe_->destroyed;
}

void CountingService::SetAnswer(std::string answer) { answer_ = std::move(answer); }

void CountingService::SetMethodHandler(MethodHandler handler) {
  methodHandler_ = std::move(handler);
}

void CountingService::SetEventHandler(EventHandler handler) { eventHandler_ = std::move(handler); }

void CountingService::StopThrowing() { failure_ = nullptr; }

const std::vector<ServiceCall>& CountingService::Calls() const { return calls_; }

std::string CountingService::DoInvokeMethod(Instance* instance, Descriptor* descriptor,
                                            std::string payload) {
  Record(ServiceCall::kMethod, instance, descriptor, payload);
  if (failure_) std::rethrow_exception(failure_);
  if (methodHandler_) return methodHandler_(instance, descriptor, payload);
  return answer_;
}

void CountingService::DoInvokeEvent(Instance* instance, Descriptor* descriptor,
                                    std::string payload) {
  Record(ServiceCall::kEvent, instance, descriptor, payload);
  if (failure_) std::rethrow_exception(failure_);
  if (eventHandler_) eventHandler_(instance, descriptor, payload);
}

void CountingService::Record(ServiceCall::Kind kind, Instance* instance, Descriptor* descriptor,
                             const std::string& payload) {
  ServiceCall call{kind, this, instance, descriptor, payload};
  if (probe_ != nullptr) probe_->calls.push_back(call);
  calls_.push_back(std::move(call));
}

}  // namespace wevlin_test
