#!/bin/sh
# The tests under AddressSanitizer and UndefinedBehaviorSanitizer, then the cache's concurrency under ThreadSanitizer,
# then every fuzz target for a minute.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset asan
cmake --build --preset asan
ctest --preset asan -j "$(nproc)" "$@"
cmake --preset tsan
cmake --build --preset tsan --target engine_geometry_test
ctest --preset tsan -R '^engine_geometry_test$'
scripts/fuzz.sh 60
