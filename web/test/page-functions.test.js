"use strict";

// The five functions the host calls, called here directly with the texts a
// host sends (already decoded from the script string, as the page sees them).

const test = require("node:test");
const assert = require("node:assert/strict");
const wevlin = require("../src/wevlin.js");

const STARTUP_JSON =
  '{"FQN": "tavo.wevlin.infrastructure.services.startup.StartupNotification.host", "SvcVersion": "_2014_02"}';

function record(name, message) {
  return '{"Exception": {"name": "' + name + '", "message": "' + message + '"}}';
}

function newPage(options) {
  const errors = [];
  const page = wevlin.createPage({
    onError: (error, context) => errors.push({ error, context }),
    ...options,
  });
  return { page, fn: page.functions, errors };
}

test.describe("tavoInterop_Ping", () => {
  test("keeps the host's version and answers with the page's version", () => {
    const { page, fn } = newPage({ version: "1.0" });
    assert.equal(page.hostVersion, null);
    assert.equal(fn.tavoInterop_Ping("0.9"), "1.0");
    assert.equal(page.hostVersion, "0.9");
  });

  test("answers with the framework version by default", () => {
    const { fn } = newPage();
    assert.equal(fn.tavoInterop_Ping("0.9"), "0.9");
  });

  test("refuses a page version that is not text", () => {
    assert.throws(() => wevlin.createPage({ version: 1 }), {
      name: "TypeError",
      message: "The page version must be a string",
    });
  });
});

test.describe("tavoInterop_HostServiceListUpdate", () => {
  test("adds the host's list and answers with the empty text", () => {
    const { page, fn } = newPage();
    assert.equal(
      fn.tavoInterop_HostServiceListUpdate("Add", '[{"FQN": "a.b.host", "SvcVersion": "_2014_07"}]'),
      "",
    );
    assert.deepEqual(page.hostServices(), [{ fqn: "a.b.host", version: "_2014_07" }]);
    assert.equal(page.hasHostService({ fqn: "a.b.host", version: "_2014_07" }), true);
    assert.equal(page.hasHostService({ FQN: "a.b.host", SvcVersion: "_2014_02" }), false);
    assert.equal(page.hasHostService({ fqn: "A.B.HOST", version: "_2014_07" }), false);
  });

  test("adds without duplicates of the same FQN and version", () => {
    const { page, fn } = newPage();
    fn.tavoInterop_HostServiceListUpdate(
      "Add",
      '[{"FQN": "a", "SvcVersion": "1"}, {"FQN": "b", "SvcVersion": "1"}]',
    );
    fn.tavoInterop_HostServiceListUpdate(
      "Add",
      '[{"FQN": "a", "SvcVersion": "1"}, {"FQN": "a", "SvcVersion": "2"}]',
    );
    fn.tavoInterop_HostServiceListUpdate("Add", "[]");
    assert.deepEqual(page.hostServices(), [
      { fqn: "a", version: "1" },
      { fqn: "b", version: "1" },
      { fqn: "a", version: "2" },
    ]);
  });

  test("replaces and removes", () => {
    const { page, fn } = newPage();
    fn.tavoInterop_HostServiceListUpdate(
      "Add",
      '[{"FQN": "a", "SvcVersion": "1"}, {"FQN": "b", "SvcVersion": "1"}]',
    );
    assert.equal(
      fn.tavoInterop_HostServiceListUpdate(
        "Replace",
        '[{"FQN": "c", "SvcVersion": "1"}, {"FQN": "d", "SvcVersion": "1"}]',
      ),
      "",
    );
    assert.deepEqual(page.hostServices(), [
      { fqn: "c", version: "1" },
      { fqn: "d", version: "1" },
    ]);
    assert.equal(
      fn.tavoInterop_HostServiceListUpdate(
        "Remove",
        '[{"FQN": "c", "SvcVersion": "1"}, {"FQN": "x", "SvcVersion": "1"}]',
      ),
      "",
    );
    assert.deepEqual(page.hostServices(), [{ fqn: "d", version: "1" }]);
  });

  test("compares the action without regard to letter case", () => {
    const { page, fn } = newPage();
    assert.equal(fn.tavoInterop_HostServiceListUpdate("aDD", '[{"FQN": "a", "SvcVersion": "1"}]'), "");
    assert.equal(fn.tavoInterop_HostServiceListUpdate("REPLACE", '[{"FQN": "b", "SvcVersion": "1"}]'), "");
    assert.deepEqual(page.hostServices(), [{ fqn: "b", version: "1" }]);
    assert.equal(fn.tavoInterop_HostServiceListUpdate("remove", '[{"FQN": "b", "SvcVersion": "1"}]'), "");
    assert.deepEqual(page.hostServices(), []);
  });

  test("answers an unknown action with an exception record and changes nothing", () => {
    const { page, fn } = newPage();
    fn.tavoInterop_HostServiceListUpdate("Add", '[{"FQN": "a", "SvcVersion": "1"}]');
    assert.equal(
      fn.tavoInterop_HostServiceListUpdate("Merge", "[]"),
      record("Error", "Unknown service list action: Merge"),
    );
    assert.equal(
      fn.tavoInterop_HostServiceListUpdate("Addd", "[]"),
      record("Error", "Unknown service list action: Addd"),
    );
    assert.deepEqual(page.hostServices(), [{ fqn: "a", version: "1" }]);
  });

  test("answers a malformed list with an exception record and changes nothing", () => {
    const { page, fn } = newPage();
    fn.tavoInterop_HostServiceListUpdate("Add", '[{"FQN": "a", "SvcVersion": "1"}]');
    assert.equal(
      fn.tavoInterop_HostServiceListUpdate("Replace", '[{"FQN": "b", "SvcVersion": "1"}'),
      record("SyntaxError", "Invalid JSON at offset 32: unexpected end of text"),
    );
    assert.equal(
      fn.tavoInterop_HostServiceListUpdate("Replace", '[{"FQN": "b", "SvcVersion": "1"}, "c"]'),
      record("TypeError", "Service list entry 1 must be a JSON object, not a string"),
    );
    assert.deepEqual(page.hostServices(), [{ fqn: "a", version: "1" }]);
  });

  test("reads lists holding raw control characters and decoded escapes", () => {
    const { page, fn } = newPage();
    fn.tavoInterop_HostServiceListUpdate("Add", '[{"FQN": "a/b\u0001\tc", "SvcVersion": "v\\/1"}]');
    assert.deepEqual(page.hostServices(), [{ fqn: "a/b\u0001\tc", version: "v/1" }]);
  });

  test("tells listeners when the list changes, and only then", () => {
    const { page, fn } = newPage();
    const seen = [];
    page.on("hostservices", (list) => seen.push(list.map((d) => d.fqn + "@" + d.version).join(",")));
    fn.tavoInterop_HostServiceListUpdate("Add", '[{"FQN": "a", "SvcVersion": "1"}]');
    fn.tavoInterop_HostServiceListUpdate("Add", '[{"FQN": "a", "SvcVersion": "1"}]');
    fn.tavoInterop_HostServiceListUpdate("Replace", '[{"FQN": "a", "SvcVersion": "1"}]');
    fn.tavoInterop_HostServiceListUpdate("Replace", '[{"FQN": "b", "SvcVersion": "1"}]');
    fn.tavoInterop_HostServiceListUpdate("Remove", '[{"FQN": "zz", "SvcVersion": "1"}]');
    assert.deepEqual(seen, ["a@1", "b@1"]);
  });
});

test.describe("tavoInterop_WebMethod", () => {
  test("dispatches to the service of exactly that FQN and version", () => {
    const { page, fn } = newPage();
    const calls = [];
    page.register("x.y.client", "_2014_07", {
      method: (payload, ctx) => (calls.push([payload, ctx]), "r07:" + payload),
    });
    page.register("x.y.client", "_2014_02", { method: (payload) => "r02:" + payload });
    assert.equal(
      fn.tavoInterop_WebMethod('{"FQN": "x.y.client", "SvcVersion": "_2014_07"}', '{"a": 1}'),
      'r07:{"a": 1}',
    );
    assert.equal(fn.tavoInterop_WebMethod('{"FQN": "x.y.client", "SvcVersion": "_2014_02"}', ""), "r02:");
    assert.equal(calls.length, 1);
    assert.equal(calls[0][1].fqn, "x.y.client");
    assert.equal(calls[0][1].version, "_2014_07");
    assert.equal(calls[0][1].page, page);
  });

  test("matches FQN and version case-sensitively", () => {
    const { page, fn } = newPage();
    page.register("x.y.client", "_2014_07", { method: () => "hit" });
    assert.equal(
      fn.tavoInterop_WebMethod('{"FQN": "X.Y.client", "SvcVersion": "_2014_07"}', ""),
      record("Error", "No web service registered for: X.Y.client ver: _2014_07"),
    );
    assert.equal(
      fn.tavoInterop_WebMethod('{"FQN": "x.y.client", "SvcVersion": "_2014_7"}', ""),
      record("Error", "No web service registered for: x.y.client ver: _2014_7"),
    );
  });

  test("answers a missing service with a record naming FQN and version", () => {
    const { fn } = newPage();
    assert.equal(
      fn.tavoInterop_WebMethod('{"FQN": "nope.client", "SvcVersion": "_2016_04"}', "p"),
      '{"Exception": {"name": "Error", "message": "No web service registered for: nope.client ver: _2016_04"}}',
    );
  });

  test("answers a service without a method handler with a record", () => {
    const { page, fn } = newPage();
    page.register("e.client", "1", { event: () => {} });
    assert.equal(
      fn.tavoInterop_WebMethod('{"FQN": "e.client", "SvcVersion": "1"}', ""),
      record("Error", "The web service has no method handler: e.client ver: 1"),
    );
  });

  test("answers malformed descriptor JSON with a record", () => {
    const { fn } = newPage();
    assert.equal(
      fn.tavoInterop_WebMethod('{"FQN": "a", "SvcVersion": ', ""),
      record("SyntaxError", "Invalid JSON at offset 27: unexpected end of text"),
    );
    assert.equal(
      fn.tavoInterop_WebMethod("[]", ""),
      record("TypeError", "A service descriptor must be a JSON object, not an array"),
    );
    assert.equal(
      fn.tavoInterop_WebMethod(undefined, ""),
      record("TypeError", "The service descriptor must be JSON text"),
    );
  });

  test("answers a throwing handler with a record of its name and message", () => {
    const { page, fn } = newPage();
    page.register("t.client", "1", {
      method: (payload) => {
        if (payload === "type") throw new TypeError('wrong "type"');
        if (payload === "custom") throw Object.assign(new Error("quota/limit"), { name: "QuotaError" });
        // A thrown primitive, which pages do meet in the wild.
        // eslint-disable-next-line no-throw-literal
        throw "plain text";
      },
    });
    const descriptor = '{"FQN": "t.client", "SvcVersion": "1"}';
    assert.equal(
      fn.tavoInterop_WebMethod(descriptor, "type"),
      '{"Exception": {"name": "TypeError", "message": "wrong \\"type\\""}}',
    );
    assert.equal(
      fn.tavoInterop_WebMethod(descriptor, "custom"),
      '{"Exception": {"name": "QuotaError", "message": "quota\\/limit"}}',
    );
    assert.equal(fn.tavoInterop_WebMethod(descriptor, "other"), record("Error", "plain text"));
  });

  test("writes non-string answers in the host's format and undefined or null as the empty text", () => {
    const { page, fn } = newPage();
    const answers = {
      object: { State: "busy", Items: [1, "two"] },
      number: 12.5,
      boolean: false,
      undefined,
      null: null,
    };
    page.register("v.client", "1", { method: (payload) => answers[payload] });
    const descriptor = '{"FQN": "v.client", "SvcVersion": "1"}';
    assert.equal(fn.tavoInterop_WebMethod(descriptor, "object"), '{"State": "busy", "Items": [1, "two"]}');
    assert.equal(fn.tavoInterop_WebMethod(descriptor, "number"), "12.5");
    assert.equal(fn.tavoInterop_WebMethod(descriptor, "boolean"), "false");
    assert.equal(fn.tavoInterop_WebMethod(descriptor, "undefined"), "");
    assert.equal(fn.tavoInterop_WebMethod(descriptor, "null"), "");
  });

  test("answers a handler that returns a Promise with a record and reports its rejection", async () => {
    const { page, fn, errors } = newPage();
    page.register("p.client", "1", { method: () => Promise.reject(new RangeError("late")) });
    assert.equal(
      fn.tavoInterop_WebMethod('{"FQN": "p.client", "SvcVersion": "1"}', ""),
      record(
        "TypeError",
        "The method handler of p.client ver: 1 returned a Promise; handlers must answer synchronously because the host evaluates each call as one synchronous script",
      ),
    );
    await new Promise((resolve) => setImmediate(resolve));
    assert.equal(errors.length, 1);
    assert.equal(errors[0].error.message, "late");
    assert.deepEqual({ ...errors[0].context }, { kind: "method", fqn: "p.client", version: "1" });
  });

  test("treats any thenable as a Promise", () => {
    const { page, fn } = newPage();
    page.register("p.client", "1", { method: () => ({ then() {} }) });
    assert.match(
      fn.tavoInterop_WebMethod('{"FQN": "p.client", "SvcVersion": "1"}', ""),
      /^\{"Exception": \{"name": "TypeError"/,
    );
  });

  test("passes the payload through untouched", () => {
    const { page, fn } = newPage();
    let seen;
    page.register("p.client", "1", { method: (payload) => ((seen = payload), "ok") });
    const payload = '{"a": "x\\"y", "raw": "\u0001\n"}';
    fn.tavoInterop_WebMethod('{"FQN": "p.client", "SvcVersion": "1"}', payload);
    assert.equal(seen, payload);
  });
});

test.describe("tavoInterop_WebEvent", () => {
  test("dispatches events and answers with the empty text", () => {
    const { page, fn } = newPage();
    const seen = [];
    page.register("s.client", "_2014_07", {
      event: (payload, ctx) => seen.push([payload, ctx.fqn, ctx.version]),
    });
    assert.equal(
      fn.tavoInterop_WebEvent('{"FQN": "s.client", "SvcVersion": "_2014_07"}', '{"State": "x"}'),
      "",
    );
    assert.deepEqual(seen, [['{"State": "x"}', "s.client", "_2014_07"]]);
  });

  test("ignores what the event handler returns", () => {
    const { page, fn } = newPage();
    page.register("s.client", "1", { event: () => "ignored" });
    assert.equal(fn.tavoInterop_WebEvent('{"FQN": "s.client", "SvcVersion": "1"}', ""), "");
  });

  test("answers failures with records", () => {
    const { page, fn } = newPage();
    page.register("m.client", "1", { method: () => "" });
    page.register("t.client", "1", {
      event: () => {
        throw new RangeError("out");
      },
    });
    page.register("p.client", "1", { event: async () => {} });
    assert.equal(
      fn.tavoInterop_WebEvent('{"FQN": "none.client", "SvcVersion": "1"}', ""),
      record("Error", "No web service registered for: none.client ver: 1"),
    );
    assert.equal(
      fn.tavoInterop_WebEvent('{"FQN": "m.client", "SvcVersion": "1"}', ""),
      record("Error", "The web service has no event handler: m.client ver: 1"),
    );
    assert.equal(
      fn.tavoInterop_WebEvent('{"FQN": "t.client", "SvcVersion": "1"}', ""),
      record("RangeError", "out"),
    );
    assert.equal(
      fn.tavoInterop_WebEvent('{"FQN": "p.client", "SvcVersion": "1"}', ""),
      record(
        "TypeError",
        "The event handler of p.client ver: 1 returned a Promise; handlers must answer synchronously because the host evaluates each call as one synchronous script",
      ),
    );
    assert.equal(
      fn.tavoInterop_WebEvent("not json", ""),
      record("SyntaxError", "Invalid JSON at offset 0: unexpected character"),
    );
  });
});

test.describe("the startup notification", () => {
  test("marks the host ready and answers with the empty text without any page service", async () => {
    const { page, fn } = newPage();
    const waiting = page.whenReady();
    let readyEvents = 0;
    page.on("ready", () => readyEvents++);
    assert.equal(page.isReady(), false);
    assert.equal(fn.tavoInterop_WebEvent(STARTUP_JSON, ""), "");
    assert.equal(page.isReady(), true);
    await waiting;
    assert.equal(readyEvents, 1);
    assert.equal(fn.tavoInterop_WebEvent(STARTUP_JSON, ""), "");
    assert.equal(readyEvents, 1);
  });

  test("is dispatched to a page service registered for it", () => {
    const { page, fn } = newPage();
    const seen = [];
    page.register(wevlin.SERVICES.STARTUP_NOTIFICATION.fqn, "_2014_02", {
      event: (payload) => seen.push([payload, page.isReady()]),
    });
    assert.equal(fn.tavoInterop_WebEvent(STARTUP_JSON, "p"), "");
    assert.deepEqual(seen, [["p", true]]);
  });

  test("never answers with a record, even when that page service fails", () => {
    const { page, fn, errors } = newPage();
    page.register(wevlin.SERVICES.STARTUP_NOTIFICATION.fqn, "_2014_02", {
      event: () => {
        throw new Error("startup handler failed");
      },
    });
    assert.equal(fn.tavoInterop_WebEvent(STARTUP_JSON, ""), "");
    assert.equal(page.isReady(), true);
    assert.equal(errors.length, 1);
    assert.equal(errors[0].error.message, "startup handler failed");
    assert.deepEqual(
      { ...errors[0].context },
      {
        kind: "event",
        fqn: "tavo.wevlin.infrastructure.services.startup.StartupNotification.host",
        version: "_2014_02",
      },
    );
  });

  test("only counts with exactly that FQN and version", () => {
    const { page, fn } = newPage();
    assert.equal(
      fn.tavoInterop_WebEvent(
        '{"FQN": "tavo.wevlin.infrastructure.services.startup.StartupNotification.host", "SvcVersion": "_2014_07"}',
        "",
      ),
      record(
        "Error",
        "No web service registered for: tavo.wevlin.infrastructure.services.startup.StartupNotification.host ver: _2014_07",
      ),
    );
    assert.equal(page.isReady(), false);
  });
});

test.describe("tavoInterop_RequestWebServiceList", () => {
  test("answers [] without services", () => {
    const { fn } = newPage();
    assert.equal(fn.tavoInterop_RequestWebServiceList(), "[]");
  });

  test("answers the page's services in registration order, in the host's format", () => {
    const { page, fn } = newPage();
    page.register("a.client", "_2014_07", { method: () => "" });
    page.register("b.client", "_2014_02", { event: () => {} });
    page.register("a.client", "_2014_07", { event: () => {} });
    assert.equal(
      fn.tavoInterop_RequestWebServiceList(),
      '[{"FQN": "a.client", "SvcVersion": "_2014_07"}, {"FQN": "b.client", "SvcVersion": "_2014_02"}]',
    );
  });

  test("escapes the names", () => {
    const { page, fn } = newPage();
    page.register('q/"x"', "v\\1", { method: () => "" });
    assert.equal(fn.tavoInterop_RequestWebServiceList(), '[{"FQN": "q\\/\\"x\\"", "SvcVersion": "v\\\\1"}]');
  });
});

test.describe("registering page services", () => {
  test("a duplicate replaces the handlers", () => {
    const { page, fn } = newPage();
    page.register("a.client", "1", { method: () => "first" });
    page.register("a.client", "1", { method: () => "second" });
    assert.equal(fn.tavoInterop_WebMethod('{"FQN": "a.client", "SvcVersion": "1"}', ""), "second");
    assert.deepEqual(page.services(), [{ fqn: "a.client", version: "1" }]);
  });

  test("unregister removes exactly one pair", () => {
    const { page, fn } = newPage();
    page.register("a.client", "1", { method: () => "one" });
    page.register("a.client", "2", { method: () => "two" });
    assert.equal(page.unregister("a.client", "1"), true);
    assert.equal(page.unregister("a.client", "1"), false);
    assert.equal(fn.tavoInterop_WebMethod('{"FQN": "a.client", "SvcVersion": "2"}', ""), "two");
    assert.deepEqual(page.services(), [{ fqn: "a.client", version: "2" }]);
  });

  test("the returned function unregisters only its own registration", () => {
    const { page } = newPage();
    const first = page.register("a.client", "1", { method: () => "one" });
    const second = page.register("a.client", "1", { method: () => "two" });
    assert.equal(first(), false);
    assert.deepEqual(page.services(), [{ fqn: "a.client", version: "1" }]);
    assert.equal(second(), true);
    assert.deepEqual(page.services(), []);
  });

  test("refuses bad arguments with exact messages", () => {
    const { page } = newPage();
    const handlers = { method: () => "" };
    assert.throws(() => page.register("", "1", handlers), {
      name: "TypeError",
      message: "The service FQN must be a non-empty string",
    });
    assert.throws(() => page.register("a", 1, handlers), {
      name: "TypeError",
      message: "The service version must be a non-empty string",
    });
    assert.throws(() => page.register("a", "1", {}), {
      name: "TypeError",
      message: "The handlers must be an object with a method or an event function",
    });
    assert.throws(() => page.register("a", "1", { method: "x" }), {
      name: "TypeError",
      message: "handlers.method must be a function",
    });
    assert.throws(() => page.register("a", "1", { event: 1 }), {
      name: "TypeError",
      message: "handlers.event must be a function",
    });
  });

  test("keys such as __proto__ and constructor are ordinary service names", () => {
    const { page, fn } = newPage();
    page.register("__proto__", "constructor", { method: () => "proto" });
    assert.equal(fn.tavoInterop_WebMethod('{"FQN": "__proto__", "SvcVersion": "constructor"}', ""), "proto");
    assert.equal(
      fn.tavoInterop_WebMethod('{"FQN": "constructor", "SvcVersion": ""}', ""),
      record("Error", "No web service registered for: constructor ver: "),
    );
    assert.equal(
      fn.tavoInterop_WebMethod('{"FQN": "toString", "SvcVersion": "hasOwnProperty"}', ""),
      record("Error", "No web service registered for: toString ver: hasOwnProperty"),
    );
    fn.tavoInterop_HostServiceListUpdate(
      "Add",
      '[{"FQN": "__proto__", "SvcVersion": "1"}, {"FQN": "constructor", "SvcVersion": "prototype"}, {"__proto__": {"polluted": 1}, "FQN": "x", "SvcVersion": "y"}]',
    );
    assert.deepEqual(page.hostServices(), [
      { fqn: "__proto__", version: "1" },
      { fqn: "constructor", version: "prototype" },
      { fqn: "x", version: "y" },
    ]);
    assert.equal(page.hasHostService({ fqn: "hasOwnProperty", version: "" }), false);
    assert.equal({}.polluted, undefined);
    assert.equal(Object.prototype.polluted, undefined);
  });
});

test.describe("install and uninstall", () => {
  test("define and remove the five global functions", () => {
    const scope = {};
    const { page } = newPage();
    assert.equal(page.install(scope), page);
    assert.equal(page.installed, true);
    assert.deepEqual(Object.getOwnPropertyNames(scope).sort(), [...wevlin.PAGE_FUNCTION_NAMES].sort());
    for (const name of wevlin.PAGE_FUNCTION_NAMES) assert.equal(scope[name], page.functions[name]);
    assert.equal(scope.tavoInterop_Ping("0.9"), "0.9");
    assert.equal(page.uninstall(), true);
    assert.equal(page.installed, false);
    assert.deepEqual(Object.getOwnPropertyNames(scope), []);
    assert.equal(page.uninstall(), false);
  });

  test("installs on globalThis by default", () => {
    const { page } = newPage();
    page.install();
    try {
      assert.equal(globalThis.tavoInterop_RequestWebServiceList(), "[]");
    } finally {
      page.uninstall();
    }
    assert.equal(globalThis.tavoInterop_RequestWebServiceList, undefined);
  });

  test("installing twice on the same object does nothing", () => {
    const scope = {};
    const { page } = newPage();
    page.install(scope);
    page.install(scope);
    assert.equal(scope.tavoInterop_Ping, page.functions.tavoInterop_Ping);
  });

  test("refuses to overwrite functions defined by someone else", () => {
    const scope = { tavoInterop_WebEvent() {} };
    const { page } = newPage();
    assert.throws(() => page.install(scope), {
      name: "Error",
      message: "tavoInterop_WebEvent is already defined; uninstall the page that defined it first",
    });
    assert.equal(page.installed, false);
    assert.equal(scope.tavoInterop_Ping, undefined);
    const other = newPage().page;
    const shared = {};
    other.install(shared);
    assert.throws(() => page.install(shared), { message: /^tavoInterop_Ping is already defined/ });
  });

  test("refuses a second target while installed", () => {
    const { page } = newPage();
    page.install({});
    assert.throws(() => page.install({}), {
      name: "Error",
      message: "The page is already installed on another object; uninstall it first",
    });
  });

  test("uninstall leaves functions that were replaced since", () => {
    const scope = {};
    const { page } = newPage();
    page.install(scope);
    const mine = () => "mine";
    scope.tavoInterop_Ping = mine;
    page.uninstall();
    assert.equal(scope.tavoInterop_Ping, mine);
    assert.equal(scope.tavoInterop_WebMethod, undefined);
  });
});
