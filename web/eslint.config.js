"use strict";

// Lint configuration: the recommended rules plus a few that keep the library
// strict and predictable. The library's sources are ES modules (src/lib/); the
// files generated from them are classic scripts that must also load as
// CommonJS modules (the testing entry requires the page library beside it);
// the tests and tooling run on Node.
const js = require("@eslint/js");
const globals = require("globals");

const shared = {
  "no-var": "error",
  "prefer-const": "error",
  curly: ["error", "multi-line"],
  eqeqeq: ["error", "always"],
  "no-implicit-globals": "error",
  "no-shadow": "error",
  "no-throw-literal": "error",
  "no-unused-vars": ["error", { args: "after-used", caughtErrors: "none" }],
  "object-shorthand": "error",
  strict: ["error", "safe"],
};

module.exports = [
  { ignores: ["node_modules/", "coverage/"] },
  js.configs.recommended,
  {
    files: ["src/wevlin.js"],
    languageOptions: {
      sourceType: "script",
      globals: { ...globals.es2022, module: "readonly" },
    },
    rules: { ...shared, "no-restricted-globals": ["error", "window", "self", "document"] },
  },
  {
    files: ["src/wevlin-testing.js"],
    languageOptions: {
      sourceType: "script",
      globals: { ...globals.es2022, module: "readonly", require: "readonly" },
    },
    rules: { ...shared, "no-restricted-globals": ["error", "window", "self", "document"] },
  },
  {
    // The library's sources run in pages too: no browser or Node globals.
    files: ["src/lib/**/*.mjs"],
    rules: { "no-restricted-globals": ["error", "window", "self", "document"] },
  },
  {
    files: ["src/**/*.mjs"],
    languageOptions: { sourceType: "module", globals: { ...globals.es2022 } },
    rules: shared,
  },
  {
    files: ["test/**/*.js", "scripts/**/*.js", "eslint.config.js"],
    languageOptions: { sourceType: "commonjs", globals: { ...globals.node } },
    rules: shared,
  },
  {
    files: ["test/**/*.mjs"],
    languageOptions: { sourceType: "module", globals: { ...globals.node } },
    rules: shared,
  },
];
