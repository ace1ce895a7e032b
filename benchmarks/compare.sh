#!/bin/sh
# Puts the shell beside `ogrinfo -dialect sqlite` on the same file in the same run: whole processes, alternating, the median
# of each and their ratio. Use: benchmarks/compare.sh [ORVANE [ROWS]]
set -eu
cd "$(dirname "$0")/.."
orvane=${1:-build/release/bin/orvane}
rows=${2:-1000000}
repetitions=${REPETITIONS:-5}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A table of points with a number, a text and a measure, made by GDAL itself.
cat > "$work/make.vrt" <<VRT
<OGRVRTDataSource><OGRVRTLayer name="points"><SrcDataSource>$work/points.csv</SrcDataSource>
<GeometryType>wkbPoint</GeometryType><LayerSRS>EPSG:4326</LayerSRS>
<GeometryField encoding="PointFromColumns" x="lon" y="lat"/>
<Field name="id" type="Integer64"/><Field name="owner" type="String"/><Field name="price" type="Real"/>
</OGRVRTLayer></OGRVRTDataSource>
VRT
awk -v rows="$rows" 'BEGIN { srand(1); print "id,owner,price,lon,lat"
    for (i = 1; i <= rows; i++) printf "%d,owner %d,%.2f,%.6f,%.6f\n", i, i % 977, rand() * 1e6, rand() * 360 - 180, rand() * 170 - 85 }' \
    > "$work/points.csv"
ogr2ogr -f GPKG "$work/points.gpkg" "$work/make.vrt" points

milliseconds() { # of one command, its output checked to be there
    start=$(date +%s%N)
    "$@" > "$work/out"
    end=$(date +%s%N)
    [ -s "$work/out" ] || { echo "no answer from: $*" >&2; exit 1; }
    echo $(((end - start) / 1000000))
}
median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

printf '%-44s %10s %10s %8s\n' query 'ogrinfo ms' 'orvane ms' ratio
compare() {
    : > "$work/ogr"; : > "$work/orvane"
    for _ in $(seq "$repetitions"); do
        milliseconds ogrinfo -q -dialect sqlite -sql "$1" "$work/points.gpkg" >> "$work/ogr"
        milliseconds "$orvane" "$work/points.gpkg" -F csv -c "$1" >> "$work/orvane"
    done
    ogr=$(median < "$work/ogr"); own=$(median < "$work/orvane")
    printf '%-44s %10s %10s %8s\n' "$2" "$ogr" "$own" "$(awk -v a="$ogr" -v b="$own" 'BEGIN { printf "%.2f", a / b }')"
}
compare "Select Count(*) From points" "count"
compare "Select Count(*), Sum(price) From points" "full scan, one number"
compare "Select Count(*), Sum(price), Sum(Length(owner)) From points" "full scan, number and text"
compare "Select id, price From points Where price >= 999000" "filtered scan, one in a thousand"
