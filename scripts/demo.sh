#!/usr/bin/env bash
# Runs the demo, the README's main job: installs what is missing (the C++
# build packages, chromium and nlohmann-json3-dev), configures a Release build
# with the headless-Chromium web control, builds the demo program and runs it.
# The demo hosts a page in headless Chromium, walks through every call between
# the native host and the page, prints a transcript and saves a screenshot.
#
#   scripts/demo.sh                      # build directory: build/demo
#   scripts/demo.sh --help               # the demo's options (passed through)
#   scripts/demo.sh --screenshot /tmp/page.png
#   BUILD_DIR=... scripts/demo.sh
#
# WEVLIN_CHROMIUM=<path> runs the demo with another browser executable.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}" chromium nlohmann-json3-dev

build_dir="${BUILD_DIR:-build/demo}"
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DWEVLIN_BUILD_CHROMIUM=ON -DWEVLIN_BUILD_EXAMPLES=ON \
  -DWEVLIN_BUILD_TESTS=OFF -DWEVLIN_BUILD_BENCHMARKS=OFF
cmake --build "$build_dir" --target wevlin_demo
exec "$build_dir/examples/demo/wevlin_demo" "$@"
