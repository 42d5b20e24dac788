#!/usr/bin/env bash
# Runs the main example: installs what is missing, builds it and runs it.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}"

build_dir="${BUILD_DIR:-build/release}"
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DWEVLIN_BUILD_TESTS=OFF -DWEVLIN_BUILD_BENCHMARKS=OFF
cmake --build "$build_dir" --target json_example
"$build_dir/examples/json_example/json_example" "$@"
