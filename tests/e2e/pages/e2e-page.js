// The page side of the end-to-end tests. Loaded after web/src/wevlin.js; the
// host control defines globalThis.wevlinHost before either runs.
//
// The page offers three services to the host:
//   tavo.e2e.Echo.client      _2014_07  method: answers the payload as it
//                                       arrived; event: keeps the payload
//   tavo.e2e.Inspect.client   _2014_07  method: answers the payload's code
//                                       points in hexadecimal, blank-separated
//   tavo.e2e.Failing.client   _2014_07  method and event: throw RangeError
//                                       "too far"
//
// It waits for the host's ping (which follows the end of the load), then
// starts the handshake; once the host's startup notification has made it
// ready, it sends its own startup notification, which logs the host in.
//
// The tests drive the page through window.e2e: start a call into the host,
// poll until it has settled, read its outcome as JSON.
"use strict";

(() => {
  const page = wevlin.createPage({ version: "e2e-page-1" });
  const ECHO = "tavo.e2e.Echo.client";
  const INSPECT = "tavo.e2e.Inspect.client";
  const FAILING = "tavo.e2e.Failing.client";
  const VERSION = "_2014_07";

  const events = [];
  const outcomes = [];
  const milestones = [];

  page.register(ECHO, VERSION, {
    method(payload) {
      return payload;
    },
    event(payload) {
      events.push(payload);
    },
  });
  page.register(INSPECT, VERSION, {
    method(payload) {
      return Array.from(payload, (c) => c.codePointAt(0).toString(16)).join(" ");
    },
  });
  page.register(FAILING, VERSION, {
    method() {
      throw new RangeError("too far");
    },
    event() {
      throw new RangeError("too far");
    },
  });
  page.install();

  page.on("ready", () => {
    milestones.push("ready");
    page.sendStartupNotification().then(
      () => milestones.push("startup notification sent"),
      (error) => milestones.push("startup notification failed: " + error.message),
    );
  });

  const waitForPing = globalThis.setInterval(() => {
    if (page.hostVersion === null) return;
    globalThis.clearInterval(waitForPing);
    milestones.push("pinged by " + page.hostVersion);
    page.startHandshake().then(
      () => milestones.push("handshake started"),
      (error) => milestones.push("handshake failed: " + error.message),
    );
  }, 5);

  // Starts the call made by `run` and returns its number for done/outcome.
  function track(run) {
    const entry = { done: false };
    outcomes.push(entry);
    Promise.resolve()
      .then(run)
      .then(
        (value) => Object.assign(entry, { done: true, ok: true, value: value === undefined ? null : value }),
        (error) =>
          Object.assign(entry, {
            done: true,
            ok: false,
            name: error.name,
            message: error.message,
            record: error.record === undefined ? null : error.record,
          }),
      );
    return outcomes.length - 1;
  }

  globalThis.e2e = Object.freeze({
    page,
    invokeMethod: (fqn, version, payload) => track(() => page.invokeMethod({ fqn, version }, payload)),
    raiseEvent: (fqn, version, payload) => track(() => page.raiseEvent({ fqn, version }, payload)),
    ping: () => track(() => page.ping()),
    // Calls a host function on the bridge directly, bypassing the library.
    callBridge: (name, ...args) => track(() => globalThis.wevlinHost[name](...args)),
    done: (id) => outcomes[id] !== undefined && outcomes[id].done,
    outcome: (id) => JSON.stringify(outcomes[id]),
    events: () => JSON.stringify(events),
    milestones: () => JSON.stringify(milestones),
  });
})();
