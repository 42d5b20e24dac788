// The transport of the bridge's page half (bridge-shim.js) in the WebKitGTK
// web control, run as a function expression before any script of each
// document, with the name of the control's script message handler and the
// control's key:
//
//   (transport)(handlerName, key) -> { post(message) -> Promise<[ok, base64]> }
//
// WebKit does not tell the host which document posted a message, and its
// message handlers are reachable from every frame. So each call goes out
// with a head: the control's key, "T" or "F" (top frame or not), the
// document's origin, a line feed, the document's URL and a line feed, all
// read now, before the page's own scripts run, and kept only in this
// closure. A frame or a script that posts to the handler itself has no key;
// no script of the page can change what the closure says of its document.
// The origin is written as bridge-shim.js writes it ("file://" for file:
// documents). Without the handler the transport is empty, and the shim
// defines no bridge.
(function (handlerName, key) {
  "use strict";

  const handlers = globalThis.webkit && globalThis.webkit.messageHandlers;
  const handler = handlers && handlers[handlerName];
  if (!handler || typeof handler.postMessage !== "function") return {};
  const postMessage = handler.postMessage;
  const apply = Reflect.apply;

  let isTop = false;
  try {
    isTop = globalThis.top === globalThis;
  } catch (ignored) {
    isTop = false;
  }
  const location = globalThis.location;
  const origin = location.protocol === "file:" ? "file://" : String(globalThis.origin);
  const head = key + (isTop ? "T" : "F") + origin + "\n" + String(location.href) + "\n";

  return {
    post: (message) => apply(postMessage, handler, [head + (typeof message === "string" ? message : "")]),
  };
});
