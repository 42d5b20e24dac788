"use strict";

// Hostile input at every entry point of the page library: the five page
// functions the host calls, the host's answers to the page's calls, the JSON
// and script-string readers, and the in-memory host. Whatever the input, a
// page function answers with a string (an exception record at worst), nothing
// overflows the stack, and no prototype of the realm gains or changes a
// property: after every test the own keys of the built-in prototypes are
// compared with those taken before the first.

const test = require("node:test");
const assert = require("node:assert/strict");
const wevlin = require("../src/wevlin.js");
const testing = require("../src/wevlin-testing.js");

const { readJson, writeJson, parseServiceList, parseDescriptor, readExceptionRecord } = wevlin;

const PROTOTYPES = [
  Object.prototype,
  Array.prototype,
  Function.prototype,
  String.prototype,
  Number.prototype,
  Boolean.prototype,
  Error.prototype,
  Map.prototype,
  Set.prototype,
  Promise.prototype,
  wevlin.HostError.prototype,
  wevlin.Page.prototype,
  testing.MemoryHost.prototype,
];

function snapshot() {
  return PROTOTYPES.map((prototype) =>
    Reflect.ownKeys(prototype)
      .map((key) => {
        const descriptor = Object.getOwnPropertyDescriptor(prototype, key);
        const value = "value" in descriptor ? typeof descriptor.value : "accessor";
        return String(key) + ":" + value;
      })
      .sort()
      .join(","),
  );
}

const PRISTINE = snapshot();

test.afterEach(() => {
  assert.deepEqual(snapshot(), PRISTINE);
  assert.equal({}.polluted, undefined);
  assert.equal([].polluted, undefined);
  assert.equal(Object.getPrototypeOf({}), Object.prototype);
});

const MILLION = 1000000;
const MILLION_OPEN = "[".repeat(MILLION);
const MILLION_BALANCED = MILLION_OPEN + "]".repeat(MILLION);
const MILLION_OBJECTS = '{"a": '.repeat(MILLION - 1) + "{}" + "}".repeat(MILLION - 1);
const TOO_DEEP = "Invalid JSON at offset 1000: nesting too deep";

// Prototype keys in every position a reader might copy them from.
const PROTO_OBJECT =
  '{"__proto__": {"polluted": true}, "constructor": {"prototype": {"polluted": true}}, "prototype": {"polluted": true}}';

function record(name, message) {
  return '{"Exception": {"name": "' + name + '", "message": "' + message + '"}}';
}

function newPage(options) {
  const errors = [];
  const page = wevlin.createPage({ onError: (error) => errors.push(error), ...options });
  return { page, fn: page.functions, errors };
}

test.describe("the JSON reader", () => {
  test("a million nested brackets fail as too deep, without exhausting the stack", () => {
    for (const text of [MILLION_OPEN, MILLION_BALANCED]) {
      assert.throws(() => readJson(text), { name: "SyntaxError", message: TOO_DEEP });
    }
    assert.throws(() => readJson(MILLION_OBJECTS), {
      name: "SyntaxError",
      message: "Invalid JSON at offset 6000: nesting too deep",
    });
    // The limit is 1000 levels, as on the host.
    assert.equal(
      writeJson(readJson("[".repeat(1000) + "]".repeat(1000))),
      "[".repeat(1000) + "]".repeat(1000),
    );
  });

  test("prototype keys become own properties of objects without a prototype", () => {
    const value = readJson("[" + PROTO_OBJECT + ", {" + '"a": ' + PROTO_OBJECT + "}]");
    for (const object of [value[0], value[1].a]) {
      assert.equal(Object.getPrototypeOf(object), null);
      assert.deepEqual(Object.keys(object), ["__proto__", "constructor", "prototype"]);
      assert.equal(Object.getPrototypeOf(object.__proto__), null);
      assert.equal(object.__proto__.polluted, true);
    }
    assert.equal(writeJson(value[0]), PROTO_OBJECT);
    assert.deepEqual(parseDescriptor(PROTO_OBJECT), { fqn: "", version: "" });
    assert.deepEqual(parseDescriptor('{"FQN": "__proto__", "SvcVersion": "constructor"}'), {
      fqn: "__proto__",
      version: "constructor",
    });
  });

  test("numbers at the edges read as JavaScript numbers", () => {
    const value = readJson(
      "[2147483647, -2147483648, 2147483648, 9007199254740993, 1.7976931348623157e308, 1e400, -1e400, 4.9e-324, 1e-400, -0, 3.4028235e38]",
    );
    assert.deepEqual(value, [
      2147483647,
      -2147483648,
      2147483648,
      9007199254740992,
      1.7976931348623157e308,
      Infinity,
      -Infinity,
      5e-324,
      0,
      -0,
      3.4028235e38,
    ]);
    // Written back, the non-finite ones become null, as JSON.stringify does.
    assert.equal(writeJson([value[5], value[6], value[9]]), "[null, null, 0]");
    for (const text of ["NaN", "Infinity", "0x10", "+1", "01", "1.", ".5", "1e"]) {
      assert.throws(() => readJson(text), { name: "SyntaxError" }, text);
    }
  });

  test("lone surrogates, NUL and other control characters are kept", () => {
    const text = "\ud800\udfff\udc00\u0000\u0001\u007f";
    assert.equal(readJson('"' + text + '"'), text);
    assert.equal(readJson('"\\ud800\\u0000"'), "\ud800\u0000");
    assert.equal(readJson(writeJson(text)), text);
  });

  test("a 64 MiB string reads and writes", () => {
    const big = "x".repeat(64 * 1024 * 1024);
    assert.equal(readJson('"' + big + '"').length, big.length);
    assert.equal(writeJson(big).length, big.length + 2);
  });
});

test.describe("the five page functions", () => {
  test("tavoInterop_Ping keeps any text as the host's version", () => {
    const { page, fn } = newPage({ version: "1.0" });
    for (const version of [MILLION_OPEN, "__proto__", "\u0000\ud800", record("E", "M")]) {
      assert.equal(fn.tavoInterop_Ping(version), "1.0");
      assert.equal(page.hostVersion, version);
    }
    // Something that is not even text answers with a record rather than throwing.
    const hostile = {
      toString() {
        throw new RangeError("no text");
      },
    };
    assert.equal(fn.tavoInterop_Ping(hostile), record("RangeError", "no text"));
  });

  test("tavoInterop_HostServiceListUpdate answers every bad list with a record", () => {
    const { page, fn } = newPage();
    assert.equal(fn.tavoInterop_HostServiceListUpdate("Add", '[{"FQN": "a", "SvcVersion": "1"}]'), "");
    const cases = [
      [MILLION_OPEN, record("SyntaxError", TOO_DEEP)],
      [MILLION_BALANCED, record("SyntaxError", TOO_DEEP)],
      ["not json", record("SyntaxError", "Invalid JSON at offset 0: unexpected character")],
      [PROTO_OBJECT, record("TypeError", "A service list must be a JSON array, not an object")],
      [
        '[{"FQN": "x", "SvcVersion": {"__proto__": 1}}]',
        record("TypeError", 'Service list entry 0 field \\"SvcVersion\\" must be a string, not an object'),
      ],
      [record("E", "M"), record("TypeError", "A service list must be a JSON array, not an object")],
    ];
    for (const [list, answer] of cases) {
      assert.equal(fn.tavoInterop_HostServiceListUpdate("Replace", list), answer);
    }
    assert.equal(
      fn.tavoInterop_HostServiceListUpdate("__proto__", "[]"),
      record("Error", "Unknown service list action: __proto__"),
    );
    assert.equal(
      fn.tavoInterop_HostServiceListUpdate("constructor", "[]"),
      record("Error", "Unknown service list action: constructor"),
    );
    // A refused update changes nothing.
    assert.deepEqual(page.hostServices(), [{ fqn: "a", version: "1" }]);
    // Prototype keys inside entries are ignored; as names they are plain names.
    assert.equal(
      fn.tavoInterop_HostServiceListUpdate(
        "Replace",
        '[{"__proto__": {"FQN": "evil"}, "FQN": "__proto__", "SvcVersion": "constructor"}, {"FQN": "\u0000", "SvcVersion": "\ud800"}]',
      ),
      "",
    );
    assert.deepEqual(page.hostServices(), [
      { fqn: "__proto__", version: "constructor" },
      { fqn: "\u0000", version: "\ud800" },
    ]);
    assert.equal(page.hasHostService({ fqn: "__proto__", version: "constructor" }), true);
    assert.equal(page.hasHostService({ fqn: "toString", version: "" }), false);
  });

  test("tavoInterop_WebMethod and tavoInterop_WebEvent answer bad descriptors with a record", () => {
    const { page, fn } = newPage();
    page.register("a", "1", { method: (payload) => "got " + payload.length, event: () => {} });
    const cases = [
      [MILLION_BALANCED, record("SyntaxError", TOO_DEEP)],
      [MILLION_OBJECTS, record("SyntaxError", "Invalid JSON at offset 6000: nesting too deep")],
      [
        '{"FQN": {"__proto__": 1}, "SvcVersion": "1"}',
        record("TypeError", 'A service descriptor field \\"FQN\\" must be a string, not an object'),
      ],
      [PROTO_OBJECT, record("Error", "No web service registered for:  ver: ")],
      [
        '{"FQN": "constructor", "SvcVersion": "__proto__"}',
        record("Error", "No web service registered for: constructor ver: __proto__"),
      ],
      ["[]", record("TypeError", "A service descriptor must be a JSON object, not an array")],
    ];
    for (const [descriptor, answer] of cases) {
      assert.equal(fn.tavoInterop_WebMethod(descriptor, ""), answer);
      assert.equal(fn.tavoInterop_WebEvent(descriptor, ""), answer);
    }
  });

  test("payloads reach the page's handlers unread, whatever they hold", () => {
    const { page, fn } = newPage();
    const seen = [];
    page.register("a", "1", {
      method: (payload) => {
        seen.push(payload);
        return payload.length;
      },
    });
    const descriptor = '{"FQN": "a", "SvcVersion": "1"}';
    const big = "p".repeat(64 * 1024 * 1024);
    for (const payload of [MILLION_OPEN, PROTO_OBJECT, "\u0000\ud800", big]) {
      assert.equal(fn.tavoInterop_WebMethod(descriptor, payload), String(payload.length));
    }
    assert.equal(seen.length, 4);
    assert.equal(seen[3] === big, true);
  });

  test("tavoInterop_RequestWebServiceList lists services named like prototype keys", () => {
    const { page, fn } = newPage();
    page.register("__proto__", "constructor", { event: () => {} });
    page.register("prototype", "hasOwnProperty", { event: () => {} });
    assert.deepEqual(parseServiceList(fn.tavoInterop_RequestWebServiceList()), [
      { fqn: "__proto__", version: "constructor" },
      { fqn: "prototype", version: "hasOwnProperty" },
    ]);
  });
});

test.describe("the host's answers to the page", () => {
  test("exception records with prototype keys become plain HostErrors", async () => {
    const answers = [
      '{"Exception": {"name": "__proto__", "message": {"constructor": {"prototype": 1}}}}',
      '{"Exception": {"__proto__": {"name": "x"}, "name": "constructor", "message": "m"}}',
      '{"Exception": ' + MILLION_OPEN,
      '{"Exception": {"name": "' + "n".repeat(1000) + '", "message": "\u0000\ud800"}}',
    ];
    const expected = [
      { name: "__proto__", message: '{"constructor": {"prototype": 1}}' },
      { name: "constructor", message: "m" },
      { name: "Error", message: "Could not decipher host error: " + answers[2] },
      { name: "n".repeat(1000), message: "\u0000\ud800" },
    ];
    for (let i = 0; i < answers.length; i++) {
      const page = wevlin.createPage({
        transport: wevlin.createHostObjectTransport({
          tavoHostMethod: () => answers[i],
          tavoHostEvent: () => answers[i],
          tavoHostPing: () => "0.9",
          tavoHost_WebSideServiceListUpdate: () => answers[i],
          tavoHost_WebSideStartHandShake: () => answers[i],
        }),
      });
      const check = (error) => {
        assert.equal(error instanceof wevlin.HostError, true);
        assert.equal(Object.getPrototypeOf(error), wevlin.HostError.prototype);
        assert.equal(error.name, expected[i].name);
        assert.equal(error.message, expected[i].message);
        assert.equal(error.record, answers[i]);
        return true;
      };
      await assert.rejects(page.invokeMethod({ fqn: "a", version: "1" }, ""), check);
      await assert.rejects(page.raiseEvent({ fqn: "a", version: "1" }, ""), check);
      await assert.rejects(page.startHandshake(), check);
      await assert.rejects(page.announceServices(), check);
    }
    assert.deepEqual(readExceptionRecord('{"Exception": ' + MILLION_BALANCED + "}"), {
      name: "",
      message: "",
    });
  });
});

test.describe("the in-memory host", () => {
  test("answers hostile calls of the page as the native host does", () => {
    const host = testing.createMemoryHost({ target: {} });
    host.registerService("__proto__", "constructor", { method: (payload) => "proto " + payload.length });
    const fn = host.hostObject;
    assert.equal(
      fn.tavoHostMethod('{"FQN": "__proto__", "SvcVersion": "constructor"}', MILLION_OPEN),
      "proto 1000000",
    );
    assert.equal(
      fn.tavoHostMethod(MILLION_BALANCED, ""),
      record("std::runtime_error", "JSON data is not an object"),
    );
    assert.equal(
      fn.tavoHostMethod('{"FQN": "x", "SvcVersion": ' + MILLION_OPEN + "}", ""),
      record("std::invalid_argument", "No matching service descriptor found for:  ver: "),
    );
    assert.equal(
      fn.tavoHostMethod(PROTO_OBJECT, ""),
      record("std::invalid_argument", "No matching service descriptor found for:  ver: "),
    );
    assert.equal(
      fn.tavoHost_WebSideServiceListUpdate("Replace", "[" + PROTO_OBJECT + ', {"FQN": "constructor"}]'),
      "",
    );
    assert.deepEqual(host.webServices(), [
      { fqn: "", version: "" },
      { fqn: "constructor", version: "" },
    ]);
    assert.equal(fn.tavoHost_WebSideServiceListUpdate("Replace", MILLION_BALANCED), "");
    assert.deepEqual(host.webServices(), []);
    assert.equal(
      fn.tavoHost_WebSideServiceListUpdate("__proto__", "[]"),
      record("std::runtime_error", "unknown action"),
    );
  });

  test("a page that answers every call with an exception record", () => {
    const target = {};
    for (const name of wevlin.PAGE_FUNCTION_NAMES) target[name] = () => record("Error", "page says no");
    const host = testing.createMemoryHost({ target });
    host.launch();
    host.loadCompleted();
    assert.equal(
      host.hostObject.tavoHost_WebSideStartHandShake(),
      record("std::runtime_error", "JSON data is not an array"),
    );
    assert.equal(host.contentState, "Initializing");
    assert.equal(host.webSideVersion, record("Error", "page says no"));
  });
});
