#!/usr/bin/env bash
# Builds wevlin for 64-bit Windows on this Linux machine and runs it there
# under Wine:
#
#   1. installs what is missing (MinGW-w64 with POSIX threads, Wine, the
#      GoogleTest sources, CMake, Ninja);
#   2. cross-builds the DLL, its import library, the examples and every unit
#      test with the "windows-mingw" preset (GoogleTest and GoogleMock are
#      compiled from /usr/src/googletest with the same compiler);
#   3. runs the whole unit-test suite under Wine through CTest, and reports
#      how long that took;
#   4. installs the build into a temporary prefix and builds the consumer
#      project of tests/package/find-package against it, which links only
#      the import library and uses only the installed headers, and runs it
#      under Wine too.
#
#   scripts/test-windows.sh            # everything above
#   scripts/test-windows.sh --quick    # CI's run: steps 2 and 3 for the DLL,
#                                      # the examples and the test programs of
#                                      # the platform layer, the timer and the
#                                      # assertion messages only
#   BUILD_DIR=... JOBS=... WINEPREFIX=... scripts/test-windows.sh
#
# The Wine prefix defaults to <build>/wineprefix, so that the run touches
# nothing in the home directory; creating it takes about half a minute once.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

quick=0
case "${1:-}" in
  --quick) quick=1 ;;
  "") ;;
  *)
    echo "usage: scripts/test-windows.sh [--quick]" >&2
    exit 2
    ;;
esac
# The test programs of the quick run: the Windows platform file (timer queue,
# clock, case-insensitive comparison), the timer on top of it, and the death
# tests that read the Windows runtime's assertion messages.
quick_tests=(
  t_infrastructure_interop_port_PortTest
  t_infrastructure_interop_TimerTest
  t_infrastructure_interop_TimerThreadTest
  t_infrastructure_services_version__2014_02_TestVersionSvcTest
  t_infrastructure_services_version__2014_03_TestVersionProxy01Test
)

ensure_packages cmake ninja-build g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix \
  mingw-w64-x86-64-dev binutils-mingw-w64-x86-64 wine wine64 googletest

source_dir="$PWD"
build_dir="${BUILD_DIR:-build/windows-mingw}"
jobs="${JOBS:-$(nproc)}"
mkdir -p "$build_dir"
build_dir="$(cd "$build_dir" && pwd)"

export WINEPREFIX="${WINEPREFIX:-$build_dir/wineprefix}"
export WINEDEBUG="${WINEDEBUG:--all}"
# No Mono or Gecko installers for a prefix that only runs console programs.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine="$(command -v wine64 || command -v wine)"
wineserver="$(dirname "$wine")/wineserver"
[ -x "$wineserver" ] || wineserver="$(command -v wineserver)"

work=""
cleanup() {
  # Stops the Wine server of this prefix, started below, and removes the
  # temporary files.
  "$wineserver" -k 2>/dev/null || true
  if [ -n "$work" ]; then
    rm -rf "$work"
  fi
}
trap cleanup EXIT

if [ ! -f "$WINEPREFIX/system.reg" ]; then
  echo "== Creating the Wine prefix $WINEPREFIX"
  "$wine" wineboot --init >/dev/null 2>&1
  "$wineserver" -w
fi
# One Wine server for the whole run. Without it every short test program
# may start just as the server of the previous one shuts down, and then
# fails to connect ("recvmsg: Connection reset by peer"). It is started
# once a server still running for the prefix has ended.
"$wineserver" -w
"$wineserver" -p

echo "== Configuring ($build_dir)"
cmake --preset windows-mingw -B "$build_dir"

echo "== Building"
if [ "$quick" -eq 1 ]; then
  # The test kit too: the install step below installs it.
  cmake --build "$build_dir" --parallel "$jobs" --target wevlin wevlin_core wevlin_testing \
    json_example "${quick_tests[@]}"
else
  cmake --build "$build_dir" --parallel "$jobs"
fi

echo "== Cross-built files"
dll="$build_dir/bin/libwevlin.dll"
implib="$build_dir/wevlin/libwevlin.dll.a"
for file in "$dll" "$implib"; do
  [ -f "$file" ] || {
    echo "missing: $file" >&2
    exit 1
  }
  ls -l "$file"
done
dll_header="$(x86_64-w64-mingw32-objdump -f "$dll")"
grep -q "file format pei-x86-64" <<<"$dll_header" || {
  echo "$dll is not a 64-bit Windows DLL" >&2
  exit 1
}

echo "== Checking the DLL's exports"
# Every function and object that the library defines outside its internal
# and port namespaces and its anonymous namespaces must be exported: the
# public headers declare them. Inline functions and inline variables
# (COMDAT sections) are compiled into the application and are left out.
audit="$(mktemp -d)"
x86_64-w64-mingw32-nm --defined-only "$build_dir/wevlin/libwevlin_core.a" |
  awk '$2 ~ /^[TDBR]$/ { print $3 }' | grep '^_ZN3Com' | sort -u >"$audit/defined"
# shellcheck disable=SC2016 # the "$" of COMDAT section names is literal
x86_64-w64-mingw32-objdump -t "$build_dir/wevlin/libwevlin_core.a" |
  grep -o '\.[a-z]*\$_ZN3Com[^ ]*' | sed 's/^[^$]*\$//' | sort -u >"$audit/inline"
x86_64-w64-mingw32-objdump -p "$dll" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' |
  awk 'NF >= 2 { print $NF }' | sort -u >"$audit/exported"
unexported="$(comm -23 "$audit/defined" "$audit/inline" | comm -23 - "$audit/exported" |
  x86_64-w64-mingw32-c++filt | grep -v '::internal::\|::port::\|(anonymous namespace)' || true)"
echo "libwevlin.dll exports $(wc -l <"$audit/exported") symbols"
rm -rf "$audit"
if [ -n "$unexported" ]; then
  echo "Defined by the library but not exported from the DLL:" >&2
  echo "$unexported" >&2
  exit 1
fi
echo "ok   every symbol outside the internal namespaces is exported"

echo "== Running the example under Wine"
"$wine" "$build_dir/bin/json_example.exe" | tail -n 1

start=$(date +%s)
status=0
if [ "$quick" -eq 1 ]; then
  echo "== Running the platform, timer and assertion tests under Wine"
  for program in "${quick_tests[@]}"; do
    # A program that crashes under Wine may still end with exit code 0 (Wine
    # reports the fault and its debugger ends the process), so GoogleTest's
    # closing line must be there too.
    if "$wine" "$build_dir/bin/$program.exe" --gtest_brief=1 >"$build_dir/$program.log" 2>&1 &&
      grep -q '^\[  PASSED  \] ' "$build_dir/$program.log" &&
      ! grep -q '^\[  FAILED  \] ' "$build_dir/$program.log"; then
      echo "ok   $program: $(grep -o '[0-9]* tests\{0,1\} from [0-9]* test suites\{0,1\} ran' "$build_dir/$program.log")"
    else
      echo "FAIL $program" >&2
      cat "$build_dir/$program.log" >&2
      status=1
    fi
  done
else
  echo "== Running every unit test under Wine"
  # On a loaded machine Wine now and then fails to start a program at all
  # (the test then "fails" in a few milliseconds with no output), so a failed
  # test is run again, up to twice; every test still has to pass once, and
  # the native runs repeat nothing.
  ctest --test-dir "$build_dir" --output-on-failure --parallel "$jobs" --repeat until-pass:3 ||
    status=$?
fi
end=$(date +%s)
echo "== Wine test run: $((end - start)) s"

echo "== Installing and building a consumer against the import library"
work="$(mktemp -d)"
prefix="$work/prefix"
cmake --install "$build_dir" --prefix "$prefix" >/dev/null
# Wine looks for the runtime DLLs of the compiler beside wevlin's DLL in the
# installed bin folder.
export WINEPATH="Z:${prefix//\//\\}\\bin"
cmake -S tests/package/find-package -B "$work/find-package" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$source_dir/cmake/toolchains/mingw-w64-x86_64.cmake" \
  -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_PREFIX_PATH="$prefix"
cmake --build "$work/find-package" --parallel "$jobs"
ctest --test-dir "$work/find-package" --output-on-failure
if [ "$status" -ne 0 ]; then
  echo "== Windows: the consumer passed, but some unit tests failed under Wine (see above)"
  exit "$status"
fi
echo "== Windows: all checks passed"
