// The page half of the Chromium web control's bridge to the host.
//
// The control evaluates this file before any script of each new document
// (main frame and frames alike), as a function expression called with two
// names:
//
//   bindingName   the DevTools binding through which the page posts calls to
//                 the host; the shim takes it and removes it from globalThis,
//                 so page scripts reach the host only through wevlinHost;
//   replyName     the function the host evaluates to settle a call:
//                 globalThis[replyName](id, ok, base64), where base64 is the
//                 UTF-8 text of the host's answer (ok true) or of the bridge's
//                 error message (ok false).
//
// It defines globalThis.wevlinHost, whose five functions each post one call
// and return a Promise that resolves with the host API's answer text exactly
// as the host produced it (exception records included, as text), or rejects
// with an Error when the bridge itself failed (no host API, host failure
// outside the protocol).
//
// Texts cross the bridge as follows: each argument is converted to a string
// (undefined and null become ""), and a lone surrogate in it becomes U+FFFD,
// because the host works with UTF-8. An answer arrives Base64-encoded and is
// decoded as UTF-8, so every valid UTF-8 text of the host reaches the page
// unchanged; invalid byte sequences become U+FFFD.
(function (bindingName, replyName) {
  "use strict";

  const post = globalThis[bindingName];
  if (typeof post !== "function") return;
  try {
    delete globalThis[bindingName];
  } catch (ignored) {
    // A page that cannot delete the binding still gets a working bridge.
  }

  const pending = new Map();
  let nextId = 1;
  const decoder = new TextDecoder("utf-8");

  function decode(base64) {
    const binary = atob(base64);
    const bytes = new Uint8Array(binary.length);
    for (let i = 0; i < binary.length; i++) bytes[i] = binary.charCodeAt(i);
    return decoder.decode(bytes);
  }

  function toText(value) {
    if (value === undefined || value === null) return "";
    const text = String(value);
    return typeof text.toWellFormed === "function" ? text.toWellFormed() : text;
  }

  function call(fn, args) {
    return new Promise((resolve, reject) => {
      const id = nextId++;
      const message = JSON.stringify({ id, fn, args: args.map(toText) });
      pending.set(id, { resolve, reject });
      try {
        post(message);
      } catch (error) {
        pending.delete(id);
        reject(error);
      }
    });
  }

  Object.defineProperty(globalThis, replyName, {
    value: function (id, ok, base64) {
      const entry = pending.get(id);
      if (entry === undefined) return;
      pending.delete(id);
      const text = decode(base64);
      if (ok) {
        entry.resolve(text);
      } else {
        entry.reject(new Error(text));
      }
    },
    enumerable: false,
    configurable: false,
    writable: false,
  });

  const host = Object.freeze({
    tavoHostMethod(descriptorJson, payload) {
      return call("tavoHostMethod", [descriptorJson, payload]);
    },
    tavoHostEvent(descriptorJson, payload) {
      return call("tavoHostEvent", [descriptorJson, payload]);
    },
    tavoHostPing() {
      return call("tavoHostPing", []);
    },
    tavoHost_WebSideServiceListUpdate(action, listJson) {
      return call("tavoHost_WebSideServiceListUpdate", [action, listJson]);
    },
    tavoHost_WebSideStartHandShake() {
      return call("tavoHost_WebSideStartHandShake", []);
    },
  });

  Object.defineProperty(globalThis, "wevlinHost", {
    value: host,
    enumerable: false,
    configurable: true,
    writable: false,
  });
});
