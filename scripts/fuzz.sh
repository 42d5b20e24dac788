#!/usr/bin/env bash
# Fuzzes the library: installs what is missing (clang 14 and its runtime
# libraries with libFuzzer), builds the fuzz targets of fuzz/ with libFuzzer,
# AddressSanitizer and UndefinedBehaviorSanitizer (-fno-sanitize-recover=all),
# and runs each target for FUZZ_SECONDS seconds on a copy of its seed corpus.
# Fails when any target crashes, leaks, hangs or breaks one of its checks.
# With "replay", builds the targets as plain replay programs instead (any
# compiler, default g++, still with both sanitizers) and runs every seed once
# through CTest (label "fuzz-replay").
#
#   scripts/fuzz.sh                      # fuzz every target
#   scripts/fuzz.sh run HostAPI Base64   # fuzz only these targets
#   scripts/fuzz.sh replay               # replay the seed corpora once
#
#   FUZZ_SECONDS=60    seconds of fuzzing per target
#   FUZZ_PARALLEL=1    targets fuzzed side by side
#   JOBS=2             build jobs
#   BUILD_DIR=...      build directory (default build/fuzz, or
#                      build/fuzz-replay for replay)
#   REPLAY_CXX=g++     compiler of the replay build
#
# Each fuzzing run works in <build dir>/fuzz-work/<target>/: the corpus copy
# (which grows), the libFuzzer log, and any crash, leak or timeout input.
# Reproduce one with: <build dir>/fuzz/fuzz_<target> <input file>.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

mode="${1:-run}"
case "$mode" in
  run | replay) shift || true ;;
  -h | --help)
    sed -n '2,25p' "$0"
    exit 0
    ;;
  *) mode=run ;;
esac
jobs="${JOBS:-2}"

# use_compiler DIR COMPILER: CMake resets a build directory configured for
# another compiler and drops the options given with that run, so such a
# directory is started afresh instead.
use_compiler() {
  local dir="$1" wanted current
  wanted="$(command -v "$2" || echo "$2")"
  [ -f "$dir/CMakeCache.txt" ] || return 0
  current="$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$dir/CMakeCache.txt")"
  if [ "$current" != "$wanted" ] && [ "$current" != "$2" ]; then
    rm -rf "$dir/CMakeCache.txt" "$dir/CMakeFiles"
  fi
}

if [ "$mode" = "replay" ]; then
  ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}"
  build_dir="${BUILD_DIR:-build/fuzz-replay}"
  replay_cxx="${REPLAY_CXX:-g++}"
  use_compiler "$build_dir" "$replay_cxx"
  cmake -S . -B "$build_dir" -G Ninja \
    -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_COMPILER="$replay_cxx" \
    -DWEVLIN_WARNINGS_AS_ERRORS=ON \
    -DWEVLIN_SANITIZE=address,undefined \
    -DWEVLIN_BUILD_FUZZERS=ON \
    -DWEVLIN_FUZZ_REPLAY=ON \
    -DWEVLIN_BUILD_TESTS=OFF \
    -DWEVLIN_BUILD_EXAMPLES=OFF \
    -DWEVLIN_BUILD_BENCHMARKS=OFF \
    -DWEVLIN_INSTALL=OFF
  cmake --build "$build_dir" -j "$jobs"
  ctest --test-dir "$build_dir" -L fuzz-replay --output-on-failure --no-tests=error
  exit 0
fi

ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}" clang-14 libclang-rt-14-dev
build_dir="${BUILD_DIR:-build/fuzz}"
seconds="${FUZZ_SECONDS:-60}"
parallel="${FUZZ_PARALLEL:-1}"

use_compiler "$build_dir" clang++-14

# RelWithDebInfo: optimised for speed of fuzzing. It also compiles out the
# deliberate debug assertions of the version test services, which the
# hosting harness does not register anyway.
cmake -S . -B "$build_dir" -G Ninja \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_CXX_COMPILER=clang++-14 \
  -DWEVLIN_WARNINGS_AS_ERRORS=ON \
  -DWEVLIN_SANITIZE=address,undefined \
  -DWEVLIN_BUILD_FUZZERS=ON \
  -DWEVLIN_FUZZ_REPLAY=OFF \
  -DWEVLIN_BUILD_TESTS=OFF \
  -DWEVLIN_BUILD_EXAMPLES=OFF \
  -DWEVLIN_BUILD_BENCHMARKS=OFF \
  -DWEVLIN_INSTALL=OFF
if ! grep -q '^WEVLIN_HAVE_LIBFUZZER:INTERNAL=1' "$build_dir/CMakeCache.txt"; then
  echo "fuzz: clang++-14 cannot link libFuzzer (is libclang-rt-14-dev installed?)" >&2
  exit 1
fi

targets=("$@")
if [ "${#targets[@]}" -eq 0 ]; then
  for source in fuzz/*Fuzzer.cpp; do
    name="$(basename "$source" .cpp)"
    targets+=("${name%Fuzzer}")
  done
fi
programs=()
for name in "${targets[@]}"; do
  if [ ! -d "fuzz/corpus/$name" ]; then
    echo "fuzz: unknown target '$name' (no fuzz/corpus/$name)" >&2
    exit 1
  fi
  programs+=("fuzz_$name")
done
cmake --build "$build_dir" -j "$jobs" --target "${programs[@]}"

work_dir="$build_dir/fuzz-work"
mkdir -p "$work_dir"
work_dir="$(cd "$work_dir" && pwd)"
program_dir="$(cd "$build_dir/fuzz" && pwd)"
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"

# fuzz_one NAME: fuzzes one target; leaves its exit code in <work>/NAME/rc.
fuzz_one() {
  local name="$1" dir="$work_dir/$1" rc=0
  rm -rf "$dir"
  mkdir -p "$dir/corpus"
  cp "fuzz/corpus/$name/"* "$dir/corpus/"
  (
    cd "$dir"
    exec "$program_dir/fuzz_$name" -max_total_time="$seconds" -timeout=25 -rss_limit_mb=2560 \
      -print_final_stats=1 -artifact_prefix="$dir/" corpus
  ) >"$dir/log" 2>&1 || rc=$?
  echo "$rc" >"$dir/rc"
  local done_line executed
  done_line="$(grep -E '^#[0-9]+[[:space:]]+DONE ' "$dir/log" | tail -n 1 || true)"
  executed="$(sed -n 's/^stat::number_of_executed_units: *//p' "$dir/log" | tail -n 1)"
  if [ "$rc" -eq 0 ]; then
    echo "  ok    $name: ${executed:-?} executions, $(grep -oE 'cov: [0-9]+ ft: [0-9]+' <<<"$done_line" || echo 'cov: ?')"
  else
    echo "  FAIL  $name (exit code $rc)"
  fi
}

echo "== Fuzzing ${#targets[@]} target(s) for ${seconds} s each, $parallel at a time"
running=0
for name in "${targets[@]}"; do
  fuzz_one "$name" &
  running=$((running + 1))
  if [ "$running" -ge "$parallel" ]; then
    wait -n || true
    running=$((running - 1))
  fi
done
wait

failed=()
for name in "${targets[@]}"; do
  rc="$(cat "$work_dir/$name/rc" 2>/dev/null || echo missing)"
  [ "$rc" = "0" ] && continue
  failed+=("$name")
  echo
  echo "== $name failed (exit code $rc); end of $work_dir/$name/log:"
  tail -n 60 "$work_dir/$name/log" || true
  for artifact in "$work_dir/$name"/crash-* "$work_dir/$name"/leak-* "$work_dir/$name"/timeout-* \
    "$work_dir/$name"/oom-*; do
    [ -e "$artifact" ] && echo "   input: $artifact"
  done
done

echo
if [ "${#failed[@]}" -eq 0 ]; then
  echo "fuzz: PASS - ${#targets[@]} target(s), ${seconds} s each, no crash"
  exit 0
fi
echo "fuzz: FAIL - ${failed[*]}"
exit 1
