# Shared by the scripts in this folder: runs a command where the WebKitGTK web
# control can open its windows. Sourced, not run.
#
# run_with_display COMMAND...: runs COMMAND on the X display the environment
# names, or, when there is none, on a virtual one of its own (xvfb-run).
# Nothing else is set: WebKitGTK paints and runs its web processes under Xvfb,
# as root in a container too, as it does on a desktop.
run_with_display() {
  if [ -n "${DISPLAY:-}" ]; then
    "$@"
  else
    xvfb-run -a -s "-screen 0 1600x1000x24" "$@"
  fi
}
