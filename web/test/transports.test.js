"use strict";

const test = require("node:test");
const assert = require("node:assert/strict");
const wevlin = require("../src/wevlin.js");
const testing = require("../src/wevlin-testing.js");

// A binding shaped like globalThis.wevlinHost: five functions answering with
// Promises of strings; each call is recorded with the receiver it got.
function fakeBinding(answer) {
  const calls = [];
  const binding = {};
  for (const name of wevlin.HOST_FUNCTION_NAMES) {
    binding[name] = function (...args) {
      calls.push({ name, args, self: this });
      return Promise.resolve(answer(name, args));
    };
  }
  return { binding, calls };
}

test.describe("createBindingTransport", () => {
  test("forwards each host function with its arguments to the binding", async () => {
    const { binding, calls } = fakeBinding((name) => "answer of " + name);
    const transport = wevlin.createBindingTransport(binding);
    assert.equal(transport.kind, "binding");
    assert.equal(await transport.tavoHostMethod("d", "p"), "answer of tavoHostMethod");
    assert.equal(await transport.tavoHostEvent("d", "e"), "answer of tavoHostEvent");
    assert.equal(await transport.tavoHostPing(), "answer of tavoHostPing");
    assert.equal(
      await transport.tavoHost_WebSideServiceListUpdate("Replace", "[]"),
      "answer of tavoHost_WebSideServiceListUpdate",
    );
    assert.equal(
      await transport.tavoHost_WebSideStartHandShake(),
      "answer of tavoHost_WebSideStartHandShake",
    );
    assert.deepEqual(
      calls.map((call) => [call.name, ...call.args]),
      [
        ["tavoHostMethod", "d", "p"],
        ["tavoHostEvent", "d", "e"],
        ["tavoHostPing"],
        ["tavoHost_WebSideServiceListUpdate", "Replace", "[]"],
        ["tavoHost_WebSideStartHandShake"],
      ],
    );
    assert.ok(calls.every((call) => call.self === binding));
  });

  test("looks up globalThis.wevlinHost at each call when given no binding", async () => {
    const transport = wevlin.createBindingTransport();
    await assert.rejects(transport.tavoHostPing(), {
      name: "Error",
      message: "globalThis.wevlinHost is not available",
    });
    globalThis.wevlinHost = fakeBinding(() => "0.9").binding;
    try {
      assert.equal(await transport.tavoHostPing(), "0.9");
    } finally {
      delete globalThis.wevlinHost;
    }
  });

  test("rejects when the binding lacks a function or answers without a string", async () => {
    const transport = wevlin.createBindingTransport({ tavoHostPing: async () => undefined });
    await assert.rejects(transport.tavoHostMethod("d", "p"), {
      name: "TypeError",
      message: "The host binding has no function tavoHostMethod",
    });
    await assert.rejects(transport.tavoHostPing(), {
      name: "TypeError",
      message: "The host function tavoHostPing answered with undefined instead of a string",
    });
  });

  test("turns a binding that throws into a rejection", async () => {
    const transport = wevlin.createBindingTransport({
      tavoHostPing() {
        throw new Error("native side gone");
      },
    });
    const result = transport.tavoHostPing();
    assert.ok(result instanceof Promise);
    await assert.rejects(result, { name: "Error", message: "native side gone" });
  });

  test("refuses a binding that is not an object", () => {
    assert.throws(() => wevlin.createBindingTransport(null), {
      name: "TypeError",
      message: "The host binding must be an object, not null",
    });
  });
});

test.describe("createHostObjectTransport", () => {
  test("calls the host object at once and answers with a Promise", async () => {
    const calls = [];
    const hostObject = {
      tavoHostMethod(descriptorJson, payload) {
        calls.push([descriptorJson, payload, this === hostObject]);
        return "reply";
      },
    };
    const transport = wevlin.createHostObjectTransport(hostObject);
    assert.equal(transport.kind, "hostObject");
    const result = transport.tavoHostMethod("d", "p");
    assert.deepEqual(calls, [["d", "p", true]]);
    assert.ok(result instanceof Promise);
    assert.equal(await result, "reply");
  });

  test("rejects on a missing function and on a non-string answer", async () => {
    const transport = wevlin.createHostObjectTransport({ tavoHostPing: () => 0.9 });
    await assert.rejects(transport.tavoHostEvent("d", "p"), {
      name: "TypeError",
      message: "The host object has no function tavoHostEvent",
    });
    await assert.rejects(transport.tavoHostPing(), {
      name: "TypeError",
      message: "The host function tavoHostPing answered with a number instead of a string",
    });
  });

  test("refuses a missing host object", () => {
    assert.throws(() => wevlin.createHostObjectTransport(), {
      name: "TypeError",
      message: "The host object must be an object, not undefined",
    });
  });
});

test.describe("detectTransport", () => {
  test("finds nothing without globalThis.wevlinHost", () => {
    assert.equal(wevlin.detectTransport(), null);
    assert.equal(wevlin.detectTransport({ wevlinHost: "not an object" }), null);
  });

  test("uses the binding transport when globalThis.wevlinHost exists", async () => {
    const { binding } = fakeBinding(() => "0.9");
    globalThis.wevlinHost = binding;
    try {
      const transport = wevlin.detectTransport();
      assert.equal(transport.kind, "binding");
      assert.equal(await transport.tavoHostPing(), "0.9");
    } finally {
      delete globalThis.wevlinHost;
    }
  });

  test("looks in the scope it is given", async () => {
    const { binding } = fakeBinding(() => "scoped");
    const transport = wevlin.detectTransport({ wevlinHost: binding });
    assert.equal(await transport.tavoHostPing(), "scoped");
  });
});

test.describe("a page over each transport", () => {
  for (const kind of ["transport", "syncTransport"]) {
    test("runs the handshake and calls a host service over the memory host's " + kind, async () => {
      const scope = {};
      const host = testing.createMemoryHost({ target: scope });
      host.registerService("a.b.host", "_2014_07", { method: (payload) => "echo " + payload });
      const page = wevlin.createPage({ transport: host[kind], version: "2.1" });
      page.register("c.client", "_2014_07", { method: () => "from page" });
      page.install(scope);
      await page.startHandshake();
      await page.whenReady();
      assert.equal(host.contentState, "LoadedCanTalk");
      assert.equal(host.webSideVersion, "2.1");
      assert.deepEqual(host.webServices(), [{ fqn: "c.client", version: "_2014_07" }]);
      assert.equal(await page.invokeMethod({ fqn: "a.b.host", version: "_2014_07" }, "x"), "echo x");
      await page.sendStartupNotification();
      assert.equal(host.contentState, "LoggedIn");
      assert.equal(host.invokeWebMethod({ fqn: "c.client", version: "_2014_07" }, ""), "from page");
    });
  }
});
