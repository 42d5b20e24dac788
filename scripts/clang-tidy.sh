#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy, every warning an error, over
# each source file of the library (wevlin/infrastructure) and of the web
# controls (wevlin/webcontrols), and over the project headers that they include
# (HeaderFilterRegex): installs what is missing, configures a clang++ build for
# its compile_commands.json (tests, examples and benchmarks off, so that only
# the libraries' files are listed), builds the libraries so that generated
# sources exist, and checks the files in parallel with run-clang-tidy.
# The files are those of compile_commands.json under the two folders, so a new
# source file or a new control is checked with no change here. Ends with a
# summary of the diagnostics by check, and fails when there is any.
#
#   scripts/clang-tidy.sh              # build directory: build/clang-tidy
#   BUILD_DIR=... JOBS=2 scripts/clang-tidy.sh
#   scripts/clang-tidy.sh wevlin/infrastructure/interop/JsonText.cpp  # only these
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

# clang-tidy brings run-clang-tidy (and python3, which both scripts below use);
# nlohmann-json3-dev is needed to configure the web controls, and
# libwebkit2gtk-4.1-dev the WebKitGTK one.
ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}" clang clang-tidy nlohmann-json3-dev \
  libwebkit2gtk-4.1-dev

build_dir="${BUILD_DIR:-build/clang-tidy}"
jobs="${JOBS:-$(nproc)}"
started=$(date +%s)

# clang++ as the compiler, so that the flags in compile_commands.json are the
# ones clang-tidy's own front end understands.
cmake --preset linux-debug -B "$build_dir" \
  -DCMAKE_CXX_COMPILER=clang++ \
  -DWEVLIN_BUILD_CHROMIUM=ON \
  -DWEVLIN_BUILD_WEBKITGTK=ON \
  -DWEVLIN_BUILD_TESTS=OFF \
  -DWEVLIN_BUILD_EXAMPLES=OFF \
  -DWEVLIN_BUILD_BENCHMARKS=OFF \
  -DWEVLIN_BUILD_FUZZERS=OFF

# Generated sources and headers (the embedded page script, say) must exist
# before the files that include them are parsed, so the libraries are built
# first (with tests, examples and benchmarks off that is all there is; it
# takes seconds next to the checks).
cmake --build "$build_dir" --parallel "$jobs"

# The files to check: every .cpp of compile_commands.json under the two
# folders (or, with arguments, those of them that the arguments name), one
# anchored regular expression each, as run-clang-tidy takes them.
mapfile -t patterns < <(python3 - "$build_dir/compile_commands.json" "$PWD" "$@" <<'EOF'
import json, os, re, sys

database, root, wanted = sys.argv[1], sys.argv[2], sys.argv[3:]
folders = [os.path.join(root, "wevlin", name) + os.sep for name in ("infrastructure", "webcontrols")]
wanted = {os.path.normpath(os.path.join(root, path)) for path in wanted}
files = set()
with open(database, encoding="utf-8") as stream:
    for entry in json.load(stream):
        path = os.path.normpath(os.path.join(entry["directory"], entry["file"]))
        if path.endswith(".cpp") and any(path.startswith(folder) for folder in folders):
            if not wanted or path in wanted:
                files.add(path)
for path in sorted(files):
    print("^" + re.escape(path) + "$")
EOF
)
if [ "${#patterns[@]}" -eq 0 ]; then
  echo "clang-tidy: no source file of wevlin/infrastructure or wevlin/webcontrols to check" >&2
  exit 1
fi
echo "== clang-tidy over ${#patterns[@]} files, $jobs at a time"

# run-clang-tidy prints each file's command line and colours its diagnostics;
# the log keeps the plain text, and the console shows the diagnostics only.
log="$build_dir/clang-tidy.log"
set +e
run-clang-tidy -j "$jobs" -quiet -clang-tidy-binary "$(command -v clang-tidy)" \
  -p "$build_dir" "${patterns[@]}" 2>&1 |
  sed -u -e 's/\x1b\[[0-9;]*m//g' |
  tee "$log" |
  grep --line-buffered -v -E '^[^ ]*clang-tidy[^ ]* .* -p=|^[0-9]+ warnings? (and [0-9]+ errors? )?generated\.$|^Suppressed [0-9]+ warnings|^Use -header-filter|^[0-9]+ warnings? treated as errors?$'
status=${PIPESTATUS[0]}
set -e

# One line per distinct diagnostic (a header's appear once per file that
# includes it), then the count of each check.
python3 - "$log" "$PWD" "$status" "${#patterns[@]}" "$(($(date +%s) - started))" <<'EOF'
import collections, os, re, sys

log, root, status, count, seconds = sys.argv[1], sys.argv[2], int(sys.argv[3]), sys.argv[4], sys.argv[5]
diagnostic = re.compile(r"^(/[^:]+):(\d+):(\d+): (?:warning|error): (.*) \[([^\]]+)\]$")
found = set()
with open(log, encoding="utf-8", errors="replace") as stream:
    for line in stream:
        match = diagnostic.match(line.rstrip("\n"))
        if match:
            path, row, column, message, checks = match.groups()
            checks = checks.replace(",-warnings-as-errors", "")
            found.add((os.path.relpath(path, root), int(row), int(column), message, checks))
print()
if not found and status == 0:
    print(f"clang-tidy: {count} files checked in {seconds} s, no diagnostics")
    sys.exit(0)
if not found:
    print(f"clang-tidy: failed with status {status} and no diagnostic; see {log}")
    sys.exit(1)
by_check = collections.Counter(checks for *_, checks in found)
print(f"clang-tidy: {len(found)} diagnostics in the {count} files checked ({seconds} s):")
for path, row, column, message, checks in sorted(found):
    print(f"  {path}:{row}:{column}: {message} [{checks}]")
print("By check:")
for checks, number in sorted(by_check.items(), key=lambda item: (-item[1], item[0])):
    print(f"  {number:5d}  {checks}")
print("Fix the code, or disable the check in .clang-tidy with its reason in the list there;"
      " a single justified spot may carry a NOLINT(check) comment with its reason.")
sys.exit(1)
EOF
