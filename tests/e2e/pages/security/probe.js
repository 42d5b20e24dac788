// The page side of the bridge policy tests, loaded by top.html and
// frame.html from either test server.
//
// Every document reports to the top document (window.top, or the opener of
// a popup) with postMessage: its name (the URL's hash), its origin, whether
// it has globalThis.wevlinHost, and what a call of the host's secret service
// gave it. The top document keeps the reports in window.reports, and
// window.probe lets the test add frames and popups and make calls.
"use strict";

(() => {
  const SECRET = '{"FQN": "tavo.e2e.Secret.host", "SvcVersion": "_2014_07"}';
  const name = decodeURIComponent(location.hash.slice(1)) || "top";
  const target = window.opener || window.top;

  function report(entry) {
    const message = { probe: true, name, origin: globalThis.origin, ...entry };
    if (target === window) {
      window.reports.push(message);
    } else {
      target.postMessage(message, "*");
    }
  }

  // Calls the secret service; reports the answer or the failure.
  async function callHost(host, payload) {
    try {
      return { answer: await host.tavoHostMethod(SECRET, payload) };
    } catch (error) {
      return { error: String(error && error.message) };
    }
  }

  if (target === window) {
    window.reports = [];
    window.addEventListener("message", (event) => {
      if (event.data && event.data.probe) window.reports.push(event.data);
    });
    window.probe = {
      // Adds an iframe of `src` (or `srcdoc`) with the attributes given.
      frame(attributes) {
        const frame = document.createElement("iframe");
        for (const [key, value] of Object.entries(attributes)) frame.setAttribute(key, value);
        document.body.appendChild(frame);
        return frame;
      },
      // Adds an about:blank frame made by script and reports what its
      // window has, as seen from here (it runs no script of its own).
      blankFrame() {
        const frame = document.createElement("iframe");
        document.body.appendChild(frame);
        const host = frame.contentWindow.wevlinHost;
        window.reports.push({
          probe: true,
          name: "about:blank",
          origin: frame.contentWindow.origin,
          hasHost: host !== undefined,
        });
      },
      call: callHost,
      // Calls the host from the frame `index` with its own wevlinHost.
      callFromFrame(index, payload) {
        return callHost(window.frames[index].wevlinHost, payload);
      },
    };
  }

  const hasHost = typeof globalThis.wevlinHost !== "undefined";
  if (hasHost && name !== "top") {
    callHost(globalThis.wevlinHost, "from " + name).then((outcome) =>
      report({ hasHost, ...outcome }),
    );
  } else {
    report({ hasHost });
  }

  // A nested frame: frame.html#outer?nest=<url> adds one more frame inside.
  const nest = new URLSearchParams(location.search).get("nest");
  if (nest) {
    window.addEventListener("DOMContentLoaded", () => {
      const inner = document.createElement("iframe");
      inner.src = nest;
      document.body.appendChild(inner);
    });
  }
  // top.html?go=<url> goes on to another address after a moment.
  const go = new URLSearchParams(location.search).get("go");
  if (go) setTimeout(() => (location.href = go), 300);
})();
