"use strict";

// The npm package: its licence, and exactly the files its tarball carries.

const test = require("node:test");
const assert = require("node:assert/strict");
const fs = require("node:fs");
const path = require("node:path");
const { execFileSync } = require("node:child_process");

const ROOT = path.join(__dirname, "..");
const manifest = require("../package.json");

// Runs npm: the one running the tests when there is one, else npm from PATH.
function npm(args) {
  const execPath = process.env.npm_execpath;
  const [command, prefix] =
    execPath !== undefined && /\.[cm]?js$/.test(execPath)
      ? [process.execPath, [execPath]]
      : [process.platform === "win32" ? "npm.cmd" : "npm", []];
  return execFileSync(command, [...prefix, ...args], {
    cwd: ROOT,
    encoding: "utf8",
    stdio: ["ignore", "pipe", "pipe"],
  });
}

test("the package is MIT-licensed and publishable", () => {
  assert.equal(manifest.license, "MIT");
  assert.equal("private" in manifest, false);
});

test("web/LICENSE is the repository's LICENSE, byte for byte", () => {
  const root = fs.readFileSync(path.join(ROOT, "..", "LICENSE"));
  const copy = fs.readFileSync(path.join(ROOT, "LICENSE"));
  assert.ok(root.toString("utf8").startsWith("MIT License"));
  assert.ok(copy.equals(root), "web/LICENSE differs from LICENSE: copy the repository's LICENSE into web/");
});

test("npm pack takes exactly the runtime, the testing entry, the declarations and the documents", () => {
  const [result] = JSON.parse(npm(["pack", "--dry-run", "--json", "--ignore-scripts"]));
  assert.equal(result.name, "wevlin");
  assert.equal(result.version, manifest.version);
  assert.deepEqual(result.files.map((file) => file.path).sort(), [
    "LICENSE",
    "README.md",
    "index.d.mts",
    "index.d.ts",
    "package.json",
    "src/wevlin-testing.js",
    "src/wevlin-testing.mjs",
    "src/wevlin.js",
    "src/wevlin.mjs",
    "testing.d.mts",
    "testing.d.ts",
  ]);
});

test("every file the manifest points to is in the package's file list", () => {
  const targets = new Set([manifest.main, manifest.module, manifest.types]);
  const walk = (value) => {
    if (typeof value === "string") targets.add(value);
    else for (const inner of Object.values(value)) walk(inner);
  };
  walk(manifest.exports);
  for (const target of targets) {
    const file = path.posix.normalize(target);
    assert.ok(file === "package.json" || manifest.files.includes(file), file + " is not in files");
    assert.ok(fs.existsSync(path.join(ROOT, file)), file + " does not exist");
  }
  assert.deepEqual(Object.keys(manifest.exports), [".", "./testing", "./package.json"]);
});
