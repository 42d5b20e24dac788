// The ES module entry point, by path and by package name.

import test from "node:test";
import assert from "node:assert/strict";
import { createRequire } from "node:module";
import wevlin, * as named from "../src/wevlin.mjs";
import byName, { createPage, createMemoryHost, VERSION } from "wevlin";

const require = createRequire(import.meta.url);

test("the default export is the CommonJS API object", () => {
  assert.equal(wevlin, require("../src/wevlin.js"));
  assert.equal(byName, wevlin);
  assert.equal(VERSION, "0.9.0");
});

test("every member of the API is a named export, and nothing else", () => {
  const exported = Object.keys(named)
    .filter((key) => key !== "default")
    .sort();
  assert.deepEqual(exported, Object.keys(wevlin).sort());
  for (const key of exported) assert.equal(named[key], wevlin[key], key);
});

test("named exports work together", async () => {
  const scope = {};
  const host = createMemoryHost({ target: scope });
  const page = createPage({ transport: host.transport }).install(scope);
  await page.startHandshake();
  await page.whenReady();
  assert.equal(host.contentState, "LoadedCanTalk");
});
