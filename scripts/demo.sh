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
# WEVLIN_CHROMIUM=<path> runs the demo with another browser executable; the
# package chromium is then not needed. When a package is missing and apt-get
# cannot install it (no network, no root rights, a system without it), the
# script names it and stops with status 1 before building anything.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

packages=("${WEVLIN_BUILD_PACKAGES[@]}" nlohmann-json3-dev)
if [ -z "${WEVLIN_CHROMIUM:-}" ]; then
  packages+=(chromium)
fi

# apt-get's own messages say why an installation failed; whatever happened,
# what counts is what is installed afterwards.
ensure_packages "${packages[@]}" || true
mapfile -t missing < <(missing_packages "${packages[@]}")
if [ "${#missing[@]}" -gt 0 ]; then
  {
    echo "wevlin demo: cannot install ${missing[*]} with apt-get (see its messages above)."
    echo "Install the missing packages as root (apt-get install ${missing[*]}), or run"
    echo "this script where apt-get can reach the package archive."
    for pkg in "${missing[@]}"; do
      if [ "$pkg" = chromium ]; then
        echo "For the browser, WEVLIN_CHROMIUM=<path> may name another Chromium executable"
        echo "instead: WEVLIN_CHROMIUM=/path/to/chromium scripts/demo.sh"
      fi
    done
  } >&2
  exit 1
fi

build_dir="${BUILD_DIR:-build/demo}"
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DWEVLIN_BUILD_CHROMIUM=ON -DWEVLIN_BUILD_EXAMPLES=ON \
  -DWEVLIN_BUILD_TESTS=OFF -DWEVLIN_BUILD_BENCHMARKS=OFF
cmake --build "$build_dir" --target wevlin_demo
exec "$build_dir/examples/demo/wevlin_demo" "$@"
