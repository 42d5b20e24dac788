// The page half of the bridge between a web control and the host, shared by
// every web control.
//
// The control runs this file before any script of each new document, as a
// function expression called with two values:
//
//   transport  how calls reach the host. With `binding` and `reply` (the
//              headless-Chromium control): the name of a function that the
//              browser put on globalThis to post a message to the host,
//              which the shim takes and removes so that page scripts cannot
//              post, and the name of the function the host evaluates to
//              settle a call: globalThis[reply](id, ok, base64), where base64
//              is the UTF-8 text of the host's answer (ok true) or of the
//              bridge's error message (ok false). With `post` instead: a
//              function that posts a message and returns a Promise of
//              [ok, base64] (a control whose browser answers a message
//              itself).
//   config     the page-side part of the application's policy: `topOnly`
//              (documents in subframes get no bridge), `origins` (the
//              allowed origins, or null for every origin), `urls` (documents
//              of an opaque origin that the host navigated to itself),
//              `maxCallBytes` (the largest call) and `maxCallsInFlight` (how
//              many calls may wait for the host at once; more wait in the
//              page, in order).
//
// A document that the policy does not allow gets no globalThis.wevlinHost.
// The host checks every call again against what the browser reports of the
// calling document, so this check keeps honest pages from trying, and the
// host's keeps the rest out.
//
// An allowed document gets globalThis.wevlinHost, whose five functions each
// post one call and return a Promise that resolves with the host API's
// answer text exactly as the host produced it (exception records included,
// as text), or rejects with an Error when the bridge itself failed (no host
// API, a host failure outside the protocol, a call over the size limit).
//
// Texts cross the bridge as follows: each argument is converted to a string
// (undefined and null become ""), and a lone surrogate in it becomes U+FFFD,
// because the host works with UTF-8. An answer arrives Base64-encoded and is
// decoded as UTF-8, so every valid UTF-8 text of the host reaches the page
// unchanged; invalid byte sequences become U+FFFD.
(function (transport, config) {
  "use strict";

  let post = null;
  if (typeof transport.binding === "string") {
    post = globalThis[transport.binding];
    try {
      delete globalThis[transport.binding];
    } catch (ignored) {
      // A page that cannot delete the binding still gets a working bridge.
    }
  } else if (typeof transport.post === "function") {
    post = transport.post;
  }
  if (typeof post !== "function") return;

  let isTop = false;
  try {
    isTop = globalThis.top === globalThis;
  } catch (ignored) {
    isTop = false;
  }
  // The document's own origin: "null" for a sandboxed or data: document,
  // the creator's for about:blank and srcdoc (location.origin would give the
  // URL's instead). The browser serialises a file: document's origin as
  // "null" here and as "file://" to the host, which the policy names it.
  const origin = globalThis.location.protocol === "file:" ? "file://" : String(globalThis.origin);
  const href = String(globalThis.location.href);
  const allowed =
    config.origins === null ||
    (origin !== "null" && config.origins.includes(origin)) ||
    (origin === "null" && config.urls.includes(href));
  if ((config.topOnly && !isTop) || !allowed) return;

  const pending = new Map();
  const waiting = [];
  let inFlight = 0;
  let nextId = 1;
  const decoder = new TextDecoder("utf-8");
  const encoder = new TextEncoder();

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

  // The UTF-8 length of the texts, counted only where their UTF-16 length
  // leaves it open (each unit takes one to three bytes).
  function byteLength(texts) {
    let units = 0;
    for (const text of texts) units += text.length;
    if (units > config.maxCallBytes || units * 3 <= config.maxCallBytes) return units;
    let bytes = 0;
    for (const text of texts) bytes += encoder.encode(text).length;
    return bytes;
  }

  function settle(id, ok, base64) {
    const entry = pending.get(id);
    if (entry === undefined) return;
    pending.delete(id);
    inFlight--;
    sendWaiting();
    const text = decode(base64);
    if (ok) {
      entry.resolve(text);
    } else {
      entry.reject(new Error(text));
    }
  }

  function send(id, message) {
    inFlight++;
    try {
      const answer = post(message);
      if (answer && typeof answer.then === "function") {
        answer.then(
          (reply) => settle(id, reply[0], reply[1]),
          (error) => settle(id, false, btoa(String(error))),
        );
      }
    } catch (error) {
      const entry = pending.get(id);
      pending.delete(id);
      inFlight--;
      if (entry !== undefined) entry.reject(error);
    }
  }

  function sendWaiting() {
    while (inFlight < config.maxCallsInFlight && waiting.length > 0) {
      const next = waiting.shift();
      send(next.id, next.message);
    }
  }

  function call(fn, args) {
    return new Promise((resolve, reject) => {
      const texts = args.map(toText);
      const bytes = byteLength(texts);
      if (bytes > config.maxCallBytes) {
        reject(
          new Error("The call takes " + bytes + " bytes, more than the limit of " + config.maxCallBytes),
        );
        return;
      }
      const id = nextId++;
      const message = JSON.stringify({ id, fn, args: texts });
      pending.set(id, { resolve, reject });
      if (inFlight < config.maxCallsInFlight && waiting.length === 0) {
        send(id, message);
      } else {
        waiting.push({ id, message });
      }
    });
  }

  if (typeof transport.reply === "string") {
    Object.defineProperty(globalThis, transport.reply, {
      value: settle,
      enumerable: false,
      configurable: false,
      writable: false,
    });
  }

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
