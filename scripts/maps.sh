#!/bin/sh
# Draws the example queries of examples/maps: maps.sh [ORVANE [DIRECTORY]], with the shell that is named, or else the one on the
# path, into docs/maps or another directory. The lines "-- map:" of a query are the options of its map.
set -eu
cd "$(dirname "$0")/.."
orvane=${1:-orvane}
directory=${2:-docs/maps}
data=examples/data
for query in examples/maps/*.sql; do
    options=$(sed -n 's/^-- map: //p' "$query" | tr '\n' ' ')
    name=$(basename "$query" .sql)
    eval "set -- $options"
    LC_ALL=C.UTF-8 "$orvane" --locale en_US $data/countries.gpkg $data/cities.shp -f "$query" -o "$directory/$name.png" \
        --overwrite --map-size 800x560 "$@"
done
