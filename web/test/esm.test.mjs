// The ES module entry points, by path and by package name.

import test from "node:test";
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import wevlin, * as named from "../src/wevlin.mjs";
import byName, { createPage, VERSION } from "wevlin";
import testing, * as testingNamed from "../src/wevlin-testing.mjs";
import testingByName, { createMemoryHost, MemoryHost } from "wevlin/testing";
import * as sources from "../src/lib/index.mjs";
import * as testingSources from "../src/lib/testing.mjs";

const require = createRequire(import.meta.url);

function namedExports(namespace) {
  return Object.keys(namespace)
    .filter((key) => key !== "default")
    .sort();
}

test("the default export is the CommonJS API object", () => {
  assert.equal(wevlin, require("../src/wevlin.js"));
  assert.equal(byName, wevlin);
  assert.equal(VERSION, "0.9.0");
});

test("every member of the API is a named export, and nothing else", () => {
  const exported = namedExports(named);
  assert.deepEqual(exported, Object.keys(wevlin).sort());
  for (const key of exported) assert.equal(named[key], wevlin[key], key);
});

test("the named exports are those of the modules the library is built from", () => {
  assert.deepEqual(namedExports(named), namedExports(sources));
  assert.deepEqual(namedExports(testingNamed), namedExports(testingSources));
});

test("the testing entry is the CommonJS testing object, built on the same library object", () => {
  assert.equal(testing, require("../src/wevlin-testing.js"));
  assert.equal(testingByName, testing);
  assert.deepEqual(namedExports(testingNamed), ["MemoryHost", "createMemoryHost"]);
  assert.equal(createMemoryHost, testing.createMemoryHost);
  assert.equal(MemoryHost, testing.MemoryHost);
  assert.equal("createMemoryHost" in wevlin, false);
  assert.equal("MemoryHost" in wevlin, false);
});

test("named exports work together", async () => {
  const scope = {};
  const host = createMemoryHost({ target: scope });
  const page = createPage({ transport: host.transport }).install(scope);
  await page.startHandshake();
  await page.whenReady();
  assert.equal(host.contentState, "LoadedCanTalk");
  assert.ok(host instanceof MemoryHost);
});

test("the memory host fails with the library's own error classes", () => {
  const host = createMemoryHost({ target: {} });
  assert.throws(() => host.invokeWebMethod({ fqn: "a", version: "1" }, ""), wevlin.HostError);
  host.setContentState("LoadedCanTalk");
  assert.throws(() => host.invokeWebMethod({ fqn: "a", version: "1" }, ""), wevlin.ScriptError);
});
