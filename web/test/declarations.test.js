"use strict";

// The declaration files name exactly the values the entries export: the
// export lists of src/lib/index.mjs and src/lib/testing.mjs are the only
// lists, and the TypeScript compiler reads the declarations back here.

const test = require("node:test");
const assert = require("node:assert/strict");
const path = require("node:path");
const ts = require("typescript");
const { generate } = require("../scripts/build.js");
const wevlin = require("../src/wevlin.js");
const testing = require("../src/wevlin-testing.js");

const ROOT = path.join(__dirname, "..");
const { runtimeNames, testingNames } = generate();

const FILES = ["index.d.ts", "index.d.mts", "testing.d.ts", "testing.d.mts"].map((file) =>
  path.join(ROOT, file),
);
const program = ts.createProgram(FILES, {
  module: ts.ModuleKind.Node16,
  moduleResolution: ts.ModuleResolutionKind.Node16,
  target: ts.ScriptTarget.ES2022,
  types: [],
  strict: true,
  noEmit: true,
});
const checker = program.getTypeChecker();

// Returns the exported values of a declaration file: name -> "class",
// "function" or "const" (types and interfaces are left out).
function declaredValues(file) {
  const source = program.getSourceFile(path.join(ROOT, file));
  assert.ok(source, file + " was not read");
  const values = {};
  for (const exported of checker.getExportsOfModule(checker.getSymbolAtLocation(source))) {
    const symbol = exported.flags & ts.SymbolFlags.Alias ? checker.getAliasedSymbol(exported) : exported;
    if ((symbol.flags & ts.SymbolFlags.Value) === 0) continue;
    if (symbol.flags & ts.SymbolFlags.Class) values[exported.name] = "class";
    else if (symbol.flags & ts.SymbolFlags.Function) values[exported.name] = "function";
    else values[exported.name] = exported.name === "default" ? "default" : "const";
  }
  return values;
}

// Returns what each exported value of an API object is, in the same terms.
function actualValues(api, names) {
  const values = {};
  for (const name of names) {
    const value = api[name];
    if (typeof value !== "function") values[name] = "const";
    else values[name] = /^class\b/.test(Function.prototype.toString.call(value)) ? "class" : "function";
  }
  return values;
}

test("the declaration files compile without errors", () => {
  const diagnostics = ts
    .getPreEmitDiagnostics(program)
    .map((diagnostic) => ts.flattenDiagnosticMessageText(diagnostic.messageText, "\n"));
  assert.deepEqual(diagnostics, []);
});

test("the export lists are the API objects' members", () => {
  assert.deepEqual(Object.keys(wevlin), runtimeNames);
  assert.deepEqual(Object.keys(testing), testingNames);
});

test("index.d.ts declares exactly the page library's exports, each as what it is", () => {
  assert.deepEqual(declaredValues("index.d.ts"), actualValues(wevlin, runtimeNames));
});

test("index.d.mts declares the same, and the default export", () => {
  assert.deepEqual(declaredValues("index.d.mts"), {
    ...actualValues(wevlin, runtimeNames),
    default: "default",
  });
});

test("testing.d.ts declares exactly the testing entry's exports", () => {
  assert.deepEqual(declaredValues("testing.d.ts"), actualValues(testing, testingNames));
  assert.deepEqual(declaredValues("testing.d.ts"), { MemoryHost: "class", createMemoryHost: "function" });
});

test("testing.d.mts declares the same, and the default export", () => {
  assert.deepEqual(declaredValues("testing.d.mts"), {
    ...actualValues(testing, testingNames),
    default: "default",
  });
});
