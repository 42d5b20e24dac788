#!/usr/bin/env bash
# Runs the desktop example (examples/desktop): installs what is missing (the
# C++ build packages, WebKitGTK's development files, nlohmann-json3-dev and,
# without a display, Xvfb), configures a Release build with the WebKitGTK web
# control, builds wevlin_desktop and runs it.
#
# With a display ($DISPLAY set) the window opens and stays until it is closed.
# Without one the program runs under xvfb-run, plays the user and saves a
# picture of the whole window as docs/images/desktop.png.
#
#   scripts/desktop.sh                          # build directory: build/desktop
#   scripts/desktop.sh --screenshot /tmp/d.png  # options go to the program
#   BUILD_DIR=... scripts/desktop.sh
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

packages=("${WEVLIN_BUILD_PACKAGES[@]}" nlohmann-json3-dev libwebkit2gtk-4.1-dev)
if [ -z "${DISPLAY:-}" ]; then
  packages+=(xvfb xauth)
fi

# apt-get's own messages say why an installation failed; whatever happened,
# what counts is what is installed afterwards.
ensure_packages "${packages[@]}" || true
mapfile -t missing < <(missing_packages "${packages[@]}")
if [ "${#missing[@]}" -gt 0 ]; then
  {
    echo "wevlin desktop: cannot install ${missing[*]} with apt-get (see its messages above)."
    echo "Install the missing packages as root (apt-get install ${missing[*]}), or run"
    echo "this script where apt-get can reach the package archive."
  } >&2
  exit 1
fi

build_dir="${BUILD_DIR:-build/desktop}"
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DWEVLIN_BUILD_WEBKITGTK=ON -DWEVLIN_BUILD_EXAMPLES=ON \
  -DWEVLIN_BUILD_TESTS=OFF -DWEVLIN_BUILD_BENCHMARKS=OFF
cmake --build "$build_dir" --target wevlin_desktop
program="$build_dir/examples/desktop/wevlin_desktop"

if [ -n "${DISPLAY:-}" ]; then
  exec "$program" "$@"
fi
if [ "$#" -eq 0 ]; then
  mkdir -p docs/images
  set -- --screenshot docs/images/desktop.png
fi
exec xvfb-run -a "$program" "$@"
