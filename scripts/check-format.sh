#!/usr/bin/env bash
# Fails when any C++ file of the project is not formatted as .clang-format says.
# With --fix, formats the files in place instead.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh
ensure_packages clang-format

mode=(--dry-run -Werror)
if [ "${1:-}" = "--fix" ]; then
  mode=(-i)
fi
git ls-files -z --cached --others --exclude-standard -- '*.cpp' '*.h' \
  | xargs -0 -r clang-format "${mode[@]}"
echo "Formatting: ok"
