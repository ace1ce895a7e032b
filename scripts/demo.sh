#!/bin/sh
# Builds orvane and shows the example queries with their answers. Installs what is missing first.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { cmake --preset release && cmake --build --preset release --target orvane qtsqlite; } >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    exit 1
fi

for query in examples/queries/*.sql; do
    printf '\n%s\n\n' "$(basename "$query" .sql)"
    cat "$query"
    printf '\n'
    build/release/bin/orvane examples/data/countries.gpkg examples/data/cities.shp examples/data/indicators.csv -f "$query"
done
