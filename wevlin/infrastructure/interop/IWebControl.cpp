#include "wevlin/infrastructure/interop/IWebControl.h"

#include <utility>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

IWebControl::ScriptException::ScriptException() = default;

IWebControl::ScriptException::ScriptException(std::string message, std::string details)
    : message(std::move(message)), details(std::move(details)) {}

IWebControl::ScriptException::ScriptException(const ScriptException& other) = default;

IWebControl::ScriptException& IWebControl::ScriptException::operator=(
    const ScriptException& other) = default;

IWebControl::ScriptException::~ScriptException() = default;

IWebControl::IWebControl() = default;

IWebControl::IWebControl(const IWebControl& other) = default;

IWebControl& IWebControl::operator=(const IWebControl& /*other*/) = default;

IWebControl::~IWebControl() = default;

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
