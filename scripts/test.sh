#!/bin/sh
# test.sh [PRESET]: builds everything with warnings as errors and runs all tests. The preset is dev; asan and tsan run
# them under the sanitizers.
set -eu
cd "$(dirname "$0")/.."
preset=${1:-dev}
scripts/build.sh "$preset" libgtest-dev libasound2
log=build/$preset-tests.log
echo "Testing (preset $preset, log in $log) ..."
if ! ctest --preset "$preset" >"$log" 2>&1; then
    tail -n 100 "$log" >&2
    exit 1
fi
# ctest's own summary
grep -A 5 -E '^[0-9]+% tests passed' "$log"
