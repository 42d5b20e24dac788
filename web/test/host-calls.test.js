"use strict";

// The page's calls into the host: what goes over the transport, how answers
// and exception records come back, and waiting for readiness.

const test = require("node:test");
const assert = require("node:assert/strict");
const wevlin = require("../src/wevlin.js");

const STARTUP_JSON =
  '{"FQN": "tavo.wevlin.infrastructure.services.startup.StartupNotification.host", "SvcVersion": "_2014_02"}';

// A transport that records each call and answers from a table by function name.
function recordingTransport(answers) {
  const calls = [];
  const transport = { kind: "test" };
  for (const name of wevlin.HOST_FUNCTION_NAMES) {
    transport[name] = (...args) => {
      calls.push([name, ...args]);
      const answer = answers[name];
      return Promise.resolve(
        typeof answer === "function" ? answer(...args) : answer === undefined ? "" : answer,
      );
    };
  }
  return { transport, calls };
}

function readyPage(page) {
  page.functions.tavoInterop_WebEvent(STARTUP_JSON, "");
}

// Replaces the global setTimeout and clearTimeout, which the page looks up at
// each use, by a manual clock for the rest of the test.
function fakeClock(t) {
  const saved = { setTimeout: globalThis.setTimeout, clearTimeout: globalThis.clearTimeout };
  let now = 0;
  let nextId = 1;
  const timers = new Map();
  globalThis.setTimeout = (callback, delay) => {
    const id = nextId++;
    timers.set(id, { at: now + delay, callback });
    return id;
  };
  globalThis.clearTimeout = (id) => timers.delete(id);
  t.after(() => Object.assign(globalThis, saved));
  return {
    pending: () => timers.size,
    tick(ms) {
      now += ms;
      for (const [id, timer] of Array.from(timers)) {
        if (timer.at <= now) {
          timers.delete(id);
          timer.callback();
        }
      }
    },
  };
}

test.describe("invokeMethod", () => {
  test("sends the descriptor in the host's format and resolves with the reply", async () => {
    const { transport, calls } = recordingTransport({ tavoHostMethod: '{"Settings": []}' });
    const page = wevlin.createPage({ transport });
    const reply = await page.invokeMethod(
      wevlin.SERVICES.HOST_CONFIGURATION_2014_07,
      '{"Version": "_2014_07"}',
    );
    assert.equal(reply, '{"Settings": []}');
    assert.deepEqual(calls, [
      [
        "tavoHostMethod",
        '{"FQN": "tavo.wevlin.infrastructure.services.core.HostConfiguration.host", "SvcVersion": "_2014_07"}',
        '{"Version": "_2014_07"}',
      ],
    ]);
  });

  test("accepts the wire spelling of a descriptor", async () => {
    const { transport, calls } = recordingTransport({ tavoHostMethod: "ok" });
    const page = wevlin.createPage({ transport });
    await page.invokeMethod({ FQN: "a/b", SvcVersion: "1" }, "p");
    assert.equal(calls[0][1], '{"FQN": "a\\/b", "SvcVersion": "1"}');
  });

  test("sends non-string payloads as host-format JSON and nothing as the empty text", async () => {
    const { transport, calls } = recordingTransport({ tavoHostMethod: "ok" });
    const page = wevlin.createPage({ transport });
    const descriptor = { fqn: "a", version: "1" };
    await page.invokeMethod(descriptor, { State: "busy", Version: "_2014_07" });
    await page.invokeMethod(descriptor);
    await page.invokeMethod(descriptor, null);
    assert.deepEqual(
      calls.map((call) => call[2]),
      ['{"State": "busy", "Version": "_2014_07"}', "", ""],
    );
  });

  test("rejects with the record's name and message and keeps the record", async () => {
    const record =
      '{"Exception": {"name": "std::invalid_argument", "message": "No matching service descriptor found for: a.b.host ver: _2014_02"}}';
    const { transport } = recordingTransport({ tavoHostMethod: record });
    const page = wevlin.createPage({ transport });
    await assert.rejects(page.invokeMethod({ fqn: "a.b.host", version: "_2014_02" }, ""), (error) => {
      assert.ok(error instanceof wevlin.HostError);
      assert.equal(error.name, "std::invalid_argument");
      assert.equal(error.message, "No matching service descriptor found for: a.b.host ver: _2014_02");
      assert.equal(error.record, record);
      return true;
    });
  });

  test('treats only a reply starting with {"Exception as a record', async () => {
    const { transport } = recordingTransport({ tavoHostMethod: '{ "Exception": 1}' });
    const page = wevlin.createPage({ transport });
    assert.equal(await page.invokeMethod({ fqn: "a", version: "1" }, ""), '{ "Exception": 1}');
  });

  test("rejects an unreadable record plainly", async () => {
    const { transport } = recordingTransport({ tavoHostMethod: '{"Exception": null}' });
    const page = wevlin.createPage({ transport });
    await assert.rejects(page.invokeMethod({ fqn: "a", version: "1" }, ""), {
      name: "Error",
      message: 'Could not decipher host error: {"Exception": null}',
    });
  });

  test("rejects bad descriptors and payloads before calling the host", async () => {
    const { transport, calls } = recordingTransport({});
    const page = wevlin.createPage({ transport });
    await assert.rejects(page.invokeMethod({ fqn: "a" }, ""), {
      name: "TypeError",
      message: "A service descriptor needs the strings fqn and version (or FQN and SvcVersion)",
    });
    await assert.rejects(page.invokeMethod({ fqn: "a", version: "1" }, 5n), {
      name: "TypeError",
      message: "Cannot write a BigInt as JSON",
    });
    assert.deepEqual(calls, []);
  });

  test("rejects when the transport answers with something other than a string", async () => {
    const { transport } = recordingTransport({ tavoHostMethod: () => 42 });
    const page = wevlin.createPage({ transport });
    await assert.rejects(page.invokeMethod({ fqn: "a", version: "1" }, ""), {
      name: "TypeError",
      message: "The host function tavoHostMethod answered with a number instead of a string",
    });
  });

  test("passes a transport failure on unchanged", async () => {
    const failure = new Error("binding lost");
    const { transport } = recordingTransport({ tavoHostMethod: () => Promise.reject(failure) });
    const page = wevlin.createPage({ transport });
    await assert.rejects(page.invokeMethod({ fqn: "a", version: "1" }, ""), (error) => error === failure);
  });
});

test.describe("raiseEvent and sendStartupNotification", () => {
  test("raiseEvent sends the event and resolves with nothing", async () => {
    const { transport, calls } = recordingTransport({ tavoHostEvent: "" });
    const page = wevlin.createPage({ transport });
    assert.equal(await page.raiseEvent(wevlin.SERVICES.CLIENT_STATUS, '{"State": "busy"}'), undefined);
    assert.deepEqual(calls, [
      [
        "tavoHostEvent",
        '{"FQN": "tavo.wevlin.infrastructure.services.core.ClientStatus.host", "SvcVersion": "_2014_07"}',
        '{"State": "busy"}',
      ],
    ]);
  });

  test("raiseEvent rejects on a record", async () => {
    const { transport } = recordingTransport({
      tavoHostEvent: '{"Exception": {"name": "std::invalid_argument", "message": "Bad payload data"}}',
    });
    const page = wevlin.createPage({ transport });
    await assert.rejects(page.raiseEvent(wevlin.SERVICES.ASYNC_SOA_JSON_MESSAGE, "x"), {
      name: "std::invalid_argument",
      message: "Bad payload data",
    });
  });

  test("sendStartupNotification raises the startup event with an empty payload", async () => {
    const { transport, calls } = recordingTransport({});
    const page = wevlin.createPage({ transport });
    await page.sendStartupNotification();
    assert.deepEqual(calls, [["tavoHostEvent", STARTUP_JSON, ""]]);
  });
});

test.describe("ping, startHandshake and announceServices", () => {
  test("ping resolves with the host's version and keeps it", async () => {
    const { transport, calls } = recordingTransport({ tavoHostPing: "0.9" });
    const page = wevlin.createPage({ transport });
    assert.equal(await page.ping(), "0.9");
    assert.equal(page.hostVersion, "0.9");
    assert.deepEqual(calls, [["tavoHostPing"]]);
  });

  test("startHandshake calls the host and clears readiness until the next startup notification", async () => {
    const { transport, calls } = recordingTransport({});
    const page = wevlin.createPage({ transport });
    readyPage(page);
    assert.equal(page.isReady(), true);
    await page.startHandshake();
    assert.deepEqual(calls, [["tavoHost_WebSideStartHandShake"]]);
    assert.equal(page.isReady(), false);
  });

  test("startHandshake rejects on a record", async () => {
    const { transport } = recordingTransport({
      tavoHost_WebSideStartHandShake:
        '{"Exception": {"name": "std::runtime_error", "message": "JSON data is not an array"}}',
    });
    const page = wevlin.createPage({ transport });
    await assert.rejects(page.startHandshake(), {
      name: "std::runtime_error",
      message: "JSON data is not an array",
    });
  });

  test("announceServices replaces the host's view of the page's services", async () => {
    const { transport, calls } = recordingTransport({});
    const page = wevlin.createPage({ transport });
    await page.announceServices();
    page.register("a.client", "_2014_07", { method: () => "" });
    page.register("b.client", "_2014_02", { event: () => {} });
    await page.announceServices();
    assert.deepEqual(calls, [
      ["tavoHost_WebSideServiceListUpdate", "Replace", "[]"],
      [
        "tavoHost_WebSideServiceListUpdate",
        "Replace",
        '[{"FQN": "a.client", "SvcVersion": "_2014_07"}, {"FQN": "b.client", "SvcVersion": "_2014_02"}]',
      ],
    ]);
  });

  test("announceServices rejects on a record", async () => {
    const { transport } = recordingTransport({
      tavoHost_WebSideServiceListUpdate:
        '{"Exception": {"name": "std::runtime_error", "message": "unknown action"}}',
    });
    const page = wevlin.createPage({ transport });
    await assert.rejects(page.announceServices(), { name: "std::runtime_error", message: "unknown action" });
  });
});

test.describe("without a transport", () => {
  test("calls reject with an explanation", async () => {
    const page = wevlin.createPage();
    assert.equal(page.transport, null);
    await assert.rejects(page.ping(), {
      name: "Error",
      message:
        "No host transport: pass one to createPage() or run the page in a host control that defines globalThis.wevlinHost",
    });
  });

  test("the page picks up globalThis.wevlinHost when it appears", async () => {
    const page = wevlin.createPage();
    globalThis.wevlinHost = { tavoHostPing: async () => "0.9" };
    try {
      assert.equal(await page.ping(), "0.9");
      assert.equal(page.transport.kind, "binding");
    } finally {
      delete globalThis.wevlinHost;
    }
  });

  test("refuses a transport that is not an object", () => {
    assert.throws(() => wevlin.createPage({ transport: "host" }), {
      name: "TypeError",
      message: "The transport must be an object, not a string",
    });
  });
});

test.describe("readiness", () => {
  test("whenReady resolves at once when ready", async () => {
    const page = wevlin.createPage();
    readyPage(page);
    await page.whenReady({ timeoutMs: 0 });
  });

  test("calls go at once by default, ready or not", async () => {
    const { transport, calls } = recordingTransport({ tavoHostMethod: "ok" });
    const page = wevlin.createPage({ transport });
    assert.equal(await page.invokeMethod({ fqn: "a", version: "1" }, ""), "ok");
    assert.equal(calls.length, 1);
  });

  test("a call with waitForReady waits for the startup notification", async () => {
    const { transport, calls } = recordingTransport({ tavoHostMethod: "ok" });
    const page = wevlin.createPage({ transport });
    const pending = page.invokeMethod({ fqn: "a", version: "1" }, "p", { waitForReady: true });
    await new Promise((resolve) => setImmediate(resolve));
    assert.deepEqual(calls, []);
    readyPage(page);
    assert.equal(await pending, "ok");
    assert.equal(calls.length, 1);
  });

  test("the page-wide default makes every call wait; a call can opt out", async () => {
    const { transport, calls } = recordingTransport({ tavoHostMethod: "ok", tavoHostEvent: "" });
    const page = wevlin.createPage({ transport, waitForReady: true });
    const waiting = page.raiseEvent({ fqn: "e", version: "1" }, "");
    const direct = page.invokeMethod({ fqn: "m", version: "1" }, "", { waitForReady: false });
    assert.equal(await direct, "ok");
    assert.deepEqual(
      calls.map((call) => call[0]),
      ["tavoHostMethod"],
    );
    readyPage(page);
    await waiting;
    assert.deepEqual(
      calls.map((call) => call[0]),
      ["tavoHostMethod", "tavoHostEvent"],
    );
  });

  test("a wait with a time-out rejects with ReadyTimeoutError and sends nothing", async (t) => {
    const clock = fakeClock(t);
    const { transport, calls } = recordingTransport({ tavoHostMethod: "ok" });
    const page = wevlin.createPage({ transport });
    const pending = page.invokeMethod({ fqn: "a", version: "1" }, "", {
      waitForReady: true,
      readyTimeoutMs: 250,
    });
    let settled = false;
    pending.then(
      () => (settled = true),
      () => (settled = true),
    );
    await Promise.resolve();
    clock.tick(249);
    await new Promise((resolve) => setImmediate(resolve));
    assert.equal(settled, false);
    clock.tick(1);
    await assert.rejects(pending, (error) => {
      assert.ok(error instanceof wevlin.ReadyTimeoutError);
      assert.equal(error.name, "ReadyTimeoutError");
      assert.equal(error.message, "The host did not become ready within 250 ms");
      assert.equal(error.timeoutMs, 250);
      return true;
    });
    readyPage(page);
    await new Promise((resolve) => setImmediate(resolve));
    assert.deepEqual(calls, []);
  });

  test("the page-wide time-out applies to waiting calls", async (t) => {
    const clock = fakeClock(t);
    const page = wevlin.createPage({
      transport: recordingTransport({}).transport,
      waitForReady: true,
      readyTimeoutMs: 100,
    });
    const pending = page.sendStartupNotification();
    await Promise.resolve();
    clock.tick(100);
    await assert.rejects(pending, {
      name: "ReadyTimeoutError",
      message: "The host did not become ready within 100 ms",
    });
  });

  test("readiness before the time-out resolves and cancels the timer", async (t) => {
    const clock = fakeClock(t);
    const page = wevlin.createPage();
    const waiting = page.whenReady({ timeoutMs: 1000 });
    clock.tick(999);
    assert.equal(clock.pending(), 1);
    readyPage(page);
    assert.equal(clock.pending(), 0);
    clock.tick(5000);
    await waiting;
  });

  test("whenReady rejects a bad time-out", async () => {
    const page = wevlin.createPage();
    await assert.rejects(page.whenReady({ timeoutMs: -1 }), {
      name: "TypeError",
      message: "timeoutMs must be a finite number of milliseconds, not a number",
    });
    assert.throws(() => wevlin.createPage({ readyTimeoutMs: "5" }), {
      name: "TypeError",
      message: "readyTimeoutMs must be a finite number of milliseconds, not a string",
    });
  });

  test("a listener failure is reported, not thrown at the host", () => {
    const errors = [];
    const page = wevlin.createPage({
      onError: (error, context) => errors.push([error.message, { ...context }]),
    });
    page.on("ready", () => {
      throw new Error("listener broke");
    });
    assert.equal(page.functions.tavoInterop_WebEvent(STARTUP_JSON, ""), "");
    assert.deepEqual(errors, [["listener broke", { kind: "listener", type: "ready" }]]);
  });

  test("on refuses unknown event types and removes listeners", () => {
    const page = wevlin.createPage();
    assert.throws(() => page.on("readyy", () => {}), {
      name: "TypeError",
      message: "Unknown event type: readyy",
    });
    let count = 0;
    const off = page.on("ready", () => count++);
    assert.equal(off(), true);
    readyPage(page);
    assert.equal(count, 0);
  });
});

test.describe("dispose", () => {
  test("uninstalls, rejects waiters and later calls", async () => {
    const scope = {};
    const { transport, calls } = recordingTransport({});
    const page = wevlin.createPage({ transport });
    page.install(scope);
    const waiting = page.whenReady();
    page.dispose();
    assert.equal(scope.tavoInterop_Ping, undefined);
    await assert.rejects(waiting, { name: "Error", message: "The page was disposed" });
    await assert.rejects(page.ping(), { name: "Error", message: "The page was disposed" });
    await assert.rejects(page.whenReady(), { name: "Error", message: "The page was disposed" });
    assert.throws(() => page.install(scope), { name: "Error", message: "The page was disposed" });
    assert.deepEqual(calls, []);
  });
});
