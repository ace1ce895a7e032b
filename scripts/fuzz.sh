#!/bin/sh
# fuzz.sh [SECONDS [TARGET...]]: runs the fuzz targets (all of them by default) one after another, a minute each.
# What they have learnt stays in build/fuzz/corpus; an input that breaks something goes to build/fuzz/findings and
# ends the script with an error after the other targets have had their turn.
set -eu
cd "$(dirname "$0")/.."
seconds="${1:-60}"
[ $# -eq 0 ] || shift

[ -f build/fuzz/CMakeCache.txt ] || cmake --preset fuzz
cmake --build --preset fuzz
[ $# -gt 0 ] || set -- $(cd build/fuzz/bin && ls -- *_fuzzer | sed 's/_fuzzer$//')

export QT_PLUGIN_PATH="$PWD/build/fuzz/plugins"
export LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0"
mkdir -p build/fuzz/findings
failed=""
for name; do
    mkdir -p "build/fuzz/corpus/$name"
    dictionary="tests/fuzz/$name.dict"
    echo "fuzz: $name, $seconds s"
    "build/fuzz/bin/${name}_fuzzer" -max_total_time="$seconds" -max_len=4096 -timeout=20 -rss_limit_mb=4096 \
        -verbosity=0 -print_funcs=0 -print_final_stats=1 -artifact_prefix="build/fuzz/findings/$name-" \
        $([ ! -f "$dictionary" ] || echo "-dict=$dictionary") "build/fuzz/corpus/$name" "tests/fuzz/seeds/$name" ||
        failed="$failed $name"
done
[ -z "$failed" ] || { echo "fuzz: findings in build/fuzz/findings:$failed" >&2; exit 1; }
