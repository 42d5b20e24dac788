#!/usr/bin/env bash
# Runs the thread tests under ThreadSanitizer: installs what is missing,
# configures a RelWithDebInfo build with g++ and -fsanitize=thread, builds the
# test programs labelled "threads" (every …ThreadTest.cpp and
# …StressTest.cpp), and runs them with CTest.
#
#   scripts/test-tsan.sh            # build directory: build/tsan
#   BUILD_DIR=... JOBS=2 scripts/test-tsan.sh
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh

ensure_packages "${WEVLIN_BUILD_PACKAGES[@]}"

build_dir="${BUILD_DIR:-build/tsan}"
jobs="${JOBS:-$(nproc)}"
export TSAN_OPTIONS="${TSAN_OPTIONS:-halt_on_error=1 second_deadlock_stack=1}"

cmake -S . -B "$build_dir" -G Ninja \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_CXX_COMPILER=g++ \
  -DWEVLIN_SANITIZE=thread \
  -DWEVLIN_WARNINGS_AS_ERRORS=ON

# Some kernels place mappings where the sanitizer's runtime does not expect
# them and it stops with "unexpected memory mapping". Probe with a trivial
# program; if that happens, run everything that starts instrumented programs
# (the build discovers the tests by running them) without address-space
# randomisation.
run=()
probe_dir="$build_dir/tsan-probe"
mkdir -p "$probe_dir"
printf 'int main() { return 0; }\n' >"$probe_dir/probe.cpp"
g++ -fsanitize=thread "$probe_dir/probe.cpp" -o "$probe_dir/probe"
if ! probe_output="$("$probe_dir/probe" 2>&1)"; then
  if grep -q "unexpected memory mapping" <<<"$probe_output"; then
    echo "== ThreadSanitizer needs a fixed address space here; running under setarch -R"
    run=(setarch "$(uname -m)" -R)
  else
    echo "$probe_output" >&2
    exit 1
  fi
fi

# The programs of the thread tests, named as tests/CMakeLists.txt names them:
# t_<folders joined by _>_<file name>.
targets=()
while IFS= read -r source; do
  rel="${source#tests/}"
  dir="$(dirname "$rel")"
  targets+=("t_${dir//\//_}_$(basename "$rel" .cpp)")
done < <(find tests/infrastructure tests/support -name '*ThreadTest.cpp' -o -name '*StressTest.cpp' | sort)
if [ "${#targets[@]}" -eq 0 ]; then
  echo "No thread tests found." >&2
  exit 1
fi

"${run[@]}" cmake --build "$build_dir" --parallel "$jobs" --target "${targets[@]}"
"${run[@]}" ctest --test-dir "$build_dir" -L threads --output-on-failure --no-tests=error
