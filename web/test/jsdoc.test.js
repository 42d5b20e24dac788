"use strict";

// Every name the library exports carries a JSDoc comment where it is defined,
// so that editors show it and the declaration files have a source to follow.

const test = require("node:test");
const assert = require("node:assert/strict");
const fs = require("node:fs");
const path = require("node:path");
const wevlin = require("../src/wevlin.js");

const source = fs.readFileSync(path.join(__dirname, "..", "src", "wevlin.js"), "utf8");
const lines = source.split("\n");

// Returns the index of the line that defines `name` at the library's top
// level, or -1.
function definitionLine(name) {
  const pattern = new RegExp(`^  (?:const|function|class|async function) ${name}\\b`);
  return lines.findIndex((line) => pattern.test(line));
}

// Returns true when the lines just above `index` end a /** ... */ block.
function hasJsDocAbove(index) {
  let at = index - 1;
  if (at < 0 || !lines[at].trim().endsWith("*/")) return false;
  while (at >= 0 && !lines[at].trim().startsWith("/*")) at -= 1;
  return at >= 0 && lines[at].trim().startsWith("/**");
}

test("every export is defined at the library's top level", () => {
  const missing = Object.keys(wevlin).filter((name) => definitionLine(name) < 0);
  assert.deepEqual(missing, []);
});

test("every export has a JSDoc comment", () => {
  const undocumented = Object.keys(wevlin).filter((name) => {
    const index = definitionLine(name);
    return index >= 0 && !hasJsDocAbove(index);
  });
  assert.deepEqual(undocumented, []);
});
