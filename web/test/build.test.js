"use strict";

// The checked-in files that pages load are generated from the modules in
// src/lib/ by scripts/build.js; they must be exactly what the modules give,
// and the build must refuse modules it cannot concatenate faithfully.

const test = require("node:test");
const assert = require("node:assert/strict");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const { execFileSync } = require("node:child_process");
const { generate, staleFiles, BuildError } = require("../scripts/build.js");

const ROOT = path.join(__dirname, "..");
const LIB_DIR = path.join(ROOT, "src", "lib");

test("the generated files are up to date with src/lib/", () => {
  const { files } = generate();
  assert.deepEqual(Object.keys(files).sort(), [
    "src/wevlin-testing.js",
    "src/wevlin-testing.mjs",
    "src/wevlin.js",
    "src/wevlin.mjs",
  ]);
  const stale = staleFiles(files);
  assert.deepEqual(stale, [], "out of date: " + stale.join(", ") + "; run npm run build");
});

test("the build's --check mode agrees", () => {
  const output = execFileSync(process.execPath, [path.join(ROOT, "scripts", "build.js"), "--check"], {
    encoding: "utf8",
  });
  assert.equal(output, "build: the generated files are up to date\n");
});

test("the page library holds every module of src/lib/ but the in-memory host", () => {
  const { files } = generate();
  const included = (text) => [...text.matchAll(/^ {2}\/\/ src\/lib\/([\w-]+\.mjs)$/gm)].map((m) => m[1]);
  assert.deepEqual(included(files["src/wevlin.js"]).sort(), [
    "constants.mjs",
    "descriptors.mjs",
    "helpers.mjs",
    "json.mjs",
    "page.mjs",
    "records.mjs",
    "script-lines.mjs",
    "transports.mjs",
  ]);
  // The testing entry copies only the private helpers; everything else it
  // takes from the page library object.
  assert.deepEqual(included(files["src/wevlin-testing.js"]), ["helpers.mjs", "memory-host.mjs"]);
});

test.describe("modules the build refuses", () => {
  // Builds from a copy of src/lib/ with some files replaced.
  function buildWith(changes) {
    const dir = fs.mkdtempSync(path.join(os.tmpdir(), "wevlin-build-"));
    try {
      for (const file of fs.readdirSync(LIB_DIR)) {
        fs.copyFileSync(path.join(LIB_DIR, file), path.join(dir, file));
      }
      for (const [file, edit] of Object.entries(changes)) {
        const full = path.join(dir, file);
        const before = fs.existsSync(full) ? fs.readFileSync(full, "utf8") : "";
        fs.writeFileSync(full, typeof edit === "function" ? edit(before) : edit);
      }
      return generate({ libDir: dir });
    } finally {
      fs.rmSync(dir, { recursive: true, force: true });
    }
  }

  function refused(changes, message) {
    assert.throws(
      () => buildWith(changes),
      (error) => {
        assert.ok(error instanceof BuildError, String(error));
        assert.match(error.message, message);
        return true;
      },
    );
  }

  test("an unchanged copy builds the same files", () => {
    assert.deepEqual(buildWith({}).files, generate().files);
  });

  test("a name declared by two modules", () => {
    refused(
      { "records.mjs": (text) => text + "\nfunction skipBlanks() {}\n" },
      /src\/lib\/records\.mjs: skipBlanks is also declared by src\/lib\/json\.mjs/,
    );
  });

  test("an import the module does not export", () => {
    refused(
      { "page.mjs": (text) => 'import { MAX_JSON_DEPTH } from "./json.mjs";\n' + text },
      /src\/lib\/json\.mjs does not export MAX_JSON_DEPTH/,
    );
  });

  test("an import cycle", () => {
    refused(
      {
        "helpers.mjs": (text) =>
          'import { VERSION } from "./constants.mjs";\n' + text + "\nexport const V = VERSION;\n",
      },
      /import cycle: index\.mjs -> constants\.mjs -> helpers\.mjs -> constants\.mjs/,
    );
  });

  test("renaming imports and other module syntax", () => {
    refused(
      { "page.mjs": (text) => 'import { writeJson as write } from "./json.mjs";\n' + text },
      /unsupported name in braces: writeJson as write/,
    );
    refused(
      { "page.mjs": (text) => text + "\nexport default Page;\n" },
      /unsupported module syntax: export default/,
    );
  });

  test("top-level destructuring, whose names the build could not check", () => {
    refused(
      { "page.mjs": (text) => text + "\nconst { freeze } = Object;\n" },
      /declare top-level names one by one, not by destructuring: const \{ freeze \} = Object;/,
    );
  });

  test("a template literal over several lines", () => {
    refused(
      { "page.mjs": (text) => text + "\nexport const T = `a\nb`;\n" },
      /template literal that spans lines/,
    );
  });

  test("an entry with code of its own", () => {
    refused({ "index.mjs": (text) => text + "\nconst x = 1;\n" }, /may hold only comments and export/);
  });

  test("a name exported twice", () => {
    refused(
      { "index.mjs": (text) => text + '\nexport { readJson } from "./json.mjs";\n' },
      /readJson is exported twice/,
    );
  });

  test("testing code that uses a private name of the page library", () => {
    refused(
      { "memory-host.mjs": (text) => 'import { callHostFunction } from "./transports.mjs";\n' + text },
      /callHostFunction of src\/lib\/transports\.mjs is not exported by the page library/,
    );
  });
});
