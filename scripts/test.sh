#!/usr/bin/env bash
# Runs the whole test suite: installs what is missing, configures a Debug build
# with g++ (assertions on, warnings as errors), builds, and runs every test with
# CTest, ending with CTest's summary.
#
#   scripts/test.sh            # build directory: build/debug
#   BUILD_DIR=... scripts/test.sh
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}"

build_dir="${BUILD_DIR:-build/debug}"
cmake -S . -B "$build_dir" -G Ninja \
  -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_COMPILER=g++ \
  -DWEVLIN_WARNINGS_AS_ERRORS=ON
cmake --build "$build_dir"
ctest --test-dir "$build_dir" --output-on-failure --parallel "$(nproc)"
