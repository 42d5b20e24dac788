#ifndef WEVLIN_WEBCONTROLS_PAGEDIALOG_H_
#define WEVLIN_WEBCONTROLS_PAGEDIALOG_H_

#include <string>

namespace Com::Velmora::TAVO::Wevlin::WebControls {

// A dialog that the page opened (alert, confirm, prompt or beforeunload) and
// that the web control answers at once, so that it never stalls the host.
struct PageDialog {
  // "alert", "confirm", "prompt" or "beforeunload".
  std::string type;
  // The text the page shows.
  std::string message;
  // The default answer a prompt offers.
  std::string defaultPrompt;
  // The URL of the document that opened it.
  std::string url;
};

// How a dialog is answered: accepted (OK, leave the page) or dismissed
// (Cancel, stay), with the text a prompt returns when accepted.
struct PageDialogAnswer {
  bool accept = false;
  std::string promptText;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls

#endif  // WEVLIN_WEBCONTROLS_PAGEDIALOG_H_
