#!/usr/bin/env bash
# Runs the whole test suite: installs what is missing (the C++ build packages,
# Debian's chromium, libwebkit2gtk-4.1-dev, xvfb and nlohmann-json3-dev),
# configures a Debug build with g++ (assertions on, warnings as errors) with
# both web controls (headless Chromium and WebKitGTK) and the examples, builds,
# and runs every test with CTest: the unit and thread tests, then the
# end-to-end tests in both browsers (labels "e2e-chromium", "e2e-webkitgtk"),
# ending with CTest's summary. The WebKitGTK control shows real windows: CTest
# runs on a virtual display of its own (xvfb-run).
#
#   scripts/test.sh            # build directory: build/debug
#   BUILD_DIR=... scripts/test.sh
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}" chromium nlohmann-json3-dev \
  libwebkit2gtk-4.1-dev xvfb xauth

build_dir="${BUILD_DIR:-build/debug}"
# The linux-debug preset gives Ninja, Debug and warnings as errors.
cmake --preset linux-debug -B "$build_dir" \
  -DCMAKE_CXX_COMPILER=g++ \
  -DWEVLIN_BUILD_CHROMIUM=ON \
  -DWEVLIN_BUILD_WEBKITGTK=ON \
  -DWEVLIN_BUILD_EXAMPLES=ON \
  -DWEVLIN_BUILD_BENCHMARKS=OFF
cmake --build "$build_dir"
# The end-to-end tests hold a lock on the browser, so CTest runs them one at a
# time while the unit tests run in parallel around them.
. scripts/lib/display.sh
run_with_display ctest --test-dir "$build_dir" --output-on-failure --parallel "$(nproc)"
