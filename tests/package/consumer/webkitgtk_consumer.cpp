// Links the WebKitGTK web control of an installed wevlin through
// wevlin::webkitgtk (or the flags of pkg-config wevlin-webkitgtk), with only
// the installed headers: it throws and catches the control's exception type
// across the library boundary and reads the control's default options. With a
// display (xvfb-run) it also makes a control and runs a script in its view.
//
// Prints "webkitgtk consumer: ok" and exits with 0, or names what differed
// and exits with 1.

#include <iostream>
#include <stdexcept>
#include <string>

#include "wevlin/webcontrols/webkitgtk/WebKitGtkError.h"
#include "wevlin/webcontrols/webkitgtk/WebKitGtkOptions.h"
#include "wevlin/webcontrols/webkitgtk/WebKitGtkWebControl.h"

namespace webkitgtk = Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk;

int main() {
  std::string seen = "nothing";
  try {
    throw webkitgtk::WebKitGtkError("The page's web process ended (crashed)");
  } catch (const std::runtime_error& e) {
    const bool ours = dynamic_cast<const webkitgtk::WebKitGtkError*>(&e) != nullptr;
    seen = std::string(ours ? "WebKitGtkError: " : "another type: ") + e.what();
  }
  const webkitgtk::WebKitGtkOptions options;
  if (seen != "WebKitGtkError: The page's web process ended (crashed)" ||
      options.scriptTimeout.count() <= 0) {
    std::cout << "webkitgtk consumer: FAIL " << seen << "\n";
    return 1;
  }
  std::string how = "no display";
  if (gtk_init_check(nullptr, nullptr) != FALSE) {
    webkitgtk::WebKitGtkWebControl control;
    const std::string value = control.ExecuteScript("6 * 7");
    if (value != "42") {
      std::cout << "webkitgtk consumer: FAIL the script gave \"" << value << "\"\n";
      return 1;
    }
    how = "a script ran";
  }
  std::cout << "webkitgtk consumer: ok (" << how << ")\n";
  return 0;
}
