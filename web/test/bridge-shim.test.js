"use strict";

// The page half of the web controls' bridge (wevlin/webcontrols/bridge-shim.js),
// run in a fresh script context that plays one document: its location and
// origin, whether it is the top frame, and the binding a browser puts there.

const test = require("node:test");
const assert = require("node:assert/strict");
const fs = require("node:fs");
const path = require("node:path");
const vm = require("node:vm");

const SHIM = fs.readFileSync(
  path.join(__dirname, "..", "..", "wevlin", "webcontrols", "bridge-shim.js"),
  "utf8",
);

const CONFIG = {
  topOnly: true,
  origins: ["http://a.test"],
  urls: [],
  maxCallBytes: 100,
  maxCallsInFlight: 2,
};

// Runs the shim in a document of `href` (and `origin`, by default the URL's),
// top or not, with `config`; returns the document's global object and the
// messages its binding posted.
function load({ href = "http://a.test/page.html", origin, top = true, config = CONFIG } = {}) {
  const posted = [];
  const context = vm.createContext({
    TextDecoder,
    TextEncoder,
    atob,
    btoa,
    JSON,
    Promise,
  });
  const global = vm.runInContext("globalThis", context);
  const url = new URL(href);
  global.location = { href, protocol: url.protocol, origin: url.origin };
  global.origin = origin === undefined ? url.origin : origin;
  global.top = top ? global : {};
  global.__binding = (message) => posted.push(JSON.parse(message));
  vm.runInContext(
    `(${SHIM.trim().replace(/;$/, "")})({binding: "__binding", reply: "__reply"}, ` +
      JSON.stringify(config) +
      ");",
    context,
  );
  return { global, posted };
}

function reply(global, id, ok, text) {
  global.__reply(id, ok, Buffer.from(text, "utf8").toString("base64"));
}

test.describe("bridge-shim.js", () => {
  test("gives an allowed top document wevlinHost and takes the binding away", async () => {
    const { global, posted } = load();
    assert.equal(typeof global.wevlinHost.tavoHostMethod, "function");
    assert.equal(global.__binding, undefined);
    const answer = global.wevlinHost.tavoHostMethod('{"FQN": "a", "SvcVersion": "1"}', "hi");
    assert.deepEqual(posted, [
      { id: 1, fn: "tavoHostMethod", args: ['{"FQN": "a", "SvcVersion": "1"}', "hi"] },
    ]);
    reply(global, 1, true, 'Grüße {"x": 1}');
    assert.equal(await answer, 'Grüße {"x": 1}');
  });

  test("rejects a call with the bridge's own failure text", async () => {
    const { global } = load();
    const answer = global.wevlinHost.tavoHostPing();
    reply(global, 1, false, "No HostAPI is set on the web control");
    await assert.rejects(answer, { message: "No HostAPI is set on the web control" });
  });

  test("gives no bridge to a frame, an origin not allowed or an opaque document", () => {
    for (const options of [
      { top: false },
      { href: "http://b.test/page.html" },
      { href: "http://a.test/sandboxed.html", origin: "null" },
      { href: "data:text/html,x", origin: "null" },
    ]) {
      const { global } = load(options);
      assert.equal(global.wevlinHost, undefined, JSON.stringify(options));
      assert.equal(global.__binding, undefined, JSON.stringify(options));
      assert.equal(global.__reply, undefined, JSON.stringify(options));
    }
  });

  test("follows a policy that allows frames and every origin", () => {
    const config = { ...CONFIG, topOnly: false, origins: null };
    assert.notEqual(load({ top: false, href: "http://b.test/", config }).global.wevlinHost, undefined);
    assert.notEqual(load({ href: "data:text/html,x", origin: "null", config }).global.wevlinHost, undefined);
  });

  test("names file: documents file:// and opaque documents by their URL", () => {
    const file = { ...CONFIG, origins: ["file://"] };
    assert.notEqual(
      load({ href: "file:///p.html", origin: "null", config: file }).global.wevlinHost,
      undefined,
    );
    const data = { ...CONFIG, origins: [], urls: ["data:text/html,mine"] };
    assert.notEqual(
      load({ href: "data:text/html,mine", origin: "null", config: data }).global.wevlinHost,
      undefined,
    );
    assert.equal(
      load({ href: "data:text/html,other", origin: "null", config: data }).global.wevlinHost,
      undefined,
    );
  });

  test("refuses a call over the limit before posting it", async () => {
    const { global, posted } = load();
    await assert.rejects(global.wevlinHost.tavoHostMethod("d".repeat(50), "p".repeat(51)), {
      message: "The call takes 101 bytes, more than the limit of 100",
    });
    // UTF-8 bytes count, not UTF-16 units: 34 three-byte characters.
    await assert.rejects(global.wevlinHost.tavoHostMethod("", "€".repeat(34)), {
      message: "The call takes 102 bytes, more than the limit of 100",
    });
    assert.deepEqual(posted, []);
    global.wevlinHost.tavoHostMethod("d".repeat(50), "p".repeat(50));
    assert.equal(posted.length, 1);
  });

  test("keeps calls beyond those in flight in the page and posts them in order", async () => {
    const { global, posted } = load();
    const answers = [1, 2, 3, 4].map((n) => global.wevlinHost.tavoHostMethod("d", String(n)));
    assert.deepEqual(
      posted.map((call) => call.id),
      [1, 2],
    );
    reply(global, 2, true, "two");
    assert.deepEqual(
      posted.map((call) => call.id),
      [1, 2, 3],
    );
    reply(global, 1, true, "one");
    reply(global, 3, true, "three");
    assert.deepEqual(
      posted.map((call) => call.args[1]),
      ["1", "2", "3", "4"],
    );
    reply(global, 4, true, "four");
    assert.deepEqual(await Promise.all(answers), ["one", "two", "three", "four"]);
  });

  test("ignores answers to calls it does not know", () => {
    const { global, posted } = load();
    reply(global, 99, true, "stray");
    global.wevlinHost.tavoHostPing();
    global.wevlinHost.tavoHostPing();
    global.wevlinHost.tavoHostPing();
    assert.equal(posted.length, 2);
  });
});
