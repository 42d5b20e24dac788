"use strict";

// Generates the files that pages and packages load from the ES modules in
// src/lib/:
//
//   src/wevlin.js          the page library as one classic script that is also
//                          a CommonJS module (from src/lib/index.mjs)
//   src/wevlin.mjs         its ES module entry
//   src/wevlin-testing.js  the testing entry (from src/lib/testing.mjs), a
//                          classic script or CommonJS module that uses the
//                          page library's own objects
//   src/wevlin-testing.mjs its ES module entry
//
//   node scripts/build.js          writes the files that differ
//   node scripts/build.js --check  only reports them, exiting with 1
//
// The generated files are checked in, so that pages, the C++ build and the
// demo use src/wevlin.js without Node.js. The build needs nothing but Node.js:
// it concatenates the modules inside one function scope, dropping their
// import lines and the word `export`. That works for modules written the way
// the ones in src/lib/ are, and the build refuses anything else:
//
//  - imports are `import { a, b } from "./module.mjs";`, without renaming;
//  - exports are `export` before a top-level const, function or class;
//  - the entries (index.mjs, testing.mjs) hold a comment and
//    `export { a, b } from "./module.mjs";` lines, nothing else; their names,
//    in that order, are the API;
//  - top-level names are declared one by one (no destructuring), and no two
//    modules of one file declare the same one;
//  - no template literal spans lines (the lines are indented).
//
// The testing entry takes everything the page library exports from the page
// library object itself, so that both share their classes; only the modules in
// COPIED (private helpers, free of state) are copied into it.
//
// Prettier formats src/lib/ two columns narrower than the rest (see
// .prettierrc.json), so that the generated files, indented by two, keep to the
// same width and pass the formatting check as they are.

const fs = require("node:fs");
const path = require("node:path");

const ROOT = path.join(__dirname, "..");
const LIB_DIR = path.join(ROOT, "src", "lib");

/** Modules of private helpers, copied into every generated file that uses them. */
const COPIED = new Set(["helpers.mjs"]);

const RUNTIME = Object.freeze({
  entry: "index.mjs",
  script: "src/wevlin.js",
  module: "src/wevlin.mjs",
  global: "wevlin",
  // A member by which the ES module entry recognises the CommonJS exports.
  probe: "createPage",
});

const TESTING = Object.freeze({
  entry: "testing.mjs",
  script: "src/wevlin-testing.js",
  module: "src/wevlin-testing.mjs",
  global: "wevlinTesting",
  probe: "createMemoryHost",
});

const NAME = "[A-Za-z_$][\\w$]*";
const IMPORT_PATTERN = /^import \{([^}]*)\} from "\.\/([\w-]+\.mjs)";[ \t]*\n/gm;
const REEXPORT_PATTERN = /^export \{([^}]*)\} from "\.\/([\w-]+\.mjs)";[ \t]*\n/gm;
const DECLARATION_PATTERN = new RegExp(
  `^(export )?(?:const|let|function|class|async function) (${NAME})`,
  "gm",
);
const HEADER_PATTERN = /^\/\*[\s\S]*?\*\/\n/;
const SEPARATOR = "// " + "-".repeat(75);
const WIDTH = 110; // printWidth of .prettierrc.json

class BuildError extends Error {}

function fail(message) {
  throw new BuildError(message);
}

function readText(file) {
  return fs.readFileSync(file, "utf8").replace(/\r\n/g, "\n");
}

function nameList(text, where) {
  const names = text
    .split(",")
    .map((name) => name.trim())
    .filter((name) => name !== "");
  for (const name of names) {
    if (!new RegExp(`^${NAME}$`).test(name)) fail(where + ": unsupported name in braces: " + name);
  }
  return names;
}

// Reads one module of src/lib/ and takes it apart: its imports, its exports,
// its top-level declarations and its body without the import lines and
// without `export`.
function parseModule(file, cache) {
  if (cache.modules.has(file)) return cache.modules.get(file);
  const full = path.join(cache.dir, file);
  if (!fs.existsSync(full)) fail("src/lib/" + file + " does not exist");
  const text = readText(full);
  const where = "src/lib/" + file;
  const imports = [];
  let body = text.replace(IMPORT_PATTERN, (match, names, from) => {
    imports.push({ from, names: nameList(names, where) });
    return "";
  });
  const reexports = [];
  body = body.replace(REEXPORT_PATTERN, (match, names, from) => {
    reexports.push({ from, names: nameList(names, where) });
    return "";
  });
  const declarations = [];
  const exports = [];
  for (const match of body.matchAll(DECLARATION_PATTERN)) {
    declarations.push(match[2]);
    if (match[1] !== undefined) exports.push(match[2]);
  }
  body = body.replace(/^export (?=(?:const|let|function|class|async function) )/gm, "");
  const pattern = /^(?:export )?(?:const|let) [{[].*$/m.exec(body);
  if (pattern !== null) {
    fail(where + ": declare top-level names one by one, not by destructuring: " + pattern[0]);
  }
  const stray = /^(?:import|export)\b.*$/m.exec(body);
  if (stray !== null) fail(where + ": unsupported module syntax: " + stray[0]);
  body.split("\n").forEach((line, index) => {
    if ((line.match(/`/g) || []).length % 2 !== 0 && !/^\s*(?:\*|\/\/|\/\*)/.test(line)) {
      fail(where + ": line " + (index + 1) + " opens or closes a template literal that spans lines");
    }
  });
  // Dropping the import lines may leave two blank lines where one was.
  body = body.replace(/\n{3,}/g, "\n\n").trim();
  const parsed = { file, where, text, imports, reexports, declarations, exports, body };
  cache.modules.set(file, parsed);
  return parsed;
}

// Returns the parts of an entry module: its leading comment, which heads the
// generated script, and its export list.
function parseEntry(file, cache) {
  const entry = parseModule(file, cache);
  const header = HEADER_PATTERN.exec(entry.text);
  if (header === null) fail(entry.where + " must begin with a /* ... */ comment describing the file");
  const rest = entry.body
    .replace(HEADER_PATTERN, "")
    .split("\n")
    .filter((line) => line.trim() !== "" && !line.trim().startsWith("//"));
  if (rest.length > 0 || entry.declarations.length > 0) {
    fail(entry.where + ' may hold only comments and export { ... } from "./module.mjs" lines');
  }
  if (entry.imports.length > 0) fail(entry.where + " may not import; it re-exports");
  const names = [];
  for (const { from, names: list } of entry.reexports) {
    const source = parseModule(from, cache);
    for (const name of list) {
      if (!source.exports.includes(name)) {
        fail(entry.where + ": src/lib/" + from + " does not export " + name);
      }
      if (names.includes(name)) fail(entry.where + ": " + name + " is exported twice");
      names.push(name);
    }
  }
  return { header: header[0].trimEnd(), names, reexports: entry.reexports };
}

// Returns the modules to concatenate for an entry, each after the modules it
// imports, and the names taken from the page library object (testing only).
function collect(entry, runtime, cache) {
  const order = [];
  const state = new Map(); // file -> "visiting" | "done"
  const fromRuntime = [];
  const visit = (file, chain) => {
    if (state.get(file) === "done") return;
    if (state.get(file) === "visiting") fail("import cycle: " + chain.concat(file).join(" -> "));
    state.set(file, "visiting");
    const module = parseModule(file, cache);
    for (const { from, names } of module.imports) {
      const source = parseModule(from, cache);
      for (const name of names) {
        if (!source.exports.includes(name)) {
          fail(module.where + ": src/lib/" + from + " does not export " + name);
        }
      }
      if (runtime !== null && runtime.files.includes(from) && !COPIED.has(from)) {
        for (const name of names) {
          if (!runtime.names.includes(name)) {
            fail(
              module.where +
                ": " +
                name +
                " of src/lib/" +
                from +
                " is not exported by the page library; the testing entry can use only its exports and the modules copied into it",
            );
          }
          if (!fromRuntime.includes(name)) fromRuntime.push(name);
        }
      } else {
        visit(from, chain.concat(file));
      }
    }
    state.set(file, "done");
    order.push(module);
  };
  for (const { from } of entry.reexports) visit(from, [entry.file]);
  const seen = new Map();
  for (const name of fromRuntime) seen.set(name, "the page library");
  for (const module of order) {
    for (const name of module.declarations) {
      if (seen.has(name)) fail(module.where + ": " + name + " is also declared by " + seen.get(name));
      seen.set(name, module.where);
    }
  }
  for (const reserved of ["api", "runtime", "loaded"]) {
    if (seen.has(reserved)) {
      fail(seen.get(reserved) + ": the name " + reserved + " is used by the generated file");
    }
  }
  return { order, fromRuntime };
}

function indent(text, by) {
  const pad = " ".repeat(by);
  return text
    .split("\n")
    .map((line) => (line === "" ? "" : pad + line))
    .join("\n");
}

// Returns `open names close` on one line when that fits the print width at
// the indentation the text will get, else one name a line, as Prettier prints
// it; the lines are indented relative to the first.
function braceList(open, names, close, indentation) {
  const line = open + " " + names.join(", ") + " " + close;
  if (indentation + line.length <= WIDTH) return line;
  return open + "\n" + names.map((name) => "  " + name + ",").join("\n") + "\n" + close;
}

function generatedNote(entry) {
  return (
    "Generated by `npm run build` (scripts/build.js) from the ES modules in\n" +
    "src/lib/, starting at src/lib/" +
    entry +
    ": edit those, not this file."
  );
}

function scriptFile(bundle, entry, collected, runtimeBundle) {
  const header = entry.header.replace(
    /\n \*\/$/,
    "\n *\n" +
      generatedNote(bundle.entry)
        .split("\n")
        .map((line) => " * " + line)
        .join("\n") +
      "\n */",
  );
  const parts = [];
  if (collected.fromRuntime.length > 0) {
    parts.push(
      [
        "// The page library this file works with: wevlin.js beside it under",
        "// CommonJS, else the one loaded before it (globalThis." + runtimeBundle.global + ").",
        "const runtime =",
        '  typeof module === "object" && module !== null && typeof module.exports === "object"',
        '    ? require("./' + path.basename(runtimeBundle.script) + '")',
        "    : globalThis." + runtimeBundle.global + ";",
        'if (typeof runtime !== "object" || runtime === null || typeof runtime.' +
          runtimeBundle.probe +
          ' !== "function") {',
        '  throw new Error("' +
          path.basename(bundle.script) +
          " needs the page library: load " +
          path.basename(runtimeBundle.script) +
          ' before it");',
        "}",
        braceList("const {", collected.fromRuntime, "} = runtime;", 2),
      ].join("\n"),
    );
  }
  for (const module of collected.order) {
    parts.push(SEPARATOR + "\n// src/lib/" + module.file + "\n" + SEPARATOR + "\n\n" + module.body);
  }
  parts.push(
    SEPARATOR +
      "\n// Exports\n" +
      SEPARATOR +
      "\n\n" +
      braceList("const api = Object.freeze({", entry.names, "});", 2) +
      "\n\n" +
      'if (typeof module === "object" && module !== null && typeof module.exports === "object") {\n' +
      "  module.exports = api;\n" +
      "}\n" +
      "globalThis." +
      bundle.global +
      " = api;",
  );
  return header + "\n" + '(function () {\n  "use strict";\n\n' + indent(parts.join("\n\n"), 2) + "\n})();\n";
}

function moduleFile(bundle, entry, runtimeBundle) {
  const script = path.basename(bundle.script);
  const lines = [
    "// ES module entry point of " + (runtimeBundle === null ? "wevlin" : "wevlin/testing") + ".",
    ...generatedNote(bundle.entry)
      .split("\n")
      .map((line) => "// " + line),
    "//",
    "// The implementation lives in " + script + ", which also works as a classic",
    "// script and as a CommonJS module: under Node (and bundlers) the import below",
    "// yields its module.exports as the default export; in a browser, where a",
    "// classic file has no exports, it defines globalThis." + bundle.global + " while it runs,",
    "// and that object is re-exported instead.",
  ];
  if (runtimeBundle !== null) {
    lines.push(
      "//",
      "// The page library is imported first, so that in a browser " + script,
      "// finds globalThis." + runtimeBundle.global + " defined.",
      'import "./' + path.basename(runtimeBundle.module) + '";',
    );
  }
  lines.push(
    'import * as loaded from "./' + script + '";',
    "",
    "const " + bundle.global + " =",
    "  loaded.default !== undefined && typeof loaded.default." + bundle.probe + ' === "function"',
    "    ? loaded.default",
    "    : globalThis." + bundle.global + ";",
    "",
    "export default " + bundle.global + ";",
    "",
    braceList("export const {", entry.names, "} = " + bundle.global + ";", 0),
  );
  return lines.join("\n") + "\n";
}

/**
 * Returns the generated files as { "src/wevlin.js": text, ... } (paths
 * relative to the package folder), with the API of each entry. The modules
 * are read from options.libDir (src/lib/ by default). Throws BuildError when
 * they break one of the rules above.
 */
function generate(options) {
  const libDir = options !== undefined && options.libDir !== undefined ? options.libDir : LIB_DIR;
  const cache = { dir: libDir, modules: new Map() };
  const runtimeEntry = parseEntry(RUNTIME.entry, cache);
  const runtime = collect({ ...runtimeEntry, file: RUNTIME.entry }, null, cache);
  const testingEntry = parseEntry(TESTING.entry, cache);
  const testing = collect(
    { ...testingEntry, file: TESTING.entry },
    { files: runtime.order.map((module) => module.file), names: runtimeEntry.names },
    cache,
  );
  for (const name of testingEntry.names) {
    if (runtimeEntry.names.includes(name)) {
      fail("src/lib/testing.mjs: " + name + " is also a page library export");
    }
  }
  return {
    files: {
      [RUNTIME.script]: scriptFile(RUNTIME, runtimeEntry, runtime, null),
      [RUNTIME.module]: moduleFile(RUNTIME, runtimeEntry, null),
      [TESTING.script]: scriptFile(TESTING, testingEntry, testing, RUNTIME),
      [TESTING.module]: moduleFile(TESTING, testingEntry, RUNTIME),
    },
    runtimeNames: runtimeEntry.names,
    testingNames: testingEntry.names,
  };
}

/** Returns the paths of the generated files whose checked-in text differs from what the modules give. */
function staleFiles(files) {
  return Object.keys(files).filter((file) => {
    const full = path.join(ROOT, file);
    return !fs.existsSync(full) || readText(full) !== files[file];
  });
}

function main(args) {
  const check = args.includes("--check");
  let generated;
  try {
    generated = generate();
  } catch (error) {
    if (!(error instanceof BuildError)) throw error;
    process.stderr.write("build: " + error.message + "\n");
    return 1;
  }
  const stale = staleFiles(generated.files);
  if (check) {
    if (stale.length === 0) {
      process.stdout.write("build: the generated files are up to date\n");
      return 0;
    }
    process.stderr.write("build: out of date: " + stale.join(", ") + "; run npm run build\n");
    return 1;
  }
  for (const file of stale) {
    fs.writeFileSync(path.join(ROOT, file), generated.files[file]);
    process.stdout.write("build: wrote " + file + "\n");
  }
  if (stale.length === 0) process.stdout.write("build: the generated files are up to date\n");
  return 0;
}

module.exports = { generate, staleFiles, BuildError };

if (require.main === module) process.exitCode = main(process.argv.slice(2));
