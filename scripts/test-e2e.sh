#!/usr/bin/env bash
# Runs the end-to-end tests: the native library, the page-side JavaScript
# library (web/src/wevlin.js) and a real headless Chromium, joined by the
# Chromium web control. Installs what is missing (the C++ build packages,
# chromium and nlohmann-json3-dev), configures a Debug build with the control,
# builds the end-to-end test programs and runs the tests labelled "e2e".
#
#   scripts/test-e2e.sh            # build directory: build/e2e
#   BUILD_DIR=... scripts/test-e2e.sh
#
# WEVLIN_CHROMIUM=<path> runs the tests with another browser executable;
# WEVLIN_CHROMIUM_TRACE=1 writes every DevTools message to the test output.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}" chromium nlohmann-json3-dev

build_dir="${BUILD_DIR:-build/e2e}"
cmake -S . -B "$build_dir" -G Ninja \
  -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_COMPILER=g++ \
  -DWEVLIN_WARNINGS_AS_ERRORS=ON \
  -DWEVLIN_BUILD_CHROMIUM=ON
cmake --build "$build_dir" --target wevlin_e2e_tests
ctest --test-dir "$build_dir" -L e2e --output-on-failure
