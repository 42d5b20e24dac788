#!/bin/sh
# Runs a test program that opens GTK windows: under its own virtual X server
# (xvfb-run -a) when xvfb-run is installed, else on the display the
# environment names. Fails when there is neither.
if command -v xvfb-run >/dev/null 2>&1; then
  exec xvfb-run -a "$@"
fi
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec "$@"
fi
echo "run-with-display.sh: no display and no xvfb-run (apt-get install xvfb)" >&2
exit 1
