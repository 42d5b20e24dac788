#!/usr/bin/env bash
# Runs the whole test suite: installs what is missing (the C++ build packages,
# Debian's chromium and nlohmann-json3-dev), configures a Debug build with g++
# (assertions on, warnings as errors) with the headless-Chromium web control and
# the examples, builds, and runs every test with CTest: the unit and thread
# tests, then the end-to-end tests in a real headless browser (label "e2e"),
# ending with CTest's summary.
#
#   scripts/test.sh            # build directory: build/debug
#   BUILD_DIR=... scripts/test.sh
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}" chromium nlohmann-json3-dev

build_dir="${BUILD_DIR:-build/debug}"
# The linux-debug preset gives Ninja, Debug and warnings as errors.
cmake --preset linux-debug -B "$build_dir" \
  -DCMAKE_CXX_COMPILER=g++ \
  -DWEVLIN_BUILD_CHROMIUM=ON \
  -DWEVLIN_BUILD_EXAMPLES=ON \
  -DWEVLIN_BUILD_BENCHMARKS=OFF
cmake --build "$build_dir"
# The end-to-end tests hold a lock on the browser, so CTest runs them one at a
# time while the unit tests run in parallel around them.
ctest --test-dir "$build_dir" --output-on-failure --parallel "$(nproc)"
