#!/bin/sh
# Builds the Debian packages and checks what they contain: build/package/*.deb.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset package
cmake --build --preset package
rm -f build/package/*.deb
(cd build/package && cpack)

for package in build/package/*.deb; do
    dpkg-deb --field "$package" Package Version Depends
    # Nothing of the machine it was built on.
    ! dpkg-deb --fsys-tarfile "$package" | tar -tf - | grep -vE '^\./(usr/((bin|include|lib|share)/.*)?)?$' ||
        { echo "packages: $package: files outside /usr" >&2; exit 1; }
done
