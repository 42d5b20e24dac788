"use strict";

// The generated files load as classic scripts, as CommonJS modules and,
// through their .mjs entries, as ES modules (see esm.test.mjs): the page
// library src/wevlin.js and the testing entry src/wevlin-testing.js.

const test = require("node:test");
const assert = require("node:assert/strict");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const vm = require("node:vm");
const { execFileSync } = require("node:child_process");

const SOURCE_DIR = path.join(__dirname, "..", "src");
const source = fs.readFileSync(path.join(SOURCE_DIR, "wevlin.js"), "utf8");
const testingSource = fs.readFileSync(path.join(SOURCE_DIR, "wevlin-testing.js"), "utf8");

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

  test("holds the page library only, not the in-memory host", () => {
    const sandbox = {};
    vm.runInNewContext(source, sandbox);
    assert.equal(sandbox.wevlin.createMemoryHost, undefined);
    assert.equal(sandbox.wevlin.MemoryHost, undefined);
    assert.equal(/MemoryHost/.test(source), false);
  });
});

test.describe("the testing entry as a classic script", () => {
  test("defines globalThis.wevlinTesting over the page library loaded before it", () => {
    const sandbox = {};
    vm.runInNewContext(source, sandbox, { filename: "wevlin.js" });
    vm.runInNewContext(testingSource, sandbox, { filename: "wevlin-testing.js" });
    const testing = sandbox.wevlinTesting;
    assert.deepEqual(Object.keys(testing), ["MemoryHost", "createMemoryHost"]);
    assert.equal(Object.isFrozen(testing), true);
    const result = vm.runInNewContext(
      `const scope = {};
       const host = wevlinTesting.createMemoryHost({ target: scope });
       const page = wevlin.createPage({ transport: host.syncTransport }).install(scope);
       page.register("a.client", "1", { method: (p) => "got " + p });
       page.startHandshake().then(() => {
         let failure = null;
         try {
           host.invokeWebMethod({ fqn: "b.client", version: "1" }, "");
         } catch (error) {
           failure = error;
         }
         return [host.contentState, host.invokeWebMethod({ fqn: "a.client", version: "1" }, "it's"),
                 failure instanceof wevlin.HostError, failure.message];
       });`,
      sandbox,
    );
    return result.then((values) => {
      assert.deepEqual(
        [...values],
        ["LoadedCanTalk", "got it's", true, "Error No web service registered for: b.client ver: 1"],
      );
    });
  });

  test("fails clearly when the page library was not loaded first", () => {
    assert.throws(() => vm.runInNewContext(testingSource, {}), {
      message: "wevlin-testing.js needs the page library: load wevlin.js before it",
    });
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

  test("wevlin/testing requires the page library beside it and shares its classes", () => {
    const testing = require("wevlin/testing");
    assert.equal(testing, require("../src/wevlin-testing.js"));
    assert.equal(globalThis.wevlinTesting, testing);
    const host = testing.createMemoryHost({ target: {} });
    assert.ok(host instanceof testing.MemoryHost);
    assert.match(host.hostObject.tavoHostMethod("[]", ""), /^\{"Exception": \{"name": "std::runtime_error"/);
    host.setContentState("LoadedCanTalk");
    assert.throws(() => host.invokeWebMethod({ fqn: "a", version: "1" }, ""), require("wevlin").ScriptError);
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

  test("the testing entry falls back to the globals as well", () => {
    const dir = fs.mkdtempSync(path.join(os.tmpdir(), "wevlin-esm-"));
    try {
      for (const file of ["wevlin.js", "wevlin.mjs", "wevlin-testing.js", "wevlin-testing.mjs"]) {
        fs.copyFileSync(path.join(SOURCE_DIR, file), path.join(dir, file));
      }
      fs.writeFileSync(path.join(dir, "package.json"), '{"type": "module"}\n');
      const script =
        'import t, { createMemoryHost } from "./wevlin-testing.mjs";' +
        'import { HostError } from "./wevlin.mjs";' +
        "const host = createMemoryHost({ target: {} });" +
        "let failure = null;" +
        'try { host.invokeWebMethod({ fqn: "a", version: "1" }, ""); } catch (error) { failure = error; }' +
        "process.stdout.write(JSON.stringify([t === globalThis.wevlinTesting, failure instanceof HostError, host.contentState]));";
      fs.writeFileSync(path.join(dir, "main.mjs"), script);
      const output = execFileSync(process.execPath, [path.join(dir, "main.mjs")], { encoding: "utf8" });
      assert.deepEqual(JSON.parse(output), [true, true, "Waiting"]);
    } finally {
      fs.rmSync(dir, { recursive: true, force: true });
    }
  });
});
