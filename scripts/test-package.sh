#!/usr/bin/env bash
# Checks wevlin as its users receive it:
#
#   1. builds the library and the Chromium web control (Release, no tests),
#      and the WebKitGTK web control (unless WEVLIN_PACKAGE_WEBKITGTK=OFF),
#      and installs
#      them into a temporary prefix; checks the installed tree:
#      public headers only, the versioned shared libraries and their sonames,
#      the CMake package and the pkg-config files, the page-side library and
#      the licence; checks that the install component "wevlin" leaves the web
#      control out, and that the component "chromium" (and "webkitgtk") alone
#      brings the library it needs and is found by find_package;
#   2. builds and runs tests/package/find-package against that prefix with
#      find_package(wevlin CONFIG REQUIRED COMPONENTS chromium), COMPONENTS
#      webkitgtk (when built; under xvfb-run when it is installed) and
#      COMPONENTS testing: every installed header compiled on its own, and
#      the consumer programs linked to the shared libraries (with g++ and
#      with clang++), among them a test written with the test kit;
#   3. builds and runs the same consumer with nothing but the flags of
#      `pkg-config --cflags --libs wevlin`, and the test kit's consumer with
#      those of wevlin-testing (and the WebKitGTK consumer with those of
#      wevlin-webkitgtk); checks that the component "testing" is left
#      out of the component "wevlin" and named when it is missing;
#   4. builds and runs tests/package/add-subdirectory, which builds wevlin
#      from source as a subproject;
#   5. packs the JavaScript library in web/ with `npm pack`, installs the
#      tarball into a temporary project and imports it with require() and
#      with import, and type-checks both forms against its declarations.
#
#   scripts/test-package.sh
#   BUILD_DIR=... JOBS=... scripts/test-package.sh
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

# The WebKitGTK web control is part of the check unless
# WEVLIN_PACKAGE_WEBKITGTK=OFF says otherwise; its consumer runs a script in a
# real view, on a virtual display.
webkitgtk="${WEVLIN_PACKAGE_WEBKITGTK:-ON}"
webkitgtk_packages=()
if [ "$webkitgtk" = ON ]; then
  webkitgtk_packages=(libwebkit2gtk-4.1-dev xvfb xauth)
fi
ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}" binutils nlohmann-json3-dev "${webkitgtk_packages[@]}"
missing=()
command -v node >/dev/null 2>&1 || missing+=(nodejs)
command -v npm >/dev/null 2>&1 || missing+=(npm)
if [ "${#missing[@]}" -gt 0 ]; then
  ensure_packages "${missing[@]}"
fi

source_dir="$PWD"
build_dir="${BUILD_DIR:-build/package}"
jobs="${JOBS:-$(nproc)}"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
prefix="$work/prefix"

fail() {
  echo "FAIL: $*" >&2
  exit 1
}

# expect_eq WHAT ACTUAL EXPECTED
expect_eq() {
  if [ "$2" != "$3" ]; then
    fail "$1: expected \"$3\", got \"$2\""
  fi
  echo "ok   $1: $2"
}

version="$(sed -n 's/^ *VERSION \([0-9][0-9.]*\)$/\1/p' CMakeLists.txt | head -n 1)"
[ -n "$version" ] || fail "cannot read the project version from CMakeLists.txt"
major="${version%%.*}"
echo "== wevlin $version"

# Runs a command with a display when xvfb-run is installed (the WebKitGTK
# consumers then run a script in a real view), else as it is.
with_display() {
  if [ "$webkitgtk" = ON ] && command -v xvfb-run >/dev/null 2>&1; then
    xvfb-run -a "$@"
  else
    "$@"
  fi
}
echo "== WebKitGTK web control: $webkitgtk"

echo "== Building and installing into $prefix"
# The linux-release preset gives Ninja, Release and warnings as errors.
cmake --preset linux-release -B "$build_dir" -DCMAKE_CXX_COMPILER=g++ \
  -DWEVLIN_BUILD_TESTS=OFF -DWEVLIN_BUILD_EXAMPLES=OFF -DWEVLIN_BUILD_BENCHMARKS=OFF \
  -DWEVLIN_BUILD_CHROMIUM=ON -DWEVLIN_BUILD_WEBKITGTK="$webkitgtk" -DWEVLIN_INSTALL=ON >/dev/null
cmake --build "$build_dir" --parallel "$jobs"
cmake --install "$build_dir" --prefix "$prefix" >/dev/null

echo "== The installed tree"
[ -f "$prefix/include/wevlin/wevlin.h" ] || fail "wevlin/wevlin.h is not installed"
[ -f "$prefix/include/wevlin/wevlin_export.h" ] || fail "wevlin/wevlin_export.h is not installed"
[ -f "$prefix/include/wevlin/infrastructure/base/LogLine.h" ] || fail "LogLine.h is not installed"
private="$(cd "$prefix/include" && find . \( -name internal -o -name port \) -print)"
expect_eq "private header folders installed" "${private:-none}" "none"
others="$(cd "$prefix/include" && find . -type f ! -name '*.h' -print)"
expect_eq "installed files that are not headers" "${others:-none}" "none"
# Every header of the source tree outside internal/ and port/ is installed.
for header in $(cd "$source_dir" && find wevlin/infrastructure wevlin/webcontrols wevlin/testing \
  -name '*.h' ! -path '*/internal/*' ! -path '*/port/*'); do
  if [ "$webkitgtk" != ON ] && [[ "$header" == wevlin/webcontrols/webkitgtk/* ]]; then continue; fi
  [ -f "$prefix/include/$header" ] || fail "$header is not installed"
done
echo "ok   every public header is installed"

[ -f "$prefix/include/wevlin/webcontrols/chromium/wevlin_chromium_export.h" ] ||
  fail "wevlin/webcontrols/chromium/wevlin_chromium_export.h is not installed"
[ -f "$prefix/include/wevlin/testing/wevlin_testing_export.h" ] ||
  fail "wevlin/testing/wevlin_testing_export.h is not installed"
libdir="$prefix/lib"
libraries=(wevlin wevlin_chromium wevlin_testing)
target_files=(wevlinChromiumTargets.cmake wevlinTestingTargets.cmake)
pc_names=(wevlin wevlin-chromium wevlin-testing)
if [ "$webkitgtk" = ON ]; then
  [ -f "$prefix/include/wevlin/webcontrols/webkitgtk/wevlin_webkitgtk_export.h" ] ||
    fail "wevlin/webcontrols/webkitgtk/wevlin_webkitgtk_export.h is not installed"
  libraries+=(wevlin_webkitgtk)
  target_files+=(wevlinWebKitGtkTargets.cmake)
  pc_names+=(wevlin-webkitgtk)
else
  webkitgtk_files="$(cd "$prefix" && find . -ipath '*webkitgtk*' -print)"
  expect_eq "files of the WebKitGTK control installed without it" "${webkitgtk_files:-none}" "none"
fi
for name in "${libraries[@]}"; do
  real="$libdir/lib$name.so.$version"
  [ -f "$real" ] || fail "lib$name.so.$version is not installed"
  expect_eq "lib$name.so.$major" "$(readlink "$libdir/lib$name.so.$major")" "lib$name.so.$version"
  expect_eq "lib$name.so" "$(readlink "$libdir/lib$name.so")" "lib$name.so.$major"
  soname="$(readelf -d "$real" | sed -n 's/.*Library soname: \[\(.*\)\]/\1/p')"
  expect_eq "soname of lib$name" "$soname" "lib$name.so.$major"
done
for file in wevlinConfig.cmake wevlinConfigVersion.cmake wevlinTargets.cmake \
  "${target_files[@]}"; do
  [ -f "$libdir/cmake/wevlin/$file" ] || fail "lib/cmake/wevlin/$file is not installed"
done
echo "ok   CMake package files"
cmp "$prefix/share/wevlin/wevlin.js" web/src/wevlin.js ||
  fail "share/wevlin/wevlin.js is not the page-side library web/src/wevlin.js"
echo "ok   share/wevlin/wevlin.js is the page-side library"
cmp "$prefix/share/doc/wevlin/LICENSE" LICENSE || fail "share/doc/wevlin/LICENSE is not LICENSE"
echo "ok   share/doc/wevlin/LICENSE"

echo "== The install component \"wevlin\" alone"
cmake --install "$build_dir" --prefix "$work/core-only" --component wevlin >/dev/null
chromium_files="$(cd "$work/core-only" && find . -path '*chromium*' -print)"
expect_eq "files of the web control installed" "${chromium_files:-none}" "none"
if cmake -S tests/package/find-package -B "$work/no-chromium" -G Ninja \
  -DCMAKE_PREFIX_PATH="$work/core-only" -DWEVLIN_TEST_CHROMIUM=ON >"$work/no-chromium.log" 2>&1; then
  fail "find_package(wevlin COMPONENTS chromium) succeeded without the component"
fi
grep -q 'has no component "chromium"' "$work/no-chromium.log" ||
  fail "the missing component is not named: $(cat "$work/no-chromium.log")"
echo "ok   find_package(wevlin COMPONENTS chromium) fails without the component"
testing_files="$(cd "$work/core-only" && find . -path '*testing*' -print)"
expect_eq "files of the test kit installed" "${testing_files:-none}" "none"
if cmake -S tests/package/find-package -B "$work/no-testing" -G Ninja \
  -DCMAKE_PREFIX_PATH="$work/core-only" -DWEVLIN_TEST_TESTING=ON >"$work/no-testing.log" 2>&1; then
  fail "find_package(wevlin COMPONENTS testing) succeeded without the component"
fi
grep -q 'has no component "testing"' "$work/no-testing.log" ||
  fail "the missing component is not named: $(cat "$work/no-testing.log")"
echo "ok   find_package(wevlin COMPONENTS testing) fails without the component"

echo "== The install component \"chromium\" alone"
cmake --install "$build_dir" --prefix "$work/chromium-only" --component chromium >/dev/null
for file in lib/libwevlin.so.$version lib/libwevlin_chromium.so.$version \
  lib/cmake/wevlin/wevlinConfig.cmake include/wevlin/wevlin.h \
  include/wevlin/webcontrols/chromium/ChromiumWebControl.h share/wevlin/wevlin.js; do
  [ -e "$work/chromium-only/$file" ] || fail "installing only \"chromium\" left out $file"
done
echo "ok   the component brings the library, its headers and the CMake package"
cmake -S tests/package/find-package -B "$work/chromium-only-build" -G Ninja \
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_PREFIX_PATH="$work/chromium-only" \
  -DWEVLIN_TEST_CHROMIUM=ON >/dev/null
echo "ok   find_package(wevlin COMPONENTS chromium) finds a tree with only the component"

if [ "$webkitgtk" = ON ]; then
  echo "== The install component \"webkitgtk\" alone"
  webkitgtk_in_core="$(cd "$work/core-only" && find . -ipath '*webkitgtk*' -print)"
  expect_eq "files of the WebKitGTK control in the component wevlin" "${webkitgtk_in_core:-none}" \
    "none"
  webkitgtk_in_chromium="$(cd "$work/chromium-only" && find . -ipath '*webkitgtk*' -print)"
  expect_eq "files of the WebKitGTK control in the component chromium" \
    "${webkitgtk_in_chromium:-none}" "none"
  cmake --install "$build_dir" --prefix "$work/webkitgtk-only" --component webkitgtk >/dev/null
  for file in lib/libwevlin.so.$version lib/libwevlin_webkitgtk.so.$version \
    lib/cmake/wevlin/wevlinConfig.cmake lib/cmake/wevlin/wevlinWebKitGtkTargets.cmake \
    include/wevlin/wevlin.h include/wevlin/webcontrols/BridgePolicy.h \
    include/wevlin/webcontrols/webkitgtk/WebKitGtkWebControl.h share/wevlin/wevlin.js; do
    [ -e "$work/webkitgtk-only/$file" ] || fail "installing only \"webkitgtk\" left out $file"
  done
  echo "ok   the component brings the library, its headers and the CMake package"
  cmake -S tests/package/find-package -B "$work/webkitgtk-only-build" -G Ninja \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_PREFIX_PATH="$work/webkitgtk-only" \
    -DWEVLIN_TEST_WEBKITGTK=ON >/dev/null
  echo "ok   find_package(wevlin COMPONENTS webkitgtk) finds a tree with only the component"
  if cmake -S tests/package/find-package -B "$work/no-webkitgtk" -G Ninja \
    -DCMAKE_PREFIX_PATH="$work/core-only" -DWEVLIN_TEST_WEBKITGTK=ON >"$work/no-webkitgtk.log" 2>&1; then
    fail "find_package(wevlin COMPONENTS webkitgtk) succeeded without the component"
  fi
  grep -q 'has no component "webkitgtk"' "$work/no-webkitgtk.log" ||
    fail "the missing component is not named: $(cat "$work/no-webkitgtk.log")"
  echo "ok   find_package(wevlin COMPONENTS webkitgtk) fails without the component"
fi

echo "== pkg-config"
export PKG_CONFIG_PATH="$libdir/pkgconfig"
expect_eq "pkg-config --modversion wevlin" "$(pkg-config --modversion wevlin)" "$version"
expect_eq "pkg-config --modversion wevlin-chromium" "$(pkg-config --modversion wevlin-chromium)" \
  "$version"
expect_eq "pkg-config --modversion wevlin-testing" "$(pkg-config --modversion wevlin-testing)" \
  "$version"
# (pkgconf ends the line with a blank; it is not part of the flags.)
expect_eq "pkg-config --cflags --libs wevlin" "$(pkg-config --cflags --libs wevlin | sed 's/ *$//')" \
  "-I$prefix/include -L$libdir -lwevlin"
expect_eq "pkg-config --variable=pagescript wevlin" "$(pkg-config --variable=pagescript wevlin)" \
  "$prefix/share/wevlin/wevlin.js"
for name in "${pc_names[@]}"; do
  grep -qx 'License: MIT' "$libdir/pkgconfig/$name.pc" || fail "$name.pc does not name the licence"
done
echo "ok   every pkg-config file names the licence"
# shellcheck disable=SC2046 # the flags are meant to be split
g++ -std=c++17 -Wall -Wextra -Wpedantic -Werror tests/package/consumer/main.cpp \
  $(pkg-config --cflags --libs wevlin) -o "$work/consumer-pkg-config"
LD_LIBRARY_PATH="$libdir" "$work/consumer-pkg-config" | tail -n 1
# Read ldd's whole answer before matching: with pipefail, "ldd | grep -q" fails
# whenever grep stops reading first and ldd dies of SIGPIPE.
linked="$(LD_LIBRARY_PATH="$libdir" ldd "$work/consumer-pkg-config")"
grep -q "libwevlin.so.$major => $libdir/" <<<"$linked" ||
  fail "the pkg-config consumer does not load the installed library: $linked"
echo "ok   the program loads $libdir/libwevlin.so.$major"
expect_eq "pkg-config --cflags --libs wevlin-testing" \
  "$(pkg-config --cflags --libs wevlin-testing | sed 's/ *$//')" \
  "-I$prefix/include -L$libdir -lwevlin_testing -lwevlin"
# shellcheck disable=SC2046 # the flags are meant to be split
g++ -std=c++17 -Wall -Wextra -Wpedantic -Werror tests/package/consumer/testing_consumer.cpp \
  $(pkg-config --cflags --libs wevlin-testing) -o "$work/testing-consumer-pkg-config"
LD_LIBRARY_PATH="$libdir" "$work/testing-consumer-pkg-config" | tail -n 1
if [ "$webkitgtk" = ON ]; then
  expect_eq "pkg-config --modversion wevlin-webkitgtk" \
    "$(pkg-config --modversion wevlin-webkitgtk)" "$version"
  webkitgtk_flags="$(pkg-config --cflags --libs wevlin-webkitgtk)"
  [[ "$webkitgtk_flags" == *-lwevlin_webkitgtk* && "$webkitgtk_flags" == *-lwebkit2gtk-4.1* ]] ||
    fail "pkg-config --cflags --libs wevlin-webkitgtk lacks the control or WebKitGTK: $webkitgtk_flags"
  echo "ok   pkg-config wevlin-webkitgtk names the control, wevlin and WebKitGTK"
  # shellcheck disable=SC2086 # the flags are meant to be split
  g++ -std=c++17 -Wall -Wextra -Wpedantic -Werror tests/package/consumer/webkitgtk_consumer.cpp \
    $webkitgtk_flags -o "$work/webkitgtk-consumer-pkg-config"
  LD_LIBRARY_PATH="$libdir" with_display "$work/webkitgtk-consumer-pkg-config" | tail -n 1
fi

echo "== find_package(wevlin CONFIG REQUIRED COMPONENTS chromium), COMPONENTS testing"
cmake -S tests/package/find-package -B "$work/find-package" -G Ninja \
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_PREFIX_PATH="$prefix" -DWEVLIN_TEST_CHROMIUM=ON \
  -DWEVLIN_TEST_WEBKITGTK="$webkitgtk" -DWEVLIN_TEST_TESTING=ON
cmake --build "$work/find-package" --parallel "$jobs"
with_display ctest --test-dir "$work/find-package" --output-on-failure

if command -v clang++ >/dev/null 2>&1; then
  echo "== The same with clang++"
  cmake -S tests/package/find-package -B "$work/find-package-clang" -G Ninja \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_PREFIX_PATH="$prefix" -DWEVLIN_TEST_CHROMIUM=ON \
    -DWEVLIN_TEST_WEBKITGTK="$webkitgtk" -DWEVLIN_TEST_TESTING=ON \
    -DCMAKE_CXX_COMPILER=clang++
  cmake --build "$work/find-package-clang" --parallel "$jobs"
  with_display ctest --test-dir "$work/find-package-clang" --output-on-failure
fi

echo "== add_subdirectory(wevlin)"
cmake -S tests/package/add-subdirectory -B "$work/add-subdirectory" -G Ninja \
  -DCMAKE_BUILD_TYPE=Debug -DWEVLIN_SOURCE_DIR="$source_dir"
cmake --build "$work/add-subdirectory" --parallel "$jobs"
ctest --test-dir "$work/add-subdirectory" --output-on-failure

echo "== npm pack"
(cd web && npm pack --pack-destination "$work" --silent >/dev/null)
tarball="$work/wevlin-$version.tgz"
[ -f "$tarball" ] || fail "npm pack did not write wevlin-$version.tgz (the JavaScript version must be $version)"
contents="$(tar -tzf "$tarball" | LC_ALL=C sort | tr '\n' ' ')"
expect_eq "files in the tarball" "$contents" \
  "package/LICENSE package/README.md package/index.d.mts package/index.d.ts package/package.json package/src/wevlin-testing.js package/src/wevlin-testing.mjs package/src/wevlin.js package/src/wevlin.mjs package/testing.d.mts package/testing.d.ts "
cmp -s "$source_dir/LICENSE" <(tar -xzOf "$tarball" package/LICENSE) ||
  fail "the tarball's LICENSE differs from the repository's LICENSE"
echo "ok   the tarball carries the repository's LICENSE"

app="$work/app"
mkdir -p "$app"
cat >"$app/package.json" <<'EOF'
{ "name": "wevlin-package-check", "version": "1.0.0", "private": true }
EOF
(cd "$app" && npm install --no-audit --no-fund --offline --silent "$tarball")
cd "$app"
expect_eq "require(\"wevlin\").VERSION" \
  "$(node -e 'const w = require("wevlin"); process.stdout.write(w.VERSION + " " + typeof w.createPage)')" \
  "$version function"
expect_eq "import wevlin, { VERSION, createPage } from \"wevlin\"" \
  "$(node --input-type=module -e 'import wevlin, { VERSION, createPage } from "wevlin";
process.stdout.write(VERSION + " " + typeof createPage + " " + (wevlin.createPage === createPage))')" \
  "$version function true"
expect_eq "require(\"wevlin/testing\").MemoryHost" \
  "$(node -e 'const t = require("wevlin/testing"); const w = require("wevlin");
process.stdout.write(typeof t.MemoryHost + " " + (t.createMemoryHost() instanceof t.MemoryHost) + " " + ("createMemoryHost" in w))')" \
  "function true false"
expect_eq "import { MemoryHost, createMemoryHost } from \"wevlin/testing\"" \
  "$(node --input-type=module -e 'import testing, { MemoryHost, createMemoryHost } from "wevlin/testing";
const host = createMemoryHost({ target: {} });
process.stdout.write(typeof MemoryHost + " " + (host instanceof MemoryHost) + " " + (testing.MemoryHost === MemoryHost) + " " + host.contentState)')" \
  "function true true Waiting"
tsc="$source_dir/web/node_modules/.bin/tsc"
if [ -x "$tsc" ]; then
  cat >"$app/check.mts" <<'EOF'
import wevlin, { VERSION, createPage } from "wevlin";
import { MemoryHost, createMemoryHost } from "wevlin/testing";
const version: string = VERSION;
const same: boolean = wevlin.createPage === createPage;
const host: MemoryHost = createMemoryHost();
export { version, same, host };
EOF
  cat >"$app/check.cts" <<'EOF'
import wevlin = require("wevlin");
import testing = require("wevlin/testing");
const version: string = wevlin.VERSION + testing.createMemoryHost().contentState;
export = version;
EOF
  cat >"$app/tsconfig.json" <<'EOF'
{
  "compilerOptions": {
    "module": "node16",
    "moduleResolution": "node16",
    "strict": true,
    "noEmit": true,
    "types": []
  },
  "files": ["check.mts", "check.cts"]
}
EOF
  "$tsc" -p "$app/tsconfig.json"
  echo "ok   the declarations of wevlin and wevlin/testing type-check for import and require"
else
  echo "note: web/node_modules has no TypeScript (run scripts/test-web.sh first); type check skipped"
fi
cd "$source_dir"
echo "== Packaging: all checks passed"
