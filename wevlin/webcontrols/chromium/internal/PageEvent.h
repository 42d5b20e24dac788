#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_PAGEEVENT_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_PAGEEVENT_H_

#include <cstdint>
#include <string>

#include "wevlin/webcontrols/PageCaller.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

// One thing that happened in the browser and waits to be delivered on the
// application's thread. Made by the protocol reader thread, taken by
// ChromiumWebControl::PumpEvents. A plain value.
struct PageEvent {
  enum class Kind {
    // A frame stopped loading: `sessionId`, `text` = the frame id.
    FrameStoppedLoading,
    // The page called the host through the binding: `sessionId`, `name` =
    // the binding's name, `text` = the call's JSON, `contextId` = the page's
    // script context that waits for the answer, `caller` = its document as
    // the browser reported it.
    BindingCalled,
    // The control answered a dialog of the page: `sessionId`, `name` = its
    // type, `text` = "accepted" or "dismissed".
    DialogAnswered,
    // A navigation failed: `name` = the URL, `text` = the browser's reason.
    NavigationFailed,
    // The page's renderer process crashed: `sessionId`.
    PageCrashed,
    // The browser closed the page's session: `sessionId`.
    PageDetached,
    // A console message of the page: `sessionId`, `name` = its type ("log",
    // "error", ...), `text` = its text.
    ConsoleMessage,
    // The DevTools connection ended: `text` = why.
    BrowserClosed,
  };

  Kind kind = Kind::FrameStoppedLoading;
  std::string sessionId;
  std::string name;
  std::string text;
  std::int64_t contextId = 0;
  WebControls::PageCaller caller;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_PAGEEVENT_H_
