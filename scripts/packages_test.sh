#!/bin/sh
# packages_test.sh: installs the packages of scripts/packages.sh on a clean Debian, made of what apt here is set to use, and
# tries them there: the shell on the example data, then a host application built against the headers. Needs root.
set -eu
cd "$(dirname "$0")/.."
[ "$(id -u)" -eq 0 ] || { echo "packages_test: run as root" >&2; exit 1; }
command -v mmdebstrap >/dev/null || {
    apt-get update -qq
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends mmdebstrap >/dev/null
}
ls build/package/*.deb >/dev/null 2>&1 || scripts/packages.sh

. /etc/os-release
sources=$(apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
    grep -F " $VERSION_CODENAME" | sort -u)
[ -n "$sources" ] || { echo "packages_test: run apt-get update first, apt here knows no packages of Debian's" >&2; exit 1; }

system=$(mktemp -d)
log=$(mktemp)
chmod 755 "$system"
trap 'rm -rf --one-file-system "$system" "$log"' EXIT
echo "packages_test: making a clean $VERSION_CODENAME" >&2
echo "$sources" | mmdebstrap --quiet --variant=apt "$VERSION_CODENAME" "$system" -

inside() { chroot "$system" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
quietly() { inside "$@" >"$log" 2>&1 || { tail -n 20 "$log" >&2; echo "packages_test: failed: $*" >&2; exit 1; }; }
install_packages() {
    cp "$@" "$system/tmp/"
    quietly sh -c 'cd /tmp && apt-get install -y -qq --no-install-recommends ./*.deb'
    rm "$system"/tmp/*.deb
}
expect() { # TEXT COMMAND...: what the command answers inside
    expected=$1
    shift
    answer=$(inside "$@") || { echo "packages_test: failed: $*" >&2; exit 1; }
    [ "$answer" = "$expected" ] || { printf 'packages_test: %s\nanswers\n%s\ninstead of\n%s\n' "$*" "$answer" "$expected" >&2; exit 1; }
}
cp /etc/resolv.conf "$system/etc/resolv.conf"
cp -r examples/data "$system/srv/data"
quietly apt-get update -qq

# The command alone, with what its package asks for and nothing else.
install_packages build/package/liborvane[0-9]*.deb build/package/orvane_*.deb
echo "packages_test: installed takes $(du -sxm "$system" | cut -f1) MB" >&2
expect "orvane $(sed -n 's/^project(Orvane VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)" orvane --version
expect 4442 orvane /srv/data/cities.shp -F csv --no-header -c "Select Count(*) From cities"
expect "China,426" orvane /srv/data/cities.shp /srv/data/countries.gpkg -F csv --no-header -c \
    "Select k.name_long, Count(*) From countries k, cities c Where c.obj Within k.obj Group By k.name_long Order By 2 Desc, 1 Limit 1"
expect 1 orvane -F csv --no-header -c "Select Area(Transform(Buffer(MakePoint(37, 55, 4326), 1, 'km'), 32637), 'sq km') Between 3.1 And 3.2"
expect 2 sh -c 'orvane /srv/data/countries.gpkg -c "Select * From countries" -o /tmp/map.png && orvane /srv/data/cities.shp \
    -c "Select * From cities Where population > 5000000" -o /tmp/large.gpkg && ls /tmp/map.png /tmp/large.gpkg | wc -l'
inside sh -c 'ldd /usr/bin/orvane /usr/lib/*/liborvane_*.so.* /usr/lib/*/orvane-*/plugins/*/*.so | grep "not found"' && exit 1

# A host of the engine, with CMake and with pkg-config.
install_packages build/package/liborvane-dev_*.deb
quietly apt-get install -y -qq --no-install-recommends g++ cmake make
quietly sh -c 'cmake -S /usr/share/doc/liborvane-dev/examples/embed -B /tmp/embed && cmake --build /tmp/embed'
quietly sh -c 'c++ /usr/share/doc/liborvane-dev/examples/embed/main.cpp -o /tmp/embed/with_pkg_config \
    -DORVANE_PLUGIN_DIR="\"$(pkg-config --variable=plugindir orvane-engine)\"" \
    -DORVANE_TRANSLATION_DIR="\"$(pkg-config --variable=translationdir orvane-engine)\"" \
    $(pkg-config --cflags --libs orvane-adaptor orvane-files)'
for program in embed with_pkg_config; do
    expect "Shanghai | 22315474" sh -c "/tmp/embed/$program /srv/data/cities.shp \
        'Select name, population From cities Order By population Desc Limit 1' name | head -n 1"
done

# Gone without a trace.
quietly sh -c 'dpkg --purge orvane liborvane-dev $(dpkg-query -W -f="\${Package}\n" "liborvane[0-9]*")'
left=$(inside sh -c 'find /usr -iname "*orvane*"')
[ -z "$left" ] || { echo "packages_test: left behind: $left" >&2; exit 1; }
echo "packages_test: passed" >&2
