#!/bin/sh
# Builds orvane and shows the example queries with their answers. Installs what is missing first.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release >build-demo.log 2>&1 && cmake --build --preset release --target orvane qtsqlite >>build-demo.log 2>&1 || {
    tail -n 20 build-demo.log >&2
    exit 1
}
rm -f build-demo.log

for query in examples/queries/*.sql; do
    printf '\n%s\n\n' "$(basename "$query" .sql)"
    cat "$query"
    printf '\n'
    build/release/bin/orvane examples/data/countries.gpkg examples/data/cities.shp examples/data/indicators.csv -f "$query"
done
