#include "wevlin/webcontrols/webkitgtk/WebKitGtkError.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk {

WebKitGtkError::WebKitGtkError(const std::string& message) : std::runtime_error(message) {}

WebKitGtkError::WebKitGtkError(const WebKitGtkError& other) = default;

WebKitGtkError& WebKitGtkError::operator=(const WebKitGtkError& other) = default;

WebKitGtkError::~WebKitGtkError() = default;

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk
