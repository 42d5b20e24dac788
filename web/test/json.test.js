"use strict";

const test = require("node:test");
const assert = require("node:assert/strict");
const wevlin = require("../src/wevlin.js");

const { escapeJsonString, formatJsonString, writeJson, readJson } = wevlin;

test.describe("escapeJsonString", () => {
  test("escapes exactly the eight characters the host escapes", () => {
    assert.equal(escapeJsonString('\b\t\n\f\r"/\\'), '\\b\\t\\n\\f\\r\\"\\/\\\\');
  });

  test("copies other control characters, DEL and non-ASCII unchanged, never as \\u", () => {
    const text = "\u0000\u0001\u000b\u001f\u007f\u00e9\u2028\u{1f600}";
    assert.equal(escapeJsonString(text), text);
    assert.equal(escapeJsonString(text).includes("\\u"), false);
  });

  test("leaves plain text alone and converts non-strings to text", () => {
    assert.equal(escapeJsonString("a.b.c _2014_07"), "a.b.c _2014_07");
    assert.equal(escapeJsonString(12), "12");
  });

  test("formatJsonString quotes the escaped text", () => {
    assert.equal(formatJsonString('tab\there/"q"'), '"tab\\there\\/\\"q\\""');
    assert.equal(formatJsonString(""), '""');
  });
});

test.describe("writeJson", () => {
  test("writes objects with a blank after each colon and ', ' between members", () => {
    assert.equal(writeJson({ FQN: "a", SvcVersion: "1" }), '{"FQN": "a", "SvcVersion": "1"}');
    assert.equal(
      writeJson({ b: 1, a: [1, "x", [2, 3], { k: true }] }),
      '{"b": 1, "a": [1, "x", [2, 3], {"k": true}]}',
    );
  });

  test("writes empty containers and scalars like the host", () => {
    assert.equal(writeJson({}), "{}");
    assert.equal(writeJson([]), "[]");
    assert.equal(writeJson(null), "null");
    assert.equal(writeJson(true), "true");
    assert.equal(writeJson(false), "false");
    assert.equal(writeJson(-12), "-12");
    assert.equal(writeJson(4.5), "4.5");
    assert.equal(writeJson(-0), "0");
  });

  test("escapes strings and property names by the host's rules", () => {
    assert.equal(writeJson({ "a/b": "x\ty\u0001" }), '{"a\\/b": "x\\ty\u0001"}');
  });

  test("walks values the way JSON.stringify does", () => {
    const date = new Date(Date.UTC(2014, 6, 1));
    assert.equal(
      writeJson({ when: date, skip: undefined, fn() {}, list: [undefined, () => 1, NaN, Infinity] }),
      '{"when": "2014-07-01T00:00:00.000Z", "list": [null, null, null, null]}',
    );
    assert.equal(writeJson({ toJSON: (key) => "key=" + key }), '"key="');
    assert.equal(writeJson([new Number(3), new String("s"), new Boolean(false)]), '[3, "s", false]');
  });

  test("writes prototype-free objects and keys such as __proto__", () => {
    const object = Object.create(null);
    object.__proto__ = "p";
    object.constructor = "c";
    assert.equal(writeJson(object), '{"__proto__": "p", "constructor": "c"}');
  });

  test("rejects what has no JSON text with exact messages", () => {
    assert.throws(() => writeJson(undefined), {
      name: "TypeError",
      message: "Cannot write undefined as JSON",
    });
    assert.throws(() => writeJson(() => 1), {
      name: "TypeError",
      message: "Cannot write a function as JSON",
    });
    assert.throws(() => writeJson({ big: 1n }), {
      name: "TypeError",
      message: "Cannot write a BigInt as JSON",
    });
    const cycle = { name: "loop" };
    cycle.self = cycle;
    assert.throws(() => writeJson(cycle), {
      name: "TypeError",
      message: "Cannot write a circular structure as JSON",
    });
  });

  test("writes a shared, non-circular object each time it occurs", () => {
    const shared = { v: 1 };
    assert.equal(writeJson([shared, shared]), '[{"v": 1}, {"v": 1}]');
  });
});

test.describe("readJson", () => {
  test("reads the host's own texts", () => {
    assert.deepEqual(readJson('[{"FQN": "a", "SvcVersion": "1"}]'), [
      Object.assign(Object.create(null), { FQN: "a", SvcVersion: "1" }),
    ]);
    assert.deepEqual(
      readJson('{"Exception": {"name": "std::runtime_error", "message": "JSON data is not an object"}}')
        .Exception.message,
      "JSON data is not an object",
    );
  });

  test("decodes every escape the host writes", () => {
    assert.equal(readJson('"\\b\\t\\n\\f\\r\\"\\/\\\\"'), '\b\t\n\f\r"/\\');
    assert.equal(readJson('"a\\/b"'), "a/b");
  });

  test("decodes \\u escapes as code units", () => {
    assert.equal(readJson('"\\u0041\\u00e9\\ud83d\\ude00"'), "A\u00e9\u{1f600}");
  });

  test("accepts raw control characters inside strings", () => {
    assert.equal(readJson('"a\u0001b\u007f\tc\nd"'), "a\u0001b\u007f\tc\nd");
  });

  test("accepts blanks and control characters around tokens", () => {
    assert.deepEqual(readJson("\u0000 [ 1 ,\u0001 2 ]\n\r"), [1, 2]);
    assert.equal(readJson("  42\n"), 42);
  });

  test("reads numbers, literals and nesting", () => {
    assert.deepEqual(readJson("[-1, 0, 4.5, 1e3, 2.5E-1, true, false, null]"), [
      -1,
      0,
      4.5,
      1000,
      0.25,
      true,
      false,
      null,
    ]);
    assert.deepEqual(readJson('[[[]], {"a": {"b": []}}]'), [
      [[]],
      Object.assign(Object.create(null), { a: Object.assign(Object.create(null), { b: [] }) }),
    ]);
  });

  test("keeps the last of duplicate names", () => {
    assert.equal(readJson('{"b": 1, "a": 2, "b": 3}').b, 3);
  });

  test("creates objects without a prototype, so __proto__ and constructor are plain keys", () => {
    const value = readJson(
      '{"__proto__": {"polluted": true}, "constructor": {"prototype": {"polluted": true}}}',
    );
    assert.equal(Object.getPrototypeOf(value), null);
    assert.deepEqual(Object.keys(value), ["__proto__", "constructor"]);
    assert.equal(value.__proto__.polluted, true);
    assert.equal({}.polluted, undefined);
    assert.equal(Object.prototype.polluted, undefined);
  });

  test("reports malformed text with the offset and the reason", () => {
    const cases = [
      ["", "Invalid JSON at offset 0: no value"],
      ["   ", "Invalid JSON at offset 3: no value"],
      ["[1] trailing", "Invalid JSON at offset 4: unexpected text after the value"],
      ["[1,]", "Invalid JSON at offset 3: unexpected character"],
      ["[1 2]", "Invalid JSON at offset 3: expected ',' or ']'"],
      ['["x", [1, 2]', "Invalid JSON at offset 12: unexpected end of text"],
      ["{a: 1}", "Invalid JSON at offset 1: expected a quoted property name"],
      ['{"a" 1}', "Invalid JSON at offset 5: expected ':'"],
      ['{"a": 1', "Invalid JSON at offset 7: unexpected end of text"],
      ['{"a": 1 "b": 2}', "Invalid JSON at offset 8: expected ',' or '}'"],
      ['"abc', "Invalid JSON at offset 4: unterminated string"],
      ['"ab\\', "Invalid JSON at offset 3: unterminated string"],
      ['"a\\x"', "Invalid JSON at offset 2: invalid escape character"],
      ['"\\u00G1"', "Invalid JSON at offset 1: invalid \\u escape"],
      ["nul", "Invalid JSON at offset 0: unexpected character"],
      ["+7", "Invalid JSON at offset 0: unexpected character"],
      ["-", "Invalid JSON at offset 0: invalid number"],
    ];
    for (const [text, message] of cases) {
      assert.throws(() => readJson(text), { name: "SyntaxError", message }, JSON.stringify(text));
    }
  });

  test("refuses text that is not a string", () => {
    assert.throws(() => readJson(undefined), {
      name: "TypeError",
      message: "JSON text must be a string, not undefined",
    });
  });

  test("limits nesting instead of exhausting the stack", () => {
    assert.throws(() => readJson("[".repeat(100000)), {
      name: "SyntaxError",
      message: "Invalid JSON at offset 1000: nesting too deep",
    });
  });
});

test.describe("readJson's nesting limit, the host's: the outermost array or object is level 1", () => {
  const arrays = (n) => "[".repeat(n) + "]".repeat(n);
  const objects = (n) => '{"k": '.repeat(n - 1) + "{}" + "}".repeat(n - 1);
  const mixed = (pairs) => '[{"k": '.repeat(pairs) + "0" + "}]".repeat(pairs);
  const tooDeep = (offset) => ({
    name: "SyntaxError",
    message: "Invalid JSON at offset " + offset + ": nesting too deep",
  });

  test("a thousand nested arrays read, all the way down", () => {
    let level = readJson(arrays(1000));
    let depth = 1;
    while (level.length > 0) {
      assert.equal(level.length, 1);
      level = level[0];
      depth += 1;
    }
    assert.equal(depth, 1000);
    assert.equal(writeJson(readJson(arrays(1000))), arrays(1000));
  });

  test("a thousand and one fail at the opening bracket of the last level", () => {
    assert.throws(() => readJson(arrays(1001)), tooDeep(1000));
  });

  test("the bound holds for objects", () => {
    assert.equal(writeJson(readJson(objects(1000))), objects(1000));
    assert.throws(() => readJson(objects(1001)), tooDeep(6000));
  });

  test("the bound holds for mixed nesting", () => {
    assert.equal(writeJson(readJson(mixed(500))), mixed(500));
    assert.throws(() => readJson("[" + mixed(500) + "]"), tooDeep(3495));
    assert.throws(() => readJson('{"x": ' + mixed(500) + "}"), tooDeep(3500));
  });

  test("the depth of a value counts, not its position", () => {
    const inside = readJson("[1, " + arrays(999) + ', "end"]');
    assert.equal(inside.length, 3);
    assert.equal(inside[2], "end");
    assert.throws(() => readJson("[1, " + arrays(1000) + ', "end"]'), tooDeep(1003));
  });

  test("the page reads a thousand-level service list entry as the host would", () => {
    // A list whose entry holds a thousand-level value is read up to the
    // entry's fields; one level more is refused as a whole.
    const deepValue = arrays(998);
    assert.deepEqual(wevlin.parseServiceList('[{"FQN": "a", "SvcVersion": "1", "x": ' + deepValue + "}]"), [
      { fqn: "a", version: "1" },
    ]);
    assert.throws(
      () => wevlin.parseServiceList('[{"FQN": "a", "SvcVersion": "1", "x": ' + arrays(999) + "}]"),
      { name: "SyntaxError", message: /nesting too deep$/ },
    );
  });

  test("reads back everything writeJson writes", () => {
    const value = { text: '\b\t\n\f\r"/\\\u0001\u00e9', list: [1, -2.5, true, null, { k: "v" }] };
    const copy = readJson(writeJson(value));
    assert.equal(copy.text, value.text);
    assert.equal(writeJson(copy), writeJson(value));
  });
});
