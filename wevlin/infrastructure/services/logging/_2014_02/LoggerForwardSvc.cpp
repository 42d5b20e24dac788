#include "wevlin/infrastructure/services/logging/_2014_02/LoggerForwardSvc.h"

#include <exception>

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02 {

LoggerForwardSvc::LoggerForwardSvc(ForwardFunction forward)
    : BaseHostingService(ServiceNames::kLoggerForwardHost, ServiceVersions::k2014_02),
      forward_(forward) {}

LoggerForwardSvc::LoggerForwardSvc(const LoggerForwardSvc& other) = default;

LoggerForwardSvc& LoggerForwardSvc::operator=(const LoggerForwardSvc& other) = default;

LoggerForwardSvc::~LoggerForwardSvc() = default;

void LoggerForwardSvc::Forward(const std::string& payload) const {
  LoggerEntryMsg entry;
  bool parsed = false;
  try {
    parsed = entry.FromJsonString(payload);
  } catch (const std::exception&) {
    // Not an entry: dropped like one that reads false.
    parsed = false;
  }
  if (parsed) forward_(entry);
}

std::string LoggerForwardSvc::DoInvokeMethod(Interop::IHostControlInstance* /*instance*/,
                                             Interop::IHostServiceDescriptor* /*descriptor*/,
                                             std::string payload) {
  try {
    Forward(payload);
  } catch (...) {
    return "FAIL";
  }
  return "OK";
}

void LoggerForwardSvc::DoInvokeEvent(Interop::IHostControlInstance* /*instance*/,
                                     Interop::IHostServiceDescriptor* /*descriptor*/,
                                     std::string payload) {
  try {
    Forward(payload);
  } catch (...) {
    // An event has nobody to answer; the entry is lost.
  }
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02
