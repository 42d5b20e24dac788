#!/usr/bin/env bash
# Runs the whole unit suite under AddressSanitizer and
# UndefinedBehaviorSanitizer, built with clang++ (so it is a clang build as
# well): installs what is missing, configures a Debug build with
# WEVLIN_SANITIZE=address,undefined (the project's option, which also compiles
# with -fno-sanitize-recover=all, so that any finding ends the program),
# builds the tests and the replay programs of the fuzz targets, and runs every
# test with CTest: the unit and thread tests and the replay of each fuzz
# target's seed corpus (label "fuzz-replay"). A memory error, undefined
# behaviour or a leak fails the test it happens in.
#
#   scripts/test-asan.sh            # build directory: build/asan
#   BUILD_DIR=... JOBS=2 scripts/test-asan.sh
#   scripts/test-asan.sh -R Hostile # extra arguments go to ctest
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}" clang

build_dir="${BUILD_DIR:-build/asan}"
jobs="${JOBS:-$(nproc)}"
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1:strict_init_order=1:detect_stack_use_after_return=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"

# The linux-asan preset gives Ninja, Debug, warnings as errors and both
# sanitizers.
cmake --preset linux-asan -B "$build_dir" \
  -DCMAKE_CXX_COMPILER=clang++ \
  -DWEVLIN_BUILD_TESTS=ON \
  -DWEVLIN_BUILD_FUZZERS=ON \
  -DWEVLIN_FUZZ_REPLAY=ON \
  -DWEVLIN_BUILD_EXAMPLES=OFF \
  -DWEVLIN_BUILD_BENCHMARKS=OFF
cmake --build "$build_dir" --parallel "$jobs"
ctest --test-dir "$build_dir" --output-on-failure --no-tests=error --parallel "$jobs" "$@"
