"use strict";

// The one implementation file loads as a classic script, as a CommonJS module
// and, through wevlin.mjs, as an ES module (see esm.test.mjs).

const test = require("node:test");
const assert = require("node:assert/strict");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const vm = require("node:vm");
const { execFileSync } = require("node:child_process");

const SOURCE_DIR = path.join(__dirname, "..", "src");
const source = fs.readFileSync(path.join(SOURCE_DIR, "wevlin.js"), "utf8");

test.describe("classic script", () => {
  test("defines globalThis.wevlin in a fresh global, without module", () => {
    const sandbox = {};
    vm.runInNewContext(source, sandbox, { filename: "wevlin.js" });
    const api = sandbox.wevlin;
    assert.equal(typeof api, "object");
    assert.equal(api.VERSION, "0.9.0");
    assert.equal(typeof api.createPage, "function");
    assert.equal(Object.isFrozen(api), true);
    assert.equal(sandbox.module, undefined);
  });

  test("works in that global without timers or a console", () => {
    const sandbox = {};
    vm.runInNewContext(source, sandbox);
    const page = vm.runInNewContext(
      `const page = wevlin.createPage({ version: "1.0" }).install();
       page.register("a.client", "1", { method: (p) => "got " + p });
       page;`,
      sandbox,
    );
    assert.equal(sandbox.tavoInterop_Ping("0.9"), "1.0");
    assert.equal(
      vm.runInNewContext(
        `tavoInterop_WebMethod('{"FQN": "a.client", "SvcVersion": "1"}','it\\'s');`,
        sandbox,
      ),
      "got it's",
    );
    assert.equal(
      vm.runInNewContext("tavoInterop_RequestWebServiceList();", sandbox),
      '[{"FQN": "a.client", "SvcVersion": "1"}]',
    );
    assert.equal(page.hostVersion, "0.9");
  });
});

test.describe("CommonJS", () => {
  test("exports the same API object that it puts on globalThis", () => {
    const api = require("../src/wevlin.js");
    assert.equal(globalThis.wevlin, api);
    assert.equal(api.VERSION, require("../package.json").version);
  });

  test("resolves through the package name", () => {
    assert.equal(require("wevlin"), require("../src/wevlin.js"));
  });
});

test.describe("ES module in a browser-like loader", () => {
  test("falls back to globalThis.wevlin when wevlin.js has no exports", () => {
    // In a folder marked "type": "module", wevlin.js loads as an ES module with
    // no module object and no exports, as a browser loads it.
    const dir = fs.mkdtempSync(path.join(os.tmpdir(), "wevlin-esm-"));
    try {
      fs.copyFileSync(path.join(SOURCE_DIR, "wevlin.js"), path.join(dir, "wevlin.js"));
      fs.copyFileSync(path.join(SOURCE_DIR, "wevlin.mjs"), path.join(dir, "wevlin.mjs"));
      fs.writeFileSync(path.join(dir, "package.json"), '{"type": "module"}\n');
      const script =
        'import w, { createPage, SERVICES } from "./wevlin.mjs";' +
        'const page = createPage({ version: "5" });' +
        'process.stdout.write(JSON.stringify([w === globalThis.wevlin, typeof module, page.functions.tavoInterop_Ping("0.9"), SERVICES.STARTUP_NOTIFICATION.version]));';
      fs.writeFileSync(path.join(dir, "main.mjs"), script);
      const output = execFileSync(process.execPath, [path.join(dir, "main.mjs")], { encoding: "utf8" });
      assert.deepEqual(JSON.parse(output), [true, "undefined", "5", "_2014_02"]);
    } finally {
      fs.rmSync(dir, { recursive: true, force: true });
    }
  });
});
