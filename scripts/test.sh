#!/bin/sh
# Sets the machine up, builds the developer preset (warnings are errors) and runs all tests.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset dev
cmake --build --preset dev
ctest --preset dev -j "$(nproc)" "$@"
