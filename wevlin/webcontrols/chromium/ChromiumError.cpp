#include "wevlin/webcontrols/chromium/ChromiumError.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium {

ChromiumError::ChromiumError(Kind kind, const std::string& message)
    : std::runtime_error(message), kind_(kind) {}

ChromiumError::ChromiumError(const ChromiumError& other) = default;

ChromiumError& ChromiumError::operator=(const ChromiumError& other) = default;

ChromiumError::~ChromiumError() = default;

ChromiumError::Kind ChromiumError::kind() const noexcept { return kind_; }

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium
