#!/usr/bin/env bash
# Builds the benchmarks (Release) and runs them. Installs what is missing: the
# C++ build packages, Google Benchmark, the two JSON libraries measured beside
# wevlin's own (nlohmann-json, RapidJSON), chromium and libwebkit2gtk-4.1-dev
# for the browser benchmarks (which run on both web controls), xvfb and xauth
# for the display the WebKitGTK control needs and, for the chart,
# python3-matplotlib.
#
#   scripts/bench.sh           full run: repetitions, results as JSON in
#                              $BUILD_DIR/results, the chart docs/performance.png
#                              and the tables of docs/performance.md
#                              regenerated from them
#   scripts/bench.sh --smoke   every benchmark once, briefly, to show that they
#                              still build and run (for CI); fails when one of
#                              them reports an error
#
# BUILD_DIR (default build/bench) is the build directory. The JSON corpus
# (twitter.json, citm_catalog.json, canada.json, github_events.json) is read
# from $WEVLIN_BENCH_DATA, else from ../shared/bench-data beside the
# repository; without it those benchmarks are skipped with a message and the
# generated documents still run. The browser benchmarks run on the X display
# that $DISPLAY names, else on a virtual one of their own (xvfb-run).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/lib/prereqs.sh
. scripts/lib/display.sh

mode=full
case "${1:-}" in
  "") ;;
  --smoke) mode=smoke ;;
  *)
    echo "usage: scripts/bench.sh [--smoke]" >&2
    exit 2
    ;;
esac

packages=("${WEVLIN_BUILD_PACKAGES[@]}" libbenchmark-dev nlohmann-json3-dev rapidjson-dev chromium
  libwebkit2gtk-4.1-dev xvfb xauth python3)
if [ "$mode" = full ]; then
  packages+=(python3-matplotlib)
fi
ensure_packages "${packages[@]}"
# Debian's interpreter, the one python3-matplotlib belongs to.
python=/usr/bin/python3

build_dir="${BUILD_DIR:-build/bench}"
results="$build_dir/results"
cmake -S . -B "$build_dir" -G Ninja \
  -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_CXX_COMPILER=g++ \
  -DWEVLIN_WARNINGS_AS_ERRORS=ON \
  -DWEVLIN_BUILD_BENCHMARKS=ON \
  -DWEVLIN_BUILD_CHROMIUM=ON \
  -DWEVLIN_BUILD_WEBKITGTK=ON \
  -DWEVLIN_BUILD_TESTS=OFF \
  -DWEVLIN_BUILD_EXAMPLES=OFF
cmake --build "$build_dir" --target wevlin_bench wevlin_bench_browser

mkdir -p "$results"
rm -f "$results"/*.json
bench="$build_dir/bench/wevlin_bench"
browser="$build_dir/bench/wevlin_bench_browser"

run() {
  local name="$1"
  shift
  echo "== $name"
  "$@" --benchmark_out="$results/$name.json" --benchmark_out_format=json
}

if [ "$mode" = smoke ]; then
  # Each benchmark runs for about 10 ms; the page's batches are cut to five
  # calls.
  run main "$bench" --benchmark_min_time=0.01
  WEVLIN_BENCH_SMOKE=1 run browser run_with_display "$browser" --benchmark_min_time=0.01
  "$python" bench/plot.py "$results"/*.json --check
  exit 0
fi

# Repetitions, interleaved at random, so that a passing load on the (shared)
# machine falls on every library alike; the tables use the medians. The
# scale benchmark runs in a process of its own, so that the resident-set
# growth it reports is that of the instances alone.
run main "$bench" --benchmark_filter='-^Scale/' --benchmark_min_time=0.5 \
  --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true
run scale "$bench" --benchmark_filter='^Scale/' --benchmark_min_time=0.2 \
  --benchmark_repetitions=5
run browser run_with_display "$browser" --benchmark_min_time=1 --benchmark_repetitions=3
"$python" bench/plot.py "$results"/*.json --check \
  --markdown docs/performance.md --chart docs/performance.png
echo "Results: $results; tables: docs/performance.md; chart: docs/performance.png"
