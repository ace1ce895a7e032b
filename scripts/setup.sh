#!/bin/sh
# Installs what the project needs on Debian 12, through apt, as far as it is missing. Run as root, or with sudo at hand.
set -eu

packages="
build-essential cmake ninja-build ccache git pkg-config
qtbase5-dev libqt5sql5-sqlite libqt5svg5-dev qttools5-dev qttools5-dev-tools fonts-dejavu-core
libsqlite3-dev libspatialite-dev libgeos-dev libproj-dev proj-data libgdal-dev gdal-bin
libintelrdfpmath-dev libboost-dev libcli11-dev libedit-dev libpq-dev
libgtest-dev libgmock-dev libbenchmark-dev python3 postgresql postgresql-15-postgis-3
clang clang-format clang-tidy libclang-rt-14-dev
"

missing=""
for package in $packages; do
    dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^ii' || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=""
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: run as root, missing packages:$missing" >&2; exit 1; }
    as_root="sudo DEBIAN_FRONTEND=noninteractive"
fi
echo "setup: installing$missing" >&2
export DEBIAN_FRONTEND=noninteractive
$as_root apt-get update -qq
# shellcheck disable=SC2086 # a list of names
$as_root apt-get install -y -qq --no-install-recommends $missing >/dev/null
