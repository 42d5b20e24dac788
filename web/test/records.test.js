"use strict";

const test = require("node:test");
const assert = require("node:assert/strict");
const wevlin = require("../src/wevlin.js");

const {
  HostError,
  formatExceptionRecord,
  errorToExceptionRecord,
  describeError,
  isExceptionRecord,
  readExceptionRecord,
  errorFromExceptionRecord,
} = wevlin;

test.describe("formatExceptionRecord and errorToExceptionRecord", () => {
  test("write the record with the host's exact spacing", () => {
    assert.equal(
      formatExceptionRecord("std::runtime_error", "JSON data is not an object"),
      '{"Exception": {"name": "std::runtime_error", "message": "JSON data is not an object"}}',
    );
  });

  test("escape name and message so the record stays one line", () => {
    assert.equal(
      formatExceptionRecord("Error", 'say "hi"\nnow/later'),
      '{"Exception": {"name": "Error", "message": "say \\"hi\\"\\nnow\\/later"}}',
    );
  });

  test("use the error's name, including built-in and custom names", () => {
    assert.equal(
      errorToExceptionRecord(new TypeError("bad type")),
      '{"Exception": {"name": "TypeError", "message": "bad type"}}',
    );
    class QuotaError extends Error {
      get name() {
        return "QuotaError";
      }
    }
    assert.equal(
      errorToExceptionRecord(new QuotaError("over")),
      '{"Exception": {"name": "QuotaError", "message": "over"}}',
    );
    assert.equal(
      errorToExceptionRecord(new HostError("std::out_of_range", "index")),
      '{"Exception": {"name": "std::out_of_range", "message": "index"}}',
    );
  });

  test("describe thrown primitives and odd objects", () => {
    assert.deepEqual(describeError("boom"), { name: "Error", message: "boom" });
    assert.deepEqual(describeError(undefined), { name: "Error", message: "undefined" });
    assert.deepEqual(describeError(42), { name: "Error", message: "42" });
    assert.deepEqual(describeError({ name: "", message: 7 }), { name: "Error", message: "7" });
    assert.deepEqual(describeError({}), { name: "Error", message: "" });
    assert.deepEqual(describeError(new Error()), { name: "Error", message: "" });
  });

  test("survive objects whose name and message getters throw", () => {
    const hostile = {
      get name() {
        throw new Error("no name");
      },
      get message() {
        throw new Error("no message");
      },
    };
    assert.equal(errorToExceptionRecord(hostile), '{"Exception": {"name": "Error", "message": ""}}');
  });
});

test.describe("reading exception records", () => {
  test("recognise a record by its first eleven characters only", () => {
    assert.equal(isExceptionRecord('{"Exception": null}'), true);
    assert.equal(isExceptionRecord('{"Exception'), true);
    assert.equal(isExceptionRecord('{ "Exception": {}}'), false);
    assert.equal(isExceptionRecord(' {"Exception": {}}'), false);
    assert.equal(isExceptionRecord(""), false);
    assert.equal(isExceptionRecord(undefined), false);
  });

  test("read name and message, decoding escapes", () => {
    assert.deepEqual(
      readExceptionRecord('{"Exception": {"name": "std::invalid_argument", "message": "a\\/b \\"c\\""}}'),
      { name: "std::invalid_argument", message: 'a/b "c"' },
    );
    assert.equal(readExceptionRecord("plain reply"), null);
  });

  test("give empty texts for a record that cannot be read", () => {
    assert.deepEqual(readExceptionRecord('{"Exception": null}'), { name: "", message: "" });
    assert.deepEqual(readExceptionRecord('{"Exception": {"name": '), { name: "", message: "" });
  });

  test("turn a record into a HostError carrying the record", () => {
    const record = '{"Exception": {"name": "std::runtime_error", "message": "unknown action"}}';
    const error = errorFromExceptionRecord(record);
    assert.ok(error instanceof HostError);
    assert.ok(error instanceof Error);
    assert.equal(error.name, "std::runtime_error");
    assert.equal(error.message, "unknown action");
    assert.equal(error.record, record);
    assert.equal(String(error), "std::runtime_error: unknown action");
  });

  test("name an unreadable record's error plainly", () => {
    const error = errorFromExceptionRecord('{"Exception": null}');
    assert.equal(error.name, "Error");
    assert.equal(error.message, 'Could not decipher host error: {"Exception": null}');
    assert.equal(error.record, '{"Exception": null}');
  });
});

test.describe("HostError", () => {
  test("writes its own record when none is given", () => {
    const error = new HostError("std::logic_error", "wrong kind");
    assert.equal(error.record, '{"Exception": {"name": "std::logic_error", "message": "wrong kind"}}');
  });

  test("falls back to the name HostError", () => {
    assert.equal(new HostError("", "m").name, "HostError");
  });
});
