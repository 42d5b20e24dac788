"use strict";

const test = require("node:test");
const assert = require("node:assert/strict");
const wevlin = require("../src/wevlin.js");

const { normalizeDescriptor, descriptorToJson, serviceListToJson, parseDescriptor, parseServiceList } =
  wevlin;

test.describe("normalizeDescriptor", () => {
  test("accepts both spellings", () => {
    assert.deepEqual(normalizeDescriptor({ fqn: "a", version: "1" }), { fqn: "a", version: "1" });
    assert.deepEqual(normalizeDescriptor({ FQN: "a", SvcVersion: "1" }), { fqn: "a", version: "1" });
  });

  test("refuses anything but two strings", () => {
    assert.throws(() => normalizeDescriptor(null), {
      name: "TypeError",
      message: "A service descriptor must be an object, not null",
    });
    assert.throws(() => normalizeDescriptor("a.b"), {
      name: "TypeError",
      message: "A service descriptor must be an object, not a string",
    });
    assert.throws(() => normalizeDescriptor({ fqn: "a" }), {
      name: "TypeError",
      message: "A service descriptor needs the strings fqn and version (or FQN and SvcVersion)",
    });
    assert.throws(() => normalizeDescriptor({ fqn: "a", version: 2 }), { name: "TypeError" });
  });
});

test.describe("descriptorToJson and serviceListToJson", () => {
  test("write the host's descriptor format", () => {
    assert.equal(descriptorToJson({ fqn: "a.b.c", version: "2" }), '{"FQN": "a.b.c", "SvcVersion": "2"}');
    assert.equal(
      descriptorToJson(wevlin.SERVICES.STARTUP_NOTIFICATION),
      '{"FQN": "tavo.wevlin.infrastructure.services.startup.StartupNotification.host", "SvcVersion": "_2014_02"}',
    );
  });

  test("escape the texts", () => {
    assert.equal(
      descriptorToJson({ fqn: 'a/"b"', version: "\t" }),
      '{"FQN": "a\\/\\"b\\"", "SvcVersion": "\\t"}',
    );
  });

  test("join list entries with ', ' and write an empty list as []", () => {
    assert.equal(serviceListToJson([]), "[]");
    assert.equal(
      serviceListToJson([
        { fqn: "x", version: "y" },
        { FQN: "p", SvcVersion: "q" },
      ]),
      '[{"FQN": "x", "SvcVersion": "y"}, {"FQN": "p", "SvcVersion": "q"}]',
    );
  });

  test("take any iterable", () => {
    const set = new Set([{ fqn: "x", version: "y" }]);
    assert.equal(serviceListToJson(set), '[{"FQN": "x", "SvcVersion": "y"}]');
  });
});

test.describe("parseDescriptor and parseServiceList", () => {
  test("read the host's texts", () => {
    assert.deepEqual(parseDescriptor('{"FQN": "a.b.host", "SvcVersion": "_2014_07"}'), {
      fqn: "a.b.host",
      version: "_2014_07",
    });
    assert.deepEqual(parseServiceList('[{"FQN": "a", "SvcVersion": "1"}, {"FQN": "b", "SvcVersion": "2"}]'), [
      { fqn: "a", version: "1" },
      { fqn: "b", version: "2" },
    ]);
    assert.deepEqual(parseServiceList("[]"), []);
  });

  test("decode \\/ and keep raw control characters", () => {
    assert.deepEqual(parseDescriptor('{"FQN": "a\\/b\u0001", "SvcVersion": "v"}'), {
      fqn: "a/b\u0001",
      version: "v",
    });
  });

  test("read a missing field as the empty text and ignore unknown fields", () => {
    assert.deepEqual(parseDescriptor('{"FQN": "a", "Extra": 1}'), { fqn: "a", version: "" });
    assert.deepEqual(parseDescriptor("{}"), { fqn: "", version: "" });
  });

  test("report values of the wrong shape", () => {
    assert.throws(() => parseDescriptor("[]"), {
      name: "TypeError",
      message: "A service descriptor must be a JSON object, not an array",
    });
    assert.throws(() => parseDescriptor('{"FQN": 5}'), {
      name: "TypeError",
      message: 'A service descriptor field "FQN" must be a string, not a number',
    });
    assert.throws(() => parseServiceList('{"FQN": "a"}'), {
      name: "TypeError",
      message: "A service list must be a JSON array, not an object",
    });
    assert.throws(() => parseServiceList('[{"FQN": "a", "SvcVersion": "1"}, 7]'), {
      name: "TypeError",
      message: "Service list entry 1 must be a JSON object, not a number",
    });
    assert.throws(() => parseServiceList('[{"FQN": "a", "SvcVersion": null}]'), {
      name: "TypeError",
      message: 'Service list entry 0 field "SvcVersion" must be a string, not null',
    });
  });

  test("report text that is not JSON", () => {
    assert.throws(() => parseDescriptor("FQN"), {
      name: "SyntaxError",
      message: "Invalid JSON at offset 0: unexpected character",
    });
  });

  test("do not let __proto__ keys reach any prototype", () => {
    const list = parseServiceList('[{"__proto__": {"FQN": "evil"}, "FQN": "a", "SvcVersion": "1"}]');
    assert.deepEqual(list, [{ fqn: "a", version: "1" }]);
    assert.equal({}.FQN, undefined);
  });
});
