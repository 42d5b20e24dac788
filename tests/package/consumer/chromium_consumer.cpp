// Links the Chromium web control of an installed wevlin through
// wevlin::chromium, with only the installed headers, without starting a
// browser: it throws and catches the control's exception type across the
// library boundary and checks its kind and text.
//
// Prints "chromium consumer: ok" and exits with 0, or names what differed and
// exits with 1.

#include <iostream>
#include <string>

#include "wevlin/webcontrols/chromium/ChromiumError.h"
#include "wevlin/webcontrols/chromium/ChromiumOptions.h"
#include "wevlin/webcontrols/chromium/ChromiumWebControl.h"

namespace chromium = Com::Velmora::TAVO::Wevlin::WebControls::Chromium;

int main() {
  std::string seen = "nothing";
  try {
    throw chromium::ChromiumError(chromium::ChromiumError::Kind::Exited, "The browser exited");
  } catch (const std::runtime_error& e) {
    const auto* error = dynamic_cast<const chromium::ChromiumError*>(&e);
    const bool exited = error != nullptr && error->kind() == chromium::ChromiumError::Kind::Exited;
    seen = std::string(exited ? "Exited: " : "another kind: ") + e.what();
  }
  const chromium::ChromiumOptions options;
  if (seen != "Exited: The browser exited" || options.windowWidth <= 0) {
    std::cout << "chromium consumer: FAIL " << seen << "\n";
    return 1;
  }
  std::cout << "chromium consumer: ok\n";
  return 0;
}
