#!/usr/bin/env bash
# Checks the page-side JavaScript library in web/: installs Node.js and npm
# with apt-get when the commands are missing, installs the locked development
# dependencies, checks that the checked-in generated files (src/wevlin.js and
# the other entries) match the modules in src/lib/, then runs the linter, the
# type check of the declarations, the formatting check and the unit tests,
# and lints the web controls' page scripts (wevlin/webcontrols/bridge-shim.js
# and the WebKitGTK control's webkit-transport.js and webkit-console.js).
#
#   scripts/test-web.sh
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

# Only missing commands are installed: a Node.js package that bundles npm
# (as some distributions of Node.js do) must not be paired with a second npm.
missing=()
command -v node >/dev/null 2>&1 || missing+=(nodejs)
command -v npm >/dev/null 2>&1 || missing+=(npm)
if [ "${#missing[@]}" -gt 0 ]; then
  ensure_packages "${missing[@]}"
fi
echo "== node $(node --version), npm $(npm --version)"

cd web
echo "== npm ci"
npm ci --no-audit --no-fund
echo "== npm run build:check"
npm run build:check
echo "== npm run lint"
npm run lint
echo "== npm run typecheck"
npm run typecheck
echo "== npm run format:check"
npm run format:check
echo "== the web controls' page scripts (wevlin/webcontrols/): lint and format"
(cd ../wevlin/webcontrols &&
  ../../web/node_modules/.bin/eslint --config eslint.config.js \
    bridge-shim.js webkitgtk/webkit-transport.js webkitgtk/webkit-console.js &&
  ../../web/node_modules/.bin/prettier --config ../../web/.prettierrc.json --check \
    bridge-shim.js eslint.config.js webkitgtk/webkit-transport.js webkitgtk/webkit-console.js)
echo "== npm test"
npm test
