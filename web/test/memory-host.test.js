"use strict";

const test = require("node:test");
const assert = require("node:assert/strict");
const vm = require("node:vm");
const wevlin = require("../src/wevlin.js");
const testing = require("../src/wevlin-testing.js");

const STARTUP_JSON =
  '{"FQN": "tavo.wevlin.infrastructure.services.startup.StartupNotification.host", "SvcVersion": "_2014_02"}';

// A memory host and a page wired to each other through a private scope.
function setup(options) {
  const settings = options || {};
  const scope = {};
  const host = testing.createMemoryHost({ target: scope, ...settings.host });
  const page = wevlin.createPage({ transport: host.syncTransport, ...settings.page });
  page.install(scope);
  return { scope, host, page };
}

test.describe("the handshake", () => {
  test("runs the host's script lines in order and ends ready", async () => {
    const { host, page } = setup({ page: { version: "3.0" } });
    host.registerService("a.b.host", "_2014_07", { method: () => "" });
    host.registerService("i.host", "_2014_02", {}, { scope: "instance" });
    page.register("c.client", "_2014_07", { method: () => "" });
    await page.startHandshake();
    assert.deepEqual(host.scriptLines, [
      "tavoInterop_Ping('0.9');",
      "tavoInterop_HostServiceListUpdate('Add','[" +
        '{"FQN": "tavo.wevlin.infrastructure.services.startup.StartupNotification.host", "SvcVersion": "_2014_02"}, ' +
        '{"FQN": "a.b.host", "SvcVersion": "_2014_07"}' +
        "]');",
      'tavoInterop_HostServiceListUpdate(\'Add\',\'[{"FQN": "i.host", "SvcVersion": "_2014_02"}]\');',
      "tavoInterop_RequestWebServiceList();",
      "tavoInterop_WebEvent('" + STARTUP_JSON + "','');",
    ]);
    assert.deepEqual(host.stateHistory, ["Initializing", "LoadedCanTalk"]);
    assert.equal(host.webSideVersion, "3.0");
    assert.deepEqual(host.webServices(), [{ fqn: "c.client", version: "_2014_07" }]);
    assert.equal(page.hostVersion, "0.9");
    assert.deepEqual(page.hostServices(), [
      { fqn: "tavo.wevlin.infrastructure.services.startup.StartupNotification.host", version: "_2014_02" },
      { fqn: "a.b.host", version: "_2014_07" },
      { fqn: "i.host", version: "_2014_02" },
    ]);
    assert.equal(page.isReady(), true);
    assert.deepEqual(host.log, []);
    assert.deepEqual(
      host.calls.map((call) => [call.name, call.result]),
      [["tavoHost_WebSideStartHandShake", ""]],
    );
  });

  test("the page's startup notification then moves the host to LoggedIn", async () => {
    const { host, page } = setup();
    await page.startHandshake();
    await page.whenReady();
    await page.sendStartupNotification();
    assert.equal(host.contentState, "LoggedIn");
    assert.deepEqual(host.calls.at(-1), { name: "tavoHostEvent", args: [STARTUP_JSON, ""], result: "" });
  });

  test("fails to LoadedNoTalk with the host's log line when the page defines nothing", () => {
    const host = testing.createMemoryHost({ target: {} });
    assert.equal(host.hostObject.tavoHost_WebSideStartHandShake(), "");
    assert.deepEqual(host.stateHistory, ["Initializing", "LoadedNoTalk"]);
    assert.deepEqual(host.log, ["Caught exception running tavoInterop_Ping"]);
  });

  test("logs a failing startup notification and stays LoadedCanTalk", () => {
    const scope = {};
    const host = testing.createMemoryHost({ target: scope });
    const page = wevlin.createPage({ transport: host.syncTransport }).install(scope);
    scope.tavoInterop_WebEvent = () => '{"Exception": {"name": "Error", "message": "nope"}}';
    host.hostObject.tavoHost_WebSideStartHandShake();
    assert.equal(host.contentState, "LoadedCanTalk");
    assert.deepEqual(host.log, ["Error invoking the startup notification."]);
    assert.equal(page.isReady(), false);
  });

  test("waits for the load when started while navigating", () => {
    const { host, page } = setup({ host: { contentState: "NoContent" } });
    host.launch();
    host.hostObject.tavoHost_WebSideStartHandShake();
    assert.equal(host.contentState, "Initializing");
    assert.deepEqual(host.scriptLines, []);
    host.loadCompleted();
    assert.equal(host.contentState, "LoadedCanTalk");
    assert.equal(page.isReady(), true);
    assert.deepEqual(host.stateHistory, ["Navigating", "Initializing", "LoadedCanTalk"]);
  });

  test("a load while navigating only pings", () => {
    const { host } = setup({ host: { contentState: "NoContent" } });
    host.launch();
    host.loadCompleted();
    assert.equal(host.contentState, "Waiting");
    assert.deepEqual(host.scriptLines, ["tavoInterop_Ping('0.9');"]);
  });

  test("is ignored in states that do not allow it", () => {
    for (const state of ["NoContent", "TimedOut", "Initializing", "LoadedNoTalk"]) {
      const { host } = setup({ host: { contentState: state } });
      host.hostObject.tavoHost_WebSideStartHandShake();
      assert.equal(host.contentState, state);
      assert.deepEqual(host.scriptLines, []);
    }
  });

  test("runs again when the page restarts it after logging in", async () => {
    const { host, page } = setup();
    await page.startHandshake();
    await page.sendStartupNotification();
    await page.startHandshake();
    assert.deepEqual(host.stateHistory, [
      "Initializing",
      "LoadedCanTalk",
      "LoggedIn",
      "Initializing",
      "LoadedCanTalk",
    ]);
    assert.equal(page.isReady(), true);
    assert.equal(page.hostServices().length, 1);
  });

  test("answers a page list that is not an array with the host's record", () => {
    const scope = {};
    const host = testing.createMemoryHost({ target: scope });
    wevlin.createPage().install(scope);
    scope.tavoInterop_RequestWebServiceList = () => "{}";
    assert.equal(
      host.hostObject.tavoHost_WebSideStartHandShake(),
      '{"Exception": {"name": "std::runtime_error", "message": "JSON data is not an array"}}',
    );
    assert.equal(host.contentState, "Initializing");
  });
});

test.describe("host functions", () => {
  test("tavoHostMethod answers from the registered handler", () => {
    const { host } = setup();
    const seen = [];
    host.registerService("a.host", "1", {
      method: (payload, call) => (seen.push([payload, call.fqn, call.version]), "r"),
    });
    assert.equal(host.hostObject.tavoHostMethod('{"FQN": "a.host", "SvcVersion": "1"}', "p"), "r");
    assert.deepEqual(seen, [["p", "a.host", "1"]]);
  });

  test("a service without a method handler answers with the empty text", () => {
    const { host } = setup();
    host.registerService("a.host", "1", { event: () => {} });
    assert.equal(host.hostObject.tavoHostMethod('{"FQN": "a.host", "SvcVersion": "1"}', "p"), "");
  });

  test("a missing service gives the host's invalid_argument record", () => {
    const { host } = setup();
    host.registerService("a.host", "_2014_07", { method: () => "" });
    assert.equal(
      host.hostObject.tavoHostMethod('{"FQN": "a.host", "SvcVersion": "_2014_02"}', ""),
      '{"Exception": {"name": "std::invalid_argument", "message": "No matching service descriptor found for: a.host ver: _2014_02"}}',
    );
    assert.equal(
      host.hostObject.tavoHostEvent('{"FQN": "b.host", "SvcVersion": "1"}', ""),
      '{"Exception": {"name": "std::invalid_argument", "message": "No matching service descriptor found for: b.host ver: 1"}}',
    );
  });

  test("a descriptor that is not an object gives the host's record", () => {
    const { host } = setup();
    assert.equal(
      host.hostObject.tavoHostMethod("[1]", ""),
      '{"Exception": {"name": "std::runtime_error", "message": "JSON data is not an object"}}',
    );
  });

  test("a handler's error becomes a record of its name", async () => {
    const { host, page } = setup();
    host.registerService("a.host", "1", {
      method: () => {
        throw new wevlin.HostError("std::out_of_range", "index 4");
      },
    });
    await assert.rejects(page.invokeMethod({ fqn: "a.host", version: "1" }, ""), {
      name: "std::out_of_range",
      message: "index 4",
    });
  });

  test("instance services shadow manager services of the same FQN and version", () => {
    const { host } = setup();
    host.registerService("a.host", "1", { method: () => "manager" });
    const unregister = host.registerService(
      "a.host",
      "1",
      { method: () => "instance" },
      { scope: "instance" },
    );
    assert.equal(host.hostObject.tavoHostMethod('{"FQN": "a.host", "SvcVersion": "1"}', ""), "instance");
    assert.equal(unregister(), true);
    assert.equal(host.hostObject.tavoHostMethod('{"FQN": "a.host", "SvcVersion": "1"}', ""), "manager");
  });

  test("registration refuses empty names with the host's messages", () => {
    const host = testing.createMemoryHost();
    assert.throws(() => host.registerService("", "1"), { name: "std::invalid_argument", message: "fqn" });
    assert.throws(() => host.registerService("a", ""), { name: "std::invalid_argument", message: "version" });
  });

  test("tavoHostPing answers with the host's version", () => {
    assert.equal(testing.createMemoryHost().hostObject.tavoHostPing(), "0.9");
    assert.equal(testing.createMemoryHost({ version: "1.2" }).hostObject.tavoHostPing(), "1.2");
  });

  test("the page's list update accepts only Replace, in any case", () => {
    const host = testing.createMemoryHost();
    const update = host.hostObject.tavoHost_WebSideServiceListUpdate;
    assert.equal(update("rEpLaCe", '[{"FQN": "a", "SvcVersion": "1"}]'), "");
    assert.deepEqual(host.webServices(), [{ fqn: "a", version: "1" }]);
    assert.equal(
      update("Add", '[{"FQN": "b", "SvcVersion": "1"}]'),
      '{"Exception": {"name": "std::runtime_error", "message": "unknown action"}}',
    );
    assert.deepEqual(host.webServices(), [{ fqn: "a", version: "1" }]);
  });

  test("records every call with its answer", () => {
    const host = testing.createMemoryHost();
    host.hostObject.tavoHostPing();
    host.hostObject.tavoHostMethod("{}", "x");
    assert.deepEqual(host.calls, [
      { name: "tavoHostPing", args: [], result: "0.9" },
      {
        name: "tavoHostMethod",
        args: ["{}", "x"],
        result:
          '{"Exception": {"name": "std::invalid_argument", "message": "No matching service descriptor found for:  ver: "}}',
      },
    ]);
  });

  test("the binding object answers later, with a Promise", async () => {
    const host = testing.createMemoryHost();
    const answer = host.bindingObject.tavoHostPing();
    assert.deepEqual(host.calls, []);
    assert.equal(await answer, "0.9");
    assert.equal(host.calls.length, 1);
  });
});

test.describe("calls into the page", () => {
  test("refuse to run before the page can talk", () => {
    const { host } = setup();
    assert.throws(() => host.invokeWebMethod({ fqn: "c.client", version: "1" }, ""), {
      name: "std::runtime_error",
      message: "Cannot talk to hosted content",
    });
  });

  test("return the page's reply and turn its records into runtime errors", async () => {
    const { host, page } = setup();
    page.register("c.client", "1", {
      method: (payload) => {
        if (payload === "fail") throw new RangeError("too far");
        return "ok:" + payload;
      },
    });
    await page.startHandshake();
    assert.equal(host.invokeWebMethod({ fqn: "c.client", version: "1" }, "go"), "ok:go");
    assert.throws(() => host.invokeWebMethod({ fqn: "c.client", version: "1" }, "fail"), {
      name: "std::runtime_error",
      message: "RangeError too far",
    });
    assert.throws(() => host.invokeWebEvent({ fqn: "c.client", version: "2" }, ""), {
      name: "std::runtime_error",
      message: "Error No web service registered for: c.client ver: 2",
    });
  });

  test("a record naming nothing cannot be deciphered", async () => {
    const { host, page, scope } = setup();
    await page.startHandshake();
    scope.tavoInterop_WebMethod = () => '{"Exception": {"name": "", "message": ""}}';
    assert.throws(() => host.invokeWebMethod({ fqn: "x", version: "1" }, ""), {
      name: "std::invalid_argument",
      message: 'Could not decipher web side error: {"Exception": {"name": "", "message": ""}}',
    });
  });

  test("deliver payloads as the script string decodes them", async () => {
    const { host, page } = setup();
    const received = [];
    page.register("c.client", "1", { method: (payload) => (received.push(payload), "") });
    await page.startHandshake();
    host.invokeWebMethod({ fqn: "c.client", version: "1" }, "it's");
    host.invokeWebMethod({ fqn: "c.client", version: "1" }, '{"a": "x\\ty\\/z"}');
    assert.deepEqual(received, ["it's", '{"a": "x\ty/z"}']);
  });

  test("fail with ScriptError and the host's log line when the payload breaks the script", async () => {
    const { host, page } = setup();
    page.register("c.client", "1", { method: () => "" });
    await page.startHandshake();
    assert.throws(
      () => host.invokeWebMethod({ fqn: "c.client", version: "1" }, "two\nlines"),
      (error) => {
        assert.ok(error instanceof wevlin.ScriptError);
        assert.equal(
          error.message,
          "SyntaxError: A raw line break at offset 3 is not allowed in a script string",
        );
        assert.equal(
          error.details,
          'tavoInterop_WebMethod(\'{"FQN": "c.client", "SvcVersion": "1"}\',\'two\nlines\');',
        );
        return true;
      },
    );
    assert.deepEqual(host.log, ["Caught exception running tavoInterop_HostServiceListUpdate"]);
  });

  test("pass arguments unchanged when quoting is off", async () => {
    const { host, page } = setup({ host: { quoting: false } });
    const received = [];
    page.register("c.client", "1", { event: (payload) => received.push(payload) });
    await page.startHandshake();
    host.invokeWebEvent({ fqn: "c.client", version: "1" }, "two\nlines \\n");
    assert.deepEqual(received, ["two\nlines \\n"]);
  });

  test("can run the real script lines through a script engine", async () => {
    const context = vm.createContext({});
    const host = testing.createMemoryHost({ evaluate: (line) => vm.runInContext(line, context) });
    const page = wevlin.createPage({ transport: host.syncTransport }).install(context);
    const received = [];
    page.register("c.client", "1", { method: (payload) => (received.push(payload), "answer") });
    await page.startHandshake();
    assert.equal(page.isReady(), true);
    const payloads = ["it's", '{"a": "x\\ty\\/z \\"q\\""}', "\u0001\u2028", "C:\\\\dir"];
    for (const payload of payloads) {
      assert.equal(host.invokeWebMethod({ fqn: "c.client", version: "1" }, payload), "answer");
    }
    assert.deepEqual(received, payloads.map(wevlin.scriptArgumentRoundTrip));
    assert.throws(() => host.invokeWebMethod({ fqn: "c.client", version: "1" }, "a\nb"), {
      name: "ScriptError",
    });
  });
});

test.describe("options", () => {
  test("refuse unknown states and scopes", () => {
    assert.throws(() => testing.createMemoryHost({ contentState: "Ready" }), {
      name: "TypeError",
      message: "Unknown content state: Ready",
    });
    assert.throws(() => testing.createMemoryHost().registerService("a", "1", {}, { scope: "global" }), {
      name: "TypeError",
      message: 'The scope must be "manager" or "instance"',
    });
  });

  test("can leave out the startup-notification service", () => {
    const host = testing.createMemoryHost({ startupNotificationService: false });
    assert.deepEqual(host.hostServices(), []);
    assert.deepEqual(testing.createMemoryHost().hostServices(), [wevlin.SERVICES.STARTUP_NOTIFICATION]);
  });
});

test("content states are only the eight names", () => {
  for (const state of ["toString", "constructor", "__proto__"]) {
    assert.throws(() => testing.createMemoryHost({ contentState: state }), {
      name: "TypeError",
      message: "Unknown content state: " + state,
    });
  }
  assert.throws(() => testing.createMemoryHost().setContentState("hasOwnProperty"), { name: "TypeError" });
});
