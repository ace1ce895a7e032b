#!/bin/sh
# Formats every source, or with --check says which are not formatted.
set -eu
cd "$(dirname "$0")/.."
mode=-i
[ "${1:-}" = --check ] && mode="--dry-run --Werror"
# shellcheck disable=SC2086 # two words on purpose
git ls-files '*.cpp' '*.h' | xargs clang-format $mode
