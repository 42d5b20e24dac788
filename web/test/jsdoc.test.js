"use strict";

// Every name the library and its testing entry export carries a JSDoc comment
// where it is defined in src/lib/, so that editors show it and the declaration
// files have a source to follow.

const test = require("node:test");
const assert = require("node:assert/strict");
const fs = require("node:fs");
const path = require("node:path");
const { generate } = require("../scripts/build.js");

const LIB_DIR = path.join(__dirname, "..", "src", "lib");
const modules = fs
  .readdirSync(LIB_DIR)
  .filter((file) => file.endsWith(".mjs"))
  .map((file) => ({ file, lines: fs.readFileSync(path.join(LIB_DIR, file), "utf8").split("\n") }));

// Returns [module, index of the line] where `name` is exported, or null.
function definition(name) {
  const pattern = new RegExp(`^export (?:const|function|class|async function) ${name}\\b`);
  for (const module of modules) {
    const index = module.lines.findIndex((line) => pattern.test(line));
    if (index >= 0) return { lines: module.lines, index };
  }
  return null;
}

// Returns true when the lines just above `index` end a /** ... */ block.
function hasJsDocAbove(lines, index) {
  let at = index - 1;
  if (at < 0 || !lines[at].trim().endsWith("*/")) return false;
  while (at >= 0 && !lines[at].trim().startsWith("/*")) at -= 1;
  return at >= 0 && lines[at].trim().startsWith("/**");
}

const { runtimeNames, testingNames } = generate();
const exported = runtimeNames.concat(testingNames);

test("every export is defined at the top level of a module", () => {
  assert.ok(exported.includes("createPage") && exported.includes("createMemoryHost"));
  const missing = exported.filter((name) => definition(name) === null);
  assert.deepEqual(missing, []);
});

test("every export has a JSDoc comment", () => {
  const undocumented = exported.filter((name) => {
    const found = definition(name);
    return found !== null && !hasJsDocAbove(found.lines, found.index);
  });
  assert.deepEqual(undocumented, []);
});
