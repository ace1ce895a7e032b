#!/bin/sh
# bench.sh [-r ROWS] [-b BASE.json] [-s]: builds the release preset and prints tables of times and ratios:
#   every program of benchmarks/ against the times in BASE.json, an earlier run's build/release/bench.json;
#   whole queries of the shell beside ogrinfo on the same file, over ROWS rows (100000);
#   queries with automatic indices beside those without, and the orders of joins (not with -s, the short run).
# Times of a machine that does other things too are worth little: compare ratios of one run.
set -eu
cd "$(dirname "$0")/.."
rows=100000
base=""
short=""
while getopts r:b:s option; do
    case $option in
        r) rows=$OPTARG ;;
        b) base=$OPTARG ;;
        s) short=yes ;;
        *) exit 2 ;;
    esac
done
[ -z "$base" ] || [ -r "$base" ] || { echo "bench: no file $base" >&2; exit 2; }

scripts/setup.sh
cmake --preset release -DORVANE_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset release >/dev/null
export LC_ALL=C.UTF-8 QT_PLUGIN_PATH="$PWD/build/release/plugins"

results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT
for program in build/release/bin/orvane_*_benchmark; do
    "$program" --benchmark_min_time=0.1 --benchmark_repetitions=3 --benchmark_report_aggregates_only=true \
        --benchmark_out="$results/$(basename "$program").json" --benchmark_out_format=json >"$results/log" 2>&1 ||
        { cat "$results/log" >&2; exit 1; }
done
# shellcheck disable=SC2086 # none or one file
benchmarks/table.py build/release/bench.json "$results" $base

printf '\nWhole queries, %s rows: ratio above 1 where orvane is faster\n' "$rows"
REPETITIONS=3 benchmarks/compare.sh build/release/bin/orvane "$rows"
[ -z "$short" ] || exit 0
printf '\nAutomatic indices, %s rows: ratio below 1 where they help\n' "$rows"
benchmarks/both_ways.py --rows "$rows" --turns 3 || echo "some queries are slower with indices"
printf '\nOrders of joins, %s rows\n' "$rows"
benchmarks/join_order.py --rows "$rows" || echo "some orders are wrong"
