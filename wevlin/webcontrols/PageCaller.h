#ifndef WEVLIN_WEBCONTROLS_PAGECALLER_H_
#define WEVLIN_WEBCONTROLS_PAGECALLER_H_

#include <string>

namespace Com::Velmora::TAVO::Wevlin::WebControls {

// The document that made a call of the page into the host, as the browser
// reports it (never as the page says): a host service asks its control for
// this while it serves the call, to decide what that document may have.
struct PageCaller {
  // The document's origin, e.g. "http://127.0.0.1:8080" or "file://"; "null"
  // for an opaque origin.
  std::string origin;
  // The document's URL.
  std::string url;
  // Whether the document is in the control's top frame.
  bool topFrame = false;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls

#endif  // WEVLIN_WEBCONTROLS_PAGECALLER_H_
