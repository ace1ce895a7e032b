#!/bin/sh
# coverage.sh [-n] [CTEST OPTIONS]: runs the tests on libraries that count lines, and lists their sources by how much of them ran
# with the lines that did not (also build/coverage/lines.txt and, to read, build/coverage/report/index.html). Ends with an error
# when less than 90 % of the lines of engine/ ran. -n reports on the counts that are there, without a run.
set -eu
cd "$(dirname "$0")/.."
wanted=90
scripts/setup.sh
command -v gcovr >/dev/null || {
    apt-get update -qq
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends gcovr >/dev/null
}
if [ "${1:-}" != -n ]; then
    cmake --preset coverage >/dev/null
    cmake --build --preset coverage
    find build/coverage -name '*.gcda' -delete
    # A count is worth having even where a test fails, which is another script's business.
    ctest --test-dir build/coverage -j "$(nproc)" -E '^package_test$' "$@" || echo "coverage: some tests fail" >&2
fi

mkdir -p build/coverage/report
gcovr --root . --object-directory build/coverage -j "$(nproc)" --filter platform/ --filter engine/ --filter host/ --filter include/ \
    --json build/coverage/lines.json build/coverage >/dev/null
report() { gcovr --root . --add-tracefile build/coverage/lines.json "$@"; }
report --sort-percentage --txt build/coverage/lines.txt --html-details build/coverage/report/index.html
cat build/coverage/lines.txt
report --filter engine/ --print-summary --fail-under-line "$wanted" --txt /dev/null
