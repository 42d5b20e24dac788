"use strict";

// How the host writes its script lines, and what a page function receives
// from them. decodeScriptString is checked against the script engine itself.

const test = require("node:test");
const assert = require("node:assert/strict");
const vm = require("node:vm");
const wevlin = require("../src/wevlin.js");

const { quoteScriptArgument, buildScriptLine, decodeScriptString, scriptArgumentRoundTrip } = wevlin;

// Evaluates a single-quoted string literal with the given body in a fresh
// script, as the host's browser control would.
function engineDecode(body) {
  return vm.runInNewContext("'" + body + "'");
}

test.describe("quoteScriptArgument and buildScriptLine", () => {
  test("put a backslash before each single quote and change nothing else", () => {
    assert.equal(quoteScriptArgument("it's Bob's"), "it\\'s Bob\\'s");
    assert.equal(quoteScriptArgument('a\\b\n"c"'), 'a\\b\n"c"');
  });

  test("write calls with no, one and two arguments", () => {
    assert.equal(
      buildScriptLine("tavoInterop_RequestWebServiceList"),
      "tavoInterop_RequestWebServiceList();",
    );
    assert.equal(buildScriptLine("tavoInterop_Ping", ["0.9"]), "tavoInterop_Ping('0.9');");
    assert.equal(
      buildScriptLine("tavoInterop_HostServiceListUpdate", ["Add", '[{"FQN": "a", "SvcVersion": "1"}]']),
      'tavoInterop_HostServiceListUpdate(\'Add\',\'[{"FQN": "a", "SvcVersion": "1"}]\');',
    );
    assert.equal(
      buildScriptLine("tavoInterop_WebMethod", ["{}", "it's"]),
      "tavoInterop_WebMethod('{}','it\\'s');",
    );
  });
});

test.describe("decodeScriptString", () => {
  const bodies = [
    "plain",
    "",
    "\\'quoted\\'",
    '\\"double\\"',
    "\\\\",
    "\\b\\f\\n\\r\\t\\v",
    "\\/slash",
    "\\x41\\x7e",
    "\\u0041\\u00E9",
    "\\u{1F600}\\u{41}",
    "\\0",
    "\\08",
    "\\1\\12\\123\\377\\400\\47\\7",
    "\\8\\9",
    "\\a\\c\\d\\q\\z\\%",
    "line\\\ncontinued",
    "line\\\r\ncontinued",
    "line\\\rcontinued",
    "sep\u2028ara\u2029tors\\\u2028joined",
    "\u0001raw\u001fcontrol\u007f",
    "\u{1F600} and \\\u{1F600}",
    '{"FQN": "a\\/b", "SvcVersion": "x\\"y"}',
  ];

  for (const body of bodies) {
    test("decodes " + JSON.stringify(body) + " as the script engine does", () => {
      assert.equal(decodeScriptString(body), engineDecode(body));
    });
  }

  const failures = [
    ["early'quote", "An unescaped single quote at offset 5 ends the script string early"],
    ["raw\nbreak", "A raw line break at offset 3 is not allowed in a script string"],
    ["raw\rbreak", "A raw line break at offset 3 is not allowed in a script string"],
    ["trailing\\", "A backslash at the end of a script string escapes its closing quote"],
    ["\\x4", "Invalid hexadecimal escape sequence"],
    ["\\xZZ", "Invalid hexadecimal escape sequence"],
    ["\\u12", "Invalid Unicode escape sequence"],
    ["\\u{110000}", "Invalid Unicode escape sequence"],
    ["\\u{}", "Invalid Unicode escape sequence"],
    ["\\u{41", "Invalid Unicode escape sequence"],
  ];

  for (const [body, message] of failures) {
    test("refuses " + JSON.stringify(body) + " where the script would not parse", () => {
      assert.throws(() => decodeScriptString(body), { name: "SyntaxError", message });
      assert.throws(
        () => engineDecode(body),
        (error) => error.name === "SyntaxError",
      );
    });
  }
});

test.describe("scriptArgumentRoundTrip", () => {
  test("delivers text without backslashes or line breaks exactly", () => {
    const text = `{"FQN": "a.b", "Note": "it's \u0001 ok"}`;
    assert.equal(scriptArgumentRoundTrip(text), text);
  });

  test("turns the host's JSON escapes into the characters they stand for", () => {
    assert.equal(scriptArgumentRoundTrip('{"m": "a\\/b\\tc\\nd"}'), '{"m": "a/b\tc\nd"}');
    assert.equal(scriptArgumentRoundTrip('{"m": "say \\"hi\\""}'), '{"m": "say "hi""}');
    assert.equal(scriptArgumentRoundTrip('{"m": "C:\\\\dir"}'), '{"m": "C:\\dir"}');
  });

  test("keeps JSON with \\/, \\n, \\t, \\r, \\b and \\f readable by readJson with the same value", () => {
    const value = { text: "a/b\tc\nd\re\bf\fg" };
    const sent = wevlin.writeJson(value);
    assert.equal(wevlin.readJson(scriptArgumentRoundTrip(sent)).text, value.text);
  });

  test("fails on a raw line break and on a backslash before a single quote", () => {
    assert.throws(() => scriptArgumentRoundTrip("a\nb"), { name: "SyntaxError" });
    assert.throws(() => scriptArgumentRoundTrip("a\\'b"), {
      name: "SyntaxError",
      message: "An unescaped single quote at offset 3 ends the script string early",
    });
  });
});
