#!/usr/bin/env bash
# Runs the unit tests under Valgrind's memcheck: installs what is missing,
# configures a Debug build with g++ (no sanitizers: they do not mix with
# Valgrind), builds it, and runs every unit test program (CTest label "unit",
# without the label "threads") once, whole, under memcheck. A program fails
# when a test fails, when memcheck reports any error (invalid read or write,
# use of an uninitialised value, bad free, ...) or a definite leak, or when it
# runs longer than the time limit. The script ends with one summary line,
# "memcheck: PASS ..." or "memcheck: FAIL ...", and exits non-zero on failure.
#
#   scripts/test-memcheck.sh                  # every unit test program
#   scripts/test-memcheck.sh HostManager      # only programs whose name matches
#                                             # this extended regular expression
#   BUILD_DIR=build/memcheck   build directory (default shown)
#   JOBS=2                     programs run side by side, and build jobs
#   MEMCHECK_TIMEOUT=900       seconds one program may run under Valgrind
#   VALGRIND_EXTRA_OPTIONS=... more memcheck options, e.g. --track-origins=yes
#   MEMCHECK_GTEST_FILTER=...  tests left out (a negative --gtest_filter); by
#                              default the differential tests over thousands
#                              of random or edited texts and the tests of
#                              inputs of millions of bytes, which take
#                              minutes under Valgrind and run under
#                              AddressSanitizer and the fuzzers instead;
#                              empty runs every test
#
# Each program's output and Valgrind report are kept in
# <build dir>/memcheck-logs/<program>.out and <program>.valgrind.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}" valgrind

build_dir="${BUILD_DIR:-build/memcheck}"
jobs="${JOBS:-2}"
time_limit="${MEMCHECK_TIMEOUT:-900}"
name_filter="${1:-}"
gtest_filter="${MEMCHECK_GTEST_FILTER-"-JsonTextFastPathsTest.Random*:JsonTextFastPathsTest.Edited*:JsonTextFastPathsTest.Doubles*:JsonReferenceReaderTest.*Alike:JsonTextTest.*RandomTexts:HostileLargeInputTest.*"}"
# Valgrind exits with this code when it found errors or definite leaks, so
# that they can be told apart from failing tests (exit code 1).
readonly memcheck_error_code=99

cmake -S . -B "$build_dir" -G Ninja \
  -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_COMPILER=g++ \
  -DWEVLIN_WARNINGS_AS_ERRORS=ON \
  -DWEVLIN_SANITIZE= \
  -DWEVLIN_BUILD_TESTS=ON \
  -DWEVLIN_BUILD_EXAMPLES=OFF \
  -DWEVLIN_BUILD_BENCHMARKS=OFF
cmake --build "$build_dir" -j "$jobs"

# The test programs behind the selected CTest tests, each with its working
# directory, one per line as "<program>\t<directory>". Every test of a program
# carries the same labels, so running a selected program whole runs exactly
# the selected tests.
list_programs() {
  ctest --test-dir "$build_dir" -N -V -L unit -LE threads | awk '
    match($0, /^[0-9]+: Test command: /) {
      rest = substr($0, RLENGTH + 1)
      if (substr(rest, 1, 1) == "\"") {
        rest = substr(rest, 2)
        program = substr(rest, 1, index(rest, "\"") - 1)
      } else {
        program = rest
        sub(/ .*/, "", program)
      }
      if (!(program in directory)) { order[++count] = program; directory[program] = "" }
      next
    }
    match($0, /^[0-9]+: Working Directory: /) {
      if (program != "") directory[program] = substr($0, RLENGTH + 1)
    }
    END { for (i = 1; i <= count; ++i) print order[i] "\t" directory[order[i]] }'
}

programs=()
while IFS= read -r line; do
  [ -n "$line" ] || continue
  program="${line%%$'\t'*}"
  if [ -n "$name_filter" ] && ! [[ "$(basename "$program")" =~ $name_filter ]]; then
    continue
  fi
  programs+=("$line")
done < <(list_programs)

if [ "${#programs[@]}" -eq 0 ]; then
  echo "memcheck: FAIL - no unit test programs found${name_filter:+ matching '$name_filter'}"
  exit 1
fi

log_dir="$build_dir/memcheck-logs"
rm -rf "$log_dir"
mkdir -p "$log_dir"
log_dir="$(cd "$log_dir" && pwd)"

# shellcheck disable=SC2206  # the extra options are meant to be split
valgrind_options=(
  --tool=memcheck
  --leak-check=full
  --show-leak-kinds=definite
  --errors-for-leak-kinds=definite
  --error-exitcode="$memcheck_error_code"
  --num-callers=40
  ${VALGRIND_EXTRA_OPTIONS:-}
)

# run_program PROGRAM DIRECTORY: runs one program under memcheck and leaves its
# exit code in <log dir>/<name>.rc.
run_program() {
  local program="$1" directory="$2" name rc=0 started
  name="$(basename "$program")"
  started=$SECONDS
  (
    cd "${directory:-$build_dir}"
    exec timeout --kill-after=30 "$time_limit" valgrind "${valgrind_options[@]}" \
      --log-file="$log_dir/$name.valgrind" \
      "$program" --gtest_also_run_disabled_tests ${gtest_filter:+"--gtest_filter=$gtest_filter"}
  ) >"$log_dir/$name.out" 2>&1 || rc=$?
  echo "$rc" >"$log_dir/$name.rc"
  if [ "$rc" -eq 0 ]; then
    echo "  ok    $name ($((SECONDS - started)) s)"
  else
    echo "  FAIL  $name ($((SECONDS - started)) s, exit code $rc)"
  fi
}

echo "== Running ${#programs[@]} test programs under memcheck, $jobs at a time"
running=0
for entry in "${programs[@]}"; do
  run_program "${entry%%$'\t'*}" "${entry#*$'\t'}" &
  running=$((running + 1))
  if [ "$running" -ge "$jobs" ]; then
    wait -n || true
    running=$((running - 1))
  fi
done
wait

failed=()
for entry in "${programs[@]}"; do
  name="$(basename "${entry%%$'\t'*}")"
  rc="$(cat "$log_dir/$name.rc" 2>/dev/null || echo missing)"
  case "$rc" in
    0) continue ;;
    "$memcheck_error_code") reason="memory errors or definite leaks" ;;
    124 | 137) reason="timed out after ${time_limit} s" ;;
    1) reason="test failures" ;;
    *) reason="exit code $rc" ;;
  esac
  failed+=("$name ($reason)")
  echo
  echo "== $name: $reason"
  if [ "$rc" = "$memcheck_error_code" ]; then
    # Everything Valgrind reported apart from its banner and summaries.
    grep -v -E '^==[0-9]+== *$|Memcheck, a memory error detector|Copyright|Using Valgrind|Command:' \
      "$log_dir/$name.valgrind" | head -n 200 || true
  else
    tail -n 60 "$log_dir/$name.out" || true
  fi
  echo "   (full logs: $log_dir/$name.out, $log_dir/$name.valgrind)"
done

echo
if [ "${#failed[@]}" -eq 0 ]; then
  echo "memcheck: PASS - ${#programs[@]} test programs, no memory errors, no definite leaks, no failing tests"
  exit 0
fi
joined="$(printf '%s, ' "${failed[@]}")"
echo "memcheck: FAIL - ${#failed[@]} of ${#programs[@]} test programs: ${joined%, }"
exit 1
