"use strict";

// Lint configuration of the web controls' page scripts (bridge-shim.js, and
// the WebKitGTK control's webkitgtk/webkit-transport.js and
// webkitgtk/webkit-console.js): classic scripts that a web control runs
// before any script of a document. The lint
// tools come from the page library's folder (web/, where `npm ci` installs
// them); scripts/test-web.sh runs this.
const path = require("node:path");

const fromWeb = (name) =>
  require(require.resolve(name, { paths: [path.join(__dirname, "..", "..", "web")] }));
const js = fromWeb("@eslint/js");
const globals = fromWeb("globals");

module.exports = [
  js.configs.recommended,
  {
    files: ["bridge-shim.js", "webkitgtk/webkit-transport.js", "webkitgtk/webkit-console.js"],
    languageOptions: {
      sourceType: "script",
      globals: { ...globals.browser, ...globals.es2022 },
    },
    rules: {
      "no-var": "error",
      "prefer-const": "error",
      curly: ["error", "multi-line"],
      eqeqeq: ["error", "always"],
      "no-shadow": "error",
      "no-throw-literal": "error",
      "no-unused-vars": ["error", { args: "after-used", caughtErrors: "none" }],
      "object-shorthand": "error",
      strict: ["error", "function"],
    },
  },
];
