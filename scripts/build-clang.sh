#!/usr/bin/env bash
# Builds everything with clang++, warnings as errors, without running tests.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh
ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}" clang

build_dir="${BUILD_DIR:-build/clang}"
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_COMPILER=clang++ -DWEVLIN_WARNINGS_AS_ERRORS=ON
cmake --build "$build_dir"
