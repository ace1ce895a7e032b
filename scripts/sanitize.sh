#!/bin/sh
# The tests under AddressSanitizer and UndefinedBehaviorSanitizer, a thousand cancelled statements among them, then the cache's concurrency and the reading ahead under
# ThreadSanitizer (without its search for deadlocks, which takes the way in which GDAL makes its locks for one),
# then damaged files of every format, then every fuzz target for a minute.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset asan
cmake --build --preset asan
ctest --preset asan -j "$(nproc)" "$@"
ORVANE_TEST_CANCELLATIONS=1000 QT_PLUGIN_PATH=build/asan/plugins LSAN_OPTIONS=suppressions=tests/lsan.supp \
    build/asan/bin/host_system_test --gtest_filter='Cancellation*'
scripts/damage.py 300
cmake --preset tsan
cmake --build --preset tsan --target engine_geometry_test files_test
ctest --preset tsan -R '^engine_geometry_test$'
TSAN_OPTIONS=detect_deadlocks=0 build/tsan/bin/files_test --gtest_filter='ReadAhead*'
scripts/fuzz.sh 60
