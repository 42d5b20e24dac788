// Passes the page's console messages to the host in the WebKitGTK web
// control, which gets none from WebKit itself. Run as a function expression
// before any script of each document, with the name of the control's console
// message handler, and only when the application logs console messages:
//
//   (hook)(handlerName)
//
// console.log, info, warn, error and debug post "<type>\n<text>" to the
// handler ("warning" for warn), each argument written as the console shows
// it (objects as JSON where they have one), and then do what they did.
(function (handlerName) {
  "use strict";

  const handlers = globalThis.webkit && globalThis.webkit.messageHandlers;
  const handler = handlers && handlers[handlerName];
  const console = globalThis.console;
  if (!handler || !console) return;
  const postMessage = handler.postMessage;
  const apply = Reflect.apply;
  const stringify = JSON.stringify;

  function toText(value) {
    if (typeof value === "string") return value;
    if (value !== null && typeof value === "object") {
      try {
        const json = stringify(value);
        if (typeof json === "string") return json;
      } catch (ignored) {
        // Written as String gives it, below.
      }
    }
    try {
      return String(value);
    } catch (ignored) {
      return "";
    }
  }

  const types = [
    ["log", "log"],
    ["info", "info"],
    ["warn", "warning"],
    ["error", "error"],
    ["debug", "debug"],
  ];
  for (const [name, type] of types) {
    const original = console[name];
    if (typeof original !== "function") continue;
    console[name] = function (...args) {
      try {
        apply(postMessage, handler, [type + "\n" + args.map(toText).join(" ")]);
      } catch (ignored) {
        // The page's console goes on without the host.
      }
      return apply(original, this, args);
    };
  }
});
