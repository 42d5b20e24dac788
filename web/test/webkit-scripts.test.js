"use strict";

// The WebKitGTK web control's page scripts (wevlin/webcontrols/webkitgtk/):
// the bridge's transport and the console hook, each run in a fresh script
// context that plays one document with WebKit's message handlers.

const test = require("node:test");
const assert = require("node:assert/strict");
const fs = require("node:fs");
const path = require("node:path");
const vm = require("node:vm");

const FOLDER = path.join(__dirname, "..", "..", "wevlin", "webcontrols", "webkitgtk");
const TRANSPORT = fs.readFileSync(path.join(FOLDER, "webkit-transport.js"), "utf8");
const CONSOLE = fs.readFileSync(path.join(FOLDER, "webkit-console.js"), "utf8");
const KEY = "0123456789abcdef0123456789abcdef";

// Makes a document of `href` (and `origin`, by default the URL's), top or
// not, whose handler `name` records what is posted to it and answers each
// post with [true, "b2s="]; returns the context, its global object and the
// posts.
function documentWith({ href = "http://a.test/page.html", origin, top = true, name = "calls" }) {
  const posted = [];
  const context = vm.createContext({ JSON, Promise, Reflect, String });
  const global = vm.runInContext("globalThis", context);
  const url = new URL(href);
  global.location = { href, protocol: url.protocol, origin: url.origin };
  global.origin = origin === undefined ? url.origin : origin;
  global.top = top ? global : {};
  global.webkit = {
    messageHandlers: {
      [name]: {
        postMessage(message) {
          posted.push(message);
          return Promise.resolve([true, "b2s="]);
        },
      },
    },
  };
  return { context, global, posted };
}

// Runs a script file (a function expression) with `args` in `context`.
function run(context, source, args) {
  return vm.runInContext(
    `(${source.trim().replace(/;$/, "")})(${args.map((a) => JSON.stringify(a)).join(", ")})`,
    context,
  );
}

test.describe("webkit-transport.js", () => {
  test("posts each call behind the key and what the document was when it started", async () => {
    const { context, global, posted } = documentWith({});
    const transport = run(context, TRANSPORT, ["calls", KEY]);
    // What the page does later changes nothing of what the transport says.
    global.location.href = "http://b.test/elsewhere.html";
    global.origin = "http://b.test";
    global.webkit.messageHandlers.calls.postMessage = () => assert.fail("replaced handler used");
    assert.deepEqual(await transport.post('{"id":1}'), [true, "b2s="]);
    assert.deepEqual(posted, [`${KEY}Thttp://a.test\nhttp://a.test/page.html\n{"id":1}`]);
  });

  test("says F in a frame, file:// for a file: document and the real origin of an opaque one", () => {
    const cases = [
      [{ top: false }, `${KEY}Fhttp://a.test\nhttp://a.test/page.html\nx`],
      [{ href: "file:///app/index.html", origin: "null" }, `${KEY}Tfile://\nfile:///app/index.html\nx`],
      [{ href: "data:text/html,x", origin: "null" }, `${KEY}Tnull\ndata:text/html,x\nx`],
    ];
    for (const [options, expected] of cases) {
      const { context, posted } = documentWith(options);
      run(context, TRANSPORT, ["calls", KEY]).post("x");
      assert.deepEqual(posted, [expected], JSON.stringify(options));
    }
  });

  test("posts an empty call for a message that is not text", () => {
    const { context, posted } = documentWith({});
    run(context, TRANSPORT, ["calls", KEY]).post({ id: 1 });
    assert.deepEqual(posted, [`${KEY}Thttp://a.test\nhttp://a.test/page.html\n`]);
  });

  test("is empty without the control's handler, so that the shim defines no bridge", () => {
    const { context } = documentWith({ name: "other" });
    assert.equal(run(context, TRANSPORT, ["calls", KEY]).post, undefined);
    const bare = vm.createContext({ Reflect, String });
    vm.runInContext("globalThis.location = { href: 'about:blank', protocol: 'about:' }", bare);
    assert.equal(run(bare, TRANSPORT, ["calls", KEY]).post, undefined);
  });
});

test.describe("webkit-console.js", () => {
  function withConsole() {
    const doc = documentWith({ name: "console" });
    const shown = [];
    doc.global.console = {
      log: (...args) => shown.push(["log", ...args]),
      warn: (...args) => shown.push(["warn", ...args]),
      error: (...args) => shown.push(["error", ...args]),
    };
    run(doc.context, CONSOLE, ["console"]);
    return { ...doc, shown };
  }

  test("posts the type and the text of each message, and still shows it", () => {
    const { global, posted, shown } = withConsole();
    global.console.log("one", 2, { a: [1] }, null, undefined);
    global.console.warn("careful");
    global.console.error(new (vm.runInContext("Error", vm.createContext()))("bad"));
    assert.deepEqual(posted, ['log\none 2 {"a":[1]} null undefined', "warning\ncareful", "error\n{}"]);
    assert.deepEqual(shown[0], ["log", "one", 2, { a: [1] }, null, undefined]);
    assert.deepEqual(shown[1], ["warn", "careful"]);
    assert.equal(shown.length, 3);
  });

  test("writes what cannot be JSON as String gives it, and never throws into the page", () => {
    const { global, posted } = withConsole();
    const cyclic = {};
    cyclic.self = cyclic;
    global.console.log(cyclic, Symbol("s"));
    assert.deepEqual(posted, ["log\n[object Object] Symbol(s)"]);
    global.webkit.messageHandlers.console.postMessage = () => {
      throw new Error("gone");
    };
    assert.doesNotThrow(() => global.console.log("still shown"));
  });

  test("leaves the console alone without the control's handler", () => {
    const { context, global } = documentWith({ name: "other" });
    const log = () => {};
    global.console = { log };
    run(context, CONSOLE, ["console"]);
    assert.equal(global.console.log, log);
  });
});
